// Closing an edit: pointless elements, merging, layout of the source.
#include <string>

#include <gtest/gtest.h>

#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

class AdjustTest : public PageTest {
 protected:
  bool adjust(Node* node = nullptr, bool full = false) { return doc_->adjustNodes(node, full); }
  // The body after an adjustment of all nodes; no node is new, so nothing but the text is laid out.
  std::string adjusted(std::string_view page) {
    load(page);
    adjust(nullptr, true);
    return dumpTree(find("BODY"));
  }
  Element* newElement(const char* name, const char* data) {
    Element* element = doc_->createElement(name);
    element->insertLast(doc_->createTextNode(data));
    return element;
  }
  void expectCursor(Node* node, int offset) {
    Node* at = nullptr;
    int where = -2;
    doc_->getLayoutCursor(&at, &where);
    EXPECT_EQ(at, node);
    EXPECT_EQ(where, offset);
  }
};

// --- when nothing is done --------------------------------------------------------------------------------------------

TEST_F(AdjustTest, SkipHoldsForOneCallOfTheWholePage) {
  load("<BODY><B></B></BODY>");
  doc_->skipAdjust();
  EXPECT_TRUE(adjust(find("BODY"), true));
  load("<BODY><B></B></BODY>");
  EXPECT_FALSE(adjust(nullptr, true));
  EXPECT_TRUE(adjust(nullptr, true));
}

TEST_F(AdjustTest, OnlyChangedNodesAreVisitedUnlessAsked) {
  load("<BODY><P>a<B></B></P><P>b<B>c</B></P></BODY>");
  EXPECT_FALSE(adjust());
  text(2)->setData("", true);
  EXPECT_TRUE(adjust());
  EXPECT_EQ(dumpTree(find("BODY")), "BODY(P(\"a\" B) P(\"b\"))");
}

TEST_F(AdjustTest, WhatAParseMadeIsNewUntilItsFlagsAreCleared) {
  doc_->createNodes("<ul><li  class=x>a</li></ul>", 28, nullptr, /*adjust=*/false);
  text()->setData("A", true);
  adjust();
  EXPECT_NE(source().find("<UL>\r\n  <LI class=\"x\">A\r\n</UL>"), std::string::npos) << source();
}

// --- elements without purpose ----------------------------------------------------------------------------------------

TEST_F(AdjustTest, ElementsWithoutPurpose) {
  const struct {
    const char* rule;
    const char* page;
    const char* body;
  } cases[] = {
      {"empty text-level elements go", "<BODY>a<B></B>b</BODY>", "BODY(\"ab\")"},
      {"the target of a link stays", "<BODY>a<A NAME=x></A></BODY>", "BODY(\"a\" A)"},
      {"an image is content", "<BODY><B><IMG SRC=x></B></BODY>", "BODY(B(IMG))"},
      {"FONT without attributes gives way to its content", "<BODY>a<FONT><I>b</I>c</FONT>d</BODY>",
       "BODY(\"a\" I(\"b\") \"cd\")"},
      {"and nested ones", "<BODY><FONT><SPAN><FONT>a</FONT></SPAN></FONT></BODY>", "BODY(\"a\")"},
      {"one with attributes stays", "<BODY><FONT SIZE=1>a</FONT><SPAN ID=x>b</SPAN></BODY>",
       "BODY(FONT(\"a\") SPAN(\"b\"))"},
      {"phrase markup inside its like goes", "<BODY><B>a<I><B>b</B></I></B></BODY>", "BODY(B(\"a\" I(\"b\")))"},
      {"not with attributes", "<BODY><B>a<B ID=x>b</B></B></BODY>", "BODY(B(\"a\" B(\"b\")))"},
  };
  for (const auto& c : cases) EXPECT_EQ(adjusted(c.page), c.body) << c.rule;
}

TEST_F(AdjustTest, TheElementThatTheCursorHasLeftGoesIfItIsStillEmpty) {
  load("<BODY><P>a</P><B><I></I></B></BODY>");
  doc_->setLayoutCursor(find("I"), 0);
  adjust(nullptr, true);
  EXPECT_EQ(dumpTree(find("BODY")), "BODY(P(\"a\") B(I))");
  doc_->setLayoutCursor(text(), 0);
  // The start of the adjustment may be the very element that goes.
  EXPECT_TRUE(adjust(find("I")));
  EXPECT_EQ(dumpTree(find("BODY")), "BODY(P(\"a\"))");
  // Filled in the meantime, it stays.
  load("<BODY><P>a</P><B></B></BODY>");
  doc_->setLayoutCursor(find("B"), 0);
  adjust();
  find("B")->insertLast(doc_->createTextNode("x"));
  doc_->setLayoutCursor(text(), 0);
  adjust();
  EXPECT_TRUE(find("B"));
}

// --- merging ---------------------------------------------------------------------------------------------------------

TEST_F(AdjustTest, RepeatedSkeletonElementsBecomeOne) {
  load("<HTML><BODY BGCOLOR=red>a</BODY></HTML>");
  Element* second = newElement("BODY", "b");
  second->setAttribute("TEXT", "blue", true);
  second->insertLast(newElement("P", "c"));
  find("HTML")->insertLast(second);
  EXPECT_TRUE(adjust());
  EXPECT_EQ(dumpTree(find("HTML"), kDumpAttributes),
            "HTML(BODY[BGCOLOR=red TEXT=blue](\"ab\\r\\n\" P(\"c\") ~\"\\r\\n\"))");
  EXPECT_EQ(find("BODY", 1), nullptr);
  // Those before the changed one take part though nothing in them changed.
  load("<BODY>a</BODY>b<BODY>c</BODY>d");
  text(3)->setData("e", true);
  EXPECT_TRUE(adjust());
  EXPECT_EQ(source(), "<BODY>abce</BODY>");
}

// Text that only formats the source is no place for text of the page.
TEST_F(AdjustTest, MergedElementsKeepTheTextOfBoth) {
  load("<HTML><BODY><P>a</P>\r\n</BODY></HTML>");
  find("HTML")->insertLast(newElement("BODY", "b"));
  adjust(nullptr, true);
  EXPECT_EQ(dumpTree(find("BODY"), kDumpPlain), "BODY(P(\"a\") \"b\")");
}

// What moved counts as added, and is laid out.
TEST_F(AdjustTest, MergingKeepsWhatStandsBetweenTheElements) {
  EXPECT_EQ(adjusted("<BODY><TABLE><TBODY><TR><TD>a</TBODY><!-- c --><TBODY><TR><TD>b</TBODY></TABLE></BODY>"),
            "BODY(TABLE(TBODY(TR(TD(\"a\")) ~\"\\r\\n    \" TR(~\"\\r\\n      \" TD(\"b\") ~\"\\r\\n    \") ~\"\\r\\n  "
            "\") <!-- c "
            "-->))");
}

TEST_F(AdjustTest, CursorAndSelectionMoveWithMergedText) {
  const struct {
    const char* rule;
    int onSecond;  // offset in the second text, or
    int inParent;  // child index
    int offset;    // afterwards, in the first
  } cases[] = {
      {"the start of the second", 0, -1, 3}, {"inside the second", 2, -1, 5}, {"before it in the parent", -1, 1, 3}};
  for (const auto& c : cases) {
    load("<BODY>abc</BODY>");
    Text* second = doc_->createTextNode("defg");
    find("BODY")->insertLast(second);
    Node* node = c.onSecond >= 0 ? second : find("BODY");
    const int offset = c.onSecond >= 0 ? c.onSecond : c.inParent;
    doc_->setLayoutCursor(node, offset);
    doc_->select(node, static_cast<unsigned>(offset), node, static_cast<unsigned>(offset), 0);
    adjust();
    SCOPED_TRACE(c.rule);
    expectCursor(text(), c.offset);
    EXPECT_EQ(doc_->getSelections().front()->endNode, text());
    EXPECT_EQ(doc_->getSelections().front()->endOffset, static_cast<unsigned>(c.offset));
  }
}

TEST_F(AdjustTest, FormattingTextGivesWay) {
  load("<BODY>a</BODY>");
  Text* spaces = doc_->createTextNode(" ");
  spaces->setTextType(Text::TEXT_FORMATTING);
  find("BODY")->insertFirst(spaces);
  doc_->setLayoutCursor(find("BODY"), 2);
  EXPECT_TRUE(adjust());
  EXPECT_EQ(dumpTree(find("BODY")), "BODY(\"a\")");
  expectCursor(find("BODY"), 1);
}

TEST_F(AdjustTest, LiteralTextStaysByItself) {
  load("<BODY>a</BODY>");
  Text* literal = doc_->createTextNode("b");
  literal->setTextType(Text::TEXT_LITERAL);
  find("BODY")->insertLast(literal);
  adjust();
  EXPECT_EQ(dumpTree(find("BODY")), "BODY(\"a\" 'b')");
}

// --- layout ----------------------------------------------------------------------------------------------------------

TEST_F(AdjustTest, NewNodesAreLaidOut) {
  const std::string longText = "some words that go on and on, behind the limit of a line";
  const struct {
    const char* rule;
    const char* page;
    const char* parent;
    const char* name;
    std::string data;
    std::string source;
  } cases[] = {
      {"a block stands on lines of its own", "<BODY><P>a</P></BODY>", "BODY", "P", "x",
       "<BODY><P>a</P>\r\n<P>x</P>\r\n</BODY>"},
      {"text before it ends its line", "<BODY>a  </BODY>", "BODY", "P", "x", "<BODY>a\r\n<P>x</P>\r\n</BODY>"},
      {"an item is indented, the end of its list is not", "<BODY><UL><LI>a</UL></BODY>", "UL", "LI", "x",
       "<BODY><UL><LI>a\r\n  <LI>x\r\n</UL></BODY>"},
      {"but not behind a block", "<BODY><P>a</P></BODY>", "BODY", "I", "x", "<BODY><P>a</P>\r\n<I>x</I></BODY>"},
      {"long text is wrapped", "<BODY></BODY>", "BODY", "I", longText,
       "<BODY><I>some words that go on and on, behind the\r\nlimit of a line</I></BODY>"},
      {"with the indent of its lists", "<BODY><UL><LI></UL></BODY>", "LI", "I", longText,
       "<BODY><UL><LI><I>some words that go on and on, behind the\r\n  limit of a line</I></UL></BODY>"},
      {"never in preformatted text", "<BODY><PRE></PRE></BODY>", "PRE", "I", longText,
       "<BODY><PRE><I>" + longText + "</I></PRE></BODY>"},
  };
  for (const auto& c : cases) {
    load(c.page);
    find(c.parent)->insertLast(newElement(c.name, c.data.c_str()));
    EXPECT_TRUE(adjust() || c.name[0] == 'I') << c.rule;
    EXPECT_EQ(source(), c.source) << c.rule;
  }
}

TEST_F(AdjustTest, ACursorInTheSourceStaysAtItsLetter) {
  const std::string words = "some &amp; words that go on and on, behind the limit of a line, and on";
  for (std::size_t at : {std::size_t{0}, std::size_t{5}, words.find("behind"), words.find("limit") + 2, words.size()}) {
    load("<BODY><P>a</P><UL><LI></UL></BODY>");
    Text* added = doc_->createTextNode("");
    added->setRawData(words);
    find("LI")->insertLast(added);
    doc_->setSourceCursor(added, static_cast<int>(at));
    adjust();
    EXPECT_NE(added->getRawData(), words) << "nothing was wrapped";
    Node* node = nullptr;
    int offset = -1;
    doc_->getSourceCursor(&node, &offset);
    ASSERT_EQ(node, added);
    EXPECT_EQ(added->getRawData().substr(static_cast<std::size_t>(offset)).substr(0, 3), words.substr(at).substr(0, 3));
  }
}

TEST_F(AdjustTest, InsertedTextsMoveTheCursorOfTheParent) {
  load("<BODY><P>a</P><P>b</P></BODY>");
  doc_->setLayoutCursor(find("BODY"), 3);
  find("BODY")->insertAfter(newElement("P", "x"), find("P"));
  adjust();
  EXPECT_EQ(dumpTree(find("BODY")), "BODY(P(\"a\") ~\"\\r\\n\" P(\"x\") ~\"\\r\\n\" P(\"b\"))");
  expectCursor(find("BODY"), 5);
}

// The cursor left an element that holds the start; both go, but for what the list of errors holds.
TEST_F(AdjustTest, AStartThatTheCursorTookAlongIsLeftAlone) {
  load("<P>x<U><B><I>");
  doc_->setLayoutCursor(find("I"), 0);
  adjust();
  doc_->getErrorList();
  doc_->setLayoutCursor(text(), 0);
  EXPECT_TRUE(adjust(find("B"), true));
  EXPECT_EQ(dumpTree(find("BODY")), "BODY(P(\"x\"))");
  EXPECT_TRUE(doc_->getErrorList().empty());
}

}  // namespace
}  // namespace zeldom40
