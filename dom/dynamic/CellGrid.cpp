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

void CellGrid::expireSpans() {
  if (taken_.empty() || nextExpiry_ >= row_) return;
  std::erase_if(taken_, [this](const Span& span) { return span.lastRow < row_; });
  nextExpiry_ = rows_;
  for (const Span& span : taken_) nextExpiry_ = std::min(nextExpiry_, span.lastRow);
}

void CellGrid::beginRow() {
  expireSpans();
  if (!takenBelow_.empty()) {
    if (taken_.empty()) nextExpiry_ = rows_;
    for (const Span& span : takenBelow_) nextExpiry_ = std::min(nextExpiry_, span.lastRow);
    const auto middle = static_cast<std::ptrdiff_t>(taken_.size());
    taken_.insert(taken_.end(), takenBelow_.begin(), takenBelow_.end());
    std::inplace_merge(taken_.begin(), taken_.begin() + middle, taken_.end(),
                       [](const Span& a, const Span& b) { return a.first < b.first; });
    takenBelow_.clear();
  }
  ++row_;
  next_ = 0;
  above_ = 0;
}

CellGrid::Columns CellGrid::addCell(int colspan, int rowspan) {
  if (colspan < 1 || rowspan < 1) return {};
  for (; above_ < taken_.size() && taken_[above_].first <= next_; ++above_)
    next_ = std::max(next_, taken_[above_].last + 1);
  const Columns cell{next_, next_ + colspan - 1};
  next_ = cell.last + 1;
  const std::size_t lastRow = std::min(row_ - 1 + static_cast<std::size_t>(rowspan) - 1, rows_);
  if (lastRow < row_) return cell;
  // Neighbours that end together are one span, so that a row of equal cells costs the rows below one step.
  if (!takenBelow_.empty() && takenBelow_.back().last + 1 == cell.first && takenBelow_.back().lastRow == lastRow) {
    takenBelow_.back().last = cell.last;
  } else {
    takenBelow_.push_back({cell.first, cell.last, lastRow});
  }
  return cell;
}

}  // namespace zeldom40
