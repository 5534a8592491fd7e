// Which metadata an edit makes stale.
//
// The comments and the run-time text of a pair follow from the element and all that it holds, so an edit makes the
// metadata of every element around it stale, however deep it is, and whatever update flags a host has left standing. To
// climb to the top on each edit would cost the depth of the page; so each node that was climbed is marked, and a climb
// ends at a mark. That holds as long as a marked node has stale metadata alone from there up:
//   - what is inserted may bring marks along, so the parent is climbed first;
//   - where metadata becomes current again, the marks of its element's subtree go (only marked nodes are entered, so
//     that this costs no more than the climbs did);
//   - what a parse does to its nodes is no edit, and createNodes takes the marks away that were set then.
#include <vector>

#include "dom/document/DocumentAccess.h"
#include "dom/dynamic/MetaData.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

MetaData* metaDataOf(const Node* node) {
  return node->getNodeType() == Node::NODE_ELEMENT ? ElementAccess::metaData(static_cast<const Element*>(node))
                                                   : nullptr;
}

}  // namespace

Node* NodeAccess::aboveMetaData(const Node* node) {
  Element* element = static_cast<const MetaData*>(node)->getElement();
  return element ? element : node->parent_;
}

void NodeAccess::makeStale(Element* element) {
  const Document* document = element->getDocument();
  if (!DocumentAccess::isLive(document) || DocumentAccess::isBuilding(document)) return;
  element->getMetaData()->setDirty(true, /*runtimeOnly=*/false);
}

void NodeAccess::noteEdit(Node* node) {
  for (Node* n = node; n && !n->edited_; n = above(n)) {
    n->edited_ = true;
    if (metaDataOf(n)) makeStale(static_cast<Element*>(n));
  }
}

void NodeAccess::forgetEdits(Node* top) {
  if (!top->edited_) return;
  std::vector<Node*> tops = {top};
  while (!tops.empty()) {
    Node* const t = tops.back();
    tops.pop_back();
    for (Node* n = t; n;) {
      const bool enter = n->edited_;
      n->edited_ = false;
      if (MetaData* md = enter ? metaDataOf(n) : nullptr) {
        if (md->getATV()) tops.push_back(md->getATV());
      }
      n = enter ? nextInSubtree(n, t) : nextSkippingChildren(n, t);
    }
  }
}

}  // namespace zeldom40
