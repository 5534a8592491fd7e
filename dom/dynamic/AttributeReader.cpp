// Attribute values from the block of a parsed tag, or from the list that took its place.
#include "dom/dynamic/AttributeReader.h"

#include "dom/tree/Attribute.h"
#include "dom/tree/AttributeList.h"
#include "dom/tree/ElementAccess.h"

namespace zeldom40 {

namespace {

std::string storedValue(const AttributeBlock& block, const AttributeBlock::Entry& entry) {
  std::string value(block.valueOf(entry));
  // Only a value with quotes may be stored in another form.
  if (value.find('"') == std::string::npos) return value;
  return Attribute(std::string(), value, static_cast<Document*>(nullptr)).getValue();
}

}  // namespace

std::optional<std::string> findAttribute(const Element* element, const char* name) {
  if (const AttributeBlock* block = ElementAccess::block(element)) {
    const AttributeBlock::Entry* entry = block->find(name);
    return entry ? std::optional(storedValue(*block, *entry)) : std::nullopt;
  }
  const Attribute* attribute = element->getAttributeNode(name);
  return attribute ? std::optional(attribute->getValue()) : std::nullopt;
}

std::string attributeOrEmpty(const Element* element, const char* name) {
  return findAttribute(element, name).value_or(std::string());
}

AttributeMap attributeMap(const Element* element) {
  AttributeMap map;
  if (const AttributeBlock* block = ElementAccess::block(element)) {
    for (const AttributeBlock::Entry& entry : *block) {
      const std::string_view name = block->nameOf(entry);
      if (!name.empty()) map.try_emplace(std::string(name), storedValue(*block, entry));
    }
    return map;
  }
  const AttributeList* list = element->getAttributes();
  for (unsigned long i = 0; list && i < list->getLength(); ++i) {
    const Attribute* attribute = list->item(i);
    if (attribute && !attribute->getName().empty()) map.emplace(attribute->getName(), attribute->getValue());
  }
  return map;
}

}  // namespace zeldom40
