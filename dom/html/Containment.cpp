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

Element* asElement(Node* node) {
  return node && node->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(node) : nullptr;
}

ParserType::_dtd_frame* frameOf(const Document& document) {
  const DocumentType* type = document.getDocumentTypeObject();
  return type ? type->getDTDFrame() : nullptr;
}

bool isTable(Node* node) { return asElement(node) && asElement(node)->getElementID() == ID_TABLE; }

}  // namespace

Containment::Containment(Document& document, const Node* root)
    : document_(document), root_(root), tableUse_(frameOf(document)), table_(nullptr) {
  if (ParserType::_dtd_frame* frame = frameOf(document)) table_ = &contentTable(*frame);
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
  const Step step = stepOf(asElement(parent));
  const Element* asked = step.opaque;
  if (!asked) return true;
  const ContentTable::OpenSets* sets = step.opaqueSets;
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

Node* Containment::opaque(Node* node) {
  if (table_ && asElement(node)) return stepOf(asElement(node)).opaque;
  while (asElement(node) && (asElement(node)->getElementGroup() & GROUP_LOOP)) node = node->getParentNode();
  return node;
}

Node* Containment::table(Node* node) {
  if (table_ && asElement(node)) return stepOf(asElement(node)).table;
  while (node && !isTable(node)) node = node->getParentNode();
  return node;
}

Containment::Step Containment::stepOf(Element* element) {
  std::vector<Element*> missing;
  const std::size_t* place = nullptr;
  Element* e = element;
  while (e && !(place = places_.find(e))) {
    missing.push_back(e);
    e = asElement(e->getParentNode());
  }
  Step step{nullptr, table_->noSets(), nullptr, nullptr, nullptr};
  // What is in no tree, or in another one, is not kept.
  const bool keep = e || missing.back() == root_;
  levelsWalked_ += static_cast<std::int64_t>(missing.size());
  if (e) step = path_[*place];
  if (keep && !missing.empty()) dropPath(e ? *place + 1 : 0);
  for (auto it = missing.rbegin(); it != missing.rend(); ++it) {
    step.element = *it;
    step.sets = table_->extend(step.sets, step.element->getElementDefinition());
    if (!(step.element->getElementGroup() & GROUP_LOOP)) {
      step.opaque = step.element;
      step.opaqueSets = step.sets;
    }
    if (isTable(step.element)) step.table = step.element;
    if (!keep) continue;
    places_.add(step.element, path_.size());
    path_.push_back(step);
  }
  return step;
}

void Containment::forget(const Node* node) {
  if (const std::size_t* place = places_.find(node)) dropPath(*place);
}

void Containment::dropPath(std::size_t from) {
  for (std::size_t i = from; i < path_.size(); ++i) places_.erase(path_[i].element);
  path_.resize(from, Step{});
}

}  // namespace zeldom40
