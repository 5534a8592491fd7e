// Names for what a node's error word and a text's type say.
#include "tools/zeldom/errors.h"

#include <cstdio>

namespace zeldom40::tool {

namespace {

struct NamedBit {
  unsigned long bit;
  const char* name;
};

constexpr NamedBit kErrors[] = {
    {ERR_DOC_DOCTYPE_MISSING, "ERR_DOC_DOCTYPE_MISSING"},
    {ERR_DOC_DOCTYPE_DUPLICATED, "ERR_DOC_DOCTYPE_DUPLICATED"},
    {ERR_ELEMENT_INVALID_ATTR, "ERR_ELEMENT_INVALID_ATTR"},
    {ERR_ELEMENT_CANNOT_BE_CONTAINED, "ERR_ELEMENT_CANNOT_BE_CONTAINED"},
    {ERR_ELEMENT_CANNOT_CONTAIN, "ERR_ELEMENT_CANNOT_CONTAIN"},
    {ERR_ELEMENT_BEGIN_TAG_MISSING, "ERR_ELEMENT_BEGIN_TAG_MISSING"},
    {ERR_ELEMENT_END_TAG_MISSING, "ERR_ELEMENT_END_TAG_MISSING"},
    {ERR_ELEMENT_NO_PARENT_CAN_ADOPT, "ERR_ELEMENT_NO_PARENT_CAN_ADOPT"},
    {ERR_ELEMENT_PARSE_ERROR, "ERR_ELEMENT_PARSE_ERROR"},
    {ERR_ELEMENT_UNKNOWN, "ERR_ELEMENT_UNKNOWN"},
    {ERR_ATTR_INVALID_NAME, "ERR_ATTR_INVALID_NAME"},
    {ERR_ATTR_INVALID_VALUE, "ERR_ATTR_INVALID_VALUE"},
    {ERR_ATTR_VALUE_REQUIRED, "ERR_ATTR_VALUE_REQUIRED"},
    {ERR_ATTR_VALUE_DUPLICATED, "ERR_ATTR_VALUE_DUPLICATED"},
    {ERR_PI_DUPLICATED, "ERR_PI_DUPLICATED"},
    {ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST, "ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST"},
    {ERR_ELEMENT_INVALID_CASE, "ERR_ELEMENT_INVALID_CASE"},
    {ERR_ELEMENT_INVALID_CASE_ATTR, "ERR_ELEMENT_INVALID_CASE_ATTR"},
    {ERR_ELEMENT_INVALID_CASE_END, "ERR_ELEMENT_INVALID_CASE_END"},
    {ERR_PI_SUBSET_CUT, "ERR_PI_SUBSET_CUT"},
};

}  // namespace

std::vector<std::string> errorNames(unsigned long bits) {
  std::vector<std::string> names;
  for (const NamedBit& error : kErrors) {
    if (bits & error.bit) names.emplace_back(error.name);
    bits &= ~error.bit;
  }
  if (bits) {
    char number[24];
    std::snprintf(number, sizeof number, "0x%lx", bits);
    names.emplace_back(number);
  }
  return names;
}

const char* textTypeName(Text::TextType type) {
  switch (type) {
    case Text::TEXT_LITERAL:
      return "literal";
    case Text::TEXT_NORMAL:
      return "normal";
    case Text::TEXT_FORMATTING:
      return "formatting";
  }
  return "unknown";
}

}  // namespace zeldom40::tool
