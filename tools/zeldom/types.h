// Stands in for a host that can load Java classes: answers about types from a JSON file.
#pragma once

#include <map>
#include <string>

#include "dom/zeldom40.h"

namespace zeldom40::tool {

class Types : public JavaTypeLookupIF {
 public:
  // False, with the reason on stderr, if the file cannot be read or is of another form.
  bool load(const std::string& path);

  // Name and class of each bean that exists outside of the pages.
  const std::map<std::string, std::string>& beans() const { return beans_; }

  char* lookupType(const char* path, const char* beanClass) const override;
  char* lookupGetter(const char* type, const char* property) const override;
  void freeResult(char* text) const override;

 private:
  // What is wrong with the file; empty if nothing is.
  std::string read(const std::string& bytes);

  struct Property {
    std::string type;
    std::string getter;  // empty: by the naming rule
  };
  using Properties = std::map<std::string, Property, std::less<>>;

  const Property* find(const std::string& type, const std::string& property) const;

  std::map<std::string, std::string> beans_;
  std::map<std::string, Properties, std::less<>> classes_;
};

// What such a file looks like, for people.
extern const char kTypesHelp[];

}  // namespace zeldom40::tool
