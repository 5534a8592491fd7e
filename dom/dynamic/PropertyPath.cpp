// Walks over the segments of property paths.
#include "dom/dynamic/PropertyPath.h"

namespace zeldom40 {

namespace {

// The end of the segment that begins at `start`.
std::size_t segmentEnd(std::string_view path, std::size_t start) {
  const std::size_t dot = path.find('.', start);
  return dot == std::string_view::npos ? path.size() : dot;
}

bool isArraySegment(std::string_view path, std::size_t start, std::size_t end) {
  return isLoopProperty(path.substr(start, end - start));
}

}  // namespace

PathKind pathKind(std::string_view path) {
  if (path.size() < 3) return PathKind::SHORT;
  const std::string_view end = path.substr(path.size() - 2);
  if (end == "()") return PathKind::INDEXED_GETTER;
  if (end == "[]") return PathKind::ARRAY;
  return PathKind::PLAIN;
}

bool isPathUnder(std::string_view path, std::string_view owner) {
  if (owner.empty()) return true;
  return path.starts_with(owner) && (path.size() == owner.size() || path[owner.size()] == '.');
}

std::size_t countArrays(std::string_view path) {
  std::size_t count = 0;
  for (std::size_t start = 0; start <= path.size();) {
    const std::size_t end = segmentEnd(path, start);
    if (isArraySegment(path, start, end)) ++count;
    start = end + 1;
  }
  return count;
}

std::string_view ownerPath(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string_view::npos) return {};
  return path.substr(0, arrayPartLength(path.substr(0, dot)));
}

std::string_view cutAtArray(std::string_view path, std::size_t from) {
  if (path.size() <= from) return path;
  for (std::size_t start = from; start <= path.size();) {
    const std::size_t end = segmentEnd(path, start);
    if (isArraySegment(path, start, end)) return path.substr(0, end);
    start = end + 1;
  }
  return {};
}

std::size_t arrayPartLength(std::string_view path) {
  for (std::size_t end = path.size(); end > 0;) {
    const std::size_t dot = path.rfind('.', end - 1);
    const std::size_t start = dot == std::string_view::npos ? 0 : dot + 1;
    if (isArraySegment(path, start, end)) return end;
    if (start == 0) break;
    end = start - 1;
  }
  return 0;
}

}  // namespace zeldom40
