// The comparison: zeldom40_peers [--quick] [--only=PART OF AN OPERATION] [FOLDER]. Prints tables in Markdown, on made
// pages and on those of FOLDER. Needs a Release build; a run takes some minutes, with --quick some seconds.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <unistd.h>

#include "bench/Shapes.h"
#include "bench/peers/Measure.h"
#include "bench/peers/Pages.h"

namespace zeldom40::bench {

namespace {

// Files of a folder below this say more about what a call costs than about a page.
constexpr std::size_t kSmallest = 1000;

enum class Kind { ANY, BROKEN };

// The gate and the stretch say how many times faster the library should be; 0 is none.
struct Row {
  const char* operation;
  MakeTask ours;
  const char* peer;
  MakeTask theirs;
  Kind kind;
  double gate;
  double stretch;
};

constexpr Row kRows[] = {
    {"parse + release", own::parse, "libxml2 HTML", libxml::parseHtml, Kind::ANY, 5, 8},
    {"parse + release", own::parse, "htmlcxx", htmlcxx::parse, Kind::ANY, 2.3, 3.6},
    {"parse + release", own::parse, "gumbo", gumbo::parse, Kind::ANY, 0, 0},
    {"parse + release", own::parse, "Tidy", tidy::parse, Kind::ANY, 0, 0},
    {"parse + release", own::parse, "pugixml (XML)", pugixml::parse, Kind::ANY, 0, 0},
    {"parse, adjusted", own::parseAdjusted, "libxml2 HTML", libxml::parseHtml, Kind::ANY, 3.2, 5},
    {"parse + error list", own::parseAndList, "libxml2 XML + DTD", libxml::parseXmlAndValidate, Kind::ANY, 2.6, 4},
    {"parse + error list", own::parseAndList, "Tidy diagnostics", tidy::parseAndDiagnose, Kind::ANY, 8, 0},
    {"parse + error list", own::parseAndList, "onsgmls", onsgmls::validate, Kind::ANY, 5, 0},
    {"parse + correctError", own::parseAndCorrect, "Tidy repair", tidy::parseAndRepair, Kind::BROKEN, 5, 8},
    {"getSourceBuf", own::write, "htmlcxx", htmlcxx::write, Kind::ANY, 1, 3},
    {"record", own::record, "libxml2 copy", libxml::copy, Kind::ANY, 11, 50},
    {"record + edit", own::recordAndEdit, "libxml2 copy", libxml::copy, Kind::ANY, 0, 0},
};

constexpr const char* kGroups[] = {"10 KB", "100 KB", "1 MB", "JSP", "XHTML", "folder"};

// All that is measured on one page.
struct Result {
  const Page* page;
  Times times;
  double ratio() const { return times.theirs / times.ours; }
};

double megabytes(const Result& result, double seconds) {
  return static_cast<double>(result.page->text.size()) / seconds / 1e6;
}

template <typename Value>
double medianOf(const std::vector<Result>& results, const char* group, const Value& value) {
  std::vector<double> values;
  for (const Result& result : results) {
    if (group ? result.page->group == group : result.page->group != "folder") values.push_back(value(result));
  }
  return median(values);
}

void cell(double value, const char* format) {
  if (std::isnan(value)) {
    std::printf(" |");
  } else {
    std::printf(format, value);
    std::printf(" |");
  }
}

const char* verdict(double ratio, double gate, double stretch) {
  if (!(ratio >= gate)) return "**missed**";
  return stretch != 0 && ratio >= stretch ? "met, and the stretch" : "met";
}

struct Options {
  bool quick = false;
  const char* only = "";
  std::string folder;
};

class Comparison {
 public:
  explicit Comparison(const Options& options)
      : options_(options), ordinary_(ordinaryPages()), wellFormed_(wellFormedPages()), broken_(brokenPages()) {
    if (!options.folder.empty()) folder_ = folderPages(options.folder, kSmallest);
  }

  void weigh();
  void compare();
  void clock();

 private:
  double budget(const Page& page) const { return (options_.quick ? 0.1 : 1) * (page.group == "folder" ? 0.05 : 1); }
  Result run(const Row& row, const Page& page) const;
  void print(const Row& row, const std::vector<Result>& results) const;

  Options options_;
  std::vector<Page> ordinary_, wellFormed_, broken_, folder_;
  double firstDOM_ = std::numeric_limits<double>::infinity();  // seconds of a process's first createDOM
};

Result Comparison::run(const Row& row, const Page& page) const {
  const auto ours = row.ours();
  const auto theirs = row.theirs();
  if (!ours->open(page) || !theirs->open(page)) return {nullptr, {}};
  return {&page, measure(*ours, theirs.get(), budget(page))};
}

void Comparison::print(const Row& row, const std::vector<Result>& results) const {
  const auto ratio = [](const Result& r) { return r.ratio(); };
  std::printf("| %s | %s |", row.operation, row.peer);
  for (const char* group : kGroups) cell(medianOf(results, group, ratio), " %.2f");
  // The gate holds where both medians do.
  double worst = medianOf(results, nullptr, ratio);
  cell(worst, " %.2f");
  worst = std::fmin(worst, medianOf(results, "folder", ratio));
  const auto ours = [](const Result& r) { return megabytes(r, r.times.ours); };
  const auto theirs = [](const Result& r) { return megabytes(r, r.times.theirs); };
  cell(medianOf(results, nullptr, ours), " %.0f");
  cell(medianOf(results, nullptr, theirs), " %.1f");
  if (row.gate > 0) {
    std::printf(" %g |", row.gate);
    cell(row.stretch > 0 ? row.stretch : std::nan(""), " %g");
    std::printf(" %s |\n", verdict(worst, row.gate, row.stretch));
  } else {
    std::printf(" | | |\n");
  }
  std::fflush(stdout);
}

void Comparison::compare() {
  std::printf("\n| operation | peer |");
  for (const char* group : kGroups) std::printf(" %s |", group);
  std::printf(" made | MB/s | peer | gate | stretch | |\n|---|---|");
  for (std::size_t i = 0; i < std::size(kGroups) + 5; ++i) std::printf("---|");
  std::printf("---|\n");
  std::vector<const Page*> withErrors;
  for (const Page& page : folder_) {
    if (own::hasErrors(page)) withErrors.push_back(&page);
  }
  for (const Row& row : kRows) {
    if (!std::strstr(row.operation, options_.only)) continue;
    std::vector<Result> results;
    const auto add = [&](const Page& page) {
      if (const Result result = run(row, page); result.page) results.push_back(result);
    };
    if (row.kind == Kind::BROKEN) {
      for (const Page& page : broken_) add(page);
      for (const Page* page : withErrors) add(*page);
    } else {
      // The XML parsers themselves say which pages are not well-formed.
      for (const auto* pages : {&ordinary_, &wellFormed_, &folder_}) {
        for (const Page& page : *pages) add(page);
      }
    }
    print(row, results);
  }
}

// Every tree is built in a process in which nothing was parsed before. The pages of the folder are open together, as in
// a host with many windows: what an allocator keeps in reserve is then shared.
void Comparison::weigh() {
  struct Peer {
    const char* name;
    HoldTree hold;
  };
  constexpr Peer kPeers[] = {{"zeldom40", own::hold}, {"libxml2", libxml::hold}, {"htmlcxx", htmlcxx::hold},
                             {"gumbo", gumbo::hold},  {"Tidy", tidy::hold},      {"pugixml", pugixml::hold}};
  const std::vector<Page> paragraphs = {{"<P>x", "", repeated("<P>x", 25600)}};
  struct Column {
    std::string name;
    std::vector<const Page*> pages;
    double gate = 0;
    double stretch = 0;
    bool xml = false;
  };
  std::vector<Column> columns;
  for (const Page& page : ordinary_) columns.push_back({page.name, {&page}});
  columns.push_back({"`<P>x` repeated", {&paragraphs[0]}, 45});
  for (const Page& page : wellFormed_) columns.push_back({page.name, {&page}, 0, 0, /*xml=*/true});
  columns.push_back({"folder", {}, 9, 6});
  for (const Page& page : folder_) columns.back().pages.push_back(&page);

  std::printf("\n| heap bytes a source byte |");
  for (const Column& column : columns) std::printf(" %s |", column.name.c_str());
  std::printf("\n|---|");
  for (std::size_t i = 0; i < columns.size(); ++i) std::printf("---|");
  std::printf("\n");
  std::string verdicts = "| gate |";
  for (const Peer& peer : kPeers) {
    std::printf("| %s |", peer.name);
    for (const Column& column : columns) {
      double bytes = 0;
      for (const Page* page : column.pages) bytes += static_cast<double>(page->text.size());
      const bool fits = bytes > 0 && (peer.hold != pugixml::hold || column.xml);
      const double heap = !fits ? std::nan("") : apart([&] {
        if (peer.hold == own::hold) own::prepareHold();
        const double before = heapBytes();
        for (const Page* page : column.pages) peer.hold(*page);
        return heapBytes() - before;
      });
      cell(heap / bytes, " %.2f");
      if (peer.hold != own::hold) continue;
      // Less is better here, so both sides change sign.
      if (fits && column.gate > 0) {
        verdicts += " " + std::to_string(std::lround(column.gate)) + ": " +
                    verdict(-heap / bytes, -column.gate, -column.stretch);
      }
      verdicts += " |";
    }
    std::printf("\n");
  }
  std::printf("%s\n", verdicts.c_str());

  std::printf("\n| heap bytes a source byte a record (gate 6, stretch 3) |");
  for (const Page& page : ordinary_) std::printf(" %s |", page.name.c_str());
  std::printf("\n|---|");
  for (std::size_t i = 0; i < ordinary_.size(); ++i) std::printf("---|");
  for (const int count : {1, 10}) {
    std::printf("\n| %s |", count == 1 ? "the first" : "mean of ten, a text edited between");
    for (const Page& page : ordinary_) {
      const double heap = apart([&] { return own::recordBytes(page, count); });
      cell(heap / count / static_cast<double>(page.text.size()), " %.2f");
    }
  }
  std::printf("\n");
  for (int i = 0; i < 20; ++i) firstDOM_ = std::fmin(firstDOM_, apart([] { return own::createDOM()->run(1); }));
  std::fflush(stdout);
}

// What has no peer.
void Comparison::clock() {
  // Nobody else stands in these rows to share a busy moment of the machine, so there are several, some way apart.
  const auto quietest = [this](Task& task, Task* second, const Page& page) {
    constexpr int kMoments = 8;
    constexpr unsigned kApart = 150 * 1000;  // microseconds
    Times best = measure(task, second, budget(page));
    for (int i = 1; i < kMoments; ++i) {
      usleep(kApart);
      const Times times = measure(task, second, budget(page));
      best = {std::fmin(best.ours, times.ours), std::fmin(best.theirs, times.theirs)};
    }
    return best;
  };
  const auto seconds = [&](MakeTask maker, const Page& page) {
    const auto task = maker();
    return task->open(page) ? quietest(*task, nullptr, page).ours : std::nan("");
  };
  const auto line = [](const char* what, const char* where, double value, const char* unit, double gate,
                       double stretch) {
    std::printf("| %s | %s | %.2f %s |", what, where, value, unit);
    cell(gate > 0 ? gate : std::nan(""), " %g");
    cell(stretch > 0 ? stretch : std::nan(""), " %g");
    std::printf(" %s |\n", gate > 0 ? verdict(-value, -gate, -stretch) : "");
  };
  std::printf("\n| alone | page | | gate | stretch | |\n|---|---|---|---|---|---|\n");
  for (const Page& page : ordinary_) {
    const char* name = page.name.c_str();
    const bool small = page.text.size() < 20000;
    const bool middle = !small && page.text.size() < 200000;
    const auto parse = own::parse();
    const auto release = own::release();
    parse->open(page);
    release->open(page);
    const auto [both, free] = quietest(*parse, release.get(), page);
    line("build + release", name, both * 1e6, "us", small ? 80 : 0, small ? 45 : 0);
    line("release, part of the parse", name, 100 * free / (both - free), "%", 15, 0);
    line("walk with findNextNode", name, seconds(own::walk, page) / static_cast<double>(own::nodesOf(page)) * 1e9,
         "ns a node", middle ? 8 : 0, middle ? 5 : 0);
  }
  line("createDOM, the first of a process", "", firstDOM_ * 1e3, "ms", 1, 0.3);
  line("createDOM, when it is warm", "", seconds(own::createDOM, ordinary_[0]) * 1e3, "ms", 0, 0);
}

}  // namespace

}  // namespace zeldom40::bench

int main(int argc, char** argv) {
  zeldom40::bench::Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--quick") {
      options.quick = true;
    } else if (argument.rfind("--only=", 0) == 0) {
      options.only = argv[i] + std::strlen("--only=");
    } else if (!argument.empty() && argument[0] != '-') {
      options.folder = argument;
    } else {
      std::fprintf(stderr, "usage: zeldom40_peers [--quick] [--only=OPERATION] [FOLDER]\n");
      return 2;
    }
  }
  zeldom40::bench::Comparison comparison(options);
  const bool all = !*options.only;
  if (all) {
    comparison.weigh();
    comparison.clock();
  }
  comparison.compare();
  return 0;
}
