// The life of chunks, and which node leads to which.
#include "dom/document/SnapshotChunk.h"

#include <cstring>
#include <new>
#include <utility>

#include "dom/tree/AttributeBlock.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

static_assert(__STDCPP_DEFAULT_NEW_ALIGNMENT__ >= SnapshotChunk::kAlignment, "chunks lie in plain memory");

// Heads and their chunks, searched linearly from a head's own place on. A pointer in each node would cost more than all
// saved states. It goes when it is empty; so a process that ends leaves nothing behind.
class HeadTable {
 public:
  // The chunk of `head`, which has one.
  SnapshotChunk*& of(const Node* head) {
    for (std::size_t i = placeOf(head);; i = next(i)) {
      if (entries_[i].head == head) return entries_[i].chunk;
    }
  }
  void insert(Node* head, SnapshotChunk* chunk) {
    if (used_ * 2 >= size()) grow();
    std::size_t i = placeOf(head);
    while (entries_[i].head) i = next(i);
    entries_[i] = {head, chunk};
    ++used_;
  }
  void remove(const Node* head) {
    std::size_t gap = placeOf(head);
    while (entries_[gap].head != head) gap = next(gap);
    // Those behind move up, unless they stand before their own place then.
    for (std::size_t i = next(gap); entries_[i].head; i = next(i)) {
      const std::size_t own = placeOf(entries_[i].head);
      if (((i - own) & (size() - 1)) < ((i - gap) & (size() - 1))) continue;
      entries_[gap] = entries_[i];
      gap = i;
    }
    entries_[gap] = {};
    if (--used_ == 0) {
      delete[] std::exchange(entries_, nullptr);
      bits_ = 0;
    }
  }

 private:
  struct Entry {
    Node* head = nullptr;
    SnapshotChunk* chunk = nullptr;
  };

  std::size_t size() const { return entries_ ? std::size_t{1} << bits_ : 0; }
  std::size_t next(std::size_t i) const { return (i + 1) & (size() - 1); }
  std::size_t placeOf(const Node* head) const {
    const auto address = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(head)) >> 3;
    return static_cast<std::size_t>(address * 0x9e3779b97f4a7c15u >> (64 - bits_));
  }
  void grow() {
    Entry* const old = entries_;
    const std::size_t oldSize = size();
    bits_ = old ? bits_ + 1 : 4;
    entries_ = new Entry[std::size_t{1} << bits_];
    used_ = 0;
    for (std::size_t i = 0; i < oldSize; ++i) {
      if (old[i].head) insert(old[i].head, old[i].chunk);
    }
    delete[] old;
  }

  Entry* entries_ = nullptr;
  std::size_t used_ = 0;
  unsigned bits_ = 0;
};

HeadTable heads;

}  // namespace

SnapshotChunk* SnapshotChunk::create(const unsigned char* code, std::size_t codeSize, const std::uintptr_t* pointers,
                                     std::size_t pointerCount, const Source& source, std::uint32_t weight,
                                     std::uint32_t siblings, bool isPlain, bool isGroup) {
  const std::size_t pointerBytes = pointerCount * sizeof(std::uintptr_t);
  auto* memory = static_cast<unsigned char*>(::operator new(sizeof(SnapshotChunk) + pointerBytes + codeSize));
  auto* chunk = new (memory) SnapshotChunk;
  chunk->weight_ = weight;
  chunk->siblings_ = siblings;
  chunk->codeSize_ = static_cast<std::uint32_t>(codeSize);
  chunk->pointerCount_ = static_cast<std::uint32_t>(pointerCount);
  chunk->isPlain_ = isPlain;
  chunk->isGroup_ = isGroup;
  chunk->at_ = source.at;
  chunk->page_ = PageRef(source.page);
  chunk->document_ = source.document;
  if (pointerCount) std::memcpy(memory + sizeof(SnapshotChunk), pointers, pointerBytes);
  std::memcpy(memory + sizeof(SnapshotChunk) + pointerBytes, code, codeSize);
  return chunk;
}

void SnapshotChunk::release() {
  if (--references_ != 0) return;
  for (SnapshotChunk* dead = this; dead;) dead = dead->destroy(dead->nextDead_);
}

// Returns the chunks that are to go next: `others` and those that this one held alone.
SnapshotChunk* SnapshotChunk::destroy(SnapshotChunk* others) {
  dropHead();
  for (std::size_t i = 0; i < pointerCount_; ++i) {
    void* pointer = reinterpret_cast<void*>(pointers()[i] & ~kKinds);
    switch (pointers()[i] & kKinds) {
      case BLOCK:
        static_cast<AttributeBlock*>(pointer)->release();
        break;
      case NAME:
        SharedName::adopt(pointer);
        break;
      case PAGE:
        if (pointer) static_cast<PageBuffer*>(pointer)->release();
        break;
      case COPY:
        delete static_cast<Node*>(pointer);
        break;
      case CHUNK: {
        auto* chunk = static_cast<SnapshotChunk*>(pointer);
        if (--chunk->references_ != 0) break;
        chunk->nextDead_ = others;
        others = chunk;
        break;
      }
      default:
        break;
    }
  }
  this->~SnapshotChunk();
  ::operator delete(this);
  return others;
}

Node* SnapshotChunk::takeCopy(const std::uintptr_t& pointer) {
  auto* copy = reinterpret_cast<Node*>(pointer & ~kKinds);
  const_cast<std::uintptr_t&>(pointer) = COPY;
  return copy;
}

SnapshotChunk* SnapshotChunk::ledBy(const Node* head) {
  return NodeAccess::leadsChunk(head) ? heads.of(head) : nullptr;
}

void SnapshotChunk::setRun(Node* head, Node* last) {
  dropHead();
  SnapshotChunk* const first = firstOfGroup();
  SnapshotChunk* former = ledBy(head);
  for (; former && former != first; former = ledBy(head)) former->dropHead();
  if (former) {
    former->head_ = nullptr;
    heads.of(head) = this;
  } else {
    heads.insert(head, this);
    NodeAccess::setLeadsChunk(head, true);
  }
  head_ = head;
  last_ = last;
}

void SnapshotChunk::dropHead() {
  if (!head_) return;
  Node* const head = std::exchange(head_, nullptr);
  SnapshotChunk* const first = firstOfGroup();
  if (first && !first->head_) {
    first->head_ = head;
    heads.of(head) = first;
  } else {
    heads.remove(head);
    NodeAccess::setLeadsChunk(head, false);
  }
}

void SnapshotChunk::forgetHead(Node* head) {
  while (SnapshotChunk* chunk = ledBy(head)) chunk->dropHead();
}

}  // namespace zeldom40
