// The merge of two neighbouring texts.
#include "dom/document/TextMerge.h"

#include <cstdint>

#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

Text* mergeTexts(Document& document, Node* first, Node* second) {
  if (!first || !second || first->getNodeType() != Node::NODE_TEXT || second->getNodeType() != Node::NODE_TEXT) {
    return nullptr;
  }
  Node* parent = first->getParentNode();
  if (!parent || parent != second->getParentNode()) return nullptr;
  auto* a = static_cast<Text*>(first);
  auto* b = static_cast<Text*>(second);
  if (TextAccess::isByteOrderMark(a) || TextAccess::isByteOrderMark(b)) return nullptr;
  if (DocumentAccess::keepsSource(&document)) {
    // White space that stands in the source stays there.
    for (const Text* text : {a, b}) {
      if (text->getTextType() == Text::TEXT_FORMATTING && !TextAccess::rawData(text).empty()) return nullptr;
    }
  }
  if (b->getTextType() == Text::TEXT_FORMATTING) {
    document.deleteNodes(b);
    return a;
  }
  if (a->getTextType() == Text::TEXT_FORMATTING) {
    document.deleteNodes(a);
    return b;
  }
  if (a->getTextType() != Text::TEXT_NORMAL || b->getTextType() != Text::TEXT_NORMAL) return nullptr;

  // Both views of the cursor must be known before the offsets change their meaning.
  if (document.layoutOffset_ < 0) document.getLayoutCursor(nullptr, &document.layoutOffset_);
  const int lenA = static_cast<int>(a->getData().size());
  const int lenB = static_cast<int>(b->getData().size());
  // The index is only asked for where a place is counted in it; the question costs the length of the list.
  const int index = document.countsIn(parent) ? parent->getChildIndex(b) : -1;
  TextAccess::append(a, b);

  auto moved = [&](Node* node, std::int64_t offset, std::int64_t* to) {
    if (node == b) {
      *to = offset + lenA;
      return true;
    }
    if (node == parent && offset == index && lenB >= 1) {
      *to = lenA;
      return true;
    }
    return false;
  };
  std::int64_t to = 0;
  if (document.cursorNode_ && moved(document.cursorNode_, document.layoutOffset_, &to)) {
    document.cursorNode_ = a;
    NodeAccess::markAsPlace(a);
    document.layoutOffset_ = static_cast<int>(to);
    document.sourceOffset_ = -1;
  }
  if (document.selections_.size() == 1) {
    NodeAccess::markAsPlace(a);
    Document::_selection& s = *document.selections_.front();
    if (moved(s.startNode, s.startOffset, &to)) {
      s.startNode = a;
      s.startOffset = static_cast<unsigned>(to);
    }
    if (moved(s.endNode, s.endOffset, &to)) {
      s.endNode = a;
      s.endOffset = static_cast<unsigned>(to);
    }
  }
  document.deleteNodes(b);
  return a;
}

}  // namespace zeldom40
