// Design-time controls: what a host is asked for, and when.
#include <string>

#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

constexpr const char* kBegin = "<!--METADATA type=\"DesignerControl\" startspan\r\n<OBJECT id=\"a\"></OBJECT>\r\n-->";
constexpr const char* kEnd = "<!--METADATA type=\"DesignerControl\" endspan-->";

std::string pairOf(const char* runtime) { return std::string(kBegin) + runtime + kEnd; }

// An item that gives a text.
struct Item : DTCClientItem {
  void getRuntimeData(MetaData* md) override {
    ++asked;
    if (text) md->setRuntimeData(text);
  }
  const char* text = "new";
  int asked = 0;
};

// Has one item for all that a test makes.
struct Controls : DTCDocument {
  DTCClientItem* createClientItem(Element* element) override {
    ++created;
    item.setElement(element);
    return &item;
  }
  DTCClientItem* copyClientItem(DTCClientItem*) override { return nullptr; }
  void destroyClientItem(DTCClientItem*) override { ++destroyed; }

  Item item;
  int created = 0;
  int destroyed = 0;
};

class ControlTest : public PageTest {
 protected:
  ~ControlTest() override { dropDocument(); }

  Controls controls_;
};

TEST_F(ControlTest, WithoutAHostAPageKeepsItsText) {
  load(pairOf("old"));
  EXPECT_EQ(element("OBJECT")->getMetaData()->getObject(), nullptr);
  EXPECT_EQ(source(), pairOf("old"));
  // No one can make it anew, and it is not lost; it stays stale for a host that can.
  for (int i = 0; i < 2; ++i) {
    element("OBJECT")->setAttribute("ID", "b", true);
    EXPECT_NE(source().find("id=\"b\"></OBJECT>\r\n-->old<!--"), std::string::npos) << source();
    EXPECT_TRUE(element("OBJECT")->getMetaData()->isDirty());
  }
}

TEST_F(ControlTest, TheHostIsAskedForItemsAndTexts) {
  doc_->setDTCDocument(&controls_);
  load(pairOf("old"));
  ASSERT_EQ(controls_.created, 1);
  EXPECT_EQ(controls_.item.getElement(), element("OBJECT"));
  EXPECT_EQ(source(), pairOf("new"));
  EXPECT_EQ(controls_.item.asked, 1);
  // A count of lines asks, but keeps what was stored.
  element("OBJECT")->setAttribute("ID", "a", true);
  controls_.item.text = "x\r\ny";
  doc_->getErrorList();
  EXPECT_EQ(element("OBJECT")->getMetaData()->getRuntimeText(), "new");
  EXPECT_EQ(source(), pairOf("x\r\ny"));
  // A host that does nothing leaves the text.
  controls_.item.text = nullptr;
  element("OBJECT")->setAttribute("ID", "a", true);
  EXPECT_EQ(source(), pairOf("x\r\ny"));
  // Run-time text can be left out, the content of the element asked for.
  const Document* document = doc_;
  EXPECT_EQ(document->getSourceBuf(element("OBJECT"), Document::SOURCE_ALL, true), pairOf(""));
  EXPECT_EQ(source(element("OBJECT"), Document::SOURCE_CONTENT), "");
}

TEST_F(ControlTest, AHostMayAskForASourceWhileItIsAsked) {
  struct Curious : Item {
    void getRuntimeData(MetaData* md) override {
      md->setRuntimeData(md->getDocument()->getSourceBuf(md->getDocument()->getHTMLElement()->getFirstChild(),
                                                         Document::SOURCE_TAGS, false));
    }
  } curious;
  struct Host : DTCDocument {
    explicit Host(DTCClientItem* only) : item(only) {}
    DTCClientItem* createClientItem(Element*) override { return item; }
    DTCClientItem* item;
  } host(&curious);
  doc_->setDTCDocument(&host);
  load("<HTML><HEAD></HEAD><BODY>" + pairOf("old"));
  EXPECT_EQ(source(), "<HTML><HEAD></HEAD><BODY>" + pairOf("<HEAD></HEAD>"));
  dropDocument();
}

TEST_F(ControlTest, ControlsAreMadeAndUnlinkedByTheirElement) {
  doc_->setDTCDocument(&controls_);
  load("<OBJECT></OBJECT><P>x");
  Element* object = element("OBJECT");
  element("P")->setDTC(true);
  EXPECT_EQ(controls_.created, 0);
  object->setDTC(true);
  object->setDTC(true);
  object->setDTC(false);
  ASSERT_EQ(controls_.created, 1);
  EXPECT_TRUE(object->isDTC());
  object->setMetaData(nullptr);
  EXPECT_EQ(controls_.item.getElement(), nullptr);
  EXPECT_EQ(controls_.destroyed, 1);
  EXPECT_TRUE(object->isDTC()) << "by its mark";
}

TEST_F(ControlTest, TheMarkTellsANestedControlAndIsNoEdit) {
  load("<UL DYNAMICELEMENT><LI><OBJECT></OBJECT></UL>");
  element("OBJECT")->setDTC(true);
  source();
  doc_->clearRecord();
  doc_->adjustNodes(nullptr, false);
  EXPECT_EQ(source(element("UL"), Document::SOURCE_CONTENT).find("<OBJECT DTC>"), std::string::npos);
  EXPECT_NE(source().find("<OBJECT dtc>"), std::string::npos) << source();
  // Outside of other pairs it goes.
  Element* object = element("OBJECT");
  element("LI")->removeChild(object);
  element("BODY")->insertLast(object);
  doc_->clearRecord();
  doc_->adjustNodes(nullptr, false);
  EXPECT_NE(source().find("\r\n<OBJECT></OBJECT>\r\n"), std::string::npos) << source();
  EXPECT_EQ(doc_->canUndo(), 0);
}

}  // namespace
}  // namespace zeldom40
