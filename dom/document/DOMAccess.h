// Internal. What other parts of the library ask of the DOM.
#pragma once

#include "dom/document/DOM.h"

namespace zeldom40 {

struct DOMAccess {
  // The fixed names, right also when no DOM lives.
  static SharedName textName() { return DOM::getDOM() ? DOM::getDOM()->textName_ : SharedName("TEXT"); }
  static SharedName commentName() { return DOM::getDOM() ? DOM::getDOM()->commentName_ : SharedName("COMMENT"); }
  static SharedName metaDataName() { return DOM::getDOM() ? DOM::getDOM()->metaDataName_ : SharedName("METADATA"); }
  static SharedName pcdataName() { return DOM::getDOM() ? DOM::getDOM()->pcdataName_ : SharedName("TEXT"); }
  static unsigned extensions() { return DOM::getDOM() ? DOM::getDOM()->extensions_ : 0; }
  static const JavaTypeLookupIF* javaTypeLookup(const DOM* dom) { return dom->javaTypeLookup_; }
};

}  // namespace zeldom40
