// What stands around the reading of a page: targets, counts, sorting out afterwards, and writing.
#include "tests/html/HtmlTest.h"

namespace zeldom40 {
namespace {

class ParseDriver : public PageTest {
 protected:
  Node* parse(std::string_view text, Node* parent, bool adjust) {
    return doc_->createNodes(text.data(), static_cast<unsigned>(text.size()), parent, adjust);
  }
  ParserType::_dtd_frame* frame() { return doc_->getDocumentTypeObject()->getDTDFrame(); }
};

TEST_F(ParseDriver, GivesEveryNodeOneReference) {
  load("<!DOCTYPE A><P>a<!--c--><%d%></B>");
  int nodes = 0;
  for (Node* n = doc_->getDocumentElement(); n; n = doc_->findNextNode(n, nullptr, false, false), ++nodes) {
    EXPECT_EQ(n->addRef(false), 2) << n->getName();
    EXPECT_EQ(n->releaseRef(false), 1);
  }
  EXPECT_EQ(nodes, 9);
  EXPECT_EQ(doc_->createNodes(nullptr, 0, nullptr, false), doc_->getDocumentElement());
}

TEST_F(ParseDriver, AdjustsPagesWithoutSevereErrorsAlone) {
  const std::string_view implied = "<P>a";
  parse(implied, nullptr, /*adjust=*/true);
  EXPECT_NE(source(), implied);  // normal form shows the tags that were left out
  const std::string_view broken = "<P>a</B>";
  parse(broken, nullptr, /*adjust=*/true);
  EXPECT_EQ(source(), broken);
}

TEST_F(ParseDriver, DissolvesLooseVisuals) {
  EXPECT_EQ(tree("<P>a<ZELX:ATV>b<ZELX:ATV><B>c</B></ZELX:ATV></ZELX:ATV>d"),
            "ZELROOT(HTML(BODY(P(\"a\" \"b\" B(\"c\") \"d\"))))");
}

TEST_F(ParseDriver, ParsersShareOpenNodes) {
  HTMLParser none;
  EXPECT_EQ(none.parse(LexerType::LEX_EOF), -1);
  HTMLParser empty("a", 1, frame(), doc_);
  empty.pushNode(doc_);
  empty.popNode();
  empty.popNode();
  EXPECT_EQ(empty.parse(LexerType::LEX_EOF), -1);

  load("<P></P>");
  std::vector<Node*> open{doc_->getDocumentElement(), find("HTML"), find("BODY"), find("P")};
  ParserType::_html_parser_frame shared{frame(), &open};
  const std::string_view text = "a</P><P>b*c";
  HTMLParser second(text.data(), text.size(), &shared, doc_);
  EXPECT_EQ(second.parse(LexerType::LEX_STAR), 0);
  EXPECT_TRUE(open.empty());
  EXPECT_EQ(tree(), "ZELROOT(HTML(BODY(P(\"a\") P(\"b\"))))");
  find("P", 0)->getFirstChild()->addRef(false);
  find("P", 1)->addRef(true);
}

TEST_F(ParseDriver, ReadsPlainTextsAnewOnDemand) {
  Element* div = doc_->createElement("DIV");
  parse("a&amp;<B>b &lt;</B><TABLE><TR><TD>c</TABLE><SCRIPT>d</SCRIPT>", div, /*adjust=*/false);
  NodeIterator texts = div->getElementsByTagName(std::string("TEXT"));
  for (Node* n = texts.toFirstNode(); n; n = texts.toNextNode()) {
    if (static_cast<Text*>(n)->getTextType() == Text::TEXT_NORMAL) static_cast<Text*>(n)->setData("-", false);
  }
  const std::string before = source(div, Document::SOURCE_CONTENT);
  EXPECT_TRUE(doc_->restorePlainTexts(div));
  EXPECT_EQ(dumpTree(div, kDumpPlain).substr(0, 25), "DIV(\"a\\x1B&\" B(\"b \\x1B<\")");
  // What preformatted text cannot hold is passed over.
  EXPECT_EQ(static_cast<Text*>(texts.moveTo(2))->getData(), "-");
  EXPECT_EQ(source(div, Document::SOURCE_CONTENT), before);
  EXPECT_FALSE(doc_->restorePlainTexts(nullptr));
  div->releaseRef(true);
  load("<P>a");
  EXPECT_FALSE(doc_->restorePlainTexts(doc_->getDocumentElement()));
}

TEST_F(ParseDriver, WritesThePartThatIsAskedFor) {
  load("<P id=a>b<B>c</B><!--d--></p>");
  Node* p = find("P");
  EXPECT_EQ(source(p, Document::SOURCE_TAGS), "<P id=a></p>");
  EXPECT_EQ(source(p, Document::SOURCE_CONTENT), "b<B>c</B><!--d-->");
  EXPECT_EQ(source(p->getLastChild(), Document::SOURCE_CONTENT), "<!--d-->");
  EXPECT_EQ(source(doc_, Document::SOURCE_ALL), "");
  // Null gives nothing, and the length of what was written last.
  EXPECT_EQ(doc_->getSourceBufLen(p, Document::SOURCE_TAGS, false), 12u);
  EXPECT_EQ(doc_->getSourceBufLen(nullptr, Document::SOURCE_ALL, false), 12u);
  EXPECT_STREQ(doc_->getSourceBuf(nullptr, Document::SOURCE_ALL, false), "");
  EXPECT_EQ(doc_->getSourceBufLen(nullptr, Document::SOURCE_ALL, false), 0u);
}

}  // namespace
}  // namespace zeldom40
