// The life of a DOM and its documents, deleting and walking a tree, and writing it.
#include <string>

#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

class FrameTest : public PageTest {};

TEST_F(FrameTest, TheNewestLiveDOMIsTheOneInUse) {
  DOM* second = DOM::createDOM("no/such/file", DOM::JSP_VERSION_1, nullptr, nullptr);
  DOM* third = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  DOM::destroyDOM(second);
  EXPECT_EQ(DOM::getDOM(), third);
  DOM::destroyDOM(third);
  DOM::destroyDOM(nullptr);
  EXPECT_EQ(DOM::getDOM(), dom_);
}

TEST_F(FrameTest, TheDTDIsTheBuiltInOne) {
  DocumentType* type = dom_->getDocumentType();
  dom_->setDTDPath("x");
  dom_->addDTDFile("x", "y");
  dom_->setDTDFile("x", "y");
  dom_->destroyDocumentType(type);
  EXPECT_EQ(dom_->getDocumentType(), type);
  EXPECT_EQ(dom_->createDocumentType("x", nullptr, 0), nullptr);
  dom_->destroyDocumentType(dom_->createDocumentType("x", "<!ELEMENT X - - (#PCDATA)>", -1));
  // What documents were made with outlives a second loading.
  dom_->loadDTD();
  EXPECT_NE(dom_->getDocumentType(), type);
  dom_->destroyDocumentType(type);
  load("<P>x");
  EXPECT_EQ(element("P")->getElementID(), ID_P);
}

TEST_F(FrameTest, OnlyTheExactNameMakesAnHTMLDocument) {
  for (const char* name : {"HTML", "html", "HTML 4", "", static_cast<const char*>(nullptr)}) {
    Document* document = dom_->createDocument(name);
    EXPECT_EQ(document->isHTML(), name && std::string(name) == "HTML");
    dom_->deleteDocument(document);
  }
  Document placeholder;
  EXPECT_FALSE(placeholder.isHTML());
  EXPECT_EQ(placeholder.getDocumentType(), nullptr);
  EXPECT_FALSE(placeholder.restorePlainTexts(&placeholder));
}

TEST_F(FrameTest, DeletingParts) {
  load("<P>a<B>b</B>c</P><HR>");
  Node* b = find("B");
  b->addRef(false);
  EXPECT_EQ(doc_->deleteNodes(find("P")), nullptr);
  // What somebody holds survives, flagged and alone.
  EXPECT_TRUE(b->getUpdateFlag() & Node::UPDATE_REMOVED);
  EXPECT_EQ(b->getParentNode(), nullptr);
  EXPECT_TRUE(find("BODY")->getUpdateFlag() & Node::UPDATE_CHILD_REMOVED);
  doc_->clearUpdateFlag();
  doc_->deleteNodes(b);
  EXPECT_EQ(doc_->getDocumentElement()->getUpdateFlag(), Node::UPDATE_NONE);

  doc_->deleteNodes(doc_->getDocumentElement());
  EXPECT_EQ(doc_->getDocumentElement(), nullptr);
  EXPECT_EQ(doc_->getElementsByTagName("P").getLength(), 0);
  EXPECT_EQ(doc_->getHTMLElement(), nullptr);
  EXPECT_EQ(doc_->correctError(nullptr), 0);
  EXPECT_TRUE(doc_->getErrorList().empty());
}

TEST_F(FrameTest, WalkingInPreOrder) {
  load("<P>a<B><I>b</I></B></P><HR>");
  const auto walk = [&](const char* from, Node* top, bool updatedOnly, bool skipChildren) {
    std::string names;
    for (Node* n = find(from); (n = doc_->findNextNode(n, top, updatedOnly, skipChildren));)
      names += n->getName() + ' ';
    return names;
  };
  EXPECT_EQ(walk("P", nullptr, false, false), "TEXT B I TEXT HR ");
  EXPECT_EQ(walk("TEXT", find("P"), false, true), "B ");
  EXPECT_EQ(walk("P", find("P"), false, true), "");
  text(1)->setUpdateFlag(Node::UPDATE_CONTENT_MODIFIED);
  EXPECT_EQ(walk("P", nullptr, true, false), "B I TEXT ");
}

TEST_F(FrameTest, NodesOfACloneByTheirPlace) {
  load("<P>a<B><I>b</I></B></P>");
  Node* p = find("P");
  Node* clone = p->makeClone(true);
  clone->addRef(true);
  Node* i = doc_->findClonedNode(find("I"), p, clone);
  ASSERT_TRUE(i);
  EXPECT_EQ(dumpTree(i), "I(\"b\")");
  EXPECT_TRUE(i->isOffspringOf(clone));
  EXPECT_EQ(doc_->findClonedNode(p, p, clone), nullptr);
  EXPECT_EQ(doc_->findClonedNode(find("BODY"), p, clone), nullptr);
  while (clone->hasChildNodes()) clone->getLastChild()->releaseRef(true);
  EXPECT_EQ(doc_->findClonedNode(find("I"), p, clone), nullptr);
  clone->releaseRef(true);
}

TEST_F(FrameTest, ModesOfTheWriter) {
  const std::string page("<!-- c --><P a='b'>x\0y<BR></p >\x1b\x1c", 34);
  load(page);
  EXPECT_EQ(source(), page);
  const struct {
    const char* name;
    Document::SourceMode mode;
    std::string source;
  } cases[] = {{"P", Document::SOURCE_TAGS, "<P a='b'></p >"},
               {"P", Document::SOURCE_CONTENT, std::string("x\0y<BR>", 7)},
               {"TEXT", Document::SOURCE_TAGS, std::string("x\0y", 3)},
               {"COMMENT", Document::SOURCE_CONTENT, "<!-- c -->"}};
  for (const auto& c : cases) {
    EXPECT_EQ(source(find(c.name), c.mode), c.source);
    EXPECT_EQ(doc_->getSourceBufLen(nullptr, c.mode, false), c.source.size());
    EXPECT_EQ(doc_->getSourceBufLen(find(c.name), c.mode, true), c.source.size());
  }
  EXPECT_STREQ(doc_->getSourceBuf(nullptr, Document::SOURCE_ALL, false), "");
  EXPECT_EQ(source(doc_), "");
}

TEST_F(FrameTest, RestoringPlainTexts) {
  load("<P>a &eacute;</P>");
  Text* t = text();
  t->setData("lost", /*notify=*/false);
  EXPECT_TRUE(doc_->restorePlainTexts(find("P")));
  EXPECT_EQ(t->getData(), "a \x1b\xe9");
  EXPECT_TRUE(doc_->restorePlainTexts(t));
  // Preformatted text cannot hold what a whole page has at its top.
  EXPECT_FALSE(doc_->restorePlainTexts(doc_->getDocumentElement()));
  EXPECT_FALSE(doc_->restorePlainTexts(nullptr));
  EXPECT_EQ(source(), "<P>a &eacute;</P>");
}

}  // namespace
}  // namespace zeldom40
