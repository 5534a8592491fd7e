// Server tags, comments and server-side includes. None of these nodes is ever opened or tested against a content model.
#include <algorithm>

#include "dom/document/DocumentAccess.h"
#include "dom/dynamic/MetaDataAccess.h"
#include "dom/dynamic/MetaDataComment.h"
#include "dom/html/AttributeScanner.h"
#include "dom/html/PageParser.h"
#include "dom/source/CharHelpers.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

void PageParser::readServerTag() {
  const std::uint32_t start = take().start;
  take();
  const Slice raw = sliceOf(start, endOf(take()));
  insertDirective(serverTagOf(raw), raw);
}

PageParser::Directive PageParser::serverTagOf(Slice tag) {
  const std::string_view text = lexer_.text();
  const std::string_view raw = tag.in(lexer_.page());
  const std::uint32_t start = tag.offset;
  Directive found;

  // The attributes of a directive end before the closing "%>".
  std::uint32_t limit = tag.offset + tag.length;
  if (limit > start && text[limit - 1] == '>') --limit;
  if (limit > start && text[limit - 1] == '%') --limit;
  found.from = found.to = limit;

  int id = ID_JSP_SCRIPTLET;
  if (raw.size() > 2) {
    if (raw[2] == '!') id = ID_JSP_DECLARATION;
    if (raw[2] == '=') id = ID_JSP_EXPRESSION;
    if (raw[2] == '@') {
      id = ID_JSP_DIRECTIVE;
      found.from = std::min(start + 3, limit);
      std::size_t position = found.from;
      ScannedAttribute word;
      if (scanAttribute(text, limit, position, word) && word.value.empty()) {
        if (equalsFolded(word.name, "PAGE")) id = ID_JSP_DIRECTIVE_PAGE;
        if (equalsFolded(word.name, "INCLUDE")) id = ID_JSP_DIRECTIVE_INCLUDE;
        if (equalsFolded(word.name, "TAGLIB")) id = ID_JSP_DIRECTIVE_TAGLIB;
        if (id != ID_JSP_DIRECTIVE) found.from = static_cast<std::uint32_t>(position);
        if (!GetHTML40ElementName(id)) id = ID_JSP_DIRECTIVE;
      }
    }
  }
  const ServerName& name = serverName(id);
  found.id = name.id;
  found.name = name.name;
  return found;
}

// A page of server code asks for few names again and again.
const PageParser::ServerName& PageParser::serverName(int id) {
  ServerName& known = serverNames_[static_cast<std::size_t>(id - ID_JSP_SCRIPTLET)];
  if (!known.name) {
    known.id = GetHTML40ElementName(id) ? id : ID_JSP_SCRIPTLET;
    const char* idName = GetHTML40ElementName(known.id);
    known.name = &names_.find(idName ? idName : "jsp:scriptlet");
  }
  return known;
}

void PageParser::insertDirective(const Directive& directive, Slice raw) {
  Element* element = createElement(*directive.name, raw);
  element->setElementID(static_cast<HTML40ElementID>(directive.id));
  collectAttributes(directive);
  if (!attributes_.empty()) {
    ElementAccess::installAttributes(element,
                                     AttributeBlock::create(lexer_.page(), attributes_.data(), attributes_.size()));
    element->setUpdateFlag(Node::UPDATE_ATTRIBUTE_MODIFIED);
  }
  insertLast(element);
}

// Names and values of the directive, as Element::setAttribute would store them.
void PageParser::collectAttributes(const Directive& directive) {
  const std::string_view text = lexer_.text();
  const ElementDefinition* definition = directive.name->definition;
  if (details_) details_->attributesFrom = directive.from;
  attributes_.clear();
  attributeNames_.clear();
  std::size_t position = directive.from;
  ScannedAttribute found;
  auto sliceOfView = [&](std::string_view part) {
    return part.empty()
               ? Slice{}
               : Slice{static_cast<std::uint32_t>(part.data() - text.data()), static_cast<std::uint32_t>(part.size())};
  };
  while (scanAttribute(text, directive.to, position, found)) {
    if (found.name.empty()) continue;
    AttributeBlock::Entry entry{nullptr, sliceOfView(found.name), sliceOfView(found.value), 0};
    if (definition && definition->getAttributes()) {
      scratch_.assign(found.name);
      upperCase(scratch_);
      entry.definition = definition->findAttribute(scratch_);
    }
    if (definition && !entry.definition) entry.error = static_cast<std::uint32_t>(ERR_ATTR_INVALID_NAME);
    const std::string_view stored = entry.definition ? entry.definition->upperName().view() : found.name;
    const std::size_t number = attributeNames_.enter(stored);
    if (isDynamicMark(entry)) mustBeSorted_ = true;
    // The last of a name counts, at the place of the first.
    if (number == attributes_.size()) {
      attributes_.push_back(entry);
    } else {
      if (details_) details_->superseded.push_back(attributes_[number]);
      attributes_[number] = entry;
    }
  }
}

// Takes a metadata pair whose begin comment was just taken, up to the end of its end comment. What stands between the
// two is kept as text and parsed, if at all, when its node is sorted out.
bool PageParser::readMetaData(Slice begin, Slice body) {
  // CHOICE: pairs inside pairs are followed so far and no further. Each level keeps all that is inside it as text, so
  // that a page of nothing else would take far more time and memory than it has bytes.
  constexpr unsigned kDeepestPair = 8;
  const unsigned nesting = document_ ? DocumentAccess::pairNesting(document_) : kDeepestPair;
  MetaData::Type type = MetaData::None;
  if (nesting >= kDeepestPair || !matchBeginComment(body.in(lexer_.page()), type)) return false;
  const std::uint32_t from = begin.offset + begin.length;
  if (from >= noPairEndFrom_[type]) return false;

  // The search leaves nothing behind: what comes is cut into tokens again as its context asks.
  LexRecord open;
  LexRecord token = lexer_.nextToken();
  while (token.kind != LexerType::LEX_EOF) {
    if (token.kind == LexerType::LEX_COMMENT &&
        matchEndComment(sliceOf(token.start, endOf(token)).in(lexer_.page()), type)) {
      break;
    }
    open = token;
    token = lexer_.nextToken();
  }
  if (token.kind == LexerType::LEX_EOF) {
    lexer_.restart(from);
    noPairEndFrom_[type] = from;
    return false;
  }
  const std::uint32_t to = endOf(lexer_.nextToken());
  lexer_.restart(to);
  lastEnd_ = to;

  auto* md = new MetaData(document_);
  md->setType(type);
  md->setBeginTag(std::string(begin.in(lexer_.page())));
  md->setRuntimeText(std::string(sliceOf(from, open.start).in(lexer_.page())));
  md->setEndTag(std::string(sliceOf(open.start, to).in(lexer_.page())));
  MetaDataAccess::setNesting(*md, nesting);
  insertLast(md);
  mustBeSorted_ = true;
  return true;
}

void PageParser::readComment(bool server) {
  const std::uint32_t start = take().start;
  const LexRecord token = take();
  const Slice body = sliceOf(token.start, endOf(token));
  const std::uint32_t end = endOf(take());
  const Slice raw = sliceOf(start, end);

  if (!server && readMetaData(raw, body)) return;

  Directive include;
  if (!server && isInclude(body, include)) {
    insertDirective(include, raw);
    return;
  }
  insertLast(CommentAccess::create(commentKind_.share(), raw, body, server));
}

// Whether the comment of that body is a server-side include.
bool PageParser::isInclude(Slice body, Directive& include) {
  const std::string_view text = body.in(lexer_.page());
  const std::size_t word = text.find_first_not_of('-');
  constexpr std::string_view kInclude = "#INCLUDE";
  if (word == std::string_view::npos || !equalsFolded(text.substr(word, kInclude.size()), kInclude) ||
      !isWhite(text, word + kInclude.size())) {
    return false;
  }
  const char* idName = GetHTML40ElementName(ID_SSI_INCLUDE);
  include.id = ID_SSI_INCLUDE;
  include.name = &names_.find(idName ? idName : "ssi:include");
  include.from = body.offset + static_cast<std::uint32_t>(word + kInclude.size());
  include.to = body.offset + body.length;
  while (include.to > body.offset && lexer_.text()[include.to - 1] == '-') --include.to;
  return true;
}

}  // namespace zeldom40
