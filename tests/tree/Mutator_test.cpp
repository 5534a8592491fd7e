// Random calls on small trees against a model that holds nothing but child lists and counts.
#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <vector>

#include "dom/tree/NodeAccess.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

// Nodes that tell when they come and go.
std::set<Node*> live;

class ProbeElement : public Element {
 public:
  ProbeElement(const char* name, Document* document) : Element(name, document) { live.insert(this); }
  ProbeElement(const ProbeElement& other) : Element(other, true) { live.insert(this); }
  ~ProbeElement() override { live.erase(this); }

 private:
  Node* cloneSelf() const override { return new ProbeElement(*this); }
};

class ProbeText : public Text {
 public:
  explicit ProbeText(Document* document) : Text(document) { live.insert(this); }
  ProbeText(const ProbeText& other) : Text(other) { live.insert(this); }
  ~ProbeText() override { live.erase(this); }

 private:
  Node* cloneSelf() const override { return new ProbeText(*this); }
};

struct Shape {
  Node* parent = nullptr;
  std::vector<Node*> children;
  int count = 0;
  bool tampered = false;  // its children's sibling links may tell anything
};

class Mutator : public PageTest, public testing::WithParamInterface<unsigned> {
 protected:
  unsigned below(std::size_t limit) { return static_cast<unsigned>(random_() % limit); }
  bool oneIn(unsigned n) { return below(n) == 0; }
  Node* anyNode() { return all_[below(all_.size())]; }
  Node* anyChildOf(Node* node) {
    const auto& children = model_[node].children;
    return children.empty() ? nullptr : children[below(children.size())];
  }
  Shape& of(Node* node) { return model_.at(node); }

  bool holds(Node* ancestor, Node* node) {
    for (; node; node = of(node).parent) {
      if (node == ancestor) return true;
    }
    return false;
  }

  void addNode(Node* node, int count) {
    model_[node].count = count;
    all_.push_back(node);
  }

  void insertAt(Node* parent, Node* head, std::size_t index) {
    if (of(head).parent || holds(head, parent)) return;
    std::vector<Node*> run{head};
    for (Node* n = head->getNextSibling(); n && !of(n).parent && n != head && !holds(n, parent);
         n = n->getNextSibling()) {
      run.push_back(n);
    }
    auto& children = of(parent).children;
    children.insert(children.begin() + static_cast<std::ptrdiff_t>(index), run.begin(), run.end());
    for (Node* n : run) of(n).parent = parent;
  }

  std::size_t indexOf(Node* child) {
    const auto& children = of(of(child).parent).children;
    return static_cast<std::size_t>(std::find(children.begin(), children.end(), child) - children.begin());
  }

  void takeOut(Node* child) {
    Node* parent = of(child).parent;
    if (!parent) return;
    auto& children = of(parent).children;
    children.erase(children.begin() + static_cast<std::ptrdiff_t>(indexOf(child)));
    of(child).parent = nullptr;
    if (children.empty()) of(parent).tampered = false;
  }

  void kill(Node* node) {
    takeOut(node);
    auto children = of(node).children;
    for (auto it = children.rbegin(); it != children.rend(); ++it) {
      takeOut(*it);
      if (of(*it).count < 1) kill(*it);
    }
    model_.erase(node);
    all_.erase(std::find(all_.begin(), all_.end(), node));
  }

  void changeCounts(Node* top, int by, bool deep) {
    of(top).count += by;
    if (!deep) return;
    for (Node* child : of(top).children) changeCounts(child, by, true);
  }

  void release(Node* node, bool deep) {
    changeCounts(node, -1, deep);
    const int left = of(node).count;
    EXPECT_EQ(node->releaseRef(deep), std::max(left, 0));
    if (left <= 0) kill(node);
  }

  void recordClone(Node* source, Node* clone) {
    addNode(clone, 0);
    Node* child = clone->getFirstChild();
    for (Node* from : of(source).children) {
      ASSERT_TRUE(child);
      recordClone(from, child);
      of(child).parent = clone;
      model_[clone].children.push_back(child);
      child = child->getNextSibling();
    }
    EXPECT_FALSE(child);
  }

  void create() {
    Node* node = oneIn(3) ? static_cast<Node*>(new ProbeText(doc_)) : new ProbeElement("X", doc_);
    node->addRef(false);
    addNode(node, 1);
  }

  void step();
  void treeStep(Node* a, Node* b);
  void editText(Text* text);
  void editElement(Element* element);
  void check();

  std::mt19937 random_;
  std::map<Node*, Shape> model_;
  std::vector<Node*> all_;
  Node* root_ = nullptr;
};

void Mutator::treeStep(Node* a, Node* b) {
  // Only elements get children, as in a page.
  if (a->getNodeType() != Node::NODE_ELEMENT) a = root_;
  Node* child = oneIn(8) ? b : anyChildOf(a);
  auto& children = of(a).children;
  switch (below(12)) {
    case 0:
    case 1:
      insertAt(a, b, children.size());
      EXPECT_EQ(a->insertLast(b), b);
      break;
    case 2:
      insertAt(a, b, 0);
      EXPECT_EQ(a->insertFirst(b), b);
      break;
    case 3:
      if (!child) {
        insertAt(a, b, children.size());
      } else if (of(child).parent == a) {
        insertAt(a, b, indexOf(child));
      }
      EXPECT_EQ(a->insertBefore(b, child), b);
      break;
    case 4:
      if (!child) {
        insertAt(a, b, 0);
      } else if (of(child).parent == a) {
        insertAt(a, b, indexOf(child) + 1);
      }
      EXPECT_EQ(a->insertAfter(b, child), b);
      break;
    case 5:
    case 6:
      if (child && of(child).parent == a) takeOut(child);
      EXPECT_EQ(a->removeChild(child), child);
      break;
    case 7: {
      Node* last = anyChildOf(a);
      Node* run = a->removeChildren(child, last);
      if (children.empty() || (child && of(child).parent != a)) {
        EXPECT_FALSE(run);
        break;
      }
      std::size_t from = child ? indexOf(child) : 0;
      std::size_t to = indexOf(last);
      if (from > to) std::swap(from, to);
      const std::vector<Node*> range(children.begin() + static_cast<std::ptrdiff_t>(from),
                                     children.begin() + static_cast<std::ptrdiff_t>(to) + 1);
      for (Node* n : range) takeOut(n);
      for (Node* n : range) {
        EXPECT_EQ(run, n);
        run = run->getNextSibling();
      }
      EXPECT_FALSE(run);
      break;
    }
    case 8:
      if (child && child != b && of(child).parent == a) {
        takeOut(child);
        if (!children.empty()) of(a).tampered = true;
      }
      if (!child || child == b || of(child).parent == a || !of(child).parent) {
        EXPECT_EQ(a->replaceChild(child, b), child);
      }
      break;
    case 9:
      if (of(b).parent) of(of(b).parent).tampered = true;
      b->isolate(below(4));
      break;
    default: {
      NodeIterator children1 = a->getChildNodes();
      const NodeIterator copy = children1;
      if (Node* wanted = copy.getCurrent()) {
        EXPECT_EQ(wanted, children.front());
      }
      if (child && of(child).parent == a) takeOut(child);
      a->removeChild(child);
      EXPECT_EQ(children1.getLength(), static_cast<int>(of(a).children.size()));
    }
  }
}

void Mutator::editText(Text* text) {
  static const char* const kPieces[] = {"",     " ",     "a",    "<&", "x  y", "\x1b\xa0", "\x1c\x1d\x20\x26",
                                        "\x1b", " \n\t", "&amp;"};
  const char* piece = kPieces[below(std::size(kPieces))];
  const int offset = static_cast<int>(below(12)) - 2;
  const int count = static_cast<int>(below(8)) - 1;
  const bool moveCursor = oneIn(2);
  switch (below(9)) {
    case 0:
      text->insert(offset, piece, moveCursor, static_cast<Text::SpaceMode>(below(3)));
      break;
    case 1:
      text->Delete(offset, count, moveCursor);
      break;
    case 2: {
      const auto size = text->getData().size();
      const int gone = text->deleteChar(offset, oneIn(2));
      EXPECT_EQ(text->getData().size() + static_cast<unsigned>(gone), size);
      break;
    }
    case 3:
      text->replace(offset, count, piece, moveCursor);
      break;
    case 4:
      text->setRawData(piece);
      break;
    case 5:
      text->setData(piece, oneIn(2));
      break;
    case 6:
      EXPECT_LE(text->compact(), 0);
      break;
    case 7: {
      auto* wrapper = new ProbeElement("B", doc_);
      wrapper->addRef(false);
      if (text->splice(wrapper, offset, count, moveCursor) >= 0) {
        Node* tail = wrapper->getNextSibling();
        doc_->deleteNodes(tail);
        if (wrapper->getFirstChild()) doc_->deleteNodes(wrapper->getFirstChild());
      }
      doc_->deleteNodes(wrapper);
      break;
    }
    default:
      text->setTextType(static_cast<Text::TextType>(below(3)));
      doc_->setSourceCursor(text, static_cast<int>(below(20)));
  }
  doc_->convertOffsetLayout2Source(text, offset);
  doc_->convertOffsetSource2Layout(text, offset);
}

void Mutator::editElement(Element* element) {
  static const char* const kNames[] = {"A", "B", "id"};
  const char* name = kNames[below(std::size(kNames))];
  switch (below(4)) {
    case 0:
      element->setAttribute(name, oneIn(2) ? "" : "a\"b'c", oneIn(2));
      break;
    case 1:
      element->deleteAttribute(name);
      break;
    case 2:
      element->setBeginTagDirty();
      EXPECT_EQ(element->getNumAttributes(), element->getAttributes() ? element->getAttributes()->getLength() : 0);
      break;
    default:
      element->clearUpdateFlag();
  }
}

void Mutator::step() {
  Node* a = anyNode();
  Node* b = anyNode();
  if (all_.size() < 8 || (all_.size() < 30 && oneIn(5))) create();
  switch (below(20)) {
    case 0:
      if (b != root_) release(b, oneIn(2));
      break;
    case 1: {
      const bool deep = oneIn(3);
      changeCounts(b, 1, deep);
      EXPECT_EQ(b->addRef(deep), of(b).count);
      break;
    }
    case 2:
      if (b == root_ || of(b).count > 1) break;
      changeCounts(b, -1, true);
      takeOut(b);
      doc_->deleteNodes(b);
      kill(b);
      break;
    case 3:
      if (b == root_ || all_.size() > 30) break;
      recordClone(b, b->makeClone(true));
      break;
    case 4:
      // A host that deletes by hand, against all advice.
      if (b == root_) break;
      kill(b);
      delete b;
      break;
    case 5:
      doc_->setLayoutCursor(a, static_cast<int>(below(4)));
      doc_->select(a, below(3), b, below(3), oneIn(3));
      doc_->isSelected(anyNode());
      break;
    case 6:
    case 7:
      if (b->getNodeType() == Node::NODE_TEXT) {
        editText(static_cast<Text*>(b));
      } else {
        editElement(static_cast<Element*>(b));
      }
      break;
    case 8:
      doc_->isEmptyNode(b, oneIn(2));
      root_->compare(a, b);
      break;
    default:
      if (b != root_) treeStep(a, b);
  }
}

void Mutator::check() {
  // Cursor and selections stand on living nodes.
  Node* cursor = nullptr;
  doc_->getLayoutCursor(&cursor, nullptr);
  ASSERT_TRUE(!cursor || cursor == root_ || live.count(cursor));
  for (const Document::_selection* s : doc_->getSelections()) {
    for (Node* end : {s->startNode, s->endNode}) ASSERT_TRUE(end == root_ || live.count(end));
  }
  ASSERT_EQ(live.size() + 1, all_.size());
  for (Node* node : all_) {
    const Shape& shape = of(node);
    ASSERT_EQ(node->getParentNode(), shape.parent);
    ASSERT_EQ(node->getFirstChild(), shape.children.empty() ? nullptr : shape.children.front());
    ASSERT_EQ(node->getLastChild(), shape.children.empty() ? nullptr : shape.children.back());
    Node* before = nullptr;
    for (std::size_t i = 0; i < shape.children.size(); ++i) {
      Node* child = shape.children[i];
      Node* after = i + 1 < shape.children.size() ? shape.children[i + 1] : nullptr;
      ASSERT_EQ(NodeAccess::childAfter(child), after);
      ASSERT_EQ(NodeAccess::childBefore(child), before);
      if (!shape.tampered) {
        ASSERT_EQ(child->getNextSibling(), after);
        ASSERT_EQ(child->getPreviousSibling(), before);
      }
      before = child;
    }
    // Wherever a link leads, a live node stands there.
    for (Node* other : {node->getNextSibling(), node->getPreviousSibling()}) {
      ASSERT_TRUE(!other || other == root_ || live.count(other));
    }
  }
  if (oneIn(4)) {
    Node* node = anyNode();
    const Shape& shape = of(node);
    ASSERT_EQ(node->getNumOfChildNodes(), shape.children.size());
    for (std::size_t i = 0; i < shape.children.size(); ++i) {
      ASSERT_EQ(node->getChildNode(static_cast<int>(i)), shape.children[i]);
      ASSERT_EQ(node->getChildIndex(shape.children[i]), static_cast<int>(i));
    }
  }
}

TEST_P(Mutator, LeavesNoLinkToTheDead) {
  random_.seed(GetParam());
  live.clear();
  root_ = load("");
  addNode(root_, 1);
  for (int i = 0; i < 6000; ++i) {
    step();
    check();
    if (HasFatalFailure()) FAIL() << "step " << i;
    if (i % 64 == 0) source();
  }
  while (of(root_).count-- > 1) root_->releaseRef(false);
  // What is left goes in a random order.
  while (!live.empty()) {
    Node* node = *std::next(live.begin(), static_cast<std::ptrdiff_t>(below(live.size())));
    while (of(node).count > 1) {
      node->releaseRef(false);
      --of(node).count;
    }
    release(node, false);
    check();
    if (HasFatalFailure()) FAIL();
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, Mutator, testing::Range(1u, 9u));

}  // namespace
}  // namespace zeldom40
