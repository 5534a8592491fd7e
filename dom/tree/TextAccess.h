// Internal. What the parser and the writer do to a text beyond its public interface.
#pragma once

#include <string>
#include <string_view>

#include "dom/source/CharHelpers.h"
#include "dom/source/PlainText.h"
#include "dom/tree/Comment.h"
#include "dom/tree/NodeAccess.h"
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
  Node::Branch children = {};
};

struct TextAccess {
  // The first three take over one reference of `kind`.
  //
  // A text of the page whose plain form is assembled from the slice when first read.
  static Text* createAssembled(NodeKind* kind, Slice raw, TextContext context);
  // A literal text: plain and raw form are the slice.
  static Text* createLiteral(NodeKind* kind, Slice raw);
  // A text whose plain form was assembled already, or is another stretch than its raw form.
  static Text* createPlain(NodeKind* kind, Slice raw, std::string data);
  static std::string_view rawData(const Text* text) { return text->rawView(); }
  // Whether the page begins with it and with a byte order mark. Nothing joins it, stands before it or lays it out.
  static bool isByteOrderMark(const Text* text) {
    return text->getTextType() == Text::TEXT_FORMATTING && text->rawView().starts_with(kByteOrderMark);
  }
  // rawData is the slice.
  static bool isSourceOfPage(const Text* text) {
    return !text->rawDirty_ && !(text->leaf().strings && text->leaf().strings->rawOwn);
  }
  // Whether it has no strings, and so nothing that its end must give back.
  static bool isBare(const Text* text) { return !text->leaf().strings; }
  // A text that follows from its slice and context alone.
  static bool isUntouched(const Text* text) { return text->derived_ && isSourceOfPage(text); }
  // What a saved text is made of beside its slice: one byte, and where it was edited the strings of its own, null for
  // what follows from the slice.
  static unsigned flags(const Text* text);
  static const std::string* ownData(const Text* text) {
    return !text->derived_ && text->leaf().strings && text->leaf().strings->hasData ? &text->leaf().strings->data
                                                                                    : nullptr;
  }
  static const std::string* ownRaw(const Text* text) {
    return text->leaf().strings && text->leaf().strings->rawOwn ? &text->leaf().strings->raw : nullptr;
  }
  static Text* createSaved(Document* document, const SharedName& name, const PageRef& page, Slice raw, unsigned flags);
  static void setOwn(Text* text, const std::string_view* data, const std::string_view* raw);
  static const PageRef& page(const Text* text) { return text->page(); }
  static const Slice& slice(const Text* text) { return text->leaf().raw; }
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
};

struct CommentAccess {
  // The parser's form: body and raw text are exact slices of the page. Takes over one reference of `kind`.
  static Comment* create(NodeKind* kind, Slice raw, Slice body, bool jsp);
  static std::string_view rawData(Comment* comment) { return comment->rawView(); }
  static std::string_view bodyText(const Comment* comment) {
    return comment->leaf().strings && comment->leaf().strings->hasData ? std::string_view(comment->leaf().strings->data)
                                                                       : comment->body_.in(comment->page());
  }
  static bool isUntouched(const Comment* comment) {
    return comment->page() && !comment->rawDirty_ && !(comment->leaf().strings && comment->leaf().strings->rawOwn);
  }
  static const PageRef& page(const Comment* comment) { return comment->page(); }
  static Slice slice(const Comment* comment) { return comment->leaf().raw; }
  static Slice body(const Comment* comment) { return comment->body_; }
};

// Every text of a page comes through here.
inline Text::Text(Parsed, NodeKind* kind, Slice raw, bool dropLeading, bool preformatted)
    : Node(Parsed{}, NODE_TEXT, kind, UPDATE_CREATED),
      derived_(true),
      assembled_(true),
      dropLeading_(dropLeading),
      preformatted_(preformatted) {
  leaf().raw = raw;
}

inline Text* TextAccess::createAssembled(NodeKind* kind, Slice raw, TextContext context) {
  void* memory = NodePool::allocate(sizeof(Text));
  return ::new (memory) Text(Text::Parsed{}, kind, raw, context.dropLeading, context.preformatted);
}

}  // namespace zeldom40
