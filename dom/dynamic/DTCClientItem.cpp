// What a control does without a host.
#include "dom/dynamic/DTCClientItem.h"

namespace zeldom40 {

void DTCClientItem::setElement(Element* element) { element_ = element; }
Element* DTCClientItem::getElement() { return element_; }
void DTCClientItem::getRuntimeData(MetaData*) {}
void DTCClientItem::getSize(unsigned long&, unsigned long&) {}
void DTCClientItem::setDTCRect(const tagRECT*) {}
bool DTCClientItem::draw(CDC*, const tagRECT*) { return true; }

}  // namespace zeldom40
