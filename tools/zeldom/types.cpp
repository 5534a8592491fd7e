// Reads a file of Java types and looks into it.
#include "tools/zeldom/types.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include <nlohmann/json.hpp>

#include "tools/zeldom/page.h"

namespace zeldom40::tool {

const char kTypesHelp[] =
    "A types file is JSON and says what a host knows of the Java classes behind the pages:\n"
    "  {\"beans\": {\"cart\": \"shop.Cart\"},\n"
    "   \"classes\": {\"shop.Cart\": {\"title\": \"String\",\n"
    "                             \"items\": {\"type\": \"shop.Item\", \"getter\": \"getItems\"}}}}\n"
    "\"beans\" are beans that no page declares. A property of a class has a type, for an array or an indexed\n"
    "getter that of one element; without \"getter\" the naming rule serves (title: getTitle). What is not\n"
    "in the file has the type Object.";

namespace {

using nlohmann::json;

const json& member(const json& object, const char* name) {
  static const json kNone = json::object();
  const auto at = object.find(name);
  return at == object.end() ? kNone : *at;
}

// The first member whose name is none of `names`; null if there is none.
const std::string* strange(const json& object, std::initializer_list<std::string_view> names) {
  for (const auto& item : object.get_ref<const json::object_t&>()) {
    if (std::find(names.begin(), names.end(), item.first) == names.end()) return &item.first;
  }
  return nullptr;
}

char* copyOf(const std::string& text) {
  char* copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (copy) *std::copy(text.begin(), text.end(), copy) = '\0';
  return copy;
}

}  // namespace

bool Types::load(const std::string& path) {
  std::string bytes;
  if (!readInput(path, &bytes)) return false;
  const std::string fault = read(bytes);
  if (!fault.empty()) complain(path, fault);
  return fault.empty();
}

std::string Types::read(const std::string& bytes) {
  const json file = json::parse(bytes, nullptr, /*allow_exceptions=*/false);
  if (!file.is_object()) return "is no JSON object";
  if (const std::string* name = strange(file, {"beans", "classes"})) return "has an unknown member \"" + *name + "\"";
  const json& beans = member(file, "beans");
  const json& classes = member(file, "classes");
  if (!beans.is_object() || !classes.is_object()) return "\"beans\" and \"classes\" must be objects";
  for (const auto& [name, type] : beans.items()) {
    if (!type.is_string()) return "the class of bean \"" + name + "\" must be a string";
    beans_.emplace(name, type.get<std::string>());
  }
  for (const auto& [className, properties] : classes.items()) {
    if (!properties.is_object()) return "class \"" + className + "\" must be an object";
    Properties& known = classes_[className];
    for (const auto& [name, value] : properties.items()) {
      const std::string where = "property \"" + name + "\" of \"" + className + "\"";
      const json& type = value.is_object() ? member(value, "type") : value;
      const json& getter = value.is_object() ? member(value, "getter") : member(json::object(), "getter");
      if (value.is_object() && strange(value, {"type", "getter"})) return where + " has an unknown member";
      if (!type.is_string()) return where + " has no type";
      if (!getter.is_string() && !getter.empty()) return where + ": the getter must be a string";
      known[name] = {type.get<std::string>(), getter.is_string() ? getter.get<std::string>() : std::string()};
    }
  }
  return {};
}

const Types::Property* Types::find(const std::string& type, const std::string& property) const {
  const auto known = classes_.find(type);
  if (known == classes_.end()) return nullptr;
  const auto at = known->second.find(property);
  return at == known->second.end() ? nullptr : &at->second;
}

char* Types::lookupType(const char* path, const char* beanClass) const {
  std::string type = beanClass;
  std::string_view rest = path;
  for (std::size_t dot = rest.find('.'); dot != std::string_view::npos; dot = rest.find('.')) {
    rest.remove_prefix(dot + 1);
    const Property* property = find(type, std::string(rest.substr(0, rest.find_first_of(".[("))));
    if (!property) return nullptr;
    type = property->type;
  }
  return copyOf(type);
}

char* Types::lookupGetter(const char* type, const char* property) const {
  const Property* known = find(type, property);
  return known && !known->getter.empty() ? copyOf(known->getter) : nullptr;
}

void Types::freeResult(char* text) const { std::free(text); }

}  // namespace zeldom40::tool
