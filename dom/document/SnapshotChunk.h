// Internal. What saved states are made of.
#pragma once

#include <cstddef>
#include <cstdint>

#include "dom/tree/Node.h"
#include "dom/tree/PageBuffer.h"
#include "dom/tree/SharedName.h"

namespace zeldom40 {

// A run of siblings with all below them as they were when a state was saved: their code, the pointers that the code
// takes one by one, and further chunks that stand for runs below. Counted; never changed, but for copies of nodes that
// move out of it (see isPlain).
//
// So that a record costs what the edits before it touched, nodes tell what became of them since. A node that is saved
// (Node::saved_) is as it was when it was last coded, with all below it; every change of it, and every child that comes
// or goes, ends that for it and for all around it. The first node of a chunk leads to it. If all siblings of the run
// are still saved, the chunk is the code of them. A run that lost a node shows it at the node before the lost one; one
// that gained a node at that node, for what is inserted is never saved.
class alignas(8) SnapshotChunk {
 public:
  // What a pointer is, in its lowest bits. A chunk counts names, attribute blocks, pages and chunks, and owns copies.
  enum Kind : std::uintptr_t { DEFINITION, BLOCK, NAME, PAGE, DOCUMENT, COPY, CHUNK };
  static constexpr std::uintptr_t kKinds = 7;
  // What is pointed at asks for its alignment by name: where pointers have 32 bits, nothing else would give it.
  static constexpr std::size_t kAlignment = kKinds + 1;
  template <class T>
  static std::uintptr_t tagged(const T* pointer, Kind kind) {
    static_assert(alignof(T) % kAlignment == 0, "the lowest bits of its address tell the kind");
    return reinterpret_cast<std::uintptr_t>(pointer) | kind;
  }
  static std::uintptr_t tagged(const SharedName& name) {
    static_assert(SharedName::kRecordAlignment % kAlignment == 0);
    return reinterpret_cast<std::uintptr_t>(name.share()) | NAME;
  }

  // What decoding begins with.
  struct Source {
    std::int64_t at = 0;  // the byte of the page behind the last slice
    PageBuffer* page = nullptr;
    Document* document = nullptr;
  };

  // One count. Takes over the pointers; a page in `source` is counted.
  static SnapshotChunk* create(const unsigned char* code, std::size_t codeSize, const std::uintptr_t* pointers,
                               std::size_t pointerCount, const Source& source, std::uint32_t weight,
                               std::uint32_t siblings, bool isPlain, bool isGroup);
  void addRef() { ++references_; }
  void release();

  const unsigned char* code() const { return reinterpret_cast<const unsigned char*>(pointers() + pointerCount_); }
  std::size_t codeSize() const { return codeSize_; }
  const std::uintptr_t* pointers() const { return reinterpret_cast<const std::uintptr_t*>(this + 1); }
  std::size_t pointerCount() const { return pointerCount_; }
  Source source() const { return {at_, page_.get(), document_}; }
  // About the number of nodes, a chunk below counting as one.
  std::uint32_t weight() const { return weight_; }
  std::uint32_t siblings() const { return siblings_; }
  // False if it holds a node of which nobody tells changes, as one with metadata: such a chunk leads to nothing and
  // belongs to one state, and the copies in it may move out.
  bool isPlain() const { return isPlain_; }
  // A row of chunks and nothing else. A head leads to the group that begins with it, and if that is given up, to the
  // chunk that the group begins with.
  bool isGroup() const { return isGroup_; }
  bool isShared() const { return references_ > 1; }
  std::size_t bytes() const { return sizeof(*this) + pointerCount_ * sizeof(std::uintptr_t) + codeSize_; }

  // The copy at `pointer` goes to the caller.
  static Node* takeCopy(const std::uintptr_t& pointer);

  // --- the nodes that it was coded from, or that were made from it last ----------------------------------------------
  // Null, or the chunk that `head` leads to.
  static SnapshotChunk* ledBy(const Node* head);
  void setRun(Node* head, Node* last);
  Node* last() const { return last_; }
  void dropHead();
  // A head is about to die.
  static void forgetHead(Node* head);

 private:
  SnapshotChunk() = default;
  ~SnapshotChunk() = default;
  SnapshotChunk* firstOfGroup() const {
    return isGroup_ ? reinterpret_cast<SnapshotChunk*>(pointers()[0] & ~kKinds) : nullptr;
  }
  SnapshotChunk* destroy(SnapshotChunk* others);

  std::uint32_t references_ = 1;
  std::uint32_t weight_ = 0;
  std::uint32_t siblings_ = 0;
  std::uint32_t codeSize_ = 0;
  std::uint32_t pointerCount_ = 0;
  bool isPlain_ = true;
  bool isGroup_ = false;
  std::int64_t at_ = 0;
  PageRef page_;
  Document* document_ = nullptr;
  Node* head_ = nullptr;
  Node* last_ = nullptr;  // may be dead if one of the run is not saved
  SnapshotChunk* nextDead_ = nullptr;
};

}  // namespace zeldom40
