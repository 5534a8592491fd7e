// Internal. The entities of a DTD in the form that the text helpers ask for.
#pragma once

#include <string_view>

#include "dom/dtd/ParserType.h"
#include "dom/source/MarkedText.h"

namespace zeldom40 {

class DocumentType;

class FrameEntities : public EntityTable {
 public:
  explicit FrameEntities(ParserType::_dtd_frame* frame) : frame_(frame) {}
  bool find(std::string_view name, EntityText& out) const override;

 private:
  ParserType::_dtd_frame* frame_;
};

class FrameCharacterNames : public CharacterNames {
 public:
  explicit FrameCharacterNames(ParserType::_dtd_frame* frame) : frame_(frame) {}
  std::string_view nameOf(unsigned code) const override;

 private:
  ParserType::_dtd_frame* frame_;
};

// The tables of a document type; they live as long as its DTD. Null for null and for a type without a DTD.
struct FrameTables {
  static const EntityTable* entities(const DocumentType* type);
  static const CharacterNames* characterNames(const DocumentType* type);
  static const EntityTable* entities(const ParserType::_dtd_frame* frame);
  static const CharacterNames* characterNames(const ParserType::_dtd_frame* frame);
  // Of the newest DOM; null when none lives.
  static const EntityTable* entitiesOfCurrentDOM();
  static const CharacterNames* characterNamesOfCurrentDOM();
};

}  // namespace zeldom40
