// Whether a tree is as trees must be: counts, lists and links.
#pragma once

#include <string>
#include <unordered_set>

#include "dom/tree/Node.h"

namespace zeldom40::fuzz {

// The list tells the children; links tell the same where no stray was linked in.
inline std::string childrenHold(Node* parent) {
  if (!parent->hasChildNodes()) return parent->getNumOfChildNodes() == 0 ? std::string() : "a count without children";
  const int count = static_cast<int>(parent->getNumOfChildNodes());
  if (parent->getChildNode(0) != parent->getFirstChild()) return "list and first child disagree";
  if (parent->getChildNode(count - 1) != parent->getLastChild()) return "list and last child disagree";
  for (int i = 0; i < count; ++i) {
    Node* child = parent->getChildNode(i);
    if (child->getParentNode() != parent) return "a child has another parent";
    if (parent->getChildIndex(child) != i) return "a child has another index";
    Node* next = child->getNextSibling();
    if (next && next->getPreviousSibling() != child && next->getParentNode() == parent) return "links disagree";
  }
  return {};
}

// Of the tree below `top` (null: none); its nodes go into `alive`. Returns what is wrong.
inline std::string treeHolds(Node* top, std::unordered_set<const Node*>& alive) {
  if (!top) return {};
  for (Node* n = top;;) {
    if (!alive.insert(n).second) return "a node stands in two places";
    if (n->addRef(false) < 2) return "a node without a reference";
    n->dropRef(false);
    std::string fault = childrenHold(n);
    if (!fault.empty()) return fault;
    if (Node* first = n->hasChildNodes() ? n->getChildNode(0) : nullptr) {
      n = first;
      continue;
    }
    while (n != top && n->getParentNode()->getLastChild() == n) n = n->getParentNode();
    if (n == top) return {};
    Node* parent = n->getParentNode();
    n = parent->getChildNode(parent->getChildIndex(n) + 1);
  }
}

}  // namespace zeldom40::fuzz
