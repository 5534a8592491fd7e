// The growing output buffer of the code conversions.
#include "dom/source/ByteBuffer.h"

#include <algorithm>
#include <utility>

namespace zeldom40 {

namespace {

constexpr size_t kFirstCapacity = 256;

}  // namespace

ByteBuffer::ByteBuffer() : begin_(new char[kFirstCapacity]), capacity_(kFirstCapacity) { begin_[0] = 0; }

void ByteBuffer::append(unsigned char byte) {
  reserve(1);
  begin_[size_++] = static_cast<char>(byte);
  begin_[size_] = 0;
}

void ByteBuffer::append(std::string_view bytes) {
  reserve(bytes.size());
  std::copy(bytes.begin(), bytes.end(), begin_.get() + size_);
  size_ += bytes.size();
  begin_[size_] = 0;
}

std::unique_ptr<char[]> ByteBuffer::detach() {
  std::unique_ptr<char[]> first(new char[kFirstCapacity]);
  first[0] = 0;
  first.swap(begin_);
  size_ = 0;
  capacity_ = kFirstCapacity;
  return first;
}

void ByteBuffer::reserve(size_t more) {
  if (more < capacity_ - size_) return;
  const size_t capacity = std::max(capacity_ * 2, size_ + more + 1);
  std::unique_ptr<char[]> grown(new char[capacity]);
  std::copy(begin_.get(), begin_.get() + size_, grown.get());
  begin_ = std::move(grown);
  capacity_ = capacity;
}

}  // namespace zeldom40
