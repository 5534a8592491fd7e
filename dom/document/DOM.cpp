// Life of the DOM and its list in the process.
#include "dom/document/DOM.h"

#include <algorithm>
#include <new>

#include "dom/document/Document.h"
#include "dom/dtd/BuiltInDTD.h"
#include "dom/dtd/DTDParser.h"
#include "dom/dtd/DocumentType.h"
#include "dom/dynamic/JavaTypes.h"
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
  // A document type points into the tables of its parser, so it goes first.
  retireDTD();
  for (DocumentType* type : olderTypes_) delete type;
  for (DTDParser* parser : olderParsers_) delete parser;
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

void DOM::retireDTD() {
  if (documentType_) olderTypes_.push_back(documentType_);
  if (dtdParser_) olderParsers_.push_back(dtdParser_);
}

void DOM::setJavaTypeLookupIF(const JavaTypeLookupIF* lookup) {
  javaTypeLookup_ = lookup;
  clearTypeCache();
}

void DOM::loadDTD() {
  retireDTD();
  dtdParser_ = DTDParser::makeDeferring(builtInDTD());
  dtdParser_->parse(LexerType::LEX_EOF);
  documentType_ = new DocumentType;
  documentType_->setDTDFrame(dtdParser_->getDTDFrame());
  documentType_->setName(std::string(kBuiltInPublicId));
}

DocumentType* DOM::createDocumentType(const char* name, const char* dtdText, int length) {
  return dtdText ? new DocumentType(name, dtdText, length) : nullptr;
}

void DOM::destroyDocumentType(DocumentType* type) {
  if (type != documentType_ && std::find(olderTypes_.begin(), olderTypes_.end(), type) == olderTypes_.end())
    delete type;
}

Document* DOM::createDocument(const char* documentTypeName) { return new Document(documentTypeName, this); }

void DOM::deleteDocument(Document* document) { delete document; }

}  // namespace zeldom40
