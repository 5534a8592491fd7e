// Making nodes by call, and the questions that a host asks before it edits.
#include <string>

#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

class FactoriesTest : public PageTest {};

TEST_F(FactoriesTest, ElementsKnowTheirNameAndDefinition) {
  const struct {
    const char* name;
    const char* tag;
    int id;
    bool endTag;
    const char* written;
  } cases[] = {
      {"p", "P", ID_P, false, "<P></P>"},     {"Br", "BR", ID_BR, true, "<BR>"},
      {"foo", "FOO", ID_UNKNOWN, true, ""},   {"jsp:usebean", "JSP:USEBEAN", ID_JSP_USE_BEAN, false, "<jsp:useBean />"},
      {"BEAN", "BEAN", ID_UNKNOWN, true, ""},
  };
  for (const auto& c : cases) {
    Element* e = doc_->createElement(c.name);
    EXPECT_EQ(e->getTagName(), c.tag);
    EXPECT_EQ(e->getElementID(), c.id);
    EXPECT_EQ(e->hasEndTag(), c.endTag);
    EXPECT_EQ(source(e), c.written);
    EXPECT_EQ(e->releaseRef(false), 0);
  }
  EXPECT_EQ(doc_->createElement(nullptr), nullptr);
  EXPECT_EQ(doc_->createElement(""), nullptr);
}

TEST_F(FactoriesTest, OtherNodesAndTheirCounts) {
  Node* nodes[] = {doc_->createRootElement(),       doc_->createTemporaryElement(), doc_->createTextNode("a<b"),
                   doc_->createTextNode(nullptr),   doc_->createComment("--x--"),   doc_->createComment(nullptr),
                   doc_->createPI(nullptr, nullptr)};
  EXPECT_EQ(nodes[6]->getDocument(), nullptr) << "of a PI";
  std::string all;
  for (Node* node : nodes) {
    all += dumpNode(node) + ' ' + source(node) + '|';
    EXPECT_EQ(node->releaseRef(false), 0);
  }
  EXPECT_EQ(all, "ZELROOT |ZELTEMP |\"a&lt;b\" a&lt;b|\"\" |<!--x--> <!--x-->|<!> <!>|?\"\" |");
}

TEST_F(FactoriesTest, CopiesHaveNoChildren) {
  load("<P align=left>x</P>");
  Element* copy = doc_->copyElement(element("P"));
  EXPECT_EQ(dumpTree(copy, kDumpAttributes), "P[ALIGN=left]");
  EXPECT_EQ(source(copy), "<P align=left></P>");
  EXPECT_EQ(copy->releaseRef(true), 0);
  EXPECT_EQ(doc_->copyElement(nullptr), nullptr);
}

TEST_F(FactoriesTest, AskingForTheHTMLElementMakesIt) {
  load("<!-- c -->");
  Element* html = doc_->getHTMLElement();
  EXPECT_EQ(doc_->getHTMLElement(), html);
  EXPECT_EQ(source(), "<!-- c --><HTML></HTML>");
}

TEST_F(FactoriesTest, RemovingAnElementKeepsItsChildren) {
  const struct {
    const char* page;
    bool merge;
    const char* tree;
  } cases[] = {
      {"<P>a<B>b</B>c</P>", false, "P(\"a\" \"b\" \"c\")"},
      {"<P>a<B><I>b</I></B>c</P>", true, "P(\"a\" I(\"b\") \"c\")"},
      {"<P>a<B>b<I>i</I>d</B>c</P>", true, "P(\"ab\" I(\"i\") \"dc\")"},
      {"<P><I>x</I><B></B><I>y</I></P>", true, "P(I(\"x\") I(\"y\"))"},
  };
  for (const auto& c : cases) {
    load(c.page);
    const std::string before = source();
    EXPECT_EQ(doc_->removeElement(element("B"), c.merge), nullptr);
    EXPECT_EQ(dumpTree(find("P")), c.tree);
    // Untouched texts keep their bytes where they meet.
    std::string without = before;
    for (const char* tag : {"<B>", "</B>"}) without.erase(without.find(tag), std::string(tag).size());
    EXPECT_EQ(source(), without);
  }
  load("<P>a &amp; <B>b&copy;</B>c</P>");
  text()->setData("x<", true);
  doc_->setLayoutCursor(text(1), 1);
  doc_->removeElement(element("B"), true);
  EXPECT_EQ(source(), "<P>x&lt;b&copy;c</P>");
  Node* node = nullptr;
  int offset = 0;
  doc_->getLayoutCursor(&node, &offset);
  EXPECT_EQ(node, text());
  EXPECT_EQ(offset, 4);
}

TEST_F(FactoriesTest, NodesNotWorthKeeping) {
  const struct {
    const char* page;
    const char* name;
    const char* cursor;  // the node with the cursor, null for none
    bool empty, emptyWithoutCursor;
  } cases[] = {
      {"<B><!-- --></B>", "B", nullptr, false, false},
      {"<P></P>", "P", nullptr, true, true},
      {"<DIV></DIV>", "DIV", nullptr, false, false},
      {"<A NAME=x></A>", "A", nullptr, false, false},
      {"<B><A NAME=x></A></B>", "B", nullptr, false, false},
      {"<B></B>", "B", "B", false, true},
      {"<B><I></I></B>", "B", "I", false, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.page);
    load(c.page);
    if (c.cursor) doc_->setLayoutCursor(find(c.cursor), 0);
    EXPECT_EQ(doc_->isEmptyNode(find(c.name), false), c.empty);
    EXPECT_EQ(doc_->isEmptyNode(find(c.name), true), c.emptyWithoutCursor);
  }
  // A single selection protects as the cursor does; of several, none.
  load("<B></B><I></I>");
  doc_->select(find("B"), 0, find("B"), 0, 0);
  EXPECT_FALSE(doc_->isEmptyNode(find("B"), false));
  doc_->select(find("I"), 0, find("I"), 0, 1);
  EXPECT_TRUE(doc_->isEmptyNode(find("B"), false));
}

TEST_F(FactoriesTest, WhatMayStandWhere) {
  const struct {
    const char* parent;
    const char* child;
    bool direct;   // between nodes
    bool implied;  // by name, also through implied elements
  } cases[] = {
      {"P", "P", false, false},    {"TABLE", "TR", false, true}, {"TABLE", "TD", false, false},
      {"TBODY", "TR", true, true}, {"HTML", "P", false, true},   {"FOO", "B", false, false},
      {"BR", "B", false, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.parent) + " > " + c.child);
    Element* parent = doc_->createElement(c.parent);
    Element* child = doc_->createElement(c.child);
    EXPECT_EQ(doc_->canContain(parent, c.child), c.implied);
    EXPECT_EQ(doc_->canContain(parent, child), c.direct);
    EXPECT_EQ(doc_->canContain(c.parent, child), c.implied);
    parent->releaseRef(true);
    child->releaseRef(true);
  }
}

}  // namespace
}  // namespace zeldom40
