// Writes raw texts in tree order.
#include "dom/source/SourceWriter.h"

#include "dom/document/DocumentAccess.h"
#include "dom/tree/Comment.h"
#include "dom/tree/Element.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/PI.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

namespace {

void writeLeaf(Node* node, SliceJoiner& out) {
  switch (node->getNodeType()) {
    case Node::NODE_TEXT:
      out.append(TextAccess::rawData(static_cast<Text*>(node)));
      break;
    case Node::NODE_COMMENT:
      out.append(CommentAccess::rawData(static_cast<Comment*>(node)));
      break;
    case Node::NODE_PI:
      out.append(static_cast<PI*>(node)->getData());
      break;
    default:
      break;  // no other node has a source
  }
}

}  // namespace

void writeNode(Node* top, Document::SourceMode mode, std::string& out) {
  if (!top) return;
  SliceJoiner joiner(out);
  if (top->getNodeType() != Node::NODE_ELEMENT) {
    writeLeaf(top, joiner);
    return;
  }
  const bool tags = mode != Document::SOURCE_CONTENT;
  const bool content = mode != Document::SOURCE_TAGS;
  if (tags) joiner.append(ElementAccess::rawBeginTag(static_cast<Element*>(top)));
  Node* n = content ? top->getFirstChild() : nullptr;
  while (n) {
    if (n->getNodeType() == Node::NODE_ELEMENT) {
      joiner.append(ElementAccess::rawBeginTag(static_cast<Element*>(n)));
      if (Node* child = n->getFirstChild()) {
        n = child;
        continue;
      }
    } else {
      writeLeaf(n, joiner);
    }
    // Close what ends here.
    while (true) {
      if (n->getNodeType() == Node::NODE_ELEMENT) {
        joiner.append(ElementAccess::rawEndTag(static_cast<Element*>(n)));
      }
      if (Node* sibling = NodeAccess::childAfter(n)) {
        n = sibling;
        break;
      }
      n = n->getParentNode();
      if (n == top) {
        n = nullptr;
        break;
      }
    }
  }
  if (tags) joiner.append(ElementAccess::rawEndTag(static_cast<Element*>(top)));
}

const char* Document::getSourceBuf(Node* node, SourceMode mode, bool) const {
  sourceBuf_.clear();
  if (node) writeNode(node, mode, sourceBuf_);
  return sourceBuf_.c_str();
}

unsigned long Document::getSourceBufLen(Node* node, SourceMode mode, bool compact) const {
  if (node) getSourceBuf(node, mode, compact);
  return sourceBuf_.size();
}

}  // namespace zeldom40
