// What must hold for any bytes at all: the checks that the random pages, the fuzz targets and the tests share.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "dom/tree/NodePool.h"
#include "dom/zeldom40.h"
#include "fuzz/RandomPage.h"

namespace zeldom40::fuzz {

// Runs pages through a DOM of its own. The declarations of a page stay in the tables of the DOM and change what later
// pages mean, so the DOM is renewed behind so many pages that may declare something: behind each, if every page must
// find its fault alone.
class PageCheck {
 public:
  explicit PageCheck(DOM::JSPVersion version, int declaringPagesPerDom = 1)
      : version_(version), declaringPagesPerDom_(declaringPagesPerDom), nodesBefore_(liveNodes::count) {
    open();
  }
  PageCheck(const PageCheck&) = delete;
  PageCheck& operator=(const PageCheck&) = delete;
  ~PageCheck() { DOM::destroyDOM(dom_); }

  DOM* dom() { return dom_; }

  // Reads, writes, walks, copies and frees the page as an HTML page ("HTML") or as another document. Returns what went
  // wrong, empty if nothing did.
  std::string page(std::string_view text, const char* documentTypeName) {
    const std::string fault = run(text, documentTypeName, &PageCheck::wholePage);
    return fault.empty() ? settle(text) : fault;
  }
  // The same for the page as a fragment in a temporary element.
  std::string fragment(std::string_view text, const char* documentTypeName) {
    const std::string fault = run(text, documentTypeName, &PageCheck::fragmentIn);
    return fault.empty() ? settle(text) : fault;
  }
  // All of them.
  std::string everyWay(std::string_view text) {
    for (const char* type : {"HTML", "JSP"}) {
      std::string fault = run(text, type, &PageCheck::wholePage);
      if (!fault.empty()) return std::string(type) + " page: " + fault;
      fault = run(text, type, &PageCheck::fragmentIn);
      if (!fault.empty()) return std::string(type) + " fragment: " + fault;
    }
    return settle(text);
  }

  // Gives the DOM back, looks whether nodes are left, and makes a new one.
  std::string renew(DOM::JSPVersion version) {
    DOM::destroyDOM(dom_);
    const long left = liveNodes::count - nodesBefore_;
    version_ = version;
    open();
    return left == 0 ? std::string() : std::to_string(left) + " nodes left behind the DOM";
  }
  std::string renew() { return renew(version_); }

 private:
  using Check = std::string (PageCheck::*)(Document& document, std::string_view text);

  std::string settle(std::string_view text) {
    if (!RandomPage::mayDeclare(text) || ++declaringPages_ < declaringPagesPerDom_) return {};
    return renew();
  }

  void open() {
    declaringPages_ = 0;
    dom_ = DOM::createDOM(nullptr, version_, nullptr, nullptr);
  }

  std::string run(std::string_view text, const char* documentTypeName, Check check) {
    long left = 0;
    // What the first page to ask for it reads of the DTD stays; a second time nothing may be left.
    for (int time = 0; time < 2; ++time) {
      const long before = liveNodes::count;
      Document* document = dom_->createDocument(documentTypeName);
      std::string fault = (this->*check)(*document, text);
      dom_->deleteDocument(document);
      if (!fault.empty()) return fault;
      // Declarations of a page outlive it, as nodes of the DTD; those are counted when the DOM goes.
      left = liveNodes::count - before;
      if (left == 0 || RandomPage::mayDeclare(text)) return {};
    }
    return std::to_string(left) + " nodes left";
  }

  std::string wholePage(Document& document, std::string_view text) {
    const auto length = static_cast<unsigned>(text.size());
    Node* root = document.createNodes(text.data(), length, nullptr, /*adjust=*/false);
    if (!root || root != document.getDocumentElement()) return "no root";
    dropNewPairs(document, root);
    std::string fault = writesAs(document, root, text, "written");
    if (fault.empty()) fault = cloneWritesAs(document, root, text, "clone");
    if (fault.empty()) fault = linksHold(root);
    if (!fault.empty()) return fault;
    // Reading builds what was lazy; the source must not notice.
    readAll(document, root);
    fault = writesAs(document, root, text, "written after reading");
    if (fault.empty()) fault = cloneWritesAs(document, root, text, "clone after reading");
    if (fault.empty()) fault = fragmentIn(document, text);
    if (!fault.empty()) return fault;
    // A second page in the same document takes the place of the first.
    root = document.createNodes(text.data(), length, nullptr, /*adjust=*/false);
    dropNewPairs(document, root);
    return writesAs(document, root, text, "written at the second time");
  }

  std::string fragmentIn(Document& document, std::string_view text) {
    Element* holder = document.createTemporaryElement();
    if (!holder) return "no temporary element";
    const Node* result =
        document.createNodes(text.data(), static_cast<unsigned>(text.size()), holder, /*adjust=*/false);
    dropNewPairs(document, holder);
    std::string fault = result == holder ? writesAs(document, holder, text, "fragment") : "fragment has another parent";
    if (fault.empty()) fault = linksHold(holder);
    if (fault.empty()) fault = cloneWritesAs(document, holder, text, "clone of fragment");
    holder->releaseRef(true);
    return fault;
  }

  // A dynamic element that stands in a page as it is gets its pair of comments at the next save. Without its metadata
  // it comes back as it was.
  static void dropNewPairs(Document& document, Node* top) {
    for (Node* n = top; n; n = document.findNextNode(n, top, /*updatedOnly=*/false, /*skipChildren=*/false)) {
      if (n->getNodeType() != Node::NODE_ELEMENT) continue;
      auto* element = static_cast<Element*>(n);
      if (element->getMetaData() && !element->getMetaData()->wasLoadedFromPage()) element->setMetaData(nullptr);
    }
  }

  static std::string writesAs(const Document& document, Node* node, std::string_view text, const char* what) {
    const char* buffer = document.getSourceBuf(node, Document::SOURCE_ALL, /*compact=*/false);
    const std::string_view written(buffer, document.getSourceBufLen(nullptr, Document::SOURCE_ALL, /*compact=*/false));
    if (written == text) return {};
    std::size_t at = 0;
    while (at < written.size() && at < text.size() && written[at] == text[at]) ++at;
    return std::string(what) + ": differs at byte " + std::to_string(at) + " of " + std::to_string(text.size()) + ", " +
           std::to_string(written.size()) + " written";
  }

  static std::string cloneWritesAs(const Document& document, Node* node, std::string_view text, const char* what) {
    Node* clone = node->makeClone(/*deep=*/true);
    if (!clone) return std::string(what) + ": null";
    clone->addRef(true);
    std::string fault = writesAs(document, clone, text, what);
    if (fault.empty()) fault = linksHold(clone);
    clone->releaseRef(true);
    return fault;
  }

  // Parents, siblings and counts of a subtree.
  static std::string linksHold(Node* top) {
    for (Node* n = top; n;) {
      Node* first = n->getFirstChild();
      if ((first == nullptr) != (n->getLastChild() == nullptr)) return "first and last child disagree";
      if (first && (first->getParentNode() != n || first->getPreviousSibling())) return "first child has wrong links";
      if (first) {
        n = first;
        continue;
      }
      while (n != top && !n->getNextSibling()) {
        if (n->getParentNode()->getLastChild() != n) return "the last of the siblings is not the last child";
        n = n->getParentNode();
      }
      if (n == top) return {};
      Node* next = n->getNextSibling();
      if (next->getPreviousSibling() != n || next->getParentNode() != n->getParentNode())
        return "sibling has wrong links";
      n = next;
    }
    return {};
  }

  static void readAll(Document& document, Node* root) {
    for (Node* n = root; n; n = document.findNextNode(n, root, /*updatedOnly=*/false, /*skipChildren=*/false)) {
      n->getChildNodes().toLastNode();
      document.canContain(n->getParentNode(), n);
      document.canContain(n, "P");
      document.isEmptyNode(n, /*ignoreCursor=*/true);
      switch (n->getNodeType()) {
        case Node::NODE_TEXT:
          readText(document, static_cast<Text*>(n));
          break;
        case Node::NODE_COMMENT:
          static_cast<Comment*>(n)->getData();
          static_cast<Comment*>(n)->getRawString();
          break;
        case Node::NODE_ELEMENT:
          readElement(static_cast<Element*>(n));
          break;
        default:
          break;
      }
    }
  }

  static void readText(Document& document, Text* text) {
    text->getData();
    text->getRawData();
    text->isEmptyText(/*ignoreWhitespaceType=*/true);
    for (int offset : {0, 1, 3, 1000}) {
      document.convertOffsetLayout2Source(text, offset);
      document.convertOffsetSource2Layout(text, offset);
    }
  }

  static void readElement(Element* element) {
    element->getRawBeginTag();
    element->getRawEndTag();
    element->getAttributeValue("ID");
    element->getScriptData();
    element->getDisplayName();
    AttributeList* attributes = element->getAttributes();
    for (unsigned long i = 0; attributes && i < attributes->getLength(); ++i)
      attributes->item(i)->getParsedValue(false);
  }

  DOM::JSPVersion version_;
  const int declaringPagesPerDom_;
  int declaringPages_ = 0;
  long nodesBefore_;
  DOM* dom_ = nullptr;
};

}  // namespace zeldom40::fuzz
