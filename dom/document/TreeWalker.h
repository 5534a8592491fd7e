// Internal. A walk that survives the edits made on its way and knows what the current node stands in.
#pragma once

#include <array>

#include "dom/tree/Element.h"
#include "dom/tree/Node.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

// Keeps a node over a call that may delete it from its tree.
class HeldNode {
 public:
  explicit HeldNode(Node* node) : node_(node), counted_(NodeAccess::refCount(node) > 0) { node_->addRef(false); }
  HeldNode(const HeldNode&) = delete;
  HeldNode& operator=(const HeldNode&) = delete;
  ~HeldNode() {
    // A host's node that nobody counts yet stays the host's.
    if (counted_) {
      node_->releaseRef(false);
    } else {
      node_->dropRef(false);
    }
  }

 private:
  Node* node_;
  bool counted_;
};

// Pre-order over the subtree of `top`. It counts the elements around the current node by identifier and by group, so
// that a question about ancestors costs the same at any depth. The caller moves it off a node before deleting that.
class TreeWalker {
 public:
  explicit TreeWalker(Node* top) : top_(top), current_(top) {
    for (Node* n = top->getParentNode(); n; n = n->getParentNode()) enter(n, 1);
  }

  Node* current() const { return current_; }
  // Elements around the current node, itself not counted.
  int countOfID(int id) const { return id >= 0 && id < kIDs ? ids_[static_cast<std::size_t>(id)] : 0; }
  int lists() const { return lists_; }
  int preformatted() const { return preformatted_; }

  // Goes to the next node; with `updatedOnly`, to the next that has update flags, as findNextNode does.
  Node* next(bool updatedOnly, bool skipChildren) {
    if (!skipChildren) {
      if (Node* child = firstCounting(current_->getFirstChild(), updatedOnly)) {
        enter(current_, 1);
        return current_ = child;
      }
    }
    while (current_ && current_ != top_) {
      Node* parent = current_->getParentNode();
      if (Node* sibling = firstCounting(NodeAccess::childAfter(current_), updatedOnly)) return current_ = sibling;
      toParent(parent);
    }
    return current_ = nullptr;
  }
  void toParent(Node* parent) {
    current_ = parent;
    if (parent) enter(parent, -1);
  }
  void enterChild(Node* child) {
    enter(current_, 1);
    current_ = child;
  }
  // To another child of the same parent.
  void toSibling(Node* sibling) { current_ = sibling; }

 private:
  static constexpr int kIDs = 136;

  static Node* firstCounting(Node* node, bool updatedOnly) {
    while (node && updatedOnly && node->getUpdateFlag() == 0) node = NodeAccess::childAfter(node);
    return node;
  }
  void enter(const Node* node, int by) {
    if (node->getNodeType() != Node::NODE_ELEMENT) return;
    const auto* element = static_cast<const Element*>(node);
    const int id = element->getElementID();
    if (id >= 0 && id < kIDs) ids_[static_cast<std::size_t>(id)] += by;
    const unsigned long group = element->getElementGroup();
    if (group & GROUP_LIST) lists_ += by;
    if (group & GROUP_PLAIN) preformatted_ += by;
  }

  Node* top_;
  Node* current_;
  std::array<int, kIDs> ids_{};
  int lists_ = 0;
  int preformatted_ = 0;
};

}  // namespace zeldom40
