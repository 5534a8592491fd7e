// The numbers of element names.
#include "dom/dtd/NameTable.h"

namespace zeldom40 {

NameTable::NameTable() : index_(Hash<Entry>::kFrameBuckets) {
  // The places of kText and kWhiteText.
  for (int id = 0; id < kFirstName; ++id) entries_.push_back(Entry{SharedName(), id});
}

int NameTable::enter(std::string_view upperName) {
  const int known = find(upperName);
  if (known >= 0) return known;
  if (size() >= kMostNames) return -1;
  entries_.push_back(Entry{SharedName(upperName), size()});
  index_.insert(upperName, &entries_.back());
  return entries_.back().id;
}

}  // namespace zeldom40
