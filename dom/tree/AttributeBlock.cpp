// Names of the attributes of a parsed tag.
#include "dom/tree/AttributeBlock.h"

#include "dom/dtd/AttributeDefinition.h"

namespace zeldom40 {

std::string_view AttributeBlock::nameOf(const Entry& entry) const {
  return entry.definition ? entry.definition->upperName().view() : entry.name.in(page_);
}

}  // namespace zeldom40
