// Internal. Brings a tree to its normal form.
#pragma once

namespace zeldom40 {

class Document;
class Node;

// Runs after a parse without severe errors, and after a repair (`corrected`). Returns whether anything changed.
bool normalizeNodes(Document& document, Node* node, bool corrected);

}  // namespace zeldom40
