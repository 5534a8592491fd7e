// Internal. Which columns the cells of a table's rows cover.
#pragma once

#include <cstddef>
#include <vector>

namespace zeldom40 {

// An integer as atoi reads it, bound to the range of int.
int leadingInteger(const char* text);

// Rows are filled from the top, cells from the left: a cell takes the first free place, and a ROWSPAN keeps its columns
// taken in the rows below. Only the ends of cells are stored, so that a span of any size costs nothing.
class CellGrid {
 public:
  struct Columns {
    long first = -1;  // both 0-based; -1 for a cell that covers nothing
    long last = -1;
  };

  explicit CellGrid(std::size_t rows) : rows_(rows) {}
  void beginRow();
  // The next cell of the row. A span below 1 covers nothing, rows below the last one do not exist.
  Columns addCell(int colspan, int rowspan);

 private:
  // Columns that a cell above keeps taken.
  struct Span {
    long first;
    long last;
    std::size_t lastRow;
  };

  void expireSpans();

  std::size_t rows_;
  std::size_t row_ = 0;  // behind the present row
  long next_ = 0;
  std::size_t above_ = 0;         // of taken_, the first span that ends behind next_
  std::vector<Span> taken_;       // by cells of the rows above, from left to right
  std::vector<Span> takenBelow_;  // by cells of this row
  std::size_t nextExpiry_ = 0;    // the first lastRow in taken_
};

}  // namespace zeldom40
