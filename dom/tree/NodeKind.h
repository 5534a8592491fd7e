// What the nodes of one page and one name have in common.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "dom/tree/PageSlice.h"
#include "dom/tree/SharedName.h"

namespace zeldom40 {

class Document;
class ElementDefinition;

// A node holds one pointer to its kind instead of four to document, page, name and definition: 24 bytes less in each
// element, 16 in each text. Kinds are counted and never change; a node that is renamed or moved to another document
// gets another kind. No two are alike, so that a page has some dozens. Not safe for two threads, like the tree.
class NodeKind {
 public:
  NodeKind(const NodeKind&) = delete;
  NodeKind& operator=(const NodeKind&) = delete;

  // The one kind that is so, with one reference for the caller; null, the kind of nodes that have nothing yet, if all
  // four are.
  static NodeKind* find(Document* document, const PageRef& page, const SharedName& name, ElementDefinition* definition);
  void addRef() { ++count_; }
  void release() {
    if (--count_ == 0) end();
  }

  Document* const document;  // not owned
  const PageRef page;
  const SharedName name;
  ElementDefinition* const definition;  // the DTD outlives its documents

  // What a node without a kind has.
  static const PageRef& noPage();
  static const SharedName& noName();

  // Each page makes its kinds anew; from the pool of nodes that costs a sixth of the heap's way.
  static void* operator new(std::size_t size);
  static void operator delete(void* memory, std::size_t size);

 private:
  struct Table;

  NodeKind(Document* ofDocument, const PageRef& ofPage, const SharedName& ofName, ElementDefinition* ofDefinition);
  ~NodeKind();
  void end();

  NodeKind* nextInTable_ = nullptr;
  std::uint32_t count_ = 1;
};

// One reference on a kind.
class KindRef {
 public:
  KindRef() = default;
  // Takes over the reference.
  explicit KindRef(NodeKind* kind) : kind_(kind) {}
  KindRef(KindRef&& other) noexcept : kind_(std::exchange(other.kind_, nullptr)) {}
  KindRef& operator=(KindRef other) noexcept {
    std::swap(kind_, other.kind_);
    return *this;
  }
  ~KindRef() {
    if (kind_) kind_->release();
  }
  NodeKind* get() const { return kind_; }
  explicit operator bool() const { return kind_ != nullptr; }
  // One more reference, for a node.
  NodeKind* share() const {
    if (kind_) kind_->addRef();
    return kind_;
  }

 private:
  NodeKind* kind_ = nullptr;
};

}  // namespace zeldom40
