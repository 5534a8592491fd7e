// Measures a tree once and answers where its parts stand.
#include "dom/source/SourceMap.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/dtd/ElementDefinition.h"
#include "dom/html/TagReadings.h"
#include "dom/source/CharHelpers.h"
#include "dom/source/ImportMap.h"
#include "dom/source/SourceWriter.h"
#include "dom/tree/Attribute.h"
#include "dom/tree/ElementAccess.h"

namespace zeldom40 {

namespace {

using Range = SourceMap::Range;

constexpr int kJapanese = 932;
constexpr int kUtf8 = 65001;
// Characters are counted up to a mark at least so many bytes apart, and from there one by one.
constexpr std::size_t kMarkDistance = 64;
// Offsets in a page have 32 bits; a longer tag, which only a host can set, is not read.
constexpr std::size_t kLongestTag = INT32_MAX;

// The bytes that the character at `i` takes; `i` must be inside `text`.
std::size_t characterLength(std::string_view text, std::size_t i, int codepage) {
  const auto byte = [&](std::size_t at) { return at < text.size() ? static_cast<unsigned char>(text[at]) : 0u; };
  const unsigned lead = byte(i);
  if (codepage == kJapanese) {
    const unsigned trail = byte(i + 1);
    const bool leads = (lead >= 0x81 && lead <= 0x9F) || (lead >= 0xE0 && lead <= 0xFC);
    return leads && trail >= 0x40 && trail <= 0xFC && trail != 0x7F ? 2 : 1;
  }
  if (codepage == kUtf8) {
    const std::size_t length = lead >= 0xF0 && lead < 0xF8 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 1;
    if (lead >= 0xF8) return 1;
    for (std::size_t k = 1; k < length; ++k) {
      if ((byte(i + k) & 0xC0) != 0x80) return 1;
    }
    return length;
  }
  return 1;
}

// A name and a value in a tag; their offsets count from the start of the text.
struct AttributePlace {
  Range name;
  Range value;
};

int compareFolded(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (upperByte(a[i]) != upperByte(b[i])) return upperByte(a[i]) < upperByte(b[i]) ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

bool isElement(const Node* node) { return node->getNodeType() == Node::NODE_ELEMENT; }

}  // namespace

struct SourceMap::Data {
  struct Entry {
    Node* node;
    Range all;
    std::size_t contentBegin;  // where the begin tag ends
    std::size_t contentEnd;    // where the end tag begins
    std::uint32_t firstAttribute;
    std::uint32_t attributes;
    bool hasTags;
  };
  // A stretch of the text that one node owns itself. All together cover the text.
  struct Piece {
    std::size_t begin;
    std::uint32_t entry;
  };
  struct Mark {
    std::size_t offset;
    std::size_t characters;  // before the offset
  };

  void measure(Node* root);
  void enter(Node* node);
  void leave(std::uint32_t entry);
  void write(std::string_view piece, std::uint32_t entry);
  void placeAttributes(Element* element, std::string_view tag, std::size_t begin);
  void findLines();

  const Entry* find(const Node* node) const {
    const auto found = byNode.find(node);
    return found == byNode.end() ? nullptr : &entries[found->second];
  }
  const AttributePlace* find(const Element* element, std::string_view name) const;
  std::size_t charactersBefore(std::size_t offset) const;

  std::string_view at(Range range) const { return std::string_view(text).substr(range.begin, range.length()); }

  int codepage = CodeConv::GetCodepage();
  std::string text;
  std::vector<Entry> entries;  // in document order
  std::unordered_map<const Node*, std::uint32_t> byNode;
  std::optional<TagReadings> readings;  // while the tree is measured
  std::vector<Piece> pieces;
  std::vector<AttributePlace> attributes;  // those of one tag together, in order of their names
  std::vector<std::size_t> lines;          // where each begins
  std::vector<Mark> marks;                 // none where each byte is a character
  ImportMap file;
  bool hasFile = false;
};

void SourceMap::Data::measure(Node* root) {
  readings.emplace(root->getDocument());
  std::vector<std::uint32_t> open;
  for (Node* n = root; n;) {
    const auto entry = static_cast<std::uint32_t>(entries.size());
    enter(n);
    // Below a metadata pair stands nothing that is written.
    const bool generated = isElement(n) && static_cast<Element*>(n)->getMetaData();
    if (Node* child = generated ? nullptr : n->getFirstChild()) {
      open.push_back(entry);
      n = child;
      continue;
    }
    leave(entry);
    while (n != root && !n->getNextSibling()) {
      n = n->getParentNode();
      leave(open.back());
      open.pop_back();
    }
    n = n == root ? nullptr : n->getNextSibling();
  }
  readings.reset();
  byNode.reserve(entries.size());
  for (std::uint32_t i = 0; i < entries.size(); ++i) byNode.emplace(entries[i].node, i);
}

void SourceMap::Data::enter(Node* node) {
  const auto index = static_cast<std::uint32_t>(entries.size());
  const std::size_t begin = text.size();
  entries.push_back({node, {begin, begin}, begin, begin, static_cast<std::uint32_t>(attributes.size()), 0, false});
  if (isElement(node) && !static_cast<Element*>(node)->getMetaData()) {
    auto* element = static_cast<Element*>(node);
    const std::string_view tag = ElementAccess::rawBeginTag(element);
    write(tag, index);
    placeAttributes(element, tag, begin);
    entries[index].hasTags = true;
    entries[index].attributes = static_cast<std::uint32_t>(attributes.size()) - entries[index].firstAttribute;
  } else {
    std::string own;
    writeNode(node, Document::SOURCE_ALL, own);
    write(own, index);
  }
  entries[index].contentBegin = text.size();
}

void SourceMap::Data::leave(std::uint32_t entry) {
  entries[entry].contentEnd = text.size();
  if (entries[entry].hasTags) write(ElementAccess::rawEndTag(static_cast<Element*>(entries[entry].node)), entry);
  entries[entry].all.end = text.size();
}

void SourceMap::Data::write(std::string_view piece, std::uint32_t entry) {
  if (piece.empty()) return;
  pieces.push_back({text.size(), entry});
  text += piece;
}

void SourceMap::Data::placeAttributes(Element* element, std::string_view tag, std::size_t begin) {
  if (tag.empty() || tag.size() > kLongestTag || element->getNumAttributes() == 0) return;
  const std::size_t first = attributes.size();
  const auto place = [&](const AttributeBlock::Entry& entry, Slice in) {
    AttributePlace found;
    found.name.begin = begin + (entry.name.offset - in.offset);
    found.name.end = found.name.begin + entry.name.length;
    found.value = {found.name.end, found.name.end};
    if (entry.value.length > 0) {
      found.value.begin = begin + (entry.value.offset - in.offset);
      found.value.end = found.value.begin + entry.value.length;
    }
    attributes.push_back(found);
  };
  // The parser's record goes when a host asks for the attributes as objects.
  const AttributeBlock* block = ElementAccess::block(element);
  if (block && TagReadings::isSourceOfPage(element, tag)) {
    for (const AttributeBlock::Entry& entry : *block) place(entry, ElementAccess::beginSlice(element));
  } else {
    const Slice tagSlice = readings->locate(element, tag);
    for (const AttributeBlock::Entry& entry : readings->read(tagSlice)) place(entry, tagSlice);
  }
  std::stable_sort(
      attributes.begin() + static_cast<std::ptrdiff_t>(first), attributes.end(),
      [this](const AttributePlace& a, const AttributePlace& b) { return compareFolded(at(a.name), at(b.name)) < 0; });
}

// An attribute that the DTD declares has its name in any case of letters; of others each spelling is a name of its own.
const AttributePlace* SourceMap::Data::find(const Element* element, std::string_view name) const {
  const Entry* entry = element ? find(static_cast<const Node*>(element)) : nullptr;
  if (!entry || entry->attributes == 0) return nullptr;
  const AttributePlace* begin = attributes.data() + entry->firstAttribute;
  const AttributePlace* end = begin + entry->attributes;
  const AttributePlace* place = std::lower_bound(begin, end, name, [this](const AttributePlace& a, std::string_view b) {
    return compareFolded(at(a.name), b) < 0;
  });
  const ElementDefinition* definition = element->getElementDefinition();
  const bool declared = definition && definition->getAttributes() && definition->findAttribute(std::string(name));
  for (; place != end && compareFolded(at(place->name), name) == 0; ++place) {
    if (declared || at(place->name) == name) return place;
  }
  return nullptr;
}

void SourceMap::Data::findLines() {
  lines.push_back(0);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n' || (text[i] == '\r' && !isCrLf(text, i))) lines.push_back(i + 1);
  }
  if (codepage != kJapanese && codepage != kUtf8) return;
  marks.push_back({0, 0});
  std::size_t characters = 0;
  for (std::size_t i = 0; i < text.size(); i += characterLength(text, i, codepage)) {
    if (i >= marks.back().offset + kMarkDistance) marks.push_back({i, characters});
    ++characters;
  }
}

std::size_t SourceMap::Data::charactersBefore(std::size_t offset) const {
  if (marks.empty()) return offset;
  const Mark& mark = *(
      std::upper_bound(marks.begin(), marks.end(), offset, [](std::size_t o, const Mark& m) { return o < m.offset; }) -
      1);
  std::size_t characters = mark.characters;
  for (std::size_t i = mark.offset; i < offset; ++characters) {
    i += characterLength(text, i, codepage);
    if (i > offset) break;
  }
  return characters;
}

SourceMap::SourceMap(Document* document) : data_(new Data) {
  Node* root = document ? document->getDocumentElement() : nullptr;
  if (root) data_->measure(root);
  data_->findLines();
}

SourceMap::SourceMap(Document* document, const char* bytes, std::size_t length, CodeConv::Charset charset)
    : SourceMap(document) {
  const std::string_view given(bytes, bytes ? length : 0);
  if (given == data_->text) {
    data_->file = ImportMap::identity(length);
    data_->hasFile = true;
    return;
  }
  if (length > static_cast<std::size_t>(INT32_MAX)) return;
  // What is not the import of these bytes has another origin, or was edited since.
  CodeConv converter;
  const char* imported = given.empty() ? nullptr : converter.Import(bytes, static_cast<int>(length), charset);
  if (!imported || data_->text != imported) return;
  data_->file = ImportMap(given, converter.GetCharset());
  data_->hasFile = data_->file.textLength() == data_->text.size();
}

SourceMap::~SourceMap() = default;

std::size_t SourceMap::getLength() const { return data_->text.size(); }
std::size_t SourceMap::getLineCount() const { return data_->lines.size(); }

Range SourceMap::getRange(const Node* node) const {
  const Data::Entry* entry = data_->find(node);
  return entry ? entry->all : Range{};
}

Range SourceMap::getBeginTag(const Node* node) const {
  const Data::Entry* entry = data_->find(node);
  return entry && entry->hasTags ? Range{entry->all.begin, entry->contentBegin} : Range{};
}

Range SourceMap::getEndTag(const Node* node) const {
  const Data::Entry* entry = data_->find(node);
  return entry && entry->hasTags ? Range{entry->contentEnd, entry->all.end} : Range{};
}

Range SourceMap::getAttributeName(const Element* element, const char* name) const {
  const AttributePlace* place = name ? data_->find(element, name) : nullptr;
  return place ? place->name : Range{};
}

Range SourceMap::getAttributeValue(const Element* element, const char* name) const {
  const AttributePlace* place = name ? data_->find(element, name) : nullptr;
  return place ? place->value : Range{};
}

Range SourceMap::getAttributeName(const Element* element, unsigned long index) const {
  if (!data_->find(element) || index >= element->getNumAttributes()) return {};
  const AttributePlace* place = data_->find(element, element->getAttributes()->item(index)->getName());
  return place ? place->name : Range{};
}

Range SourceMap::getAttributeValue(const Element* element, unsigned long index) const {
  if (!data_->find(element) || index >= element->getNumAttributes()) return {};
  const AttributePlace* place = data_->find(element, element->getAttributes()->item(index)->getName());
  return place ? place->value : Range{};
}

std::vector<SourceMap::Repeat> SourceMap::getRepeatedAttributes(const Element* element) const {
  std::vector<Repeat> found;
  // A tag that is to be written anew states nothing twice, unless only what was edited changes.
  if (!element) return found;
  if (ElementAccess::isBeginTagDirty(element) && !DocumentAccess::keepsSource(element->getDocument())) return found;
  const std::string_view tag = ElementAccess::rawBeginTag(const_cast<Element*>(element));
  if (tag.empty() || tag.size() > kLongestTag) return found;
  TagReadings readings(element->getDocument());
  const Slice slice = readings.locate(element, tag);
  PageParser::TagDetails details;
  readings.read(slice, &details);
  const std::size_t begin = getBeginTag(element).begin;
  for (const AttributeBlock::Entry& entry : details.repeats) {
    const Slice name = entry.name;
    Repeat& repeat = found.emplace_back();
    repeat.name = name.in(readings.page());
    if (begin == NOWHERE) continue;
    repeat.range.begin = begin + (name.offset - slice.offset);
    repeat.range.end = repeat.range.begin + name.length;
  }
  return found;
}

Node* SourceMap::getNode(std::size_t offset) const {
  if (offset >= data_->text.size()) return nullptr;
  const auto behind = std::upper_bound(data_->pieces.begin(), data_->pieces.end(), offset,
                                       [](std::size_t o, const Data::Piece& piece) { return o < piece.begin; });
  return data_->entries[(behind - 1)->entry].node;
}

SourceMap::Position SourceMap::getPosition(std::size_t offset) const {
  if (offset > data_->text.size()) return {};
  const auto next = std::upper_bound(data_->lines.begin(), data_->lines.end(), offset);
  const std::size_t before = data_->charactersBefore(offset) - data_->charactersBefore(*(next - 1));
  return {static_cast<std::size_t>(next - data_->lines.begin()), before + 1};
}

std::size_t SourceMap::getOffset(Position position) const {
  if (position.line == 0 || position.line > data_->lines.size() || position.column == 0) return NOWHERE;
  const std::string_view text = data_->text;
  const std::size_t begin = data_->lines[position.line - 1];
  std::size_t end = text.size();
  if (position.line < data_->lines.size()) {
    end = data_->lines[position.line] - 1;
    if (end > begin && isCrLf(text, end - 1)) --end;
  }
  if (data_->marks.empty()) return position.column - 1 <= end - begin ? begin + (position.column - 1) : NOWHERE;
  const std::size_t first = data_->charactersBefore(begin);
  if (position.column - 1 > data_->charactersBefore(end) - first) return NOWHERE;
  const std::size_t wanted = first + (position.column - 1);
  const Data::Mark& mark = *(std::upper_bound(data_->marks.begin(), data_->marks.end(), wanted,
                                              [](std::size_t w, const Data::Mark& m) { return w < m.characters; }) -
                             1);
  std::size_t offset = mark.offset;
  for (std::size_t n = mark.characters; n < wanted; ++n) offset += characterLength(text, offset, data_->codepage);
  return offset;
}

bool SourceMap::hasFile() const { return data_->hasFile; }

std::size_t SourceMap::toFile(std::size_t offset) const {
  return data_->hasFile && offset <= data_->text.size() ? data_->file.toFile(offset) : NOWHERE;
}

Range SourceMap::toFile(Range range) const {
  if (!data_->hasFile || range.begin > range.end || range.end > data_->text.size()) return {};
  const std::size_t begin = data_->file.toFile(range.begin);
  return {begin, range.isEmpty() ? begin : data_->file.endInFile(range.end)};
}

std::size_t SourceMap::fromFile(std::size_t fileOffset) const {
  return data_->hasFile ? data_->file.toText(fileOffset) : NOWHERE;
}

}  // namespace zeldom40
