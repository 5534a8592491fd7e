// Internal. The base of the lexers: the queue of tokens that were looked at ahead of their use.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "dom/dtd/LexerType.h"

namespace zeldom40 {

// A source of tokens. Tokens are values in a ring: taking one and putting one back cost the same wherever the queue
// stands, looking ahead over a whole page costs its length once, and no token is allocated by itself.
class Lexer {
 public:
  virtual ~Lexer();
  Lexer(const Lexer&) = delete;
  Lexer& operator=(const Lexer&) = delete;

  // Appends at least one token to the queue; at the end of the text LEX_EOF, as often as it is asked.
  // The result tells whether a construct ran off the text (-1) or not (0).
  virtual int lex() = 0;
  // Whether `word` stands at the position.
  virtual bool matchAt(std::string_view word) = 0;
  // The byte at the position, NUL at the end; steps past it if `consume`.
  virtual char nextChar(bool consume) = 0;
  // The text from byte `start` up to `end`, cut to what there is; "" when `start` lies outside. It lives until more is
  // lexed.
  virtual std::string_view slice(std::uint32_t start, std::uint32_t end) const = 0;
  std::string_view slice(const LexRecord& token) const { return slice(token.start, token.end); }

  // Takes the oldest token off the queue.
  LexRecord nextToken() {
    while (count_ == 0) lex();
    const LexRecord token = ring_[head_];
    head_ = (head_ + 1) & mask_;
    --count_;
    return token;
  }
  // The token with 0-based index `n` ahead, which stays. The reference lives until more is lexed or put back.
  const LexRecord& peekToken(std::size_t n) {
    while (count_ <= n) lex();
    return ring_[(head_ + n) & mask_];
  }
  // Puts a token in front of the queue.
  void ungetToken(const LexRecord& token) {
    if (count_ > mask_) grow();
    head_ = (head_ - 1) & mask_;
    ring_[head_] = token;
    ++count_;
  }

  // The number of tokens that were lexed and not taken.
  std::size_t queued() const { return count_; }
  std::uint32_t line() const { return line_; }

 protected:
  Lexer();

  // Appends a token to the queue.
  void addToken(LexerType::LexToken kind, std::uint32_t start, std::uint32_t end, std::uint32_t value = 0) {
    if (count_ > mask_) grow();
    ring_[(head_ + count_) & mask_] = LexRecord{kind, start, end, end - start, line_, value};
    ++count_;
  }
  // Forgets the queued tokens; for a lexer that goes back in its text.
  void clearQueue() { count_ = 0; }

  std::uint32_t line_ = 1;

 private:
  void grow();

  std::vector<LexRecord> ring_;  // its size is a power of two
  std::size_t mask_;
  std::size_t head_ = 0;
  std::size_t count_ = 0;
};

}  // namespace zeldom40
