// Child lists, links, counts, flags and questions of the node base.
#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "dom/tree/ChildIndex.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

// Elements named by letters, outside of the document's tree.
class NodeTest : public PageTest {
 protected:
  Element* make(const char* name) { return doc_->createElement(name); }
  // A parent with one child per letter.
  Element* family(const char* parent, const std::string& children) {
    Element* top = make(parent);
    for (char c : children) top->insertLast(make(std::string(1, c).c_str()));
    return top;
  }
  // A detached run with one node per letter.
  Node* run(const std::string& names) {
    Element* holder = family("HOLDER", names);
    Node* first = holder->removeChildren(nullptr, nullptr);
    holder->releaseRef(false);
    return first;
  }
  static Node* child(Node* parent, const std::string& name) {
    for (Node* n = parent->getFirstChild(); n; n = n->getNextSibling()) {
      if (n->getName() == name) return n;
    }
    return nullptr;
  }
  // The children by index, by the links forward and by the links backward.
  static std::string list(Node* parent) {
    std::string byIndex;
    for (unsigned i = 0; i < parent->getNumOfChildNodes(); ++i) {
      Node* n = parent->getChildNode(static_cast<int>(i));
      EXPECT_EQ(n->getParentNode(), parent);
      EXPECT_EQ(parent->getChildIndex(n), static_cast<int>(i));
      byIndex += n->getName();
    }
    std::string forward;
    for (Node* n = parent->getFirstChild(); n; n = n->getNextSibling()) forward += n->getName();
    std::string backward;
    for (Node* n = parent->getLastChild(); n; n = n->getPreviousSibling()) backward.insert(0, n->getName());
    EXPECT_EQ(forward, byIndex);
    EXPECT_EQ(backward, byIndex);
    return byIndex;
  }
  static std::string chain(Node* first) {
    std::string names;
    for (; first; first = first->getNextSibling()) names += first->getName();
    return names;
  }
};

TEST_F(NodeTest, InsertsARunWhole) {
  using Insert = std::function<Node*(Node * parent, Node * run)>;
  const struct {
    const char* what;
    const char* children;
    Insert insert;
    const char* result;
  } cases[] = {
      {"last", "ABC", [](Node* p, Node* r) { return p->insertLast(r); }, "ABCXY"},
      {"first", "ABC", [](Node* p, Node* r) { return p->insertFirst(r); }, "XYABC"},
      {"before B", "ABC", [](Node* p, Node* r) { return p->insertBefore(r, child(p, "B")); }, "AXYBC"},
      {"after B", "ABC", [](Node* p, Node* r) { return p->insertAfter(r, child(p, "B")); }, "ABXYC"},
      {"before nothing", "ABC", [](Node* p, Node* r) { return p->insertBefore(r, nullptr); }, "ABCXY"},
      {"after nothing", "ABC", [](Node* p, Node* r) { return p->insertAfter(r, nullptr); }, "XYABC"},
      {"before no child", "ABC", [](Node* p, Node* r) { return p->insertBefore(r, p); }, "ABC"},
  };
  // A list that was asked for an index before is kept in step, one that was not is made afterwards.
  for (const bool listed : {false, true}) {
    for (const auto& c : cases) {
      SCOPED_TRACE(c.what);
      Element* parent = family("P", c.children);
      if (listed) list(parent);
      Node* r = run("XY");
      EXPECT_EQ(c.insert(parent, r), r);
      EXPECT_EQ(list(parent), c.result);
      if (!r->getParentNode()) {
        EXPECT_EQ(chain(r), "XY");
        parent->insertLast(r);
      }
      parent->releaseRef(true);
    }
  }
}

TEST_F(NodeTest, InsertsNeitherAttachedNodesNorAncestors) {
  Element* a = family("A", "BC");
  Node* b = a->getFirstChild();
  Node* c = a->getLastChild();
  EXPECT_EQ(c->insertLast(nullptr), nullptr);
  EXPECT_EQ(c->insertLast(b), b);
  EXPECT_EQ(a->insertFirst(c), c);
  EXPECT_EQ(b->insertLast(a), a);
  EXPECT_EQ(a->insertLast(a), a);
  EXPECT_EQ(dumpTree(a), "A(B C)");
  // A run ends before the node that holds the new parent.
  Node* r = run("XY");
  Node* y = r->getNextSibling();
  y->insertLast(make("Z"));
  y->getFirstChild()->insertLast(r);
  EXPECT_EQ(dumpTree(y), "Y(Z(X))");
  y->releaseRef(true);
  a->releaseRef(true);
}

TEST_F(NodeTest, DetachesARange) {
  const struct {
    const char* first;
    const char* last;
    const char* run;
    const char* left;
  } cases[] = {
      {"B", "C", "BC", "AD"}, {"C", "B", "BC", "AD"}, {"A", "A", "A", "BCD"}, {"", "B", "AB", "CD"},
      {"", "", "ABCD", ""},   {"Q", "B", "", "ABCD"}, {"B", "Q", "", "ABCD"},
  };
  Element* stranger = make("Q");
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.first) + " to " + c.last);
    Element* parent = family("P", "ABCD");
    auto named = [&](const std::string& name) {
      return name == "Q" ? stranger : name.empty() ? nullptr : child(parent, name);
    };
    Node* r = parent->removeChildren(named(c.first), named(c.last));
    EXPECT_EQ(chain(r), c.run);
    EXPECT_EQ(list(parent), c.left);
    for (Node* n = r; n; n = n->getNextSibling()) EXPECT_EQ(n->getParentNode(), nullptr);
    parent->insertLast(r);
    parent->releaseRef(true);
  }
  stranger->releaseRef(true);
}

TEST_F(NodeTest, RemovingAStrangerLeavesItsListAlone) {
  Element* p = family("P", "ABC");
  Element* other = make("O");
  Node* b = child(p, "B");
  p->clearUpdateFlag();
  EXPECT_EQ(other->removeChild(b), b);
  EXPECT_EQ(list(p), "ABC");
  EXPECT_EQ(dumpTree(p, kDumpFlags), "P(A B C)");
  p->releaseRef(true);
  other->releaseRef(true);
}

TEST_F(NodeTest, RemovingOutsideThePageMovesNoCursor) {
  load("<DIV><B>a</B><I>b</I></DIV>");
  Node* div = find("DIV");
  doc_->setLayoutCursor(div, 2);
  for (const int offset : {1, 1}) {
    div->removeChild(div->getFirstChild())->releaseRef(true);
    int now = 0;
    doc_->getLayoutCursor(nullptr, &now);
    EXPECT_EQ(now, offset);
    if (div->getParentNode()) div->getParentNode()->removeChild(div);
  }
  div->releaseRef(true);
}

TEST_F(NodeTest, ReplacingLeavesTheNewNodeBesideTheList) {
  Element* p = family("P", "ABC");
  Node* b = child(p, "B");
  Element* x = make("X");
  EXPECT_EQ(p->replaceChild(b, x), b);
  EXPECT_EQ(b->getNextSibling(), nullptr);
  EXPECT_EQ(x->getParentNode(), nullptr);
  EXPECT_EQ(chain(p->getFirstChild()), "AXC");
  EXPECT_EQ(p->getNumOfChildNodes(), 2u);
  EXPECT_EQ(p->getChildIndex(x), -1);
  // Neither clones nor counts nor writing meet the stray.
  Node* clone = p->makeClone(true);
  EXPECT_EQ(list(clone), "AC");
  clone->addRef(true);
  clone->releaseRef(true);
  EXPECT_EQ(source(p).find('X'), std::string::npos);

  // An insertion takes it in, and not the attached siblings that it points to.
  p->insertLast(x);
  EXPECT_EQ(list(p), "ACX");

  // A stray that dies gives its neighbours back to one another.
  EXPECT_EQ(p->replaceChild(child(p, "C"), b)->releaseRef(true), 0);
  EXPECT_EQ(chain(p->getFirstChild()), "ABX");
  b->releaseRef(true);
  EXPECT_EQ(list(p), "AX");
  p->releaseRef(true);
}

TEST_F(NodeTest, AListThatLostItsLinksIsStillWhole) {
  const struct {
    unsigned long which;
    const char* forwardFromA;
    const char* backwardFromC;
  } cases[] = {
      {Node::ISOLATE_PREV, "ABC", "C B"}, {Node::ISOLATE_NEXT, "AB", "CBA"}, {Node::ISOLATE_SIBLINGS, "AB", "CB"}};
  for (const auto& c : cases) {
    Element* p = family("P", "ABC");
    Node* b = child(p, "B");
    p->clearUpdateFlag();
    b->isolate(c.which);
    EXPECT_EQ(dumpNode(b, kDumpFlags), "B");
    EXPECT_EQ(chain(p->getFirstChild()), c.forwardFromA);
    EXPECT_EQ(p->getNumOfChildNodes(), 3u);
    Node* clone = p->makeClone(true);
    EXPECT_EQ(list(clone), "ABC");
    clone->addRef(true);
    clone->releaseRef(true);
    // A place between two that do not know one another, and the end of both.
    p->insertBefore(make("X"), b);
    p->insertAfter(make("Y"), b);
    EXPECT_EQ(p->getChildIndex(b), 2);
    p->removeChild(b)->releaseRef(true);
    EXPECT_EQ(p->getNumOfChildNodes(), 4u);
    p->releaseRef(true);
  }
}

// Their room for children holds what they are made of as long as they have none.
TEST_F(NodeTest, TextsAndCommentsKeepTheirDataBesideChildren) {
  load("<P>one&amp;<!--two--></P>");
  Node* const text = find("P")->getFirstChild();
  Node* const comment = text->getNextSibling();
  const auto dataOf = [](Node* node) {
    return node->getNodeType() == Node::NODE_TEXT
               ? static_cast<Text*>(node)->getData() + static_cast<Text*>(node)->getRawData()
               : static_cast<Comment*>(node)->getData() + static_cast<Comment*>(node)->getRawData();
  };
  for (Node* leaf : {text, comment, text->makeClone(true), comment->makeClone(true)}) {
    const std::string data = leaf == text || leaf == comment ? std::string() : dataOf(leaf);
    EXPECT_EQ(list(leaf), "");
    EXPECT_EQ(leaf->getLastChild(), nullptr);
    leaf->insertLast(make("B"));
    leaf->insertFirst(make("A"));
    NodeIterator live = leaf->getChildNodes();
    leaf->insertLast(run("CD"));
    EXPECT_EQ(live.getLength(), 4);
    EXPECT_EQ(list(leaf), "ABCD");
    leaf->removeChild(child(leaf, "D"))->releaseRef(true);
    leaf->removeChild(child(leaf, "A"))->releaseRef(true);
    EXPECT_EQ(list(leaf), "BC");
    if (!data.empty()) {
      EXPECT_EQ(dataOf(leaf), data);
    }
    // The copy has the data alone.
    Node* copy = leaf->makeClone(true);
    EXPECT_EQ(list(copy), "");
    EXPECT_EQ(dataOf(copy), dataOf(leaf));
    for (Node* node : {copy, leaf}) {
      if (node->getParentNode()) continue;
      node->addRef(false);
      node->releaseRef(true);
    }
  }
  EXPECT_EQ(dataOf(text), "one\x1B&one&amp;");
  EXPECT_EQ(dataOf(comment), "--two--<!--two-->");
}

// Equal nodes share what they have in common; an edit of one is none of the others'.
TEST_F(NodeTest, NodesOfOneKindChangeAlone) {
  load("<P ID=a>x<P ID=b>x<P ID=c>x");
  auto* const a = static_cast<Element*>(find("P"));
  Node* const b = a->getNextSibling();
  a->setName("Q");
  a->getFirstChild()->setName("WORD");
  EXPECT_EQ(b->getName(), "P");
  EXPECT_EQ(b->getFirstChild()->getName(), "TEXT");
  EXPECT_EQ(a->getRawBeginTag(), "<P ID=a>");
  EXPECT_STREQ(a->getAttributeValue("ID"), "a");
  a->setName("P");
  b->setDocument(nullptr);
  EXPECT_EQ(a->getDocument(), doc_);
  EXPECT_EQ(b->getNextSibling()->getDocument(), doc_);
  EXPECT_EQ(b->getFirstChild()->getDocument(), doc_);
  EXPECT_EQ(static_cast<Element*>(b)->getRawBeginTag(), "<P ID=b>");
  EXPECT_NE(static_cast<Element*>(b)->getElementDefinition(), nullptr);
  b->setDocument(doc_);
  Element* const copy = static_cast<Element*>(b->makeClone(true));
  copy->addRef(true);
  dropDocument();
  // What outlives the page keeps its bytes.
  EXPECT_EQ(copy->getRawBeginTag(), "<P ID=b>");
  EXPECT_EQ(static_cast<Text*>(copy->getFirstChild())->getRawData(), "x");
  copy->releaseRef(true);
}

// --- counts ----------------------------------------------------------------------------------------------------------

TEST_F(NodeTest, CountsGuardWhatSomebodyElseHolds) {
  Element* top = family("T", "AB");
  Node* a = top->getFirstChild();
  a->insertLast(make("C"));
  EXPECT_EQ(a->addRef(false), 2);
  EXPECT_EQ(top->addRef(true), 2);
  EXPECT_EQ(top->dropRef(true), 1);
  EXPECT_EQ(top->releaseRef(true), 0);
  // The survivor stands alone, with its own children, whose counts the release has taken.
  EXPECT_EQ(a->getParentNode(), nullptr);
  EXPECT_EQ(a->getNextSibling(), nullptr);
  EXPECT_TRUE(a->getUpdateFlag() & Node::UPDATE_REMOVED);
  ASSERT_EQ(list(a), "C");
  EXPECT_EQ(a->getFirstChild()->addRef(false), 1);
  EXPECT_EQ(a->releaseRef(true), 0);
}

TEST_F(NodeTest, ReleasingAnAttachedNodeTakesItOut) {
  Element* p = family("P", "ABC");
  EXPECT_EQ(child(p, "B")->releaseRef(true), 0);
  EXPECT_EQ(list(p), "AC");
  EXPECT_EQ(child(p, "A")->dropRef(false), 0);  // nothing goes, even at zero
  EXPECT_EQ(list(p), "AC");
  p->releaseRef(true);
}

class Witness : public Element {
 public:
  Witness(const char* name, std::string* log) : Element(name, nullptr), log_(log) { addRef(false); }
  ~Witness() override { *log_ += getName(); }

 private:
  std::string* log_;
};

TEST_F(NodeTest, SubtreesDieFromTheTopAndTheLastChild) {
  std::string log;
  auto* a = new Witness("A", &log);
  for (const char* name : {"B", "C", "D"}) a->insertLast(new Witness(name, &log));
  a->getFirstChild()->insertLast(new Witness("E", &log));
  a->getChildNode(1)->insertLast(new Witness("F", &log));
  a->getChildNode(1)->insertLast(new Witness("G", &log));
  a->releaseRef(true);
  EXPECT_EQ(log, "ADCGFBE");
}

TEST_F(NodeTest, AHeldNodeOutlivesItsDocument) {
  load("<P>a<B>b</B></P>");
  Node* p = find("P");
  p->addRef(false);
  Node* b = find("B");
  b->addRef(false);
  dropDocument();
  EXPECT_EQ(b->releaseRef(false), 0);
  EXPECT_EQ(p->getNumOfChildNodes(), 1u);
  EXPECT_EQ(p->releaseRef(false), 0);
}

TEST_F(NodeTest, DepthAndWidthCostNoStackAndNoSearch) {
  constexpr int kMany = 200000;
  auto* top = new Element("A", nullptr);
  Node* deep = top;
  for (int i = 0; i < kMany; ++i) deep = deep->insertLast(new Element("A", nullptr));
  for (int i = 0; i < kMany; ++i) top->insertFirst(new Element("B", nullptr));
  top->addRef(true);
  Node* clone = top->makeClone(true);
  clone->addRef(true);
  EXPECT_EQ(clone->getNumOfChildNodes(), kMany + 1u);
  EXPECT_EQ(top->compare(deep, top->getFirstChild()), 1);
  EXPECT_EQ(doc_->getSourceBufLen(clone, Document::SOURCE_ALL, false), 0u);
  clone->setError(ERR_ELEMENT_UNKNOWN);
  clone->clearUpdateFlag();
  clone->releaseRef(true);
  // Also where the list alone knows the order.
  top->getLastChild()->isolate(Node::ISOLATE_PREV);
  while (top->hasChildNodes()) top->getLastChild()->releaseRef(true);
  top->releaseRef(true);
}

// --- flags and errors ------------------------------------------------------------------------------------------------

constexpr unsigned long kChild = Node::UPDATE_CHILD_MODIFIED;

TEST_F(NodeTest, ChangesRiseToTheRoot) {
  const struct {
    const char* what;
    std::function<void(NodeTest*, Node*, Node*)> change;  // with B and its child C
    const char* flags;
  } cases[] = {
      {"text flag", [](NodeTest*, Node*, Node* c) { c->setUpdateFlag(Node::UPDATE_CONTENT_MODIFIED); },
       "A^1(B^1(C^2 D) E)"},
      {"sibling flag stays", [](NodeTest*, Node*, Node* c) { c->setUpdateFlag(Node::UPDATE_SIBLING_CHANGED); },
       "A(B(C^400 D) E)"},
      {"an ancestor that knows stops it",
       [](NodeTest*, Node* b, Node* c) {
         b->setUpdateFlag(kChild);
         b->getParentNode()->resetUpdateFlag(~0ul);
         c->setUpdateFlag(Node::UPDATE_STYLE_CHANGED);
       },
       "A(B^1(C^200 D) E)"},
      {"a child leaves", [](NodeTest*, Node* b, Node* c) { b->removeChild(c); }, "A^1(B^40(D^400) E)"},
      {"a child is added",
       [](NodeTest*, Node* b, Node*) {
         auto* x = new Element("X", nullptr);
         x->clearUpdateFlag();
         b->insertLast(x);
       },
       "A^1(B^1(C D^400 X^410) E)"},
      {"a child is added to a node that is new itself",
       [](NodeTest*, Node* b, Node*) {
         b->setUpdateFlag(Node::UPDATE_ADDED);
         b->getParentNode()->resetUpdateFlag(~0ul);
         b->insertLast(new Element("X", nullptr));
       },
       "A(B^10(C^10 D^410 X^418) E)"},
      {"a subtree is added whole",
       [](NodeTest*, Node* b, Node*) {
         auto* x = new Element("X", nullptr);
         x->insertLast(new Element("Y", nullptr));
         x->clearUpdateFlag();
         b->insertFirst(x);
       },
       "A^1(B^1(X^410(Y^10) C^400 D) E)"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Element* a = family("A", "BE");
    Node* b = a->getFirstChild();
    Node* first = b->insertLast(make("C"));
    Node* second = b->insertLast(make("D"));
    a->clearUpdateFlag();
    c.change(this, b, first);
    EXPECT_EQ(dumpTree(a, kDumpFlags), c.flags);
    const bool both = !second->getParentNode();
    if (!first->getParentNode()) first->releaseRef(true);
    if (both) second->releaseRef(true);
    a->releaseRef(true);
  }
}

TEST_F(NodeTest, ClearingPassesOverCleanNodes) {
  Element* a = family("A", "B");
  a->getFirstChild()->insertLast(make("C"));
  a->clearUpdateFlag();
  EXPECT_EQ(dumpTree(a, kDumpFlags), "A(B(C))");
  a->getFirstChild()->getFirstChild()->setUpdateFlag(Node::UPDATE_SIBLING_CHANGED);
  a->clearUpdateFlag();
  EXPECT_EQ(dumpTree(a, kDumpFlags), "A(B(C^400))");
  a->releaseRef(true);
}

TEST_F(NodeTest, FlagsOfFreshNodes) {
  Element* a = make("A");
  a->insertLast(make("B"));
  a->insertLast(doc_->createTextNode(nullptr));
  a->setViewable(true);
  a->setError(ERR_ELEMENT_UNKNOWN);
  EXPECT_EQ(dumpTree(a, kDumpFlags), "A^9(B^418 \"\"^418)");
  Node* clone = a->makeClone(true);
  EXPECT_EQ(dumpTree(clone, kDumpFlags | kDumpErrors), "A!200^9(B^418 \"\"^418)");
  EXPECT_EQ(clone->addRef(true), 1);
  clone->releaseRef(true);
  a->releaseRef(true);
  // A flag of a host's own fits into 16 bits.
  Element* own = make("B");
  own->clearUpdateFlag();
  own->setUpdateFlag(0x18000);
  EXPECT_EQ(own->getUpdateFlag(), 0x8000u);
  own->resetUpdateFlag(0x18000);
  EXPECT_EQ(own->getUpdateFlag(), 0u);
  own->releaseRef(true);
}

TEST_F(NodeTest, SevereErrorsReachTheDocumentAlone) {
  load("<P>x</P>");
  Node* p = find("P");
  p->setError(ERR_ELEMENT_INVALID_ATTR);
  EXPECT_EQ(doc_->getError(), ERR_NONE);
  p->setError(ERR_ELEMENT_END_TAG_MISSING);
  EXPECT_EQ(doc_->getError(), ERR_DOC_SEVERE_PARSE_ERROR);
  EXPECT_EQ(p->getParentNode()->getError(), ERR_NONE);
  p->resetError(ERR_ELEMENT_END_TAG_MISSING);
  EXPECT_EQ(p->getError(), ERR_ELEMENT_INVALID_ATTR);
  EXPECT_EQ(doc_->getError(), ERR_DOC_SEVERE_PARSE_ERROR);
  doc_->setError(ERR_DOC_DOCTYPE_MISSING);
  doc_->clearError();
  EXPECT_EQ(doc_->getError(), ERR_NONE);
}

// --- questions -------------------------------------------------------------------------------------------------------

TEST_F(NodeTest, DocumentOrder) {
  Element* a = family("A", "BE");
  Node* b = a->getFirstChild();
  b->insertLast(make("C"));
  b->insertLast(make("D"));
  Element* other = make("O");
  auto named = [&](const std::string& name) -> Node* {
    if (name == "A") return a;
    if (name == "O") return other;
    return name.empty() ? nullptr : name < "C" || name > "D" ? child(a, name) : child(b, name);
  };
  const struct {
    const char* a;
    const char* b;
    int order;
    const char* common;  // the common parent and the branches; "-" for none
  } cases[] = {
      {"C", "D", -1, "BCD"}, {"D", "C", 1, "BDC"}, {"C", "E", -1, "ABE"}, {"E", "D", 1, "AEB"},  {"A", "D", 0, "AAB"},
      {"D", "A", 0, "ABA"},  {"C", "C", 0, "CCC"}, {"B", "D", 0, "BBD"},  {"C", "O", -2, "-AO"}, {"", "C", 0, "---"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.a) + " and " + c.b);
    EXPECT_EQ(a->compare(named(c.a), named(c.b)), c.order);
    Node* aBranch = a;
    Node* bBranch = a;
    Node* common = a->findCommonParent(named(c.a), named(c.b), &aBranch, &bBranch);
    std::string answer;
    for (Node* n : {common, aBranch, bBranch}) answer += n ? n->getName() : "-";
    EXPECT_EQ(answer, c.common);
  }
  EXPECT_TRUE(b->isOffspringOf(b) && b->isOffspringOf(a) && !a->isOffspringOf(b));
  a->releaseRef(true);
  other->releaseRef(true);
}

TEST_F(NodeTest, IndicesOutsideGiveTheLastChild) {
  Element* p = family("P", "ABC");
  for (int index : {-1, 2, 3, 1000}) EXPECT_EQ(p->getChildNode(index), p->getLastChild());
  p->releaseRef(true);
}

// Indices are right and cheap while nodes come and go between the questions; each of these once cost its square.
TEST_F(NodeTest, IndicesStayCheapBetweenEdits) {
  constexpr int kMany = 100000;
  const struct {
    const char* what;
    std::function<void(Element*, int)> step;
  } cases[] = {
      {"ask anywhere, insert there",
       [this](Element* p, int i) {
         Node* child = p->getChildNode(static_cast<int>(i * 7919LL % (i + 1)));
         p->insertBefore(make("X"), child);
       }},
      {"insert in front, ask behind",
       [this](Element* p, int i) {
         p->insertFirst(make("X"));
         EXPECT_EQ(p->getChildNode(i + 1), p->getLastChild());
       }},
      {"insert in the middle, ask for its index",
       [this](Element* p, int i) {
         Node* added = make("X");
         p->insertAfter(added, p->getChildNode(i / 2));
         EXPECT_EQ(p->getChildIndex(added), i == 0 ? 1 : i / 2 + 1);
       }},
      {"insert twice and remove",
       [this](Element* p, int i) {
         p->insertBefore(make("X"), p->getChildNode(i / 3));
         p->insertLast(make("X"));
         p->removeChild(p->getChildNode(i / 3))->releaseRef(false);
       }},
      {"ask once, then edit only",
       [this](Element* p, int i) {
         if (i == 0) p->getChildNode(0);
         p->insertFirst(make("X"));
       }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Element* p = family("P", "A");
    for (int i = 0; i < kMany; ++i) c.step(p, i);
    ASSERT_EQ(p->getNumOfChildNodes(), kMany + 1u);
    int index = 0;
    bool same = true;
    for (Node* child = p->getFirstChild(); child; child = child->getNextSibling(), ++index) {
      same = same && p->getChildNode(index) == child && p->getChildIndex(child) == index;
    }
    EXPECT_TRUE(same);
    p->releaseRef(true);
  }
}

// Against a plain vector.
TEST(ChildIndexTest, IsTheListThatItStandsFor) {
  std::vector<Node*> expected;
  ChildIndex list;
  unsigned state = 7;
  const auto below = [&state](std::size_t n) {
    state = state * 1103515245 + 12345;
    return n ? state / 65536 % n : 0;
  };
  std::uintptr_t next = 0;
  for (int step = 0; step < 20000; ++step) {
    const std::size_t at = below(expected.size() + 1);
    const auto where = expected.begin() + static_cast<std::ptrdiff_t>(at);
    // It grows to some thousands and shrinks again.
    switch (below(step / 2000 % 2 ? 8 : 5)) {
      case 0:
        list.append(reinterpret_cast<Node*>(++next));
        expected.push_back(reinterpret_cast<Node*>(next));
        break;
      case 1: {
        std::vector<Node*> run(below(20) ? 1 + below(5) : 1500);
        for (Node*& node : run) node = reinterpret_cast<Node*>(++next);
        expected.insert(where, run.begin(), run.end());
        list.insert(at, run);
        break;
      }
      case 2:
        if (at < expected.size()) {
          EXPECT_EQ(list[at], expected[at]);
          EXPECT_EQ(list.find(expected[at]), at);
        }
        break;
      default: {
        const std::size_t count = std::min(below(40) ? below(7) : below(3000), expected.size() - at);
        expected.erase(where, where + static_cast<std::ptrdiff_t>(count));
        list.erase(at, count);
        break;
      }
    }
    ASSERT_EQ(list.size(), expected.size());
    if (!expected.empty()) {
      ASSERT_EQ(list.front(), expected.front());
      ASSERT_EQ(list.back(), expected.back());
    }
    if (step % 500) continue;
    for (std::size_t i = 0; i < expected.size(); ++i) ASSERT_EQ(list[i], expected[i]);
    EXPECT_EQ(list.find(reinterpret_cast<Node*>(next + 1)), list.size());
  }
}

// --- iterators -------------------------------------------------------------------------------------------------------

TEST_F(NodeTest, IteratorsWalkALiveList) {
  Element* p = family("P", "ABC");
  NodeIterator it = p->getChildNodes();
  EXPECT_EQ(it.toPrevNode(), nullptr);
  EXPECT_EQ(it.toLastNode()->getName(), "C");
  EXPECT_EQ(it.toNextNode(), nullptr);
  EXPECT_EQ(it.getCurrent()->getName(), "C");
  EXPECT_EQ(it.moveTo(3), nullptr);
  EXPECT_EQ(it.toNth(1)->getName(), "B");
  // An assignment brings the list and not the place in it.
  NodeIterator assigned;
  EXPECT_EQ(assigned.getCurrent(), nullptr);
  assigned = it;
  EXPECT_TRUE(assigned.atFirst());
  it = assigned;
  EXPECT_EQ(it.getCurrent()->getName(), "B");

  p->insertAfter(make("X"), p->getFirstChild());
  EXPECT_EQ(it.getCurrent()->getName(), "X");
  p->releaseRef(true);
  // The node is gone; its list is empty and still there.
  EXPECT_EQ(it.getLength(), 0);
  EXPECT_EQ(it.toFirstNode(), nullptr);
}

TEST_F(NodeTest, SearchResultsAreACopy) {
  load("<B>x</B><B>y</B>");
  NodeIterator results = doc_->getElementsByTagName("B");
  ASSERT_EQ(results.getLength(), 2);
  doc_->deleteNodes(results.getCurrent());
  EXPECT_EQ(results.getLength(), 2);
  EXPECT_EQ(results.toNode(nullptr), nullptr);
}

}  // namespace
}  // namespace zeldom40
