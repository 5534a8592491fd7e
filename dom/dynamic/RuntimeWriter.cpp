// Tags from attributes, and texts.
#include "dom/dynamic/RuntimeWriter.h"

#include <string_view>

#include "dom/document/Document.h"
#include "dom/dtd/ElementDefinition.h"
#include "dom/dynamic/Generator.h"
#include "dom/source/CharHelpers.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

namespace {

const std::string& definedName(const Element* element) {
  return element->getElementDefinition() ? element->getElementDefinition()->getName() : element->getName();
}

std::string lowered(std::string text) {
  lowerCase(text);
  return text;
}

// The part of a name behind its first `mark`, or all of it.
std::string nameBehind(const std::string& name, char mark) {
  const std::size_t at = name.find(mark);
  return lowered(at == std::string::npos ? name : name.substr(at + 1));
}

// A tag that the DTD does not know keeps its text for ever: nothing else would be the page's custom tag again.
bool isForeign(const Element* element) {
  return element->getElementType() == Element::ELEMENT_UNDEFINED && element->getDocument() &&
         element->getDocument()->isHTML();
}

bool keepsSource(const Element* element) {
  return isForeign(element) || ((element->getElementGroup() & GROUP_SCRIPT_DATA) && !element->isAlternative());
}

std::string sourceBeginTag(const Element* element) {
  return std::string(ElementAccess::rawBeginTag(const_cast<Element*>(element)));
}

}  // namespace

std::string makeBeginTag(const Element* element, const AttributeMap& attributes) {
  if (keepsSource(element)) return sourceBeginTag(element);
  const unsigned long group = element->getElementGroup();
  const bool isDirective = (group & GROUP_DIRECTIVE) && !element->isAlternative();
  const std::string& name = definedName(element);
  std::string tag = "<";
  if (isDirective) {
    tag += "%@";
    if (element->getElementID() != ID_JSP_DIRECTIVE) tag += ' ' + nameBehind(name, '.');
  } else if (group & GROUP_SSI) {
    tag += "!--#" + nameBehind(name, ':');
  } else {
    constexpr unsigned long kLowerCaseContent = 0x10000000;
    const Node* parent = element->getParentNode();
    const bool isLower = parent && parent->getNodeType() == Node::NODE_ELEMENT &&
                         (static_cast<const Element*>(parent)->getElementGroup() & kLowerCaseContent);
    tag += isLower ? lowered(name) : name;
  }
  for (const auto& [attribute, value] : attributes) {
    tag += ' ' + lowered(attribute);
    if (!value.empty()) tag += "=\"" + value + '"';
  }
  if (isDirective) {
    tag += " %";
  } else if (group & GROUP_SSI) {
    tag += " --";
  } else if ((group & GROUP_XML_TAG) && !element->hasChildNodes()) {
    tag += " /";
  }
  return tag + '>';
}

bool hasNoEndTag(const Element* element) {
  const unsigned long group = element->getElementGroup();
  return element->isEmptyTag() || (group & GROUP_ITEM) || ((group & GROUP_XML_TAG) && !element->hasChildNodes()) ||
         ((group & GROUP_SCRIPT_DATA) && !element->isAlternative());
}

std::string makeEndTag(const Element* element) {
  if (isForeign(element)) return std::string(ElementAccess::rawEndTag(const_cast<Element*>(element)));
  return hasNoEndTag(element) ? std::string() : "</" + definedName(element) + '>';
}

void emitBeginTag(Element* element, std::string& out, RuntimeTextState& state) {
  emitBeginTag(element, keepsSource(element) ? AttributeMap() : attributeMap(element), out, state);
}

void emitBeginTag(Element* element, const AttributeMap& attributes, std::string& out, RuntimeTextState& state) {
  closeScriptlet(out, state);
  if (element->getElementGroup() & GROUP_BLOCK) {
    out += kLineEnd;
    writeIndent(out, state, 0);
    indentIn(state);
  }
  out += makeBeginTag(element, attributes);
}

void emitText(Text* text, std::string& out, RuntimeTextState& state) {
  const std::string_view data = TextAccess::rawData(text);
  if (data.empty()) return;
  if (state.inScriptlet) {
    // KEPT: in front of text, and nowhere else, the end of a scriptlet has a line of its own and no blank.
    out += kLineEnd;
    writeIndent(out, state, 0);
    out += "%>";
    state.inScriptlet = false;
  }
  out += data;
}

}  // namespace zeldom40
