// `zeldom fix`: repairs what the library can repair.
#include <string>
#include <utility>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/fix_rewrite.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

namespace {

// A page that still changes then has what no repair can settle.
constexpr int kRounds = 8;

std::string counted(std::size_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string remaining(std::size_t severe) {
  return counted(severe, "severe error") + (severe == 1 ? " remains" : " remain");
}

bool hasSevereErrors(const Page& page) { return (page.document()->getError() & ERR_DOC_SEVERE_PARSE_ERROR) != 0; }

// Where a tag without end has taken the rest of the page into itself: a repair writes the tag anew, and what stood in
// it is gone. Empty if there is none.
std::string swallowed(const Page& page) {
  for (Node* node = page.root(); node; node = page.document()->findNextNode(node, nullptr, false, false)) {
    if (!(node->getError() & ERR_ELEMENT_PARSE_ERROR)) continue;
    const std::string& tag = static_cast<Element*>(node)->getRawBeginTag();
    if (tag.empty() || tag.back() == '>' || tag.find_first_of("<>", 1) == std::string::npos) continue;
    const SourceMap map(page.document());
    const SourceMap::Position at = map.getPosition(map.getBeginTag(node).begin);
    return "line " + std::to_string(at.line) + ", column " + std::to_string(at.column) +
           ": the tag has no end, so that the rest of the page stands inside it";
  }
  return {};
}

// Repairs a page and stores its new source, unless there was nothing that could be repaired.
std::size_t repair(const Page& page, std::string* text) {
  page.document()->clearUpdateFlag();
  const int repairs = page.document()->correctError(nullptr);
  if (repairs > 0) *text = page.source();
  return static_cast<std::size_t>(repairs);
}

}  // namespace

ExitCode runFix(const RewriteOptions& options, DOM::JSPVersion version) {
  const Library library(version);
  if (!library.usable()) return kFailed;
  return rewriteFiles(options, library, [&options](const Library& lib, const Page& page, const std::string& text) {
    ChangeResult result;
    result.text = text;
    // A page without severe errors stays as it is: a repair also tidies up what no error points at.
    if (!hasSevereErrors(page)) return result;
    result.left = swallowed(page);
    if (!result.left.empty() && options.inPlace) {
      result.left += "; please close it";
      return result;
    }
    std::size_t repairs = repair(page, &result.text);
    if (repairs == 0) {
      result.left = remaining(severeErrors(page));
      return result;
    }
    // What counts is how a reader of the new text sees it. A place that was out of the reader's sight, such as the rest
    // of a script that had no end, may show errors of its own now.
    for (int round = 1;; ++round) {
      const Page again(lib, result.text);
      if (!again.root() || !hasSevereErrors(again)) break;
      std::string next;
      const bool going = round < kRounds && (!options.inPlace || swallowed(again).empty());
      const std::size_t more = going ? repair(again, &next) : 0;
      if (more == 0 || next == result.text) {
        result.left = remaining(severeErrors(Page(lib, result.text)));
        break;
      }
      repairs += more;
      result.text = std::move(next);
    }
    result.done = counted(repairs, "repair");
    return result;
  });
}

}  // namespace zeldom40::tool
