// Internal. Which definition a name of a page gets.
#pragma once

namespace zeldom40 {

class DocumentType;
class ElementDefinition;

// Whether the JSP version of the newest DOM lets pages use the definition; the DTD itself knows both generations.
bool isVisibleDefinition(const ElementDefinition& definition);

// The definition for a name in any case, null if there is none or it is not visible.
ElementDefinition* findVisibleDefinition(const DocumentType* type, const char* name);

}  // namespace zeldom40
