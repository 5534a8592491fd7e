// Results on standard output: buffered, in colour where a reader can see it, with page bytes made harmless.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zeldom40::tool {

enum class Colour : std::uint8_t { kPlain, kName, kText, kFaint, kError };

// Collects the results and hands them on in large pieces.
class Output {
 public:
  // Colours only for a terminal, and not where NO_COLOR asks for none.
  Output();
  ~Output() { flush(); }
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  Output& operator<<(std::string_view text);
  Output& operator<<(std::size_t number) { return *this << std::to_string(number); }
  Output& paint(Colour colour, std::string_view text);
  // Blanks up to `width`, where `used` columns are written already.
  Output& pad(std::size_t used, std::size_t width);
  // Writes what is collected. False if standard output does not take it; then all that follows is dropped.
  bool flush();

 private:
  std::string buffer_;
  bool colours_;
  bool broken_ = false;
};

bool isUtf8(std::string_view text);

// `text` in one line that a terminal shows and does not obey: control characters, quotes and, unless `utf8`, all bytes
// above 126 appear as escapes. At most `limit` bytes of `text` are shown; "..." marks the cut.
std::string preview(std::string_view text, std::size_t limit, bool utf8);

// `text` for JSON: as it is if `utf8`, else each byte as the character of that number, so that no byte is lost.
std::string jsonText(std::string_view text, bool utf8);

}  // namespace zeldom40::tool
