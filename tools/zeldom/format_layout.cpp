// Lays out the source of a page, line by line.
#include "tools/zeldom/format_layout.h"

#include <algorithm>
#include <utility>

#include "tools/zeldom/format_names.h"
#include "tools/zeldom/format_nesting.h"

namespace zeldom40::tool {

namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr int kUtf8 = 65001;
// Deep nests would grow a page with the square of their depth.
constexpr std::size_t kWidestIndent = 80;
// So many tags are looked through for the character that text meets behind them.
constexpr unsigned kTagsLookedThrough = 16;
// Words that begin so may be orders of a template language that go to the end of their line.
constexpr std::string_view kLineOrders = "#%@$|{}/";
// Lines that begin so are better left as lines.
constexpr std::string_view kListMarks = "*-+=:~>";

// What may become of the white space between two tokens.
enum class Gap : std::uint8_t {
  kFixed,   // nothing
  kIndent,  // a line break stays one; the next line is indented anew
  kBreak,   // no line break, and one may come
  kProse    // blank or line break, as the lines of the text ask
};

// An open element or action, with what holds inside of it.
struct Open {
  std::uint32_t token = 0;
  std::uint32_t lineLevel = 0;     // of the line on which its begin tag stands
  std::uint32_t contentLevel = 0;  // of lines inside
  bool counts = false;             // white space is content
  bool inAction = false;           // inside of a custom action, at any depth
  bool isText = false;             // white space in text is known to be a blank to a reader
};

class Liner {
 public:
  Liner(const LayoutPage& page, const FormatOptions& options, int codepage)
      : page_(page), tokens_(page.tokens), options_(options), utf8_(codepage == kUtf8), nests_(nestTokens(page)) {
    const std::size_t end = page.text.find_first_of("\r\n");
    if (end != kNone)
      lineEnd_ = page.text[end] == '\r' && page.text.substr(end + 1, 1) == "\n" ? "\r\n" : page.text.substr(end, 1);
    const bool barred = options.tags == TagCase::kUpper && isXhtml();
    if (barred) leaveAlone(0, 0, "tag names: XHTML has them in lower case");
    caseChanges_ = options.tags != TagCase::kKeep && !barred;
  }

  Layout run() {
    result_.leftAlone.insert(result_.leftAlone.end(), page_.leftAlone.begin(), page_.leftAlone.end());
    if (tokens_.empty() || !page_.isMarkup) {
      if (!page_.isMarkup) leaveAlone(0, size(page_.text), "the page: what the server sends is no HTML");
      return std::move(result_);
    }
    leadingGap();
    if (first_ < tokens_.size()) beginLine(first_);
    for (std::uint32_t i = first_; i < tokens_.size(); ++i) {
      token(i);
      if (i + 1 < tokens_.size()) gap(i);
    }
    trailingGap();
    return std::move(result_);
  }

 private:
  static std::uint32_t size(std::string_view text) { return static_cast<std::uint32_t>(text.size()); }
  std::string_view textOf(std::uint32_t i) const {
    return page_.text.substr(tokens_[i].begin, tokens_[i].end - tokens_[i].begin);
  }
  // The white space behind token `i`.
  std::string_view gapBehind(std::uint32_t i) const {
    const std::size_t end = i + 1 < tokens_.size() ? tokens_[i + 1].begin : page_.text.size();
    return page_.text.substr(tokens_[i].end, end - tokens_[i].end);
  }
  void leaveAlone(std::uint32_t begin, std::uint32_t end, const char* reason) {
    result_.leftAlone.push_back({begin, end, reason});
  }
  static bool breaks(std::string_view text) { return text.find_first_of("\r\n") != kNone; }
  bool isTag(std::uint32_t i) const {
    return tokens_[i].kind == TokenKind::kBegin || tokens_[i].kind == TokenKind::kEnd;
  }
  const std::string& nameOf(std::uint32_t i) const { return page_.names[tokens_[i].name]; }
  bool isAction(std::uint32_t i) const { return isTag(i) && nameOf(i).find(':') != std::string::npos; }
  const Open& top() const { return open_.empty() ? outside_ : open_.back(); }

  bool isXhtml() const {
    const std::string_view start = page_.text.substr(0, 1024);
    return start.find("<?xml") != kNone || start.find("XHTML") != kNone || start.find("xmlns") != kNone;
  }

  // --- columns -------------------------------------------------------------------------------------------------------
  std::size_t widthOf(std::string_view text) const {
    if (!utf8_) return text.size();
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
  }
  std::size_t indentOf(std::uint32_t level) const {
    return std::min(level * static_cast<std::size_t>(options_.indent), kWidestIndent);
  }
  std::size_t limit() const { return static_cast<std::size_t>(options_.columns); }

  void advance(std::string_view text) {
    const std::size_t end = text.find_last_of("\r\n");
    column_ = end == kNone ? column_ + widthOf(text) : widthOf(text.substr(end + 1));
  }

  // --- edits ---------------------------------------------------------------------------------------------------------
  void replace(std::size_t offset, std::string_view old, std::string text) {
    if (old != text) result_.edits.push_back({offset, old.size(), std::move(text)});
  }

  // What stands before the page shows nothing, unless text comes first in a part of a page.
  void leadingGap() {
    if (textOf(0) == "\xEF\xBB\xBF") first_ = 1;
    if (first_ == tokens_.size()) return;
    const std::size_t begin = first_ ? tokens_[0].end : 0;
    const std::string_view old = page_.text.substr(begin, tokens_[first_].begin - begin);
    const TokenKind kind = tokens_[first_].kind;
    const bool silent = kind == TokenKind::kCode || kind == TokenKind::kComment || isBlockTag(first_);
    if (silent || (page_.isWhole && kind == TokenKind::kBegin)) {
      replace(begin, old, {});
    } else {
      advance(old);
    }
  }

  // The last line end stays the only one.
  void trailingGap() {
    if (first_ == tokens_.size()) return;
    const auto last = static_cast<std::uint32_t>(tokens_.size() - 1);
    const std::string_view old = gapBehind(last);
    if (old.empty() || top().counts || stopped_ || tokens_[last].kind == TokenKind::kOpaque || swallowsLineEnd(last))
      return;
    if (breaks(old)) {
      replace(tokens_[last].end, old, std::string(firstLineEnd(old)));
    } else if (isBlockTag(last)) {
      replace(tokens_[last].end, old, {});
    }
  }

  static std::string_view firstLineEnd(std::string_view gap) {
    const std::size_t at = gap.find_first_of("\r\n");
    return gap.substr(at, gap[at] == '\r' && gap.substr(at + 1, 1) == "\n" ? 2 : 1);
  }

  // The line ends of a gap, of which one empty line stays.
  std::string lineEndsOf(std::string_view gap) const {
    if (!breaks(gap)) return std::string(lineEnd_);
    std::string out;
    for (unsigned count = 0; count < 2 && breaks(gap); ++count) {
      const std::string_view end = firstLineEnd(gap);
      out += end;
      gap.remove_prefix(static_cast<std::size_t>(end.data() - gap.data()) + end.size());
    }
    return out;
  }

  // --- tokens --------------------------------------------------------------------------------------------------------
  void token(std::uint32_t i) {
    const LayoutToken& token = tokens_[i];
    const Nest& nest = nests_[i];
    if (isTag(i)) {
      open_.resize(nest.height);
      changeCase(i);
      if (nest.opens) push(i);
    }
    advance(textOf(i));
    if (token.kind == TokenKind::kWord) lastByte_ = visibleEnd(i);
    if (token.kind != TokenKind::kWord && !isProseTag(i)) lastByte_ = '\0';
  }

  void push(std::uint32_t i) {
    const LayoutToken& token = tokens_[i];
    const bool ends = nests_[i].partner != Nest::kNone;
    const bool block = (token.traits & kBlockName) != 0;
    const Open outer = top();
    Open open = outer;
    open.token = i;
    open.lineLevel = level_;
    if (block && !(token.traits & kFlatName) && (ends || (token.traits & kOpenName))) open.contentLevel = level_ + 1;
    open.counts = outer.counts || token.keeps || (token.traits & kKeptName);
    if (isAction(i)) {
      const ActionBody body = bodyOf(nameOf(i));
      open.inAction = true;
      open.counts = open.counts || body == ActionBody::kValue;
      if (body == ActionBody::kUnknown) open.isText = false;
    } else if (block) {
      open.isText = true;
    } else if (!(token.traits & kKnownName)) {
      open.isText = false;
    } else if (token.traits & kCodeName) {
      open.isText = false;
      open.counts = open.counts || ends;
    }
    open_.push_back(open);
    if (open.counts && !outer.counts) {
      const std::uint32_t end = ends ? tokens_[nests_[i].partner].begin : size(page_.text);
      if (!ends) stopped_ = true;
      const bool lines = breaks(page_.text.substr(token.end, end - token.end));
      if (lines && !(token.traits & kRawName)) leaveAlone(token.end, end, "content whose white space counts");
    }
  }

  void changeCase(std::uint32_t i) {
    const LayoutToken& token = tokens_[i];
    if (!caseChanges_ || !(token.traits & kKnownName) || top().counts || stopped_) return;
    const std::size_t at = token.begin + (token.kind == TokenKind::kEnd ? 2 : 1);
    const std::string_view old = page_.text.substr(at, nameOf(i).size());
    std::string name = nameOf(i);
    if (options_.tags == TagCase::kUpper) {
      std::transform(name.begin(), name.end(), name.begin(),
                     [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    }
    replace(at, old, std::move(name));
  }

  // --- what a gap may become -----------------------------------------------------------------------------------------
  bool isHeadPart(std::uint32_t i) const {
    return isTag(i) && (tokens_[i].traits & kUnseenName) && !open_.empty() && nameOf(open_.back().token) == "head";
  }
  // Whether lines end before and after the token, whatever stands there.
  bool isBlockTag(std::uint32_t i) const {
    return tokens_[i].kind == TokenKind::kDeclaration || (isTag(i) && (tokens_[i].traits & kBlockName)) ||
           isHeadPart(i);
  }
  // Whether a token is no text and will not become any: between two of these lines matter to nobody.
  bool isSilent(std::uint32_t i) const {
    const TokenKind kind = tokens_[i].kind;
    return (isTag(i) && !(tokens_[i].traits & kProseName)) || kind == TokenKind::kCode || kind == TokenKind::kComment ||
           kind == TokenKind::kDeclaration;
  }
  // Whether some processor takes the line end behind the token away.
  bool swallowsLineEnd(std::uint32_t i) const {
    if (tokens_[i].kind != TokenKind::kOutput && tokens_[i].kind != TokenKind::kCode) return false;
    const std::string_view text = textOf(i);
    const std::string_view end = text.substr(text.size() - 2);
    return end == "?>" || end == "%}" || end == "}}" || end == "#}" ||
           (text.size() > 3 && text.substr(text.size() - 3) == "-%>");
  }

  // Tags and words of running text, in which lines may be filled.
  bool isProseTag(std::uint32_t i) const {
    return isTag(i) && (tokens_[i].traits & kProseName) && !(tokens_[i].traits & kCodeName) && !tokens_[i].keeps;
  }
  bool isProse(std::uint32_t i) const {
    if (isProseTag(i)) return !breaks(textOf(i));
    return tokens_[i].kind == TokenKind::kWord && kLineOrders.find(page_.text[tokens_[i].begin]) == kNone;
  }

  static bool isAscii(char c) { return c > ' ' && c < 127; }
  // The last byte of a word if it is a character of its own and no end of a reference, else NUL.
  char visibleEnd(std::uint32_t i) const {
    const std::string_view text = textOf(i);
    if (text.size() > 1 && !isAscii(text[text.size() - 2])) return '\0';
    return isAscii(text.back()) && text.back() != ';' ? text.back() : '\0';
  }

  // Whether blank and line break are the same between token `i` and the next. They are not between wide characters,
  // where a browser drops a line break, and not at the edge of an inline element, where lines would look odd.
  bool isElastic(std::uint32_t i) const {
    if (gapBehind(i).empty() || !isAscii(lastByte_)) return false;
    if (tokens_[i].kind == TokenKind::kBegin) return false;
    std::uint32_t next = i + 1;
    if (tokens_[next].kind == TokenKind::kEnd) return false;
    for (unsigned looked = 0; next < tokens_.size() && isProseTag(next); ++next) {
      if ((tokens_[next].traits & kVoidName) || !gapBehind(next).empty() || ++looked > kTagsLookedThrough) return false;
    }
    if (next >= tokens_.size() || tokens_[next].kind != TokenKind::kWord) return false;
    const char c = page_.text[tokens_[next].begin];
    return isAscii(c) && c != '&' && kLineOrders.find(c) == kNone && kListMarks.find(c) == kNone;
  }

  // In a page of tags alone a line break may come between blocks that touch: inside what holds blocks only, and between
  // one block and the next.
  bool mayPart(std::uint32_t i) const {
    const LayoutToken& before = tokens_[i];
    const LayoutToken& after = tokens_[i + 1];
    if (!page_.isStatic || !isBlockTag(i) || !isBlockTag(i + 1)) return false;
    if (before.kind == TokenKind::kDeclaration) return after.kind == TokenKind::kBegin;
    if (after.kind == TokenKind::kDeclaration || nests_[i].partner == i + 1) return false;
    if (open_.empty()) return false;
    const std::uint32_t parent = tokens_[open_.back().token].traits;
    if (after.kind == TokenKind::kEnd && nests_[i + 1].partner != open_.back().token) return false;
    if (parent & kHolderName) return true;
    return (parent & kBlockName) && before.kind == TokenKind::kEnd && after.kind == TokenKind::kBegin;
  }

  Gap kindOf(std::uint32_t i) const {
    const std::string_view text = gapBehind(i);
    const std::uint32_t next = i + 1;
    if (top().counts || stopped_) return Gap::kFixed;
    if (tokens_[i].kind == TokenKind::kOpaque || tokens_[next].kind == TokenKind::kOpaque) return Gap::kFixed;
    if (text.empty()) return mayPart(i) ? Gap::kBreak : Gap::kFixed;
    const bool filling = i >= runBegin_ && i < runEnd_ && isElastic(i);
    if (!breaks(text)) {
      if (filling) return Gap::kProse;
      return page_.isWhole && !top().inAction && isBlockTag(i) && isBlockTag(next) ? Gap::kBreak : Gap::kFixed;
    }
    if (swallowsLineEnd(i) && !isBlockTag(next)) return Gap::kFixed;
    if (filling) return Gap::kProse;
    if (isBlockTag(i) || isBlockTag(next) || (isSilent(i) && isSilent(next)) || top().isText) return Gap::kIndent;
    return Gap::kFixed;
  }

  // --- lines ---------------------------------------------------------------------------------------------------------
  // How deep a line is that begins with token `i`, of which nothing was done yet.
  std::uint32_t levelOf(std::uint32_t i) const {
    const Nest& nest = nests_[i];
    if (tokens_[i].kind == TokenKind::kEnd && nest.partner != Nest::kNone)
      return open_[nests_[nest.partner].height].lineLevel;
    const std::size_t height = isTag(i) ? nest.height : open_.size();
    return height == 0 ? 0 : open_[height - 1].contentLevel;
  }

  // Whether the lines of what begins with token `i` keep their bytes, so that its first line stays with them.
  bool isAnchored(std::uint32_t i) const {
    const LayoutToken& token = tokens_[i];
    if (!isTag(i)) return token.kind != TokenKind::kDeclaration && breaks(textOf(i));
    const std::uint32_t partner = nests_[i].partner;
    if (token.kind != TokenKind::kBegin || partner == Nest::kNone) return false;
    const bool value = isAction(i) && bodyOf(nameOf(i)) == ActionBody::kValue;
    if (!value && !token.keeps && !(token.traits & (kKeptName | kCodeName))) return false;
    return breaks(page_.text.substr(token.begin, tokens_[partner].end - token.begin));
  }

  void gap(std::uint32_t i) {
    if (i >= runEnd_) beginRun(i);
    const std::string_view old = gapBehind(i);
    const std::uint32_t next = i + 1;
    const Gap kind = kindOf(i);
    bool breaksHere = breaks(old);
    if (kind == Gap::kBreak) breaksHere = i < breakEnd_;
    if (kind == Gap::kProse) breaksHere = column_ + 1 + chunkWidth(next) > limit();
    if (!breaksHere) {
      const bool joins = kind == Gap::kProse && breaks(old);
      if (joins) replace(tokens_[i].end, old, " ");
      column_ += joins ? 1 : widthOf(old);
      return;
    }
    // An element in a line of text holds lines of its own if it begins with a line break.
    if (tokens_[i].kind == TokenKind::kBegin && nests_[i].opens && !(tokens_[i].traits & kBlockName) &&
        nests_[i].partner != Nest::kNone) {
      open_.back().contentLevel = level_ + 1;
    }
    level_ = levelOf(next);
    std::string text = lineEndsOf(old);
    if (kind == Gap::kFixed) {
      text = old;
    } else if (breaks(old) && isAnchored(next)) {
      text += old.substr(old.find_last_of("\r\n") + 1);
    } else {
      text.append(indentOf(level_), ' ');
    }
    column_ = 0;
    advance(text);
    replace(tokens_[i].end, old, std::move(text));
    beginLine(next);
  }

  // A line that is too long breaks between all blocks that white space parts in it.
  void beginLine(std::uint32_t i) {
    if (i < breakEnd_) return;
    std::size_t width = column_;
    std::uint32_t at = i;
    for (; width <= limit(); ++at) {
      const std::string_view text = textOf(at);
      width += widthOf(text.substr(0, text.find_first_of("\r\n")));
      if (endsLine(at)) break;
      width += widthOf(gapBehind(at));
    }
    if (width <= limit()) return;
    if (lineEndAt_ < i || lineEndAt_ == 0) {
      for (lineEndAt_ = i; !endsLine(lineEndAt_);) ++lineEndAt_;
    }
    breakEnd_ = lineEndAt_;
  }

  // Whether the line of the source ends in or behind a token.
  bool endsLine(std::uint32_t i) const { return i + 1 == tokens_.size() || breaks(textOf(i)) || breaks(gapBehind(i)); }

  // Running text behind token `i` whose lines are filled, because one of them is too long: words and inline tags, in
  // whole lines. Sets runBegin_ and runEnd_.
  void beginRun(std::uint32_t i) {
    const std::uint32_t first = i + 1;
    if (first < runTried_ || !(breaks(gapBehind(i)) || isBlockTag(i)) || !isProse(first)) return;
    if (top().counts || stopped_ || top().inAction || !top().isText) return;
    std::uint32_t end = first;  // behind the last token
    std::uint32_t wholeLines = first;
    std::size_t width = breaks(gapBehind(i)) ? indentOf(levelOf(first)) : column_ + widthOf(gapBehind(i));
    bool tooLong = false;
    for (; end < tokens_.size() && isProse(end); ++end) {
      width += widthOf(textOf(end));
      tooLong = tooLong || width > limit();
      const std::string_view text = gapBehind(end);
      width += widthOf(text);
      if (!breaks(text)) continue;
      wholeLines = end + 1;
      width = indentOf(top().contentLevel);
      if (emptyLineIn(text)) {
        ++end;
        break;
      }
    }
    runTried_ = end;
    const bool whole = end == tokens_.size() || isBlockTag(end) || breaks(gapBehind(end - 1));
    if (whole) {
      if (gapBehind(end - 1).empty() && end < tokens_.size()) tooLong = tooLong || width + chunkWidth(end) > limit();
    } else {
      end = wholeLines;
    }
    if (!tooLong || end <= first) return;
    runBegin_ = first;
    runEnd_ = end - 1;
  }

  static bool emptyLineIn(std::string_view gap) {
    gap.remove_prefix(static_cast<std::size_t>(firstLineEnd(gap).end() - gap.begin()));
    return breaks(gap);
  }

  // The width of what stands from token `i` on up to white space, as far as it matters.
  std::size_t chunkWidth(std::uint32_t i) const {
    std::size_t width = 0;
    for (; i < tokens_.size() && width <= limit(); ++i) {
      const std::string_view text = textOf(i);
      const std::size_t end = text.find_first_of("\r\n");
      width += widthOf(text.substr(0, end));
      if (end != kNone || !gapBehind(i).empty()) break;
    }
    return width;
  }

  const LayoutPage& page_;
  const std::vector<LayoutToken>& tokens_;
  const FormatOptions& options_;
  const bool utf8_;
  const std::vector<Nest> nests_;
  std::string_view lineEnd_ = "\n";
  bool caseChanges_ = false;

  Layout result_;
  const Open outside_;
  std::vector<Open> open_;
  std::uint32_t first_ = 0;      // the first token behind a byte order mark
  std::uint32_t level_ = 0;      // of the line
  std::size_t column_ = 0;       // 0-based, behind what was laid out
  char lastByte_ = '\0';         // of the text before; NUL if it is no ASCII or something else than text
  bool stopped_ = false;         // what counts has no end
  std::uint32_t lineEndAt_ = 0;  // the last token of the line, as the source has it
  std::uint32_t breakEnd_ = 0;   // the last token of a line that breaks between blocks
  std::uint32_t runBegin_ = 0;   // running text that is filled: its first token
  std::uint32_t runEnd_ = 0;     // ... and its last
  std::uint32_t runTried_ = 0;   // all before was looked at for running text
};

}  // namespace

Layout layOut(const LayoutPage& page, const FormatOptions& options, int codepage) {
  return Liner(page, options, codepage).run();
}

}  // namespace zeldom40::tool
