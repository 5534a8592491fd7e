// Internal. The parameters of a dynamic link: a query string in which each value may be a property.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zeldom40 {

struct QueryParameter {
  std::string name;
  std::string value;
  bool isProperty = false;  // $(value) or %(value)
  bool isMarked = false;    // #(value) or %(value); nothing asks for it
};

std::vector<QueryParameter> parseQuery(std::string_view text);
// Adds the property paths that the query reads.
void collectQueryProperties(std::string_view query, std::set<std::string>& used);

}  // namespace zeldom40
