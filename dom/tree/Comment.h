// A comment or markup declaration, or a JSP comment.
#pragma once

#include <string>
#include <string_view>

#include "dom/export.h"
#include "dom/tree/Node.h"
#include "dom/tree/PageSlice.h"

namespace zeldom40 {

struct TextStrings;

// Holds the text between the delimiters <! > (<% %> for JSP) and the raw source with them: the data of an HTML comment
// thus includes its dashes.
class ZELDOM40_API Comment : public Node {
 public:
  Comment(const std::string& data, Document* document);
  Comment(const char* data, Document* document);
  Comment(const Comment& other);
  ~Comment() override;

  // Lives until the comment changes.
  const std::string& getData() const;
  // Assigns and makes the raw form dirty; recorded for undo. KEPT: raises no update flag.
  void setData(const char* data);
  void setData(const std::string& data);
  // The source text, made anew if dirty. Lives until the comment changes.
  const char* getRawData();
  // The same with its length, for a text that holds NUL bytes.
  const std::string& getRawString();
  // Takes a whole source text; one that has not the delimiters of this form is ignored.
  void setRawData(const char* text);
  void setRawData(const std::string& text);
  bool isJSP() const { return jsp_; }
  void setJSP(bool jsp);

 private:
  friend struct CommentAccess;
  struct FromPage {};
  Comment(FromPage, NodeKind* kind, Slice raw, Slice body);
  Node* cloneSelf() const override;
  std::string_view rawView();
  TextStrings& strings() const { return ownStrings(); }

  bool rawDirty_ : 1 = true;
  bool jsp_ : 1 = false;
  Slice body_;
};

}  // namespace zeldom40
