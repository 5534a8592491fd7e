// Internal. The library's own way to an attribute's owner, quote, definition and error word.
#pragma once

#include <string>
#include <string_view>

#include "dom/tree/Attribute.h"

namespace zeldom40 {

struct AttributeAccess {
  static void setOwner(Attribute* a, Element* owner) { a->owner_ = owner; }
  static void setDocument(Attribute* a, Document* document) { a->document_ = document; }
  static Document* document(const Attribute* a) { return a->document_; }
  // Whether it stands in a list, which deletes it.
  static bool isListed(const Attribute* a) { return a->listed_; }
  static void setListed(Attribute* a, bool listed) { a->listed_ = listed; }
  // The quote to write with.
  static char quote(const Attribute* a) { return a->getQuote(); }
  // What a value that stands in a source is stored as.
  static std::string storedValue(std::string_view written) {
    return Attribute({}, std::string(written), static_cast<Document*>(nullptr)).getValue();
  }
  static void setDefinition(Attribute* a, const AttributeDefinition* definition) { a->definition_ = definition; }
  static void setError(Attribute* a, unsigned long bits) { a->error_ |= static_cast<std::uint32_t>(bits); }
  static void resetError(Attribute* a, unsigned long bits) { a->error_ &= ~static_cast<std::uint32_t>(bits); }
  static unsigned long error(const Attribute* a) { return a->error_; }
};

}  // namespace zeldom40
