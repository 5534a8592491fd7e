// libFuzzer target: any bytes as a DTD, and then every question that can be asked of it.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "dom/dtd/DTDFrame.h"
#include "dom/dtd/DTDParser.h"
#include "dom/tree/NodePool.h"
#include "dom/zeldom40.h"

namespace {

using namespace zeldom40;

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

void askAttributes(const ElementDefinition& definition) {
  const Node* attributes = definition.getAttributes();
  int left = 50;
  for (const Node* a = attributes ? attributes->getFirstChild() : nullptr; a && left > 0; a = a->getNextSibling()) {
    --left;
    const auto* attribute = static_cast<const AttributeDefinition*>(a);
    require(attribute->getDeclaredType() >= 0 && attribute->getDeclaredType() <= 10, "declared type out of range");
    require(attribute->getDefaultType() >= 0 && attribute->getDefaultType() <= 3, "default type out of range");
    attribute->getAllowedTokens();
    definition.getAttributeDefinition(a->getName().c_str());
  }
  unsigned long errors = 0;
  definition.checkAttributeValidity("ALIGN", "left", &errors);
}

// Answers for elements and texts; a failure leaves the path as it was.
void askContent(ElementDefinition& definition, const std::vector<Node*>& subjects) {
  for (Node* subject : subjects) {
    Node* found = nullptr;
    std::vector<Node*> path(1, subject);
    const bool allowed = definition.canContain(subject, &found, &path);
    require(allowed ? !path.empty() : path.size() == 1, "a path was left behind");
    definition.canInclude(subject);
    definition.canBeAncestorOf(subject);
  }
  definition.getContentText();
}

void askAll(DOM& dom, DocumentType& type) {
  Document* document = dom.createDocument("HTML");
  std::vector<Node*> subjects;
  for (const char* name : {"P", "TD", "X", "A", "B"}) subjects.push_back(document->createElement(name));
  subjects.push_back(document->createTextNode("x"));
  subjects.push_back(document->createComment("--c--"));
  int left = 40;
  for (ElementDefinition* definition : type.getElementDefinitions()) {
    if (--left < 0) break;
    // A declared name may hold a NUL; then no C string can ask for it.
    const std::string& name = definition->getName();
    require(name.find('\0') != std::string::npos || type.getElementDefinition(name.c_str()) != nullptr,
            "a definition is not found by its name");
    Element* own = document->createElement(definition->getName().c_str());
    askAttributes(*definition);
    askContent(*definition, subjects);
    if (own) {
      definition->canContain(own, nullptr, nullptr);
      own->releaseRef(true);
    }
  }
  for (Node* subject : subjects) subject->releaseRef(true);
  dom.deleteDocument(document);
}

// The declarations of pages that come again and again, beside a little DTD; what is kept of them is bounded.
void readAsPages(DOM& dom, const std::string& text) {
  constexpr std::string_view kDTD = "<!ELEMENT P - O (A)><!ELEMENT A - - (#PCDATA)><!ATTLIST P a CDATA #IMPLIED>";
  DocumentType* type = dom.createDocumentType("page", kDTD.data(), static_cast<int>(kDTD.size()));
  ParserType::_dtd_frame& frame = *type->getDTDFrame();
  const ParserType::_dtd_parser_frame shared{&frame};
  for (int i = 0; i < 5; ++i) {
    DTDParser(text.data(), static_cast<unsigned>(text.size()), &shared).parse(LexerType::LEX_EOF);
    const ParserType::_dtd_frame::PageShare& share = frame.pageShare;
    require(share.names <= 1024 && share.tokens <= 1 << 16 && share.bytes <= 8 << 20, "pages declare beyond bounds");
    require(frame.elementList->size() <= 2u + 1024u, "definitions that lost are kept");
    require(frame.attributeLists.size() <= 1 + frame.pageLists.size(), "lists that are not known are kept");
  }
  require(type->getElementDefinitions().size() == frame.elements->size(), "a definition has no name");
  dom.destroyDocumentType(type);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  dom->getDocumentType()->getDTDFrame()->readDeferred();
  const long before = liveNodes::count;
  const std::string text(reinterpret_cast<const char*>(data), size);
  DocumentType* type = dom->createDocumentType("fuzz", text.data(), static_cast<int>(text.size()));
  require(type != nullptr, "no document type");
  askAll(*dom, *type);
  require(type->getCharacterEntityCount() <= type->getGeneralEntityCount(), "more character entities than entities");
  dom->destroyDocumentType(type);
  require(liveNodes::count == before, "nodes are left behind the document type");
  readAsPages(*dom, text);
  require(liveNodes::count == before, "nodes are left behind the declarations of a page");
  return 0;
}
