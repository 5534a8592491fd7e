// The frame of a page: its life, deleting and walking.
#include "dom/document/Document.h"

#include <vector>

#include "dom/document/DOM.h"
#include "dom/document/DocumentAccess.h"
#include "dom/dtd/DocumentType.h"
#include "dom/dynamic/BeanInfo.h"
#include "dom/dynamic/JavaTypes.h"
#include "dom/dynamic/MetaData.h"
#include "dom/dynamic/MetaDataAccess.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

// All documents, so that a node which was held longer than its own can ask.
Document* newestDocument = nullptr;

}  // namespace

bool DocumentAccess::isLive(const Document* document) {
  const Document* d = newestDocument;
  while (d && d != document) d = d->olderDocument_;
  return d != nullptr;
}

// Any document, for a cursor may stand at any node.
void DocumentAccess::forgetPlace(const Node* node) {
  for (Document* d = newestDocument; d; d = d->olderDocument_) d->forgetPlace(node);
}

Document::Document() : Document(nullptr, nullptr) {}

Document::Document(const char* documentTypeName, DOM* dom)
    : dom_(dom),
      html_(documentTypeName && std::string_view(documentTypeName) == "HTML"),
      documentType_(dom ? dom->getDocumentType() : nullptr),
      outBoundBeans_(std::make_unique<BeanList>()),
      olderDocument_(newestDocument) {
  newestDocument = this;
}

Document::~Document() {
  clearErrors();
  deleteNodes(nullptr);
  eraseSelections();
  delete scratchElement_;
  delete scratchText_;
  clearRecord();
  forgetTypes(this);
  Document** link = &newestDocument;
  while (*link != this) link = &(*link)->olderDocument_;
  *link = olderDocument_;
}

Node* Document::getDocumentType() { return documentType_; }

bool Document::isInTree(const Node* node) const {
  if (!documentElement_) return false;
  // A visual that metadata keeps aside is part of the page.
  for (; node; node = NodeAccess::above(node)) {
    if (node == documentElement_) return true;
  }
  return false;
}

Node* Document::deleteNodes(Node* node) {
  Document* const owner = node ? node->getDocument() : nullptr;
  if (owner && owner != this && DocumentAccess::isLive(owner)) {
    // The other document could not know that its tree is gone, nor where its cursor goes.
    if (node == owner->documentElement_) return nullptr;
    if (owner->isInTree(node)) return owner->deleteNodes(node);
  }
  if (MetaData* md = MetaDataAccess::ofVisual(node)) {
    forgetCursorInside(node);
    MetaDataAccess::dropVisual(*md);
    return nullptr;
  }
  if (!node || node == documentElement_) {
    node = documentElement_;
    if (!node) return nullptr;
    // The root is forgotten first: nothing that happens from here on is a change of the page.
    documentElement_ = nullptr;
    node->setUpdateFlag(UPDATE_REMOVED);
    cursorNode_ = nullptr;
    layoutOffset_ = sourceOffset_ = 0;
    eraseSelections();
    if (retainedCursorNode_) retainedCursorNode_->releaseRef(false);
    retainedCursorNode_ = nullptr;
  } else if (Node* parent = node->getParentNode()) {
    recordChange(node);
    adjustCursorOnDelete(node);
    // Once is enough: the removal itself must not move the cursor again.
    adjustCursors_ = false;
    parent->removeChild(node);
    adjustCursors_ = true;
  } else {
    forgetCursorInside(node);
  }
  NodeAccess::releaseRemoved(node);
  return nullptr;
}

// The net below the adjustments: a subtree may have left the tree with a place in it and die later, unseen.
void Document::forgetPlace(const Node* node) {
  if (cursorNode_ == node) {
    cursorNode_ = nullptr;
    layoutOffset_ = sourceOffset_ = 0;
  }
  selections_.remove_if([node](const _selection* selection) {
    if (selection->startNode != node && selection->endNode != node) return false;
    delete selection;
    return true;
  });
}

// Nodes that left the tree with the cursor or a selection in them are about to die.
void Document::forgetCursorInside(Node* top) {
  if (cursorNode_ && cursorNode_->isOffspringOf(top)) {
    cursorNode_ = nullptr;
    layoutOffset_ = sourceOffset_ = 0;
  }
  dropSelectionsInside(top);
}

void Document::clearUpdateFlag() {
  if (documentElement_) documentElement_->clearUpdateFlag();
  Node::clearUpdateFlag();
}

Node* Document::findNextNode(Node* node, Node* top, bool updatedOnly, bool skipChildren) {
  if (!node) return nullptr;
  auto firstCounting = [updatedOnly](Node* candidate) {
    while (candidate && updatedOnly && candidate->getUpdateFlag() == 0) candidate = candidate->getNextSibling();
    return candidate;
  };
  if (!skipChildren) {
    if (Node* child = firstCounting(node->getFirstChild())) return child;
  }
  for (; node && node != top; node = node->getParentNode()) {
    if (Node* sibling = firstCounting(node->getNextSibling())) return sibling;
  }
  return nullptr;
}

Node* Document::findClonedNode(Node* node, Node* sourceTop, Node* cloneTop) {
  if (!node || !sourceTop || !cloneTop || node == sourceTop) return nullptr;
  std::vector<std::size_t> indices;
  for (const Node* n = node; n != sourceTop; n = n->getParentNode()) {
    if (!n->getParentNode()) return nullptr;
    std::size_t index = 0;
    for (const Node* s = NodeAccess::childBefore(n); s; s = NodeAccess::childBefore(s)) ++index;
    indices.push_back(index);
  }
  Node* found = cloneTop;
  for (auto it = indices.rbegin(); it != indices.rend(); ++it) {
    found = found->getFirstChild();
    for (std::size_t i = 0; found && i < *it; ++i) found = found->getNextSibling();
    if (!found) return nullptr;
  }
  return found;
}

void Document::keepRuntimeText() {
  for (Node* n = documentElement_; n;) {
    auto* element = n->getNodeType() == NODE_ELEMENT ? static_cast<Element*>(n) : nullptr;
    MetaData* metaData = element ? element->getMetaData() : nullptr;
    const bool isPair = metaData && metaData->wasLoadedFromPage();
    if (isPair && metaData->getType() == MetaData::DynamicData) {
      // A copy does not count as loaded, so that nothing compares its text with a new one. No type generates nothing.
      auto* copy = new MetaData(*metaData);
      copy->addRef(false);
      if (copy->getRuntimeText().empty()) copy->setType(MetaData::None);
      element->setMetaData(copy);
    } else if (metaData && !isPair && metaData->getType() != MetaData::AuthorTimeVisual) {
      element->setMetaData(nullptr);
    }
    n = findNextNode(n, nullptr, /*updatedOnly=*/false, /*skipChildren=*/isPair);
  }
}

}  // namespace zeldom40
