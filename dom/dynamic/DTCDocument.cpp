// What the controls of a document do without a host.
#include "dom/dynamic/DTCDocument.h"

#include "dom/dynamic/DTCClientItem.h"

namespace zeldom40 {

DTCClientItem* DTCDocument::createClientItem(Element*) { return nullptr; }

DTCClientItem* DTCDocument::copyClientItem(DTCClientItem* item) {
  if (item) item->addRef();
  return item;
}

void DTCDocument::destroyClientItem(DTCClientItem* item) {
  if (item) item->releaseRef();
}

}  // namespace zeldom40
