// Internal. Helpers on the internal text form: byte classes, units, columns, white space, wrapping.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "dom/source/pclen.h"

namespace zeldom40 {

// The bytes of the marked form. A reference stays in plain text as one unit:
//   27, c           the character c, below 256
//   28, 29, hi, lo  a wide character given by number; 28, 27, hi, 29 if lo is 0
//   28, 28, hi, lo  a wide character to be written by name; 28, 27, hi, 28 if lo is 0
// The last bytes of a unit may have any value, also that of a blank, a quote or a "<". All helpers here step over units
// whole: no byte inside one is white space, a line end or markup. A unit cut by the end of the text is taken as it is.
inline constexpr char kPairMark = 27;
inline constexpr char kQuadMark = 28;
inline constexpr char kNumberMark = 29;

// What a page in UTF-8 may begin with. It belongs to the file and is no text.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Tab, LF, VT, FF, CR or blank: what ends a word for the lexers.
constexpr bool isSpaceByte(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Tab, LF, CR or blank: the white space that collapses in text.
constexpr bool isBlankByte(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// A set of byte values.
using ByteSet = std::array<bool, 256>;

constexpr ByteSet makeByteSet(std::string_view members) {
  ByteSet set{};
  for (char c : members) set[static_cast<unsigned char>(c)] = true;
  return set;
}

inline constexpr ByteSet kNameDelimiters = makeByteSet(" \t\v\r\f\n()|*?+<>=\"'&");

// A byte that ends a name in a tag. An entity name ends at these and at ";".
constexpr bool isNameDelimiter(char c) { return kNameDelimiters[static_cast<unsigned char>(c)]; }

// The length of the marked unit that begins at `i` (1 for any other byte), cut to the bytes left in `s`; needs
// `i < s.size()`. No trail byte of a double-byte code page is white, a quote, "<", ">" or "&", so that a walk which
// looks for these need not ask the locale.
constexpr size_t markedLength(std::string_view s, size_t i) {
  const size_t length = s[i] == kPairMark ? 2 : s[i] == kQuadMark ? 4 : 1;
  return length <= s.size() - i ? length : s.size() - i;
}

// As pclen at byte `i` of `s`, but at least 1, so that a NUL does not stop a walk, and never more than the bytes left
// in `s`. Reads nothing past the end of `s`. 0 only at or past the end.
size_t unitLength(std::string_view s, size_t i);

// Whether byte `i` is a tab, LF, CR or blank; false past the end.
constexpr bool isWhite(std::string_view s, size_t i) { return i < s.size() && isBlankByte(s[i]); }

// Whether bytes `i` and `i + 1` are CR, LF.
constexpr bool isCrLf(std::string_view s, size_t i) {
  return i < s.size() && s.size() - i > 1 && s[i] == '\r' && s[i + 1] == '\n';
}

// `a` to `z` raised, any other byte as it is.
constexpr char upperByte(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// `a` to `z` or `A` to `Z`.
constexpr bool isLetterByte(char c) { return upperByte(c) >= 'A' && upperByte(c) <= 'Z'; }

// Whether `s` with its letters raised is `upper`.
constexpr bool equalsFolded(std::string_view s, std::string_view upper) {
  if (s.size() != upper.size()) return false;
  for (size_t i = 0; i < s.size(); ++i) {
    if (upperByte(s[i]) != upper[i]) return false;
  }
  return true;
}

// Raise `a` to `z`, or lower `A` to `Z`, in place; no other byte changes, whatever the locale says.
void upperCase(std::string& s);
void lowerCase(std::string& s);

// Removes white bytes from the start if `left`, from the end if `right`. Returns the new length in bytes.
int trim(std::string& s, bool left, bool right);

// Shrinks each run of white bytes to one blank in the `count` bytes from byte `from`; a negative `count` means to the
// end. A white byte just before `from` is the start of a run, so that the rest of that run goes. A `from` inside a unit
// moves behind it. Returns the change in length, zero or negative; `from` past the end gives 0.
int collapseWhite(std::string& s, size_t from, std::ptrdiff_t count);

// The display column (0-based) behind bytes `from` up to `to`, if byte `from` stands in column `start`. A unit counts
// as one column, an LF goes back to 0.
int columnAt(std::string_view s, size_t from, size_t to, int start);

// Replaces each tab with blanks up to the next multiple of 8, the first byte being in `column`. Returns the final
// column.
int expandTabs(std::string& s, int column);

// The number of LF bytes in `s`, and its length in bytes.
std::pair<int, int> countLines(std::string_view s);

// Breaks lines: a blank at a column of at least `limit` is replaced, with the blanks right behind it, by CR LF and
// `indent` blanks. Negative values count as 0. Returns the number of breaks.
int wrapLines(std::string& s, int limit, int indent);

}  // namespace zeldom40
