// Tokens, declaration keywords and parameter entities of a document type definition.
#include "dom/dtd/DTDLexer.h"

#include <algorithm>
#include <cstring>

#include "dom/dtd/DTDFrame.h"

namespace zeldom40 {

namespace {

constexpr ByteSet kWordDelimiters = makeByteSet(" \t\v\r\f\n()[]|*?+<>,");
constexpr ByteSet kQuote = makeByteSet("\"");
constexpr ByteSet kApostrophe = makeByteSet("'");

// The delimiters and what calls for a closer look: a backslash, a reference, a NUL, for that may be the end.
constexpr ByteSet stopsOf(ByteSet delimiters) {
  for (char c : {'\\', '%', '\0'}) delimiters[static_cast<unsigned char>(c)] = true;
  return delimiters;
}
constexpr ByteSet kWordStops = stopsOf(kWordDelimiters);
constexpr ByteSet kQuoteStops = stopsOf(kQuote);
constexpr ByteSet kApostropheStops = stopsOf(kApostrophe);

// White space, a reference, or perhaps the end.
constexpr ByteSet kGaps = stopsOf(makeByteSet(" \t\v\r\f\n"));

// The tokens of one character; LEX_NONE for all others.
constexpr auto kCharacterTokens = [] {
  std::array<LexerType::LexToken, 256> kinds{};
  kinds['<'] = LexerType::LEX_TAG_OPEN;
  kinds['>'] = LexerType::LEX_TAG_CLOSE;
  kinds['('] = LexerType::LEX_LPAREN;
  kinds[')'] = LexerType::LEX_RPAREN;
  kinds['['] = LexerType::LEX_LBRACKET;
  kinds[']'] = LexerType::LEX_RBRACKET;
  kinds['*'] = LexerType::LEX_STAR;
  kinds['+'] = LexerType::LEX_PLUS;
  kinds[','] = LexerType::LEX_COMMA;
  kinds['?'] = LexerType::LEX_QUESTION;
  kinds['|'] = LexerType::LEX_BAR;
  kinds['&'] = LexerType::LEX_AMPERSAND;
  kinds['%'] = LexerType::LEX_PERCENT;
  return kinds;
}();

struct Keyword {
  std::string_view word;
  LexerType::LexToken kind;
  std::size_t length;  // what is stepped over
};

// In the order in which they are tried: each matches as a prefix. KEPT: "!NOTATION" is stepped over by the length of
// "!ATTLIST", so that an "N" stays behind and is read as a name, which the parser ignores.
constexpr Keyword kKeywords[] = {
    {"!ELEMENT", LexerType::LEX_ELEMENT_DECL, 8}, {"!ENTITY", LexerType::LEX_ENTITY_DECL, 7},
    {"!ATTLIST", LexerType::LEX_ATTLIST_DECL, 8}, {"!NOTATION", LexerType::LEX_NOTATION_DECL, 8},
    {"!--", LexerType::LEX_COMMENT, 1},           {"![", LexerType::LEX_MARKED_SECTION, 1},
    {"!GROUP", LexerType::LEX_GROUP_DECL, 6},
};

// CHOICE: entities that hold entities that hold entities grow a text without bound. What a text may grow by is bounded
// by its own length and at most 4 MB; a reference beyond counts as undeclared. The built-in text grows by its length.
constexpr std::size_t kMostGrowth = 4 << 20;
constexpr std::size_t kLeastGrowth = 16 << 10;
constexpr std::size_t kGrowthPerByte = 32;

// Enough for what is read of the built-in text with its replacements; a longer one gets more.
constexpr std::size_t kConstantRead = 16 << 10;

std::size_t growthFor(std::size_t length) {
  if (length >= kMostGrowth / kGrowthPerByte) return kMostGrowth;
  return std::min(kMostGrowth, kLeastGrowth + kGrowthPerByte * length);
}

void appendQuoted(std::string& out, std::string_view text) {
  if (text.empty()) return;
  out += " \"";
  out += text;
  out += '"';
}

bool isDigit(char c, bool hexadecimal) {
  return (c >= '0' && c <= '9') || (hexadecimal && ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F')));
}

unsigned digitValue(char c) {
  return static_cast<unsigned>(c >= 'a' ? c - 'a' + 10 : c >= 'A' ? c - 'A' + 10 : c - '0');
}

}  // namespace

// The built-in text grows by somewhat more than its length; who needs a wider gap gets one.
DTDLexer::DTDLexer(std::string_view text, const ParserType::_dtd_frame* frame)
    : frame_(frame),
      rest_(text.substr(text.size())),
      buffer_(new char[text.size() + text.size() * 5 / 4 + 2 * kSlack]),
      head_(text.size() * 5 / 4 + kSlack),
      end_(head_ + text.size()),
      growthLeft_(growthFor(text.size())),
      ownLeft_(text.size()) {
  text.copy(&buffer_[head_], text.size());
  std::memset(&buffer_[end_], 0, kSlack);
}

DTDLexer::DTDLexer(Constant constant, const ParserType::_dtd_frame* frame)
    : frame_(frame),
      rest_(constant.text),
      buffer_(new char[kConstantRead + kSlack]),
      head_(kConstantRead),
      end_(kConstantRead),
      growthLeft_(growthFor(constant.text.size())),
      ownLeft_(0) {
  std::memset(&buffer_[end_], 0, kSlack);
}

// --- the two parts of the text ---------------------------------------------------------------------------------------

void DTDLexer::takeMany(std::size_t count) {
  count = std::min(count, end_ - head_);
  std::memmove(&buffer_[read_], &buffer_[head_], count);
  read_ += count;
  head_ += count;
}

void DTDLexer::putAhead(std::string_view text) {
  ownLeft_ = std::min(ownLeft_, end_ - head_);
  if (text.size() > head_ - read_) {
    // A gap that grows with what is there, so that moving costs no more than what is put in.
    const std::size_t left = end_ - head_;
    const std::size_t head = read_ + text.size() + (read_ + left) + kLeastGrowth;
    std::unique_ptr<char[]> wider(new char[head + left + kSlack]);
    std::memcpy(&wider[0], &buffer_[0], read_);
    std::memcpy(&wider[head], &buffer_[head_], left + kSlack);
    buffer_ = std::move(wider);
    head_ = head;
    end_ = head + left;
  }
  head_ -= text.size();
  text.copy(&buffer_[head_], text.size());
}

// The next declaration of a constant text.
bool DTDLexer::refill() {
  if (rest_.empty()) return false;
  const std::string_view piece = rest_.substr(0, std::min(rest_.find('>'), rest_.size() - 1) + 1);
  putAhead(piece);
  ownLeft_ = piece.size();
  rest_.remove_prefix(piece.size());
  return true;
}

// What lies ahead of the position in the text itself, null if that is not the same.
std::string_view DTDLexer::ownAhead() const {
  const std::size_t left = end_ - head_;
  return left <= ownLeft_ ? std::string_view(rest_.data() - left, left + rest_.size()) : std::string_view();
}

std::string_view DTDLexer::skipOwn(std::size_t length) {
  const std::string_view skipped = ownAhead().substr(0, length);
  const std::size_t copied = std::min(length, end_ - head_);
  head_ += copied;
  rest_.remove_prefix(length - copied);
  return skipped;
}

std::string_view DTDLexer::skipDeclaration() {
  const std::size_t close = ownAhead().find('>');
  return close == std::string_view::npos ? std::string_view() : skipOwn(close + 1);
}

std::string_view DTDLexer::skipGeneralEntities(std::size_t* count) {
  constexpr std::string_view kOpening = "\n<!ENTITY ";
  const std::string_view text = ownAhead();
  *count = 0;
  std::size_t end = 0;
  for (std::size_t name = 1; text.starts_with(' ') && name < text.size() && text[name] != '%';) {
    const std::size_t close = text.find('>', name);
    if (close == std::string_view::npos) break;
    ++*count;
    end = close + 1;
    if (!text.substr(end).starts_with(kOpening)) break;
    name = end + kOpening.size();
  }
  return *count ? skipOwn(end) : std::string_view();
}

// --- references to parameter entities --------------------------------------------------------------------------------

// KEPT: a "%" that ends the text is a reference with an empty name.
bool DTDLexer::isReference(std::size_t at) const {
  return buffer_[at] == '%' && (at + 1 == end_ || !isSpaceByte(buffer_[at + 1]));
}

// Moves `at` behind the reference that stands there and appends its text to `out`. False, with LEX_UNDEFINED_ENTITY
// queued, if it has none: the reference is left out then.
bool DTDLexer::replacement(std::size_t& at, std::string& out) {
  const std::size_t nameStart = at + 1;
  std::size_t nameEnd = nameStart;
  while (nameEnd < end_ && buffer_[nameEnd] != ';' && buffer_[nameEnd] != ' ' && buffer_[nameEnd] != '>') ++nameEnd;
  at = nameEnd < end_ && buffer_[nameEnd] == ';' ? nameEnd + 1 : nameEnd;
  const EntityRecord* entity = frame_->parameterEntities->find({&buffer_[nameStart], nameEnd - nameStart});
  // Each replacement counts for one byte more than it has, so that entities which hold their own names end as well.
  const std::size_t cost =
      entity ? entity->text.size() + entity->publicId.size() + entity->systemId.size() + 1 : std::size_t{0};
  if (!entity || cost > growthLeft_) {
    addToken(LexerType::LEX_UNDEFINED_ENTITY, LexRecord::NO_POSITION, LexRecord::NO_POSITION);
    return false;
  }
  growthLeft_ -= cost;
  out += entity->text;
  appendQuoted(out, entity->publicId);
  appendQuoted(out, entity->systemId);
  return true;
}

// Expands the references that stand at the position, until none does, for an empty text brings the next one there, or
// one is undeclared. Returns false in that case.
bool DTDLexer::expandReferences() {
  std::string text;
  bool known = true;
  while (known && !atEnd() && isReference(head_)) {
    text.clear();
    std::size_t at = head_;
    known = replacement(at, text);
    head_ = at;
    putAhead(text);
    expandedTo_ = read_ + text.size();
  }
  return known;
}

// Expands the references that begin in the next `length` bytes, but for those in comments; quotes do not hide them.
// They are put together and put back in one piece. Returns whether anything changed.
bool DTDLexer::expandAhead(std::size_t length) {
  const std::size_t limit = head_ + std::min(length, end_ - head_);
  if (limit == head_ || !std::memchr(&buffer_[head_], '%', limit - head_)) return false;
  const std::string_view whole(buffer_.get(), end_);
  std::string expanded;
  std::size_t copied = head_;
  std::size_t lastText = 0;
  bool changed = false;
  for (std::size_t at = head_; at < limit;) {
    if (isReference(at)) {
      expanded.append(whole, copied, at - copied);
      const bool known = replacement(at, expanded);
      copied = at;
      lastText = expanded.size();
      changed = true;
      if (!known) break;
    } else if (whole[at] == '-' && at + 1 < end_ && whole[at + 1] == '-') {
      at = whole.find("--", at + 2);
      if (at != std::string_view::npos) at = whole.find_first_not_of('-', at);
      if (at == std::string_view::npos) break;
    } else {
      ++at;
    }
  }
  if (!changed) return false;
  head_ = copied;
  putAhead(expanded);
  expandedTo_ = read_ + lastText;
  return true;
}

// --- characters ------------------------------------------------------------------------------------------------------

char DTDLexer::nextChar(bool consume) {
  expandHere();
  if (atEnd()) return '\0';
  const char c = buffer_[head_];
  if (consume) take(1);
  return c;
}

bool DTDLexer::matchAt(std::string_view word) {
  if (read_ + word.size() > expandedTo_) expandAhead(word.size());
  return ahead().substr(0, word.size()) == word;
}

// Only lines of white space count. Returns false at an undeclared reference.
bool DTDLexer::skipSpace() {
  while (expandHere()) {
    if (atEnd() || !isSpaceByte(buffer_[head_])) return true;
    const char* const from = &buffer_[head_];
    const char* to = from;
    std::uint32_t lines = 0;
    for (; isSpaceByte(*to); ++to) lines += *to == '\n';
    line_ += lines;
    take(static_cast<std::size_t>(to - from));
  }
  return false;
}

// Takes the text up to the first of `delimiters`; one behind a backslash does not count. Text up to a
// delimiter that has no other of their `stops` needs one walk only.
void DTDLexer::scanUntil(const ByteSet& delimiters, const ByteSet& stops) {
  const char before = read_ == 0 ? '\0' : buffer_[read_ - 1];
  const char* const from = &buffer_[head_];
  const char* to = from;
  while (!stops[static_cast<unsigned char>(*to)]) ++to;
  if (before != '\\' && delimiters[static_cast<unsigned char>(*to)]) {
    take(static_cast<std::size_t>(to - from));
    return;
  }
  const auto find = [this, &delimiters, before] {
    char last = before;
    std::size_t at = head_;
    for (; at < end_; last = buffer_[at++]) {
      if (delimiters[static_cast<unsigned char>(buffer_[at])] && last != '\\') break;
    }
    return at - head_;
  };
  std::size_t length = find();
  if (read_ + length > expandedTo_ && expandAhead(length)) length = find();
  take(length);
}

// --- tokens ----------------------------------------------------------------------------------------------------------

inline void DTDLexer::addCharacter(LexerType::LexToken kind) {
  take(1);
  addToken(kind, position() - 1, position());
}

int DTDLexer::lex() {
  do {
    // Nothing, or one blank, stands before most tokens.
    if (buffer_[head_] == ' ') {
      buffer_[read_++] = ' ';
      ++head_;
    }
    if (kGaps[static_cast<unsigned char>(buffer_[head_])] && !skipSpace()) return 0;  // LEX_UNDEFINED_ENTITY is queued
  } while (atEnd() && refill());
  if (atEnd()) {
    addToken(LexerType::LEX_EOF, LexRecord::NO_POSITION, LexRecord::NO_POSITION);
    return 0;
  }
  const char c = buffer_[head_];
  if (const LexerType::LexToken kind = kCharacterTokens[static_cast<unsigned char>(c)]) {
    addCharacter(kind);
    return 0;
  }
  switch (c) {
    case '-':
      if (matchAt("--")) {
        lexComment();
      } else {
        addCharacter(LexerType::LEX_MINUS);
      }
      break;
    case '"':
    case '\'':
      lexLiteral(c);
      break;
    case '!':
      lexKeyword();
      break;
    default:
      lexWord();
      break;
  }
  return 0;
}

void DTDLexer::lexKeyword() {
  for (const Keyword& keyword : kKeywords) {
    if (!matchAt(keyword.word)) continue;
    const std::uint32_t start = position();
    take(keyword.length);
    if (keyword.kind == LexerType::LEX_COMMENT) {
      lexComment();
    } else {
      addToken(keyword.kind, start, position());
    }
    return;
  }
  // CHOICE: the token is empty, yet the "!" is stepped over, so that the declarations behind it are read.
  addToken(LexerType::LEX_BANG, position(), position());
  take(1);
}

// A comment closes at the next "--" and swallows every dash behind it. Nothing in it is expanded.
void DTDLexer::lexComment() {
  const std::uint32_t start = position();
  std::size_t end = ahead().find("--", 2);
  if (end != std::string_view::npos) end = ahead().find_first_not_of('-', end);
  take(end);
  addToken(LexerType::LEX_COMMENT, start, position());
}

void DTDLexer::lexLiteral(char quote) {
  take(1);
  const std::uint32_t start = position();
  if (quote == '"') {
    scanUntil(kQuote, kQuoteStops);
  } else {
    scanUntil(kApostrophe, kApostropheStops);
  }
  addToken(LexerType::LEX_LITERAL, start, position());
  take(1);
}

void DTDLexer::lexWord() {
  const std::uint32_t start = position();
  scanUntil(kWordDelimiters, kWordStops);
  const std::string_view word(&buffer_[start], read_ - start);
  addToken(word == "#PCDATA" ? LexerType::LEX_PCDATA
           : word == "CDATA" ? LexerType::LEX_CDATA
                             : LexerType::LEX_NAME,
           start, position());
}

// --- character references --------------------------------------------------------------------------------------------

bool DTDLexer::isCharacterReference(std::string_view s) {
  if (s.size() < 4 || s[0] != '&' || s[1] != '#' || s.back() != ';') return false;
  const bool hexadecimal = s[2] == 'x';
  for (std::size_t i = hexadecimal ? 4 : 3; i + 1 < s.size(); ++i) {
    if (!isDigit(s[i], hexadecimal)) return false;
  }
  return true;
}

bool DTDLexer::encodeCharacterReference(std::string& text, std::uint32_t* code) {
  if (!isCharacterReference(text)) return false;
  const bool hexadecimal = text[2] == 'x';
  const unsigned base = hexadecimal ? 16 : 10;
  std::uint64_t value = 0;
  for (std::size_t i = hexadecimal ? 3 : 2; i + 1 < text.size() && isDigit(text[i], hexadecimal); ++i) {
    value = std::min<std::uint64_t>(value * base + digitValue(text[i]), 0xFFFFFFFF);
  }
  if ((value & 0xFFFF) == 0) return false;
  const auto high = static_cast<char>(value >> 8 & 0xFF);
  const auto low = static_cast<char>(value & 0xFF);
  if (high == 0) {
    text = {kPairMark, low};
  } else if (low != 0) {
    text = {kQuadMark, kQuadMark, high, low};
  } else {
    text = {kQuadMark, kPairMark, high, kQuadMark};
  }
  *code = static_cast<std::uint32_t>(value);
  return true;
}

}  // namespace zeldom40
