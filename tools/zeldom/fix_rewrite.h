// What fix and format share: a page is changed, and its file keeps every line that was not.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/guard.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

struct ChangeResult {
  std::string text;  // the page's new text, or its old one
  std::string done;  // what was done, for people: "3 repairs"
  std::string left;  // what is left to do; empty: nothing
  // What the change did to the text, for the guard.
  GuardMode mode = GuardMode::kNone;
  std::vector<zeldom40::SourceEdit> edits;
  std::vector<std::string> notes;  // for stderr: what is to be known of the change, a line each, behind the file's name
  bool isLeft = false;             // something is left to do, and the notes say what
};

// Changes a page. `file.text` is the text that it was parsed from.
using PageChange = std::function<ChangeResult(const Library& library, const Page& page, const SourceFile& file)>;

// Runs `change` on each file and does with the result what the options say, once the guard has compared both: what it
// stops is written nowhere, and kFailed. So are files of a form that cannot be written back. `pairs` is for the page
// that it is given.
ExitCode rewriteFiles(const RewriteOptions& options, const Library& library, const PageChange& change,
                      Pairs pairs = Pairs::kKeep);

// How many severe errors a page has.
std::size_t severeErrors(const Page& page);

}  // namespace zeldom40::tool
