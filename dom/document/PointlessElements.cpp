// Empty text-level elements and markup without effect.
#include "dom/document/PointlessElements.h"

#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

bool PointlessElements::isEmpty(Element* element) {
  if (!(element->getElementGroup() & GROUP_TEXT_LEVEL) || filled_.count(element)) return false;
  // The first node below that counts as content settles it for all elements on the way to it.
  const Node* content = nullptr;
  for (Node* n = element; n && !content; n = NodeAccess::nextInSubtree(n, element)) {
    if (filled_.count(n) || !DocumentAccess::isEmptyByItself(&document_, n)) content = n;
  }
  if (!content) return true;
  for (const Node* n = content; n; n = n->getParentNode()) {
    if (n != content && !filled_.insert(n).second) break;
    if (n == element) {
      filled_.insert(n);
      break;
    }
  }
  return false;
}

bool PointlessElements::isTransparent(const Element* element, const TreeWalker& walk) {
  const unsigned long group = element->getElementGroup();
  if (!(group & (GROUP_SPAN_LIKE | GROUP_PHRASE)) || element->getNumAttributes() > 0) return false;
  return (group & GROUP_SPAN_LIKE) || walk.countOfID(element->getElementID()) > 0;
}

bool removeKeepingContent(Document& document, Element* element, TreeWalker& walk) {
  Node* parent = element->getParentNode();
  Node* before = NodeAccess::childBefore(element);
  Node* earlier = before ? NodeAccess::childBefore(before) : nullptr;
  // A text that only formats the source gives way to the one that it meets.
  if (before) before->addRef(false);
  document.removeElement(element, /*mergeTexts=*/true);
  if (before) {
    const bool survives = before->getParentNode() == parent;
    before->releaseRef(false);
    if (!survives) before = earlier;
  }
  if (before) walk.enterChild(before);
  return before && before->getNodeType() == Node::NODE_TEXT;
}

}  // namespace zeldom40
