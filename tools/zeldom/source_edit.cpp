// Finds the places of edits in a file, and the bytes that its charset and line ends ask for.
#include "tools/zeldom/source_edit.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace zeldom40::tool {

namespace {

constexpr char kEscape = 0x1B;  // opens the sequences of ISO-2022-JP

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// The line end at `at`, empty if there is none.
std::string_view lineEndAt(std::string_view bytes, std::size_t at) {
  if (at >= bytes.size() || (bytes[at] != '\r' && bytes[at] != '\n')) return {};
  const bool both = bytes[at] == '\r' && at + 1 < bytes.size() && bytes[at + 1] == '\n';
  return bytes.substr(at, both ? 2 : 1);
}

std::string_view nextLineEnd(std::string_view bytes, std::size_t from) {
  const std::size_t at = bytes.find_first_of("\r\n", from);
  return at == std::string_view::npos ? std::string_view() : lineEndAt(bytes, at);
}

std::string_view lastLineEnd(std::string_view bytes) {
  const std::size_t at = bytes.find_last_of("\r\n");
  if (at == std::string_view::npos) return {};
  const bool both = bytes[at] == '\n' && at > 0 && bytes[at - 1] == '\r';
  return bytes.substr(both ? at - 1 : at, both ? 2 : 1);
}

// Hands out the line ends of an edit: those of the bytes that it replaces, then the one that stood last before it.
class LineEnds {
 public:
  explicit LineEnds(const SourceFile& file) : last_(nextLineEnd(file.bytes, 0)) {
    if (last_.empty())
      last_ = file.newline == CodeConv::NEWLINE_LF ? "\n" : file.newline == CodeConv::NEWLINE_CR ? "\r" : "\r\n";
  }
  // Goes over what stays.
  void pass(std::string_view bytes) {
    if (const std::string_view found = lastLineEnd(bytes); !found.empty()) last_ = found;
  }
  void append(std::string_view replacement, std::string_view replaced, std::string* out) {
    std::size_t old = 0;
    for (std::size_t i = 0; i < replacement.size();) {
      const std::string_view end = lineEndAt(replacement, i);
      if (end.empty()) {
        *out += replacement[i++];
        continue;
      }
      if (const std::string_view known = nextLineEnd(replaced, old); !known.empty()) {
        last_ = known;
        old = static_cast<std::size_t>(known.data() - replaced.data()) + known.size();
      }
      *out += last_;
      i += end.size();
    }
    pass(replaced.substr(old));
  }

 private:
  std::string_view last_;
};

}  // namespace

std::optional<std::vector<SourceEdit>> editsOfFile(const SourceFile& file, const SourceMap& map,
                                                   std::span<const SourceEdit> edits) {
  if (!map.hasFile()) return std::nullopt;
  const std::string_view bytes = file.bytes;
  LineEnds lineEnds(file);
  std::vector<SourceEdit> out;
  std::size_t at = 0;
  for (const SourceEdit& edit : edits) {
    SourceMap::Range place = map.toFile(SourceMap::Range{edit.offset, edit.offset + edit.length});
    if (edit.length == 0) place.begin = place.end = map.toFile(edit.offset);
    if (!place.isKnown() || place.begin < at || place.end < place.begin) return std::nullopt;
    const std::string_view replaced = bytes.substr(place.begin, place.length());
    if (replaced.find(kEscape) != std::string_view::npos) return std::nullopt;
    lineEnds.pass(bytes.substr(at, place.begin - at));
    SourceEdit& own = out.emplace_back(SourceEdit{place.begin, place.length(), {}});
    lineEnds.append(isAscii(edit.replacement) ? edit.replacement : exportText(file, edit.replacement), replaced,
                    &own.replacement);
    at = place.end;
  }
  return out;
}

}  // namespace zeldom40::tool
