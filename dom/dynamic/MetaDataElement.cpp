// What an element has to do with its metadata: dynamic elements, design-time controls, visuals.
#include "dom/document/Adoption.h"
#include "dom/document/DocumentAccess.h"
#include "dom/dynamic/MetaData.h"
#include "dom/tree/Attribute.h"
#include "dom/tree/AttributeList.h"
#include "dom/tree/Element.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

constexpr const char* kDynamicMark = "DYNAMICELEMENT";
constexpr const char* kControlMark = "DTC";

// Dynamic whatever their attributes are.
bool isDynamicByNature(const Element* element) {
  return element->getElementID() >= ID_ZELX_TEXT && element->getElementID() <= ID_ZELX_PROPERTY;
}

// The element gets metadata of that type unless it has it. A new one is stale from birth: the first save writes it.
void ensureMetaData(Element* element, MetaData::Type type) {
  if (element->getMetaData() && element->getMetaData()->getType() != type) element->setMetaData(nullptr);
  Document* document = element->getDocument();
  if (element->getMetaData() || !document) return;
  MetaData* md = document->createMetaData();
  md->setType(type);
  element->setMetaData(md);
}

void recordChange(Element* element) {
  if (element->getDocument()) DocumentAccess::recordChange(element->getDocument(), element);
}

}  // namespace

MetaData* Element::getMetaData() const { return hasExtra_ ? held_.extra->metaData : nullptr; }

void Element::setMetaData(MetaData* md) {
  if (md == getMetaData()) return;
  if (md) {
    // It would stand in a list besides, or this element in itself.
    if (md->getParentNode() || NodeAccess::isAtOrAbove(md, this)) return;
    const bool isOthers = md->getElement() && md->getElement() != this;
    if (isOthers) md = new MetaData(*md);
    if (!adoptNodes(md, documentAround(this))) {
      if (isOthers) delete md;
      return;
    }
    if (isOthers) md->addRef(false);
  }
  noteChange();
  if (MetaData* old = getMetaData()) {
    extra().metaData = nullptr;
    old->setElement(nullptr);
    old->releaseRef(false);
  }
  if (!md) return;
  extra().metaData = md;
  if (md->getElement() != this) md->setElement(this);
}

// --- dynamic elements ------------------------------------------------------------------------------------------------

bool Element::isDynamicElement() const {
  if (isDynamicByNature(this)) return true;
  if (attributesInBlock_) {
    const AttributeBlock::Entry* entry = attributes().block->find(kDynamicMark);
    return entry && entry->definition;
  }
  if (!attributes().list) return false;
  const Attribute* attribute = attributes().list->getAttribute(kDynamicMark);
  return attribute && attribute->getAttributeDefinition();
}

void Element::setDynamicElement(bool on) {
  const bool byNature = isDynamicByNature(this);
  if (!on) {
    if (byNature) return;
    recordChange(this);
    // What stands around writes the element in another way, even if no mark goes.
    if (getMetaData()) NodeAccess::noteEdit(this);
    setMetaData(nullptr);
    deleteAttribute(kDynamicMark);
    return;
  }
  if (!byNature && !ElementAccess::hasAttribute(this, kDynamicMark)) setAttribute(kDynamicMark, "", /*notify=*/true);
  const MetaData* before = getMetaData();
  if (isDynamicElement()) {
    ensureMetaData(this, MetaData::DynamicData);
  } else {
    setMetaData(nullptr);
  }
  if (getMetaData() != before) NodeAccess::noteEdit(this);
}

// --- design-time controls --------------------------------------------------------------------------------------------

bool Element::isDTC() const {
  if (elementID_ != ID_OBJECT) return false;
  return ElementAccess::hasAttribute(this, kControlMark) ||
         (getMetaData() && getMetaData()->getType() == MetaData::DesignerControl);
}

void Element::setDTC(bool on) {
  if (elementID_ != ID_OBJECT || !on) return;
  if (!ElementAccess::hasAttribute(this, kControlMark)) setAttribute(kControlMark, "", /*notify=*/true);
  ensureMetaData(this, MetaData::DesignerControl);
}

// In a source the mark tells a control inside another pair from one that has a pair of its own. A reader must find it
// right wherever the element was moved to; setting it right is no edit, for it follows from those that were made.
void Element::markNestedControl(bool nested) {
  Document* document = getDocument();
  if (getMetaData()->getType() != MetaData::DesignerControl || !DocumentAccess::isLive(document)) return;
  if (nested == ElementAccess::hasAttribute(this, kControlMark)) return;
  const DocumentAccess::RecordPause pause(document);
  if (nested) {
    setAttribute(kControlMark, "", /*notify=*/false);
  } else {
    delete list().removeAttribute(kControlMark, /*markDirty=*/false);
  }
  noteChange();
  beginTagDirty_ = endTagDirty_ = true;
}

// --- visuals ---------------------------------------------------------------------------------------------------------

Element* Element::getATV() const { return getMetaData() ? getMetaData()->getATV() : nullptr; }

bool Element::setATV(Element* atv) {
  if (atv && NodeAccess::isAtOrAbove(atv, this)) return false;
  recordChange(this);
  MetaData* md = getMetaData();
  if (!atv) {
    if (!md) return true;
    if (md->getType() != MetaData::AuthorTimeVisual) return false;
    setMetaData(nullptr);
  } else {
    // Metadata is made for a visual that it will take: an empty pair would be saved from then on.
    const bool isNew = !md;
    if (isNew) {
      if (!getDocument() || atv->getElementID() != ID_ZELX_ATV) return false;
      md = getDocument()->createMetaData();
      md->setType(MetaData::AuthorTimeVisual);
    }
    const bool taken = md->setATV(atv);
    if (!taken) {
      if (isNew) md->releaseRef(false);
      return false;
    }
    setMetaData(md);
  }
  setUpdateFlag(UPDATE_META_DATA_MODIFIED);
  return true;
}

}  // namespace zeldom40
