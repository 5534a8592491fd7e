// The growth table: how the cost of each phase grows when a hostile page doubles, and how deep trees fare on a small
// stack.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <malloc.h>
#include <numeric>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "bench/Life.h"
#include "bench/Shapes.h"
#include "dom/zeldom40.h"

namespace zeldom40::bench {

namespace {

constexpr int kSizes = 4;
constexpr double kSteepest = 1.1;
// What takes less time than this at the largest size is too short to have an exponent.
constexpr double kTooShort = 0.002;
// A size at which a phase would take longer than this is not tried; its growth is known by then.
constexpr double kTooLong = 40;
// What counting may take in seconds, and how much slower a program is under callgrind, counting and not.
constexpr double kCountingTime = 2;
constexpr double kSlowerCounting = 60;
constexpr double kSlowerWaiting = 8;
constexpr std::size_t kDeep = 1000 * 1000;

// Memory that was had once stays with the process. The system's price for fresh pages says nothing about the library,
// and it comes in steps that look like growth.
void keepMemory() {
  mallopt(M_ARENA_MAX, 1);
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
}

// A tree of a million levels has texts of half a gigabyte: each goes back to the system, so that none of them leaves a
// hole that is too small for the next.
void returnMemory() {
  mallopt(M_MMAP_MAX, 1 << 16);
  mallopt(M_MMAP_THRESHOLD, 1 << 20);
  mallopt(M_TRIM_THRESHOLD, 1 << 20);
}

double total(const Life& life) { return std::accumulate(life.seconds, life.seconds + PHASES, 0.0); }

double exponent(double first, double last, std::size_t doublings) {
  return std::log2(last / std::max(first, 1e-9)) / static_cast<double>(doublings);
}

// The best of some lives: others use the machine too, and the first has to fetch its memory from the system.
Life best(const char* documentType, const std::string& text, int most) {
  Life result;
  double spent = 0;
  for (int i = 0; i < most && (i < 2 || spent < 0.25); ++i) {
    const Life life = live(documentType, text);
    spent += total(life);
    const bool same = life.same && (i == 0 || result.same);
    const Life before = result;
    result = life;
    for (int p = 0; p < PHASES && i; ++p) result.seconds[p] = std::min(before.seconds[p], life.seconds[p]);
    result.same = same;
  }
  return result;
}

struct Options {
  std::size_t divideBy = 1;
  bool more = false;     // the shapes too that have a row only if they grow
  bool all = false;      // a row for each of these
  unsigned counted = 0;  // this process runs under callgrind, for these phases
  std::vector<std::string> wanted;
};

// One shape at an eighth, a quarter, a half and the whole of its size.
class Growth {
 public:
  Growth(const Shape& shape, std::size_t divideBy) : shape_(shape) {
    smallest_ = std::max<std::size_t>(1, shape.full / divideBy / 8);
  }

  void measure() {
    std::size_t n = smallest_;
    for (int i = 0; i < kSizes; ++i, n *= 2) {
      const std::string text = shape_.make(n);
      lives_.push_back(best(shape_.documentType, text, 12));
      same_ = same_ && lives_.back().same;
      const double* seconds = lives_.back().seconds;
      if (*std::max_element(seconds, seconds + PHASES) * 4 > kTooLong) break;
    }
  }

  // Counts the instructions of what grows too fast by time, at smaller sizes if it must be.
  void count(const char* program) {
    unsigned phases = 0;
    double slow = 0;
    for (int p = 0; p < PHASES; ++p) {
      if (!(timeExponent(p) > kSteepest)) continue;
      phases |= 1u << p;
      slow += lives_.back().seconds[p] * kSlowerCounting;
    }
    if (!phases) return;
    slow += total(lives_.back()) * kSlowerWaiting;
    divided_ = 1;
    while (divided_ < 64 && 2 * slow / static_cast<double>(divided_) > kCountingTime) divided_ *= 2;
    std::vector<double> counts[PHASES];
    runCallgrind(program, phases, std::max<std::size_t>(1, smallest_ / divided_), counts);
    for (int p = 0; p < PHASES; ++p) {
      if (counts[p].size() == kSizes) instructions_[p] = exponent(counts[p].front(), counts[p].back(), kSizes - 1);
    }
  }

  // 0: too short, or nothing to do.
  double timeExponent(int phase) const {
    const double last = lives_.back().seconds[phase];
    if (last < kTooShort || lives_.size() < 2) return 0;
    return exponent(lives_.front().seconds[phase], last, lives_.size() - 1);
  }
  bool grows(int phase) const {
    return timeExponent(phase) > kSteepest && (instructions_[phase] == 0 || instructions_[phase] > kSteepest);
  }
  bool grows() const {
    for (int p = 0; p < PHASES; ++p) {
      if (grows(p)) return true;
    }
    return lives_.size() < kSizes;
  }
  bool same() const { return same_; }
  int cells() const {
    int count = 0;
    for (int p = 0; p < PHASES; ++p) count += timeExponent(p) > 0;
    return count;
  }
  int steepByTimeAlone() const {
    int count = 0;
    for (int p = 0; p < PHASES; ++p) count += timeExponent(p) > kSteepest && !grows(p);
    return count;
  }

  void print() const {
    std::printf("| %s | %.3g MB |", shown(shape_.name).c_str(),
                static_cast<double>(shape_.make(smallest_ << (lives_.size() - 1)).size()) / 1e6);
    for (int p = 0; p < PHASES; ++p) {
      const double time = timeExponent(p);
      if (time == 0) {
        std::printf(" |");
      } else if (time <= kSteepest || instructions_[p] == 0) {
        std::printf(grows(p) ? " **%.2f** |" : " %.2f |", time);
      } else {
        std::printf(grows(p) ? " %.2f / **%.2f** |" : " %.2f / %.2f |", time, instructions_[p]);
      }
    }
    std::printf("%s%s\n", same_ ? "" : " **comes back changed**",
                lives_.size() < kSizes ? " larger ones not tried" : "");
    std::fflush(stdout);
  }

  // A name as a cell of a table.
  static std::string shown(const std::string& name) {
    return name.find('<') == std::string::npos ? name : "`" + name + "`";
  }

 private:
  void runCallgrind(const char* program, unsigned phases, std::size_t n, std::vector<double>* counts) const {
    namespace fs = std::filesystem;
    const fs::path folder = fs::temp_directory_path() / ("zeldom40-growth-" + std::to_string(getpid()));
    std::error_code failed;
    fs::create_directory(folder, failed);
    const std::string out = (folder / "out").string();
    const std::string counted = "--counted=" + std::to_string(phases);
    const std::string size = "--size=" + std::to_string(n);
    const std::string file = "--callgrind-out-file=" + out;
    const pid_t child = fork();
    if (child == 0) {
      if (!std::freopen("/dev/null", "w", stderr)) _exit(127);
      execlp("valgrind", "valgrind", "--tool=callgrind", "--instr-atstart=no", file.c_str(), program, "growth",
             counted.c_str(), size.c_str(), shape_.name, static_cast<char*>(nullptr));
      _exit(127);
    }
    int status = 0;
    if (child > 0) waitpid(child, &status, 0);
    // A dump tells which phase it is of in "desc: Trigger: Client Request: NAME" and its count in "summary: COUNT".
    for (int i = 1; fs::exists(out + "." + std::to_string(i)); ++i) {
      std::ifstream dump(out + "." + std::to_string(i));
      int phase = -1;
      for (std::string line; std::getline(dump, line);) {
        const std::string_view request = "desc: Trigger: Client Request: ";
        if (line.rfind(request, 0) == 0) {
          phase =
              static_cast<int>(std::find(kPhaseNames, kPhaseNames + PHASES, line.substr(request.size())) - kPhaseNames);
        } else if (line.rfind("summary: ", 0) == 0 && phase >= 0 && phase < PHASES) {
          counts[phase].push_back(std::strtod(line.c_str() + 9, nullptr));
          break;
        }
      }
    }
    // Undo comes twice in a life; the last time counts, as it does for time.
    if (counts[UNDO].size() == 2 * kSizes) {
      for (int i = 0; i < kSizes; ++i) counts[UNDO][i] = counts[UNDO][2 * i + 1];
      counts[UNDO].resize(kSizes);
    }
    fs::remove_all(folder, failed);
  }

  const Shape& shape_;
  std::size_t smallest_;
  std::vector<Life> lives_;
  std::size_t divided_ = 1;
  double instructions_[PHASES] = {};
  bool same_ = true;
};

// Runs under callgrind for Growth::count.
int liveCounted(const Options& options, std::size_t smallest) {
  for (const auto* list : {&shapes(), &dynamicShapes(), &moreShapes(), &moreDynamicShapes(), &editShapes()}) {
    for (const Shape& shape : *list) {
      if (options.wanted.front() != shape.name) continue;
      for (int i = 0; i < kSizes; ++i) live(shape.documentType, shape.make(smallest << i), options.counted);
      return 0;
    }
  }
  return 1;
}

bool isAsked(const Shape& shape, const Options& options) {
  const std::string name = shape.name;
  return options.wanted.empty() ||
         std::any_of(options.wanted.begin(), options.wanted.end(),
                     [&](const std::string& word) { return name.find(word) != std::string::npos; });
}

void printHead(const char* second) {
  std::printf("| shape | %s |", second);
  for (const char* phase : kPhaseNames) std::printf(" %s |", phase);
  std::printf("\n|---|---|");
  for (int p = 0; p < PHASES; ++p) std::printf("---|");
  std::printf("\n");
}

// Returns how many shapes grow too fast or come back changed.
int printGrowth(const Options& options, const char* program) {
  std::printf("Exponents over %d doublings:\n\n", kSizes - 1);
  printHead("largest");
  int shapesMeasured = 0;
  int cells = 0;
  int byTimeAlone = 0;
  int bad = 0;
  const auto measure = [&](const std::vector<Shape>& list, bool hasRows) {
    for (const Shape& shape : list) {
      if (!isAsked(shape, options)) continue;
      Growth growth(shape, options.divideBy);
      growth.measure();
      growth.count(program);
      const bool fails = growth.grows() || !growth.same();
      if (hasRows || options.all || fails) growth.print();
      ++shapesMeasured;
      cells += growth.cells();
      byTimeAlone += growth.steepByTimeAlone();
      bad += fails;
    }
  };
  measure(shapes(), true);
  measure(dynamicShapes(), true);
  if (options.more) {
    measure(moreShapes(), false);
    measure(moreDynamicShapes(), false);
    measure(editShapes(), false);
  }
  std::printf(
      "\n%d shapes, %d cells with an exponent; %d exceed %.1f in time alone, not in instructions; "
      "%d shapes grow too fast or come back changed.\n\n",
      shapesMeasured, cells, byTimeAlone, kSteepest, bad);
  return bad;
}

// Each in a process of its own: a stack that is too small kills it. Returns how many failed.
int printDepth(const Options& options) {
  std::printf("Seconds on a stack of %zu KB:\n\n", kSmallStack / 1024);
  printHead("levels");
  int bad = 0;
  for (const std::vector<Shape>* list : {&shapes(), &dynamicShapes()}) {
    for (const Shape& shape : *list) {
      if (!shape.levels || !isAsked(shape, options)) continue;
      std::fflush(stdout);
      const pid_t child = fork();
      if (child == 0) {
        returnMemory();
        const std::string text = shape.make(kDeep / static_cast<std::size_t>(shape.levels) + 1);
        const Life life = live(shape.documentType, text);
        std::printf("| %s | %ld |", Growth::shown(shape.name).c_str(), life.depth);
        for (double seconds : life.seconds) std::printf(seconds > 0 ? " %.3f |" : " |", seconds);
        const bool deep = life.depth >= static_cast<long>(kDeep);
        std::printf("%s%s\n", life.same ? "" : " **comes back changed**", deep ? "" : " **not as deep**");
        std::fflush(stdout);
        _exit(life.same && deep ? 0 : 1);
      }
      int status = 0;
      if (child < 0 || waitpid(child, &status, 0) != child || status != 0) ++bad;
      if (!WIFEXITED(status)) std::printf("| %s | | **dies** |\n", Growth::shown(shape.name).c_str());
    }
  }
  std::printf("\n");
  return bad;
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
        Life lives[2];
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
          lives[i] = best("HTML", text, 1);
        }
        const double exponent = std::log2(total(lives[1]) / total(lives[0])) / 2;
        if (lives[0].same && lives[1].same && (exponent < 1.4 || total(lives[1]) < 0.02)) continue;
        fine = false;
        std::printf("%-50s %.4f s, %.4f s: %.2f%s\n", shown.c_str(), total(lives[0]), total(lives[1]), exponent,
                    lives[0].same && lives[1].same ? "" : " DIFFERS");
        std::fflush(stdout);
      }
    }
  }
  return fine;
}

}  // namespace

int runGrowth(const std::vector<std::string>& arguments, const char* program) {
  keepMemory();
  Options options;
  std::size_t pairs = 0;
  std::size_t size = 0;
  bool growth = true;
  bool depth = true;
  const auto number = [](const std::string& argument) {
    return std::max<std::size_t>(1, std::strtoul(argument.c_str() + argument.find('=') + 1, nullptr, 10));
  };
  for (const std::string& argument : arguments) {
    if (argument.rfind("--divide=", 0) == 0) {
      options.divideBy = number(argument);
    } else if (argument.rfind("--pairs=", 0) == 0) {
      pairs = number(argument);
    } else if (argument.rfind("--counted=", 0) == 0) {
      options.counted = static_cast<unsigned>(number(argument));
    } else if (argument.rfind("--size=", 0) == 0) {
      size = number(argument);
    } else if (argument == "--more") {
      options.more = true;
    } else if (argument == "--all") {
      options.more = options.all = true;
    } else if (argument == "--growth") {
      depth = false;
    } else if (argument == "--depth") {
      growth = false;
    } else {
      options.wanted.push_back(argument);
    }
  }
  if (options.counted) return liveCounted(options, size);
  if (pairs) return measurePairs(pairs) ? 0 : 1;
  int bad = 0;
  if (growth) bad += printGrowth(options, program);
  if (depth) bad += printDepth(options);
  return bad ? 1 : 0;
}

}  // namespace zeldom40::bench
