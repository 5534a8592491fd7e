// The main loop of a page parse.
#include "dom/html/PageParser.h"

#include "dom/document/DOMAccess.h"
#include "dom/document/Document.h"
#include "dom/source/CharHelpers.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

// --- the public face -------------------------------------------------------------------------------------------------

HTMLParser::HTMLParser() = default;

HTMLParser::HTMLParser(const char* text, std::size_t length, ParserType::_dtd_frame* frame, Document* document) {
  auto lexer = std::make_unique<HTMLLexer>(text, length, frame);
  page_ = std::make_unique<PageParser>(*lexer, frame, nullptr, document);
  lexer_ = std::move(lexer);
}

HTMLParser::HTMLParser(const char* text, std::size_t length, ParserType::_html_parser_frame* frame,
                       Document* document) {
  auto lexer = std::make_unique<HTMLLexer>(text, length, frame->dtdFrame);
  page_ = std::make_unique<PageParser>(*lexer, frame->dtdFrame, frame->openNodes, document);
  lexer_ = std::move(lexer);
}

HTMLParser::~HTMLParser() = default;

int HTMLParser::parse(LexerType::LexToken stop) { return page_ ? page_->parse(stop) : -1; }

void HTMLParser::keepNames() {
  if (page_) page_->keepNames();
  page_.reset();
}

bool HTMLParser::mustBeSorted() const { return page_ && page_->mustBeSorted(); }

void HTMLParser::setLenient(bool lenient) {
  if (page_) page_->setLenient(lenient);
}

void HTMLParser::pushNode(Node* node) {
  if (page_ && node) page_->pushNode(node);
}

void HTMLParser::popNode() {
  if (page_) page_->popNode();
}

// --- main loop -------------------------------------------------------------------------------------------------------

PageParser::PageParser(HTMLLexer& lexer, ParserType::_dtd_frame* frame, std::vector<Node*>* sharedStack,
                       Document* document)
    : lexer_(lexer),
      frame_(frame),
      tableUse_(frame),
      table_(frame ? &contentTable(*frame) : nullptr),
      textPlace_(table_ ? table_->textPlace(Text::TEXT_NORMAL) : -1),
      document_(document),
      ownNames_(PageNames::takeFrom(frame)),
      names_(*ownNames_),
      nodes_(sharedStack ? sharedStack : &ownStack_),
      textKind_(NodeKind::find(document, lexer.page(), DOMAccess::textName(), nullptr)),
      commentKind_(NodeKind::find(document, lexer.page(), DOMAccess::commentName(), nullptr)) {
  constexpr std::size_t kUsualDepth = 32;
  constexpr std::size_t kUsualAttributes = 8;
  open_.reserve(kUsualDepth);
  ownStack_.reserve(kUsualDepth);
  attributes_.reserve(kUsualAttributes);
  if (!sharedStack) return;
  std::vector<Node*> borrowed;
  borrowed.swap(*sharedStack);
  for (Node* node : borrowed) pushNode(node);
}

void PageParser::pushNode(Node* node) { push(node, nameOf(node)); }

void PageParser::popNode() {
  if (!nodes_->empty()) pop();
}

int PageParser::parse(Token stop) {
  if (nodes_->empty()) return -1;
  if (stop == LexerType::LEX_EOF) readByteOrderMark();
  while (true) {
    if (stop == LexerType::LEX_EOF && lexer_.queued() == 0) {
      if (!standsAtTag()) readTextRun();
      if (lexer_.position() < lexer_.length()) {
        flushText();
        if (readPlainTag()) continue;
      }
    }
    const LexRecord token = take();
    if (token.kind == stop || token.kind == LexerType::LEX_EOF) break;
    if (token.kind != LexerType::LEX_TAG_OPEN) {
      addToText(token);
      continue;
    }
    const LexRecord next = lexer_.peekToken(0);
    // KEPT: the bounds are 1 to 8, so <0 and <9 open a tag.
    const bool isText =
        next.kind == LexerType::LEX_SPACE ||
        (next.kind == LexerType::LEX_NAME && lexer_.text()[next.start] > '0' && lexer_.text()[next.start] < '9');
    if (isText) {
      addToText(token);
      continue;
    }
    flushText();
    unget(token);
    if (dispatch()) continue;
    addToText(take());
  }
  flushText();
  closeAll();
  return 0;
}

// Reads what the queued "<" opens; false, with nothing taken, if it opens nothing.
bool PageParser::dispatch() {
  switch (peek(1)) {
    case LexerType::LEX_COMMENT:
      readComment(/*server=*/false);
      return true;
    case LexerType::LEX_SERVER_COMMENT:
      readComment(/*server=*/true);
      return true;
    case LexerType::LEX_SERVER_TAG:
      readServerTag();
      return true;
    case LexerType::LEX_NAME:
    case LexerType::LEX_BANG:
      readBeginTag();
      return true;
    case LexerType::LEX_SLASH:
      readEndTag();
      return true;
    case LexerType::LEX_DOCTYPE:
      readDeclaration();
      return true;
    case LexerType::LEX_CDATA_SECTION:
      readCDATASection();
      return true;
    case LexerType::LEX_PROCESSING:
      readProcessingInstruction();
      return true;
    default:
      return false;
  }
}

void PageParser::closeAll() {
  Hoister hoister;
  for (int i = top(); i >= 0; --i) {
    Node* node = topNode();
    if (!node->isEndOmittable()) node->setError(ERR_ELEMENT_END_TAG_MISSING);
    // Nothing leaves the target of the parse.
    hoister.close(node, i > 0 && !lenient_ && isUnknown(node));
    pop();
  }
}

bool PageParser::isUnknown(const Node* node) {
  return node->getNodeType() == Node::NODE_ELEMENT &&
         static_cast<const Element*>(node)->getElementType() == Element::ELEMENT_UNDEFINED;
}

void PageParser::Hoister::close(Node* node, bool hoist) {
  if (!hoist || !node->hasChildNodes()) {
    // What was gathered follows the node that it came out of, the last child here.
    for (auto run = runs_.rbegin(); run != runs_.rend(); ++run) node->insertLast(*run);
    runs_.clear();
    return;
  }
  runs_.push_back(NodeAccess::detachRange(node, node->getFirstChild(), node->getLastChild()));
}

// The next byte from `from` on that can stop a collection or begin a construct with a meaning of its own; whatever lies
// between is part of plain tokens.
std::uint32_t PageParser::nextStop(std::uint32_t from, Token stop1, Token stop3) const {
  const std::string_view text = lexer_.text();
  const std::size_t size = text.size();
  std::size_t i = from;
  if (stop1 == LexerType::LEX_QUOTE || stop1 == LexerType::LEX_APOSTROPHE) {
    const char quote = stop1 == LexerType::LEX_QUOTE ? '"' : '\'';
    while (i < size && text[i] != quote && text[i] != '<') ++i;
  } else if (stop1 == LexerType::LEX_SPACE) {
    const bool atEquals = stop3 == LexerType::LEX_EQUALS;
    while (i < size && !isSpaceByte(text[i]) && text[i] != '>' && text[i] != '<' && !(atEquals && text[i] == '=')) ++i;
  }
  return static_cast<std::uint32_t>(i);
}

Slice PageParser::collectUntil(const LexRecord& first, Token stop1, Token stop2, Token stop3, bool keepStop) {
  auto stops = [&](Token kind) { return kind == stop1 || kind == stop2 || kind == stop3; };
  LexRecord token;
  while (true) {
    if (lexer_.queued() == 0) lexer_.skipTo(nextStop(lexer_.position(), stop1, stop3));
    token = take();
    if (token.kind == LexerType::LEX_EOF || stops(token.kind)) break;
  }
  const bool atEnd = token.kind == LexerType::LEX_EOF;
  const std::uint32_t end = atEnd ? lexer_.length() : keepStop ? token.end : token.start;
  if (!keepStop || atEnd) unget(token);
  return sliceOf(first.start, end);
}

}  // namespace zeldom40
