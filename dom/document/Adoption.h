// Internal. Nodes that go from one document to another.
#pragma once

#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

class Document;

// The document of `node`, or of the nearest node around it that has one; null if there is none.
Document* documentAround(const Node* node);

// Whether what was made for `from` may become a part of `to`: both live, and are documents of one DOM, whose
// definitions and entities it refers to. What was made for no document (null) belongs to whoever takes it.
bool isOfSameDOM(const Document* from, const Document* to);

// Gives the subtree of `top`, which stands in no tree, with its attributes and metadata to `to`; nodes that have no
// document go on without one. False, with nothing changed, if one of them is of another DOM. Null: true, nothing
// changed.
bool adoptNodes(Node* top, Document* to);

}  // namespace zeldom40
