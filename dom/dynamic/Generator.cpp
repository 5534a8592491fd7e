// Paths to Java, and the scriptlet state.
#include "dom/dynamic/Generator.h"

#include <algorithm>

#include "dom/dynamic/JavaTypes.h"
#include "dom/dynamic/LoopScope.h"
#include "dom/dynamic/QueryParameter.h"
#include "dom/tree/Element.h"

namespace zeldom40 {

void openScriptlet(std::string& out, RuntimeTextState& state) {
  if (!state.inScriptlet) out += "<%";
  state.inScriptlet = true;
}

void closeScriptlet(std::string& out, RuntimeTextState& state) {
  if (state.inScriptlet) out += " %>";
  state.inScriptlet = false;
}

void writeIndent(std::string& out, const RuntimeTextState& state, int extra) {
  // CHOICE: lines of more than 80 levels begin at the margin. Nobody reads an indent of more; without a bound the
  // blanks of a deeply nested page would grow with the square of its length, and 80 levels of them on each line would
  // be four fifths of it: 1,600 bytes of 2,000 a list, which made a million nested lists more than the memory of a
  // machine.
  constexpr int kMaxLevel = 80;
  const int level = state.indent + extra;
  if (level <= kMaxLevel) out.append(2 * static_cast<std::size_t>(level), ' ');
}

void indentIn(RuntimeTextState& state) { ++state.indent; }

void indentOut(RuntimeTextState& state) {
  if (state.indent > 0) --state.indent;
}

namespace NDynElement {

// --- Plan ------------------------------------------------------------------------------------------------------------

void Plan::beginTag(Element* element) {
  piece([element](std::string& out, RuntimeTextState& state) { emitBeginTag(element, out, state); });
}

Plan::Step Plan::takeNext() {
  Step step = std::move(steps_[next_++]);
  // When half of it has run, so that all moves of a long plan together are linear.
  if (step.what != Step::PIECE && !isDone() && next_ >= steps_.capacity() / 2) {
    steps_.erase(steps_.begin(), steps_.begin() + static_cast<std::ptrdiff_t>(std::exchange(next_, 0)));
    steps_.shrink_to_fit();
  }
  return step;
}

// --- Base ------------------------------------------------------------------------------------------------------------

Base::~Base() = default;

std::string Base::resolve(const std::string& path) const {
  return place_.around ? place_.loops.resolve(path, place_.around->level()) : path;
}

std::string Base::getAttribute(const char* name) const { return attributeOrEmpty(element(), name); }

std::string Base::expression(const std::string& path) const {
  return path.empty() ? std::string() : "<%= " + translate(path) + " %>";
}

std::string Base::urlExpression(const std::string& path, bool isBuffer) const {
  if (path.empty()) return {};
  return "<%= java.net.URLEncoder.encode(" + translate(path) + (isBuffer ? ".toString()" : "") + ") %>";
}

std::string Base::getterChain(const std::string& path, bool keepLast) const {
  std::size_t end = std::min(path.find('.'), path.size());
  std::string chain = path.substr(0, end);
  while (end < path.size()) {
    const std::size_t start = end + 1;
    end = std::min(path.find('.', start), path.size());
    chain += '.';
    if (start == end) continue;
    const std::string segment = path.substr(start, end - start);
    const bool last = keepLast && end == path.size();
    if (!last && (segment.back() == ')' || segment.back() == ']')) {
      chain += segment;
      continue;
    }
    // The path in front is only for a host that can be asked.
    chain += getterName(types().canAsk() ? path.substr(0, start - 1) : std::string(), segment);
    if (!last) chain += "()";
  }
  return chain;
}

std::string Base::getterName(const std::string& ownerPath, const std::string& property) const {
  std::string name = types().getter(ownerPath, property);
  if (!name.empty()) return name;
  name = property;
  if (name[0] >= 'a' && name[0] <= 'z') name[0] = static_cast<char>(name[0] - 'a' + 'A');
  return "get" + name;
}

std::string Base::addQuery(const std::string& base, const std::string& query) const {
  std::string link = base;
  char lead = '?';
  for (const QueryParameter& parameter : parseQuery(query)) {
    if (parameter.name.empty()) continue;
    link += lead;
    lead = '&';
    link += parameter.name;
    if (parameter.value.empty()) continue;
    link += '=';
    if (!parameter.isProperty) {
      link += parameter.value;
      continue;
    }
    // Text is encoded; a number or a bean goes to the page as the server prints it.
    const std::string type = types().type(parameter.value);
    link += isStringType(type) ? urlExpression(parameter.value, isBufferType(type)) : expression(parameter.value);
  }
  return link;
}

void Base::setFromProperty(AttributeMap& attributes, const char* name, const char* source) const {
  const std::string property = getAttribute(source);
  if (!property.empty()) attributes[name] = expression(property);
}

}  // namespace NDynElement
}  // namespace zeldom40
