// Internal. Memory for nodes: chunks of one size class, handed out and taken back without a search.
#pragma once

#include <cstddef>

namespace zeldom40 {

// A page is some ten thousand nodes of four sizes that come and go together. Chunks keep them dense and cost a few
// instructions a node. Empty chunks stay in reserve, up to 16 MB, and serve the next page whatever its nodes are: with
// memory that is fresh from the system, a third of the time of a parse went into the system's page faults. What is
// empty beyond that returns to the system. Under AddressSanitizer the ordinary heap serves, so that a use after free is
// seen. One thread at a time, like the tree.
class NodePool {
 public:
  static void* allocate(std::size_t size);
  static void release(void* memory, std::size_t size);
};

// The number of live nodes of the process; tests check that it returns to where it was.
namespace liveNodes {
extern long count;
inline void add() { ++count; }
inline void remove() { --count; }
}  // namespace liveNodes

}  // namespace zeldom40
