// pclen: how many bytes the unit at a place in a text takes. A host that moves through the plain form of a text or of
// an attribute value steps by it, so that it never stops inside a character or a marked reference.
#pragma once

#include <string>

#include "dom/export.h"

namespace zeldom40 {

// Returns the length in bytes of the unit at `text`: 0 at a NUL and for null; 2 at CR (13), which stands with its LF,
// and at ESC (27), a marked character; 4 at byte 28, a marked wide character; else what the runtime's `mblen` says in
// the current locale, or 1 where that finds no character.
// CR, 27 and 28 are not checked against what follows: at a unit cut short by the end of the text the result is longer
// than what is left, so a walk takes the smaller of the two.
ZELDOM40_API int pclen(const char* text);

// The same for the first unit of `text`; 0 if it is empty.
ZELDOM40_API int pclen(const std::string& text);

}  // namespace zeldom40
