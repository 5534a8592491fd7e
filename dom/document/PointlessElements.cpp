// Empty text-level elements and markup without effect.
#include "dom/document/PointlessElements.h"

#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

namespace {

bool isTextLevel(const Node* node) {
  return node->getNodeType() == Node::NODE_ELEMENT &&
         (static_cast<const Element*>(node)->getElementGroup() & GROUP_TEXT_LEVEL);
}

}  // namespace

bool PointlessElements::isEmpty(Element* element) {
  if (!isTextLevel(element)) return false;
  if (!filled_.empty() && filled_.back() == element) {
    filled_.pop_back();
    return false;
  }
  // The first node below that counts as content settles it for all elements on the way to it.
  const Node* content = element;
  while (content && DocumentAccess::isEmptyByItself(&document_, content)) {
    content = NodeAccess::nextInSubtree(content, element);
  }
  if (!content) return true;
  filled_.clear();
  for (const Node* n = content; n != element; n = n->getParentNode()) {
    if (isTextLevel(n)) filled_.push_back(n);
  }
  return false;
}

bool PointlessElements::isTransparent(const Element* element, const TreeWalker& walk) {
  if (DocumentAccess::keepsSource(element->getDocument()) && ElementAccess::hasSourceTag(element)) return false;
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
