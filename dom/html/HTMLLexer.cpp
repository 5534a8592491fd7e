// The scanners behind the tokens of page text.
#include "dom/html/HTMLLexer.h"

#include <algorithm>

#include "dom/dtd/DTDFrame.h"
#include "dom/source/CharHelpers.h"
#include "dom/source/MarkedText.h"

namespace zeldom40 {

namespace {

using Token = LexerType::LexToken;

// The kinds of single-byte tokens; 0 for a byte that is none.
constexpr std::array<std::uint8_t, 256> makePunctuation() {
  std::array<std::uint8_t, 256> kinds{};
  kinds['!'] = LexerType::LEX_BANG;
  kinds['"'] = LexerType::LEX_QUOTE;
  kinds['%'] = LexerType::LEX_PERCENT;
  kinds['\''] = LexerType::LEX_APOSTROPHE;
  kinds['('] = LexerType::LEX_LPAREN;
  kinds[')'] = LexerType::LEX_RPAREN;
  kinds['*'] = LexerType::LEX_STAR;
  kinds['+'] = LexerType::LEX_PLUS;
  kinds[','] = LexerType::LEX_COMMA;
  kinds['-'] = LexerType::LEX_MINUS;
  kinds['/'] = LexerType::LEX_SLASH;
  kinds['='] = LexerType::LEX_EQUALS;
  kinds['>'] = LexerType::LEX_TAG_CLOSE;
  kinds['?'] = LexerType::LEX_QUESTION;
  kinds['['] = LexerType::LEX_LBRACKET;
  kinds[']'] = LexerType::LEX_RBRACKET;
  kinds['|'] = LexerType::LEX_BAR;
  return kinds;
}
constexpr std::array<std::uint8_t, 256> kPunctuation = makePunctuation();

}  // namespace

HTMLLexer::HTMLLexer(const char* text, std::size_t length, ParserType::_dtd_frame* frame) : frame_(frame) {
  PageBuffer* buffer = PageBuffer::create(std::string_view(text, length), FrameTables::entities(frame),
                                          frame ? frame->generalEntityCount() : 0);
  page_ = PageRef(buffer);
  buffer->release();
  text_ = buffer->text();
  std::fill(std::begin(absentFrom_), std::end(absentFrom_), NO_POSITION);
}

HTMLLexer::HTMLLexer(const PageRef& page, ParserType::_dtd_frame* frame) : page_(page), frame_(frame) { readAgain({}); }

HTMLLexer::~HTMLLexer() = default;

void HTMLLexer::readAgain(Slice stretch) {
  text_ = page_.get()->text().substr(0, stretch.offset + stretch.length);
  std::fill(std::begin(absentFrom_), std::end(absentFrom_), NO_POSITION);
  cdataEnabled_ = page_.get()->readsSectionsAt(stretch.offset);
  restart(stretch.offset);
}

std::string_view HTMLLexer::slice(std::uint32_t start, std::uint32_t end) const {
  if (start >= text_.size() || end < start) return {};
  return text_.substr(start, end - start);
}

bool HTMLLexer::matchAt(std::string_view word) {
  return equalsFolded(text_.substr(std::min<std::size_t>(position_, text_.size()), word.size()), word);
}

char HTMLLexer::nextChar(bool consume) {
  const char c = position_ < text_.size() ? text_[position_] : '\0';
  if (consume) ++position_;
  return c;
}

std::uint32_t HTMLLexer::find(Terminator terminator, std::uint32_t from) {
  static constexpr std::string_view kWords[TERMINATORS] = {"-->", "--%>", "]]>", "?>", "%>", ">"};
  if (from >= absentFrom_[terminator]) return NO_POSITION;
  const std::size_t at = text_.find(kWords[terminator], from);
  if (at != std::string_view::npos) return static_cast<std::uint32_t>(at);
  absentFrom_[terminator] = from;
  return NO_POSITION;
}

int HTMLLexer::lex() {
  const std::uint32_t size = length();
  tokenStart_ = position_;
  while (position_ < size && isSpaceByte(text_[position_])) {
    if (text_[position_] == '\n') ++line_;
    ++position_;
  }
  if (position_ > tokenStart_) {
    add(LexerType::LEX_SPACE, position_);
    tokenStart_ = position_;
    // What follows is cut when it is asked for.
    if (position_ < size) return 0;
  }
  if (position_ >= size) {
    addToken(LexerType::LEX_EOF, NO_POSITION, NO_POSITION);
    return 0;
  }
  const char c = text_[position_];
  if (c == '<') {
    ++position_;
    add(LexerType::LEX_TAG_OPEN, position_);
    switch (position_ < size ? text_[position_] : '\0') {
      case '!':
        scanDeclaration();
        break;
      case '?':
        return scanTag(LexerType::LEX_PROCESSING, PROCESSING_END);
      case '%':
        if (!matchAt("%--")) return scanTag(LexerType::LEX_SERVER_TAG, SERVER_TAG_END);
        ++position_;
        return scanComment(/*server=*/true);
      default:
        break;
    }
    return 0;
  }
  if (c == '&') {
    scanAmpersand();
    return 0;
  }
  if (const std::uint8_t kind = kPunctuation[static_cast<unsigned char>(c)]) {
    ++position_;
    add(static_cast<Token>(kind), position_);
    return 0;
  }
  // Not in the set of delimiters: "/", "!", "-", ",", "%", "[", "]" and ";" stay in a name that has begun.
  do {
    ++position_;
  } while (position_ < size && !isNameDelimiter(text_[position_]));
  add(LexerType::LEX_NAME, position_);
  return 0;
}

void HTMLLexer::scanDeclaration() {
  tokenStart_ = position_;
  if (matchAt("!DOCTYPE")) {
    position_ += 8;
    add(LexerType::LEX_DOCTYPE, position_);
  } else if (matchAt("!--")) {
    ++position_;
    scanComment(/*server=*/false);
  } else if (cdataEnabled_ && matchAt("![CDATA[")) {
    ++position_;
    scanSection();
  } else {
    ++position_;
    add(LexerType::LEX_BANG, position_);
  }
}

// Emits the token and behind it an empty closer, `extra` bytes and the ">" further on; at the end of the text no
// closer.
int HTMLLexer::finish(Token kind, std::uint32_t start, std::uint32_t end, std::uint32_t extra) {
  addToken(kind, start, end);
  if (end == NO_POSITION) {
    position_ = length();
    return -1;
  }
  position_ = end + extra + 1;
  addToken(LexerType::LEX_TAG_CLOSE, position_, position_);
  return 0;
}

int HTMLLexer::scanComment(bool server) {
  const std::uint32_t start = position_;
  const Token kind = server ? LexerType::LEX_SERVER_COMMENT : LexerType::LEX_COMMENT;
  const std::uint32_t at = find(server ? SERVER_COMMENT_END : COMMENT_END, start + 2);
  if (at != NO_POSITION) return finish(kind, start, at + 2, server ? 1 : 0);
  // Without its terminator a comment ends at the first ">", so that the rest of the page stays a page.
  return finish(kind, start, find(TAG_END, start + 2), 0);
}

int HTMLLexer::scanSection() {
  const std::uint32_t start = position_ + 7;
  const std::uint32_t at = find(SECTION_END, start);
  if (at != NO_POSITION) return finish(LexerType::LEX_CDATA_SECTION, start, at, 2);
  return finish(LexerType::LEX_CDATA_SECTION, start, find(TAG_END, start), 0);
}

int HTMLLexer::scanTag(Token kind, Terminator terminator) {
  const std::uint32_t start = position_;
  const std::uint32_t at = find(terminator, start + 1);
  const int result = finish(kind, start, at != NO_POSITION ? at + 1 : find(TAG_END, start + 1), 0);
  return result < 0 ? 0 : result;
}

void HTMLLexer::scanAmpersand() {
  const std::uint32_t size = length();
  ++position_;
  if (position_ < size && text_[position_] == '#') {
    int digits = 0;
    if (const int code = parseCharRef(text_, position_ + 1, &digits)) {
      position_ += 1 + static_cast<std::uint32_t>(digits);
      addToken(LexerType::LEX_CHAR_REF, tokenStart_, position_, static_cast<std::uint32_t>(code));
    } else {
      add(LexerType::LEX_AMPERSAND, position_);
    }
    return;
  }
  const std::uint32_t nameStart = position_;
  while (position_ < size && text_[position_] != ';' && !isNameDelimiter(text_[position_])) ++position_;
  const std::string_view name = text_.substr(nameStart, position_ - nameStart);
  const GeneralEntityRecord* entity = frame_ && !name.empty() ? frame_->generalEntities().find(name) : nullptr;
  if (entity) {
    if (position_ < size && text_[position_] == ';') ++position_;
    addToken(LexerType::LEX_ENTITY_REF, tokenStart_, position_, static_cast<std::uint32_t>(entity->order));
    return;
  }
  // Both reach the text as written.
  addToken(LexerType::LEX_AMPERSAND, tokenStart_, nameStart);
  addToken(LexerType::LEX_NAME, nameStart, position_);
}

}  // namespace zeldom40
