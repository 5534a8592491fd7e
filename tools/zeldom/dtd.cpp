// `zeldom dtd`: what the built-in DTD says of elements: content, tags, attributes, groups, and who may hold whom.
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/output.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

namespace {

constexpr std::size_t kLineWidth = 100;
constexpr std::size_t kLabelWidth = 18;

struct NamedBit {
  unsigned long bit;
  const char* name;
};

constexpr NamedBit kGroups[] = {
    {GROUP_BLOCK, "BLOCK"},
    {GROUP_PLAIN, "PLAIN"},
    {GROUP_BREAK, "BREAK"},
    {GROUP_NOWRAP, "NOWRAP"},
    {GROUP_STRUCTURE, "STRUCTURE"},
    {GROUP_LIST, "LIST"},
    {GROUP_PHRASE, "PHRASE"},
    {GROUP_TEXT_LEVEL, "TEXT_LEVEL"},
    {GROUP_SKELETON, "SKELETON"},
    {GROUP_DOCUMENT, "DOCUMENT"},
    {GROUP_SINGLE, "SINGLE"},
    {GROUP_ITEM, "ITEM"},
    {GROUP_ANCHOR, "ANCHOR"},
    {GROUP_SPAN_LIKE, "SPAN_LIKE"},
    {GROUP_PART, "PART"},
    {GROUP_SERVER, "SERVER"},
    {GROUP_TABLE, "TABLE"},
    {GROUP_TABLE_PART, "TABLE_PART"},
    {GROUP_ANYWHERE, "ANYWHERE"},
    {GROUP_XML_TAG, "XML_TAG"},
    {GROUP_SCRIPT_DATA, "SCRIPT_DATA"},
    {GROUP_DIRECTIVE, "DIRECTIVE"},
    {GROUP_SSI, "SSI"},
    {GROUP_LOOP, "LOOP"},
    {GROUP_ATV, "ATV"},
    {GROUP_JSP_SOURCE, "JSP_SOURCE"},
    {GROUP_NO_SOURCE, "NO_SOURCE"},
    {GROUP_JSP_XML, "JSP_XML"},
};

constexpr const char* kDeclaredTypes[] = {"other",    "CDATA",   "ID",       "IDREF",    "IDREFS",          "ENTITY",
                                          "ENTITIES", "NMTOKEN", "NMTOKENS", "NOTATION", "NAME_TOKEN_GROUP"};
constexpr const char* kDefaultTypes[] = {"a default value", "#FIXED", "#REQUIRED", "#IMPLIED"};

struct TextKind {
  Text::TextType type;
  const char* name;
};

constexpr TextKind kTexts[] = {
    {Text::TEXT_LITERAL, "#literal"}, {Text::TEXT_NORMAL, "#text"}, {Text::TEXT_FORMATTING, "#space"}};

enum class Answer { kNo, kDirect, kImplied };

template <std::size_t N>
const char* nameAt(const char* const (&names)[N], int index) {
  return index >= 0 && index < static_cast<int>(N) ? names[index] : "?";
}

std::vector<std::string> groupNames(unsigned long word) {
  std::vector<std::string> names;
  for (const NamedBit& group : kGroups) {
    if (word & group.bit) names.emplace_back(group.name);
  }
  return names;
}

std::string hexadecimal(unsigned long word) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%lx", word);
  return text;
}

std::string contentKind(const ElementDefinition& definition) {
  switch (definition.getContentType()) {
    case ElementDefinition::CONTENT_EMPTY:
      return "empty";
    case ElementDefinition::CONTENT_ANY:
      return "any";
    case ElementDefinition::CONTENT_TEXT:
      return "text";
    case ElementDefinition::CONTENT_CDATA:
      return "cdata";
    case ElementDefinition::CONTENT_ELEMENTS:
      break;
  }
  return "model";
}

// Which --jsp-version an element needs; empty if it is there under both.
std::string jspVersion(const ElementDefinition& definition) {
  return definition.getFlags() & 1 ? "1" : definition.getFlags() & 2 ? "0" : "";
}

std::vector<const AttributeDefinition*> attributesOf(const ElementDefinition& definition) {
  std::vector<const AttributeDefinition*> attributes;
  const Node* holder = definition.getAttributes();
  for (Node* child = holder ? holder->getFirstChild() : nullptr; child; child = child->getNextSibling()) {
    attributes.push_back(static_cast<const AttributeDefinition*>(child));
  }
  return attributes;
}

std::string attributeType(const AttributeDefinition& attribute) {
  const std::vector<std::string>* tokens = attribute.getAllowedTokens();
  if (!tokens) return nameAt(kDeclaredTypes, attribute.getDeclaredType());
  std::string list = "(";
  for (const std::string& token : *tokens) list += (list.size() > 1 ? "|" : "") + token;
  return list + ")";
}

// One element of each definition, so that any pair can be asked about.
class Elements {
 public:
  explicit Elements(const Library& library) : dom_(library.dom()), document_(dom_->createDocument("HTML")) {
    const DOM::JSPVersion version = dom_->getJSPVersion();
    for (ElementDefinition* definition : dom_->getDocumentType()->getElementDefinitions()) {
      // The DTD knows both generations of server tags; a document makes those of one.
      dom_->setJSPVersion(definition->getFlags() & 1 ? DOM::JSP_VERSION_1 : DOM::JSP_VERSION_0);
      definitions_.push_back(definition);
      elements_.emplace_back(document_->createElement(definition->getName().c_str()));
    }
    dom_->setJSPVersion(version);
  }
  ~Elements() {
    elements_.clear();
    dom_->deleteDocument(document_);
  }
  Elements(const Elements&) = delete;
  Elements& operator=(const Elements&) = delete;

  std::size_t size() const { return definitions_.size(); }
  const ElementDefinition& definition(std::size_t i) const { return *definitions_[i]; }
  const std::string& name(std::size_t i) const { return definitions_[i]->getName(); }

  // The place of an element by name, in any case of letters; size() if there is none.
  std::size_t find(const std::string& name) const {
    const ElementDefinition* wanted = dom_->getDocumentType()->getElementDefinition(name.c_str());
    return static_cast<std::size_t>(std::find(definitions_.begin(), definitions_.end(), wanted) - definitions_.begin());
  }

  struct Releaser {
    void operator()(Node* node) const { node->releaseRef(true); }
  };

  Answer holds(std::size_t parent, std::size_t child) const {
    if (document_->canContain(elements_[parent].get(), elements_[child].get())) return Answer::kDirect;
    return elements_[parent]->canContain(elements_[child].get(), nullptr, nullptr) ? Answer::kImplied : Answer::kNo;
  }
  Answer holdsText(std::size_t parent, Text::TextType type) const {
    const std::unique_ptr<Text, Releaser> text(document_->createTextNode(nullptr));
    text->setTextType(type);
    if (document_->canContain(elements_[parent].get(), text.get())) return Answer::kDirect;
    return elements_[parent]->canContain(text.get(), nullptr, nullptr) ? Answer::kImplied : Answer::kNo;
  }

 private:
  DOM* dom_;
  Document* document_;
  std::vector<const ElementDefinition*> definitions_;
  std::vector<std::unique_ptr<Element, Releaser>> elements_;
};

std::vector<std::string> heldNames(const Elements& elements, std::size_t parent, Answer answer) {
  std::vector<std::string> names;
  for (const TextKind& text : kTexts) {
    if (elements.holdsText(parent, text.type) == answer) names.emplace_back(text.name);
  }
  for (std::size_t child = 0; child < elements.size(); ++child) {
    if (elements.holds(parent, child) == answer) names.push_back(elements.name(child));
  }
  return names;
}

std::vector<std::string> holderNames(const Elements& elements, std::size_t child) {
  std::vector<std::string> names;
  for (std::size_t parent = 0; parent < elements.size(); ++parent) {
    if (elements.holds(parent, child) == Answer::kDirect) names.push_back(elements.name(parent));
  }
  return names;
}

// "  label   words ...", broken between words.
void printWords(Output& out, std::string_view label, const std::vector<std::string>& words) {
  if (words.empty()) return;
  out << "  ";
  out.paint(Colour::kFaint, label).pad(label.size() + 2, kLabelWidth);
  std::size_t column = kLabelWidth;
  bool first = true;
  for (const std::string& word : words) {
    if (!first && column + 1 + word.size() > kLineWidth) {
      out << "\n";
      out.pad(0, kLabelWidth);
      column = kLabelWidth;
    } else if (!first) {
      out << " ";
      ++column;
    }
    out << word;
    column += word.size();
    first = false;
  }
  out << "\n";
}

std::vector<std::string> splitWords(std::string_view text) {
  std::vector<std::string> words;
  while (!text.empty()) {
    const std::size_t blank = std::min(text.find(' '), text.size());
    if (blank) words.emplace_back(text.substr(0, blank));
    text.remove_prefix(std::min(blank + 1, text.size()));
  }
  return words;
}

void printElement(Output& out, const Elements& elements, std::size_t i) {
  const ElementDefinition& definition = elements.definition(i);
  out.paint(Colour::kName, elements.name(i)) << "\n";
  printWords(out, "identifier", {std::to_string(definition.getElementID())});
  printWords(out, "content", splitWords(definition.getContentText()));
  printWords(out, "begin tag", {definition.isStartOmittable() ? "may be omitted" : "required"});
  printWords(out, "end tag",
             {definition.isEmptyTag()       ? "none"
              : definition.isEndOmittable() ? "may be omitted"
                                            : "required"});
  if (const std::string version = jspVersion(definition); !version.empty()) {
    printWords(out, "only under", {"--jsp-version " + version});
  }
  std::vector<std::string> groups = groupNames(definition.getGroup());
  groups.insert(groups.begin(), hexadecimal(definition.getGroup()));
  printWords(out, "groups", groups);
  std::string_view label = "attributes";
  for (const AttributeDefinition* attribute : attributesOf(definition)) {
    printWords(out, label,
               {attribute->getName(), attributeType(*attribute), nameAt(kDefaultTypes, attribute->getDefaultType())});
    label = "";
  }
  printWords(out, "holds", heldNames(elements, i, Answer::kDirect));
  printWords(out, "with implied", heldNames(elements, i, Answer::kImplied));
  printWords(out, "stands in", holderNames(elements, i));
}

void printOverview(Output& out, const Elements& elements) {
  std::size_t width = 0;
  for (std::size_t i = 0; i < elements.size(); ++i) width = std::max(width, elements.name(i).size());
  const auto row = [&](const std::string& name, const std::string& tags, const std::string& content,
                       const std::string& attributes, const std::string& jsp, const std::string& groups) {
    out.paint(Colour::kName, name).pad(name.size(), width + 2);
    (out << tags).pad(tags.size(), 6);
    (out << content).pad(content.size(), 9);
    (out << attributes).pad(attributes.size(), 12);
    (out << jsp).pad(jsp.size(), 5) << groups << "\n";
  };
  row("element", "tags", "content", "attributes", "jsp", "groups");
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const ElementDefinition& definition = elements.definition(i);
    std::string groups = hexadecimal(definition.getGroup());
    for (const std::string& group : groupNames(definition.getGroup())) groups += " " + group;
    const std::string tags =
        std::string(definition.isStartOmittable() ? "O " : "- ") + (definition.isEndOmittable() ? "O" : "-");
    row(elements.name(i), tags, contentKind(definition), std::to_string(attributesOf(definition).size()),
        jspVersion(definition), groups);
  }
}

// Rows hold, columns are held: x directly, i only through elements that are implied, . not.
void printMatrix(Output& out, const Elements& elements) {
  std::vector<std::string> columns;
  for (const TextKind& text : kTexts) columns.emplace_back(text.name);
  for (std::size_t i = 0; i < elements.size(); ++i) columns.push_back(elements.name(i));
  std::size_t width = 0;
  for (const std::string& name : columns) width = std::max(width, name.size());
  // The names of the columns stand upright.
  for (std::size_t line = 0; line < width; ++line) {
    std::string letters(width + 1, ' ');
    for (const std::string& name : columns) {
      const std::size_t missing = width - name.size();
      letters += line < missing ? ' ' : name[line - missing];
    }
    out << letters.substr(0, letters.find_last_not_of(' ') + 1) << "\n";
  }
  for (std::size_t parent = 0; parent < elements.size(); ++parent) {
    out.paint(Colour::kName, elements.name(parent)).pad(elements.name(parent).size(), width + 1);
    std::string answers;
    auto add = [&answers](Answer answer) {
      answers += answer == Answer::kDirect ? 'x' : answer == Answer::kImplied ? 'i' : '.';
    };
    for (const TextKind& text : kTexts) add(elements.holdsText(parent, text.type));
    for (std::size_t child = 0; child < elements.size(); ++child) add(elements.holds(parent, child));
    out << answers << "\n";
  }
}

nlohmann::ordered_json describe(const Elements& elements, std::size_t i) {
  const ElementDefinition& definition = elements.definition(i);
  nlohmann::ordered_json json{{"name", elements.name(i)},
                              {"identifier", static_cast<int>(definition.getElementID())},
                              {"contentKind", contentKind(definition)},
                              {"content", definition.getContentText()},
                              {"beginTagOmittable", definition.isStartOmittable()},
                              {"endTagOmittable", definition.isEndOmittable()},
                              {"group", definition.getGroup()},
                              {"groups", groupNames(definition.getGroup())}};
  if (const std::string version = jspVersion(definition); !version.empty()) json["jspVersion"] = std::stoi(version);
  auto& attributes = json["attributes"] = nlohmann::ordered_json::array();
  for (const AttributeDefinition* attribute : attributesOf(definition)) {
    attributes.push_back({{"name", attribute->getName()},
                          {"type", attributeType(*attribute)},
                          {"default", nameAt(kDefaultTypes, attribute->getDefaultType())}});
  }
  json["holds"] = heldNames(elements, i, Answer::kDirect);
  json["holdsWithImplied"] = heldNames(elements, i, Answer::kImplied);
  return json;
}

void printJson(Output& out, const Elements& elements, std::size_t first, std::size_t last) {
  out << "[";
  for (std::size_t i = first; i < last; ++i) out << (i == first ? "" : ",\n") << describe(elements, i).dump();
  out << "]\n";
}

}  // namespace

ExitCode runDtd(const DtdOptions& options) {
  // CHOICE: the command shows both generations of server tags and says which needs which, so that one table holds all.
  const Library library(Settings{});
  if (!library.usable()) return kFailed;
  const Elements elements(library);
  const bool all = options.element.empty();
  const std::size_t wanted = all ? 0 : elements.find(options.element);
  if (wanted == elements.size()) {
    complain(options.element, "the DTD has no such element");
    return kFailed;
  }
  Output out;
  if (options.json) {
    printJson(out, elements, wanted, all ? elements.size() : wanted + 1);
  } else if (options.matrix) {
    printMatrix(out, elements);
  } else if (all) {
    const DocumentType& type = *library.dom()->getDocumentType();
    out << type.getName() << ": " << elements.size() << " elements, "
        << static_cast<std::size_t>(type.getCharacterEntityCount()) << " character entities\n\n";
    printOverview(out, elements);
  } else {
    printElement(out, elements, wanted);
  }
  return out.flush() ? kFine : kFailed;
}

}  // namespace zeldom40::tool
