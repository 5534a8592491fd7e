// Internal. The names of one tag with many attributes.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace zeldom40 {

// Numbers names in the order in which they first come, byte for byte. An array of hashes finds them: a map with a node
// for each name took 60 bytes of scattered memory a name, and time for each grew by half from 25,000 names to 200,000.
class AttributeNames {
 public:
  bool empty() const { return names_.empty(); }

  // The number of `name`, which is the count of names so far if it is new. Its bytes must live until clear.
  std::size_t enter(std::string_view name) {
    if (2 * (names_.size() + 1) > slots_.size()) grow();
    const std::uint32_t hash = hashOf(name);
    std::size_t i = hash & mask();
    for (; slots_[i].number; i = (i + 1) & mask()) {
      if (slots_[i].hash == hash && names_[slots_[i].number - 1] == name) return slots_[i].number - 1;
    }
    names_.push_back(name);
    slots_[i] = {hash, static_cast<std::uint32_t>(names_.size())};
    return names_.size() - 1;
  }

  // Emptying the array costs its size, however few are in use: after a tag with very many names a new one is made.
  void clear() {
    if (names_.empty()) return;
    names_.clear();
    if (slots_.size() > kFewSlots) {
      slots_ = {};
    } else {
      slots_.assign(slots_.size(), Slot{});
    }
  }

 private:
  static constexpr std::size_t kFewest = 32;
  static constexpr std::size_t kFewSlots = 512;

  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t number = 0;  // counted from 1; 0: free
  };

  std::size_t mask() const { return slots_.size() - 1; }
  std::uint32_t hashOf(std::string_view name) const {
    std::uint64_t hash = seed_;
    for (char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * UINT64_C(0x100000001B3);
    return static_cast<std::uint32_t>(hash ^ hash >> 32);
  }
  void grow() {
    // A page must not be able to choose names that all collide.
    if (slots_.empty()) {
      const auto time = std::chrono::steady_clock::now().time_since_epoch().count();
      seed_ =
          (reinterpret_cast<std::uintptr_t>(this) ^ static_cast<std::uint64_t>(time)) * UINT64_C(0x9E3779B97F4A7C15);
    }
    std::vector<Slot> old(slots_.empty() ? kFewest : 2 * slots_.size());
    old.swap(slots_);
    for (const Slot& slot : old) {
      if (!slot.number) continue;
      std::size_t i = slot.hash & mask();
      while (slots_[i].number) i = (i + 1) & mask();
      slots_[i] = slot;
    }
  }

  std::vector<std::string_view> names_;
  std::vector<Slot> slots_;  // their number is a power of two, at least twice that of the names
  std::uint64_t seed_ = 0;
};

}  // namespace zeldom40
