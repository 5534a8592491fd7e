// Offsets of a text between its plain form and its source.
#include "dom/document/Document.h"
#include "dom/dtd/FrameTables.h"
#include "dom/source/CharHelpers.h"
#include "dom/source/MarkedText.h"

namespace zeldom40 {

namespace {

// Whether the "&" at `at` begins a reference, and does not just stand for itself.
bool isReference(std::string_view raw, std::size_t at, const EntityTable* entities) {
  if (at + 1 < raw.size() && raw[at + 1] == '#') return parseCharRef(raw, at + 2, nullptr) != 0;
  std::size_t end = at + 1;
  while (end < raw.size() && raw[end] != ';' && !isNameDelimiter(raw[end])) ++end;
  EntityText entity;
  return entities && entities->find(raw.substr(at + 1, end - at - 1), entity);
}

const EntityTable* entitiesOf(const Text& text) {
  const Document* document = text.getDocument();
  return document ? FrameTables::entities(document->getDocumentTypeObject()) : nullptr;
}

// Walks both forms in step until the form that the offset counts in has reached it.
int convertOffset(const Text& text, int offset, bool fromPlain) {
  const std::string& plain = text.getData();
  const std::string& raw = text.getRawData();
  const std::string& from = fromPlain ? plain : raw;
  const std::string& to = fromPlain ? raw : plain;
  if (offset == 0) return 0;
  const auto limit = static_cast<std::size_t>(offset);
  if (limit >= from.size()) return static_cast<int>(to.size());
  std::size_t p = 0;
  std::size_t r = 0;
  // CHOICE: vertical tabs and form feeds count as well, for the plain form has a blank for them too.
  auto skipWhite = [&] {
    while (p < plain.size() && isSpaceByte(plain[p])) ++p;
    while (r < raw.size() && isSpaceByte(raw[r])) ++r;
  };
  skipWhite();
  while ((fromPlain ? p : r) < limit && p < plain.size() && r < raw.size()) {
    if (isSpaceByte(plain[p])) {
      skipWhite();
    } else if (plain[p] == kPairMark || plain[p] == kQuadMark) {
      const bool ampersand = p + 1 < plain.size() && plain[p + 1] == '&';
      p += markedLength(plain, p);
      // A bare quote, bracket or ampersand is marked too, but stands as itself in the source.
      if (raw[r] != '&' || (ampersand && !isReference(raw, r, entitiesOf(text)))) {
        ++r;
        continue;
      }
      std::size_t end = r + 1;
      while (end < raw.size() && raw[end] != ';' && !isNameDelimiter(raw[end])) ++end;
      if (end >= raw.size()) return static_cast<int>(to.size());
      r = raw[end] == ';' ? end + 1 : end;
    } else {
      ++p;
      ++r;
    }
  }
  return static_cast<int>(fromPlain ? r : p);
}

int convertIn(Node* node, int offset, bool fromPlain) {
  if (offset < 0 || !node || node->getNodeType() != Node::NODE_TEXT) return 0;
  const auto& text = *static_cast<const Text*>(node);
  if (text.getTextType() != Text::TEXT_NORMAL) return offset;
  return convertOffset(text, offset, fromPlain);
}

}  // namespace

int Document::convertOffsetSource2Layout(Node* node, int offset) { return convertIn(node, offset, false); }
int Document::convertOffsetLayout2Source(Node* node, int offset) { return convertIn(node, offset, true); }
int Document::convOffsetLayout2Source(Node* node, int offset) { return convertIn(node, offset, true); }

}  // namespace zeldom40
