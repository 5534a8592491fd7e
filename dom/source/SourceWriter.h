// Internal. From the tree to source text.
#pragma once

#include <string>
#include <string_view>

#include "dom/document/Document.h"

namespace zeldom40 {

// Collects pieces into one string. Neighbouring slices of a page are joined before they are copied, so that a clean
// stretch of a page is one copy.
class SliceJoiner {
 public:
  explicit SliceJoiner(std::string& out) : out_(out) {}
  ~SliceJoiner() { flush(); }
  SliceJoiner(const SliceJoiner&) = delete;
  SliceJoiner& operator=(const SliceJoiner&) = delete;

  void append(std::string_view piece) {
    if (piece.empty()) return;
    if (piece.data() == pending_.data() + pending_.size()) {
      pending_ = std::string_view(pending_.data(), pending_.size() + piece.size());
      return;
    }
    flush();
    pending_ = piece;
  }
  // Must come before a piece that was appended may change.
  void flush() {
    out_.append(pending_);
    pending_ = {};
  }

 private:
  std::string& out_;
  std::string_view pending_;
};

struct SourceOptions {
  bool rawTree = false;  // elements with metadata as they stand in the tree, with their visuals around them
  bool compact = false;  // leaves out run-time text, but that of elements with a visual
  bool inner = false;    // the node itself without its visual
  // Whether an element above the node has metadata, if the caller knows.
  enum Above { UNKNOWN, PLAIN, METADATA } above = UNKNOWN;
};

// Appends the source of `node` to `out`: the stored raw texts in tree order, and for an element with metadata its pair
// of comments with the run-time text between them. Dirty nodes rebuild theirs as they are asked, so that a second write
// of the same tree rebuilds nothing.
void writeNode(Node* node, Document::SourceMode mode, std::string& out, SourceOptions options = {});

}  // namespace zeldom40
