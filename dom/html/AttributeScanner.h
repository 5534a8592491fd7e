// Internal. Reads names and values from the text of a directive or a comment.
#pragma once

#include <cstdint>
#include <string_view>

namespace zeldom40 {

struct ScannedAttribute {
  std::string_view name;
  std::string_view value;
};

// Reads the next name, with its value if a "=" follows, from byte `position` of `text`, which it moves on, up to
// `limit`. Blanks are tab, LF, CR and blank. A value stands in quotes of either kind or runs to the next blank. False
// when no name is left.
bool scanAttribute(std::string_view text, std::size_t limit, std::size_t& position, ScannedAttribute& found);

}  // namespace zeldom40
