// The base of the two parsers: one token of a lexer at a time, with look-ahead.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "dom/dtd/LexerType.h"
#include "dom/export.h"

namespace zeldom40 {

class Lexer;

class ZELDOM40_API Parser {
 public:
  virtual ~Parser();
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;

  // Reads up to the token `stop`, which is taken. Returns 0 if it was reached, else -1.
  virtual int parse(LexerType::LexToken stop) = 0;

  // Takes the next token and returns its kind.
  LexerType::LexToken advance();
  // Puts the current token back; there is none then until the next advance.
  void pushBack();
  // The kind of the next token, which stays.
  LexerType::LexToken peekKind();
  // The token with 0-based index `n` ahead, which stays. The reference lives until the next call.
  const LexRecord& peekToken(std::size_t n);
  // If the next token is of that kind, takes it and returns 1; else 0.
  int accept(LexerType::LexToken kind);
  // `a` to `z` raised, no other byte touched.
  static std::string toUpperName(std::string_view name);
  static void toUpperName(std::string& name);

 protected:
  Parser();

  // Text of a token, or "" for one that stands nowhere. Lives until the next token is lexed.
  std::string_view text(const LexRecord& token) const;
  std::string_view currentText() const { return text(current_); }

  std::unique_ptr<Lexer> lexer_;
  LexRecord current_;
  bool hasCurrent_ = false;
};

}  // namespace zeldom40
