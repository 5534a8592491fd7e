// Reads the parameter syntax of HREFPROPERTY and ACTIONPROPERTY.
#include "dom/dynamic/QueryParameter.h"

#include <cstddef>

namespace zeldom40 {

namespace {

constexpr std::size_t npos = std::string_view::npos;

bool isMarker(std::string_view rest) {
  return rest.size() >= 3 && (rest[0] == '#' || rest[0] == '$' || rest[0] == '%') && rest[1] == '(';
}

// The ")" that closes the "(" at `open`; npos if there is none.
std::size_t closingParenthesis(std::string_view text, std::size_t open) {
  int depth = 0;
  for (std::size_t i = open; i < text.size(); ++i) {
    if (text[i] == '(') ++depth;
    if (text[i] == ')' && --depth == 0) return i;
  }
  return npos;
}

// Reads a value that begins at the marker character `at`; returns where the next parameter begins.
std::size_t parseMarked(std::string_view text, std::size_t at, QueryParameter& parameter) {
  const std::size_t inside = at + 2;
  const std::size_t close = closingParenthesis(text, at + 1);
  if (close == npos) {
    // KEPT: the length is that of the text inside the parenthesis, so the value ends two characters early.
    parameter.value = text.substr(at, text.size() - inside);
    return text.size();
  }
  if (close + 1 < text.size() && text[close + 1] != '&') {
    // No marked value after all. KEPT: two characters short, as above.
    std::size_t stop = text.find('&', close + 1);
    if (stop == npos) stop = text.size();
    parameter.value = text.substr(at, stop - inside);
    return stop < text.size() ? stop + 1 : stop;
  }
  parameter.isMarked = text[at] != '$';
  if (close > inside) {
    parameter.isProperty = text[at] != '#';
    parameter.value = text.substr(inside, close - inside);
  }
  return close + 1 < text.size() ? close + 2 : text.size();
}

}  // namespace

std::vector<QueryParameter> parseQuery(std::string_view text) {
  std::vector<QueryParameter> parameters;
  for (std::size_t at = 0; at < text.size();) {
    QueryParameter& parameter = parameters.emplace_back();
    const std::size_t nameEnd = text.find_first_of("=&", at);
    parameter.name = text.substr(at, nameEnd - at);
    if (nameEnd == npos) break;
    at = nameEnd + 1;
    if (text[nameEnd] == '&') continue;
    if (isMarker(text.substr(at))) {
      at = parseMarked(text, at, parameter);
      continue;
    }
    const std::size_t valueEnd = text.find_first_of("=&", at);
    // A second "=" makes a name of what looked like the value: a=b=c is a, and b=c.
    if (valueEnd != npos && text[valueEnd] == '=') continue;
    parameter.value = text.substr(at, valueEnd - at);
    at = valueEnd == npos ? text.size() : valueEnd + 1;
  }
  return parameters;
}

void collectQueryProperties(std::string_view query, std::set<std::string>& used) {
  for (QueryParameter& parameter : parseQuery(query)) {
    if (parameter.isProperty && !parameter.name.empty() && !parameter.value.empty())
      used.insert(std::move(parameter.value));
  }
}

}  // namespace zeldom40
