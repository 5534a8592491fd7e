// The cache of Java types, one for the whole library, and the questions to the host.
#include "dom/dynamic/JavaTypes.h"

#include <unordered_map>

#include "dom/document/DOM.h"
#include "dom/document/DOMAccess.h"
#include "dom/document/Document.h"
#include "dom/dynamic/BeanCollector.h"
#include "dom/dynamic/JavaTypeLookupIF.h"

namespace zeldom40 {

namespace {

// By property path or name of a loop variable.
struct TypeCache {
  const Document* document = nullptr;
  std::unordered_map<std::string, std::string> types;
};

TypeCache cache;

// Copies a host's answer and gives it back, also a null one.
std::string take(const JavaTypeLookupIF* lookup, char* answer) {
  std::string copy = answer ? answer : "";
  lookup->freeResult(answer);
  return copy;
}

}  // namespace

void JavaTypeLookupIF::reserved() {}
JavaTypeLookupIF::~JavaTypeLookupIF() = default;

void clearTypeCache() {
  cache.document = nullptr;
  cache.types.clear();
}

void forgetTypes(const Document* document) {
  if (cache.document == document) clearTypeCache();
}

bool isStringType(const std::string& type) {
  return type == "String" || type == "java.lang.String" || isBufferType(type);
}

bool isBufferType(const std::string& type) { return type == "StringBuffer" || type == "java.lang.StringBuffer"; }

JavaTypes::JavaTypes(Document* document) : document_(document) {
  if (document && document->getDOM()) lookup_ = DOMAccess::javaTypeLookup(document->getDOM());
}

std::string JavaTypes::beanClass(const std::string& path) {
  if (!document_ || path.empty()) return {};
  if (!beans_) {
    beans_ = std::make_unique<BeanList>();
    collectBeans(document_, *beans_);
  }
  const auto bean = beans_->beans.find({path.substr(0, path.find('.')), {}});
  return bean == beans_->beans.end() ? std::string() : bean->className;
}

std::string JavaTypes::type(const std::string& path) {
  if (!lookup_ || path.empty()) return {};
  if (cache.document != document_) {
    clearTypeCache();
    cache.document = document_;
  }
  const auto known = cache.types.find(path);
  if (known != cache.types.end() && !known->second.empty()) return known->second;
  const std::string bean = beanClass(path);
  if (bean.empty()) return {};
  const std::string type = take(lookup_, lookup_->lookupType(path.c_str(), bean.c_str()));
  if (!type.empty()) cache.types[path] = type;
  return type;
}

std::string JavaTypes::getter(const std::string& ownerPath, const std::string& property) {
  const std::string owner = type(ownerPath);
  if (owner.empty()) return {};
  return take(lookup_, lookup_->lookupGetter(owner.c_str(), property.c_str()));
}

void JavaTypes::setVariable(const std::string& name, const std::string& type) {
  if (!lookup_) return;
  if (cache.document != document_) clearTypeCache();
  cache.document = document_;
  cache.types[name] = type;
}

}  // namespace zeldom40
