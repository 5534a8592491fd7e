// libFuzzer target: any bytes through the code conversions. The first three bytes select charsets, line ends and code
// page.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "dom/zeldom40.h"

namespace {

using zeldom40::CodeConv;

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

void importAndExport(const std::string& text, const std::uint8_t* choice) {
  constexpr int kCodepages[] = {1252, 932, 65001, 0};
  CodeConv::SetCodepage(kCodepages[choice[0] % 4]);
  const auto from = static_cast<CodeConv::Charset>(choice[1] % 6);
  const auto to = static_cast<CodeConv::Charset>(choice[2] % 6);
  const auto newline = static_cast<CodeConv::Newline>(choice[0] / 4 % 5);
  // No byte behind the text may be looked at, so it stands in memory of its exact size.
  char* exact = new char[text.size()];
  std::memcpy(exact, text.data(), text.size());
  CodeConv conv;
  const char* internal = conv.Import(exact, static_cast<int>(text.size()), from);
  require((internal == nullptr) == text.empty(), "text without result, or a result without text");
  if (internal) {
    const std::string kept(internal);
    require(kept.find('\n') == std::string::npos || kept.find("\r\n") != std::string::npos, "a bare LF came in");
    conv.GetCharset();
    conv.GetNewline();
    conv.Export(internal, -1, to, newline);
    conv.Export(internal, static_cast<int>(kept.size()), to, newline);
    require(kept == internal, "an export changed the import");
  }
  delete[] exact;
}

void halfWidth(const std::string& text) {
  int length = 0;
  const int at = CodeConv::FindHankaku(text.c_str(), &length);
  const auto bytes = static_cast<int>(std::strlen(text.c_str()));
  require(at == -1 ? length == 0 : at >= 0 && length > 0 && at + length <= bytes, "a run outside the text");
  char* full = CodeConv::HanToZen(text.c_str());
  require((full == nullptr) == (bytes == 0), "text without full-width form, or the reverse");
  if (full) require(CodeConv::FindHankaku(full, nullptr) == -1, "half-width kana left");
  CodeConv::DestroyData(full);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kChoices = 3;
  if (size < kChoices) return 0;
  const std::string text(reinterpret_cast<const char*>(data) + kChoices, size - kChoices);
  importAndExport(text, data);
  halfWidth(text);
  return 0;
}
