// Pages with dynamic elements and the run-time text that they stand for.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "dom/dynamic/DynamicData.h"
#include "dom/dynamic/MetaData.h"
#include "dom/dynamic/RuntimeTextState.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {

class DynamicTest : public PageTest {
 protected:
  using PageTest::PageTest;

  // Parses the page and gives every dynamic element its metadata.
  Element* loadDynamic(std::string_view page) {
    Element* root = load(page);
    for (Node* node = root; node; node = doc_->findNextNode(node, root, false, false)) {
      if (node->getNodeType() != Node::NODE_ELEMENT) continue;
      auto* element = static_cast<Element*>(node);
      if (element->isDynamicElement()) element->setDynamicElement(true);
    }
    return root;
  }
  // What an element generates when asked from outside, line ends as "\n"; an open scriptlet at the end shows as "~".
  std::string generated(Element* element) {
    if (!element || !element->getMetaData()) return "no metadata";
    if (!element->getMetaData()->getDynamicData()) return "no object";
    std::string out;
    RuntimeTextState state;
    element->getMetaData()->getDynamicData()->generate(element->getMetaData(), out, state);
    EXPECT_EQ(state.indent, 0) << "the indent is not level again";
    for (std::size_t at; (at = out.find("\r\n")) != std::string::npos;) out.erase(at, 1);
    return state.inScriptlet ? out + '~' : out;
  }
  // The same for the first element of that name in a page.
  std::string generated(const char* name, std::string_view page) {
    loadDynamic(page);
    return generated(element(name));
  }
};

// A host that knows the types of paths ("cart.items[]": "shop.Item") and getters ("shop.Item.name": "fetchName").
class FakeTypes : public JavaTypeLookupIF {
 public:
  char* lookupType(const char* path, const char* beanClass) const override {
    asked += std::string(path) + ':' + beanClass + ' ';
    return answer(types, path);
  }
  char* lookupGetter(const char* type, const char* property) const override {
    return answer(getters, std::string(type) + '.' + property);
  }
  void freeResult(char* text) const override {
    --results;
    delete[] text;
  }

  std::map<std::string, std::string> types;
  std::map<std::string, std::string> getters;
  mutable std::string asked;
  mutable int results = 0;  // not given back yet

 private:
  char* answer(const std::map<std::string, std::string>& table, const std::string& key) const {
    ++results;
    const auto found = table.find(key);
    if (found == table.end()) return nullptr;
    char* text = new char[found->second.size() + 1];
    found->second.copy(text, found->second.size());
    text[found->second.size()] = '\0';
    return text;
  }
};

}  // namespace zeldom40
