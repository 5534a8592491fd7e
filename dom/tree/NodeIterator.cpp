// Positions in child lists and result lists.
#include "dom/tree/NodeIterator.h"

#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

void releaseHolder(ChildListHolder* holder) {
  if (holder && --holder->count == 0) delete holder;
}

}  // namespace

NodeIterator::NodeIterator() : holder_(new ChildListHolder) {}

NodeIterator::NodeIterator(ChildListHolder* holder, Node* owner) : owner_(owner), holder_(holder) { ++holder_->count; }

NodeIterator::NodeIterator(std::vector<Node*>* results) : holder_(new ChildListHolder) {
  if (!results) return;
  holder_->list = ChildIndex(*results);
  delete results;
}

NodeIterator::NodeIterator(const NodeIterator& other) : owner_(other.owner_), holder_(other.holder_) {
  if (holder_) ++holder_->count;
}

NodeIterator& NodeIterator::operator=(const NodeIterator& other) {
  if (this == &other) return *this;
  if (other.holder_) ++other.holder_->count;
  releaseHolder(holder_);
  holder_ = other.holder_;
  owner_ = other.owner_;
  return *this;
}

NodeIterator::~NodeIterator() { releaseHolder(holder_); }

const ChildIndex* NodeIterator::list() const { return holder_ ? &holder_->list : nullptr; }

int NodeIterator::getLength() const { return list() ? static_cast<int>(list()->size()) : -1; }

Node* NodeIterator::getCurrent() const {
  if (position_ < 0 || position_ >= getLength()) return nullptr;
  return (*list())[static_cast<std::size_t>(position_)];
}

Node* NodeIterator::toNextNode() { return moveTo(position_ + 1); }

Node* NodeIterator::toPrevNode() { return position_ > 0 ? moveTo(position_ - 1) : nullptr; }

Node* NodeIterator::toFirstNode() { return moveTo(0); }

Node* NodeIterator::toLastNode() { return moveTo(getLength() - 1); }

Node* NodeIterator::moveTo(int index) {
  if (index < 0 || index >= getLength()) return nullptr;
  position_ = index;
  return getCurrent();
}

Node* NodeIterator::toNode(Node* replacement) {
  Node* current = getCurrent();
  // The owner of an iterator may be gone; a current node proves that it is not, for a dead node's list is empty.
  return owner_ && current ? owner_->replaceChild(current, replacement) : nullptr;
}

}  // namespace zeldom40
