// How a node refers to the source text that it was parsed from.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

namespace zeldom40 {

class PageBuffer;

// One reference on the parser's copy of a page; null until a parser installs one. What it does with the count is the
// library's own affair: a host only carries it about inside of nodes.
class PageRef {
 public:
  PageRef() = default;
  inline explicit PageRef(PageBuffer* buffer);
  inline PageRef(const PageRef& other);
  PageRef(PageRef&& other) noexcept : buffer_(std::exchange(other.buffer_, nullptr)) {}
  PageRef& operator=(PageRef other) noexcept {
    std::swap(buffer_, other.buffer_);
    return *this;
  }
  inline ~PageRef();
  PageBuffer* get() const { return buffer_; }
  explicit operator bool() const { return buffer_ != nullptr; }

 private:
  PageBuffer* buffer_ = nullptr;
};

// A stretch of a page: byte offset and length. Pages of 2 GiB and more are refused at the door, so 32 bits do.
struct Slice {
  std::uint32_t offset = 0;
  std::uint32_t length = 0;

  inline std::string_view in(const PageRef& page) const;
};

}  // namespace zeldom40
