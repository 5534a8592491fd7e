// Internal. Repairs bad structure that the parser has marked.
#pragma once

#include <cstdint>
#include <unordered_set>
#include <utility>
#include <vector>

#include "dom/html/Containment.h"

namespace zeldom40 {

class Document;
class Element;
class ElementDefinition;
class Node;

// Finds misplaced nodes a legal place, drops stray end tags and marks tags for rebuilding. Made for one call.
//
// The rules ask for more than linear work on some pages: a misplaced inline element is made again around all content
// of the element that it leaves, and one that leaves a deep nest splits each level of it. CHOICE: such steps are
// counted, and when they come to some dozens a node of the page, what is still misplaced stays where it is, marked.
class ErrorCorrector {
 public:
  ErrorCorrector(Document& document, Node* top);

  // Repairs the subtree of the top; returns the number of repairs. The top may leave the tree in its own repair, so the
  // caller holds a reference on it.
  int correct();
  // Makes one node fit by creating the elements that it lacks; returns its new parent, null if nothing could be done.
  Node* adaptNode(Node* node);

 private:
  // How a node can be made to fit under a parent: through elements that the parent expects, that the node requires, or
  // both.
  struct Plan {
    enum Way { NONE, BELOW_EXPECTED, AT_LAST_TRIED, REQUIRED_BELOW_EXPECTED, AT_PARENT };
    Way way = NONE;
    std::vector<const ElementDefinition*> expected;  // outermost first
    std::vector<const ElementDefinition*> required;  // innermost first
  };

  // A step up: the level reached, and the table that was left for it, if one was.
  struct Climb {
    Node* level;
    Node* table;
  };
  // What stands before a node at a level, as far as it tells how climbing goes on from there: whether the left part of
  // the level holds something (LEFT_FILLED is added then); whether an element that might take in the node was asked,
  // and can contain what the node requires.
  enum Standing { UNTRIED, TRIED, TRIED_HELPS, LEFT_FILLED, CROSSING = 2 * LEFT_FILLED, kStandings };

  // A stretch of the walk that was moved elsewhere: when the walk meets `end` it goes back to `resume`, or to what then
  // follows `resumeBehind`. Null is the end of the page.
  struct Detour {
    Node* end;
    Node* resume;
    Node* resumeBehind;
  };
  // Siblings side by side.
  struct Run {
    Node* first;
    Node* last;
  };

  bool spend(std::int64_t steps);
  Node* follow(Node* next);
  void noteResume(Node* node);
  bool isResumeOpen() const;
  void leadWalk(Node* node);
  void pushDetour(const Detour& detour);
  void keepLandmarks(Node* dying);
  bool place(Node* node);
  bool correctElement(Element* element, Node** next);
  void repairTags(Element* element);
  void endAdaptedRow(Element* strayEnd);
  Node* relocate(Node* node);
  bool crossesTable(Node* from, Node* node);
  Node* legalPlaceAbove(Node* q, Node* node, bool crossing);
  Climb levelAbove(Node* from, Node* node, bool& crossing);
  Node* placeBesideAbove(Node* q, Node* node, bool crossing);
  bool isEmpty(const Node* node);
  bool holdsBefore(const Node* level, const Node* child);
  void unbar();
  Node* tableToLeave(Node* from);
  Node* leaveTable(Node* node, Node* from);
  Run strip(Node* node, Node* parent);
  bool spread(Element* parent, Element* node);
  std::pair<Element*, Element*> splitAround(Node* node, Element* q, Node* earlier, Node* later);
  Node* takerOf(Node* s, Node* node, Node** lastTried);
  bool takesRequired(Node* tried, Node* node);
  const ElementDefinition* definitionOf(int id) const;
  Plan plan(Node* parent, Node* node, Node* lastTried);
  Element* create(const ElementDefinition* definition);
  void take(Node* node);
  void drop(Node* node);
  void insertBefore(Node* parent, Node* run, Node* ref);
  void insertBehind(Node* parent, Node* run, Node* ref);
  void insertLast(Node* parent, Node* run);
  Element* emptyCopy(const Element* element);

  Document& document_;
  Node* top_;
  Node* root_;
  Containment containment_;
  std::int64_t budget_ = 0;
  std::int64_t besideBudget_ = 0;
  std::int64_t mostLevels_ = 0;
  std::int64_t looksLeft_ = 0;
  std::int64_t count_ = 0;
  // Searches above these nodes for a place for such a node failed, and nothing has moved since: for one that will do by
  // itself, and, for each standing, for one that will do by what stands before.
  const void* barredKind_ = nullptr;
  const Node* barredAt_ = nullptr;
  bool barredCrossing_ = false;
  const Node* barredBeside_[kStandings] = {};
  // The walk. The nodes of detours are landmarks: they are exchanged for others before they die.
  std::vector<Detour> detours_;
  std::unordered_multiset<const Node*> landmarks_;
  // The node that climbs, once it has left its first place.
  const Node* climber_ = nullptr;
  // The relocation under way: where the walk goes on behind the node, if it left its place in document order.
  Detour pending_{};
  bool left_ = false;
  // Known to stand behind the node while nothing is known to follow: what is left of elements that held it.
  Node* seenBehind_ = nullptr;
  // What it left behind in a table, before the place where the walk goes on.
  Run stripped_{};
  std::vector<Element*> copies_;
  // The row nearest before this sibling, as the last search for one found out.
  const Node* rowSearchedFrom_ = nullptr;
  Node* rowFound_ = nullptr;
};

}  // namespace zeldom40
