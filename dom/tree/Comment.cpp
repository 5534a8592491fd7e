// The two forms of a comment.
#include "dom/tree/Comment.h"

#include "dom/document/DOMAccess.h"
#include "dom/document/DocumentAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

Comment::Comment(const std::string& data, Document* document) : Node(NODE_COMMENT, document) {
  NodeAccess::setName(this, DOMAccess::commentName());
  strings().data = data;
  strings().hasData = true;
  setUpdateFlag(UPDATE_CREATED);
}

Comment::Comment(const char* data, Document* document) : Comment(std::string(data ? data : ""), document) {}

Comment::Comment(FromPage, NodeKind* kind, Slice raw, Slice body)
    : Node(Parsed{}, NODE_COMMENT, kind, UPDATE_CREATED), rawDirty_(false), body_(body) {
  leaf().raw = raw;
}

Comment::Comment(const Comment& other) : Node(other), rawDirty_(other.rawDirty_), jsp_(other.jsp_), body_(other.body_) {
  leaf().raw = other.leaf().raw;
  if (other.leaf().strings) {
    leaf().strings = new TextStrings(*other.leaf().strings);
    leaf().strings->children = {};
  }
  setUpdateFlag(UPDATE_CREATED);
}

Comment::~Comment() = default;

Node* Comment::cloneSelf() const { return new Comment(*this); }

Comment* CommentAccess::create(NodeKind* kind, Slice raw, Slice body, bool jsp) {
  auto* comment = new Comment(Comment::FromPage{}, kind, raw, body);
  comment->jsp_ = jsp;
  return comment;
}

const std::string& Comment::getData() const {
  TextStrings& s = strings();
  if (!s.hasData) {
    s.data = body_.in(page());
    s.hasData = true;
  }
  return s.data;
}

void Comment::setData(const char* data) { setData(std::string(data ? data : "")); }

void Comment::setData(const std::string& data) {
  if (getDocument()) DocumentAccess::recordChange(getDocument(), this);
  noteChange();
  NodeAccess::noteEdit(this);
  strings().data = data;
  strings().hasData = true;
  rawDirty_ = true;
}

std::string_view Comment::rawView() {
  if (rawDirty_) {
    noteChange();
    const std::string& data = getData();
    TextStrings& s = strings();
    s.raw = jsp_ ? "<%" + data + "%>" : "<!" + data + ">";
    s.hasRaw = s.rawOwn = true;
    rawDirty_ = false;
  }
  return leaf().strings && leaf().strings->rawOwn ? std::string_view(leaf().strings->raw) : leaf().raw.in(page());
}

const char* Comment::getRawData() { return getRawString().c_str(); }

const std::string& Comment::getRawString() {
  const std::string_view raw = rawView();
  TextStrings& s = strings();
  if (!s.hasRaw) {
    s.raw = raw;
    s.hasRaw = true;
  }
  return s.raw;
}

void Comment::setRawData(const char* text) {
  if (text) setRawData(std::string(text));
}

void Comment::setRawData(const std::string& text) {
  const std::string_view opener = jsp_ ? "<%" : "<!";
  const std::string_view closer = jsp_ ? "%>" : ">";
  const std::string_view view = text;
  if (view.size() < opener.size() + closer.size() || view.substr(0, 2) != opener ||
      view.substr(view.size() - closer.size()) != closer) {
    return;
  }
  if (getDocument()) DocumentAccess::recordChange(getDocument(), this);
  noteChange();
  NodeAccess::noteEdit(this);
  TextStrings& s = strings();
  s.raw = text;
  s.data = view.substr(2, view.size() - 2 - closer.size());
  s.hasData = s.hasRaw = s.rawOwn = true;
  rawDirty_ = false;
}

void Comment::setJSP(bool jsp) {
  if (jsp == jsp_) return;
  noteChange();
  NodeAccess::noteEdit(this);
  jsp_ = jsp;
  // The data must outlive the slices, which show the other form.
  getData();
  rawDirty_ = true;
}

}  // namespace zeldom40
