// The conversions between raw, plain and marked text. Each is one pass into a new string: splicing in place would move
// the rest of the text once for every reference.
#include "dom/source/MarkedText.h"

#include <algorithm>

#include "dom/source/CharHelpers.h"

namespace zeldom40 {

namespace {

constexpr int kWestern = 1252;   // the code page whose byte 128 is the euro sign
constexpr int kEuroCode = 8364;  // U+20AC
constexpr char kEuroByte = '\x80';
constexpr std::string_view kEuroName = "euro;";

constexpr bool startsAt(std::string_view text, size_t i, std::string_view word) {
  return text.substr(std::min(i, text.size()), word.size()) == word;
}

constexpr bool isMarkup(char c) { return c == '"' || c == '&' || c == '<' || c == '>'; }

// Where the entity name that begins at `i` ends: at a delimiter, a ";" or the end of the text.
size_t nameEnd(std::string_view text, size_t i) {
  while (i < text.size() && text[i] != ';' && !isNameDelimiter(text[i])) ++i;
  return i;
}

bool findEntity(const EntityTable* table, std::string_view name, EntityText& out) {
  return table && !name.empty() && table->find(name, out);
}

void appendIdentifier(std::string_view identifier, std::string& out) {
  if (!identifier.empty()) out.append(" \"").append(identifier).append("\"");
}

// A reference that a single byte can stand for: the byte, and the length of the reference with its "&".
struct ByteReference {
  char byte = 0;
  size_t length = 0;  // 0: the reference stays
};

ByteReference readNumber(std::string_view text, size_t amp, int codepage) {
  int digits = 0;
  const int code = parseCharRef(text, amp + 2, &digits);
  const size_t length = 2 + static_cast<size_t>(digits);
  if (codepage != kWestern) {
    // KEPT: a reference that cannot be read counts as code 0 here, so that "&#" becomes a NUL, while on code page 1252
    // it stays. Hosts of both kinds have long worked with this.
    return code < 128 ? ByteReference{static_cast<char>(code), length} : ByteReference{};
  }
  if (code == kEuroCode) return {kEuroByte, length};
  return code >= 1 && code < 256 ? ByteReference{static_cast<char>(code), length} : ByteReference{};
}

ByteReference readName(std::string_view text, size_t amp, const EntityTable* table) {
  if (!table) {
    constexpr struct {
      std::string_view name;
      char byte;
    } kNames[] = {{"lt;", '<'}, {"gt;", '>'}, {"quot;", '"'}, {"amp;", '&'}};
    for (const auto& known : kNames) {
      if (startsAt(text, amp + 1, known.name)) return {known.byte, 1 + known.name.size()};
    }
    return {};
  }
  const size_t end = nameEnd(text, amp + 1);
  EntityText entity;
  if (!findEntity(table, text.substr(amp + 1, end - amp - 1), entity)) return {};
  if (entity.text.size() < 2 || entity.text[0] != kPairMark) return {};
  return {entity.text[1], (startsAt(text, end, ";") ? end + 1 : end) - amp};
}

// Whether the "&" at `amp` opens a reference that a reader of the source would understand.
bool opensReference(std::string_view text, size_t amp, const EntityTable* table) {
  if (startsAt(text, amp + 1, "#")) return parseCharRef(text, amp + 2, nullptr) != 0;
  const size_t end = nameEnd(text, amp + 1);
  EntityText entity;
  return findEntity(table, text.substr(amp + 1, end - amp - 1), entity);
}

// The code of a four-byte unit, and whether it is to be written by name.
struct WideUnit {
  unsigned code = 0;
  bool byName = false;
  bool valid = false;  // false: bytes that merely look like a unit
};

WideUnit readWideUnit(std::string_view unit) {
  if (unit.size() < 4) return {};
  const unsigned high = static_cast<unsigned char>(unit[2]) * 256u;
  const char form = unit[1] == kPairMark ? unit[3] : unit[1];
  if (form != kQuadMark && form != kNumberMark) return {};
  const unsigned low = unit[1] == kPairMark ? 0 : static_cast<unsigned char>(unit[3]);
  return {high + low, form == kQuadMark, true};
}

}  // namespace

size_t unitAt(std::string_view text, size_t i) {
  if (text[i] == kPairMark) return i + 1 < text.size() ? 2 : 1;
  return text[i] == kQuadMark && readWideUnit(text.substr(i, 4)).valid ? 4 : 1;
}

namespace {

// Whether the mark byte at `i`, which opens no unit, would open one when the markup behind it is marked.
bool wouldOpenUnit(std::string_view text, size_t i) {
  std::string marked(1, text[i]);
  for (size_t k = i + 1; k < text.size() && marked.size() < 4;) {
    const size_t length = unitAt(text, k);
    if (isMarkup(text[k])) marked.push_back(kPairMark);
    marked.append(text, k, length);
    k += length;
  }
  return unitAt(marked, 0) > 1;
}

void appendReference(unsigned code, const CharacterNames* names, std::string& out) {
  const std::string_view name = names ? names->nameOf(code) : std::string_view();
  if (name.empty()) {
    out.append("&#").append(std::to_string(code)).append(";");
  } else {
    out.append("&").append(name).append(";");
  }
}

}  // namespace

int parseCharRef(std::string_view text, size_t offset, int* length) {
  constexpr size_t kMostDigits = 5;
  if (length) *length = 0;
  int code = 0;
  size_t digits = 0;
  for (size_t i = offset; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    if (++digits > kMostDigits) return 0;
    code = code * 10 + (text[i] - '0');
  }
  if (digits == 0 || code < 1 || code >= 65535) return 0;
  if (length) *length = static_cast<int>(startsAt(text, offset + digits, ";") ? digits + 1 : digits);
  return code;
}

void appendMarkedCode(unsigned code, std::string& out) {
  const char high = static_cast<char>(code >> 8 & 0xFF);
  const char low = static_cast<char>(code & 0xFF);
  if (high == 0) {
    out.append({kPairMark, low});
  } else if (low == 0) {
    out.append({kQuadMark, kPairMark, high, kNumberMark});
  } else {
    out.append({kQuadMark, kNumberMark, high, low});
  }
}

size_t readReference(std::string_view text, size_t amp, const EntityTable* table, std::string& meaning) {
  meaning.clear();
  if (startsAt(text, amp + 1, "#")) {
    int digits = 0;
    const int code = parseCharRef(text, amp + 2, &digits);
    if (code == 0) return 0;
    appendMarkedCode(static_cast<unsigned>(code), meaning);
    return 2 + static_cast<size_t>(digits);
  }
  const size_t end = nameEnd(text, amp + 1);
  EntityText entity;
  if (!findEntity(table, text.substr(amp + 1, end - amp - 1), entity)) return 0;
  meaning = entity.text;
  return (startsAt(text, end, ";") ? end + 1 : end) - amp;
}

int expandReferences(std::string& text, int start, int length, const EntityTable* table) {
  // The input is raw text, in which bytes 27 and 28 mean nothing: it is walked byte by byte.
  const size_t from = std::min(static_cast<size_t>(std::max(start, 0)), text.size());
  const size_t end = from + std::min(static_cast<size_t>(std::max(length, 0)), text.size() - from);
  const std::string_view raw(text);
  const std::string_view range = raw.substr(0, end);  // a reference may end behind it

  std::string out;
  size_t kept = 0;  // everything before it is in `out`
  for (size_t i = range.find('&', from); i < end; i = range.find('&', i)) {
    const size_t amp = i;
    ++i;
    if (i < raw.size() && isSpaceByte(raw[i])) continue;
    if (startsAt(raw, i, "#")) {
      ++i;
      int digits = 0;
      const int code = parseCharRef(raw, i, &digits);
      if (code == 0) continue;
      out.append(raw, kept, amp - kept);
      appendMarkedCode(static_cast<unsigned>(code), out);
      i += static_cast<size_t>(digits);
      kept = i;
      continue;
    }
    const size_t stop = nameEnd(raw, i);
    EntityText entity;
    const bool known = findEntity(table, raw.substr(i, stop - i), entity);
    i = startsAt(raw, stop, ";") ? stop + 1 : stop;
    if (!known) continue;
    out.append(raw, kept, amp - kept).append(entity.text);
    appendIdentifier(entity.publicId, out);
    appendIdentifier(entity.systemId, out);
    kept = i;
  }
  if (kept == 0) return 0;
  out.append(raw, kept, std::string_view::npos);
  const auto change = static_cast<std::ptrdiff_t>(out.size()) - static_cast<std::ptrdiff_t>(text.size());
  text.swap(out);
  return static_cast<int>(change);
}

void protectMarkup(std::string& text) {
  if (text.find_first_of("\"&<>") == std::string::npos) return;
  std::string out;
  out.reserve(text.size() + text.size() / 8 + 8);
  for (size_t i = 0; i < text.size();) {
    const size_t length = unitAt(text, i);
    if (isMarkup(text[i]) || (length == 1 && text[i] == kQuadMark && wouldOpenUnit(text, i))) out.push_back(kPairMark);
    out.append(text, i, length);
    i += length;
  }
  text.swap(out);
}

void escapeMarkup(std::string& text, bool keepReferences, const EntityTable* table, int codepage) {
  std::string out;
  out.reserve(text.size() + text.size() / 8 + 8);
  for (size_t i = 0; i < text.size();) {
    const size_t length = unitAt(text, i);
    const char c = text[i];
    if (c == '"') {
      out.append("&quot;");
    } else if (c == '<') {
      out.append("&lt;");
    } else if (c == '>') {
      out.append("&gt;");
    } else if (c == '&' && !(keepReferences && opensReference(text, i, table))) {
      out.append("&amp;");
    } else if (c == kEuroByte && keepReferences && codepage == kWestern) {
      out.append("&#").append(std::to_string(kEuroCode)).append(";");
    } else {
      // CHOICE: a unit is copied whole. A host may pass the plain form of a text, and a mark that is cut in two means
      // another character.
      out.append(text, i, length);
    }
    i += length;
  }
  text.swap(out);
}

void unescapeMarkup(std::string& text, const EntityTable* table, int codepage) {
  // The input is source text, in which bytes 27 and 28 mean nothing: it is walked byte by byte.
  if (codepage != kWestern) table = nullptr;
  const std::string_view raw(text);
  std::string out;
  size_t kept = 0;  // everything before it is in `out`
  for (size_t i = raw.find('&'); i < raw.size(); i = raw.find('&', i)) {
    ByteReference found;
    if (codepage == kWestern && startsAt(raw, i + 1, kEuroName)) {
      found = {kEuroByte, 1 + kEuroName.size()};
    } else if (startsAt(raw, i + 1, "#")) {
      found = readNumber(raw, i, codepage);
    } else {
      found = readName(raw, i, table);
    }
    if (found.length == 0) {
      ++i;
      continue;
    }
    out.append(raw, kept, i - kept).push_back(found.byte);
    i += found.length;
    kept = i;
  }
  if (kept == 0) return;
  out.append(raw, kept, std::string_view::npos);
  text.swap(out);
}

void restoreReferences(std::string_view marked, std::string& out, const CharacterNames* names) {
  std::string raw;
  raw.reserve(marked.size() + marked.size() / 8);
  for (size_t i = 0; i < marked.size();) {
    const size_t length = unitAt(marked, i);
    const std::string_view unit = marked.substr(i, length);
    if (length == 4) {
      const WideUnit wide = readWideUnit(unit);
      appendReference(wide.code, wide.byName ? names : nullptr, raw);
    } else if (length == 2) {
      appendReference(static_cast<unsigned char>(unit[1]), names, raw);
    } else {
      // CHOICE: a mark byte that opens no unit came from the page as a plain byte and goes back as such, alone: the
      // bytes behind it may be markup.
      raw.append(unit);
    }
    i += length;
  }
  out.swap(raw);
}

}  // namespace zeldom40
