// Internal. Cuts page text into tokens.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "dom/dtd/Lexer.h"
#include "dom/dtd/ParserType.h"
#include "dom/tree/PageBuffer.h"

namespace zeldom40 {

// Every token keeps its place in the source, so that any stretch of raw text can be cut again. There is no text mode
// and no tag mode: the token stream is the same everywhere, and all context is the parser's. It works on single bytes;
// a trail byte of a double-byte character that equals a delimiter ends a name.
class HTMLLexer : public Lexer {
 public:
  static constexpr std::uint32_t NO_POSITION = LexRecord::NO_POSITION;

  // Takes a copy of the text, the only one that a parse makes. `frame` may be null: no entity is known then.
  HTMLLexer(const char* text, std::size_t length, ParserType::_dtd_frame* frame);
  // Over a page that was parsed before, to read stretches of it again.
  HTMLLexer(const PageRef& page, ParserType::_dtd_frame* frame);
  ~HTMLLexer() override;

  int lex() override;
  // Ignores case: `word` is upper case.
  bool matchAt(std::string_view word) override;
  char nextChar(bool consume) override;
  std::string_view slice(std::uint32_t start, std::uint32_t end) const override;
  using Lexer::slice;

  // Whether "![CDATA[" opens a CDATA section, from byte `offset` on.
  void setCDATAEnabled(bool on, std::uint32_t offset) {
    if (cdataEnabled_ != on) page_.get()->switchSections(offset);
    cdataEnabled_ = on;
  }

  const PageRef& page() const { return page_; }
  std::string_view text() const { return text_; }
  std::uint32_t length() const { return static_cast<std::uint32_t>(text_.size()); }
  // Where the next token will be cut; of use only while no token is queued.
  std::uint32_t position() const { return position_; }
  // Passes over a stretch that the parser has read by itself. No token may be queued.
  void skipTo(std::uint32_t position) { position_ = position; }
  // Goes on with a stretch of the page as if the text ended behind it.
  void readAgain(Slice stretch);
  // Forgets what was looked at ahead and goes on at `position`.
  void restart(std::uint32_t position) {
    clearQueue();
    position_ = position;
  }

 private:
  enum Terminator {
    COMMENT_END,
    SERVER_COMMENT_END,
    SECTION_END,
    PROCESSING_END,
    SERVER_TAG_END,
    TAG_END,
    TERMINATORS
  };

  void add(LexerType::LexToken kind, std::uint32_t end) { addToken(kind, tokenStart_, end); }
  void scanDeclaration();
  int scanComment(bool server);
  int scanSection();
  int scanTag(LexerType::LexToken kind, Terminator terminator);
  int finish(LexerType::LexToken kind, std::uint32_t start, std::uint32_t end, std::uint32_t extra);
  void scanAmpersand();
  std::uint32_t find(Terminator terminator, std::uint32_t from);

  PageRef page_;
  std::string_view text_;
  ParserType::_dtd_frame* frame_;
  std::uint32_t tokenStart_ = 0;
  std::uint32_t position_ = 0;
  bool cdataEnabled_ = false;
  // A search that found nothing is not repeated: from here on the terminator does not occur.
  std::uint32_t absentFrom_[TERMINATORS];
};

}  // namespace zeldom40
