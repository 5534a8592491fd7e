// Making and clearing the tables of a DTD.
#include "dom/dtd/DTDFrame.h"

#include <utility>

#include "dom/document/DOM.h"
#include "dom/dtd/DTDParser.h"
#include "dom/dtd/DocumentType.h"

namespace zeldom40 {

ParserType::_dtd_frame::_dtd_frame()
    : parameterEntities(new Hash<EntityRecord>(Hash<EntityRecord>::kFrameBuckets)),
      elements(new Hash<ElementDefinition>(Hash<ElementDefinition>::kFrameBuckets)),
      elementList(new std::vector<ElementDefinition*>),
      catalog(nullptr) {}

// A definition dies through the list alone, which has each once, and whatever its count says: the references that
// elements took on it are never given back.
ParserType::_dtd_frame::~_dtd_frame() {
  contents.reset();
  for (ElementDefinition* definition : *elementList) delete definition;
  delete elementList;
  delete elements;
  delete parameterEntities;
}

void ParserType::_dtd_frame::readEntities() {
  // Taken first, for reading them asks for the tables.
  const DeferredEntities deferred = std::exchange(deferredEntities, {});
  DTDParser::read(deferred, this);
}

void ParserType::_dtd_frame::readDeferred() {
  charEntities();
  for (const ElementDefinition* definition : *elementList) {
    definition->getContentType();
    definition->getAttributes();
  }
}

ContentTable& contentTable(ParserType::_dtd_frame& frame) {
  if (!frame.contents || frame.contents->generation() != frame.generation) {
    frame.contents = std::make_unique<ContentTable>(frame);
  }
  return *frame.contents;
}

void TableUse::dropManySets() {
  constexpr std::size_t kMostSets = 4096;
  if (!frame_->contents || frame_->contents->setCount() <= kMostSets) return;
  frame_->parserNotes.reset();
  frame_->contents.reset();
}

bool FrameEntities::find(std::string_view name, EntityText& out) const {
  const GeneralEntityRecord* entity = frame_->generalEntities().find(name);
  if (!entity) return false;
  out = EntityText{entity->text, entity->publicId, entity->systemId, entity->order};
  return true;
}

std::string_view FrameCharacterNames::nameOf(unsigned code) const {
  const CharEntityTable& names = frame_->charEntities();
  const auto found = names.find(code);
  return found == names.end() ? std::string_view() : std::string_view(found->second.name);
}

namespace {
const ParserType::_dtd_frame* frameOf(const DocumentType* type) { return type ? type->getDTDFrame() : nullptr; }
const DocumentType* currentType() { return DOM::getDOM() ? DOM::getDOM()->getDocumentType() : nullptr; }
}  // namespace

const EntityTable* FrameTables::entities(const DocumentType* type) { return entities(frameOf(type)); }
const CharacterNames* FrameTables::characterNames(const DocumentType* type) { return characterNames(frameOf(type)); }
const EntityTable* FrameTables::entities(const ParserType::_dtd_frame* frame) {
  return frame ? &frame->entityTable : nullptr;
}
const CharacterNames* FrameTables::characterNames(const ParserType::_dtd_frame* frame) {
  return frame ? &frame->characterNames : nullptr;
}
const EntityTable* FrameTables::entitiesOfCurrentDOM() { return entities(currentType()); }
const CharacterNames* FrameTables::characterNamesOfCurrentDOM() { return characterNames(currentType()); }

}  // namespace zeldom40
