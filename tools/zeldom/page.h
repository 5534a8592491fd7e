// Input files, and the library's objects with their life times, for all commands.
#pragma once

#include <string>
#include <string_view>

#include "dom/zeldom40.h"
#include "tools/zeldom/commands.h"
#include "tools/zeldom/source_file.h"

namespace zeldom40::tool {

// Reads a whole file, standard input for "-". On failure says why on stderr and returns false.
bool readInput(const std::string& path, std::string* bytes);

// One line on stderr: "zeldom: <subject>: <message>".
void complain(const std::string& subject, const std::string& message);

// The library, for as long as a command runs. Documents must go first.
class Library {
 public:
  explicit Library(DOM::JSPVersion version) : dom_(DOM::createDOM(nullptr, version, nullptr, nullptr)) {}
  ~Library() { DOM::destroyDOM(dom_); }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  // Null if it could not be made; said on stderr by usable().
  DOM* dom() const { return dom_; }
  bool usable() const;

 private:
  DOM* dom_;
};

// A parsed page.
class Page {
 public:
  Page(const Library& library, std::string_view bytes);
  ~Page() { dom_->deleteDocument(document_); }
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;

  Document* document() const { return document_; }
  // Null if the library refused the page for its size; said on stderr by usable().
  Node* root() const { return root_; }
  bool usable(const std::string& path) const;
  // The page as the library writes it; lives until the next call or the end of the page.
  std::string_view source() const { return source(root_); }
  std::string_view source(Node* node) const;

 private:
  DOM* dom_;
  Document* document_;
  Node* root_;
};

// Reads and parses one file and returns what `use(page, bytes)` says; without a call kFailed, with the reason on
// stderr, for a file that cannot be read or that the library refuses.
template <typename Use>
ExitCode withPage(const Library& library, const std::string& path, Use use) {
  std::string bytes;
  if (!readInput(path, &bytes)) return kFailed;
  Page page(library, bytes);
  return page.usable(path) ? use(page, bytes) : kFailed;
}

// The same for a file that is imported under `codepage` (0 guesses): what `use(file, page, map)` says.
template <typename Use>
ExitCode withSource(const Library& library, const std::string& path, int codepage, Use use) {
  SourceFile file;
  if (!readSource(path, codepage, &file)) return kFailed;
  const Page page(library, file.text);
  if (!page.usable(path)) return kFailed;
  const SourceMap map(page.document(), file.bytes.data(), file.bytes.size(), file.charset);
  return use(file, page, map);
}

// Visits the subtree of `top` in document order, along the links: depth costs no stack. `enter(node, depth)` comes
// before a node's children and `leave(node)` after them.
template <typename Enter, typename Leave>
void walk(Node* top, Enter enter, Leave leave) {
  Node* node = top;
  for (unsigned depth = 0;;) {
    enter(node, depth);
    if (Node* child = node->getFirstChild()) {
      node = child;
      ++depth;
      continue;
    }
    leave(node);
    while (node != top && !node->getNextSibling()) {
      node = node->getParentNode();
      --depth;
      leave(node);
    }
    if (node == top) return;
    node = node->getNextSibling();
  }
}

}  // namespace zeldom40::tool
