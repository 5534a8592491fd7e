// Internal. Repairs bad structure that the parser has marked.
#pragma once

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

  // Repairs the subtree of the top; returns the number of repairs.
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

  bool spend(long steps);
  bool correctElement(Element* element, Node** next);
  Node* relocate(Node* node);
  bool crossesTable(Node* node);
  bool hasLegalPlaceAbove(Node* from, Node* node, bool crossing);
  Node* leaveTable(Node* node, Node* from);
  void strip(Node* node, Node* parent);
  bool spread(Element* parent, Element* node);
  void splitAround(Node* node, Element* q, Node* earlier, Node* later);
  Plan plan(Node* parent, Node* node, Node* lastTried);
  Element* create(const ElementDefinition* definition);
  void take(Node* node);
  void drop(Node* node);
  void insertBehind(Node* parent, Node* node, Node* ref);
  Element* emptyCopy(const Element* element);

  Document& document_;
  Node* top_;
  Containment containment_;
  long budget_ = 0;
  long count_ = 0;
  // A search above this node for a place for such a node failed, and nothing has moved since.
  const Node* barredAt_ = nullptr;
  const void* barredKind_ = nullptr;
};

}  // namespace zeldom40
