// Cuts a page into pieces for the guard, by bytes alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zeldom40::tool {

enum class PieceKind : std::uint8_t {
  kMark,         // the byte order mark of UTF-8, at the start
  kSpace,        // a run of blanks, tabs, line ends, form feeds
  kWord,         // a run of other text; it touches no other word
  kServer,       // <% %>, <? ?>, <!--# -->, ${ }, #{ }, {{ }}, {% %}, a tag with a prefix
  kComment,      // <!-- -->, <![...]> and other oddities that begin with <!
  kDeclaration,  // <!DOCTYPE ...>, with its subset
  kBegin,        // a begin tag, whole
  kEnd,          // an end tag, whole
  kRaw,          // what stands in a script, style, preformatted text or the like
  kBroken        // what looks like a tag and has no end
};

// What is known of a piece, as bits.
enum PieceTrait : std::uint16_t {
  kLineBreak = 1,       // of a space: it holds CR or LF
  kBlockTag = 2,        // layout ignores white space beside it
  kUnseenTag = 4,       // script, style, link, meta, base: likewise at first sight, but words may touch across it
  kInlineTag = 8,       // a piece of running text that may stand around blocks in error
  kBareTag = 16,        // a begin tag without attributes
  kClosedTag = 32,      // a tag that ends in "/>"
  kHoldsServer = 64,    // a tag with server code inside
  kActionBegin = 128,   // a begin tag with a prefix
  kActionEnd = 256,     // an end tag with a prefix
  kMayBranch = 512,     // server code that may leave out what stands behind it, or repeat it
  kVisible = 1024,      // takes part in a line of text
  kSkeletonTag = 2048,  // HTML, HEAD, BODY, FRAMESET
  kVoidTag = 4096,      // of an element that never has an end tag
  kOptionalEnd = 8192,  // of an element whose end tag may be left out
  kActingTag = 16384    // of an element that shows or does something by itself
};

struct Piece {
  std::size_t begin = 0;
  std::size_t end = 0;
  PieceKind kind = PieceKind::kWord;
  std::uint16_t traits = 0;

  bool is(PieceTrait trait) const { return (traits & trait) != 0; }
};

// The pieces of a page in order; they touch and cover all of it. Time and memory are linear.
std::vector<Piece> cutPage(std::string_view page);

// The name of a tag in lower case, with its prefix.
std::string tagName(std::string_view tag);

// The server code that a tag holds, in order. The views point into `tag`.
std::vector<std::string_view> serverCodeOf(std::string_view tag);

// Whether a tag without server code has an attribute ID or NAME.
bool namesSomething(std::string_view tag);

}  // namespace zeldom40::tool
