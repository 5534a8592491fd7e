// What the DTD says about one attribute.
#include "dom/dtd/AttributeDefinition.h"

#include "dom/dtd/Parser.h"

namespace zeldom40 {

AttributeDefinition::AttributeDefinition() : Node(NODE_ATTRIBUTE_DEFINITION) {}
AttributeDefinition::~AttributeDefinition() = default;

void AttributeDefinition::setName(const char* name) { setName(std::string(name ? name : "")); }

void AttributeDefinition::setName(const std::string& name) {
  Node::setName(name);
  upperName_ = SharedName(Parser::toUpperName(name));
}

}  // namespace zeldom40
