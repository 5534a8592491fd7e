// The handle on a parsed DTD.
#include "dom/dtd/DocumentType.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "dom/dtd/DTDFrame.h"
#include "dom/dtd/DTDParser.h"

namespace zeldom40 {

namespace {
constexpr int kMostCount = std::numeric_limits<int>::max();
}

DocumentType::DocumentType() = default;

DocumentType::DocumentType(const char* name, const char* dtdText, int length) {
  setName(name);
  if (!dtdText) return;
  const std::size_t size =
      length < 0 ? std::min<std::size_t>(std::strlen(dtdText), kMostCount) : static_cast<std::size_t>(length);
  parser_ = std::make_unique<DTDParser>(dtdText, static_cast<unsigned>(size));
  parser_->parse(LexerType::LEX_EOF);
  frame_ = parser_->getDTDFrame();
}

DocumentType::~DocumentType() = default;

ElementDefinition* DocumentType::getElementDefinition(const char* name) const {
  if (!name || !frame_) return nullptr;
  return frame_->elements->find(Parser::toUpperName(name));
}

const std::vector<ElementDefinition*>& DocumentType::getElementDefinitions() const {
  return frame_ ? frame_->winners : noDefinitions_;
}

int DocumentType::getGeneralEntityCount() const { return frame_ ? static_cast<int>(frame_->generalEntityCount()) : 0; }

int DocumentType::getCharacterEntityCount() const {
  return frame_ ? static_cast<int>(frame_->charEntities().size()) : 0;
}

bool DocumentType::isCut() const { return frame_ && frame_->cuts > 0; }

}  // namespace zeldom40
