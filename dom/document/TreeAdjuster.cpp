// The normal form of a tree after a parse or a repair.
#include "dom/document/TreeAdjuster.h"

#include <cassert>
#include <utility>

#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/document/PointlessElements.h"
#include "dom/document/TreeWalker.h"
#include "dom/source/CharHelpers.h"
#include "dom/tree/AttributeList.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/PI.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

namespace {

Element* asElement(Node* node) {
  return node && node->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(node) : nullptr;
}

Text* asText(Node* node) { return node && node->getNodeType() == Node::NODE_TEXT ? static_cast<Text*>(node) : nullptr; }

bool isFormatting(Node* node) { return asText(node) && asText(node)->getTextType() == Text::TEXT_FORMATTING; }

}  // namespace

Element* mergeElements(Document& document, Element* first, Element* second) {
  // The attributes of the first stand where both have one of a name but the later value counts.
  if (second->getNumAttributes() > 0) {
    AttributeList* from = second->getAttributes();
    ElementAccess::takeAttributes(first, from);
    first->setBeginTagDirty();
    first->setUpdateFlag(Node::UPDATE_ATTRIBUTE_MODIFIED);
  }
  if (!first->hasEndTag() && second->hasEndTag()) first->setEndTagExistence(true);
  if (second->getError() & ERR_ELEMENT_INVALID_ATTR) first->setError(ERR_ELEMENT_INVALID_ATTR);
  for (const unsigned long flag : {ERR_ELEMENT_BEGIN_TAG_MISSING, ERR_ELEMENT_END_TAG_MISSING}) {
    if (!(second->getError() & flag)) first->resetError(flag);
  }
  Text* end = asText(first->getLastChild());
  Text* start = asText(second->getFirstChild());
  // CHOICE: only texts of one type are joined; in a text that only formats the source the other would be lost.
  if (end && start && end->getTextType() == start->getTextType()) {
    TextAccess::append(end, start);
    document.deleteNodes(start);
  }
  if (second->hasChildNodes())
    NodeAccess::insertFree(first, second->removeChildren(nullptr, nullptr), nullptr, /*behindRef=*/true);
  document.deleteNodes(second);
  return first;
}

namespace {

// The state of one pass.
class Normalizer {
 public:
  Normalizer(Document& document, Node* start, bool corrected)
      : document_(document), start_(start), corrected_(corrected), walk_(start), pointless_(document) {}

  bool run() {
    assert(start_);
    for (Node* n = start_; n; n = walk_.current()) {
      if (pre_ && n != pre_ && !insidePre()) {
        pre_ = nullptr;
        column_ = 0;
      }
      switch (n->getNodeType()) {
        case Node::NODE_ELEMENT:
          visitElement(static_cast<Element*>(n));
          break;
        case Node::NODE_PI:
          walk_.next(false, false);
          visitInstruction(n);
          break;
        case Node::NODE_TEXT: {
          auto* text = static_cast<Text*>(n);
          walk_.next(false, false);
          if (text->getTextType() == Text::TEXT_NORMAL) visitText(text);
          break;
        }
        default:
          walk_.next(false, false);
          break;
      }
    }
    if (corrected_ && start_->getParentNode()) removePointlessStart();
    return changed_;
  }

 private:
  bool insidePre() const { return walk_.preformatted() > preformattedAround_; }

  void visitElement(Element* element) {
    const unsigned long group = element->getElementGroup();
    if (group & GROUP_SKELETON) mergeRepeated(element);
    const int id = element->getElementID();
    // Implied HTML, HEAD and BODY must appear in the source; the root never does.
    if ((group & GROUP_DOCUMENT) && id != ID_ZELROOT && id != ID_ZELTEMP) {
      if (!(element->getError() & ERR_ELEMENT_BEGIN_TAG_MISSING)) ElementAccess::dirtyEmptyBeginTag(element);
      if (!(element->getError() & ERR_ELEMENT_END_TAG_MISSING)) ElementAccess::dirtyEmptyEndTag(element);
    }
    if (corrected_ && element != start_ && removePointless(element)) return;
    finishWaiting();
    if (!pre_) {
      if (group & GROUP_PLAIN) {
        pre_ = element;
        preformattedAround_ = walk_.preformatted();
      }
    } else if (group & GROUP_BREAK) {
      column_ = 0;
    }
    walk_.next(false, false);
  }

  void mergeRepeated(Element* element) {
    for (Node* sibling = NodeAccess::childAfter(element); element->getParentNode() && sibling;) {
      Element* later = asElement(sibling);
      sibling = NodeAccess::childAfter(sibling);
      if (!later || later->getElementID() != element->getElementID()) continue;
      mergeElements(document_, element, later);
      changed_ = true;
    }
  }

  // Takes out an element that a repair left without a purpose; the walk goes on from what stands before it.
  bool removePointless(Element* element) {
    const bool empty = pointless_.isEmpty(element);
    if (!empty && !PointlessElements::isTransparent(element, walk_)) return false;
    Node* parent = element->getParentNode();
    Node* before = NodeAccess::childBefore(element);
    // An element that holds the walk's mark on preformatted text takes the mark along.
    if (pre_ == element) pre_ = nullptr;
    if (empty) {
      if (!mayVanish(NodeAccess::childAfter(element))) finishWaiting();
      if (before) {
        walk_.toSibling(before);
      } else {
        walk_.toParent(parent);
      }
      document_.deleteNodes(element);
      walk_.next(false, /*skipChildren=*/before != nullptr);
    } else {
      // CHOICE: what stood before the element was visited and is no different now, but for a text that the content may
      // have joined; so the walk goes on there and not at the first child of the parent, which would make a row of such
      // elements cost its square.
      walk_.toParent(parent);
      const bool sameText = removeKeepingContent(document_, element, walk_);
      if (sameText && walk_.current() == lastText_) column_ = columnBefore_;
      if (!sameText) walk_.next(false, /*skipChildren=*/walk_.current() != parent);
    }
    changed_ = true;
    return true;
  }

  // The start goes last, or the walk would lose its bounds. The caller holds it.
  void removePointlessStart() {
    Element* element = asElement(start_);
    if (!element) return;
    const TreeWalker around(element);
    if (pointless_.isEmpty(element)) {
      document_.deleteNodes(element);
    } else if (PointlessElements::isTransparent(element, around)) {
      document_.removeElement(element, /*mergeTexts=*/true);
    } else {
      return;
    }
    changed_ = true;
  }

  void visitInstruction(Node* pi) {
    Node* parent = pi->getParentNode();
    if (!parent || pi == start_) return;
    Node* before = NodeAccess::childBefore(pi);
    while (before && isFormatting(before)) before = NodeAccess::childBefore(before);
    if (parent == start_ && !before) return;
    Node* first = start_->getFirstChild();
    while (first && isFormatting(first)) first = NodeAccess::childAfter(first);
    const bool repeated = first && first->getNodeType() == Node::NODE_PI;
    if (repeated) {
      document_.deleteNodes(pi);
    } else {
      parent->removeChild(pi);
      Text* mark = asText(start_->getFirstChild());
      start_->insertAfter(pi, mark && TextAccess::isByteOrderMark(mark) ? mark : nullptr);
    }
    changed_ = true;
  }

  void visitText(Text* text) {
    Element* parent = asElement(text->getParentNode());
    if (pre_) {
      visits_ = text == waiting_ ? visits_ + 1 : 1;
      waiting_ = text;
      if (!mayVanish(NodeAccess::childAfter(text))) finishWaiting();
      return;
    }
    if (!parent || !(parent->getElementGroup() & GROUP_BLOCK)) return;
    Node* next = NodeAccess::childAfter(text);
    if (!next && parent->isNoEndTag() && parent->getParentNode()) {
      // The end of the item is where its text ends; the line break behind it belongs to the list.
      if (Text* space = TextAccess::splitTrailingSpace(text)) {
        space->addRef(false);
        parent->getParentNode()->insertAfter(space, parent);
        changed_ = true;
      }
    }
    Element* nextElement = asElement(next);
    if (!next || (nextElement && (nextElement->getElementGroup() & GROUP_BLOCK))) {
      if (TextAccess::trimRight(text)) changed_ = true;
    }
  }

  // What an element in the way held may yet join a preformatted text in front of it. Its columns are counted when it is
  // complete: to count them again after each of a row of such elements would cost the square of the row.
  bool mayVanish(Node* behind) const {
    const Element* element = asElement(behind);
    return corrected_ && element && (element->getElementGroup() & (GROUP_TEXT_LEVEL | GROUP_SPAN_LIKE | GROUP_PHRASE));
  }
  void finishWaiting() {
    if (Text* text = std::exchange(waiting_, nullptr)) visitPreformatted(text);
  }

  void visitPreformatted(Text* text) {
    std::string_view data = text->getData();
    lastText_ = text;
    columnBefore_ = column_;
    bool shortened = false;
    if (text->getParentNode() == pre_) {
      // KEPT: each visit takes one line break off the front.
      for (int i = 0; i < visits_ && !NodeAccess::childBefore(text) && isCrLf(data, 0); ++i) {
        data.remove_prefix(2);
        shortened = true;
      }
      if (!NodeAccess::childAfter(text) && endsInCrLf(data)) {
        data.remove_suffix(2);
        shortened = true;
      }
    }
    if (data.find('\t') == std::string_view::npos) {
      column_ = columnAt(data, 0, data.size(), column_);
      if (!shortened) return;
      text->setData(std::string(data), /*notify=*/false);
    } else {
      std::string expanded(data);
      column_ = expandTabs(expanded, column_);
      text->setData(expanded, /*notify=*/false);
    }
    changed_ = true;
  }

  // The CR LF must not be the tail of a marked unit.
  static bool endsInCrLf(std::string_view data) {
    if (data.size() < 2 || data.substr(data.size() - 2) != "\r\n") return false;
    std::size_t i = 0;
    while (i < data.size() - 2) i += markedLength(data, i);
    return i == data.size() - 2;
  }

  Document& document_;
  Node* start_;
  bool corrected_;
  TreeWalker walk_;
  PointlessElements pointless_;
  bool changed_ = false;
  Node* pre_ = nullptr;
  int preformattedAround_ = 0;
  int column_ = 0;
  // A text that grew is counted again from where it began.
  const Node* lastText_ = nullptr;
  int columnBefore_ = 0;
  Text* waiting_ = nullptr;
  int visits_ = 0;  // of the text that waits
};

}  // namespace

bool normalizeNodes(Document& document, Node* node, bool corrected) {
  Node* start = node ? node : document.getDocumentElement();
  return start && Normalizer(document, start, corrected).run();
}

}  // namespace zeldom40
