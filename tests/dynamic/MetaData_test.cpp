// Metadata pairs: how a page's comments become elements, how they are written, and what makes them stale.
#include <functional>
#include <string>
#include <string_view>

#include "dom/dynamic/MetaDataComment.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

using std::string_literals::operator""s;

std::string begin(const char* type, std::string_view source) {
  return "<!--METADATA type=\""s + type + "\" startspan\r\n" + std::string(source) + "\r\n-->";
}
std::string end(const char* type) { return "<!--METADATA type=\""s + type + "\" endspan-->"; }
std::string pair(const char* type, std::string_view source, std::string_view runtime) {
  return begin(type, source) + std::string(runtime) + end(type);
}

constexpr const char* kDyn = "DynamicData";
constexpr const char* kVisual = "AuthorTimeVisual";
constexpr const char* kControl = "DesignerControl";
constexpr const char* kImage = "<IMG DYNAMICELEMENT SRC=\"a.gif\">";

class MetaDataTest : public PageTest {
 public:
  using PageTest::doc_;
  using PageTest::element;

 protected:
  std::string body() { return dumpTree(element("BODY")); }
  // The tree, with a mark behind each element that has metadata: its type and whether it is stale.
  std::string marks() {
    std::string out;
    for (Node* n = doc_->getDocumentElement(); n; n = doc_->findNextNode(n, nullptr, false, false)) {
      MetaData* md = n->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(n)->getMetaData() : nullptr;
      if (md) out += n->getName() + ':' + std::to_string(md->getType()) + (md->isDirty() ? "! " : " ");
    }
    return out;
  }
};

// --- comments --------------------------------------------------------------------------------------------------------

TEST(MetaDataComment, IsKnownByItsWordsAndType) {
  constexpr int kEndOfDynamic = 10, kNeither = -1;
  const struct {
    std::string_view body;
    int kind;  // the type that begins, or one of the above
  } rows[] = {
      {"--METADATA type=\"DynamicData\" startspan\r\nx\r\n--", 1},
      {"-- metadata TYPE='designercontrol' x=1 STARTSPAN\nx--", 0},
      {"---METADATA startspan type = AUTHORTIMEVISUAL y\rx--", 2},
      {"--METADATA type=\"DynamicData\" startspan--", kNeither},
      {"--METADATA startspan\r\ntype=\"DynamicData\"--", kNeither},
      {"--METADATA type startspan\r\n--", kNeither},
      {"--METADATA type=\"DynamicData\" startspan endspan\r\n--", kNeither},
      {"--METADATAS type=\"DynamicData\" startspan\r\n--", kNeither},
      {"--x METADATA type=\"DynamicData\" startspan\r\n--", kNeither},
      {"", kNeither},
      {"--METADATA type=\"DynamicData\" endspan--", kEndOfDynamic},
      {"--MetaData\r\nx EndSpan Type=dynamicdata----", kEndOfDynamic},
      {"--METADATA endspan--", kNeither},
  };
  for (const auto& row : rows) {
    MetaData::Type type = MetaData::None;
    const bool begins = matchBeginComment(row.body, type);
    const bool ends = matchEndComment(row.body, MetaData::DynamicData);
    EXPECT_EQ(begins ? type : ends ? kEndOfDynamic : kNeither, row.kind) << row.body;
  }
}

TEST(MetaDataComment, ASourceThatWouldEndTheCommentIsKept) {
  for (const char* source :
       {"a--b", "--&amp;lt;", "-->-->", "--->", "--&gt;", "--&amp;amp;gt;-->", "--&", "--&amp;", "----&gt;>"}) {
    const std::string comment = makeBeginComment(MetaData::DynamicData, source);
    EXPECT_EQ(comment.find("-->"), comment.size() - 3) << source;
    EXPECT_EQ(designSource(comment), source);
  }
  // A source with neither stands there as it is.
  EXPECT_EQ(makeBeginComment(MetaData::DynamicData, "<A>--&amp;b</A>"), begin(kDyn, "<A>--&amp;b</A>"));
}

// --- reading ---------------------------------------------------------------------------------------------------------

TEST_F(MetaDataTest, APairBecomesItsElementAndComesBackAsItWas) {
  const struct {
    std::string page;
    const char* body;
    const char* marks;
  } rows[] = {
      {pair(kControl, "<OBJECT ID=x></OBJECT>", "<B>run</B>"), "BODY(OBJECT)", "OBJECT:0 "},
      {pair(kVisual, "<ZELX:ATV></ZELX:ATV>", "\r\n<%= x %> \r\n"), "BODY(JSP:EXPRESSION)", "JSP:EXPRESSION:2 "},
      // No object generates for this type, so the stored text stands.
      {pair(kDyn, "<INPUT DYNAMICELEMENT TYPE=password>", "<%= p %>"), "BODY(INPUT)", "INPUT:1 "},
      {"<!-- metadata TYPE='designercontrol' x=1 STARTSPAN\n<OBJECT></OBJECT>-->a\0b"s + end(kControl), "BODY(OBJECT)",
       "OBJECT:0 "},
      // The first end comment of the type ends the pair; one of another type does not.
      {pair(kControl, "<OBJECT></OBJECT>", "a" + end(kDyn)) + pair(kControl, "<OBJECT></OBJECT>", "b"),
       "BODY(OBJECT OBJECT)", "OBJECT:0 OBJECT:0 "},
      {begin(kControl, "<OBJECT></OBJECT>") + "r<!--METADATA type=DesignerControl endspan", "BODY(OBJECT)",
       "OBJECT:0 "},
  };
  for (const auto& row : rows) {
    const std::string page = "<BODY>" + row.page;
    load(page);
    EXPECT_EQ(body(), row.body) << page;
    EXPECT_EQ(marks(), row.marks) << page;
    EXPECT_EQ(source(), page);
    EXPECT_EQ(source(), page) << "at the second time";
  }
}

TEST_F(MetaDataTest, WhatIsNoPairStaysWhatAPlainReaderSees) {
  const std::string rows[] = {
      // Never a pair: no end, the end of another type, an unknown type, a server comment.
      begin(kDyn, kImage) + "<B>x</B>",
      begin(kDyn, kImage) + "<B>x</B>" + end(kControl),
      begin("Other", kImage) + "<B>x</B>" + end("Other"),
      "<%--METADATA type=\"DynamicData\" startspan\r\n" + std::string(kImage) + "--%><B>x</B>" + end(kDyn),
      // A pair that describes no element of its type.
      pair(kDyn, "<IMG>", "<B>x</B>"),
      pair(kControl, "<IMG>", "<B>x</B>"),
      pair(kVisual, "<ZELX:ATV></ZELX:ATV>", "<B>x</B>"),
  };
  for (const std::string& row : rows) {
    const std::string page = "<BODY>" + row;
    load(page);
    EXPECT_EQ(marks(), "") << page;
    EXPECT_NE(element("B"), nullptr) << page;
    EXPECT_EQ(source(), page);
  }
}

TEST_F(MetaDataTest, WhatStandsBesideTheElementMovesIntoThePage) {
  load("<BODY>" + pair(kControl, "t<OBJECT></OBJECT><HR>", "r"));
  EXPECT_EQ(body(), "BODY(\"t\" OBJECT HR)");
  EXPECT_EQ(marks(), "OBJECT:0! ");
  EXPECT_EQ(source(), "<BODY>t" + pair(kControl, "<OBJECT></OBJECT>", "r") + "<HR>");
  // The content of a visual moves out behind what it shows.
  load("<BODY>" + pair(kVisual, "<ZELX:ATV><B>v</B></ZELX:ATV>", "<%= x %>"));
  EXPECT_EQ(body(), "BODY(JSP:EXPRESSION B(\"v\"))");
  EXPECT_EQ(source(), "<BODY>" + pair(kVisual, "<ZELX:ATV></ZELX:ATV>", "<%= x %>") + "<B>v</B>");
}

TEST_F(MetaDataTest, WhatTheParentCannotHaveIsMarked) {
  load("<TABLE><TR>" + pair(kControl, "<OBJECT></OBJECT> ", "r") + "</TABLE>");
  EXPECT_TRUE(element("OBJECT")->getError() & ERR_ELEMENT_CANNOT_BE_CONTAINED);
}

TEST_F(MetaDataTest, ElementsWithoutAPairGetOneAtTheNextSave) {
  const struct {
    const char* page;
    const char* marks;
  } rows[] = {
      {"<BODY><OBJECT DTC></OBJECT><OBJECT></OBJECT>", "OBJECT:0! "},
      {"<BODY><B DYNAMICELEMENT>x</B>", ""},
      // A visual goes to the first element inside that can carry it; one around nothing goes.
      {"<BODY><ZELX:ATV><B><%= a %><%= b %></B></ZELX:ATV>", "JSP:EXPRESSION:2! "},
      {"<BODY><ZELX:ATV><B>x</B></ZELX:ATV>", ""},
      {"<BODY><ZELX:ATV FONTTEXT=o><ZELX:ATV FONTTEXT=i><%= a %></ZELX:ATV></ZELX:ATV>", "JSP:EXPRESSION:2! "},
  };
  for (const auto& row : rows) {
    load(row.page);
    EXPECT_EQ(marks(), row.marks) << row.page;
  }
  EXPECT_EQ(source(), "<BODY>" + pair(kVisual, "<ZELX:ATV FONTTEXT=i></ZELX:ATV>", "<%= a %>"));
}

TEST_F(MetaDataTest, PairsInsidePairsAreFollowedSoFar) {
  std::string page = "<OBJECT></OBJECT>";
  for (int i = 0; i < 30; ++i) {
    page = makeBeginComment(MetaData::DesignerControl, page + "<OBJECT></OBJECT>") + "r" +
           makeEndComment(MetaData::DesignerControl);
  }
  load(page);
  EXPECT_NE(element("OBJECT", 1), nullptr);
  // Each level moved out of its source into the page; those that were not followed are next.
  for (int i = 0; i < 4; ++i) load(source());
  const std::string saved = source();
  load(saved);
  EXPECT_EQ(source(), saved);
  EXPECT_NE(element("OBJECT", 30), nullptr);
}

// --- edits -----------------------------------------------------------------------------------------------------------

TEST_F(MetaDataTest, AnEditMakesAllMetaDataAroundItStale) {
  const std::string page =
      "<BODY>" + pair(kDyn, "<UL DYNAMICELEMENT><LI><B>x</B><I></I><EM></EM></UL>", "run") + "<P>y";
  const struct {
    const char* what;
    void (*edit)(MetaDataTest&);
    bool stale;
  } rows[] = {
      {"attribute", [](MetaDataTest& t) { t.element("B")->setAttribute("ID", "i", true); }, true},
      {"unannounced", [](MetaDataTest& t) { t.element("B")->setAttribute("ID", "i", false); }, false},
      {"parse",
       [](MetaDataTest& t) {
         Element* empty = t.element(t.element("I")->hasChildNodes() ? "EM" : "I");
         t.doc_->createNodes("<S>", 3, empty, true);
       },
       true},
      {"elsewhere", [](MetaDataTest& t) { t.element("P")->setAttribute("ID", "i", true); }, false},
      {"reading", [](MetaDataTest& t) { t.element("B")->getRawBeginTag(); }, false},
  };
  for (const auto& row : rows) {
    // With the flags of the parse standing, and with none.
    for (const bool clear : {false, true}) {
      doc_->createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, /*adjust=*/true);
      if (clear) doc_->clearUpdateFlag();
      EXPECT_EQ(marks(), "UL:1 ");
      // Once more behind a save, which makes it current again.
      for (int round = 0; round < 2; ++round) {
        if (round == 1) source();
        row.edit(*this);
        EXPECT_EQ(marks(), row.stale ? "UL:1! " : "UL:1 ") << row.what << round;
      }
    }
  }
}

TEST_F(MetaDataTest, ATextThatNobodyCanMakeAnewNeedsAPlaceOfItsOwn) {
  for (const char* lost : {"TYPE", "DYNAMICELEMENT"}) {
    load("<BODY>" + pair(kDyn, "<INPUT DYNAMICELEMENT TYPE=radio>", "kept") +
         "<UL DYNAMICELEMENT LOOPPROPERTY=\"a.b[]\"><LI>x</LI></UL>");
    Element* input = element("INPUT");
    input->deleteAttribute(lost);
    EXPECT_NE(source().find("-->kept<!--"), std::string::npos) << lost;
    // Inside a list there is none: what the list is saved with must be what a reader makes of its source.
    element("BODY")->removeChild(input);
    element("LI")->insertLast(input);
    const std::string saved = source();
    EXPECT_EQ(saved.find("kept"), std::string::npos) << saved;
    load(saved);
    EXPECT_EQ(source(), saved) << lost;
  }
}

TEST_F(MetaDataTest, VisualsAreTakenOnlyIfTheyFit) {
  load("<BODY><%= x %>" + pair(kControl, "<OBJECT></OBJECT>", "r"));
  Element* shown = element("JSP:EXPRESSION");
  Element* wrong = doc_->createElement("B");
  Element* visual = doc_->createElement("ZELX:ATV");
  EXPECT_FALSE(shown->setATV(wrong));
  EXPECT_EQ(shown->getMetaData(), nullptr);
  EXPECT_FALSE(element("OBJECT")->setATV(visual));
  EXPECT_EQ(marks(), "OBJECT:0 ");
  EXPECT_TRUE(shown->setATV(visual));
  EXPECT_EQ(shown->getATV(), visual);
  EXPECT_TRUE(shown->setATV(nullptr));
  EXPECT_EQ(shown->getMetaData(), nullptr);
  wrong->releaseRef(true);
}

TEST_F(MetaDataTest, AVisualThatAHostHoldsOutlivesItsPage) {
  for (const char* deleted : {"P", "JSP:EXPRESSION"}) {
    for (const bool deep : {false, true}) {
      load("<P>a<%= x %>b</P>");
      Element* visual = doc_->createElement("ZELX:ATV");
      visual->insertLast(doc_->createElement("B"));
      ASSERT_TRUE(element("JSP:EXPRESSION")->setATV(visual));
      visual->addRef(deep);
      doc_->deleteNodes(find(deleted));
      EXPECT_EQ(visual->getTagName(), "ZELX:ATV");
      EXPECT_EQ(visual->getParentNode(), nullptr);
      EXPECT_TRUE(visual->hasChildNodes());
      EXPECT_EQ(visual->releaseRef(deep), 0);
    }
  }
}

// The way up from a visual leads through its element, so one in the other would have no end.
TEST_F(MetaDataTest, NoVisualStandsInItself) {
  const auto made = [&] { return doc_->createElement("ZELX:ATV"); };
  Element* a = made();
  Element* b = doc_->createElement("B");
  Element* inner = doc_->createElement("I");
  // The element goes into its visual, or into what that holds.
  ASSERT_TRUE(b->setATV(a));
  a->insertLast(inner);
  for (Element* place : {a, inner}) {
    EXPECT_EQ(place->insertLast(b), b);
    EXPECT_EQ(b->getParentNode(), nullptr);
  }
  Text* text = doc_->createTextNode("text");
  inner->insertLast(text);
  EXPECT_EQ(text->splice(b, 0, 1, /*moveCursor=*/false), -1);
  b->setAttribute("ID", "x", /*notify=*/true);
  // So does what holds the element.
  Element* around = doc_->createElement("DIV");
  around->insertLast(b);
  inner->insertLast(around);
  EXPECT_EQ(around->getParentNode(), nullptr);
  // What holds the element becomes its visual, or that of an element in its visual.
  Element* top = made();
  top->insertLast(around);
  EXPECT_FALSE(b->setATV(top));
  EXPECT_FALSE(inner->setATV(top));
  EXPECT_FALSE(b->getMetaData()->setATV(top));
  EXPECT_FALSE(top->setATV(top));
  // Metadata that has its visual before it has its element.
  MetaData* md = doc_->createMetaData();
  md->setType(MetaData::AuthorTimeVisual);
  Element* c = made();
  Element* d = doc_->createElement("B");
  ASSERT_TRUE(md->setATV(c));
  c->insertLast(d);
  d->setMetaData(md);
  EXPECT_EQ(d->getMetaData(), nullptr);
  c->insertLast(md);
  EXPECT_EQ(md->getParentNode(), nullptr);
  // A visual shows one element.
  EXPECT_FALSE(d->setATV(a));
  EXPECT_EQ(b->getATV(), a);
  md->releaseRef(true);
  top->releaseRef(true);
}

TEST_F(MetaDataTest, AVisualThatIsDeletedIsNobodysVisualAnyMore) {
  using Delete = std::function<void(Element*)>;
  const struct {
    const char* rule;
    Delete drop;
  } cases[] = {
      {"setATV", [](Element* e) { e->setATV(nullptr); }},
      {"deleteNodes", [this](Element* e) { EXPECT_EQ(doc_->deleteNodes(e->getATV()), nullptr); }},
      {"removeElement", [this](Element* e) { EXPECT_EQ(doc_->removeElement(e->getATV(), true), nullptr); }},
      {"the last reference", [](Element* e) { e->getATV()->releaseRef(true); }},
      {"removeChild",
       [](Element* e) {
         Element* atv = e->getATV();
         EXPECT_EQ(atv->getParentNode()->removeChild(atv), atv);
         EXPECT_EQ(atv->getParentNode(), nullptr);
         atv->releaseRef(true);
       }},
      {"a repair",
       [this](Element* e) {
         e->getATV()->setError(ERR_ELEMENT_BEGIN_TAG_MISSING);
         EXPECT_EQ(doc_->getErrorList().size(), 1u);
         EXPECT_EQ(doc_->correctError(e->getATV()), 1);
         EXPECT_TRUE(doc_->getErrorList().empty());
       }},
  };
  for (const auto& c : cases) {
    load("<BODY><%= x %></BODY>");
    Element* visual = doc_->createElement("ZELX:ATV");
    visual->insertLast(doc_->createElement("B"));
    visual->insertLast(doc_->createTextNode("in the visual"));
    ASSERT_TRUE(element("JSP:EXPRESSION")->setATV(visual));
    // An edit in it is closed like any other; the empty element goes.
    EXPECT_TRUE(doc_->adjustNodes(visual, /*full=*/false));
    EXPECT_EQ(dumpTree(element("JSP:EXPRESSION")->getATV()), "ZELX:ATV(\"in the visual\")");
    doc_->setLayoutCursor(visual->getLastChild(), 0);
    doc_->adjustNodes(nullptr, /*full=*/false);
    doc_->clearUpdateFlag();
    doc_->clearRecord();
    c.drop(element("JSP:EXPRESSION"));
    EXPECT_EQ(element("JSP:EXPRESSION")->getMetaData(), nullptr) << c.rule;
    EXPECT_EQ(source(), "<BODY><%= x %></BODY>") << c.rule;
    if (std::string(c.rule) == "a repair") continue;
    EXPECT_TRUE(element("JSP:EXPRESSION")->getUpdateFlag() & Node::UPDATE_META_DATA_MODIFIED) << c.rule;
    EXPECT_EQ(doc_->canUndo(), 1) << c.rule;
    doc_->undo(1);
    EXPECT_NE(element("JSP:EXPRESSION")->getATV(), nullptr) << c.rule;
  }
}

TEST_F(MetaDataTest, MetaDataOfAnotherElementIsCopied) {
  load("<BODY>" + pair(kControl, "<OBJECT ID=a></OBJECT>", "r") + "<OBJECT ID=b></OBJECT>");
  Element* a = element("OBJECT", 0);
  Element* b = element("OBJECT", 1);
  b->setMetaData(a->getMetaData());
  EXPECT_EQ(b->getMetaData()->getElement(), b);
  EXPECT_EQ(a->getMetaData()->getElement(), a);
  a->setDynamicElement(true);
  EXPECT_EQ(a->getMetaData(), nullptr) << "not declared for OBJECT";
}

TEST_F(MetaDataTest, DynamicMarkComesAndGoesWithMetaData) {
  load("<BODY><UL><LI>x</UL><B>y</B>");
  element("UL")->setDynamicElement(true);
  element("B")->setDynamicElement(true);
  EXPECT_EQ(marks(), "UL:1! ");
  EXPECT_NE(element("B")->getAttributeNode("DYNAMICELEMENT"), nullptr);
  doc_->adjustNodes(nullptr, false);
  element("UL")->setDynamicElement(false);
  EXPECT_EQ(marks(), "");
  EXPECT_EQ(element("UL")->getNumAttributes(), 0u);
  doc_->undo(1);
  EXPECT_EQ(marks(), "UL:1! ") << "the metadata is part of what is undone";
}

// --- flags, lines ----------------------------------------------------------------------------------------------------

TEST_F(MetaDataTest, OneFlagIsPassedOnAndNoneIsKept) {
  load("<BODY>" + pair(kControl, "<OBJECT></OBJECT>", "r"));
  MetaData* md = element("OBJECT")->getMetaData();
  md->setUpdateFlag(Node::UPDATE_CONTENT_MODIFIED);
  EXPECT_EQ(element("OBJECT")->getUpdateFlag(), 0u);
  md->setUpdateFlag(Node::UPDATE_CHILD_MODIFIED);
  EXPECT_EQ(element("OBJECT")->getUpdateFlag(), Node::UPDATE_META_DATA_MODIFIED);
  EXPECT_EQ(md->getUpdateFlag(), 0u);
}

TEST_F(MetaDataTest, ErrorsBehindAPairStandOnTheirLine) {
  load("<BODY>" + pair(kControl, "<OBJECT></OBJECT>", "one\r\ntwo\r\n") + "<FOO>");
  ASSERT_EQ(doc_->getErrorList().size(), 1u);
  EXPECT_EQ(doc_->getErrorList().front()->line, 5u);
}

TEST_F(MetaDataTest, RuntimeTextThatWasNeverSavedIsDifferent) {
  load("<BODY>" + pair(kDyn, kImage, ""));
  EXPECT_TRUE(doc_->isRuntimeTextDifferent());
  doc_->resetRuntimeTextStateOnReload();
  load("<BODY>" + pair(kDyn, kImage, "other"));
  EXPECT_FALSE(doc_->isRuntimeTextDifferent());
  doc_->getErrorList();
  EXPECT_FALSE(doc_->isRuntimeTextDifferent()) << "counting lines compares nothing";
  source();
  EXPECT_TRUE(doc_->isRuntimeTextDifferent());
}

// --- any page --------------------------------------------------------------------------------------------------------

TEST_F(MetaDataTest, RuntimeTextCannotHideItsEndOrBringOne) {
  for (const std::string& text : {"<!-- a"s, "<!"s, "<%-- a"s, "<% a"s, "<?a"s, "<a href='<!-- b"s,
                                  "a" + end(kControl) + "b" + end(kControl) + "c<!--"}) {
    SCOPED_TRACE(text);
    load("<BODY>" + pair(kControl, "<OBJECT></OBJECT>", "x") + "<P>author</P>" +
         pair(kControl, "<OBJECT></OBJECT>", "y"));
    element("OBJECT")->getMetaData()->setRuntimeText(text);
    const std::string saved = source();
    EXPECT_NE(saved.find("-->" + text.substr(0, 10)), std::string::npos) << saved;
    load(saved);
    EXPECT_EQ(dumpTree(element("BODY")).substr(0, 32), "BODY(OBJECT P(\"author\") OBJECT)") << saved;
    EXPECT_EQ(source(), saved);
  }
}

}  // namespace
}  // namespace zeldom40
