// Names for what a node's error word and a text's type say.
#pragma once

#include <string>
#include <vector>

#include "dom/zeldom40.h"

namespace zeldom40::tool {

// The names of all bits that are set, lowest first; bits without a name as one hexadecimal number.
std::vector<std::string> errorNames(unsigned long bits);

// "literal", "normal" or "formatting".
const char* textTypeName(Text::TextType type);

}  // namespace zeldom40::tool
