// Looks whether what is saved of a tree is the tree, although only what changed is looked at when it is saved.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <utility>

#include "dom/document/TreeSnapshot.h"
#include "dom/tree/AttributeAccess.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/PI.h"
#include "dom/tree/TextAccess.h"
#include "dom/zeldom40.h"

namespace zeldom40::fuzz {

class SnapshotCheck {
 public:
  // Saves the tree of `root` as a record would and compares the saved tree node by node; so also that of a save before,
  // with which this one shares what did not change. Returns what is wrong.
  std::string look(Node* root) {
    TreeSnapshot::Places places;
    saved_.emplace_back(TreeSnapshot::take(root, {}, &places), describe(root));
    std::string fault = compare(saved_.back(), "the state that was just saved");
    if (saved_.size() > 3) {
      if (fault.empty()) fault = compare(saved_.front(), "an older saved state");
      saved_.pop_front();
    }
    return fault;
  }
  void clear() { saved_.clear(); }

 private:
  using Saved = std::pair<TreeSnapshot, std::string>;

  static std::string compare(const Saved& saved, const char* what) {
    Node* copy = saved.first.copy();
    const std::string got = describe(copy);
    if (copy) copy->releaseRef(true);
    return got == saved.second ? std::string() : std::string(what) + " is\n" + got + "instead of\n" + saved.second;
  }

  static std::string describe(Node* top) {
    std::string all;
    for (Node* n = top; n; n = NodeAccess::nextInSubtree(n, top)) {
      for (Node* up = n; up != top; up = up->getParentNode()) all += ' ';
      describeOne(n, all);
    }
    return all;
  }

  // Looks at a copy, so that no question changes the node.
  static void describeOne(Node* node, std::string& all) {
    const std::unique_ptr<Node> copy(node->makeClone(false));
    add(all, copy->getNodeType(), copy->getError(), copy->isViewable(), copy->isAbsolute());
    add(all, reinterpret_cast<std::uintptr_t>(copy->getDocument()));
    all += copy->getName();
    if (auto* e = copy->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(copy.get()) : nullptr) {
      add(all, e->getElementID(), e->getElementType(), ElementAccess::flags(e), ElementAccess::isBeginTagDirty(e));
      add(all, ElementAccess::page(e).get() != nullptr, ElementAccess::definition(e) != nullptr);
      add(all, ElementAccess::beginSlice(e), ElementAccess::endSlice(e));
      if (AttributeList* list = e->getAttributes()) {
        for (unsigned long i = 0; i < list->getLength(); ++i) {
          const Attribute* a = list->item(i);
          all += a->getName() + AttributeAccess::quote(a) + a->getValue();
          add(all, a->getType(), a->getSpecified(), AttributeAccess::error(a));
          add(all, a->getAttributeDefinition() != nullptr);
        }
      }
      if (const MetaData* md = e->getMetaData()) {
        add(all, md->getType(), md->isDirty());
        all += md->getRuntimeText();
      }
      all += e->getRawBeginTag() + e->getRawEndTag();
    } else if (copy->getNodeType() == Node::NODE_TEXT) {
      auto* t = static_cast<Text*>(copy.get());
      add(all, TextAccess::flags(t), TextAccess::page(t).get() != nullptr, TextAccess::slice(t));
      add(all, TextAccess::ownData(t) != nullptr, TextAccess::ownRaw(t) != nullptr);
      all += t->getData() + '|' + t->getRawData();
    } else if (copy->getNodeType() == Node::NODE_COMMENT) {
      auto* c = static_cast<Comment*>(copy.get());
      add(all, c->isJSP(), CommentAccess::isUntouched(c), CommentAccess::slice(c), CommentAccess::body(c));
      all += c->getData() + '|' + c->getRawString();
    } else if (copy->getNodeType() == Node::NODE_PI) {
      all += static_cast<PI*>(copy.get())->getData();
    }
    all += '\n';
  }

  template <class... Values>
  static void add(std::string& all, const Values&... values) {
    (put(all, values), ...);
  }
  static void put(std::string& all, Slice slice) { add(all, slice.offset, slice.length); }
  template <class Value>
  static void put(std::string& all, Value value) {
    all += std::to_string(static_cast<unsigned long>(value)) + ' ';
  }

  std::deque<Saved> saved_;
};

}  // namespace zeldom40::fuzz
