// Cuts a page into the pieces that its layout is made of.
#include "tools/zeldom/format_tokens.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "tools/zeldom/format_names.h"
#include "tools/zeldom/format_style.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kSpaces = " \t\r\n\f";
constexpr std::size_t kLongestExpression = 1 << 16;
constexpr std::size_t kLongestTemplateCode = 1 << 12;
// Actions inside of the values of actions, for example <a href="<c:url value="/x"/>">.
constexpr std::size_t kDeepestTag = 8;
// So many times the size of a page may be read in vain, in search of an end that is not there.
constexpr std::size_t kPatience = 16;

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isSpace(char c) { return kSpaces.find(c) != kNone; }

std::string lowered(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), lower);
  return out;
}

bool contains(std::string_view text, std::string_view word) { return text.find(word) != kNone; }

// The value of an attribute of a tag, without quotes; empty if there is none. `name` is in lower case.
std::string_view valueOf(std::string_view tag, std::string_view name) {
  for (std::size_t i = tag.find_first_of(kSpaces); i < tag.size();) {
    const std::size_t begin = tag.find_first_not_of(" \t\r\n\f/>", i);
    if (begin == kNone) break;
    const std::size_t end = std::min(tag.find_first_of(" \t\r\n\f/>=", begin + 1), tag.size());
    std::size_t value = std::min(tag.find_first_not_of(kSpaces, end), tag.size());
    i = end;
    if (value == tag.size() || tag[value] != '=') continue;
    value = std::min(tag.find_first_not_of(kSpaces, value + 1), tag.size());
    const bool quoted = value < tag.size() && (tag[value] == '"' || tag[value] == '\'');
    if (quoted) ++value;
    const std::size_t stop =
        std::min(quoted ? tag.find(tag[value - 1], value) : tag.find_first_of(" \t\r\n\f>", value), tag.size());
    if (lowered(tag.substr(begin, end - begin)) == name) return tag.substr(value, stop - value);
    i = stop + (quoted ? 1 : 0);
  }
  return {};
}

// Whether an attribute of the tag is a style or a handler of events.
bool hasStyleOrHandler(std::string_view tag) {
  for (std::size_t i = tag.find_first_of(kSpaces); i < tag.size(); i = tag.find_first_of(kSpaces, i)) {
    i = std::min(tag.find_first_not_of(kSpaces, i), tag.size());
    const std::string word = lowered(tag.substr(i, 5));
    if (word == "style" || word.substr(0, 2) == "on") return true;
  }
  return false;
}

bool hasCodeClass(std::string_view classes) {
  for (std::size_t at = 0; at < classes.size();) {
    const std::size_t begin = std::min(classes.find_first_not_of(kSpaces, at), classes.size());
    at = std::min(classes.find_first_of(kSpaces, begin), classes.size());
    if (namesCode(lowered(classes.substr(begin, at - begin)))) return true;
  }
  return false;
}

// How a tag is read to its end.
enum class Reading : std::uint8_t {
  kBrowser,  // a quote opens behind "=" alone, and a "<" is nothing special
  kServer    // server code in it is no part of it, and a "<" that opens nothing of the kind begins something new
};

class Cutter {
 public:
  Cutter(const SourceMap& map, std::string_view text, std::size_t limit)
      : map_(map), limit_(limit), patience_(kPatience * text.size() + (1 << 20)) {
    page_.text = text;
  }

  LayoutPage run(Node* root) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (page_.text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
      push(0, kByteOrderMark.size(), TokenKind::kDeclaration);
    }
    const auto enter = [this](Node* node, unsigned) {
      const bool isElement = node->getNodeType() == Node::NODE_ELEMENT;
      if (inPair_) return;
      if (isElement && !static_cast<Element*>(node)->getMetaData()) {
        tagPiece(map_.getBeginTag(node));
      } else if (isElement) {
        inPair_ = node;
        opaque(map_.getRange(node), "a pair of design-time and run-time text");
      } else if (node->getNodeType() == Node::NODE_TEXT) {
        textPiece(map_.getRange(node), static_cast<Text*>(node)->getTextType());
      } else {
        tagPiece(map_.getRange(node));
      }
    };
    const auto leave = [this](Node* node) {
      if (inPair_ == node) {
        inPair_ = nullptr;
      } else if (!inPair_ && node->getNodeType() == Node::NODE_ELEMENT) {
        tagPiece(map_.getEndTag(node));
      }
    };
    walk(root, enter, leave);
    const std::size_t rest = std::min(page_.text.find_first_not_of(" \t\r\n", at_), page_.text.size());
    if (rest < page_.text.size()) stop(rest, "the rest of the page, of which the places are not known");
    finish();
    return std::move(page_);
  }

 private:
  // --- tokens --------------------------------------------------------------------------------------------------------
  LayoutToken& push(std::size_t begin, std::size_t end, TokenKind kind) {
    LayoutToken& token = page_.tokens.emplace_back();
    token.begin = static_cast<std::uint32_t>(begin);
    token.end = static_cast<std::uint32_t>(end);
    token.kind = kind;
    at_ = end;
    return token;
  }

  void leaveAlone(std::size_t begin, std::size_t end, const char* reason) {
    page_.leftAlone.push_back({static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end), reason});
  }

  // The rest of the page stays as it is.
  void stop(std::size_t begin, const char* reason) {
    push(begin, page_.text.size(), TokenKind::kOpaque);
    leaveAlone(begin, page_.text.size(), reason);
  }

  // False for a piece without bytes, or that is part of the token before; what sticks out of that becomes opaque.
  bool begins(SourceMap::Range piece) {
    if (!piece.isKnown() || piece.end <= at_) return false;
    if (piece.end > limit_) {
      stop(std::max(piece.begin, at_), "bytes that look like server code to who does not know the charset");
      return false;
    }
    if (piece.begin >= at_) return true;
    push(at_, piece.end, TokenKind::kOpaque);
    return false;
  }

  void opaque(SourceMap::Range piece, const char* reason) {
    if (!begins(piece)) return;
    push(piece.begin, piece.end, TokenKind::kOpaque);
    leaveAlone(piece.begin, piece.end, reason);
  }

  std::uint32_t nameNumber(std::string_view name) {
    std::string key = lowered(name);
    const auto [found, isNew] = numbers_.try_emplace(key, static_cast<std::uint32_t>(page_.names.size()));
    if (isNew) {
      traits_.push_back(traitsOf(key));
      page_.names.push_back(std::move(key));
    }
    return found->second;
  }

  // --- searches ------------------------------------------------------------------------------------------------------
  std::string_view text() const { return page_.text; }
  char charAt(std::size_t i) const { return i < page_.text.size() ? page_.text[i] : '\0'; }
  bool startsAt(std::size_t i, std::string_view word) const { return page_.text.substr(i, word.size()) == word; }

  // Notes that `bytes` were read in vain. False when that was too much for one page.
  bool waste(std::size_t bytes) {
    patience_ -= std::min(bytes, patience_);
    return patience_ > 0;
  }

  // What closes something. Where it was not found once it is not searched for again.
  struct Terminator {
    std::string_view word;
    std::size_t absentFrom = kNone;
  };

  std::size_t endBehind(Terminator& terminator, std::size_t from) {
    if (from >= terminator.absentFrom) return kNone;
    const std::size_t found = page_.text.find(terminator.word, from);
    if (found != kNone) return found + terminator.word.size();
    terminator.absentFrom = from;
    return kNone;
  }

  // Behind the <% %>, <%-- --%>, <? ?> or <!--# --> at `at`; kNone without end. What is none of these is 0.
  std::size_t serverEnd(std::size_t at) {
    if (startsAt(at, "<%--")) return endBehind(jspComment_, at + 4);
    if (startsAt(at, "<%")) return endBehind(jspCode_, at + 2);
    if (startsAt(at, "<!--#")) return endBehind(comment_, at + 5);
    if (startsAt(at, "<?")) return endBehind(instruction_, at + 2);
    return 0;
  }

  // Behind the ${ } or #{ } at `at`; kNone without end. Braces in strings count or not, whichever ends later.
  std::size_t expressionEnd(std::size_t at) {
    if (patience_ == 0) return kNone;
    const std::string_view window = text().substr(0, at + kLongestExpression);
    std::size_t ends[2] = {kNone, kNone};
    for (const bool strings : {false, true}) {
      std::size_t depth = 1;
      for (std::size_t i = window.find_first_of("\"'{}", at + 2); i != kNone;
           i = window.find_first_of("\"'{}", i + 1)) {
        if (window[i] == '{') {
          ++depth;
        } else if (window[i] == '}') {
          if (--depth > 0) continue;
          ends[strings] = i + 1;
          break;
        } else if (const std::size_t quote = strings ? window.find(window[i], i + 1) : kNone; quote != kNone) {
          i = quote;
        }
      }
      const std::size_t read = ends[strings] == kNone ? window.size() - at : ends[strings] - at;
      if (strings || ends[strings] == kNone) waste(read);
    }
    if (ends[0] == kNone || ends[1] == kNone) return std::min(ends[0], ends[1]);
    return std::max(ends[0], ends[1]);
  }

  // Behind the {{ }}, {% %} or {# #} at `at`; kNone if there is none.
  std::size_t templateEnd(std::size_t at) {
    const char close[] = {charAt(at + 1) == '{' ? '}' : charAt(at + 1), '}', '\0'};
    const std::string_view window = text().substr(0, at + kLongestTemplateCode);
    if (patience_ == 0) return kNone;
    const std::size_t found = window.find(close, at + 2);
    if (found == kNone) waste(window.size() - at);
    return found == kNone ? kNone : found + 2;
  }

  // Behind the construct of a server or template at `at`; kNone if there is none or it has no end.
  std::size_t codeEnd(std::size_t at) {
    const char c = charAt(at), next = charAt(at + 1);
    if (c == '<') {
      const std::size_t end = serverEnd(at);
      return end == 0 ? kNone : end;
    }
    if ((c == '$' || c == '#') && next == '{') return expressionEnd(at);
    if (c == '{' && (next == '{' || next == '%' || next == '#')) return templateEnd(at);
    return kNone;
  }

  // Whether a name with a prefix, as custom actions have, stands at `at`.
  bool actionAt(std::size_t at) const {
    if (!isLetter(charAt(at))) return false;
    const std::size_t end = text().find_first_of(" \t\r\n\f<>/\"'=:", at);
    return charAt(end) == ':' && isLetter(charAt(end + 1));
  }

  // Behind the tag at `at`; kNone if it has no end. `code` tells whether server code is in it.
  std::size_t tagEnd(std::size_t at, Reading reading, bool* code) {
    char quotes[kDeepestTag + 1] = {};  // open at each depth of actions in values; 0: none
    std::size_t depth = 0;
    *code = false;
    for (std::size_t i = text().find_first_of("<>\"'$#{", at + 1); i != kNone;
         i = text().find_first_of("<>\"'$#{", i)) {
      const char c = text()[i];
      char& quote = quotes[depth];
      if (reading == Reading::kServer && c != '>' && c != '"' && c != '\'') {
        if (const std::size_t end = codeEnd(i); end != kNone) {
          *code = true;
          i = end;
          continue;
        }
        if (serverEnd(i) == kNone) {
          *code = true;
          return kNone;
        }
        if (c == '<') {
          const std::size_t name = i + (charAt(i + 1) == '/' ? 2 : 1);
          if (actionAt(name) && depth < kDeepestTag) {
            *code = true;
            quotes[++depth] = 0;
          } else if (!quote) {
            gaveUp_ = i;
            return kNone;
          }
        }
      } else if (quote) {
        if (c == quote) quote = 0;
      } else if (c == '"' || c == '\'') {
        const std::size_t before = text().find_last_not_of(kSpaces, i - 1);
        const bool value = before != kNone && text()[before] == '=';
        if (value || (reading == Reading::kServer && isSpace(text()[i - 1]))) quote = c;
      } else if (c == '>') {
        if (depth == 0) return i + 1;
        --depth;
      }
      ++i;
    }
    return kNone;
  }

  // Where "</name" stands from `from` on; kNone if nowhere.
  std::size_t endTagOf(std::string_view name, std::size_t from) const {
    for (std::size_t i = text().find("</", from); i != kNone; i = text().find("</", i + 2)) {
      const std::string_view found = text().substr(i + 2, name.size());
      const char behind = charAt(i + 2 + name.size());
      if (found.size() == name.size() && (isSpace(behind) || behind == '>' || behind == '/') &&
          std::equal(found.begin(), found.end(), name.begin(), [](char a, char b) { return lower(a) == b; })) {
        return i;
      }
    }
    return kNone;
  }

  std::uint32_t traitsAt(std::size_t at) const {
    return traitsOf(
        lowered(text().substr(at, std::min<std::size_t>(text().find_first_of(" \t\r\n\f<>/\"'=", at) - at, 16))));
  }

  // Whether the "<" at `at` would make something else than markup of what follows.
  bool hidesMarkup(std::size_t at) const {
    const char next = charAt(at + 1);
    return next == '!' || next == '?' || next == '%' || (isLetter(next) && (traitsAt(at + 1) & kKeptName));
  }

  // Whether all that hides markup ends within its bytes, so that readers who take a stretch of the page for markup and
  // readers who do not go on alike behind it.
  bool isClosed(std::size_t from, std::size_t to) const {
    for (std::size_t i = text().find('<', from); i < to; i = text().find('<', i + 1)) {
      if (!hidesMarkup(i)) continue;
      std::size_t end = kNone;
      if (startsAt(i, "<!--")) {
        end = text().substr(0, to).find("-->", i + 4);
      } else if (isLetter(charAt(i + 1))) {
        const std::size_t nameEnd = text().find_first_of(" \t\r\n\f<>/\"'=", i + 1);
        end = text().substr(0, to).find("</" + std::string(text().substr(i + 1, nameEnd - i - 1)), i);
      } else {
        end = text().substr(0, to).find(charAt(i + 1) == '!' ? ">" : charAt(i + 1) == '%' ? "%>" : "?>", i + 2);
      }
      if (end == kNone) return false;
      i = end;
    }
    return true;
  }

  // --- pieces --------------------------------------------------------------------------------------------------------
  // A tag, comment, declaration or piece of server code, as the tree has it.
  void tagPiece(SourceMap::Range piece) {
    if (!begins(piece)) return;
    const std::size_t at = piece.begin;
    const char next = charAt(at + 1);
    if (charAt(at) != '<') return opaque(piece, "a tag without begin");
    if (const std::size_t end = serverEnd(at); end != 0) return serverPiece(piece, end);
    if (startsAt(at, "<!--")) return commentPiece(piece);
    if (startsAt(at, "<![CDATA[")) return sectionPiece(piece);
    if (next == '!') return declarationPiece(piece);
    if (isLetter(next) || (next == '/' && isLetter(charAt(at + 2)))) return tag(piece);
    stop(at, "markup that a browser reads otherwise");
  }

  void serverPiece(SourceMap::Range piece, std::size_t end) {
    if (end == kNone || end < piece.end) return stop(piece.begin, "server code without a clear end");
    const std::size_t at = piece.begin;
    const bool traceless = startsAt(at, "<%") && !startsAt(at, "<%=");
    const bool silent = traceless || startsAt(at, "<!--#if") || startsAt(at, "<!--#el") || startsAt(at, "<!--#end") ||
                        startsAt(at, "<!--#set") || startsAt(at, "<!--#config");
    if (startsAt(at, "<%@")) noteDirective(text().substr(at, end - at));
    push(at, end, silent ? TokenKind::kCode : TokenKind::kOutput);
    server_ = true;
  }

  // A page can say that it is no HTML.
  void noteDirective(std::string_view directive) {
    const std::string type = lowered(valueOf(directive.substr(3), "contenttype"));
    if (!type.empty() && !contains(type, "html") && !contains(type, "$") && !contains(type, "<"))
      page_.isMarkup = false;
  }

  void commentPiece(SourceMap::Range piece) {
    const std::size_t at = piece.begin;
    std::size_t end = endBehind(comment_, at + 4);
    if (charAt(at + 4) == '>') end = at + 5;
    if (startsAt(at + 4, "->")) end = at + 6;
    end = std::min(end, endBehind(oddComment_, at + 4));
    if (end != piece.end) return stop(at, "a comment that readers end at different places");
    push(at, end, TokenKind::kComment);
  }

  void sectionPiece(SourceMap::Range piece) {
    const std::size_t end = endBehind(section_, piece.begin);
    if (end == kNone) return stop(piece.begin, "a CDATA section without end");
    push(piece.begin, std::max(end, piece.end), TokenKind::kOpaque);
    leaveAlone(piece.begin, std::max(end, piece.end), "a CDATA section");
  }

  void declarationPiece(SourceMap::Range piece) {
    const std::size_t end = endBehind(greater_, piece.begin);
    if (end == kNone) return stop(piece.begin, "a declaration without end");
    const bool isType = lowered(text().substr(piece.begin, 9)) == "<!doctype";
    push(piece.begin, std::max(end, piece.end), isType ? TokenKind::kDeclaration : TokenKind::kComment);
  }

  void tag(SourceMap::Range piece) {
    const std::size_t at = piece.begin;
    bool code = false;
    std::size_t end = tagEnd(at, Reading::kServer, &code);
    if (!code) {
      bool unused = false;
      const std::size_t browser = tagEnd(at, Reading::kBrowser, &unused);
      if (browser == kNone) return stop(at, "a tag without end");
      if (end == kNone) {
        if (hidesMarkup(gaveUp_) || text().find('<', gaveUp_ + 1) < browser) return stop(at, "a tag inside of a tag");
        end = std::max(browser, piece.end);
      } else if (end != browser) {
        return stop(at, "a tag that readers end at different places");
      }
    }
    if (end == kNone) return stop(at, "a tag without end");
    if (end < piece.end) return stop(at, "a tag that readers end at different places");
    const bool isEnd = charAt(at + 1) == '/';
    const std::size_t nameAt = at + (isEnd ? 2 : 1);
    const std::string_view name =
        text().substr(nameAt, std::min(text().find_first_of(" \t\r\n\f<>/\"'=", nameAt), end) - nameAt);
    tagToken(at, end, isEnd ? TokenKind::kEnd : TokenKind::kBegin, name);
    if (code || contains(name, ":")) server_ = true;
    if (!isEnd) content(page_.tokens.size() - 1);
  }

  void tagToken(std::size_t begin, std::size_t end, TokenKind kind, std::string_view name) {
    LayoutToken& token = push(begin, end, kind);
    token.name = nameNumber(name);
    token.traits = traits_[token.name];
    token.closed = kind == TokenKind::kBegin && text()[end - 2] == '/';
  }

  // What stands in an element whose content is no markup, and its end tag.
  void content(std::size_t index) {
    const LayoutToken& token = page_.tokens[index];
    const std::string& name = page_.names[token.name];
    const bool isAction = contains(name, ":");
    const bool raw = isAction ? !token.closed && name.substr(0, 4) == "jsp:" && bodyOf(name) == ActionBody::kValue &&
                                    name != "jsp:param"
                              : (token.traits & kRawName) != 0;
    if (!raw) return;
    if (name == "plaintext") return stop(token.end, "the content of PLAINTEXT");
    const std::size_t from = token.end;
    const std::size_t stopAt = endTagOf(name, from);
    if (stopAt == kNone) return stop(from, "the rest of the page behind a tag whose content is no markup");
    const std::string_view inside = text().substr(from, stopAt - from);
    // Inside a comment in a script a second script may begin, which takes the end tag for itself.
    if (name == "script" && contains(inside, "<!--") && contains(lowered(inside), "<script")) {
      return stop(from, "a script that readers end at different places");
    }
    // Not all readers take the content of these for text.
    if (name != "script" && name != "style" && name != "textarea" && name != "xmp" && !isClosed(from, stopAt)) {
      return stop(from, "content that readers end at different places");
    }
    if (name == "style") sheet_ += std::string(inside) + "\n";
    if (stopAt > from) {
      push(from, stopAt, TokenKind::kOpaque);
      leaveAlone(from, stopAt, name == "title" ? "a title" : "content that is no markup, or is none to some readers");
    }
    bool code = false;
    const std::string copy = name;
    const std::size_t end = tagEnd(stopAt, Reading::kServer, &code);
    if (end == kNone) return stop(stopAt, "a tag without end");
    tagToken(stopAt, end, TokenKind::kEnd, copy);
  }

  void textPiece(SourceMap::Range piece, Text::TextType type) {
    if (type == Text::TEXT_LITERAL) return opaque(piece, "text that is taken literally");
    if (!piece.isKnown() || piece.end <= at_) return;
    std::size_t i = std::max(piece.begin, at_);
    if (piece.end > limit_) return stop(i, "bytes that look like server code to who does not know the charset");
    std::size_t word = kNone;  // where an open word began
    const auto close = [&](std::size_t end) {
      if (word != kNone) push(word, end, TokenKind::kWord);
      word = kNone;
    };
    while (i < piece.end) {
      const char c = text()[i];
      if (isLayoutSpace(c)) {
        close(i++);
        continue;
      }
      const char next = charAt(i + 1);
      if (c == '<' && (isLetter(next) || next == '/' || next == '!' || next == '?' || next == '%')) {
        close(i);
        return stop(i, "what a browser may take for a tag");
      }
      const bool opens = (c == '$' && next == '{') || (c == '#' && next == '{') ||
                         (c == '{' && (next == '{' || next == '%' || next == '#'));
      if (const std::size_t end = opens ? codeEnd(i) : kNone; end != kNone) {
        close(i);
        push(i, end, TokenKind::kOutput);
        server_ = true;
        i = end;
        continue;
      }
      if (word == kNone) word = i;
      ++i;
    }
    close(std::min(i, piece.end));
    at_ = std::max(at_, piece.end);
  }

  // --- what is known when all is read --------------------------------------------------------------------------------
  void finish() {
    KeptByStyle styles;
    styles.read(sheet_);
    bool plain = sheet_.empty() && !server_;
    for (LayoutToken& token : page_.tokens) {
      if (token.kind != TokenKind::kBegin) continue;
      const std::string& name = page_.names[token.name];
      const std::string_view tag = text().substr(token.begin, token.end - token.begin);
      const std::string_view classes = valueOf(tag, "class");
      token.keeps = keepsSpace(valueOf(tag, "style")) || hasCodeClass(classes) ||
                    lowered(valueOf(tag, "xml:space")) == "preserve" || contains(lowered(tag), "contenteditable") ||
                    (!(token.traits & kVoidName) && styles.concerns(name, classes, valueOf(tag, "id")));
      if (name == "html" || name == "body") page_.isWhole = true;
      if (name == "script" || name == "link" || name == "style" || !token.traits || hasStyleOrHandler(tag))
        plain = false;
    }
    page_.isStatic = plain && page_.isWhole;
  }

  const SourceMap& map_;
  const std::size_t limit_;
  LayoutPage page_;
  std::size_t at_ = 0;      // all before is in tokens, or is white space
  std::size_t gaveUp_ = 0;  // where the last tag without end broke off
  Node* inPair_ = nullptr;
  std::unordered_map<std::string, std::uint32_t> numbers_;
  std::vector<std::uint32_t> traits_;  // of each name
  std::string sheet_;                  // all style sheets of the page
  bool server_ = false;
  std::size_t patience_;
  Terminator jspComment_{"--%>"}, jspCode_{"%>"}, comment_{"-->"}, oddComment_{"--!>"}, instruction_{"?>"},
      greater_{">"}, section_{"]]>"};
};

}  // namespace

LayoutPage cutLayout(Node* root, const SourceMap& map, std::string_view text, std::size_t limit) {
  return Cutter(map, text, limit).run(root);
}

}  // namespace zeldom40::tool
