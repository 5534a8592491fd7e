// Internal. Turns a metadata pair of a page into the element that it describes.
#pragma once

#include <unordered_map>

namespace zeldom40 {

class MetaData;
class Node;

// What the element that holds pairs may contain. Each answer climbs to the top of the page, and a page may hold a great
// many pairs side by side.
class AdoptionRules {
 public:
  // parent->canContain(child); remembers the answers of the last parent.
  bool allows(Node* parent, Node* child);

 private:
  Node* parent_ = nullptr;
  std::unordered_map<const void*, bool> answers_;  // by definition
};

// The nodes that took the place of a MetaData node, neighbours from first to last; null if there are none.
struct ExpandedPair {
  Node* first = nullptr;
  Node* last = nullptr;
};

// Parses the design-time source of `md`, a child of some node of a page, puts it in the place of `md`, and links `md`
// to the element in it (for a visual, to the one in the run-time text). A pair that describes no such element becomes
// what a plain reader sees: two comments with the run-time text, parsed, between them; `md` is deleted then. The new
// nodes are not sorted out: pairs among them still wait.
ExpandedPair expandMetaData(MetaData* md, AdoptionRules& rules);

}  // namespace zeldom40
