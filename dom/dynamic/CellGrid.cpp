// Places cells by intervals.
#include "dom/dynamic/CellGrid.h"

#include <algorithm>
#include <climits>

#include "dom/source/CharHelpers.h"

namespace zeldom40 {

int leadingInteger(const char* text) {
  while (isSpaceByte(*text)) ++text;
  const bool negative = *text == '-';
  if (*text == '-' || *text == '+') ++text;
  long long value = 0;
  for (; *text >= '0' && *text <= '9'; ++text) value = std::min(value * 10 + (*text - '0'), 1LL + INT_MAX);
  return static_cast<int>(negative ? -value : std::min<long long>(value, INT_MAX));
}

namespace {

// Places from here on lie behind any index, so that it is all one whether they are taken.
constexpr long long kColumns = 1LL + INT_MAX;

}  // namespace

void CellGrid::beginRow() {
  ++row_;
  next_ = 0;
}

CellGrid::Columns CellGrid::addCell(int colspan, int rowspan) {
  if (colspan < 1 || rowspan < 1) return {};
  const long long first = firstFree(next_);
  const Columns cell{first, first + colspan - 1};
  next_ = cell.last + 1;
  const std::size_t behindRow = std::min(row_ - 1 + static_cast<std::size_t>(rowspan), rows_);
  if (behindRow > row_ && first < kColumns)
    take(first, std::min(cell.last, kColumns - 1), static_cast<std::uint32_t>(behindRow));
  return cell;
}

void CellGrid::take(long long first, long long last, std::uint32_t behindRow) {
  struct Visit {
    std::uint32_t part;
    long long from;
    long long size;
    bool isDone;  // with its halves
  };
  std::vector<Visit> visits = {{0, 0, kColumns, false}};
  while (!visits.empty()) {
    const auto [index, from, size, isDone] = visits.back();
    visits.pop_back();
    Part& part = parts_[index];
    if (isDone) {
      part.least = std::max(part.all, std::min(parts_[part.halves].least, parts_[part.halves + 1].least));
    } else if (first <= from && from + size - 1 <= last) {
      part.all = std::max(part.all, behindRow);
      part.least = std::max(part.least, behindRow);
    } else if (from <= last && first < from + size) {
      std::uint32_t halves = part.halves;
      if (!halves) {
        halves = part.halves = static_cast<std::uint32_t>(parts_.size());
        parts_.resize(parts_.size() + 2);
      }
      visits.push_back({index, from, size, true});
      visits.push_back({halves, from, size / 2, false});
      visits.push_back({halves + 1, from + size / 2, size / 2, false});
    }
  }
}

long long CellGrid::firstFree(long long from) const {
  struct Visit {
    std::uint32_t part;
    long long from;
    long long size;
  };
  std::vector<Visit> visits = {{0, 0, kColumns}};
  while (!visits.empty() && from < kColumns) {
    const auto [index, start, size] = visits.back();
    visits.pop_back();
    const Part& part = parts_[index];
    // Taken in this row, or before the place.
    if (part.least >= row_ || start + size <= from) continue;
    if (!part.halves) return std::max(start, from);
    visits.push_back({part.halves + 1, start + size / 2, size / 2});
    visits.push_back({part.halves, start, size / 2});
  }
  return std::max(from, kColumns);
}

}  // namespace zeldom40
