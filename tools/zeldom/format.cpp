// `zeldom format`: lays out the source of pages anew, by edits of their white space.
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/fix_rewrite.h"
#include "tools/zeldom/format_layout.h"
#include "tools/zeldom/page.h"
#include "tools/zeldom/source_edit.h"

namespace zeldom40::tool {

namespace {

// A page whose layout changes when it is laid out again stays as it was after so many rounds.
constexpr int kRounds = 4;

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// `rest` bytes at the end of the text are left alone.
Layout layOut(const Page& page, const SourceMap& map, std::string_view text, std::size_t rest,
              const FormatOptions& options) {
  return layOut(cutLayout(page.root(), map, text, text.size() - rest), options, CodeConv::GetCodepage());
}

// How many bytes stand at the end of the text from the first one on that, in the file, looks like the begin of server
// code and is half of a character. ISO-2022-JP writes characters with the bytes of ASCII, and many a server, or another
// program that reads the page, does not know.
std::size_t misreadRest(const SourceFile& file, const SourceMap& map) {
  if (file.charset != CodeConv::CHARSET_JIS || !map.hasFile()) return 0;
  constexpr std::string_view kOpeners[] = {"<%", "<?", "<!", "${", "#{", "{{", "{%"};
  const std::string_view bytes = file.bytes;
  for (std::size_t i = bytes.find_first_of("<$#{"); i != std::string_view::npos;
       i = bytes.find_first_of("<$#{", i + 1)) {
    const std::string_view two = bytes.substr(i, 2);
    if (std::find(std::begin(kOpeners), std::end(kOpeners), two) == std::end(kOpeners)) continue;
    const std::size_t at = map.fromFile(i);
    if (at >= file.text.size() || static_cast<unsigned char>(file.text[at]) > 127)
      return file.text.size() - std::min(at, file.text.size());
    if (file.text[at] != bytes[i]) return file.text.size() - at;
  }
  return 0;
}

// The edits that turn `before` into `after`, which differ in white space and in the case of letters; nothing if they
// differ otherwise.
std::optional<std::vector<SourceEdit>> editsBetween(std::string_view before, std::string_view after) {
  std::vector<SourceEdit> edits;
  std::size_t a = 0, b = 0;
  while (a < before.size() || b < after.size()) {
    const std::size_t spaceA = a, spaceB = b;
    while (a < before.size() && isLayoutSpace(before[a])) ++a;
    while (b < after.size() && isLayoutSpace(after[b])) ++b;
    if (before.substr(spaceA, a - spaceA) != after.substr(spaceB, b - spaceB)) {
      edits.push_back({spaceA, a - spaceA, std::string(after.substr(spaceB, b - spaceB))});
    }
    if (a == before.size() && b == after.size()) break;
    if (a == before.size() || b == after.size() || lower(before[a]) != lower(after[b])) return std::nullopt;
    if (before[a] != after[b]) edits.push_back({a, 1, std::string(1, after[b])});
    ++a;
    ++b;
  }
  return edits;
}

// The text laid out so that it stays when it is laid out again. Nothing if that does not come about.
std::optional<std::string> settle(const Library& library, std::string text, std::size_t rest,
                                  const FormatOptions& options) {
  for (int round = 0; round < kRounds; ++round) {
    const Page page(library, text, Pairs::kKeep);
    if (!page.root()) return std::nullopt;
    const Layout next = layOut(page, SourceMap(page.document()), text, rest, options);
    if (next.edits.empty()) return text;
    text = applyEdits(text, next.edits);
  }
  return std::nullopt;
}

void tell(const std::string& path, const SourceMap& map, std::vector<LeftAlone> parts) {
  std::stable_sort(parts.begin(), parts.end(),
                   [](const LeftAlone& a, const LeftAlone& b) { return a.begin < b.begin; });
  for (const LeftAlone& part : parts) {
    const std::size_t first = map.getPosition(part.begin).line;
    const std::size_t last = map.getPosition(part.end > part.begin ? part.end - 1 : part.end).line;
    std::fprintf(stderr, "zeldom: %s:%zu", path.c_str(), first);
    if (last != first) std::fprintf(stderr, "-%zu", last);
    std::fprintf(stderr, ": left alone: %s\n", part.reason);
  }
}

// How many words "charset=", with a name behind them, stand in the first kilobyte, where browsers look for it.
std::size_t charsetsInSight(std::string_view bytes) {
  constexpr std::string_view kWord = "charset=";
  constexpr std::size_t kLookedAt = 1024, kLongestName = 40;
  std::string start(bytes.substr(0, kLookedAt - kLongestName));
  std::transform(start.begin(), start.end(), start.begin(), lower);
  std::size_t count = 0;
  for (std::size_t at = start.find(kWord); at != std::string::npos; at = start.find(kWord, at + 1)) ++count;
  return count;
}

ChangeResult format(const Library& library, const Page& page, const SourceFile& file, const FormatOptions& options) {
  ChangeResult result;
  result.text = file.text;
  result.done = "formatted";
  if (page.source() != file.text) {
    result.left = "stays as it is: it would not be written as it was read";
    return result;
  }
  // The import makes blanks of them, which are no white space of the file.
  if (file.bytes.find('\0') != std::string::npos) {
    result.left = "stays as it is: it holds NUL bytes";
    return result;
  }
  const SourceMap map(page.document(), file.bytes.data(), file.bytes.size(), file.charset);
  const std::size_t rest = misreadRest(file, map);
  const Layout layout = layOut(page, map, file.text, rest, options);
  if (options.verbose) tell(file.path, map, layout.leftAlone);
  if (layout.edits.empty()) return result;
  const std::optional<std::string> text = settle(library, applyEdits(file.text, layout.edits), rest, options);
  const auto edits = text ? editsBetween(file.text, *text) : std::nullopt;
  if (!edits) {
    result.left = "stays as it is: its layout does not settle";
    return result;
  }
  const auto inFile = editsOfFile(file, map, *edits);
  if (inFile && charsetsInSight(applyEdits(file.bytes, *inFile)) < charsetsInSight(file.bytes)) {
    result.left = "stays as it is: browsers would no longer see its charset";
    return result;
  }
  result.text = *text;
  result.edits = *edits;
  result.mode = options.tags == TagCase::kKeep ? GuardMode::kFormat : GuardMode::kFormatNames;
  return result;
}

}  // namespace

ExitCode runFormat(const FormatOptions& options, const Settings& settings) {
  const Library library(settings);
  if (!library.usable()) return kFailed;
  return rewriteFiles(options.rewrite, library,
                      [&options](const Library& lib, const Page& page, const SourceFile& file) {
                        return format(lib, page, file, options);
                      });
}

}  // namespace zeldom40::tool
