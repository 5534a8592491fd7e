// Writes authored pages as the JSP pages that a servlet container is to run: write_pages FROM TO. Each page that was
// written is read and written once more and must stay as it is. Uses what any host can use, with a table for a class
// loader.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "dom/zeldom40.h"

using namespace zeldom40;

namespace {

struct Property {
  std::string_view owner;
  std::string_view name;
  std::string_view type;  // of one element, where the property is an array or indexed
  std::string_view getter;
};

// Properties without a getter here are those that the naming rule finds. What is missing is an Object.
constexpr Property kProperties[] = {
    {"shop.Cart", "items", "shop.Item", "getItems"},
    {"shop.Cart", "item", "shop.Item", ""},
    {"shop.Cart", "notes", "String", ""},
    {"shop.Cart", "note", "java.lang.String", "getNote"},
    {"shop.Cart", "numbers", "int", ""},
    {"shop.Cart", "orders", "shop.Order", ""},
    {"shop.Cart", "order", "shop.Order", ""},
    {"shop.Cart", "title", "String", ""},
    {"shop.Cart", "label", "StringBuffer", ""},
    {"shop.Cart", "field", "java.lang.String", ""},
    {"shop.Cart", "count", "int", ""},
    {"shop.Cart", "self", "shop.Cart", ""},
    {"shop.Item", "name", "String", ""},
    {"shop.Item", "price", "int", "cost"},
    {"shop.Order", "lines", "shop.Item", ""},
    {"shop.Order", "line", "shop.Item", "getLine"},
    {"shop.Order", "marks", "String", ""},
    {"shop.Order", "id", "String", ""},
    {"shop.Order", "self", "shop.Order", ""},
};

const Property* find(std::string_view owner, std::string_view name) {
  for (const Property& property : kProperties) {
    if (property.owner == owner && property.name == name) return &property;
  }
  return nullptr;
}

class Types : public JavaTypeLookupIF {
 public:
  char* lookupType(const char* path, const char* beanClass) const override {
    std::string_view type = beanClass;
    std::string_view rest = path;
    for (std::size_t dot = rest.find('.'); dot != std::string_view::npos; dot = rest.find('.')) {
      rest.remove_prefix(dot + 1);
      const Property* property = find(type, rest.substr(0, rest.find_first_of(".[(")));
      if (!property) return answer({});
      type = property->type;
    }
    return answer(type);
  }
  char* lookupGetter(const char* type, const char* name) const override {
    const Property* property = find(type, name);
    return answer(property ? property->getter : std::string_view());
  }
  void freeResult(char* text) const override {
    given_--;
    std::free(text);
  }

  int notFreed() const { return given_; }

 private:
  // Unknown is told in both ways: by null and by an empty text.
  char* answer(std::string_view text) const {
    given_++;
    if (text.empty() && given_ % 2) return nullptr;
    char* copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy) *std::copy(text.begin(), text.end(), copy) = '\0';
    return copy;
  }

  mutable int given_ = 0;
};

struct Written {
  std::string text;
  bool different = false;  // the page held a run-time text other than the one that its source generates
};

// `anew`: comments and run-time texts are made from the tree, as after an edit; none that the page held is used.
Written write(DOM* dom, const std::string& page, bool anew) {
  Document* document = dom->createDocument("HTML");
  // A page that declares no bean is one that a servlet forwards to.
  if (page.find("jsp:useBean") == std::string::npos) document->addOutBoundBean("cart", "shop.Cart");
  Node* root = document->createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, /*adjust=*/false);
  for (Node* node = root; node && anew; node = document->findNextNode(node, root, false, false)) {
    if (node->getNodeType() != Node::NODE_ELEMENT) continue;
    if (MetaData* metaData = static_cast<Element*>(node)->getMetaData())
      metaData->setDirty(true, /*runtimeOnly=*/false);
  }
  const char* source = document->getSourceBuf(root, Document::SOURCE_ALL, /*compact=*/false);
  Written written;
  written.text.assign(source, document->getSourceBufLen(nullptr, Document::SOURCE_ALL, /*compact=*/false));
  written.different = document->isRuntimeTextDifferent();
  dom->deleteDocument(document);
  return written;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: write_pages FROM TO\n");
    return 2;
  }
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  const Types types;
  dom->setJavaTypeLookupIF(&types);
  int pages = 0;
  int faults = 0;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
    if (entry.path().extension() != ".html") continue;
    std::ifstream in(entry.path(), std::ios::binary);
    const std::string authored((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const Written first = write(dom, authored, /*anew=*/false);
    const Written second = write(dom, first.text, /*anew=*/false);
    const Written third = write(dom, first.text, /*anew=*/true);
    // An element that has nothing to say for the server always counts as one whose text is yet to be made.
    const bool holdsEmptyPair = first.text.find("--><!--METADATA") != std::string::npos;
    pages++;
    if ((second.different && !holdsEmptyPair) || first.text != second.text || first.text != third.text) {
      std::printf("%s: does not stay the same when it is read and written again\n", entry.path().filename().c_str());
      faults++;
    }
    std::filesystem::path target = std::filesystem::path(argv[2]) / entry.path().stem();
    std::ofstream out(target += ".jsp", std::ios::binary);
    out << first.text;
    if (!out.flush()) faults++;
  }
  DOM::destroyDOM(dom);
  if (types.notFreed() != 0) faults++;
  std::printf("%d pages written, %d faults, %d answers of the lookup not freed\n", pages, faults, types.notFreed());
  return pages > 0 && faults == 0 ? 0 : 1;
}
