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

// A stretch of one page that is not copied yet. It lives in registers while a walk goes over untouched nodes: each
// costs a comparison and an addition, and an untouched page is one copy.
class PageRun {
 public:
  // False if the slice goes on elsewhere.
  bool lengthen(const PageRef& page, Slice slice) {
    if (slice.length == 0) return true;
    if (slice.offset != end_ || page.get() != page_) return false;
    end_ += slice.length;
    return true;
  }
  void restart(const PageRef& page, Slice slice) {
    page_ = page.get();
    begin_ = slice.offset;
    end_ = slice.offset + slice.length;
  }
  std::string_view text() const { return page_ ? page_->text().substr(begin_, end_ - begin_) : std::string_view(); }
  std::size_t pageLength() const { return page_ ? page_->text().size() : 0; }

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
  void writeContent() {
    PageRun run;
    const auto append = [&](const PageRef& page, Slice slice) {
      if (run.lengthen(page, slice)) return;
      settle(run);
      run.restart(page, slice);
    };
    const auto appendEnd = [&](Element* element) {
      if (ElementAccess::isSourceOfPage(element)) {
        append(ElementAccess::page(element), ElementAccess::endSlice(element));
      } else {
        settle(run);
        run = {};
        end(element);
      }
    };
    for (Node* n = top_->getFirstChild(); n;) {
      bool entered = false;
      if (n->getNodeType() == Node::NODE_TEXT && TextAccess::isSourceOfPage(static_cast<Text*>(n))) {
        append(TextAccess::page(static_cast<Text*>(n)), TextAccess::slice(static_cast<Text*>(n)));
      } else if (n->getNodeType() == Node::NODE_ELEMENT && ElementAccess::isSourceOfPage(static_cast<Element*>(n))) {
        append(ElementAccess::page(static_cast<Element*>(n)), ElementAccess::beginSlice(static_cast<Element*>(n)));
        entered = true;
      } else {
        settle(run);
        run = {};
        if (n->getNodeType() == Node::NODE_ELEMENT) {
          entered = begin(static_cast<Element*>(n));
        } else {
          writeLeaf(n, joiner_);
        }
      }
      if (entered && n->hasChildNodes()) {
        n = n->getFirstChild();
        continue;
      }
      if (entered) appendEnd(static_cast<Element*>(n));
      Node* sibling = NodeAccess::childAfter(n);
      while (!sibling && (n = n->getParentNode()) != top_) {
        appendEnd(static_cast<Element*>(n));
        sibling = NodeAccess::childAfter(n);
      }
      n = sibling;
    }
    joiner_.append(run.text());
  }

  // More is to come behind the run, if this is the whole tree about the rest of its page.
  void settle(const PageRun& run) {
    if (out_.empty() && !top_->getParentNode()) out_.reserve(run.pageLength());
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
