// Internal. The parser's copy of a page, kept as long as a node refers to a stretch of it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dom/source/MarkedText.h"
#include "dom/tree/PageSlice.h"

namespace zeldom40 {

// Counted bytes. Raw tags and texts of untouched nodes are slices of it, so that opening and saving a page copies each
// byte once in and once out.
class alignas(8) PageBuffer {
 public:
  // The first `count` entities that a document type was given.
  class Entities : public EntityTable {
   public:
    Entities(const EntityTable* all, std::size_t count) : all_(all), count_(count) {}
    bool find(std::string_view name, EntityText& out) const override {
      return all_ && all_->find(name, out) && out.order < count_;
    }

   private:
    const EntityTable* all_;
    std::size_t count_;
  };

  // `entities` are those of the page's document type, `count` of them so far; they outlive every document.
  static PageBuffer* create(std::string_view text, const EntityTable* entities, std::size_t count) {
    return new PageBuffer(text, entities, count);
  }
  void addRef() { ++count_; }
  void release() {
    if (--count_ == 0) delete this;
  }
  std::string_view text() const { return text_; }
  // Memory for what belongs to the page and goes with it, in cells of kGrain bytes and so aligned.
  static constexpr std::size_t kGrain = 8;
  void* allocate(std::size_t bytes) {
    static_assert(kGrain >= alignof(void*) && kGrain <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
    bytes = (bytes + kGrain - 1) / kGrain * kGrain;
    if (bytes > room_) addStretch(bytes);
    void* memory = fresh_;
    fresh_ += bytes;
    room_ -= bytes;
    return memory;
  }
  // The page itself declared entities: from byte `offset` on there are `count`.
  void setEntityCount(std::uint32_t offset, std::size_t count) { counts_.emplace_back(offset, count); }
  // What a reference at byte `offset` could mean when the page was parsed. Plain forms are assembled later, when other
  // pages may have declared more.
  Entities entitiesAt(std::uint32_t offset) const {
    std::size_t count = 0;
    for (const auto& [from, known] : counts_) {
      if (from <= offset) count = known;
    }
    return {entities_, count};
  }
  // From byte `offset` on CDATA sections are read, or no longer.
  void switchSections(std::uint32_t offset) { sectionSwitches_.push_back(offset); }
  bool readsSectionsAt(std::uint32_t offset) const {
    const auto behind = std::upper_bound(sectionSwitches_.begin(), sectionSwitches_.end(), offset);
    return (behind - sectionSwitches_.begin()) % 2 != 0;
  }

 private:
  PageBuffer(std::string_view text, const EntityTable* entities, std::size_t count) : text_(text), entities_(entities) {
    setEntityCount(0, count);
  }
  ~PageBuffer() = default;
  void addStretch(std::size_t bytes) {
    constexpr std::size_t kSmallest = 512;
    constexpr std::size_t kLargest = 32 << 10;
    room_ = std::max(bytes, std::min(kSmallest << std::min<std::size_t>(stretches_.size(), 6), kLargest));
    stretches_.push_back(std::make_unique_for_overwrite<char[]>(room_));
    fresh_ = stretches_.back().get();
  }

  std::string text_;
  const EntityTable* entities_;
  std::vector<std::pair<std::uint32_t, std::size_t>> counts_;  // by offset; one but for a page with a subset
  std::vector<std::uint32_t> sectionSwitches_;                 // by offset; none but for a page with script elements
  std::size_t count_ = 1;
  std::vector<std::unique_ptr<char[]>> stretches_;
  char* fresh_ = nullptr;
  std::size_t room_ = 0;
};

inline PageRef::PageRef(PageBuffer* buffer) : buffer_(buffer) {
  if (buffer_) buffer_->addRef();
}
inline PageRef::PageRef(const PageRef& other) : PageRef(other.buffer_) {}
inline PageRef::~PageRef() {
  if (buffer_) buffer_->release();
}

inline std::string_view Slice::in(const PageRef& page) const {
  return length ? page.get()->text().substr(offset, length) : std::string_view();
}

}  // namespace zeldom40
