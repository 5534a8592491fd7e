// From text to a tree: createNodes and what follows a parse.
#include "dom/document/Adoption.h"
#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/document/NodeClassifier.h"
#include "dom/document/TreeAdjuster.h"
#include "dom/dtd/DocumentType.h"
#include "dom/dtd/FrameTables.h"
#include "dom/html/HTMLParser.h"
#include "dom/source/MarkedText.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

Node* Document::createNodes(const char* text, unsigned int length, Node* parent, bool adjust) {
  // Offsets in the tree have 32 bits, and a page of this size is none.
  constexpr unsigned kTooLong = 0x80000000u;
  if (length >= kTooLong || (!text && length > 0)) return nullptr;
  const Document* const around = documentAround(parent);
  if (around && around != this) return nullptr;
  ParserType::_dtd_frame* frame = documentType_ ? documentType_->getDTDFrame() : nullptr;
  HTMLParser parser(text ? text : "", length, frame, this);
  parser.setLenient(!html_);

  const unsigned long savedErrors = getError();
  if (!parent) {
    if (documentElement_) {
      deleteNodes(nullptr);
    } else {
      enableRecord(false);
    }
    documentElement_ = createRootElement();
    parent = documentElement_;
    clearError();
  } else if (parent == documentElement_) {
    enableRecord(false);
    clearError();
  }
  // What is parsed into a live page is an edit of what stands around it.
  if (parent != documentElement_) NodeAccess::noteEdit(parent);
  const bool wasEmpty = !parent->hasChildNodes();
  parser.pushNode(parent);
  parser.parse(LexerType::LEX_EOF);
  const bool mustBeSorted = !wasEmpty || parser.mustBeSorted();
  parser.keepNames();

  // Parsed nodes have no reference yet; the target keeps the count that it had.
  parent->addRef(true);
  parent->dropRef(false);

  const bool outermost = !inClassify_;
  if (outermost) {
    inClassify_ = isBuilding_ = true;
    // What had to be recorded was when the first node came in.
    const DocumentAccess::RecordPause pause(this);
    if (mustBeSorted) classifyNodes(*this, parent);
    inClassify_ = false;
  }
  // What is saved of a pair is not changed by the normal form of a page that was only read.
  if (adjust && !hasSevereError()) normalizeNodes(*this, parent, /*corrected=*/false);
  if (outermost) {
    isBuilding_ = false;
    NodeAccess::forgetEdits(parent);
  }
  if (parent == documentElement_) {
    enableRecord(true);
  } else if (!inClassify_) {
    clearError();
    if (savedErrors) setError(savedErrors);
  }
  return parent;
}

bool Document::restorePlainTexts(Node* node) {
  if (!node || !dom_) return false;
  Element* pre = createElement("PRE");
  const EntityTable* entities = FrameTables::entities(documentType_);
  bool found = false;
  Node* n = node->hasChildNodes() ? node->getFirstChild() : node;
  while (n) {
    // KEPT: what preformatted text cannot hold is passed over, so a call with a whole page does nothing.
    const bool skipped = !pre->canContain(n, nullptr, nullptr);
    if (!skipped && n->getNodeType() == NODE_TEXT) {
      auto* text = static_cast<Text*>(n);
      if (text->getTextType() == Text::TEXT_NORMAL) {
        std::string plain = text->getRawData();
        expandReferences(plain, 0, static_cast<int>(plain.size()), entities);
        text->setData(plain, /*notify=*/false);
        found = true;
      }
    }
    n = skipped ? NodeAccess::nextSkippingChildren(n, node) : NodeAccess::nextInSubtree(n, node);
  }
  deleteNodes(pre);
  return found;
}

}  // namespace zeldom40
