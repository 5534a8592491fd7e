// Reads a tree into a row of nodes with places, and finds what stands between them that is not HTML.
#include "dom/html/RepairPage.h"

#include <algorithm>
#include <iterator>

#include "dom/document/Document.h"
#include "dom/dtd/AttributeDefinition.h"
#include "dom/dtd/ElementDefinition.h"
#include "dom/source/CharHelpers.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

using Range = SourceMap::Range;

// Elements that say how the text in them looks or what it means, wherever it stands. Their names in order.
constexpr std::string_view kCarriable[] = {"A",     "ABBR", "ACRONYM", "B",      "BIG", "CITE", "CODE",
                                           "DFN",   "EM",   "FONT",    "I",      "KBD", "S",    "SAMP",
                                           "SMALL", "SPAN", "STRIKE",  "STRONG", "TT",  "U",    "VAR"};

constexpr std::string_view kVerbatim[] = {"PRE", "TEXTAREA", "SCRIPT", "STYLE", "XMP", "LISTING", "TITLE"};

// Elements that tell a page of HTML 5 where no document type does.
constexpr std::string_view kNewer[] = {"SECTION", "ARTICLE", "NAV",   "HEADER", "FOOTER", "MAIN",
                                       "ASIDE",   "FIGURE",  "VIDEO", "AUDIO",  "CANVAS", "TEMPLATE"};

// Elements of newer pages that hold others; the DTD, which does not know them, sees their tags one by one.
constexpr std::string_view kContainers[] = {"FIGCAPTION", "DETAILS", "SUMMARY", "DIALOG", "HGROUP",
                                            "SVG",        "MATH",    "PICTURE", "SLOT",   "SEARCH"};

bool isNewContainer(std::string_view name) {
  return std::find(std::begin(kNewer), std::end(kNewer), name) != std::end(kNewer) ||
         std::find(std::begin(kContainers), std::end(kContainers), name) != std::end(kContainers) ||
         name.find('-') != std::string_view::npos;
}

bool hasWord(std::string_view text, std::string_view upper) {
  const auto same = [](char a, char b) { return upperByte(a) == b; };
  return std::search(text.begin(), text.end(), upper.begin(), upper.end(), same) != text.end();
}

bool isCarriableName(std::string_view name) {
  return std::find(std::begin(kCarriable), std::end(kCarriable), name) != std::end(kCarriable);
}

bool isNameByte(char c) {
  return isLetterByte(c) || (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '.' || c == ':';
}

bool startsFolded(std::string_view text, std::string_view word) {
  return text.size() >= word.size() && std::equal(word.begin(), word.end(), text.begin(),
                                                  [](char a, char b) { return upperByte(a) == upperByte(b); });
}

// An instruction that includes a file does so in its first bytes.
constexpr std::size_t kLongestInclude = 512;

// Constructs that bring another file into the page, behind their "<" or "{"; the prefix of a tag library is passed
// over where the entry begins with a colon.
constexpr std::string_view kIncludes[] = {
    "!--#include", "jsp:include", "jsp:directive.include", "tiles:", "c:import", "decorator:", "sitemesh:", ":include",
    ":insert",     ":decorate",   ":composition"};

bool isOpener(char c) { return c == '<' || c == '$' || c == '#' || c == '{' || c == '[' || c == '@'; }

// Words that begin a line of code in engines which mark it by a `#` or `@`; most take an argument in parentheses.
constexpr std::string_view kDirectives[] = {"if",    "foreach", "for",     "parse", "include",
                                            "macro", "section", "extends", "yield", "while"};
constexpr std::string_view kPlainDirectives[] = {"else", "end"};

bool isDirective(std::string_view text) {
  const auto follows = [&](std::string_view word) {
    return text.substr(1, word.size()) == word &&
           (text.size() == word.size() + 1 || !isNameByte(text[word.size() + 1]));
  };
  const auto takesArgument = [&](std::string_view word) {
    std::size_t at = word.size() + 1;
    while (at < text.size() && at < word.size() + 4 && text[at] == ' ') ++at;
    return follows(word) && at < text.size() && text[at] == '(';
  };
  return std::any_of(std::begin(kDirectives), std::end(kDirectives), takesArgument) ||
         std::any_of(std::begin(kPlainDirectives), std::end(kPlainDirectives), follows);
}

bool opensServerCode(std::string_view text, bool inScript) {
  const char next = text.size() > 1 ? text[1] : '\0';
  switch (text[0]) {
    case '$':
      return next == '{' && !inScript;
    case '#':
    case '@':
      return !inScript && ((next == '{' && text[0] == '#') || isDirective(text));
    case '{':
      return !inScript && (next == '{' || next == '%');
    case '[':
      return !inScript && next == '%';
    default:
      break;
  }
  if (next == '%') return true;
  if (next == '?') return !startsFolded(text, "<?xml ");
  if (next == '!') return startsFolded(text, "<!--#") || startsFolded(text, "<!--[if") || startsFolded(text, "<![");
  const std::size_t name = next == '/' ? 2 : 1;
  if (name < text.size() && (text[name] == '#' || text[name] == '@')) return true;
  std::size_t at = name;
  while (at < text.size() && isNameByte(text[at]) && text[at] != ':') ++at;
  return at > name && isLetterByte(text[name]) && at < text.size() && text[at] == ':';
}

bool isInclude(std::string_view text) {
  if (text.substr(0, 3) == "<%@") {
    std::size_t i = 3;
    while (i < text.size() && isSpaceByte(text[i])) ++i;
    return startsFolded(text.substr(i), "include");
  }
  if (text.substr(0, 2) == "{%" || text.substr(0, 2) == "{{") {
    std::size_t i = 2;
    while (i < text.size() && (isSpaceByte(text[i]) || text[i] == '-')) ++i;
    const std::string_view rest = text.substr(i);
    return startsFolded(rest, "include") || startsFolded(rest, "extends") || startsFolded(rest, "block") ||
           rest.substr(0, 1) == ">";
  }
  if (text[0] == '#') return isDirective(text) && (text.substr(1, 5) == "parse" || text.substr(1, 7) == "include");
  if (text.substr(0, 2) == "[%")
    return startsFolded(text.substr(2, 16), " include") || startsFolded(text.substr(2, 16), " wrapper");
  if (text.substr(0, 2) == "<?") {
    const std::string_view code = text.substr(0, std::min(kLongestInclude, text.substr(0, kLongestInclude).find("?>")));
    return code.find("include") != std::string_view::npos || code.find("require") != std::string_view::npos;
  }
  const std::string_view name = text.substr(1);
  std::size_t colon = 0;
  while (colon < name.size() && colon < 40 && isNameByte(name[colon]) && name[colon] != ':') ++colon;
  return std::any_of(std::begin(kIncludes), std::end(kIncludes), [&](std::string_view entry) {
    return startsFolded(entry.front() == ':' ? name.substr(colon) : name, entry);
  });
}

}  // namespace

RepairPage::RepairPage(Document& document, bool guardWide) {
  readTree(document);
  findServerCode(guardWide);
  findVerbatim();
  judgeWhole();
}

void RepairPage::readTree(Document& document) {
  Node* root = document.getDocumentElement();
  if (!root) return;
  const SourceMap map(&document);
  const char* source = document.getSourceBuf(root, Document::SOURCE_ALL, /*compact=*/false);
  source_.assign(source, document.getSourceBufLen(nullptr, Document::SOURCE_ALL, /*compact=*/false));
  std::unordered_map<const ElementDefinition*, bool> inlines;
  std::vector<int> open;
  std::vector<int> lastChild;  // of each open node
  for (Node* n = root; n; n = NodeAccess::nextInSubtree(n, root)) {
    while (!open.empty() && items_[static_cast<std::size_t>(open.back())].node != n->getParentNode()) {
      items_[static_cast<std::size_t>(open.back())].behind = count();
      open.pop_back();
      lastChild.pop_back();
    }
    const int index = count();
    Item item = {};
    item.node = n;
    item.parent = open.empty() ? kNone : open.back();
    item.depth = static_cast<int>(open.size());
    item.behind = index + 1;
    item.id = -1;
    item.all = map.getRange(n);
    item.isElement = n->getNodeType() == Node::NODE_ELEMENT;
    item.isInline = n->getNodeType() == Node::NODE_TEXT;
    if (item.isElement) {
      auto* element = static_cast<Element*>(n);
      item.begin = map.getBeginTag(n);
      item.end = map.getEndTag(n);
      ElementAccess::gatherAttributeErrors(element);
      const ElementDefinition* definition = element->getElementDefinition();
      item.isUnknown = !definition;
      const bool isEndTag = (n->getError() & ERR_ELEMENT_BEGIN_TAG_MISSING) != 0;
      if (definition || isEndTag)
        item.id = definition ? element->getElementID() : GetHTML40ElementID(n->getName().c_str());
      item.isCarriable = isCarriableName(element->getName());
      if (definition) {
        auto known = inlines.find(definition);
        // What a SPAN may hold stands in a line. A paragraph of text is asked by the name alone.
        if (known == inlines.end()) known = inlines.emplace(definition, document.canContain("SPAN", n)).first;
        item.isInline = known->second;
      }
    }
    item.error = n->getError();
    previous_.push_back(lastChild.empty() ? kNone : lastChild.back());
    if (!lastChild.empty()) lastChild.back() = index;
    items_.push_back(item);
    places_.emplace(n, index);
    open.push_back(index);
    lastChild.push_back(kNone);
  }
  for (const int index : open) items_[static_cast<std::size_t>(index)].behind = count();
}

// A `<%`, `<?`, SSI, `${`, `#{`, `{{`, `{%`, tag with a prefix or directive of another engine, the conditional comments
// of browsers, and scripts that write markup.
void RepairPage::findServerCode(bool guardWide) {
  const std::string_view text = source_;
  // In scripts braces are of the script.
  std::vector<Range> scripts;
  for (int i = 0; i < count(); ++i) {
    const Item& item = (*this)[i];
    if ((id(i) != ID_SCRIPT && id(i) != ID_STYLE) || !item.begin.isKnown()) continue;
    scripts.push_back({item.begin.end, item.end.begin});
    const std::string_view code = at(scripts.back());
    if (code.find("document.write") != std::string_view::npos) server_.push_back(item.begin.begin);
  }
  std::size_t script = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isWide = guardWide && (text[i] & 0x80);
    if (!isWide && !isOpener(text[i])) continue;
    while (script < scripts.size() && scripts[script].end <= i) ++script;
    const bool inScript = script < scripts.size() && scripts[script].begin <= i;
    if (!isWide && !opensServerCode(text.substr(i), inScript)) continue;
    server_.push_back(i);
    isHalf_ = isHalf_ || isInclude(text.substr(i));
  }
  std::sort(server_.begin(), server_.end());
}

bool RepairPage::hasUnknownTag(std::size_t begin, std::size_t end) const {
  const auto found = std::lower_bound(unknownTags_.begin(), unknownTags_.end(), begin);
  return found != unknownTags_.end() && *found < end;
}

bool RepairPage::hasOddTag(std::size_t begin, std::size_t end) const {
  const auto found = std::lower_bound(oddTags_.begin(), oddTags_.end(), begin);
  return found != oddTags_.end() && *found < end;
}

// From a begin tag to the next end tag of its name, whatever stands between.
void RepairPage::findVerbatim() {
  std::size_t end = 0;
  for (int i = 0; i < count(); ++i) {
    const Item& item = (*this)[i];
    if (!item.isElement || !item.begin.isKnown() || item.begin.isEmpty() || item.begin.begin < end) continue;
    const std::string& name = item.node->getName();
    if (std::find(std::begin(kVerbatim), std::end(kVerbatim), name) == std::end(kVerbatim)) continue;
    end = item.begin.end;
    while (end < source_.size() && !startsFolded(std::string_view(source_).substr(end), "</" + name)) {
      end = std::min(source_.find("</", end + 1), source_.size());
    }
    verbatim_.push_back({item.begin.end, end});
  }
}

bool RepairPage::isVerbatim(std::size_t offset) const {
  const auto behind = std::upper_bound(verbatim_.begin(), verbatim_.end(), offset,
                                       [](std::size_t o, const Range& range) { return o < range.begin; });
  return behind != verbatim_.begin() && offset <= (behind - 1)->end;
}

bool RepairPage::isPlainTag(Range tag) const {
  const std::string_view text = at(tag);
  if (text.size() < 3 || text.back() != '>') return false;
  for (std::size_t i = 1; (i = text.find('<', i)) != std::string_view::npos;) {
    const std::size_t end = text.substr(i, 2) == "<%" ? text.find("%>", i) : std::string_view::npos;
    if (end == std::string_view::npos) return false;
    i = end + 2;
  }
  return true;
}

void RepairPage::judgeWhole() {
  bool isWhole = false;
  bool closes = false;
  for (int i = 0; i < count(); ++i) {
    const Item& item = items_[static_cast<std::size_t>(i)];
    if (item.node->getNodeType() == Node::NODE_PI && item.all.isKnown()) {
      const bool isType = startsFolded(at(item.all), "<!doctype");
      isWhole = isWhole || isType;
      const std::string type(at(item.all));
      oddTags_.push_back(item.all.begin);
      isHtml5_ = isHtml5_ || (startsFolded(type, "<!doctype html") && !hasWord(type, "PUBLIC"));
    }
    if (item.isUnknown && item.all.isKnown()) {
      if (isNewContainer(item.node->getName())) unknownTags_.push_back(item.all.begin);
      const std::string& name = item.node->getName();
      isHtml5_ = isHtml5_ || std::find(std::begin(kNewer), std::end(kNewer), name) != std::end(kNewer);
    }
    if (item.isElement && item.begin.isKnown() && !item.begin.isEmpty() && !isPlainTag(item.begin)) {
      oddTags_.push_back(item.begin.begin);
    }
    if (!item.isElement || !item.begin.isKnown()) continue;
    const bool page = id(i) == ID_HTML || id(i) == ID_BODY;
    const bool isTitle = id(i) == ID_TITLE && item.parent != kNone && id(item.parent) == ID_HEAD;
    if (!page && id(i) != ID_HEAD && !isTitle) continue;
    if (!item.begin.isEmpty() && !(item.error & ERR_ELEMENT_BEGIN_TAG_MISSING)) {
      isWhole = true;
    }
    closes = closes || (page && !item.end.isEmpty());
    if (id(i) == ID_HEAD && head_ == kNone && !item.begin.isEmpty()) head_ = i;
  }
  isHalf_ = isHalf_ || !isWhole;
  isOpenAtEnd_ = isWhole && !closes;
  // Of a fragment nobody knows the language.
  isHtml5_ = isHtml5_ || isHalf_;
}

int RepairPage::find(const Node* node) const {
  const auto found = places_.find(node);
  return found == places_.end() ? kNone : found->second;
}

int RepairPage::nextSibling(int index) const {
  const Item& item = (*this)[index];
  if (item.parent == kNone) return kNone;
  return item.behind < (*this)[item.parent].behind ? item.behind : kNone;
}

int RepairPage::previousSibling(int index) const { return previous_[static_cast<std::size_t>(index)]; }

bool RepairPage::isBlank(int index) const {
  const Item& item = (*this)[index];
  if (item.node->getNodeType() != Node::NODE_TEXT || !item.all.isKnown()) return false;
  const std::string_view text = at(item.all);
  return std::all_of(text.begin(), text.end(), isSpaceByte);
}

std::vector<Range> RepairPage::attributes(int index) const {
  std::vector<Range> found;
  const Item& item = (*this)[index];
  const auto* element = static_cast<const Element*>(item.node);
  const AttributeBlock* block = ElementAccess::block(element);
  if (!block) return found;
  const std::size_t base = item.begin.begin - ElementAccess::beginSlice(element).offset;
  for (const AttributeBlock::Entry& entry : *block) {
    Range range = {base + entry.name.offset, base + entry.name.offset + entry.name.length};
    if (entry.value.length > 0) {
      range.end = base + entry.value.offset + entry.value.length;
      const char before = source_[base + entry.value.offset - 1];
      const bool isQuoted = before == '"' || before == '\'';
      if (isQuoted && range.end < item.begin.end && source_[range.end] == before) ++range.end;
    }
    found.push_back(range);
  }
  return found;
}

std::vector<std::pair<Range, std::string>> RepairPage::misspelt(int index) const {
  std::vector<std::pair<Range, std::string>> found;
  const auto* element = static_cast<const Element*>((*this)[index].node);
  const AttributeBlock* block = ElementAccess::block(element);
  if (!block) return found;
  const std::size_t base = (*this)[index].begin.begin - ElementAccess::beginSlice(element).offset;
  for (const AttributeBlock::Entry& entry : *block) {
    const Range name = {base + entry.name.offset, base + entry.name.offset + entry.name.length};
    if (entry.definition && entry.definition->getName() != at(name))
      found.emplace_back(name, entry.definition->getName());
  }
  return found;
}

std::string RepairPage::writtenName(int index) const {
  const Item& item = (*this)[index];
  const std::string& name = item.node->getName();
  const std::string_view tag = item.begin.isKnown() ? at(item.begin) : std::string_view();
  return tag.size() > name.size() ? std::string(tag.substr(1, name.size())) : name;
}

std::string RepairPage::likeName(int index, const char* upperName) const {
  std::string name = upperName;
  const std::string like = writtenName(index);
  if (!like.empty() && upperByte(like.front()) != like.front()) {
    for (char& c : name) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return name;
}

bool RepairPage::hasServerCode(std::size_t begin, std::size_t end) const {
  const auto found = std::lower_bound(server_.begin(), server_.end(), begin);
  return found != server_.end() && *found < end;
}

std::size_t RepairPage::trimBack(std::size_t offset, std::size_t floor) const {
  while (offset > floor && isSpaceByte(source_[offset - 1])) --offset;
  return offset;
}

std::size_t RepairPage::skipSpace(std::size_t offset, std::size_t ceiling) const {
  while (offset < ceiling && isSpaceByte(source_[offset])) ++offset;
  return offset;
}

std::size_t RepairPage::lineBegin(std::size_t offset) const {
  while (offset > 0 && (source_[offset - 1] == ' ' || source_[offset - 1] == '\t')) --offset;
  const bool begins = offset == 0 || source_[offset - 1] == '\n' || source_[offset - 1] == '\r';
  return begins ? offset : SourceMap::NOWHERE;
}

std::size_t RepairPage::lineEnd(std::size_t offset) const {
  while (offset < source_.size() && (source_[offset] == ' ' || source_[offset] == '\t')) ++offset;
  if (offset == source_.size()) return offset;
  if (source_[offset] == '\r') return offset + (isCrLf(source_, offset) ? 2 : 1);
  return source_[offset] == '\n' ? offset + 1 : SourceMap::NOWHERE;
}

std::string RepairPage::indentOf(std::size_t offset) const {
  std::size_t begin = source_.find_last_of("\r\n", offset == 0 ? 0 : offset - 1);
  begin = begin == std::string::npos || offset == 0 ? 0 : begin + 1;
  const std::size_t end = std::min(source_.find_first_not_of(" \t", begin), offset);
  return source_.substr(begin, end - begin);
}

std::string_view RepairPage::newlineNear(std::size_t offset) const {
  std::size_t at = source_.find_last_of("\r\n", offset == 0 ? 0 : offset - 1);
  if (at == std::string::npos) at = source_.find_first_of("\r\n", offset);
  if (at == std::string::npos) return "\n";
  if (source_[at] == '\n') return at > 0 && source_[at - 1] == '\r' ? "\r\n" : "\n";
  return isCrLf(source_, at) ? "\r\n" : "\r";
}

}  // namespace zeldom40
