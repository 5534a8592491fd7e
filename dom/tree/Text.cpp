// The two forms of a text and the edits in layout offsets.
#include "dom/tree/Text.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "dom/document/DOMAccess.h"
#include "dom/document/DocumentAccess.h"
#include "dom/dtd/DocumentType.h"
#include "dom/dtd/FrameTables.h"
#include "dom/source/CharHelpers.h"
#include "dom/source/CodeConv.h"
#include "dom/source/MarkedText.h"
#include "dom/source/TextSource.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

namespace {

const std::string kEmpty;
constexpr std::string_view kNoBreak("\x1b\xa0", 2);
constexpr std::string_view kSectionStart = "<![CDATA[";
constexpr std::string_view kSectionEnd = "]]>";

// A section cannot hold its own end: each one is split over two sections. `start` and `end` are the section's own.
std::string asCDATASection(std::string_view data, std::string_view start = kSectionStart,
                           std::string_view behind = kSectionEnd) {
  std::string section(start);
  for (std::size_t at = 0;;) {
    const std::size_t end = data.find(kSectionEnd, at);
    if (end == std::string_view::npos) {
      section += data.substr(at);
      break;
    }
    section += data.substr(at, end + 2 - at);
    section += kSectionEnd;
    section += kSectionStart;
    at = end + 2;
  }
  section += behind;
  return section;
}

// The same for one that has the source `raw`: the word in its case, and no end where it has none.
std::string likeCDATASection(std::string_view data, std::string_view raw) {
  const std::string_view start = raw.substr(0, kSectionStart.size());
  if (!equalsFolded(start, kSectionStart)) return asCDATASection(data);
  return asCDATASection(data, start, raw.ends_with(kSectionEnd) ? kSectionEnd : std::string_view());
}

// Whether the last unit of `text` is a white byte; the last byte of a marked unit may look like one.
bool endsInWhite(std::string_view text) {
  std::size_t last = 0;
  for (std::size_t i = 0; i < text.size(); i += markedLength(text, i)) last = i;
  return isWhite(text, last);
}

// The first byte that is no white space.
std::size_t firstContent(std::string_view raw) {
  std::size_t i = 0;
  while (i < raw.size() && isSpaceByte(raw[i])) ++i;
  return i;
}

// Whether the last that shows of a page's text is an entity that stands for white space or ends in it. Only a page may
// declare such; those of the built-in DTD are all characters.
bool endsInWhiteEntity(std::string_view raw, const PageBuffer& page, std::uint32_t offset) {
  std::size_t end = raw.size();
  while (end > 0 && isSpaceByte(raw[end - 1])) --end;
  if (end > 0 && raw[end - 1] == ';') --end;
  std::size_t name = end;
  while (name > 0 && raw[name - 1] != ';' && !isNameDelimiter(raw[name - 1])) --name;
  if (name == end || name == 0 || raw[name - 1] != '&') return false;
  EntityText entity;
  if (!page.entitiesAt(offset).find(raw.substr(name, end - name), entity)) return false;
  return !entity.text.empty() && isBlankByte(entity.text.back());
}

std::size_t clampOffset(int value) { return value < 0 ? 0 : static_cast<std::size_t>(value); }

}  // namespace

// --- life ------------------------------------------------------------------------------------------------------------

Text::Text(Document* document) : Node(NODE_TEXT, document) {
  NodeAccess::setName(this, DOMAccess::textName());
  Node::setUpdateFlag(UPDATE_CREATED);
}

Text::Text(const std::string& data, const std::string& rawData, Document* document) : Text(document) {
  TextStrings& s = strings();
  s.data = data;
  s.raw = rawData;
  s.hasData = s.hasRaw = s.rawOwn = true;
}

inline Text::Text(Parsed, NodeKind* kind, Slice raw) : Node(Parsed{}, NODE_TEXT, kind, UPDATE_CREATED) {
  leaf().raw = raw;
}

Text::Text(const Text& other)
    : Node(other),
      textType_(other.textType_),
      rawDirty_(other.rawDirty_),
      derived_(other.derived_),
      assembled_(other.assembled_),
      dropLeading_(other.dropLeading_),
      preformatted_(other.preformatted_),
      trimmed_(other.trimmed_) {
  leaf().raw = other.leaf().raw;
  if (other.leaf().strings && (!derived_ || other.leaf().strings->rawOwn)) {
    // What only caches the slices is made again on demand.
    TextStrings& s = strings();
    if (!derived_) {
      s.data = other.leaf().strings->data;
      s.hasData = other.leaf().strings->hasData;
    }
    if (other.leaf().strings->rawOwn) {
      s.raw = other.leaf().strings->raw;
      s.hasRaw = s.rawOwn = true;
    }
  }
  Node::setUpdateFlag(UPDATE_CREATED);
}

Text::~Text() = default;

Node* Text::cloneSelf() const { return new Text(*this); }

Text* TextAccess::createLiteral(NodeKind* kind, Slice raw) {
  auto* text = new Text(Text::Parsed{}, kind, raw);
  text->derived_ = true;
  text->textType_ = Text::TEXT_LITERAL;
  return text;
}

Text* TextAccess::createPlain(NodeKind* kind, Slice raw, std::string data) {
  auto* text = new Text(Text::Parsed{}, kind, raw);
  text->strings().data = std::move(data);
  text->strings().hasData = true;
  return text;
}

void TextAccess::append(Text* text, const Text* other) {
  const bool isDirty = text->rawDirty_ || other->rawDirty_;
  text->editData() += other->getData();
  joinSource(text->ownRaw(), other->sourceView(), text->references());
  text->rawDirty_ = isDirty;
  text->setUpdateFlag(Node::UPDATE_CONTENT_MODIFIED);
}

unsigned TextAccess::flags(const Text* text) {
  return text->textType_ | (text->assembled_ ? 4u : 0u) | (text->dropLeading_ ? 8u : 0u) |
         (text->preformatted_ ? 16u : 0u) | (text->trimmed_ ? 32u : 0u) | (text->rawDirty_ ? 64u : 0u) |
         (text->derived_ ? 128u : 0u);
}

Text* TextAccess::createSaved(Document* document, const SharedName& name, const PageRef& page, Slice raw,
                              unsigned flags) {
  auto* text = new Text(Text::Parsed{}, NodeKind::find(document, page, name, nullptr), raw);
  text->textType_ = flags & 3;
  text->assembled_ = (flags & 4) != 0;
  text->dropLeading_ = (flags & 8) != 0;
  text->preformatted_ = (flags & 16) != 0;
  text->trimmed_ = (flags & 32) != 0;
  text->rawDirty_ = (flags & 64) != 0;
  text->derived_ = (flags & 128) != 0;
  return text;
}

void TextAccess::setOwn(Text* text, const std::string_view* data, const std::string_view* raw) {
  TextStrings& s = text->strings();
  if (data) s.data = *data;
  if (raw) s.raw = *raw;
  s.hasData = data != nullptr;
  s.hasRaw = s.rawOwn = raw != nullptr;
}

Text* TextAccess::splitTrailingSpace(Text* text) {
  const std::string_view raw = text->rawView();
  std::size_t end = raw.size();
  while (end > 0 && isBlankByte(raw[end - 1])) --end;
  if (end == raw.size()) return nullptr;
  text->noteChange();
  const auto spaces = static_cast<std::uint32_t>(raw.size() - end);
  Text* space = nullptr;
  if (text->leaf().strings && text->leaf().strings->rawOwn) {
    TextStrings& s = text->strings();
    space = new Text(" ", s.raw.substr(end), text->getDocument());
    text->editData();
    s.raw.resize(end);
  } else {
    // A plain form that follows from the source now follows from the shorter one: what is lost is cut there as well.
    if (text->leaf().strings) text->leaf().strings->hasRaw = false;
    const Slice cut{text->leaf().raw.offset + static_cast<std::uint32_t>(end), spaces};
    space = createAssembled(NodeKind::find(text->getDocument(), text->page(), NodeAccess::sharedName(text), nullptr),
                            cut, {});
    text->leaf().raw.length = static_cast<std::uint32_t>(end);
  }
  space->setTextType(Text::TEXT_FORMATTING);
  return space;
}

bool TextAccess::trimRight(Text* text) {
  if (text->derived_ && text->assembled_ && !(text->leaf().strings && text->leaf().strings->hasData)) {
    const std::string_view raw = text->leaf().raw.in(text->page());
    if (raw.empty() || text->trimmed_ || hasEmptyData(text)) return false;
    if (!endsInWhiteEntity(raw, *text->page().get(), text->leaf().raw.offset)) {
      if (!isSpaceByte(raw.back())) return false;
      // Vertical tabs and form feeds count as white space only where runs become blanks.
      if (!text->preformatted_) {
        text->noteChange();
        text->trimmed_ = true;
        return true;
      }
    }
  }
  std::string data = text->getData();
  const std::size_t before = data.size();
  trim(data, false, true);
  if (data.size() == before) return false;
  text->setData(data, /*notify=*/false);
  return true;
}

void TextAccess::setRaw(Text* text, std::string raw) {
  // Layout sets what stands there already, at each text that a host has left update flags on.
  if (!text->derived_ && !text->rawDirty_ && text->leaf().strings && text->leaf().strings->hasData &&
      text->leaf().strings->rawOwn && text->leaf().strings->raw == raw) {
    return;
  }
  // The plain form must not follow from a source that is gone.
  text->editData();
  text->ownRaw() = std::move(raw);
  text->rawDirty_ = false;
}

// --- the two forms ---------------------------------------------------------------------------------------------------

const std::string& Text::getData() const {
  if (leaf().strings && leaf().strings->hasData) return leaf().strings->data;
  if (!derived_ || leaf().raw.length == 0) return kEmpty;
  TextStrings& s = strings();
  if (assembled_) {
    const PageBuffer::Entities entities = page().get()->entitiesAt(leaf().raw.offset);
    s.data = assemblePlainText(leaf().raw.in(page()), {dropLeading_, preformatted_}, &entities);
  } else {
    s.data = leaf().raw.in(page());
  }
  if (trimmed_) trim(s.data, false, true);
  s.hasData = true;
  return s.data;
}

// The plain form as a string of the text's own, to be changed.
std::string& Text::editData() {
  noteChange();
  getData();
  TextStrings& s = strings();
  s.hasData = true;
  derived_ = false;
  return s.data;
}

void Text::record() {
  if (getDocument()) DocumentAccess::recordChange(getDocument(), this);
}

// The source as a string of the text's own, to be changed; as it stands, also where it is to be made anew.
std::string& Text::ownRaw() {
  TextStrings& s = strings();
  if (!s.rawOwn) s.raw = leaf().raw.in(page());
  s.hasRaw = s.rawOwn = true;
  leaf().raw = {};
  return s.raw;
}

bool Text::keepsSource() const { return DocumentAccess::keepsSource(getDocument()); }

ReferenceTables Text::references() const {
  const DocumentType* type = getDocument() ? getDocument()->getDocumentTypeObject() : nullptr;
  return {FrameTables::entities(type), FrameTables::characterNames(type)};
}

// Sets the plain form and takes the source along.
void Text::changeData(std::string now) {
  editData();
  carryTo(now);
  strings().data = std::move(now);
  dataChanged();
}

// A literal text has no references: its source is made of its plain form alone.
void Text::carryTo(const std::string& now) {
  std::string& raw = ownRaw();
  if (textType_ != TEXT_LITERAL) raw = carrySource(raw, getData(), now, references());
}

// The source is made anew when asked for, once for a run of edits.
void Text::dataChanged() {
  noteChange();
  ownRaw();
  rawDirty_ = true;
  setUpdateFlag(UPDATE_CONTENT_MODIFIED);
}

void Text::setData(const char* text, bool notify) { setData(std::string(text ? text : ""), notify); }

void Text::setData(const std::string& text, bool notify) {
  if (!notify) {
    editData();
    // A source that was to be made of the former plain form will be made of this one.
    if (rawDirty_) carryTo(text);
    strings().data = text;
    return;
  }
  record();
  std::string now = text;
  if (textType_ == TEXT_NORMAL) protectMarkup(now);
  changeData(std::move(now));
}

std::string_view Text::sourceView() const {
  return leaf().strings && leaf().strings->rawOwn ? std::string_view(leaf().strings->raw) : leaf().raw.in(page());
}

void Text::writeSource() {
  noteChange();
  const std::string& data = getData();
  std::string& raw = ownRaw();
  const bool keeps = keepsSource();
  if (textType_ == TEXT_LITERAL) {
    const Node* parent = getParentNode();
    const bool isScript = parent && parent->getNodeType() == NODE_ELEMENT &&
                          (static_cast<const Element*>(parent)->getElementGroup() & GROUP_SCRIPT_DATA);
    raw = !isScript ? data : keeps ? likeCDATASection(data, raw) : asCDATASection(data);
  } else if (!keeps) {
    raw = textType_ == TEXT_NORMAL ? remakeSource(raw, data, references()) : data;
  }
  rawDirty_ = false;
}

std::string_view Text::rawView() const {
  if (rawDirty_) const_cast<Text*>(this)->writeSource();
  return sourceView();
}

const std::string& Text::getRawData() const {
  const std::string_view raw = rawView();
  TextStrings& s = strings();
  if (!s.hasRaw) {
    s.raw = raw;
    s.hasRaw = true;
  }
  return s.raw;
}

void Text::setRawData(const char* text) { setRawData(std::string(text ? text : "")); }

void Text::setRawData(const std::string& text) {
  if (textType_ != TEXT_NORMAL) {
    record();
    // The plain form stays, so it must not follow from the source any longer.
    editData();
    ownRaw() = text;
    rawDirty_ = false;
    setUpdateFlag(UPDATE_CONTENT_MODIFIED);
    return;
  }
  std::string copy = text;
  if (!isPlainText()) collapseWhite(copy, 0, -1);
  if (getDocument() && getDocument()->getDocumentTypeObject()) {
    expandReferences(copy, 0, static_cast<int>(copy.size()),
                     FrameTables::entities(getDocument()->getDocumentTypeObject()));
  }
  record();
  protectMarkup(copy);
  editData() = std::move(copy);
  // A "<" of a text means itself.
  std::string markup = {kPairMark, '<'};
  restoreReferences(markup, markup, references().names);
  std::string& raw = ownRaw();
  raw.clear();
  for (const char c : text) {
    if (c == '<') {
      raw += markup;
    } else {
      raw += c;
    }
  }
  dataChanged();
}

// --- edits -----------------------------------------------------------------------------------------------------------

int Text::insert(int offset, const char* text, bool moveCursor, SpaceMode mode) {
  if (!text || !*text) return 0;
  const std::string& now = getData();
  const std::size_t at = offset < 0 ? now.size() : static_cast<std::size_t>(offset);
  if (at > now.size()) return 0;
  std::string copy = text;
  // CHOICE: script and other literal text takes every byte as it comes; collapsing or marking would change the code.
  const bool literal = textType_ == TEXT_LITERAL;
  if (!literal && isPlainText()) {
    expandTabs(copy, columnAt(now, 0, at, 0));
  } else if (!literal) {
    const bool whiteBefore = at > 0 && endsInWhite(std::string_view(now).substr(0, at));
    const bool whiteBehind = isWhite(now, at);
    bool noBreak = false;
    if (copy.size() == 1 && isWhite(copy, 0) && mode != SPACE_NORMAL) {
      // Blanks typed in a row survive as no-break spaces next to one real blank.
      noBreak = mode == SPACE_NBSP || whiteBefore || whiteBehind;
    }
    if (noBreak) {
      copy = kNoBreak;
    } else {
      if ((whiteBefore || whiteBehind) && std::all_of(copy.begin(), copy.end(), isBlankByte)) {
        if (!whiteBehind || !moveCursor || !getDocument()) return 0;
        getDocument()->setLayoutCursor(this, static_cast<int>(at) + 1);
        return 1;
      }
      // White space at the start of the insertion joins a run that ends before it.
      std::string joined = whiteBefore ? " " + copy : copy;
      collapseWhite(joined, whiteBefore ? 1 : 0, -1);
      copy = whiteBefore ? joined.substr(1) : joined;
      if (copy.empty()) return 0;
    }
  }
  if (textType_ == TEXT_NORMAL) protectMarkup(copy);
  record();
  changeData(std::string(getData()).insert(at, copy));
  if (moveCursor && getDocument()) getDocument()->setLayoutCursor(this, static_cast<int>(at + copy.size()));
  return static_cast<int>(copy.size());
}

int Text::Delete(int offset, int count, bool moveCursor) {
  const std::size_t at = clampOffset(offset);
  if (at > getData().size()) return 0;
  record();
  changeData(std::string(getData()).erase(at, clampOffset(count)));
  if (moveCursor && getDocument()) getDocument()->setLayoutCursor(this, static_cast<int>(at));
  return count;
}

int Text::deleteChar(int offset, bool backward) {
  const std::string& now = getData();
  const std::size_t size = now.size();
  if (backward && offset == 0) return 0;
  if (!backward && (offset < 0 || static_cast<std::size_t>(offset) >= size)) return 0;
  const std::size_t at = offset < 0 ? size : std::min(static_cast<std::size_t>(offset), size);
  // Characters are only known by stepping from the start: a trail byte looks like any other.
  std::size_t start = 0;
  std::size_t length = 0;
  while (start < size) {
    length = unitLength(now, start);
    const std::size_t end = start + length;
    if (backward ? end >= at : end > at) break;
    start = end;
  }
  if (start >= size) return 0;
  record();
  changeData(std::string(getData()).erase(start, length));
  return static_cast<int>(length);
}

int Text::replace(int offset, int count, const char* text, bool moveCursor) {
  const std::size_t at = clampOffset(offset);
  if (at > getData().size()) return 0;
  std::string encoded = text ? text : "";
  if (textType_ == TEXT_NORMAL) protectMarkup(encoded);
  record();
  changeData(std::string(getData()).erase(at, clampOffset(count)).insert(at, encoded));
  if (moveCursor && getDocument()) getDocument()->setLayoutCursor(this, static_cast<int>(at + encoded.size()));
  return static_cast<int>(encoded.size());
}

int Text::splice(Element* element, int offset, int count, bool moveCursor) {
  Document* document = getDocument();
  Node* parent = getParentNode();
  // CHOICE: an element that cannot be put here, because it stands in a tree already, holds this text or is of another
  // DOM, would lose the texts.
  if (!element || !document || !parent || element->getParentNode()) return -1;
  parent->insertAfter(element, this);
  if (element->getParentNode() != parent) return -1;
  const std::string before = getData();
  const std::size_t from = std::min(clampOffset(offset), before.size());
  const std::size_t length = std::min(clampOffset(count), before.size() - from);

  auto createPart = [&](std::size_t begin, std::size_t end) {
    Text* part = document->createTextNode(nullptr);
    part->setTextType(getTextType());
    part->setData(before.substr(begin, end - begin), /*notify=*/true);
    // A cut through a unit makes other characters of its halves.
    if (getTextType() != TEXT_LITERAL && part->getData() == std::string_view(before).substr(begin, end - begin)) {
      part->ownRaw() = cutSource(sourceView(), before, begin, end, references());
    }
    // Nothing of it is new.
    if (keepsSource()) part->resetUpdateFlag(UPDATE_CREATED);
    return part;
  };
  Text* tail = createPart(from + length, before.size());
  parent->insertAfter(tail, element);
  Text* middle = nullptr;
  // KEPT: an element that cannot hold this text swallows the middle; the caller asks first.
  if (element->canContain(this, nullptr, nullptr)) {
    middle = createPart(from, from + length);
    element->insertLast(middle);
  }
  Node* cursorNode = nullptr;
  int cursorOffset = 0;
  document->getLayoutCursor(&cursorNode, &cursorOffset);
  if (from < before.size()) {
    std::string head =
        getTextType() == TEXT_LITERAL ? std::string() : cutSource(sourceView(), before, 0, from, references());
    editData().erase(from);
    if (getTextType() != TEXT_LITERAL) ownRaw() = std::move(head);
    dataChanged();
  }
  const int taken = static_cast<int>(length);
  if (moveCursor) {
    document->setLayoutCursor(middle ? middle : tail, middle ? taken : 0);
  } else if (cursorNode == this && cursorOffset > static_cast<int>(from)) {
    const int c = cursorOffset - static_cast<int>(from);
    if (c > taken) {
      document->setLayoutCursor(tail, c - taken);
    } else {
      document->setLayoutCursor(middle ? middle : tail, middle ? c : 0);
    }
  }
  return taken;
}

int Text::compact() {
  if (getData().empty()) return 0;
  Document* document = getDocument();
  Node* cursorNode = nullptr;
  int cursor = 0;
  if (document) document->getLayoutCursor(&cursorNode, &cursor);
  std::string collapsed = getData();
  int change = 0;
  if (cursorNode == this && cursor > 0) {
    change = collapseWhite(collapsed, 0, cursor);
    if (change != 0) document->setLayoutCursor(this, cursor + change);
    change += collapseWhite(collapsed, static_cast<std::size_t>(std::max(cursor + change, 0)), -1);
  } else {
    change = collapseWhite(collapsed, 0, -1);
  }
  if (collapsed == getData()) return change;
  editData();
  // Elsewhere the source has white space of its own in the place of each run.
  if (change != 0 && isPlainText()) carryTo(collapsed);
  strings().data = std::move(collapsed);
  if (change != 0) dataChanged();
  return change;
}

// --- questions -------------------------------------------------------------------------------------------------------

bool TextAccess::hasEmptyData(const Text* text) {
  if (!text->derived_ || (text->leaf().strings && text->leaf().strings->hasData)) return text->getData().empty();
  if (text->leaf().raw.length == 0) return true;
  // Only white space at an end adds nothing to a plain form.
  if (!text->assembled_ || !isAllSpace(text->leaf().raw.in(text->page()))) return false;
  return (text->dropLeading_ && !text->preformatted_) || text->trimmed_;
}

bool Text::isEmptyText(bool ignoreWhitespaceType) const {
  if (textType_ == TEXT_FORMATTING) return true;
  if (textType_ != TEXT_LITERAL && !ignoreWhitespaceType) return TextAccess::hasEmptyData(this);
  if (derived_ && assembled_ && !preformatted_ && !(leaf().strings && leaf().strings->hasData)) {
    // Every run of white space has become a blank or nothing; a page's entity may stand for one.
    const std::string_view raw = leaf().raw.in(page());
    const std::size_t content = firstContent(raw);
    if (content == raw.size() || raw[content] != '&') return content == raw.size();
  }
  const std::string& data = getData();
  return std::all_of(data.begin(), data.end(), isBlankByte);
}

bool Text::isPlainText() const {
  for (const Node* n = getParentNode(); n; n = n->getParentNode()) {
    if (n->getNodeType() == NODE_ELEMENT && (static_cast<const Element*>(n)->getElementGroup() & GROUP_PLAIN)) {
      return true;
    }
  }
  return false;
}

// --- conversions -----------------------------------------------------------------------------------------------------

namespace {

char* newCString(const std::string& text) {
  char* copy = new char[text.size() + 1];
  std::memcpy(copy, text.c_str(), text.size() + 1);
  return copy;
}

}  // namespace

char* Text::convertTextToRawData(const char* text, bool keepReferences) {
  if (!text) return nullptr;
  std::string copy = text;
  escapeMarkup(copy, keepReferences, FrameTables::entitiesOfCurrentDOM(), CodeConv::GetCodepage());
  return newCString(copy);
}

char* Text::convertRawDataToText(const char* text, bool collapse) {
  if (!text) return nullptr;
  std::string copy = text;
  if (collapse) collapseWhite(copy, 0, -1);
  unescapeMarkup(copy, FrameTables::entitiesOfCurrentDOM(), CodeConv::GetCodepage());
  return newCString(copy);
}

void Text::destroyData(char* data) { delete[] data; }

}  // namespace zeldom40
