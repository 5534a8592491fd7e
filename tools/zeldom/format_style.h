// Which elements keep their white space because a style sheet of the page says so.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace zeldom40::tool {

class KeptByStyle {
 public:
  // Notes the rules of a style sheet that change how white space counts.
  void read(std::string_view sheet);
  // Whether such a rule may concern an element. `name` is in lower case, the others as they are in the tag.
  bool concerns(std::string_view name, std::string_view classes, std::string_view id) const;

 private:
  void addSelector(std::string_view selector);

  std::set<std::string, std::less<>> names_;
  std::set<std::string, std::less<>> classes_;  // in lower case: in old documents their case does not count
  std::set<std::string, std::less<>> ids_;
  bool all_ = false;  // a selector that cannot be told from a page alone
};

// Whether declarations of a style (a STYLE attribute, the inside of a rule) may keep white space. What is not known to
// collapse it counts.
bool keepsSpace(std::string_view declarations);

}  // namespace zeldom40::tool
