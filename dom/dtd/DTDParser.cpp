// The declarations of a document type definition, one state machine each.
//
// Common to all of them: a comment may stand between the parts and is skipped before the state is looked at; and at
// LEX_EOF or LEX_UNDEFINED_ENTITY the token is put back and the declaration dropped, so that the loop over declarations
// sees it and ends.
#include "dom/dtd/DTDParser.h"

#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>

#include "dom/document/DOMAccess.h"
#include "dom/dtd/CatalogueTables.h"
#include "dom/dtd/DTDFrame.h"
#include "dom/dtd/DTDLexer.h"
#include "dom/dtd/ModelGroup.h"
#include "dom/source/MappedFile.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

// CHOICE: nesting costs stack in the walks over a model and here, so it is bounded. A deeper group drops its
// declaration; a deeper section is read as if its keyword were not known.
constexpr std::size_t kDeepestGroup = 100;
constexpr int kDeepestSection = 100;
constexpr int kMostOpenFiles = 16;
// CHOICE: what a page declares stays as long as the DTD. These bounds, for all pages together, are above what large
// document types need: DocBook has some 400 elements, a quarter of these bytes, and a few elements with omitted tags.
// A question to a model may walk through all models of elements that may be implied.
constexpr int kMostPageNames = 1024;
constexpr int kMostPageTokens = 1 << 16;
constexpr int kMostImpliedTokens = 1024;
constexpr std::size_t kMostPageBytes = 8 << 20;
// Beside its texts, what an entry of a table takes.
constexpr std::size_t kEntryBytes = 64;
constexpr unsigned kLongestText = 0x7FFFFFFF;

bool isLast(LexerType::LexToken kind) { return kind == LexerType::LEX_EOF || kind == LexerType::LEX_UNDEFINED_ENTITY; }

// Drops each backslash and keeps what stands behind it.
std::string withoutBackslashes(std::string_view text) {
  if (text.find('\\') == std::string_view::npos) return std::string(text);
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && ++i == text.size()) break;
    plain += text[i];
  }
  return plain;
}

// The place (1-based) of a word, in any case of letters, among keywords; 0 if it is none of them.
template <std::size_t N>
std::uint8_t placeOf(std::string_view word, const std::string_view (&upperKeywords)[N]) {
  for (std::size_t i = 0; i < N; ++i) {
    if (equalsFolded(word, upperKeywords[i])) return static_cast<std::uint8_t>(i + 1);
  }
  return 0;
}

std::uint8_t declaredTypeOf(std::string_view word) {
  static constexpr std::string_view kKeywords[] = {"CDATA",    "ID",      "IDREF",    "IDREFS",   "ENTITY",
                                                   "ENTITIES", "NMTOKEN", "NMTOKENS", "NOTATION", "NAME_TOKEN_GROUP"};
  return placeOf(word, kKeywords);
}

std::uint8_t defaultTypeOf(std::string_view word) {
  static constexpr std::string_view kKeywords[] = {"#FIXED", "#REQUIRED", "#IMPLIED"};
  return placeOf(word, kKeywords);
}

// A name in upper case; the name itself, with no copy made, if it has no other letters.
class UpperName {
 public:
  explicit UpperName(std::string_view name) : view_(name) {
    if (std::any_of(name.begin(), name.end(), [](char c) { return upperByte(c) != c; })) {
      copy_ = Parser::toUpperName(name);
      view_ = copy_;
    }
  }
  UpperName(const UpperName&) = delete;
  UpperName& operator=(const UpperName&) = delete;
  operator std::string_view() const { return view_; }

 private:
  std::string copy_;
  std::string_view view_;
};

}  // namespace

// The content part of an element declaration. Holds one reference on each group while it is read. What is not kept is
// read into nothing: it has no groups.
struct DTDParser::Content {
  explicit Content(bool kept) : isKept(kept) {
    if (isKept) hold(model);
  }
  ~Content() {
    for (ModelGroup* group : {model, inclusions, exclusions}) drop(group);
  }
  Content(const Content&) = delete;
  Content& operator=(const Content&) = delete;

  // A second "+(" or "-(" takes the place of the first.
  ModelGroup* renew(ModelGroup*& group) {
    if (!isKept) return nullptr;
    drop(group);
    hold(group);
    return group;
  }

  const bool isKept;
  ElementDefinition::ContentType type = ElementDefinition::CONTENT_ANY;
  ModelGroup* model = nullptr;
  ModelGroup* inclusions = nullptr;
  ModelGroup* exclusions = nullptr;

 private:
  static void hold(ModelGroup*& group) {
    group = new ModelGroup;
    group->addRef(false);
  }
  static void drop(ModelGroup* group) {
    if (group) group->releaseRef(false);
  }
};

// --- life ------------------------------------------------------------------------------------------------------------

DTDParser::DTDParser() = default;

DTDParser::DTDParser(const char* text, unsigned length) : frame_(new ParserType::_dtd_frame), ownsFrame_(true) {
  lexer_ = std::make_unique<DTDLexer>(std::string_view(text, std::min(length, kLongestText)), frame_);
}

DTDParser::DTDParser(const char* text, unsigned length, const ParserType::_dtd_parser_frame* shared)
    : frame_(shared->frame), isBounded_(true) {
  lexer_ = std::make_unique<DTDLexer>(std::string_view(text, std::min(length, kLongestText)), frame_);
}

DTDParser::DTDParser(std::string_view text, ParserType::_dtd_frame* frame) : frame_(frame) {
  lexer_ = std::make_unique<DTDLexer>(text, frame_);
}

DTDParser* DTDParser::makeDeferring(std::string_view text) {
  auto* parser = new DTDParser;
  parser->frame_ = new ParserType::_dtd_frame;
  parser->ownsFrame_ = true;
  parser->lexer_ = std::make_unique<DTDLexer>(DTDLexer::Constant{text}, parser->frame_);
  parser->defers_ = true;
  return parser;
}

DTDParser::~DTDParser() {
  if (ownsFrame_) delete frame_;
}

// --- tokens ----------------------------------------------------------------------------------------------------------

// What the base does, without a call for each of some ten thousand tokens.
inline LexerType::LexToken DTDParser::take() {
  current_ = lexer_->nextToken();
  hasCurrent_ = true;
  return current_.kind;
}

inline LexerType::LexToken DTDParser::nextKind() { return lexer_->peekToken(0).kind; }

inline std::string_view DTDParser::text(const LexRecord& token) const {
  return static_cast<const DTDLexer*>(lexer_.get())->slice(token.start, token.end);
}

inline std::string_view DTDParser::currentText() const { return text(current_); }

// --- the loop over declarations --------------------------------------------------------------------------------------

int DTDParser::parse(LexerType::LexToken stop) {
  if (!lexer_) return -1;
  ++frame_->readings;
  return parseDeclarations(stop);
}

bool DTDParser::isCut() const { return frame_ && frame_->cuts > 0; }

void DTDParser::noteCut() { ++frame_->cuts; }

// Counts bytes that are about to be kept against what pages may have; false if they may not.
bool DTDParser::spend(std::size_t bytes) {
  if (!isBounded_) return true;
  std::size_t& spent = frame_->pageShare.bytes;
  if (bytes > kMostPageBytes - spent) {
    noteCut();
    return false;
  }
  spent += bytes;
  return true;
}

int DTDParser::parseDeclarations(LexerType::LexToken stop) {
  while (true) {
    const LexerType::LexToken kind = take();
    if (kind == stop) return 0;
    switch (kind) {
      case LexerType::LEX_UNDEFINED_ENTITY:
        noteCut();
        return -1;
      case LexerType::LEX_EOF:
        return -1;
      case LexerType::LEX_ENTITY_DECL:
        parseEntity();
        break;
      case LexerType::LEX_ATTLIST_DECL:
        parseAttributeList();
        break;
      case LexerType::LEX_ELEMENT_DECL:
        parseElement();
        break;
      case LexerType::LEX_LITERAL:
      case LexerType::LEX_NAME:
        parsePublicIdentifier();
        break;
      case LexerType::LEX_MARKED_SECTION:
        parseMarkedSection();
        break;
      case LexerType::LEX_GROUP_DECL:
        parseGroup();
        break;
      default:
        break;
    }
  }
}

LexerType::LexToken DTDParser::advancePastComments() {
  LexerType::LexToken kind = take();
  while (kind == LexerType::LEX_COMMENT) kind = take();
  if (isLast(kind)) pushBack();
  return kind;
}

LexerType::LexToken DTDParser::peekPastComments() {
  while (nextKind() == LexerType::LEX_COMMENT) take();
  return nextKind();
}

// An external parameter entity expands to PUBLIC and its identifiers.
void DTDParser::parsePublicIdentifier() {
  if (currentText() != "PUBLIC" || !accept(LexerType::LEX_LITERAL) || !frame_->catalog) return;
  const CatalogRecord* record = frame_->catalog->find(currentText());
  if (!record) return;
  if (frame_->openFiles >= kMostOpenFiles) return noteCut();
  MappedFile file;
  if (file.open(record->path.c_str(), 0) != 0) return;
  const ParserType::_dtd_parser_frame shared{frame_};
  ++frame_->openFiles;
  DTDParser(file.get_top(), file.get_size(), &shared).parse(LexerType::LEX_EOF);
  --frame_->openFiles;
}

// --- entities --------------------------------------------------------------------------------------------------------

// Puts off the general entities that stand here.
bool DTDParser::deferEntities() {
  if (frame_->generalEntityCount() > 0) return false;
  DeferredEntities& deferred = frame_->deferredEntities;
  deferred.text = static_cast<DTDLexer*>(lexer_.get())->skipGeneralEntities(&deferred.count);
  return deferred.count > 0;
}

void DTDParser::read(const DeferredEntities& deferred, ParserType::_dtd_frame* frame) {
  DTDParser parser(deferred.text, frame);
  parser.parseEntity();
  parser.parseDeclarations(LexerType::LEX_EOF);
}

void DTDParser::parseEntity() {
  if (defers_ && deferEntities()) return;
  switch (peekPastComments()) {
    case LexerType::LEX_PERCENT:
      take();
      parseParameterEntity();
      break;
    case LexerType::LEX_NAME:
      parseGeneralEntity();
      break;
    default:
      break;
  }
}

void DTDParser::parseParameterEntity() {
  enum { NAME, VALUE, SYSTEM_ID, PUBLIC_ID, END } state = NAME;
  EntityRecord entity;
  while (true) {
    const LexerType::LexToken kind = advancePastComments();
    const std::string_view word = currentText();
    if (state == NAME && kind == LexerType::LEX_NAME && !word.empty()) {
      entity.name = word;
      state = VALUE;
    } else if (state == VALUE && kind == LexerType::LEX_LITERAL) {
      entity.text = withoutBackslashes(word);
      state = END;
    } else if (state == VALUE && kind == LexerType::LEX_NAME && (word == "SYSTEM" || word == "PUBLIC")) {
      entity.text = word;
      state = word == "SYSTEM" ? SYSTEM_ID : PUBLIC_ID;
    } else if (state == SYSTEM_ID && kind == LexerType::LEX_LITERAL) {
      entity.systemId = word;
      state = END;
    } else if (state == PUBLIC_ID && kind == LexerType::LEX_LITERAL) {
      entity.publicId = word;
      state = SYSTEM_ID;
    } else if ((state == SYSTEM_ID || state == END) && kind == LexerType::LEX_TAG_CLOSE) {
      pushBack();
      break;
    } else {
      return;
    }
  }
  if (frame_->parameterEntities->find(entity.name)) return;
  const std::size_t texts = entity.text.size() + entity.systemId.size() + entity.publicId.size();
  if (!spend(sizeof(EntityRecord) + kEntryBytes + 2 * entity.name.size() + texts)) return;
  frame_->parameterRecords.push_back(std::move(entity));
  EntityRecord& stored = frame_->parameterRecords.back();
  frame_->parameterEntities->insert(stored.name, &stored);
}

void DTDParser::parseGeneralEntity() {
  enum { NAME, VALUE, SYSTEM_ID, PUBLIC_ID, NOTATION, END } state = NAME;
  std::string name;
  GeneralEntityRecord entity;
  while (true) {
    const LexerType::LexToken kind = advancePastComments();
    const std::string_view word = currentText();
    const bool isName = kind == LexerType::LEX_NAME;
    const bool isLiteral = kind == LexerType::LEX_LITERAL && !word.empty();
    if (state == NAME && isName && !word.empty()) {
      name = word;
      state = VALUE;
    } else if (state == VALUE && kind == LexerType::LEX_CDATA) {
      continue;
    } else if (state == VALUE && isLiteral) {
      entity.text = word;
      state = END;
    } else if (state == VALUE && isName && (word == "SYSTEM" || word == "PUBLIC")) {
      entity.text = word;
      state = word == "SYSTEM" ? SYSTEM_ID : PUBLIC_ID;
    } else if (state == SYSTEM_ID && isLiteral) {
      entity.systemId = word;
      state = NOTATION;
    } else if (state == PUBLIC_ID && isLiteral) {
      entity.publicId = word;
      state = SYSTEM_ID;
    } else if (state == NOTATION && isName) {
      if (word != "NDATA" || advancePastComments() != LexerType::LEX_NAME) return;
      entity.notation = currentText();
      state = END;
    } else if ((state == NOTATION || state == END) && kind == LexerType::LEX_TAG_CLOSE) {
      pushBack();
      break;
    } else {
      return;
    }
  }
  Hash<GeneralEntityRecord>& entities = frame_->generalEntities();
  std::uint32_t code = 0;
  if (DTDLexer::encodeCharacterReference(entity.text, &code) && !frame_->charEntities().contains(code) &&
      spend(sizeof(CharEntityRecord) + kEntryBytes + name.size())) {
    frame_->charEntities().emplace(code, CharEntityRecord{code, name, entity.text});
  }
  if (entities.find(name)) return;
  const std::size_t texts = entity.text.size() + entity.systemId.size() + entity.publicId.size();
  if (!spend(sizeof(GeneralEntityRecord) + kEntryBytes + name.size() + texts + entity.notation.size())) return;
  entity.order = frame_->generalRecords.size();
  entities.insert(name, &frame_->generalRecords.emplace_back(std::move(entity)));
}

// --- elements --------------------------------------------------------------------------------------------------------

// A single name, or names in parentheses. KEPT: the "|" between them is not asked for. What else stands there ends the
// group; the names before it count.
std::vector<std::string> DTDParser::parseNameGroup() {
  std::vector<std::string> names;
  switch (peekPastComments()) {
    case LexerType::LEX_NAME:
      take();
      names.emplace_back(currentText());
      return names;
    case LexerType::LEX_LPAREN:
      take();
      break;
    default:
      return names;
  }
  while (true) {
    switch (nextKind()) {
      case LexerType::LEX_NAME:
        take();
        names.emplace_back(currentText());
        break;
      case LexerType::LEX_BAR:
        take();
        break;
      case LexerType::LEX_RPAREN:
        take();
        return names;
      default:
        return names;
    }
  }
}

// The number of a name, -1 if there may be no more of them.
int DTDParser::enterName(std::string_view upperName) {
  NameTable& names = frame_->names;
  const int before = names.size();
  const bool isFull = isBounded_ && frame_->pageShare.names >= kMostPageNames;
  const int id = isFull ? names.find(upperName) : names.enter(upperName);
  if (id < 0) noteCut();
  if (isBounded_ && names.size() > before) ++frame_->pageShare.names;
  return id;
}

bool DTDParser::isDeclared(const std::string& name) const { return frame_->elements->find(UpperName(name)) != nullptr; }

// Whether a declaration of these elements leaves anything in the tables. A DTD also has the definitions that an earlier
// one keeps out; those of pages would pile up each time that a page is read again.
bool DTDParser::isKept(const std::vector<std::string>& elementNames) const {
  return !isBounded_ || !std::all_of(elementNames.begin(), elementNames.end(),
                                     [this](const std::string& name) { return isDeclared(name); });
}

void DTDParser::parseElement() {
  // 1. The names.
  const std::vector<std::string> names = parseNameGroup();
  if (names.empty()) return;
  // 2. One flag for the start tag, one for the end tag. KEPT: each is added to the code that stands, so that a second
  //    "-" takes the first one back.
  auto omission = ElementDefinition::OMIT_NONE;
  for (int flag = 0; flag < 2; ++flag) {
    const LexerType::LexToken kind = peekPastComments();
    if (kind == LexerType::LEX_MINUS) {
      if (omission == ElementDefinition::OMIT_NONE) {
        omission = ElementDefinition::OMIT_END;
      } else if (omission == ElementDefinition::OMIT_END) {
        omission = ElementDefinition::OMIT_NONE;
      }
    } else if (kind == LexerType::LEX_NAME && text(peekToken(0)) == "O") {
      if (omission == ElementDefinition::OMIT_NONE) {
        omission = ElementDefinition::OMIT_START;
      } else if (omission == ElementDefinition::OMIT_START) {
        omission = ElementDefinition::OMIT_BOTH;
      }
    } else {
      return;
    }
    take();
  }
  if (defers_ && deferContent(names, omission)) return;
  // 3. The content, and the end, which stays.
  const int namesBefore = frame_->names.size();
  const ParserType::_dtd_frame::PageShare shareBefore = frame_->pageShare;
  bool isUsed = false;
  {
    impliesStart_ = omission == ElementDefinition::OMIT_START || omission == ElementDefinition::OMIT_BOTH;
    Content content(isKept(names));
    const bool isWhole = parseContent(content) && peekPastComments() == LexerType::LEX_TAG_CLOSE;
    // 4. A definition for each name.
    for (const std::string& name : names) {
      if (!isWhole || !content.isKept) break;
      ElementDefinition* definition = isBounded_ && isDeclared(name) ? nullptr : declareElement(name, omission);
      if (!definition) continue;
      giveContent(*definition, content);
      isUsed = true;
    }
  }
  // 5. Names and tokens of a dropped declaration do not count.
  if (isUsed || !isBounded_) return;
  frame_->names.cutTo(namesBefore);
  frame_->pageShare = shareBefore;
}

// Declares elements whose content is put off.
bool DTDParser::deferContent(const std::vector<std::string>& names, int omission) {
  const std::string_view text = static_cast<DTDLexer*>(lexer_.get())->skipDeclaration();
  if (text.empty()) return false;
  DeferredContent& deferred =
      frame_->deferredContents.emplace_back(DeferredContent{frame_, text, frame_->elementList->size(), 0});
  for (const std::string& name : names) {
    if (ElementDefinition* definition = declareElement(name, omission)) {
      definition->deferredContent_ = &deferred;
      ++deferred.count;
    }
  }
  return true;
}

void DTDParser::read(const DeferredContent& deferred) {
  DTDParser parser(deferred.text, deferred.frame);
  Content content(/*kept=*/true);
  parser.parseContent(content);
  for (std::size_t i = 0; i < deferred.count; ++i) {
    ElementDefinition& definition = *(*deferred.frame->elementList)[deferred.first + i];
    definition.deferredContent_ = nullptr;
    giveContent(definition, content);
  }
}

void DTDParser::giveContent(ElementDefinition& definition, const Content& content) {
  definition.contentType_ = content.type;
  definition.model_ = content.model;
  definition.inclusions_ = content.inclusions;
  definition.exclusions_ = content.exclusions;
  // The groups are shared by all names of the declaration. CHOICE: only their roots count: below them nobody holds a
  // token, and a count of every token for every name would cost the product of both.
  for (ModelGroup* group : {content.model, content.inclusions, content.exclusions}) {
    if (group) group->addRef(false);
  }
}

// The definition of one name, which has no content yet; null if there may be no more of them.
ElementDefinition* DTDParser::declareElement(const std::string& name, int omission) {
  const int nameId = enterName(UpperName(name));
  if (nameId < 0) return nullptr;
  auto* definition = new ElementDefinition;
  const SharedName& upperName = frame_->names.name(nameId);
  if (upperName == name) {
    NodeAccess::setName(definition, upperName);
  } else {
    definition->Node::setName(name);
  }
  definition->upperName_ = upperName;
  definition->nameId_ = nameId;
  definition->elements_ = frame_->elements;
  definition->omission_ = static_cast<ElementDefinition::Omission>(omission);
  const HTML40ElementID id = CatalogueTables::find(name);
  if (id != ID_NONE) definition->elementID_ = id;
  definition->group_ |= CatalogueTables::group(id);
  definition->flags_ |= CatalogueTables::flags(id);
  frame_->elementList->push_back(definition);
  if (frame_->elements->insert(upperName.view(), definition)) {
    definition->ordinal_ = static_cast<int>(frame_->winners.size());
    frame_->winners.push_back(definition);
    ++frame_->generation;
  }
  return definition;
}

// Counts a token against what a page may have; false if it may not.
bool DTDParser::countToken() {
  if (!isBounded_) return true;
  ParserType::_dtd_frame::PageShare& share = frame_->pageShare;
  if (share.tokens >= kMostPageTokens || (impliesStart_ && share.impliedTokens >= kMostImpliedTokens)) {
    noteCut();
    return false;
  }
  ++share.tokens;
  if (impliesStart_) ++share.impliedTokens;
  return true;
}

int DTDParser::parseOccurrence() {
  auto occurrence = Occurrence::kOnce;
  switch (nextKind()) {
    case LexerType::LEX_QUESTION:
      occurrence = Occurrence::kOptional;
      break;
    case LexerType::LEX_PLUS:
      occurrence = Occurrence::kRepeated;
      break;
    case LexerType::LEX_STAR:
      occurrence = Occurrence::kAny;
      break;
    default:
      return static_cast<int>(occurrence);
  }
  take();
  return static_cast<int>(occurrence);
}

// The next token, which is a name, as an item of `group`; null takes it alone.
bool DTDParser::addElementToken(ModelGroup* group) {
  take();
  if (!group) {
    parseOccurrence();
    return true;
  }
  const int nameId = enterName(UpperName(currentText()));
  if (nameId < 0 || !countToken()) return false;
  auto* token = new ElementToken(frame_->names.name(nameId), nameId);
  token->occurrence = static_cast<Occurrence>(parseOccurrence());
  group->add(token);
  return true;
}

bool DTDParser::addTextToken(ModelGroup* group) {
  take();
  if (!group) return true;
  if (!countToken()) return false;
  group->add(new PCDATAToken(DOMAccess::pcdataName()));
  return true;
}

// The content model with its exceptions. The token that does not fit ends it and stays. False if the declaration has to
// be dropped.
//
// KEPT: the content type is what was written last, also by a name in an exception; so "(#PCDATA | A)*" is element
// content and "(A | #PCDATA)*" text. A "+" behind ")" is always the group's occurrence: "(A) +(B)" puts B into the
// model, and only behind another sign does "+(" open the inclusions.
bool DTDParser::parseContent(Content& content) {
  enum State { OUTSIDE, GROUP, OR, SEQUENCE, ALL };
  State state = OUTSIDE;
  ModelGroup* current = content.model;
  std::vector<std::pair<State, ModelGroup*>> outer;
  // The first connector of a group is that of all its items.
  const auto takeConnector = [&](State following, Connector connector) {
    if (state == GROUP) {
      if (current) current->connector = connector;
      state = following;
    } else if (state != following) {
      return false;
    }
    take();
    return true;
  };
  while (true) {
    const LexerType::LexToken kind = nextKind();
    switch (kind) {
      case LexerType::LEX_LPAREN: {
        if (outer.size() == kDeepestGroup) noteCut();
        if (outer.size() == kDeepestGroup || (current && !countToken())) return false;
        take();
        outer.emplace_back(state, current);
        if (current) {
          auto* group = new ModelGroup;
          current->add(group);
          current = group;
        }
        state = GROUP;
        continue;
      }
      case LexerType::LEX_RPAREN: {
        take();
        const int occurrence = parseOccurrence();
        if (current) current->occurrence = static_cast<Occurrence>(occurrence);
        if (outer.empty()) {
          state = OUTSIDE;
          current = content.model;
        } else {
          std::tie(state, current) = outer.back();
          outer.pop_back();
        }
        continue;
      }
      case LexerType::LEX_COMMENT:
        if (state != OUTSIDE) return true;
        take();
        continue;
      case LexerType::LEX_NAME: {
        const std::string_view word = text(peekToken(0));
        if (state == OUTSIDE && (word == "EMPTY" || word == "ANY")) {
          content.type = word == "ANY" ? ElementDefinition::CONTENT_ANY : ElementDefinition::CONTENT_EMPTY;
          take();
          continue;
        }
        content.type = ElementDefinition::CONTENT_ELEMENTS;
        if (!addElementToken(current)) return false;
        continue;
      }
      case LexerType::LEX_PCDATA:
      case LexerType::LEX_CDATA:
        content.type = kind == LexerType::LEX_CDATA && (state == OUTSIDE || state == GROUP)
                           ? ElementDefinition::CONTENT_CDATA
                           : ElementDefinition::CONTENT_TEXT;
        // KEPT: text among "&" items makes a sequence of the rest.
        if (state == ALL) state = SEQUENCE;
        if (!addTextToken(current)) return false;
        continue;
      case LexerType::LEX_PLUS:
      case LexerType::LEX_MINUS:
        if (state != OUTSIDE) return true;
        take();
        current = content.renew(kind == LexerType::LEX_PLUS ? content.inclusions : content.exclusions);
        continue;
      case LexerType::LEX_BAR:
        if (!takeConnector(OR, Connector::kOr)) return true;
        continue;
      case LexerType::LEX_COMMA:
        if (!takeConnector(SEQUENCE, Connector::kSequence)) return true;
        continue;
      case LexerType::LEX_AMPERSAND:
        if (!takeConnector(ALL, Connector::kAll)) return true;
        continue;
      default:
        return true;
    }
  }
}

// --- attributes ------------------------------------------------------------------------------------------------------

void DTDParser::parseAttributeList() {
  const std::vector<std::string> elementNames = parseNameGroup();
  if (elementNames.empty() || (defers_ && deferAttributes(elementNames))) return;
  // Elements that are not declared yet get none.
  const bool isUsed = std::any_of(elementNames.begin(), elementNames.end(),
                                  [this](const std::string& name) { return isDeclared(name); });
  auto list = isUsed ? std::make_unique<AttributeListHolder>() : nullptr;
  listRoom_ = isBounded_ ? kMostPageBytes - frame_->pageShare.bytes : std::numeric_limits<std::size_t>::max();
  if (parseAttributes(list.get()) && list) installAttributeList(elementNames, std::move(list));
}

// Puts off the list that stands here.
bool DTDParser::deferAttributes(const std::vector<std::string>& elementNames) {
  const std::string_view text = static_cast<DTDLexer*>(lexer_.get())->skipDeclaration();
  if (text.empty()) return false;
  DeferredList& deferred = frame_->deferredLists.emplace_back(DeferredList{frame_, text});
  for (const std::string& name : elementNames) {
    if (ElementDefinition* definition = frame_->elements->find(UpperName(name))) definition->deferredList_ = &deferred;
  }
  return true;
}

void DTDParser::read(DeferredList& deferred) {
  auto list = std::make_unique<AttributeListHolder>();
  DTDParser parser(deferred.text, deferred.frame);
  parser.listRoom_ = std::numeric_limits<std::size_t>::max();
  parser.parseAttributes(list.get());
  deferred.list = list.get();
  deferred.frame->attributeLists.push_back(std::move(list));
}

// About the bytes that are kept of the list being read. False if there is no room for them.
bool DTDParser::takeListRoom(std::size_t bytes) {
  if (bytes > listRoom_) {
    noteCut();
    return false;
  }
  listRoom_ -= bytes;
  return true;
}

// False if the list has to be dropped. Without a list what stands there is read and left.
bool DTDParser::parseAttributes(AttributeListHolder* list) {
  if (!frame_->listedNames) frame_->listedNames = std::make_unique<ListedNames>();
  ListedNames& names = *frame_->listedNames;
  const ListedNames::Entry* name = &names.find({});
  // KEPT: an enumeration does not write it, and so says the type of the attribute before it.
  std::uint8_t declaredType = 0;
  do {
    // KEPT: a token that is no name is taken all the same, and the name stays what it was.
    const LexerType::LexToken kind = advancePastComments();
    if (isLast(kind)) return false;
    if (kind == LexerType::LEX_NAME) name = &names.find(currentText());
    auto definition = std::make_unique<AttributeDefinition>();
    if (!parseAttributeType(*definition, declaredType, /*keepsTokens=*/list != nullptr) ||
        !parseAttributeDefault(*definition))
      return false;
    definition->declaredType_ = declaredType;
    if (!list) continue;
    if (!takeListRoom(sizeof(AttributeDefinition) + 2 * name->name.view().size())) return false;
    NodeAccess::setName(definition.get(), name->name);
    definition->upperName_ = name->upperName;
    list->byName.insert(definition.get(), name->hash);
    NodeAccess::append(&list->holder, definition.release());
  } while (peekPastComments() != LexerType::LEX_TAG_CLOSE);
  return true;
}

// A keyword, which goes into `declaredType`, or the values of an enumeration.
bool DTDParser::parseAttributeType(AttributeDefinition& definition, std::uint8_t& declaredType, bool keepsTokens) {
  switch (advancePastComments()) {
    case LexerType::LEX_NAME:
    case LexerType::LEX_CDATA:
      declaredType = declaredTypeOf(currentText());
      return true;
    case LexerType::LEX_LPAREN:
      break;
    default:
      pushBack();
      return false;
  }
  definition.allowedTokens_ = std::make_unique<std::vector<std::string>>();
  definition.allowedTokens_->reserve(2);  // most have two or three
  while (true) {
    switch (advancePastComments()) {
      case LexerType::LEX_NAME:
      case LexerType::LEX_CDATA:
        if (!keepsTokens) break;
        if (!takeListRoom(sizeof(std::string) + currentText().size())) return false;
        toUpperName(definition.allowedTokens_->emplace_back(currentText()));
        break;
      case LexerType::LEX_BAR:
        break;
      case LexerType::LEX_RPAREN:
        return true;
      default:
        pushBack();
        return false;
    }
  }
}

// The default value itself is read and dropped.
bool DTDParser::parseAttributeDefault(AttributeDefinition& definition) {
  const auto takeWord = [this] {
    const LexerType::LexToken kind = advancePastComments();
    if (kind == LexerType::LEX_NAME || kind == LexerType::LEX_LITERAL) return true;
    pushBack();
    return false;
  };
  if (!takeWord()) return false;
  constexpr int kFixed = 1;
  definition.defaultType_ = defaultTypeOf(currentText());
  return definition.defaultType_ != kFixed || takeWord();
}

// All that a list says; lists that say the same are one.
std::string DTDParser::contentOf(const AttributeListHolder& list) {
  std::string content;
  const auto add = [&content](std::string_view text) {
    content += std::to_string(text.size());
    content += ':';
    content += text;
  };
  for (const Node* n = list.holder.getFirstChild(); n; n = n->getNextSibling()) {
    const auto& definition = static_cast<const AttributeDefinition&>(*n);
    add(definition.getName());
    content += static_cast<char>('a' + definition.declaredType_);
    content += static_cast<char>('a' + definition.defaultType_);
    if (!definition.allowedTokens_) continue;
    for (const std::string& token : *definition.allowedTokens_) add(token);
    content += '|';
  }
  return content;
}

// KEPT: a later list takes the place of an earlier one. The replaced list lives on, for attributes of open pages point
// into it; so a page's list that was read before is not kept a second time.
void DTDParser::installAttributeList(const std::vector<std::string>& elementNames,
                                     std::unique_ptr<AttributeListHolder> list) {
  const AttributeListHolder* installed = list.get();
  if (isBounded_) {
    const std::size_t room = kMostPageBytes - frame_->pageShare.bytes;
    std::string content = contentOf(*list);
    const auto known = frame_->pageLists.find(content);
    if (known != frame_->pageLists.end()) {
      installed = known->second;
    } else if (spend(room - listRoom_ + sizeof(AttributeListHolder) + kEntryBytes + content.size())) {
      frame_->pageLists.emplace(std::move(content), installed);
    } else {
      return;
    }
  }
  if (installed == list.get()) frame_->attributeLists.push_back(std::move(list));
  for (const std::string& name : elementNames) {
    ElementDefinition* definition = frame_->elements->find(UpperName(name));
    if (!definition) continue;
    definition->attributes_ = installed;
    definition->deferredList_ = nullptr;
  }
}

// --- groups and marked sections --------------------------------------------------------------------------------------

// An extension of SGML that adds bits to the group words of elements.
void DTDParser::parseGroup() {
  static constexpr std::pair<std::string_view, unsigned long> kWords[] = {
      {"BLOCK", GROUP_BLOCK}, {"PLAIN", GROUP_PLAIN}, {"BREAK", GROUP_BREAK}, {"NOWRAP", GROUP_NOWRAP}};
  if (peekPastComments() != LexerType::LEX_NAME) return;
  take();
  const std::string_view word = currentText();
  const auto* known =
      std::find_if(std::begin(kWords), std::end(kWords), [word](const auto& w) { return w.first == word; });
  if (known == std::end(kWords)) return;
  const std::vector<std::string> names = parseNameGroup();
  if (peekPastComments() != LexerType::LEX_TAG_CLOSE) return;
  for (const std::string& name : names) {
    if (ElementDefinition* definition = frame_->elements->find(UpperName(name))) definition->group_ |= known->second;
  }
}

void DTDParser::parseMarkedSection() {
  // 1. "[", a keyword, "["; anything else is left to the loop over declarations.
  if (peekPastComments() != LexerType::LEX_LBRACKET) return;
  take();
  if (peekPastComments() != LexerType::LEX_NAME) return;
  const std::string_view word = text(peekToken(0));
  const bool include = word == "INCLUDE";
  if (!include && word != "IGNORE") return;
  take();
  if (peekPastComments() != LexerType::LEX_LBRACKET) return;
  take();
  if (!include) {
    skipIgnoredSection();
    return;
  }
  if (sectionDepth_ >= kDeepestSection) return noteCut();
  // 2. KEPT: one token is dropped, the "<" of the first declaration as a rule. The declarations go on to a "]".
  if (isLast(advancePastComments())) return;
  ++sectionDepth_;
  const int result = parse(LexerType::LEX_RBRACKET);
  --sectionDepth_;
  // 3. A further "]"; the ">" is left to the loop.
  if (result == 0) accept(LexerType::LEX_RBRACKET);
}

// KEPT: nesting is not tracked, for the "<![" of an inner section comes as two tokens; the first "]]>" that does not
// stand right at the start closes the section. Its ">" is left to the loop. A reference to an undeclared entity is
// ignored like all else: a DTD leaves out what it has not declared.
void DTDParser::skipIgnoredSection() {
  while (true) {
    if (take() == LexerType::LEX_EOF) {
      pushBack();
      return;
    }
    const auto comes = [this](std::size_t place, LexerType::LexToken kind) { return peekToken(place).kind == kind; };
    if (comes(0, LexerType::LEX_RBRACKET) && comes(1, LexerType::LEX_RBRACKET) && comes(2, LexerType::LEX_TAG_CLOSE)) {
      take();
      take();
      return;
    }
  }
}

}  // namespace zeldom40
