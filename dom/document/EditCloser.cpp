// adjustNodes: closes an edit of the host.
#include <cassert>
#include <utility>

#include "dom/document/DOM.h"
#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/document/NodeLayout.h"
#include "dom/document/PointlessElements.h"
#include "dom/document/TextMerge.h"
#include "dom/document/TreeAdjuster.h"
#include "dom/document/TreeWalker.h"
#include "dom/tree/ElementAccess.h"

namespace zeldom40 {

namespace {

Element* asElement(Node* node) {
  return node && node->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(node) : nullptr;
}

// One walk over an edited subtree.
class EditCloser {
 public:
  EditCloser(Document& document, Node* top, bool full)
      : document_(document),
        full_(full),
        keeps_(DocumentAccess::keepsSource(&document)),
        walk_(top),
        pointless_(document) {}

  bool run() {
    walk_.next(!full_, false);
    while (Node* n = walk_.current()) {
      if (Element* element = asElement(n)) {
        visitElement(element);
      } else if (n->getNodeType() == Node::NODE_TEXT) {
        visitText(n);
      } else {
        format(n);
      }
    }
    assert(!waiting_);
    return changed_;
  }

 private:
  void visitElement(Element* element) {
    const unsigned long group = element->getElementGroup();
    if (pointless_.isEmpty(element)) {
      const Node* behind = NodeAccess::childAfter(element);
      if (!behind || behind->getNodeType() != Node::NODE_TEXT || !isVisited(behind)) formatWaiting();
      walk_.next(!full_, /*skipChildren=*/true);
      document_.deleteNodes(element);
      changed_ = true;
      return;
    }
    if (PointlessElements::isTransparent(element, walk_)) {
      removeKeepingContent(element);
      return;
    }
    formatWaiting();
    if (group & GROUP_SKELETON) {
      if (Element* first = staysApart(element) ? nullptr : firstOfID(element)) {
        walk_.toSibling(first);
        mergeLater(first);
        return;
      }
      mergeLater(element);
    }
    format(element);
  }

  // Under KEEP only what is new becomes one with what was there.
  bool staysApart(const Element* element) const {
    return keeps_ && !(element->getUpdateFlag() & (Node::UPDATE_CREATED | Node::UPDATE_ADDED));
  }

  void visitText(Node* text) {
    if (text == waiting_) waiting_ = nullptr;
    Node* n = text;
    while (Node* before = NodeAccess::childBefore(n)) {
      Node* merged = mergeTexts(document_, before, n);
      if (!merged) break;
      if (before == waiting_) waiting_ = nullptr;
      n = merged;
      changed_ = true;
    }
    formatWaiting();
    while (Node* behind = NodeAccess::childAfter(n)) {
      Node* merged = mergeTexts(document_, n, behind);
      if (!merged) break;
      n = merged;
      changed_ = true;
    }
    walk_.toSibling(n);
    if (mayVanish(NodeAccess::childAfter(n))) {
      waiting_ = n;
      walk_.next(!full_, false);
    } else {
      format(n);
    }
  }

  // A text in front of an element that goes may be joined by what that held or by what stands behind it. CHOICE: it is
  // laid out when it is complete; doing so after each of a row of such elements would cost the square of the row.
  bool mayVanish(Node* behind) const {
    const Element* element = asElement(behind);
    constexpr unsigned long kVanishing = GROUP_TEXT_LEVEL | GROUP_SPAN_LIKE | GROUP_PHRASE;
    return element && isVisited(element) && (element->getElementGroup() & kVanishing);
  }
  bool isVisited(const Node* sibling) const { return full_ || sibling->getUpdateFlag() != 0; }

  // The walk stands on a sibling of the text.
  void formatWaiting() {
    if (Node* text = std::exchange(waiting_, nullptr)) changed_ |= formatNode(document_, text, walk_);
  }

  // CHOICE: the walk goes on at what stands before the element, and its parent is formatted once for a row of such
  // elements: starting again at the parent each time would make the row cost its square.
  void removeKeepingContent(Element* element) {
    Node* parent = element->getParentNode();
    assert(parent);
    walk_.toParent(parent);
    if (formattedParent_ != parent) {
      formattedParent_ = parent;
      changed_ |= formatNode(document_, parent, walk_);
    }
    changed_ = true;
    const bool isText = zeldom40::removeKeepingContent(document_, element, walk_);
    // The walk comes back to a text that waits, unless it gave way to another.
    if (walk_.current() != waiting_) waiting_ = nullptr;
    if (walk_.current() == parent) {
      walk_.next(!full_, /*skipChildren=*/false);
      return;
    }
    // What the walk has passed for want of changes has a new neighbour now. Where something below changed the walk has
    // been already.
    const unsigned long flags = walk_.current()->getUpdateFlag();
    const bool again = full_ ? isText : flags && (isText || !(flags & Node::UPDATE_CHILD_MODIFIED));
    if (!again) walk_.next(!full_, /*skipChildren=*/true);
  }

  void format(Node* n) {
    changed_ |= formatNode(document_, n, walk_);
    walk_.next(!full_, false);
  }

  void mergeLater(Element* element) {
    for (Node* n = NodeAccess::childAfter(element); n;) {
      Element* later = asElement(n);
      n = NodeAccess::childAfter(n);
      if (!later || later->getElementID() != element->getElementID() || staysApart(later)) continue;
      mergeElements(document_, element, later);
      changed_ = true;
    }
  }

  // The first of the earlier siblings that are of the element's kind. All of them become one; to join each with the
  // one before it would move what the last ones hold once for each.
  static Element* firstOfID(Element* element) {
    Element* first = nullptr;
    for (Node* n = NodeAccess::childBefore(element); n; n = NodeAccess::childBefore(n)) {
      Element* other = asElement(n);
      if (other && other->getElementID() == element->getElementID()) first = other;
    }
    return first;
  }

  Document& document_;
  bool full_;
  bool keeps_;
  TreeWalker walk_;
  PointlessElements pointless_;
  Node* formattedParent_ = nullptr;
  Node* waiting_ = nullptr;  // a text that is to be laid out yet
  bool changed_ = false;
};

}  // namespace

void Document::skipAdjust() { skipAdjust_ = true; }

bool Document::adjustNodes(Node* node, bool full) {
  if (!dom_) return false;
  if (!node) {
    if (skipAdjust_) {
      skipAdjust_ = false;
      return false;
    }
    node = documentElement_;
  }
  if (!isInTree(node) || !dom_->getDocumentStyle()) return false;
  enableRecord(false);
  bool changed = false;
  // What the cursor has left may hold the start.
  const HeldNode held(node);
  if (retainedCursorNode_ && retainedCursorNode_ != cursorNode_) {
    changed = dropLeftBehind(retainedCursorNode_);
    retainedCursorNode_->releaseRef(false);
    retainedCursorNode_ = nullptr;
  }
  if (isInTree(node)) changed |= EditCloser(*this, node, full).run();
  if (cursorNode_ != retainedCursorNode_) {
    if (retainedCursorNode_) retainedCursorNode_->releaseRef(false);
    retainedCursorNode_ = cursorNode_;
    if (retainedCursorNode_) retainedCursorNode_->addRef(false);
  }
  recordFlags_ &= kRecordInGroup;
  return changed;
}

// An empty element that the cursor was in and has left goes, with all around it that is empty then.
bool Document::dropLeftBehind(Node* node) {
  if (!isInTree(node) || !isEmptyNode(node, false)) return false;
  Node* topmost = node;
  while (Node* parent = topmost->getParentNode()) {
    // The parent is empty if it may be and its other children are.
    if (!isEmptyByItself(parent)) break;
    bool empty = true;
    for (Node* child = parent->getFirstChild(); child && empty; child = NodeAccess::childAfter(child)) {
      empty = child == topmost || isEmptyNode(child, false);
    }
    if (!empty) break;
    topmost = parent;
  }
  if (topmost->getNodeType() != NODE_ELEMENT) return false;
  deleteNodes(topmost);
  return true;
}

}  // namespace zeldom40
