// Internal. The tag names of one page, found straight from its bytes.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "dom/dtd/ContentTable.h"
#include "dom/dtd/DTDFrame.h"
#include "dom/html/NameKey.h"
#include "dom/tree/NodeKind.h"

namespace zeldom40 {

class AttributeDefinition;
class ElementDefinition;

// What the parser knows of one upper-case tag name, with its notes about that name.
struct PageName {
  SharedName name;
  std::uint32_t hash = 0;
  KindRef kind;                             // of its elements in the page that is being read
  ElementDefinition* definition = nullptr;  // null for an unknown name and for one that this JSP version hides
  int tableId = -1;                         // the name's number in the content table
  unsigned generation = 0;                  // of the declarations that the two come from
  int lastOpen = -1;                        // index of the topmost open node of this name

  // What the definition says, at hand; false and 0 without one.
  unsigned long group = 0;
  bool endOmittable = false;
  bool emptyTag = false;
  bool holdsCData = false;
  bool hasAttributes = false;
  bool hasExceptions = false;
  bool mayHaveMetaData = false;  // whatever its attributes are
  int ordinal = -1;
  const ContentTable::Answer* const* row = nullptr;  // what is known of its answers; null while nobody asked

  // Nobody among the open nodes from `barredFrom` up to `barredTo` takes an element of this name; true as long as the
  // node at the index asked about was open by then (`barredTime`).
  int barredFrom = 0;
  int barredTo = -1;
  std::uint32_t barredTime = 0;

  bool touched = false;  // holds what goes with the page that is being read
};

// One probe finds a name, folding case as it hashes, so that no string is made for a tag. Unknown names are held once
// however often a page repeats them. Short names of tags and attributes that were asked for before are found by a
// number in a small table first: 25 instructions instead of 100.
//
// The names of one page are kept for the next: on a page of 5 KB a third of the time went into names met anew.
class PageNames : public ParserType::_dtd_frame::ParserNotes {
 public:
  explicit PageNames(ParserType::_dtd_frame* frame);

  // The names kept with `frame`, if they still hold, else new ones.
  static std::unique_ptr<PageNames> takeFrom(ParserType::_dtd_frame* frame);
  // Keeps names of which none is open any more.
  static void keep(std::unique_ptr<PageNames> names);

  // The entry for a name as written; stays valid as long as this object. `readable` bytes from its first on may be
  // looked at: where it stands in a page, those up to the end.
  PageName& find(std::string_view asWritten, std::size_t readable = 0) {
    if (asWritten.size() > NameKey::kLongest) return findAny(asWritten);
    const NameKey key(asWritten.data(), asWritten.size(), readable);
    RecentName& recent = recentNames_[key.hash(seed_) % kRecentNames];
    if (!(recent.key == key && recent.length == asWritten.size())) {
      recent = {key, static_cast<std::uint32_t>(asWritten.size()), &findAny(asWritten)};
    }
    return *recent.name;
  }
  // The definition of an attribute as written; null if it is not declared.
  const AttributeDefinition* findAttribute(const ElementDefinition& element, std::string_view asWritten,
                                           std::size_t readable = 0) {
    if (asWritten.size() > NameKey::kLongest) return findAnyAttribute(element, asWritten);
    const NameKey key(asWritten.data(), asWritten.size(), readable);
    RecentAttribute& recent =
        recentAttributes_[(key.hash(seed_) ^ reinterpret_cast<std::uintptr_t>(&element) >> 4) % kRecentAttributes];
    if (!(recent.key == key && recent.element == &element && recent.length == asWritten.size())) {
      recent = {key, static_cast<std::uint32_t>(asWritten.size()), &element, findAnyAttribute(element, asWritten)};
    }
    return recent.attribute;
  }
  // Call before `kind` or `barredTo` are set.
  void touch(PageName& name) {
    if (!name.touched) touched_.push_back(&name);
    name.touched = true;
  }
  // Call after declarations were added: definitions are looked up anew as names are asked for.
  void declarationsChanged();

 private:
  static constexpr std::size_t kRecentNames = 64;
  static constexpr std::size_t kRecentAttributes = 128;

  struct RecentName {
    NameKey key;
    std::uint32_t length = 0xFFFFFFFF;
    PageName* name = nullptr;
  };
  struct RecentAttribute {
    NameKey key;
    std::uint32_t length = 0xFFFFFFFF;
    const ElementDefinition* element = nullptr;
    const AttributeDefinition* attribute = nullptr;
  };

  PageName& findAny(std::string_view asWritten);
  const AttributeDefinition* findAnyAttribute(const ElementDefinition& element, std::string_view asWritten);
  std::uint32_t hashFolded(std::string_view text) const;
  PageName& add(std::string_view asWritten, std::uint32_t hash);
  void lookUp(PageName& entry);
  void grow();
  void noteSources();
  bool holds() const;

  ParserType::_dtd_frame* frame_;
  std::uint32_t seed_ = 0;
  unsigned generation_ = 0;
  std::deque<PageName> entries_;
  std::vector<PageName*> slots_;  // its size is a power of two
  std::vector<PageName*> touched_;
  std::array<RecentName, kRecentNames> recentNames_;
  std::array<RecentAttribute, kRecentAttributes> recentAttributes_;
  std::string scratch_;
  std::size_t bytes_ = 0;  // of all names
  // What the entries were looked up in.
  const ContentTable* table_ = nullptr;
  unsigned readings_ = 0;
  bool jspVersion1_ = false;
};

}  // namespace zeldom40
