// References and white space of running text.
#include "dom/source/PlainText.h"

#include <cstdint>
#include <cstring>

#include "dom/source/CharHelpers.h"
#include "dom/source/MarkedText.h"

namespace zeldom40 {

namespace {

// The same of the bytes of one word: the top bit of each byte tells of it.
template <class Word>
bool isSpaceWord(const char* bytes) {
  constexpr Word kOnes = static_cast<Word>(UINT64_C(0x0101010101010101));
  constexpr Word kTops = 0x80 * kOnes;
  Word word = 0;
  std::memcpy(&word, bytes, sizeof(word));
  const Word low7 = word & ~kTops;
  const Word fromTab = low7 + (0x80 - '\t') * kOnes;
  const Word behindReturn = low7 + (0x80 - '\r' - 1) * kOnes;
  const Word noBlank = (low7 ^ ' ' * kOnes) + 0x7F * kOnes;
  return ((((fromTab & ~behindReturn) | ~noBlank) & ~word) & kTops) == kTops;
}

// Words one after another, the last of them at the end of the text.
template <class Word>
bool isSpaceByWords(std::string_view raw) {
  std::size_t i = 0;
  for (; raw.size() - i > sizeof(Word); i += sizeof(Word)) {
    if (!isSpaceWord<Word>(raw.data() + i)) return false;
  }
  return isSpaceWord<Word>(raw.data() + raw.size() - sizeof(Word));
}

}  // namespace

bool isAllSpace(std::string_view raw) {
  // Text behind an indent shows at its end.
  if (!raw.empty() && !isSpaceByte(raw.back())) return false;
  if (raw.size() >= 8) return isSpaceByWords<std::uint64_t>(raw);
  if (raw.size() >= 4) return isSpaceByWords<std::uint32_t>(raw);
  for (const char c : raw) {
    if (!isSpaceByte(c)) return false;
  }
  return true;
}

std::string assemblePlainText(std::string_view raw, TextContext context, const EntityTable* entities) {
  std::string plain;
  plain.reserve(raw.size());
  std::size_t i = 0;
  bool atStart = true;
  auto mark = [&plain](char c) {
    plain += kPairMark;
    plain += c;
  };
  while (i < raw.size()) {
    const char c = raw[i];
    if (isSpaceByte(c)) {
      const std::size_t from = i;
      while (i < raw.size() && isSpaceByte(raw[i])) ++i;
      if (context.preformatted) {
        plain += raw.substr(from, i - from);
      } else if (!(atStart && context.dropLeading)) {
        plain += ' ';
      }
    } else if (c == '<' || c == '>' || c == '"') {
      mark(c);
      ++i;
    } else if (c == '&') {
      ++i;
      int digits = 0;
      if (i < raw.size() && raw[i] == '#') {
        if (const int code = parseCharRef(raw, i + 1, &digits)) {
          appendMarkedCode(static_cast<unsigned>(code), plain);
          i += 1 + static_cast<std::size_t>(digits);
        } else {
          mark('&');
        }
      } else {
        std::size_t end = i;
        while (end < raw.size() && raw[end] != ';' && !isNameDelimiter(raw[end])) ++end;
        EntityText entity;
        if (entities && end > i && entities->find(raw.substr(i, end - i), entity)) {
          plain += entity.text;
          i = end < raw.size() && raw[end] == ';' ? end + 1 : end;
        } else {
          mark('&');
          plain += raw.substr(i, end - i);
          i = end;
        }
      }
    } else {
      std::size_t end = i + 1;
      while (end < raw.size() && !isSpaceByte(raw[end]) && raw[end] != '<' && raw[end] != '>' && raw[end] != '"' &&
             raw[end] != '&') {
        ++end;
      }
      plain += raw.substr(i, end - i);
      i = end;
    }
    atStart = false;
  }
  return plain;
}

}  // namespace zeldom40
