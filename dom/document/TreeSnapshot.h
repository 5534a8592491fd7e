// Internal. A saved state of a tree, small enough to keep ten of them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace zeldom40 {

class Node;
class SnapshotChunk;

// The node whose code begins at a byte of a chunk; none if the chunk is null.
struct SnapshotPlace {
  const SnapshotChunk* chunk = nullptr;
  std::size_t at = 0;
};

// What is untouched in a tree follows from slices of the page: such a node takes some five to twenty bytes here where a
// clone takes more than a hundred. A state is a chunk of code that holds chunks that hold chunks; what has not changed
// since the last state is shared with it, and neither coded nor visited.
class TreeSnapshot {
 public:
  static constexpr std::size_t kPlaces = 3;
  using Nodes = std::array<Node*, kPlaces>;
  using Places = std::array<SnapshotPlace, kPlaces>;

  TreeSnapshot() = default;
  ~TreeSnapshot();
  TreeSnapshot(const TreeSnapshot& other);
  TreeSnapshot(TreeSnapshot&& other) noexcept : root_(std::exchange(other.root_, nullptr)) {}
  TreeSnapshot& operator=(TreeSnapshot other) noexcept {
    std::swap(root_, other.root_);
    return *this;
  }

  // Saves the tree of `root` (null: no tree). `places` receives where `nodes` are, none for null, for the root and for
  // strangers.
  static TreeSnapshot take(Node* root, const Nodes& nodes, Places* places);

  // Builds the tree again, each node with one count and without update flags; null if there was none. Copies that
  // belong to this state alone move into it, so it cannot be restored twice. `found` receives the nodes at `places`.
  Node* restore(const Places& places, Nodes* found);

  // Builds the tree for a look at it; the state stays as it is. Counts as of restore.
  Node* copy() const;

  // Bytes of heap that this snapshot holds alone, shared chunks left out; for measurements.
  std::size_t ownBytes() const;

 private:
  explicit TreeSnapshot(SnapshotChunk* root) : root_(root) {}

  SnapshotChunk* root_ = nullptr;
};

}  // namespace zeldom40
