// Internal. A page as the planner of repairs looks at it: its nodes in a row, with their places in the source.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "dom/source/SourceMap.h"
#include "dom/tree/Element.h"

namespace zeldom40 {

class Document;

// An edit and what decides its place among insertions at one offset.
struct PlannedEdit {
  std::size_t offset = 0;
  std::size_t length = 0;
  std::string replacement;
  int rank = 0;  // lower ones come first
};

// Made once for a page that does not change. Nodes are known by their index in document order; a subtree is the
// indices from a node up to its `behind`. Nothing recurses, and each question costs a step or a binary search.
class RepairPage {
 public:
  static constexpr int kNone = -1;

  struct Item {
    Node* node;
    int parent;
    int behind;  // the first index that is not below the node
    int depth;
    unsigned long error;
    int id;                  // -1 for a text and for what has no identifier; an end tag alone has that of its name
    SourceMap::Range all;    // NOWHERE: generated content, which has no place
    SourceMap::Range begin;  // the begin tag; empty if it is implied; NOWHERE for what is no element
    SourceMap::Range end;    // the end tag in the same way
    bool isElement;
    bool isUnknown;    // the DTD has no such element
    bool isCarriable;  // an inline element that may go into blocks instead of around them
    bool isInline;     // stands in a line of text
  };

  // With `guardWide` bytes above 127 count as server code: in the escaped form that such a page may have in its file
  // they look like anything.
  explicit RepairPage(Document& document, bool guardWide = false);

  const std::string& source() const { return source_; }
  const std::vector<Item>& items() const { return items_; }
  const Item& operator[](int index) const { return items_[static_cast<std::size_t>(index)]; }
  int count() const { return static_cast<int>(items_.size()); }
  // kNone if the node has no place in the page.
  int find(const Node* node) const;
  int nextSibling(int index) const;
  int previousSibling(int index) const;
  int id(int index) const { return (*this)[index].id; }
  std::string_view at(SourceMap::Range range) const {
    return std::string_view(source_).substr(range.begin, range.length());
  }
  // Whether a text is white space alone; false for other nodes.
  bool isBlank(int index) const;
  bool isComment(int index) const { return (*this)[index].node->getNodeType() == Node::NODE_COMMENT; }
  // The attributes of a begin tag as they are written, with value and quotes, in the order of the tag.
  std::vector<SourceMap::Range> attributes(int index) const;
  // The names of attributes that are declared in other letters, and how.
  std::vector<std::pair<SourceMap::Range, std::string>> misspelt(int index) const;
  // The name in the letters of the begin tag.
  std::string writtenName(int index) const;
  // The same for a new element beside this one: upper or lower case as there.
  std::string likeName(int index, const char* upperName) const;
  // Whether a server construct, or what switches markup on and off, begins in the stretch.
  bool hasServerCode(std::size_t begin, std::size_t end) const;
  // Whether the text of the page keeps its line breaks and blanks around that place, or is no text at all: inside of
  // PRE, TEXTAREA, SCRIPT and the like, however deep.
  bool isVerbatim(std::size_t offset) const;
  // A begin tag in which no other tag begins, as far as its reader could tell.
  bool isPlainTag(SourceMap::Range tag) const;
  // Whether a begin tag that is none of those begins in the stretch, which may have swallowed what stood behind it, or
  // a declaration, which ends what stands before.
  bool hasOddTag(std::size_t begin, std::size_t end) const;
  // Whether a container of newer pages, which the DTD does not know, begins or ends in the stretch.
  bool hasUnknownTag(std::size_t begin, std::size_t end) const;
  // The page says that it is HTML 5, or is a fragment of which nobody knows, where an anchor may stand around blocks.
  bool isHtml5() const { return isHtml5_; }
  bool isHalf() const { return isHalf_; }
  // The page opens HTML or BODY and does not close them: another file may go on where it ends.
  bool isOpenAtEnd() const { return isOpenAtEnd_; }
  // The HEAD of the page, kNone if it has none of its own.
  int head() const { return head_; }

  // --- places in lines ---------------------------------------------------------------------------------------------
  // The offset behind `offset` going back over white space, but not before `floor`.
  std::size_t trimBack(std::size_t offset, std::size_t floor) const;
  std::size_t skipSpace(std::size_t offset, std::size_t ceiling) const;
  // The begin of the line if only blanks stand between it and the offset; NOWHERE if there is more.
  std::size_t lineBegin(std::size_t offset) const;
  // Behind the line end if only blanks stand between it and the offset; NOWHERE if there is more.
  std::size_t lineEnd(std::size_t offset) const;
  // The blanks that the line of `offset` begins with, and the line end that the page uses there.
  std::string indentOf(std::size_t offset) const;
  std::string_view newlineNear(std::size_t offset) const;

 private:
  void readTree(Document& document);
  void findServerCode(bool guardWide);
  void findVerbatim();
  void judgeWhole();

  std::string source_;
  std::vector<Item> items_;
  std::unordered_map<const Node*, int> places_;
  std::vector<std::size_t> server_;         // where constructs begin, sorted
  std::vector<SourceMap::Range> verbatim_;  // sorted
  std::vector<int> previous_;               // sibling before each item
  int head_ = kNone;
  std::vector<std::size_t> oddTags_;  // where they begin, sorted; declarations too
  std::vector<std::size_t> unknownTags_;
  bool isHalf_ = false;
  bool isHtml5_ = false;
  bool isOpenAtEnd_ = false;
};

}  // namespace zeldom40
