// What the layout of a source needs to know of elements and custom actions, by their names.
#include "tools/zeldom/format_names.h"

#include <algorithm>
#include <iterator>

namespace zeldom40::tool {

namespace {

struct Row {
  std::string_view name;
  std::uint32_t traits;
};

constexpr std::uint32_t kBlock = kKnownName | kBlockName;
constexpr std::uint32_t kUnseen = kKnownName | kUnseenName;
constexpr std::uint32_t kProse = kKnownName | kProseName;
constexpr std::uint32_t kAtom = kKnownName;  // stands in a line and is no text
constexpr std::uint32_t kRaw = kRawName | kKeptName;
constexpr std::uint32_t kRow = kBlock | kBarrierName | kOpenName;

constexpr Row kRows[] = {
    {"a", kProse},
    {"abbr", kProse},
    {"acronym", kProse},
    {"address", kBlock},
    {"applet", kAtom | kBarrierName},
    {"area", kUnseen | kVoidName},
    {"article", kBlock},
    {"aside", kBlock},
    {"audio", kAtom},
    {"b", kProse},
    {"base", kUnseen | kVoidName},
    {"basefont", kUnseen | kVoidName},
    {"bdi", kProse},
    {"bdo", kProse},
    {"bgsound", kUnseen | kVoidName},
    {"big", kProse},
    {"blockquote", kBlock},
    {"body", kBlock | kHolderName},
    {"br", kAtom | kVoidName},
    {"button", kAtom | kBarrierName},
    {"canvas", kAtom},
    {"caption", kBlock | kBarrierName},
    {"center", kBlock},
    {"cite", kProse},
    {"code", kProse | kCodeName},
    {"col", kBlock | kVoidName},
    {"colgroup", kBlock | kOpenName | kHolderName},
    {"data", kProse},
    {"datalist", kAtom},
    {"dd", kBlock | kOpenName},
    {"del", kProse},
    {"details", kBlock},
    {"dfn", kProse},
    {"dialog", kBlock},
    {"dir", kBlock | kHolderName},
    {"div", kBlock},
    {"dl", kBlock | kHolderName},
    {"dt", kBlock | kOpenName},
    {"em", kProse},
    {"embed", kAtom | kVoidName},
    {"fieldset", kBlock},
    {"figcaption", kBlock},
    {"figure", kBlock},
    {"font", kProse},
    {"footer", kBlock},
    {"form", kBlock},
    {"frame", kBlock | kVoidName},
    {"frameset", kBlock | kHolderName},
    {"h1", kBlock},
    {"h2", kBlock},
    {"h3", kBlock},
    {"h4", kBlock},
    {"h5", kBlock},
    {"h6", kBlock},
    {"head", kBlock | kHolderName},
    {"header", kBlock},
    {"hgroup", kBlock},
    {"hr", kBlock | kVoidName},
    {"html", kBlock | kHolderName | kFlatName | kBarrierName},
    {"i", kProse},
    {"iframe", kAtom | kRaw},
    {"img", kProse | kVoidName},
    {"input", kAtom | kVoidName},
    {"ins", kProse},
    {"isindex", kAtom | kVoidName},
    {"kbd", kProse | kCodeName},
    {"keygen", kAtom | kVoidName},
    {"label", kProse},
    {"legend", kBlock},
    {"li", kBlock | kOpenName},
    {"link", kUnseen | kVoidName},
    {"listing", kBlock | kKeptName},
    {"main", kBlock},
    {"map", kAtom},
    {"mark", kProse},
    {"marquee", kAtom | kBarrierName},
    {"math", kAtom | kKeptName | kForeignName},
    {"menu", kBlock | kHolderName},
    {"meta", kUnseen | kVoidName},
    {"meter", kAtom},
    {"nav", kBlock},
    {"nobr", kProse},
    {"noembed", kAtom | kRaw},
    {"noframes", kBlock | kRaw},
    {"noscript", kAtom | kRaw},
    {"object", kAtom | kBarrierName},
    {"ol", kBlock | kHolderName},
    {"optgroup", kBlock | kOpenName},
    {"option", kBlock | kOpenName},
    {"output", kAtom},
    {"p", kBlock},
    {"param", kUnseen | kVoidName},
    {"picture", kAtom},
    {"plaintext", kBlock | kRaw},
    {"pre", kBlock | kKeptName},
    {"progress", kAtom},
    {"q", kProse},
    {"rb", kAtom},
    {"rp", kAtom},
    {"rt", kAtom},
    {"rtc", kAtom},
    {"ruby", kAtom},
    {"s", kProse},
    {"samp", kProse | kCodeName},
    {"script", kUnseen | kRaw},
    {"search", kBlock},
    {"section", kBlock},
    {"select", kAtom | kBarrierName},
    {"slot", kAtom},
    {"small", kProse},
    {"source", kUnseen | kVoidName},
    {"span", kProse},
    {"strike", kProse},
    {"strong", kProse},
    {"style", kUnseen | kRaw},
    {"sub", kProse},
    {"summary", kBlock},
    {"sup", kProse},
    {"svg", kAtom | kKeptName | kForeignName},
    {"table", kBlock | kBarrierName | kHolderName},
    {"tbody", kRow | kHolderName},
    {"td", kRow},
    {"template", kUnseen | kBarrierName},
    {"textarea", kAtom | kRaw},
    {"tfoot", kRow | kHolderName},
    {"th", kRow},
    {"thead", kRow | kHolderName},
    {"time", kProse},
    {"title", kUnseen | kRaw},
    {"tr", kRow | kHolderName},
    {"track", kUnseen | kVoidName},
    {"tt", kProse},
    {"u", kProse},
    {"ul", kBlock | kHolderName},
    {"var", kProse},
    {"video", kAtom},
    {"wbr", kAtom | kVoidName},
    {"xmp", kBlock | kRaw},
};

constexpr bool byName(const Row& a, const Row& b) { return a.name < b.name; }
static_assert(std::is_sorted(std::begin(kRows), std::end(kRows), byName));

// Sorted, as all lists below.
constexpr std::string_view kTableParts[] = {"caption", "col", "colgroup", "tbody", "td", "tfoot", "th", "thead", "tr"};
constexpr std::string_view kSections[] = {"caption", "colgroup", "tbody", "tfoot", "thead"};
constexpr std::string_view kCells[] = {"td", "th"};

// Actions of any tag library: what matters is the word behind the prefix.
constexpr std::string_view kFlowActions[] = {"body",       "catch",     "choose",  "else",      "elseif",   "empty",
                                             "equal",      "foreach",   "form",    "fortokens", "html",     "if",
                                             "iterate",    "iterator",  "match",   "notempty",  "notequal", "notmatch",
                                             "notpresent", "otherwise", "present", "subview",   "view",     "when"};
constexpr std::string_view kValueActions[] = {
    "add",     "code",         "declaration", "define", "expression", "highlight",   "markdown",
    "message", "out",          "param",       "parse",  "parsedate",  "parsenumber", "pre",
    "put",     "putattribute", "query",       "script", "scriptlet",  "set",         "style",
    "text",    "textarea",     "transform",   "update", "value",      "verbatim"};
constexpr std::string_view kCodeClasses[] = {
    "code",          "codeblock", "codesnippet",  "console",           "example-code",   "highlight", "listing",
    "literal-block", "pre",       "preformatted", "prettyprint",       "programlisting", "screen",    "shell",
    "snippet",       "source",    "sourcecode",   "syntaxhighlighter", "terminal",       "verbatim"};

template <std::size_t N>
constexpr bool isSorted(const std::string_view (&names)[N]) {
  return std::is_sorted(std::begin(names), std::end(names));
}
static_assert(isSorted(kTableParts) && isSorted(kSections) && isSorted(kCells));
static_assert(isSorted(kFlowActions) && isSorted(kValueActions) && isSorted(kCodeClasses));

template <std::size_t N>
bool has(const std::string_view (&names)[N], std::string_view name) {
  return std::binary_search(std::begin(names), std::end(names), name);
}

}  // namespace

std::uint32_t traitsOf(std::string_view name) {
  const Row* found = std::lower_bound(std::begin(kRows), std::end(kRows), Row{name, 0}, byName);
  return found != std::end(kRows) && found->name == name ? found->traits : 0;
}

bool endsOpen(std::string_view name, std::string_view open) {
  if (open == "p") return (traitsOf(name) & kBlockName) != 0;
  if (open == "li") return name == "li";
  if (open == "dt" || open == "dd") return name == "dt" || name == "dd";
  if (open == "option") return name == "option" || name == "optgroup";
  if (open == "optgroup") return name == "optgroup";
  if (has(kCells, open)) return has(kTableParts, name);
  if (open == "tr") return name == "tr" || has(kSections, name);
  if (has(kSections, open)) return has(kSections, name);
  if (open == "head") return name == "body" || name == "frameset";
  return false;
}

bool isTablePart(std::string_view name) { return name == "table" || has(kTableParts, name); }

ActionBody bodyOf(std::string_view name) {
  const std::string_view word = name.substr(name.find(':') + 1);
  if (has(kValueActions, word)) return ActionBody::kValue;
  return has(kFlowActions, word) ? ActionBody::kFlow : ActionBody::kUnknown;
}

bool namesCode(std::string_view word) {
  return has(kCodeClasses, word) || word.substr(0, 9) == "language-" || word.substr(0, 5) == "lang-" ||
         word.substr(0, 5) == "brush";
}

}  // namespace zeldom40::tool
