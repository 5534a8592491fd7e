// CodeConv: turns the bytes of a file into the internal text of a page, and back.
#pragma once

#include <memory>
#include <string_view>

#include "dom/export.h"

namespace zeldom40 {

class ByteBuffer;

// Internal text has CR LF line ends and, where the code page is 932, Shift-JIS coding; under any other code page the
// bytes pass as they are and only the line ends are treated. An object keeps the charset and the line ends of what it
// has imported, so that a page can be written back as it came.
//
// The static settings belong to the whole process and are not guarded: set them at the start. Bytes that are wrong in
// their charset are passed along, never reported.
class ZELDOM40_API CodeConv {
 public:
  enum Charset {
    CHARSET_AUTO = 0,     // import: detect; export: as imported
    CHARSET_SJIS = 1,     // Shift-JIS
    CHARSET_JIS = 2,      // ISO-2022-JP
    CHARSET_EUC = 3,      // EUC
    CHARSET_NONE = 4,     // not Japanese: no conversion
    CHARSET_DEFAULT = 5,  // the static setting
  };
  enum Newline {
    NEWLINE_AUTO = 0,     // export: as imported
    NEWLINE_CRLF = 1,     //
    NEWLINE_LF = 2,       //
    NEWLINE_CR = 3,       //
    NEWLINE_DEFAULT = 4,  // the static setting
  };

  // What CHARSET_DEFAULT and NEWLINE_DEFAULT stand for; at first CHARSET_AUTO, CHARSET_AUTO and NEWLINE_CRLF.
  static void SetImportCharset(Charset charset);
  static Charset GetImportCharset();
  static void SetExportCharset(Charset charset);
  static Charset GetExportCharset();
  static void SetExportNewline(Newline newline);
  static Newline GetExportNewline();

  // The code page of the process; at first 1252.
  static void SetCodepage(int codepage);
  static int GetCodepage();

  // Finds the first run of half-width kana in Shift-JIS text. Returns its position in bytes (0-based) and stores its
  // length in bytes in `*length`, which may be null; -1, with length 0, if there is none or the text is null or empty.
  static int FindHankaku(const char* text, int* length);

  // Returns a copy of Shift-JIS text with half-width kana changed to full-width. The caller owns it and gives it to
  // DestroyData. Null for null or empty text.
  static char* HanToZen(const char* text);

  // Frees what HanToZen returned; null is fine.
  static void DestroyData(char* data);

  CodeConv();
  CodeConv(const CodeConv&) = delete;
  CodeConv& operator=(const CodeConv&) = delete;
  ~CodeConv();

  // Turns `length` bytes of a file into internal text; a negative length means up to the NUL. A last byte 0x1A, the end
  // mark of old editors, is dropped, and each NUL becomes a blank. The first line end decides what GetNewline answers.
  // A byte order mark of UTF-8 at the start is kept; where the charset is to be detected it says CHARSET_NONE.
  // Returns the text, closed by a NUL, which lives until the next Import and belongs to this object. Null, with nothing
  // changed, if there are no bytes.
  const char* Import(const char* data, int length, Charset charset);

  // Turns `length` bytes of internal text into those of a file; a negative length means up to the NUL. Returns a string
  // closed by a NUL, which lives until the next Export and belongs to this object; or `text` itself, not cut to
  // `length`, when nothing had to change. Null for null text or length 0.
  const char* Export(const char* text, int length, Charset charset, Newline newline);

  // The charset and the line ends of the last import; before one CHARSET_NONE and NEWLINE_CRLF.
  Charset GetCharset() const;
  Newline GetNewline() const;
  // Sets the line ends that Export writes for NEWLINE_AUTO.
  void SetNewline(Newline newline);

 private:
  friend struct CodeConvProbe;  // the tests' way to the forms for every kind

  // What the conversions go between. The numbers are those of the classifier.
  enum Kind { KIND_ANY = 0, KIND_JIS = 1, KIND_SJIS = 2, KIND_EUC = 3 };

  // The kind of Japanese text, Shift-JIS when in doubt.
  static Kind detect(std::string_view text);
  // Appends `text` of kind `from` (KIND_ANY: detect) to `out` as kind `to`; false, with nothing appended, if there is
  // no such conversion.
  static bool convert(std::string_view text, Kind from, Kind to, ByteBuffer& out);
  static bool convertBehindMark(std::string_view text, Kind from, Kind to, ByteBuffer& out);
  static int findHankaku(std::string_view text, Kind kind, int* length);
  static std::unique_ptr<char[]> hanToZen(std::string_view text, Kind kind);

  std::unique_ptr<char[]> importBuffer_;
  std::unique_ptr<char[]> exportBuffer_;
  Charset charset_ = CHARSET_NONE;
  Newline newline_ = NEWLINE_CRLF;
};

}  // namespace zeldom40
