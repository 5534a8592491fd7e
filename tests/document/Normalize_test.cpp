// The normal form that a page takes when it is read with adjustment.
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

class NormalizeTest : public PageTest {
 protected:
  Element* read(std::string_view page) {
    doc_->createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, /*adjust=*/true);
    return doc_->getDocumentElement();
  }
};

TEST_F(NormalizeTest, SourceAfterReading) {
  const struct {
    const char* rule;
    const char* page;
    const char* source;
  } cases[] = {
      {"an implied HEAD too", "<TITLE>t</TITLE><P>x", "<HTML><HEAD><TITLE>t</TITLE></HEAD><BODY><P>x</BODY></HTML>"},
      {"written tags stay as they are", "<P>x</body ></html>", "<HTML><BODY><P>x</body ></html>"},
      {"the second declaration goes", "<!DOCTYPE HTML><P>x<!DOCTYPE HTML>",
       "<!DOCTYPE HTML><HTML><BODY><P>x</BODY></HTML>"},
      {"a comment changes places with the declaration", "<!-- c --><!DOCTYPE HTML><P>x",
       "<!DOCTYPE HTML><!-- c --><HTML><BODY><P>x</BODY></HTML>"},
      {"two bodies of a table become one",
       "<BODY><TABLE><TBODY><TR><TD>a</TBODY><TBODY ALIGN=left><TR><TD>b</TBODY></TABLE></BODY>",
       "<HTML><BODY><TABLE><TBODY align=\"left\"><TR><TD>a<TR><TD>b</TBODY></TABLE></BODY></HTML>"},
      {"white space stays where it stands", "<HTML><BODY><UL><LI>a  b \r\n<LI>c</UL><P>d \r\n<P>e</BODY></HTML>",
       "<HTML><BODY><UL><LI>a  b \r\n<LI>c</UL><P>d \r\n<P>e</BODY></HTML>"},
      {"nor does an entity change that is out of the layout", "<!DOCTYPE A SYSTEM b [<!ENTITY sp ' '>]><P>a&sp;<P>&sp;",
       "<!DOCTYPE A SYSTEM b [<!ENTITY sp ' '>]><HTML><BODY><P>a&sp;<P>&sp;</BODY></HTML>"},
      {"a page with severe errors is left alone", "x</I>", "x</I>"},
  };
  for (const auto& c : cases) {
    read(c.page);
    EXPECT_EQ(source(), c.source) << c.rule;
  }
}

TEST_F(NormalizeTest, TreeAndPlainTextAfterReading) {
  const struct {
    const char* rule;
    const char* page;
    const char* body;
  } cases[] = {
      {"the white space behind an item belongs to its list", "<UL><LI>a \r\n<LI>b</UL>",
       "BODY(UL(LI(\"a\") ~\" \" LI(\"b\")))"},
      {"a block's last white space is out of the layout", "<P>a \r\n<P>b ", "BODY(P(\"a\") P(\"b\"))"},
      {"so is that before a block", "<DIV>a <P>b</P></DIV>", "BODY(DIV(\"a\" P(\"b\")))"},
      {"not that before inline content", "<P>a <B>b</B> c</P>", "BODY(P(\"a \" B(\"b\") \" c\"))"},
      {"a reference is no white space", "<P>a&#32;</P><P>b&dagger;</P>", "BODY(P(\"a\\x1B \") P(\"b\\x1C\\x1C  \"))"},
      {"but an entity may be",
       "<!DOCTYPE A SYSTEM b [<!ENTITY sp ' '><!ENTITY xs 'x '>]><P>a&sp;<P>b&sp \n<P>&sp; <P>&sp;&nosuch;<P>&xs",
       "BODY(P(\"a\") P(\"b\") P(\"\") P(\" \\x1B&nosuch;\") P(\"x\"))"},
      {"line ends at the rim of PRE go", "<PRE>\r\na\r\nb\r\n</PRE>", "BODY(PRE(\"a\\r\\nb\"))"},
      {"only right below it", "<PRE><B>\r\na</B>\r\n</PRE>", "BODY(PRE(B(\"\\r\\na\") \"\"))"},
      {"BR begins a line", "<PRE>ab<BR>\td</PRE>", "BODY(PRE(\"ab\" BR \"        d\"))"},
      {"a reference takes one column", "<PRE>&amp;\tb</PRE>", "BODY(PRE(\"\\x1B&       b\"))"},
      {"the next PRE begins at column 0", "<PRE>abc</PRE><PRE>\tb</PRE>", "BODY(PRE(\"abc\") PRE(\"        b\"))"},
  };
  for (const auto& c : cases) {
    read(c.page);
    EXPECT_EQ(dumpTree(find("BODY"), kDumpPlain), c.body) << c.rule;
  }
}

TEST_F(NormalizeTest, MergedElementsCarryTheirMarks) {
  load("<BODY><TABLE><TBODY><TR><TD>a</TBODY><TBODY ALIGN=left ALIGN=right><TR><TD>b</TABLE></I></BODY>");
  doc_->getErrorList();
  doc_->correctError(nullptr);
  EXPECT_EQ(dumpTree(find("TABLE"), kDumpErrors | kDumpAttributes),
            "TABLE(TBODY[ALIGN=left]!4(TR(TD(\"a\")) TR(TD(\"b\"))))");
}

TEST_F(NormalizeTest, ColumnsRunOnWhereARepairJoinsTexts) {
  load("<PRE>ab<SPAN>c</SPAN>\td</PRE></I>");
  doc_->correctError(nullptr);
  EXPECT_EQ(dumpTree(find("PRE"), kDumpPlain), "PRE(\"abc     d\")");
}

// Whatever is done to a page, it comes out as without the mark, and the mark in front of it.
TEST_F(NormalizeTest, AByteOrderMarkStandsInFrontAndChangesNothing) {
  const std::string mark = "\xEF\xBB\xBF";
  const char* pages[] = {
      "",
      "<!DOCTYPE HTML><HTML><HEAD><TITLE>t</TITLE></HEAD><BODY>x</BODY></HTML>",
      "<P>x<!DOCTYPE HTML>",
      "<!-- c --><!DOCTYPE HTML><TITLE>t</TITLE><P>x",
      "<!DOCTYPE HTML><HTML><HEAD></HEAD><B><P>x</B></I><TD>y</HTML>",
      "x",
      "<%@ page import=\"a\" %>\r\n<P>x",
      "<?xml version=\"1.0\"?><P>x",
      "<UL><UL><LI>x",
  };
  const std::function<void()> jobs[] = {
      [] {},
      [this] { doc_->adjustNodes(nullptr, /*full=*/true); },
      [this] {
        doc_->correctError(nullptr);
        doc_->adjustNodes(nullptr, /*full=*/true);
      },
      [this] {
        if (Node* body = find("BODY")) body->insertFirst(doc_->createElement("HR"));
        doc_->getDocumentElement()->insertLast(doc_->createElement("DIV"));
        doc_->adjustNodes(nullptr, /*full=*/false);
      },
  };
  for (const char* page : pages) {
    for (const auto& job : jobs) {
      for (bool cleared : {true, false}) {
        const auto result = [&](const std::string& text, bool adjust) {
          doc_->createNodes(text.data(), static_cast<unsigned>(text.size()), nullptr, adjust);
          EXPECT_TRUE(adjust || source() == text);
          if (cleared) doc_->clearUpdateFlag();
          job();
          return source();
        };
        EXPECT_EQ(result(mark + page, true), mark + result(page, true));
        EXPECT_EQ(result(mark + page, false), mark + result(page, false));
      }
    }
  }
  EXPECT_EQ(tree(mark + "\r\n<P>x"), "ZELROOT(~\"\\xEF\\xBB\\xBF\\r\\n\" HTML(BODY(P(\"x\"))))");
  EXPECT_EQ(tree(mark + " x"), "ZELROOT(~\"\\xEF\\xBB\\xBF\" HTML(BODY(\" x\")))");
  EXPECT_EQ(tree(mark), "ZELROOT(~\"\\xEF\\xBB\\xBF\")");
  // Elsewhere these bytes are text.
  EXPECT_EQ(tree("<P>" + mark), "ZELROOT(HTML(BODY(P(\"\\xEF\\xBB\\xBF\"))))");
}

TEST_F(NormalizeTest, AFragmentHasItsOwnFront) {
  Element* holder = doc_->createTemporaryElement();
  const std::string_view text = "<P>a \r\n<P>b";
  doc_->createNodes(text.data(), static_cast<unsigned>(text.size()), holder, /*adjust=*/true);
  EXPECT_EQ(dumpTree(holder, kDumpPlain), "ZELTEMP(P(\"a\") P(\"b\"))");
  EXPECT_EQ(source(holder), text);
  holder->releaseRef(true);
}

}  // namespace
}  // namespace zeldom40
