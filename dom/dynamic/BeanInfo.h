// Internal. A name that a property path can begin with.
#pragma once

#include <set>
#include <string>

namespace zeldom40 {

struct BeanInfo {
  std::string name;
  std::string className;
  bool operator<(const BeanInfo& other) const { return name < other.name; }
};

// In the byte order of the names; of two beans of one name the first one stays.
struct BeanList {
  std::set<BeanInfo> beans;
};

}  // namespace zeldom40
