// Internal. Which elements an edit or a repair leaves behind without a purpose.
#pragma once

#include <vector>

#include "dom/document/TreeWalker.h"

namespace zeldom40 {

class Document;

// Answers for one walk in document order. The text-level elements on the way down to a content that was found are kept
// until the walk comes to them, so that a deep nest is looked through once and not once a level.
class PointlessElements {
 public:
  explicit PointlessElements(Document& document) : document_(document) {}

  // A text-level element that holds nothing, neither text nor cursor.
  bool isEmpty(Element* element);
  // Span-like without attributes, or phrase markup without attributes inside the same: its content needs it not. Under
  // Rewriting::KEEP one that the page has a tag of is left to its author.
  static bool isTransparent(const Element* element, const TreeWalker& walk);

 private:
  Document& document_;
  std::vector<const Node*> filled_;  // the outermost last
};

// Removes `element`, on whose parent `walk` stands, and keeps its content. The walk then stands on the sibling before
// it, or still on the parent. True if that sibling is a text, which may have grown and is to be looked at again.
bool removeKeepingContent(Document& document, Element* element, TreeWalker& walk);

}  // namespace zeldom40
