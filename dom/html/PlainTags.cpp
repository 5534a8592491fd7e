// Tags written as nearly all are, read straight from their bytes.
//
// What is read here is read as the readers of tokens in TagReader.cpp would; at anything unusual (a "<" or a NUL in a
// tag, a missing quote, the end of the page) nothing was taken yet, and they read the tag. Without tokens a tag costs a
// third of the instructions.
#include <array>

#include "dom/html/PageParser.h"
#include "dom/source/CharHelpers.h"

namespace zeldom40 {

namespace {

// What a byte ends. A NUL ends everything, and one stands behind the text.
enum ByteClass : std::uint8_t {
  ENDS_NAME = 1,
  ENDS_ATTRIBUTE = 2,
  ENDS_QUOTED = 4,  // either quote, and "<", which may hide quotes
  ENDS_UNQUOTED = 8,
  IS_SPACE = 16,
  IS_LETTER = 32,
  BEGINS_NAME = 64,  // behind an attribute
};

constexpr std::array<std::uint8_t, 256> makeClasses() {
  std::array<std::uint8_t, 256> classes{};
  for (unsigned i = 0; i < 256; ++i) {
    const char c = static_cast<char>(i);
    unsigned kind = 0;
    if (c == 0 || isNameDelimiter(c)) kind |= ENDS_NAME;
    if (c == 0 || isSpaceByte(c) || c == '>' || c == '<') kind |= ENDS_ATTRIBUTE | ENDS_UNQUOTED;
    if (c == '=') kind |= ENDS_ATTRIBUTE;
    if (c == 0 || c == '"' || c == '\'' || c == '<') kind |= ENDS_QUOTED;
    if (isSpaceByte(c)) kind |= IS_SPACE;
    const char upper = upperByte(c);
    if (upper >= 'A' && upper <= 'Z') kind |= IS_LETTER | BEGINS_NAME;
    if ((c >= '0' && c <= '9') || c == '_' || i > 127) kind |= BEGINS_NAME;
    classes[i] = static_cast<std::uint8_t>(kind);
  }
  return classes;
}
constexpr std::array<std::uint8_t, 256> kClasses = makeClasses();

inline bool is(char c, unsigned kinds) { return (kClasses[static_cast<unsigned char>(c)] & kinds) != 0; }

}  // namespace

// Reads the tag whose "<" stands at the position, with no token queued. False if it must be read by tokens.
bool PageParser::readPlainTag() {
  const std::uint32_t start = lexer_.position();
  const char behind = lexer_.text().data()[start + 1];
  if (is(behind, IS_LETTER)) return readPlainBeginTag(start);
  return behind == '/' && readPlainEndTag(start);
}

bool PageParser::readPlainBeginTag(std::uint32_t start) {
  const char* const text = lexer_.text().data();
  std::uint32_t i = start + 1;
  while (!is(text[i], ENDS_NAME)) ++i;
  BeginTag tag;
  tag.start = start;
  setTagName(tag, std::string_view(text + start + 1, i - start - 1), lexer_.length() - start - 1);
  while (true) {
    while (is(text[i], IS_SPACE)) ++i;
    if (text[i] == '>') break;
    if (text[i] == '/') {
      tag.selfClosed = true;
      ++i;
      continue;
    }
    if (text[i] == '<' || text[i] == 0) return false;

    const std::uint32_t nameStart = i;
    do {
      ++i;
    } while (!is(text[i], ENDS_ATTRIBUTE));
    setAttributeName(tag, Slice{nameStart, i - nameStart});
    while (is(text[i], IS_SPACE)) ++i;
    if (text[i] == '=') {
      ++i;
      while (is(text[i], IS_SPACE)) ++i;
      if (text[i] == '"' || text[i] == '\'') {
        const std::uint32_t end = endOfQuoted(i + 1, text[i]);
        if (end == NO_POSITION) return false;
        attribute_.value = sliceOf(i + 1, end);
        i = end + 1;
      } else {
        const std::uint32_t valueStart = i;
        if (is(text[i], ENDS_UNQUOTED)) return false;
        do {
          ++i;
        } while (!is(text[i], ENDS_UNQUOTED));
        attribute_.value = sliceOf(valueStart, i);
      }
      if (text[i] == '<' || text[i] == 0) return false;
    } else if (text[i] != '>' && text[i] != '/' && !is(text[i], BEGINS_NAME)) {
      return false;
    }
    commitAttribute();
  }
  tag.end = i + 1;
  lexer_.skipTo(tag.end);
  lastEnd_ = tag.end;
  finishBeginTag(tag);
  return true;
}

// The offset of the quote that ends a value; NO_POSITION if that takes a closer look.
std::uint32_t PageParser::endOfQuoted(std::uint32_t from, char quote) {
  const std::string_view text = lexer_.text();
  const char* const bytes = text.data();
  // Server code may send each of many tags far ahead in vain; all together may read the page once more.
  const auto inVain = [&](std::size_t upTo) {
    readInVain_ += upTo - from;
    return NO_POSITION;
  };
  std::uint32_t i = from;
  while (true) {
    while (!is(bytes[i], ENDS_QUOTED)) ++i;
    if (bytes[i] == quote) return i;
    if (bytes[i] == 0) return inVain(i);
    if (bytes[i] == '<') {
      const char behind = bytes[i + 1];
      if (behind == '!' || behind == '?') return inVain(i);
      if (behind == '%') {
        // A quote in server code ends nothing.
        if (text.substr(i + 1, 3) == "%--" || readInVain_ > text.size()) return inVain(i);
        const std::size_t end = text.find("%>", i + 2);
        if (end == std::string_view::npos) return inVain(text.size());
        i = static_cast<std::uint32_t>(end) + 2;
        continue;
      }
    }
    ++i;
  }
}

bool PageParser::readPlainEndTag(std::uint32_t start) {
  const char* const text = lexer_.text().data();
  const std::uint32_t nameStart = start + 2;
  std::uint32_t i = nameStart;
  if (!is(text[i], IS_LETTER)) return false;
  while (!is(text[i], ENDS_NAME)) ++i;
  const std::uint32_t nameEnd = i;
  while (is(text[i], IS_SPACE)) ++i;
  if (text[i] != '>') return false;
  lexer_.skipTo(i + 1);
  lastEnd_ = i + 1;
  const std::string_view name(text + nameStart, nameEnd - nameStart);
  finishEndTag(names_.find(name, lexer_.length() - nameStart), name, sliceOf(start, i + 1));
  return true;
}

}  // namespace zeldom40
