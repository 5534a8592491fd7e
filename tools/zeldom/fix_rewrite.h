// What fix and format share: a page is changed, and its file keeps every line that was not.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

struct ChangeResult {
  std::string text;  // the page's new text, or its old one
  // The same for the whole file, where the change knows it. If not, the lines of the text that changed are written in
  // the file's charset.
  std::optional<std::string> bytes;
  std::string done;  // what was done, for people: "3 repairs"
  std::string left;  // what is left to do; empty: nothing
};

// Changes a page. `file.text` is the text that it was parsed from.
using PageChange = std::function<ChangeResult(const Library& library, const Page& page, const SourceFile& file)>;

// Runs `change` on each file and does with the result what the options say. `pairs` is for the page that it is given.
ExitCode rewriteFiles(const RewriteOptions& options, const Library& library, const PageChange& change,
                      Pairs pairs = Pairs::kKeep);

// How many severe errors a page has.
std::size_t severeErrors(const Page& page);

}  // namespace zeldom40::tool
