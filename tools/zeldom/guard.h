// The last look before a changed page is written: is it the page that it was, but for what was planned?
//
// The guard shares nothing with the reader of pages: it cuts the bytes of both versions by itself and compares. A fault
// of the reader, of a repair or of the formatter then shows as a difference, and the file stays as it is.
//
// What a safe repair may plan, by whole tags and white space (a word is never cut, joined or restated in part):
// - drop end tags and add end tags. Afterwards no name has more end tags without begin tag, nor, where the end tag is
//   required, more begin tags without end tag. In half a page (nothing of HTML, HEAD, TITLE, BODY, DOCTYPE, or files
//   are included) the end tags stay as many as they were. No server code that may branch stands between an end tag that
//   is added or dropped and its partner.
// - add begin tags without attributes, of elements that do and show nothing by themselves; HTML, HEAD, BODY and
// FRAMESET
//   only where one of them stood before.
// - carry an inline begin tag over the begin tags of blocks, and repeat it further on inside what it held. What was in
//   the element stays in it. A tag with ID or NAME is carried but not repeated; a tag that holds server code stays.
// - add and drop white space beside that. Two things that a reader sees stay separated, or stay joined; an end tag that
//   stands between two words without white space can therefore be neither added nor dropped.
// Everything else keeps its bytes and its order, and what stands first stays first.
//
// A new layout changes white space only: beside tags of blocks and declarations, and where a gap holds a line break
// before or after, and separates in both. Beside comments and server code a line break must have been there and stay;
// so it must in the body of a custom action, whatever stands beside it. The body of an action that uses it as a value
// stays.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zeldom40::tool {

// A planned change: `length` bytes at the 0-based `offset` of the text before become `replacement`.
struct PlannedEdit {
  std::size_t offset = 0;
  std::size_t length = 0;
  std::string replacement;
};

enum class GuardMode : std::uint8_t {
  kNone,        // nothing is compared
  kFix,         // safe repairs: all that is told above
  kFixUnsafe,   // the edits and nothing else; of what they take out, words and server code come back somewhere
  kFormat,      // white space only
  kFormatNames  // white space, and the case of tag names
};

struct GuardFault {
  std::size_t offset = 0;  // in the text before
  std::string reason;      // for people, without a full stop
};

// Compares a page with what is to be written in its place. `planned`, sorted by offset and without overlaps, is what a
// repair does; a layout plans nothing and passes none. Returns nothing where nothing is wrong, else the first fault
// that was found. The time grows in proportion to the size of both (and its logarithm), whatever they hold.
std::optional<GuardFault> compareWrites(std::string_view before, std::string_view after, GuardMode mode,
                                        std::span<const PlannedEdit> planned);

}  // namespace zeldom40::tool
