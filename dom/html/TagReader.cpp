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
constexpr std::size_t kFewBuckets = 256;

}  // namespace

// --- begin tags ------------------------------------------------------------------------------------------------------

void PageParser::readBeginTag() {
  enum State { NAME, ATTRIBUTE_NAME, AFTER_NAME, VALUE, ATTRIBUTE_END, BAD, DONE };

  const std::uint32_t start = take().start;
  std::uint32_t end = 0;
  State state = NAME;
  PageName* name = nullptr;
  const ElementDefinition* definition = nullptr;
  bool selfClosed = false;
  bool caseSensitive = false;
  bool nameCase = false;
  bool attributeCase = false;
  attributes_.clear();
  forgetAttributeNames();
  attributePending_ = attributeError_ = hiddenInput_ = false;
  tagDefinition_ = nullptr;

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
          name = &names_.find(bangName.in(lexer_.page()));
          unget(t);
          state = t.kind == LexerType::LEX_EOF ? BAD : ATTRIBUTE_END;
          break;
        }
        if (token.kind != LexerType::LEX_NAME) {
          state = BAD;
          break;
        }
        std::string_view written = lexer_.slice(token);
        // KEPT: a slash that is glued to the name goes, and does not close the tag.
        if (written.size() > 1 && written.back() == '/') written.remove_suffix(1);
        name = &names_.find(written);
        tagDefinition_ = definition = name->definition;
        if (definition && (definition->getGroup() & GROUP_JSP_XML)) {
          caseSensitive = true;
          nameCase = definition->getName() != written;
        }
        state = ATTRIBUTE_NAME;
        break;
      }
      case ATTRIBUTE_NAME: {
        if (token.kind == LexerType::LEX_TAG_CLOSE) {
          unget(token);
          state = ATTRIBUTE_END;
        } else if (token.kind == LexerType::LEX_SLASH) {
          selfClosed = true;
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
          attributePending_ = true;
          attribute_ = {nullptr, written, {}, 0};
          if (definition && definition->getAttributes()) {
            scratch_.assign(text);
            upperCase(scratch_);
            attribute_.definition = definition->findAttribute(scratch_);
            if (attribute_.definition && caseSensitive && attribute_.definition->getName() != text) {
              attributeCase = true;
            }
          }
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
          selfClosed = true;
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
          selfClosed = true;
        } else if (token.kind == LexerType::LEX_TAG_CLOSE) {
          end = token.end;
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
    end = endOf(token);
  }
  if (!name) name = &names_.find({});

  Element* element = ElementAccess::create(document_, name->name);
  if (state == BAD) element->setError(ERR_ELEMENT_PARSE_ERROR);
  const unsigned long group = definition ? definition->getGroup() : 0;
  if (definition && !(group & GROUP_NO_SOURCE)) {
    ElementAccess::bind(element, name->definition);
    if (group & (GROUP_BLOCK | GROUP_BREAK)) {
      afterBreak_ = true;
      trailingSpace_ = false;
    }
    if ((group & GROUP_NOWRAP) && !hiddenInput_) afterBreak_ = trailingSpace_ = false;
    if (group & GROUP_PLAIN) ++preDepth_;
    if (!(group & GROUP_XML_TAG)) selfClosed = false;
    if (group & GROUP_JSP_SOURCE) element->setAlternative(true);
  } else {
    definition = nullptr;
    ElementAccess::bind(element, nullptr);
    if (!lenient_) element->setError(ERR_ELEMENT_UNKNOWN);
  }
  if (attributeError_) element->setError(ERR_ELEMENT_INVALID_ATTR);
  if (nameCase) element->setError(ERR_ELEMENT_INVALID_CASE);
  if (attributeCase) element->setError(ERR_ELEMENT_INVALID_CASE_ATTR);
  element->setEndTagExistence(element->isEmptyTag());
  if (!attributes_.empty()) {
    ElementAccess::installAttributes(element,
                                     AttributeBlock::create(lexer_.page(), attributes_.data(), attributes_.size()));
  }
  ElementAccess::installBeginTag(element, lexer_.page(), sliceOf(start, end));
  placeElement(element, *name, selfClosed);
  if (definition && definition->getContentType() == ElementDefinition::CONTENT_CDATA && !selfClosed) {
    readCDATAContent(*name, end);
  }
}

// Emptying a map costs its buckets, however few are in use: after a tag with very many, a new one is made.
void PageParser::forgetAttributeNames() {
  if (attributeNames_.empty()) return;
  if (attributeNames_.bucket_count() > kFewBuckets) attributeNames_ = {};
  attributeNames_.clear();
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
    for (auto& entry : attributes_) {
      if (nameOf(entry) == name) present = &entry;
    }
  } else {
    if (attributeNames_.empty()) {
      for (std::size_t i = 0; i < attributes_.size(); ++i) attributeNames_.emplace(nameOf(attributes_[i]), i);
    }
    const auto [found, isNew] = attributeNames_.emplace(name, attributes_.size());
    if (!isNew) present = &attributes_[found->second];
  }
  if (present) {
    present->error |= static_cast<std::uint32_t>(ERR_ATTR_VALUE_DUPLICATED);
    attributeError_ = true;
    return;
  }
  // SERVLET takes any attribute: they are its parameters.
  if (!attribute_.definition && tagDefinition_ && tagDefinition_->getElementID() != ID_SERVLET) {
    attribute_.error |= static_cast<std::uint32_t>(ERR_ATTR_INVALID_NAME);
    attributeError_ = true;
  } else if (name == "TYPE" && equalsFolded(attribute_.value.in(lexer_.page()), "HIDDEN")) {
    hiddenInput_ = true;
  }
  attributes_.push_back(attribute_);
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
  Text* text = TextAccess::createLiteral(document_, textName_, lexer_.page(), sliceOf(start, end));
  insertLast(text);
}

void PageParser::readCDATASection() {
  const std::uint32_t start = take().start;
  const LexRecord section = take();
  const std::uint32_t end = endOf(take());
  const Slice data = sliceOf(section.start, endOf(section));
  // The raw text is the source as it stands: an unterminated section or one with a keyword in lower case comes back.
  Text* text = TextAccess::createPlain(document_, textName_, lexer_.page(), sliceOf(start, end),
                                       std::string(data.in(lexer_.page())));
  text->setTextType(Text::TEXT_LITERAL);
  insertLast(text);
}

void PageParser::readProcessingInstruction() {
  const std::uint32_t start = take().start;
  take();
  const std::uint32_t end = endOf(take());
  Element* element = ElementAccess::create(document_, SharedName());
  ElementAccess::bind(element, nullptr);
  ElementAccess::installBeginTag(element, lexer_.page(), sliceOf(start, end));
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
  const Slice raw = sliceOf(start, endOf(token));
  const std::string_view text = written.in(lexer_.page());
  PageName& name = names_.find(text);
  const ElementDefinition* definition = name.definition;
  bool preEnd = false;
  bool omittable = false;
  bool endCase = false;
  if (definition) {
    const unsigned long group = definition->getGroup();
    if (group & (GROUP_BLOCK | GROUP_BREAK)) afterBreak_ = true;
    preEnd = (group & GROUP_PLAIN) != 0;
    omittable = definition->isEndOmittable();
    endCase = (group & GROUP_JSP_XML) && definition->getName() != text;
  }
  const int match = findOpen(name, omittable);
  if (match < 0 || !(definition || lenient_)) {
    addStrayEndTag(name, raw);
    return;
  }
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
  Node* matched = topNode();
  hoister.close(matched, /*hoist=*/false);
  if (matched->getNodeType() == Node::NODE_ELEMENT) {
    auto* element = static_cast<Element*>(matched);
    ElementAccess::installEndTag(element, lexer_.page(), raw);
    element->setEndTagExistence(true);
    if (endCase) element->setError(ERR_ELEMENT_INVALID_CASE_END);
  }
  pop();
  // KEPT: only here; a preformatted element that is closed implicitly leaves the depth raised.
  if (preEnd) --preDepth_;
}

// The open node that an end tag closes, -1 if none: the topmost of its name above the target of the parse. The end tag
// of an item cannot cross an open table.
int PageParser::findOpen(const PageName& name, bool omittable) const {
  const int match = name.lastOpen;
  if (match < 1) return -1;
  if (omittable && open_.back().tableBarrier > match) return -1;
  return match;
}

void PageParser::addStrayEndTag(const PageName& name, Slice raw) {
  Element* element = ElementAccess::create(document_, name.name);
  ElementAccess::installEndTag(element, lexer_.page(), raw);
  element->setEndTagExistence(true);
  element->setError(name.definition || lenient_ ? ERR_ELEMENT_BEGIN_TAG_MISSING : ERR_ELEMENT_UNKNOWN);
  insertLast(element);
}

}  // namespace zeldom40
