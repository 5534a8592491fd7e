// Input files, and the library's objects with their life times, for all commands.
#pragma once

#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

#include "dom/zeldom40.h"
#include "tools/zeldom/commands.h"
#include "tools/zeldom/source_file.h"
#include "tools/zeldom/types.h"

namespace zeldom40::tool {

// What the file system says of a file.
FileStamp stampOf(const struct stat& info);

// Reads a whole file, standard input for "-". `stamp`, if not null, is the file's from before it was read. On failure
// says why on stderr and returns false.
bool readInput(const std::string& path, std::string* bytes, FileStamp* stamp = nullptr);

// One line on stderr: "zeldom: <subject>: <message>".
void complain(const std::string& subject, const std::string& message);

// The library, for as long as a command runs. Documents must go first.
class Library {
 public:
  explicit Library(const Settings& settings);
  ~Library() { DOM::destroyDOM(dom_); }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  // Null if it could not be made or if the types could not be read; usable() says so on stderr.
  DOM* dom() const { return dom_; }
  bool usable() const;
  // Forgets what the pages before have declared, so that the order of files never matters: dom() is another one from
  // then on, and no document of the old one may be left. False, said on stderr, if memory ran out.
  bool startFile() const;
  const Types& types() const { return types_; }

 private:
  void makeDom() const;

  const DOM::JSPVersion version_;
  mutable DOM* dom_ = nullptr;
  mutable bool started_ = false;  // the DOM has met a file
  Types types_;
  bool hasTypes_;
  bool typesFine_;
};

// What becomes of dynamic elements when a page is written.
enum class Pairs {
  kGenerate,  // a save: each is a pair of comments with the run-time text that it generates today
  kKeep       // what stands in the file comes back as it is, unless the page is edited there
};

// A parsed page.
class Page {
 public:
  Page(const Library& library, std::string_view bytes, Pairs pairs = Pairs::kGenerate);
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
  // The elements that are written as pairs, in document order, but for those inside of others.
  std::vector<Element*> pairs() const;
  // What Pairs::kKeep asks for, of a page that was parsed without.
  void keepPairs() const { document_->keepRuntimeText(); }

 private:
  DOM* dom_;
  Document* document_;
  Node* root_;
};

// Reads and parses one file and returns what `use(page, bytes)` says; without a call kFailed, with the reason on
// stderr, for a file that cannot be read or that the library refuses.
template <typename Use>
ExitCode withPage(const Library& library, const std::string& path, Pairs pairs, Use use) {
  std::string bytes;
  if (!readInput(path, &bytes) || !library.startFile()) return kFailed;
  Page page(library, bytes, pairs);
  return page.usable(path) ? use(page, bytes) : kFailed;
}

// The same for a file that is imported under `codepage` (0 guesses): what `use(file, page)` says.
template <typename Use>
ExitCode withSource(const Library& library, const std::string& path, int codepage, Pairs pairs, Use use) {
  SourceFile file;
  if (!readSource(path, codepage, &file) || !library.startFile()) return kFailed;
  const Page page(library, file.text, pairs);
  return page.usable(path) ? use(file, page) : kFailed;
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
