// Internal. What is noted of nodes, by their addresses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zeldom40 {

class Node;

// Open addressing in one array: the standard's map allocates for each entry and reads two or three lines of memory for
// a look-up, which made the walks of a repair cost more for each node the larger the page was.
class NodeMap {
 public:
  // The note about `node`, null if there is none.
  const std::size_t* find(const Node* node) const {
    if (size_ == 0) return nullptr;
    for (std::size_t i = home(node);; i = (i + 1) & mask()) {
      if (slots_[i].node == node) return &slots_[i].value;
      if (!slots_[i].node) return nullptr;
    }
  }
  // Notes a value of a node that has none.
  void add(const Node* node, std::size_t value) {
    if (2 * (size_ + 1) > slots_.size()) grow();
    ++size_;
    place({node, value});
  }
  void erase(const Node* node) {
    if (size_ == 0) return;
    std::size_t hole = home(node);
    while (slots_[hole].node != node) {
      if (!slots_[hole].node) return;
      hole = (hole + 1) & mask();
    }
    --size_;
    // What stands behind moves up unless it would come before its home.
    for (std::size_t i = (hole + 1) & mask(); slots_[i].node; i = (i + 1) & mask()) {
      if (((i - home(slots_[i].node)) & mask()) < ((i - hole) & mask())) continue;
      slots_[hole] = slots_[i];
      hole = i;
    }
    slots_[hole].node = nullptr;
  }

 private:
  static constexpr std::size_t kFewest = 32;

  struct Slot {
    const Node* node;
    std::size_t value;
  };

  std::size_t mask() const { return slots_.size() - 1; }
  std::size_t home(const Node* node) const {
    const std::uint64_t mixed = reinterpret_cast<std::uintptr_t>(node) * UINT64_C(0x9E3779B97F4A7C15);
    return static_cast<std::size_t>(mixed >> 24) & mask();
  }
  void place(const Slot& slot) {
    std::size_t i = home(slot.node);
    while (slots_[i].node) i = (i + 1) & mask();
    slots_[i] = slot;
  }
  void grow() {
    std::vector<Slot> old(slots_.empty() ? kFewest : 2 * slots_.size(), Slot{nullptr, 0});
    old.swap(slots_);
    for (const Slot& slot : old) {
      if (slot.node) place(slot);
    }
  }

  std::vector<Slot> slots_;  // their number is a power of two, at least twice that of the notes
  std::size_t size_ = 0;
};

}  // namespace zeldom40
