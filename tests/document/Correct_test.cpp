// Listing and repairing the errors of a page.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "dom/dtd/DTDFrame.h"
#include "fuzz/RepairLoops.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

class CorrectTest : public PageTest {
 protected:
  // The body of the page after its repair, and the number of repairs before it: "1: P("x")".
  std::string repaired(std::string_view page, unsigned parts = kDumpNames) {
    load(page);
    const int repairs = doc_->correctError(nullptr);
    Node* top = find("BODY") ? find("BODY") : doc_->getDocumentElement();
    std::string content;
    for (Node* n = top->getFirstChild(); n; n = n->getNextSibling()) {
      content += (content.empty() ? "" : " ") + dumpTree(n, parts);
    }
    return std::to_string(repairs) + ": " + content;
  }
  std::vector<unsigned> lines() {
    std::vector<unsigned> found;
    for (const _dom_error_packet* packet : doc_->getErrorList()) found.push_back(packet->line);
    return found;
  }
};

// --- repair ----------------------------------------------------------------------------------------------------------

TEST_F(CorrectTest, EachRuleOfRepair) {
  const struct {
    const char* rule;
    const char* page;
    const char* repaired;
  } cases[] = {
      {"an A left empty by that goes as well", "<A HREF=x><DIV>y</DIV>", "2: DIV(\"y\")"},
      {"all children behind the misplaced one move too", "<A HREF=x>t<DIV>y</DIV>u<I>i</I>",
       "2: A(\"t\") DIV(\"y\") \"u\" I(\"i\")"},
      {"in the order in which it stood", "<TABLE><TR><TD>r</TR>a<TR><TD>s</TR>b<I>c</I></TABLE>",
       "3: \"a\" \"b\" I(\"c\") TABLE(TBODY(TR(TD(\"r\")) TR(TD(\"s\"))))"},
      {"rows that it swallowed stay", "<TABLE><B>x<TR><TD>y</TABLE>", "3: B(\"x\") TABLE(TBODY(TR(TD(\"y\"))))"},
      {"the next cell joins it", "<BODY><TD>x</TD><!-- c --><TD>y</TD>",
       "2: TABLE(TBODY(TR(TD(\"x\") TD(\"y\")))) <!-- c -->"},
      {"text ends the search for a made element", "<BODY><TD>x</TD>t<TD>y</TD>",
       "2: TABLE(TBODY(TR(TD(\"x\")))) \"t\" TABLE(TBODY(TR(TD(\"y\"))))"},
      {"a stray row end closes only a made row beside it", "<TABLE><TD>a</TD></TR><TD>b</TD>",
       "4: TABLE(TBODY(TR(TD(\"a\") TD(\"b\"))))"},
      {"one that crossed other markup leaves its table first", "<TABLE><CAPTION><B><TD>t</B></TABLE>",
       "2: TABLE(TBODY(TR(TD(\"t\")))) TABLE(CAPTION)"},
      {"an option gets a SELECT", "<BODY><OPTION>a", "1: SELECT(OPTION(\"a\"))"},
      {"an inline element is made again inside what it cannot hold", "<UL><I>x</I><LI>y</UL>",
       "1: I(\"x\") UL(LI(I(\"y\")))"},
      {"a block element is not", "<B><DIV ALIGN=center>x</DIV>t<DIV>y</DIV></B>", "2: DIV(\"x\") B(\"t\") DIV(\"y\")"},
      {"what stands around a misplaced node is split", "<B>1<I>2<DIV>3</DIV>4</I>5</B>",
       "1: B(\"1\" I(\"2\")) DIV(\"3\") B(I(\"4\") \"5\")"},
      {"an empty half of a split goes", "<B><DIV>3</DIV>4</B>", "1: DIV(\"3\") B(\"4\")"},
      {"markup without effect goes with any repair", "a</I><SPAN>b</SPAN><B></B>", "1: \"ab\""},
      {"a transparent element answers as its parent does", "<TABLE><ZELX:LOOP><TR><TD>x</TABLE>",
       "1: TABLE(TBODY(ZELX:LOOP(TR(TD(\"x\")))))"},
  };
  for (const auto& c : cases) EXPECT_EQ(repaired(c.page), c.repaired) << c.rule << ": " << c.page;
}

// What stands before a node changes on its way up: the part that a split leaves before it, or, where that is empty,
// what stands before the whole.
TEST_F(CorrectTest, WhatStandsBeforeANodeMayMakeItsPlace) {
  const struct {
    const char* rule;
    const char* page;
    int repairs;
    const char* root;
  } cases[] = {
      {"a made element takes in what is required", "<CAPTION><BODY>y<META>", 4,
       "ZELROOT(HTML(BODY(\"y\" TABLE(CAPTION)) HEAD(META)))"},
      {"a part with nothing but an empty element stands there", "<CAPTION><BODY><B></B><META>", 4,
       "ZELROOT(HTML(BODY(TABLE(CAPTION)) HEAD(META)))"},
      {"the first climbs with nothing before it", "<CAPTION><BODY><META>y<META>", 4,
       "ZELROOT(HTML(BODY(META!8 \"y\" TABLE(CAPTION)) HEAD(META)))"},
      {"what a split put behind it counts as made no more", "<OPTGROUP><BODY>j<META>k<META>", 4,
       "ZELROOT(HTML(BODY(\"jk\" META!8 SELECT(OPTGROUP)) HEAD(META)))"},
      {"inside an item", "<LI><DL><FRAMESET>l<TITLE>", 7,
       "ZELROOT(HTML(FRAMESET(NOFRAMES(BODY(\"l\"))) HEAD(TITLE) BODY(UL(LI))))"},
  };
  for (const auto& c : cases) {
    load(c.page);
    EXPECT_EQ(doc_->correctError(nullptr), c.repairs) << c.rule;
    EXPECT_EQ(dumpTree(doc_->getDocumentElement(), kDumpErrors), c.root) << c.rule;
  }
}

// A copy of a misplaced element has the faults of its tags, and is repaired like it.
// What has no place is searched for with bounds; what comes behind is repaired all the same.
TEST_F(CorrectTest, HopelessNodesDoNotUseUpTheRepair) {
  const auto repeated = [](const char* part, int times) {
    std::string all;
    while (times-- > 0) all += part;
    return all;
  };
  const struct {
    std::string page;
    int repairs;
  } cases[] = {
      {"<BODY>" + repeated("<META><DIV><A>x", 800), 3198},
      {"<BODY><TABLE>" + repeated("<META><DIV><A>", 400), 1600},
      {"<BODY>" + repeated("<DIV>", 30) + repeated("<META><LINK>", 250) + repeated("</DIV>", 30) +
           repeated("<P>x</P><LI>l</LI>", 10),
       10},
  };
  for (const auto& c : cases) {
    load(c.page);
    EXPECT_EQ(doc_->correctError(nullptr), c.repairs) << c.page.substr(0, 40);
  }
}

// A node that climbs several levels is flagged with all that it holds, though only its first step flags that.
TEST_F(CorrectTest, WhatClimbsIsFlaggedWhole) {
  load("<B><I><U>a<DIV>x<EM>y</EM></DIV>b");
  doc_->getDocumentElement()->clearUpdateFlag();
  doc_->correctError(nullptr);
  EXPECT_TRUE(find("DIV")->getUpdateFlag() & Node::UPDATE_ADDED);
  EXPECT_TRUE(find("EM")->getUpdateFlag() & Node::UPDATE_ADDED);
}

TEST_F(CorrectTest, RepairedTagsAreWrittenAnew) {
  load("<UL><I>x<B>y</B></I><LI>z</UL>");
  doc_->correctError(nullptr);
  EXPECT_EQ(source(), "<HTML><BODY><I>x<B>y</B></I><UL><LI><I>z</I></UL></BODY></HTML>");
}

TEST_F(CorrectTest, ANodeWithoutAPlaceStaysWhereItIsWithItsMark) {
  load("<BODY><B>x<FRAME>y</B>");
  EXPECT_EQ(doc_->correctError(nullptr), 0);
  EXPECT_EQ(dumpTree(find("B"), kDumpErrors), "B(\"x\" FRAME!8 \"y\")");
}

TEST_F(CorrectTest, TheMarkOfThePageGoesWithARepairOfThePage) {
  load("<B>x</B></I><I>y</I></B>");
  EXPECT_EQ(doc_->getError() & ERR_DOC_SEVERE_PARSE_ERROR, ERR_DOC_SEVERE_PARSE_ERROR);
  doc_->correctError(find("B"));
  EXPECT_EQ(doc_->getError() & ERR_DOC_SEVERE_PARSE_ERROR, ERR_DOC_SEVERE_PARSE_ERROR);
  doc_->correctError(nullptr);
  EXPECT_EQ(doc_->getError() & ERR_DOC_SEVERE_PARSE_ERROR, 0u);
}

TEST_F(CorrectTest, ARepairOfAPartEndsWithThePart) {
  const struct {
    const char* rule;
    const char* page;
    const char* top;
    int repairs;
    const char* body;
  } cases[] = {
      {"what stands behind is left", "<P><B>a</I>b</B></P>c</U>", "B", 1, "BODY(P(B(\"a\" \"b\")) \"c\" U!20)"},
      {"what stands before is left", "x</U><P>a</I></P>", "P", 1, "BODY(\"x\" U!20 P(\"a\"))"},
      {"what moved out is part of it", "<P>a</P><B>b<DIV>c</I></DIV>d</I></B>e</U>", "B", 3,
       "BODY(P(\"a\") B(\"b\") DIV(\"c\") B(\"d\") \"e\" U!20)"},
      {"a table before which it moved is not", "<TABLE><TR></I><TD>x</TR><B>b</U></B></TABLE>y</S>", "B", 2,
       "BODY(B(\"b\") TABLE(TBODY(TR(I!20 TD(\"x\")))) \"y\" S!20)"},
      {"what is split around it is not", "<B>x<SELECT><I>t<DIV>z", "I", 4,
       "BODY(B!40(\"x\" I(\"t\")) DIV(\"z\") B!40(SELECT!40))"},
      {"what it left in a table is", "<DIV><TABLE><CAPTION><H1>a<TR><TD>c</TABLE></DIV>", "DIV", 4,
       "BODY(DIV(H1(\"a\") TABLE(TBODY(TR(TD(\"c\"))) CAPTION)))"},
      {"and what stood behind it then", "<TABLE><CAPTION><LI>a</I>b</LI>c</U></CAPTION></TABLE></S>", "TABLE", 3,
       "BODY(UL(LI(\"a\" \"b\")) TABLE(CAPTION(\"c\")) S!20)"},
      {"it may vanish: it only held a misplaced one", "<B><DIV>x</DIV></B>y</U>", "B", 1,
       "BODY(DIV(\"x\") \"y\" U!20)"},
      {"or is without effect", "a<FONT><I>x</I></FONT>b</U>", "FONT", 0, "BODY(\"a\" I(\"x\") \"b\" U!20)"},
  };
  for (const auto& c : cases) {
    load(c.page);
    EXPECT_EQ(doc_->correctError(find(c.top)), c.repairs) << c.rule;
    EXPECT_EQ(dumpTree(find("BODY"), kDumpErrors), c.body) << c.rule;
  }
}

TEST_F(CorrectTest, WhatAHostPutIntoAStrayEndTagStays) {
  load("a</I>b");
  find("I")->insertLast(doc_->createTextNode("x"));
  EXPECT_EQ(doc_->correctError(nullptr), 1);
  EXPECT_EQ(dumpTree(find("BODY")), "BODY(\"a\" \"x\" \"b\")");
}

TEST_F(CorrectTest, TakesNoRecordAndLeavesRecordingOn) {
  load("a</I>");
  doc_->enableRecord(false);
  EXPECT_EQ(doc_->correctError(nullptr), 1);
  EXPECT_EQ(doc_->canUndo(), 0);
  doc_->record();
  EXPECT_EQ(doc_->canUndo(), 1);
}

// --- repairs while a list is open ------------------------------------------------------------------------------------

// The list holds nodes that a repair deletes; they survive out of the page, one below the other.
TEST_F(CorrectTest, ARepairSparesWhatAnOpenListHolds) {
  const struct {
    const char* page;
    const char* top;
    const char* body;
  } cases[] = {
      {"<U><A><TD>", "A", "BODY(TABLE(TBODY(TR(TD))))"},
      {"<P>one <B><A><LI>x", "A", "BODY(P(\"one \") UL(LI(\"x\")))"},
      {"<FONT><A HREF=x><TD>", "A", "BODY(TABLE(TBODY(TR(TD))))"},
      {"<P>x<B><I><U>", "B", "BODY(P(\"x\"))"},
  };
  for (const auto& c : cases) {
    load(c.page);
    doc_->getErrorList();
    doc_->correctError(find(c.top));
    EXPECT_EQ(dumpTree(find("BODY")), c.body) << c.page;
    EXPECT_TRUE(doc_->getErrorList().empty()) << c.page;
  }
}

TEST_F(CorrectTest, ANodeThatIsNotInThePageIsLeftAlone) {
  load("<P>x<B><I><U>");
  const auto& list = doc_->getErrorList();
  ASSERT_EQ(list.size(), 3u);
  doc_->record();
  doc_->correctError(list.front()->node);
  EXPECT_EQ(source(), "<P>x");
  for (const _dom_error_packet* packet : list) {
    EXPECT_EQ(doc_->correctError(packet->node), 0) << packet->node->getName();
    EXPECT_FALSE(doc_->adjustNodes(packet->node, /*full=*/true)) << packet->node->getName();
    EXPECT_EQ(packet->node->addRef(false), 2) << packet->node->getName();
    packet->node->dropRef(false);
  }
  // Nor does the call close the edit.
  EXPECT_EQ(doc_->canUndo(), 1);
  doc_->record();
  EXPECT_EQ(doc_->canUndo(), 1);
  // A fragment is in no page yet.
  Element* holder = doc_->createTemporaryElement();
  doc_->createNodes("a</I>", 5, holder, /*adjust=*/false);
  EXPECT_EQ(doc_->correctError(holder), 0);
  EXPECT_FALSE(doc_->adjustNodes(holder, /*full=*/true));
  EXPECT_EQ(dumpTree(holder), "ZELTEMP(\"a\" I)");
  holder->releaseRef(true);
}

// A holder of two nodes has two nodes: what stood between them goes with the page.
TEST_F(CorrectTest, ASurvivorDoesNotHangBelowADeadNode) {
  load("<P><B>x<I>y<U>z</U></I></B></P>");
  Node* const b = find("B");
  Node* const u = find("U");
  Node* const z = u->getFirstChild();
  for (Node* held : {b, u, z}) held->addRef(false);
  doc_->deleteNodes(find("P"));
  EXPECT_EQ(b->getParentNode(), nullptr);
  EXPECT_EQ(u->getParentNode(), nullptr);
  EXPECT_TRUE(u->getUpdateFlag() & Node::UPDATE_REMOVED);
  // One that is held stays with the one around it that is held too.
  EXPECT_EQ(z->getParentNode(), u);
  EXPECT_EQ(dumpTree(b), "B(\"x\" I(\"y\"))");
  EXPECT_EQ(u->releaseRef(false), 0);
  EXPECT_EQ(z->getParentNode(), nullptr);
  for (Node* held : {b, z}) EXPECT_EQ(held->releaseRef(false), 0);
}

TEST_F(CorrectTest, SmallRandomPagesStandEveryLoopOfRepairs) {
  dom_->getDocumentType()->getDTDFrame()->readDeferred();
  fuzz::SmallPage pages(1);
  for (int i = 0; i < 400; ++i) {
    const std::string page = pages.next();
    ASSERT_EQ(fuzz::repairLoopsHold(dom_, page), "") << page;
  }
}

// --- adapting --------------------------------------------------------------------------------------------------------

TEST_F(CorrectTest, AdaptedNodesStandInMarkedElements) {
  load("<BODY><TD>x</TD></BODY>");
  Node* row = doc_->adaptNode(find("TD"));
  ASSERT_EQ(row, find("TR"));
  for (const char* made : {"TR", "TBODY", "TABLE"}) {
    EXPECT_TRUE(find(made)->getUpdateFlag() & Node::UPDATE_ADAPTED) << made;
    EXPECT_EQ(find(made)->addRef(false), 2) << made;
    find(made)->dropRef(false);
  }
  EXPECT_FALSE(find("BODY")->getUpdateFlag() & Node::UPDATE_ADAPTED);
}

TEST_F(CorrectTest, WhatCannotBeAdaptedStaysUntouched) {
  const struct {
    const char* page;
    const char* node;
  } cases[] = {
      // Peers of one group.
      {"<TABLE><TBODY><THEAD><TR><TD>x</TABLE>", "THEAD"},
      {"<BODY><B><DIV>x</DIV></B></BODY>", "DIV"},
  };
  for (const auto& c : cases) {
    load(c.page);
    const std::string before = dumpTree(doc_->getDocumentElement());
    EXPECT_EQ(doc_->adaptNode(find(c.node)), nullptr) << c.page;
    EXPECT_EQ(dumpTree(doc_->getDocumentElement()), before) << c.page;
  }
}

// --- list ------------------------------------------------------------------------------------------------------------

TEST_F(CorrectTest, TheListIsMadeAnewByEachCall) {
  load("a</I>b</U>");
  const auto& list = doc_->getErrorList();
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list.front()->node, find("I"));
  EXPECT_EQ(list.front()->error, ERR_ELEMENT_BEGIN_TAG_MISSING);
  EXPECT_EQ(doc_->getErrorList().size(), 2u);
  doc_->correctError(nullptr);
  // The packets hold what the repair has taken out.
  EXPECT_EQ(list.size(), 2u);
  EXPECT_TRUE(doc_->getErrorList().empty());
}

TEST_F(CorrectTest, LinesAreCountedInTextAndCommentsAlone) {
  const struct {
    const char* rule;
    const char* page;
    std::vector<unsigned> lines;
  } cases[] = {
      {"texts", "a\r\nb</I>c\r\n\r\n</U>", {2, 4}},
      {"comments", "<!--\r\n\r\n-->x</I>", {3}},
      {"a text is where its first letter stands", "<TABLE>\r\n\r\nloose\r\n</TABLE></I>", {3, 4}},
      {"only CR LF moves it on", "<TABLE>\n\nloose</TABLE></I>", {1, 3}},
  };
  for (const auto& c : cases) {
    load(c.page);
    EXPECT_EQ(lines(), c.lines) << c.rule;
  }
}

TEST_F(CorrectTest, ErrorsOfAttributesShowOnTheirElement) {
  load("<P ALIGN=left ALIGN=right>x</P>");
  ASSERT_EQ(doc_->getErrorList().size(), 1u);
  EXPECT_EQ(doc_->getErrorList().front()->error, ERR_ELEMENT_INVALID_ATTR);
  // A tag that is to be written anew loses the repetition.
  element("P")->setBeginTagDirty();
  EXPECT_TRUE(doc_->getErrorList().empty());
}

}  // namespace
}  // namespace zeldom40
