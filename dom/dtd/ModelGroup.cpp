// Groups and tokens of content models, and the walk that answers what may stand where.
#include "dom/dtd/ModelGroup.h"

#include "dom/dtd/ElementCatalogue.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/Text.h"

namespace zeldom40 {

ModelGroup::ModelGroup() : Node(NODE_MODEL_GROUP) { NodeAccess::append(this, new Node()); }

void ModelGroup::add(Node* item) { NodeAccess::appendParsed(getFirstChild(), item); }

Node* ModelGroup::findFirstByName(Node* name, Hash<ElementDefinition>* definitions, std::vector<Node*>* path) {
  if (!name) return nullptr;
  const ContentQuestion question = ContentQuestion::about(*name);
  return ModelWalk(question, definitions, path).find(*this);
}

ElementToken::ElementToken(const SharedName& name, int nameId)
    : Node(NODE_ELEMENT_TOKEN), nameId_(static_cast<std::int16_t>(nameId)) {
  NodeAccess::setName(this, name);
}

PCDATAToken::PCDATAToken(const SharedName& textName) : Node(NODE_PCDATA_TOKEN) { NodeAccess::setName(this, textName); }

// --- questions -------------------------------------------------------------------------------------------------------

ContentQuestion ContentQuestion::about(const Node& node) {
  switch (node.getNodeType()) {
    case Node::NODE_ELEMENT: {
      const auto& element = static_cast<const Element&>(node);
      ContentQuestion question =
          aboutElement(node.getName(), (element.getElementGroup() & (GROUP_ANYWHERE | GROUP_LOOP)) != 0);
      question.undefined = element.getElementType() == Element::ELEMENT_UNDEFINED;
      return question;
    }
    case Node::NODE_TEXT:
      return aboutText(static_cast<const Text&>(node).getTextType());
    case Node::NODE_ELEMENT_TOKEN:
      return aboutElement(node.getName(), /*anywhere=*/false);
    case Node::NODE_PCDATA_TOKEN:
      return aboutText(Text::TEXT_NORMAL);
    case Node::NODE_COMMENT:
    case Node::NODE_PI:
    case Node::NODE_META_DATA: {
      ContentQuestion question;
      question.kind = Kind::kRemark;
      return question;
    }
    default:
      return {};
  }
}

ContentQuestion ContentQuestion::aboutElement(std::string_view upperName, bool anywhere) {
  ContentQuestion question;
  question.kind = Kind::kElement;
  question.name = upperName;
  question.anywhere = anywhere;
  return question;
}

ContentQuestion ContentQuestion::aboutText(int textType) {
  ContentQuestion question;
  question.kind = Kind::kText;
  question.textType = textType;
  return question;
}

// --- the walk --------------------------------------------------------------------------------------------------------

ModelWalk::~ModelWalk() {
  while (marked_) {
    const ElementDefinition* definition = marked_;
    marked_ = definition->nextMarked_ == definition ? nullptr : definition->nextMarked_;
    definition->nextMarked_ = nullptr;
    definition->walked_ = false;
  }
}

// The last of the list links to itself, so that null tells "not in it".
void ModelWalk::mark(const ElementDefinition& definition) {
  definition.walked_ = true;
  if (definition.nextMarked_) return;
  definition.nextMarked_ = marked_ ? marked_ : &definition;
  marked_ = &definition;
}

// The kind counts too: a DTD may declare an element with the name that texts have.
bool ModelWalk::fits(const Node& token) const {
  if (question_.kind == ContentQuestion::Kind::kText) return token.getNodeType() == Node::NODE_PCDATA_TOKEN;
  return question_.kind == ContentQuestion::Kind::kElement && token.getNodeType() == Node::NODE_ELEMENT_TOKEN &&
         token.getName() == question_.name;
}

Node* ModelWalk::find(const ModelGroup& group) {
  if (depth_ >= kDeepest) return nullptr;
  ++depth_;
  Node* result = nullptr;
  for (Node* item = group.firstItem(); item && !result; item = item->getNextSibling()) {
    if (item->getNodeType() == Node::NODE_PCDATA_TOKEN && !fits(*item)) continue;
    if (path_) path_->push_back(item);
    if (item->getNodeType() == Node::NODE_MODEL_GROUP) {
      result = find(static_cast<const ModelGroup&>(*item));
    } else if (fits(*item)) {
      result = item;
    } else {
      result = findImplied(static_cast<const ElementToken&>(*item));
    }
    if (path_ && !result) path_->pop_back();
  }
  --depth_;
  return result;
}

// Looks inside the element that `token` names, if it may be implied. KEPT: only a token that fits counts here, so what
// is allowed without a token (in ANY content, an element that may stand anywhere, an undefined one) implies nothing.
Node* ModelWalk::findImplied(const ElementToken& token) {
  if (!elements_) return nullptr;
  const ElementDefinition* definition = token.definition(*elements_);
  if (!definition || !definition->isStartOmittable() || definition->walked_) return nullptr;
  Node* found = nullptr;
  canContain(*definition, &found);
  return found;
}

bool ModelWalk::excludes(const ElementDefinition& definition) {
  if (!definition.exclusions_) return false;
  std::vector<Node*>* path = path_;
  path_ = nullptr;
  const bool found = find(*definition.exclusions_) != nullptr;
  path_ = path;
  return found;
}

bool ModelWalk::canContain(const ElementDefinition& definition, Node** found) {
  using Kind = ContentQuestion::Kind;
  *found = nullptr;
  const Kind kind = question_.kind;
  if (kind == Kind::kElement && question_.undefined) return true;
  switch (definition.getContentType()) {
    case ElementDefinition::CONTENT_ANY:
      return true;
    case ElementDefinition::CONTENT_TEXT:
      return kind == Kind::kText || (kind == Kind::kElement && question_.anywhere);
    case ElementDefinition::CONTENT_CDATA:
      return kind == Kind::kText && question_.textType == Text::TEXT_LITERAL;
    case ElementDefinition::CONTENT_EMPTY:
      return false;
    case ElementDefinition::CONTENT_ELEMENTS:
      break;
  }
  if (kind == Kind::kRemark) return true;
  if (kind == Kind::kOther) return false;
  if (kind == Kind::kText && question_.textType == Text::TEXT_FORMATTING) return true;
  mark(definition);
  if (kind == Kind::kElement && question_.anywhere && !excludes(definition)) return true;
  const std::size_t pathLength = path_ ? path_->size() : 0;
  Node* token = definition.model_ ? find(*definition.model_) : nullptr;
  if (!token && definition.inclusions_) {
    token = find(*definition.inclusions_);
    if (token && excludes(definition)) token = nullptr;
  }
  if (!token) {
    if (path_) path_->resize(pathLength);
    return false;
  }
  // What led to a match may be asked again, on the way through an exclusion.
  definition.walked_ = false;
  *found = token;
  return true;
}

}  // namespace zeldom40
