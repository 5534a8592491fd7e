// Internal. Cuts the text of a document type definition into tokens.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "dom/dtd/Lexer.h"
#include "dom/dtd/ParserType.h"
#include "dom/source/CharHelpers.h"

namespace zeldom40 {

// A parameter entity's text takes the place of its reference in the lexer's own text, so there is no stack of lexers.
// The text is kept in two parts of one buffer, what was read at its front and what lies ahead at its end. A replacement
// is put in front of the second, into the gap: whatever it holds, no reference costs more than its own length and that
// of its replacement. Offsets of tokens count in the first part.
//
// References are expanded late, when a scan comes to them; what was expanded is not walked again, but a reference that
// stands at the position is, wherever it came from.
class DTDLexer final : public Lexer {
 public:
  // Copies `text`; looks parameter entities up in `frame`, which must outlive the lexer.
  DTDLexer(std::string_view text, const ParserType::_dtd_frame* frame);
  // Over a text that outlives the lexer and has ">" only where a declaration ends. It is copied up to the next one by
  // and by, so that what is skipped is not touched.
  struct Constant {
    std::string_view text;
  };
  DTDLexer(Constant constant, const ParserType::_dtd_frame* frame);

  int lex() override;
  bool matchAt(std::string_view word) override;
  char nextChar(bool consume) override;
  std::string_view slice(std::uint32_t start, std::uint32_t end) const override {
    if (start >= read_ || end <= start) return {};
    return {buffer_.get() + start, std::min<std::size_t>(end, read_) - start};
  }
  using Lexer::slice;

  // Steps past the rest of a declaration of such a text up to its ">", none of which is expanded, and returns it with
  // the ">", where the caller has it. Null if some of it is not of the text itself. Nothing may be queued.
  std::string_view skipDeclaration();
  // The same for a run of general entities from the name of the first to the last ">"; null if none stands there.
  // `*count` is told how many.
  std::string_view skipGeneralEntities(std::size_t* count);

  // Whether `s` is a numeric character reference. KEPT: the digit behind "&#" or "&#x" is not looked at.
  static bool isCharacterReference(std::string_view s);
  // Replaces the numeric character reference `text` by the marked form of its character, whose code is stored in
  // `*code`. False, with nothing changed, if it is no reference or the low 16 bits of the code are zero: the marked
  // form cannot hold a NUL.
  static bool encodeCharacterReference(std::string& text, std::uint32_t* code);

 private:
  // The NULs behind the text, which may be copied along and end a walk.
  static constexpr std::size_t kSlack = 16;

  std::uint32_t position() const { return static_cast<std::uint32_t>(read_); }
  bool atEnd() const { return head_ == end_; }
  std::string_view ahead() const { return {buffer_.get() + head_, end_ - head_}; }
  // Most tokens are short and the gap is wide: one copy of fixed length then, a few instructions for some fifty.
  void take(std::size_t count) {
    if (count <= kSlack && head_ - read_ >= kSlack && count <= end_ - head_) {
      std::memcpy(buffer_.get() + read_, buffer_.get() + head_, kSlack);
      read_ += count;
      head_ += count;
    } else {
      takeMany(count);
    }
  }
  void takeMany(std::size_t count);
  void putAhead(std::string_view text);
  bool refill();
  std::string_view ownAhead() const;
  std::string_view skipOwn(std::size_t length);
  bool isReference(std::size_t at) const;
  bool replacement(std::size_t& at, std::string& out);
  bool expandHere() { return atEnd() || buffer_[head_] != '%' || expandReferences(); }
  bool expandReferences();
  bool expandAhead(std::size_t length);
  bool skipSpace();
  void scanUntil(const ByteSet& delimiters, const ByteSet& stops);
  void addCharacter(LexerType::LexToken kind);
  void lexKeyword();
  void lexComment();
  void lexLiteral(char quote);
  void lexWord();

  const ParserType::_dtd_frame* frame_;
  std::string_view rest_;  // of the text, behind what was copied
  std::unique_ptr<char[]> buffer_;
  std::size_t read_ = 0;        // what was read ends here
  std::size_t head_;            // what lies ahead begins here
  std::size_t end_;             // and ends here
  std::size_t expandedTo_ = 0;  // counted as a position
  std::size_t growthLeft_;
  std::size_t ownLeft_;  // so many bytes before the end are the text's own
};

}  // namespace zeldom40
