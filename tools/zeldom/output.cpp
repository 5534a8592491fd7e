// Results on standard output: buffered, in colour where a reader can see it, with page bytes made harmless.
#include "tools/zeldom/output.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace zeldom40::tool {

namespace {

constexpr std::size_t kPiece = 1 << 16;

const char* escapeOf(Colour colour) {
  switch (colour) {
    case Colour::kName:
      return "\033[1m";
    case Colour::kText:
      return "\033[32m";
    case Colour::kFaint:
      return "\033[2m";
    case Colour::kError:
      return "\033[31m";
    case Colour::kPlain:
      break;
  }
  return "";
}

bool wantsColours() {
  const char* refused = std::getenv("NO_COLOR");
  return !(refused && *refused) && isatty(STDOUT_FILENO);
}

// Length of the UTF-8 sequence that starts `text`, 0 if none does. Surrogates and over-long forms are none.
std::size_t sequenceLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xC2 && lead < 0xE0   ? 2
                             : lead >= 0xE0 && lead < 0xF0 ? 3
                             : lead >= 0xF0 && lead < 0xF5 ? 4
                                                           : 0;
  if (!length || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
  }
  const unsigned second = byte(1);
  const bool wrong = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                     (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
  return wrong ? 0 : length;
}

void appendEscape(std::string* out, unsigned char byte) {
  switch (byte) {
    case '\n':
      *out += "\\n";
      return;
    case '\r':
      *out += "\\r";
      return;
    case '\t':
      *out += "\\t";
      return;
    case '"':
    case '\\':
      *out += '\\';
      *out += static_cast<char>(byte);
      return;
    default:
      constexpr char digits[] = "0123456789abcdef";
      *out += "\\x";
      *out += digits[byte >> 4];
      *out += digits[byte & 15];
  }
}

}  // namespace

Output::Output() : colours_(wantsColours()) {}

Output& Output::operator<<(std::string_view text) {
  buffer_ += text;
  if (buffer_.size() >= kPiece) flush();
  return *this;
}

Output& Output::paint(Colour colour, std::string_view text) {
  if (!colours_) return *this << text;
  return *this << escapeOf(colour) << text << "\033[0m";
}

Output& Output::pad(std::size_t used, std::size_t width) {
  if (used < width) buffer_.append(width - used, ' ');
  return *this;
}

bool Output::flush() {
  if (!broken_ && !buffer_.empty()) {
    broken_ = std::fwrite(buffer_.data(), 1, buffer_.size(), stdout) != buffer_.size();
  }
  buffer_.clear();
  return !broken_;
}

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = sequenceLength(text);
    if (!length) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::string preview(std::string_view text, std::size_t limit, bool utf8) {
  std::string out;
  std::size_t shown = 0;
  while (shown < text.size()) {
    const auto byte = static_cast<unsigned char>(text[shown]);
    const std::size_t length = utf8 ? sequenceLength(text.substr(shown)) : byte < 0x80 ? 1 : 0;
    const std::size_t step = length ? length : 1;
    if (shown + step > limit) {
      out += "...";
      break;
    }
    // U+0080 to U+009F are control characters in two bytes.
    const bool control =
        byte < 32 || byte == 127 || (byte == 0xC2 && length == 2 && static_cast<unsigned char>(text[shown + 1]) < 0xA0);
    if (!length || control || byte == '"' || byte == '\\') {
      for (std::size_t i = 0; i < step; ++i) appendEscape(&out, static_cast<unsigned char>(text[shown + i]));
    } else {
      out += text.substr(shown, step);
    }
    shown += step;
  }
  return out;
}

std::string jsonText(std::string_view text, bool utf8) {
  if (utf8 && isUtf8(text)) return std::string(text);
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      out += c;
    } else {
      out += static_cast<char>(0xC0 | (byte >> 6));
      out += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return out;
}

}  // namespace zeldom40::tool
