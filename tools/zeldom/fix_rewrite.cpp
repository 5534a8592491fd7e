// From the changed text of a page to the new bytes of its file.
#include "tools/zeldom/fix_rewrite.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string_view>
#include <vector>

#include "tools/zeldom/diff.h"
#include "tools/zeldom/fix_replace.h"
#include "tools/zeldom/output.h"
#include "tools/zeldom/source_edit.h"
#include "tools/zeldom/source_file.h"
#include "tools/zeldom/source_form.h"

namespace zeldom40::tool {

namespace {

constexpr char kEndMark = 0x1A;  // closes files of old editors; the import drops it

// A file before and after a change, line by line.
struct Versions {
  std::vector<std::string_view> before;
  std::vector<std::string> written;
  std::vector<std::string_view> after;
  std::vector<LineMatch> matches;
  std::size_t changedLines = 0;

  std::string bytes() const {
    std::string all;
    for (const std::string_view line : after) all += line;
    return all;
  }
};

// The places of a file's text, whatever a page makes of it: that of a document with nothing but one text.
class TextMap {
 public:
  TextMap(const Library& library, const SourceFile& file) : page_(library, {}) {
    Text* text = page_.document()->createTextNode("");
    text->setTextType(Text::TEXT_LITERAL);  // its source is what it is given
    text->setRawData(file.text);
    page_.root()->insertLast(text);
    map_.emplace(page_.document(), file.bytes.data(), file.bytes.size(), file.charset);
  }
  const SourceMap& map() const { return *map_; }

 private:
  Page page_;
  std::optional<SourceMap> map_;
};

// The bytes of each line of the text in the file. Together they are the whole file.
std::vector<std::string_view> fileLines(const SourceFile& file, const SourceMap& map,
                                        const std::vector<std::string_view>& lines) {
  const std::string_view bytes = file.bytes;
  std::vector<std::string_view> out;
  std::size_t offset = 0, begin = 0;
  for (const std::string_view& line : lines) {
    offset += line.size();
    // Escape sequences stand before the characters that they are for, so they belong to the line that follows.
    const std::size_t end = &line == &lines.back() ? bytes.size() : map.toFile(SourceMap::Range{begin, offset}).end;
    const std::size_t from =
        out.empty() ? 0 : static_cast<std::size_t>(out.back().data() - bytes.data()) + out.back().size();
    out.push_back(bytes.substr(from, end - from));
    begin = offset;
  }
  return out;
}

// Lines that did not change keep their bytes: another conversion of the same text may be spelled otherwise.
Versions compare(const Library& library, const SourceFile& file, const std::string& text) {
  Versions versions;
  const TextMap known(library, file);
  const SourceMap& map = known.map();
  const std::vector<std::string_view> old = splitLines(file.text);
  const std::vector<std::string_view> now = splitLines(text);
  versions.before = fileLines(file, map, old);
  versions.matches = matchLines(old, now);
  versions.written.reserve(now.size());
  versions.after.resize(now.size());
  std::size_t next = 0;
  const auto write = [&](std::size_t end) {
    for (; next < end; ++next) {
      versions.written.push_back(exportText(file, now[next]));
      if (next + 1 == now.size() && !file.bytes.empty() && file.bytes.back() == kEndMark) {
        versions.written.back() += kEndMark;
      }
      versions.after[next] = versions.written.back();
      ++versions.changedLines;
    }
  };
  for (const LineMatch& match : versions.matches) {
    write(match.b);
    for (std::size_t i = 0; i < match.length; ++i) versions.after[next++] = versions.before[match.a + i];
  }
  write(now.size());
  return versions;
}

Versions versionsOf(const SourceFile& file, std::string bytes) {
  Versions versions;
  versions.written.push_back(std::move(bytes));
  versions.before = splitLines(file.bytes);
  versions.after = splitLines(versions.written.back());
  versions.matches = matchLines(versions.before, versions.after);
  versions.changedLines = std::max(versions.before.size(), versions.after.size());
  for (const LineMatch& match : versions.matches) versions.changedLines -= match.length;
  return versions;
}

// Each line end as one byte: an import makes those of a file alike.
std::string withoutLineEnds(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isEnd = text[i] == '\r' || text[i] == '\n';
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
    out += isEnd ? '\n' : text[i];
  }
  return out;
}

// Makes the edits in the file, where the guard lets them pass; if not, says why in `fault`.
Versions guarded(const Library& library, const SourceFile& file, const ChangeResult& changed, std::string* fault) {
  const TextMap known(library, file);
  const SourceMap& map = known.map();
  const std::optional<std::vector<SourceEdit>> edits = editsOfFile(file, map, changed.edits);
  if (!edits) {
    *fault = "its charset does not tell where the changes would stand";
    return {};
  }
  std::vector<PlannedEdit> planned;
  if (changed.mode == GuardMode::kFix || changed.mode == GuardMode::kFixUnsafe) {
    for (const SourceEdit& edit : *edits) planned.push_back({edit.offset, edit.length, edit.replacement});
  }
  std::string bytes = applyEdits(file.bytes, *edits);
  if (const std::optional<GuardFault> found = compareWrites(file.bytes, bytes, changed.mode, planned)) {
    const SourceMap::Position at = map.getPosition(map.fromFile(found->offset));
    *fault = "line " + std::to_string(at.line) + ", column " + std::to_string(at.column) + ": " + found->reason;
  } else if (withoutLineEnds(importText(file, bytes)) != withoutLineEnds(changed.text)) {
    *fault = "the charset cannot hold what would be written";
  }
  return versionsOf(file, std::move(bytes));
}

// Says that nothing is written, and why.
ExitCode refuse(const std::string& path, const std::string& why) {
  complain(path, why + "; nothing is written");
  return kFailed;
}

}  // namespace

ExitCode rewriteFiles(const RewriteOptions& options, const Library& library, const PageChange& change, Pairs pairs) {
  Output out;
  ExitCode result = kFine;
  for (const std::string& path : options.files) {
    if (options.inPlace && path == "-") {
      complain(path, "standard input cannot be changed in place");
      result = kFailed;
      continue;
    }
    const auto use = [&](const SourceFile& file, const Page& page) {
      if (const std::string form = foreignForm(file.bytes); !form.empty()) return refuse(path, "seems to be " + form);
      const ChangeResult changed = change(library, page, file);
      const bool isSame = changed.text == file.text;
      std::string fault;
      Versions versions;
      if (!isSame && changed.mode != GuardMode::kNone) versions = guarded(library, file, changed, &fault);
      if (!fault.empty()) return refuse(path, fault);
      if (!changed.left.empty()) complain(path, changed.left);
      for (const std::string& note : changed.notes) std::fprintf(stderr, "%s:%s\n", path.c_str(), note.c_str());
      const ExitCode left = changed.left.empty() && !changed.isLeft ? kFine : kFindings;
      const bool asks = options.diff || options.dryRun;
      if (isSame) {
        if (!options.inPlace && !asks) out << file.bytes;
        return left;
      }
      if (changed.mode == GuardMode::kNone) versions = compare(library, file, changed.text);
      if (options.diff) {
        out << unifiedDiff(path, versions.before, versions.after, versions.matches);
      } else if (!options.dryRun && !options.inPlace) {
        out << versions.bytes();
      } else {
        if (!options.dryRun && !replaceFile(path, versions.bytes(), file.stamp)) return kFailed;
        out.paint(Colour::kName, path) << ": " << changed.done << ", " << versions.changedLines
                                       << (versions.changedLines == 1 ? " line" : " lines")
                                       << (options.dryRun ? " would change\n" : " changed\n");
      }
      return asks ? kFindings : left;
    };
    result = worse(result, withSource(library, path, options.codepage, pairs, use));
  }
  return out.flush() ? result : kFailed;
}

}  // namespace zeldom40::tool
