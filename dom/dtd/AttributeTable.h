// Internal. The attributes of one list by name, and the names that lists have in common.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "dom/dtd/AttributeDefinition.h"
#include "dom/dtd/Hash.h"
#include "dom/tree/SharedName.h"

namespace zeldom40 {

// Definitions by upper-case name, the first of a name. They are chained by a member of their own, which costs no memory
// of the heap: the built-in DTD has 1247 of them. As in Hash, a chain that has become long takes no more.
class AttributeTable {
 public:
  AttributeDefinition* find(std::string_view upperName) const {
    const std::uint32_t hash = nameHash(upperName);
    const auto half = static_cast<std::uint16_t>(hash);
    for (AttributeDefinition* entry = buckets_[hash % kBuckets]; entry; entry = entry->nextInBucket_) {
      if (entry->nameHash_ == half && entry->upperName_.view() == upperName) return entry;
    }
    if (overflow_.empty()) return nullptr;
    const auto found = overflow_.find(upperName);
    return found == overflow_.end() ? nullptr : found->second;
  }

  // Enters a definition, which has its name and is borrowed, unless its name is there. `hash` is that of the name.
  void insert(AttributeDefinition* definition, std::uint32_t hash) {
    const std::string_view upperName = definition->upperName_.view();
    const auto half = static_cast<std::uint16_t>(hash);
    definition->nameHash_ = half;
    AttributeDefinition*& head = buckets_[hash % kBuckets];
    int length = 0;
    for (AttributeDefinition* entry = head; entry; entry = entry->nextInBucket_, ++length) {
      if (entry->nameHash_ == half && entry->upperName_.view() == upperName) return;
    }
    if (length < kLongestChain) {
      definition->nextInBucket_ = head;
      head = definition;
    } else {
      overflow_.try_emplace(std::string(upperName), definition);
    }
  }

 private:
  static constexpr std::uint32_t kBuckets = 19;
  static constexpr int kLongestChain = 24;

  std::array<AttributeDefinition*, kBuckets> buckets_{};
  std::map<std::string, AttributeDefinition*, std::less<>> overflow_;
};

// The attribute definitions of one list, in order and by upper-case name, shared by the elements that it names.
struct AttributeListHolder {
  AttributeDefinition holder;
  AttributeTable byName;
};

// Names of attributes that were met lately: a DTD has the same few in most of its lists, and one record of a name
// serves them all. A name takes the place of another one, so that no text makes this grow.
class ListedNames {
 public:
  struct Entry {
    SharedName name;  // as the DTD spells it
    SharedName upperName;
    std::uint32_t hash = 0;  // of the upper-case name
  };

  // Lives until the next call.
  const Entry& find(std::string_view name);

 private:
  std::array<Entry, 256> entries_;
};

}  // namespace zeldom40
