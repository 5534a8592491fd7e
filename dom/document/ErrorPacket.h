// One entry of a page's error list.
#pragma once

namespace zeldom40 {

class Node;

// The errors of one node. Owned by the document; the node is held until the list is built anew or cleared.
struct _dom_error_packet {
  unsigned error;  // ERR_* bits
  Node* node;
  unsigned line;  // 1-based; an estimate that counts the line feeds of texts and comments, not those inside tags
};

}  // namespace zeldom40
