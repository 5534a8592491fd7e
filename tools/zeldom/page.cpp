// Input files, and the library's objects with their life times, for all commands.
#include "tools/zeldom/page.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

namespace zeldom40::tool {

namespace {

// Sizes in the library are 32 bits wide; reading stops here rather than at the end of memory.
constexpr std::size_t kLargestPage = std::numeric_limits<std::int32_t>::max();

struct Closer {
  void operator()(std::FILE* file) const {
    if (file != stdin) std::fclose(file);
  }
};

}  // namespace

void complain(const std::string& subject, const std::string& message) {
  std::fprintf(stderr, "zeldom: %s: %s\n", subject.c_str(), message.c_str());
}

FileStamp stampOf(const struct stat& info) { return {info.st_size, info.st_mtim.tv_sec, info.st_mtim.tv_nsec}; }

bool readInput(const std::string& path, std::string* bytes, FileStamp* stamp) {
  const std::unique_ptr<std::FILE, Closer> file(path == "-" ? stdin : std::fopen(path.c_str(), "rb"));
  if (!file) {
    complain(path, std::strerror(errno));
    return false;
  }
  struct stat info;
  if (stamp && fstat(fileno(file.get()), &info) == 0) *stamp = stampOf(info);
  bytes->clear();
  char block[1 << 16];
  while (const std::size_t got = std::fread(block, 1, sizeof block, file.get())) {
    if (bytes->size() + got > kLargestPage) {
      complain(path, "larger than 2 GiB");
      return false;
    }
    bytes->append(block, got);
  }
  if (std::ferror(file.get())) {
    complain(path, std::strerror(errno));
    return false;
  }
  return true;
}

Library::Library(const Settings& settings)
    : version_(settings.version),
      hasTypes_(!settings.types.empty()),
      typesFine_(settings.types.empty() || types_.load(settings.types)) {
  if (typesFine_) makeDom();
}

void Library::makeDom() const {
  dom_ = DOM::createDOM(nullptr, version_, nullptr, nullptr);
  if (dom_ && hasTypes_) dom_->setJavaTypeLookupIF(&types_);
}

bool Library::startFile() const {
  if (std::exchange(started_, true)) {
    DOM::destroyDOM(dom_);
    makeDom();
  }
  return usable();
}

bool Library::usable() const {
  if (!dom_ && typesFine_) complain("library", "out of memory");
  return dom_ != nullptr;
}

Page::Page(const Library& library, std::string_view bytes, Pairs pairs)
    : dom_(library.dom()), document_(dom_->createDocument("HTML")) {
  for (const auto& [name, type] : library.types().beans()) document_->addOutBoundBean(name.c_str(), type.c_str());
  root_ = document_->createNodes(bytes.data(), static_cast<unsigned>(bytes.size()), nullptr, /*adjust=*/false);
  if (root_ && pairs == Pairs::kKeep) keepPairs();
}

bool Page::usable(const std::string& path) const {
  if (!root_) complain(path, "too large for a page");
  return root_ != nullptr;
}

std::vector<Element*> Page::pairs() const {
  std::vector<Element*> found;
  for (Node* n = root_; n;) {
    const bool isElement = n->getNodeType() == Node::NODE_ELEMENT;
    const bool isPair = isElement && static_cast<Element*>(n)->getMetaData();
    if (isPair) found.push_back(static_cast<Element*>(n));
    n = document_->findNextNode(n, root_, /*updatedOnly=*/false, /*skipChildren=*/isPair);
  }
  return found;
}

std::string_view Page::source(Node* node) const {
  const char* text = document_->getSourceBuf(node, Document::SOURCE_ALL, /*compact=*/false);
  // A null node asks for the length of what was just written, without a second walk.
  return {text, document_->getSourceBufLen(nullptr, Document::SOURCE_ALL, /*compact=*/false)};
}

}  // namespace zeldom40::tool
