// Edits a page as the bytes say: each step must leave a sound tree, and undo must give back every state.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "dom/dtd/DTDFrame.h"
#include "fuzz/EditHost.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zeldom40;
  static DOM* const dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  dom->getDocumentType()->getDTDFrame()->readDeferred();
  const long before = liveNodes::count;
  fuzz::Choices choices(std::string_view(reinterpret_cast<const char*>(data), size));
  std::string fault;
  {
    fuzz::EditHost host(dom, choices, choices.chance(8) ? "JSP" : "HTML");
    while (!choices.atEnd() && fault.empty()) fault = host.step();
    if (fault.empty()) fault = host.unwind();
  }
  if (fault.empty() && liveNodes::count != before) fault = "nodes are left";
  if (!fault.empty()) {
    std::fprintf(stderr, "%s\n", fault.c_str());
    std::abort();
  }
  return 0;
}
