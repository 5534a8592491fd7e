// The growth table: how the time for each hostile shape grows when the page doubles, all of it on a small stack.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <malloc.h>
#include <numeric>
#include <pthread.h>
#include <string>
#include <time.h>
#include <vector>

#include "bench/Shapes.h"
#include "dom/tree/NodePool.h"
#include "dom/zeldom40.h"

namespace zeldom40::bench {

namespace {

enum Phase { PARSE, WRITE, RUNTIME, CLONE, RELEASE, PHASES };
constexpr const char* kPhaseNames[PHASES] = {"parse", "write", "run-time", "clone", "release"};
constexpr std::size_t kSmallStack = 256 * 1024;
// Growth that is called linear: caches and page tables cost more for the larger page.
constexpr double kSteepest = 1.15;
// What takes less time than this in all is too short to have a slope.
constexpr double kTooShort = 0.004;
// A size that would take longer than this is not tried; the slope is known by then.
constexpr double kTooLong = 40;

struct Run {
  const char* documentType;
  const std::string* text;
  double seconds[PHASES] = {};
  long nodes = 0;
  bool same = false;
  bool changes = false;
};

// Processor time of this thread: the machine may have other work.
double processorSeconds() {
  timespec now;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double lap(double& last) {
  const double now = processorSeconds();
  const double seconds = now - last;
  last = now;
  return seconds;
}

bool writtenAs(const Document& document, Node* node, const std::string& text) {
  const char* written = document.getSourceBuf(node, Document::SOURCE_ALL, /*compact=*/false);
  const unsigned long length = document.getSourceBufLen(nullptr, Document::SOURCE_ALL, /*compact=*/false);
  return std::string_view(written, length) == text;
}

std::string sourceOf(const Document& document, Node* node) {
  const char* written = document.getSourceBuf(node, Document::SOURCE_ALL, /*compact=*/false);
  return std::string(written, document.getSourceBufLen(nullptr, Document::SOURCE_ALL, /*compact=*/false));
}

// Whether there was any metadata.
bool makeStale(Document& document, Node* root) {
  bool found = false;
  for (Node* n = root; n; n = document.findNextNode(n, root, /*updatedOnly=*/false, /*skipChildren=*/false)) {
    if (n->getNodeType() != Node::NODE_ELEMENT) continue;
    MetaData* metaData = static_cast<Element*>(n)->getMetaData();
    if (!metaData) continue;
    metaData->setDirty(true, /*runtimeOnly=*/false);
    found = true;
  }
  return found;
}

// The life of one page: the run-time text is generated once more, and the page that was saved is read and saved again,
// if it has any; release is that of the clone and of the page.
void* live(void* argument) {
  Run& run = *static_cast<Run*>(argument);
  // A page may add to the DTD, so each has a DOM of its own.
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  Document* document = dom->createDocument(run.documentType);
  const long before = liveNodes::count;
  double last = processorSeconds();
  Node* root = document->createNodes(run.text->data(), static_cast<unsigned>(run.text->size()), nullptr, false);
  run.seconds[PARSE] = lap(last);
  run.nodes = liveNodes::count - before;
  std::string saved = sourceOf(*document, root);
  run.seconds[WRITE] = lap(last);
  if (makeStale(*document, root)) {
    last = processorSeconds();
    run.same = writtenAs(*document, root, saved);
    Document* again = dom->createDocument(run.documentType);
    Node* read = again->createNodes(saved.data(), static_cast<unsigned>(saved.size()), nullptr, false);
    // What is read again once has its pairs; from there on a save changes nothing.
    if (!writtenAs(*again, read, saved)) {
      saved = sourceOf(*again, read);
      read = again->createNodes(saved.data(), static_cast<unsigned>(saved.size()), nullptr, false);
      run.changes = true;
      run.same = run.same && writtenAs(*again, read, saved);
    }
    run.seconds[RUNTIME] = lap(last);
    dom->deleteDocument(again);
    saved = sourceOf(*document, root);
  } else {
    run.same = saved == *run.text;
  }
  last = processorSeconds();
  Node* clone = root->makeClone(/*deep=*/true);
  clone->addRef(true);
  run.seconds[CLONE] = lap(last);
  run.same = run.same && writtenAs(*document, clone, saved);
  last = processorSeconds();
  clone->releaseRef(true);
  dom->deleteDocument(document);
  run.seconds[RELEASE] = lap(last);
  DOM::destroyDOM(dom);
  return nullptr;
}

bool onSmallStack(Run& run) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kSmallStack);
  pthread_t thread;
  const bool started = pthread_create(&thread, &attributes, live, &run) == 0;
  if (started) pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  return started;
}

// The best of some runs: others use the machine too, and the first has to fetch its memory from the system.
Run best(const char* documentType, const std::string& text, int most) {
  Run result{documentType, &text};
  double spent = 0;
  for (int i = 0; i < most && (i < 2 || spent < 1.5); ++i) {
    Run run{documentType, &text};
    if (!onSmallStack(run)) break;
    for (int p = 0; p < PHASES; ++p) {
      spent += run.seconds[p];
      result.seconds[p] = i ? std::min(result.seconds[p], run.seconds[p]) : run.seconds[p];
    }
    result.nodes = run.nodes;
    result.same = run.same && (i == 0 || result.same);
    result.changes = run.changes;
  }
  return result;
}

double slowest(const Run& run) { return *std::max_element(run.seconds, run.seconds + PHASES); }

// The exponent of a phase over the last doublings that were measured, at most three; 0 if it is too short to have one.
double slope(const std::vector<Run>& runs, int phase) {
  const Run& last = runs.back();
  const std::size_t doublings = std::min<std::size_t>(3, runs.size() - 1);
  if (doublings == 0 || last.seconds[phase] < kTooShort) return 0;
  const Run& first = runs[runs.size() - 1 - doublings];
  return std::log2(last.seconds[phase] / std::max(first.seconds[phase], 1e-9)) / static_cast<double>(doublings);
}

bool isSteep(const std::vector<Run>& runs) {
  for (int p = 0; p < PHASES; ++p) {
    if (slope(runs, p) > kSteepest) return true;
  }
  return false;
}

// Memory that was had once stays with the process. The system's price for fresh pages says nothing about the library,
// and it comes in steps that look like growth.
void keepMemory() {
  mallopt(M_ARENA_MAX, 1);
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
}

// Measures one shape at an eighth, a quarter, a half and the whole of its size; false if a phase grows too fast or the
// page comes back changed. A tree that outgrows the processor's caches on the way costs more from there on, once: what
// looks steep is tried at larger sizes, where only true growth stays steep.
bool measure(const Shape& shape, std::size_t divideBy) {
  std::vector<Run> runs;
  std::size_t bytes = 0;
  bool same = true;
  bool cut = false;
  std::size_t n = std::max<std::size_t>(1, shape.full / divideBy / 8);
  for (int size = 0; !cut && (size < 4 || (size < 8 && isSteep(runs))); ++size, n *= 2) {
    const std::string text = shape.make(n);
    bytes = text.size();
    runs.push_back(best(shape.documentType, text, 5));
    same = same && runs.back().same;
    cut = slowest(runs.back()) * 4 > kTooLong;
  }
  const bool steep = isSteep(runs);
  std::printf("%-34s %9zu B %8ld nodes ", shape.name, bytes, runs.back().nodes);
  for (int p = 0; p < PHASES; ++p) {
    const double exponent = slope(runs, p);
    std::printf(" %8.3f ", runs.back().seconds[p]);
    if (exponent == 0) {
      std::printf("   - ");
    } else {
      std::printf("%4.2f%c", exponent, exponent > kSteepest ? '!' : ' ');
    }
  }
  std::printf("%s%s%s\n", same ? runs.back().changes ? "  CHANGES" : "" : "  DIFFERS", steep ? "  STEEP" : "",
              cut && steep ? " (no larger one tried)" : "");
  std::fflush(stdout);
  return same && !steep;
}

// Every element with every other in three patterns, at a small size and four times that: finds steep shapes that
// nobody thought of. Prints those that more than double again what four times the page should take.
bool measurePairs(std::size_t n) {
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  std::vector<std::string> names;
  for (const ElementDefinition* definition : dom->getDocumentType()->getElementDefinitions()) {
    if (definition->getElementID() != ID_ZELX_ATV) names.push_back(definition->getName());
  }
  DOM::destroyDOM(dom);
  names.push_back("zz");
  bool fine = true;
  for (const std::string& outer : names) {
    for (const std::string& inner : names) {
      const std::string a = "<" + outer + ">";
      const std::string b = "<" + inner + ">";
      const std::string end = "</" + inner + ">";
      for (int pattern = 0; pattern < 4; ++pattern) {
        Run runs[2] = {};
        std::string shown;
        for (int i = 0; i < 2; ++i) {
          const std::size_t count = i ? 4 * n : n;
          std::string text;
          switch (pattern) {
            case 0:
              text = repeated((a + b).c_str(), count);
              shown = a + b + " repeated";
              break;
            case 1:
              text = repeated(a.c_str(), count) + repeated(b.c_str(), count);
              shown = a + " repeated, then " + b;
              break;
            case 2:
              text = repeated(a.c_str(), count) + repeated(end.c_str(), count);
              shown = a + " repeated, then " + end;
              break;
            default:
              text = repeated((a + "x" + b + "</" + outer + ">").c_str(), count);
              shown = a + "x" + b + "</" + outer + "> repeated";
          }
          runs[i] = best("HTML", text, 1);
        }
        const auto total = [](const Run& run) { return std::accumulate(run.seconds, run.seconds + PHASES, 0.0); };
        const double exponent = std::log2(total(runs[1]) / total(runs[0])) / 2;
        if (runs[0].same && runs[1].same && (exponent < 1.4 || total(runs[1]) < 0.02)) continue;
        fine = false;
        std::printf("%-50s %.4f s, %.4f s: %.2f%s\n", shown.c_str(), total(runs[0]), total(runs[1]), exponent,
                    runs[0].same && runs[1].same ? "" : " DIFFERS");
        std::fflush(stdout);
      }
    }
  }
  return fine;
}

}  // namespace

int runGrowth(const std::vector<std::string>& arguments) {
  keepMemory();
  std::size_t divideBy = 1;
  bool dynamicOnly = false;
  std::vector<std::string> wanted;
  for (const std::string& argument : arguments) {
    if (argument.rfind("--divide=", 0) == 0) {
      divideBy = std::max<std::size_t>(1, std::strtoul(argument.c_str() + 9, nullptr, 10));
    } else if (argument.rfind("--pairs=", 0) == 0) {
      return measurePairs(std::max<std::size_t>(1, std::strtoul(argument.c_str() + 8, nullptr, 10))) ? 0 : 1;
    } else if (argument == "--dynamic") {
      dynamicOnly = true;
    } else {
      wanted.push_back(argument);
    }
  }
  std::printf(
      "Processor seconds at the largest size and the exponent over the last three doublings; a stack of %zu KB\n",
      kSmallStack / 1024);
  std::printf("%-34s %11s %14s ", "shape", "", "");
  for (const char* phase : kPhaseNames) std::printf(" %8s  exp.", phase);
  std::printf("\n");
  int bad = 0;
  std::vector<Shape> all;
  if (!dynamicOnly) all = shapes();
  all.insert(all.end(), dynamicShapes().begin(), dynamicShapes().end());
  for (const Shape& shape : all) {
    const std::string name = shape.name;
    const bool asked = wanted.empty() || std::any_of(wanted.begin(), wanted.end(), [&](const std::string& word) {
                         return name.find(word) != std::string::npos;
                       });
    if (asked && !measure(shape, divideBy)) ++bad;
  }
  std::printf("%d of the shapes grow too fast or come back changed\n", bad);
  return bad ? 1 : 0;
}

}  // namespace zeldom40::bench
