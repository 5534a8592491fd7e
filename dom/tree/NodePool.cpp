// Chunks of nodes in size classes.
#include "dom/tree/NodePool.h"

#include <cstdint>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define ZELDOM40_PLAIN_HEAP 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZELDOM40_PLAIN_HEAP 1
#endif
#endif

namespace zeldom40 {

namespace liveNodes {
long count = 0;
}

#if defined(ZELDOM40_PLAIN_HEAP)

void* NodePool::allocate(std::size_t size) { return ::operator new(size); }
void NodePool::release(void* memory, std::size_t) { ::operator delete(memory); }

#else

namespace {

constexpr std::size_t kChunkSize = 64 * 1024;
constexpr std::size_t kGrain = 8;
constexpr std::size_t kLargest = 256;
constexpr std::size_t kClasses = kLargest / kGrain + 1;

struct FreeCell {
  FreeCell* next;
};

// The head of a chunk, found from a node's address by the chunk's alignment. A chunk with room is in its class's list.
struct Chunk {
  Chunk* next;
  Chunk* prev;
  FreeCell* free;
  char* fresh;  // cells from here on were never used
  std::uint32_t live;
  std::uint32_t cellSize;
  bool listed;

  char* end() { return reinterpret_cast<char*>(this) + kChunkSize; }
  bool hasRoom() { return free || fresh + cellSize <= end(); }
};

Chunk* withRoom[kClasses];

void enlist(Chunk* chunk) {
  Chunk*& head = withRoom[chunk->cellSize / kGrain];
  chunk->prev = nullptr;
  chunk->next = head;
  if (head) head->prev = chunk;
  head = chunk;
  chunk->listed = true;
}

void delist(Chunk* chunk) {
  if (chunk->prev) {
    chunk->prev->next = chunk->next;
  } else {
    withRoom[chunk->cellSize / kGrain] = chunk->next;
  }
  if (chunk->next) chunk->next->prev = chunk->prev;
  chunk->listed = false;
}

Chunk* makeChunk(std::size_t cellSize) {
  void* memory = ::operator new(kChunkSize, std::align_val_t(kChunkSize));
  auto* chunk = new (memory) Chunk{};
  chunk->cellSize = static_cast<std::uint32_t>(cellSize);
  const std::size_t head = (sizeof(Chunk) + 15) / 16 * 16;
  chunk->fresh = static_cast<char*>(memory) + head;
  enlist(chunk);
  return chunk;
}

}  // namespace

void* NodePool::allocate(std::size_t size) {
  if (size > kLargest) return ::operator new(size);
  const std::size_t cellSize = (size + kGrain - 1) / kGrain * kGrain;
  Chunk* chunk = withRoom[cellSize / kGrain];
  if (!chunk) chunk = makeChunk(cellSize);
  void* cell = chunk->free;
  if (cell) {
    chunk->free = chunk->free->next;
  } else {
    cell = chunk->fresh;
    chunk->fresh += cellSize;
  }
  ++chunk->live;
  if (!chunk->hasRoom()) delist(chunk);
  return cell;
}

void NodePool::release(void* memory, std::size_t size) {
  if (!memory) return;
  if (size > kLargest) {
    ::operator delete(memory);
    return;
  }
  auto* chunk =
      reinterpret_cast<Chunk*>(static_cast<char*>(memory) - reinterpret_cast<std::uintptr_t>(memory) % kChunkSize);
  auto* cell = static_cast<FreeCell*>(memory);
  cell->next = chunk->free;
  chunk->free = cell;
  if (!chunk->listed) enlist(chunk);
  // One empty chunk a class stays as a reserve; it would otherwise come and go with a single node.
  if (--chunk->live == 0 && (chunk->next || chunk->prev)) {
    delist(chunk);
    ::operator delete(chunk, std::align_val_t(kChunkSize));
  }
}

#endif

}  // namespace zeldom40
