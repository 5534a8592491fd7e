// Internal. Direct containment in a live tree, asked of many nodes on one walk.
#pragma once

#include <cstdint>
#include <vector>

#include "dom/dtd/ContentTable.h"
#include "dom/dtd/DTDFrame.h"
#include "dom/tree/NodeMap.h"

namespace zeldom40 {

class Document;
class Element;
class ElementDefinition;
class Node;

// Answers as Document::canContain(parent, child) does. That call climbs over all ancestors for their exclusions; here
// the exclusions along the way to the node asked last are kept, so that a walk over a deep tree climbs each step once.
class Containment {
 public:
  // `root` is the top of the tree that most questions are about.
  Containment(Document& document, const Node* root);

  bool canContain(Node* parent, Node* child);
  // The same for a new element of that definition.
  bool canContain(Node* parent, const ElementDefinition* child);
  // Whether the innermost of a chain of new elements (outermost first), in no tree yet, can contain it.
  bool chainCanContain(const std::vector<const ElementDefinition*>& chain, Node* child);
  bool chainCanContain(const std::vector<const ElementDefinition*>& chain, const ElementDefinition* child);
  // The nearest of the node and the elements around it that is not transparent; null if there is none.
  Node* opaque(Node* node);
  // The nearest of the node and the elements around it that is a TABLE; null if there is none.
  Node* table(Node* node);
  // How many levels the questions so far had to walk down. It is one or two each, but more where they come from deep
  // places in turn.
  std::int64_t levelsWalked() const { return levelsWalked_; }
  // Call before a node leaves its place.
  void forget(const Node* node);

 private:
  struct Subject;
  struct Step {
    Element* element;
    const ContentTable::OpenSets* sets;  // the exclusions and inclusions of the element and all around it
    // The nearest element, this one or around it, that is not transparent, and its sets; null if there is none.
    Element* opaque;
    const ContentTable::OpenSets* opaqueSets;
    Element* table;  // the nearest TABLE in the same sense
  };
  Step stepOf(Element* element);
  void dropPath(std::size_t from);
  bool answer(const ElementDefinition* definition, const ContentTable::OpenSets* sets, const Subject& subject,
              const SharedName& askedName);
  bool ask(Node* parent, const Subject& subject);
  bool describe(Node* child, Subject& subject) const;

  Document& document_;
  const Node* root_;
  TableUse tableUse_;
  ContentTable* table_;
  std::vector<Step> path_;
  NodeMap places_;  // in the path
  std::int64_t levelsWalked_ = 0;
};

}  // namespace zeldom40
