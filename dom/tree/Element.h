// The tree's tag node.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "dom/dtd/ElementCatalogue.h"
#include "dom/export.h"
#include "dom/tree/Node.h"
#include "dom/tree/PageSlice.h"

namespace zeldom40 {

class Attribute;
class AttributeBlock;
class AttributeDefinition;
class AttributeList;
class ElementDefinition;
class MetaData;
struct ElementExtra;

// Binds a tag name to its DTD definition, holds the attributes, and keeps the exact source text of its begin and end
// tag. An edit marks a tag dirty; the next read of a dirty tag writes it anew from name and attributes. So untouched
// tags come back byte for byte.
class ZELDOM40_API Element : public Node {
 public:
  // Types 1 and 2 are a host's own, given through setElementType.
  enum ElementType { ELEMENT_UNDEFINED = 0, ELEMENT_TYPE_1 = 1, ELEMENT_TYPE_2 = 2, ELEMENT_DEFINED = 3 };

  // An element without definition, count 0. Document::createElement makes one that knows its definition.
  Element(const std::string& name, Document* document);
  Element(const char* name, Document* document);
  // A copy without children: tags, dirty marks and attributes; the metadata too if `withMetaData`.
  Element(const Element& source, bool withMetaData);
  ~Element() override;

  bool canContain(Node* child, Node** blocking, std::vector<Node*>* path) override;
  bool isEndOmittable() const override;
  // Whether the element never has content. Without a definition: true in an HTML document.
  bool isEmptyTag() const override;

  HTML40ElementID getElementID() const { return static_cast<HTML40ElementID>(elementID_); }
  void setElementID(HTML40ElementID id) {
    noteChange();
    elementID_ = static_cast<std::int16_t>(id);
  }
  ElementType getElementType() const { return static_cast<ElementType>(elementType_); }
  void setElementType(ElementType type) {
    noteChange();
    elementType_ = static_cast<std::uint8_t>(type) & 3;
  }
  // The tag name, upper case for elements of a page. Lives until setName, which is the one way to change it: many nodes
  // share one name, so there is on purpose no form of this that a host could write through.
  const std::string& getTagName() const { return getName(); }
  // The live list, made on first need; owned by the element. Null while there are no attributes.
  AttributeList* getAttributes() const;
  unsigned long getNumAttributes() const;
  // Null for a tag that the DTD does not define. Lives as long as the DTD.
  const ElementDefinition* getElementDefinition() const { return definition(); }
  bool hasEndTag() const { return endTagExists_; }
  void setEndTagExistence(bool exists) {
    noteChange();
    endTagExists_ = exists;
  }
  // Whether a script-like element stands in its element form and not as <% %>.
  bool isAlternative() const { return alternative_; }
  void setAlternative(bool on) {
    noteChange();
    alternative_ = on;
  }
  // The node whose children are the attribute definitions, null without a definition or a list.
  const Node* getAttributeDefinitions() const;
  // GROUP_* bits of the element.
  unsigned long getElementGroup() const;
  // Exact, case-sensitive look-ups; null when absent. The text lives until the attribute changes.
  const Attribute* getAttributeNode(const char* name) const;
  const char* getAttributeValue(const char* name) const;
  // Sets or replaces an attribute; a declared name is stored in upper case. `notify` marks the tag dirty and raises
  // UPDATE_ATTRIBUTE_MODIFIED. The attribute is stored in any case; returns 0 if the DTD allows it, else -1.
  int setAttribute(const char* name, const char* value, bool notify);
  int setAttribute(const std::string& name, const std::string& value, bool notify);
  // Deletes the attribute of exactly that name and marks the tag dirty. KEPT: recorded for undo also if there is none.
  void deleteAttribute(const std::string& name);
  void deleteAttribute(const char* name);
  // All nodes of that exact name, this element first. KEPT: the search goes on through the following siblings of this
  // element and their subtrees.
  NodeIterator getElementsByTagName(const std::string& name);
  // The name to show to users; a static text or the tag name.
  const char* getDisplayName() const;
  bool isHidden() const { return false; }
  void setHidden(bool) {}
  bool canHaveATV() const;

  // A changed name or attribute shows in both tags (under DOM::Rewriting::KEEP the end tag changes with the name
  // alone); setEndTagDirty concerns the end tag alone. As all edits, both make the metadata of this element and of all
  // around it stale.
  void setBeginTagDirty();
  void setEndTagDirty();
  // The source text; a dirty tag is written anew first, as DOM::getRewriting says, which raises
  // UPDATE_CONTENT_MODIFIED. Server code that stands between the attributes ends the tag: it stays last, and the tag
  // gets no ">" that it did not have. An end tag with server code is not written anew. KEPT: tags unknown to the DTD
  // and <% %> forms of an HTML document keep their text for ever. Lives until the next read or change of this tag.
  const std::string& getRawBeginTag() const;
  const std::string& getRawEndTag() const;
  // Store a text as it stands; the dirty marks stay.
  void setRawBeginTag(const std::string& text);
  void setRawEndTag(const std::string& text);
  // True for a list item that has no end tag in the source.
  bool isNoEndTag() const;
  // What the definition excludes at any depth, and what it includes there. Without one: true, and false.
  bool canBeAncestorOf(Node* node) const;
  bool canInclude(Node* node) const;
  // The code of a script-like element (null for others, and for none): from inside <% %>, or from its texts in the
  // alternative form. Lives until the next call.
  const char* getScriptData();
  // Replaces the code. In the alternative form all children go; that form needs a document.
  void setScriptData(const char* data);

  // --- dynamic content (dom/dynamic/MetaDataElement.cpp) ------------------------------------------------------------
  // Null for an element that is saved as it stands. Owned by the element.
  MetaData* getMetaData() const;
  // Takes over one reference of `md`; the present one is unlinked and released. One that belongs to another element is
  // copied, and keeps its reference. Null: none. One of another DOM, one that stands in a child list, and one whose
  // visual holds this element are not taken: nothing changes.
  void setMetaData(MetaData* md);
  // Whether the server makes the element: one of ZELX:TEXT, ZELX:LOOP and ZELX:PROPERTY, or an element that is declared
  // to have DYNAMICELEMENT and has it.
  bool isDynamicElement() const;
  // Adds or deletes the mark, and with it the metadata. KEPT: where the mark is not declared it stays without effect.
  void setDynamicElement(bool on);
  // An OBJECT that is a design-time control, or marked with DTC to become one.
  bool isDTC() const;
  // Makes an OBJECT a control. KEPT: false does nothing.
  void setDTC(bool on);
  // The ZELX:ATV element that shows this one to the author; null if there is none.
  Element* getATV() const;
  // Takes over one reference of `atv`, or drops the visual for null. False, with nothing changed, for another element,
  // for one that has a parent, that shows another element, that this one stands in, or that is of another DOM, for
  // metadata of another type, and without a document.
  bool setATV(Element* atv);

 private:
  friend struct ElementAccess;
  friend struct ElementExtra;

  explicit Element(Document* document);
  Element(Parsed, NodeKind* kind, Slice begin);
  void releaseOwned(bool held) override;
  Node* cloneSelf() const override;
  void noteUpdate(unsigned long flag) override;

  ElementExtra& extra();
  std::string_view beginView() const;
  std::string_view endView() const;
  void refreshBeginTag();
  void refreshTag();
  void refreshEndTag();
  void checkContentChange();
  bool rebuildsAlways() const;
  std::string writtenName() const;
  bool keepsTags() const;
  void dirtyTags();
  void storeBeginTag(std::string tag);
  std::string rebuildBeginTag() const;
  std::string buildBeginTag() const;
  std::string buildEndTag() const;
  bool isHtmlOrLost() const;
  void markNestedControl(bool nested);
  union Attributes {
    AttributeBlock* block;
    AttributeList* list;
  };
  AttributeList& list();
  ElementDefinition* definition() const { return kind() ? kind()->definition : nullptr; }
  // Null while there is none.
  ElementExtra* extraOrNull() const { return hasExtra_ ? held_.extra : nullptr; }
  inline Attributes& attributes();
  inline const Attributes& attributes() const;

  // Fit into the base's last bytes.
  std::int16_t elementID_ = 95;
  std::uint8_t elementType_ : 2 = 0;
  bool endTagExists_ : 1 = false;
  bool beginTagDirty_ : 1 = false;
  bool endTagDirty_ : 1 = false;
  bool alternative_ : 1 = false;
  bool contentAtTag_ : 1 = false;  // whether there were children when the raw tags were stored
  bool attributesInBlock_ : 1 = false;
  bool hasExtra_ : 1 = false;
  Slice beginTag_;  // unless the extra holds a text of its own
  Slice endTag_;
  // An element that needs it keeps its attributes in the extra: own texts, script cache, metadata are rare.
  union {
    Attributes attributes;
    ElementExtra* extra;
  } held_ = {{nullptr}};
};

}  // namespace zeldom40
