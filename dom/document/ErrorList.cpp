// Reporting and repairing the errors of a page.
#include <algorithm>

#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/document/TreeAdjuster.h"
#include "dom/document/TreeWalker.h"
#include "dom/html/ErrorCorrector.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

namespace {

unsigned lineFeeds(std::string_view text) { return static_cast<unsigned>(std::count(text.begin(), text.end(), '\n')); }

// The line breaks in the white space that a text begins with.
unsigned leadingBreaks(std::string_view raw) {
  unsigned breaks = 0;
  for (std::size_t i = 0; i < raw.size(); ++i) {
    const char c = raw[i];
    if (c != '\t' && c != '\n' && c != '\r' && c != ' ') break;
    if (c == '\r' && i + 1 < raw.size() && raw[i + 1] == '\n') ++breaks;
  }
  return breaks;
}

}  // namespace

const std::list<_dom_error_packet*>& Document::getErrorList() const {
  clearErrors();
  unsigned line = 1;
  for (Node* n = documentElement_; n; n = NodeAccess::nextInSubtree(n, documentElement_)) {
    if (n->getNodeType() == NODE_ELEMENT) ElementAccess::gatherAttributeErrors(static_cast<Element*>(n));
    const bool isText = n->getNodeType() == NODE_TEXT;
    if (n->getError() != 0) {
      // The place of a text is where its first visible character stands.
      const unsigned at = line + (isText ? leadingBreaks(TextAccess::rawData(static_cast<Text*>(n))) : 0);
      n->addRef(false);
      errorList_.push_back(new _dom_error_packet{static_cast<unsigned>(n->getError()), n, at});
    }
    if (isText) line += lineFeeds(TextAccess::rawData(static_cast<Text*>(n)));
    if (n->getNodeType() == NODE_COMMENT) line += lineFeeds(CommentAccess::bodyText(static_cast<Comment*>(n)));
  }
  return errorList_;
}

void Document::clearErrors() const {
  std::list<_dom_error_packet*> packets;
  packets.swap(errorList_);
  for (_dom_error_packet* packet : packets) {
    packet->node->releaseRef(false);
    delete packet;
  }
}

int Document::correctError(Node* node) {
  if (!node) node = documentElement_;
  if (!node) return 0;
  enableRecord(false);
  // The node may be a stray end tag itself, or lose all that it held.
  const HeldNode held(node);
  const bool hadParent = node->getParentNode() != nullptr;
  const int count = ErrorCorrector(*this, node).correct();
  if (node == documentElement_) resetError(ERR_DOC_SEVERE_PARSE_ERROR);
  if (!hadParent || node->getParentNode()) normalizeNodes(*this, node, /*corrected=*/true);
  enableRecord(true);
  return count;
}

Node* Document::adaptNode(Node* node) { return node ? ErrorCorrector(*this, node).adaptNode(node) : nullptr; }

}  // namespace zeldom40
