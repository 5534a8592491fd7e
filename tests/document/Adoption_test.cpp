// Nodes between documents: what is adopted, what is refused, and what a document loses by it.
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

class AdoptionTest : public PageTest {
 protected:
  AdoptionTest() : other_(dom_->createDocument("HTML")) {
    load("<BODY><P ID=p>here</P></BODY>");
    parse(other_, "<BODY><DIV><B CLASS=c>word</B><!-- c --><%= x %></DIV></BODY>");
  }
  ~AdoptionTest() override { dom_->deleteDocument(other_); }

  static void parse(Document* document, std::string_view page) {
    document->createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, /*adjust=*/false);
    document->clearUpdateFlag();
    document->clearRecord();
  }
  Element* others(const char* name) { return static_cast<Element*>(other_->getElementsByTagName(name).toFirstNode()); }
  static Node* cloneOf(Node* node) {
    Node* clone = node->makeClone(/*deep=*/true);
    clone->addRef(true);
    return clone;
  }
  void dropOther() {
    dom_->deleteDocument(other_);
    other_ = nullptr;
  }
  // Whether all nodes below `top` are of the document.
  static bool allOf(Document* document, Node* top) {
    for (Node* n = top; n; n = document->findNextNode(n, top, false, false)) {
      if (n->getDocument() != document) return false;
    }
    return true;
  }

  Document* other_;
};

TEST_F(AdoptionTest, EachInsertionTakesTheWholeSubtree) {
  using Insert = std::function<void(Node*, Node*)>;
  const struct {
    const char* rule;
    Insert insert;
  } cases[] = {
      {"insertLast", [](Node* p, Node* n) { p->insertLast(n); }},
      {"insertFirst", [](Node* p, Node* n) { p->insertFirst(n); }},
      {"insertBefore", [](Node* p, Node* n) { p->insertBefore(n, p->getFirstChild()); }},
      {"insertAfter", [](Node* p, Node* n) { p->insertAfter(n, p->getFirstChild()); }},
      {"splice", [this](Node*, Node* n) { text()->splice(static_cast<Element*>(n), 1, 2, /*moveCursor=*/false); }},
      {"as part of a run",
       [this](Node* p, Node* n) {
         Node* head = doc_->createTextNode("head");
         Element* holder = other_->createTemporaryElement();
         holder->insertLast(n);
         holder->insertFirst(head);
         p->insertLast(holder->removeChildren(nullptr, nullptr));
         holder->releaseRef(true);
       }},
      {"below a node that is in no tree",
       [this](Node* p, Node* n) {
         Element* loose = doc_->createElement("I");
         loose->insertLast(n);
         EXPECT_TRUE(allOf(doc_, loose));
         p->insertLast(loose);
       }},
      {"below one without a document",
       [](Node* p, Node* n) {
         auto* bare = new Element("X", nullptr);
         bare->addRef(false);
         bare->insertLast(n);
         p->insertLast(bare);
         EXPECT_EQ(bare->getDocument(), nullptr);
         bare->setDocument(p->getDocument());
       }},
  };
  for (const auto& c : cases) {
    load("<BODY><P ID=p>here</P></BODY>");
    doc_->clearRecord();
    Node* clone = cloneOf(others("DIV"));
    auto* b = static_cast<Element*>(clone->getFirstChild());
    const Attribute* attribute = b->getAttributes()->item(0);
    c.insert(find("P"), clone);
    EXPECT_TRUE(allOf(doc_, doc_->getDocumentElement())) << c.rule;
    // The first edit of what came is not the first change any more.
    doc_->adjustNodes(nullptr, /*full=*/false);
    const int states = doc_->canUndo();
    Element* word = element("B");
    ASSERT_NE(word, nullptr) << c.rule;
    word->setAttribute("ID", "new", /*notify=*/true);
    EXPECT_EQ(doc_->canUndo(), states + 1) << c.rule;
    EXPECT_EQ(word == b, word->getAttributes()->item(0) == attribute) << c.rule;
  }
  EXPECT_EQ(other_->canUndo(), 0) << "a clone is no part of its tree";
}

TEST_F(AdoptionTest, WhatWasTakenOutlivesItsFormerDocument) {
  find("P")->insertLast(cloneOf(others("DIV")));
  Element* moved = others("B");
  moved->getAttributes();
  find("P")->insertLast(moved->getParentNode()->removeChild(moved));
  dropOther();
  for (int n = 0; n < 2; ++n) {
    Element* b = element("B", n);
    b->setAttribute("ID", "a&amp;b", /*notify=*/true);
    EXPECT_STREQ(b->getAttributeNode("CLASS")->getParsedValue(/*plain=*/true), "c");
    static_cast<Text*>(b->getFirstChild())->setData("new", /*notify=*/true);
  }
  doc_->adjustNodes(nullptr, /*full=*/false);
  doc_->record();
  const std::string saved = source();
  doc_->deleteNodes(find("P"));
  doc_->undo(1);
  EXPECT_EQ(source(), saved);
  EXPECT_TRUE(allOf(doc_, doc_->getDocumentElement()));
}

TEST_F(AdoptionTest, WhatLeavesATreeIsAnEditThere) {
  Element* b = others("B");
  Node* word = b->getFirstChild();
  other_->setLayoutCursor(word, 2);
  other_->select(word, 1, word, 2, /*append=*/0);
  find("P")->insertLast(b->getParentNode()->removeChild(b));
  EXPECT_EQ(other_->canUndo(), 1);
  Node* at = b;
  other_->getLayoutCursor(&at, nullptr);
  EXPECT_EQ(at, nullptr) << "its cursor stays behind";
  EXPECT_EQ(other_->getNumOfSelections(), 0u);
  EXPECT_EQ(source(), "<BODY><P ID=p>here<B CLASS=c>word</B></P></BODY>");
  other_->undo(1);
  EXPECT_TRUE(allOf(other_, other_->getDocumentElement()));
  EXPECT_STREQ(other_->getSourceBuf(other_->getDocumentElement(), Document::SOURCE_ALL, /*compact=*/false),
               "<BODY><DIV><B CLASS=c>word</B><!-- c --><%= x %></DIV></BODY>");
}

// A saved state of the one page is no state of the other: both are taken while the nodes tell that they are saved.
TEST_F(AdoptionTest, SavedStatesDoNotMix) {
  std::string page = "<BODY><DIV>";
  for (int i = 0; i < 60; ++i) page += "<I>" + std::to_string(i) + "</I>";
  parse(other_, page + "</DIV></BODY>");
  other_->record();
  Node* div = others("DIV");
  find("BODY")->insertLast(div->getParentNode()->removeChild(div));
  dropOther();
  doc_->adjustNodes(nullptr, /*full=*/false);
  doc_->record();
  text(30)->setData("edited", /*notify=*/true);
  doc_->undo(1);
  EXPECT_TRUE(allOf(doc_, doc_->getDocumentElement()));
}

TEST_F(AdoptionTest, ADynamicElementIsGeneratedAnewWhereItComesTo) {
  parse(other_,
        "<BODY><!--METADATA type=\"DynamicData\" startspan\r\n<IMG DYNAMICELEMENT SRC=\"a.gif\">\r\n-->old<!--METADATA "
        "type=\"DynamicData\" endspan--><%= x %></BODY>");
  Element* visual = other_->createElement("ZELX:ATV");
  visual->setAttribute("X", "1", /*notify=*/true);
  ASSERT_TRUE(others("JSP:EXPRESSION")->setATV(visual));
  for (const char* name : {"IMG", "JSP:EXPRESSION"}) {
    Element* moved = others(name);
    find("P")->insertLast(cloneOf(moved));
    find("P")->insertLast(moved->getParentNode()->removeChild(moved));
  }
  dropOther();
  EXPECT_EQ(source().find("old"), std::string::npos);
  for (int n = 0; n < 2; ++n) {
    EXPECT_EQ(element("IMG", n)->getMetaData()->getDocument(), doc_);
    EXPECT_EQ(element("JSP:EXPRESSION", n)->getMetaData()->getDocument(), doc_);
    EXPECT_EQ(element("JSP:EXPRESSION", n)->getATV()->getDocument(), doc_);
    element("JSP:EXPRESSION", n)->getATV()->setAttribute("X", "2", /*notify=*/true);
  }
  EXPECT_FALSE(doc_->isRuntimeTextDifferent()) << "nothing of it was loaded here";
}

// Items of a host's controls go back to the host that made them.
TEST_F(AdoptionTest, AControlIsHandedFromHostToHost) {
  struct Controls : DTCDocument {
    DTCClientItem* createClientItem(Element* element) override {
      ++made;
      item.setElement(element);
      return &item;
    }
    void destroyClientItem(DTCClientItem*) override { --made; }
    DTCClientItem item;
    int made = 0;
  } here, there;
  doc_->setDTCDocument(&here);
  other_->setDTCDocument(&there);
  parse(other_, "<BODY><OBJECT DTC></OBJECT></BODY>");
  ASSERT_EQ(there.made, 1);
  Element* object = others("OBJECT");
  find("P")->insertLast(object->getParentNode()->removeChild(object));
  EXPECT_EQ(there.made, 0);
  EXPECT_EQ(here.made, 1);
  EXPECT_EQ(here.item.getElement(), object);
  doc_->deleteNodes(object);
  EXPECT_EQ(here.made, 0);
  doc_->clearRecord();
  other_->clearRecord();
}

// --- refused ---------------------------------------------------------------------------------------------------------

TEST_F(AdoptionTest, ANodeOfAnotherDOMIsRefused) {
  DOM* foreignDom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  Document* foreign = foreignDom->createDocument("HTML");
  parse(foreign, "<BODY><P>x</P></BODY>");
  const std::string before = source();
  const auto refused = [&](Node* node) {
    Element* p = element("P");
    EXPECT_EQ(p->insertLast(node), node);
    EXPECT_EQ(p->insertFirst(node), node);
    EXPECT_EQ(p->insertBefore(node, p->getFirstChild()), node);
    EXPECT_EQ(p->insertAfter(node, p->getFirstChild()), node);
    EXPECT_EQ(node->getParentNode(), nullptr);
    EXPECT_EQ(node->getNextSibling(), nullptr);
    EXPECT_NE(node->getDocument(), doc_);
  };
  doc_->adjustNodes(nullptr, false);
  doc_->clearRecord();
  Element* b = foreign->createElement("B");
  refused(b);
  EXPECT_EQ(text()->splice(b, 0, 1, /*moveCursor=*/false), -1);
  // Also inside of what has no document itself.
  auto* bare = new Element("X", nullptr);
  bare->addRef(false);
  bare->insertLast(b);
  refused(bare);
  EXPECT_EQ(doc_->canUndo(), 0) << "nothing was changed";
  EXPECT_EQ(source(), before);
  // Nor the other things that belong to an element.
  Element* visual = foreign->createElement("ZELX:ATV");
  EXPECT_FALSE(element("P")->setATV(visual));
  MetaData* md = foreign->createMetaData();
  element("P")->setMetaData(md);
  EXPECT_EQ(element("P")->getMetaData(), nullptr);
  Attribute* attribute = foreign->createAttribute("ALIGN", "left");
  EXPECT_EQ(element("P")->getAttributes()->setAttribute(attribute), nullptr);
  EXPECT_EQ(foreign->createNodes("x", 1, element("P"), /*adjust=*/false), nullptr);
  EXPECT_EQ(source(), before);
  delete attribute;
  md->releaseRef(true);
  visual->releaseRef(true);
  bare->releaseRef(true);
  // What outlived its document is nobody's.
  Node* orphan = cloneOf(foreign->getElementsByTagName("P").toFirstNode());
  foreignDom->deleteDocument(foreign);
  refused(orphan);
  orphan->releaseRef(true);
  DOM::destroyDOM(foreignDom);
}

TEST_F(AdoptionTest, WhatWouldBreakATreeIsRefused) {
  Element* p = element("P");
  Element* root = doc_->getDocumentElement();
  // A document is no child, at no place.
  p->insertLast(other_);
  p->insertBefore(other_, p->getFirstChild());
  EXPECT_EQ(other_->getParentNode(), nullptr);
  // The last reference of a root is its document's.
  EXPECT_EQ(root->releaseRef(true), 1);
  EXPECT_EQ(root->releaseRef(false), 1);
  EXPECT_EQ(root->addRef(false), 2);
  EXPECT_EQ(root->releaseRef(false), 1);
  // Another document's root is that document's to delete; a node of its tree is deleted there.
  EXPECT_EQ(doc_->deleteNodes(other_->getDocumentElement()), nullptr);
  ASSERT_NE(others("DIV"), nullptr);
  other_->setLayoutCursor(others("B"), 0);
  Node* div = others("DIV");
  doc_->deleteNodes(others("B"));
  EXPECT_EQ(other_->canUndo(), 1);
  Node* at = nullptr;
  other_->getLayoutCursor(&at, nullptr);
  EXPECT_EQ(at, div);
  EXPECT_EQ(source(), "<BODY><P ID=p>here</P></BODY>");
  // A fragment is parsed by its own document.
  EXPECT_EQ(doc_->createNodes("x", 1, div, /*adjust=*/false), nullptr);
  // Metadata of an element is in its keeping.
  Element* image = doc_->createElement("IMG");
  image->setDynamicElement(true);
  p->insertLast(image->getMetaData());
  EXPECT_EQ(image->getMetaData()->getParentNode(), nullptr);
  MetaData* loose = doc_->createMetaData();
  p->insertLast(loose);
  image->setMetaData(loose);
  EXPECT_NE(image->getMetaData(), loose);
  image->releaseRef(true);
}

TEST_F(AdoptionTest, AnAttributeStandsInOneList) {
  Element* p = element("P");
  AttributeList* from = others("B")->getAttributes();
  AttributeList* to = p->getAttributes();
  EXPECT_EQ(to->setAttribute(from->item(0)), nullptr);
  EXPECT_EQ(from->getLength(), 1u);
  EXPECT_EQ(to->getLength(), 1u);
  // Its own list, and a copy, take it.
  EXPECT_EQ(from->setAttribute(from->item(0)), from->item(0));
  EXPECT_NE(to->setAttribute(new Attribute(*from->item(0))), nullptr);
  EXPECT_EQ(to->getLength(), 2u);
  // One that was made for another document of the DOM is of this from then on.
  Attribute* made = other_->createAttribute("ALIGN", "a&amp;b");
  EXPECT_EQ(to->setAttribute(made), made);
  AttributeList* loose = doc_->createAttributeList();
  EXPECT_EQ(loose->setAttribute(made), nullptr);
  Attribute* first = other_->createAttribute("X", "1");
  EXPECT_EQ(loose->setAttribute(first), first);
  EXPECT_EQ(to->setAttribute(first), nullptr);
  delete loose;
  dropOther();
  EXPECT_STREQ(made->getParsedValue(/*plain=*/true), "a&b");
}

}  // namespace
}  // namespace zeldom40
