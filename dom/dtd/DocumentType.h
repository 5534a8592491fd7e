// The handle on a parsed DTD.
#pragma once

#include <memory>
#include <vector>

#include "dom/dtd/ParserType.h"
#include "dom/export.h"
#include "dom/tree/Node.h"

namespace zeldom40 {

class DTDParser;
class ElementDefinition;

// Its node name is the public identifier. Documents and their nodes refer to its definitions, so it must outlive them.
class ZELDOM40_API DocumentType : public Node {
 public:
  // Without a DTD: knows no element.
  DocumentType();
  // Parses `length` bytes of `dtdText` (negative: up to the NUL); a null text leaves it without a DTD.
  DocumentType(const char* name, const char* dtdText, int length);
  ~DocumentType() override;

  // The definition of an element, in any case of letters; null if there is none. Owned by the DTD. A declared name with
  // a NUL inside is in the list below but cannot be asked for here.
  ElementDefinition* getElementDefinition(const char* name) const;
  // One definition for each name, in the order of their first declarations. The list lives as long as this handle.
  const std::vector<ElementDefinition*>& getElementDefinitions() const;
  // The number of general entities, and of characters that have a name among them.
  int getGeneralEntityCount() const;
  int getCharacterEntityCount() const;
  // Whether something that was declared, by the DTD or by a page since, is not known: a bound on what pages may declare
  // or on how deep and long a DTD may be was reached, or it stands behind a reference to an undeclared parameter
  // entity. It stays so. The declaration of a page that is concerned bears ERR_PI_SUBSET_CUT.
  bool isCut() const;

  // The tables of the DTD; borrowed when they were set from outside.
  ParserType::_dtd_frame* getDTDFrame() const { return frame_; }
  void setDTDFrame(ParserType::_dtd_frame* frame) { frame_ = frame; }

 private:
  ParserType::_dtd_frame* frame_ = nullptr;
  std::unique_ptr<DTDParser> parser_;  // null where someone else owns the tables
  std::vector<ElementDefinition*> noDefinitions_;
};

}  // namespace zeldom40
