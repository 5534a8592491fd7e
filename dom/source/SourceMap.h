// Where in its source each part of a page stands: byte ranges, lines and columns, and the way back.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "dom/export.h"
#include "dom/source/CodeConv.h"

namespace zeldom40 {

class Document;
class Element;
class Node;

// A picture of a page's places at the moment it is made, in one pass over the tree. A question then costs a binary
// search, however large the page is.
//
// Offsets are 0-based bytes of the text that getSourceBuf of the document's root gives with SOURCE_ALL; a range goes
// from its first byte to the one behind its last. Lines and columns are 1-based; a column counts characters under the
// code page that CodeConv has when the map is made: two bytes for a lead byte with its trail byte under 932, whole
// UTF-8 sequences under 65001, else one byte each. CR LF, CR and LF each end a line.
//
// Making a map writes dirty tags and texts anew, as getSourceBuf does. It is valid until the tree changes: it borrows
// nodes and looks at those that it is asked about.
class ZELDOM40_API SourceMap {
 public:
  static constexpr std::size_t NOWHERE = static_cast<std::size_t>(-1);

  // NOWHERE twice where there is no answer: for a node outside the tree or null, for generated content below an element
  // that is saved as a metadata pair, for an attribute that the tag does not have.
  struct Range {
    std::size_t begin = NOWHERE;
    std::size_t end = NOWHERE;

    bool isKnown() const { return begin != NOWHERE; }
    bool isEmpty() const { return begin == end; }
    std::size_t length() const { return end - begin; }
  };
  // An attribute that a begin tag states again. It does not count and is part of the source text alone.
  struct Repeat {
    std::string name;  // as written
    Range range;       // of that name
  };
  // 0, 0 where there is no answer.
  struct Position {
    std::size_t line = 0;
    std::size_t column = 0;
  };

  // The tree of `document`, which may be null or without a tree: then nothing has a place.
  explicit SourceMap(Document* document);
  // Also maps to the bytes of the file from which CodeConv::Import made the text that was parsed. `charset` is what was
  // given to Import or what GetCharset told then; the code page must be the same as then. `bytes` are not kept.
  SourceMap(Document* document, const char* bytes, std::size_t length, CodeConv::Charset charset);
  SourceMap(const SourceMap&) = delete;
  SourceMap& operator=(const SourceMap&) = delete;
  ~SourceMap();

  // The length of the text, and the number of its lines, of which even an empty text has one.
  std::size_t getLength() const;
  std::size_t getLineCount() const;

  // A node with all that it holds: an element from its begin tag to its end tag, a text, comment or PI.
  // A tag that is implied or missing has an empty range, at the place where it would stand.
  Range getRange(const Node* node) const;
  // For an element alone; one that is saved as a metadata pair has no tags.
  Range getBeginTag(const Node* node) const;
  Range getEndTag(const Node* node) const;

  // The name, and the value without its quotes, of the attribute at a 0-based index of getAttributes() or of that name,
  // in the case in which the element stores it. An attribute that the tag states twice is where its value comes from.
  // The value of an attribute without one is the empty range behind its name.
  Range getAttributeName(const Element* element, unsigned long index) const;
  Range getAttributeName(const Element* element, const char* name) const;
  Range getAttributeValue(const Element* element, unsigned long index) const;
  Range getAttributeValue(const Element* element, const char* name) const;

  // What the element's begin tag states again, in its order; empty for null, and for a tag that is to be written anew.
  // Below a metadata pair, where nothing has a place, the ranges are NOWHERE. Directives repeat nothing: in them the
  // last of a name counts. Reads the tag anew; the caller owns what is returned.
  std::vector<Repeat> getRepeatedAttributes(const Element* element) const;

  // The innermost node that has the byte at `offset`. Null from the end of the text on. Borrowed from the tree.
  Node* getNode(std::size_t offset) const;

  // The end of the text has a position too. An offset inside a character is in that character's column.
  Position getPosition(std::size_t offset) const;
  // The column behind the last character of a line is where the line ends. NOWHERE for a line that is not there, for
  // a column behind the end of its line, and for 0.
  std::size_t getOffset(Position position) const;

  // Whether the file's bytes are known: they were given and their import is the text of the tree. If not, the answers
  // below are NOWHERE. Bytes that equal the text need no import.
  bool hasFile() const;
  // Where in the file the character stands that the text has at `offset`.
  std::size_t toFile(std::size_t offset) const;
  // From the first character's first byte to the last one's last byte: without escape sequences around the range.
  Range toFile(Range range) const;
  // A byte inside an escape sequence belongs to the character behind it.
  std::size_t fromFile(std::size_t fileOffset) const;

 private:
  struct Data;

  std::unique_ptr<Data> data_;
};

}  // namespace zeldom40
