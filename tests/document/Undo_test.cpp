// The history of a page.
#include <functional>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "fuzz/SnapshotCheck.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

class UndoTest : public PageTest {
 protected:
  UndoTest() { load("<HTML><BODY><P ID=p>0</P></BODY></HTML>"); }

  // Another page, with a history that begins with it.
  void open(std::string_view page) {
    load(page);
    doc_->adjustNodes(nullptr, false);
    doc_->clearRecord();
  }

  // One edit of a host, closed.
  void edit(int n) {
    doc_->record();
    text()->setData(std::to_string(n), true);
    doc_->adjustNodes(nullptr, false);
  }
  std::string body() { return text() ? text()->getData() : "none"; }
};

TEST_F(UndoTest, TenStatesAreKeptAndAllAreCounted) {
  for (int i = 1; i <= 12; ++i) edit(i);
  EXPECT_EQ(doc_->getRecordCount(), 12u);
  EXPECT_EQ(doc_->undo(10), 0);
  EXPECT_EQ(body(), "2");
  EXPECT_EQ(doc_->getRecordCount(), 2u);
  doc_->clearRecord();
  EXPECT_EQ(doc_->getRecordCount(), 2u);
}

TEST_F(UndoTest, AStateIsSavedOnceUntilAnEditIsClosed) {
  doc_->record();
  doc_->record();
  EXPECT_EQ(doc_->canUndo(), 1);
  text()->setData("1", true);
  doc_->record();
  EXPECT_EQ(doc_->canUndo(), 1);
  doc_->adjustNodes(nullptr, false);
  doc_->record();
  EXPECT_EQ(doc_->canUndo(), 2);
}

TEST_F(UndoTest, AGroupHasOneState) {
  // The end of an edit ends the group, unless the host opens it again before the next.
  doc_->suspendRecord(true);
  edit(1);
  doc_->suspendRecord(true);
  edit(2);
  EXPECT_EQ(doc_->canUndo(), 1);
  edit(3);
  EXPECT_EQ(doc_->canUndo(), 2);
  // So does a move of the cursor in between.
  doc_->setLayoutCursor(text(), 0);
  doc_->suspendRecord(true);
  edit(4);
  EXPECT_EQ(doc_->canUndo(), 3);
}

TEST_F(UndoTest, DisabledRecordingSavesNothingUntilTheEditIsClosed) {
  doc_->enableRecord(false);
  doc_->record();
  text()->setData("1", true);
  EXPECT_EQ(doc_->canUndo(), 0);
  EXPECT_EQ(doc_->getRecordCount(), 0u);
  doc_->adjustNodes(nullptr, false);
  doc_->record();
  EXPECT_EQ(doc_->canUndo(), 1);
}

// Whatever took the last saved state away, the next change has one to go back to.
TEST_F(UndoTest, AnEditBehindADroppedStateIsSavedAgain) {
  const auto change = [&](const char* words) { text()->setData(words, true); };
  const struct {
    const char* rule;
    std::function<void()> before;
    unsigned long counted;
    const char* undone;
  } cases[] = {
      {"the history was cleared within an edit", [&] { change("1"), doc_->clearRecord(); }, 2, "1"},
      {"or within a group",
       [&] {
         doc_->suspendRecord(true);
         edit(1);
         doc_->suspendRecord(true);
         doc_->clearRecord();
       },
       2, "1"},
      {"the state of this edit was dropped", [&] { change("1"), doc_->cancelRecord(); }, 1, "1"},
      {"or the one of the group",
       [&] {
         doc_->suspendRecord(true);
         edit(1);
         doc_->suspendRecord(true);
         doc_->cancelRecord();
       },
       1, "1"},
      {"the state of an edit that was closed", [&] { edit(1), doc_->cancelRecord(); }, 1, "1"},
      {"with a redo list nothing is dropped", [&] { edit(1), edit(2), doc_->undo(1), doc_->cancelRecord(); }, 1, "1"},
  };
  for (const auto& c : cases) {
    open("<HTML><BODY><P ID=p>0</P></BODY></HTML>");
    const unsigned long count = doc_->getRecordCount();
    c.before();
    const int states = doc_->canUndo();
    change("new");
    EXPECT_EQ(doc_->canUndo(), states + 1) << c.rule;
    EXPECT_EQ(doc_->getRecordCount() - count, c.counted) << c.rule;
    doc_->undo(1);
    EXPECT_EQ(body(), c.undone) << c.rule;
  }
}

TEST_F(UndoTest, StepsBelowOneOnlyMoveTheCount) {
  EXPECT_EQ(doc_->undo(2), 0);
  EXPECT_EQ(doc_->getRecordCount(), 0u);
  edit(1);
  EXPECT_EQ(doc_->undo(0), 1);
  EXPECT_EQ(doc_->undo(-2), 1);
  EXPECT_EQ(doc_->getRecordCount(), 3u);
  EXPECT_EQ(doc_->redo(-1), 0);
  EXPECT_EQ(doc_->getRecordCount(), 2u);
  EXPECT_EQ(body(), "1");
}

TEST_F(UndoTest, ARestoredTreeIsClean) {
  edit(1);
  doc_->undo(1);
  Node* root = doc_->getDocumentElement();
  for (Node* n = root; n; n = doc_->findNextNode(n, root, false, false)) {
    EXPECT_EQ(n->getUpdateFlag(), 0u) << n->getName();
  }
  EXPECT_FALSE(doc_->adjustNodes(nullptr, false));
}

TEST_F(UndoTest, ErrorsComeBackWithTheirNodes) {
  open("a</I>");
  doc_->record();
  doc_->correctError(nullptr);
  EXPECT_TRUE(doc_->getErrorList().empty());
  doc_->undo(1);
  ASSERT_EQ(doc_->getErrorList().size(), 1u);
  EXPECT_EQ(doc_->getErrorList().front()->node, find("I"));
}

// The second page of a document is read with recording on: what it finds at its first node is a bare root.
TEST_F(UndoTest, ReadingAPageOverAnotherIsAnEdit) {
  load("<P>x");
  EXPECT_EQ(doc_->canUndo(), 1);
  doc_->undo(1);
  EXPECT_EQ(source(), "");
}

TEST_F(UndoTest, NodesOfEveryKindComeBack) {
  open("<BODY><P>a</P><!-- c --><%= x %><?pi x?><zz y>b</zz><jsp:useBean id=\"b\"></jsp:useBean></BODY>");
  Comment* comment = doc_->createComment("new");
  comment->insertLast(doc_->createTextNode("below a comment"));
  find("BODY")->insertLast(comment);
  find("P")->insertFirst(doc_->createPI("t", "d"));
  doc_->adjustNodes(nullptr, false);
  const std::string before = tree();
  doc_->record();
  doc_->deleteNodes(find("BODY"));
  doc_->undo(1);
  EXPECT_EQ(tree(), before);
}

// Only what changed since the last state is looked at, so each change must tell.
// Rows so wide that saved states keep them in pieces, and those in groups: what leaves may begin or end one.
TEST_F(UndoTest, WideRowsComeBackWhole) {
  for (int width : {40, 390, 3000}) {
    std::string page = "<HTML><BODY>";
    for (int i = 0; i < width; ++i) page += "<HR ID=n" + std::to_string(i) + ">";
    page += "</BODY></HTML>";
    for (int leaving = 0; leaving < width; leaving += width < 1000 ? 13 : leaving < 80 ? 1 : 331) {
      open(page);
      const auto remove = [&](int index) {
        Node* row = find("BODY");
        doc_->record();
        row->removeChild(row->getChildNode(index))->releaseRef(true);
        doc_->adjustNodes(nullptr, false);
        return source();
      };
      const std::string once = remove(leaving);
      const std::string twice = remove(width * 29 / 30);
      doc_->undo(1);
      ASSERT_EQ(source(), once) << width << ' ' << leaving;
      ASSERT_EQ(fuzz::SnapshotCheck().look(doc_->getDocumentElement()), "") << width << ' ' << leaving;
      doc_->undo(1);
      ASSERT_EQ(source(), page) << width << ' ' << leaving;
      doc_->redo(2);
      ASSERT_EQ(source(), twice) << width << ' ' << leaving;
    }
  }
}

TEST_F(UndoTest, NoChangeIsOverlooked) {
  open("<BODY><P ID=p>a</P><jsp:useBean id=\"b\"></jsp:useBean><!-- c --><P>b</P></BODY>");
  auto* p = static_cast<Element*>(find("P"));
  Text* words = text();
  Node* bean = find("JSP:USEBEAN");
  auto* comment = static_cast<Comment*>(find("COMMENT"));
  PI* pi = doc_->createPI("t", "d");
  find("BODY")->insertLast(pi);
  auto attribute = [&] { return p->getAttributes()->item(0); };
  const std::function<void()> changes[] = {
      [&] { p->setViewable(true); },
      [&] { p->setAbsolute(true); },
      [&] { p->setError(ERR_ELEMENT_UNKNOWN); },
      [&] { p->resetError(ERR_ELEMENT_UNKNOWN); },
      [&] { words->setDocument(nullptr); },
      [&] { comment->setName("REMARK"); },
      [&] { words->setName("WORDS"); },
      [&] { p->setElementID(ID_UNKNOWN); },
      [&] { p->setElementType(Element::ELEMENT_TYPE_1); },
      [&] { p->setEndTagExistence(false); },
      [&] { p->setAlternative(true); },
      [&] { p->setEndTagDirty(); },
      [&] { p->getRawEndTag(); },
      [&] { p->setRawBeginTag("<P id=q>"); },
      [&] { attribute()->setSpecified(true); },
      [&] { attribute()->setType(Attribute::ATTRIBUTE_UNDECLARED); },
      [&] { attribute()->setValue("v"); },
      [&] { p->deleteAttribute("ID"); },
      [&] { p->setMetaData(doc_->createMetaData()); },
      [&] { p->getMetaData()->setRuntimeText("made"); },
      [&] { words->setTextType(Text::TEXT_LITERAL); },
      [&] { words->setData("w", /*notify=*/false); },
      [&] { words->setRawData("raw"); },
      [&] { comment->setJSP(true); },
      [&] { comment->getRawData(); },
      [&] { pi->setData("e"); },
      [&] { bean->insertLast(doc_->createTextNode("x")); },
      [&] { p->getParentNode()->insertLast(p->getParentNode()->removeChild(p)); },
      [&] { p->isolate(Node::ISOLATE_SIBLINGS); },
      [&] { p->getParentNode()->insertBefore(doc_->createTextNode("y"), p); },
  };
  fuzz::SnapshotCheck check;
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    EXPECT_EQ(check.look(doc_->getDocumentElement()), "") << "before change " << i;
    changes[i]();
    EXPECT_EQ(check.look(doc_->getDocumentElement()), "") << "after change " << i;
  }
}

}  // namespace
}  // namespace zeldom40
