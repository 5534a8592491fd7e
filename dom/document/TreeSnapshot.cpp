// Coding and decoding of saved trees.
#include "dom/document/TreeSnapshot.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "dom/document/DOMAccess.h"
#include "dom/document/Document.h"
#include "dom/document/SnapshotChunk.h"
#include "dom/dtd/ElementDefinition.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

namespace {

// The first byte of what the code consists of: its kind, and of a node whether children follow (closed by a CLOSE), an
// error word, view flags, a page. EDITED_TEXT has strings of its own, COPY is any other node that does not follow from
// its slices. SOURCE sets the page and the document of what comes.
enum Kind : unsigned { ELEMENT, TEXT, EDITED_TEXT, COMMENT, COPY, SOURCE, CLOSE, CHUNK };
constexpr unsigned kKindMask = 7;
constexpr unsigned kHasChildren = 8;
constexpr unsigned kHasError = 16;
constexpr unsigned kHasView = 32;
constexpr unsigned kHasPage = 64;

// The second byte of an element, beside ElementAccess::flags.
constexpr unsigned kHasBlock = 8;
constexpr unsigned kHasDefinition = 16;
constexpr unsigned kHasEnd = 32;

// The second byte of an edited text is TextAccess::flags, the third tells which strings it has.
constexpr unsigned kOwnData = 1;
constexpr unsigned kOwnRaw = 2;

// How many nodes a chunk has: as soon as a run has kTypical it becomes a chunk. What is left before another chunk
// becomes one if it has kFewest, else it is joined to that. A change costs the code of one chunk on each level, some
// hundred instructions a node; a chunk costs about as many bytes as the code of five nodes.
constexpr std::uint32_t kTypical = 16;
constexpr std::uint32_t kFewest = kTypical / 4;
constexpr std::uint32_t kMost = kTypical * 2;
// So many chunks in a row become a group, a chunk of chunks: to look at each of 2600 chunks of a flat page of 1 MB took
// a third of the time of a record.
constexpr std::uint32_t kTypicalGroup = 24;
constexpr std::uint32_t kFewestGroup = 4;
constexpr std::uint32_t kMostGroup = kTypicalGroup * 2;
// A long text that is kept in the code weighs more, so that an edit beside it does not copy it.
constexpr std::size_t kBytesANode = 64;

// --- coding ----------------------------------------------------------------------------------------------------------

// A byte of a code that is being written.
using Out = unsigned char*;

inline Out put(Out out, unsigned byte) {
  *out = static_cast<unsigned char>(byte);
  return out + 1;
}

inline Out putNumber(Out out, std::uint64_t number) {
  for (; number >= 0x80; number >>= 7) out = put(out, static_cast<unsigned>(number & 0x7F) | 0x80);
  return put(out, static_cast<unsigned>(number));
}

// Bytes that are written at the end and cut off there.
class CodeBuffer {
 public:
  CodeBuffer() { grow(0); }
  // The end, with room for `strings` bytes and all that a node takes beside its strings.
  Out end(std::size_t strings = 0) {
    if (static_cast<std::size_t>(limit_ - end_) < kMostFixed + strings) grow(kMostFixed + strings);
    return end_;
  }
  void setEnd(Out end) { end_ = end; }
  std::size_t size() const { return static_cast<std::size_t>(end_ - bytes_.get()); }
  const unsigned char* from(std::size_t at) const { return bytes_.get() + at; }
  void cut(std::size_t size) { end_ = bytes_.get() + size; }

 private:
  static constexpr std::size_t kMostFixed = 80;

  void grow(std::size_t more) {
    const std::size_t used = bytes_ ? size() : 0;
    const std::size_t capacity = 2 * used + more + 1024;
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[capacity]);
    if (used) std::memcpy(bytes.get(), bytes_.get(), used);
    bytes_ = std::move(bytes);
    end_ = bytes_.get() + used;
    limit_ = bytes_.get() + capacity;
  }

  std::unique_ptr<unsigned char[]> bytes_;
  Out end_ = nullptr;
  Out limit_ = nullptr;
};

// Walks the tree as far as it is not saved and writes one growing code. As soon as the last siblings, with all below
// them, are enough for a chunk, their code is cut off its end, and the chunk stands there for them.
class Encoder {
 public:
  Encoder(const TreeSnapshot::Nodes& nodes, TreeSnapshot::Places& places)
      : textName_(DOMAccess::textName()), commentName_(DOMAccess::commentName()), nodes_(nodes), places_(places) {
    pointers_.reserve(128);
    levels_.reserve(16);
  }

  SnapshotChunk* run(Node* root) {
    root_ = root;
    source_.document = root->getDocument();
    level_ = &levels_.emplace_back();
    for (Node* n = root;;) {
      if (Node* last = NodeAccess::leadsChunk(n) ? reuse(n) : nullptr) {
        n = last;
      } else {
        const bool wasSaved = NodeAccess::isSaved(n);
        encode(n);
        if (Node* child = n->getFirstChild()) {
          level_ = &levels_.emplace_back();
          level_->linked = NodeAccess::linksAreTrue(n);
          level_->intact = wasSaved && level_->linked;
          n = child;
          continue;
        }
        finish(n, 1);
      }
      while (n != root) {
        if (Node* sibling = NodeAccess::childAfter(n)) {
          n = sibling;
          break;
        }
        n = n->getParentNode();
        close(n);
      }
      if (n == root) break;
    }
    if (level_->run.head) cut();
    return reinterpret_cast<SnapshotChunk*>(pointers_.back() & ~SnapshotChunk::kKinds);
  }

 private:
  // Siblings that may become a chunk, and where their code and their pointers begin.
  struct Run {
    Node* head = nullptr;  // null: there are none, and what follows means nothing
    Node* last;
    std::size_t code;
    std::size_t pointers;
    SnapshotChunk::Source source;
    std::uint32_t weight;
    std::uint32_t siblings;
    bool isPlain;
  };
  // The children of one open node.
  struct Level {
    Run run;
    std::uint32_t chunks = 0;    // that stand in the code
    std::uint32_t pending = 0;   // siblings to come before a run ends where a former one did
    bool linked = true;          // sibling links tell the order
    bool intact = false;         // no child has changed, come or gone
    bool isPlain = true;         // all chunks are
    std::unique_ptr<Run> group;  // chunks in a row; their number is the weight
    std::uint32_t groupSize = kTypicalGroup;
  };

  // Puts the chunk that `head` leads to in place of the siblings that it is the code of and returns the last of those.
  // Null if it is outdated, or better joined with the run before it; then it is given up.
  Node* reuse(Node* head) {
    while (SnapshotChunk* chunk = SnapshotChunk::ledBy(head)) {
      Level& level = *level_;
      if (level.run.head && level.run.weight >= kFewest) cut();
      Node* last = level.intact ? chunk->last() : level.linked ? lastIfSaved(head, *chunk) : nullptr;
      const bool isSmall = !chunk->isGroup() && chunk->weight() <= kMost;
      if (last && level.run.head) {
        if (isSmall) {
          last = nullptr;
        } else {
          cut();
        }
      }
      if (last) {
        chunk->addRef();
        level.pending = 0;
        putChunk(chunk, head, last);
        return last;
      }
      // An edit moves the ends of chunks as little as can be, or all behind it would have to be joined as well.
      if (isSmall) level.pending = chunk->siblings();
      if (chunk->isGroup()) level.groupSize = kMostGroup;
      chunk->dropHead();
    }
    return nullptr;
  }

  // A group may have lost the head of a chunk in it, which outdates nobody; then as many siblings end elsewhere.
  static Node* lastIfSaved(Node* head, const SnapshotChunk& chunk) {
    std::uint32_t siblings = chunk.siblings();
    for (Node* n = head; n && NodeAccess::isSaved(n); n = n->getNextSibling()) {
      if (--siblings == 0) return n == chunk.last() ? n : nullptr;
    }
    return nullptr;
  }

  // `n` and all below it are coded.
  void finish(Node* n, std::uint32_t weight) {
    Level& level = *level_;
    Run& run = level.run;
    run.last = n;
    run.weight += weight;
    ++run.siblings;
    std::uint32_t enough = kTypical;
    if (level.pending) enough = --level.pending ? kMost : kFewest;
    if (run.weight >= enough) cut();
  }

  void close(Node* n) {
    const std::uint32_t weight = 1 + level_->chunks + (level_->run.head ? level_->run.weight : 0);
    const bool isPlain = level_->isPlain && (!level_->run.head || level_->run.isPlain);
    levels_.pop_back();
    level_ = &levels_.back();
    code_.setEnd(put(code_.end(), CLOSE));
    if (!isPlain) level_->run.isPlain = false;
    finish(n, weight);
  }

  void cut() {
    Run run = std::exchange(level_->run, Run());
    SnapshotChunk* chunk = makeChunk(run, /*isGroup=*/false);
    for (; !open_.empty() && places_[open_.back()].at >= run.code; open_.pop_back()) {
      places_[open_.back()].chunk = chunk;
      places_[open_.back()].at -= run.code;
    }
    putChunk(chunk, run.head, run.last);
  }

  SnapshotChunk* makeChunk(const Run& run, bool isGroup) {
    SnapshotChunk* chunk = SnapshotChunk::create(code_.from(run.code), code_.size() - run.code,
                                                 pointers_.data() + run.pointers, pointers_.size() - run.pointers,
                                                 run.source, run.weight, run.siblings, run.isPlain, isGroup);
    if (run.isPlain) {
      chunk->setRun(run.head, run.last);
    } else {
      level_->isPlain = false;
    }
    code_.cut(run.code);
    pointers_.resize(run.pointers);
    source_ = run.source;
    return chunk;
  }

  void putChunk(SnapshotChunk* chunk, Node* head, Node* last) {
    Level& level = *level_;
    if (chunk->isGroup()) {
      if (level.group && level.group->weight >= kFewestGroup) cutGroup();
      level.group = nullptr;
    } else {
      if (!level.group) {
        level.group.reset(new Run{head, last, code_.size(), pointers_.size(), source_, 0, 0, true});
      }
      Run& group = *level.group;
      group.last = last;
      group.siblings += chunk->siblings();
      ++group.weight;
      group.isPlain &= chunk->isPlain();
    }
    ++level.chunks;
    code_.setEnd(put(code_.end(), CHUNK));
    pointers_.push_back(SnapshotChunk::tagged(chunk, SnapshotChunk::CHUNK));
    if (level.group && level.group->weight >= level.groupSize) cutGroup();
  }

  void cutGroup() {
    const std::unique_ptr<Run> group = std::move(level_->group);
    SnapshotChunk* chunk = makeChunk(*group, /*isGroup=*/true);
    level_->chunks -= group->weight;
    level_->groupSize = kTypicalGroup;
    putChunk(chunk, group->head, group->last);
  }

  void encode(Node* n) {
    Run& run = level_->run;
    if (!run.head) run = {n, n, code_.size(), pointers_.size(), source_, 0, 0, true};
    // First, for a host may change nodes while they are copied.
    NodeAccess::markSaved(n);
    switch (n->getNodeType()) {
      case Node::NODE_ELEMENT: {
        auto* element = static_cast<Element*>(n);
        if (ElementAccess::isUntouched(element)) return encodeElement(element);
        if (ElementAccess::metaData(element)) run.isPlain = false;
        break;
      }
      case Node::NODE_TEXT: {
        auto* text = static_cast<Text*>(n);
        if (NodeAccess::sharedName(n).sameRecord(textName_)) return encodeText(text);
        break;
      }
      case Node::NODE_COMMENT: {
        auto* comment = static_cast<Comment*>(n);
        if (CommentAccess::isUntouched(comment) && NodeAccess::sharedName(n).sameRecord(commentName_)) {
          return encodeComment(comment);
        }
        break;
      }
      case Node::NODE_PI:
        break;
      default:
        run.isPlain = false;
        break;
    }
    Out out = code_.end();
    if (NodeAccess::mayBePlace(n)) notePlace(n, out);
    code_.setEnd(put(out, COPY | (n->hasChildNodes() ? kHasChildren : 0)));
    pointers_.push_back(SnapshotChunk::tagged(n->makeClone(false), SnapshotChunk::COPY));
  }

  // The code of `n` begins at `out`. Rare, as the next; inline they cost each node some thirty instructions.
  [[gnu::noinline]] void notePlace(Node* n, const unsigned char* out) {
    if (n == root_) return;
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
      if (nodes_[i] != n) continue;
      places_[i].at = static_cast<std::size_t>(out - code_.from(0));
      open_.push_back(i);
    }
  }

  [[gnu::noinline]] Out putSource(Out out, PageBuffer* page, Document* document) {
    if (page) source_.page = page;
    source_.document = document;
    if (source_.page) source_.page->addRef();
    pointers_.push_back(SnapshotChunk::tagged(source_.page, SnapshotChunk::PAGE));
    pointers_.push_back(SnapshotChunk::tagged(document, SnapshotChunk::DOCUMENT));
    return put(out, SOURCE);
  }

  Out putHead(Out out, unsigned head, Node* n, PageBuffer* page) {
    if ((page && page != source_.page) || n->getDocument() != source_.document) {
      out = putSource(out, page, n->getDocument());
    }
    if (NodeAccess::mayBePlace(n)) notePlace(n, out);
    const unsigned view = (n->isViewable() ? 1u : 0u) | (n->isAbsolute() ? 2u : 0u);
    const unsigned long error = n->getError();
    out = put(out, head | (n->hasChildNodes() ? kHasChildren : 0) | (error ? kHasError : 0) | (view ? kHasView : 0) |
                       (page ? kHasPage : 0));
    if (error) out = putNumber(out, error);
    if (view) out = put(out, view);
    return out;
  }

  void encodeElement(Element* element) {
    Out out = putHead(code_.end(), ELEMENT, element, ElementAccess::page(element).get());
    ElementDefinition* definition = ElementAccess::definition(element);
    const AttributeBlock* block = ElementAccess::block(element);
    const Slice end = ElementAccess::endSlice(element);
    const bool hasEnd = end.length || end.offset;
    out = put(out, ElementAccess::flags(element) | (block ? kHasBlock : 0) | (definition ? kHasDefinition : 0) |
                       (hasEnd ? kHasEnd : 0));
    pointers_.push_back(definition ? SnapshotChunk::tagged(definition, SnapshotChunk::DEFINITION)
                                   : SnapshotChunk::tagged(NodeAccess::sharedName(element)));
    if (block) {
      const_cast<AttributeBlock*>(block)->addRef();
      pointers_.push_back(SnapshotChunk::tagged(block, SnapshotChunk::BLOCK));
    }
    out = putSlice(out, ElementAccess::beginSlice(element));
    if (hasEnd) {
      // What stands between the tags goes on behind the first.
      const std::int64_t at = source_.at;
      out = putSlice(out, end);
      source_.at = at;
    }
    code_.setEnd(out);
  }

  void encodeText(Text* text) {
    if (!TextAccess::isUntouched(text)) return encodeEdited(text);
    Out out = putHead(code_.end(), TEXT, text, TextAccess::page(text).get());
    out = put(out, TextAccess::flags(text));
    code_.setEnd(putSlice(out, TextAccess::slice(text)));
  }

  void encodeEdited(Text* text) {
    const std::string* data = TextAccess::ownData(text);
    const std::string* raw = TextAccess::ownRaw(text);
    const std::size_t bytes = (data ? data->size() : 0) + (raw ? raw->size() : 0);
    Out out = putHead(code_.end(bytes), EDITED_TEXT, text, TextAccess::page(text).get());
    out = put(out, TextAccess::flags(text));
    out = putSlice(out, TextAccess::slice(text));
    out = put(out, (data ? kOwnData : 0) | (raw ? kOwnRaw : 0));
    for (const std::string* own : {data, raw}) {
      if (!own) continue;
      out = putNumber(out, own->size());
      std::memcpy(out, own->data(), own->size());
      out += own->size();
    }
    code_.setEnd(out);
    level_->run.weight += static_cast<std::uint32_t>(bytes / kBytesANode);
  }

  void encodeComment(Comment* comment) {
    Out out = putHead(code_.end(), COMMENT, comment, CommentAccess::page(comment).get());
    const Slice raw = CommentAccess::slice(comment);
    const Slice body = CommentAccess::body(comment);
    out = put(out, comment->isJSP() ? 1 : 0);
    out = putSlice(out, raw);
    out = putNumber(out, body.offset - raw.offset);
    code_.setEnd(putNumber(out, body.length));
  }

  // As a rule a slice begins where the one before it ended.
  Out putSlice(Out out, Slice slice) {
    const std::int64_t step = slice.offset - source_.at;
    source_.at = static_cast<std::int64_t>(slice.offset) + slice.length;
    out = putNumber(out, static_cast<std::uint64_t>(step) << 1 ^ static_cast<std::uint64_t>(step >> 63));
    return putNumber(out, slice.length);
  }

  const SharedName textName_;
  const SharedName commentName_;
  const TreeSnapshot::Nodes& nodes_;
  TreeSnapshot::Places& places_;
  std::vector<std::size_t> open_;  // places in code that is no chunk's yet, in its order
  const Node* root_ = nullptr;
  SnapshotChunk::Source source_;
  CodeBuffer code_;
  std::vector<std::uintptr_t> pointers_;
  std::vector<Level> levels_;
  Level* level_ = nullptr;
};

// --- decoding --------------------------------------------------------------------------------------------------------

class Decoder {
 public:
  // The nodes are the chunks' from now on if `takesOver`, and what can moves into the tree.
  Decoder(const TreeSnapshot::Places& places, TreeSnapshot::Nodes& found, bool takesOver)
      : textName_(DOMAccess::textName()), places_(places), found_(found), takesOver_(takesOver) {}

  Node* run(SnapshotChunk* top) {
    enter(top);
    while (true) {
      Open& open = open_.back();
      if (open.code == open.chunk->code() + open.chunk->codeSize()) {
        Node* const first = open.head;
        if (takesOver_ && open.chunk->isPlain()) open.chunk->setRun(first, last(first));
        open_.pop_back();
        if (open_.empty()) return first;
        // A group has no nodes of its own.
        if (!open_.back().head) open_.back().head = first;
        continue;
      }
      const auto at = static_cast<std::size_t>(open.code - open.chunk->code());
      const unsigned head = get();
      switch (head & kKindMask) {
        case SOURCE:
          open.source.page = pointer<PageBuffer>();
          open.source.document = pointer<Document>();
          break;
        case CLOSE:
          parent_ = parent_->getParentNode();
          break;
        case CHUNK:
          enter(pointer<SnapshotChunk>());
          break;
        default:
          add(node(head), at);
          if (head & kHasChildren) parent_ = added_;
          break;
      }
    }
  }

 private:
  struct Open {
    SnapshotChunk* chunk;
    const unsigned char* code;
    const std::uintptr_t* pointers;
    SnapshotChunk::Source source;
    bool hasPlaces;
    Node* head;  // the first node
  };

  void enter(SnapshotChunk* chunk) {
    bool hasPlaces = false;
    for (const SnapshotPlace& place : places_) hasPlaces |= place.chunk == chunk;
    open_.push_back({chunk, chunk->code(), chunk->pointers(), chunk->source(), hasPlaces, nullptr});
  }

  Node* last(Node* head) const { return parent_ ? parent_->getLastChild() : head; }

  void add(Node* node, std::size_t at) {
    NodeAccess::clearFlags(node);
    node->addRef(false);
    if (parent_) NodeAccess::attachRestored(parent_, node);
    if (takesOver_) NodeAccess::markSaved(node);
    added_ = node;
    Open& open = open_.back();
    if (!open.head) open.head = node;
    if (!open.hasPlaces) return;
    for (std::size_t i = 0; i < places_.size(); ++i) {
      if (places_[i].chunk == open.chunk && places_[i].at == at) found_[i] = node;
    }
  }

  Node* node(unsigned head) {
    Open& open = open_.back();
    if ((head & kKindMask) == COPY) {
      if (takesOver_ && !open.chunk->isPlain()) return SnapshotChunk::takeCopy(*open.pointers++);
      return pointer<Node>()->makeClone(false);
    }
    const auto error = static_cast<unsigned long>(head & kHasError ? getNumber() : 0);
    const unsigned view = head & kHasView ? get() : 0;
    const PageRef page(head & kHasPage ? open.source.page : nullptr);
    Node* node = nullptr;
    switch (head & kKindMask) {
      case ELEMENT:
        node = element(page);
        break;
      case COMMENT:
        node = comment(page);
        break;
      default:
        node = text(page, (head & kKindMask) == EDITED_TEXT);
        break;
    }
    NodeAccess::addError(node, error);
    node->setViewable((view & 1) != 0);
    node->setAbsolute((view & 2) != 0);
    return node;
  }

  Element* element(const PageRef& page) {
    Open& open = open_.back();
    const unsigned flags = get();
    ElementDefinition* definition = flags & kHasDefinition ? pointer<ElementDefinition>() : nullptr;
    SharedName name;
    if (definition) {
      name = definition->upperName();
    } else {
      const SharedName stored = SharedName::adopt(pointer<void>());
      name = stored;
      stored.share();
    }
    AttributeBlock* block = flags & kHasBlock ? pointer<AttributeBlock>() : nullptr;
    const Slice begin = getSlice();
    Element* element = ElementAccess::createUntouched(open.source.document, name, definition, page, begin, flags);
    if (block) {
      block->addRef();
      ElementAccess::installAttributes(element, block);
    }
    if (flags & kHasEnd) {
      const std::int64_t at = open.source.at;
      ElementAccess::setEndSlice(element, getSlice());
      open.source.at = at;
    }
    return element;
  }

  Text* text(const PageRef& page, bool isEdited) {
    const unsigned flags = get();
    const Slice slice = getSlice();
    Text* text = TextAccess::createSaved(open_.back().source.document, textName_, page, slice, flags);
    if (!isEdited) return text;
    const unsigned own = get();
    const std::string_view data = own & kOwnData ? getString() : std::string_view();
    const std::string_view raw = own & kOwnRaw ? getString() : std::string_view();
    TextAccess::setOwn(text, own & kOwnData ? &data : nullptr, own & kOwnRaw ? &raw : nullptr);
    return text;
  }

  Comment* comment(const PageRef& page) {
    const bool jsp = get() != 0;
    const Slice raw = getSlice();
    const auto from = static_cast<std::uint32_t>(getNumber());
    const auto length = static_cast<std::uint32_t>(getNumber());
    NodeKind* kind = NodeKind::find(open_.back().source.document, page, DOMAccess::commentName(), nullptr);
    return CommentAccess::create(kind, raw, Slice{raw.offset + from, length}, jsp);
  }

  template <class T>
  T* pointer() {
    return reinterpret_cast<T*>(*open_.back().pointers++ & ~SnapshotChunk::kKinds);
  }
  unsigned get() { return *open_.back().code++; }
  std::uint64_t getNumber() {
    std::uint64_t number = 0;
    for (int shift = 0;; shift += 7) {
      const unsigned byte = get();
      number |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
      if (!(byte & 0x80)) return number;
    }
  }
  std::string_view getString() {
    const auto size = static_cast<std::size_t>(getNumber());
    const auto* begin = reinterpret_cast<const char*>(open_.back().code);
    open_.back().code += size;
    return {begin, size};
  }
  Slice getSlice() {
    std::int64_t& at = open_.back().source.at;
    const std::uint64_t folded = getNumber();
    const auto step = static_cast<std::int64_t>(folded >> 1) ^ -static_cast<std::int64_t>(folded & 1);
    const Slice slice{static_cast<std::uint32_t>(at + step), static_cast<std::uint32_t>(getNumber())};
    at = static_cast<std::int64_t>(slice.offset) + slice.length;
    return slice;
  }

  const SharedName textName_;
  const TreeSnapshot::Places& places_;
  TreeSnapshot::Nodes& found_;
  const bool takesOver_;
  std::vector<Open> open_;
  Node* parent_ = nullptr;
  Node* added_ = nullptr;
};

}  // namespace

// --- snapshots -------------------------------------------------------------------------------------------------------

TreeSnapshot::~TreeSnapshot() {
  if (root_) root_->release();
}

TreeSnapshot::TreeSnapshot(const TreeSnapshot& other) : root_(other.root_) {
  if (root_) root_->addRef();
}

TreeSnapshot TreeSnapshot::take(Node* root, const Nodes& nodes, Places* places) {
  *places = {};
  if (!root) return {};
  // The walk is to come by.
  for (Node* n : nodes) {
    if (n) NodeAccess::noteChange(n);
  }
  return TreeSnapshot(Encoder(nodes, *places).run(root));
}

Node* TreeSnapshot::restore(const Places& places, Nodes* found) {
  *found = {};
  return root_ ? Decoder(places, *found, /*takesOver=*/true).run(root_) : nullptr;
}

Node* TreeSnapshot::copy() const {
  Nodes none;
  return root_ ? Decoder({}, none, /*takesOver=*/false).run(root_) : nullptr;
}

std::size_t TreeSnapshot::ownBytes() const {
  std::size_t bytes = 0;
  std::vector<const SnapshotChunk*> chunks;
  if (root_) chunks.push_back(root_);
  while (!chunks.empty()) {
    const SnapshotChunk* chunk = chunks.back();
    chunks.pop_back();
    if (chunk->isShared()) continue;
    bytes += chunk->bytes();
    for (std::size_t i = 0; i < chunk->pointerCount(); ++i) {
      const std::uintptr_t pointer = chunk->pointers()[i];
      if ((pointer & SnapshotChunk::kKinds) == SnapshotChunk::COPY) bytes += sizeof(Element);
      if ((pointer & SnapshotChunk::kKinds) != SnapshotChunk::CHUNK) continue;
      chunks.push_back(reinterpret_cast<const SnapshotChunk*>(pointer & ~SnapshotChunk::kKinds));
    }
  }
  return bytes;
}

}  // namespace zeldom40
