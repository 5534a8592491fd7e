// Internal. What the parser and the writer do to a text beyond its public interface.
#pragma once

#include <string>
#include <string_view>

#include "dom/source/PlainText.h"
#include "dom/tree/Comment.h"
#include "dom/tree/PageBuffer.h"
#include "dom/tree/Text.h"

namespace zeldom40 {

// Texts of a node's own, or made from its slices because somebody asked for a string.
struct TextStrings {
  std::string data;
  std::string raw;
  bool hasData = false;
  bool hasRaw = false;  // `raw` may be read
  bool rawOwn = false;  // `raw` is the source text; the slice is not
};

struct TextAccess {
  // A text of the page whose plain form is assembled from the slice when first read.
  static Text* createAssembled(Document* document, const SharedName& name, const PageRef& page, Slice raw,
                               TextContext context);
  // A literal text: plain and raw form are the slice.
  static Text* createLiteral(Document* document, const SharedName& name, const PageRef& page, Slice raw);
  // A text whose plain form was assembled already, or is another stretch than its raw form.
  static Text* createPlain(Document* document, const SharedName& name, const PageRef& page, Slice raw,
                           std::string data);
  static std::string_view rawData(const Text* text) { return text->rawView(); }
  // rawData is the slice.
  static bool isSourceOfPage(const Text* text) {
    return !text->rawDirty_ && !(text->strings_ && text->strings_->rawOwn);
  }
  // Destroys the members of a text that has no strings; false, with nothing done, for any other.
  static bool dismantle(Text* text) {
    if (text->strings_) return false;
    text->page_.~PageRef();
    return true;
  }
  // A text that follows from its slice and context alone.
  static bool isUntouched(const Text* text) { return text->derived_ && isSourceOfPage(text); }
  // What a saved text is made of beside its slice: one byte, and where it was edited the strings of its own, null for
  // what follows from the slice.
  static unsigned flags(const Text* text);
  static const std::string* ownData(const Text* text) {
    return !text->derived_ && text->strings_ && text->strings_->hasData ? &text->strings_->data : nullptr;
  }
  static const std::string* ownRaw(const Text* text) {
    return text->strings_ && text->strings_->rawOwn ? &text->strings_->raw : nullptr;
  }
  static Text* createSaved(Document* document, const SharedName& name, const PageRef& page, Slice raw, unsigned flags);
  static void setOwn(Text* text, const std::string_view* data, const std::string_view* raw);
  static const PageRef& page(const Text* text) { return text->page_; }
  static const Slice& slice(const Text* text) { return text->raw_; }
  // getData().empty(), without making the plain form.
  static bool hasEmptyData(const Text* text);
  // Cuts white space off the end of the raw text and returns it as a text that only formats the source, count 0; null
  // if there is none.
  static Text* splitTrailingSpace(Text* text);
  // Cuts white space off the end of the plain form; the raw form stays. Returns whether there was any.
  static bool trimRight(Text* text);
  // Replaces the raw form alone.
  static void setRaw(Text* text, std::string raw);
  static void setRawDirty(Text* text) {
    text->noteChange();
    text->rawDirty_ = true;
  }
  // Appends the other text's forms. Where both sources stand as they are they are joined, so that no byte of the page
  // changes; else the source is made anew from the plain form.
  static void append(Text* text, const Text* other);

 private:
  friend class Text;
  static Text* create(Document* document, const SharedName& name, const PageRef& page, Slice raw);
};

struct CommentAccess {
  // The parser's form: body and raw text are exact slices of the page.
  static Comment* create(Document* document, const SharedName& name, const PageRef& page, Slice raw, Slice body,
                         bool jsp);
  static std::string_view rawData(Comment* comment) { return comment->rawView(); }
  static std::string_view bodyText(const Comment* comment) {
    return comment->strings_ && comment->strings_->hasData ? std::string_view(comment->strings_->data)
                                                           : comment->body_.in(comment->page_);
  }
  static bool isUntouched(const Comment* comment) {
    return comment->page_ && !comment->rawDirty_ && !(comment->strings_ && comment->strings_->rawOwn);
  }
  static const PageRef& page(const Comment* comment) { return comment->page_; }
  static Slice slice(const Comment* comment) { return comment->raw_; }
  static Slice body(const Comment* comment) { return comment->body_; }
};

}  // namespace zeldom40
