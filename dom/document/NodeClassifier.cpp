// Sorts out the elements of a fresh parse.
#include "dom/document/NodeClassifier.h"

#include <utility>
#include <vector>

#include "dom/document/Document.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

const Element* asElement(const Node* node) {
  return node->getNodeType() == Node::NODE_ELEMENT ? static_cast<const Element*>(node) : nullptr;
}

}  // namespace

void classifyNodes(Document& document, Node* top) {
  // One pass finds the wrappers, in document order, and whether each has something inside that can carry a visual.
  struct Wrapper {
    Node* node;
    bool hasVisual;
  };
  std::vector<Wrapper> wrappers;
  std::vector<std::pair<std::size_t, std::size_t>> open;  // wrapper, visuals seen when it began
  std::size_t visuals = 0;
  for (Node* n = top; n;) {
    const Element* element = asElement(n);
    if (element && n != top) {
      if (element->canHaveATV()) ++visuals;
      if (element->getElementID() == ID_ZELX_ATV) {
        open.emplace_back(wrappers.size(), visuals);
        wrappers.push_back({n, false});
      }
    }
    if (n->hasChildNodes()) {
      n = n->getFirstChild();
      continue;
    }
    while (true) {
      if (!open.empty() && wrappers[open.back().first].node == n) {
        wrappers[open.back().first].hasVisual = visuals > open.back().second;
        open.pop_back();
      }
      if (n == top) break;
      if (Node* sibling = NodeAccess::childAfter(n)) {
        n = sibling;
        break;
      }
      n = n->getParentNode();
    }
    if (n == top) break;
  }
  for (const Wrapper& wrapper : wrappers) {
    if (wrapper.hasVisual) continue;
    Node* parent = wrapper.node->getParentNode();
    if (wrapper.node->hasChildNodes()) {
      parent->insertAfter(wrapper.node->removeChildren(nullptr, nullptr), wrapper.node);
    }
    document.deleteNodes(wrapper.node);
  }
}

}  // namespace zeldom40
