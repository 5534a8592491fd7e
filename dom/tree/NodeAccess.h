// Internal. What the library's own classes may do to a node beyond its public interface, and the walks that they use.
#pragma once

#include <utility>
#include <vector>

#include "dom/tree/ChildIndex.h"
#include "dom/tree/Node.h"
#include "dom/tree/NodeIterator.h"
#include "dom/tree/NodePool.h"

namespace zeldom40 {

class Element;

// A child list by index, shared by its node and the iterators over it.
struct ChildListHolder {
  ChildIndex list;
  Node* last = nullptr;  // of the node
  int count = 1;
};

// Sibling and child links are the truth about a tree, so that a leaf costs nothing and moving a run costs nothing. The
// list by index is made by the first question about indices and kept in step while such questions come. Two calls
// (isolate on an attached node, replaceChild) leave links that no longer tell the list; its parent then asks the list
// (`listIsTruth_`).
struct NodeAccess {
  // --- plain fields -------------------------------------------------------------------------------------------------
  static void setName(Node* node, const SharedName& name);
  static const SharedName& sharedName(const Node* node) { return node->kind_ ? node->kind_->name : NodeKind::noName(); }
  static int refCount(const Node* node) { return node->refCount_; }
  static void addCount(Node* node) { ++node->refCount_; }
  static unsigned long flags(const Node* node) { return node->updateFlags_; }
  static void addFlags(Node* node, unsigned long flags) { node->updateFlags_ |= static_cast<std::uint16_t>(flags); }
  // The way up from a visual that metadata keeps aside.
  static void setParent(Node* node, Node* parent) { node->parent_ = parent; }
  static void addError(Node* node, unsigned long bits) {
    if (~node->error_ & static_cast<std::uint32_t>(bits)) node->noteChange();
    node->error_ |= static_cast<std::uint32_t>(bits);
  }
  static void markAsPlace(Node* node) {
    if (node) node->place_ = true;
  }
  // For deleteNodes: every node below `top`, which has left its tree, learns that it left, and each of the subtree
  // loses one reference. What nobody else holds dies.
  static void releaseRemoved(Node* top);
  static void releaseOwned(Node* node, bool held = false) { node->releaseOwned(held); }

  // --- saved states (SnapshotChunk.h)
  // ---------------------------------------------------------------------------------
  static void noteChange(Node* node) { node->noteChange(); }
  static bool isSaved(const Node* node) { return node->saved_; }
  static void markSaved(Node* node) { node->saved_ = true; }
  static bool leadsChunk(const Node* node) { return node->leadsChunk_; }
  static void setLeadsChunk(Node* node, bool leads) { node->leadsChunk_ = leads; }
  static bool mayBePlace(const Node* node) { return node->place_; }
  // Whether the sibling links of the children tell their order.
  static bool linksAreTrue(const Node* parent) { return !parent->listIsTruth_; }

  // --- edits and metadata (MetaDataMarks.cpp) -----------------------------------------------------------------------
  // `node` or what it holds is being edited: the metadata of it and of all elements around it becomes stale. Each node
  // climbs once, until forgetEdits.
  static void noteEdit(Node* node);
  // Metadata of `top` is current again: edits in its subtree count from here on.
  static void forgetEdits(Node* top);
  // The next node on the way up: from a MetaData that belongs to an element on to that element.
  static Node* above(const Node* node) {
    return node->nodeType_ == Node::NODE_META_DATA ? aboveMetaData(node) : node->parent_;
  }
  // Whether `ancestor` is `node` or holds it, in a visual too.
  static bool isAtOrAbove(const Node* ancestor, const Node* node) {
    while (node && node != ancestor) node = above(node);
    return node != nullptr;
  }
  // The metadata of `element`, which has some, is stale, unless a parse is sorting out its nodes.
  static void makeStale(Element* element);
  // Raises a flag as setUpdateFlag does, for a change that is no edit of the page.
  static void raiseFlag(Node* node, unsigned long flag, bool isBelowFlagged = false);
  // The same for a parsed node, whose first ancestor as a rule knows already. Not for UPDATE_ADDED.
  static void raiseParsed(Node* node, unsigned long flag) {
    if (node->parent_ && (node->parent_->updateFlags_ & Node::UPDATE_CHILD_MODIFIED)) {
      addFlags(node, flag);
    } else {
      raiseFlag(node, flag);
    }
  }

  // --- walks --------------------------------------------------------------------------------------------------------
  // The children in order; strays that only their sibling links connect are not met.
  static Node* childAfter(const Node* child) {
    const Node* parent = child->parent_;
    return parent && parent->listIsTruth_ ? childAfterByList(child) : child->next_;
  }
  // For a walk that knows the parent.
  static Node* childAfter(const Node* child, const Node* parent) {
    return parent->listIsTruth_ ? childAfterByList(child) : child->next_;
  }
  static Node* childBefore(const Node* child) {
    const Node* parent = child->parent_;
    return parent && parent->listIsTruth_ ? childBeforeByList(child) : child->prev_;
  }
  // Pre-order successor inside the subtree of `top`, null at its end.
  static Node* nextInSubtree(const Node* node, const Node* top) {
    Node* const first = node->getFirstChild();
    return first ? first : nextSkippingChildren(node, top);
  }
  // The same without entering `node`.
  static Node* nextSkippingChildren(const Node* node, const Node* top) {
    for (; node && node != top; node = node->parent_) {
      if (Node* sibling = childAfter(node)) return sibling;
    }
    return nullptr;
  }

  // --- building -----------------------------------------------------------------------------------------------------
  // Appends an unattached node with the flags of insertLast, without undo record.
  static void append(Node* parent, Node* child);
  // The same for a node that a parse has just made.
  static void appendParsed(Node* parent, Node* child) {
    // A parent of the same parse that has no list by index: its ancestors know of it, and no metadata can be concerned.
    if ((!child->isLeaf() && child->links_.branch.first) || parent->isLeaf() || parent->hasList_ ||
        parent->refCount_ > 0 || parent->saved_ || !(parent->updateFlags_ & Node::UPDATE_ADDED)) {
      append(parent, child);
      return;
    }
    child->updateFlags_ |= Node::UPDATE_ADDED;
    child->parent_ = parent;
    Node::Branch& branch = parent->links_.branch;
    if (Node* left = branch.last) {
      left->updateFlags_ |= Node::UPDATE_SIBLING_CHANGED;
      child->updateFlags_ |= Node::UPDATE_SIBLING_CHANGED;
      left->next_ = child;
      child->prev_ = left;
    } else {
      branch.first = child;
    }
    branch.last = child;
  }
  // Inserts a run, as the insertion calls do, of which is known that it holds no ancestor of `parent`: those calls
  // climb to the top to find out. No undo record. Behind or before `ref`, a child; null means last.
  // `again`: a node that was inserted so a moment ago and taken out, whose subtree has its flags; a node that climbs
  // would have all its children flagged at each level.
  static void insertFree(Node* parent, Node* head, Node* ref, bool behindRef, bool again = false);
  // Detaches the children from `first` to `last` and returns them as a run: no record, no cursor, no flags.
  static Node* detachRange(Node* parent, Node* first, Node* last);
  // Detaches one child with the flags of removeChild, without record or cursor work.
  static void detach(Node* child);
  // Links a node of a restored tree below its parent, without any flags.
  static void attachRestored(Node* parent, Node* child) {
    if (Node* left = parent->getLastChild()) {
      left->next_ = child;
      child->prev_ = left;
    } else {
      setFirst(parent, child);
    }
    setLast(parent, child);
    child->parent_ = parent;
  }
  // One more child for a node whose children are about to be destroyed with it.
  static void hangOnDying(Node* parent, Node* child) {
    if (ChildListHolder* list = listOf(parent)) list->list.append(child);
    attachRestored(parent, child);
  }
  static void clearFlags(Node* node) { node->updateFlags_ = 0; }
  // Links a clone below its parent clone; the flags are what the insertion calls would have left.
  static void adoptClone(Node* parent, Node* child);

  // Asked for because somebody needs an index.
  static const ChildIndex& childList(const Node* node) {
    ChildIndex& list = holder(node)->list;
    list.settle();
    return list;
  }
  static NodeIterator makeResults(std::vector<Node*>* results) { return NodeIterator(results); }

 private:
  friend class Node;
  // Who inserts: a host, whose nodes may be anything; the library a single node, a run, or one node that it has just
  // inserted elsewhere.
  enum Insertion { BY_HOST, OF_ONE, OF_RUN, AGAIN };
  static ChildListHolder* holder(const Node* node);
  // Null while there is none.
  static ChildListHolder* listOf(const Node* node) { return node->hasList_ ? node->branch().list : nullptr; }
  static Node::Branch& ownBranch(const Node* node) {
    return node->isLeaf() ? ownBranchOfLeaf(node) : node->links_.branch;
  }
  static Node::Branch& ownBranchOfLeaf(const Node* node);
  static void setFirst(Node* parent, Node* child) { ownBranch(parent).first = child; }
  static void setLast(Node* parent, Node* child) {
    (parent->hasList_ ? listOf(parent)->last : ownBranch(parent).last) = child;
  }
  static Node* childAfterByList(const Node* child);
  static Node* childBeforeByList(const Node* child);
  static std::size_t indexInList(const Node* child);
  static void setNext(Node* node, Node* next);
  static void setPrev(Node* node, Node* prev);
  static void join(Node* left, Node* right);
  static void link(Node* left, Node* right);
  static Node* aboveMetaData(const Node* node);
  static void trustList(Node* parent);
  static void tireOfList(Node* parent);
  static Node* insertRun(Node* parent, Node* head, Node* left, Node* right, Node* ref, bool behindRef, Insertion how);
  static void noteLoss(Node* parent, Node* before, Node* child);
  static void unlinkChild(Node* parent, Node* child);
  static bool movesPlaces(const Node* parent);
  static void drain(Node* top, bool removed);
  static void tellRemoved(Node* top, bool alsoTop);
  static bool isLastOfRoot(const Node* node);
  static bool isChildKind(Node* node);
  static bool isTopAbove(const Node* node, const Node* parent, const Node*& top);
  static bool isOfDocument(const Node* node, const Node* parent);
  static bool holdsNodes(const Node* node);
  static std::pair<Node*, Node*> takeChildren(Node* node);
  static std::pair<Node*, Node*> takeListedChildren(Node* node);
  static bool ownsMore(const Node* node);
  static void cutLoose(Node* node);
  static std::size_t sizeOfPlain(const Node* node);
  static void dismantle(Node* node, std::size_t size);
};

inline Node::Node(Parsed, NodeType type, NodeKind* kind, unsigned flags)
    : kind_(kind),
      links_(isLeafType(type) ? Links{.leaf = {}} : Links{.branch = {}}),
      updateFlags_(static_cast<std::uint16_t>(flags)),
      nodeType_(static_cast<std::uint8_t>(type)) {
  liveNodes::add();
}

}  // namespace zeldom40
