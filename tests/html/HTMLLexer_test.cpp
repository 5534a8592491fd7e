// The token stream of page text, one line of text a page.
#include "dom/html/HTMLLexer.h"

#include <map>

#include "dom/dtd/DTDFrame.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

using namespace std::string_literals;

class HTMLLexerTest : public PageTest {
 protected:
  HTMLLexer lexer(std::string_view text) {
    return HTMLLexer(text.data(), text.size(), doc_->getDocumentTypeObject()->getDTDFrame());
  }

  // Names and punctuation as they are, "_" for white space, "^" for an empty closer, "$" for the end.
  static std::string show(HTMLLexer& lexer) {
    static const std::map<int, std::string> kinds = {
        {LexerType::LEX_COMMENT, "comment"},       {LexerType::LEX_SERVER_COMMENT, "servercomment"},
        {LexerType::LEX_SERVER_TAG, "server"},     {LexerType::LEX_PROCESSING, "pi"},
        {LexerType::LEX_CDATA_SECTION, "section"}, {LexerType::LEX_DOCTYPE, "doctype"},
        {LexerType::LEX_ENTITY_REF, "entity"}};
    std::string out;
    while (true) {
      const LexRecord token = lexer.nextToken();
      const std::string text(lexer.slice(token));
      const auto kind = kinds.find(token.kind);
      if (!out.empty()) out += ' ';
      if (token.kind == LexerType::LEX_EOF) return out + '$';
      if (token.kind == LexerType::LEX_SPACE) {
        out += '_';
      } else if (token.kind == LexerType::LEX_CHAR_REF) {
        out += std::to_string(token.value) + '[' + text + ']';
      } else if (kind != kinds.end()) {
        out += kind->second + '[' + text + ']';
      } else if (text.empty()) {
        out += token.kind == LexerType::LEX_NAME ? "''" : "^";
      } else {
        out += text;
      }
    }
  }
  std::string tokens(std::string_view text, bool sections = false) {
    HTMLLexer made = lexer(text);
    made.setCDATAEnabled(sections, 0);
    return show(made);
  }
};

struct Row {
  std::string_view text;
  const char* tokens;
};

TEST_F(HTMLLexerTest, CutsNamesPunctuationAndWhiteSpace) {
  const Row rows[] = {
      {"", "$"},
      {" \t\r\n\v\f", "_ $"},
      {"<br />", "< br _ / > $"},
      {"a/b!c-d,e%f[g];h", "a/b!c-d,e%f[g];h $"},
      {"!,-%[]/;", "! , - % [ ] / ; $"},
      {"a(b)c|d*e?f+g=h\"i'j>k", "a ( b ) c | d * e ? f + g = h \" i ' j > k $"},
      {"\x80<\xff\xa0", "\x80 < \xff\xa0 $"},
  };
  for (const Row& row : rows) EXPECT_EQ(tokens(row.text), row.tokens) << row.text;
  EXPECT_EQ(tokens("a\0b\x1b<\0\x1c\x1d"s), "a\0b\x1b < \0\x1c\x1d $"s);
}

TEST_F(HTMLLexerTest, CutsReferencesThatItKnows) {
  const Row rows[] = {
      {"&amp;x&amp", "entity[&amp;] x entity[&amp] $"},
      {"&nosuch;y", "& nosuch ;y $"},
      {"&amp/", "& amp/ $"},
      {"&&amp", "& '' entity[&amp] $"},
      {"&#65;&#65", "65[&#65;] 65[&#65] $"},
      {"&#65534;&#65535;", "65534[&#65534;] & #65535; $"},
      {"&#0;&#123456;", "& #0; & #123456; $"},
      {"&#x41;", "& #x41; $"},
      {"&#", "& # $"},
  };
  for (const Row& row : rows) EXPECT_EQ(tokens(row.text), row.tokens) << row.text;
}

TEST_F(HTMLLexerTest, EndsConstructsAtTheirTerminatorElseAtTheFirstCloserElseAtTheEnd) {
  const Row rows[] = {
      {"<!-- > -->b", "< comment[-- > --] ^ b $"},
      {"<!--", "< comment[--] $"},
      {"<!-->x", "< comment[--] ^ x $"},
      {"<!--->x", "< comment[---] ^ x $"},
      {"<%-- > --%>y", "< servercomment[-- > --] ^ y $"},
      {"<%-- x > y", "< servercomment[-- x ] ^ _ y $"},
      {"<%--%>y", "< servercomment[--%] ^ y $"},
      {"<% a > b %>c", "< server[% a > b %] ^ c $"},
      {"<%>x", "< server[%] ^ x $"},
      {"<?x > y?>z", "< pi[?x > y?] ^ z $"},
      {"<?>x", "< pi[?] ^ x $"},
      {"<!dOcTyPe html>", "< doctype[!dOcTyPe] _ html > $"},
      {"<!DOCTYPEhtml", "< doctype[!DOCTYPE] html $"},
      {"<!-x>", "< ! - x > $"},
      {"<![CDATA[a]]>", "< ! [ CDATA[a]] > $"},
      // What was searched in vain once is still found where it stands further on under another terminator.
      {"<!-- a ><%-- b --%><!-- c -->", "< comment[-- a ><%-- b --%><!-- c --] ^ $"},
      {"<%-- a ><!-- b --><% c %>", "< servercomment[-- a ] ^ < comment[-- b --] ^ < server[% c %] ^ $"},
  };
  for (const Row& row : rows) EXPECT_EQ(tokens(row.text), row.tokens) << row.text;
}

TEST_F(HTMLLexerTest, OpensSectionsOnlyWhereTheParserAllowsThem) {
  const Row rows[] = {
      {"<![CDATA[a > b]]>c", "< section[a > b] ^ c $"},
      {"<![cdata[]]>c", "< section[] ^ c $"},
      {"<![CDATA[a > b", "< section[a ] ^ _ b $"},
      {"<![CDATA[a", "< section[a] $"},
      {"<![CDATA", "< ! [ CDATA $"},
  };
  for (const Row& row : rows) EXPECT_EQ(tokens(row.text, /*sections=*/true), row.tokens) << row.text;
}

TEST_F(HTMLLexerTest, CountsTheLineFeedsOfWhiteSpaceAlone) {
  HTMLLexer made = lexer("a\nb\r\n\n<!-- \n -->c\r<% \n %>\n");
  show(made);
  EXPECT_EQ(made.line(), 5u);
  // Tokens know the line that they stand in.
  HTMLLexer again = lexer("a\n\nb");
  EXPECT_EQ(again.nextToken().line, 1u);
  again.nextToken();
  EXPECT_EQ(again.nextToken().line, 3u);
}

TEST_F(HTMLLexerTest, DeliversTheEndAsOftenAsItIsAsked) {
  HTMLLexer made = lexer("<!-- a");
  for (int i = 0; i < 2; ++i) made.nextToken();
  for (int i = 0; i < 3; ++i) {
    const LexRecord end = made.nextToken();
    EXPECT_EQ(end.kind, LexerType::LEX_EOF);
    EXPECT_EQ(end.start, HTMLLexer::NO_POSITION);
    EXPECT_EQ(made.slice(end), "");
  }
}

}  // namespace
}  // namespace zeldom40
