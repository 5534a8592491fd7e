// The token stream of page text, one line of text a page.
#include "dom/html/HTMLLexer.h"

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
    std::string out;
    while (true) {
      const LexRecord token = lexer.nextToken();
      const std::string text(lexer.slice(token));
      if (!out.empty()) out += ' ';
      switch (token.kind) {
        case LexerType::LEX_SPACE:
          out += '_';
          break;
        case LexerType::LEX_COMMENT:
          out += "comment[" + text + ']';
          break;
        case LexerType::LEX_SERVER_COMMENT:
          out += "servercomment[" + text + ']';
          break;
        case LexerType::LEX_SERVER_TAG:
          out += "server[" + text + ']';
          break;
        case LexerType::LEX_PROCESSING:
          out += "pi[" + text + ']';
          break;
        case LexerType::LEX_CDATA_SECTION:
          out += "section[" + text + ']';
          break;
        case LexerType::LEX_DOCTYPE:
          out += "doctype[" + text + ']';
          break;
        case LexerType::LEX_CHAR_REF:
          out += std::to_string(token.value) + '[' + text + ']';
          break;
        case LexerType::LEX_ENTITY_REF:
          out += "entity[" + text + ']';
          break;
        case LexerType::LEX_TAG_CLOSE:
          out += text.empty() ? "^" : text;
          break;
        case LexerType::LEX_NAME:
          out += text.empty() ? "''" : text;
          break;
        case LexerType::LEX_EOF:
          return out + '$';
        default:
          out += text;
      }
    }
  }
  std::string tokens(std::string_view text, bool sections = false) {
    HTMLLexer made = lexer(text);
    made.setCDATAEnabled(sections);
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
      {"a  ", "a _ $"},
      {"<br/>", "< br/ > $"},
      {"<br />", "< br _ / > $"},
      {"a/b!c-d,e%f[g];h", "a/b!c-d,e%f[g];h $"},
      {"!,-%[]/;", "! , - % [ ] / ; $"},
      {"a(b)c|d*e?f+g=h\"i'j>k", "a ( b ) c | d * e ? f + g = h \" i ' j > k $"},
      {"#.:@", "#.:@ $"},
      {"\x80<\xff\xa0", "\x80 < \xff\xa0 $"},
  };
  for (const Row& row : rows) EXPECT_EQ(tokens(row.text), row.tokens) << row.text;
  EXPECT_EQ(tokens("a\0b\x1b<\0\x1c\x1d"s), "a\0b\x1b < \0\x1c\x1d $"s);
}

TEST_F(HTMLLexerTest, CutsReferencesThatItKnows) {
  const Row rows[] = {
      {"&amp;x&amp", "entity[&amp;] x entity[&amp] $"},
      {"&AMP;", "& AMP ; $"},
      {"&nosuch;y", "& nosuch ;y $"},
      {"&amp/", "& amp/ $"},
      {"& a", "& '' _ a $"},
      {"&&amp", "& '' entity[&amp] $"},
      {"&", "& '' $"},
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
      {"<!-- a --> b", "< comment[-- a --] ^ _ b $"},
      {"<!-- > -->b", "< comment[-- > --] ^ b $"},
      {"<!-- a > b", "< comment[-- a ] ^ _ b $"},
      {"<!-- a", "< comment[-- a] $"},
      {"<!--", "< comment[--] $"},
      {"<!-->x", "< comment[--] ^ x $"},
      {"<!--->x", "< comment[---] ^ x $"},
      {"<!---->x", "< comment[----] ^ x $"},
      {"<%-- > --%>y", "< servercomment[-- > --] ^ y $"},
      {"<%-- x > y", "< servercomment[-- x ] ^ _ y $"},
      {"<%-- x", "< servercomment[-- x] $"},
      {"<%--%>y", "< servercomment[--%] ^ y $"},
      {"<%- x %>", "< server[%- x %] ^ $"},
      {"<% a > b %>c", "< server[% a > b %] ^ c $"},
      {"<% a > b", "< server[% a ] ^ _ b $"},
      {"<% a", "< server[% a] $"},
      {"<%", "< server[%] $"},
      {"<%>x", "< server[%] ^ x $"},
      {"<%%>x", "< server[%%] ^ x $"},
      {"<?x > y?>z", "< pi[?x > y?] ^ z $"},
      {"<?x > z", "< pi[?x ] ^ _ z $"},
      {"<?x", "< pi[?x] $"},
      {"<?>x", "< pi[?] ^ x $"},
      {"<!dOcTyPe html>", "< doctype[!dOcTyPe] _ html > $"},
      {"<!DOCTYPEhtml", "< doctype[!DOCTYPE] html $"},
      {"<!-x>", "< ! - x > $"},
      {"<!foo>", "< ! foo > $"},
      {"<!", "< ! $"},
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
      {"<![CDATA[", "< section[] $"},
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
