// What a host answers about Java types.
#pragma once

#include "dom/export.h"

namespace zeldom40 {

// The library knows no Java: a host that can load classes derives from this and hands it to
// DOM::setJavaTypeLookupIF, which borrows it. Without one, loop variables have the type Object and getters are named
// by the naming rule (name: getName). Answers are kept until the next outermost loop is generated.
class ZELDOM40_API JavaTypeLookupIF {
 public:
  // Never called by the library; it keeps the place of the others in the table of virtual operations.
  virtual void reserved();
  // The Java type of a property path whose first segment is a bean of class `beanClass`; for a path that ends in an
  // array segment ("[]", "()") the type of one element. Null or empty: unknown.
  virtual char* lookupType(const char* path, const char* beanClass) const = 0;
  // The name of the getter of `property` on `type`, without parentheses. Null or empty: unknown.
  virtual char* lookupGetter(const char* type, const char* property) const = 0;
  // Called once for every result of the two, also for a null one, as soon as the library has copied it.
  virtual void freeResult(char* text) const = 0;

  virtual ~JavaTypeLookupIF();
};

}  // namespace zeldom40
