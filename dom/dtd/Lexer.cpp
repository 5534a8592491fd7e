// The token queue of the lexers.
#include "dom/dtd/Lexer.h"

#include <algorithm>

namespace zeldom40 {

namespace {
constexpr std::size_t kFirstQueue = 16;
}

Lexer::Lexer() : ring_(kFirstQueue), mask_(kFirstQueue - 1) {}

Lexer::~Lexer() = default;

void Lexer::grow() {
  std::rotate(ring_.begin(), ring_.begin() + static_cast<std::ptrdiff_t>(head_), ring_.end());
  head_ = 0;
  ring_.resize(2 * ring_.size());
  mask_ = ring_.size() - 1;
}

}  // namespace zeldom40
