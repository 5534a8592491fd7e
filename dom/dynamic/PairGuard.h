// Internal. Keeps what stands between the comments of a pair from hiding its end.
#pragma once

#include <string>

#include "dom/dynamic/MetaData.h"

namespace zeldom40 {

// Sees to it that a reader of the run-time text `out` from the offset `from` on meets the end comment `endTag` of a
// pair of that kind right behind it. A comment or server tag that the text leaves open is closed, for it would take the
// end comment in, and with it the page up to the end of the next pair. An end comment that the text brings itself is
// told apart. Text that was read from a page stays as it is, since the reader found its end.
void closeRunTimeText(std::string& out, std::size_t from, MetaData::Type type, const std::string& endTag);

}  // namespace zeldom40
