// Edits random pages at random and says how many edits it got through: random_edits --edits N --seed S.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "dom/dtd/DTDFrame.h"
#include "fuzz/EditHost.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Options {
  unsigned long edits = 100000;
  unsigned long seed = 1;
  unsigned long document = 0;  // run this one alone
};

bool readOptions(int count, char** words, Options& options) {
  for (int i = 1; i + 1 < count; i += 2) {
    const std::string name = words[i];
    char* end = nullptr;
    const unsigned long value = std::strtoul(words[i + 1], &end, 10);
    if (*end || end == words[i + 1]) return false;
    if (name == "--edits") {
      options.edits = value;
    } else if (name == "--seed") {
      options.seed = value;
    } else if (name == "--document") {
      options.document = value;
    } else {
      return false;
    }
  }
  return count % 2 == 1;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace zeldom40;
  Options options;
  if (!readOptions(argc, argv, options)) {
    std::fprintf(stderr, "usage: random_edits [--edits N] [--seed S] [--document K]\n");
    return 2;
  }
  constexpr unsigned long kEditsPerDocument = 400;
  const Clock::time_point start = Clock::now();
  const long nodesBefore = liveNodes::count;
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  dom->getDocumentType()->getDTDFrame()->readDeferred();
  const long nodesOfDom = liveNodes::count;
  unsigned long done = 0;
  for (unsigned long document = options.document; done < options.edits; ++document) {
    // Each document has a seed of its own, so that one that failed can be run alone.
    fuzz::Choices choices(options.seed * 1000003 + document);
    std::string fault;
    {
      fuzz::EditHost host(dom, choices, document % 8 == 7 ? "JSP" : "HTML");
      unsigned long edits = 0;
      for (; edits < kEditsPerDocument && fault.empty(); ++edits) fault = host.step();
      if (fault.empty()) fault = host.unwind();
      done += edits;
    }
    if (fault.empty() && liveNodes::count != nodesOfDom) fault = "nodes are left";
    if (!fault.empty()) {
      std::fprintf(stderr, "seed %lu, document %lu, edit %lu: %s\n", options.seed, document, done, fault.c_str());
      return 1;
    }
    if (options.document) break;
  }
  DOM::destroyDOM(dom);
  if (liveNodes::count != nodesBefore) {
    std::fprintf(stderr, "nodes are left behind the DOM\n");
    return 1;
  }
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  std::printf("seed %lu: %lu edits, no fault, %.0f edits/s, %.0f s\n", options.seed, done,
              static_cast<double>(done) / seconds, seconds);
  return 0;
}
