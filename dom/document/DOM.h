// The root object: the built-in DTD, the settings, and the factory of documents.
#pragma once

#include <vector>

#include "dom/export.h"
#include "dom/tree/SharedName.h"

namespace zeldom40 {

class CodeConv;
class Document;
class DocumentStyle;
class DocumentType;
class DTDParser;
class JavaTypeLookupIF;

// A host makes one DOM at start, a Document per page, deletes the documents, then destroys the DOM. Much of the library
// reaches its DOM through getDOM(), so the newest one is the one in use. Not safe for two threads.
class ZELDOM40_API DOM {
 public:
  // Which generation of server tags exists: the jsp: and qdx: names under version 0, the older bean tags under 1.
  enum JSPVersion { JSP_VERSION_0 = 0, JSP_VERSION_1 = 1 };
  // How an edited tag or text is written. STANDARD: a tag with its name in capitals and its attributes in the spelling
  // of the DTD, a text from its plain form; adjustNodes also lays out what stands beside an edit. KEEP: only what was
  // edited changes, byte for byte; adjustNodes lays out new nodes alone.
  enum class Rewriting { STANDARD, KEEP };

  // Makes a DOM with the built-in DTD loaded. Only `version` is used; the other arguments are accepted and ignored.
  // Freed with destroyDOM. Null if memory ran out.
  static DOM* createDOM(const char* dtdPath, JSPVersion version, const char** dtdFiles, const char** dtdPublicIds);
  // All documents must be deleted before. Null is ignored.
  static void destroyDOM(DOM* dom);
  // The newest live DOM, or null.
  static DOM* getDOM();

  // KEPT: these three do nothing. The DTD is always the built-in one.
  void setDTDPath(const char* path);
  void addDTDFile(const char* publicId, const char* file);
  void setDTDFile(const char* publicId, const char* file);
  // Parses the built-in DTD anew; createDOM has done it once. Documents keep the document type that they were made
  // with.
  void loadDTD();

  // Owned by the DOM.
  DocumentType* getDocumentType() { return documentType_; }
  DocumentStyle* getDocumentStyle() { return documentStyle_; }
  JSPVersion getJSPVersion() const { return jspVersion_; }
  // Takes effect on the next look-up of a name; nothing that exists changes.
  void setJSPVersion(JSPVersion version) { jspVersion_ = version; }
  Rewriting getRewriting() const { return rewriting_; }
  // For all documents of this DOM, STANDARD until set. Set it before the first edit: what was edited and not yet
  // written follows the setting at the time of its writing, as far as its source still stands.
  void setRewriting(Rewriting rewriting) { rewriting_ = rewriting; }
  // Borrowed; null until set.
  void setJavaTypeLookupIF(const JavaTypeLookupIF* lookup);
  // Adds bits to a word that is kept for hosts and decides nothing.
  void enableExtension(unsigned long mask) { extensions_ |= static_cast<unsigned>(mask); }

  // A document type from DTD text of `length` bytes (negative: up to the NUL). Null without text. Freed with
  // destroyDocumentType, which ignores null and the DOM's own type.
  DocumentType* createDocumentType(const char* name, const char* dtdText, int length);
  void destroyDocumentType(DocumentType* type);
  // An empty document; "HTML", exactly so, makes an HTML document, any other name a generic one. Freed with
  // deleteDocument, which ignores null.
  Document* createDocument(const char* documentTypeName);
  void deleteDocument(Document* document);

 private:
  friend struct DOMAccess;
  explicit DOM(JSPVersion version);
  ~DOM();
  DOM(const DOM&) = delete;
  DOM& operator=(const DOM&) = delete;

  void retireDTD();

  DocumentType* documentType_ = nullptr;
  DTDParser* dtdParser_ = nullptr;
  // Of earlier calls of loadDTD: documents and their nodes may point into them.
  std::vector<DocumentType*> olderTypes_;
  std::vector<DTDParser*> olderParsers_;
  DocumentStyle* documentStyle_ = nullptr;
  CodeConv* codeConv_ = nullptr;
  unsigned extensions_ = 14;
  const JavaTypeLookupIF* javaTypeLookup_ = nullptr;
  // Held once, so that every text and comment shares its name.
  SharedName whitespaceName_;
  SharedName textName_;
  SharedName commentName_;
  SharedName pcdataName_;
  SharedName metaDataName_;
  JSPVersion jspVersion_;
  Rewriting rewriting_ = Rewriting::STANDARD;
  DOM* next_ = nullptr;
  DOM* prev_ = nullptr;
};

}  // namespace zeldom40
