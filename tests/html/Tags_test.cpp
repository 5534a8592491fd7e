// What is read from begin tags, and bodies that are not parsed.
#include "dom/tree/AttributeAccess.h"
#include "tests/html/HtmlTest.h"

namespace zeldom40 {
namespace {

using namespace std::string_literals;

using Tags = PageTableTest;
constexpr unsigned kTags = kDumpAttributes | kDumpErrors;

TEST_F(Tags, ReadsNamesAndValuesInEveryForm) {
  expectTrees(
      {
          {"<HR ALIGN=left ID='a' CLASS=\"b c\" NOSHADE SIZE = 1>",
           "ZELROOT(HTML(BODY(HR[ALIGN=left ID=a CLASS=b c NOSHADE SIZE=1])))"},
          {"<hr align=left\tnoshade/>", "ZELROOT(HTML(BODY(HR[ALIGN=left noshade/]!4)))"},
          {"<P ALIGN ID=a>", "ZELROOT(HTML(BODY(P[ALIGN ID=a])))"},
          {"<P ALIGN=\"\" ID=''>", "ZELROOT(HTML(BODY(P[ALIGN ID])))"},
          {"<P / ALIGN=left / ID=a / >", "ZELROOT(HTML(BODY(P[ALIGN=left ID=a])))"},
          {"<P ALIGN==x ID=a=\"b\">", "ZELROOT(HTML(BODY(P[ALIGN==x ID=a=\"b\"])))"},
          {"<P =x ID=a>", "ZELROOT(HTML(BODY(P[=x ID=a]!4)))"},
          // Whatever stands behind "=" begins the value.
          {"<P ALIGN=>x ID=y>z", "ZELROOT(HTML(BODY(P[ALIGN=>x ID=y](\"z\"))))"},
          {"<P ID=\"a>b<c\">z", "ZELROOT(HTML(BODY(P[ID=a>b<c](\"z\"))))"},
          // The end of a server tag ends a value that is not quoted, and the tag with it; a quoted one holds it.
          {"<P ID=<%=x%> b>c", "ZELROOT(HTML(BODY(P[ID=<%=x%>](\" b>c\"))))"},
          {"<P ID=\"<%=a(\"b\")%>\">c", "ZELROOT(HTML(BODY(P[ID=<%=a(\"b\")%>](\"c\"))))"},
      },
      kTags);
}

TEST_F(Tags, FlagsUndeclaredAndRepeatedAttributes) {
  expectTrees(
      {
          {"<P align=left ALIGN=right>", "ZELROOT(HTML(BODY(P[ALIGN=left]!4)))"},
          {"<P FOO=1 foo=2 FOO=3>", "ZELROOT(HTML(BODY(P[FOO=1 foo=2]!4)))"},
          {"<FOO a=1 b>", "ZELROOT(FOO[a=1 b]!200)"},
          {"<FOO a a>", "ZELROOT(FOO[a]!204)"},
          {"<P><SERVLET CODE=a FOO=b></SERVLET>", "ZELROOT(HTML(BODY(P(SERVLET[CODE=a FOO=b]))))"},
      },
      kTags);
  load("<P FOO=1 ID=a id=b>");
  EXPECT_EQ(AttributeAccess::error(element("P")->getAttributeNode("FOO")), ERR_ATTR_INVALID_NAME);
  EXPECT_EQ(AttributeAccess::error(element("P")->getAttributeNode("ID")), ERR_ATTR_VALUE_DUPLICATED);
}

TEST_F(Tags, KeepsBrokenTagsWhole) {
  expectTrees(
      {
          {"<P ID=\"x", "ZELROOT(HTML(BODY(P[ID=x]!100)))"},
          {"<P ID=\"", "ZELROOT(HTML(BODY(P!100)))"},
          {"<P ID", "ZELROOT(HTML(BODY(P!100)))"},
          {"<P", "ZELROOT(HTML(BODY(P!100)))"},
          {"<P ID=a ALIGN \"x\" CLASS=b>y", "ZELROOT(HTML(BODY(P[ID=a]!100(\"y\"))))"},
          {"<SCRIPT", "ZELROOT(HTML(HEAD(SCRIPT!140)))"},
          {"<SCRIPT ID \">a</SCRIPT>", "ZELROOT(HTML(HEAD(SCRIPT!100('a'))))"},
          {"<!foo", "ZELROOT(_!300)"},
          {"<!foo>", "ZELROOT(_!200)"},
          {"<!foo bar=1>x", "ZELROOT(!FOO!200 HTML(BODY(\"x\")))"},
          {"<?a b?><?c > d", "ZELROOT(_!200 _!200 HTML(BODY(\" d\")))"},
      },
      kTags);
}

TEST_F(Tags, OpensATagUnlessADigitOrABlankFollows) {
  expectTrees({
      {"<0a><9>", "ZELROOT(0A!200 9!200)"},
      {"<1a> <8", "ZELROOT(HTML(BODY(\"<1a> <8\")))"},
      {"< b>", "ZELROOT(HTML(BODY(\"< b>\")))"},
      // What opens nothing begins a text of its own.
      {"a <= b", "ZELROOT(HTML(BODY(\"a \" \"<= b\")))"},
      {"a<", "ZELROOT(HTML(BODY(\"a\" \"<\")))"},
      {"<<P>", "ZELROOT(HTML(BODY(\"<\" P)))"},
  });
}

TEST_F(Tags, NamesOfXMLTagsKnowTheirCase) {
  expectTrees(
      {
          {"<jsp:useBean id=\"a\"></jsp:useBean>", "ZELROOT(JSP:USEBEAN[ID=a])"},
          {"<jsp:useBean ID=\"a\"></jsp:useBean>", "ZELROOT(JSP:USEBEAN[ID=a]!20000)"},
          {"<JSP:useBean id=\"a\"></jsp:usebean>", "ZELROOT(JSP:USEBEAN[ID=a]!50000)"},
          // Only a slash that stands alone closes a tag.
          {"<jsp:useBean id=\"a\"/>x", "ZELROOT(JSP:USEBEAN[ID=a] HTML(BODY(\"x\")))"},
          {"<jsp:useBean/>", "ZELROOT(JSP:USEBEAN!40)"},
          {"<P/>x", "ZELROOT(HTML(BODY(P(\"x\"))))"},
      },
      kTags);
}

TEST_F(Tags, TakesBodiesOfScriptsAsTheyAre) {
  expectTrees({
      {"<SCRIPT>a<B></I>&amp;</script>", "ZELROOT(HTML(HEAD(SCRIPT('a<B></I>&amp;'))))"},
      {"<SCRIPT SRC=a />b</SCRIPT>", "ZELROOT(HTML(HEAD(SCRIPT('b'))))"},
      {"<SCRIPT>a</SCRIPTX></SCRIPT", "ZELROOT(HTML(HEAD(SCRIPT!40('a</SCRIPTX></SCRIPT'))))"},
      {"<SCRIPT>a</SCRIPT >b", "ZELROOT(HTML(HEAD(SCRIPT!40('a</SCRIPT >b'))))"},
      // Constructs hide the end tag.
      {"<SCRIPT><!--a</SCRIPT>--></SCRIPT>", "ZELROOT(HTML(HEAD(SCRIPT('<!--a</SCRIPT>-->'))))"},
      {"<SCRIPT><!--a</SCRIPT>b", "ZELROOT(HTML(HEAD(SCRIPT!40('<!--a</SCRIPT>b'))))"},
      {"<SCRIPT><% </SCRIPT> %></SCRIPT>", "ZELROOT(HTML(HEAD(SCRIPT('<% </SCRIPT> %>'))))"},
      {"<UL><SCRIPT>a</SCRIPT></UL>", "ZELROOT(HTML(BODY(UL(SCRIPT!8('a')))))"},
  });
}

TEST_F(Tags, ReadsSectionsInScriptElementsOnly) {
  expectTrees({
      {"<jsp:scriptlet>a<![CDATA[<B>]]>b</jsp:scriptlet><![CDATA[c]]>",
       "ZELROOT(JSP:SCRIPTLET(\"a\" '<![CDATA[<B>]]>' \"b\") _!200)"},
      {"<jsp:scriptlet><![cdata[a > b</jsp:scriptlet>", "ZELROOT(JSP:SCRIPTLET('<![cdata[a >' \" b\"))"},
      {"<jsp:scriptlet><![CDATA[a", "ZELROOT(JSP:SCRIPTLET!40('<![CDATA[a'))"},
  });
  load("<jsp:scriptlet><![CDATA[a&amp;]]></jsp:scriptlet>");
  EXPECT_EQ(text()->getData(), "a&amp;");
  EXPECT_TRUE(element("JSP:SCRIPTLET")->isAlternative());
}

TEST_F(Tags, NamesOfAnyBytesStayApart) {
  const std::string page = "<A\0b ID\0=\x1b\x1c>\0<\x80>"s;
  EXPECT_EQ(tree(page, kTags), "ZELROOT(A\0B[ID\0=\x1b\x1c]!200 HTML(BODY(\"\\x00\" \x80!200)))"s);
  EXPECT_EQ(source(), page);
}

}  // namespace
}  // namespace zeldom40
