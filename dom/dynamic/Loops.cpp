// The pieces of a loop in Java.
#include "dom/dynamic/Loops.h"

#include "dom/dynamic/JavaTypes.h"
#include "dom/dynamic/PropertyPath.h"

namespace zeldom40::NDynElement {

std::string emptyText(const Element* element) {
  std::string text;
  const auto value = [element](const char* name) { return attributeOrEmpty(element, name); };
  const auto add = [&](const char* name, const char* from) {
    if (!value(from).empty()) text += std::string(" ") + name + "=\"" + value(from) + '"';
  };
  if (!value("IMGSRC").empty()) {
    text = "<IMG";
    add("SRC", "IMGSRC");
    add("WIDTH", "IMGWIDTH");
    add("HEIGHT", "IMGHEIGHT");
    return text + '>';
  }
  if (value("FONTTEXT").empty()) return {};
  text = "<FONT";
  add("COLOR", "FONTCOLOR");
  return text + '>' + value("FONTTEXT") + "</FONT>";
}

// --- expressions -----------------------------------------------------------------------------------------------------

// The getter of a loop's array, its front replaced by what the loops around hold.
std::string ContainerBase::owner(const std::string& path) const {
  const std::size_t dot = path.rfind('.');
  // A path of one segment has no front; the code that it gives is the author's to mend.
  if (dot == std::string::npos) return path.substr(0, path.find_first_of("(["));
  const std::string back = path.substr(dot);
  std::string front = path.substr(0, dot);
  if (scope_.parent()) front = loops().resolve(front, scope_.parent()->level());
  return front + back.substr(0, back.find_first_of("(["));
}

std::string ContainerBase::elementAt(const std::string& path, const std::string& index) const {
  switch (pathKind(path)) {
    case PathKind::ARRAY:
      return getterChain(owner(path), /*keepLast=*/true) + '[' + index + ']';
    case PathKind::INDEXED_GETTER:
      return getterChain(owner(path), /*keepLast=*/true) + '(' + index + ')';
    default:
      return translate(path);
  }
}

std::string ContainerBase::fetch(const std::string& path, int number, const std::string& index) const {
  if (pathKind(path) == PathKind::ARRAY) return scope_.arrayVariable(number) + '[' + index + ']';
  return elementAt(path, index);
}

void ContainerBase::declare(std::string& out, const RuntimeTextState& state, const std::string& path,
                            int number) const {
  std::string type = types().type(path);
  if (type.empty()) type = "Object";
  const std::string variable = scope_.elementVariable(number);
  types().setVariable(variable, type);
  writeIndent(out, state, 0);
  if (pathKind(path) == PathKind::ARRAY) {
    out += type + "[] " + scope_.arrayVariable(number) + " = " + getterChain(owner(path), /*keepLast=*/true) + "();";
    out += kLineEnd;
    writeIndent(out, state, 0);
  }
  out += type + ' ' + variable + " = " + fetch(path, number, "0") + ';';
}

void ContainerBase::assign(std::string& out, const RuntimeTextState& state, const std::string& path, int number,
                           const std::string& index) const {
  writeIndent(out, state, 0);
  out += scope_.elementVariable(number) + " = " + fetch(path, number, index) + ';';
}

// --- pieces ----------------------------------------------------------------------------------------------------------

void ContainerBase::catchHead(std::string& out, const RuntimeTextState& state) const {
  writeIndent(out, state, 0);
  out += "catch (java.lang.ArrayIndexOutOfBoundsException " + scope_.exceptionVariable() + ") {\r\n";
}

void ContainerBase::tryHead(std::string& out, RuntimeTextState& state) const {
  openScriptlet(out, state);
  out += kLineEnd;
  writeIndent(out, state, 0);
  out += "try {\r\n";
  indentIn(state);
  declare(out, state, scope_.loopProperty(), LoopScope::kMain);
  out += " // throws an exception if empty.";
  for (const auto& [path, number] : scope_.parallelProperties()) {
    out += kLineEnd;
    declare(out, state, path, static_cast<int>(number));
  }
}

void ContainerBase::reinit(std::string& out, RuntimeTextState& state) const {
  openScriptlet(out, state);
  out += kLineEnd;
  assign(out, state, scope_.loopProperty(), LoopScope::kMain, "0");
  for (const auto& [path, number] : scope_.parallelProperties()) {
    out += kLineEnd;
    assign(out, state, path, static_cast<int>(number), "0");
  }
}

void ContainerBase::forHead(std::string& out, RuntimeTextState& state) const {
  openScriptlet(out, state);
  out += kLineEnd;
  writeIndent(out, state, 0);
  out += "for (int " + scope_.indexVariable() + " = 0; ; ) {";
  indentIn(state);
}

void ContainerBase::forTailHead(std::string& out, RuntimeTextState& state) const {
  openScriptlet(out, state);
  out += kLineEnd;
  writeIndent(out, state, 0);
  out += scope_.indexVariable() + "++;\r\n";
  writeIndent(out, state, 0);
  out += "try {\r\n";
  indentIn(state);
  assign(out, state, scope_.loopProperty(), LoopScope::kMain, scope_.indexVariable());
  out += kLineEnd;
  for (const auto& [path, number] : scope_.parallelProperties()) {
    assign(out, state, path, static_cast<int>(number), scope_.indexVariable());
    out += kLineEnd;
  }
}

void ContainerBase::forTailEnd(std::string& out, RuntimeTextState& state) const {
  indentOut(state);
  writeIndent(out, state, 0);
  out += "}\r\n";
  catchHead(out, state);
  writeIndent(out, state, 1);
  out += "break;\r\n";
  writeIndent(out, state, 0);
  out += "}\r\n";
  indentOut(state);
  writeIndent(out, state, 0);
  out += '}';
}

void ContainerBase::forTail(std::string& out, RuntimeTextState& state) const {
  forTailHead(out, state);
  forTailEnd(out, state);
}

void ContainerBase::tryTail(std::string& out, RuntimeTextState& state, bool noEmptyText) const {
  const std::string text = noEmptyText ? std::string() : emptyText(element());
  openScriptlet(out, state);
  out += kLineEnd;
  indentOut(state);
  writeIndent(out, state, 0);
  out += "}\r\n";
  catchHead(out, state);
  if (!text.empty()) {
    writeIndent(out, state, 1);
    out += "%>" + text + "<%\r\n";
  }
  writeIndent(out, state, 0);
  out += '}';
}

// --- lists, loops, texts ---------------------------------------------------------------------------------------------

void ListBase::plan(Plan& plan) {
  planPiece<&ContainerBase::tryHead>(plan);
  planOwnTag(plan);
  planPiece<&ContainerBase::forHead>(plan);
  plan.children(element());
  planPiece<&ContainerBase::forTail>(plan);
  plan.endTag(element());
  planTryTail(plan, /*noEmptyText=*/false);
}

void LoopBase::plan(Plan& plan) {
  planPiece<&ContainerBase::tryHead>(plan);
  planPiece<&ContainerBase::forHead>(plan);
  plan.children(element());
  planPiece<&ContainerBase::forTail>(plan);
  planTryTail(plan, /*noEmptyText=*/false);
}

namespace {

// A line of page text inside Java.
void writeText(std::string& out, const RuntimeTextState& state, int extra, const std::string& text) {
  writeIndent(out, state, extra);
  out += "%>" + text + "<%\r\n";
}

}  // namespace

void TextBase::forTail(std::string& out, RuntimeTextState& state) const {
  const Delimiters delimiters = {getAttribute("DELIMITER"), getAttribute("LASTDELIMITER"),
                                 getAttribute("DELIMITERFORTWO")};
  forTailHead(out, state);
  if (!delimiters.forTwo.empty() || !delimiters.last.empty()) {
    lookAhead(out, state, delimiters);
  } else if (!delimiters.usual.empty()) {
    writeText(out, state, 0, delimiters.usual);
  }
  forTailEnd(out, state);
}

// The element just fetched is the last one if the one behind it does not exist; the separator in front of it is then
// the last separator, and if its index is 1 the list has exactly two elements.
void TextBase::lookAhead(std::string& out, RuntimeTextState& state, const Delimiters& delimiters) const {
  const std::string index = scope().indexVariable();
  writeIndent(out, state, 0);
  out += "try {\r\n";
  writeIndent(out, state, 1);
  out += "Object o = " + fetch(scope().loopProperty(), LoopScope::kMain, index + " + 1") + ";\r\n";
  for (const auto& [path, number] : scope().parallelProperties()) {
    writeIndent(out, state, 1);
    out += "o = " + fetch(path, static_cast<int>(number), index + " + 1") + ";\r\n";
  }
  if (!delimiters.usual.empty()) writeText(out, state, 1, delimiters.usual);
  writeIndent(out, state, 0);
  out += "}\r\n";
  catchHead(out, state);
  if (delimiters.forTwo.empty()) {
    writeText(out, state, 1, delimiters.last);
  } else {
    writeIndent(out, state, 1);
    out += "if (" + index + " == 1) {\r\n";
    writeText(out, state, 2, delimiters.forTwo);
    writeIndent(out, state, 1);
    out += "}\r\n";
    const std::string& last = delimiters.last.empty() ? delimiters.usual : delimiters.last;
    if (!last.empty()) {
      writeIndent(out, state, 1);
      out += "else {\r\n";
      writeText(out, state, 2, last);
      writeIndent(out, state, 1);
      out += "}\r\n";
    }
  }
  writeIndent(out, state, 0);
  out += "}\r\n";
}

}  // namespace zeldom40::NDynElement
