// Internal. What is done to new nodes after a parse.
#pragma once

namespace zeldom40 {

class Document;
class Node;

// Makes elements of metadata pairs, gives dynamic elements and controls the metadata that they lack, and keeps aside
// the authoring-time visuals that wrap content (a wrapper around nothing that can carry it goes). Walks without
// recursion.
void classifyNodes(Document& document, Node* top);

}  // namespace zeldom40
