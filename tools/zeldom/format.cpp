// `zeldom format`: lays out the source of a whole page anew.
#include <string>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/fix_rewrite.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

ExitCode runFormat(const FormatOptions& options, const Settings& settings) {
  const Library library(settings);
  if (!library.usable()) return kFailed;
  DocumentStyle* style = library.dom()->getDocumentStyle();
  style->SetIndent(options.indent);
  style->SetColumnLimit(options.columns);
  return rewriteFiles(options.rewrite, library, [](const Library&, const Page& page, const SourceFile& file) {
    ChangeResult result;
    result.text = file.text;
    result.done = "formatted";
    // Writing a tag anew completes it: a broken page would change its meaning unseen.
    if (page.document()->getError() & ERR_DOC_SEVERE_PARSE_ERROR) {
      result.left = "has severe errors and stays as it is (see zeldom fix)";
      return result;
    }
    // The nodes still count as new, so that each of them is laid out and not only those that an
    // edit has touched.
    page.document()->adjustNodes(nullptr, /*full=*/true);
    result.text = page.source();
    return result;
  });
}

}  // namespace zeldom40::tool
