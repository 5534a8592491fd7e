// Recognises files that are no pages in a form that the library reads.
#include "tools/zeldom/source_form.h"

#include <algorithm>
#include <cstddef>

namespace zeldom40::tool {

namespace {

using std::string_view_literals::operator""sv;

// So much of a file tells its form, and in text that is not tiny at most one byte of so many is a control character.
constexpr std::size_t kLooked = 1024;
constexpr std::size_t kCompressedLooked = 16384;
constexpr std::size_t kRareControl = 25;
constexpr std::size_t kFewControls = 8;

struct Signature {
  std::size_t offset;
  std::string_view bytes;
  const char* name;
};

constexpr Signature kSignatures[] = {
    {0, "\x89PNG\r\n"sv, "a PNG picture"},
    {0, "GIF87a"sv, "a GIF picture"},
    {0, "GIF89a"sv, "a GIF picture"},
    {0, "\xFF\xD8\xFF"sv, "a JPEG picture"},
    {0, "II*\0"sv, "a TIFF picture"},
    {0, "MM\0*"sv, "a TIFF picture"},
    {0, "\0\0\1\0"sv, "an icon"},
    {0, "8BPS"sv, "a Photoshop picture"},
    {0, "\0\0\0\x0CjP  "sv, "a JPEG 2000 picture"},
    {0, "%PDF-"sv, "a PDF document"},
    {0, "\xD0\xCF\x11\xE0"sv, "an Office document"},
    {0, "PK\3\4"sv, "a ZIP archive"},
    {0, "PK\5\6"sv, "a ZIP archive"},
    {0, "\x1F\x8B\x08"sv, "gzip data"},
    {0, "BZh91AY&SY"sv, "bzip2 data"},
    {0,
     "\xFD"
     "7zXZ\0"sv,
     "xz data"},
    {0, "7z\xBC\xAF\x27\x1C"sv, "a 7z archive"},
    {0, "Rar!\x1A\x07"sv, "a RAR archive"},
    {257, "ustar"sv, "a tar archive"},
    {0,
     "\x7F"
     "ELF"sv,
     "a program"},
    {0, "\xCA\xFE\xBA\xBE"sv, "a Java class"},
    {0, "\0asm"sv, "a WebAssembly module"},
    {0, "wOFF"sv, "a font"},
    {0, "wOF2"sv, "a font"},
    {0, "\0\1\0\0"sv, "a font"},
    {0, "OggS"sv, "a recording"},
    {0, "SQLite format 3"sv, "a database"},
};

bool isControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  // Line ends, blanks, the escapes of Japanese charsets and the end mark of old editors are text.
  const bool known = (byte >= 8 && byte <= 15) || byte == 0x1A || byte == 0x1B;
  return byte == 127 || (byte < 32 && !known);
}

bool hasTooManyControls(std::string_view bytes) {
  const auto count = static_cast<std::size_t>(std::count_if(bytes.begin(), bytes.end(), isControl));
  return count > kFewControls && count * kRareControl > bytes.size();
}

}  // namespace

std::string wideForm(std::string_view bytes) {
  if (bytes.substr(0, 4) == "\xFF\xFE\0\0"sv) return "UTF-32, low byte first";
  if (bytes.substr(0, 4) == "\0\0\xFE\xFF"sv) return "UTF-32, high byte first";
  if (bytes.substr(0, 2) == "\xFF\xFE"sv) return "UTF-16, low byte first";
  if (bytes.substr(0, 2) == "\xFE\xFF"sv) return "UTF-16, high byte first";
  const std::string_view head = bytes.substr(0, std::min(bytes.size(), kLooked) / 4 * 4);
  std::size_t nuls[4] = {};
  for (std::size_t i = 0; i < head.size(); ++i) nuls[i % 4] += head[i] == '\0';
  // Most of the characters of a page are those of its tags, whatever language its text is in.
  const std::size_t places = head.size() / 4;
  const auto most = [places](std::size_t count) { return places > 0 && count * 2 > places; };
  const auto few = [places](std::size_t count) { return count * 10 <= places; };
  if (most(nuls[0]) && most(nuls[1]) && most(nuls[2]) && few(nuls[3])) return "UTF-32, high byte first";
  if (few(nuls[0]) && most(nuls[1]) && most(nuls[2]) && most(nuls[3])) return "UTF-32, low byte first";
  if (most((nuls[0] + nuls[2]) / 2) && few((nuls[1] + nuls[3]) / 2)) return "UTF-16, high byte first";
  if (most((nuls[1] + nuls[3]) / 2) && few((nuls[0] + nuls[2]) / 2)) return "UTF-16, low byte first";
  return {};
}

std::string foreignForm(std::string_view bytes) {
  for (const Signature& signature : kSignatures) {
    if (bytes.size() >= signature.offset && bytes.substr(signature.offset, signature.bytes.size()) == signature.bytes) {
      return signature.name;
    }
  }
  if (std::string form = wideForm(bytes); !form.empty()) return form;
  // A head of text may stand before pictures and the like.
  const bool binary =
      hasTooManyControls(bytes.substr(0, kLooked)) || hasTooManyControls(bytes.substr(0, kCompressedLooked));
  return binary ? "no text" : std::string();
}

}  // namespace zeldom40::tool
