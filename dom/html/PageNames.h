// Internal. The tag names of one page, found straight from its bytes.
#pragma once

#include <cstdint>
#include <deque>
#include <string_view>
#include <vector>

#include "dom/dtd/ParserType.h"
#include "dom/tree/SharedName.h"

namespace zeldom40 {

class ElementDefinition;

// What the parser knows of one upper-case tag name, with its notes about that name.
struct PageName {
  SharedName name;
  std::uint32_t hash = 0;
  ElementDefinition* definition = nullptr;  // null for an unknown name and for one that this JSP version hides
  int tableId = -1;                         // the name's number in the content table
  unsigned generation = 0;                  // of the declarations that the two come from
  int lastOpen = -1;                        // index of the topmost open node of this name

  // Nobody among the open nodes from `barredFrom` up to `barredTo` takes an element of this name; true as long as the
  // node at the index asked about was open by then (`barredTime`).
  int barredFrom = 0;
  int barredTo = -1;
  std::uint32_t barredTime = 0;
};

// One probe finds a name, folding case as it hashes, so that no string is made for a tag. Unknown names are held once
// however often a page repeats them.
class PageNames {
 public:
  explicit PageNames(ParserType::_dtd_frame* frame);

  // The entry for a name as written; stays valid as long as this object.
  PageName& find(std::string_view asWritten);
  // Call after declarations were added: definitions are looked up anew as names are asked for.
  void declarationsChanged();

 private:
  std::uint32_t hashFolded(std::string_view text) const;
  PageName& add(std::string_view asWritten, std::uint32_t hash);
  void lookUp(PageName& entry);
  void grow();

  ParserType::_dtd_frame* frame_;
  std::uint32_t seed_ = 0;
  unsigned generation_ = 0;
  std::deque<PageName> entries_;
  std::vector<PageName*> slots_;  // its size is a power of two
};

}  // namespace zeldom40
