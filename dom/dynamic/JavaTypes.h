// Internal. What the host says about Java types, remembered.
#pragma once

#include <memory>
#include <string>

#include "dom/dynamic/BeanInfo.h"

namespace zeldom40 {

class Document;
class JavaTypeLookupIF;

// Empties what the library remembers of types, as class loading makes a host's answers dear: when an outermost loop
// begins, when the host changes, and when the document is another one.
void clearTypeCache();
// The same if it is about that document, which dies.
void forgetTypes(const Document* document);

// "String", "java.lang.String" and the two names of StringBuffer, exactly.
bool isStringType(const std::string& type);
bool isBufferType(const std::string& type);

// The types of one page during one generation, for which the list of its beans is made once.
class JavaTypes {
 public:
  // A null document has no types.
  explicit JavaTypes(Document* document);

  // The class of the bean that the path begins with; empty if it is unknown.
  std::string beanClass(const std::string& path);
  // The Java type of a path or loop variable; empty if it is unknown.
  std::string type(const std::string& path);
  // The getter of `property` on the type of `ownerPath`; empty if it is unknown.
  std::string getter(const std::string& ownerPath, const std::string& property);
  // Makes the type of a loop variable known, so that paths through it can be typed. Loops side by side use the same
  // names: the newest declaration counts.
  void setVariable(const std::string& name, const std::string& type);
  // Whether there is a host to ask; without one all answers are empty.
  bool canAsk() const { return lookup_ != nullptr; }

 private:
  Document* document_;
  const JavaTypeLookupIF* lookup_ = nullptr;
  std::unique_ptr<BeanList> beans_;
};

}  // namespace zeldom40
