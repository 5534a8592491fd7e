// References and white space of running text.
#include "dom/source/PlainText.h"

#include <cstring>

#include "dom/source/CharHelpers.h"
#include "dom/source/MarkedText.h"

namespace zeldom40 {

bool isAllSpace(std::string_view raw) {
  // Text behind an indent shows at its end; and an indent is mostly blanks, taken eight at a time.
  if (!raw.empty() && !isSpaceByte(raw.back())) return false;
  for (std::size_t i = 0; i < raw.size();) {
    if (raw.size() - i >= 8 && std::memcmp(raw.data() + i, "        ", 8) == 0) {
      i += 8;
    } else if (!isSpaceByte(raw[i++])) {
      return false;
    }
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
