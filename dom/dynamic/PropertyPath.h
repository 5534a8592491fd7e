// Internal. What a property path says by its form: `first.second.third`, where a segment like `x[]` or `x()` is an
// array that is looped over.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zeldom40 {

enum class PathKind {
  SHORT = 0,           // fewer than three characters
  PLAIN = 1,           //
  ARRAY = 2,           // ends in "[]": a getter that returns a whole array
  INDEXED_GETTER = 3,  // ends in "()": a getter that takes the index
};

// Of a segment, or of a path by its last segment.
PathKind pathKind(std::string_view path);
inline bool isLoopProperty(std::string_view path) { return pathKind(path) >= PathKind::ARRAY; }

// `path` is `owner` or begins with `owner` and a dot. An empty owner has everything under it.
bool isPathUnder(std::string_view path, std::string_view owner);
// The number of array segments.
std::size_t countArrays(std::string_view path);
// The front of `path` that ends in the nearest array segment before the last segment; empty if there is none.
std::string_view ownerPath(std::string_view path);
// The front of `path` that ends in the first array segment from byte `from` on, empty if there is none; `path` itself
// if it is not longer than `from`.
std::string_view cutAtArray(std::string_view path, std::size_t from);
// The length of the front that ends in the last array segment; 0 if there is none.
std::size_t arrayPartLength(std::string_view path);

}  // namespace zeldom40
