// Internal. Content models compiled for the page parser: answers that cost a look-up where the walk over a model costs
// its length.
#pragma once

#include <cstdint>
#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "dom/dtd/NameTable.h"
#include "dom/dtd/ParserType.h"
#include "dom/tree/SharedName.h"
#include "dom/tree/Text.h"

namespace zeldom40 {

class ElementDefinition;
class ModelGroup;
struct ContentQuestion;

// One per frame, reached through contentTable(), filled as it is asked. All that it hands out lives until
// contentTable() is called after another element was declared.
class ContentTable {
 public:
  // The number of an upper-case name that a declaration or a model mentions; -1: no such name.
  using NameId = int;

  // What the content model says, and the elements that come to stand between the two because their start tags were
  // omitted: upper-case names, outermost first, empty where the child stands directly.
  struct Answer {
    bool allowed = false;
    bool impliesNothing = false;  // allowed, and needs no implied element
    bool throughGroups =
        false;  // the way has more than one step before the child; a shorter one always counts as direct
    std::vector<const SharedName*> implied;  // in `names`
    std::vector<SharedName> names;           // a host may rename the model's tokens
  };

  // The exclusions and the inclusions of an element and of all elements around it. Immutable, and equal sets are one
  // object, so a million nested elements cost a million pointer steps.
  class OpenSets {
   private:
    friend class ContentTable;
    // A declaration that was dropped may have left names that are newer than the sets; no model mentions them.
    bool has(int kind, NameId name) const {
      const auto bit = static_cast<std::size_t>(name);  // that of no name, -1, is beyond all
      if (bit >= 64 * words_) return false;
      return (bits_[static_cast<std::size_t>(kind) * words_ + bit / 64] >> (bit % 64)) & 1;
    }
    const std::uint64_t* bits_ = nullptr;
    std::size_t words_ = 0;
    mutable std::unordered_map<const ElementDefinition*, const OpenSets*> below_;
  };

  explicit ContentTable(const ParserType::_dtd_frame& frame);
  ~ContentTable();
  ContentTable(const ContentTable&) = delete;
  ContentTable& operator=(const ContentTable&) = delete;

  NameId nameId(std::string_view upperName) const;
  // What stands for a text of that kind (Text::TextType) in the sets.
  static NameId textNameId(int textType = 0) {
    return textType == Text::TEXT_FORMATTING ? NameTable::kWhiteText : NameTable::kText;
  }

  // What `parent.canContain` says of an element that has the definition `child` (ELEMENT_DEFINED). A null `child` asks
  // for an element of that name that has none and yet is not undefined. For undefined elements there is no question:
  // they may stand anywhere.
  const Answer& elementAnswer(const ElementDefinition& parent, const ElementDefinition* child, NameId name);
  // The same for a text of that kind (Text::TextType).
  const Answer& textAnswer(const ElementDefinition& parent, int textType);

  // The answers of one parent that were asked for before: one place for each element that its DTD declares, by ordinal,
  // and behind those one for each kind of text. Null in a place that was not asked for; null for a parent without an
  // ordinal. Lives as long as this table.
  const Answer* const* row(const ElementDefinition& parent);
  int textPlace(int textType) const { return static_cast<int>(elementRows_.size()) + textType; }

  // The sets of an element at the top.
  const OpenSets* noSets() const { return noSets_; }
  // The sets below an element with that definition (null: none) that itself stands under `outer`.
  const OpenSets* extend(const OpenSets* outer, const ElementDefinition* definition);
  // Whether an exclusion that is in force names it. `defined` is false for an element that is undefined: those are not
  // looked for behind omitted start tags.
  static bool excluded(const OpenSets* sets, NameId name, bool defined = true);
  // Whether an inclusion that is in force names it.
  static bool included(const OpenSets* sets, NameId name);

  // How many different sets there are.
  std::size_t setCount() const { return openSets_.size(); }
  // Differs from what it was before once elements were declared.
  unsigned generation() const { return generation_; }

 private:
  enum SetKind { EXCLUDED, EXCLUDED_DIRECTLY, INCLUDED };
  using Bits = std::vector<std::uint64_t>;  // three sets of `words_` words each, in the order of SetKind
  using Slot = const Answer*;               // null while it was not asked for
  // Told word by word: the comparison of vectors in the library of GCC 12 looks at a part of the bytes only where the
  // processor stores the highest first, so that sets which differ were one.
  struct BitsLess {
    bool operator()(const Bits& a, const Bits& b) const;
  };

  std::vector<Slot>& rowOf(const ElementDefinition& parent);
  Slot& slot(const ElementDefinition& parent, const ElementDefinition* child, NameId name);
  const Answer& answer(Slot& slot, const ElementDefinition& parent, const ContentQuestion& question);
  ContentQuestion questionAbout(NameId name) const;
  void setBit(Bits& bits, SetKind kind, NameId name) const;
  bool addDirect(Bits& bits, SetKind kind, const ModelGroup& root) const;
  const Bits& ownSets(const ElementDefinition& definition);
  const OpenSets* intern(const Bits& bits);

  const ParserType::_dtd_frame& frame_;
  unsigned generation_;
  std::size_t words_;
  std::vector<std::vector<Slot>> elementRows_;                                     // by the ordinal of the parent
  std::map<std::pair<const ElementDefinition*, std::intptr_t>, Slot> otherSlots_;  // without an ordinal
  // Answers that say the same are one: a pair of elements costs a pointer, however long the way between them is. By
  // the flags and the records of the names.
  std::map<std::pair<int, std::vector<const void*>>, Answer> answers_;
  std::unordered_map<const ElementDefinition*, Bits> ownSets_;
  std::map<Bits, OpenSets, BitsLess> openSets_;
  const OpenSets* noSets_ = nullptr;
};

inline bool ContentTable::excluded(const OpenSets* sets, NameId name, bool defined) {
  return sets->has(defined ? EXCLUDED : EXCLUDED_DIRECTLY, name);
}
inline bool ContentTable::included(const OpenSets* sets, NameId name) { return sets->has(INCLUDED, name); }

}  // namespace zeldom40
