// Helpers on the internal text form. Each is one pass; those that change the length build a new string or compact in
// place, since pages of one long text are common.
#include "dom/source/CharHelpers.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace zeldom40 {

namespace {

// The length of the character at `p`, of which at most `available` bytes may be read.
// Bytes below 128 begin a longer character in no code page, and with a maximum of 1 the answer can only be 1: the
// runtime is asked only where its answer matters, for this runs on every character of a walk.
int characterLength(const char* p, size_t available) {
  if (static_cast<unsigned char>(*p) < 0x80) return 1;
  const size_t longest = std::min(static_cast<size_t>(MB_CUR_MAX), available);
  if (longest <= 1) return 1;
  return std::max(std::mblen(p, longest), 1);
}

// The column behind one unit that begins with `c`.
constexpr long long nextColumn(char c, long long column) { return c == '\n' ? 0 : column + 1; }

constexpr int toColumn(long long column) { return static_cast<int>(std::min<long long>(column, INT_MAX)); }

}  // namespace

int pclen(const char* text) {
  if (!text || *text == 0) return 0;
  if (*text == '\r' || *text == kPairMark) return 2;
  if (*text == kQuadMark) return 4;
  // A lead byte before the closing NUL is no character to the runtime, so this stays within the text.
  return characterLength(text, MB_LEN_MAX);
}

int pclen(const std::string& text) { return pclen(text.c_str()); }

size_t unitLength(std::string_view s, size_t i) {
  if (i >= s.size()) return 0;
  const size_t left = s.size() - i;
  const char c = s[i];
  if (c == '\r' || c == kPairMark) return std::min<size_t>(2, left);
  if (c == kQuadMark) return std::min<size_t>(4, left);
  return static_cast<size_t>(characterLength(s.data() + i, left));
}

void upperCase(std::string& s) {
  for (char& c : s) c = upperByte(c);
}

void lowerCase(std::string& s) {
  for (char& c : s) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
}

int trim(std::string& s, bool left, bool right) {
  size_t start = 0;
  if (left) {
    while (isWhite(s, start)) ++start;
  }
  size_t end = s.size();
  if (right && end > start && isBlankByte(s.back())) {
    // From the front, because from the back a blank cannot be told from the last byte of a unit.
    end = start;
    for (size_t i = start; i < s.size();) {
      const size_t length = markedLength(s, i);
      if (length > 1 || !isBlankByte(s[i])) end = i + length;
      i += length;
    }
  }
  s.erase(end);
  s.erase(0, start);
  return static_cast<int>(s.size());
}

int collapseWhite(std::string& s, size_t from, std::ptrdiff_t count) {
  if (count == 0 || from >= s.size()) return 0;
  const size_t left = s.size() - from;
  const size_t end = count < 0 || static_cast<size_t>(count) > left ? s.size() : from + static_cast<size_t>(count);

  size_t read = 0;
  bool inRun = false;
  while (read < from) {
    const size_t length = markedLength(s, read);
    inRun = length == 1 && isBlankByte(s[read]);
    read += length;
  }

  size_t write = read;
  while (read < end) {
    const size_t length = markedLength(s, read);
    const bool white = length == 1 && isBlankByte(s[read]);
    if (white) {
      if (!inRun) s[write++] = ' ';
    } else {
      for (size_t k = 0; k < length; ++k) s[write++] = s[read + k];
    }
    inRun = white;
    read += length;
  }
  if (write == read) return 0;
  s.erase(write, read - write);
  return -static_cast<int>(read - write);
}

int columnAt(std::string_view s, size_t from, size_t to, int start) {
  long long column = start;
  to = std::min(to, s.size());
  for (size_t i = from; i < to; i += markedLength(s, i)) column = nextColumn(s[i], column);
  return toColumn(column);
}

int expandTabs(std::string& s, int column) {
  constexpr int kTabWidth = 8;
  long long at = std::max(column, 0);
  if (s.find('\t') == std::string::npos) return columnAt(s, 0, s.size(), static_cast<int>(at));

  std::string out;
  out.reserve(s.size() + 64);
  for (size_t i = 0; i < s.size();) {
    const size_t length = markedLength(s, i);
    if (s[i] == '\t') {
      const long long blanks = kTabWidth - at % kTabWidth;
      out.append(static_cast<size_t>(blanks), ' ');
      at += blanks;
    } else {
      out.append(s, i, length);
      at = nextColumn(s[i], at);
    }
    i += length;
  }
  s.swap(out);
  return toColumn(at);
}

std::pair<int, int> countLines(std::string_view s) {
  int lines = 0;
  for (size_t i = 0; i < s.size(); i += markedLength(s, i)) {
    if (s[i] == '\n') ++lines;
  }
  return {lines, static_cast<int>(s.size())};
}

int wrapLines(std::string& s, int limit, int indent) {
  // CHOICE: a negative limit or indent, which a host can set in a style, counts as 0.
  limit = std::max(limit, 0);
  const size_t blanks = static_cast<size_t>(std::max(indent, 0));

  std::string out;
  int breaks = 0;
  long long column = 0;
  size_t kept = 0;  // everything before it is in `out`
  for (size_t i = 0; i < s.size();) {
    if (s[i] == ' ' && column >= limit) {
      out.append(s, kept, i - kept).append("\r\n").append(blanks, ' ');
      while (i < s.size() && s[i] == ' ') ++i;
      kept = i;
      ++breaks;
      // CHOICE: the walk goes on behind what it has put in, with column 0. Walking over the indent would never end
      // when the indent reaches the limit.
      column = 0;
    } else {
      column = nextColumn(s[i], column);
      i += markedLength(s, i);
    }
  }
  if (breaks == 0) return 0;
  out.append(s, kept);
  s.swap(out);
  return breaks;
}

}  // namespace zeldom40
