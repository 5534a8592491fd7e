// Internal. Reads tags of a tree again, with the parser's own readers.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "dom/document/Document.h"
#include "dom/dtd/DocumentType.h"
#include "dom/html/HTMLLexer.h"
#include "dom/html/PageParser.h"
#include "dom/tree/ElementAccess.h"

namespace zeldom40 {

// For tags of which no record of their attributes is left, as the parser read them or would read them.
class TagReadings {
 public:
  using Entries = std::vector<AttributeBlock::Entry>;

  explicit TagReadings(Document* document)
      : document_(document),
        frame_(document && document->getDocumentTypeObject() ? document->getDocumentTypeObject()->getDTDFrame()
                                                             : nullptr) {}
  TagReadings(const TagReadings&) = delete;
  TagReadings& operator=(const TagReadings&) = delete;
  ~TagReadings() { close(); }

  // Whether that text of an element's begin tag is a stretch of the page that the element comes from.
  static bool isSourceOfPage(const Element* element, std::string_view tag) {
    const Slice slice = ElementAccess::beginSlice(element);
    return slice.length == tag.size() && slice.in(ElementAccess::page(element)).data() == tag.data();
  }
  // Where in `page()` the begin tag stands, whose text is `tag`: in the page that the element comes from or, written
  // anew, in one of its own.
  Slice locate(const Element* element, std::string_view tag) {
    if (isSourceOfPage(element, tag)) {
      const PageRef& page = ElementAccess::page(element);
      if (!lexer_ || lexer_->page().get() != page.get()) open(page);
      return ElementAccess::beginSlice(element);
    }
    PageBuffer* own = PageBuffer::create(tag, nullptr, 0);
    open(PageRef(own));
    own->release();
    return {0, static_cast<std::uint32_t>(tag.size())};
  }
  const PageRef& page() const { return lexer_->page(); }
  // The attributes that count, valid until the next call. More about the tag goes to `details`, if it is not null.
  const Entries& read(Slice tag, PageParser::TagDetails* details = nullptr) {
    return parser_->readAttributes(tag, details);
  }

 private:
  void open(const PageRef& page) {
    close();
    lexer_ = std::make_unique<HTMLLexer>(page, frame_);
    parser_ = std::make_unique<PageParser>(*lexer_, frame_, nullptr, document_);
  }
  void close() {
    if (parser_) parser_->keepNames();
    parser_.reset();
    lexer_.reset();
  }

  Document* document_;
  ParserType::_dtd_frame* frame_;
  std::unique_ptr<HTMLLexer> lexer_;
  std::unique_ptr<PageParser> parser_;
};

}  // namespace zeldom40
