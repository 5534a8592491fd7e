// Internal. Writes what the server gets: tags made anew from attributes, indented, with the scriptlet state kept.
#pragma once

#include <string>

#include "dom/dynamic/AttributeReader.h"

namespace zeldom40 {

class Document;
class Element;
class MetaData;
class Text;
struct RuntimeTextState;

// Names in lower case, values unescaped, so that a JSP expression can stand in a value.
std::string makeBeginTag(const Element* element, const AttributeMap& attributes);
// Empty if hasNoEndTag.
std::string makeEndTag(const Element* element);
bool hasNoEndTag(const Element* element);
// Text of the page may not stand in the element. False if it has no end tag.
bool cannotHoldText(Document* document, const Element* element);

// Write the element, its children, one of its tags or a text, nested dynamic elements by their run-time text.
void emitBeginTag(Element* element, std::string& out, RuntimeTextState& state);
void emitBeginTag(Element* element, const AttributeMap& attributes, std::string& out, RuntimeTextState& state);
void emitEndTag(Element* element, std::string& out, RuntimeTextState& state);
void emitChildren(Element* element, std::string& out, RuntimeTextState& state);
void emitElement(Element* element, std::string& out, RuntimeTextState& state, bool ignoreMetaData);
void emitText(Text* text, std::string& out, RuntimeTextState& state);

// The body of DynamicData::generate. It climbs to the top for the loops that the element stands in, unless the caller
// knows that no element with metadata stands above.
void generateRuntimeText(MetaData* metaData, std::string& out, RuntimeTextState& state, bool isOutermost);

}  // namespace zeldom40
