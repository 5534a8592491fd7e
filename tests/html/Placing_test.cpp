// Where begin tags and end tags put their elements, and what is marked on them.
#include "tests/html/HtmlTest.h"

namespace zeldom40 {
namespace {

using Placing = PageTableTest;
using PlacingElsewhere = OtherTableTest;
using PlacingInVersion1 = Version1TableTest;

TEST_F(Placing, ImpliesWhatTheContentModelsLeaveOut) {
  expectTrees({
      {"", "ZELROOT"},
      {"<TITLE>t</TITLE><P>x", "ZELROOT(HTML(HEAD(TITLE(\"t\")) BODY(P(\"x\"))))"},
      {"<P>a<P>b", "ZELROOT(HTML(BODY(P(\"a\") P(\"b\"))))"},
      {"<TABLE><TR><TD>x</TABLE>", "ZELROOT(HTML(BODY(TABLE(TBODY(TR(TD(\"x\")))))))"},
      // A row's start tag may not be left out.
      {"<TABLE><TD>x</TABLE>", "ZELROOT(HTML(BODY(TABLE(TD!8(\"x\")))))"},
      {"\n<HTML>\n<HEAD> <TITLE>t</TITLE>\n<BODY>",
       "ZELROOT(~\"\\n\" HTML(~\"\\n\" HEAD(~\" \" TITLE(\"t\") ~\"\\n\") BODY))"},
      // A text never closes anything.
      {"<HEAD><TITLE>t</TITLE>x", "ZELROOT(HTML(HEAD(TITLE(\"t\") \"x\"!8000)))"},
  });
}

TEST_F(Placing, FlagsWhatFitsNowhere) {
  expectTrees({
      {"<UL>x</UL>", "ZELROOT(HTML(BODY(UL(\"x\"!8000))))"},
      {"<LI>x<LI>y", "ZELROOT(LI!8(\"x\" LI!8(\"y\")))"},
      {"<A><B><A>x</A></B></A>", "ZELROOT(HTML(BODY(A(B(A!8(\"x\"))))))"},
      {"<P><PARAM NAME=a>x", "ZELROOT(HTML(BODY(P(PARAM!200 \"x\"))))"},
      {"<FOO>x<FOO>", "ZELROOT(FOO!200 HTML(BODY(\"x\" FOO!200)))"},
      {"<REPEAT>x</REPEAT>", "ZELROOT(REPEAT!200 HTML(BODY(\"x\" REPEAT!200)))"},
      {"<LOOP><ssi:include>", "ZELROOT(LOOP!200 SSI:INCLUDE!200)"},
  });
  load("<P><PARAM NAME=a>");
  EXPECT_EQ(element("PARAM")->getElementID(), ID_UNKNOWN);
  EXPECT_EQ(element("PARAM")->getElementType(), Element::ELEMENT_UNDEFINED);
}

TEST_F(Placing, TransparentElementsSinkOrMoveAlongWithWhatTheyHold) {
  expectTrees({
      // Below what is implied:
      {"<TABLE><ZELX:LOOP><TR></ZELX:LOOP></TABLE>", "ZELROOT(HTML(BODY(TABLE(TBODY(ZELX:LOOP(TR))))))"},
      {"<TABLE><ZELX:LOOP> <!--c--><TR></ZELX:LOOP></TABLE>",
       "ZELROOT(HTML(BODY(TABLE(TBODY(ZELX:LOOP(~\" \" <!--c--> TR))))))"},
      {"<TABLE><ZELX:LOOP>x<TR></ZELX:LOOP></TABLE>", "ZELROOT(HTML(BODY(TABLE(TBODY(ZELX:LOOP(\"x\"!8000 TR))))))"},
      {"<TABLE><ZELX:LOOP><TD></ZELX:LOOP></TABLE>", "ZELROOT(HTML(BODY(TABLE(ZELX:LOOP(TD!8)))))"},
      {"<TABLE><ZELX:LOOP><ZELX:LOOP><TR></TABLE>",
       "ZELROOT(HTML(BODY(TABLE(ZELX:LOOP!40(TBODY(ZELX:LOOP!40(TR)))))))"},
      // To the adopter, while empty:
      {"<UL><LI>a<ZELX:LOOP><LI>b</ZELX:LOOP><LI>c</UL>",
       "ZELROOT(HTML(BODY(UL(LI(\"a\") ZELX:LOOP(LI(\"b\")) LI(\"c\")))))"},
      {"<UL><LI>a<ZELX:LOOP> <!--c--><ZELX:LOOP><LI>b</UL>",
       "ZELROOT(HTML(BODY(UL(LI(\"a\") ZELX:LOOP!40(~\" \" <!--c--> ZELX:LOOP!40(LI(\"b\")))))))"},
      {"<UL><LI>a<ZELX:LOOP>b<LI>c</UL>", "ZELROOT(HTML(BODY(UL(LI(\"a\" ZELX:LOOP!40(\"b\" LI!8(\"c\")))))))"},
      {"<P>a<ZELX:LOOP><P>b</ZELX:LOOP>c", "ZELROOT(HTML(BODY(P(\"a\") ZELX:LOOP(P(\"b\")) \"c\")))"},
      {"<TITLE>t</TITLE><ZELX:LOOP><P>b", "ZELROOT(HTML(HEAD(TITLE(\"t\")) BODY(ZELX:LOOP!40(P(\"b\")))))"},
  });
  // White space that moved where no text may stand shows nothing and stays in the source.
  EXPECT_EQ(tree("<UL><LI>a<ZELX:LOOP> <LI>b", kDumpPlain),
            "ZELROOT(HTML(BODY(UL(LI(\"a\") ZELX:LOOP(~\"\" LI(\"b\"))))))");
}

TEST_F(PlacingInVersion1, ReadsTheTagsOfItsGeneration) {
  expectTrees({
      {"<TABLE><REPEAT><TR></REPEAT></TABLE>", "ZELROOT(HTML(BODY(TABLE(TBODY(REPEAT(TR))))))"},
      {"<BEAN></BEAN>", "ZELROOT(BEAN)"},
      {"<jsp:useBean id=a></jsp:useBean>", "ZELROOT(JSP:USEBEAN!200 JSP:USEBEAN!200)"},
  });
}

TEST_F(Placing, EndTagsCloseTheTopmostOfTheirName) {
  expectTrees({
      {"<P><B>x</P>y", "ZELROOT(HTML(BODY(P(B!40(\"x\")) \"y\")))"},
      {"<I><B>x</B I>y", "ZELROOT(HTML(BODY(I(B!40(\"x\")) \"y\")))"},
      {"x</FOO></B></P></>", "ZELROOT(HTML(BODY(\"x\" FOO!200 B!20 P!20 _!200)))"},
      {"</ssi:include>", "ZELROOT(SSI:INCLUDE!20)"},
      {"<B>x</I>", "ZELROOT(HTML(BODY(B!40(\"x\" I!20))))"},
      // An item's end tag does not cross an open table, any other does.
      {"<TABLE></TD></TABLE>", "ZELROOT(HTML(BODY(TABLE(TD!20))))"},
      {"<TABLE><TR><TD><TABLE></TD></TABLE>x</TD></TABLE>",
       "ZELROOT(HTML(BODY(TABLE(TBODY(TR(TD(TABLE(TD!20) \"x\")))))))"},
      {"<B><TABLE></B>x", "ZELROOT(HTML(BODY(B(TABLE!48) \"x\")))"},
  });
  load("<P>a<P>b</p\n><BR>");
  EXPECT_FALSE(element("P", 0)->hasEndTag());
  EXPECT_TRUE(element("P", 1)->hasEndTag());
  EXPECT_EQ(element("P", 1)->getRawEndTag(), "</p\n>");
  EXPECT_TRUE(element("BR")->hasEndTag());  // an empty tag counts as having its end
}

TEST_F(PlacingElsewhere, UnknownTagsTakeContentUntilTheirEndTag) {
  expectTrees({
      {"<foo>x</foo>y", "ZELROOT(FOO(\"x\") HTML(BODY(\"y\")))"},
      {"<foo/>x<foo />y", "ZELROOT(FOO!40(\"x\" FOO \"y\"))"},
      {"</foo><?xml a?>", "ZELROOT(FOO!20 _)"},
      {"<!foo bar>x", "ZELROOT(!FOO!40(\"x\"))"},
      // An end tag from outside empties the unknown ones that it closes over.
      {"<A><foo>x<b>y</A>z", "ZELROOT(HTML(BODY(A(FOO!40 \"x\" B!40(\"y\")) \"z\")))"},
      {"<A>1<foo>2<bar>3<I>4</I>5</A>", "ZELROOT(HTML(BODY(A(\"1\" FOO!40 \"2\" BAR!40 \"3\" I(\"4\") \"5\"))))"},
  });
}

// --- fragments -------------------------------------------------------------------------------------------------------

class Fragment : public PageTest {
 protected:
  std::string fill(Node* target, std::string_view text, unsigned parts = kDumpErrors) {
    EXPECT_EQ(doc_->createNodes(text.data(), static_cast<unsigned>(text.size()), target, /*adjust=*/false), target);
    return dumpTree(target, parts);
  }
  std::string fillNew(const char* name, std::string_view text) {
    Element* target = doc_->createElement(name);
    const std::string result = fill(target, text);
    EXPECT_EQ(plainSource(target, Document::SOURCE_CONTENT), text);
    EXPECT_EQ(target->addRef(false), 2);
    target->releaseRef(false);
    target->releaseRef(true);
    return result;
  }
};

TEST_F(Fragment, NothingLeavesTheTarget) {
  EXPECT_EQ(fillNew("P", "a<P>b</P>c"), "P(\"a\" P!8(\"b\") \"c\")");
  EXPECT_EQ(fillNew("UL", "</UL><LI>x"), "UL!40(UL!20 LI(\"x\"))");
  EXPECT_EQ(fillNew("FOO", "a<B>b"), "FOO(\"a\"!8000 B!48(\"b\"))");
  EXPECT_EQ(fillNew("ZELX:LOOP", "<TR><TD>x"), "ZELX:LOOP!40(TR(TD(\"x\")))");
  EXPECT_EQ(fillNew("ZELX:LOOP", "<ZELX:LOOP><LI>a<LI>b"), "ZELX:LOOP!40(ZELX:LOOP!40(LI(\"a\") LI(\"b\")))");
}

TEST_F(Fragment, TheTargetStandsWhereItStands) {
  load("<TABLE><ZELX:LOOP></ZELX:LOOP></TABLE>");
  EXPECT_EQ(fill(find("ZELX:LOOP"), "<TR><TD>x"), "ZELX:LOOP!40(TBODY(TR(TD(\"x\"))))");
  EXPECT_EQ(tree(), "ZELROOT(HTML(BODY(TABLE(ZELX:LOOP(TBODY(TR(TD(\"x\"))))))))");
  load("<A><B></B></A>");
  EXPECT_EQ(fill(find("B"), "<A>x"), "B!40(A!48(\"x\"))");
}

TEST_F(Fragment, LeavesTheWordOfTheDocument) {
  load("<P>x</B>");
  const unsigned long word = doc_->getError();
  EXPECT_NE(word, 0u);
  Element* holder = doc_->createTemporaryElement();
  fill(holder, "<UL>x");
  EXPECT_EQ(doc_->getError(), word);
  holder->releaseRef(true);
  load("<P>x");
  EXPECT_EQ(doc_->getError(), 0u);
}

}  // namespace
}  // namespace zeldom40
