// From edits of a page's text to edits of the bytes of its file.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "dom/zeldom40.h"
#include "tools/zeldom/source_file.h"

namespace zeldom40::tool {

// The same edits in the bytes of `file`, where `edits` are of its text and `map` knows the places. All other bytes
// stay, in whatever spelling the file has them. A line end in a replacement takes the form of the one that stood there,
// and a new one the form of those before it. Nothing if the file is not what the text was made from, or if an edit
// would cut into an escape sequence.
std::optional<std::vector<SourceEdit>> editsOfFile(const SourceFile& file, const SourceMap& map,
                                                   std::span<const SourceEdit> edits);

}  // namespace zeldom40::tool
