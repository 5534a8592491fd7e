// Cuts a page into pieces for the guard, by bytes alone.
#include "tools/zeldom/guard_pieces.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace zeldom40::tool {

namespace {

constexpr std::size_t kNone = std::string_view::npos;
// A set of bytes, with the search for its members.
class ByteSet {
 public:
  explicit constexpr ByteSet(std::string_view bytes) {
    for (const char c : bytes) holds_[static_cast<unsigned char>(c)] = true;
  }
  constexpr bool has(char c) const { return holds_[static_cast<unsigned char>(c)]; }
  // The first member from `at` on, or the end of the text.
  std::size_t in(std::string_view text, std::size_t at) const { return find(text, at, true); }
  // The first byte that is no member.
  std::size_t notIn(std::string_view text, std::size_t at) const { return find(text, at, false); }

 private:
  std::size_t find(std::string_view text, std::size_t at, bool member) const {
    const char* const bytes = text.data();
    const std::size_t size = text.size();
    while (at < size && holds_[static_cast<unsigned char>(bytes[at])] != member) ++at;
    return std::min(at, size);
  }

  std::array<bool, 256> holds_ = {};
};

constexpr ByteSet kSpaces(" \t\r\n\f");
constexpr ByteSet kSpacesAndSlash(" \t\r\n\f/");
constexpr ByteSet kLineEnds("\r\n");
// Where something else than a word may begin.
constexpr ByteSet kOpeners(" \t\r\n\f<$#{");
constexpr ByteSet kNameEnds(" \t\r\n\f<>/\"'=");
// What matters in a tag and in an expression.
constexpr ByteSet kInTags("<>\"'$#{");
constexpr ByteSet kInExpressions("\"'{}");

constexpr std::size_t kLongestExpression = 1 << 16;
constexpr std::size_t kLongestTemplateCode = 1 << 12;
// Tags with a prefix in the values of tags with a prefix ...
constexpr std::size_t kDeepestTag = 8;
// So many times the size of a page may be read in vain, in search of an end that is not there.
constexpr std::size_t kPatience = 4;

// Tables of names are sorted, for a binary search.
constexpr std::string_view kBlocks[] = {
    "address",  "article", "aside",    "blockquote", "body",  "br",     "caption", "center",   "col",        "colgroup",
    "dd",       "details", "dialog",   "dir",        "div",   "dl",     "dt",      "fieldset", "figcaption", "figure",
    "footer",   "form",    "frame",    "frameset",   "h1",    "h2",     "h3",      "h4",       "h5",         "h6",
    "head",     "header",  "hgroup",   "hr",         "html",  "legend", "li",      "main",     "menu",       "nav",
    "noframes", "ol",      "optgroup", "option",     "p",     "pre",    "section", "summary",  "table",      "tbody",
    "td",       "tfoot",   "th",       "thead",      "title", "tr",     "ul"};
constexpr std::string_view kUnseen[] = {"base", "link", "meta", "script", "style"};
constexpr std::string_view kInline[] = {"a",     "abbr", "acronym", "b",      "bdo", "big",   "blink", "cite", "code",
                                        "dfn",   "em",   "font",    "i",      "kbd", "label", "q",     "s",    "samp",
                                        "small", "span", "strike",  "strong", "sub", "sup",   "tt",    "u",    "var"};
constexpr std::string_view kRawElements[] = {
    "jsp:declaration", "jsp:expression", "jsp:scriptlet", "jsp:text", "listing", "plaintext", "pre",
    "script",          "style",          "textarea",      "xmp"};
constexpr std::string_view kVoids[] = {"area",  "base",  "basefont", "bgsound", "br",      "col",    "embed",
                                       "frame", "hr",    "img",      "input",   "isindex", "keygen", "link",
                                       "meta",  "param", "source",   "spacer",  "track",   "wbr"};
constexpr std::string_view kOptionalEnds[] = {"body",  "colgroup", "dd",     "dt", "head",  "html",
                                              "li",    "optgroup", "option", "p",  "rp",    "rt",
                                              "tbody", "td",       "tfoot",  "th", "thead", "tr"};
constexpr std::string_view kActing[] = {"applet",   "audio",  "button",  "canvas",   "dialog", "form",     "frameset",
                                        "iframe",   "map",    "marquee", "math",     "meter",  "noscript", "object",
                                        "progress", "select", "svg",     "template", "video"};
constexpr std::string_view kSkeleton[] = {"body", "frameset", "head", "html"};

template <std::size_t N>
constexpr bool isSorted(const std::string_view (&names)[N]) {
  return std::is_sorted(std::begin(names), std::end(names));
}

template <std::size_t N>
bool has(const std::string_view (&names)[N], std::string_view name) {
  return std::binary_search(std::begin(names), std::end(names), name);
}

static_assert(isSorted(kBlocks) && isSorted(kUnseen) && isSorted(kInline) && isSorted(kRawElements) &&
              isSorted(kVoids) && isSorted(kOptionalEnds) && isSorted(kActing) && isSorted(kSkeleton));

bool isSpace(char c) { return kSpaces.has(c); }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isNameByte(char c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '_' || c == '.' || c == '-'; }
char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool startsWith(std::string_view text, std::string_view word) { return text.substr(0, word.size()) == word; }

// The next place of a word. Asked again from further on it answers from memory, so a word that stands nowhere is
// searched for once.
class Search {
 public:
  explicit constexpr Search(std::string_view word) : word_(word) {}
  std::size_t from(std::string_view page, std::size_t at) {
    if (!asked_ || at < from_ || (found_ != kNone && at > found_)) {
      asked_ = true;
      from_ = at;
      found_ = page.find(word_, at);
    }
    return found_;
  }
  std::size_t length() const { return word_.size(); }

 private:
  std::string_view word_;
  bool asked_ = false;
  std::size_t from_ = 0;
  std::size_t found_ = 0;
};

std::size_t nameEnd(std::string_view page, std::size_t at) { return kNameEnds.in(page, at); }

// Where the name of a tag begins that "<" at `at` opens, end tag or not; kNone if it opens none.
std::size_t nameBegin(std::string_view page, std::size_t at) {
  const std::size_t name = at + 1 + (at + 1 < page.size() && page[at + 1] == '/' ? 1 : 0);
  return name < page.size() && isLetter(page[name]) ? name : kNone;
}

// Whether a name at `at` has a prefix, as those of custom actions have.
bool hasPrefix(std::string_view page, std::size_t at) {
  while (at < page.size() && isNameByte(page[at])) ++at;
  return at + 1 < page.size() && page[at] == ':' && isLetter(page[at + 1]);
}

std::uint16_t traitsOfName(const std::string& name) {
  unsigned traits = 0;
  if (has(kBlocks, name)) traits |= kBlockTag;
  if (has(kUnseen, name)) traits |= kUnseenTag;
  if (has(kInline, name)) traits |= kInlineTag;
  if (has(kSkeleton, name)) traits |= kSkeletonTag;
  if (has(kVoids, name)) traits |= kVoidTag;
  if (has(kOptionalEnds, name)) traits |= kOptionalEnd;
  if (has(kActing, name) || has(kRawElements, name) || has(kUnseen, name)) traits |= kActingTag;
  return static_cast<std::uint16_t>(traits);
}

class Cutter {
 public:
  explicit Cutter(std::string_view page) : page_(page), patience_(kPatience * page.size() + (1 << 20)) {}

  std::vector<Piece> run() {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (startsWith(page_, kByteOrderMark)) push(kByteOrderMark.size(), PieceKind::kMark, 0);
    while (at_ < page_.size()) {
      if (!raw_.empty()) {
        rawContent();
      } else {
        piece();
      }
    }
    return std::move(pieces_);
  }

  // Behind the server construct that begins at `at`; kNone if none does. What has no end goes to the end of the page.
  std::size_t serverEnd(std::size_t at) {
    const char c = page_[at];
    const char next = at + 1 < page_.size() ? page_[at + 1] : '\0';
    if (c == '<' && next == '%') {
      return page_.substr(at, 4) == "<%--" ? endOf(jspComment_, at + 4) : endOf(jspCode_, at + 2);
    }
    if (c == '<' && next == '?') return endOf(instruction_, at + 2);
    if (c == '<' && next == '!' && page_.substr(at, 5) == "<!--#") return endOf(comment_, at + 5);
    if ((c == '$' || c == '#') && next == '{') return expressionEnd(at);
    if (c == '{' && next == '{') return templateEnd(mustache_, at);
    if (c == '{' && next == '%') return templateEnd(statement_, at);
    return kNone;
  }

 private:
  void push(std::size_t end, PieceKind kind, unsigned traits) {
    pieces_.push_back({at_, end, kind, static_cast<std::uint16_t>(traits)});
    at_ = end;
  }

  std::size_t endOf(Search& terminator, std::size_t from) {
    const std::size_t found = terminator.from(page_, from);
    return found == kNone ? page_.size() : found + terminator.length();
  }

  std::size_t templateEnd(Search& terminator, std::size_t at) {
    const std::size_t found = terminator.from(page_, at + 2);
    return found == kNone || found - at > kLongestTemplateCode ? kNone : found + terminator.length();
  }

  // Notes that `bytes` were read in vain. False when that was too much for one page.
  bool waste(std::size_t bytes) {
    patience_ -= std::min(bytes, patience_);
    return patience_ > 0;
  }

  std::size_t expressionEnd(std::size_t at) {
    if (patience_ == 0) return kNone;
    const std::size_t stop = std::min(page_.size(), at + kLongestExpression);
    const std::string_view window = page_.substr(0, stop);
    std::size_t depth = 1;
    for (std::size_t i = kInExpressions.in(window, at + 2); i < stop; i = kInExpressions.in(window, i + 1)) {
      if (window[i] == '{') {
        ++depth;
      } else if (window[i] == '}') {
        if (--depth == 0) return i + 1;
      } else if (const std::size_t quote = window.find(window[i], i + 1); quote != kNone) {
        i = quote;
      }
    }
    waste(stop - at);
    return kNone;
  }

  void piece() {
    const char c = page_[at_];
    if (isSpace(c)) return space();
    if (c == '<' || c == '$' || c == '#' || c == '{') {
      if (const std::size_t end = serverEnd(at_); end != kNone) return server(end);
    }
    if (c == '<') {
      if (startsWith(page_.substr(at_), "<!")) return declaration();
      if (nameBegin(page_, at_) != kNone && tag()) return;
    }
    word();
  }

  void space() {
    const std::size_t end = kSpaces.notIn(page_, at_);
    const bool breaks = kLineEnds.in(page_.substr(0, end), at_) < end;
    push(end, PieceKind::kSpace, breaks ? kLineBreak : 0);
  }

  void word() {
    const std::size_t end = kOpeners.in(page_, at_ + 1);
    if (!pieces_.empty() && pieces_.back().kind == PieceKind::kWord) {
      pieces_.back().end = at_ = end;
      return;
    }
    push(end, PieceKind::kWord, kVisible);
  }

  void server(std::size_t end) {
    const std::string_view code = page_.substr(at_, end - at_);
    const bool calm = startsWith(code, "<%=") || startsWith(code, "<%@") || startsWith(code, "<%--") ||
                      startsWith(code, "<%!") || startsWith(code, "<?xml") || startsWith(code, "<!--#include") ||
                      startsWith(code, "<!--#echo") || startsWith(code, "${") || startsWith(code, "#{") ||
                      startsWith(code, "{{");
    push(end, PieceKind::kServer, kVisible | (calm ? 0u : unsigned{kMayBranch}));
  }

  void declaration() {
    const std::string_view rest = page_.substr(at_, 9);
    if (startsWith(rest, "<!--")) return push(endOf(comment_, at_ + 4), PieceKind::kComment, 0);
    if (rest == "<![CDATA[" && cdata_.from(page_, at_ + 9) != kNone) {
      return push(endOf(cdata_, at_ + 9), PieceKind::kRaw, kVisible);
    }
    const std::size_t close = endOf(greater_, at_ + 2);
    if (rest.size() < 3 || !isLetter(rest[2])) return push(close, PieceKind::kComment, 0);
    const std::size_t subset = page_.substr(0, close).find('[', at_);
    push(subset == kNone ? close : subsetEnd(subset, close), PieceKind::kDeclaration, 0);
  }

  // Behind the declaration whose subset opens at `open`; `close` if the subset has no end.
  std::size_t subsetEnd(std::size_t open, std::size_t close) {
    for (std::size_t i = bracket_.from(page_, open); i != kNone; i = bracket_.from(page_, i + 1)) {
      const std::size_t end = kSpaces.notIn(page_, i + 1);
      if (end == page_.size()) break;
      if (page_[end] == '>') return end + 1;
    }
    return close;
  }

  // A tag, or what begins like one and cannot be read on. False if it is text.
  bool tag() {
    bool holdsServer = false;
    std::size_t gaveUp = at_;
    for (const std::size_t deepest : {kDeepestTag, std::size_t{0}}) {
      const std::size_t end = tagEnd(deepest, &holdsServer, &gaveUp);
      if (end != kNone) {
        finishTag(end, holdsServer);
        return true;
      }
      if (!waste(gaveUp - at_)) break;
    }
    // What stands in the half tag is looked at on its own, as long as that does not happen all the time.
    if (patience_ > 0) return false;
    push(gaveUp, PieceKind::kBroken, kVisible);
    return true;
  }

  // Behind the tag at at_, with at most `deepest` tags with a prefix inside each other in its values. Without an end
  // kNone, and `gaveUp` is where the search ended.
  std::size_t tagEnd(std::size_t deepest, bool* holdsServer, std::size_t* gaveUp) {
    std::array<char, kDeepestTag + 1> quotes = {};  // open at each depth; 0: none
    std::size_t depth = 0;
    *holdsServer = false;
    for (std::size_t i = kInTags.in(page_, at_ + 1); i < page_.size(); i = kInTags.in(page_, i)) {
      const char c = page_[i];
      char& quote = quotes[depth];
      if (c == '<' || c == '$' || c == '#' || c == '{') {
        if (const std::size_t end = serverEnd(i); end != kNone) {
          *holdsServer = true;
          i = end;
          continue;
        }
      }
      if (c == '<') {
        const std::size_t name = nameBegin(page_, i);
        if (depth < deepest && name != kNone && hasPrefix(page_, name)) {
          *holdsServer = true;
          quotes[++depth] = 0;
        } else if (!quote) {
          *gaveUp = i;
          return kNone;
        }
      } else if (quote) {
        if (c == quote) quote = 0;
      } else if (c == '"' || c == '\'') {
        if (isSpace(page_[i - 1]) || page_[i - 1] == '=') quote = c;
      } else if (c == '>') {
        if (depth == 0) return i + 1;
        --depth;
      }
      ++i;
    }
    *gaveUp = page_.size();
    return kNone;
  }

  void finishTag(std::size_t end, bool holdsServer) {
    const std::size_t nameAt = nameBegin(page_, at_);
    const bool isEnd = page_[at_ + 1] == '/';
    const std::string name = tagName(page_.substr(at_, end - at_));
    const bool closed = page_[end - 2] == '/' && end - 2 >= nameAt;
    const unsigned inside = holdsServer ? unsigned{kHoldsServer} : 0u;
    if (hasPrefix(page_, nameAt)) {
      const unsigned side = isEnd ? kActionEnd : kActionBegin;
      if (!isEnd && !closed && has(kRawElements, name)) raw_ = name;
      return push(end, PieceKind::kServer,
                  kVisible | kMayBranch | side | inside | (closed ? unsigned{kClosedTag} : 0u));
    }
    unsigned traits = traitsOfName(name) | inside | (closed ? unsigned{kClosedTag} : 0u);
    if (isEnd) return push(end, PieceKind::kEnd, traits);
    const std::size_t rest = kSpacesAndSlash.notIn(page_, nameAt + name.size());
    if (rest == end - 1) traits |= kBareTag;
    if (!(traits & (kBlockTag | kUnseenTag | kInlineTag))) traits |= kVisible;
    if (!closed && has(kRawElements, name)) raw_ = name;
    push(end, PieceKind::kBegin, traits);
  }

  // Up to the end tag of the element that raw_ names; the end of the page if there is none.
  void rawContent() {
    std::size_t end = page_.size();
    for (std::size_t i = page_.find("</", at_); i != kNone && end == page_.size(); i = page_.find("</", i + 1)) {
      const std::size_t behind = i + 2 + raw_.size();
      if (behind >= page_.size() || !(isSpace(page_[behind]) || page_[behind] == '>' || page_[behind] == '/')) continue;
      const bool same = std::equal(raw_.begin(), raw_.end(), page_.begin() + static_cast<std::ptrdiff_t>(i + 2),
                                   [](char a, char b) { return a == lower(b); });
      if (same) end = i;
    }
    const bool unseen = has(kUnseen, raw_);
    raw_.clear();
    if (end > at_) push(end, PieceKind::kRaw, unseen ? 0 : kVisible);
  }

  std::string_view page_;
  std::size_t at_ = 0;
  std::size_t patience_;
  std::string raw_;  // the element whose content comes next as it is
  std::vector<Piece> pieces_;
  Search jspComment_{"--%>"}, jspCode_{"%>"}, comment_{"-->"}, instruction_{"?>"}, mustache_{"}}"}, statement_{"%}"},
      cdata_{"]]>"}, greater_{">"}, bracket_{"]"};
};

}  // namespace

std::vector<Piece> cutPage(std::string_view page) { return Cutter(page).run(); }

std::string tagName(std::string_view tag) {
  const std::size_t begin = nameBegin(tag, 0);
  if (begin == kNone) return {};
  std::string name(tag.substr(begin, nameEnd(tag, begin) - begin));
  std::transform(name.begin(), name.end(), name.begin(), lower);
  return name;
}

std::vector<std::string_view> serverCodeOf(std::string_view tag) {
  std::vector<std::string_view> found;
  Cutter cutter(tag);
  for (std::size_t i = 1; i < tag.size();) {
    const std::size_t end = cutter.serverEnd(i);
    if (end != kNone) found.push_back(tag.substr(i, end - i));
    i = end == kNone ? i + 1 : end;
  }
  return found;
}

bool namesSomething(std::string_view tag) {
  static constexpr ByteSet kBetween(" \t\r\n\f/>");
  static constexpr ByteSet kAttributeEnds(" \t\r\n\f/>=");
  static constexpr ByteSet kValueEnds(" \t\r\n\f>");
  for (std::size_t i = nameEnd(tag, 1); i < tag.size();) {
    const std::size_t begin = kBetween.notIn(tag, i);
    if (begin == tag.size()) return false;
    std::size_t end = kAttributeEnds.in(tag, begin + 1);
    std::string name(tag.substr(begin, end - begin));
    std::transform(name.begin(), name.end(), name.begin(), lower);
    if (name == "id" || name == "name") return true;
    end = kSpaces.notIn(tag, end);
    if (end < tag.size() && tag[end] == '=') {
      end = kSpaces.notIn(tag, end + 1);
      const bool quoted = end < tag.size() && (tag[end] == '"' || tag[end] == '\'');
      end = quoted ? tag.find(tag[end], end + 1) : kValueEnds.in(tag, end);
      end = end == kNone ? tag.size() : end + (quoted ? 1 : 0);
    }
    i = end;
  }
  return false;
}

}  // namespace zeldom40::tool
