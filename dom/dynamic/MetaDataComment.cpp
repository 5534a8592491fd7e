// Reads and writes the comments of metadata pairs.
#include "dom/dynamic/MetaDataComment.h"

#include <algorithm>
#include <iterator>

#include "dom/html/AttributeScanner.h"
#include "dom/source/CharHelpers.h"

namespace zeldom40 {

namespace {

constexpr std::string_view kWords[] = {"DesignerControl", "DynamicData", "AuthorTimeVisual"};
constexpr std::string_view kLineEnds = "\r\n";

bool equalFolded(std::string_view a, std::string_view b) {
  const auto fold = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return fold(x) == fold(y); });
}

std::string_view wordOf(MetaData::Type type) { return type < MetaData::None ? kWords[type] : std::string_view(); }

// The two comments differ in the word for their end of the span, and in whether the type is told or asked for.
bool matchComment(std::string_view body, std::size_t limit, bool wantEnd, MetaData::Type& type) {
  std::size_t position = std::min(body.find_first_not_of('-'), limit);
  ScannedAttribute word;
  if (!scanAttribute(body, limit, position, word) || !equalFolded(word.name, "METADATA")) return false;
  bool hasSpan = false;
  bool hasType = false;
  while (scanAttribute(body, limit, position, word)) {
    if (equalFolded(word.name, "startspan") || equalFolded(word.name, "endspan")) {
      if (equalFolded(word.name, "endspan") != wantEnd) return false;
      hasSpan = true;
    } else if (equalFolded(word.name, "type")) {
      const auto* known = std::find_if(std::begin(kWords), std::end(kWords),
                                       [&](std::string_view w) { return equalFolded(w, word.value); });
      if (known == std::end(kWords)) return false;
      const auto found = static_cast<MetaData::Type>(known - std::begin(kWords));
      if (wantEnd && found != type) return false;
      type = found;
      hasType = true;
    }
  }
  return hasSpan && hasType;
}

// --- the escape ------------------------------------------------------------------------------------------------------
// A source may itself hold "-->": in a comment, a script, an attribute. It would end the begin comment early, and what
// follows would be taken for run-time text. So "-->" is written "--&gt;", and what could be taken for such an escape
// gets one "amp;" more. Reading takes one level off; a source with neither is the same on both sides.

// The length of "&gt;", "&amp;gt;", "&amp;amp;gt;" ... at the start of `text`; 0 if there is none.
std::size_t escapeLength(std::string_view text) {
  if (text.empty() || text[0] != '&') return 0;
  std::size_t i = 1;
  while (text.substr(i, 4) == "amp;") i += 4;
  return text.substr(i, 3) == "gt;" ? i + 3 : 0;
}

enum class Level { ADD, TAKE };

std::string shiftEscapes(std::string_view text, Level level) {
  std::string out;
  out.reserve(text.size());
  std::size_t done = 0;
  for (std::size_t at = text.find("--"); at != std::string_view::npos; at = text.find("--", at + 1)) {
    const std::string_view rest = text.substr(at + 2);
    const std::size_t length = escapeLength(rest);
    const bool closes = level == Level::ADD && !rest.empty() && rest[0] == '>';
    if (!length && !closes) continue;
    out.append(text, done, at + 2 - done);
    done = at + 2;
    if (closes) {
      out += "&gt;";
      ++done;
    } else if (level == Level::ADD) {
      out += "&amp;";
      ++done;
    } else if (length == 4) {
      out += '>';
      done += length;
    } else {
      out += '&';
      done += 5;
    }
    at = done - 1;
  }
  return out.append(text, done);
}

}  // namespace

bool matchBeginComment(std::string_view body, MetaData::Type& type) {
  const std::size_t lineEnd = body.find_first_of(kLineEnds);
  return lineEnd != std::string_view::npos && matchComment(body, lineEnd, /*wantEnd=*/false, type);
}

bool matchEndComment(std::string_view body, MetaData::Type type) {
  const std::size_t last = body.find_last_not_of('-');
  return last != std::string_view::npos && matchComment(body, last + 1, /*wantEnd=*/true, type);
}

std::string makeBeginComment(MetaData::Type type, std::string_view source) {
  const std::string_view word = wordOf(type);
  if (word.empty()) return {};
  std::string comment = "<!--METADATA type=\"";
  comment += word;
  comment += "\" startspan\r\n";
  comment += shiftEscapes(source, Level::ADD);
  comment += "\r\n-->";
  return comment;
}

std::string makeEndComment(MetaData::Type type) {
  const std::string_view word = wordOf(type);
  if (word.empty()) return {};
  std::string comment = "<!--METADATA type=\"";
  comment += word;
  comment += "\" endspan-->";
  return comment;
}

std::string designSource(std::string_view beginComment) {
  const std::size_t lineEnd = beginComment.find_first_of(kLineEnds);
  if (lineEnd == std::string_view::npos) return {};
  std::string_view source = beginComment.substr(lineEnd);
  while (!source.empty() && isBlankByte(source.front())) source.remove_prefix(1);
  if (!source.empty() && source.back() == '>') source.remove_suffix(1);
  while (!source.empty() && source.back() == '-') source.remove_suffix(1);
  while (!source.empty() && isBlankByte(source.back())) source.remove_suffix(1);
  return shiftEscapes(source, Level::TAKE);
}

}  // namespace zeldom40
