// What each kind of dynamic element reads, hides from its run-time tag, and hands to its generator.
#include "dom/dynamic/DynElements.h"

#include <optional>
#include <string_view>
#include <utility>

#include "dom/dynamic/DynamicDataFactory.h"
#include "dom/dynamic/Loops.h"
#include "dom/dynamic/MetaData.h"
#include "dom/dynamic/MetaDataAccess.h"
#include "dom/dynamic/Primitives.h"
#include "dom/dynamic/PropertyPath.h"
#include "dom/dynamic/QueryParameter.h"
#include "dom/dynamic/RuntimeWriter.h"
#include "dom/dynamic/Tables.h"
#include "dom/source/CharHelpers.h"
#include "dom/tree/Element.h"

namespace zeldom40 {

namespace {

void collectAttributes(const Element* element, std::initializer_list<const char*> names, std::set<std::string>& used) {
  for (const char* name : names) {
    if (std::optional<std::string> value = findAttribute(element, name)) used.insert(std::move(*value));
  }
}

bool equalsIgnoringCase(std::string text, std::string_view lower) {
  lowerCase(text);
  return text == lower;
}

struct InputType {
  std::string_view type;
  DynKind kind;
};

constexpr InputType kInputTypes[] = {
    {"radio", DynKind::RADIO},     {"checkbox", DynKind::CHECK_BOX}, {"button", DynKind::BUTTON},
    {"text", DynKind::TEXT_FIELD}, {"hidden", DynKind::HIDDEN},
};

DynKind kindOf(const Element* element) {
  if (!element || !element->isDynamicElement()) return DynKind::NONE;
  switch (element->getElementID()) {
    case ID_A:
      return DynKind::ANCHOR;
    case ID_FORM:
      return DynKind::FORM;
    case ID_IMG:
      return DynKind::IMAGE;
    case ID_INPUT:
      for (const InputType& input : kInputTypes) {
        if (equalsIgnoringCase(attributeOrEmpty(element, "TYPE"), input.type)) return input.kind;
      }
      return DynKind::NONE;
    case ID_OL:
    case ID_UL:
      return DynKind::LIST;
    case ID_SELECT:
      return DynKind::SELECT;
    case ID_TABLE:
      return DynKind::TABLE;
    case ID_TEXTAREA:
      return DynKind::TEXT_AREA;
    case ID_ZELX_TEXT:
      return DynKind::TEXT;
    case ID_ZELX_LOOP:
      return DynKind::LOOP;
    case ID_ZELX_PROPERTY:
      return DynKind::PROPERTY;
    default:
      return DynKind::NONE;
  }
}

DynBase* makeData(DynKind kind) {
  switch (kind) {
    case DynKind::NONE:
      return nullptr;
    case DynKind::ANCHOR:
      return new DynAnchor;
    case DynKind::FORM:
      return new DynForm;
    case DynKind::IMAGE:
      return new DynImage;
    case DynKind::RADIO:
      return new DynRadio;
    case DynKind::CHECK_BOX:
      return new DynCheckBox;
    case DynKind::BUTTON:
      return new DynButton;
    case DynKind::TEXT_FIELD:
      return new DynTextField;
    case DynKind::HIDDEN:
      return new DynHiddenControl;
    case DynKind::LIST:
      return new DynList;
    case DynKind::SELECT:
      return new DynSelect;
    case DynKind::TABLE:
      return new DynTable;
    case DynKind::TEXT_AREA:
      return new DynTextArea;
    case DynKind::TEXT:
      return new DynText;
    case DynKind::LOOP:
      return new DynLoop;
    case DynKind::PROPERTY:
      return new DynProperty;
  }
  return nullptr;
}

DynBase* dataOf(const MetaData* metaData) { return static_cast<DynBase*>(metaData->getDynamicData()); }

DynBase* replaceData(MetaData* metaData, DynamicData* data) {
  DynamicDataFactory::release(dataOf(metaData));
  MetaDataAccess::setObject(*metaData, data);
  return dataOf(metaData);
}

}  // namespace

DynamicData::~DynamicData() = default;

// --- DynamicDataFactory ----------------------------------------------------------------------------------------------

DynamicData* DynamicDataFactory::create(const Element* element) { return copy(makeData(kindOf(element))); }

DynamicData* DynamicDataFactory::copy(DynamicData* data) {
  if (data) data->addRef();
  return data;
}

void DynamicDataFactory::release(DynamicData* data) {
  if (data && data->releaseRef() <= 0) delete data;
}

bool DynamicDataFactory::fits(const DynamicData* data, const Element* element) {
  return (data ? static_cast<const DynBase*>(data)->kind() : DynKind::NONE) == kindOf(element);
}

DynBase* dynamicDataOf(const Element* element) {
  if (!element->isDynamicElement()) return nullptr;
  MetaData* metaData = element->getMetaData();
  if (!metaData || metaData->getType() != MetaData::DynamicData) return nullptr;
  DynBase* data = dataOf(metaData);
  return DynamicDataFactory::fits(data, element) ? data : replaceData(metaData, DynamicDataFactory::create(element));
}

DynBase* makeOwnDynamicData(MetaData* metaData) {
  return replaceData(metaData, DynamicDataFactory::create(metaData->getElement()));
}

// --- DynBase, DynContainer -------------------------------------------------------------------------------------------

void DynBase::generate(MetaData* metaData, std::string& out, RuntimeTextState& state) {
  Element* element = metaData ? metaData->getElement() : nullptr;
  // The identifier must be one of this class.
  if (!element || kindOf(element) != kind_) return;
  generateRuntimeText(metaData, out, state, /*isOutermost=*/false);
}

void DynBase::collectProperties(const Element* element, std::set<std::string>& used) const {
  collectAttributes(element, {"PROPERTY"}, used);
}

void DynContainer::collectOwnProperties(const Element*, std::set<std::string>&) const {}

std::vector<std::string> DynContainer::loopProperties(const Element* element) const {
  std::string property = attributeOrEmpty(element, "LOOPPROPERTY");
  if (!isLoopProperty(property)) return {};
  return {std::move(property)};
}

void DynContainer::initScopes(const LoopScope* parent, unsigned level, const std::vector<std::string>& loops,
                              const std::string& varPrefix, const std::vector<std::set<std::string>>& parallel) {
  if (loops.size() < 2) {
    scope_.init(parent, loops.front(), level, varPrefix, parallel.front());
    return;
  }
  outerScope()->init(parent, loops[0], level, varPrefix, parallel[0]);
  scope_.init(outerScope(), loops[1], level + 1, varPrefix, parallel[1]);
}

void DynContainer::clearScopes() {
  scope_.clear();
  if (outerScope()) outerScope()->clear();
}

void DynContainer::enterLoops(OpenLoops& loops) {
  if (outerScope()) loops.enter(*outerScope());
  loops.enter(scope_);
}

void DynContainer::leaveLoops(OpenLoops& loops) {
  loops.leave(scope_);
  if (outerScope()) loops.leave(*outerScope());
}

// --- elements without loops ------------------------------------------------------------------------------------------

void DynAnchor::collectProperties(const Element* element, std::set<std::string>& used) const {
  collectQueryProperties(attributeOrEmpty(element, "HREFPROPERTY"), used);
}

void DynForm::collectProperties(const Element* element, std::set<std::string>& used) const {
  collectQueryProperties(attributeOrEmpty(element, "ACTIONPROPERTY"), used);
}

void DynTextArea::collectProperties(const Element* element, std::set<std::string>& used) const {
  collectAttributes(element, {"NAMEPROPERTY", "VALUEPROPERTY"}, used);
}

void DynInput::collectProperties(const Element* element, std::set<std::string>& used) const {
  collectAttributes(element, {"NAMEPROPERTY", "VALUEPROPERTY"}, used);
}

void DynCheckedButton::collectProperties(const Element* element, std::set<std::string>& used) const {
  collectAttributes(element, {"NAMEPROPERTY", "VALUEPROPERTY", "DEFAULTPROPERTY"}, used);
}

namespace {

// The place with the attributes of the run-time tag: all but those that speak to this library and to the author's
// tool.
NDynElement::Place hiding(NDynElement::Place place, std::initializer_list<const char*> hidden) {
  place.attributes = attributeMap(place.element);
  for (const char* name : hidden) place.attributes.erase(name);
  return place;
}

}  // namespace

std::unique_ptr<NDynElement::Base> DynAnchor::makeGenerator(const NDynElement::Place& place) {
  return std::make_unique<NDynElement::Anchor>(hiding(place, {"DYNAMICELEMENT", "HREF", "HREFPROPERTY"}));
}

std::unique_ptr<NDynElement::Base> DynForm::makeGenerator(const NDynElement::Place& place) {
  return std::make_unique<NDynElement::Form>(hiding(place, {"DYNAMICELEMENT", "ACTION", "ACTIONPROPERTY"}));
}

std::unique_ptr<NDynElement::Base> DynImage::makeGenerator(const NDynElement::Place& place) {
  return std::make_unique<NDynElement::ImageBase>(hiding(
      place, {"DYNAMICELEMENT", "PROPERTY", "AUTHORTIMEIMAGESRC", "AUTHORTIMEIMAGEWIDTH", "AUTHORTIMEIMAGEHEIGHT"}));
}

std::unique_ptr<NDynElement::Base> DynProperty::makeGenerator(const NDynElement::Place& place) {
  return std::make_unique<NDynElement::PropertyBase>(place);
}

std::unique_ptr<NDynElement::Base> DynTextArea::makeGenerator(const NDynElement::Place& place) {
  return std::make_unique<NDynElement::TextAreaBase>(
      hiding(place, {"DYNAMICELEMENT", "NAMEPROPERTY", "VALUEPROPERTY"}));
}

std::unique_ptr<NDynElement::Base> DynInput::makeGenerator(const NDynElement::Place& place) {
  return std::make_unique<NDynElement::PrimitiveBase>(
      hiding(place, {"DYNAMICELEMENT", "NAMEPROPERTY", "VALUEPROPERTY"}));
}

std::unique_ptr<NDynElement::Base> DynCheckedButton::makeGenerator(const NDynElement::Place& place) {
  return std::make_unique<NDynElement::CheckedButton>(hiding(
      place,
      {"DYNAMICELEMENT", "CHECKED", "NAMEPROPERTY", "VALUEPROPERTY", "DEFAULTPROPERTY", "CONSTDEFAULTPROPERTY"}));
}

// --- containers ------------------------------------------------------------------------------------------------------

std::unique_ptr<NDynElement::Base> DynList::makeGenerator(const NDynElement::Place& place) {
  if (!scope().isLoop()) return nullptr;
  return std::make_unique<NDynElement::ListBase>(hiding(place, {"DYNAMICELEMENT", "LOOPPROPERTY", "VARPREFIX", "IMGSRC",
                                                                "IMGWIDTH", "IMGHEIGHT", "FONTTEXT", "FONTCOLOR"}),
                                                 scope());
}

void DynSelect::collectOwnProperties(const Element* element, std::set<std::string>& used) const {
  collectAttributes(element, {"ITEMPROPERTY", "VALUEPROPERTY", "DEFAULTPROPERTY"}, used);
}

std::unique_ptr<NDynElement::Base> DynSelect::makeGenerator(const NDynElement::Place& place) {
  if (!scope().isLoop()) return nullptr;
  return std::make_unique<NDynElement::SelectBase>(
      hiding(place, {"DYNAMICELEMENT", "LOOPPROPERTY", "ITEMPROPERTY", "CONSTITEM", "VALUEPROPERTY", "CONSTVALUE",
                     "VARPREFIX", "DEFAULTPROPERTY", "CONSTDEFAULTPROPERTY", "AUTHORTIMETEXT"}),
      scope());
}

std::vector<std::string> DynTable::loopProperties(const Element* element) const {
  std::vector<std::string> loops;
  for (const char* name : {"OUTERLOOPPROPERTY", "INNERLOOPPROPERTY"}) {
    std::string property = attributeOrEmpty(element, name);
    if (isLoopProperty(property)) loops.push_back(std::move(property));
  }
  return loops;
}

bool DynTable::isHorizontal(const Element* element) {
  return isLoopProperty(attributeOrEmpty(element, "INNERLOOPPROPERTY")) &&
         equalsIgnoringCase(attributeOrEmpty(element, "INNERLOOPDIRECTION"), "horizontal");
}

std::unique_ptr<NDynElement::Base> DynTable::makeGenerator(const NDynElement::Place& place) {
  if (!scope().isLoop()) return nullptr;
  NDynElement::Place table = hiding(
      place, {"DYNAMICELEMENT", "OUTERLOOPPROPERTY", "INNERLOOPDIRECTION", "INNERLOOPSTARTINDEX", "INNERLOOPENDINDEX",
              "INNERLOOPPROPERTY", "VARPREFIX", "IMGSRC", "IMGWIDTH", "IMGHEIGHT", "FONTTEXT", "FONTCOLOR"});
  const bool horizontal = isHorizontal(place.element);
  if (outerScope_.isLoop()) {
    if (horizontal) return std::make_unique<NDynElement::DoubleHorizontal>(std::move(table), outerScope_, scope());
    return std::make_unique<NDynElement::DoubleVertical>(std::move(table), outerScope_, scope());
  }
  if (horizontal) return std::make_unique<NDynElement::InnerHorizontal>(std::move(table), scope(), /*alone=*/true);
  if (isLoopProperty(attributeOrEmpty(place.element, "INNERLOOPPROPERTY")))
    return std::make_unique<NDynElement::InnerVertical>(std::move(table), scope(), /*alone=*/true);
  return std::make_unique<NDynElement::OuterOnly>(std::move(table), scope());
}

std::unique_ptr<NDynElement::Base> DynLoop::makeGenerator(const NDynElement::Place& place) {
  if (!scope().isLoop()) return nullptr;
  return std::make_unique<NDynElement::LoopBase>(place, scope());
}

std::unique_ptr<NDynElement::Base> DynText::makeGenerator(const NDynElement::Place& place) {
  if (!scope().isLoop()) return nullptr;
  return std::make_unique<NDynElement::TextBase>(place, scope());
}

}  // namespace zeldom40
