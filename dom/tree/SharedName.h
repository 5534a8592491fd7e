// A counted, immutable name that many nodes share: a page with a million <P> holds the letter once.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace zeldom40 {

// Handle on a shared name. Copying counts, the last handle frees. A default handle is the empty name.
// Not safe for two threads, like the tree that it serves.
class SharedName {
 public:
  SharedName() = default;
  explicit SharedName(std::string_view text) : record_(text.empty() ? nullptr : new Record{std::string(text), 1}) {}
  SharedName(const SharedName& other) : record_(other.record_) {
    if (record_) ++record_->count;
  }
  SharedName(SharedName&& other) noexcept : record_(std::exchange(other.record_, nullptr)) {}
  SharedName& operator=(SharedName other) noexcept {
    std::swap(record_, other.record_);
    return *this;
  }
  ~SharedName() {
    if (record_ && --record_->count == 0) delete record_;
  }

  const std::string& str() const { return record_ ? record_->text : emptyString(); }
  std::string_view view() const { return record_ ? std::string_view(record_->text) : std::string_view(); }
  bool empty() const { return !record_; }
  // For a store of bare pointers: one more count of the record, and a handle on one that has been counted.
  void* share() const {
    if (record_) ++record_->count;
    return record_;
  }
  static SharedName adopt(void* record) {
    SharedName name;
    name.record_ = static_cast<Record*>(record);
    return name;
  }
  // What tells one record from another, null for the empty name.
  const void* record() const { return record_; }
  // True if both handles share one record; names of one source usually do, equal names need not.
  bool sameRecord(const SharedName& other) const { return record_ == other.record_; }
  friend bool operator==(const SharedName& a, const SharedName& b) {
    return a.record_ == b.record_ || a.view() == b.view();
  }
  friend bool operator==(const SharedName& a, std::string_view b) { return a.view() == b; }

 private:
  // Saved states keep a tag in the lowest three bits of its address.
  struct alignas(8) Record {
    std::string text;
    unsigned count;
  };
  static const std::string& emptyString() {
    static const std::string empty;
    return empty;
  }
  Record* record_ = nullptr;

 public:
  static constexpr std::size_t kRecordAlignment = alignof(Record);
};

}  // namespace zeldom40
