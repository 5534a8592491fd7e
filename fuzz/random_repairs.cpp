// Repairs small broken pages node by node and finding by finding: random_repairs [--pages N] [--seed S] [--page K].
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "dom/dtd/DTDFrame.h"
#include "fuzz/RepairLoops.h"

int main(int count, char** words) {
  using namespace zeldom40;
  unsigned long pages = 12000;
  unsigned long seed = 1;
  unsigned long alone = ~0ul;  // this one, which is shown first, for a fault may end the program
  for (int i = 1; i < count; i += 2) {
    unsigned long* option = std::strcmp(words[i], "--pages") == 0  ? &pages
                            : std::strcmp(words[i], "--seed") == 0 ? &seed
                            : std::strcmp(words[i], "--page") == 0 ? &alone
                                                                   : nullptr;
    if (!option || i + 1 == count) {
      std::fprintf(stderr, "usage: random_repairs [--pages N] [--seed S] [--page K]\n");
      return 2;
    }
    *option = std::strtoul(words[i + 1], nullptr, 10);
  }
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  dom->getDocumentType()->getDTDFrame()->readDeferred();
  fuzz::SmallPage random(seed);
  for (unsigned long page = 0; page < pages; ++page) {
    const std::string text = random.next();
    if (alone != ~0ul && page != alone) continue;
    if (page == alone) std::printf("%s\n", text.c_str());
    const std::string fault = fuzz::repairLoopsHold(dom, text);
    if (fault.empty()) continue;
    std::fprintf(stderr, "seed %lu, page %lu: %s\n", seed, page, fault.c_str());
    return 1;
  }
  DOM::destroyDOM(dom);
  std::printf("seed %lu: %lu pages, no fault\n", seed, pages);
  return 0;
}
