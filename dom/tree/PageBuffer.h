// The parser's copy of a page, kept as long as a node refers to a stretch of it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace zeldom40 {

class EntityTable;

// Counted bytes. Raw tags and texts of untouched nodes are slices of it, so that opening and saving a page copies each
// byte once in and once out.
class PageBuffer {
 public:
  // `entities` are those of the page's document type; they outlive every document.
  static PageBuffer* create(std::string_view text, const EntityTable* entities) {
    return new PageBuffer(text, entities);
  }
  void addRef() { ++count_; }
  void release() {
    if (--count_ == 0) delete this;
  }
  std::string_view text() const { return text_; }
  const EntityTable* entities() const { return entities_; }

 private:
  PageBuffer(std::string_view text, const EntityTable* entities) : text_(text), entities_(entities) {}
  ~PageBuffer() = default;
  std::string text_;
  const EntityTable* entities_;
  std::size_t count_ = 1;
};

// One reference on a page buffer; null until a parser installs one.
class PageRef {
 public:
  PageRef() = default;
  explicit PageRef(PageBuffer* buffer) : buffer_(buffer) {
    if (buffer_) buffer_->addRef();
  }
  PageRef(const PageRef& other) : PageRef(other.buffer_) {}
  PageRef(PageRef&& other) noexcept : buffer_(std::exchange(other.buffer_, nullptr)) {}
  PageRef& operator=(PageRef other) noexcept {
    std::swap(buffer_, other.buffer_);
    return *this;
  }
  ~PageRef() {
    if (buffer_) buffer_->release();
  }
  PageBuffer* get() const { return buffer_; }
  explicit operator bool() const { return buffer_ != nullptr; }

 private:
  PageBuffer* buffer_ = nullptr;
};

// A stretch of a page buffer: byte offset and length. Pages of 2 GiB and more are refused at the door, so 32 bits do.
struct Slice {
  std::uint32_t offset = 0;
  std::uint32_t length = 0;

  std::string_view in(const PageRef& page) const {
    return length ? page.get()->text().substr(offset, length) : std::string_view();
  }
};

}  // namespace zeldom40
