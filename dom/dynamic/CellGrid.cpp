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

void CellGrid::beginRow() {
  if (hasRow_) {
    std::erase_if(taken_, [](const Span& span) { return span.rowsBelow == 0; });
    for (Span& span : taken_) --span.rowsBelow;
    if (!takenBelow_.empty()) {
      // What this row's cells cover below stands for what it overlaps of the rows above as well.
      const auto middle = static_cast<std::ptrdiff_t>(taken_.size());
      taken_.insert(taken_.end(), takenBelow_.begin(), takenBelow_.end());
      std::inplace_merge(taken_.begin(), taken_.begin() + middle, taken_.end(),
                         [](const Span& a, const Span& b) { return a.first < b.first; });
      takenBelow_.clear();
    }
  }
  hasRow_ = true;
  if (rowsLeft_ > 0) --rowsLeft_;
  next_ = 0;
  above_ = 0;
}

CellGrid::Columns CellGrid::addCell(int colspan, int rowspan) {
  if (colspan < 1 || rowspan < 1) return {};
  for (; above_ < taken_.size() && taken_[above_].first <= next_; ++above_)
    next_ = std::max(next_, taken_[above_].last + 1);
  const Columns cell{next_, next_ + colspan - 1};
  const std::size_t rowsBelow = std::min(static_cast<std::size_t>(rowspan) - 1, rowsLeft_);
  if (rowsBelow > 0) takenBelow_.push_back({cell.first, cell.last, rowsBelow - 1});
  next_ = cell.last + 1;
  return cell;
}

}  // namespace zeldom40
