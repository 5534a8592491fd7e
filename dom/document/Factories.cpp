// Node factories and simple questions about the tree.
#include "dom/document/DOM.h"
#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/document/NameLookup.h"
#include "dom/document/TextMerge.h"
#include "dom/dtd/DocumentType.h"
#include "dom/dtd/ElementDefinition.h"
#include "dom/dynamic/MetaDataAccess.h"
#include "dom/source/CharHelpers.h"
#include "dom/tree/Attribute.h"
#include "dom/tree/AttributeList.h"
#include "dom/tree/Comment.h"
#include "dom/tree/Element.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/PI.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

namespace {

// A text without data, or a text-level element that is no anchor's target.
bool hasNoContentOfItsOwn(const Node* node) {
  if (node->getNodeType() == Node::NODE_TEXT) return TextAccess::hasEmptyData(static_cast<const Text*>(node));
  if (node->getNodeType() != Node::NODE_ELEMENT) return false;
  const auto* element = static_cast<const Element*>(node);
  const unsigned long group = element->getElementGroup();
  return (group & GROUP_TEXT_LEVEL) && !((group & GROUP_ANCHOR) && ElementAccess::hasAttribute(element, "NAME"));
}

// A node that the page has without content: an icon, a target of a script, white space that shows nothing.
bool standsEmpty(const Node* node) {
  if (node->getNodeType() == Node::NODE_TEXT) {
    const auto* text = static_cast<const Text*>(node);
    return TextAccess::isSourceOfPage(text) && TextAccess::slice(text).length > 0;
  }
  if (node->getNodeType() != Node::NODE_ELEMENT) return false;
  const auto* element = static_cast<const Element*>(node);
  return ElementAccess::hasSourceTag(element) && ElementAccess::wasEmpty(element);
}

}  // namespace

// --- names -----------------------------------------------------------------------------------------------------------

bool isVisibleDefinition(const ElementDefinition& definition) {
  const DOM* dom = DOM::getDOM();
  const bool version1 = dom && dom->getJSPVersion() == DOM::JSP_VERSION_1;
  return (definition.getFlags() & (version1 ? 2u : 1u)) == 0;
}

ElementDefinition* findVisibleDefinition(const DocumentType* type, const char* name) {
  ElementDefinition* definition = type ? type->getElementDefinition(name) : nullptr;
  return definition && isVisibleDefinition(*definition) ? definition : nullptr;
}

// --- factories -------------------------------------------------------------------------------------------------------

Element* Document::createElement(const char* name) {
  if (!name || !*name) return nullptr;
  std::string upper = name;
  upperCase(upper);
  ElementDefinition* definition = findVisibleDefinition(documentType_, upper.c_str());
  Element* element = ElementAccess::create(this, definition ? definition->upperName() : SharedName(upper));
  ElementAccess::bind(element, definition);
  // As the answer stands: an empty tag counts as having its end.
  element->setEndTagExistence(element->isEmptyTag());
  ElementAccess::markTagsDirty(element);
  element->addRef(false);
  return element;
}

Element* Document::createRootElement() {
  Element* root = createElement("ZELROOT");
  ElementAccess::setTagsClean(root);
  return root;
}

Element* Document::createTemporaryElement() {
  Element* holder = createElement("ZELTEMP");
  ElementAccess::setTagsClean(holder);
  return holder;
}

Text* Document::createTextNode(const char* data) {
  auto* text = new Text(this);
  if (data) text->setData(data, /*notify=*/true);
  text->addRef(false);
  return text;
}

Text* Document::createTextNode(const std::string& data) {
  auto* text = new Text(this);
  text->setData(data, /*notify=*/true);
  text->addRef(false);
  return text;
}

Comment* Document::createComment(const char* data) { return createComment(std::string(data ? data : "")); }

Comment* Document::createComment(const std::string& data) {
  auto* comment = new Comment(data, this);
  comment->addRef(false);
  return comment;
}

PI* Document::createPI(const char* target, const char* data) {
  auto* pi = new PI(target, data);
  pi->addRef(false);
  return pi;
}

Attribute* Document::createAttribute(const char* name, const char* value) {
  return new Attribute(std::string(name ? name : ""), std::string(value ? value : ""), this);
}

AttributeList* Document::createAttributeList() { return new AttributeList; }

Element* Document::copyElement(const Element* source) {
  if (!source) return nullptr;
  auto* copy = new Element(*source, /*withMetaData=*/false);
  copy->setMetaData(source->getMetaData());
  copy->addRef(false);
  return copy;
}

MetaData* Document::createMetaData() {
  auto* md = new MetaData(this);
  md->addRef(false);
  return md;
}

// --- searches --------------------------------------------------------------------------------------------------------

Element* Document::getHTMLElement() {
  if (!html_ || !documentElement_) return nullptr;
  for (Node* child = documentElement_->getFirstChild(); child; child = NodeAccess::childAfter(child)) {
    if (child->getNodeType() != NODE_ELEMENT) continue;
    auto* element = static_cast<Element*>(child);
    if (element->getElementID() == ID_HTML) return element;
  }
  // KEPT: the question makes the element that it asks for.
  Element* html = createElement("HTML");
  documentElement_->insertLast(html);
  return html;
}

NodeIterator Document::getElementsByTagName(const char* name) {
  if (!documentElement_ || !name) return {};
  return documentElement_->getElementsByTagName(name);
}

Element* Document::removeElement(Element* element, bool joinTexts) {
  if (!element) return nullptr;
  Node* parent = element->getParentNode();
  if (!parent) return element;
  if (MetaDataAccess::ofVisual(element)) return static_cast<Element*>(deleteNodes(element));
  Node* before = element->getPreviousSibling();
  Node* behind = element->getNextSibling();
  if (element->hasChildNodes())
    NodeAccess::insertFree(parent, element->removeChildren(nullptr, nullptr), element, /*behindRef=*/true);
  deleteNodes(element);
  if (!joinTexts) return nullptr;
  if (before && before->getNextSibling()) {
    Node* next = before->getNextSibling();
    if (next == behind) behind = nullptr;
    mergeTexts(*this, before, next);
  }
  if (behind && behind->getPreviousSibling()) mergeTexts(*this, behind->getPreviousSibling(), behind);
  return nullptr;
}

bool Document::isPlace(const Node* node) const {
  return node == cursorNode_ ||
         (selections_.size() == 1 && (node == selections_.front()->startNode || node == selections_.front()->endNode));
}

bool Document::isEmptyByItself(const Node* node) const {
  return !isPlace(node) && hasNoContentOfItsOwn(node) && !(DocumentAccess::keepsSource(this) && standsEmpty(node));
}

bool Document::isEmptyNode(Node* node, bool ignoreCursor) {
  if (!node || !(ignoreCursor ? hasNoContentOfItsOwn(node) : isEmptyByItself(node))) return false;
  // KEPT: `ignoreCursor` lifts the protection of the node itself; a place below it protects all the same.
  for (Node* n = NodeAccess::nextInSubtree(node, node); n; n = NodeAccess::nextInSubtree(n, node)) {
    if (!isEmptyByItself(n)) return false;
  }
  return true;
}

// --- containment -----------------------------------------------------------------------------------------------------

bool Document::canContain(Node* parent, Node* child) {
  if (!parent || !child) return false;
  std::vector<Node*> path;
  const bool answer = parent->canContain(child, nullptr, &path);
  if (path.size() <= 2) return answer;
  // The way to the match must not lead through another element than the parent.
  path.pop_back();
  while (!path.empty() && !(path.back() && path.back()->getNodeType() == NODE_ELEMENT_TOKEN)) path.pop_back();
  if (path.empty()) return answer;
  return path.back()->getName() == parent->getName() && answer;
}

Element* Document::prepareScratchElement(const char* name) {
  if (!name) return nullptr;
  std::string upper = name;
  upperCase(upper);
  ElementDefinition* definition = findVisibleDefinition(documentType_, upper.c_str());
  if (!scratchElement_) scratchElement_ = ElementAccess::create(this, SharedName(upper));
  NodeAccess::setName(scratchElement_, definition ? definition->upperName() : SharedName(upper));
  ElementAccess::bind(scratchElement_, definition);
  return scratchElement_;
}

bool Document::canContain(Node* parent, const char* name) {
  Element* child = prepareScratchElement(name);
  return parent && child && parent->canContain(child, nullptr, nullptr);
}

bool Document::canContain(Node* parent, Text::TextType type) {
  if (!parent) return false;
  if (!scratchText_) scratchText_ = new Text(this);
  scratchText_->setTextType(type);
  return parent->canContain(scratchText_, nullptr, nullptr);
}

bool Document::canContain(const char* name, Node* child) {
  Element* parent = prepareScratchElement(name);
  return parent && child && parent->canContain(child, nullptr, nullptr);
}

}  // namespace zeldom40
