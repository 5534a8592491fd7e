// What the layout of a source needs to know of elements and custom actions, by their names.
#pragma once

#include <cstdint>
#include <string_view>

namespace zeldom40::tool {

// Bits of an element. HTML 4.0 and HTML 5 together: a page may hold elements that no DTD here declares.
enum NameTrait : std::uint32_t {
  kKnownName = 1,      // an element of HTML
  kBlockName = 2,      // begins and ends lines: layout ignores white space beside its tags
  kUnseenName = 4,     // shows nothing itself: text goes on across it
  kProseName = 8,      // part of running text
  kVoidName = 16,      // has no content and no end tag
  kRawName = 32,       // what stands in it is no markup, at least to some readers
  kKeptName = 64,      // white space in it counts, or has rules of its own
  kCodeName = 128,     // shows code: its lines are meant
  kBarrierName = 256,  // end tags inside of it close nothing outside
  kOpenName = 512,     // its end tag may be missing, and its end is known nevertheless
  kHolderName = 1024,  // holds other blocks only
  kFlatName = 2048,    // does not indent its content
  kForeignName = 4096  // a tag that ends in "/>" has no content
};

// The bits of an element, by its name in lower case; 0 for what is none of HTML.
std::uint32_t traitsOf(std::string_view name);

// Whether the begin tag of `name` ends the element `open` that it stands in.
bool endsOpen(std::string_view name, std::string_view open);

enum class ActionBody : std::uint8_t {
  kUnknown,  // may be text for a program
  kFlow,     // is written where the action stands, or not, or several times
  kValue     // is used as a value: each byte counts
};

// What a custom action of that name (in lower case, with its prefix) does with its body.
ActionBody bodyOf(std::string_view name);

// Whether the end tag of `name` may end cells and rows that are open in it.
bool isTablePart(std::string_view name);

// Whether a word of a CLASS (in lower case) says that the element shows code.
bool namesCode(std::string_view word);

}  // namespace zeldom40::tool
