// The table of kinds of nodes.
#include "dom/tree/NodeKind.h"

#include <cstddef>

#include "dom/tree/NodePool.h"
#include "dom/tree/PageBuffer.h"

namespace zeldom40 {

// Chains of the kinds that live, found by what they are. It holds no reference; it goes with the last kind, whenever
// that is, so that a host's static objects may outlive it.
struct NodeKind::Table {
  static constexpr std::size_t kFewest = 256;

  static std::size_t home(const Document* document, const PageBuffer* page, const void* name,
                          const ElementDefinition* definition) {
    constexpr std::uint64_t kMix = UINT64_C(0x9E3779B97F4A7C15);
    std::uint64_t mixed = reinterpret_cast<std::uintptr_t>(name) * kMix;
    mixed ^= (reinterpret_cast<std::uintptr_t>(page) ^ reinterpret_cast<std::uintptr_t>(document) << 5) * kMix >> 17;
    mixed ^= reinterpret_cast<std::uintptr_t>(definition) << 11;
    return static_cast<std::size_t>(mixed * kMix >> 32) & (size - 1);
  }
  static std::size_t home(const NodeKind* kind) {
    return home(kind->document, kind->page.get(), kind->name.record(), kind->definition);
  }
  static void resize(std::size_t to) {
    NodeKind** const old = chains;
    const std::size_t oldSize = size;
    chains = new NodeKind* [to] {};
    size = to;
    for (std::size_t i = 0; i < oldSize; ++i) {
      for (NodeKind* kind = old[i]; kind;) {
        NodeKind* const next = kind->nextInTable_;
        enter(kind);
        kind = next;
      }
    }
    delete[] old;
  }
  static void enter(NodeKind* kind) {
    NodeKind*& head = chains[home(kind)];
    kind->nextInTable_ = head;
    head = kind;
  }

  static NodeKind** chains;
  static std::size_t size;  // a power of two
  static std::size_t used;
};

NodeKind** NodeKind::Table::chains = nullptr;
std::size_t NodeKind::Table::size = 0;
std::size_t NodeKind::Table::used = 0;

NodeKind::NodeKind(Document* ofDocument, const PageRef& ofPage, const SharedName& ofName,
                   ElementDefinition* ofDefinition)
    : document(ofDocument), page(ofPage), name(ofName), definition(ofDefinition) {}

NodeKind::~NodeKind() = default;

NodeKind* NodeKind::find(Document* document, const PageRef& page, const SharedName& name,
                         ElementDefinition* definition) {
  if (!document && !page && name.empty() && !definition) return nullptr;
  if (Table::used >= Table::size) Table::resize(Table::size == 0 ? Table::kFewest : 2 * Table::size);
  for (NodeKind* kind = Table::chains[Table::home(document, page.get(), name.record(), definition)]; kind;
       kind = kind->nextInTable_) {
    if (kind->name.sameRecord(name) && kind->page.get() == page.get() && kind->document == document &&
        kind->definition == definition) {
      kind->addRef();
      return kind;
    }
  }
  auto* kind = new NodeKind(document, page, name, definition);
  Table::enter(kind);
  ++Table::used;
  return kind;
}

void NodeKind::end() {
  NodeKind** link = &Table::chains[Table::home(this)];
  while (*link != this) link = &(*link)->nextInTable_;
  *link = nextInTable_;
  if (--Table::used == 0) {
    delete[] Table::chains;
    Table::chains = nullptr;
    Table::size = 0;
  } else if (Table::size > Table::kFewest && Table::used < Table::size / 8) {
    Table::resize(Table::size / 2);
  }
  delete this;
}

void* NodeKind::operator new(std::size_t size) { return NodePool::allocate(size); }
void NodeKind::operator delete(void* memory, std::size_t size) { NodePool::release(memory, size); }

const PageRef& NodeKind::noPage() {
  static const PageRef none;
  return none;
}

const SharedName& NodeKind::noName() {
  static const SharedName none;
  return none;
}

}  // namespace zeldom40
