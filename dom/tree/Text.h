// Character data of a page.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "dom/export.h"
#include "dom/tree/Node.h"
#include "dom/tree/PageSlice.h"

namespace zeldom40 {

class Element;
struct ReferenceTables;
struct TextStrings;

// Holds two forms: the raw source with entity references, and the plain form that the layout works in, where a
// character given by a reference is marked by a byte 27 (two bytes in all) or 28 (four bytes in all). One form is
// authoritative at a time. What an edit of the plain form does not touch keeps its meaning in the source: a reference
// that the library cannot read comes back as it stood, the same characters set by a host come out escaped. Offsets are
// bytes of the plain form unless stated.
class ZELDOM40_API Text : public Node {
 public:
  enum TextType {
    TEXT_LITERAL = 0,    // taken literally: script, style, CDATA content
    TEXT_NORMAL = 1,     // entity conversion applies
    TEXT_FORMATTING = 2  // has no layout presence: white space of the source, or the byte order mark before a page
  };
  // How `insert` treats a blank next to white space.
  enum SpaceMode { SPACE_NORMAL = 0, SPACE_KEEP = 1, SPACE_NBSP = 2 };

  explicit Text(Document* document);
  // Installs both forms; the raw one is current.
  Text(const std::string& data, const std::string& rawData, Document* document);
  Text(const Text& other);
  ~Text() override;

  TextType getTextType() const { return static_cast<TextType>(textType_); }
  void setTextType(TextType type) {
    noteChange();
    textType_ = static_cast<std::uint8_t>(type) & 3;
  }
  // The plain form. Lives until the text changes.
  const std::string& getData() const;
  // Sets the plain form. With `notify` it is an edit: recorded, markup characters protected (type 1), raw form dirty.
  // Without, the raw form stays as it is. Null counts as empty.
  void setData(const char* text, bool notify);
  void setData(const std::string& text, bool notify);
  // The source form, made anew if dirty. Lives until the text changes.
  const std::string& getRawData() const;
  // Sets the text from source: for type 1 white space is collapsed (not in preformatted text) and references become
  // marks, unknown ones stay as they are; other types keep their plain form.
  void setRawData(const char* text);
  void setRawData(const std::string& text);

  // Inserts at a byte offset (negative: at the end); returns the bytes inserted, 0 if white space collapsed to nothing
  // or the offset lies past the end. `moveCursor` sets the layout cursor behind the insertion.
  int insert(int offset, const char* text, bool moveCursor, SpaceMode mode);
  // Removes up to `count` bytes; returns `count` as passed, 0 for an offset past the end.
  int Delete(int offset, int count, bool moveCursor);
  // Removes one whole character, at the offset or before it. Returns the bytes removed.
  int deleteChar(int offset, bool backward);
  // Replaces `count` bytes; returns the length of what stands there now.
  int replace(int offset, int count, const char* text, bool moveCursor);
  // Wraps `count` bytes at `offset` in `element`, the rest moves to a new text behind it. KEPT: if the element cannot
  // contain this text the wrapped bytes are gone; ask canContain first. Returns the clamped count, -1 without an
  // element, document or parent, and for an element that cannot be inserted here.
  int splice(Element* element, int offset, int count, bool moveCursor);
  // Collapses white-space runs; the layout cursor stays at its character. Returns the change in length (0 or negative).
  int compact();
  bool isEmptyText(bool ignoreWhitespaceType) const;
  // True below a preformatted element.
  bool isPlainText() const;

  // Plain text to source text (references kept as they are if `keepReferences`), and source to plain bytes (white space
  // collapsed first if `collapse`). The caller frees the result with destroyData. Null gives null.
  static char* convertTextToRawData(const char* text, bool keepReferences);
  static char* convertRawDataToText(const char* text, bool collapse);
  static void destroyData(char* data);

 private:
  friend struct TextAccess;
  Text(Parsed, NodeKind* kind, Slice raw);
  Text(Parsed, NodeKind* kind, Slice raw, bool dropLeading, bool preformatted);

  Node* cloneSelf() const override;
  TextStrings& strings() const { return ownStrings(); }
  std::string& editData();
  std::string& ownRaw();
  bool keepsSource() const;
  ReferenceTables references() const;
  void changeData(std::string now);
  void carryTo(const std::string& now);
  void dataChanged();
  void writeSource();
  std::string_view rawView() const;
  std::string_view sourceView() const;
  void record();

  std::uint8_t textType_ : 2 = TEXT_NORMAL;
  bool rawDirty_ : 1 = false;
  bool derived_ : 1 = false;      // the plain form follows from the slice and the three bits below
  bool assembled_ : 1 = false;    // by assembling references and white space; else it equals the slice
  bool dropLeading_ : 1 = false;  // white space at the start adds nothing
  bool preformatted_ : 1 = false;
  bool trimmed_ : 1 = false;  // white space at the end adds nothing
};

}  // namespace zeldom40
