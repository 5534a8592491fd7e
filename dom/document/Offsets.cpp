// Offsets of a text between its plain form and its source.
#include "dom/document/Document.h"
#include "dom/source/CharHelpers.h"

namespace zeldom40 {

namespace {

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
  auto skipWhite = [&] {
    while (isWhite(plain, p)) ++p;
    while (isWhite(raw, r)) ++r;
  };
  skipWhite();
  while ((fromPlain ? p : r) < limit && p < plain.size() && r < raw.size()) {
    if (isWhite(plain, p)) {
      skipWhite();
    } else if (plain[p] == kPairMark || plain[p] == kQuadMark) {
      p += markedLength(plain, p);
      // A bare quote or bracket is marked too, but stands as itself in the source.
      if (raw[r] != '&') {
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
