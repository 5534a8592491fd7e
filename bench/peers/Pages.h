// The pages of the comparison: made ones, and those of a folder.
#pragma once

#include <string>
#include <vector>

#include "bench/peers/Peer.h"

namespace zeldom40::bench {

// HTML and JSP of 10 KB, 100 KB and 1 MB.
std::vector<Page> ordinaryPages();
// The same sizes: valid XHTML, which is also HTML of sorts.
std::vector<Page> wellFormedPages();
// The same sizes, with faults in every line as people make them.
std::vector<Page> brokenPages();
// Every file below `folder` but *.md, files below `smallest` bytes, and files with NUL bytes, where some parsers stop.
std::vector<Page> folderPages(const std::string& folder, std::size_t smallest);

}  // namespace zeldom40::bench
