// Turns error words of nodes into findings with words and places.
#include "tools/zeldom/check_findings.h"

#include <optional>

#include "tools/zeldom/output.h"

namespace zeldom40::tool {

namespace {

constexpr std::size_t kNameBytes = 40;

constexpr Rule kRules[] = {
    {ERR_DOC_DOCTYPE_MISSING, "ERR_DOC_DOCTYPE_MISSING", "The page has no document type declaration"},
    {ERR_DOC_DOCTYPE_DUPLICATED, "ERR_DOC_DOCTYPE_DUPLICATED", "The page has two document type declarations"},
    {ERR_ELEMENT_INVALID_ATTR, "ERR_ELEMENT_INVALID_ATTR", "Something is wrong with the attributes of an element"},
    {ERR_ELEMENT_CANNOT_BE_CONTAINED, "ERR_ELEMENT_CANNOT_BE_CONTAINED", "An element stands where it may not stand"},
    {ERR_ELEMENT_CANNOT_CONTAIN, "ERR_ELEMENT_CANNOT_CONTAIN", "An element holds what it may not hold"},
    {ERR_ELEMENT_BEGIN_TAG_MISSING, "ERR_ELEMENT_BEGIN_TAG_MISSING", "An end tag has no begin tag"},
    {ERR_ELEMENT_END_TAG_MISSING, "ERR_ELEMENT_END_TAG_MISSING", "An element has no end tag"},
    {ERR_ELEMENT_NO_PARENT_CAN_ADOPT, "ERR_ELEMENT_NO_PARENT_CAN_ADOPT", "Nothing around an element may hold it"},
    {ERR_ELEMENT_PARSE_ERROR, "ERR_ELEMENT_PARSE_ERROR", "A tag is broken"},
    {ERR_ELEMENT_UNKNOWN, "ERR_ELEMENT_UNKNOWN", "An element is not known"},
    {ERR_ATTR_INVALID_NAME, "ERR_ATTR_INVALID_NAME", "An element has no attribute of that name"},
    {ERR_ATTR_INVALID_VALUE, "ERR_ATTR_INVALID_VALUE", "An attribute may not have that value"},
    {ERR_ATTR_VALUE_REQUIRED, "ERR_ATTR_VALUE_REQUIRED", "An attribute needs a value"},
    {ERR_ATTR_VALUE_DUPLICATED, "ERR_ATTR_VALUE_DUPLICATED", "A tag states an attribute twice"},
    {ERR_PI_DUPLICATED, "ERR_PI_DUPLICATED", "A document type declaration is not the first"},
    {ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST, "ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST",
     "Text stands where only white space may stand"},
    {ERR_ELEMENT_INVALID_CASE, "ERR_ELEMENT_INVALID_CASE", "The name of a begin tag is in the wrong case of letters"},
    {ERR_ELEMENT_INVALID_CASE_ATTR, "ERR_ELEMENT_INVALID_CASE_ATTR",
     "The name of an attribute is in the wrong case of letters"},
    {ERR_ELEMENT_INVALID_CASE_END, "ERR_ELEMENT_INVALID_CASE_END",
     "The name of an end tag is in the wrong case of letters"},
    {ERR_PI_SUBSET_CUT, "ERR_PI_SUBSET_CUT", "Declarations of a document type declaration are left out"},
};

Element* asElement(Node* node) {
  return node && node->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(node) : nullptr;
}

class Collector {
 public:
  Collector(Document* document, const SourceMap& map, std::string_view text)
      : document_(document), map_(map), text_(text), utf8_(isUtf8(text)) {}

  void add(Node* node, unsigned long error) {
    for (const Rule& rule : rules()) {
      if (!(error & rule.bit)) continue;
      if (rule.bit == ERR_ELEMENT_INVALID_ATTR && asElement(node)) {
        addAttributes(static_cast<Element*>(node), rule);
      } else {
        add(rule, message(rule.bit, node), place(rule.bit, node));
      }
    }
  }
  // Of the page as a whole, which has no place of its own.
  void addPage(unsigned long error) {
    if (error & ERR_DOC_DOCTYPE_MISSING) {
      add(rules().front(), "the page has no document type declaration", {0, 0});
    }
  }
  std::vector<Finding> take() { return std::move(findings_); }

 private:
  void add(const Rule& rule, std::string message, SourceMap::Range range) {
    if (!range.isKnown()) range = {0, 0};
    findings_.push_back({&rule, severity(rule.bit), std::move(message), range, map_.getPosition(range.begin),
                         map_.getPosition(range.end)});
  }

  // The element's flag says only that there is something; what, its attributes and its tag know.
  void addAttributes(Element* element, const Rule& whole) {
    const std::size_t before = findings_.size();
    const auto orElement = [&](SourceMap::Range range) { return range.isKnown() ? range : place(whole.bit, element); };
    // Of an unknown element nobody knows what it has.
    const bool takesAny = !element->getElementDefinition() || element->getElementID() == ID_SERVLET;
    const AttributeList* list = element->getAttributes();
    for (unsigned long i = 0; list && !takesAny && i < list->getLength(); ++i) {
      const Attribute* attribute = list->item(i);
      if (attribute->getAttributeDefinition()) continue;
      add(*ruleOf(ERR_ATTR_INVALID_NAME), name(element) + " has no attribute " + shown(attribute->getName()),
          orElement(map_.getAttributeName(element, i)));
    }
    for (const SourceMap::Repeat& repeat : map_.getRepeatedAttributes(element)) {
      add(*ruleOf(ERR_ATTR_VALUE_DUPLICATED),
          name(element) + " has the attribute " + shown(repeat.name) + " twice; the first one counts",
          orElement(repeat.range));
    }
    if (findings_.size() == before) add(whole, whole.summary, place(whole.bit, element));
  }

  Severity severity(unsigned long bit) {
    if (!(bit & ERR_DOC_SEVERE_PARSE_ERROR)) return Severity::kWarning;
    if (!(bit & (ERR_ELEMENT_BEGIN_TAG_MISSING | ERR_ELEMENT_END_TAG_MISSING))) return Severity::kSevere;
    // Asked for pages that have such an error alone.
    if (!half_) half_ = RepairPlanner::isHalfPage(document_);
    return *half_ ? Severity::kHint : Severity::kSevere;
  }

  std::string shown(std::string_view text) const { return preview(text, kNameBytes, utf8_); }

  std::string name(const Node* node) const {
    const auto* element = static_cast<const Element*>(node);
    if (const ElementDefinition* definition = element->getElementDefinition()) return "<" + definition->getName() + ">";
    return "<" + shown(node->getName()) + ">";
  }

  std::string holder(Node* node) const {
    const Element* parent = asElement(node->getParentNode());
    if (!parent || !parent->getParentNode()) return "at the top of a page";
    return "in " + name(parent);
  }

  std::string message(unsigned long bit, Node* node) const {
    const bool element = asElement(node) != nullptr;
    const std::string named = element ? name(node) : std::string();
    switch (bit) {
      case ERR_ELEMENT_CANNOT_BE_CONTAINED:
        return named + " may not stand " + holder(node);
      case ERR_ELEMENT_CANNOT_CONTAIN:
        return named + " holds what it may not hold";
      case ERR_ELEMENT_BEGIN_TAG_MISSING:
        return "the end tag of " + named + " has no begin tag";
      case ERR_ELEMENT_END_TAG_MISSING:
        return named + " has no end tag";
      case ERR_ELEMENT_NO_PARENT_CAN_ADOPT:
        return "nothing here may hold " + named;
      case ERR_ELEMENT_PARSE_ERROR:
        return "the tag " + named + " is broken";
      case ERR_ELEMENT_UNKNOWN:
        return node->getName().empty() ? "this tag is of no known kind" : named + " is no element of HTML 4.0";
      case ERR_PI_DUPLICATED:
        return "a second document type declaration";
      case ERR_PI_SUBSET_CUT:
        return "not everything that is declared here was read";
      case ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST:
        return "text may not stand " + holder(node);
      case ERR_ELEMENT_INVALID_CASE:
        return "upper and lower case count here: write " + named;
      case ERR_ELEMENT_INVALID_CASE_ATTR:
        return "upper and lower case count in the attribute names of " + named;
      case ERR_ELEMENT_INVALID_CASE_END:
        return "upper and lower case count in the end tag of " + named;
      default: {
        const Rule* rule = ruleOf(bit);
        return rule ? rule->summary : "";
      }
    }
  }

  SourceMap::Range place(unsigned long bit, Node* node) const {
    if (!asElement(node)) {
      SourceMap::Range range = map_.getRange(node);
      if (!range.isKnown()) return range;
      const auto isBlank = [&](std::size_t i) { return std::string_view(" \t\r\n").find(text_[i]) < 4; };
      while (range.begin < range.end && isBlank(range.begin)) ++range.begin;
      while (range.end > range.begin && isBlank(range.end - 1)) --range.end;
      return range;
    }
    const SourceMap::Range begin = map_.getBeginTag(node);
    const SourceMap::Range end = map_.getEndTag(node);
    if (bit == ERR_ELEMENT_INVALID_CASE_END || (begin.isKnown() && begin.isEmpty() && !end.isEmpty())) return end;
    if (begin.isKnown()) return begin;
    // What stands inside of a metadata pair is where the pair begins.
    while (node && !map_.getRange(node).isKnown()) node = node->getParentNode();
    const SourceMap::Range range = map_.getRange(node);
    return {range.begin, range.begin};
  }

  Document* document_;
  const SourceMap& map_;
  std::string_view text_;
  bool utf8_;
  std::optional<bool> half_;
  std::vector<Finding> findings_;
};

}  // namespace

std::span<const Rule> rules() { return kRules; }

const Rule* ruleOf(unsigned long bit) {
  for (const Rule& rule : rules()) {
    if (rule.bit == bit) return &rule;
  }
  return nullptr;
}

std::vector<Finding> findErrors(Document* document, const SourceMap& map, std::string_view text) {
  Collector collector(document, map, text);
  collector.addPage(document->getError());
  for (const _dom_error_packet* packet : document->getErrorList()) collector.add(packet->node, packet->error);
  return collector.take();
}

}  // namespace zeldom40::tool
