// Internal. A list of nodes by index that stays cheap while nodes come and go in its middle.
#pragma once

#include <cstddef>
#include <vector>

namespace zeldom40 {

class Node;

// Pieces of up to kMost nodes, each knowing the index of its first: a node that comes moves the nodes of one piece, and
// the numbers of the pieces behind it. Plain vectors moved a megabyte for each node that came before 100,000 siblings.
//
// The place that was used last is remembered. A search begins there and goes both ways, so that the index of a node
// that was just asked for by its index, or was just inserted, is found at once.
class ChildIndex {
 public:
  ChildIndex() = default;
  explicit ChildIndex(const std::vector<Node*>& nodes) { insert(0, nodes); }

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  // The index is below the size.
  Node* operator[](std::size_t index) const {
    const std::size_t piece = pieceOf(index);
    last_ = index;
    return pieces_[piece].nodes[index - pieces_[piece].start];
  }
  Node* front() const { return pieces_.front().nodes.front(); }
  Node* back() const { return pieces_.back().nodes.back(); }
  // The index of a node, size() if it is not there.
  std::size_t find(const Node* node) const;
  void append(Node* node);
  // The first of the nodes comes to stand at `index`, which is at most the size.
  void insert(std::size_t index, const std::vector<Node*>& nodes);
  // `count` nodes from `index` on go; so many are there.
  void erase(std::size_t index, std::size_t count);
  void clear();

  // About how many nodes were passed by or moved since settle() was called.
  std::size_t effort() const { return effort_; }
  void settle() { effort_ = 0; }

 private:
  static constexpr std::size_t kMost = 512;

  struct Piece {
    std::size_t start;
    std::vector<Node*> nodes;  // never empty
  };

  // The piece with that index, or, for the size, the last piece.
  std::size_t pieceOf(std::size_t index) const;
  void cut(std::size_t piece);
  void number(std::size_t piece);

  std::vector<Piece> pieces_;
  std::size_t size_ = 0;
  mutable std::size_t effort_ = 0;
  mutable std::size_t last_ = 0;       // the index that was used last
  mutable std::size_t lastPiece_ = 0;  // and its piece; both may be out of range
};

}  // namespace zeldom40
