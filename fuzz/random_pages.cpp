// Runs random pages through every check and says how many it got through: random_pages --pages N --seed S.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "fuzz/PageCheck.h"
#include "fuzz/RandomPage.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Options {
  unsigned long pages = 100000;
  unsigned long seed = 1;
  unsigned long seconds = 0;  // 0: no limit
  std::string out = "fuzz";   // folder for a page that found a fault
};

bool readOptions(int count, char** words, Options& options) {
  for (int i = 1; i < count; i += 2) {
    if (i + 1 >= count) return false;
    const std::string name = words[i];
    if (name == "--out") {
      options.out = words[i + 1];
      continue;
    }
    char* end = nullptr;
    const unsigned long value = std::strtoul(words[i + 1], &end, 10);
    if (*end || end == words[i + 1]) return false;
    if (name == "--pages") {
      options.pages = value;
    } else if (name == "--seed") {
      options.seed = value;
    } else if (name == "--seconds") {
      options.seconds = value;
    } else {
      return false;
    }
  }
  return true;
}

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

}  // namespace

int main(int argc, char** argv) {
  using zeldom40::DOM;
  Options options;
  if (!readOptions(argc, argv, options)) {
    std::fprintf(stderr, "usage: random_pages [--pages N] [--seed S] [--seconds T] [--out FOLDER]\n");
    return 2;
  }
  constexpr unsigned long kPagesPerDom = 500;
  const Clock::time_point start = Clock::now();
  zeldom40::fuzz::PageCheck check(DOM::JSP_VERSION_0, /*declaringPagesPerDom=*/50);
  zeldom40::fuzz::RandomPage random(options.seed, *check.dom()->getDocumentType());
  unsigned long long bytes = 0;
  unsigned long done = 0;
  for (; done < options.pages; ++done) {
    if (options.seconds && done % 64 == 0 && secondsSince(start) > static_cast<double>(options.seconds)) break;
    std::string fault;
    if (done % kPagesPerDom == 0) {
      fault = check.renew(done / kPagesPerDom % 2 ? DOM::JSP_VERSION_1 : DOM::JSP_VERSION_0);
    }
    const std::string page = random.next();
    if (fault.empty()) fault = check.everyWay(page);
    bytes += page.size();
    if (!fault.empty()) {
      const std::string file = options.out + "/found-" + std::to_string(options.seed) + ".html";
      std::ofstream(file, std::ios::binary).write(page.data(), static_cast<std::streamsize>(page.size()));
      std::fprintf(stderr, "page %lu of seed %lu (JSP version %d): %s; kept in %s\n", done, options.seed,
                   check.dom()->getJSPVersion(), fault.c_str(), file.c_str());
      return 1;
    }
    if (done % 100000 == 99999) {
      std::printf("%lu pages, %.0f a second\n", done + 1, static_cast<double>(done + 1) / secondsSince(start));
      std::fflush(stdout);
    }
  }
  const double seconds = secondsSince(start);
  std::printf(
      "seed %lu: %lu pages, %.1f MB, each as page and as fragment of two kinds of document: no difference, %.0f "
      "pages/s, %.0f s\n",
      options.seed, done, static_cast<double>(bytes) / 1e6, static_cast<double>(done) / seconds, seconds);
  return 0;
}
