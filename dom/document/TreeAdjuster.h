// Internal. Brings a tree to its normal form.
#pragma once

namespace zeldom40 {

class Document;
class Element;
class Node;

// Runs after a parse without severe errors, and after a repair (`corrected`), over `node` and its subtree (null: the
// whole tree): merges repeated skeleton elements, marks implied HTML, HEAD and BODY for writing, leaves one document
// type declaration at the front, and takes white space at the ends of blocks out of the layout. Returns whether
// anything changed.
bool normalizeNodes(Document& document, Node* node, bool corrected);

// Moves attributes and children of `second` into `first`, its earlier sibling, and deletes `second`.
Element* mergeElements(Document& document, Element* first, Element* second);

}  // namespace zeldom40
