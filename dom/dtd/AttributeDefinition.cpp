// What the DTD says about one attribute.
#include "dom/dtd/AttributeDefinition.h"

#include "dom/dtd/AttributeTable.h"
#include "dom/dtd/Parser.h"

namespace zeldom40 {

AttributeDefinition::AttributeDefinition() : Node(NODE_ATTRIBUTE_DEFINITION) {}
AttributeDefinition::~AttributeDefinition() = default;

void AttributeDefinition::setName(const char* name) { setName(std::string(name ? name : "")); }

void AttributeDefinition::setName(const std::string& name) {
  Node::setName(name);
  upperName_ = SharedName(Parser::toUpperName(name));
}

const ListedNames::Entry& ListedNames::find(std::string_view name) {
  std::size_t place = name.size();
  if (!name.empty()) {
    for (char c : {name.front(), name[name.size() / 2], name.back()})
      place = place * 31 + static_cast<unsigned char>(c);
  }
  Entry& entry = entries_[place % entries_.size()];
  if (entry.name == name) return entry;
  const std::string upper = Parser::toUpperName(name);
  entry.name = SharedName(name);
  entry.upperName = upper == name ? entry.name : SharedName(upper);
  entry.hash = nameHash(upper);
  return entry;
}

}  // namespace zeldom40
