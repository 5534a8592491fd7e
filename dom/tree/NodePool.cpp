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

constexpr std::size_t kReserve = 256;  // chunks

struct FreeCell {
  FreeCell* next;
};

// The head of a chunk, found from a node's address by the chunk's alignment. A chunk with room is in its class's list.
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

Chunk* withRoom[kClasses];
// Empty chunks of no class.
Chunk* reserve;
std::size_t reserved;

void enlist(Chunk* chunk) {
  Chunk*& head = withRoom[chunk->cellClass];
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
    withRoom[chunk->cellClass] = chunk->next;
  }
  if (chunk->next) chunk->next->prev = chunk->prev;
  chunk->listed = false;
}

Chunk* makeChunk(std::size_t cellClass) {
  void* memory = reserve;
  if (memory) {
    reserve = reserve->next;
    --reserved;
  } else {
    memory = ::operator new(kChunkSize, std::align_val_t(kChunkSize));
  }
  auto* chunk = new (memory) Chunk{};
  const std::size_t cellSize = cellClass * kGrain;
  const std::size_t head = (sizeof(Chunk) + 15) / 16 * 16;
  chunk->cellClass = static_cast<std::uint32_t>(cellClass);
  chunk->fresh = static_cast<char*>(memory) + head;
  chunk->last = static_cast<char*>(memory) + kChunkSize - cellSize;
  enlist(chunk);
  return chunk;
}

void retire(Chunk* chunk) {
  delist(chunk);
  if (reserved < kReserve) {
    chunk->next = reserve;
    reserve = chunk;
    ++reserved;
  } else {
    ::operator delete(chunk, std::align_val_t(kChunkSize));
  }
}

}  // namespace

void* NodePool::allocate(std::size_t size) {
  if (size > kLargest) return ::operator new(size);
  const std::size_t cellClass = (size + kGrain - 1) / kGrain;
  Chunk* chunk = withRoom[cellClass];
  if (!chunk) chunk = makeChunk(cellClass);
  ++chunk->live;
  FreeCell* cell = chunk->free;
  if (cell) {
    chunk->free = cell->next;
    if (!cell->next && chunk->fresh > chunk->last) delist(chunk);
    return cell;
  }
  char* fresh = chunk->fresh;
  chunk->fresh = fresh + cellClass * kGrain;
  if (chunk->fresh > chunk->last) delist(chunk);
  return fresh;
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
  if (--chunk->live == 0) retire(chunk);
}

#endif

}  // namespace zeldom40
