// Which elements keep their white space because a style sheet of the page says so.
#include "tools/zeldom/format_style.h"

#include <algorithm>
#include <iterator>

namespace zeldom40::tool {

namespace {

constexpr std::size_t kNone = std::string_view::npos;

// What white-space, white-space-collapse and text-wrap say where runs of white space count as one blank.
constexpr std::string_view kCollapsing[] = {"collapse", "inherit", "initial", "normal",    "nowrap",
                                            "revert",   "unset",   "wrap",    "!important"};

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string lowered(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), lower);
  return out;
}

bool isNameByte(char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
         static_cast<unsigned char>(c) > 127;
}

// Without comments and strings, which may hold braces, and in lower case.
std::string plainSheet(std::string_view sheet) {
  std::string out;
  for (std::size_t i = 0; i < sheet.size(); ++i) {
    if (sheet.substr(i, 2) == "/*") {
      const std::size_t end = sheet.find("*/", i + 2);
      i = end == kNone ? sheet.size() : end + 1;
      out += ' ';
    } else if (sheet[i] == '"' || sheet[i] == '\'') {
      const std::size_t end = sheet.find_first_of(std::string{sheet[i], '\n'}, i + 1);
      i = end == kNone ? sheet.size() : end;
      out += '"';
    } else {
      out += lower(sheet[i]);
    }
  }
  return out;
}

}  // namespace

bool keepsSpace(std::string_view declarations) {
  const std::string text = lowered(declarations);
  constexpr std::string_view kProperty = "white-space";
  for (std::size_t at = text.find(kProperty); at != kNone; at = text.find(kProperty, at + 1)) {
    const std::size_t colon = text.find_first_of(":;}", at);
    if (colon == kNone) break;
    if (text[colon] != ':') continue;
    const std::size_t end = std::min(text.find_first_of(";}", colon), text.size());
    for (std::size_t word = colon + 1; word < end;) {
      const std::size_t begin = std::min(text.find_first_not_of(" \t\r\n\f", word), end);
      word = std::min({text.find_first_of(" \t\r\n\f", begin), text.find('!', begin + 1), end});
      const std::string_view value = std::string_view(text).substr(begin, word - begin);
      if (!value.empty() && std::find(std::begin(kCollapsing), std::end(kCollapsing), value) == std::end(kCollapsing)) {
        return true;
      }
    }
  }
  return false;
}

void KeptByStyle::read(std::string_view sheet) {
  const std::string text = plainSheet(sheet);
  std::size_t from = 0;  // behind the last brace or declaration
  std::size_t open = kNone;
  std::string_view selector;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '{' && text[i] != '}' && (text[i] != ';' || open != kNone)) continue;
    if (open != kNone && keepsSpace(std::string_view(text).substr(open, i - open))) addSelector(selector);
    open = kNone;
    if (text[i] == '{') {
      selector = std::string_view(text).substr(from, i - from);
      open = i + 1;
    }
    from = i + 1;
  }
  if (open != kNone && keepsSpace(std::string_view(text).substr(open))) addSelector(selector);
}

// Each selector of the list adds the last class, the id or the name of the element that it is about.
void KeptByStyle::addSelector(std::string_view list) {
  while (true) {
    const std::size_t comma = std::min(list.find(','), list.size());
    std::string_view one = list.substr(0, comma);
    const std::size_t last = one.find_last_not_of(" \t\r\n\f");
    one = one.substr(0, last == kNone ? 0 : last + 1);
    const std::size_t combinator = one.find_last_of(" \t\r\n\f>+~");
    if (combinator != kNone) one = one.substr(combinator + 1);
    // Pseudo-classes narrow a selector down; without them it concerns no less. Those with arguments may widen it.
    const std::size_t odd = one.find_first_of("()[]&*@\"\\");
    const std::size_t pseudo = std::min(one.find(':'), one.size());
    if (odd != kNone || pseudo == 0) {
      all_ = true;
    } else {
      one = one.substr(0, pseudo);
      const std::size_t mark = one.find_last_of(".#");
      const std::string_view name = mark == kNone ? one : one.substr(mark + 1);
      const bool plain = !name.empty() && std::all_of(name.begin(), name.end(), isNameByte);
      if (!plain) {
        all_ = true;
      } else if (mark == kNone) {
        names_.emplace(name);
      } else {
        (one[mark] == '.' ? classes_ : ids_).emplace(name);
      }
    }
    if (comma >= list.size()) return;
    list.remove_prefix(comma + 1);
  }
}

bool KeptByStyle::concerns(std::string_view name, std::string_view classes, std::string_view id) const {
  if (all_) return true;
  if (names_.find(name) != names_.end()) return true;
  if (!id.empty() && ids_.find(lowered(id)) != ids_.end()) return true;
  if (classes_.empty()) return false;
  if (classes.find_first_of("<$#{") != kNone) return true;  // the server says which
  for (std::size_t at = 0; at < classes.size();) {
    const std::size_t begin = std::min(classes.find_first_not_of(" \t\r\n\f", at), classes.size());
    at = std::min(classes.find_first_of(" \t\r\n\f", begin), classes.size());
    if (classes_.find(lowered(classes.substr(begin, at - begin))) != classes_.end()) return true;
  }
  return false;
}

}  // namespace zeldom40::tool
