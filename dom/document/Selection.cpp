// The cursor and the selections of a page, and how edits move them.
#include <cstdint>

#include "dom/document/Document.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

// The child of `ancestor` on the way down to `node`, null if `node` is not below it.
Node* childToward(const Node* ancestor, Node* node) {
  while (node && node->getParentNode() != ancestor) node = node->getParentNode();
  return node;
}

}  // namespace

// --- selections ------------------------------------------------------------------------------------------------------

void Document::select(Node* a, unsigned aOffset, Node* b, unsigned bOffset, unsigned char append) {
  if (!a || !b) return;
  bool swapped = false;
  if (a == b) {
    swapped = aOffset > bOffset;
  } else if (Node* towardB = childToward(a, b)) {
    swapped = a->getChildIndex(towardB) < std::int64_t{aOffset};
  } else if (Node* towardA = childToward(b, a)) {
    swapped = b->getChildIndex(towardA) >= std::int64_t{bOffset};
  } else {
    swapped = compareNode(a, b) >= 1;
  }
  NodeAccess::markAsPlace(a);
  NodeAccess::markAsPlace(b);
  const _selection chosen = swapped ? _selection{b, bOffset, a, aOffset} : _selection{a, aOffset, b, bOffset};
  if (!append && selections_.size() > 1) eraseSelections();
  if (!append && selections_.size() == 1) {
    *selections_.front() = chosen;
  } else {
    selections_.push_back(new _selection(chosen));
  }
  setUpdateFlag(UPDATE_SELECTION_CHANGED);
}

void Document::eraseSelections() {
  for (_selection* selection : selections_) delete selection;
  selections_.clear();
  setUpdateFlag(UPDATE_SELECTION_CHANGED);
}

bool Document::isSelected(Node* node) {
  if (selections_.empty() || !node) return false;
  if (selections_.size() > 1) {
    for (const _selection* selection : selections_) {
      if (selection->startNode == node) return true;
    }
    return false;
  }
  const _selection& s = *selections_.front();
  if (node == s.startNode || node == s.endNode) return true;
  if (compareNode(s.startNode, node) > 0 || compareNode(s.endNode, node) < 0) return false;
  for (Node* n = node; n->getParentNode(); n = n->getParentNode()) {
    Node* parent = n->getParentNode();
    if (parent == s.startNode && parent->getChildIndex(n) < std::int64_t{s.startOffset}) return false;
    if (parent == s.endNode && parent->getChildIndex(n) >= std::int64_t{s.endOffset}) return false;
  }
  return true;
}

int Document::compareNode(Node* a, Node* b) { return compare(a, b); }

void Document::dropSelectionsInside(Node* top) {
  selections_.remove_if([top](const _selection* selection) {
    if (!selection->startNode->isOffspringOf(top) && !selection->endNode->isOffspringOf(top)) return false;
    delete selection;
    return true;
  });
}

// --- cursor ----------------------------------------------------------------------------------------------------------

void Document::setLayoutCursor(Node* node, int offset) {
  sourceOffset_ = -1;
  if (node && isInTree(node)) {
    if (node->getNodeType() == NODE_TEXT && static_cast<Text*>(node)->getTextType() == Text::TEXT_FORMATTING) {
      Node* parent = node->getParentNode();
      const int index = parent ? parent->getChildIndex(node) : -1;
      if (index >= 0) {
        node = parent;
        offset = index;
      }
    }
    cursorNode_ = node;
    NodeAccess::markAsPlace(node);
    layoutOffset_ = offset;
  }
  if (!(recordFlags_ & kRecordSuspended)) recordFlags_ &= ~unsigned{kRecordInGroup};
}

void Document::getLayoutCursor(Node** node, int* offset) {
  if (node) *node = cursorNode_;
  if (offset) *offset = layoutOffset_ >= 0 ? layoutOffset_ : convertOffsetSource2Layout(cursorNode_, sourceOffset_);
}

void Document::setSourceCursor(Node* node, int offset) {
  layoutOffset_ = -1;
  cursorNode_ = node;
  NodeAccess::markAsPlace(node);
  sourceOffset_ = offset;
}

void Document::getSourceCursor(Node** node, int* offset) {
  if (node) *node = cursorNode_;
  if (offset) *offset = sourceOffset_ >= 0 ? sourceOffset_ : convertOffsetLayout2Source(cursorNode_, layoutOffset_);
}

// --- adjustments -----------------------------------------------------------------------------------------------------

// A child came or went at `index`: places behind it move along; a place right at it stays. An index below 0 is that of
// a node which the parent does not list.
void Document::shiftOffsets(Node* parent, int index, int by) {
  if (index < 0) return;
  if (parent == cursorNode_) {
    if (layoutOffset_ >= 0 && layoutOffset_ > index) layoutOffset_ += by;
    if (sourceOffset_ >= 0 && sourceOffset_ > index) sourceOffset_ += by;
  }
  if (selections_.size() != 1) return;
  _selection& s = *selections_.front();
  auto shift = [&](const Node* node, unsigned& offset) {
    if (node == parent && std::int64_t{offset} > index) offset = static_cast<unsigned>(static_cast<int>(offset) + by);
  };
  shift(s.startNode, s.startOffset);
  shift(s.endNode, s.endOffset);
}

// Whether a place is told by an index in this node. To find an index costs a search, so it is asked for only then.
bool Document::countsIn(const Node* parent) const {
  return parent == cursorNode_ || (selections_.size() == 1 && (parent == selections_.front()->startNode ||
                                                               parent == selections_.front()->endNode));
}

void Document::adjustCursorOnInsert(Node* node) {
  if (!placesCanMove(node) || !node->getParentNode()) return;
  Node* parent = node->getParentNode();
  if (countsIn(parent)) shiftOffsets(parent, parent->getChildIndex(node), 1);
}

void Document::adjustCursorOnRemove(Node* node) {
  if (!placesCanMove(node) || !node->getParentNode()) return;
  Node* parent = node->getParentNode();
  if (countsIn(parent)) shiftOffsets(parent, parent->getChildIndex(node), -1);
  if (selections_.size() < 2) return;
  for (auto it = selections_.begin(); it != selections_.end(); ++it) {
    if ((*it)->startNode != node) continue;
    delete *it;
    selections_.erase(it);
    return;
  }
}

void Document::adjustCursorOnDelete(Node* node) {
  if (!placesCanMove(node)) return;
  // CHOICE: of several selections all that begin or end in the dying subtree go, not only the first that begins at
  // its top: they would be left on dead nodes.
  if (selections_.size() > 1) dropSelectionsInside(node);
  Node* parent = node->getParentNode();
  if (!parent) return;
  // CHOICE: an end of the selection deeper inside goes where the node's own would, as the cursor does.
  const auto dies = [node](Node* place) {
    return place && (place == node || (node->hasChildNodes() && place->isOffspringOf(node)));
  };
  _selection* s = selections_.size() == 1 ? selections_.front() : nullptr;
  const bool cursorDies = dies(cursorNode_);
  const bool startDies = s && dies(s->startNode);
  const bool endDies = s && dies(s->endNode);
  if (!cursorDies && !startDies && !endDies && !countsIn(parent)) return;
  const int index = parent->getChildIndex(node);
  if (index < 0) return;
  shiftOffsets(parent, index, -1);
  NodeAccess::markAsPlace(parent);
  if (cursorDies) {
    cursorNode_ = parent;
    if (layoutOffset_ >= 0) layoutOffset_ = index;
    if (sourceOffset_ >= 0) sourceOffset_ = index;
  }
  if (startDies) {
    s->startNode = parent;
    s->startOffset = static_cast<unsigned>(index);
  }
  if (endDies) {
    s->endNode = parent;
    s->endOffset = static_cast<unsigned>(index);
  }
}

}  // namespace zeldom40
