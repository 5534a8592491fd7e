// A change of a page's source as bytes, and the text that a list of them makes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "dom/export.h"

namespace zeldom40 {

// `length` bytes from the 0-based `offset` on give way to `replacement`. A length of 0 inserts before that byte.
struct SourceEdit {
  std::size_t offset = 0;
  std::size_t length = 0;
  std::string replacement;
};

// The text with all edits made. They are sorted by offset and do not overlap; one that reaches beyond the text ends
// there.
ZELDOM40_API std::string applyEdits(std::string_view text, const std::vector<SourceEdit>& edits);

// A text that is edited several times over: what became of it, as one list of edits of the text that it began as.
class ZELDOM40_API EditedText {
 public:
  explicit EditedText(std::string text);

  // The text with all edits so far. Lives until the next call of apply.
  const std::string& text() const { return text_; }
  // Makes further edits; their offsets count in text().
  void apply(const std::vector<SourceEdit>& edits);
  // All edits, of the text that the object was made with.
  std::vector<SourceEdit> edits() const;
  // The offset in the text of the beginning of what is at `offset` now; for what an edit inserted, of what it stands
  // before.
  std::size_t toOriginal(std::size_t offset) const;

 private:
  // A stretch of the text; those with `kept` are from the original.
  struct Piece {
    bool kept;
    std::size_t begin;  // in the original, of inserted text where it stands before
    std::size_t length;
    std::size_t at;  // in the text
  };

  std::size_t originalLength_;
  std::string text_;
  std::vector<Piece> pieces_;  // together the text
};

}  // namespace zeldom40
