// Which lines of two versions of a text are the same, and the difference as a patch.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zeldom40::tool {

// `length` lines from `a` on in the old version are those from `b` on in the new one (0-based).
struct LineMatch {
  std::size_t a;
  std::size_t b;
  std::size_t length;
};

// Lines with their line ends: CR LF, CR or LF.
std::vector<std::string_view> splitLines(std::string_view text);

// Equal stretches in ascending order, neighbours joined. Lines that occur once in both versions come first as fixed
// points; between them a bounded search looks for the rest. Time grows with the lines, whatever they hold: where the
// search would take longer, lines count as changed.
std::vector<LineMatch> matchLines(std::span<const std::string_view> a, std::span<const std::string_view> b);

// A unified diff with three lines of context; empty if all lines match.
std::string unifiedDiff(const std::string& name, std::span<const std::string_view> a,
                        std::span<const std::string_view> b, const std::vector<LineMatch>& matches);

}  // namespace zeldom40::tool
