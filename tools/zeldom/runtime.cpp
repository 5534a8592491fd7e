// `zeldom runtime`: a page as its server gets it.
#include <string>
#include <string_view>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/fix_rewrite.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

namespace {

// The page without the comments of its pairs: what an author works with stands in the first of the two.
std::string withoutComments(const Page& page) {
  const std::string source(page.source());
  const SourceMap map(page.document());
  std::string text;
  std::size_t done = 0;
  for (const Element* element : page.pairs()) {
    const SourceMap::Range pair = map.getRange(element);
    const std::size_t begin = pair.begin + element->getMetaData()->getBeginTag().size();
    const std::size_t end = pair.end - element->getMetaData()->getEndTag().size();
    text.append(source, done, pair.begin - done).append(source, begin, end - begin);
    done = pair.end;
  }
  return text.append(source, done);
}

}  // namespace

ExitCode runRuntime(const RuntimeOptions& options, const Settings& settings) {
  const Library library(settings);
  if (!library.usable()) return kFailed;
  RewriteOptions rewrite;
  rewrite.files = options.files;
  rewrite.codepage = options.codepage;
  const auto change = [&](const Library&, const Page& page, const SourceFile&) {
    ChangeResult result;
    result.text = options.keep ? std::string(page.source()) : withoutComments(page);
    return result;
  };
  return rewriteFiles(rewrite, library, change, Pairs::kGenerate);
}

}  // namespace zeldom40::tool
