// The layout of new and changed nodes.
#include "dom/document/NodeLayout.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "dom/document/DOM.h"
#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/document/TreeWalker.h"
#include "dom/source/CharHelpers.h"
#include "dom/source/DocumentStyle.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/PageBuffer.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

namespace {

constexpr unsigned long kChanged = Node::UPDATE_CONTENT_MODIFIED | Node::UPDATE_CREATED | Node::UPDATE_ADDED;
constexpr unsigned long kNew = Node::UPDATE_CREATED | Node::UPDATE_ADDED;
constexpr unsigned long kBreakBefore = GROUP_BLOCK | GROUP_STRUCTURE;
constexpr unsigned long kBreakAfter = GROUP_BLOCK | GROUP_STRUCTURE | GROUP_BREAK;

// CHOICE: an indentation is as wide as this at the most. Without a bound a page of nested lists would grow with the
// square of its depth.
constexpr int kMostIndent = 160;

Text* asText(Node* node) { return node && node->getNodeType() == Node::NODE_TEXT ? static_cast<Text*>(node) : nullptr; }

bool isVisibleElement(const Node* node, unsigned long groups) {
  if (!node || node->getNodeType() != Node::NODE_ELEMENT) return false;
  const auto* element = static_cast<const Element*>(node);
  return !element->isHidden() && (element->getElementGroup() & groups);
}

// Whether the white space at an end of a source breaks the line.
bool breaksLine(std::string_view raw, bool atStart) {
  const std::size_t content = atStart ? raw.find_first_not_of(" \t\r\n") : raw.find_last_not_of(" \t\r\n");
  std::string_view space = raw;
  if (content != std::string_view::npos) space = atStart ? raw.substr(0, content) : raw.substr(content + 1);
  return space.find_first_of("\r\n") != std::string_view::npos;
}

// Whether the source around `parent` has bare line feeds.
bool hasLineFeeds(const Node* parent) {
  // CHOICE: so far and no further; what stands deeper in new nodes, or behind such a first line, gets CR LF.
  constexpr int kLevels = 32;
  constexpr std::size_t kLine = 16 << 10;
  for (int i = 0; parent && i < kLevels; ++i, parent = parent->getParentNode()) {
    if (parent->getNodeType() != Node::NODE_ELEMENT) break;
    const PageRef& page = ElementAccess::page(static_cast<const Element*>(parent));
    if (!page) continue;
    const std::string_view text = page.get()->text().substr(0, kLine);
    const std::size_t line = text.find('\n');
    return line != std::string_view::npos && (line == 0 || text[line - 1] != '\r');
  }
  return false;
}

// Formats nodes that share a parent. Under Rewriting::KEEP only what is new is laid out: other texts get a line break
// at the end that a new element needs it, and nothing else.
class Layout {
 public:
  Layout(Document& document, Node* node, const TreeWalker& walk)
      : document_(document),
        style_(*document.getDOM()->getDocumentStyle()),
        parent_(node->getParentNode()),
        keeps_(DocumentAccess::keepsSource(&document)) {
    depth_ = walk.lists();
    preformatted_ = walk.preformatted() > 0;
  }

  bool formatElement(Element* element, unsigned long flags) {
    if (!(flags & (keeps_ ? kNew : kChanged))) return false;
    Node* before = NodeAccess::childBefore(element);
    Node* behind = NodeAccess::childAfter(element);
    const unsigned long group = element->getElementGroup();
    const bool visible = !element->isHidden();
    const bool breaksBefore = visible && (group & kBreakBefore);
    const bool breaksAfter = visible && (group & kBreakAfter);
    bool changed = false;
    if (breaksBefore) changed |= breakBefore(element, before);
    if (breaksAfter) changed |= breakBehind(element, behind);
    if (!breaksBefore && !breaksAfter) {
      if (isVisibleElement(before, kBreakAfter)) changed |= breakBefore(element, before);
      if (isVisibleElement(behind, kBreakBefore)) changed |= breakBehind(element, behind);
    }
    if ((flags & Node::UPDATE_CREATED) && !keeps_) element->setBeginTagDirty();
    return changed;
  }

  bool formatOwnText(Text* text, unsigned long flags) {
    if (TextAccess::isByteOrderMark(text)) return false;
    bool before = false;
    bool behind = false;
    if (keeps_ && !(flags & kNew)) return false;
    if (flags & kChanged) {
      before = isVisibleElement(NodeAccess::childBefore(text), kBreakAfter);
      behind = isVisibleElement(NodeAccess::childAfter(text), kBreakBefore);
      if ((flags & Node::UPDATE_CREATED) && !keeps_) TextAccess::setRawDirty(text);
    }
    return formatText(text, before, behind);
  }

 private:
  bool breakBefore(Element* element, Node* before) {
    bool changed = false;
    Text* text = asText(before);
    if (!text) {
      text = makeText();
      parent_->insertBefore(text, element);
      document_.adjustCursorOnInsert(text);
      changed = true;
    }
    return formatText(text, /*breakBefore=*/false, /*breakAfter=*/true) || changed;
  }

  bool breakBehind(Element* element, Node* behind) {
    bool changed = false;
    Text* text = asText(behind);
    if (!text) {
      text = makeText();
      parent_->insertAfter(text, element);
      document_.adjustCursorOnInsert(text);
      changed = true;
    }
    // A text that changed itself is formatted when the walk comes to it.
    if (text->getUpdateFlag() & (keeps_ ? kNew : kChanged)) return changed;
    return formatText(text, /*breakBefore=*/true, /*breakAfter=*/false) || changed;
  }

  Text* makeText() {
    Text* text = document_.createTextNode(nullptr);
    text->setTextType(Text::TEXT_FORMATTING);
    return text;
  }

  bool formatText(Text* text, bool breakBefore, bool breakAfter) {
    if (text->getTextType() == Text::TEXT_LITERAL || preformatted_) return false;
    if (keeps_ && (hasSource(text) || !(text->getUpdateFlag() & Node::UPDATE_CREATED))) {
      return addBreaks(text, breakBefore, breakAfter);
    }
    const int indent = indentOf(depth_);
    std::string copy(TextAccess::rawData(text));
    bool changed = wrapLines(copy, style_.GetColumnLimit(), indent) > 0;
    if (changed && lineEnd() == "\n") std::erase(copy, '\r');
    if (!breakBefore && !breakAfter) {
      if (changed) setRaw(text, std::move(copy));
      return changed;
    }
    trimRaw(copy, breakBefore, breakAfter);
    const bool wasEmpty = copy.empty();
    if (breakBefore && !wasEmpty) copy.insert(0, lineBreak(indent));
    if (breakAfter || (breakBefore && wasEmpty)) copy += lineBreak(indentBehind(text));
    setRaw(text, std::move(copy));
    return true;
  }

  static bool hasSource(const Text* text) {
    return TextAccess::isSourceOfPage(text) && TextAccess::slice(text).length > 0;
  }

  // Takes nothing away.
  bool addBreaks(Text* text, bool breakBefore, bool breakAfter) {
    const std::string_view raw = TextAccess::rawData(text);
    const bool atStart = breakBefore && !breaksLine(raw, /*atStart=*/true);
    const bool atEnd = breakAfter && !breaksLine(raw, /*atStart=*/false);
    if (!atStart && !atEnd) return false;
    std::string copy(raw);
    if (copy.empty()) {
      copy = lineBreak(indentBehind(text));
      setRaw(text, std::move(copy));
      return true;
    }
    if (atStart) copy.insert(0, lineBreak(indentOf(depth_)));
    if (atEnd) copy += lineBreak(indentBehind(text));
    setRaw(text, std::move(copy));
    return true;
  }

  // The closing tag of a list stands one level out.
  int indentBehind(const Text* text) const {
    const bool closing = parent_->getNodeType() == Node::NODE_ELEMENT &&
                         (static_cast<Element*>(parent_)->getElementGroup() & GROUP_LIST) &&
                         !NodeAccess::childAfter(text);
    return closing ? std::max(indentOf(depth_) - std::max(style_.GetIndent(), 0), 0) : indentOf(depth_);
  }

  std::string_view lineEnd() {
    if (lineEnd_.empty()) lineEnd_ = keeps_ && hasLineFeeds(parent_) ? "\n" : "\r\n";
    return lineEnd_;
  }
  std::string lineBreak(int indent) {
    std::string text(lineEnd());
    text.append(static_cast<std::size_t>(indent), ' ');
    return text;
  }

  void setRaw(Text* text, std::string raw) {
    DocumentAccess::keepCursor(&document_, text);
    TextAccess::setRaw(text, std::move(raw));
  }

  int indentOf(int depth) const {
    const std::int64_t wide = std::int64_t{std::max(style_.GetIndent(), 0)} * depth;
    return static_cast<int>(std::min<std::int64_t>(wide, kMostIndent));
  }

  static void trimRaw(std::string& raw, bool left, bool right) {
    std::size_t from = 0;
    std::size_t to = raw.size();
    while (left && from < to && isBlankByte(raw[from])) ++from;
    while (right && to > from && isBlankByte(raw[to - 1])) --to;
    raw = raw.substr(from, to - from);
  }

  Document& document_;
  const DocumentStyle& style_;
  Node* parent_;
  bool keeps_;
  std::string_view lineEnd_;  // empty: not asked yet
  int depth_ = 0;
  bool preformatted_ = false;
};

}  // namespace

bool formatNode(Document& document, Node* node, const TreeWalker& walk) {
  if (!node->getParentNode()) return false;
  const unsigned long flags = node->getUpdateFlag();
  Layout layout(document, node, walk);
  if (node->getNodeType() == Node::NODE_ELEMENT) return layout.formatElement(static_cast<Element*>(node), flags);
  if (node->getNodeType() == Node::NODE_TEXT) return layout.formatOwnText(static_cast<Text*>(node), flags);
  return false;
}

}  // namespace zeldom40
