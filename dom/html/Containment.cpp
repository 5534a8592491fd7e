// Questions of direct containment by compiled models.
#include "dom/html/Containment.h"

#include "dom/document/Document.h"
#include "dom/dtd/DTDFrame.h"
#include "dom/dtd/DocumentType.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/Text.h"

namespace zeldom40 {

struct Containment::Subject {
  const ElementDefinition* definition = nullptr;  // null: undefined, or a text
  int tableId = -1;
  bool isText = false;
  int textType = 0;
};

namespace {

const Element* asElement(const Node* node) {
  return node && node->getNodeType() == Node::NODE_ELEMENT ? static_cast<const Element*>(node) : nullptr;
}

}  // namespace

Containment::Containment(Document& document, const Node* root) : document_(document), root_(root), table_(nullptr) {
  const DocumentType* type = document.getDocumentTypeObject();
  if (type && type->getDTDFrame()) table_ = &contentTable(*type->getDTDFrame());
}

bool Containment::describe(Node* child, Subject& subject) const {
  if (const Element* element = asElement(child)) {
    subject.definition = element->getElementDefinition();
    subject.tableId = subject.definition ? subject.definition->nameId() : table_->nameId(element->getName());
    // A host's own element types and renamed elements are left to the plain question.
    return subject.definition ? element->getName() == subject.definition->upperName().str()
                              : element->getElementType() == Element::ELEMENT_UNDEFINED;
  }
  if (child->getNodeType() != Node::NODE_TEXT) return false;
  subject.isText = true;
  subject.textType = static_cast<const Text*>(child)->getTextType();
  subject.tableId = ContentTable::textNameId(subject.textType);
  return true;
}

bool Containment::canContain(Node* parent, Node* child) {
  Subject subject;
  if (!parent || !child) return false;
  if (!table_ || !asElement(parent) || !describe(child, subject)) return document_.canContain(parent, child);
  return ask(parent, subject);
}

bool Containment::canContain(Node* parent, const ElementDefinition* child) {
  if (!parent || !child || !table_ || !asElement(parent)) return false;
  Subject subject;
  subject.definition = child;
  subject.tableId = child->nameId();
  return ask(parent, subject);
}

bool Containment::ask(Node* parent, const Subject& subject) {
  const Element* asked = asElement(parent);
  while (asked->getElementGroup() & GROUP_LOOP) {
    asked = asElement(asked->getParentNode());
    if (!asked) return true;
  }
  const ContentTable::OpenSets* sets = setsOf(asked);
  if (!asked->getElementDefinition()) {
    if (ContentTable::excluded(sets, subject.tableId, subject.isText || subject.definition)) return false;
    const Element::ElementType type = asked->getElementType();
    return type == Element::ELEMENT_TYPE_1 || type == Element::ELEMENT_TYPE_2 || !document_.isHTML();
  }
  return answer(asked->getElementDefinition(), sets, subject, NodeAccess::sharedName(parent));
}

bool Containment::answer(const ElementDefinition* definition, const ContentTable::OpenSets* sets,
                         const Subject& subject, const SharedName& askedName) {
  const bool defined = subject.isText || subject.definition;
  if (ContentTable::excluded(sets, subject.tableId, defined)) return false;
  if (!defined) return true;
  const ContentTable::Answer& found = subject.isText
                                          ? table_->textAnswer(*definition, subject.textType)
                                          : table_->elementAnswer(*definition, subject.definition, subject.tableId);
  if (!found.allowed) return ContentTable::included(sets, subject.tableId);
  // Directly, or below an element of the parent's own name.
  return !found.throughGroups || found.implied.empty() || *found.implied.back() == askedName;
}

bool Containment::chainCanContain(const std::vector<const ElementDefinition*>& chain, Node* child) {
  Subject subject;
  if (!table_ || chain.empty() || !describe(child, subject)) return false;
  const ContentTable::OpenSets* sets = table_->noSets();
  for (const ElementDefinition* definition : chain) sets = table_->extend(sets, definition);
  return answer(chain.back(), sets, subject, chain.back()->upperName());
}

bool Containment::chainCanContain(const std::vector<const ElementDefinition*>& chain, const ElementDefinition* child) {
  if (!table_ || chain.empty() || !child) return false;
  Subject subject;
  subject.definition = child;
  subject.tableId = child->nameId();
  const ContentTable::OpenSets* sets = table_->noSets();
  for (const ElementDefinition* definition : chain) sets = table_->extend(sets, definition);
  return answer(chain.back(), sets, subject, chain.back()->upperName());
}

// The exclusions and inclusions of the element and all around it.
const ContentTable::OpenSets* Containment::setsOf(const Element* element) {
  std::vector<const Element*> missing;
  const Element* e = element;
  while (e && !places_.count(e)) {
    missing.push_back(e);
    e = asElement(e->getParentNode());
  }
  const ContentTable::OpenSets* sets = table_->noSets();
  // What is in no tree, or in another one, is not kept.
  const bool keep = e || missing.back() == root_;
  if (!e && keep) {
    places_.clear();
    path_.clear();
  }
  if (e) {
    const std::size_t place = places_[e];
    sets = path_[place].sets;
    if (!missing.empty()) {
      for (std::size_t i = place + 1; i < path_.size(); ++i) places_.erase(path_[i].node);
      path_.resize(place + 1);
    }
  }
  for (auto it = missing.rbegin(); it != missing.rend(); ++it) {
    sets = table_->extend(sets, (*it)->getElementDefinition());
    if (!keep) continue;
    places_[*it] = path_.size();
    path_.push_back({*it, sets});
  }
  return sets;
}

void Containment::forget(const Node* node) {
  const auto found = places_.find(node);
  if (found == places_.end()) return;
  const std::size_t place = found->second;
  for (std::size_t i = place; i < path_.size(); ++i) places_.erase(path_[i].node);
  path_.resize(place);
}

}  // namespace zeldom40
