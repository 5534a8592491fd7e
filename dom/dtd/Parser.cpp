// Taking and putting back tokens.
#include "dom/dtd/Parser.h"

#include "dom/dtd/Lexer.h"
#include "dom/source/CharHelpers.h"

namespace zeldom40 {

Parser::Parser() = default;
Parser::~Parser() = default;

LexerType::LexToken Parser::advance() {
  current_ = lexer_->nextToken();
  hasCurrent_ = true;
  return current_.kind;
}

void Parser::pushBack() {
  if (hasCurrent_) lexer_->ungetToken(current_);
  hasCurrent_ = false;
}

LexerType::LexToken Parser::peekKind() { return lexer_->peekToken(0).kind; }

const LexRecord& Parser::peekToken(std::size_t n) { return lexer_->peekToken(n); }

int Parser::accept(LexerType::LexToken kind) {
  if (peekKind() != kind) return 0;
  advance();
  return 1;
}

std::string Parser::toUpperName(std::string_view name) {
  std::string upper(name);
  upperCase(upper);
  return upper;
}

void Parser::toUpperName(std::string& name) { upperCase(name); }

std::string_view Parser::text(const LexRecord& token) const { return lexer_->slice(token); }

}  // namespace zeldom40
