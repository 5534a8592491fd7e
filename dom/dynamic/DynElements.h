// Internal. The classes of dynamic data, one per kind of element.
#pragma once

#include "dom/dynamic/DynBase.h"

namespace zeldom40 {

class DynAnchor : public DynBase {
 public:
  DynAnchor() : DynBase(DynKind::ANCHOR) {}
  void collectProperties(const Element* element, std::set<std::string>& used) const override;
  std::unique_ptr<NDynElement::Base> makeGenerator(const NDynElement::Place& place) override;
};

class DynForm : public DynBase {
 public:
  DynForm() : DynBase(DynKind::FORM) {}
  void collectProperties(const Element* element, std::set<std::string>& used) const override;
  std::unique_ptr<NDynElement::Base> makeGenerator(const NDynElement::Place& place) override;
};

class DynImage : public DynBase {
 public:
  DynImage() : DynBase(DynKind::IMAGE) {}
  std::unique_ptr<NDynElement::Base> makeGenerator(const NDynElement::Place& place) override;
};

class DynProperty : public DynBase {
 public:
  DynProperty() : DynBase(DynKind::PROPERTY) {}
  std::unique_ptr<NDynElement::Base> makeGenerator(const NDynElement::Place& place) override;
};

class DynTextArea : public DynBase {
 public:
  DynTextArea() : DynBase(DynKind::TEXT_AREA) {}
  void collectProperties(const Element* element, std::set<std::string>& used) const override;
  std::unique_ptr<NDynElement::Base> makeGenerator(const NDynElement::Place& place) override;
};

// INPUT elements; the types text, button and hidden differ in nothing but their class.
class DynInput : public DynBase {
 public:
  using DynBase::DynBase;
  void collectProperties(const Element* element, std::set<std::string>& used) const override;
  std::unique_ptr<NDynElement::Base> makeGenerator(const NDynElement::Place& place) override;
};

class DynTextField : public DynInput {
 public:
  DynTextField() : DynInput(DynKind::TEXT_FIELD) {}
};

class DynButton : public DynInput {
 public:
  DynButton() : DynInput(DynKind::BUTTON) {}
};

class DynHiddenControl : public DynInput {
 public:
  DynHiddenControl() : DynInput(DynKind::HIDDEN) {}
};

class DynCheckedButton : public DynInput {
 public:
  using DynInput::DynInput;
  void collectProperties(const Element* element, std::set<std::string>& used) const override;
  std::unique_ptr<NDynElement::Base> makeGenerator(const NDynElement::Place& place) override;
};

class DynCheckBox : public DynCheckedButton {
 public:
  DynCheckBox() : DynCheckedButton(DynKind::CHECK_BOX) {}
};

class DynRadio : public DynCheckedButton {
 public:
  DynRadio() : DynCheckedButton(DynKind::RADIO) {}
};

// OL and UL.
class DynList : public DynContainer {
 public:
  DynList() : DynContainer(DynKind::LIST) {}
  std::unique_ptr<NDynElement::Base> makeGenerator(const NDynElement::Place& place) override;
};

class DynSelect : public DynContainer {
 public:
  DynSelect() : DynContainer(DynKind::SELECT) {}
  void collectOwnProperties(const Element* element, std::set<std::string>& used) const override;
  std::unique_ptr<NDynElement::Base> makeGenerator(const NDynElement::Place& place) override;
};

// Can have two loops, one in the other.
class DynTable : public DynContainer {
 public:
  DynTable() : DynContainer(DynKind::TABLE) {}
  std::vector<std::string> loopProperties(const Element* element) const override;
  std::unique_ptr<NDynElement::Base> makeGenerator(const NDynElement::Place& place) override;

  // Whether there is an inner loop and it repeats cells, not rows.
  static bool isHorizontal(const Element* element);

 protected:
  LoopScope* outerScope() override { return &outerScope_; }

 private:
  LoopScope outerScope_;
};

class DynLoop : public DynContainer {
 public:
  DynLoop() : DynContainer(DynKind::LOOP) {}
  std::unique_ptr<NDynElement::Base> makeGenerator(const NDynElement::Place& place) override;

  // A loop between the parts of a dynamic table that the table looks through: its own loop is never written, so no
  // property may be resolved by it. Found by each preparation.
  bool isAbsent() const { return absent_; }
  void setAbsent(bool on) { absent_ = on; }

 private:
  bool absent_ = false;
};

class DynText : public DynContainer {
 public:
  DynText() : DynContainer(DynKind::TEXT) {}
  std::unique_ptr<NDynElement::Base> makeGenerator(const NDynElement::Place& place) override;
};

}  // namespace zeldom40
