// Internal. Which columns the cells of a table's rows cover.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zeldom40 {

// An integer as atoi reads it, bound to the range of int.
int leadingInteger(const char* text);

// Rows are filled from the top, cells from the left: a cell takes the first free place, and a ROWSPAN keeps its columns
// taken in the rows below. A tree over all columns that an index can name tells up to which row each is taken, so that
// neither a span of any size nor many that overlap cost more than the way down to their ends.
class CellGrid {
 public:
  struct Columns {
    long long first = -1;  // both 0-based; -1 for a cell that covers nothing
    long long last = -1;
  };

  explicit CellGrid(std::size_t rows) : rows_(rows), parts_(1) {}
  void beginRow();
  // The next cell of the row. A span below 1 covers nothing, rows below the last one do not exist.
  Columns addCell(int colspan, int rowspan);

 private:
  // A stretch of columns whose length is a power of two.
  struct Part {
    std::uint32_t halves = 0;  // in parts_, next to each other; 0 while they do not differ
    std::uint32_t all = 0;     // all its columns are taken in the rows before this one
    std::uint32_t least = 0;   // likewise, with what its halves tell
  };

  void take(long long first, long long last, std::uint32_t behindRow);
  long long firstFree(long long from) const;

  std::size_t rows_;
  std::size_t row_ = 0;  // behind the present row
  long long next_ = 0;
  std::vector<Part> parts_;  // the first is the whole
};

}  // namespace zeldom40
