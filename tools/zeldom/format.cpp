// `zeldom format`: lays out the source of a whole page anew.
#include <string>
#include <string_view>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/fix_rewrite.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

namespace {

bool isUnwritten(const Node* node) {
  if (node->getNodeType() != Node::NODE_ELEMENT) return false;
  const auto* element = static_cast<const Element*>(node);
  return element->getRawBeginTag().empty() && element->getRawEndTag().empty();
}

}  // namespace

ExitCode runFormat(const FormatOptions& options, DOM::JSPVersion version) {
  const Library library(version);
  if (!library.usable()) return kFailed;
  DocumentStyle* style = library.dom()->getDocumentStyle();
  style->SetIndent(options.indent);
  style->SetColumnLimit(options.columns);
  return rewriteFiles(options.rewrite, library, [](const Library&, const Page& page, const std::string& text) {
    ChangeResult result;
    result.text = text;
    result.done = "formatted";
    // Writing a tag anew completes it: a broken page would change its meaning unseen.
    if (page.document()->getError() & ERR_DOC_SEVERE_PARSE_ERROR) {
      result.left = "has severe errors and stays as it is (see zeldom fix)";
      return result;
    }
    // Every node still counts as one that entered the tree just now, so that all are laid out and not only those that
    // an edit has touched; but none as created, for tags and texts of the page's author are not to be written anew. An
    // element that the page leaves out needs no lines of its own.
    for (Node* node = page.root(); node; node = page.document()->findNextNode(node, nullptr, false, false)) {
      node->resetUpdateFlag(Node::UPDATE_CREATED | (isUnwritten(node) ? Node::UPDATE_ADDED : 0));
    }
    page.document()->adjustNodes(nullptr, /*full=*/true);
    result.text = page.source();
    // The first element of a page gets a line break before it, as any other does.
    const std::string_view lineEnd = "\r\n";
    if (text.substr(0, 2) != lineEnd && result.text.substr(0, 2) == lineEnd) result.text.erase(0, 2);
    return result;
  });
}

}  // namespace zeldom40::tool
