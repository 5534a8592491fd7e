// Aligns the lines of two texts.
#include "tools/zeldom/diff.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

namespace zeldom40::tool {

namespace {

constexpr std::size_t kContext = 3;
// Bounds of the search: levels of fixed points between fixed points, and differences in a stretch without any.
constexpr int kLevels = 24;
constexpr int kDifferences = 200;

class Matcher {
 public:
  Matcher(std::span<const std::string_view> a, std::span<const std::string_view> b) {
    std::unordered_map<std::string_view, std::uint32_t> numbers;
    const auto number = [&numbers](std::span<const std::string_view> lines) {
      std::vector<std::uint32_t> out;
      out.reserve(lines.size());
      for (const std::string_view line : lines) {
        out.push_back(numbers.emplace(line, static_cast<std::uint32_t>(numbers.size())).first->second);
      }
      return out;
    };
    a_ = number(a);
    b_ = number(b);
    counts_.resize(numbers.size());
  }

  std::vector<LineMatch> run() {
    std::vector<Window> windows{{0, a_.size(), 0, b_.size(), 0}};
    while (!windows.empty()) {
      Window window = windows.back();
      windows.pop_back();
      trim(window);
      if (window.aBegin == window.aEnd || window.bBegin == window.bEnd) continue;
      if (window.level == kLevels || !divide(window, windows)) search(window);
    }
    std::sort(matches_.begin(), matches_.end(), [](const LineMatch& x, const LineMatch& y) { return x.a < y.a; });
    std::vector<LineMatch> joined;
    for (const LineMatch& match : matches_) {
      if (!joined.empty() && joined.back().a + joined.back().length == match.a &&
          joined.back().b + joined.back().length == match.b) {
        joined.back().length += match.length;
      } else {
        joined.push_back(match);
      }
    }
    return joined;
  }

 private:
  struct Window {
    std::size_t aBegin, aEnd, bBegin, bEnd;
    int level;
  };
  struct Count {
    std::uint32_t inA = 0;
    std::uint32_t inB = 0;
    std::size_t atB = 0;
  };

  void add(std::size_t a, std::size_t b, std::size_t length) {
    if (length) matches_.push_back({a, b, length});
  }

  // Equal lines at both ends.
  void trim(Window& w) {
    std::size_t n = 0;
    while (w.aBegin + n < w.aEnd && w.bBegin + n < w.bEnd && a_[w.aBegin + n] == b_[w.bBegin + n]) ++n;
    add(w.aBegin, w.bBegin, n);
    w.aBegin += n;
    w.bBegin += n;
    n = 0;
    while (w.aBegin + n < w.aEnd && w.bBegin + n < w.bEnd && a_[w.aEnd - n - 1] == b_[w.bEnd - n - 1]) ++n;
    w.aEnd -= n;
    w.bEnd -= n;
    add(w.aEnd, w.bEnd, n);
  }

  // Fixed points: of the lines that occur once on each side, the longest run that keeps its order. False without any.
  bool divide(const Window& w, std::vector<Window>& windows) {
    for (std::size_t i = w.aBegin; i < w.aEnd; ++i) counts_[a_[i]] = {};
    for (std::size_t j = w.bBegin; j < w.bEnd; ++j) counts_[b_[j]] = {};
    for (std::size_t i = w.aBegin; i < w.aEnd; ++i) ++counts_[a_[i]].inA;
    for (std::size_t j = w.bBegin; j < w.bEnd; ++j) {
      ++counts_[b_[j]].inB;
      counts_[b_[j]].atB = j;
    }
    struct Point {
      std::size_t a, b, before;
    };
    constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::vector<Point> points;
    std::vector<std::size_t> ends;  // ends[k]: the point that ends the best run of k + 1 points
    for (std::size_t i = w.aBegin; i < w.aEnd; ++i) {
      const Count& count = counts_[a_[i]];
      if (count.inA != 1 || count.inB != 1) continue;
      const auto at = std::lower_bound(ends.begin(), ends.end(), count.atB,
                                       [&](std::size_t point, std::size_t b) { return points[point].b < b; });
      points.push_back({i, count.atB, at == ends.begin() ? kNone : *(at - 1)});
      if (at == ends.end()) {
        ends.push_back(points.size() - 1);
      } else {
        *at = points.size() - 1;
      }
    }
    if (ends.empty()) return false;
    std::size_t aEnd = w.aEnd, bEnd = w.bEnd;
    for (std::size_t point = ends.back(); point != kNone; point = points[point].before) {
      add(points[point].a, points[point].b, 1);
      windows.push_back({points[point].a + 1, aEnd, points[point].b + 1, bEnd, w.level + 1});
      aEnd = points[point].a;
      bEnd = points[point].b;
    }
    windows.push_back({w.aBegin, aEnd, w.bBegin, bEnd, w.level + 1});
    return true;
  }

  // The fewest insertions and deletions, diagonal by diagonal, up to the bound.
  void search(const Window& w) {
    const auto n = static_cast<std::ptrdiff_t>(w.aEnd - w.aBegin);
    const auto m = static_cast<std::ptrdiff_t>(w.bEnd - w.bBegin);
    constexpr std::ptrdiff_t kMiddle = kDifferences + 1;
    std::vector<std::ptrdiff_t> reach(2 * kMiddle + 1, 0);
    std::vector<std::vector<std::ptrdiff_t>> trace;
    const auto fromAbove = [&reach](std::ptrdiff_t k, std::ptrdiff_t d) {
      return k == -d || (k != d && reach[kMiddle + k - 1] < reach[kMiddle + k + 1]);
    };
    for (std::ptrdiff_t d = 0; d <= kDifferences; ++d) {
      trace.push_back(reach);
      for (std::ptrdiff_t k = -d; k <= d; k += 2) {
        std::ptrdiff_t x = fromAbove(k, d) ? reach[kMiddle + k + 1] : reach[kMiddle + k - 1] + 1;
        if (d == 0) x = 0;
        while (x < n && x - k >= 0 && x - k < m && a_[w.aBegin + x] == b_[w.bBegin + (x - k)]) ++x;
        reach[kMiddle + k] = x;
        if (x < n || x - k < m) continue;
        // Back through the steps.
        std::ptrdiff_t y = x - k;
        for (; d > 0; --d) {
          reach = trace[static_cast<std::size_t>(d)];
          const std::ptrdiff_t diagonal = x - y;
          const std::ptrdiff_t before = fromAbove(diagonal, d) ? diagonal + 1 : diagonal - 1;
          const std::ptrdiff_t fromX = reach[kMiddle + before];
          const std::ptrdiff_t startX = before > diagonal ? fromX : fromX + 1;
          add(w.aBegin + startX, w.bBegin + (startX - diagonal), static_cast<std::size_t>(x - startX));
          x = fromX;
          y = fromX - before;
        }
        add(w.aBegin, w.bBegin, static_cast<std::size_t>(x));
        return;
      }
    }
  }

  std::vector<std::uint32_t> a_;
  std::vector<std::uint32_t> b_;
  std::vector<Count> counts_;
  std::vector<LineMatch> matches_;
};

// One change: the lines of both sides that do not match.
struct Change {
  std::size_t aBegin, aEnd, bBegin, bEnd;
};

void appendLine(std::string& out, char mark, std::string_view line) {
  out += mark;
  out += line;
  if (!line.empty() && line.back() == '\n') return;
  out += line.empty() || line.back() != '\r' ? "\n\\ No newline at end of file\n" : "\n";
}

std::string hunkRange(std::size_t begin, std::size_t length) {
  // An empty stretch is named by the line before it.
  return std::to_string(length ? begin + 1 : begin) + (length == 1 ? "" : "," + std::to_string(length));
}

}  // namespace

std::vector<std::string_view> splitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    std::size_t end = text.find_first_of("\r\n");
    if (end == std::string_view::npos) {
      end = text.size();
    } else {
      end += text.substr(end, 2) == "\r\n" ? 2 : 1;
    }
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return lines;
}

std::vector<LineMatch> matchLines(std::span<const std::string_view> a, std::span<const std::string_view> b) {
  return Matcher(a, b).run();
}

std::string unifiedDiff(const std::string& name, std::span<const std::string_view> a,
                        std::span<const std::string_view> b, const std::vector<LineMatch>& matches) {
  std::vector<Change> changes;
  std::size_t aDone = 0, bDone = 0;
  const auto upTo = [&](std::size_t aNext, std::size_t bNext) {
    if (aDone < aNext || bDone < bNext) changes.push_back({aDone, aNext, bDone, bNext});
  };
  for (const LineMatch& match : matches) {
    upTo(match.a, match.b);
    aDone = match.a + match.length;
    bDone = match.b + match.length;
  }
  upTo(a.size(), b.size());
  if (changes.empty()) return {};

  std::string out = "--- " + name + "\n+++ " + name + "\n";
  for (std::size_t first = 0; first < changes.size();) {
    // Changes whose contexts touch share a hunk.
    std::size_t last = first;
    while (last + 1 < changes.size() && changes[last + 1].aBegin - changes[last].aEnd <= 2 * kContext) ++last;
    const std::size_t before = std::min(kContext, changes[first].aBegin);
    const std::size_t after = std::min(kContext, a.size() - changes[last].aEnd);
    const std::size_t aBegin = changes[first].aBegin - before;
    const std::size_t bBegin = changes[first].bBegin - before;
    out += "@@ -" + hunkRange(aBegin, changes[last].aEnd + after - aBegin) + " +" +
           hunkRange(bBegin, changes[last].bEnd + after - bBegin) + " @@\n";
    std::size_t at = aBegin;
    for (std::size_t i = first; i <= last; ++i) {
      for (; at < changes[i].aBegin; ++at) appendLine(out, ' ', a[at]);
      for (; at < changes[i].aEnd; ++at) appendLine(out, '-', a[at]);
      for (std::size_t j = changes[i].bBegin; j < changes[i].bEnd; ++j) appendLine(out, '+', b[j]);
    }
    for (const std::size_t end = at + after; at < end; ++at) appendLine(out, ' ', a[at]);
    first = last + 1;
  }
  return out;
}

}  // namespace zeldom40::tool
