// Life of the DOM and its list in the process.
#include "dom/document/DOM.h"

#include <cstring>
#include <new>

#include "dom/document/Document.h"
#include "dom/dtd/BuiltInDTD.h"
#include "dom/dtd/DTDParser.h"
#include "dom/dtd/DocumentType.h"
#include "dom/source/CodeConv.h"
#include "dom/source/DocumentStyle.h"

namespace zeldom40 {

namespace {

DOM* newestDOM = nullptr;

}  // namespace

DOM::DOM(JSPVersion version)
    : documentStyle_(new DocumentStyle),
      codeConv_(new CodeConv),
      whitespaceName_("WHITESPACES"),
      textName_("TEXT"),
      commentName_("COMMENT"),
      pcdataName_("TEXT"),
      metaDataName_("METADATA"),
      jspVersion_(version) {
  next_ = newestDOM;
  if (next_) next_->prev_ = this;
  newestDOM = this;
}

DOM::~DOM() {
  // The document type points into the tables of the parser, so it goes first.
  delete documentType_;
  delete dtdParser_;
  delete documentStyle_;
  delete codeConv_;
  (prev_ ? prev_->next_ : newestDOM) = next_;
  if (next_) next_->prev_ = prev_;
}

DOM* DOM::createDOM(const char*, JSPVersion version, const char**, const char**) {
  auto* dom = new (std::nothrow) DOM(version);
  if (dom) dom->loadDTD();
  return dom;
}

void DOM::destroyDOM(DOM* dom) { delete dom; }

DOM* DOM::getDOM() { return newestDOM; }

void DOM::setDTDPath(const char*) {}
void DOM::addDTDFile(const char*, const char*) {}
void DOM::setDTDFile(const char*, const char*) {}

void DOM::loadDTD() {
  delete documentType_;
  delete dtdParser_;
  dtdParser_ = new DTDParser(builtInDTD().data(), static_cast<unsigned>(builtInDTD().size()));
  dtdParser_->parse(LexerType::LEX_EOF);
  documentType_ = new DocumentType;
  documentType_->setDTDFrame(dtdParser_->getDTDFrame());
  documentType_->setName(std::string(kBuiltInPublicId));
}

DocumentType* DOM::createDocumentType(const char* name, const char* dtdText, int length) {
  return dtdText ? new DocumentType(name, dtdText, length) : nullptr;
}

void DOM::destroyDocumentType(DocumentType* type) {
  if (type != documentType_) delete type;
}

Document* DOM::createDocument(const char* documentTypeName) { return new Document(documentTypeName, this); }

void DOM::deleteDocument(Document* document) { delete document; }

}  // namespace zeldom40
