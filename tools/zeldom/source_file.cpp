// Finds out in what charset a file is, imports and exports it.
#include "tools/zeldom/source_file.h"

#include <algorithm>
#include <iterator>

#include "tools/zeldom/output.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

namespace {

constexpr int kLatin = 1252;
constexpr int kJapanese = 932;
constexpr int kUtf8 = 65001;

struct NamedCharset {
  std::string_view name;
  CodeConv::Charset charset;
};

// What META elements and directives call the Japanese charsets, in lower case.
constexpr NamedCharset kNames[] = {
    {"shift_jis", CodeConv::CHARSET_SJIS},   {"shift-jis", CodeConv::CHARSET_SJIS},
    {"x-sjis", CodeConv::CHARSET_SJIS},      {"sjis", CodeConv::CHARSET_SJIS},
    {"windows-31j", CodeConv::CHARSET_SJIS}, {"cp932", CodeConv::CHARSET_SJIS},
    {"euc-jp", CodeConv::CHARSET_EUC},       {"x-euc-jp", CodeConv::CHARSET_EUC},
    {"iso-2022-jp", CodeConv::CHARSET_JIS},
};

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool startsWith(std::string_view text, std::string_view lowerWord) {
  return text.size() >= lowerWord.size() &&
         std::equal(lowerWord.begin(), lowerWord.end(), text.begin(), [](char a, char b) { return a == lower(b); });
}

// The Japanese charset that the first "charset=" of the page names, CHARSET_AUTO if it names none.
CodeConv::Charset namedCharset(std::string_view bytes) {
  constexpr std::string_view kWord = "charset";
  for (std::size_t i = bytes.find_first_of("cC"); i != std::string_view::npos; i = bytes.find_first_of("cC", i + 1)) {
    if (!startsWith(bytes.substr(i), kWord)) continue;
    std::size_t at = bytes.find_first_not_of(" \t\r\n", i + kWord.size());
    if (at == std::string_view::npos || bytes[at] != '=') continue;
    at = bytes.find_first_not_of(" \t\r\n\"'", at + 1);
    if (at == std::string_view::npos) break;
    for (const NamedCharset& named : kNames) {
      if (startsWith(bytes.substr(at), named.name)) return named.charset;
    }
    break;
  }
  return CodeConv::CHARSET_AUTO;
}

bool hasJisEscapes(std::string_view bytes) {
  constexpr std::string_view kEscapes[] = {"\033$B", "\033$@", "\033(I"};
  return std::any_of(std::begin(kEscapes), std::end(kEscapes),
                     [&](std::string_view escape) { return bytes.find(escape) != std::string_view::npos; });
}

}  // namespace

int guessCodepage(std::string_view bytes, CodeConv::Charset* charset) {
  *charset = CodeConv::CHARSET_AUTO;
  if (hasJisEscapes(bytes)) {
    *charset = CodeConv::CHARSET_JIS;
    return kJapanese;
  }
  *charset = namedCharset(bytes);
  if (*charset != CodeConv::CHARSET_AUTO) return kJapanese;
  return isUtf8(bytes) ? kUtf8 : kLatin;
}

bool readSource(const std::string& path, int codepage, SourceFile* file) {
  file->path = path;
  if (!readInput(path, &file->bytes, &file->stamp)) return false;
  CodeConv::Charset charset = CodeConv::CHARSET_AUTO;
  const int guessed = guessCodepage(file->bytes, &charset);
  CodeConv::SetCodepage(codepage ? codepage : guessed);
  CodeConv converter;
  const char* text = converter.Import(file->bytes.data(), static_cast<int>(file->bytes.size()), charset);
  file->text = text ? text : "";
  file->charset = converter.GetCharset();
  file->newline = converter.GetNewline();
  return true;
}

std::string importText(const SourceFile& file, std::string_view bytes) {
  CodeConv converter;
  const char* text = converter.Import(bytes.data(), static_cast<int>(bytes.size()), file.charset);
  return text ? text : "";
}

std::string exportText(const SourceFile& file, std::string_view text) {
  if (text.empty()) return {};
  const std::string closed(text);
  CodeConv converter;
  return converter.Export(closed.c_str(), static_cast<int>(closed.size()), file.charset, file.newline);
}

const char* charsetName(const SourceFile& file) {
  switch (file.charset) {
    case CodeConv::CHARSET_SJIS:
      return "shift_jis";
    case CodeConv::CHARSET_JIS:
      return "iso-2022-jp";
    case CodeConv::CHARSET_EUC:
      return "euc-jp";
    default:
      return CodeConv::GetCodepage() == kUtf8 ? "utf-8" : nullptr;
  }
}

}  // namespace zeldom40::tool
