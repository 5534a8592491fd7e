// Internal. The rows of the element catalogue whatever the JSP version, and which element calls for which around it.
#pragma once

#include <string_view>

#include "dom/dtd/ElementCatalogue.h"

namespace zeldom40 {

struct CatalogueTables {
  // The identifier of a name, ID_NONE if it has none. The names of HTML are upper case here; prefixed names compare
  // exactly behind "jsp:" and "qdx:", and in any case behind "ZELX:"; the old bean tags in any case.
  static HTML40ElementID find(std::string_view name);
  // The row of an identifier; for one without a row no name (null), no group, no flags.
  static const char* name(int id);
  static unsigned long group(int id);
  static unsigned long flags(int id);
  // Whether the JSP version of the newest DOM hides the identifier.
  static bool isHidden(int id);
  // The element that such an element has to stand in, and the one that it has to hold; ID_NONE if there is none.
  static HTML40ElementID requiredParentID(int id);
  static HTML40ElementID requiredChildID(int id);
};

}  // namespace zeldom40
