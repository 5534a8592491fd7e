// Tags of elements: names, attributes, raw text and its rebuilding.
#include "dom/tree/Element.h"

#include <algorithm>
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
#include "dom/tree/TagRewriter.h"
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

// --- life ------------------------------------------------------------------------------------------------------------

Element::Element(const std::string& name, Document* document) : Element(document) {
  NodeAccess::setName(this, SharedName(name));
}

Element::Element(const char* name, Document* document) : Element(std::string(name ? name : ""), document) {}

Element::Element(Document* document) : Node(NODE_ELEMENT, document) { NodeAccess::addFlags(this, UPDATE_CREATED); }

Element::Element(const Element& source, bool withMetaData) : Node(source) {
  elementID_ = source.elementID_;
  elementType_ = source.elementType_;
  endTagExists_ = source.endTagExists_;
  beginTagDirty_ = source.beginTagDirty_;
  endTagDirty_ = source.endTagDirty_;
  alternative_ = source.alternative_;
  contentAtTag_ = source.contentAtTag_;
  if (definition()) ElementAccess::hold(definition());
  beginTag_ = source.beginTag_;
  endTag_ = source.endTag_;
  if (source.extraOrNull()) {
    if (source.held_.extra->beginOwn) {
      extra().begin = source.held_.extra->begin;
      extra().beginOwn = true;
    }
    if (source.held_.extra->endOwn) {
      extra().end = source.held_.extra->end;
      extra().endOwn = true;
    }
  }
  if (source.attributesInBlock_) {
    attributes().block = source.attributes().block;
    attributes().block->addRef();
    attributesInBlock_ = true;
  } else if (source.attributes().list) {
    attributes().list = new AttributeList(*source.attributes().list);
    attributes().list->setOwner(this);
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
  if (extraOrNull() || (!attributesInBlock_ && attributes().list)) {
    NodeAccess::releaseOwned(this);
  } else if (attributesInBlock_) {
    attributes().block->release();
  }
}

void Element::releaseOwned(bool held) {
  if (attributesInBlock_) {
    attributes().block->release();
  } else {
    delete attributes().list;
  }
  attributesInBlock_ = false;
  attributes().list = nullptr;
  if (MetaData* md = getMetaData()) {
    held_.extra->metaData = nullptr;
    md->setElement(nullptr);
    // A visual goes with the children, for it may hold elements with visuals.
    if (Element* visual = NodeAccess::refCount(md) == 1 ? md->takeATV() : nullptr) {
      if (!held) visual->dropRef(true);
      NodeAccess::hangOnDying(this, visual);
    }
    md->releaseRef(false);
  }
  if (!hasExtra_) return;
  delete held_.extra;
  held_.attributes.list = nullptr;
  hasExtra_ = false;
}

Node* Element::cloneSelf() const { return new Element(*this, /*withMetaData=*/true); }

ElementExtra& Element::extra() {
  if (!hasExtra_) {
    auto* extra = new ElementExtra;
    extra->attributes = held_.attributes;
    held_.extra = extra;
    hasExtra_ = true;
  }
  return *held_.extra;
}

Element* ElementAccess::create(Document* document, const SharedName& name) {
  auto* element = new Element(document);
  NodeAccess::setName(element, name);
  return element;
}

Element* ElementAccess::createWithoutTag(NodeKind* kind) {
  Element* element = createParsed(kind, {});
  NodeAccess::clearFlags(element);
  NodeAccess::addFlags(element, Node::UPDATE_CREATED);
  return element;
}

void ElementAccess::bind(Element* element, ElementDefinition* definition) {
  element->noteChange();
  element->setKind(
      NodeKind::find(element->getDocument(), element->page(), NodeAccess::sharedName(element), definition));
  element->elementType_ = definition ? Element::ELEMENT_DEFINED : Element::ELEMENT_UNDEFINED;
  element->elementID_ = definition ? static_cast<std::int16_t>(definition->getElementID()) : std::int16_t{95};
  if (definition) hold(definition);
}

bool ElementAccess::isUntouched(const Element* element) {
  const Element& e = *element;
  if (e.beginTagDirty_ || e.endTagDirty_ || (!e.attributesInBlock_ && e.attributes().list)) return false;
  if (e.extraOrNull() && (e.held_.extra->beginOwn || e.held_.extra->endOwn || e.held_.extra->metaData)) return false;
  if (!e.definition()) return e.elementType_ == Element::ELEMENT_UNDEFINED && e.elementID_ == ID_UNKNOWN;
  return e.elementType_ == Element::ELEMENT_DEFINED && e.elementID_ == e.definition()->getElementID() &&
         NodeAccess::sharedName(element).sameRecord(e.definition()->upperName());
}

unsigned ElementAccess::flags(const Element* element) {
  return (element->endTagExists_ ? 1u : 0u) | (element->alternative_ ? 2u : 0u) | (element->contentAtTag_ ? 4u : 0u);
}

Element* ElementAccess::createUntouched(Document* document, const SharedName& name, ElementDefinition* definition,
                                        const PageRef& page, Slice begin, unsigned flags) {
  Element* element = createWithoutTag(NodeKind::find(document, page, name, definition));
  element->beginTag_ = begin;
  element->endTagExists_ = (flags & 1) != 0;
  element->alternative_ = (flags & 2) != 0;
  element->contentAtTag_ = (flags & 4) != 0;
  return element;
}

// --- answers of the definition ---------------------------------------------------------------------------------------

// Whether undefined elements count as empty and transparent to no content: in HTML documents, and in none at all.
bool Element::isHtmlOrLost() const { return !getDocument() || getDocument()->isHTML(); }

const Node* Element::getAttributeDefinitions() const { return definition() ? definition()->getAttributes() : nullptr; }

unsigned long Element::getElementGroup() const {
  if (definition()) return definition()->getGroup();
  if (getDocument() && !getDocument()->isHTML()) return 0;
  return GetHTML40ElementGroup(elementID_);
}

bool Element::isEndOmittable() const {
  if (definition()) return definition()->isEndOmittable();
  if (elementType_ == ELEMENT_TYPE_1 || elementType_ == ELEMENT_TYPE_2) return true;
  return isHtmlOrLost();
}

bool Element::isEmptyTag() const {
  if (definition()) return definition()->isEmptyTag();
  if (elementType_ == ELEMENT_TYPE_1 || elementType_ == ELEMENT_TYPE_2) return false;
  return isHtmlOrLost();
}

bool Element::isNoEndTag() const {
  return (getElementGroup() & GROUP_ITEM) != 0 && (endTagDirty_ || endView().empty());
}

bool Element::canBeAncestorOf(Node* node) const { return !definition() || definition()->canBeAncestorOf(node); }

bool Element::canInclude(Node* node) const { return definition() && definition()->canInclude(node); }

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
    if (e->definition() && !e->canBeAncestorOf(child)) return false;
  }
  if (asked->definition()) {
    if (asked->definition()->canContain(child, blocking, path)) return true;
    // So do inclusions.
    for (const Element* e = asked; e; e = parentElement(e)) {
      if (e->definition() && e->canInclude(child)) return true;
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
    AttributeBlock* block = attributes().block;
    auto* made = new AttributeList(this);
    for (const AttributeBlock::Entry& entry : *block) {
      auto* attribute = new Attribute(std::string(block->nameOf(entry)), std::string(block->valueOf(entry)), this);
      AttributeAccess::setDefinition(attribute, entry.definition);
      attribute->setType(entry.definition ? Attribute::ATTRIBUTE_DECLARED : Attribute::ATTRIBUTE_UNDECLARED);
      AttributeAccess::setError(attribute, entry.error);
      made->add(attribute);
    }
    attributesInBlock_ = false;
    attributes().list = made;
    block->release();
  } else if (!attributes().list) {
    attributes().list = new AttributeList(this);
  }
  return *attributes().list;
}

AttributeList* Element::getAttributes() const {
  if (!attributesInBlock_) return attributes().list;
  return &const_cast<Element*>(this)->list();
}

unsigned long Element::getNumAttributes() const {
  if (attributesInBlock_) return attributes().block->size();
  return attributes().list ? attributes().list->getLength() : 0;
}

bool ElementAccess::hasAttribute(const Element* element, std::string_view name) {
  if (element->attributesInBlock_) return element->attributes().block->find(name) != nullptr;
  return element->attributes().list && element->attributes().list->getAttribute(std::string(name));
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
  const bool hasDeclarations = definition() && definition()->getAttributes();
  if (hasDeclarations) {
    // The whole name, behind a NUL as well, as the parser takes it.
    std::string upperName = name;
    upperCase(upperName);
    declared = definition()->findAttribute(upperName);
    if (declared) storedName = std::move(upperName);
  }
  auto* attribute = new Attribute(storedName, value, this);
  if (declared) {
    AttributeAccess::setDefinition(attribute, declared);
    attribute->setType(Attribute::ATTRIBUTE_DECLARED);
  } else if (definition()) {
    AttributeAccess::setError(attribute, ERR_ATTR_INVALID_NAME);
  }
  // The list raises the update flag in any case; `notify` decides about tags and metadata.
  list().put(attribute, /*markDirty=*/false);
  if (notify) {
    setBeginTagDirty();
    setUpdateFlag(UPDATE_ATTRIBUTE_MODIFIED);
  }
  // Without any declaration there is nothing to break.
  return definition() && (declared || !hasDeclarations) ? 0 : -1;
}

void Element::deleteAttribute(const char* name) {
  if (name) deleteAttribute(std::string(name));
}

void Element::deleteAttribute(const std::string& name) {
  if (AttributeList* attributes = getAttributes()) delete attributes->removeAttribute(name);
}

unsigned long ElementAccess::gatherAttributeErrors(Element* element) {
  unsigned long all = 0;
  const bool losesRepeats = element->beginTagDirty_ && !element->keepsTags();
  if (element->attributesInBlock_) {
    for (const AttributeBlock::Entry& entry : *element->attributes().block) all |= entry.error;
    if (losesRepeats && (all & ERR_ATTR_VALUE_DUPLICATED)) element->list();
  }
  if (!element->attributesInBlock_ && element->attributes().list) {
    all = 0;
    for (unsigned long i = 0; i < element->attributes().list->getLength(); ++i) {
      Attribute* attribute = element->attributes().list->item(i);
      if (losesRepeats && (AttributeAccess::error(attribute) & ERR_ATTR_VALUE_DUPLICATED)) {
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
  element->attributes().block = block;
  element->attributesInBlock_ = true;
}

// --- dirty marks and raw tags ----------------------------------------------------------------------------------------

// Whether what is edited of a tag leaves the rest of it as it stands.
bool Element::keepsTags() const { return DocumentAccess::keepsSource(getDocument()) && !beginView().empty(); }

// An end tag depends on its begin tag's name.
void Element::dirtyTags() {
  beginTagDirty_ = true;
  if (keepsTags()) {
    const std::string_view tag = beginView();
    std::string name = writtenName();
    upperCase(name);
    if (equalsFolded(tag.substr(std::min<std::size_t>(1, tag.size()), name.size()), name)) return;
    if (endView().empty()) return;
  }
  endTagDirty_ = true;
}

void Element::setBeginTagDirty() {
  noteChange();
  dirtyTags();
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
  return extraOrNull() && held_.extra->beginOwn ? std::string_view(held_.extra->begin) : beginTag_.in(page());
}

std::string_view Element::endView() const {
  return extraOrNull() && held_.extra->endOwn ? std::string_view(held_.extra->end) : endTag_.in(page());
}

void ElementAccess::installEndTag(Element* element, const PageRef& page, Slice tag) {
  if (element->page() && element->page().get() != page.get()) {
    element->setRawEndTag(std::string(tag.in(page)));
    return;
  }
  element->noteChange();
  element->setPage(page);
  element->endTag_ = tag;
  element->setUpdateFlag(Node::UPDATE_CONTENT_MODIFIED);
}

void Element::setRawBeginTag(const std::string& text) {
  noteChange();
  extra().begin = text;
  held_.extra->beginOwn = true;
  setUpdateFlag(UPDATE_CONTENT_MODIFIED);
}

void Element::setRawEndTag(const std::string& text) {
  noteChange();
  extra().end = text;
  held_.extra->endOwn = true;
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
  beginTagDirty_ = true;
  // A tag that closed itself needs an end tag now; other end tags stay where they may.
  if (!keepsTags() || (hasChildNodes() && endView().empty() && beginView().ends_with("/>"))) endTagDirty_ = true;
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
    storeBeginTag(rebuildBeginTag());
  }
  beginTagDirty_ = false;
}

void Element::storeBeginTag(std::string tag) {
  extra().begin = std::move(tag);
  held_.extra->beginOwn = true;
  contentAtTag_ = hasChildNodes();
  NodeAccess::raiseFlag(this, UPDATE_CONTENT_MODIFIED);
}

void ElementAccess::respellBeginTag(Element* element) {
  if (!element->keepsTags()) return element->setBeginTagDirty();
  std::string tag;
  if (!rewriteBeginTag(*element, element->beginView(), TagRewriting::KEEP_SPELLED, tag)) {
    tag = element->buildBeginTag();
  }
  element->noteChange();
  element->storeBeginTag(std::move(tag));
  NodeAccess::noteEdit(element);
}

void ElementAccess::remakeBeginTag(Element* element) {
  if (!element->keepsTags()) return element->setBeginTagDirty();
  element->noteChange();
  element->storeBeginTag(element->buildBeginTag());
  NodeAccess::noteEdit(element);
}

void Element::refreshEndTag() {
  if (!endTagDirty_) checkContentChange();
  if (!endTagDirty_) return;
  noteChange();
  const bool holdsCode = endView().find('<', 1) != std::string_view::npos;
  if (!holdsCode && (elementType_ == ELEMENT_DEFINED || rebuildsAlways())) {
    extra().end = buildEndTag();
    held_.extra->endOwn = true;
    contentAtTag_ = hasChildNodes();
    NodeAccess::raiseFlag(this, UPDATE_CONTENT_MODIFIED);
  }
  endTagDirty_ = false;
}

// The name of its tags as the definition spells it.
std::string Element::writtenName() const {
  if (!definition()) return getName();
  std::string name = definition()->getName();
  constexpr unsigned long kLowerCaseContent = 0x10000000;
  const Element* parent = asElement(getParentNode());
  if (parent && (parent->getElementGroup() & kLowerCaseContent)) lowerCase(name);
  return name;
}

// With regard to the tag that stands there.
std::string Element::rebuildBeginTag() const {
  std::string tag;
  if (keepsTags() && rewriteBeginTag(*this, beginView(), TagRewriting::KEEP, tag)) return tag;
  return buildBeginTag();
}

std::string Element::buildBeginTag() const {
  // Rare; what a quoted value holds does not matter.
  std::string tag;
  if (beginView().find('<', 1) != std::string_view::npos &&
      rewriteBeginTag(*this, beginView(), TagRewriting::AROUND_CODE, tag)) {
    return tag;
  }
  const unsigned long group = getElementGroup();
  const bool directive = (group & GROUP_DIRECTIVE) && !alternative_;
  std::string_view name = definition() ? std::string_view(definition()->getName()) : std::string_view(getName());
  tag = "<";
  if (directive) {
    tag += "%@";
    if (elementID_ != ID_JSP_DIRECTIVE) {
      const std::size_t dot = name.find('.');
      if (definition() && dot != std::string_view::npos) name.remove_prefix(dot + 1);
      tag += ' ';
      tag += name;
    }
  } else if (group & GROUP_SSI) {
    tag += "!--#";
    const std::size_t colon = name.find(':');
    if (definition() && colon != std::string_view::npos) name.remove_prefix(colon + 1);
    tag += name;
  } else {
    tag += writtenName();
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
  // What ended a tag that once ended in server code is text behind it.
  if (extraOrNull() && held_.extra->beginOwn && !held_.extra->begin.empty() && !held_.extra->begin.ends_with('>')) {
    return tag;
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
  const bool keeps = DocumentAccess::keepsSource(getDocument()) && !endView().empty();
  if (isEmptyTag() || (group & GROUP_ITEM)) return keeps ? std::string(endView()) : std::string();
  if ((group & GROUP_XML_TAG) && !hasChildNodes() && !keeps) return {};
  if ((group & GROUP_SCRIPT_DATA) && !alternative_) return {};
  return "</" + (definition() ? definition()->getName() : getName()) + ">";
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
