// Which stretch of a page becomes a text, and its plain form.

#include "tests/html/HtmlTest.h"

namespace zeldom40 {
namespace {

using RunningText = PageTableTest;

TEST_F(RunningText, WhiteSpaceIsOneBlankAndNoneBehindABreak) {
  expectTrees(
      {
          {"<P> a  b \n<B> c</B> d</P> e", "ZELROOT(HTML(BODY(P(\"a b \" B(\"c\") \" d\") \"e\")))"},
          {"<P>a <!--c--> b<!--c--> ", "ZELROOT(HTML(BODY(P(\"a \" <!--c--> \"b\" <!--c--> \" \"))))"},
          {"<P>a <BR> b <%=x%> c", "ZELROOT(HTML(BODY(P(\"a \" BR \"b \" JSP:EXPRESSION \"c\"))))"},
          // A unit in the line is content, a hidden one and an unknown tag are none.
          {"<P>a <IMG> b <INPUT TYPE=\"Hidden\"> c <INPUT TYPE=text> d <X> e",
           "ZELROOT(HTML(BODY(P(\"a \" IMG \" b \" INPUT \"c \" INPUT \" d \" X \"e\"))))"},
          {"<PRE> a\n  b</PRE> c", "ZELROOT(HTML(BODY(PRE(\" a\\n  b\") \"c\")))"},
          // A preformatted element that is closed from outside leaves its mode on.
          {"<DIV><PRE> a</DIV> b  c", "ZELROOT(HTML(BODY(DIV(PRE(\" a\")) \" b  c\")))"},
          {"<P>a <DIV> b</DIV> c</B> d", "ZELROOT(HTML(BODY(P(\"a \") DIV(\"b\") \"c\" B \" d\")))"},
          {"<P>a<UL> <LI> b </UL>", "ZELROOT(HTML(BODY(P(\"a\") UL(~\"\" LI(\"b \")))))"},
      },
      kDumpPlain);
}

TEST_F(RunningText, MarksReferencesAndMarkup) {
  const PageRow rows[] = {
      {"&amp;&lt&quot;", "\x1b&\x1b<\x1b\""},
      {"a\"b'c>d& e&nosuch;", "a\x1b\"b'c\x1b>d\x1b& e\x1b&nosuch;"},
      {"&#65;&#8364;&#512;&#0;",
       "\x1b"
       "A\x1c\x1d\x20\xac\x1c\x1b\x02\x1d\x1b&#0;"},
      {"&hellip;&eacute;", "\x1c\x1c\x20&\x1b\xe9"},
      {"a\x1b\x1c\x1d", "a\x1b\x1c\x1d"},
      {"&lt&#x41; &#8364&hellip", "\x1b<\x1b&#x41; \x1c\x1d\x20\xac\x1c\x1c\x20&"},
  };
  for (const PageRow& row : rows) {
    load(row.page);
    EXPECT_EQ(text()->getData(), row.tree) << row.page;
  }
}

}  // namespace
}  // namespace zeldom40
