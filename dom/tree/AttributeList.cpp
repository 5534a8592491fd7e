// The ordered container of an element's attributes.
#include "dom/tree/AttributeList.h"

#include "dom/document/DocumentAccess.h"
#include "dom/tree/AttributeAccess.h"
#include "dom/tree/Element.h"

namespace zeldom40 {

AttributeList::AttributeList(const AttributeList& other) {
  if (!other.attributes_) return;
  for (const Attribute* attribute : *other.attributes_) vec().push_back(new Attribute(*attribute));
}

AttributeList::~AttributeList() {
  if (!attributes_) return;
  for (Attribute* attribute : *attributes_) delete attribute;
}

std::vector<Attribute*>& AttributeList::vec() {
  if (!attributes_) attributes_ = std::make_unique<std::vector<Attribute*>>();
  return *attributes_;
}

void AttributeList::recordChange() {
  if (owner_ && owner_->getDocument()) DocumentAccess::recordChange(owner_->getDocument(), owner_);
}

const Attribute* AttributeList::getAttribute(const std::string& name) const {
  if (!attributes_) return nullptr;
  for (const Attribute* attribute : *attributes_) {
    if (attribute->getName() == name) return attribute;
  }
  return nullptr;
}

Attribute* AttributeList::item(unsigned long index) { return attributes_ ? (*attributes_)[index] : nullptr; }
const Attribute* AttributeList::item(unsigned long index) const {
  return attributes_ ? (*attributes_)[index] : nullptr;
}

Attribute* AttributeList::setAttribute(Attribute* attribute) { return put(attribute, /*markDirty=*/true); }

Attribute* AttributeList::put(Attribute* attribute, bool markDirty) {
  if (!attribute) return nullptr;
  AttributeAccess::setOwner(attribute, owner_);
  recordChange();
  bool placed = false;
  for (Attribute*& present : vec()) {
    if (present != attribute && present->getName() != attribute->getName()) continue;
    if (present != attribute) delete present;
    present = attribute;
    placed = true;
    break;
  }
  if (!placed) vec().push_back(attribute);
  if (owner_) {
    owner_->setUpdateFlag(Node::UPDATE_ATTRIBUTE_MODIFIED);
    if (markDirty) owner_->setBeginTagDirty();
  }
  return attribute;
}

Attribute* AttributeList::removeAttribute(const std::string& name) {
  // The record comes before the look-up: an absent name is an undo step too.
  recordChange();
  if (!attributes_) return nullptr;
  for (auto it = attributes_->begin(); it != attributes_->end(); ++it) {
    if ((*it)->getName() != name) continue;
    Attribute* removed = *it;
    attributes_->erase(it);
    AttributeAccess::setOwner(removed, nullptr);
    if (owner_) {
      owner_->setUpdateFlag(Node::UPDATE_ATTRIBUTE_MODIFIED);
      owner_->setBeginTagDirty();
    }
    return removed;
  }
  return nullptr;
}

void AttributeList::merge(AttributeList* other) {
  if (!other || other == this) return;
  if (owner_) {
    owner_->setUpdateFlag(Node::UPDATE_ATTRIBUTE_MODIFIED);
    owner_->setBeginTagDirty();
  }
  vec();
  if (!other->attributes_) return;
  for (Attribute* moved : *other->attributes_) {
    AttributeAccess::setOwner(moved, owner_);
    bool placed = false;
    for (Attribute*& present : *attributes_) {
      if (present->getName() != moved->getName()) continue;
      delete present;
      present = moved;
      placed = true;
      break;
    }
    if (!placed) attributes_->push_back(moved);
  }
  other->attributes_->clear();
}

void AttributeList::setOwner(Element* owner) {
  owner_ = owner;
  if (!attributes_) return;
  for (Attribute* attribute : *attributes_) AttributeAccess::setOwner(attribute, owner);
}

}  // namespace zeldom40
