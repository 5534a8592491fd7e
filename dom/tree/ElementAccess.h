// Internal. What the parser, the writer and the repair do to an element beyond its public interface.
#pragma once

#include <limits>
#include <string_view>

#include "dom/dtd/ElementDefinition.h"
#include "dom/tree/AttributeBlock.h"
#include "dom/tree/AttributeList.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/PageBuffer.h"

namespace zeldom40 {

// Texts that an element holds itself because an edit made them, or because a host asked for a string.
struct ElementExtra {
  std::string begin;
  std::string end;
  std::string scriptData;
  bool beginOwn = false;  // `begin` is the tag; else it is a copy of the slice, if beginCopied
  bool endOwn = false;
  bool beginCopied = false;
  bool endCopied = false;
  MetaData* metaData = nullptr;
  Element::Attributes attributes;
};

inline auto Element::attributes() -> Attributes& { return hasExtra_ ? held_.extra->attributes : held_.attributes; }
inline auto Element::attributes() const -> const Attributes& {
  return hasExtra_ ? held_.extra->attributes : held_.attributes;
}

struct ElementAccess {
  // An element that shares its name, count 0, no flags but UPDATE_CREATED.
  static Element* create(Document* document, const SharedName& name);
  // A parsed element: bound to the kind's definition, with that begin tag. Takes over one reference of `kind`.
  static Element* createParsed(NodeKind* kind, Slice begin);
  // The same with an empty begin tag and no flags but UPDATE_CREATED.
  static Element* createWithoutTag(NodeKind* kind);
  // One reference on a definition for each element that has it, up to a number that does not overflow.
  static void hold(ElementDefinition* definition);
  // Definition, element type 3 and identifier; takes one reference on the definition, which nothing gives back: the
  // DTD outlives its documents. Null makes the element undefined.
  static void bind(Element* element, ElementDefinition* definition);
  // The parser's raw end tag: an exact slice of the page, not dirty.
  static void installEndTag(Element* element, const PageRef& page, Slice tag);
  // The same for an element that the parser made, on the page of its begin tag.
  static void installParsedEndTag(Element* element, Slice tag) {
    element->noteChange();
    element->endTag_ = tag;
    element->endTagExists_ = true;
    NodeAccess::raiseParsed(element, Node::UPDATE_CONTENT_MODIFIED);
  }
  // Takes over one reference of the block.
  static void installAttributes(Element* element, AttributeBlock* block);
  static const AttributeBlock* block(const Element* element) {
    return element->attributesInBlock_ ? element->attributes().block : nullptr;
  }
  // The parser is through with the element: its raw tags belong to the content it has now.
  static void noteContent(Element* element) {
    element->noteChange();
    element->contentAtTag_ = element->hasChildNodes();
  }
  // Source text, rebuilt if dirty; lives until the element changes.
  static std::string_view rawBeginTag(Element* element) {
    element->refreshBeginTag();
    return element->beginView();
  }
  // For a caller that knows whether an element above has metadata, so that nobody climbs to find out.
  static std::string_view rawBeginTag(Element* element, bool isUnderMetaData);
  static std::string_view rawEndTag(Element* element) {
    element->refreshEndTag();
    return element->endView();
  }
  static bool isBeginTagDirty(const Element* element) { return element->beginTagDirty_; }
  static void setTagsClean(Element* element) { setTagsDirty(element, false); }
  static void markTagsDirty(Element* element) { setTagsDirty(element, true); }
  // An element that follows from its slices, definition and attribute block alone: nothing of it was edited.
  static bool isUntouched(const Element* element);
  // The source of both tags is what the slices say, and nothing else stands for the element: rawBeginTag and rawEndTag
  // would find so too, but for a caller that asks each node of a page their way is long.
  static bool isSourceOfPage(const Element* element) {
    const Element& e = *element;
    if (e.beginTagDirty_ || e.endTagDirty_ || e.contentAtTag_ != e.hasChildNodes()) return false;
    return !e.extraOrNull() || !(e.held_.extra->beginOwn || e.held_.extra->endOwn || e.held_.extra->metaData);
  }
  // What createUntouched needs beside the slices, in one byte.
  static unsigned flags(const Element* element);
  static Element* createUntouched(Document* document, const SharedName& name, ElementDefinition* definition,
                                  const PageRef& page, Slice begin, unsigned flags);
  static void setEndSlice(Element* element, Slice end) { element->endTag_ = end; }
  // Whether a page has its begin tag, however that was edited since.
  static bool hasSourceTag(const Element* element) { return element->beginTag_.length > 0; }
  // Whether it was empty when its tags were stored.
  static bool wasEmpty(const Element* element) { return !element->contentAtTag_; }
  // The name with which its tags are written.
  static std::string writtenName(const Element* element) { return element->writtenName(); }
  // Whether it had content when its tags were stored, and has neither that nor an end tag now.
  static bool hasLostContent(const Element* element) {
    return element->contentAtTag_ && !element->hasChildNodes() && element->endView().empty();
  }
  // For a repair: the tag is written anew at the next reading, under KEEP with the names alone spelled as declared, or,
  // if it could not be read, altogether.
  static void respellBeginTag(Element* element);
  static void remakeBeginTag(Element* element);
  static ElementDefinition* definition(const Element* element) { return element->definition(); }
  // Whether a block of attributes is all that its end must give back.
  static bool isBare(const Element* element) {
    return !element->extraOrNull() && (element->attributesInBlock_ || !element->attributes().list);
  }
  static void releaseBlock(Element* element) {
    if (element->attributesInBlock_) element->attributes().block->release();
  }
  static bool hasExtra(const Element* element) { return element->extraOrNull() != nullptr; }
  static MetaData* metaData(const Element* element) {
    return element->extraOrNull() ? element->held_.extra->metaData : nullptr;
  }
  static const PageRef& page(const Element* element) { return element->page(); }
  static const Slice& beginSlice(const Element* element) { return element->beginTag_; }
  static const Slice& endSlice(const Element* element) { return element->endTag_; }
  // Marks the one tag alone if it has no text.
  static void dirtyEmptyBeginTag(Element* element) {
    if (!element->beginView().empty()) return;
    element->noteChange();
    element->beginTagDirty_ = true;
  }
  static void dirtyEmptyEndTag(Element* element) {
    if (!element->endView().empty()) return;
    element->noteChange();
    element->endTagDirty_ = true;
  }
  // The attributes learn of the element's new document.
  static void adoptAttributes(Element* element, Document* to) {
    if (!element->attributesInBlock_ && element->attributes().list) element->attributes().list->setDocument(to);
  }
  // Moves all attributes of `from` to the element.
  static void takeAttributes(Element* element, AttributeList* from) { element->list().merge(from); }
  // Ors the attributes' errors together and shows the result as ERR_ELEMENT_INVALID_ATTR on the element. A tag that
  // will be rebuilt loses its repeated attributes, so that error is dropped from them first.
  static unsigned long gatherAttributeErrors(Element* element);
  static bool hasAttribute(const Element* element, std::string_view name);

 private:
  static void setTagsDirty(Element* element, bool dirty) {
    element->noteChange();
    element->beginTagDirty_ = element->endTagDirty_ = dirty;
  }
};

inline void ElementAccess::hold(ElementDefinition* definition) {
  if (NodeAccess::refCount(definition) < std::numeric_limits<int>::max() / 2) NodeAccess::addCount(definition);
}

// Every element of a page comes through here.
inline Element::Element(Parsed, NodeKind* kind, Slice begin)
    : Node(Parsed{}, NODE_ELEMENT, kind, UPDATE_CREATED | UPDATE_CONTENT_MODIFIED), beginTag_(begin) {
  if (!kind || !kind->definition) return;
  elementID_ = static_cast<std::int16_t>(kind->definition->getElementID());
  elementType_ = ELEMENT_DEFINED;
  ElementAccess::hold(kind->definition);
}

inline Element* ElementAccess::createParsed(NodeKind* kind, Slice begin) {
  void* memory = NodePool::allocate(sizeof(Element));
  return ::new (memory) Element(Element::Parsed{}, kind, begin);
}

}  // namespace zeldom40
