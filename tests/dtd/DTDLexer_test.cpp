// Tokens of a document type definition, entity expansion, character references.
#include "dom/dtd/DTDLexer.h"

#include <string>

#include <gtest/gtest.h>

#include "dom/dtd/DTDFrame.h"

namespace zeldom40 {
namespace {

using namespace std::string_literals;

class DTDLexerTest : public testing::Test {
 protected:
  void entity(const std::string& name, const std::string& text, const std::string& publicId = "",
              const std::string& systemId = "") {
    frame_.parameterRecords.push_back({name, text, systemId, publicId});
    frame_.parameterEntities->insert(name, &frame_.parameterRecords.back());
  }

  // Kind and text of all tokens, as "21:x 2:> ".
  std::string tokens(const std::string& text) {
    DTDLexer lexer(text, &frame_);
    std::string out;
    while (true) {
      const LexRecord token = lexer.nextToken();
      if (token.kind == LexerType::LEX_EOF) break;
      out += std::to_string(token.kind) + ":" + std::string(lexer.slice(token)) + " ";
    }
    EXPECT_EQ(lexer.nextToken().kind, LexerType::LEX_EOF);
    return out;
  }

  ParserType::_dtd_frame frame_;
};

TEST_F(DTDLexerTest, Tokens) {
  entity("a", "x");
  entity("e", "");
  entity("sp", "x y");
  entity("q", "x\"y");
  entity("ext", "PUBLIC", "pub", "sys");
  entity("dashes", "--");
  const std::pair<std::string, std::string> cases[] = {
      {"< > ( ) [ ] * + , ? | & % ", "1:< 2:> 38:( 39:) 26:[ 27:] 28:* 36:+ 33:, 29:? 32:| 30:& 6:% "},
      {"<!ELEMENT<!ENTITY<!ATTLIST", "1:< 9:!ELEMENT 1:< 5:!ENTITY 1:< 8:!ATTLIST "},
      {"!GROUP BLOCK", "51:!GROUP 21:BLOCK "},
      // Stepped over by the length of another keyword.
      {"!NOTATION x", "4:!NOTATIO 21:N 21:x "},
      {"![INCLUDE[", "25:! 26:[ 21:INCLUDE 26:[ "},
      {"!x!ENTITY", "31: 21:x!ENTITY "},
      {"#PCDATA CDATA #PCDATAX cdata", "22:#PCDATA 23:CDATA 21:#PCDATAX 21:cdata "},
      {"a&b TITLE& x", "21:a&b 21:TITLE& 21:x "},
      {"- -O --", "37:- 37:- 21:O 3:-- "},
      {"--a-----b", "3:--a----- 21:b "},
      {"!-- x --> y", "3:-- x -- 2:> 21:y "},
      {"\"a 'b' \\\" c\" 'd'", "10:a 'b' \\\" c 10:d "},
      {"\x80\xff\x01 }~", "21:\x80\xff\x01 21:}~ "},
      {"a\0b"s, "21:a\0b "s},
      // Entities.
      {"%a; %a %a>", "21:x 21:x 21:x 2:> "},
      {"b%a;b", "21:bxb "},
      {"b%sp;b", "21:bx 21:yb "},
      {"%e;%e;%e;x", "21:x "},
      {"\"b%q;b\"", "10:bx 21:yb\" "},
      {"%ext;", "21:PUBLIC 10:pub 10:sys "},
      {"-- %a; %nothing; --%a;", "3:-- %a; %nothing; -- 21:x "},
      {"b--%nothing;--%a;", "21:b--%nothing;--x "},
      {"%dashes; %a; --y", "3:-- %a; -- 21:y "},
      // A reference ends at ";", a blank or ">" and at nothing else.
      {"%a\n;", "19: "},
      // Undeclared references are left out; in a literal the token comes first.
      {"\"a%no;b%no;\" c", "19: 10:ab%no; 21:c "},
      {"x %no;%no;y", "21:x 19: 19: 21:y "},
      {"%", "19: "},
      {"\"100%\"", "19: 10:100 "},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(tokens(text), expected) << text;
}

TEST_F(DTDLexerTest, LinesOfWhiteSpaceCountAsTheyAreRead) {
  entity("two", "\n\n");
  DTDLexer lexer("a\n \"\n\" %two; b", &frame_);
  EXPECT_EQ(lexer.nextToken().line, 1u);
  EXPECT_EQ(lexer.nextToken().line, 2u);
  EXPECT_EQ(lexer.nextToken().line, 4u);
}

TEST_F(DTDLexerTest, TheQueueGivesBackWhatWasPutBack) {
  std::string text;
  for (int i = 0; i < 100; ++i) text += "n" + std::to_string(i) + " ";
  DTDLexer lexer(text, &frame_);
  EXPECT_EQ(lexer.slice(lexer.peekToken(99)), "n99");
  const LexRecord first = lexer.nextToken();
  const LexRecord second = lexer.nextToken();
  lexer.ungetToken(second);
  lexer.ungetToken(first);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(lexer.slice(lexer.nextToken()), "n" + std::to_string(i));
}

TEST_F(DTDLexerTest, CharacterReferences) {
  struct Case {
    const char* text;
    bool form;
    std::string marked;  // empty: not encoded
    std::uint32_t code;
  };
  const Case cases[] = {
      {"&#1;", true, "\x1b\x01"s, 1},
      {"&#xfF;", true, "\x1b\xff"s, 255},
      {"&#8364;", true, "\x1c\x1c\x20\xac"s, 8364},
      {"&#65601;", true, "\x1b\x41"s, 65601},
      {"&#99999999999999999999;", true, "\x1c\x1c\xff\xff"s, 0xFFFFFFFF},
      // A NUL cannot be held.
      {"&#0;", true, "", 0},
      {"&#65536;", true, "", 0},
      {"&#Z1;", true, "", 0},
      {"&#;", false, "", 0},
      {"&#1a;", false, "", 0},
      {"&#X41;", true, "", 0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(DTDLexer::isCharacterReference(c.text), c.form) << c.text;
    std::string text = c.text;
    std::uint32_t code = 0;
    EXPECT_EQ(DTDLexer::encodeCharacterReference(text, &code), !c.marked.empty()) << c.text;
    EXPECT_EQ(text, c.marked.empty() ? c.text : c.marked) << c.text;
    EXPECT_EQ(code, c.code) << c.text;
  }
}

}  // namespace
}  // namespace zeldom40
