// The ordered attributes of one element.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "dom/export.h"

namespace zeldom40 {

class Attribute;
class Document;
class Element;

// Owns its attributes, in the order of insertion; a replacement keeps its place. Names are compared byte for byte, so
// case counts: elements store declared names in upper case.
class ZELDOM40_API AttributeList {
 public:
  AttributeList() = default;
  explicit AttributeList(Element* owner) : owner_(owner) {}
  // Clones every attribute; the copy has no owner.
  AttributeList(const AttributeList& other);
  AttributeList& operator=(const AttributeList&) = delete;
  ~AttributeList();

  // The first attribute of that name, null if there is none. Borrowed.
  const Attribute* getAttribute(const std::string& name) const;
  // Takes `attribute` over and returns it: an attribute of the same name is deleted and replaced at its place, else the
  // new one is appended. Marks the owner's begin tag dirty. Null, with nothing changed, for null, for an attribute that
  // stands in another list, and for one of another DOM: those stay whose they were.
  Attribute* setAttribute(Attribute* attribute);
  // The attribute at a 0-based index, which must be below getLength(); null only while the list was never filled.
  Attribute* item(unsigned long index);
  const Attribute* item(unsigned long index) const;
  unsigned long getLength() const { return attributes_ ? attributes_->size() : 0; }
  // The live vector, null while the list was never filled.
  const std::vector<Attribute*>* getVecAttributes() const { return attributes_.get(); }

 private:
  friend class Element;
  friend struct ElementAccess;

  // As setAttribute; without `markDirty` neither tags nor metadata are marked, only the update flag is raised.
  Attribute* put(Attribute* attribute, bool markDirty);
  // Takes the attribute out and returns it, not deleted; null if the name is not found.
  Attribute* removeAttribute(const std::string& name, bool markDirty = true);
  // Moves all attributes of `other` here; same names are replaced in place.
  void merge(AttributeList* other);
  void setOwner(Element* owner);
  void setDocument(Document* document);
  bool mayTake(Attribute* attribute) const;
  void add(Attribute* attribute);
  std::vector<Attribute*>& vec();
  void recordChange();
  void noteChange(bool markDirty);

  std::unique_ptr<std::vector<Attribute*>> attributes_;
  Element* owner_ = nullptr;
};

}  // namespace zeldom40
