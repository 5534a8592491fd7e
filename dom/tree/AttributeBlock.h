// Internal. The attributes of a parsed tag as slices of its page, in one block.
#pragma once

#include <cstdint>
#include <new>
#include <string_view>

#include "dom/tree/PageBuffer.h"

namespace zeldom40 {

class AttributeDefinition;

// Immutable and counted: clones of an element share it. Attribute objects take its place when a host asks for them.
// Its memory is the page's, to the end of the page: that saves a tag with attributes 250 instructions of the heap's.
// Saved states keep a tag in the lowest three bits of its address, as of those of names, pages and nodes.
class alignas(8) AttributeBlock {
 public:
  struct Entry {
    const AttributeDefinition* definition;  // null for an undeclared attribute, whose name is then as written
    Slice name;
    Slice value;
    std::uint32_t error;
  };

  static AttributeBlock* create(const PageRef& page, const Entry* entries, std::size_t count) {
    static_assert(alignof(AttributeBlock) <= PageBuffer::kGrain && alignof(Entry) <= alignof(AttributeBlock));
    void* memory = page.get()->allocate(sizeof(AttributeBlock) + count * sizeof(Entry));
    auto* block = new (memory) AttributeBlock(page, static_cast<std::uint32_t>(count));
    for (std::size_t i = 0; i < count; ++i) new (const_cast<Entry*>(block->begin()) + i) Entry(entries[i]);
    return block;
  }
  void addRef() { ++references_; }
  void release() {
    // The page frees the memory, at once if this was its last user.
    if (--references_ == 0) this->~AttributeBlock();
  }

  std::size_t size() const { return size_; }
  const Entry* begin() const { return reinterpret_cast<const Entry*>(this + 1); }
  const Entry* end() const { return begin() + size_; }
  // The stored name: upper case for a declared attribute, else as written.
  std::string_view nameOf(const Entry& entry) const;
  // The value as written in the source, before the quote rule.
  std::string_view valueOf(const Entry& entry) const { return entry.value.in(page_); }
  const Entry* find(std::string_view name) const {
    for (const Entry& entry : *this) {
      if (nameOf(entry) == name) return &entry;
    }
    return nullptr;
  }

 private:
  AttributeBlock(const PageRef& page, std::uint32_t size) : page_(page), size_(size) {}
  ~AttributeBlock() = default;

  PageRef page_;
  std::uint32_t references_ = 1;
  std::uint32_t size_;
};

}  // namespace zeldom40
