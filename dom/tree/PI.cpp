// Target and data of a processing instruction.
#include "dom/tree/PI.h"

#include "dom/document/DocumentAccess.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

PI::PI(const std::string& target, const std::string& data) : Node(NODE_PI), data_(data) { Node::setName(target); }

PI::PI(const char* target, const char* data) : PI(std::string(target ? target : ""), std::string(data ? data : "")) {}

PI::PI(const PI& other) : Node(other), data_(other.data_) {}

PI::~PI() = default;

Node* PI::cloneSelf() const { return new PI(*this); }

void PI::setName(const char* name) { setName(std::string(name ? name : "")); }

void PI::setName(const std::string& name) {
  if (getDocument()) DocumentAccess::recordChange(getDocument(), this);
  noteChange();
  NodeAccess::noteEdit(this);
  Node::setName(name);
}

void PI::setData(const char* data) { setData(std::string(data ? data : "")); }

void PI::setData(const std::string& data) {
  if (getDocument()) DocumentAccess::recordChange(getDocument(), this);
  noteChange();
  NodeAccess::noteEdit(this);
  data_ = data;
}

}  // namespace zeldom40
