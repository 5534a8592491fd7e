// Child list, reference counts, update flags and tree questions of the node base.
#include "dom/tree/Node.h"

#include <cassert>
#include <typeinfo>

#include "dom/document/Adoption.h"
#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/document/SnapshotChunk.h"
#include "dom/dynamic/MetaDataAccess.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/NodeIterator.h"
#include "dom/tree/NodePool.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

static_assert(alignof(Node) <= NodePool::kGrain);
void* Node::operator new(std::size_t size) { return NodePool::allocate(size); }
void Node::operator delete(void* memory, std::size_t size) { NodePool::release(memory, size); }

Node::Node() { liveNodes::add(); }

Node::Node(NodeType type, Document* document)
    : kind_(NodeKind::find(document, NodeKind::noPage(), NodeKind::noName(), nullptr)),
      links_(isLeafType(type) ? Links{.leaf = {}} : Links{.branch = {}}),
      nodeType_(static_cast<std::uint8_t>(type)) {
  liveNodes::add();
}

Node::Node(const Node& other)
    : kind_(other.kind_),
      links_(other.isLeaf() ? Links{.leaf = {}} : Links{.branch = {}}),
      error_(other.error_),
      nodeType_(other.nodeType_),
      viewFlags_(other.viewFlags_) {
  if (kind_) kind_->addRef();
  liveNodes::add();
}

Node::~Node() {
  // As a rule a dying node has been cut loose.
  if (place_ || leadsChunk_ || hasList_ || getFirstChild() || parent_ || prev_ || next_) NodeAccess::cutLoose(this);
  if (isLeaf()) delete links_.leaf.strings;
  if (kind_) kind_->release();
  liveNodes::remove();
}

void NodeAccess::cutLoose(Node* node) {
  if (node->place_) DocumentAccess::forgetPlace(node);
  if (node->leadsChunk_) SnapshotChunk::forgetHead(node);
  if (node->getFirstChild()) drain(node, /*removed=*/false);
  if (ChildListHolder* list = listOf(node)) {
    list->list.clear();
    node->hasList_ = false;
    setLast(node, nullptr);
    if (--list->count == 0) delete list;
  }
  // Only a host that deletes an attached node by hand comes here; the parent must not keep a dead child.
  if (MetaData* md = MetaDataAccess::ofVisual(node)) md->takeATV();
  if (node->parent_) unlinkChild(node->parent_, node);
  // Who still points here is given a living neighbour.
  Node* left = node->prev_;
  Node* right = node->next_;
  setPrev(node, nullptr);
  setNext(node, nullptr);
  if (left && right) join(left, right);
}

void Node::releaseOwned(bool) {}

// --- reference counts ------------------------------------------------------------------------------------------------

int Node::addRef(bool deep) {
  ++refCount_;
  if (deep) {
    for (Node* n = NodeAccess::nextInSubtree(this, this); n; n = NodeAccess::nextInSubtree(n, this)) ++n->refCount_;
  }
  return refCount_;
}

int Node::dropRef(bool deep) {
  if (deep) {
    for (Node* n = NodeAccess::nextInSubtree(this, this); n; n = NodeAccess::nextInSubtree(n, this)) --n->refCount_;
  }
  return --refCount_;
}

// The tree's own reference of its root goes with the tree alone, for the document would not know.
bool NodeAccess::isLastOfRoot(const Node* node) {
  if (node->refCount_ != 1 || node->parent_ || node->nodeType_ != Node::NODE_ELEMENT) return false;
  Document* const document = node->getDocument();
  return DocumentAccess::isLive(document) && document->getDocumentElement() == node;
}

int Node::releaseRef(bool deep) {
  if (NodeAccess::isLastOfRoot(this)) return refCount_;
  const int left = dropRef(deep);
  if (left > 0) return left;
  if (parent_ && parent_->getDocument() && !DocumentAccess::isLive(parent_->getDocument())) {
    // Both were held longer than their page.
    NodeAccess::detach(this);
  } else if (parent_) {
    parent_->removeChild(this);
  }
  delete this;
  return 0;
}

// The nodes of a subtree that lives on learn that they left their tree, as setUpdateFlag would tell them, and lose a
// reference each. No parent is asked twice. A node that is held below one that nobody holds is on its own from now on:
// that one is no more than memory of what is held around it.
void NodeAccess::tellRemoved(Node* top, bool alsoTop) {
  std::vector<Node*> orphans;
  for (Node* n = top; n; n = nextInSubtree(n, top)) {
    if (n != top || alsoTop) {
      if (n->refCount_ > 0 && !n->edited_) noteEdit(n);
      addFlags(n, Node::UPDATE_REMOVED);
      --n->refCount_;
      if (n != top && n->refCount_ > 0 && n->parent_->refCount_ < 1) orphans.push_back(n);
    }
    if (!n->getFirstChild() || (n->updateFlags_ & Node::UPDATE_CHILD_MODIFIED)) continue;
    if (n->nodeType_ == Node::NODE_META_DATA) {
      n->setUpdateFlag(Node::UPDATE_CHILD_MODIFIED);
    } else {
      addFlags(n, Node::UPDATE_CHILD_MODIFIED);
    }
  }
  for (Node* n : orphans) detachRange(n->parent_, n, n);
}

void NodeAccess::releaseRemoved(Node* top) {
  if (top->refCount_ > 1) {
    tellRemoved(top, /*alsoTop=*/false);
  } else if (top->getFirstChild()) {
    if (ownsMore(top)) releaseOwned(top, /*held=*/true);
    drain(top, /*removed=*/true);
  }
  top->releaseRef(false);
}

// Whether a node of a dying subtree has more than its memory to give back before its children go.
bool NodeAccess::ownsMore(const Node* node) {
  if (node->nodeType_ == Node::NODE_TEXT || node->nodeType_ == Node::NODE_COMMENT) return false;
  return node->nodeType_ != Node::NODE_ELEMENT || ElementAccess::hasExtra(static_cast<const Element*>(node));
}

// Gives a node's children away: the first and the last of a proper chain.
inline std::pair<Node*, Node*> NodeAccess::takeChildren(Node* node) {
  if (node->hasList_ || node->isLeaf()) return takeListedChildren(node);
  const Node::Branch taken = std::exchange(node->links_.branch, {});
  return {taken.first, taken.last};
}

std::pair<Node*, Node*> NodeAccess::takeListedChildren(Node* node) {
  if (node->listIsTruth_) {
    Node* before = nullptr;
    const ChildIndex& list = listOf(node)->list;
    for (std::size_t i = 0; i < list.size(); ++i) {
      setPrev(list[i], nullptr);
      setNext(list[i], nullptr);
    }
    for (std::size_t i = 0; i < list.size(); ++i) {
      Node* child = list[i];
      child->prev_ = before;
      if (before) before->next_ = child;
      before = child;
    }
    node->listIsTruth_ = false;
  }
  if (ChildListHolder* list = listOf(node)) list->list.clear();
  const std::pair ends(node->getFirstChild(), node->getLastChild());
  setFirst(node, nullptr);
  setLast(node, nullptr);
  return ends;
}

// The size of a node that is just what the parser made, an exact Text or Element with its page, its name and at most a
// block of attributes; 0 for any other.
inline std::size_t NodeAccess::sizeOfPlain(const Node* node) {
  if (node->place_ || node->leadsChunk_ || node->hasList_) return 0;
  if (node->nodeType_ == Node::NODE_TEXT) {
    const bool plain = &typeid(*node) == &typeid(Text) && TextAccess::isBare(static_cast<const Text*>(node));
    return plain ? sizeof(Text) : 0;
  }
  if (node->nodeType_ == Node::NODE_ELEMENT) {
    const bool plain = &typeid(*node) == &typeid(Element) && ElementAccess::isBare(static_cast<const Element*>(node));
    return plain ? sizeof(Element) : 0;
  }
  return 0;
}

// Ends a plain node whose children were taken: 50 instructions where the destructors with their questions took 100.
inline void NodeAccess::dismantle(Node* node, std::size_t size) {
  if (node->nodeType_ == Node::NODE_ELEMENT) ElementAccess::releaseBlock(static_cast<Element*>(node));
  if (node->kind_) node->kind_->release();
  liveNodes::remove();
  NodePool::release(node, size);
}

// Destroys the children of a dying node without recursion, in the order that destructors calling one another would
// give: a node's own part first, then its children from the last to the first. The work list is a chain through the
// sibling links with the next victim at its end; a victim's children are hung on that end before it goes. With
// `removed` the nodes have their references still, and those that live on are told.
void NodeAccess::drain(Node* top, bool removed) {
  const int held = removed ? 2 : 1;
  Node* tail = takeChildren(top).second;
  while (tail) {
    Node* victim = tail;
    tail = victim->prev_;
    const std::size_t plainSize = victim->refCount_ < held ? sizeOfPlain(victim) : 0;
    if (plainSize != 0) {
      if (!victim->isLeaf() && victim->links_.branch.first) {
        victim->links_.branch.first->prev_ = tail;
        tail = victim->links_.branch.last;
      }
      dismantle(victim, plainSize);
      continue;
    }
    const bool hadFollower = victim->next_ != nullptr;
    victim->prev_ = nullptr;
    victim->next_ = nullptr;
    victim->parent_ = nullptr;
    if (victim->refCount_ < held) {
      if (ownsMore(victim)) {
        // Its metadata may live on, held by a host.
        if (removed && victim->refCount_ > 0 && !victim->edited_) noteEdit(victim);
        releaseOwned(victim, removed);
      }
      if (victim->getFirstChild()) {
        const auto [first, last] = takeChildren(victim);
        first->prev_ = tail;
        tail = last;
      }
      delete victim;
    } else {
      if (removed) tellRemoved(victim, /*alsoTop=*/true);
      addFlags(victim, Node::UPDATE_REMOVED | (hadFollower ? Node::UPDATE_SIBLING_CHANGED : 0));
    }
  }
}

// --- names, answers of the base --------------------------------------------------------------------------------------

const std::string& Node::getName() const { return NodeAccess::sharedName(this).str(); }
void Node::setName(const char* name) {
  NodeAccess::setName(this, SharedName(name ? std::string_view(name) : std::string_view()));
}
void Node::setName(const std::string& name) { NodeAccess::setName(this, SharedName(name)); }

void Node::setKind(NodeKind* kind) {
  NodeKind* const old = std::exchange(kind_, kind);
  if (old) old->release();
}

void Node::setDocument(Document* document) {
  noteChange();
  setKind(NodeKind::find(document, page(), NodeAccess::sharedName(this), kind_ ? kind_->definition : nullptr));
}

void Node::setPage(const PageRef& page) {
  if (page.get() == this->page().get()) return;
  setKind(NodeKind::find(getDocument(), page, NodeAccess::sharedName(this), kind_ ? kind_->definition : nullptr));
}

void NodeAccess::setName(Node* node, const SharedName& name) {
  node->noteChange();
  node->setKind(
      NodeKind::find(node->getDocument(), node->page(), name, node->kind_ ? node->kind_->definition : nullptr));
}

bool Node::canContain(Node*, Node** blocking, std::vector<Node*>*) {
  if (blocking) *blocking = nullptr;
  return false;
}

bool Node::isEndOmittable() const { return true; }
bool Node::isEmptyTag() const { return true; }

Node* Node::findFirstByName(Node* name, Hash<ElementDefinition>*, std::vector<Node*>*) {
  if (!name) return nullptr;
  for (Node* n = NodeAccess::nextInSubtree(this, this); n; n = NodeAccess::nextInSubtree(n, this)) {
    if (n->getName() == name->getName()) return n;
  }
  return nullptr;
}

// Each node climbs once between two saves: above one that is outdated all are.
void Node::outdate() {
  for (Node* n = this; n && n->saved_; n = n->parent_) n->saved_ = false;
}

// --- errors and update flags -----------------------------------------------------------------------------------------

void Node::setError(unsigned long bits) {
  NodeAccess::addError(this, bits);
  if (getDocument() && (bits & ERR_DOC_SEVERE_PARSE_ERROR)) getDocument()->setError(ERR_DOC_SEVERE_PARSE_ERROR);
}

void Node::setUpdateFlag(unsigned long flag) {
  // The parser's nodes are counted when it is through: what it does to them is no edit.
  if (flag != UPDATE_SIBLING_CHANGED && refCount_ > 0) NodeAccess::noteEdit(this);
  NodeAccess::raiseFlag(this, flag);
}

void NodeAccess::raiseFlag(Node* node, unsigned long flag, bool isBelowFlagged) {
  addFlags(node, flag);
  if (flag == Node::UPDATE_SIBLING_CHANGED) return;
  Node* p = node->parent_;
  if (flag == Node::UPDATE_ADDED) {
    // A parent that is new itself has told its ancestors already.
    if (p && (p->updateFlags_ & Node::UPDATE_ADDED)) p = nullptr;
    // A subtree that is added whole is flagged whole; below a node that has the flag all is flagged.
    Node* n = isBelowFlagged ? nullptr : node->getFirstChild();
    while (n) {
      if (n->updateFlags_ & Node::UPDATE_ADDED) {
        n = nextSkippingChildren(n, node);
      } else {
        n->noteUpdate(Node::UPDATE_ADDED);
        addFlags(n, Node::UPDATE_ADDED);
        n = nextInSubtree(n, node);
      }
    }
  }
  for (; p && !(p->updateFlags_ & Node::UPDATE_CHILD_MODIFIED); p = p->parent_) {
    if (p->nodeType_ == Node::NODE_META_DATA) {
      // The visual that it keeps aside; its element is told.
      p->setUpdateFlag(Node::UPDATE_CHILD_MODIFIED);
      return;
    }
    addFlags(p, Node::UPDATE_CHILD_MODIFIED);
  }
}

void Node::noteUpdate(unsigned long) {}

unsigned long Node::getUpdateFlag() const { return updateFlags_; }

void Node::clearUpdateFlag() {
  if (updateFlags_ == 0) return;
  updateFlags_ = 0;
  Node* n = getFirstChild();
  while (n) {
    if (n->updateFlags_ == 0) {
      n = NodeAccess::nextSkippingChildren(n, this);
    } else {
      n->updateFlags_ = 0;
      n = NodeAccess::nextInSubtree(n, this);
    }
  }
}

// --- cloning ---------------------------------------------------------------------------------------------------------

Node* Node::makeClone(bool deep) const {
  Node* clone = cloneSelf();
  if (!deep) return clone;
  const Node* source = this;
  Node* copy = clone;
  while (true) {
    if (source->getFirstChild() && (source->nodeType_ == NODE_ELEMENT || source->nodeType_ == NODE_NONE)) {
      source = source->getFirstChild();
    } else {
      while (source != this && !NodeAccess::childAfter(source)) {
        source = source->parent_;
        copy = copy->parent_;
      }
      if (source == this) return clone;
      source = NodeAccess::childAfter(source);
      copy = copy->parent_;
    }
    Node* child = source->cloneSelf();
    NodeAccess::adoptClone(copy, child);
    copy = child;
  }
}

Node* Node::cloneSelf() const { return new Node(*this); }

void NodeAccess::adoptClone(Node* parent, Node* child) {
  assert(!parent->listIsTruth_);
  if (parent->getLastChild()) {
    addFlags(parent->getLastChild(), Node::UPDATE_SIBLING_CHANGED);
    addFlags(child, Node::UPDATE_SIBLING_CHANGED);
  }
  attachRestored(parent, child);
  addFlags(child, Node::UPDATE_ADDED);
  addFlags(parent, Node::UPDATE_CHILD_MODIFIED);
}

// --- links and lists -------------------------------------------------------------------------------------------------

const Node::Branch Node::kNoBranch = {nullptr, {nullptr}};

const Node::Branch& Node::branchOfStrings() const { return links_.leaf.strings->children; }

Node* Node::lastOfList() const { return branch().list->last; }

TextStrings& Node::ownStrings() const {
  if (!links_.leaf.strings) links_.leaf.strings = new TextStrings;
  return *links_.leaf.strings;
}

Node::Branch& NodeAccess::ownBranchOfLeaf(const Node* node) { return node->ownStrings().children; }

ChildListHolder* NodeAccess::holder(const Node* node) {
  if (node->hasList_) return node->branch().list;
  auto* holder = new ChildListHolder;
  std::vector<Node*> children;
  for (Node* child = node->getFirstChild(); child; child = child->next_) children.push_back(child);
  holder->list.insert(0, children);
  holder->list.settle();
  holder->last = node->getLastChild();
  ownBranch(node).list = holder;
  node->hasList_ = true;
  return holder;
}

// A change before the end of a list comes. A list that nobody has asked for an index since changes to it took about the
// effort of making it goes: the next question makes it again.
void NodeAccess::tireOfList(Node* parent) {
  constexpr std::size_t kLeastEffort = 64;
  ChildListHolder* list = listOf(parent);
  if (!list || list->count != 1 || parent->listIsTruth_) return;
  if (list->list.effort() < kLeastEffort + list->list.size()) return;
  parent->hasList_ = false;
  setLast(parent, list->last);
  delete list;
}

// From now on the links of the children may tell anything; the list, made while they were still right, decides.
void NodeAccess::trustList(Node* parent) {
  holder(parent);
  parent->listIsTruth_ = true;
}

std::size_t NodeAccess::indexInList(const Node* child) { return listOf(child->parent_)->list.find(child); }

// Two children that know one another are neighbours in the list too, so that only the broken places cost a search.
Node* NodeAccess::childAfterByList(const Node* child) {
  Node* next = child->next_;
  if (next && next->parent_ == child->parent_ && next->prev_ == child) return next;
  if (child == child->parent_->getLastChild()) return nullptr;
  const ChildIndex& list = listOf(child->parent_)->list;
  const std::size_t index = indexInList(child) + 1;
  return index < list.size() ? list[index] : nullptr;
}

Node* NodeAccess::childBeforeByList(const Node* child) {
  Node* prev = child->prev_;
  if (prev && prev->parent_ == child->parent_ && prev->next_ == child) return prev;
  if (child == child->parent_->getFirstChild()) return nullptr;
  const std::size_t index = indexInList(child);
  return index > 0 ? listOf(child->parent_)->list[index - 1] : nullptr;
}

// A link that is overwritten takes its counterpart with it, so that no node points at one that does not know of it
// and could die unnoticed.
void NodeAccess::setNext(Node* node, Node* next) {
  Node* old = node->next_;
  if (old && old != next && old->prev_ == node) old->prev_ = nullptr;
  node->next_ = next;
}

void NodeAccess::setPrev(Node* node, Node* prev) {
  Node* old = node->prev_;
  if (old && old != prev && old->next_ == node) old->next_ = nullptr;
  node->prev_ = prev;
}

void NodeAccess::join(Node* left, Node* right) {
  setNext(left, right);
  setPrev(right, left);
}

void NodeAccess::link(Node* left, Node* right) {
  if (left) {
    setNext(left, right);
    if (right) addFlags(left, Node::UPDATE_SIBLING_CHANGED);
  }
  if (right) {
    setPrev(right, left);
    if (left) addFlags(right, Node::UPDATE_SIBLING_CHANGED);
  }
}

unsigned int Node::getNumOfChildNodes() const {
  if (!hasChildNodes()) return 0;
  return static_cast<unsigned int>(NodeAccess::childList(this).size());
}

NodeIterator Node::getChildNodes() const { return NodeIterator(NodeAccess::holder(this), const_cast<Node*>(this)); }

int Node::getChildIndex(Node* child) {
  if (!child || child->parent_ != this) return -1;
  if (child == getFirstChild()) return 0;
  const ChildIndex& list = NodeAccess::childList(this);
  if (child == getLastChild()) return static_cast<int>(list.size()) - 1;
  const auto index = static_cast<int>(list.find(child));
  // The effort of the question is no reason to give the list up.
  NodeAccess::childList(this);
  return index;
}

Node* Node::getChildNode(int index) {
  if (!hasChildNodes()) return nullptr;
  const ChildIndex& list = NodeAccess::childList(this);
  // KEPT: callers step one past either end and count on getting the last child.
  if (index < 0 || static_cast<std::size_t>(index) >= list.size()) return list.back();
  return list[static_cast<std::size_t>(index)];
}

// --- insertion -------------------------------------------------------------------------------------------------------

// Whether a node may be a child at all: a document holds a tree and stands in none, and metadata that belongs to an
// element is held by that.
bool NodeAccess::isChildKind(Node* node) {
  if (node->nodeType_ == Node::NODE_META_DATA) return !static_cast<MetaData*>(node)->getElement();
  return node->nodeType_ != Node::NODE_NONE || !dynamic_cast<Document*>(node);
}

// Whether `node`, which has no parent, is `parent` or holds it, in a visual too. `top` is the topmost node over
// `parent`, null until it was asked for.
bool NodeAccess::isTopAbove(const Node* node, const Node* parent, const Node*& top) {
  if (!holdsNodes(node)) return node == parent;
  if (!top) {
    top = parent;
    while (const Node* up = above(top)) top = up;
  }
  return node == top;
}

// Whether a node is known to be of its parent's document with all that it holds. A parent without a document is not
// asked what stands around it: to climb for each node of such a tree would cost the square of its depth.
bool NodeAccess::isOfDocument(const Node* node, const Node* parent) {
  return node->getDocument() ? node->getDocument() == parent->getDocument() : !holdsNodes(node);
}

// Children, or a visual.
bool NodeAccess::holdsNodes(const Node* node) {
  return node->getFirstChild() || node->nodeType_ == Node::NODE_META_DATA ||
         (node->nodeType_ == Node::NODE_ELEMENT && ElementAccess::metaData(static_cast<const Element*>(node)));
}

// A call of the library's own brings one node that is known to be no ancestor, and its record is taken care of.
// `left` and `right` are the nodes that the run is linked to; `ref` and `behindRef` give the place in the list (null:
// the end that has no neighbour).
Node* NodeAccess::insertRun(Node* parent, Node* head, Node* left, Node* right, Node* ref, bool behindRef,
                            Insertion how) {
  const bool byHost = how == BY_HOST;
  // A run ends before the first node that has a parent (a stray of replaceChild points into a live list), and before
  // a node that would come to stand below itself.
  if (head->parent_ || head == parent) return head;
  // So does one before a node of another DOM; one of another document becomes one of this.
  const Node* top = nullptr;
  auto isTaken = [&](Node* node) {
    return isChildKind(node) && !isTopAbove(node, parent, top) &&
           (isOfDocument(node, parent) || adoptNodes(node, documentAround(parent)));
  };
  if (byHost && !isTaken(head)) return head;

  if (byHost && parent->getDocument()) parent->getDocument()->recordChange(parent);

  Node* end = head;
  while (how != OF_ONE && how != AGAIN && end->next_ && !end->next_->parent_ && end->next_ != head &&
         (!byHost || isTaken(end->next_))) {
    end = end->next_;
  }

  // Neighbours that a stray run still has elsewhere are joined to one another again.
  Node* oldLeft = head->prev_;
  Node* oldRight = end->next_;
  if (oldLeft || oldRight) {
    setPrev(head, nullptr);
    setNext(end, nullptr);
    if (oldLeft && oldRight && oldLeft->parent_ && oldLeft->parent_ == oldRight->parent_) join(oldLeft, oldRight);
    if (ref && !behindRef) left = ref->prev_;
    if (ref && behindRef) right = ref->next_;
  }
  // A neighbour whose link to `ref` was left by isolate alone would keep it past the node between them, and past the
  // life of `ref`.
  if (ref && parent->listIsTruth_) {
    if (!behindRef && !left) {
      Node* before = childBeforeByList(ref);
      if (before && before->next_ == ref) left = before;
    }
    if (behindRef && !right) {
      Node* after = childAfterByList(ref);
      if (after && after->prev_ == ref) right = after;
    }
  }

  link(left, head);
  link(end, right);

  if (!(ref ? behindRef && ref == parent->getLastChild() : behindRef)) tireOfList(parent);
  std::size_t index = 0;
  if (listOf(parent)) {
    const std::size_t size = listOf(parent)->list.size();
    index = ref ? indexInList(ref) + (behindRef ? 1 : 0) : (behindRef ? size : 0);
  }
  const bool atFront = ref ? !behindRef && ref == parent->getFirstChild() : !behindRef;
  const bool atBack = ref ? behindRef && ref == parent->getLastChild() : behindRef;
  if (atFront || !parent->getFirstChild()) setFirst(parent, head);
  if (atBack || !parent->getLastChild()) setLast(parent, end);

  if (listOf(parent)) {
    std::vector<Node*> run;
    for (Node* n = head;; n = n->next_) {
      run.push_back(n);
      if (n == end) break;
    }
    listOf(parent)->list.insert(index, run);
  }
  parent->noteChange();
  // What comes may have been edited before, and would not climb any more.
  if (byHost || parent->refCount_ > 0) noteEdit(parent);
  for (Node* n = head;;) {
    Node* following = n == end ? nullptr : n->next_;
    n->noteChange();
    n->parent_ = parent;
    if (how == AGAIN) {
      if (n->refCount_ > 0) noteEdit(n);
      raiseFlag(n, Node::UPDATE_ADDED, /*isBelowFlagged=*/true);
    } else {
      n->setUpdateFlag(Node::UPDATE_ADDED);
    }
    if (!following) break;
    n = following;
  }
  return head;
}

Node* Node::insertLast(Node* newNode) {
  if (!newNode) return nullptr;
  return NodeAccess::insertRun(this, newNode, getLastChild(), nullptr, nullptr, /*behindRef=*/true,
                               NodeAccess::BY_HOST);
}

Node* Node::insertFirst(Node* newNode) {
  if (!newNode) return nullptr;
  return NodeAccess::insertRun(this, newNode, nullptr, getFirstChild(), nullptr, /*behindRef=*/false,
                               NodeAccess::BY_HOST);
}

Node* Node::insertBefore(Node* newNode, Node* ref) {
  if (!newNode) return nullptr;
  if (!ref) return insertLast(newNode);
  if (ref->parent_ != this) return newNode;
  return NodeAccess::insertRun(this, newNode, ref->prev_, ref, ref, /*behindRef=*/false, NodeAccess::BY_HOST);
}

Node* Node::insertAfter(Node* newNode, Node* ref) {
  if (!newNode) return nullptr;
  if (!ref) return insertFirst(newNode);
  if (ref->parent_ != this) return newNode;
  return NodeAccess::insertRun(this, newNode, ref, ref->next_, ref, /*behindRef=*/true, NodeAccess::BY_HOST);
}

void NodeAccess::insertFree(Node* parent, Node* head, Node* ref, bool behindRef, bool again) {
  if (!head) return;
  const Insertion how = again ? AGAIN : OF_RUN;
  if (!ref) {
    insertRun(parent, head, parent->getLastChild(), nullptr, nullptr, /*behindRef=*/true, how);
  } else {
    insertRun(parent, head, behindRef ? ref : ref->prev_, behindRef ? ref->next_ : ref, ref, behindRef, how);
  }
}

void NodeAccess::append(Node* parent, Node* child) {
  if (parent->listIsTruth_ || child->getFirstChild()) {
    insertRun(parent, child, parent->getLastChild(), nullptr, nullptr, /*behindRef=*/true, OF_ONE);
    return;
  }
  if (parent->getLastChild()) {
    addFlags(parent->getLastChild(), Node::UPDATE_SIBLING_CHANGED);
    addFlags(child, Node::UPDATE_SIBLING_CHANGED);
  }
  parent->noteChange();
  child->noteChange();
  attachRestored(parent, child);
  if (listOf(parent)) listOf(parent)->list.append(child);
  if (parent->updateFlags_ & Node::UPDATE_ADDED) {
    child->noteUpdate(Node::UPDATE_ADDED);
    addFlags(child, Node::UPDATE_ADDED);
  } else {
    child->setUpdateFlag(Node::UPDATE_ADDED);
  }
}

// --- removal ---------------------------------------------------------------------------------------------------------

// `child` leaves, behind `before`. A chunk that holds both has lost nodes; one that begins with `child` is outdated
// when that is inserted again.
void NodeAccess::noteLoss(Node* parent, Node* before, Node* child) {
  parent->noteChange();
  if (before && !child->leadsChunk_) before->noteChange();
}

// Takes `child` out of the list and of the ends; its links are settled.
void NodeAccess::unlinkChild(Node* parent, Node* child) {
  Node* before = childBefore(child);
  Node* after = childAfter(child);
  noteLoss(parent, before, child);
  if (parent->getFirstChild() == child) setFirst(parent, after);
  if (parent->getLastChild() == child) setLast(parent, before);
  if (after) tireOfList(parent);
  if (listOf(parent)) {
    const std::size_t index = indexInList(child);
    assert(index < listOf(parent)->list.size());
    listOf(parent)->list.erase(index, 1);
  }
  if (parent->listIsTruth_) {
    // A neighbour that was isolated by hand may still point here.
    if (before && before->next_ == child) before->next_ = nullptr;
    if (after && after->prev_ == child) after->prev_ = nullptr;
    if (!parent->getFirstChild()) parent->listIsTruth_ = false;
  }
  child->parent_ = nullptr;
}

void NodeAccess::detach(Node* child) {
  Node* parent = child->parent_;
  Node* left = child->prev_;
  Node* right = child->next_;
  if (parent) unlinkChild(parent, child);
  child->prev_ = child->next_ = nullptr;
  if (left && left->next_ == child) left->next_ = nullptr;
  if (right && right->prev_ == child) right->prev_ = nullptr;
  if (left) {
    setNext(left, right);
    addFlags(left, Node::UPDATE_SIBLING_CHANGED);
  }
  if (right) {
    setPrev(right, left);
    addFlags(right, Node::UPDATE_SIBLING_CHANGED);
  }
  if (!parent) return;
  child->setUpdateFlag(Node::UPDATE_REMOVED);
  parent->setUpdateFlag(Node::UPDATE_CHILD_REMOVED);
}

// Whether the cursor or a selection must be told of children that leave. Only where one can be concerned is the tree
// climbed.
bool NodeAccess::movesPlaces(const Node* parent) {
  const Document* d = parent->getDocument();
  return d && (d->countsIn(parent) || d->selections_.size() > 1) && d->isInTree(parent);
}

Node* Node::removeChild(Node* child) {
  if (!child) return nullptr;
  if (child->parent_ && child->parent_ != this) return child;
  if (getDocument()) getDocument()->recordChange(this);
  if (MetaData* md = MetaDataAccess::ofVisual(child)) return MetaDataAccess::giveVisualUp(*md);
  if (NodeAccess::movesPlaces(this)) getDocument()->adjustCursorOnRemove(child);
  NodeAccess::detach(child);
  return child;
}

Node* NodeAccess::detachRange(Node* parent, Node* first, Node* last) {
  Node* before = childBefore(first);
  Node* after = childAfter(last);
  noteLoss(parent, before, first);
  if (after) tireOfList(parent);
  if (listOf(parent)) {
    ChildIndex& list = listOf(parent)->list;
    const std::size_t from = indexInList(first);
    const std::size_t to = indexInList(last) + 1;
    if (parent->listIsTruth_) {
      // The links inside the range may be anything; what leaves is a proper run.
      for (auto i = from; i < to; ++i) {
        setPrev(list[i], nullptr);
        setNext(list[i], nullptr);
      }
      for (auto i = from + 1; i < to; ++i) {
        Node* left = list[i - 1];
        Node* right = list[i];
        left->next_ = right;
        right->prev_ = left;
      }
    }
    list.erase(from, to - from);
  }
  setPrev(first, nullptr);
  setNext(last, nullptr);
  if (before) setNext(before, after);
  if (after) setPrev(after, before);
  if (parent->getFirstChild() == first) setFirst(parent, after);
  if (parent->getLastChild() == last) setLast(parent, before);
  if (!parent->getFirstChild()) parent->listIsTruth_ = false;
  for (Node* n = first; n; n = n->next_) n->parent_ = nullptr;
  return first;
}

Node* Node::removeChildren(Node* first, Node* last) {
  if (!hasChildNodes()) return nullptr;
  if (!first) first = getFirstChild();
  if (!last) last = getLastChild();
  if (first->parent_ != this || last->parent_ != this) return nullptr;
  if (first != last) {
    Node* n = NodeAccess::childAfter(first);
    while (n && n != last) n = NodeAccess::childAfter(n);
    if (!n) std::swap(first, last);
  }
  if (getDocument()) getDocument()->recordChange(this);
  if (NodeAccess::movesPlaces(this)) {
    // Last to first: each step sees the indices that the cursor counts in.
    for (Node* n = last;; n = NodeAccess::childBefore(n)) {
      getDocument()->adjustCursorOnRemove(n);
      if (n == first) break;
    }
  }
  Node* before = NodeAccess::childBefore(first);
  Node* after = NodeAccess::childAfter(last);
  NodeAccess::detachRange(this, first, last);
  if (before) NodeAccess::addFlags(before, UPDATE_SIBLING_CHANGED);
  if (after) NodeAccess::addFlags(after, UPDATE_SIBLING_CHANGED);
  for (Node* n = first; n; n = n->next_) n->setUpdateFlag(UPDATE_REMOVED);
  setUpdateFlag(UPDATE_CHILD_REMOVED);
  return first;
}

Node* Node::replaceChild(Node* oldChild, Node* newChild) {
  if (!oldChild || oldChild == newChild) return oldChild;
  Node* prev = oldChild->prev_;
  Node* next = oldChild->next_;
  // CHOICE: a node that hangs in a tree, or an ancestor of this one, is not linked in: its own list would break.
  // Nor is a node of another DOM, or what can be nobody's child.
  const bool linkable = newChild && !newChild->parent_ && !isOffspringOf(newChild) && oldChild->parent_ == this &&
                        NodeAccess::isChildKind(newChild) &&
                        (!documentAround(this) || isOfSameDOM(newChild->getDocument(), documentAround(this)));
  removeChild(oldChild);
  if (!linkable) return oldChild;
  if (prev == newChild) prev = newChild->prev_;
  if (next == newChild) next = newChild->next_;
  if (prev || next) NodeAccess::trustList(this);
  NodeAccess::link(prev, newChild);
  NodeAccess::link(newChild, next);
  // KEPT: the arguments stand in this order, so the call finds no such reference and does nothing: the new node is
  // linked to its siblings but is neither in the list nor under this node.
  if (next) insertBefore(next, newChild);
  return oldChild;
}

void Node::isolate(unsigned long which) {
  if (!(which & ISOLATE_SIBLINGS)) return;
  if (parent_) NodeAccess::trustList(parent_);
  // A neighbour in the same list keeps its link to this node, and the list remembers both. Nobody would remember the
  // link of any other, so it goes too.
  if (which & ISOLATE_PREV) {
    if (!parent_ || (prev_ && prev_->parent_ != parent_)) NodeAccess::setPrev(this, nullptr);
    prev_ = nullptr;
  }
  if (which & ISOLATE_NEXT) {
    if (!parent_ || (next_ && next_->parent_ != parent_)) NodeAccess::setNext(this, nullptr);
    next_ = nullptr;
  }
}

// --- questions -------------------------------------------------------------------------------------------------------

Node* Node::findCommonParent(Node* a, Node* b, Node** aBranch, Node** bBranch) {
  auto answer = [&](Node* common, Node* aSide, Node* bSide) {
    if (aBranch) *aBranch = aSide;
    if (bBranch) *bBranch = bSide;
    return common;
  };
  if (!a || !b) return answer(nullptr, nullptr, nullptr);
  if (a == b) return answer(a, a, b);
  auto depthOf = [](const Node* node) {
    std::size_t depth = 0;
    for (; node->parent_; node = node->parent_) ++depth;
    return depth;
  };
  std::size_t aDepth = depthOf(a);
  std::size_t bDepth = depthOf(b);
  // Climb both to one level, remembering the step below; then climb together until the ways meet.
  Node* aUp = a;
  Node* bUp = b;
  Node* aBelow = a;
  Node* bBelow = b;
  for (; aDepth > bDepth; --aDepth) {
    aBelow = aUp;
    aUp = aUp->parent_;
  }
  for (; bDepth > aDepth; --bDepth) {
    bBelow = bUp;
    bUp = bUp->parent_;
  }
  while (aUp != bUp) {
    aBelow = aUp;
    bBelow = bUp;
    aUp = aUp->parent_;
    bUp = bUp->parent_;
    if (!aUp || !bUp) return answer(nullptr, aBelow, bBelow);
  }
  return answer(aUp, aUp == a ? a : aBelow, bUp == b ? b : bBelow);
}

bool Node::isOffspringOf(Node* ancestor) {
  for (const Node* n = this; n; n = n->parent_) {
    if (n == ancestor) return true;
  }
  return false;
}

int Node::compare(Node* a, Node* b) {
  if (a == b) return 0;
  Node* aBranch = nullptr;
  Node* bBranch = nullptr;
  Node* common = findCommonParent(a, b, &aBranch, &bBranch);
  if (!common) return aBranch == bBranch ? 0 : -2;
  if (common == a || common == b || aBranch == bBranch) return 0;
  // Search from one branch to both sides at once: near neighbours answer fast on a wide page.
  Node* forward = aBranch;
  Node* backward = aBranch;
  while (forward || backward) {
    if (forward) forward = NodeAccess::childAfter(forward);
    if (backward) backward = NodeAccess::childBefore(backward);
    if (forward == bBranch) return -1;
    if (backward == bBranch) return 1;
  }
  return 0;
}

}  // namespace zeldom40
