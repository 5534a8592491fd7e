// What the DTD says about one element type.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "dom/dtd/ElementCatalogue.h"
#include "dom/export.h"
#include "dom/tree/Node.h"

namespace zeldom40 {

class AttributeDefinition;
class ModelGroup;
class ModelWalk;
struct AttributeListHolder;
struct ContentQuestion;
struct DeferredContent;
struct DeferredList;

// Its node name is spelled as in the DTD. Owned by the tables of the DTD parser; elements of pages take references that
// nobody gives back.
class ZELDOM40_API ElementDefinition : public Node {
 public:
  enum Omission { OMIT_NONE = 1, OMIT_END = 2, OMIT_START = 3, OMIT_BOTH = 4 };
  enum ContentType { CONTENT_EMPTY = 1, CONTENT_ANY = 2, CONTENT_TEXT = 3, CONTENT_ELEMENTS = 4, CONTENT_CDATA = 5 };

  ElementDefinition();
  ~ElementDefinition() override;

  void setName(const char* name) override;
  void setName(const std::string& name) override;

  // ID_UNKNOWN for an element that the catalogue does not know.
  HTML40ElementID getElementID() const { return elementID_; }
  // GROUP_* bits.
  unsigned long getGroup() const { return group_; }
  // The JSP generation: 1 the old tags, 2 the jsp: and qdx: tags, 0 all others.
  unsigned long getFlags() const { return flags_; }
  Omission getOmission() const { return omission_; }
  ContentType getContentType() const {
    readContent();
    return contentType_;
  }
  bool isStartOmittable() const { return omission_ == OMIT_START || omission_ == OMIT_BOTH; }
  bool isEndOmittable() const override { return omission_ == OMIT_END || omission_ == OMIT_BOTH; }
  bool isEmptyTag() const override { return getContentType() == CONTENT_EMPTY; }

  // Whether `node` may stand under this element by the content model, directly or through elements whose start tag may
  // be omitted. Order and number of children do not count; the first fit in the order of the model wins.
  // `found` receives the model's token that fits, or null where the answer needs none. `path`, if given, is appended
  // the groups and tokens from the outermost to that token; on a no it is as before.
  bool canContain(Node* node, Node** found, std::vector<Node*>* path) override;
  // Whether the inclusions name `node`.
  bool canInclude(Node* node) const { return getInclusions() && includes(node); }
  // Whether the exclusions leave `node` alone.
  bool canBeAncestorOf(Node* node) const { return !getExclusions() || !excludes(node); }

  // The definition of an attribute, in any case of letters; null if there is none. Owned by the DTD.
  AttributeDefinition* getAttributeDefinition(const char* name) const;
  // The same for an upper-case name.
  AttributeDefinition* findAttribute(std::string_view upperName) const;
  // True if the name, which must be upper case, is declared, or if the element has no attribute list at all. Otherwise
  // false, and `*errors`, if given, gets ERR_ATTR_INVALID_NAME. The value is not examined.
  bool checkAttributeValidity(const char* name, const char* value, unsigned long* errors) const;
  // The node whose children are the attribute definitions; null without a list.
  const AttributeDefinition* getAttributes() const;

  // The content as a declaration would say it, such as "(HEAD, (FRAMESET | BODY))"; for tools.
  std::string getContentText() const;

  // The name in upper case, which elements of pages share.
  const SharedName& upperName() const { return upperName_; }
  // The place (0-based) among the definitions of the DTD; -1 for one that an earlier declaration of its name keeps out.
  int ordinal() const { return ordinal_; }
  // The place of the upper-case name in the DTD's table of names.
  int nameId() const { return nameId_; }
  // The content model and its exceptions; null where there are none.
  const ModelGroup* getModel() const {
    readContent();
    return model_;
  }
  const ModelGroup* getInclusions() const {
    readContent();
    return inclusions_;
  }
  const ModelGroup* getExclusions() const {
    readContent();
    return exclusions_;
  }

 private:
  friend class DTDParser;
  friend class ModelWalk;

  // What was put off when the element was declared.
  void readContent() const {
    if (deferredContent_) readDeferredContent();
  }
  void readDeferredContent() const;
  const AttributeListHolder* attributes() const {
    if (deferredList_) readDeferredList();
    return attributes_;
  }
  void readDeferredList() const;
  bool includes(Node* node) const;
  bool excludes(Node* node) const;

  Omission omission_ = OMIT_NONE;
  ContentType contentType_ = CONTENT_ANY;
  HTML40ElementID elementID_ = ID_UNKNOWN;
  int ordinal_ = -1;
  int nameId_ = -1;
  // Marks of a walk that is going on; see ModelWalk.
  mutable bool walked_ = false;
  mutable const ElementDefinition* nextMarked_ = nullptr;
  unsigned long group_ = 0;
  unsigned long flags_ = 0;
  Hash<ElementDefinition>* elements_ = nullptr;  // the table that a walk goes on through
  ModelGroup* model_ = nullptr;
  ModelGroup* inclusions_ = nullptr;
  ModelGroup* exclusions_ = nullptr;
  mutable const AttributeListHolder* attributes_ = nullptr;  // shared by the elements of one list
  // Where the content and the attributes stand that nobody has asked for yet; null once they are read.
  const DeferredContent* deferredContent_ = nullptr;
  mutable DeferredList* deferredList_ = nullptr;
  SharedName upperName_;
};

}  // namespace zeldom40
