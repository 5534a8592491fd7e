// One name and value on an element.
#pragma once

#include <cstdint>
#include <string>

#include "dom/export.h"

namespace zeldom40 {

class AttributeDefinition;
class Document;
class Element;

// An attribute with its value's source quoting. No node and not counted: it belongs to the list it stands in, which
// deletes it; one that stands in no list belongs to whoever made it.
class ZELDOM40_API Attribute {
 public:
  enum AttributeType { ATTRIBUTE_UNDECLARED = 0, ATTRIBUTE_DECLARED = 1 };

  Attribute() = default;
  // The document comes from `owner`, which may be null.
  Attribute(const std::string& name, const std::string& value, Element* owner);
  Attribute(const std::string& name, const std::string& value, Document* document);
  // Copies all but the owner.
  Attribute(const Attribute& other);
  Attribute& operator=(const Attribute&) = delete;
  ~Attribute() = default;

  // References live until the next setter.
  const std::string& getName() const { return name_; }
  // The value as written, entity references unexpanded.
  const std::string& getValue() const { return value_; }
  AttributeType getType() const { return type_; }
  void setType(AttributeType type);
  bool getSpecified() const { return specified_; }
  void setSpecified(bool specified);
  // The DTD's declaration, null for an undeclared attribute. Lives as long as the DTD.
  const AttributeDefinition* getAttributeDefinition() const { return definition_; }
  // Both take an undo record when the owner is in its document's tree, and raise UPDATE_ATTRIBUTE_MODIFIED on it. The
  // source tag stays as it is until the owner's setBeginTagDirty. A value that holds both kinds of quotes is stored
  // with `"` as "&quot;", but for those in server code, which is kept as it is.
  void setName(const char* name);
  void setName(const std::string& name);
  void setValue(const char* value);
  void setValue(const std::string& value);
  // The value with references expanded: to marked text by the DTD, or to single bytes if `plain`; as it is without a
  // document. Lives until the next call on this attribute.
  const char* getParsedValue(bool plain) const;

 private:
  friend class AttributeList;
  friend class Element;
  friend struct AttributeAccess;

  void takeValue(const std::string& value);
  void takeQuotedValue();
  void touchOwner();
  char getQuote() const { return quote_ ? quote_ : '"'; }

  Document* document_ = nullptr;
  std::string name_;
  const AttributeDefinition* definition_ = nullptr;
  std::string value_;
  mutable std::string parsedValue_;
  char quote_ = 0;  // 0: not decided
  Element* owner_ = nullptr;
  bool specified_ = false;
  bool listed_ = false;
  std::uint32_t error_ = 0;
  AttributeType type_ = ATTRIBUTE_UNDECLARED;
};

}  // namespace zeldom40
