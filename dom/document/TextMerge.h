// Internal. Joins texts that have become neighbours.
#pragma once

namespace zeldom40 {

class Document;
class Node;
class Text;

// Joins `second` into `first`, both texts of one parent, and returns the one that is left, with cursor and selection
// moved along. A text that only formats the source gives way to any other. Null if the two cannot merge.
Text* mergeTexts(Document& document, Node* first, Node* second);

}  // namespace zeldom40
