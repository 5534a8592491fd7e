// Walks a child list or a list of search results.
#pragma once

#include <vector>

#include "dom/export.h"

namespace zeldom40 {

class Node;

// A position in a list of nodes. Over a node's children the list is live: it grows and shrinks with the node, and is
// empty once the node is gone. Over search results the list is a copy, whose nodes are not held.
class ZELDOM40_API NodeIterator {
 public:
  // Over an empty list.
  NodeIterator();
  // Shares the other's list; the position starts at 0.
  NodeIterator(const NodeIterator& other);
  // Shares the other's list; KEPT: the position of this iterator stays what it was.
  NodeIterator& operator=(const NodeIterator& other);
  ~NodeIterator();

  // Number of nodes; -1 when there is no list.
  int getLength() const;
  // The node at the position, null when it is out of range. Borrowed, as all results here.
  Node* getCurrent() const;
  bool atFirst() const { return position_ == 0; }
  bool atLast() const { return position_ == getLength() - 1; }
  // Step and return the new node; null at the end (the start), where the position stays.
  Node* toNextNode();
  Node* toPrevNode();
  // Move to an end; null on an empty list.
  Node* toFirstNode();
  Node* toLastNode();
  // Moves to a 0-based index; null, without moving, if it is out of range.
  Node* moveTo(int index);
  Node* toNth(int index) { return moveTo(index); }
  // replaceChild(current, replacement) on the node whose children these are; null for search results.
  Node* toNode(Node* replacement);

 private:
  friend class Node;
  friend struct NodeAccess;
  NodeIterator(struct ChildListHolder* holder, Node* owner);
  // Over results: takes the list over; null gives an empty one.
  explicit NodeIterator(std::vector<Node*>* results);

  const class ChildIndex* list() const;

  Node* owner_ = nullptr;
  int position_ = 0;
  struct ChildListHolder* holder_ = nullptr;
};

}  // namespace zeldom40
