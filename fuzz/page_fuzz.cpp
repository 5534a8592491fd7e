// libFuzzer target: any bytes as a page. The first byte selects the kind of document, page or fragment, and the JSP
// version.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "dom/source/CharHelpers.h"
#include "fuzz/PageCheck.h"

namespace {

using zeldom40::DOM;
using zeldom40::fuzz::PageCheck;

constexpr std::uint8_t kNotHTML = 1;
constexpr std::uint8_t kFragment = 2;
constexpr std::uint8_t kOldTags = 4;

// Such a wrapper without anything to show is dissolved by design, so its tags do not come back.
bool holdsVisual(std::string_view text) {
  std::string upper(text);
  zeldom40::upperCase(upper);
  return upper.find("ZELX:ATV") != std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static PageCheck check(DOM::JSP_VERSION_0);
  if (size == 0) return 0;
  const std::uint8_t mode = data[0];
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (holdsVisual(text)) return 0;
  check.dom()->setJSPVersion(mode & kOldTags ? DOM::JSP_VERSION_1 : DOM::JSP_VERSION_0);
  const char* type = mode & kNotHTML ? "JSP" : "HTML";
  const std::string fault = mode & kFragment ? check.fragment(text, type) : check.page(text, type);
  if (!fault.empty()) {
    std::fprintf(stderr, "%s\n", fault.c_str());
    std::abort();
  }
  return 0;
}
