// `zeldom fix`: repairs what the library can repair.
#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

Node* lastNode(const Page& page) {
  Node* last = page.root();
  while (last && last->getLastChild()) last = last->getLastChild();
  return last;
}

// Where a tag without end has taken the rest of the page into itself: a repair writes the tag anew, and what stood in
// it is gone. Empty if there is none.
std::string swallowed(const Page& page) {
  const Node* last = lastNode(page);
  for (Node* node = page.root(); node; node = page.document()->findNextNode(node, nullptr, false, false)) {
    if (!(node->getError() & ERR_ELEMENT_PARSE_ERROR)) continue;
    const std::string& tag = static_cast<Element*>(node)->getRawBeginTag();
    if (tag.empty() || (tag.back() == '>' && node != last) || tag.find_first_of("<>", 1) >= tag.size() - 1) continue;
    const SourceMap map(page.document());
    const SourceMap::Position at = map.getPosition(map.getBeginTag(node).begin);
    return "line " + std::to_string(at.line) + ", column " + std::to_string(at.column) +
           ": the tag has no end, so that the rest of the page stands inside it";
  }
  return {};
}

// What may end the construct that `text` breaks off in. A quote may be open in a tag, so that takes some trying; a ">"
// inside it is no end.
std::vector<std::string_view> closersOf(std::string_view text, bool broken = false) {
  if (text.empty() || text.front() != '<' || (text.back() == '>' && !broken)) return {};
  const auto beginsWith = [text](std::string_view mark) { return text.substr(0, mark.size()) == mark; };
  if (beginsWith("<%--")) return {"--%>"};
  if (beginsWith("<!--")) return {"-->"};
  if (beginsWith("<%")) return {"%>"};
  if (beginsWith("<?")) return {"?>"};
  return {">", "\">", "'>"};
}

// The same for the end of a page, unless a repair writes anew what stands there. End tags that a repair appends would
// become part of the construct.
std::vector<std::string_view> closersOf(const Page& page) {
  for (Node* node = page.root(); node; node = node->getLastChild()) {
    if (node->getNodeType() == Node::NODE_ELEMENT) {
      auto* element = static_cast<Element*>(node);
      if (!element->getRawEndTag().empty()) return closersOf(element->getRawEndTag());
      const bool rebuilt = element->getElementType() == Element::ELEMENT_DEFINED;
      const bool broken = (element->getError() & ERR_ELEMENT_PARSE_ERROR) != 0;
      if (node->getLastChild() || (rebuilt && broken)) continue;
      return closersOf(element->getRawBeginTag(), broken);
    }
    if (node->getNodeType() == Node::NODE_COMMENT) return closersOf(static_cast<Comment*>(node)->getRawString());
    if (node->getNodeType() != Node::NODE_TEXT) return {};
    auto* text = static_cast<Text*>(node);
    if (text->getTextType() != Text::TEXT_LITERAL) return {};
    // The end tag of a script is looked for behind comments and server tags alone.
    const std::string_view data = text->getRawData();
    const std::size_t from = data.rfind('>') == std::string_view::npos ? 0 : data.rfind('>') + 1;
    const std::size_t at = std::min({data.find("<!--", from), data.find("<%", from), data.find("<?", from)});
    return at == std::string_view::npos ? std::vector<std::string_view>() : closersOf(data.substr(at));
  }
  return {};
}

// Whether a tag behind `text` would be read as one.
bool isClosed(const Library& library, const std::string& text, bool inScript) {
  const std::string tag = "<IMG>";
  const Page probe(library, inScript ? text : text + tag, Pairs::kKeep);
  Node* last = lastNode(probe);
  if (inScript || !last) return last && closersOf(probe).empty();
  return last->getNodeType() == Node::NODE_ELEMENT && static_cast<Element*>(last)->getRawBeginTag() == tag;
}

// Ends the construct in which the page breaks off; false if it does not, or if nothing ends it.
bool closeAtEnd(const Library& library, const Page& page, std::string* text) {
  const std::vector<std::string_view> closers = closersOf(page);
  const bool inScript = lastNode(page)->getNodeType() == Node::NODE_TEXT;
  const std::string source(page.source());
  if (closers.empty() || isClosed(library, source, inScript)) return false;
  for (const std::string_view closer : closers) {
    *text = source;
    *text += closer;
    if (isClosed(library, *text, inScript)) return true;
  }
  return false;
}

// Repairs a page and stores its new source, unless there was nothing that could be repaired.
std::size_t repair(const Library& library, const Page& page, std::string* text) {
  if (std::string closed; closeAtEnd(library, page, &closed)) {
    const Page whole(library, closed, Pairs::kKeep);
    const std::size_t more = hasSevereErrors(whole) ? repair(library, whole, &closed) : 0;
    *text = std::move(closed);
    return more + 1;
  }
  page.document()->clearUpdateFlag();
  const int repairs = page.document()->correctError(nullptr);
  if (repairs > 0) *text = page.source();
  return static_cast<std::size_t>(repairs);
}

}  // namespace

ExitCode runFix(const RewriteOptions& options, const Settings& settings) {
  const Library library(settings);
  if (!library.usable()) return kFailed;
  return rewriteFiles(options, library, [&options](const Library& lib, const Page& page, const SourceFile& file) {
    ChangeResult result;
    result.text = file.text;
    // A page without severe errors stays as it is: a repair also tidies up what no error points at.
    if (!hasSevereErrors(page)) return result;
    result.left = swallowed(page);
    if (!result.left.empty() && options.inPlace) {
      result.left += "; please close it";
      return result;
    }
    std::size_t repairs = repair(lib, page, &result.text);
    if (repairs == 0) {
      result.left = remaining(severeErrors(page));
      return result;
    }
    // What counts is how a reader of the new text sees it. A place that was out of the reader's
    // sight, such as the rest of a script that had no end, may show errors of its own now.
    for (int round = 1;; ++round) {
      const Page again(lib, result.text, Pairs::kKeep);
      if (!again.root() || !hasSevereErrors(again)) break;
      std::string next;
      const bool going = round < kRounds && (!options.inPlace || swallowed(again).empty());
      const std::size_t more = going ? repair(lib, again, &next) : 0;
      if (more == 0 || next == result.text) {
        result.left = remaining(severeErrors(Page(lib, result.text, Pairs::kKeep)));
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
