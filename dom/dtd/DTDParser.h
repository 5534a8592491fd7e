// Reads the text of an SGML document type definition into tables.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "dom/dtd/Parser.h"
#include "dom/dtd/ParserType.h"

namespace zeldom40 {

class AttributeDefinition;
class ElementDefinition;
class ModelGroup;
struct AttributeListHolder;
struct DeferredContent;
struct DeferredEntities;
struct DeferredList;

// A loop over declarations, each a small state machine over tokens. It forgives: a declaration that does not fit is
// dropped without a word, the tokens left of it pass, and reading goes on with the next keyword. The first declaration
// of an entity or an element counts; the last attribute list of an element does.
//
// Any text ends in time that grows with its length: parameter entities may grow a text only so far, groups and marked
// sections nest only so deep, and the number of element names is bounded; what goes beyond is dropped. The declarations
// of pages are kept as long as the DTD, so there are further bounds for all of them together. Only what is kept counts:
// a page that is read again declares nothing new.
class ZELDOM40_API DTDParser : public Parser {
 public:
  // A placeholder without tables; parse answers -1.
  DTDParser();
  // Over a copy of `length` bytes of `text`, with tables of its own, which live as long as the parser.
  // A text of 2 GiB or more is cut there.
  DTDParser(const char* text, unsigned length);
  // Declarations go into the tables of `shared`, which are borrowed. `shared` itself is needed only for the call.
  DTDParser(const char* text, unsigned length, const ParserType::_dtd_parser_frame* shared);
  ~DTDParser() override;

  // A parser with tables of its own that puts off what is rarely asked for; see DTDFrame.h. The text is constant and
  // outlives the parser and all its definitions, has no faults, refers to nothing before it is declared, and what is
  // put off has no names but those of declared elements. The caller owns the parser.
  static DTDParser* makeDeferring(std::string_view text);

  // Call it with LEX_EOF for the whole text. -1 also tells that a reference to an undeclared entity ended it.
  int parse(LexerType::LexToken stop) override;
  // Whether something that a text declared, since the tables were made, was left out: because of a bound, or because
  // it stands behind a reference to an undeclared entity.
  bool isCut() const;

  // The tables, owned by this parser or the one that they were borrowed from; null for a placeholder.
  ParserType::_dtd_frame* getDTDFrame() const { return frame_; }

 private:
  friend class ElementDefinition;
  friend struct ParserType::_dtd_frame;
  struct Content;

  // For what was put off: its names and tokens are not counted as a page's.
  DTDParser(std::string_view text, ParserType::_dtd_frame* frame);
  static void read(const DeferredContent& deferred);
  static void read(DeferredList& deferred);
  static void read(const DeferredEntities& deferred, ParserType::_dtd_frame* frame);

  int parseDeclarations(LexerType::LexToken stop);
  LexerType::LexToken take();
  LexerType::LexToken nextKind();
  std::string_view text(const LexRecord& token) const;
  std::string_view currentText() const;
  LexerType::LexToken advancePastComments();
  LexerType::LexToken peekPastComments();
  void parsePublicIdentifier();
  void parseEntity();
  bool deferEntities();
  void parseParameterEntity();
  void parseGeneralEntity();
  std::vector<std::string> parseNameGroup();
  int enterName(std::string_view upperName);
  void parseElement();
  bool deferContent(const std::vector<std::string>& names, int omission);
  ElementDefinition* declareElement(const std::string& name, int omission);
  static void giveContent(ElementDefinition& definition, const Content& content);
  bool isDeclared(const std::string& name) const;
  bool isKept(const std::vector<std::string>& elementNames) const;
  void noteCut();
  bool spend(std::size_t bytes);
  bool countToken();
  int parseOccurrence();
  bool addElementToken(ModelGroup* group);
  bool addTextToken(ModelGroup* group);
  bool parseContent(Content& content);
  void parseAttributeList();
  bool deferAttributes(const std::vector<std::string>& elementNames);
  bool parseAttributes(AttributeListHolder* list);
  bool parseAttributeType(AttributeDefinition& definition, std::uint8_t& declaredType, bool keepsTokens);
  bool takeListRoom(std::size_t bytes);
  bool parseAttributeDefault(AttributeDefinition& definition);
  static std::string contentOf(const AttributeListHolder& list);
  void installAttributeList(const std::vector<std::string>& elementNames, std::unique_ptr<AttributeListHolder> list);
  void parseGroup();
  void parseMarkedSection();
  void skipIgnoredSection();

  ParserType::_dtd_frame* frame_ = nullptr;
  bool ownsFrame_ = false;
  bool isBounded_ = false;  // a page's declarations
  bool defers_ = false;
  bool impliesStart_ = false;  // the element being declared may be implied
  std::size_t listRoom_ = 0;   // what the attribute list being read may still take
  int sectionDepth_ = 0;
};

}  // namespace zeldom40
