// The cursor and the selections while the tree changes under them.
#include <string>

#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

class CursorTest : public PageTest {
 protected:
  // A page with P(B I U) at hand.
  void loadSpans() {
    load("<P><B>b</B><I>i</I><U>u</U></P>");
    p_ = find("P");
  }
  std::string cursor(void (Document::*get)(Node**, int*)) {
    Node* node = nullptr;
    int offset = -7;
    (doc_->*get)(&node, &offset);
    return (node ? node->getName() : "none") + ' ' + std::to_string(offset);
  }
  std::string layoutCursor() { return cursor(&Document::getLayoutCursor); }
  std::string sourceCursor() { return cursor(&Document::getSourceCursor); }
  std::string selections() {
    std::string all;
    for (const Document::_selection* s : doc_->getSelections()) {
      if (!all.empty()) all += ", ";
      all += s->startNode->getName() + ' ' + std::to_string(s->startOffset) + " - " + s->endNode->getName() + ' ' +
             std::to_string(s->endOffset);
    }
    return all;
  }

  Node* p_ = nullptr;
};

TEST_F(CursorTest, OneCursorInTwoViews) {
  load("<P>a &amp; b</P>");
  Text* t = text();
  doc_->setSourceCursor(t, 8);
  EXPECT_EQ(layoutCursor(), "TEXT 5");
  EXPECT_EQ(sourceCursor(), "TEXT 8");
  doc_->getLayoutCursor(nullptr, nullptr);
  doc_->getSourceCursor(nullptr, nullptr);
  // A node outside of the tree is no place in the layout; the source view takes any.
  Text* loose = doc_->createTextNode("xyz");
  doc_->setLayoutCursor(loose, 1);
  Node* node = nullptr;
  doc_->getLayoutCursor(&node, nullptr);
  EXPECT_EQ(node, t);
  doc_->setSourceCursor(loose, 1);
  doc_->getLayoutCursor(&node, nullptr);
  EXPECT_EQ(node, loose);
  EXPECT_EQ(layoutCursor(), "TEXT 1");
  // It dies with its node.
  doc_->deleteNodes(loose);
  EXPECT_EQ(layoutCursor(), "none 0");
  EXPECT_EQ(sourceCursor(), "none 0");
}

TEST_F(CursorTest, FormattingTextPassesTheCursorOn) {
  load("<P>a</P>");
  Text* space = doc_->createTextNode(" ");
  space->setTextType(Text::TEXT_FORMATTING);
  find("P")->insertLast(space);
  doc_->setLayoutCursor(space, 1);
  EXPECT_EQ(layoutCursor(), "P 1");
}

TEST_F(CursorTest, ChildrenComeAndGoBeforeIt) {
  const struct {
    int cursor;
    int removed;
    int after;
  } cases[] = {{0, 0, 0}, {1, 0, 0}, {2, 0, 1}, {1, 1, 1}, {3, 2, 2}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.cursor) + " without " + std::to_string(c.removed));
    for (const bool deleted : {false, true}) {
      loadSpans();
      doc_->setLayoutCursor(p_, c.cursor);
      doc_->select(p_, static_cast<unsigned>(c.cursor), p_, 3, 0);
      Node* child = p_->getChildNode(c.removed);
      if (deleted) {
        doc_->deleteNodes(child);
      } else {
        p_->removeChild(child);
      }
      EXPECT_EQ(layoutCursor(), "P " + std::to_string(c.after));
      EXPECT_EQ(selections(), "P " + std::to_string(c.after) + " - P 2");
      if (deleted) continue;
      p_->insertBefore(child, c.removed == 2 ? nullptr : p_->getChildNode(c.removed));
      EXPECT_EQ(layoutCursor(), "P " + std::to_string(c.after));  // insertions are the host's to tell
      doc_->adjustCursorOnInsert(child);
      EXPECT_EQ(layoutCursor(), "P " + std::to_string(c.after > c.removed ? c.after + 1 : c.after));
    }
  }
  loadSpans();
  doc_->setLayoutCursor(p_, 3);
  Node* run = p_->removeChildren(nullptr, nullptr);
  EXPECT_EQ(layoutCursor(), "P 0");
  p_->insertLast(run);
}

TEST_F(CursorTest, DeletingWhatItStandsIn) {
  for (const char* inside : {"I", "TEXT"}) {
    loadSpans();
    Node* node = inside[0] == 'I' ? find("I") : find("I")->getFirstChild();
    doc_->setLayoutCursor(node, 1);
    doc_->select(node, 0, node, 1, 0);
    doc_->deleteNodes(find("I"));
    EXPECT_EQ(layoutCursor(), "P 1");
    EXPECT_EQ(selections(), "P 1 - P 1");
  }
  // Of several selections those that touch it go.
  loadSpans();
  doc_->select(find("B"), 0, find("B"), 0, 0);
  doc_->select(find("I"), 0, find("U"), 0, 1);
  doc_->deleteNodes(find("U"));
  EXPECT_EQ(selections(), "B 0 - B 0");
  // Removed, the node lives; deleted afterwards it takes the places inside with it.
  loadSpans();
  doc_->setLayoutCursor(find("I")->getFirstChild(), 1);
  doc_->select(find("I"), 0, p_, 3, 0);
  Node* i = p_->removeChild(find("I"));
  EXPECT_EQ(layoutCursor(), "TEXT 1");
  doc_->deleteNodes(i);
  EXPECT_EQ(layoutCursor(), "none 0");
  EXPECT_EQ(selections(), "");
}

TEST_F(CursorTest, SelectionsStandInDocumentOrder) {
  const struct {
    const char* a;
    unsigned aOffset;
    const char* b;
    unsigned bOffset;
    const char* stored;
  } cases[] = {
      {"U", 1, "B", 0, "B 0 - U 1"},
      {"P", 2, "P", 1, "P 1 - P 2"},
      {"P", 1, "I", 0, "P 1 - I 0"},  // I is child 1: the start stands before it
      {"P", 2, "I", 0, "I 0 - P 2"},
      {"I", 0, "P", 1, "P 1 - I 0"},
      {"P", 4000000000u, "I", 0, "I 0 - P 4000000000"},
      {"I", 0, "P", 4000000000u, "I 0 - P 4000000000"},
  };
  loadSpans();
  for (const auto& c : cases) {
    doc_->clearUpdateFlag();
    doc_->select(find(c.a), c.aOffset, find(c.b), c.bOffset, 0);
    EXPECT_EQ(selections(), c.stored);
    EXPECT_EQ(doc_->getUpdateFlag(), Node::UPDATE_SELECTION_CHANGED);
  }
  doc_->select(p_, 0, p_, 1, 0);
  doc_->select(nullptr, 0, p_, 1, 1);
  doc_->select(find("I"), 0, find("I"), 1, 1);
  EXPECT_EQ(selections(), "P 0 - P 1, I 0 - I 1");
  doc_->select(find("B"), 0, find("B"), 1, 0);
  EXPECT_EQ(selections(), "B 0 - B 1");
  doc_->clearUpdateFlag();
  doc_->eraseSelections();
  EXPECT_EQ(selections(), "");
  EXPECT_EQ(doc_->getUpdateFlag(), Node::UPDATE_SELECTION_CHANGED);
}

TEST_F(CursorTest, WhatIsSelected) {
  const auto selected = [&] {
    std::string names;
    for (const char* name : {"BODY", "P", "B", "I", "U"}) {
      if (doc_->isSelected(find(name))) names += name;
    }
    return names;
  };
  loadSpans();
  EXPECT_EQ(selected(), "");
  doc_->select(p_, 1, p_, 2, 0);
  EXPECT_EQ(selected(), "BODYPI");
  EXPECT_TRUE(doc_->isSelected(text(1)));
  EXPECT_FALSE(doc_->isSelected(text(2)));
  doc_->select(find("B"), 0, find("I"), 0, 0);
  EXPECT_EQ(selected(), "BODYPBI");
  doc_->select(find("U"), 0, find("U"), 0, 1);
  EXPECT_EQ(selected(), "BU");  // of several, the start nodes
}

}  // namespace
}  // namespace zeldom40
