// What has to change in nodes that change their document.
#include "dom/document/Adoption.h"

#include <vector>

#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/dynamic/MetaDataAccess.h"
#include "dom/tree/AttributeAccess.h"
#include "dom/tree/ElementAccess.h"

namespace zeldom40 {

namespace {

MetaData* metaDataOf(Node* node) {
  if (node->getNodeType() == Node::NODE_META_DATA) return static_cast<MetaData*>(node);
  return node->getNodeType() == Node::NODE_ELEMENT ? ElementAccess::metaData(static_cast<Element*>(node)) : nullptr;
}

// The subtree, an element before its metadata, and the visuals that those keep aside, until `visit` answers false.
template <class Visit>
bool visitAll(Node* top, Visit visit) {
  std::vector<Node*> tops = {top};
  while (!tops.empty()) {
    Node* const t = tops.back();
    tops.pop_back();
    for (Node* n = t; n; n = NodeAccess::nextInSubtree(n, t)) {
      if (!visit(n)) return false;
      MetaData* md = metaDataOf(n);
      if (!md) continue;
      if (md != n && !visit(md)) return false;
      if (md->getATV()) tops.push_back(md->getATV());
    }
  }
  return true;
}

void adoptNode(Node* n, Document* to) {
  Document* const from = n->getDocument();
  if (!from) NodeAccess::noteChange(n);
  if (!from || from == to) return;
  // Its cursor and its selections stay behind. What is saved of the node is a state of its page.
  if (NodeAccess::mayBePlace(n)) DocumentAccess::forgetPlaceIn(from, n);
  if (n->getNodeType() == Node::NODE_META_DATA) {
    MetaDataAccess::adopt(*static_cast<MetaData*>(n), to);
    return;
  }
  n->setDocument(to);
  if (n->getNodeType() == Node::NODE_ELEMENT) ElementAccess::adoptAttributes(static_cast<Element*>(n), to);
}

}  // namespace

Document* documentAround(const Node* node) {
  while (node && !node->getDocument()) node = NodeAccess::above(node);
  return node ? node->getDocument() : nullptr;
}

bool isOfSameDOM(const Document* from, const Document* to) {
  return !from || from == to || (DocumentAccess::isLive(from) && from->getDOM() == to->getDOM());
}

bool adoptNodes(Node* top, Document* to) {
  if (!to) return true;
  const Document* known = to;
  const bool allowed = visitAll(top, [&](Node* n) {
    if (n->getDocument() == known) return true;
    if (!isOfSameDOM(n->getDocument(), to)) return false;
    known = n->getDocument();
    return true;
  });
  if (!allowed) return false;
  return visitAll(top, [to](Node* n) {
    adoptNode(n, to);
    return true;
  });
}

}  // namespace zeldom40
