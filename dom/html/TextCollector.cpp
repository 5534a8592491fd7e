// Running text of a page: which stretch becomes a text node, and where it goes.
#include <cstring>

#include "dom/document/Document.h"
#include "dom/dtd/DTDFrame.h"
#include "dom/html/PageParser.h"
#include "dom/source/CharHelpers.h"
#include "dom/source/MarkedText.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

namespace {

const LexerType::LexToken kOddTokens[] = {LexerType::LEX_COMMENT,       LexerType::LEX_SERVER_COMMENT,
                                          LexerType::LEX_SERVER_TAG,    LexerType::LEX_PROCESSING,
                                          LexerType::LEX_CDATA_SECTION, LexerType::LEX_DOCTYPE};

// Tokens that reach running text only behind a declaration that gave up: their text is not what their source assembles
// to.
bool isOdd(const LexRecord& token) {
  for (const LexerType::LexToken kind : kOddTokens) {
    if (token.kind == kind) return true;
  }
  return token.kind == LexerType::LEX_TAG_CLOSE && token.length == 0;
}

}  // namespace

void PageParser::beginText(std::uint32_t start) {
  pending_ = true;
  pendingAllSpace_ = true;
  pendingOwnForm_ = false;
  pendingContext_ = {trailingSpace_ || afterBreak_, preDepth_ > 0};
  rawStart_ = rawEnd_ = start;
}

inline void PageParser::placeText(Text* text, bool isSpace) {
  afterBreak_ = false;
  if (table_ && fitsDirectly(textPlace_, ContentTable::textNameId(Text::TEXT_NORMAL))) {
    insertLast(text);
    trailingSpace_ = lastWasSpace_;
  } else {
    placeTextByQuestion(text, isSpace);
  }
}

void PageParser::placeTextByQuestion(Text* text, bool isSpace) {
  const Path* implied = nullptr;
  const bool fitting = fits(top(), textSubject(text), implied);
  if (fitting && !(isSpace && !implied->empty())) {
    placeWithImplied(text, nullptr, *implied, /*selfClosed=*/false);
    trailingSpace_ = lastWasSpace_;
  } else {
    // White space must not bring an element about.
    if (isSpace) {
      text->setTextType(Text::TEXT_FORMATTING);
    } else {
      text->setError(ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST);
    }
    insertLast(text);
  }
}

// A mark at the very start of a page, with white space that leads to a tag: as text it would bring about HTML and BODY
// in front of the document type.
void PageParser::readByteOrderMark() {
  const std::string_view text = lexer_.text();
  if (lexer_.position() != 0 || lexer_.queued() != 0 || !text.starts_with(kByteOrderMark)) return;
  if (!document_ || topNode() != document_->getDocumentElement() || topNode()->hasChildNodes()) return;
  std::size_t end = kByteOrderMark.size();
  while (end < text.size() && isSpaceByte(text[end])) ++end;
  if (end < text.size() && text[end] != '<') end = kByteOrderMark.size();
  const auto behind = static_cast<std::uint32_t>(end);
  Text* mark = TextAccess::createAssembled(textKind_.share(), sliceOf(0, behind), {});
  mark->setTextType(Text::TEXT_FORMATTING);
  insertLast(mark);
  lexer_.skipTo(behind);
  lastEnd_ = behind;
}

// Takes all text up to the next "<" that opens something, in one go.
void PageParser::readTextRun() {
  const std::uint32_t start = lexer_.position();
  const char* const text = lexer_.text().data();
  const char* const behindAll = text + lexer_.length();
  const char* const from = text + start;
  const char* end = from;
  while (true) {
    end = static_cast<const char*>(std::memchr(end, '<', static_cast<std::size_t>(behindAll - end)));
    if (!end) {
      end = behindAll;
      break;
    }
    const char behind = end[1];  // at the end of the text a NUL
    if (!isSpaceByte(behind) && !(behind > '0' && behind < '9')) break;
    ++end;
  }
  if (end == from) return;
  const auto stop = static_cast<std::uint32_t>(end - text);
  const std::string_view run(from, stop - start);
  const char behindOpen = stop < lexer_.length() ? end[1] : '\0';
  if (!pending_ && (isLetterByte(behindOpen) || behindOpen == '/')) {
    // A tag follows for sure, so this is a whole text.
    const TextContext context{trailingSpace_ || afterBreak_, preDepth_ > 0};
    lastWasSpace_ = isSpaceByte(run.back());
    lexer_.skipTo(stop);
    lastEnd_ = stop;
    placeText(TextAccess::createAssembled(textKind_.share(), sliceOf(start, stop), context),
              lastWasSpace_ && isSpaceByte(*from) && isAllSpace(run));
    return;
  }
  if (!pending_) beginText(start);
  if (pendingOwnForm_) {
    pendingText_ += assemblePlainText(run, {lastWasSpace_, preDepth_ > 0}, FrameTables::entities(frame_));
  }
  rawEnd_ = stop;
  lastWasSpace_ = isSpaceByte(run.back());
  if (pendingAllSpace_) pendingAllSpace_ = lastWasSpace_ && isSpaceByte(*from) && isAllSpace(run);
  afterBreak_ = false;
  lexer_.skipTo(stop);
  lastEnd_ = stop;
}

void PageParser::addToText(const LexRecord& token) {
  if (!pending_) beginText(textStart_);
  if (!pendingOwnForm_ && isOdd(token)) {
    pendingText_ = assemblePlainText(sliceOf(rawStart_, rawEnd_).in(lexer_.page()), pendingContext_,
                                     FrameTables::entities(frame_));
    pendingOwnForm_ = true;
  }
  const bool isSpace = token.kind == LexerType::LEX_SPACE;
  if (!isSpace) pendingAllSpace_ = false;
  if (pendingOwnForm_) addPiece(token);
  rawEnd_ = endOf(token);
  lastWasSpace_ = isSpace;
  afterBreak_ = false;
}

// What a token adds to a plain form that is assembled by itself.
void PageParser::addPiece(const LexRecord& token) {
  const std::string_view text = lexer_.slice(token);
  switch (token.kind) {
    case LexerType::LEX_TAG_OPEN:
    case LexerType::LEX_TAG_CLOSE:
    case LexerType::LEX_AMPERSAND:
    case LexerType::LEX_QUOTE:
      if (text.empty()) break;  // a lone mark would swallow the byte behind it
      pendingText_ += kPairMark;
      pendingText_ += text;
      break;
    case LexerType::LEX_ENTITY_REF:
      pendingText_ += frame_->generalRecords[token.value].text;
      break;
    case LexerType::LEX_CHAR_REF:
      appendMarkedCode(token.value, pendingText_);
      break;
    case LexerType::LEX_SPACE: {
      const bool atStart = rawEnd_ <= rawStart_;
      if (preDepth_ > 0) {
        pendingText_ += text;
      } else if (!(atStart ? pendingContext_.dropLeading : lastWasSpace_)) {
        pendingText_ += ' ';
      }
      break;
    }
    default:
      pendingText_ += text;
      break;
  }
}

void PageParser::flushText() {
  if (!pending_) return;
  pending_ = false;
  const Slice raw = sliceOf(rawStart_, rawEnd_);
  Text* text = pendingOwnForm_ ? TextAccess::createPlain(textKind_.share(), raw, std::move(pendingText_))
                               : TextAccess::createAssembled(textKind_.share(), raw, pendingContext_);
  pendingText_.clear();
  placeText(text, pendingAllSpace_);
  rawStart_ = rawEnd_ = 0;
}

}  // namespace zeldom40
