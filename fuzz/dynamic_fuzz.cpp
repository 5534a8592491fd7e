// Edits a page of dynamic elements as the bytes say: what a save writes must be what the edited tree stands for. Bytes
// with a "<" among the first are a page of any quality instead, which must come to rest; seeds for those are
// tests/container/pages/*.html.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "fuzz/DynamicHost.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zeldom40;
  static DOM* const dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string_view page = fuzz::hostilePage(bytes);
  std::string fault = page.empty() ? std::string() : fuzz::saveIsStable(dom, page);
  if (page.empty()) {
    fuzz::Choices choices(bytes);
    fuzz::DynamicHost host(dom, choices);
    while (!choices.atEnd() && fault.empty()) fault = host.step();
    if (fault.empty()) fault = host.unwind();
  }
  if (!fault.empty()) {
    std::fprintf(stderr, "%s\n", fault.c_str());
    std::abort();
  }
  return 0;
}
