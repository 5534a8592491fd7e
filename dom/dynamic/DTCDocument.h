// A host's side of the design-time controls of one document.
#pragma once

#include "dom/export.h"

namespace zeldom40 {

class DTCClientItem;
class Element;

// Given to a document by Document::setDTCDocument. It must outlive the document, whose undo records hold items too.
class ZELDOM40_API DTCDocument {
 public:
  DTCDocument() = default;
  DTCDocument(const DTCDocument&) = delete;
  DTCDocument& operator=(const DTCDocument&) = delete;
  // KEPT: not virtual. Who deletes one knows its class.
  ~DTCDocument() = default;

  // The item of an OBJECT element that becomes a control; null for none. The base makes none.
  virtual DTCClientItem* createClientItem(Element* element);
  // The item of a copy. The base shares `item` with one more reference; null gives null.
  virtual DTCClientItem* copyClientItem(DTCClientItem* item);
  // The library is through with one reference of `item`. The base drops it and deletes nothing.
  virtual void destroyClientItem(DTCClientItem* item);
};

}  // namespace zeldom40
