// Internal. Memory for nodes: chunks of one size class, handed out and taken back without a search.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SANITIZE_ADDRESS__)
#define ZELDOM40_PLAIN_HEAP 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZELDOM40_PLAIN_HEAP 1
#endif
#endif

namespace zeldom40 {

// A page is some ten thousand nodes of four sizes that come and go together. Chunks keep them dense and cost a few
// instructions a node. Empty chunks stay in reserve, up to 16 MB, and serve the next page whatever its nodes are: with
// memory that is fresh from the system, a third of the time of a parse went into the system's page faults. What is
// empty beyond that returns to the system. Under AddressSanitizer the ordinary heap serves, so that a use after free is
// seen. One thread at a time, like the tree.
class NodePool {
 public:
  // The alignment of what it hands out.
  static constexpr std::size_t kGrain = 8;

  static void* allocate(std::size_t size) {
    Chunk* const chunk = size <= kLargest ? withRoom_[classOf(size)] : nullptr;
    if (!chunk) return allocateAnywhere(size);
    // The last cell of a chunk is none for here: the chunk leaves its list with it.
    if (FreeCell* const cell = chunk->free) {
      if (!cell->next) return allocateAnywhere(size);
      chunk->free = cell->next;
      ++chunk->live;
      return cell;
    }
    char* const fresh = chunk->fresh;
    if (fresh + classOf(size) * kGrain > chunk->last) return allocateAnywhere(size);
    ++chunk->live;
    chunk->fresh = fresh + classOf(size) * kGrain;
    return fresh;
  }
  static void release(void* memory, std::size_t size) {
#if !defined(ZELDOM40_PLAIN_HEAP)
    if (memory && size <= kLargest) {
      Chunk* const chunk = chunkOf(memory);
      if (chunk->listed && chunk->live > 1) {
        auto* const cell = static_cast<FreeCell*>(memory);
        cell->next = chunk->free;
        chunk->free = cell;
        --chunk->live;
        return;
      }
    }
#endif
    releaseAnywhere(memory, size);
  }

 private:
  static constexpr std::size_t kLargest = 256;
  static constexpr std::size_t kClasses = kLargest / kGrain + 1;
  static constexpr std::size_t kChunkSize = 64 * 1024;

  struct FreeCell {
    FreeCell* next;
  };
  // The head of a chunk, found from a node's address by the chunk's alignment. A chunk with room is in its class's
  // list.
  struct Chunk {
    Chunk* next;
    Chunk* prev;
    FreeCell* free;
    char* fresh;  // cells from here on were never used
    char* last;   // where the last cell that fits begins
    std::uint32_t live;
    std::uint32_t cellClass;
    bool listed;
  };

  static std::size_t classOf(std::size_t size) { return (size + kGrain - 1) / kGrain; }
  static Chunk* chunkOf(void* memory) {
    return reinterpret_cast<Chunk*>(static_cast<char*>(memory) - reinterpret_cast<std::uintptr_t>(memory) % kChunkSize);
  }
  static void* allocateAnywhere(std::size_t size);
  static void releaseAnywhere(void* memory, std::size_t size);
  static void enlist(Chunk* chunk);
  static void delist(Chunk* chunk);
  static Chunk* makeChunk(std::size_t cellClass);
  static void retire(Chunk* chunk);

  static Chunk* withRoom_[kClasses];
  // Empty chunks of no class.
  static Chunk* reserve_;
  static std::size_t reserved_;
};

// The number of live nodes of the process; tests check that it returns to where it was.
namespace liveNodes {
extern long count;
inline void add() { ++count; }
inline void remove() { --count; }
}  // namespace liveNodes

}  // namespace zeldom40
