// How an edited tree is laid out in its source.
#pragma once

#include "dom/export.h"

namespace zeldom40 {

// Read when an edit is closed; values are stored as given. Owned by the DOM.
class ZELDOM40_API DocumentStyle {
 public:
  // For a host's own use; the library reads no format word.
  static constexpr unsigned long FORMAT_NONE = 0;
  static constexpr unsigned long FORMAT_BREAK_START = 1;
  static constexpr unsigned long FORMAT_BREAK_END = 2;

  void SetFormat(unsigned long format) { format_ = static_cast<unsigned>(format); }
  unsigned long GetFormat() const { return format_; }
  // Blanks per nesting level. A negative value counts as 0 where it is used.
  void SetIndent(int indent) { indent_ = indent; }
  int GetIndent() const { return indent_; }
  // The column (0-based) from which the next blank of running text is a line break.
  void SetColumnLimit(int limit) { columnLimit_ = limit; }
  int GetColumnLimit() const { return columnLimit_; }

 private:
  unsigned format_ = FORMAT_NONE;
  int indent_ = 2;
  int columnLimit_ = 40;
};

}  // namespace zeldom40
