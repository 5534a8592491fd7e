// Tags of elements: names, attributes, raw text and its rebuilding.
#include "dom/tree/Element.h"

#include <limits>
#include <utility>

#include "dom/document/DocumentAccess.h"
#include "dom/dtd/AttributeDefinition.h"
#include "dom/dtd/ElementDefinition.h"
#include "dom/dynamic/MetaDataAccess.h"
#include "dom/source/CharHelpers.h"
#include "dom/tree/Attribute.h"
#include "dom/tree/AttributeAccess.h"
#include "dom/tree/AttributeList.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/Text.h"

namespace zeldom40 {

namespace {

const Element* asElement(const Node* node) {
  return node && node->getNodeType() == Node::NODE_ELEMENT ? static_cast<const Element*>(node) : nullptr;
}

Element* parentElement(const Element* element) {
  Node* parent = element->getParentNode();
  return parent && parent->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(parent) : nullptr;
}

}  // namespace

inline void ElementAccess::hold(ElementDefinition* definition) {
  if (NodeAccess::refCount(definition) < std::numeric_limits<int>::max() / 2) NodeAccess::addCount(definition);
}

// --- life ------------------------------------------------------------------------------------------------------------

Element::Element(const std::string& name, Document* document) : Element(document) {
  NodeAccess::setName(this, SharedName(name));
}

Element::Element(const char* name, Document* document) : Element(std::string(name ? name : ""), document) {}

Element::Element(Document* document) : Node(NODE_ELEMENT, document) { NodeAccess::addFlags(this, UPDATE_CREATED); }

inline Element::Element(Parsed, Document* document, const SharedName& name, ElementDefinition* definition,
                        const PageRef& page, Slice begin)
    : Node(Parsed{}, NODE_ELEMENT, document, name, UPDATE_CREATED | UPDATE_CONTENT_MODIFIED),
      definition_(definition),
      page_(page),
      beginTag_(begin) {
  if (!definition) return;
  elementID_ = static_cast<std::int16_t>(definition->getElementID());
  elementType_ = ELEMENT_DEFINED;
  ElementAccess::hold(definition);
}

Element::Element(const Element& source, bool withMetaData) : Node(source) {
  elementID_ = source.elementID_;
  elementType_ = source.elementType_;
  endTagExists_ = source.endTagExists_;
  beginTagDirty_ = source.beginTagDirty_;
  endTagDirty_ = source.endTagDirty_;
  alternative_ = source.alternative_;
  contentAtTag_ = source.contentAtTag_;
  definition_ = source.definition_;
  if (definition_) ElementAccess::hold(definition_);
  page_ = source.page_;
  beginTag_ = source.beginTag_;
  endTag_ = source.endTag_;
  if (source.extra_) {
    if (source.extra_->beginOwn) {
      extra().begin = source.extra_->begin;
      extra().beginOwn = true;
    }
    if (source.extra_->endOwn) {
      extra().end = source.extra_->end;
      extra().endOwn = true;
    }
  }
  if (source.attributesInBlock_) {
    attributes_.block = source.attributes_.block;
    attributes_.block->addRef();
    attributesInBlock_ = true;
  } else if (source.attributes_.list) {
    attributes_.list = new AttributeList(*source.attributes_.list);
    attributes_.list->setOwner(this);
  }
  if (withMetaData && source.getMetaData()) {
    MetaData* copy = new MetaData(*source.getMetaData());
    copy->addRef(false);
    extra().metaData = copy;
    copy->setElement(this);
  }
  Node::setUpdateFlag(UPDATE_CREATED);
}

Element::~Element() {
  // Most have a block of attributes at most.
  if (extra_ || (!attributesInBlock_ && attributes_.list)) {
    NodeAccess::releaseOwned(this);
  } else if (attributesInBlock_) {
    attributes_.block->release();
  }
}

void Element::releaseOwned() {
  if (attributesInBlock_) {
    attributes_.block->release();
  } else {
    delete attributes_.list;
  }
  attributesInBlock_ = false;
  attributes_.list = nullptr;
  if (MetaData* md = getMetaData()) {
    extra_->metaData = nullptr;
    md->setElement(nullptr);
    // A visual goes with the children, for it may hold elements with visuals.
    if (Element* visual = NodeAccess::refCount(md) == 1 ? md->takeATV() : nullptr) {
      visual->dropRef(true);
      NodeAccess::hangOnDying(this, visual);
    }
    md->releaseRef(false);
  }
  delete extra_;
  extra_ = nullptr;
}

Node* Element::cloneSelf() const { return new Element(*this, /*withMetaData=*/true); }

ElementExtra& Element::extra() {
  if (!extra_) extra_ = new ElementExtra;
  return *extra_;
}

Element* ElementAccess::create(Document* document, const SharedName& name) {
  auto* element = new Element(document);
  NodeAccess::setName(element, name);
  return element;
}

Element* ElementAccess::createParsed(Document* document, const SharedName& name, ElementDefinition* definition,
                                     const PageRef& page, Slice begin) {
  void* memory = NodePool::allocate(sizeof(Element));
  return ::new (memory) Element(Element::Parsed{}, document, name, definition, page, begin);
}

void ElementAccess::bind(Element* element, ElementDefinition* definition) {
  element->noteChange();
  element->definition_ = definition;
  element->elementType_ = definition ? Element::ELEMENT_DEFINED : Element::ELEMENT_UNDEFINED;
  element->elementID_ = definition ? static_cast<std::int16_t>(definition->getElementID()) : std::int16_t{95};
  if (definition) hold(definition);
}

bool ElementAccess::isUntouched(const Element* element) {
  const Element& e = *element;
  if (e.beginTagDirty_ || e.endTagDirty_ || (!e.attributesInBlock_ && e.attributes_.list)) return false;
  if (e.extra_ && (e.extra_->beginOwn || e.extra_->endOwn || e.extra_->metaData)) return false;
  if (!e.definition_) return e.elementType_ == Element::ELEMENT_UNDEFINED && e.elementID_ == ID_UNKNOWN;
  return e.elementType_ == Element::ELEMENT_DEFINED && e.elementID_ == e.definition_->getElementID() &&
         NodeAccess::sharedName(element).sameRecord(e.definition_->upperName());
}

unsigned ElementAccess::flags(const Element* element) {
  return (element->endTagExists_ ? 1u : 0u) | (element->alternative_ ? 2u : 0u) | (element->contentAtTag_ ? 4u : 0u);
}

Element* ElementAccess::createUntouched(Document* document, const SharedName& name, ElementDefinition* definition,
                                        const PageRef& page, Slice begin, unsigned flags) {
  Element* element = create(document, name);
  bind(element, definition);
  element->page_ = page;
  element->beginTag_ = begin;
  element->endTagExists_ = (flags & 1) != 0;
  element->alternative_ = (flags & 2) != 0;
  element->contentAtTag_ = (flags & 4) != 0;
  return element;
}

// --- answers of the definition ---------------------------------------------------------------------------------------

// Whether undefined elements count as empty and transparent to no content: in HTML documents, and in none at all.
bool Element::isHtmlOrLost() const { return !getDocument() || getDocument()->isHTML(); }

const Node* Element::getAttributeDefinitions() const { return definition_ ? definition_->getAttributes() : nullptr; }

unsigned long Element::getElementGroup() const {
  if (definition_) return definition_->getGroup();
  if (getDocument() && !getDocument()->isHTML()) return 0;
  return GetHTML40ElementGroup(elementID_);
}

bool Element::isEndOmittable() const {
  if (definition_) return definition_->isEndOmittable();
  if (elementType_ == ELEMENT_TYPE_1 || elementType_ == ELEMENT_TYPE_2) return true;
  return isHtmlOrLost();
}

bool Element::isEmptyTag() const {
  if (definition_) return definition_->isEmptyTag();
  if (elementType_ == ELEMENT_TYPE_1 || elementType_ == ELEMENT_TYPE_2) return false;
  return isHtmlOrLost();
}

bool Element::isNoEndTag() const {
  return (getElementGroup() & GROUP_ITEM) != 0 && (endTagDirty_ || endView().empty());
}

bool Element::canBeAncestorOf(Node* node) const { return !definition_ || definition_->canBeAncestorOf(node); }

bool Element::canInclude(Node* node) const { return definition_ && definition_->canInclude(node); }

bool Element::canContain(Node* child, Node** blocking, std::vector<Node*>* path) {
  if (blocking) *blocking = nullptr;
  if (!child) return false;
  // A transparent element answers as its parent does.
  Element* asked = this;
  while (asked->getElementGroup() & GROUP_LOOP) {
    asked = parentElement(asked);
    if (!asked) return true;
  }
  // Exclusions reach all the way down.
  for (const Element* e = asked; e; e = parentElement(e)) {
    if (e->definition_ && !e->canBeAncestorOf(child)) return false;
  }
  if (asked->definition_) {
    if (asked->definition_->canContain(child, blocking, path)) return true;
    // So do inclusions.
    for (const Element* e = asked; e; e = parentElement(e)) {
      if (e->definition_ && e->canInclude(child)) return true;
    }
    return false;
  }
  if (asked->elementType_ == ELEMENT_TYPE_1 || asked->elementType_ == ELEMENT_TYPE_2) return true;
  return !asked->isHtmlOrLost();
}

const char* Element::getDisplayName() const { return GetHTML40DisplayName(this); }

bool Element::canHaveATV() const { return (getElementGroup() & GROUP_ATV) != 0; }

// --- attributes ------------------------------------------------------------------------------------------------------

// From here on objects that a host can hold stand in for the block.
AttributeList& Element::list() {
  if (attributesInBlock_) {
    AttributeBlock* block = attributes_.block;
    auto* made = new AttributeList(this);
    for (const AttributeBlock::Entry& entry : *block) {
      auto* attribute = new Attribute(std::string(block->nameOf(entry)), std::string(block->valueOf(entry)), this);
      AttributeAccess::setDefinition(attribute, entry.definition);
      attribute->setType(entry.definition ? Attribute::ATTRIBUTE_DECLARED : Attribute::ATTRIBUTE_UNDECLARED);
      AttributeAccess::setError(attribute, entry.error);
      made->vec().push_back(attribute);
    }
    attributesInBlock_ = false;
    attributes_.list = made;
    block->release();
  } else if (!attributes_.list) {
    attributes_.list = new AttributeList(this);
  }
  return *attributes_.list;
}

AttributeList* Element::getAttributes() const {
  if (!attributesInBlock_) return attributes_.list;
  return &const_cast<Element*>(this)->list();
}

unsigned long Element::getNumAttributes() const {
  if (attributesInBlock_) return attributes_.block->size();
  return attributes_.list ? attributes_.list->getLength() : 0;
}

bool ElementAccess::hasAttribute(const Element* element, std::string_view name) {
  if (element->attributesInBlock_) return element->attributes_.block->find(name) != nullptr;
  return element->attributes_.list && element->attributes_.list->getAttribute(std::string(name));
}

const Attribute* Element::getAttributeNode(const char* name) const {
  if (!name || !ElementAccess::hasAttribute(this, name)) return nullptr;
  return getAttributes()->getAttribute(name);
}

const char* Element::getAttributeValue(const char* name) const {
  const Attribute* attribute = getAttributeNode(name);
  return attribute ? attribute->getValue().c_str() : nullptr;
}

int Element::setAttribute(const char* name, const char* value, bool notify) {
  return setAttribute(std::string(name ? name : ""), std::string(value ? value : ""), notify);
}

int Element::setAttribute(const std::string& name, const std::string& value, bool notify) {
  std::string storedName = name;
  const AttributeDefinition* declared = nullptr;
  const bool hasDeclarations = definition_ && definition_->getAttributes();
  if (hasDeclarations) {
    // The whole name, behind a NUL as well, as the parser takes it.
    std::string upperName = name;
    upperCase(upperName);
    declared = definition_->findAttribute(upperName);
    if (declared) storedName = std::move(upperName);
  }
  auto* attribute = new Attribute(storedName, value, this);
  if (declared) {
    AttributeAccess::setDefinition(attribute, declared);
    attribute->setType(Attribute::ATTRIBUTE_DECLARED);
  } else if (definition_) {
    AttributeAccess::setError(attribute, ERR_ATTR_INVALID_NAME);
  }
  // The list raises the update flag in any case; `notify` decides about tags and metadata.
  list().put(attribute, /*markDirty=*/false);
  if (notify) {
    setBeginTagDirty();
    setUpdateFlag(UPDATE_ATTRIBUTE_MODIFIED);
  }
  // Without any declaration there is nothing to break.
  return definition_ && (declared || !hasDeclarations) ? 0 : -1;
}

void Element::deleteAttribute(const char* name) {
  if (name) deleteAttribute(std::string(name));
}

void Element::deleteAttribute(const std::string& name) {
  if (AttributeList* attributes = getAttributes()) delete attributes->removeAttribute(name);
}

unsigned long ElementAccess::gatherAttributeErrors(Element* element) {
  unsigned long all = 0;
  if (element->attributesInBlock_) {
    for (const AttributeBlock::Entry& entry : *element->attributes_.block) all |= entry.error;
    if (element->beginTagDirty_ && (all & ERR_ATTR_VALUE_DUPLICATED)) element->list();
  }
  if (!element->attributesInBlock_ && element->attributes_.list) {
    all = 0;
    for (unsigned long i = 0; i < element->attributes_.list->getLength(); ++i) {
      Attribute* attribute = element->attributes_.list->item(i);
      if (element->beginTagDirty_ && (AttributeAccess::error(attribute) & ERR_ATTR_VALUE_DUPLICATED)) {
        element->noteChange();
        AttributeAccess::resetError(attribute, ERR_ATTR_VALUE_DUPLICATED);
      }
      all |= AttributeAccess::error(attribute);
    }
  }
  if (all) {
    element->setError(ERR_ELEMENT_INVALID_ATTR);
  } else {
    element->resetError(ERR_ELEMENT_INVALID_ATTR);
  }
  return all;
}

void ElementAccess::installAttributes(Element* element, AttributeBlock* block) {
  element->noteChange();
  element->attributes_.block = block;
  element->attributesInBlock_ = true;
}

// --- dirty marks and raw tags ----------------------------------------------------------------------------------------

void Element::setBeginTagDirty() {
  noteChange();
  // An end tag depends on its begin tag's name.
  beginTagDirty_ = endTagDirty_ = true;
  NodeAccess::noteEdit(this);
}

void Element::setEndTagDirty() {
  noteChange();
  endTagDirty_ = true;
  NodeAccess::noteEdit(this);
}

void Element::noteUpdate(unsigned long) {
  if (getMetaData() && NodeAccess::refCount(this) > 0) NodeAccess::makeStale(this);
}

std::string_view Element::beginView() const {
  return extra_ && extra_->beginOwn ? std::string_view(extra_->begin) : beginTag_.in(page_);
}

std::string_view Element::endView() const {
  return extra_ && extra_->endOwn ? std::string_view(extra_->end) : endTag_.in(page_);
}

void ElementAccess::installBeginTag(Element* element, const PageRef& page, Slice tag) {
  element->noteChange();
  element->page_ = page;
  element->beginTag_ = tag;
  element->setUpdateFlag(Node::UPDATE_CONTENT_MODIFIED);
}

void ElementAccess::installEndTag(Element* element, const PageRef& page, Slice tag) {
  if (element->page_ && element->page_.get() != page.get()) {
    element->setRawEndTag(std::string(tag.in(page)));
    return;
  }
  element->noteChange();
  element->page_ = page;
  element->endTag_ = tag;
  element->setUpdateFlag(Node::UPDATE_CONTENT_MODIFIED);
}

void Element::setRawBeginTag(const std::string& text) {
  noteChange();
  extra().begin = text;
  extra_->beginOwn = true;
  setUpdateFlag(UPDATE_CONTENT_MODIFIED);
}

void Element::setRawEndTag(const std::string& text) {
  noteChange();
  extra().end = text;
  extra_->endOwn = true;
  contentAtTag_ = hasChildNodes();
  setUpdateFlag(UPDATE_CONTENT_MODIFIED);
}

const std::string& Element::getRawBeginTag() const {
  auto* self = const_cast<Element*>(this);
  self->refreshBeginTag();
  ElementExtra& texts = self->extra();
  if (!texts.beginOwn && !texts.beginCopied) {
    texts.begin = beginView();
    texts.beginCopied = true;
  }
  return texts.begin;
}

const std::string& Element::getRawEndTag() const {
  auto* self = const_cast<Element*>(this);
  self->refreshEndTag();
  ElementExtra& texts = self->extra();
  if (!texts.endOwn && !texts.endCopied) {
    texts.end = endView();
    texts.endCopied = true;
  }
  return texts.end;
}

// An XML-form tag shows in its begin tag whether it has content; one that gained or lost it is written anew. The state
// that the raw tags belong to is remembered, so that a pair like <jsp:useBean ...></jsp:useBean> comes back as it was.
void Element::checkContentChange() {
  if (!(getElementGroup() & GROUP_XML_TAG) || contentAtTag_ == hasChildNodes()) return;
  noteChange();
  beginTagDirty_ = endTagDirty_ = true;
}

// In a document that is not HTML nothing is known of names, so any tag may be written anew, but no builder could make
// a server tag, an instruction or a declaration again.
bool Element::rebuildsAlways() const {
  if (!getDocument() || getDocument()->isHTML()) return false;
  const std::string_view raw = beginView();
  return !(raw.size() >= 2 && raw[0] == '<' && (raw[1] == '%' || raw[1] == '?' || raw[1] == '!'));
}

void Element::refreshBeginTag() {
  if (elementID_ == ID_OBJECT && getMetaData()) markNestedControl(MetaDataAccess::isUnderMetaData(this));
  refreshTag();
}

std::string_view ElementAccess::rawBeginTag(Element* element, bool isUnderMetaData) {
  if (element->elementID_ == ID_OBJECT && element->getMetaData()) element->markNestedControl(isUnderMetaData);
  element->refreshTag();
  return element->beginView();
}

void Element::refreshTag() {
  if (!beginTagDirty_) checkContentChange();
  if (!beginTagDirty_) return;
  noteChange();
  const bool defined = elementType_ == ELEMENT_DEFINED;
  // KEPT: unknown tags of an HTML page keep their source for ever, and <% %> is never rebuilt from attributes.
  if ((defined && (!(getElementGroup() & GROUP_SCRIPT_DATA) || alternative_)) || rebuildsAlways()) {
    extra().begin = buildBeginTag();
    extra_->beginOwn = true;
    contentAtTag_ = hasChildNodes();
    NodeAccess::raiseFlag(this, UPDATE_CONTENT_MODIFIED);
  }
  beginTagDirty_ = false;
}

void Element::refreshEndTag() {
  if (!endTagDirty_) checkContentChange();
  if (!endTagDirty_) return;
  noteChange();
  if (elementType_ == ELEMENT_DEFINED || rebuildsAlways()) {
    extra().end = buildEndTag();
    extra_->endOwn = true;
    contentAtTag_ = hasChildNodes();
    NodeAccess::raiseFlag(this, UPDATE_CONTENT_MODIFIED);
  }
  endTagDirty_ = false;
}

std::string Element::buildBeginTag() const {
  const unsigned long group = getElementGroup();
  const bool directive = (group & GROUP_DIRECTIVE) && !alternative_;
  std::string_view name = definition_ ? std::string_view(definition_->getName()) : std::string_view(getName());
  std::string tag = "<";
  if (directive) {
    tag += "%@";
    if (elementID_ != ID_JSP_DIRECTIVE) {
      const std::size_t dot = name.find('.');
      if (definition_ && dot != std::string_view::npos) name.remove_prefix(dot + 1);
      tag += ' ';
      tag += name;
    }
  } else if (group & GROUP_SSI) {
    tag += "!--#";
    const std::size_t colon = name.find(':');
    if (definition_ && colon != std::string_view::npos) name.remove_prefix(colon + 1);
    tag += name;
  } else if (definition_) {
    std::string written(name);
    const Element* parent = asElement(getParentNode());
    constexpr unsigned long kLowerCaseContent = 0x10000000;
    if (parent && (parent->getElementGroup() & kLowerCaseContent)) lowerCase(written);
    tag += written;
  } else {
    tag += name;
  }
  if (const AttributeList* attributes = getAttributes()) {
    for (unsigned long i = 0; i < attributes->getLength(); ++i) {
      const Attribute* attribute = attributes->item(i);
      if (!attribute) continue;
      const AttributeDefinition* declared = attribute->getAttributeDefinition();
      tag += ' ';
      tag += declared && !declared->getName().empty() ? declared->getName() : attribute->getName();
      if (attribute->getValue().empty()) continue;
      const char quote = AttributeAccess::quote(attribute);
      tag += '=';
      tag += quote;
      tag += attribute->getValue();
      tag += quote;
    }
  }
  if (directive) {
    tag += " %";
  } else if (group & GROUP_SSI) {
    tag += " --";
  } else if ((group & GROUP_XML_TAG) && !hasChildNodes()) {
    tag += " /";
  }
  tag += '>';
  return tag;
}

std::string Element::buildEndTag() const {
  const unsigned long group = getElementGroup();
  if (isEmptyTag() || (group & GROUP_ITEM)) return {};
  if ((group & GROUP_XML_TAG) && !hasChildNodes()) return {};
  if ((group & GROUP_SCRIPT_DATA) && !alternative_) return {};
  return "</" + (definition_ ? definition_->getName() : getName()) + ">";
}

// --- script data -----------------------------------------------------------------------------------------------------

const char* Element::getScriptData() {
  if (!(getElementGroup() & GROUP_SCRIPT_DATA)) return nullptr;
  std::string& data = extra().scriptData;
  if (alternative_) {
    data.clear();
    for (Node* child = getFirstChild(); child; child = NodeAccess::childAfter(child)) {
      if (child->getNodeType() != NODE_TEXT) continue;
      const auto* text = static_cast<const Text*>(child);
      data += text->getTextType() == Text::TEXT_LITERAL ? text->getData() : text->getRawData();
    }
    return data.c_str();
  }
  std::string_view code = beginView();
  if (code.size() < 4 || code.substr(0, 2) != "<%" || code.substr(code.size() - 2) != "%>") return nullptr;
  code = code.substr(2, code.size() - 4);
  const char mark = elementID_ == ID_JSP_EXPRESSION ? '=' : elementID_ == ID_JSP_DECLARATION ? '!' : '\0';
  if (mark) {
    if (code.empty() || code.front() != mark) return nullptr;
    code.remove_prefix(1);
  }
  if (!code.empty() && code.front() == ' ') code.remove_prefix(1);
  if (!code.empty() && code.back() == ' ') code.remove_suffix(1);
  if (code.empty()) return nullptr;
  data = code;
  return data.c_str();
}

void Element::setScriptData(const char* data) {
  if (!(getElementGroup() & GROUP_SCRIPT_DATA)) return;
  if (alternative_) {
    Document* document = getDocument();
    if (!document) return;
    while (Node* child = getLastChild()) document->deleteNodes(child);
    Text* text = document->createTextNode(nullptr);
    text->setTextType(Text::TEXT_LITERAL);
    text->setData(data, /*notify=*/true);
    insertLast(text);
    return;
  }
  const std::string_view code(data ? data : "");
  std::string tag = "<%";
  if (elementID_ == ID_JSP_EXPRESSION) tag += '=';
  if (elementID_ == ID_JSP_DECLARATION) tag += '!';
  if (code.empty()) {
    tag += ' ';
  } else {
    if (!isBlankByte(code.front())) tag += ' ';
    tag += code;
    if (!isBlankByte(code.back())) tag += ' ';
  }
  tag += "%>";
  setRawBeginTag(tag);
}

// --- searches --------------------------------------------------------------------------------------------------------

NodeIterator Element::getElementsByTagName(const std::string& name) {
  auto* found = new std::vector<Node*>;
  // KEPT: the walk goes on through the following siblings of this element, though never to its ancestors.
  for (Node* top = this; top; top = NodeAccess::childAfter(top)) {
    for (Node* n = top; n; n = NodeAccess::nextInSubtree(n, top)) {
      if (n->getName() == name) found->push_back(n);
    }
  }
  return NodeAccess::makeResults(found);
}

}  // namespace zeldom40
