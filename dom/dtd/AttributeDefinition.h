// What the DTD says about one attribute.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "dom/export.h"
#include "dom/tree/Node.h"

namespace zeldom40 {

// Its node name is spelled as in the DTD. An object without a name holds the list of an element: its children are the
// definitions, in declaration order.
class ZELDOM40_API AttributeDefinition : public Node {
 public:
  AttributeDefinition();
  ~AttributeDefinition() override;

  // For the reader of a DTD: one that is renamed later may not be found by a name any more.
  void setName(const char* name) override;
  void setName(const std::string& name) override;

  // The values of an enumeration, in upper case; null for any other type.
  const std::vector<std::string>* getAllowedTokens() const { return allowedTokens_.get(); }
  // 1 CDATA, 2 ID, 3 IDREF, 4 IDREFS, 5 ENTITY, 6 ENTITIES, 7 NMTOKEN, 8 NMTOKENS, 9 NOTATION, 10 NAME_TOKEN_GROUP,
  // 0 any other. KEPT: an enumeration says the type of the attribute before it in the same list.
  int getDeclaredType() const { return declaredType_; }
  // 1 #FIXED, 2 #REQUIRED, 3 #IMPLIED, 0 a default value.
  int getDefaultType() const { return defaultType_; }
  // Default values are not kept; always null.
  Node* getDefaultValue() const { return nullptr; }
  // The name in upper case, which attributes of pages share.
  const SharedName& upperName() const { return upperName_; }

 private:
  friend class AttributeTable;
  friend class DTDParser;

  std::uint8_t declaredType_ = 0;
  std::uint8_t defaultType_ = 0;
  std::uint16_t nameHash_ = 0;  // its low half
  AttributeDefinition* nextInBucket_ = nullptr;
  std::unique_ptr<std::vector<std::string>> allowedTokens_;
  SharedName upperName_;
};

}  // namespace zeldom40
