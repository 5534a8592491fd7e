// Internal. A saved state of a tree, small enough to keep ten of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace zeldom40 {

class Document;
class Node;
struct SnapshotChunk;

// Saved states of one document that lie close together share most of what they hold.
using SnapshotChunks = std::vector<std::shared_ptr<SnapshotChunk>>;

// What is untouched in a tree follows from slices of the page: such a node takes some five to ten bytes here where a
// clone takes more than a hundred. Nodes that were edited are kept as clones. The code is cut into chunks at places
// that depend on the nodes around them alone, so two states that differ in one paragraph differ in one chunk and share
// the others.
class TreeSnapshot {
 public:
  TreeSnapshot();
  ~TreeSnapshot();
  TreeSnapshot(TreeSnapshot&&) noexcept;
  TreeSnapshot& operator=(TreeSnapshot&&) noexcept;

  // Saves the tree of `root` (null: no tree). Chunks equal to one of `earlier` are shared with it. `nodes` are looked
  // for on the way: `*indices` receives the pre-order index of each, -1 for null, for the root and for strangers.
  static TreeSnapshot take(Node* root, const TreeSnapshot* earlier, const std::vector<const Node*>& nodes,
                           std::vector<long>* indices);

  // Builds the tree again, each node with one count and without update flags; null if there was none. The clones of
  // edited nodes move into it, so the snapshot is of no more use. `found` receives the nodes at the given pre-order
  // indices, null for a negative one.
  Node* restore(const std::vector<long>& indices, std::vector<Node*>* found);

  // Bytes of heap that this snapshot holds alone, shared chunks left out; for measurements.
  std::size_t ownBytes() const;

 private:
  SnapshotChunks chunks_;
  std::shared_ptr<std::unordered_map<std::uint64_t, std::shared_ptr<SnapshotChunk>>> byHash_;
};

}  // namespace zeldom40
