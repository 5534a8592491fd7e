// Internal. The upper-case element names of a DTD, numbered.
#pragma once

#include <deque>
#include <string_view>

#include "dom/dtd/Hash.h"
#include "dom/tree/SharedName.h"

namespace zeldom40 {

// Every name that a declaration or a content model mentions is held once and has a small number, so that sets of names
// are bit sets. Numbers 0 and 1 stand for text, not for names.
class NameTable {
 public:
  static constexpr int kText = 0;       // text that shows
  static constexpr int kWhiteText = 1;  // white space that only formats the source
  static constexpr int kFirstName = 2;
  // CHOICE: a page can declare elements; more names than this come from no real document type, and sets of names over
  // all open elements would grow with the square of the page.
  static constexpr int kMostNames = 2048;

  NameTable();

  // The number of `upperName`, -1 if it is not there.
  int find(std::string_view upperName) const {
    const Entry* entry = index_.find(upperName);
    return entry ? entry->id : -1;
  }
  // The same, entering the name; -1 if the table is full.
  int enter(std::string_view upperName);
  // Forgets the newest names, so that `size` places are left.
  void cutTo(int size);
  const SharedName& name(int id) const { return entries_[static_cast<std::size_t>(id)].name; }
  int size() const { return static_cast<int>(entries_.size()); }

 private:
  struct Entry {
    SharedName name;
    int id;
  };

  std::deque<Entry> entries_;
  Hash<Entry> index_;
};

}  // namespace zeldom40
