// Recognises files that are no pages in a form that the library reads, so that nothing is written into them.
#pragma once

#include <string>
#include <string_view>

namespace zeldom40::tool {

// What a file of two or four bytes a character seems to be, "UTF-16, low byte first" for one; empty for others.
std::string wideForm(std::string_view bytes);

// The same, and what a file that holds no text at all seems to be: "a PNG picture". Single NUL bytes and other control
// characters in a page do not make it one of these.
std::string foreignForm(std::string_view bytes);

}  // namespace zeldom40::tool
