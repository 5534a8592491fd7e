// A host's side of one design-time control.
#pragma once

#include "dom/export.h"

struct CDC;      // a device context, opaque here
struct tagRECT;  // a rectangle, opaque here

namespace zeldom40 {

class Element;
class MetaData;

// Stands for the control of one OBJECT element. A host derives from it, and makes and deletes its items in its
// DTCDocument: the library deletes none.
class ZELDOM40_API DTCClientItem {
 public:
  DTCClientItem() = default;
  DTCClientItem(const DTCClientItem&) = delete;
  DTCClientItem& operator=(const DTCClientItem&) = delete;
  // KEPT: not virtual. Who deletes an item knows its class.
  ~DTCClientItem() = default;

  // The element that the item stands for; null when it is unlinked. After undo and redo the element is another one.
  virtual void setElement(Element* element);
  virtual Element* getElement();
  // Asked for the run-time text, which is given by metaData->setRuntimeData. The base gives none.
  virtual void getRuntimeData(MetaData* metaData);
  // For the host's own layout; the library calls none of them.
  virtual void getSize(unsigned long& width, unsigned long& height);
  virtual void setDTCRect(const tagRECT* rect);
  virtual bool draw(CDC* dc, const tagRECT* rect);

  // Return the new count. KEPT: nothing happens at zero, and the count may fall below.
  int addRef() { return ++refCount_; }
  int releaseRef() { return --refCount_; }

 private:
  Element* element_ = nullptr;
  int refCount_ = 0;
};

}  // namespace zeldom40
