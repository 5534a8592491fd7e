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
class ListedNames;
class ModelGroup;
struct AttributeListHolder;

// A loop over declarations, each a small state machine over tokens. It forgives: a declaration that does not fit is
// dropped without a word, the tokens left of it pass, and reading goes on with the next keyword. The first declaration
// of an entity or an element counts; the last attribute list of an element does.
//
// Any text ends in time that grows with its length: parameter entities may grow a text only so far, groups and marked
// sections nest only so deep, and the number of element names is bounded; what goes beyond is dropped.
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

  // Call it with LEX_EOF for the whole text. -1 also tells that a reference to an undeclared entity ended it.
  int parse(LexerType::LexToken stop) override;

  // The tables, owned by this parser or the one that they were borrowed from; null for a placeholder.
  ParserType::_dtd_frame* getDTDFrame() const { return frame_; }

 private:
  struct Content;

  LexerType::LexToken take();
  LexerType::LexToken nextKind();
  std::string_view text(const LexRecord& token) const;
  std::string_view currentText() const;
  LexerType::LexToken advancePastComments();
  LexerType::LexToken peekPastComments();
  void parsePublicIdentifier();
  void parseEntity();
  void parseParameterEntity();
  void parseGeneralEntity();
  std::vector<std::string> parseNameGroup();
  int enterName(std::string_view upperName);
  void parseElement();
  void declareElement(const std::string& name, int omission, const Content& content);
  bool countToken();
  int parseOccurrence();
  bool addElementToken(ModelGroup& group);
  bool addTextToken(ModelGroup& group);
  bool parseContent(Content& content);
  void parseAttributeList();
  bool parseAttributeType(AttributeDefinition& definition, std::uint8_t& declaredType);
  bool parseAttributeDefault(AttributeDefinition& definition);
  void installAttributeList(const std::vector<std::string>& elementNames, std::unique_ptr<AttributeListHolder> list);
  void parseGroup();
  void parseMarkedSection();
  void skipIgnoredSection();

  ParserType::_dtd_frame* frame_ = nullptr;
  bool ownsFrame_ = false;
  int sectionDepth_ = 0;
  std::unique_ptr<ListedNames> listedNames_;  // made by the first list
};

}  // namespace zeldom40
