// The ordered container of an element's attributes.
#include "dom/tree/AttributeList.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "dom/document/Adoption.h"
#include "dom/document/DocumentAccess.h"
#include "dom/tree/AttributeAccess.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

AttributeList::AttributeList(const AttributeList& other) {
  if (!other.attributes_) return;
  for (const Attribute* attribute : *other.attributes_) add(new Attribute(*attribute));
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
  if (owner_) NodeAccess::noteChange(owner_);
}

void AttributeList::noteChange(bool markDirty) {
  if (!owner_) return;
  if (markDirty) {
    owner_->setUpdateFlag(Node::UPDATE_ATTRIBUTE_MODIFIED);
    owner_->setBeginTagDirty();
  } else {
    NodeAccess::raiseFlag(owner_, Node::UPDATE_ATTRIBUTE_MODIFIED);
  }
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

void AttributeList::add(Attribute* attribute) {
  vec().push_back(attribute);
  AttributeAccess::setListed(attribute, true);
}

// Two lists would delete it twice; what it refers to in another DOM may go before it.
bool AttributeList::mayTake(Attribute* attribute) const {
  if (AttributeAccess::isListed(attribute)) {
    return attributes_ && std::find(attributes_->begin(), attributes_->end(), attribute) != attributes_->end();
  }
  return !owner_ || !owner_->getDocument() || isOfSameDOM(AttributeAccess::document(attribute), owner_->getDocument());
}

Attribute* AttributeList::put(Attribute* attribute, bool markDirty) {
  if (!attribute || !mayTake(attribute)) return nullptr;
  AttributeAccess::setOwner(attribute, owner_);
  if (owner_ && owner_->getDocument()) AttributeAccess::setDocument(attribute, owner_->getDocument());
  recordChange();
  std::vector<Attribute*>& list = vec();
  const auto present =
      std::find_if(list.begin(), list.end(), [&](const Attribute* a) { return a->getName() == attribute->getName(); });
  if (present == list.end()) {
    add(attribute);
  } else if (*present != attribute) {
    // One of this list that got the name of an earlier one moves up to its place.
    list.erase(std::remove(present, list.end(), attribute), list.end());
    delete *present;
    *present = attribute;
    AttributeAccess::setListed(attribute, true);
  }
  noteChange(markDirty);
  return attribute;
}

Attribute* AttributeList::removeAttribute(const std::string& name, bool markDirty) {
  // The record comes before the look-up: an absent name is an undo step too.
  recordChange();
  if (!attributes_) return nullptr;
  for (auto it = attributes_->begin(); it != attributes_->end(); ++it) {
    if ((*it)->getName() != name) continue;
    Attribute* removed = *it;
    attributes_->erase(it);
    AttributeAccess::setOwner(removed, nullptr);
    AttributeAccess::setListed(removed, false);
    noteChange(markDirty);
    return removed;
  }
  return nullptr;
}

void AttributeList::merge(AttributeList* other) {
  if (!other || other == this) return;
  if (owner_) {
    NodeAccess::noteChange(owner_);
    owner_->setUpdateFlag(Node::UPDATE_ATTRIBUTE_MODIFIED);
    owner_->setBeginTagDirty();
  }
  vec();
  if (!other->attributes_) return;
  if (other->owner_) NodeAccess::noteChange(other->owner_);
  // A page may hold two tags with any number of attributes, so the names are not searched for one by one.
  std::unordered_map<std::string, std::size_t> places;
  for (std::size_t i = 0; i < attributes_->size(); ++i) places.try_emplace((*attributes_)[i]->getName(), i);
  for (Attribute* moved : *other->attributes_) {
    AttributeAccess::setOwner(moved, owner_);
    const auto [place, isNew] = places.try_emplace(moved->getName(), attributes_->size());
    if (isNew) {
      attributes_->push_back(moved);
    } else {
      delete std::exchange((*attributes_)[place->second], moved);
    }
  }
  other->attributes_->clear();
}

void AttributeList::setDocument(Document* document) {
  if (!attributes_) return;
  for (Attribute* attribute : *attributes_) AttributeAccess::setDocument(attribute, document);
}

void AttributeList::setOwner(Element* owner) {
  owner_ = owner;
  if (!attributes_) return;
  for (Attribute* attribute : *attributes_) AttributeAccess::setOwner(attribute, owner);
}

}  // namespace zeldom40
