// Makes one small edit on each of many random pages and looks what else has changed: random_rewrites --edits N --seed
// S.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "dom/dtd/DTDFrame.h"
#include "fuzz/RewriteHost.h"

int main(int argc, char** argv) {
  using namespace zeldom40;
  unsigned long edits = 100000;
  unsigned long seed = 1;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string name = argv[i];
    (name == "--edits" ? edits : seed) = std::strtoul(argv[i + 1], nullptr, 10);
    if (name != "--edits" && name != "--seed") argc = 0;
  }
  if (argc % 2 == 0) {
    std::fprintf(stderr, "usage: random_rewrites [--edits N] [--seed S]\n");
    return 2;
  }
  const auto start = std::chrono::steady_clock::now();
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  dom->getDocumentType()->getDTDFrame()->readDeferred();
  const long nodes = liveNodes::count;
  for (unsigned long edit = 0; edit < edits; ++edit) {
    fuzz::Choices choices(seed * 1000003 + edit);
    const std::string fault = fuzz::RewriteHost(dom, choices).step();
    if (!fault.empty() || liveNodes::count != nodes) {
      std::fprintf(stderr, "seed %lu, edit %lu: ", seed, edit);
      const std::string told = fault.empty() ? "nodes are left\n" : fault;
      std::fwrite(told.data(), 1, told.size(), stderr);  // pages hold NUL bytes
      return 1;
    }
  }
  DOM::destroyDOM(dom);
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
  std::printf("seed %lu: %lu edits, no fault, %.0f s\n", seed, edits, taken.count());
  return 0;
}
