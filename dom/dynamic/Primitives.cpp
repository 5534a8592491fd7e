// Properties, images, inputs, links and text areas.
#include "dom/dynamic/Primitives.h"

namespace zeldom40::NDynElement {

void PropertyBase::plan(Plan& plan) {
  plan.piece([this](std::string& out, RuntimeTextState& state) {
    const std::string property = getAttribute("PROPERTY");
    if (property.empty()) return;
    closeScriptlet(out, state);
    out += expression(property);
  });
}

void ImageBase::plan(Plan& plan) {
  plan.piece([this](std::string& out, RuntimeTextState& state) {
    const std::string property = getAttribute("PROPERTY");
    if (property.empty()) return;
    AttributeMap tag = attributes();
    tag["SRC"] = expression(property);
    closeScriptlet(out, state);
    out += beginTag(tag);
  });
}

// --- tags with a name and a value ------------------------------------------------------------------------------------

void PrimitiveBase::planBeginTag(Plan& plan, AttributeMap attributes) const {
  plan.piece([this, attributes = std::move(attributes)](std::string& out, RuntimeTextState& state) {
    closeScriptlet(out, state);
    out += beginTag(attributes);
  });
}

void PrimitiveBase::planLink(Plan& plan, const char* attribute, const char* queryAttribute) const {
  AttributeMap tag = attributes();
  tag[attribute] = addQuery(getAttribute(attribute), getAttribute(queryAttribute));
  planBeginTag(plan, std::move(tag));
  plan.children(element());
  plan.piece([this](std::string& out, RuntimeTextState& state) {
    closeScriptlet(out, state);
    out += endTag();
  });
}

void PrimitiveBase::plan(Plan& plan) {
  AttributeMap tag = attributes();
  setFromProperty(tag, "NAME", "NAMEPROPERTY");
  setFromProperty(tag, "VALUE", "VALUEPROPERTY");
  planBeginTag(plan, std::move(tag));
}

void TextAreaBase::plan(Plan& plan) {
  AttributeMap tag = attributes();
  setFromProperty(tag, "NAME", "NAMEPROPERTY");
  planBeginTag(plan, std::move(tag));
  const std::string value = getAttribute("VALUEPROPERTY");
  if (value.empty()) {
    plan.children(element());
  } else {
    // KEPT: here no blank stands before the "%>".
    plan.piece([this, value](std::string& out, RuntimeTextState&) { out += "<%= " + translate(value) + "%>"; });
  }
  plan.piece([this](std::string& out, RuntimeTextState& state) {
    closeScriptlet(out, state);
    out += endTag();
  });
}

// --- buttons that can be checked -------------------------------------------------------------------------------------

std::string equalsTest(const std::string& left, const std::string& right) { return left + ".equals(" + right + ")"; }

std::string equalsConstantTest(const std::string& left, const std::string& text) {
  return left + ".equals(\"" + text + "\")";
}

void writeChoice(std::string& out, RuntimeTextState& state, const std::string& test, const std::string& first,
                 const std::string& second) {
  openScriptlet(out, state);
  out += kLineEnd;
  writeIndent(out, state, 0);
  out += "if (" + test + ") { %>\r\n";
  writeIndent(out, state, 1);
  out += first + "<%\r\n";
  writeIndent(out, state, 0);
  out += "}\r\n";
  writeIndent(out, state, 0);
  out += "else { %>\r\n";
  writeIndent(out, state, 1);
  out += second + "<%\r\n";
  writeIndent(out, state, 0);
  out += "}";
}

CheckedButton::CheckedButton(Place place)
    : PrimitiveBase(std::move(place)),
      value_(getAttribute("VALUE")),
      valueProperty_(getAttribute("VALUEPROPERTY")),
      defaultProperty_(getAttribute("DEFAULTPROPERTY")),
      constDefaultProperty_(getAttribute("CONSTDEFAULTPROPERTY")) {}

void CheckedButton::plan(Plan& plan) {
  plan.piece([this](std::string& out, RuntimeTextState& state) {
    AttributeMap plain = attributes();
    setFromProperty(plain, "NAME", "NAMEPROPERTY");
    setFromProperty(plain, "VALUE", "VALUEPROPERTY");
    const bool hasValue = !valueProperty_.empty() || !value_.empty();
    std::string test;
    if (hasValue && !defaultProperty_.empty()) {
      const std::string byDefault = translate(defaultProperty_);
      test = valueProperty_.empty() ? equalsConstantTest(byDefault, value_)
                                    : equalsTest(translate(valueProperty_), byDefault);
    } else if (!constDefaultProperty_.empty() && !valueProperty_.empty()) {
      test = equalsConstantTest(translate(valueProperty_), constDefaultProperty_);
    } else {
      closeScriptlet(out, state);
      out += kLineEnd;
      writeIndent(out, state, 0);
      out += beginTag(plain);
      return;
    }
    AttributeMap checked = plain;
    checked["CHECKED"] = "";
    writeChoice(out, state, test, beginTag(checked), beginTag(plain));
  });
}

}  // namespace zeldom40::NDynElement
