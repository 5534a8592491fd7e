// Names and values in free text.
#include "dom/html/AttributeScanner.h"

#include <algorithm>

#include "dom/source/CharHelpers.h"

namespace zeldom40 {

bool scanAttribute(std::string_view text, std::size_t limit, std::size_t& position, ScannedAttribute& found) {
  limit = std::min(limit, text.size());
  auto skipBlanks = [&] {
    while (position < limit && isBlankByte(text[position])) ++position;
  };
  found = {};
  skipBlanks();
  if (position >= limit) return false;
  const std::size_t start = position;
  do {
    ++position;
  } while (position < limit && !isBlankByte(text[position]) && text[position] != '=');
  found.name = text.substr(start, position - start);
  const std::size_t nameEnd = position;
  skipBlanks();
  if (position >= limit || text[position] != '=') {
    position = nameEnd;
    return true;
  }
  ++position;
  skipBlanks();
  if (position >= limit) return true;
  const char quote = text[position];
  if (quote == '"' || quote == '\'') {
    ++position;
    const std::size_t from = position;
    while (position < limit && text[position] != quote) ++position;
    found.value = text.substr(from, position - from);
    if (position < limit) ++position;
    return true;
  }
  const std::size_t from = position;
  while (position < limit && !isBlankByte(text[position])) ++position;
  found.value = text.substr(from, position - from);
  return true;
}

}  // namespace zeldom40
