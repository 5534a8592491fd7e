// The numbers of element names.
#include "dom/dtd/NameTable.h"

namespace zeldom40 {

NameTable::NameTable() : index_(Hash<Entry>::kFrameBuckets) {
  // The places of kText and kWhiteText.
  for (int id = 0; id < kFirstName; ++id) entries_.push_back(Entry{SharedName(), id});
}

int NameTable::enter(std::string_view upperName) {
  const std::uint32_t hash = nameHash(upperName);
  if (const Entry* known = index_.find(upperName, hash)) return known->id;
  if (size() >= kMostNames) return -1;
  entries_.push_back(Entry{SharedName(upperName), size()});
  index_.insert(upperName, hash, &entries_.back());
  return entries_.back().id;
}

void NameTable::cutTo(int size) {
  for (; this->size() > size; entries_.pop_back()) index_.eraseNewest(entries_.back().name.view());
}

}  // namespace zeldom40
