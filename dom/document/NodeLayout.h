// Internal. Line breaks, indentation and wrapping in the source of edited nodes.
#pragma once

namespace zeldom40 {

class Document;
class Node;
class TreeWalker;

// Lays out one node of an edited tree under the document's style: breaks around blocks, wrapped and indented text.
// `walk` stands on the node. Returns whether a source text changed.
bool formatNode(Document& document, Node* node, const TreeWalker& walk);

}  // namespace zeldom40
