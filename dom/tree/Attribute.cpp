// Values, quotes and the owner's notice of an attribute.
#include "dom/tree/Attribute.h"

#include "dom/document/DocumentAccess.h"
#include "dom/dtd/DocumentType.h"
#include "dom/dtd/FrameTables.h"
#include "dom/source/CodeConv.h"
#include "dom/source/MarkedText.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

// The end of the server code that begins at `at`; `at` itself if none does, or it has no end.
std::size_t endOfServerCode(const std::string& value, std::size_t at) {
  if (value.compare(at, 2, "<%") != 0) return at;
  const std::string_view end = value.compare(at, 4, "<%--") == 0 ? "--%>" : "%>";
  const std::size_t found = value.find(end, at + 2);
  return found == std::string::npos ? at : found + end.size();
}

}  // namespace

Attribute::Attribute(const std::string& name, const std::string& value, Element* owner)
    : document_(owner ? owner->getDocument() : nullptr), name_(name), owner_(owner) {
  takeValue(value);
}

Attribute::Attribute(const std::string& name, const std::string& value, Document* document)
    : document_(document), name_(name) {
  takeValue(value);
}

Attribute::Attribute(const Attribute& other)
    : document_(other.document_),
      name_(other.name_),
      definition_(other.definition_),
      value_(other.value_),
      parsedValue_(other.parsedValue_),
      quote_(other.quote_),
      specified_(other.specified_),
      error_(other.error_),
      type_(other.type_) {}

void Attribute::takeValue(const std::string& value) {
  value_ = value;
  if (value_.empty()) {
    quote_ = 0;
  } else if (value_.find('"') == std::string::npos) {
    quote_ = '"';
  } else if (value_.find('\'') == std::string::npos) {
    quote_ = '\'';
  } else {
    takeQuotedValue();
  }
}

// The value holds both quotes. Those in server code end no value and must stand as they are. If neither quote can hold
// the rest, the double quotes in that become references.
void Attribute::takeQuotedValue() {
  std::string rest;
  std::string safe;
  for (std::size_t at = 0; at < value_.size();) {
    const std::size_t code = endOfServerCode(value_, at);
    if (code > at) {
      safe.append(value_, at, code - at);
      at = code;
      continue;
    }
    rest += value_[at];
    if (value_[at] == '"') {
      safe += "&quot;";
    } else {
      safe += value_[at];
    }
    ++at;
  }
  const bool hasDouble = rest.find('"') != std::string::npos;
  quote_ = hasDouble && rest.find('\'') == std::string::npos ? '\'' : '"';
  if (hasDouble && quote_ == '"') value_ = std::move(safe);
}

void Attribute::touchOwner() {
  if (owner_ && owner_->getDocument()) DocumentAccess::recordChange(owner_->getDocument(), owner_);
  if (owner_) NodeAccess::noteChange(owner_);
}

void Attribute::setType(AttributeType type) {
  if (owner_) NodeAccess::noteChange(owner_);
  type_ = type;
}

void Attribute::setSpecified(bool specified) {
  if (owner_) NodeAccess::noteChange(owner_);
  specified_ = specified;
}

void Attribute::setName(const char* name) { setName(std::string(name ? name : "")); }

void Attribute::setName(const std::string& name) {
  touchOwner();
  name_ = name;
  if (owner_) owner_->setUpdateFlag(Node::UPDATE_ATTRIBUTE_MODIFIED);
}

void Attribute::setValue(const char* value) { setValue(std::string(value ? value : "")); }

void Attribute::setValue(const std::string& value) {
  touchOwner();
  takeValue(value);
  if (owner_) owner_->setUpdateFlag(Node::UPDATE_ATTRIBUTE_MODIFIED);
}

const char* Attribute::getParsedValue(bool plain) const {
  parsedValue_ = value_;
  if (parsedValue_.empty() || !document_) return parsedValue_.c_str();
  if (plain) {
    unescapeMarkup(parsedValue_, FrameTables::entitiesOfCurrentDOM(), CodeConv::GetCodepage());
  } else if (document_->getDocumentTypeObject()) {
    expandReferences(parsedValue_, 0, static_cast<int>(parsedValue_.size()),
                     FrameTables::entities(document_->getDocumentTypeObject()));
  }
  return parsedValue_.c_str();
}

}  // namespace zeldom40
