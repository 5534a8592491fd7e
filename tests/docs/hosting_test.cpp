// The samples of docs/hosting.md, one test each. The page quotes them; the tests of the tool compare the two.
#include <cstdlib>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "dom/zeldom40.h"

namespace zeldom40 {
namespace {

// The source of a page as a host gets it: with its length, for it may hold NUL bytes.
std::string sourceOf(Document* document, Node* node) {
  const char* bytes = document->getSourceBuf(node, Document::SOURCE_ALL, /*compact=*/false);
  return std::string(bytes, document->getSourceBufLen(nullptr, Document::SOURCE_ALL, /*compact=*/false));
}

Node* load(Document* document, const std::string& page) {
  Node* root = document->createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, /*adjust=*/false);
  if (root) document->clearUpdateFlag();
  return root;
}

class Hosting : public testing::Test {
 protected:
  Hosting()
      : dom(DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr)), document(dom->createDocument("HTML")) {}
  ~Hosting() override {
    dom->deleteDocument(document);
    DOM::destroyDOM(dom);
  }
  DOM* dom;
  Document* document;
};

TEST(HostingLife, FromStartToEnd) {
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  Document* document = dom->createDocument("HTML");

  Node* root = load(document, "<P>x");
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(sourceOf(document, root), "<P>x");

  dom->deleteDocument(document);
  DOM::destroyDOM(dom);
}

TEST_F(Hosting, OpensAndSavesAFile) {
  const std::string file = "<P>one\n<P>two\n";
  std::string saved;

  CodeConv::SetCodepage(1252);

  CodeConv converter;
  const char* text = converter.Import(file.data(), static_cast<int>(file.size()), CodeConv::CHARSET_AUTO);
  const std::string page = text ? text : "";  // an empty file gives null

  load(document, page);

  const std::string source = sourceOf(document, document->getDocumentElement());
  const char* bytes = converter.Export(source.c_str(), -1, CodeConv::CHARSET_AUTO, CodeConv::NEWLINE_AUTO);
  if (bytes) saved = bytes;

  EXPECT_EQ(page, "<P>one\r\n<P>two\r\n");
  EXPECT_EQ(saved, file);
}

TEST_F(Hosting, Walks) {
  Node* root = load(document, "<P>a<IMG SRC=x><!-- c --><P>b");
  std::string seen;

  for (Node* n = root; n; n = document->findNextNode(n, root, /*updatedOnly=*/false, /*skipChildren=*/false)) {
    switch (n->getNodeType()) {
      case Node::NODE_ELEMENT:
        seen += static_cast<Element*>(n)->getTagName() + " ";
        break;
      case Node::NODE_TEXT:
        seen += static_cast<Text*>(n)->getData() + " ";
        break;
      default:
        break;
    }
  }

  EXPECT_EQ(seen, "ZELROOT HTML BODY P a IMG P b ");
}

TEST_F(Hosting, Edits) {
  Node* root = load(document, "<BODY>\n<P  class=x>old\n</BODY>\n");

  auto* p = static_cast<Element*>(document->getElementsByTagName("P").toFirstNode());

  document->record();  // the state before the edit
  p->setAttribute("ALIGN", "right", /*notify=*/true);
  Element* b = document->createElement("B");  // count 1, no parent
  Text* word = document->createTextNode("new & bold");
  if (document->canContain(p, b)) {
    b->insertLast(word);
    p->insertFirst(b);
    document->adjustCursorOnInsert(b);
  }
  document->adjustNodes(nullptr, /*full=*/false);  // the edit is complete

  // ... redraw what carries update flags, then:
  document->clearUpdateFlag();

  const std::string edited = R"(<BODY>
<P class="x" align="right"><B>new &amp; bold</B>old
</P></BODY>
)";
  EXPECT_EQ(sourceOf(document, root), edited);

  document->undo(1);
  Node* old = document->getDocumentElement();  // `root`, `p`, `b` and `word` are gone
  EXPECT_EQ(sourceOf(document, old), "<BODY>\n<P  class=x>old\n</BODY>\n");
  document->redo(1);
  EXPECT_EQ(sourceOf(document, document->getDocumentElement()), edited);
}

TEST_F(Hosting, KeepsWhatItDoesNotEdit) {
  dom->setRewriting(DOM::Rewriting::KEEP);  // before the first edit
  load(document, "<p  class='x'>it&#x27;s\n \"old\"</p >\n");
  auto* p = static_cast<Element*>(document->getElementsByTagName("P").toFirstNode());
  p->setAttribute("ALIGN", "right", /*notify=*/true);
  static_cast<Text*>(p->getFirstChild())->insert(-1, "!", /*moveCursor=*/false, Text::SPACE_NORMAL);
  document->adjustNodes(nullptr, /*full=*/false);
  EXPECT_EQ(sourceOf(document, document->getDocumentElement()),
            "<p  class='x' align=\"right\">it&#x27;s\n \"old\"!</p >\n");
}

TEST_F(Hosting, LooksOnlyAtWhatChanged) {
  Node* root = load(document, "<P>a<P>b<P>c");
  std::string seen;
  auto* text = static_cast<Text*>(document->getElementsByTagName("TEXT").moveTo(1));
  text->setData("B", /*notify=*/true);

  for (Node* n = root; n; n = document->findNextNode(n, root, /*updatedOnly=*/true, /*skipChildren=*/false)) {
    if (n->getUpdateFlag() & Node::UPDATE_CONTENT_MODIFIED) seen += static_cast<Text*>(n)->getData();
  }

  EXPECT_EQ(seen, "B");
}

TEST_F(Hosting, JoinsKeystrokesIntoOneStep) {
  load(document, "<P>a");
  auto* text = static_cast<Text*>(document->getElementsByTagName("TEXT").toFirstNode());

  for (const char* key : {"b", "c", "d"}) {
    document->suspendRecord(true);
    text->insert(-1, key, /*moveCursor=*/true, Text::SPACE_NBSP);
    document->adjustNodes(nullptr, /*full=*/false);
  }
  document->suspendRecord(false);  // the next change is a step of its own

  EXPECT_EQ(sourceOf(document, document->getDocumentElement()), "<P>abcd");
  EXPECT_EQ(document->canUndo(), 1);
  document->undo(1);
  EXPECT_EQ(sourceOf(document, document->getDocumentElement()), "<P>a");
}

TEST_F(Hosting, KeepsTheCursorInTwoCoordinates) {
  load(document, "<P>a  &amp; b");
  auto* text = static_cast<Text*>(document->getElementsByTagName("TEXT").toFirstNode());

  Node* node = nullptr;
  int offset = 0;
  document->setLayoutCursor(text, 4);  // behind the ampersand: "a", a blank, and two bytes for "&"
  document->getSourceCursor(&node, &offset);
  // node is the text, offset 8 in its source "a  &amp; b"

  EXPECT_EQ(node, text);
  EXPECT_EQ(offset, 8);
  EXPECT_EQ(text->getData(), "a \x1b& b");
}

TEST_F(Hosting, Selects) {
  load(document, "<P>one<P>two<P>three");
  NodeIterator texts = document->getElementsByTagName("TEXT");
  Node* first = texts.moveTo(0);
  Node* second = texts.moveTo(1);

  document->select(second, 1, first, 2, /*append=*/0);  // given backwards
  const Document::_selection* selection = document->getSelections().front();
  // the ends are in document order: selection->startNode is `first`, startOffset 2

  EXPECT_EQ(selection->startNode, first);
  EXPECT_EQ(selection->startOffset, 2u);
  EXPECT_TRUE(document->isSelected(second));
  EXPECT_FALSE(document->isSelected(texts.moveTo(2)));
}

TEST_F(Hosting, ListsErrorsAndRepairs) {
  load(document, "<BODY>\n<P>a</DIV>\n<BLIP>\n</BODY>");
  std::string shown;

  for (const _dom_error_packet* packet : document->getErrorList()) {
    shown += "line " + std::to_string(packet->line) + ": " + packet->node->getName();
    if (packet->error & ERR_DOC_SEVERE_PARSE_ERROR) shown += ", severe";
    shown += "\n";
  }

  EXPECT_EQ(shown, "line 2: DIV, severe\nline 3: BLIP\n");

  document->record();
  const int repairs = document->correctError(nullptr);
  document->adjustNodes(nullptr, /*full=*/false);

  EXPECT_EQ(repairs, 1);
  EXPECT_EQ(sourceOf(document, document->getDocumentElement()), "<HTML><BODY>\n<P>a\n<BLIP>\n</BODY></HTML>");
}

TEST_F(Hosting, RepairsFindingByFinding) {
  load(document, "<BODY><P>x<B><I><U></P><P>a</I>b</P></BODY>");

  document->record();
  int repairs = 0;
  for (const _dom_error_packet* packet : document->getErrorList()) {
    if (packet->error & ERR_DOC_SEVERE_PARSE_ERROR) repairs += document->correctError(packet->node);
  }
  document->adjustNodes(nullptr, /*full=*/false);

  EXPECT_EQ(repairs, 4);
  EXPECT_TRUE(document->getErrorList().empty());
  EXPECT_EQ(sourceOf(document, document->getDocumentElement()), "<BODY><P>x</P><P>ab</P></BODY>");
  document->undo(1);
  EXPECT_EQ(document->getErrorList().size(), 4u);
}

TEST_F(Hosting, PlansRepairsOfAFile) {
  const std::string page = "<html><body><p>one <b>two</p><td>three</td></body></html>";
  load(document, page);
  std::string fixes, quickFix;
  {
    const RepairPlanner planner(document);
    for (const _dom_error_packet* packet : document->getErrorList()) {
      const RepairPlanner::Plan* plan = planner.planFor(packet->node, packet->error);
      if (plan && plan->kind == RepairPlanner::SAFE) fixes += plan->reason + "\n";
      if (plan) quickFix = applyEdits(planner.source(), plan->edits);
    }
  }
  EXPECT_EQ(fixes, "adds </b>\n");
  EXPECT_EQ(quickFix, page);  // the last error has no repair

  std::string left;
  const SourceRepair repair(dom, page, {});
  for (const SourceRepair::Entry& entry : repair.left()) left += entry.name + ": " + entry.reason + "\n";
  const std::string written = applyEdits(page, repair.edits());
  EXPECT_EQ(left, "TD: <TD> would have to leave <BODY>\n");
  EXPECT_EQ(written, "<html><body><p>one <b>two</b></p><td>three</td></body></html>");
}

TEST_F(Hosting, TakesNodesOfAnotherDocument) {
  load(document, "<BODY><P>a </P></BODY>");
  Document* other = dom->createDocument("HTML");
  load(other, "<BODY><B>word</B></BODY>");
  Node* p = document->getElementsByTagName("P").toFirstNode();

  Node* word = other->getElementsByTagName("B").toFirstNode();
  Node* copy = word->makeClone(/*deep=*/true);
  copy->addRef(true);  // a clone has no reference yet
  p->insertLast(copy);
  p->insertLast(word->getParentNode()->removeChild(word));  // an edit of the other page
  dom->deleteDocument(other);

  EXPECT_EQ(word->getDocument(), document);
  static_cast<Element*>(copy)->setAttribute("ID", "x", /*notify=*/true);
  EXPECT_EQ(sourceOf(document, p), "<P>a <B id=\"x\">word</B><B>word</B></P>");

  DOM* foreign = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  Document* theirs = foreign->createDocument("HTML");
  Element* refused = theirs->createElement("I");
  p->insertLast(refused);
  EXPECT_EQ(refused->getParentNode(), nullptr);
  refused->releaseRef(true);
  foreign->deleteDocument(theirs);
  DOM::destroyDOM(foreign);
}

TEST_F(Hosting, InsertsAFragment) {
  load(document, "<BODY><P>a</P></BODY>");
  const std::string clip = "<ul><li>x<li>y</ul>";
  Node* body = document->getElementsByTagName("BODY").toFirstNode();

  Element* holder = document->createTemporaryElement();
  document->createNodes(clip.data(), static_cast<unsigned>(clip.size()), holder, /*adjust=*/false);
  holder->clearUpdateFlag();  // only to keep the tags as they were written
  Node* run = holder->removeChildren(nullptr, nullptr);
  if (run) body->insertLast(run);
  holder->releaseRef(true);

  EXPECT_EQ(sourceOf(document, document->getDocumentElement()), "<BODY><P>a</P><ul><li>x<li>y</ul></BODY>");
  document->adjustNodes(nullptr, /*full=*/false);
  EXPECT_EQ(sourceOf(document, document->getDocumentElement()),
            "<BODY><P>a</P>\r\n<ul>\r\n  <li>x\r\n  <li>y\r\n</ul>\r\n</BODY>");
}

TEST_F(Hosting, HoldsASubtreeOverItsDeletion) {
  load(document, "<BODY><P>a</P><P>b</P></BODY>");
  Node* p = document->getElementsByTagName("P").toFirstNode();

  p->addRef(true);           // one more on the paragraph and on all below it
  document->deleteNodes(p);  // the tree's reference goes, ours stays
  // ... later: what we hold becomes what the tree holds
  document->getElementsByTagName("BODY").toFirstNode()->insertLast(p);

  EXPECT_EQ(sourceOf(document, document->getDocumentElement()), "<BODY><P>b</P><P>a</P></BODY>");
}

TEST_F(Hosting, MakesAnElementDynamic) {
  load(document, "<BODY><UL><LI>one</UL></BODY>");

  auto* list = static_cast<Element*>(document->getElementsByTagName("UL").toFirstNode());
  list->setAttribute("LOOPPROPERTY", "cart.items[]", /*notify=*/true);
  list->setDynamicElement(true);  // adds DYNAMICELEMENT
  document->adjustNodes(nullptr, /*full=*/false);

  const std::string saved = sourceOf(document, document->getDocumentElement());
  EXPECT_NE(saved.find("dynamicelement><LI>one</UL>\r\n--><%\r\ntry {\r\n"), std::string::npos) << saved;
  EXPECT_NE(saved.find("Object[] _a0 = cart.getItems();"), std::string::npos) << saved;
  EXPECT_FALSE(document->isRuntimeTextDifferent());
}

char* copyOf(const std::string& text) {
  char* copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (copy) std::memcpy(copy, text.c_str(), text.size() + 1);
  return copy;
}

class Types : public JavaTypeLookupIF {
 public:
  char* lookupType(const char* path, const char* beanClass) const override {
    const bool isItem = beanClass == std::string("shop.Cart") && path == std::string("cart.items[]");
    return isItem ? copyOf("shop.Item") : nullptr;
  }
  char* lookupGetter(const char* type, const char* property) const override {
    const bool isPrice = type == std::string("shop.Item") && property == std::string("price");
    return isPrice ? copyOf("cost") : nullptr;
  }
  void freeResult(char* text) const override { std::free(text); }
};

TEST_F(Hosting, AnswersAboutTypesAndListsBeans) {
  const Types types;
  dom->setJavaTypeLookupIF(&types);
  document->addOutBoundBean("cart", "shop.Cart");  // a servlet puts it into the request

  load(document,
       "<ZELX:LOOP LOOPPROPERTY=\"cart.items[]\"><ZELX:PROPERTY PROPERTY=\"cart.items[].price\"></ZELX:LOOP>");
  const std::string saved = sourceOf(document, document->getDocumentElement());
  EXPECT_NE(saved.find("shop.Item _p0 = _a0[0];"), std::string::npos) << saved;
  EXPECT_NE(saved.find("<%= _p0.cost() %>"), std::string::npos) << saved;

  std::string seen;
  void* handle = nullptr;
  document->getBeanListBegin(handle);
  const char* name = nullptr;
  const char* type = nullptr;
  while (document->getBeanListNext(handle, name, type)) seen += std::string(name) + ": " + type + "\n";
  document->getBeanListEnd(handle);
  EXPECT_NE(seen.find("cart: shop.Cart\n"), std::string::npos) << seen;
}

TEST_F(Hosting, TellsTheAuthorThatASaveChangesRuntimeText) {
  const std::string page =
      "<P><!--METADATA type=\"DynamicData\" startspan\r\n<ZELX:PROPERTY "
      "PROPERTY=\"cart.title\">\r\n-->older<!--METADATA "
      "type=\"DynamicData\" endspan-->";
  bool told = false;

  load(document, page);
  const std::string source = sourceOf(document, document->getDocumentElement());
  if (document->isRuntimeTextDifferent()) {
    told = true;  // ask the author, and then
    document->runtimeTextWasSynchronized();
  }

  EXPECT_TRUE(told);
  EXPECT_NE(source.find("--><%= cart.getTitle() %><!--"), std::string::npos) << source;
  EXPECT_FALSE(document->isRuntimeTextDifferent());
}

class Clock final : public DTCClientItem {
 public:
  void getRuntimeData(MetaData* metaData) override { metaData->setRuntimeData("<%= new java.util.Date() %>"); }
};

class Controls : public DTCDocument {
 public:
  DTCClientItem* createClientItem(Element* element) override {
    Clock* clock = new Clock;
    clock->addRef();  // the library's reference
    clock->setElement(element);
    return clock;
  }
  void destroyClientItem(DTCClientItem* item) override {
    if (item && item->releaseRef() == 0) delete static_cast<Clock*>(item);
  }
};

TEST_F(Hosting, ServesAControl) {
  Controls controls;
  Document* page = dom->createDocument("HTML");

  page->setDTCDocument(&controls);  // before the page is parsed
  load(page, "<P><OBJECT DTC CLASSID=clock></OBJECT>");
  const std::string source = sourceOf(page, page->getDocumentElement());

  EXPECT_NE(source.find("--><%= new java.util.Date() %><!--METADATA"), std::string::npos) << source;
  dom->deleteDocument(page);
}

}  // namespace
}  // namespace zeldom40
