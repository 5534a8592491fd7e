// A page under test: the fixture that owns a DOM and a document, and the tree as one line of text.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "dom/tree/NodePool.h"
#include "dom/zeldom40.h"

namespace zeldom40 {

// What a dump shows beside names and texts.
enum DumpParts : unsigned {
  kDumpNames = 0,
  kDumpAttributes = 1,  // P[ALIGN=left ID]
  kDumpErrors = 2,      // P!20: the error word in hexadecimal, where it is not zero
  kDumpFlags = 4,       // P^18: the update flags likewise
  kDumpPlain = 8        // texts in their plain form instead of their source
};

// Printable bytes as they are, all others as \xHH; quotes and backslashes escaped.
inline std::string quotedBytes(std::string_view text, char quote = '"') {
  std::string out(1, quote);
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n') {
      out += "\\n";
    } else if (c == '\r') {
      out += "\\r";
    } else if (byte < 32 || byte > 126) {
      char hex[8];
      std::snprintf(hex, sizeof hex, "\\x%02X", byte);
      out += hex;
    } else {
      if (c == quote || c == '\\') out += '\\';
      out += c;
    }
  }
  out += quote;
  return out;
}

inline std::string hexWord(char mark, unsigned long word) {
  if (word == 0) return {};
  char text[24];
  std::snprintf(text, sizeof text, "%c%lX", mark, word);
  return text;
}

// One node without its children: NAME, "normal text", 'literal text', ~"formatting text", <raw comment>, ?TARGET"data".
inline std::string dumpNode(Node* node, unsigned parts = kDumpNames) {
  std::string out;
  switch (node->getNodeType()) {
    case Node::NODE_TEXT: {
      auto* text = static_cast<Text*>(node);
      const std::string& shown = parts & kDumpPlain ? text->getData() : text->getRawData();
      if (text->getTextType() == Text::TEXT_FORMATTING) out += '~';
      out += quotedBytes(shown, text->getTextType() == Text::TEXT_LITERAL ? '\'' : '"');
      break;
    }
    case Node::NODE_COMMENT: {
      const std::string raw = quotedBytes(static_cast<Comment*>(node)->getRawString());
      out += raw.substr(1, raw.size() - 2);
      break;
    }
    case Node::NODE_PI:
      out += '?' + node->getName() + quotedBytes(static_cast<PI*>(node)->getData());
      break;
    default:
      out += node->getName().empty() ? "_" : node->getName();
  }
  if ((parts & kDumpAttributes) && node->getNodeType() == Node::NODE_ELEMENT) {
    const AttributeList* list = static_cast<Element*>(node)->getAttributes();
    for (unsigned long i = 0; list && i < list->getLength(); ++i) {
      out += i == 0 ? '[' : ' ';
      out += list->item(i)->getName();
      if (!list->item(i)->getValue().empty()) out += '=' + list->item(i)->getValue();
    }
    if (list && list->getLength() > 0) out += ']';
  }
  if (parts & kDumpErrors) out += hexWord('!', node->getError());
  if (parts & kDumpFlags) out += hexWord('^', node->getUpdateFlag());
  return out;
}

// A node and all below it: HTML(BODY(P("x") HR)).
inline std::string dumpTree(Node* top, unsigned parts = kDumpNames) {
  if (!top) return "null";
  std::string out;
  for (Node* n = top;;) {
    out += dumpNode(n, parts);
    if (Node* child = n->getFirstChild()) {
      out += '(';
      n = child;
      continue;
    }
    while (n != top && !n->getNextSibling()) {
      n = n->getParentNode();
      out += ')';
    }
    if (n == top) return out;
    out += ' ';
    n = n->getNextSibling();
  }
}

// Owns a DOM and an HTML document; when the case is over no node may be left.
class PageTest : public testing::Test {
 protected:
  explicit PageTest(DOM::JSPVersion version = DOM::JSP_VERSION_0, const char* documentTypeName = "HTML")
      : liveBefore_(liveNodes::count), dom_(DOM::createDOM(nullptr, version, nullptr, nullptr)) {
    doc_ = dom_->createDocument(documentTypeName);
  }
  ~PageTest() override {
    dropDocument();
    DOM::destroyDOM(dom_);
    EXPECT_EQ(liveNodes::count, liveBefore_) << "nodes are left";
  }

  // Ends the document before the case does; what the host still holds must outlive it.
  void dropDocument() {
    if (doc_) dom_->deleteDocument(doc_);
    doc_ = nullptr;
  }

  // Replaces the page; returns the root. The flags of the parse are cleared, as hosts do.
  Element* load(std::string_view page) {
    doc_->createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, /*adjust=*/false);
    doc_->clearUpdateFlag();
    return doc_->getDocumentElement();
  }
  // The tree of a page in one line.
  std::string tree(std::string_view page, unsigned parts = kDumpNames) { return dumpTree(load(page), parts); }
  std::string tree() { return dumpTree(doc_->getDocumentElement()); }

  // The source of a node, NUL bytes included; of the page, for null.
  std::string source(Node* node = nullptr, Document::SourceMode mode = Document::SOURCE_ALL) {
    if (!node) node = doc_->getDocumentElement();
    const char* text = doc_->getSourceBuf(node, mode, /*compact=*/false);
    return std::string(text, doc_->getSourceBufLen(nullptr, mode, false));
  }

  // The same without pairs around dynamic elements, which lose their metadata.
  std::string plainSource(Node* node = nullptr, Document::SourceMode mode = Document::SOURCE_ALL) {
    Node* top = node ? node : doc_->getDocumentElement();
    for (Node* n = top; n; n = doc_->findNextNode(n, top, false, false)) {
      if (n->getNodeType() == Node::NODE_ELEMENT) static_cast<Element*>(n)->setMetaData(nullptr);
    }
    return source(top, mode);
  }

  // The n-th (0-based) node of that name in document order; null if there are not so many.
  Node* find(const char* name, int n = 0) { return doc_->getElementsByTagName(name).moveTo(n); }
  Element* element(const char* name, int n = 0) {
    Node* node = find(name, n);
    return node && node->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(node) : nullptr;
  }
  Text* text(int n = 0) { return static_cast<Text*>(find("TEXT", n)); }

  long liveBefore_;
  DOM* dom_;
  Document* doc_ = nullptr;
};

}  // namespace zeldom40
