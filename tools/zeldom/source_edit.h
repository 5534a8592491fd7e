// Changes of a page as edits of its source: stretches of bytes that others take the place of.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "dom/zeldom40.h"
#include "tools/zeldom/source_file.h"

namespace zeldom40::tool {

// `length` bytes at the 0-based `offset` become `replacement`. Lists of edits are in order and do not overlap.
struct SourceEdit {
  std::size_t offset = 0;
  std::size_t length = 0;
  std::string replacement;
};

std::string applyEdits(std::string_view text, std::span<const SourceEdit> edits);

// The bytes of `file` after edits of its text, of which `map` knows the places. All other bytes stay, in whatever
// spelling the file has them. A line end in a replacement takes the form of the one that stood there, and a new one the
// form of those before it. Only for replacements in ASCII. Nothing if the file is not what the text was made from, or
// if an edit would cut into an escape sequence.
std::optional<std::string> editFile(const SourceFile& file, const SourceMap& map, std::span<const SourceEdit> edits);

}  // namespace zeldom40::tool
