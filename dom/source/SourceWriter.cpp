// Writes raw texts in tree order.
#include "dom/source/SourceWriter.h"

#include <cstdint>
#include <utility>

#include "dom/document/DocumentAccess.h"
#include "dom/dynamic/MetaDataAccess.h"
#include "dom/dynamic/PairGuard.h"
#include "dom/dynamic/RuntimeTextState.h"
#include "dom/tree/Comment.h"
#include "dom/tree/Element.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/PI.h"
#include "dom/tree/PageBuffer.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

namespace {

void writeLeaf(Node* node, SliceJoiner& out) {
  switch (node->getNodeType()) {
    case Node::NODE_TEXT:
      out.append(TextAccess::rawData(static_cast<Text*>(node)));
      break;
    case Node::NODE_COMMENT:
      out.append(CommentAccess::rawData(static_cast<Comment*>(node)));
      break;
    case Node::NODE_PI:
      out.append(static_cast<PI*>(node)->getData());
      break;
    case Node::NODE_META_DATA: {
      // CHOICE: one that belongs to no element yet has no other place for its text.
      auto* md = static_cast<MetaData*>(node);
      if (md->getElement()) break;
      out.append(md->getBeginTag());
      out.append(md->getRuntimeText());
      out.append(md->getEndTag());
      break;
    }
    default:
      break;  // no other node has a source
  }
}

// A stretch of one page that is not copied yet.
class PageRun {
 public:
  // False if the slice goes on elsewhere.
  bool lengthen(const PageRef& page, const Slice& slice) {
    if (slice.offset == end_ && page.get() == page_) [[likely]] {
      end_ += slice.length;
      return true;
    }
    return slice.length == 0;
  }
  void restart(const PageRef& page, const Slice& slice) {
    page_ = page.get();
    begin_ = slice.offset;
    end_ = slice.offset + slice.length;
  }
  std::string_view text() const { return pageText().substr(begin_, end_ - begin_); }
  std::string_view pageText() const { return page_ ? page_->text() : std::string_view(); }

 private:
  const PageBuffer* page_ = nullptr;
  std::uint32_t begin_ = 0;
  std::uint32_t end_ = 0;
};

// The walk over one element, by links.
class SourceWalk {
 public:
  SourceWalk(Element* top, SourceOptions options, std::string& out)
      : top_(top), options_(options), out_(out), joiner_(out) {}

  void write(Document::SourceMode mode) {
    const bool tags = mode != Document::SOURCE_CONTENT;
    if (tags && !begin(top_)) return;
    if (mode != Document::SOURCE_TAGS) writeContent();
    if (tags) end(top_);
  }

 private:
  // Most nodes are what was read. Such a one only lengthens the run, which stays in registers, for all else is done by
  // functions that take it and give it back: 34 instructions a node instead of 132.
  void writeContent() {
    PageRun run;
    Node* parent = top_;
    for (Node* n = top_->getFirstChild(); n;) {
      bool entered = false;
      if (isTextOfPage(n)) {
        const auto* text = static_cast<const Text*>(n);
        if (!run.lengthen(TextAccess::page(text), TextAccess::slice(text)))
          run = restart(run, TextAccess::page(text), TextAccess::slice(text));
      } else if (isElementOfPage(n)) {
        const auto* element = static_cast<const Element*>(n);
        if (!run.lengthen(ElementAccess::page(element), ElementAccess::beginSlice(element)))
          run = restart(run, ElementAccess::page(element), ElementAccess::beginSlice(element));
        entered = true;
      } else {
        entered = writeOther(run, n);
        run = {};
      }
      if (entered) {
        if (Node* child = n->getFirstChild()) {
          parent = n;
          n = child;
          continue;
        }
        run = leave(run, static_cast<Element*>(n));
      }
      Node* sibling = NodeAccess::childAfter(n, parent);
      while (!sibling && parent != top_) {
        n = parent;
        parent = n->getParentNode();
        run = leave(run, static_cast<Element*>(n));
        sibling = NodeAccess::childAfter(n, parent);
      }
      n = sibling;
    }
    joiner_.append(run.text());
  }

  PageRun leave(PageRun run, Element* element) {
    if (!allOfPage_ && !ElementAccess::isSourceOfPage(element)) {
      settle(run);
      end(element);
      return {};
    }
    if (!run.lengthen(ElementAccess::page(element), ElementAccess::endSlice(element)))
      run = restart(run, ElementAccess::page(element), ElementAccess::endSlice(element));
    return run;
  }

  static bool isTextOfPage(const Node* node) {
    return node->getNodeType() == Node::NODE_TEXT && TextAccess::isSourceOfPage(static_cast<const Text*>(node));
  }
  static bool isElementOfPage(const Node* node) {
    return node->getNodeType() == Node::NODE_ELEMENT &&
           ElementAccess::isSourceOfPage(static_cast<const Element*>(node));
  }

  [[gnu::noinline]] PageRun restart(PageRun run, const PageRef& page, const Slice& slice) {
    settle(run);
    run.restart(page, slice);
    return run;
  }

  // A node that is no slice of a page. Returns whether it is an element whose content and end tag follow.
  [[gnu::noinline]] bool writeOther(PageRun run, Node* node) {
    settle(run);
    if (node->getNodeType() == Node::NODE_ELEMENT) {
      allOfPage_ = false;
      return begin(static_cast<Element*>(node));
    }
    if (node->getNodeType() == Node::NODE_META_DATA) allOfPage_ = false;
    writeLeaf(node, joiner_);
    return false;
  }

  // More is to come behind the run; if this is the whole tree, about the rest of its page.
  [[gnu::noinline]] void settle(PageRun run) {
    if (out_.empty() && !top_->getParentNode()) out_.reserve(run.pageText().size());
    joiner_.append(run.text());
  }

  // False if the element was written whole.
  bool begin(Element* element) {
    MetaData* md = ElementAccess::metaData(element);
    if (md && !options_.rawTree) {
      writePair(element, *md);
      return false;
    }
    if (Element* visual = visualOf(element)) joiner_.append(ElementAccess::rawBeginTag(visual));
    // An element of a tree that is written raw stands below one with metadata, but for the top.
    if (options_.rawTree && (element != top_ || options_.above != SourceOptions::UNKNOWN)) {
      joiner_.append(ElementAccess::rawBeginTag(element, element != top_ || options_.above == SourceOptions::METADATA));
    } else {
      joiner_.append(ElementAccess::rawBeginTag(element));
    }
    return true;
  }

  void end(Element* element) {
    joiner_.append(ElementAccess::rawEndTag(element));
    if (Element* visual = visualOf(element)) joiner_.append(ElementAccess::rawEndTag(visual));
  }

  Element* visualOf(Element* element) const {
    return options_.rawTree && !(options_.inner && element == top_) ? element->getATV() : nullptr;
  }

  void writePair(Element* element, MetaData& md) {
    // Below the top no other metadata stands above, for what has some is written whole.
    if (underStale_ < 0) {
      underStale_ = MetaDataAccess::isUnderStale(top_) || (element != top_ && isStale(top_)) ? 1 : 0;
      isOutermost_ = (element == top_ || !top_->getMetaData()) && !MetaDataAccess::isUnderMetaData(top_);
    }
    joiner_.append(MetaDataAccess::beginTag(md, isOutermost_ ? SourceOptions::PLAIN : SourceOptions::METADATA));
    if (!options_.compact || md.getType() == MetaData::AuthorTimeVisual) {
      joiner_.flush();
      const std::size_t from = out_.size();
      RuntimeTextState state;
      MetaDataAccess::appendRuntimeText(md, out_, state, /*walkTree=*/false, /*dryRun=*/false, underStale_ == 1,
                                        isOutermost_);
      if (state.inScriptlet) out_ += " %>";
      closeRunTimeText(out_, from, md.getType(), md.getEndTag());
    }
    joiner_.append(md.getEndTag());
  }

  static bool isStale(const Element* element) {
    const MetaData* md = element->getMetaData();
    return md && md->getType() == MetaData::DynamicData && md->isDirty();
  }

  Element* top_;
  SourceOptions options_;
  std::string& out_;
  SliceJoiner joiner_;
  bool allOfPage_ = true;  // so far; what was entered as a slice is still one when it is left
  int underStale_ = -1;
  bool isOutermost_ = false;  // no metadata stands above the pairs
};

}  // namespace

void writeNode(Node* top, Document::SourceMode mode, std::string& out, SourceOptions options) {
  if (!top) return;
  if (top->getNodeType() != Node::NODE_ELEMENT) {
    SliceJoiner joiner(out);
    writeLeaf(top, joiner);
    return;
  }
  SourceWalk(static_cast<Element*>(top), options, out).write(mode);
}

const char* Document::getSourceBuf(Node* node, SourceMode mode, bool compact) const {
  // A host that is asked for a control's text on the way may ask for a source itself.
  std::string text;
  SourceOptions options;
  options.compact = compact;
  if (node) writeNode(node, mode, text, options);
  sourceBuf_ = std::move(text);
  return sourceBuf_.c_str();
}

unsigned long Document::getSourceBufLen(Node* node, SourceMode mode, bool compact) const {
  if (node) getSourceBuf(node, mode, compact);
  return sourceBuf_.size();
}

}  // namespace zeldom40
