// Edits pages of dynamic elements at random: random_dynamic --edits N --seed S [--document K] [page ...].
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "dom/dtd/DTDFrame.h"
#include "fuzz/DynamicHost.h"

int main(int count, char** words) {
  using namespace zeldom40;
  unsigned long edits = 100000;
  unsigned long seed = 1;
  unsigned long document = 0;
  std::vector<std::string> pages = {""};
  for (int i = 1; i < count; ++i) {
    const std::string word = words[i];
    unsigned long* option = word == "--edits"      ? &edits
                            : word == "--seed"     ? &seed
                            : word == "--document" ? &document
                                                   : nullptr;
    if (option && i + 1 < count) {
      *option = std::strtoul(words[++i], nullptr, 10);
      continue;
    }
    std::ifstream file(word, std::ios::binary);
    if (!file) {
      std::fprintf(stderr, "usage: random_dynamic [--edits N] [--seed S] [--document K] [page ...]\n");
      return 2;
    }
    pages.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  const bool alone = document != 0;
  unsigned long done = 0;
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  dom->getDocumentType()->getDTDFrame()->readDeferred();
  const long nodesOfDom = liveNodes::count;
  for (; done < edits; ++document) {
    fuzz::Choices choices(seed * 1000003 + document);
    std::string fault;
    {
      fuzz::DynamicHost host(dom, choices, pages[document % pages.size()]);
      for (int i = 0; i < 150 && fault.empty(); ++i, ++done) fault = host.step();
      if (fault.empty()) fault = host.unwind();
    }
    if (fault.empty() && liveNodes::count != nodesOfDom) fault = "nodes are left";
    if (!fault.empty()) {
      std::fprintf(stderr, "seed %lu, document %lu: %s\n", seed, document, fault.c_str());
      return 1;
    }
    if (alone) break;
  }
  DOM::destroyDOM(dom);
  std::printf("seed %lu: %lu edits of dynamic pages, no fault\n", seed, done);
  return 0;
}
