// Internal. A begin tag written anew from the tag that stands in the source (html/TagRewriter.cpp, for it takes the
// parser's reading of a tag).
#pragma once

#include <string>
#include <string_view>

namespace zeldom40 {

class Element;

enum class TagRewriting {
  AROUND_CODE,  // as any tag, but a construct that ends the stored tag stays its last piece
  KEEP,         // what no edit touched stays as it stands
  KEEP_SPELLED  // the same, but for the spelling of names
};

// Writes the begin tag of `element`, whose stored text is `stored`, into `out`, which is another string. False, with
// nothing written, if the stored tag has nothing to keep.
bool rewriteBeginTag(const Element& element, std::string_view stored, TagRewriting how, std::string& out);

}  // namespace zeldom40
