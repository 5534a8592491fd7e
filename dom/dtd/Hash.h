// Internal. The chained table under all look-ups by name.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zeldom40 {

// The hash of the ELF format over bytes taken as signed.
struct NameHash {
  std::uint32_t value = 0;

  constexpr void add(char byte) {
    value = (value << 4) + static_cast<std::uint32_t>(static_cast<signed char>(byte));
    const std::uint32_t top = value & 0xF0000000;
    if (top) value ^= (top >> 24) ^ top;
  }
};

constexpr std::uint32_t nameHash(std::string_view name) {
  NameHash hash;
  for (char byte : name) hash.add(byte);
  return hash.value;
}

// Names to borrowed values. Keys compare byte by byte; folding case is the caller's work. The first value of a key
// stays.
//
// The number of buckets is fixed. A page may declare any number of names, or names that all share a hash, so a chain
// that has become long takes no more: further keys of its bucket go into an ordered map, and a look-up stays cheap.
template <class T>
class Hash {
 public:
  static constexpr unsigned kFrameBuckets = 211;

  explicit Hash(unsigned buckets) : buckets_(buckets, nullptr) {}
  Hash(const Hash&) = delete;
  Hash& operator=(const Hash&) = delete;

  // The value of `key`, null if it is not there.
  T* find(std::string_view key) const { return find(key, nameHash(key)); }
  // The same for a caller that has made nameHash(key) on its way.
  T* find(std::string_view key, std::uint32_t hash) const {
    for (const Entry* entry = buckets_[hash % buckets_.size()]; entry; entry = entry->next) {
      if (entry->key == key) return entry->value;
    }
    if (overflow_.empty()) return nullptr;
    const auto found = overflow_.find(key);
    return found == overflow_.end() ? nullptr : found->second;
  }

  // Enters `value` unless the key has one. Returns whether it was entered.
  bool insert(std::string_view key, T* value) { return insert(key, nameHash(key), value); }
  bool insert(std::string_view key, std::uint32_t hash, T* value) {
    Entry*& head = buckets_[hash % buckets_.size()];
    std::size_t length = 0;
    for (const Entry* entry = head; entry; entry = entry->next, ++length) {
      if (entry->key == key) return false;
    }
    if (length < kLongestChain) {
      entries_.push_back(Entry{std::string(key), value, head});
      head = &entries_.back();
    } else if (!overflow_.try_emplace(std::string(key), value).second) {
      return false;
    }
    ++size_;
    return true;
  }

  // Forgets the key that was entered last.
  void eraseNewest(std::string_view key) {
    Entry*& head = buckets_[nameHash(key) % buckets_.size()];
    if (head && head == &entries_.back() && head->key == key) {
      head = head->next;
      entries_.pop_back();
    } else {
      overflow_.erase(overflow_.find(key));
    }
    --size_;
  }

  // The number of keys.
  std::size_t size() const { return size_; }

 private:
  static constexpr std::size_t kLongestChain = 24;

  struct Entry {
    std::string key;
    T* value;
    Entry* next;
  };

  std::vector<Entry*> buckets_;
  std::deque<Entry> entries_;
  std::map<std::string, T*, std::less<>> overflow_;
  std::size_t size_ = 0;
};

}  // namespace zeldom40
