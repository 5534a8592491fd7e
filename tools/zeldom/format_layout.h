// Lays out the source of a page: which white space becomes what.
//
// Nothing but white space changes, and it neither comes nor goes: what stood apart stays apart, and what touched still
// touches. So a page looks as before whatever its style sheets make of blocks and lines; only white space that counts
// (preformatted text, scripts, values) has to be known, and is not touched. Two exceptions: white space at the start
// and end of the page, and pages without any style, script or server code, where tags alone say what a block is.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/format_tokens.h"
#include "tools/zeldom/source_edit.h"

namespace zeldom40::tool {

struct Layout {
  std::vector<SourceEdit> edits;     // of the page's text, in order
  std::vector<LeftAlone> leftAlone;  // in no particular order
};

// What `options` ask for: the indentation of lines, breaks in lines that are too long, the case of tag names.
// `codepage` is that of the text, for columns are characters. Time and memory are linear.
Layout layOut(const LayoutPage& page, const FormatOptions& options, int codepage);

}  // namespace zeldom40::tool
