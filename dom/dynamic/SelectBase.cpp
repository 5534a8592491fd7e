// SELECT with options from a loop.
#include "dom/dynamic/Loops.h"
#include "dom/dynamic/Primitives.h"

namespace zeldom40::NDynElement {

SelectBase::SelectBase(Place place, const LoopScope& scope)
    : ContainerBase(std::move(place), scope),
      itemProperty_(getAttribute("ITEMPROPERTY")),
      constItem_(getAttribute("CONSTITEM")),
      valueProperty_(getAttribute("VALUEPROPERTY")),
      constValue_(getAttribute("CONSTVALUE")),
      defaultProperty_(getAttribute("DEFAULTPROPERTY")),
      constDefaultProperty_(getAttribute("CONSTDEFAULTPROPERTY")) {}

std::string SelectBase::option(bool selected) const {
  std::string tag = selected ? "<OPTION selected" : "<OPTION";
  if (!valueProperty_.empty() || !constValue_.empty())
    tag += " value=\"" + (valueProperty_.empty() ? constValue_ : expression(valueProperty_)) + '"';
  return tag + '>' + (itemProperty_.empty() ? constItem_ : expression(itemProperty_)) + "</OPTION>";
}

// With a default, a test that writes the option with or without "selected". It cannot do without a value, and a
// constant default cannot do without one from a property: then the default is ignored.
void SelectBase::writeOption(std::string& out, RuntimeTextState& state) const {
  const bool hasValue = !valueProperty_.empty() || !constValue_.empty();
  std::string test;
  if (hasValue && !defaultProperty_.empty()) {
    const std::string byDefault = translate(defaultProperty_);
    test = valueProperty_.empty() ? equalsConstantTest(byDefault, constValue_)
                                  : equalsTest(translate(valueProperty_), byDefault);
  } else if (!constDefaultProperty_.empty() && !valueProperty_.empty()) {
    test = equalsConstantTest(translate(valueProperty_), constDefaultProperty_);
  }
  if (!test.empty()) {
    writeChoice(out, state, test, option(/*selected=*/true), option(/*selected=*/false));
    return;
  }
  closeScriptlet(out, state);
  out += kLineEnd;
  writeIndent(out, state, 0);
  out += option(/*selected=*/false);
  openScriptlet(out, state);
}

void SelectBase::plan(Plan& plan) {
  planPiece<&ContainerBase::tryHead>(plan);
  plan.piece([this](std::string& out, RuntimeTextState& state) {
    indented_ = state.inScriptlet;
    if (indented_) {
      out += kLineEnd;
      writeIndent(out, state, 0);
      out += "%>";
      state.inScriptlet = false;
      indentIn(state);
    }
    out += beginTag(attributes());
  });
  planPiece<&ContainerBase::forHead>(plan);
  plan.piece([this](std::string& out, RuntimeTextState& state) { writeOption(out, state); });
  planPiece<&ContainerBase::forTail>(plan);
  plan.piece([this](std::string&, RuntimeTextState& state) {
    if (indented_) indentOut(state);
  });
  plan.endTag(element());
  planTryTail(plan, /*noEmptyText=*/false);
}

}  // namespace zeldom40::NDynElement
