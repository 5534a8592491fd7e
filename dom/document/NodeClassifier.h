// Internal. What is done to new nodes after a parse.
#pragma once

namespace zeldom40 {

class Document;
class Node;

// Dissolves authoring-time wrappers that have nothing to wrap: their children move behind them.
void classifyNodes(Document& document, Node* top);

}  // namespace zeldom40
