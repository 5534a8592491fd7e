// Random calls on small trees, also those that no host should make: counts of its own, deletes by hand, cut links.
#include <algorithm>
#include <random>
#include <vector>

#include "dom/tree/NodeAccess.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

// Nodes that tell when they come and go.
std::vector<Node*> live;

template <class Base>
class Probe : public Base {
 public:
  template <class... Arguments>
  explicit Probe(Arguments... arguments) : Base(arguments...) {
    live.push_back(this);
  }
  ~Probe() override { live.erase(std::find(live.begin(), live.end(), this)); }
};

class Mutator : public PageTest, public testing::WithParamInterface<unsigned> {
 protected:
  unsigned below(std::size_t limit) { return static_cast<unsigned>(random_() % limit); }
  bool oneIn(unsigned n) { return below(n) == 0; }
  Node* anyNode() { return live[below(live.size())]; }
  Node* anyChildOf(Node* node) {
    return node->hasChildNodes() ? node->getChildNode(static_cast<int>(below(node->getNumOfChildNodes()))) : nullptr;
  }
  bool isThere(Node* node) { return !node || node == root_ || std::find(live.begin(), live.end(), node) != live.end(); }

  void treeStep(Node* a, Node* b) {
    Node* child = oneIn(8) ? b : anyChildOf(a);
    switch (below(8)) {
      case 0:
        a->insertLast(b);
        break;
      case 1:
        a->insertFirst(b);
        break;
      case 2:
        a->insertBefore(b, child);
        break;
      case 3:
        a->insertAfter(b, child);
        break;
      case 4:
        a->removeChild(child);
        break;
      case 5:
        a->removeChildren(child, anyChildOf(a));
        break;
      case 6:
        a->replaceChild(child, b);
        break;
      default:
        b->isolate(below(4));
    }
  }

  void step() {
    if (live.size() < 8 || (live.size() < 30 && oneIn(5))) {
      Node* made = oneIn(3) ? static_cast<Node*>(new Probe<Text>(doc_)) : new Probe<Element>("X", doc_);
      made->addRef(false);
    }
    Node* a = oneIn(4) ? root_ : anyNode();
    Node* b = anyNode();
    switch (below(14)) {
      case 0:
        b->releaseRef(oneIn(2));
        break;
      case 1:
        b->addRef(oneIn(3));
        break;
      case 2:
        if (NodeAccess::refCount(b) <= 1) doc_->deleteNodes(b);
        break;
      case 3:
        delete b;
        break;
      case 4:
        doc_->setLayoutCursor(a, static_cast<int>(below(4)));
        doc_->select(a, below(3), b, below(3), oneIn(3));
        break;
      default:
        // Only elements get children, as in a page.
        treeStep(a->getNodeType() == Node::NODE_ELEMENT ? a : root_, b);
    }
  }

  // Cursor, selections and links stand on living nodes; children and parents know one another.
  void check() {
    Node* cursor = nullptr;
    doc_->getLayoutCursor(&cursor, nullptr);
    ASSERT_TRUE(isThere(cursor));
    for (const Document::_selection* s : doc_->getSelections()) {
      ASSERT_TRUE(isThere(s->startNode) && isThere(s->endNode));
    }
    std::vector<Node*> all = live;
    all.push_back(root_);
    for (Node* node : all) {
      ASSERT_TRUE(isThere(node->getNextSibling()) && isThere(node->getPreviousSibling()));
      ASSERT_TRUE(isThere(node->getParentNode()) && isThere(node->getFirstChild()));
      unsigned count = 0;
      Node* before = nullptr;
      for (Node* child = node->getFirstChild(); child; child = NodeAccess::childAfter(child), ++count) {
        ASSERT_TRUE(isThere(child));
        ASSERT_EQ(child->getParentNode(), node);
        ASSERT_EQ(NodeAccess::childBefore(child), before);
        before = child;
      }
      ASSERT_EQ(node->getLastChild(), before);
      ASSERT_EQ(node->getNumOfChildNodes(), count);
    }
  }

  std::mt19937 random_;
  Node* root_ = nullptr;
};

TEST_P(Mutator, LeavesNoLinkToTheDead) {
  random_.seed(GetParam());
  root_ = load("");
  for (int i = 0; i < 6000; ++i) {
    step();
    check();
    if (HasFatalFailure()) FAIL() << "step " << i;
    if (i % 64 == 0) source();
  }
  while (!live.empty()) {
    Node* node = anyNode();
    while (NodeAccess::refCount(node) > 1) node->releaseRef(false);
    node->releaseRef(false);
    check();
    if (HasFatalFailure()) FAIL();
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, Mutator, testing::Range(1u, 9u));

}  // namespace
}  // namespace zeldom40
