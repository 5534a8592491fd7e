// A file as its bytes and as the text that the library works on, and the way back.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "dom/zeldom40.h"

namespace zeldom40::tool {

// Tells whether a file was written to.
struct FileStamp {
  std::int64_t size = -1;
  std::int64_t seconds = 0;  // of the last write, with the nanoseconds
  std::int64_t nanoseconds = 0;

  bool operator==(const FileStamp&) const = default;
};

struct SourceFile {
  std::string path;
  std::string bytes;
  std::string text;  // with CR LF line ends, and in Shift-JIS where the code page is 932
  CodeConv::Charset charset = CodeConv::CHARSET_NONE;
  CodeConv::Newline newline = CodeConv::NEWLINE_CRLF;
  FileStamp stamp;  // from before it was read
};

// The code page that the bytes ask for: 932 where the page names a Japanese charset or holds escape sequences of
// ISO-2022-JP, 65001 for UTF-8, else 1252. `charset` is set to what was named, or to CHARSET_AUTO.
int guessCodepage(std::string_view bytes, CodeConv::Charset* charset);

// Reads a file and imports it under `codepage`, which becomes that of the process; 0 guesses. On failure says why on
// stderr and returns false.
bool readSource(const std::string& path, int codepage, SourceFile* file);

// The text that other bytes of the same file would have.
std::string importText(const SourceFile& file, std::string_view bytes);

// The bytes of a stretch of text in the file's charset and with its line ends.
std::string exportText(const SourceFile& file, std::string_view text);

// The name of the file's charset for other programs; null if it is not known.
const char* charsetName(const SourceFile& file);

}  // namespace zeldom40::tool
