// Internal. Finds out, before an outermost loop is written, which loop below it serves which property.
#pragma once

#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "dom/dynamic/LoopScope.h"

namespace zeldom40 {

class DynBase;
class DynContainer;
class Element;
class MetaData;
class Node;

// Goes once over the subtree of the loop: on the way down each container takes its level and its parent, on the way up
// the properties that it cannot serve pass to the loop around it.
class Preparation {
 public:
  // `top` belongs to a container with no container around it.
  void prepare(MetaData* top);
  // Whether the scopes of the container tell of the present tree.
  bool isPrepared(const DynContainer* container) const { return prepared_.contains(container); }
  // Makes a container that no preparation reaches one without loop: what it holds from an earlier time may point to
  // loops that are gone.
  void leaveOut(DynContainer* container);

 private:
  // A container whose subtree is being visited.
  struct Open {
    DynContainer* container;
    const Element* element;
    const LoopScope* parent;
    unsigned level;
    std::vector<std::string> loops;
  };
  // A place between the parts of a dynamic table.
  struct TablePlace {
    enum Part { TABLE, BODY, ROW } part;
    bool horizontal;
    bool hasBody;
  };

  bool enter(Element* element);
  bool enterContainer(Element* element, DynContainer* container);
  void leave(const Element* element);
  const TablePlace* tablePlaceOf(const Node* node) const;
  bool isLookedThrough(const Element* element, DynContainer* container);
  void followTableParts(const Element* element);

  std::unordered_map<const DynContainer*, const MetaData*> prepared_;
  std::vector<Open> open_;
  LoopNest nest_;
  std::unordered_map<const Node*, TablePlace> tablePlaces_;
};

}  // namespace zeldom40
