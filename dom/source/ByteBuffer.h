// Internal. The growing output buffer of the code conversions.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace zeldom40 {

// Bytes that are closed by a NUL at any time. It starts with 256 bytes and doubles when they are full.
class ByteBuffer {
 public:
  ByteBuffer();
  ByteBuffer(const ByteBuffer&) = delete;
  ByteBuffer& operator=(const ByteBuffer&) = delete;

  void append(unsigned char byte);
  void append(std::string_view bytes);

  // The length in bytes, without the closing NUL.
  size_t size() const { return size_; }
  // The bytes, valid until the next change.
  std::string_view view() const { return {begin_.get(), size_}; }

  // Hands the bytes, closed by a NUL, to the caller and starts anew.
  std::unique_ptr<char[]> detach();

 private:
  // Makes room for `more` bytes and the closing NUL.
  void reserve(size_t more);

  std::unique_ptr<char[]> begin_;
  size_t size_ = 0;
  size_t capacity_ = 0;
};

}  // namespace zeldom40
