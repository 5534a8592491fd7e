// Internal. The plain form of a stretch of page text.
#pragma once

#include <string>
#include <string_view>

namespace zeldom40 {

class EntityTable;

// How white space at and after the start of a text counts.
struct TextContext {
  bool dropLeading = false;  // white space stood before it, or a block began or ended there: leading space adds nothing
  bool preformatted = false;  // white space stays as written
};

// Assembles the plain form of running text: references are replaced by what they stand for, markup characters are
// marked, each run of white space becomes one blank. Depends on nothing but the source and its context, so that a page
// that is only opened and saved never pays for it.
std::string assemblePlainText(std::string_view raw, TextContext context, const EntityTable* entities);

// Whether every byte is white space (9 to 13, 32).
bool isAllSpace(std::string_view raw);

}  // namespace zeldom40
