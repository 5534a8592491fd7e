// Internal. Reads attributes of dynamic elements and leaves their parsed form as it is.
#pragma once

#include <map>
#include <optional>
#include <string>

namespace zeldom40 {

class Element;

// Name to value, in the byte order of the names.
using AttributeMap = std::map<std::string, std::string>;

// What Attribute::getValue would tell, without Attribute objects: a host's getter makes them for all attributes of the
// element, 200 bytes and more each, and they stay as long as the page. None if the element has no such attribute.
std::optional<std::string> findAttribute(const Element* element, const char* name);
// A missing attribute reads as an empty one.
std::string attributeOrEmpty(const Element* element, const char* name);
// All attributes of a non-empty name. Of repeated ones the first counts, as in every look-up.
AttributeMap attributeMap(const Element* element);

}  // namespace zeldom40
