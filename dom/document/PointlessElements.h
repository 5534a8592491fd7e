// Internal. Which elements an edit or a repair leaves behind without a purpose.
#pragma once

#include <unordered_set>

#include "dom/document/TreeWalker.h"

namespace zeldom40 {

class Document;

// Answers for one walk. What was once found to hold something is remembered with all that is around it, so that a deep
// nest is looked through once and not once a level.
class PointlessElements {
 public:
  explicit PointlessElements(Document& document) : document_(document) {}

  // A text-level element that holds nothing, neither text nor cursor.
  bool isEmpty(Element* element);
  // Span-like without attributes, or phrase markup without attributes inside the same: its content needs it not.
  static bool isTransparent(const Element* element, const TreeWalker& walk);

 private:
  Document& document_;
  std::unordered_set<const Node*> filled_;
};

// Removes `element`, on whose parent `walk` stands, and keeps its content. The walk then stands on the sibling before
// it, or still on the parent. True if that sibling is a text, which may have grown and is to be looked at again.
bool removeKeepingContent(Document& document, Element* element, TreeWalker& walk);

}  // namespace zeldom40
