// Internal. A page that is parsed to be looked at, for as long as somebody looks.
#pragma once

#include <string>

#include "dom/document/DOM.h"
#include "dom/document/Document.h"

namespace zeldom40 {

// Run-time text of dynamic elements stays as the page has it. A page that is too large to parse has no tree.
class ParsedPage {
 public:
  ParsedPage(DOM* dom, const std::string& text) : dom_(dom), document_(dom->createDocument("HTML")) {
    if (document_->createNodes(text.data(), static_cast<unsigned>(text.size()), nullptr, /*adjust=*/false)) {
      document_->keepRuntimeText();
    }
  }
  ~ParsedPage() { dom_->deleteDocument(document_); }
  ParsedPage(const ParsedPage&) = delete;
  ParsedPage& operator=(const ParsedPage&) = delete;

  Document* document() const { return document_; }

 private:
  DOM* dom_;
  Document* document_;
};

}  // namespace zeldom40
