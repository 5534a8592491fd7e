// Chunks of nodes in size classes.
#include "dom/tree/NodePool.h"

#include <cstdint>
#include <new>

namespace zeldom40 {

namespace liveNodes {
long count = 0;
}

NodePool::Chunk* NodePool::withRoom_[NodePool::kClasses];
NodePool::Chunk* NodePool::reserve_;
std::size_t NodePool::reserved_;

#if defined(ZELDOM40_PLAIN_HEAP)

void* NodePool::allocateAnywhere(std::size_t size) { return ::operator new(size); }
void NodePool::releaseAnywhere(void* memory, std::size_t) { ::operator delete(memory); }

#else

namespace {

constexpr std::size_t kReserve = 256;  // chunks

}  // namespace

void NodePool::enlist(Chunk* chunk) {
  Chunk*& head = withRoom_[chunk->cellClass];
  chunk->prev = nullptr;
  chunk->next = head;
  if (head) head->prev = chunk;
  head = chunk;
  chunk->listed = true;
}

void NodePool::delist(Chunk* chunk) {
  if (chunk->prev) {
    chunk->prev->next = chunk->next;
  } else {
    withRoom_[chunk->cellClass] = chunk->next;
  }
  if (chunk->next) chunk->next->prev = chunk->prev;
  chunk->listed = false;
}

NodePool::Chunk* NodePool::makeChunk(std::size_t cellClass) {
  void* memory = reserve_;
  if (memory) {
    reserve_ = reserve_->next;
    --reserved_;
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

void NodePool::retire(Chunk* chunk) {
  delist(chunk);
  if (reserved_ < kReserve) {
    chunk->next = reserve_;
    reserve_ = chunk;
    ++reserved_;
  } else {
    ::operator delete(chunk, std::align_val_t(kChunkSize));
  }
}

void* NodePool::allocateAnywhere(std::size_t size) {
  if (size > kLargest) return ::operator new(size);
  const std::size_t cellClass = classOf(size);
  Chunk* chunk = withRoom_[cellClass];
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

void NodePool::releaseAnywhere(void* memory, std::size_t size) {
  if (!memory) return;
  if (size > kLargest) {
    ::operator delete(memory);
    return;
  }
  Chunk* const chunk = chunkOf(memory);
  auto* cell = static_cast<FreeCell*>(memory);
  cell->next = chunk->free;
  chunk->free = cell;
  if (!chunk->listed) enlist(chunk);
  if (--chunk->live == 0) retire(chunk);
}

#endif

}  // namespace zeldom40
