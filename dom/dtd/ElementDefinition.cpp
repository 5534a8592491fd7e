// What the DTD says about one element type.
#include "dom/dtd/ElementDefinition.h"

#include "dom/dtd/DTDFrame.h"
#include "dom/dtd/DTDParser.h"
#include "dom/dtd/ModelGroup.h"
#include "dom/dtd/Parser.h"

namespace zeldom40 {

ElementDefinition::ElementDefinition() : Node(NODE_ELEMENT_DEFINITION) {}

ElementDefinition::~ElementDefinition() {
  for (ModelGroup* group : {model_, inclusions_, exclusions_}) {
    if (group) group->releaseRef(false);
  }
}

void ElementDefinition::setName(const char* name) { setName(std::string(name ? name : "")); }

void ElementDefinition::setName(const std::string& name) {
  Node::setName(name);
  upperName_ = SharedName(Parser::toUpperName(name));
}

void ElementDefinition::readDeferredContent() const { DTDParser::read(*deferredContent_); }

void ElementDefinition::readDeferredList() const {
  if (!deferredList_->list) DTDParser::read(*deferredList_);
  attributes_ = deferredList_->list;
  deferredList_ = nullptr;
}

bool ElementDefinition::canContain(Node* node, Node** found, std::vector<Node*>* path) {
  Node* token = nullptr;
  bool allowed = false;
  if (node) {
    const ContentQuestion question = ContentQuestion::about(*node);
    allowed = ModelWalk(question, elements_, path).canContain(*this, &token);
  }
  if (found) *found = token;
  return allowed;
}

bool ElementDefinition::includes(Node* node) const {
  return inclusions_->findFirstByName(node, elements_, nullptr) != nullptr;
}

bool ElementDefinition::excludes(Node* node) const {
  return exclusions_->findFirstByName(node, elements_, nullptr) != nullptr;
}

AttributeDefinition* ElementDefinition::getAttributeDefinition(const char* name) const {
  if (!name || !attributes()) return nullptr;
  return findAttribute(Parser::toUpperName(name));
}

AttributeDefinition* ElementDefinition::findAttribute(std::string_view upperName) const {
  return attributes() ? attributes_->byName.find(upperName) : nullptr;
}

bool ElementDefinition::checkAttributeValidity(const char* name, const char*, unsigned long* errors) const {
  if (!attributes()) return true;
  if (name && attributes_->byName.find(name)) return true;
  if (errors) *errors |= ERR_ATTR_INVALID_NAME;
  return false;
}

const AttributeDefinition* ElementDefinition::getAttributes() const {
  return attributes() ? &attributes_->holder : nullptr;
}

namespace {

const char* occurrenceSign(Occurrence occurrence) {
  static constexpr const char* kSigns[] = {"", "?", "+", "*"};
  return kSigns[static_cast<int>(occurrence)];
}

const char* connectorText(Connector connector) {
  static constexpr const char* kTexts[] = {" ", " | ", ", ", " & "};
  return kTexts[static_cast<int>(connector)];
}

// The items of the tree under `root`, which itself has no parentheses of its own, without recursion.
void appendItems(std::string& out, const ModelGroup& root) {
  const ModelGroup* group = &root;
  const Node* item = group->firstItem();
  while (true) {
    if (!item) {
      if (group == &root) return;
      out += ')';
      out += occurrenceSign(group->occurrence);
      item = group;
      group = static_cast<const ModelGroup*>(item->getParentNode()->getParentNode());
    } else {
      if (item->getNodeType() == Node::NODE_MODEL_GROUP) {
        out += '(';
        group = static_cast<const ModelGroup*>(item);
        item = group->firstItem();
        continue;
      }
      if (item->getNodeType() == Node::NODE_ELEMENT_TOKEN) {
        out += item->getName();
        out += occurrenceSign(static_cast<const ElementToken*>(item)->occurrence);
      } else {
        out += "#PCDATA";
      }
    }
    item = item->getNextSibling();
    if (item) out += connectorText(group->connector);
  }
}

void appendExceptions(std::string& out, char sign, const ModelGroup* group) {
  if (!group) return;
  if (!out.empty()) out += ' ';
  out += sign;
  const Node* first = group->firstItem();
  const bool grouped = first && !first->getNextSibling() && first->getNodeType() == Node::NODE_MODEL_GROUP;
  if (!grouped) out += '(';
  appendItems(out, *group);
  if (!grouped) out += ')';
}

}  // namespace

std::string ElementDefinition::getContentText() const {
  std::string text;
  switch (getContentType()) {
    case CONTENT_EMPTY:
      return "EMPTY";
    case CONTENT_ANY:
      return "ANY";
    case CONTENT_CDATA:
      return "CDATA";
    case CONTENT_TEXT:
    case CONTENT_ELEMENTS:
      break;
  }
  if (model_) appendItems(text, *model_);
  appendExceptions(text, '-', exclusions_);
  appendExceptions(text, '+', inclusions_);
  return text;
}

}  // namespace zeldom40
