// The repair of misplaced nodes and broken tags.
#include "dom/html/ErrorCorrector.h"

#include <cassert>
#include <tuple>
#include <typeinfo>
#include <utility>

#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/document/NameLookup.h"
#include "dom/document/TreeAdjuster.h"
#include "dom/dtd/CatalogueTables.h"
#include "dom/dtd/DocumentType.h"
#include "dom/dtd/ElementDefinition.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/Text.h"

namespace zeldom40 {

namespace {

constexpr std::int64_t kStepsPerNode = 48;
// Those of the search for what stands before a node, which must not use up the others.
constexpr std::int64_t kBesideStepsPerNode = 48;
// Levels walked down again because a question went elsewhere, and looks for content in what may be empty; they cost
// less.
constexpr std::int64_t kLevelsPerNode = 256;
constexpr std::int64_t kLooksPerNode = 256;
constexpr unsigned long kPlacing = ERR_ELEMENT_CANNOT_BE_CONTAINED | ERR_ELEMENT_NO_PARENT_CAN_ADOPT;

Element* asElement(Node* node) {
  return node && node->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(node) : nullptr;
}

unsigned long groupOf(Node* node) { return asElement(node) ? asElement(node)->getElementGroup() : 0; }

int idOf(Node* node) { return asElement(node) ? asElement(node)->getElementID() : -1; }

// Comments and empty texts are passed over wherever content is looked for.
bool isPassed(Node* node, bool ignoreWhite) {
  if (node->getNodeType() == Node::NODE_COMMENT) return true;
  return node->getNodeType() == Node::NODE_TEXT && static_cast<Text*>(node)->isEmptyText(ignoreWhite);
}

Node* rootOf(Node* node) {
  while (node->getParentNode()) node = node->getParentNode();
  return node;
}

// What is no table structure does not climb through a table but stands before it.
bool leavesTable(Node* node, Node* q) { return (groupOf(q) & GROUP_TABLE) && !(groupOf(node) & GROUP_TABLE); }

// Items, and what an earlier repair has made, take in what comes behind them.
bool isTaker(Node* node) {
  return asElement(node) && ((groupOf(node) & GROUP_ITEM) || (node->getUpdateFlag() & Node::UPDATE_ADAPTED));
}

// A host's own kind of node may want to hear of each step.
bool isPlain(const Node* node) { return typeid(*node) == typeid(Element) || typeid(*node) == typeid(Text); }

bool isUnknown(Node* node) {
  return asElement(node) && asElement(node)->getElementType() == Element::ELEMENT_UNDEFINED;
}

}  // namespace

ErrorCorrector::ErrorCorrector(Document& document, Node* top)
    : document_(document), top_(top), root_(rootOf(top)), containment_(document, root_) {
  std::int64_t nodes = 0;
  for (const Node* n = top; n; n = NodeAccess::nextInSubtree(n, top)) ++nodes;
  budget_ = kStepsPerNode * nodes + 4096;
  besideBudget_ = kBesideStepsPerNode * nodes + 4096;
  mostLevels_ = kLevelsPerNode * nodes + (1 << 16);
  looksLeft_ = kLooksPerNode * nodes + (1 << 16);
}

bool ErrorCorrector::spend(std::int64_t steps) {
  budget_ -= steps;
  return budget_ >= 0 && containment_.levelsWalked() <= mostLevels_;
}

// Before a node leaves its place, what is known about its surroundings is dropped.
void ErrorCorrector::take(Node* node) {
  containment_.forget(node);
  node->getParentNode()->removeChild(node);
}

void ErrorCorrector::drop(Node* node) {
  containment_.forget(node);
  keepLandmarks(node);
  unbar();
  document_.deleteNodes(node);
}

// What moves was taken out of its place or is new, so it holds nothing that it could come to stand below.
void ErrorCorrector::insertBefore(Node* parent, Node* run, Node* ref) {
  DocumentAccess::recordChange(&document_, parent);
  NodeAccess::insertFree(parent, run, ref, /*behindRef=*/false, /*again=*/run == climber_);
}

void ErrorCorrector::insertBehind(Node* parent, Node* run, Node* ref) {
  DocumentAccess::recordChange(&document_, parent);
  NodeAccess::insertFree(parent, run, ref, /*behindRef=*/true, /*again=*/run == climber_);
}

void ErrorCorrector::insertLast(Node* parent, Node* run) { insertBefore(parent, run, nullptr); }

// A copy without children. It is new, so what the parser said of the place of the original does not hold for it.
Element* ErrorCorrector::emptyCopy(const Element* element) {
  auto* copy = static_cast<Element*>(element->makeClone(false));
  copy->resetError(kPlacing);
  copy->addRef(false);
  return copy;
}

// --- the pass --------------------------------------------------------------------------------------------------------

// In document order through the subtree and what this pass moves out of it. A node that leaves a table comes to stand
// before it; the walk goes through the node and then on from where it stood. Walking on behind its new place, as the
// order has it, would meet nothing but rows that are repaired already, and all of them again for each such node.
// CHOICE: so what found no place inside the table is not tried again, though the node may have brought one along.
int ErrorCorrector::correct() {
  pushDetour({NodeAccess::nextSkippingChildren(top_, root_), nullptr, nullptr});
  for (Node* n = top_; n;) {
    if (Element* element = asElement(n)) {
      Node* next = nullptr;
      if (element->getError() && correctElement(element, &next)) {
        n = next;
        continue;
      }
    } else if (n->getNodeType() == Node::NODE_TEXT && (n->getError() & ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST)) {
      if (place(n)) {
        n->resetError(ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST);
        ++count_;
      }
    }
    n = follow(NodeAccess::nextInSubtree(n, root_));
  }
  return static_cast<int>(count_);
}

// `next` is the next node by document order; returns where the walk goes.
Node* ErrorCorrector::follow(Node* next) {
  while (!detours_.empty() && next == detours_.back().end) {
    const Detour done = detours_.back();
    detours_.pop_back();
    for (const Node* landmark : {done.end, done.resume, done.resumeBehind}) {
      if (landmark) landmarks_.erase(landmarks_.find(landmark));
    }
    if (detours_.empty()) return nullptr;
    next = done.resumeBehind ? NodeAccess::nextSkippingChildren(done.resumeBehind, root_) : done.resume;
  }
  return next;
}

void ErrorCorrector::pushDetour(const Detour& detour) {
  detours_.push_back(detour);
  for (const Node* landmark : {detour.end, detour.resume, detour.resumeBehind}) {
    if (landmark) landmarks_.insert(landmark);
  }
}

// Before the node is moved away for the first time: remembers what stands behind it in its parent. If nothing does,
// what follows is looked for level by level as the node climbs: to look for it at once would climb to the root for each
// node of a deep nest, and to look for it later would find the node itself behind its former parent.
void ErrorCorrector::noteResume(Node* node) {
  if (left_) return;
  left_ = true;
  seenBehind_ = nullptr;
  pending_ = {nullptr, NodeAccess::childAfter(node), nullptr};
}

// Nothing yet is known to follow the place that the node left.
bool ErrorCorrector::isResumeOpen() const { return left_ && !pending_.resume && !pending_.resumeBehind; }

void ErrorCorrector::keepLandmarks(Node* dying) {
  bool met = false;
  bool strippedDie = false;
  for (const Node* n = dying; n; n = NodeAccess::nextInSubtree(n, dying)) {
    met = met || landmarks_.count(n) || (left_ && (n == pending_.resume || n == pending_.resumeBehind));
    strippedDie = strippedDie || n == stripped_.first;
    if (n == rowSearchedFrom_ || n == rowFound_) rowSearchedFrom_ = nullptr;
  }
  // They stand side by side, so they die with what holds them.
  if (strippedDie) stripped_ = {};
  if (!met) return;
  Node* behind = NodeAccess::nextSkippingChildren(dying, root_);
  const auto mend = [&](Detour& detour) {
    const auto dies = [dying](Node* node) { return node && node->isOffspringOf(dying); };
    if (dies(detour.end)) detour.end = behind;
    if (!dies(detour.resume) && !dies(detour.resumeBehind)) return;
    detour.resume = behind;
    detour.resumeBehind = nullptr;
  };
  if (left_) mend(pending_);
  std::vector<Detour> detours;
  detours.swap(detours_);
  landmarks_.clear();
  for (Detour& detour : detours) {
    mend(detour);
    pushDetour(detour);
  }
}

// After the node was moved: the walk goes through it, then through what it left behind in a table, then on from where
// it stood.
void ErrorCorrector::leadWalk(Node* node) {
  if (isResumeOpen()) {
    // Nothing was left to walk at the last level that it climbed to, but for what the walk has seen.
    if (seenBehind_) pushDetour({seenBehind_, nullptr, seenBehind_});
  } else {
    if (stripped_.first) {
      pending_.end = NodeAccess::nextSkippingChildren(stripped_.last, root_);
      pushDetour(pending_);
      pending_ = {nullptr, stripped_.first, nullptr};
    }
    pending_.end = NodeAccess::nextSkippingChildren(node, root_);
    if (pending_.resumeBehind || pending_.end != pending_.resume) pushDetour(pending_);
  }
  left_ = false;
  stripped_ = {};
}

// Relocates the node and keeps the walk on its way. Returns whether the node stands right now.
bool ErrorCorrector::place(Node* node) {
  left_ = false;
  rowSearchedFrom_ = nullptr;
  const bool placed = relocate(node) != nullptr;
  climber_ = nullptr;
  if (left_) leadWalk(node);
  // What the node was made again as has its tags, and their faults.
  std::vector<Element*> copies;
  copies.swap(copies_);
  for (Element* copy : copies) {
    if (copy->getParentNode()) repairTags(copy);
    copy->releaseRef(false);
  }
  return placed;
}

// True if the element is gone; `next` is then where the pass goes on.
bool ErrorCorrector::correctElement(Element* element, Node** next) {
  if ((element->getError() & kPlacing) && place(element)) {
    element->resetError(kPlacing);
    ++count_;
  }
  if ((element->getError() & ERR_ELEMENT_BEGIN_TAG_MISSING) && element->getParentNode()) {
    if (element->getName() == "TR") endAdaptedRow(element);
    // A host may have put something into it. Behind a visual there is no place.
    if (element->hasChildNodes() && element->getParentNode()->getNodeType() != Node::NODE_META_DATA) {
      containment_.forget(element);
      insertBehind(element->getParentNode(), element->removeChildren(nullptr, nullptr), element);
    }
    *next = follow(NodeAccess::nextSkippingChildren(element, root_));
    drop(element);
    ++count_;
    return true;
  }
  repairTags(element);
  return false;
}

// A stray end tag of a row ends the row that a repair made, which takes no more cells then.
void ErrorCorrector::endAdaptedRow(Element* strayEnd) {
  Node* from = NodeAccess::childBefore(strayEnd);
  Node* s = from;
  while (s && idOf(s) != ID_TR && s != rowSearchedFrom_) s = NodeAccess::childBefore(s);
  rowFound_ = s && s == rowSearchedFrom_ ? rowFound_ : s;
  rowSearchedFrom_ = from;
  if (rowFound_) rowFound_->resetUpdateFlag(Node::UPDATE_ADAPTED);
}

void ErrorCorrector::repairTags(Element* element) {
  if (element->getError() & ERR_ELEMENT_END_TAG_MISSING) {
    Node* parent = element->getParentNode();
    if (element->getElementID() == ID_A && parent) {
      Node* child = element->getFirstChild();
      while (child && !(child->getError() & ERR_ELEMENT_CANNOT_BE_CONTAINED)) child = NodeAccess::childAfter(child);
      if (child) {
        containment_.forget(element);
        insertBehind(parent, element->removeChildren(child, nullptr), element);
      }
    }
    element->setEndTagDirty();
    element->resetError(ERR_ELEMENT_END_TAG_MISSING);
    ++count_;
  }
  if (element->getError() & ERR_ELEMENT_PARSE_ERROR) {
    ElementAccess::remakeBeginTag(element);
    element->resetError(ERR_ELEMENT_PARSE_ERROR);
    ++count_;
  }
  if (element->getError() & ERR_ELEMENT_INVALID_CASE_BEGIN) {
    ElementAccess::respellBeginTag(element);
    element->resetError(ERR_ELEMENT_INVALID_CASE_BEGIN);
    ++count_;
  }
  if (element->getError() & ERR_ELEMENT_INVALID_CASE_END) {
    element->setEndTagDirty();
    element->resetError(ERR_ELEMENT_INVALID_CASE_END);
    ++count_;
  }
}

// --- relocate --------------------------------------------------------------------------------------------------------

// Finds the node a legal place by climbing; returns the new parent, or null if there is none.
Node* ErrorCorrector::relocate(Node* node) {
  bool restarted = true;
  while (restarted) {
    restarted = false;
    const bool crossing = crossesTable(node->getParentNode(), node);
    const Node* goal = nullptr;
    // What is left of the node, or right of it, holds something; then all that is around that does.
    bool leftFilled = false;
    bool rightFilled = false;
    Node* q = node->getParentNode();
    while (q) {
      if (!spend(1)) return nullptr;
      // a. and b. Here, as it is or with what it lacks.
      if (containment_.canContain(q, node)) return q;
      if (!crossing) {
        if (Node* adapted = adaptNode(node)) return adapted;
      }
      // Nothing moves unless some place above will do.
      if (!goal || goal == q) goal = legalPlaceAbove(q, node, crossing);
      if (!goal) return nullptr;
      unbar();
      // c. What is no part of a table leaves it to stand before it.
      if (leavesTable(node, q) && leaveTable(node, q)) {
        restarted = true;
        if (isPlain(node)) climber_ = node;
        break;
      }
      // d.
      Node* g = q->getParentNode();
      if (!g) return nullptr;
      // e.
      Node* earlier = NodeAccess::childBefore(node);
      Node* later = NodeAccess::childAfter(node);
      if (top_ != root_) noteResume(node);
      take(node);
      if (!crossing && asElement(q) && asElement(node)) spread(static_cast<Element*>(q), static_cast<Element*>(node));
      // A wrapper may have taken the neighbour in; its place is then the wrapper's.
      while (later && later->getParentNode() != q) later = later->getParentNode();
      // f. and g.
      Node* left = earlier ? q : nullptr;
      Node* right = earlier ? nullptr : q;
      if (!earlier) {
        insertBefore(g, node, q);
      } else if (!later || !asElement(q)) {
        insertBehind(g, node, q);
      } else {
        std::tie(left, right) = splitAround(node, static_cast<Element*>(q), earlier, later);
      }
      if (isPlain(node)) climber_ = node;
      // h.
      if (left && !leftFilled) {
        leftFilled = !isEmpty(left);
        if (!leftFilled) drop(left);
      }
      if (right && !rightFilled) {
        rightFilled = !isEmpty(right);
        if (!rightFilled) drop(right);
      }
      if (isResumeOpen()) {
        seenBehind_ = rightFilled ? right : nullptr;
        pending_.resume = NodeAccess::childAfter(seenBehind_ ? seenBehind_ : node);
      }
      q = g;
    }
  }
  return nullptr;
}

// Puts `node` behind `q` and the children from `later` on into a copy of `q` behind that. The side with fewer children
// moves; the two elements are alike, so who of them stays is told by nothing but a holder from outside. Returns the
// elements before and behind the node.
std::pair<Element*, Element*> ErrorCorrector::splitAround(Node* node, Element* q, Node* earlier, Node* later) {
  Node* g = q->getParentNode();
  Element* copy = emptyCopy(q);
  containment_.forget(q);
  const Node* left = earlier;
  const Node* right = later;
  while (left && right) {
    left = NodeAccess::childBefore(left);
    right = NodeAccess::childAfter(right);
  }
  if (right && NodeAccess::refCount(q) == 1 && !DocumentAccess::isPlace(&document_, q)) {
    insertBefore(g, copy, q);
    insertBefore(g, node, q);
    insertLast(copy, q->removeChildren(nullptr, earlier));
    // The part before the node is what the walk has seen, and what takes in the next misplaced node.
    NodeAccess::addError(copy, q->getError() & kPlacing);
    q->resetError(kPlacing);
    NodeAccess::addFlags(copy, NodeAccess::flags(q) & Node::UPDATE_ADAPTED);
    q->resetUpdateFlag(Node::UPDATE_ADAPTED);
    return {copy, q};
  }
  insertBehind(g, node, q);
  insertBehind(g, copy, node);
  insertLast(copy, q->removeChildren(later, nullptr));
  return {q, copy};
}

// Whether a part of a table would have to pass something that is no table structure on its way from `from` up to its
// table.
bool ErrorCorrector::crossesTable(Node* from, Node* node) {
  if (!(groupOf(node) & GROUP_TABLE_PART)) return false;
  bool passed = false;
  for (Node* n = from; n && spend(1); n = n->getParentNode()) {
    if (idOf(n) == ID_TABLE || containment_.canContain(n, node)) return passed;
    if (!(groupOf(n) & GROUP_TABLE) && idOf(n) != ID_CAPTION) passed = true;
  }
  return false;
}

// The level above `q` at which climbing will end at the latest, null if it would fail. Moves nothing.
Node* ErrorCorrector::legalPlaceAbove(Node* q, Node* node, bool crossing) {
  const void* kind = asElement(node) ? static_cast<const void*>(asElement(node)->getElementDefinition()) : this;
  if (kind != barredKind_) {
    unbar();
    barredKind_ = kind;
  }
  const bool crossingAtStart = crossing;
  for (Node* n = q; n;) {
    if (n == barredAt_ && (crossing || !barredCrossing_)) break;
    if (!spend(1)) return nullptr;
    n = levelAbove(n, node, crossing).level;
    if (!n) break;
    if (containment_.canContain(n, node)) return n;
    if (!crossing && asElement(n) && plan(n, node, nullptr).way != Plan::NONE) return n;
  }
  barredAt_ = q;
  barredCrossing_ = crossingAtStart;
  std::swap(budget_, besideBudget_);
  Node* level = placeBesideAbove(q, node, crossingAtStart);
  std::swap(budget_, besideBudget_);
  return level;
}

// Where the node comes to from inside `from`, and the table before which it stands there, if it leaves one. What it
// crossed inside that counts no more.
ErrorCorrector::Climb ErrorCorrector::levelAbove(Node* from, Node* node, bool& crossing) {
  Node* table = leavesTable(node, from) ? tableToLeave(from) : nullptr;
  Node* level = (table ? table : from)->getParentNode();
  if (table) crossing = crossesTable(level, node);
  return {level, table};
}

// The first level above `q` at which what stands before the node would let it stay: it takes the node in, or what the
// node requires. Moves nothing. Asked when no level above will do by itself.
//
// What stands before the node changes as it climbs. If the part of a level to the left of the node holds something,
// that part comes to stand before it; else it goes, and what stands before the level does.
Node* ErrorCorrector::placeBesideAbove(Node* q, Node* node, bool crossing) {
  const Node* passed[kStandings] = {};
  Node* lastTried = nullptr;
  bool leftFilled = false;
  const Node* child = node;  // of the level; the node or what it stands before
  for (Node* n = q; n;) {
    if (!spend(1)) return nullptr;
    int standing = CROSSING;
    if (!crossing) {
      if (!leftFilled && takerOf(NodeAccess::childBefore(child), node, &lastTried) && n != q) return n;
      const bool helps = lastTried && takesRequired(lastTried, node);
      if (helps && n != q && plan(n, node, lastTried).way != Plan::NONE) return n;
      leftFilled = leftFilled || holdsBefore(n, child);
      standing = (leftFilled ? LEFT_FILLED : 0) + (helps ? TRIED_HELPS : lastTried ? TRIED : UNTRIED);
    }
    if (n == barredBeside_[standing]) break;
    if (!passed[standing]) passed[standing] = n;
    const Climb climb = levelAbove(n, node, crossing);
    if (climb.table) leftFilled = false;
    if (!leftFilled || !isTaker(n)) {
      lastTried = nullptr;
    } else if (!lastTried) {
      lastTried = n;
    }
    child = climb.table ? climb.table : n;
    n = climb.level;
  }
  for (int i = 0; i < kStandings; ++i) {
    if (passed[i]) barredBeside_[i] = passed[i];
  }
  return nullptr;
}

// Whether something stands before `child` in `level` that keeps the left part of it, once split, from being dropped.
// CHOICE: what the climb would make again around empty elements there is not counted: a node that one of them could
// hold finds a place above by itself.
bool ErrorCorrector::holdsBefore(const Node* level, const Node* child) {
  const Node* before = NodeAccess::childBefore(child);
  if (before && !DocumentAccess::isEmptyByItself(&document_, level)) return true;
  for (; before; before = NodeAccess::childBefore(before)) {
    if (!isEmpty(before)) return true;
  }
  return false;
}

// Document::isEmptyNode within bounds of its own; beyond them nothing counts as empty.
bool ErrorCorrector::isEmpty(const Node* node) {
  for (const Node* n = node; n; n = NodeAccess::nextInSubtree(n, node)) {
    if (--looksLeft_ < 0 || !DocumentAccess::isEmptyByItself(&document_, n)) return false;
  }
  return true;
}

void ErrorCorrector::unbar() {
  barredAt_ = nullptr;
  for (const Node*& level : barredBeside_) level = nullptr;
}

// --- tables ----------------------------------------------------------------------------------------------------------

Node* ErrorCorrector::tableToLeave(Node* from) {
  Node* table = containment_.table(from);
  return table && table->getParentNode() ? table : nullptr;
}

Node* ErrorCorrector::leaveTable(Node* node, Node* from) {
  Node* table = tableToLeave(from);
  if (!table) return nullptr;
  const bool open = isResumeOpen();
  const Run stripped = strip(node, from);
  if (open && stripped.first && !seenBehind_) {
    pending_.resume = stripped.first;
  } else {
    // If the node had left its place before it came here, the walk is to go on there, behind what stays here now.
    if (open) pending_.resumeBehind = seenBehind_ ? seenBehind_ : from;
    if (left_ && stripped.first) stripped_ = stripped;
    noteResume(node);
    if (isResumeOpen()) pending_.resumeBehind = from;
  }
  take(node);
  insertBefore(table->getParentNode(), node, table);
  return table->getParentNode();
}

// Table parts that the node has swallowed stay behind in the table while it goes, in their order. Returns them.
ErrorCorrector::Run ErrorCorrector::strip(Node* node, Node* parent) {
  Run stripped{};
  if (!asElement(node)) return stripped;
  Node* ref = node;
  for (Node* n = node->getFirstChild(); n && spend(1);) {
    const bool leaves = isUnknown(n) || isPassed(n, true) || (groupOf(n) & GROUP_TABLE_PART);
    if (!leaves) {
      n = asElement(n) ? NodeAccess::nextInSubtree(n, node) : NodeAccess::nextSkippingChildren(n, node);
      continue;
    }
    Node* next = NodeAccess::nextSkippingChildren(n, node);
    take(n);
    insertBehind(parent, n, ref);
    ref = n;
    if (!stripped.first) stripped.first = n;
    stripped.last = n;
    n = next;
  }
  return stripped;
}

// --- spread ----------------------------------------------------------------------------------------------------------

// Makes a misplaced inline element again around what stands in the element that it leaves. Returns whether anything was
// wrapped.
bool ErrorCorrector::spread(Element* parent, Element* node) {
  if (groupOf(node) & GROUP_BLOCK) return false;
  // What is empty by its declaration is made again around nothing.
  const ElementDefinition* definition = node->getElementDefinition();
  if (definition && definition->getContentType() == ElementDefinition::CONTENT_EMPTY && !definition->getInclusions()) {
    return false;
  }
  bool wrapped = false;
  // The levels that are open: an element whose children are walked, the next of them, and the wrapper that is open.
  struct Level {
    Element* element;
    Node* next;
    bool fits;
    Element* wrapper;
  };
  std::vector<Level> levels{{parent, parent->getFirstChild(), containment_.canContain(parent, node), nullptr}};
  while (!levels.empty()) {
    Level& level = levels.back();
    Node* c = level.next;
    if (!c || !spend(1)) {
      levels.pop_back();
      continue;
    }
    level.next = NodeAccess::childAfter(c);
    if (isUnknown(c) || isPassed(c, true)) {
      if (level.wrapper) {
        take(c);
        insertLast(level.wrapper, c);
      }
      continue;
    }
    if (level.fits && containment_.canContain(node, c)) {
      if (!level.wrapper) {
        level.wrapper = emptyCopy(node);
        level.wrapper->addRef(false);
        copies_.push_back(level.wrapper);
        level.element->insertBefore(level.wrapper, c);
        wrapped = true;
      }
      take(c);
      insertLast(level.wrapper, c);
      continue;
    }
    level.wrapper = nullptr;
    if (Element* inner = asElement(c)) {
      if (inner->hasChildNodes()) {
        levels.push_back({inner, inner->getFirstChild(), containment_.canContain(inner, node), nullptr});
      }
    }
  }
  return wrapped;
}

// --- adapting --------------------------------------------------------------------------------------------------------

// Asks the nearest item or element made by an earlier repair that ends at `s`, which stands before the place of the
// node, and those at its end in turn. Returns the one that can contain the node; if there is none, `lastTried` is the
// last one asked, or null.
Node* ErrorCorrector::takerOf(Node* s, Node* node, Node** lastTried) {
  *lastTried = nullptr;
  while (s && spend(1)) {
    if (isPassed(s, false)) {
      s = NodeAccess::childBefore(s);
      continue;
    }
    if (!isTaker(s)) return nullptr;
    if (containment_.canContain(s, node)) return s;
    *lastTried = s;
    s = s->getLastChild();
  }
  return nullptr;
}

Node* ErrorCorrector::adaptNode(Node* node) {
  Element* parent = asElement(node->getParentNode());
  if (!parent) return nullptr;

  // 1. Items and elements made by an earlier repair take the next node that belongs to them.
  Node* lastTried = nullptr;
  if (Node* taker = takerOf(NodeAccess::childBefore(node), node, &lastTried)) {
    unbar();
    take(node);
    insertLast(taker, node);
    return taker;
  }

  // 2. to 6.
  const Plan chosen = plan(parent, node, lastTried);
  if (chosen.way == Plan::NONE) return nullptr;
  Element* head = nullptr;
  Element* innermost = nullptr;
  if (chosen.way == Plan::BELOW_EXPECTED || chosen.way == Plan::REQUIRED_BELOW_EXPECTED) {
    for (const ElementDefinition* definition : chosen.expected) {
      Element* made = create(definition);
      if (innermost) insertBefore(innermost, made, innermost->getFirstChild());
      if (!head) head = made;
      innermost = made;
    }
  }
  Element* holder = nullptr;
  Element* outermost = nullptr;
  for (const ElementDefinition* definition : chosen.required) {
    Element* made = create(definition);
    if (outermost) insertBefore(made, outermost, made->getFirstChild());
    if (!holder) holder = made;
    outermost = made;
  }
  switch (chosen.way) {
    case Plan::BELOW_EXPECTED:
      insertBefore(parent, head, node);
      holder = innermost;
      break;
    case Plan::AT_LAST_TRIED:
      insertLast(lastTried, outermost);
      break;
    case Plan::REQUIRED_BELOW_EXPECTED:
      assert(innermost);
      insertBefore(innermost, outermost, innermost->getFirstChild());
      insertBefore(parent, head, node);
      break;
    default:
      insertBefore(parent, outermost, node);
      break;
  }
  assert(holder);
  take(node);
  insertBefore(holder, node, holder->getFirstChild());
  unbar();
  return holder;
}

ErrorCorrector::Plan ErrorCorrector::plan(Node* parent, Node* node, Node* lastTried) {
  Plan plan;
  const int id = idOf(containment_.opaque(parent));

  // 3. Elements that the parent expects to hold.
  for (int x = CatalogueTables::requiredChildID(id); x >= 0; x = CatalogueTables::requiredChildID(x)) {
    const ElementDefinition* definition = definitionOf(x);
    if (!definition) break;
    plan.expected.push_back(definition);
    if (containment_.chainCanContain(plan.expected, node)) {
      plan.way = Plan::BELOW_EXPECTED;
      return plan;
    }
  }
  // 4. and 5. Peers of one group have nothing to adapt to.
  if (!asElement(node)) return plan;
  int y = CatalogueTables::requiredParentID(idOf(node));
  if (y >= 0 && y == CatalogueTables::requiredParentID(id)) return plan;
  // 6. Elements that the node requires around it.
  for (; y >= 0; y = CatalogueTables::requiredParentID(y)) {
    const ElementDefinition* definition = definitionOf(y);
    if (!definition) break;
    plan.required.push_back(definition);
    if (lastTried && containment_.canContain(lastTried, definition)) {
      plan.way = Plan::AT_LAST_TRIED;
    } else if (!plan.expected.empty()) {
      if (containment_.chainCanContain(plan.expected, definition)) plan.way = Plan::REQUIRED_BELOW_EXPECTED;
    } else if (containment_.canContain(parent, definition)) {
      plan.way = Plan::AT_PARENT;
    }
    if (plan.way != Plan::NONE) return plan;
  }
  return plan;
}

// Whether an element can contain one of those that the node requires around it.
bool ErrorCorrector::takesRequired(Node* tried, Node* node) {
  if (!asElement(node)) return false;
  for (int y = CatalogueTables::requiredParentID(idOf(node)); y >= 0; y = CatalogueTables::requiredParentID(y)) {
    const ElementDefinition* definition = definitionOf(y);
    if (!definition) break;
    if (containment_.canContain(tried, definition)) return true;
  }
  return false;
}

const ElementDefinition* ErrorCorrector::definitionOf(int id) const {
  const char* name = CatalogueTables::name(id);
  return name ? findVisibleDefinition(document_.getDocumentTypeObject(), name) : nullptr;
}

Element* ErrorCorrector::create(const ElementDefinition* definition) {
  Element* element = document_.createElement(definition->upperName().str().c_str());
  NodeAccess::addFlags(element, Node::UPDATE_ADAPTED);
  return element;
}

}  // namespace zeldom40
