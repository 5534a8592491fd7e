// Internal. The generators without loops.
#pragma once

#include "dom/dynamic/Generator.h"

namespace zeldom40::NDynElement {

// ZELX:PROPERTY: the value alone.
class PropertyBase : public Base {
 public:
  using Base::Base;
  void plan(Plan& plan) override;
};

// IMG: not even the tag without a property.
class ImageBase : public Base {
 public:
  using Base::Base;
  void plan(Plan& plan) override;
};

// INPUT of type text, button or hidden.
class PrimitiveBase : public Base {
 public:
  using Base::Base;
  void plan(Plan& plan) override;

 protected:
  // The begin tag outside of any scriptlet.
  void planBeginTag(Plan& plan, AttributeMap attributes) const;
  // The tag, the children, the end tag.
  void planLink(Plan& plan, const char* attribute, const char* queryAttribute) const;
};

class Anchor : public PrimitiveBase {
 public:
  using PrimitiveBase::PrimitiveBase;
  void plan(Plan& plan) override { planLink(plan, "HREF", "HREFPROPERTY"); }
};

class Form : public PrimitiveBase {
 public:
  using PrimitiveBase::PrimitiveBase;
  void plan(Plan& plan) override { planLink(plan, "ACTION", "ACTIONPROPERTY"); }
};

// TEXTAREA: the value, or what stands in it.
class TextAreaBase : public PrimitiveBase {
 public:
  using PrimitiveBase::PrimitiveBase;
  void plan(Plan& plan) override;
};

// INPUT of type radio or checkbox: with a default, a test that writes the tag with or without CHECKED.
class CheckedButton : public PrimitiveBase {
 public:
  explicit CheckedButton(Place place);
  void plan(Plan& plan) override;

 private:
  std::string value_;
  std::string valueProperty_;
  std::string defaultProperty_;
  std::string constDefaultProperty_;
};

// The tests of buttons and options. `text` goes between double quotes as it stands.
std::string equalsTest(const std::string& left, const std::string& right);
std::string equalsConstantTest(const std::string& left, const std::string& text);
// "if (test) { first } else { second }" with page text for the two, each on a line of its own. Ends in a scriptlet.
void writeChoice(std::string& out, RuntimeTextState& state, const std::string& test, const std::string& first,
                 const std::string& second);

}  // namespace zeldom40::NDynElement
