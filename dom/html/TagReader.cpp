// Begin tags, end tags and the bodies that are not parsed.
#include "dom/document/Document.h"
#include "dom/dtd/AttributeDefinition.h"
#include "dom/html/PageParser.h"
#include "dom/source/CharHelpers.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

namespace {

constexpr std::size_t kManyAttributes = 8;

}  // namespace

// --- begin tags ------------------------------------------------------------------------------------------------------

void PageParser::readTokensOf(BeginTag& tag) {
  enum State { NAME, ATTRIBUTE_NAME, AFTER_NAME, VALUE, ATTRIBUTE_END, BAD, DONE };

  tag.start = take().start;
  openAttributes(tag);
  State state = NAME;

  while (state < BAD) {
    const LexRecord token = take();
    if (token.kind == LexerType::LEX_SPACE) continue;
    switch (state) {
      case NAME: {
        if (token.kind == LexerType::LEX_BANG) {
          // A declaration of another kind: its name ends at the first white space; without any it has none.
          Slice bangName{};
          LexRecord t = take();
          while (t.kind != LexerType::LEX_TAG_CLOSE && t.kind != LexerType::LEX_EOF) {
            if (t.kind == LexerType::LEX_SPACE && bangName.length == 0) bangName = sliceOf(token.start, t.start);
            t = take();
          }
          tag.name = &names_.find(bangName.in(lexer_.page()));
          unget(t);
          state = t.kind == LexerType::LEX_EOF ? BAD : ATTRIBUTE_END;
          break;
        }
        if (token.kind != LexerType::LEX_NAME) {
          state = BAD;
          break;
        }
        setTagName(tag, lexer_.slice(token));
        state = ATTRIBUTE_NAME;
        break;
      }
      case ATTRIBUTE_NAME: {
        if (token.kind == LexerType::LEX_TAG_CLOSE) {
          unget(token);
          state = ATTRIBUTE_END;
        } else if (token.kind == LexerType::LEX_SLASH) {
          tag.selfClosed = true;
          state = ATTRIBUTE_END;
        } else if (token.kind == LexerType::LEX_EOF) {
          state = BAD;
        } else {
          const Slice written =
              collectUntil(token, LexerType::LEX_SPACE, LexerType::LEX_TAG_CLOSE, LexerType::LEX_EQUALS);
          const std::string_view text = written.in(lexer_.page());
          if (text == "/") {
            state = ATTRIBUTE_END;
            break;
          }
          setAttributeName(tag, written);
          state = AFTER_NAME;
        }
        break;
      }
      case AFTER_NAME:
        if (token.kind == LexerType::LEX_EQUALS) {
          state = VALUE;
        } else if (token.kind == LexerType::LEX_TAG_CLOSE || token.kind == LexerType::LEX_NAME) {
          unget(token);
          state = ATTRIBUTE_END;
        } else if (token.kind == LexerType::LEX_SLASH) {
          tag.selfClosed = true;
          state = ATTRIBUTE_END;
        } else {
          state = BAD;
        }
        break;
      case VALUE:
        if (token.kind == LexerType::LEX_QUOTE || token.kind == LexerType::LEX_APOSTROPHE) {
          const LexRecord first = take();
          if (first.kind == LexerType::LEX_EOF) {
            state = BAD;
            break;
          }
          if (first.kind != token.kind) {
            attribute_.value = collectUntil(first, token.kind, LexerType::LEX_EOF, LexerType::LEX_EOF);
            take();
          }
          state = ATTRIBUTE_END;
        } else if (token.kind == LexerType::LEX_EOF) {
          state = BAD;
        } else {
          // KEPT: whatever stands here begins the value, also a ">".
          attribute_.value = collectUntil(token, LexerType::LEX_SPACE, LexerType::LEX_TAG_CLOSE, LexerType::LEX_EOF);
          state = ATTRIBUTE_END;
        }
        break;
      case ATTRIBUTE_END:
        if (token.kind == LexerType::LEX_SLASH) {
          tag.selfClosed = true;
        } else if (token.kind == LexerType::LEX_TAG_CLOSE) {
          tag.end = token.end;
          tag.endsInConstruct = token.start == token.end;
          commitAttribute();
          state = DONE;
        } else {
          unget(token);
          commitAttribute();
          state = ATTRIBUTE_NAME;
        }
        break;
      default:
        break;
    }
  }

  if (state == BAD) {
    LexRecord token = take();
    while (token.kind != LexerType::LEX_TAG_CLOSE && token.kind != LexerType::LEX_EOF) token = take();
    tag.end = endOf(token);
    tag.endsInConstruct = token.kind == LexerType::LEX_TAG_CLOSE && token.start == token.end;
    tag.bad = true;
  }
  if (!tag.name) tag.name = &names_.find({});
}

void PageParser::finishBeginTag(const BeginTag& tag) {
  PageName& name = *tag.name;
  const unsigned long group = tag.definition ? name.group : 0;
  const bool defined = tag.definition && !(group & GROUP_NO_SOURCE);
  bool selfClosed = tag.selfClosed;
  Element* element = ElementAccess::createParsed(kindOf(name, defined), sliceOf(tag.start, tag.end));
  if (tag.bad) element->setError(ERR_ELEMENT_PARSE_ERROR);
  if (defined) {
    if (name.mayHaveMetaData) mustBeSorted_ = true;
    if (group & (GROUP_BLOCK | GROUP_BREAK)) {
      afterBreak_ = true;
      trailingSpace_ = false;
    }
    if ((group & GROUP_NOWRAP) && !hiddenInput_) afterBreak_ = trailingSpace_ = false;
    if (group & GROUP_PLAIN) ++preDepth_;
    if (!(group & GROUP_XML_TAG)) selfClosed = false;
    if (group & GROUP_JSP_SOURCE) element->setAlternative(true);
    element->setEndTagExistence(name.emptyTag);
  } else {
    if (!lenient_) element->setError(ERR_ELEMENT_UNKNOWN);
    element->setEndTagExistence(element->isEmptyTag());
  }
  if (attributeError_) element->setError(ERR_ELEMENT_INVALID_ATTR);
  if (tag.nameCase) element->setError(ERR_ELEMENT_INVALID_CASE);
  if (tag.attributeCase) element->setError(ERR_ELEMENT_INVALID_CASE_ATTR);
  if (!attributes_.empty()) {
    ElementAccess::installAttributes(element,
                                     AttributeBlock::create(lexer_.page(), attributes_.data(), attributes_.size()));
  }
  placeElement(element, name, selfClosed);
  if (defined && name.holdsCData && !selfClosed) readCDATAContent(name, tag.end);
}

void PageParser::commitAttribute() {
  if (!attributePending_) return;
  attributePending_ = false;
  auto nameOf = [this](const AttributeBlock::Entry& entry) {
    return entry.definition ? entry.definition->upperName().view() : entry.name.in(lexer_.page());
  };
  const std::string_view name = nameOf(attribute_);
  // A map finds repeated names in tags with many attributes.
  AttributeBlock::Entry* present = nullptr;
  if (attributes_.size() < kManyAttributes) {
    // Two declared attributes of one name have one definition, and no undeclared one has the name of a declared.
    for (auto& entry : attributes_) {
      const bool same =
          entry.definition || attribute_.definition ? entry.definition == attribute_.definition : nameOf(entry) == name;
      if (same) present = &entry;
    }
  } else {
    if (attributeNames_.empty()) {
      for (const auto& entry : attributes_) attributeNames_.enter(nameOf(entry));
    }
    const std::size_t number = attributeNames_.enter(name);
    if (number < attributes_.size()) present = &attributes_[number];
  }
  if (present) {
    present->error |= static_cast<std::uint32_t>(ERR_ATTR_VALUE_DUPLICATED);
    attributeError_ = true;
    if (details_) details_->repeats.push_back(attribute_);
    return;
  }
  // SERVLET takes any attribute: they are its parameters.
  if (!attribute_.definition && tagDefinition_ && tagDefinition_->getElementID() != ID_SERVLET) {
    attribute_.error |= static_cast<std::uint32_t>(ERR_ATTR_INVALID_NAME);
    attributeError_ = true;
  } else if (attribute_.value.length == 6 && name == "TYPE" &&
             equalsFolded(attribute_.value.in(lexer_.page()), "HIDDEN")) {
    hiddenInput_ = true;
  }
  if (isDynamicMark(attribute_)) mustBeSorted_ = true;
  attributes_.push_back(attribute_);
}

const std::vector<AttributeBlock::Entry>& PageParser::readAttributes(Slice tag, TagDetails* details) {
  details_ = details;
  attributes_.clear();
  lexer_.readAgain(tag);
  if (peek(0) != LexerType::LEX_TAG_OPEN) return attributes_;
  switch (peek(1)) {
    case LexerType::LEX_NAME:
    case LexerType::LEX_BANG: {
      BeginTag read;
      readTokensOf(read);
      if (details) details->endsInConstruct = read.endsInConstruct;
      break;
    }
    case LexerType::LEX_SERVER_TAG: {
      take();
      take();
      take();
      collectAttributes(serverTagOf(tag));
      break;
    }
    case LexerType::LEX_COMMENT: {
      take();
      const LexRecord token = take();
      take();
      Directive include;
      if (isInclude(sliceOf(token.start, endOf(token)), include)) collectAttributes(include);
      break;
    }
    default:
      break;
  }
  return attributes_;
}

// Whether it may be the mark of an element that the server makes.
bool PageParser::isDynamicMark(const AttributeBlock::Entry& attribute) {
  constexpr std::size_t kMarkLength = 14;  // DYNAMICELEMENT
  return attribute.definition && attribute.name.length == kMarkLength;
}

// --- bodies ----------------------------------------------------------------------------------------------------------

void PageParser::readCDATAContent(const PageName& name, std::uint32_t start) {
  std::uint32_t end = start;
  while (true) {
    if (lexer_.queued() == 0) {
      // Only a "<" can end the body or begin a construct that hides the end.
      const std::size_t next = lexer_.text().find('<', lexer_.position());
      const std::uint32_t at = next == std::string_view::npos ? lexer_.length() : static_cast<std::uint32_t>(next);
      lexer_.skipTo(at);
      lastEnd_ = at;
    }
    if (peek() == LexerType::LEX_EOF) {
      end = lexer_.length();
      break;
    }
    if (peek() == LexerType::LEX_TAG_OPEN && peek(1) == LexerType::LEX_SLASH && peek(2) == LexerType::LEX_NAME &&
        equalsFolded(lexer_.slice(lexer_.peekToken(2)), name.name.view()) && peek(3) == LexerType::LEX_TAG_CLOSE) {
      end = lexer_.peekToken(0).start;
      break;
    }
    take();
  }
  if (end <= start) return;
  Text* text = TextAccess::createLiteral(textKind_.share(), sliceOf(start, end));
  insertLast(text);
}

void PageParser::readCDATASection() {
  const std::uint32_t start = take().start;
  const LexRecord section = take();
  const std::uint32_t end = endOf(take());
  const Slice data = sliceOf(section.start, endOf(section));
  // The raw text is the source as it stands: an unterminated section or one with a keyword in lower case comes back.
  Text* text = TextAccess::createPlain(textKind_.share(), sliceOf(start, end), std::string(data.in(lexer_.page())));
  text->setTextType(Text::TEXT_LITERAL);
  insertLast(text);
}

void PageParser::readProcessingInstruction() {
  const std::uint32_t start = take().start;
  take();
  const std::uint32_t end = endOf(take());
  Element* element =
      ElementAccess::createParsed(NodeKind::find(document_, lexer_.page(), SharedName(), nullptr), sliceOf(start, end));
  element->setEndTagExistence(element->isEmptyTag());
  if (!lenient_) element->setError(ERR_ELEMENT_UNKNOWN);
  insertLast(element);
}

// --- end tags --------------------------------------------------------------------------------------------------------

void PageParser::readEndTag() {
  const std::uint32_t start = take().start;
  take();
  LexRecord token = take();
  // KEPT: the last name in the tag counts, </B I> ends an I.
  Slice written{};
  while (token.kind != LexerType::LEX_TAG_CLOSE && token.kind != LexerType::LEX_EOF) {
    if (token.kind == LexerType::LEX_NAME) written = sliceOf(token.start, token.end);
    token = take();
  }
  const std::string_view text = written.in(lexer_.page());
  finishEndTag(names_.find(text), text, sliceOf(start, endOf(token)));
}

void PageParser::finishEndTag(PageName& name, std::string_view text, Slice raw) {
  const ElementDefinition* definition = name.definition;
  bool preEnd = false;
  bool omittable = false;
  bool endCase = false;
  if (definition) {
    const unsigned long group = name.group;
    if (group & (GROUP_BLOCK | GROUP_BREAK)) afterBreak_ = true;
    preEnd = (group & GROUP_PLAIN) != 0;
    omittable = name.endOmittable;
    endCase = (group & GROUP_JSP_XML) && definition->getName() != text;
  }
  const int match = findOpen(name, omittable);
  if (match < 0 || !(definition || lenient_)) {
    addStrayEndTag(name, raw);
    return;
  }
  if (top() > match) closeAbove(match);
  Node* matched = topNode();
  if (matched->getNodeType() == Node::NODE_ELEMENT) {
    auto* element = static_cast<Element*>(matched);
    if (ElementAccess::page(element).get() == lexer_.page().get()) {
      ElementAccess::installParsedEndTag(element, raw);
    } else {
      ElementAccess::installEndTag(element, lexer_.page(), raw);
      element->setEndTagExistence(true);
    }
    if (endCase) element->setError(ERR_ELEMENT_INVALID_CASE_END);
  }
  pop();
  // KEPT: only here; a preformatted element that is closed implicitly leaves the depth raised.
  if (preEnd) --preDepth_;
}

// Closes what an end tag closes beside its own element.
void PageParser::closeAbove(int match) {
  Hoister hoister;
  while (top() > match) {
    Node* node = topNode();
    if (node->getNodeType() == Node::NODE_ELEMENT) {
      auto* element = static_cast<Element*>(node);
      element->setEndTagExistence(false);
      if (!element->isEndOmittable()) element->setError(ERR_ELEMENT_END_TAG_MISSING);
    }
    hoister.close(node, isUnknown(node));
    pop();
  }
  hoister.close(topNode(), /*hoist=*/false);
}

// The open node that an end tag closes, -1 if none: the topmost of its name above the target of the parse. The end tag
// of an item cannot cross an open table.
int PageParser::findOpen(const PageName& name, bool omittable) const {
  const int match = name.lastOpen;
  if (match < 1) return -1;
  if (omittable && open_.back().tableBarrier > match) return -1;
  return match;
}

void PageParser::addStrayEndTag(PageName& name, Slice raw) {
  Element* element = ElementAccess::createWithoutTag(kindOf(name, false));
  ElementAccess::installEndTag(element, lexer_.page(), raw);
  element->setEndTagExistence(true);
  element->setError(name.definition || lenient_ ? ERR_ELEMENT_BEGIN_TAG_MISSING : ERR_ELEMENT_UNKNOWN);
  insertLast(element);
}

}  // namespace zeldom40
