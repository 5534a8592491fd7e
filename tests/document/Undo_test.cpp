// The history of a page.
#include <string>

#include <gtest/gtest.h>

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

TEST_F(UndoTest, TenStatesAreKept) {
  const std::string first = source();
  for (int i = 1; i <= 12; ++i) edit(i);
  EXPECT_EQ(doc_->canUndo(), 10);
  EXPECT_EQ(doc_->getRecordCount(), 12u);
  EXPECT_EQ(doc_->undo(10), 0);
  EXPECT_EQ(body(), "2");
  EXPECT_EQ(doc_->getRecordCount(), 2u);
  EXPECT_EQ(doc_->redo(10), 0);
  EXPECT_EQ(body(), "12");
  EXPECT_EQ(doc_->canUndo(), 10);
}

TEST_F(UndoTest, UndoGivesBackTheExactSource) {
  const std::string page = "<P  align=left >a &amp b\n<p>c</P >\r\n<TABLE><td>x<!-- c --></x></table>\x1b\x80";
  open(page);
  doc_->correctError(nullptr);
  const std::string repaired = source();
  doc_->record();
  doc_->deleteNodes(find("TABLE"));
  element("P")->setAttribute("ID", "new", true);
  doc_->adjustNodes(nullptr, true);
  const std::string edited = source();
  EXPECT_NE(edited, repaired);
  doc_->undo(1);
  EXPECT_EQ(source(), repaired);
  doc_->redo(1);
  EXPECT_EQ(source(), edited);
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

TEST_F(UndoTest, EveryMutatorSavesTheStateBeforeIt) {
  text()->setData("1", true);
  EXPECT_EQ(doc_->canUndo(), 1);
  doc_->undo(1);
  EXPECT_EQ(body(), "0");
}

TEST_F(UndoTest, AGroupHasOneState) {
  doc_->suspendRecord(true);
  for (int i = 1; i <= 3; ++i) edit(i);
  // The end of an edit ends the group as well, unless the host opens it again.
  EXPECT_EQ(doc_->canUndo(), 3);
  doc_->clearRecord();
  for (int i = 4; i <= 6; ++i) {
    doc_->suspendRecord(true);
    edit(i);
  }
  EXPECT_EQ(doc_->canUndo(), 1);
  doc_->suspendRecord(false);
  edit(7);
  EXPECT_EQ(doc_->canUndo(), 2);
}

TEST_F(UndoTest, MovingTheCursorEndsAGroupThatIsNotSuspended) {
  doc_->suspendRecord(true);
  edit(1);
  doc_->setLayoutCursor(text(), 0);
  doc_->suspendRecord(true);
  edit(2);
  EXPECT_EQ(doc_->canUndo(), 2);
}

TEST_F(UndoTest, DisabledRecordingSavesNothing) {
  doc_->enableRecord(false);
  doc_->record();
  text()->setData("1", true);
  EXPECT_EQ(doc_->canUndo(), 0);
  EXPECT_EQ(doc_->getRecordCount(), 0u);
  doc_->enableRecord(true);
  doc_->record();
  EXPECT_EQ(doc_->canUndo(), 1);
}

TEST_F(UndoTest, AChangeAfterUndoEndsTheWayForth) {
  edit(1);
  edit(2);
  doc_->undo(1);
  EXPECT_EQ(doc_->canRedo(), 1);
  doc_->record();
  EXPECT_EQ(doc_->canRedo(), 0);
  EXPECT_EQ(doc_->canUndo(), 2);
}

TEST_F(UndoTest, ManyStepsEndAtTheOldest) {
  edit(1);
  edit(2);
  EXPECT_EQ(doc_->undo(3), 0);
  EXPECT_EQ(body(), "0");
  EXPECT_EQ(doc_->canRedo(), 2);
  EXPECT_EQ(doc_->redo(1), 1);
  EXPECT_EQ(body(), "1");
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

TEST_F(UndoTest, CancelDropsTheNewestStateUnlessSomethingWasUndone) {
  edit(1);
  edit(2);
  doc_->cancelRecord();
  EXPECT_EQ(doc_->canUndo(), 1);
  EXPECT_EQ(doc_->getRecordCount(), 1u);
  doc_->undo(1);
  EXPECT_EQ(body(), "0");
  doc_->cancelRecord();
  EXPECT_EQ(doc_->canRedo(), 1);
}

TEST_F(UndoTest, ClearKeepsTheCount) {
  edit(1);
  doc_->clearRecord();
  EXPECT_EQ(doc_->canUndo(), 0);
  EXPECT_EQ(doc_->undo(1), 0);
  EXPECT_EQ(doc_->getRecordCount(), 1u);
}

TEST_F(UndoTest, CursorAndSelectionComeBackOnNewNodes) {
  open("<BODY><P>abc</P><P>def</P></BODY>");
  Text* old = text(1);
  doc_->setLayoutCursor(old, 2);
  doc_->select(text(0), 1, old, 3, 0);
  doc_->record();
  doc_->deleteNodes(find("P", 1));
  doc_->adjustNodes(nullptr, false);
  doc_->undo(1);
  Node* node = nullptr;
  int offset = 0;
  doc_->getLayoutCursor(&node, &offset);
  EXPECT_EQ(node, text(1));
  EXPECT_EQ(offset, 2);
  ASSERT_EQ(doc_->getNumOfSelections(), 1u);
  const Document::_selection& s = *doc_->getSelections().front();
  EXPECT_EQ(s.startNode, text(0));
  EXPECT_EQ(s.startOffset, 1u);
  EXPECT_EQ(s.endNode, text(1));
  EXPECT_EQ(s.endOffset, 3u);
}

TEST_F(UndoTest, SeveralSelectionsAndACursorOnTheRootAreNotSaved) {
  open("<BODY><P>abc</P><P>def</P></BODY>");
  doc_->select(text(0), 0, text(0), 1, 1);
  doc_->select(text(1), 0, text(1), 1, 1);
  doc_->setLayoutCursor(doc_->getDocumentElement(), 0);
  doc_->record();
  doc_->undo(1);
  Node* node = doc_->getDocumentElement();
  doc_->getLayoutCursor(&node, nullptr);
  EXPECT_EQ(node, nullptr);
  EXPECT_EQ(doc_->getNumOfSelections(), 0u);
}

TEST_F(UndoTest, ARestoredTreeIsCleanAndCounted) {
  edit(1);
  doc_->undo(1);
  Node* root = doc_->getDocumentElement();
  for (Node* n = root; n; n = doc_->findNextNode(n, root, false, false)) {
    EXPECT_EQ(n->getUpdateFlag(), 0u) << n->getName();
    EXPECT_EQ(n->addRef(false), 2) << n->getName();
    n->dropRef(false);
  }
  EXPECT_FALSE(doc_->adjustNodes(nullptr, false));
}

TEST_F(UndoTest, NodesThatAHostHoldsOutliveTheirTree) {
  Node* held = find("P");
  held->addRef(false);
  edit(1);
  doc_->undo(1);
  EXPECT_EQ(held->getParentNode(), nullptr);
  EXPECT_NE(find("P"), held);
  EXPECT_EQ(held->releaseRef(false), 0);
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

// A saved tree keeps untouched nodes in a form of its own; all else in it is a copy, with or without children.
TEST_F(UndoTest, NodesOfEveryKindComeBack) {
  open("<BODY><P>a</P><!-- c --><%= x %><?pi x?><zz y>b</zz><jsp:useBean id=\"b\"></jsp:useBean></BODY>");
  Comment* comment = doc_->createComment("new");
  comment->insertLast(doc_->createTextNode("below a comment"));
  find("BODY")->insertLast(comment);
  find("P")->insertFirst(doc_->createPI("t", "d"));
  element("P")->setAttribute("ALIGN", "left", true);
  find("BODY")->insertLast(doc_->createElement("HR"));
  doc_->adjustNodes(nullptr, false);
  const std::string before = tree();
  const std::string text = source();
  doc_->record();
  doc_->deleteNodes(find("BODY"));
  doc_->adjustNodes(nullptr, false);
  doc_->undo(1);
  EXPECT_EQ(source(), text);
  EXPECT_EQ(tree(), before);
}

}  // namespace
}  // namespace zeldom40
