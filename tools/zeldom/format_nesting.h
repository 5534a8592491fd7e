// Which tags of a page belong together, as far as its layout asks.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/zeldom/format_tokens.h"

namespace zeldom40::tool {

// What a token does to the elements and actions that are open. All numbers count from 0.
struct Nest {
  static constexpr std::uint32_t kNone = UINT32_MAX;

  std::uint32_t height = 0;       // how many are open when it stands there; those that it ends are not
  std::uint32_t partner = kNone;  // of a tag: the token of the other tag
  bool opens = false;             // a begin tag with content
};

// One entry for each token. CHOICE: by names, not by the tree: a page of today or of a server is full of elements that
// the tree cannot nest, and an indentation that is one level off harms nothing.
std::vector<Nest> nestTokens(const LayoutPage& page);

}  // namespace zeldom40::tool
