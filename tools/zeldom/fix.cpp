// `zeldom fix`: repairs pages by as few changes of their bytes as will do.
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/zeldom/check_findings.h"
#include "tools/zeldom/commands.h"
#include "tools/zeldom/fix_rewrite.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

namespace {

using Entry = SourceRepair::Entry;

std::string counted(std::size_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

// "2 repairs", and how many of them only --unsafe makes.
std::string summary(const std::vector<Entry>& settled) {
  std::size_t unsafe = 0;
  for (const Entry& entry : settled) unsafe += entry.kind == RepairPlanner::UNSAFE;
  std::string text = counted(settled.size(), "repair");
  if (unsafe > 0) text += " (" + std::to_string(unsafe) + " unsafe)";
  return text;
}

// One line about an error: where, what is done about it or why nothing is, and its name.
std::string line(const SourceMap& map, std::size_t offset, const Entry& entry, std::string_view label) {
  const SourceMap::Position at = map.getPosition(offset);
  const Rule* rule = ruleOf(entry.error);
  const std::string name = entry.name == "TEXT" ? "text" : "<" + entry.name + ">";
  return std::to_string(at.line) + ":" + std::to_string(at.column) + ": " + std::string(label) + ": " + name + ": " +
         entry.reason + (rule ? std::string(" [") + rule->id + "]" : std::string());
}

constexpr int kMostBarred = 12;
constexpr int kMostRuns = 8;

std::optional<GuardFault> judge(std::string_view before, std::string_view after, const std::vector<SourceEdit>& edits,
                                GuardMode mode) {
  std::vector<PlannedEdit> planned;
  for (const SourceEdit& edit : edits) planned.push_back({edit.offset, edit.length, edit.replacement});
  return compareWrites(before, after, mode, planned);
}

// Plans that the guard stops are left out, so that the others are made.
SourceRepair repairOnce(DOM* dom, const std::string& text, SourceRepair::Options how, GuardMode mode) {
  for (int i = 0;; ++i) {
    SourceRepair result(dom, text, how);
    const auto fault = judge(text, result.text(), result.edits(), mode);
    if (!fault || i == kMostBarred) return result;
    // More of them each time: a page may have a thousand of one kind.
    how.barred.insert(how.barred.end(), std::size_t{1} << i, fault->offset);
  }
}

struct Repaired {
  EditedText text;
  std::vector<Entry> settled;  // places in the text as it was
  std::vector<Entry> left;     // places before and now
};

// As often as it brings the page further: what was left out for the sake of another repair may be sound then, and who
// runs the command again finds nothing to do.
Repaired repair(DOM* dom, const SourceFile& file, const FixOptions& options, GuardMode mode) {
  SourceRepair::Options how;
  how.unsafe = options.unsafe;
  how.guardWide = file.charset == CodeConv::CHARSET_JIS;
  Repaired all{EditedText(file.text), {}, {}};
  for (int run = 0; run < kMostRuns; ++run) {
    const SourceRepair once = repairOnce(dom, all.text.text(), how, mode);
    EditedText next = all.text;
    next.apply(once.edits());
    const bool isSound = run == 0 || !judge(file.text, next.text(), next.edits(), mode);
    const auto place = [&](Entry entry) {
      entry.offset = all.text.toOriginal(entry.offset);
      return entry;
    };
    if (isSound) {
      for (const Entry& entry : once.settled()) all.settled.push_back(place(entry));
    }
    if (isSound || all.left.empty()) {
      all.left.clear();
      for (const Entry& entry : once.left()) all.left.push_back(place(entry));
    }
    if (!isSound || once.edits().empty()) break;
    all.text = std::move(next);
  }
  return all;
}

}  // namespace

ExitCode runFix(const FixOptions& options, const Settings& settings) {
  const Library library(settings);
  if (!library.usable()) return kFailed;
  const bool shows = options.rewrite.diff || options.rewrite.dryRun;
  return rewriteFiles(options.rewrite, library, [&](const Library& lib, const Page& page, const SourceFile& file) {
    ChangeResult result;
    result.mode = options.unsafe ? GuardMode::kFixUnsafe : GuardMode::kFix;
    const Repaired repaired = repair(lib.dom(), file, options, result.mode);
    result.text = repaired.text.text();
    result.edits = repaired.text.edits();
    result.done = summary(repaired.settled);
    const SourceMap before(page.document());
    for (const Entry& entry : repaired.settled) {
      const bool unsafe = entry.kind == RepairPlanner::UNSAFE;
      if (shows || unsafe) result.notes.push_back(line(before, entry.offset, entry, unsafe ? "unsafe" : "safe"));
    }
    // Of a file that is changed the new lines count.
    const Page again(lib, result.text, Pairs::kKeep);
    const SourceMap after(again.document());
    for (const Entry& entry : repaired.left) {
      if (entry.isHint) continue;
      result.isLeft = true;
      result.notes.push_back(line(shows ? before : after, shows ? entry.offset : entry.now, entry,
                                  entry.kind == RepairPlanner::UNSAFE ? "left, unsafe" : "left"));
    }
    return result;
  });
}

}  // namespace zeldom40::tool
