// Reporting and repairing the errors of a page.
#include <algorithm>

#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/document/TreeAdjuster.h"
#include "dom/document/TreeWalker.h"
#include "dom/dynamic/MetaDataAccess.h"
#include "dom/dynamic/RuntimeTextState.h"
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

// The text of a node that counts in lines; tags do not.
std::string_view sourceOf(const Node* node) {
  if (node->getNodeType() == Node::NODE_TEXT) return TextAccess::rawData(static_cast<const Text*>(node));
  if (node->getNodeType() == Node::NODE_COMMENT) return CommentAccess::bodyText(static_cast<const Comment*>(node));
  return {};
}

// The line breaks that follow the design-time source of a pair on the page. That of a visual is the run-time element
// itself, which stands in the tree and is counted there.
unsigned runtimeLines(MetaData& pair) {
  if (pair.getType() == MetaData::AuthorTimeVisual) return 0;
  std::string text;
  RuntimeTextState state;
  MetaDataAccess::appendRuntimeText(pair, text, state, /*walkTree=*/false, /*dryRun=*/true, /*underStale=*/false,
                                    /*isOutermost=*/true);
  return lineFeeds(text);
}

}  // namespace

const std::list<_dom_error_packet*>& Document::getErrorList() const {
  clearErrors();
  unsigned line = 1;
  // Line breaks are counted up to a node when its line is asked for; a page without errors is never counted.
  const Node* counted = documentElement_;
  auto report = [&](Node* n, const Node* place) {
    if (n->getNodeType() == NODE_ELEMENT) ElementAccess::gatherAttributeErrors(static_cast<Element*>(n));
    if (n->getError() == 0) return;
    for (; counted != place; counted = NodeAccess::nextInSubtree(counted, documentElement_)) {
      line += lineFeeds(sourceOf(counted));
    }
    // The place of a text is where its first visible character stands.
    const unsigned offset = n->getNodeType() == NODE_TEXT ? leadingBreaks(sourceOf(n)) : 0;
    n->addRef(false);
    errorList_.push_back(new _dom_error_packet{static_cast<unsigned>(n->getError()), n, line + offset});
  };
  // The outermost metadata around the node, and the first node behind its element.
  MetaData* pair = nullptr;
  const Node* behindPair = nullptr;
  for (Node* n = documentElement_; n;) {
    if (!pair && n->getNodeType() == NODE_ELEMENT && (pair = ElementAccess::metaData(static_cast<Element*>(n)))) {
      behindPair = NodeAccess::nextSkippingChildren(n, documentElement_);
      ++line;
      if (Element* visual = pair->getATV()) {
        report(visual, n);
        line += 2;
      }
    }
    report(n, n);
    n = NodeAccess::nextInSubtree(n, documentElement_);
    if (pair && n == behindPair) {
      line += 1 + runtimeLines(*pair);
      pair = nullptr;
    }
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
  // An earlier repair of the same list may have taken the node out of the page. Whatever stands around it there is not
  // the page's, and its one reference is the list's.
  if (!isInTree(node)) return 0;
  enableRecord(false);
  // The node may be a stray end tag itself, or lose all that it held.
  const HeldNode held(node);
  const int count = ErrorCorrector(*this, node).correct();
  if (node == documentElement_) resetError(ERR_DOC_SEVERE_PARSE_ERROR);
  // It may also have gone with an element around it, and have that for a parent still.
  if (isInTree(node)) normalizeNodes(*this, node, /*corrected=*/true);
  enableRecord(true);
  return count;
}

Node* Document::adaptNode(Node* node) { return node ? ErrorCorrector(*this, node).adaptNode(node) : nullptr; }

}  // namespace zeldom40
