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
  // How the guard compares the file with what is to be written, and the edits that made `text` of the page's text:
  // all bytes of the file beside them stay. Without a guard the lines of the text that differ are written anew.
  GuardMode mode = GuardMode::kNone;
  std::vector<SourceEdit> edits;
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

}  // namespace zeldom40::tool
