// `zeldom tree`: a page's nodes with their places in the file and what is wrong with them.
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/errors.h"
#include "tools/zeldom/output.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

namespace {

constexpr std::size_t kPreviewBytes = 60;
// Deeper lines say their depth instead: a page of a million levels would need a terabyte of blanks.
constexpr unsigned kIndentedLevels = 40;

// A node and the bytes of the file that it, with its content, was read from.
struct Entry {
  Node* node;
  unsigned depth;
  std::size_t begin;
  std::size_t end;
  // False below an element that is saved as a metadata pair: its content is generated and stands nowhere in the file.
  bool inFile;
};

const std::string kNoText;

// What the file says of a node that is no element.
const std::string& rawText(Node* node) {
  switch (node->getNodeType()) {
    case Node::NODE_TEXT:
      return static_cast<Text*>(node)->getRawData();
    case Node::NODE_COMMENT:
      return static_cast<Comment*>(node)->getRawString();
    case Node::NODE_PI:
      return static_cast<PI*>(node)->getData();
    default:
      return kNoText;
  }
}

Element* asElement(Node* node) {
  return node->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(node) : nullptr;
}

// All nodes in document order. A place in the file is the sum of the raw lengths before it, for writing puts the raw
// texts one after the other.
std::vector<Entry> layOut(const Page& page) {
  std::vector<Entry> entries;
  std::vector<std::size_t> open;
  std::size_t offset = 0;
  Node* generated = nullptr;
  const auto enter = [&](Node* node, unsigned depth) {
    open.push_back(entries.size());
    entries.push_back({node, depth, offset, offset, !generated});
    if (generated) return;
    Element* element = asElement(node);
    if (!element) {
      offset += rawText(node).size();
    } else if (element->getMetaData()) {
      offset += page.source(element).size();
      generated = element;
    } else {
      offset += element->getRawBeginTag().size();
    }
  };
  const auto leave = [&](Node* node) {
    Entry& entry = entries[open.back()];
    open.pop_back();
    if (generated == node) {
      generated = nullptr;
    } else if (Element* element = generated ? nullptr : asElement(node)) {
      offset += element->getRawEndTag().size();
    }
    entry.end = offset;
  };
  walk(page.root(), enter, leave);
  return entries;
}

const char* typeName(const Node* node) {
  switch (node->getNodeType()) {
    case Node::NODE_ELEMENT:
      return "element";
    case Node::NODE_TEXT:
      return "text";
    case Node::NODE_COMMENT:
      return "comment";
    case Node::NODE_PI:
      return "pi";
    case Node::NODE_META_DATA:
      return "metadata";
    default:
      return "node";
  }
}

// The parser adds elements that the DTD requires and the page leaves out. A stray end tag also gives an element without
// begin tag, but of a kind that must have one.
bool isImplied(const Entry& entry) {
  const Element* element = asElement(entry.node);
  if (!element || entry.depth == 0 || element->getMetaData() || !element->getRawBeginTag().empty()) return false;
  const ElementDefinition* definition = element->getElementDefinition();
  return element->getRawEndTag().empty() || (definition && definition->isStartOmittable());
}

template <typename Use>
void forEachAttribute(const Element* element, Use use) {
  const AttributeList* list = element->getNumAttributes() ? element->getAttributes() : nullptr;
  for (unsigned long i = 0; list && i < list->getLength(); ++i) use(*list->item(i));
}

class TextPrinter {
 public:
  TextPrinter(Output& out, const TreeOptions& options, std::string_view bytes)
      : out_(out), options_(options), utf8_(isUtf8(bytes)), digits_(std::to_string(bytes.size()).size()) {}

  void print(const Entry& entry) {
    place(entry);
    const unsigned indent = std::min(entry.depth, kIndentedLevels);
    out_.pad(0, 2 * indent);
    if (indent < entry.depth) out_.paint(Colour::kFaint, "(").paint(Colour::kFaint, std::to_string(entry.depth) + ") ");
    if (const Element* element = asElement(entry.node)) {
      print(*element, entry);
    } else if (entry.node->getNodeType() == Node::NODE_META_DATA) {
      out_.paint(Colour::kName, entry.node->getName());
    } else {
      printText(entry.node);
    }
    for (const std::string& error : errorNames(entry.node->getError())) out_.paint(Colour::kError, " " + error);
    out_ << "\n";
  }

 private:
  // "begin..end", the end exclusive, in a column as wide as the file needs.
  void place(const Entry& entry) {
    const std::string begin = entry.inFile ? std::to_string(entry.begin) : "-";
    const std::string end = entry.inFile ? std::to_string(entry.end) : "";
    out_.pad(begin.size(), digits_);
    out_.paint(Colour::kFaint, begin + (entry.inFile ? ".." : "  ") + end).pad(end.size(), digits_ + 2);
  }

  void print(const Element& element, const Entry& entry) {
    out_.paint(Colour::kName, preview(element.getTagName(), kPreviewBytes, utf8_));
    if (isImplied(entry)) out_.paint(Colour::kFaint, " (implied)");
    if (!options_.attributes) return;
    forEachAttribute(&element, [&](const Attribute& attribute) {
      out_ << " " << preview(attribute.getName(), kPreviewBytes, utf8_) << "=";
      out_.paint(Colour::kText, '"' + preview(attribute.getValue(), kPreviewBytes, utf8_) + '"');
    });
  }

  void printText(Node* node) {
    if (node->getNodeType() != Node::NODE_TEXT) out_ << typeName(node) << " ";
    out_.paint(Colour::kText, '"' + preview(rawText(node), kPreviewBytes, utf8_) + '"');
    if (node->getNodeType() == Node::NODE_TEXT) {
      out_.paint(Colour::kFaint, std::string(" ") + textTypeName(static_cast<Text*>(node)->getTextType()));
    }
  }

  Output& out_;
  const TreeOptions& options_;
  bool utf8_;
  std::size_t digits_;
};

void printText(Output& out, const TreeOptions& options, const std::string& file, std::string_view bytes,
               const std::vector<Entry>& entries, std::size_t flawed) {
  out.paint(Colour::kName, file) << ": " << bytes.size() << " bytes, " << entries.size() << " nodes, " << flawed
                                 << " with errors\n";
  TextPrinter printer(out, options, bytes);
  for (const Entry& entry : entries) printer.print(entry);
}

nlohmann::ordered_json describe(const Entry& entry, const TreeOptions& options, bool utf8) {
  Node* node = entry.node;
  nlohmann::ordered_json json{{"depth", entry.depth}, {"type", typeName(node)}};
  if (entry.inFile) {
    json["begin"] = entry.begin;
    json["end"] = entry.end;
  }
  json["name"] = jsonText(node->getName(), utf8);
  if (const Element* element = asElement(node)) {
    json["implied"] = isImplied(entry);
    if (options.attributes) {
      auto& attributes = json["attributes"] = nlohmann::ordered_json::array();
      forEachAttribute(element, [&](const Attribute& attribute) {
        attributes.push_back({{"name", jsonText(attribute.getName(), utf8)},
                              {"value", jsonText(attribute.getValue(), utf8)},
                              {"declared", attribute.getAttributeDefinition() != nullptr}});
      });
    }
  } else {
    if (node->getNodeType() == Node::NODE_TEXT)
      json["textType"] = textTypeName(static_cast<Text*>(node)->getTextType());
    json["source"] = jsonText(rawText(node), utf8);
  }
  json["errors"] = errorNames(node->getError());
  return json;
}

// CHOICE: a flat list with depths, for a tree in a tree of JSON objects would exceed the depth that readers take.
void printJson(Output& out, const TreeOptions& options, const std::string& file, std::string_view bytes,
               const std::vector<Entry>& entries) {
  const bool utf8 = isUtf8(bytes);
  // Where the page is no UTF-8 each character of a string below stands for one byte of the page.
  const nlohmann::ordered_json head{
      {"file", jsonText(file, isUtf8(file))}, {"bytes", bytes.size()}, {"strings", utf8 ? "utf-8" : "bytes"}};
  std::string opening = head.dump();
  opening.pop_back();
  out << opening << ", \"nodes\": [\n";
  for (const Entry& entry : entries) {
    out << describe(entry, options, utf8).dump() << (&entry == &entries.back() ? "\n" : ",\n");
  }
  out << "]}";
}

}  // namespace

ExitCode runTree(const TreeOptions& options, const Settings& settings) {
  const Library library(settings);
  if (!library.usable()) return kFailed;
  Output out;
  ExitCode result = kFine;
  const char* separator = "[";
  for (const std::string& file : options.files) {
    const auto use = [&](Page& page, const std::string& bytes) {
      const std::vector<Entry> entries = layOut(page);
      const auto flawed = static_cast<std::size_t>(std::count_if(
          entries.begin(), entries.end(), [](const Entry& entry) { return entry.node->getError() != 0; }));
      if (options.json) {
        out << separator;
        separator = ",\n";
        printJson(out, options, file, bytes, entries);
      } else {
        printText(out, options, file, bytes, entries, flawed);
      }
      return flawed ? kFindings : kFine;
    };
    result = worse(result, withPage(library, file, Pairs::kKeep, use));
  }
  if (options.json) out << (*separator == '[' ? "[]\n" : "]\n");
  return out.flush() ? result : kFailed;
}

}  // namespace zeldom40::tool
