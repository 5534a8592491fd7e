// Coding and decoding of saved trees.
#include "dom/document/TreeSnapshot.h"

#include <cassert>
#include <string>
#include <utility>

#include "dom/document/DOMAccess.h"
#include "dom/dtd/ElementDefinition.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

// A stretch of the code with what its indices refer to. Immutable once it is closed, but for the clones of edited
// nodes, which move out; a chunk that holds any is never shared.
struct SnapshotChunk {
  std::string code;
  std::vector<ElementDefinition*> definitions;
  std::vector<SharedName> names;
  std::vector<AttributeBlock*> blocks;
  std::vector<PageRef> pages;
  std::vector<Node*> clones;
  std::vector<Document*> documents;

  SnapshotChunk() = default;
  SnapshotChunk(const SnapshotChunk&) = delete;
  SnapshotChunk& operator=(const SnapshotChunk&) = delete;
  ~SnapshotChunk() {
    for (AttributeBlock* block : blocks) block->release();
    for (Node* clone : clones) delete clone;
  }

  bool sameAs(const SnapshotChunk& other) const {
    if (!clones.empty() || !other.clones.empty() || code != other.code || definitions != other.definitions ||
        blocks != other.blocks || documents != other.documents || names.size() != other.names.size() ||
        pages.size() != other.pages.size()) {
      return false;
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (!(names[i] == other.names[i])) return false;
    }
    for (std::size_t i = 0; i < pages.size(); ++i) {
      if (pages[i].get() != other.pages[i].get()) return false;
    }
    return true;
  }
};

namespace {

enum Kind : unsigned { ELEMENT, TEXT, COMMENT, CLONE, CLOSE };

// The first byte of a node: its kind, whether children follow (closed by a CLOSE), an error word, view flags.
constexpr unsigned kKindMask = 7;
constexpr unsigned kHasChildren = 8;
constexpr unsigned kHasError = 16;
constexpr unsigned kHasView = 32;

std::uint64_t mix(std::uint64_t x) {
  x ^= x >> 31;
  x *= 0x7fb5d329728ea185u;
  x ^= x >> 27;
  return x;
}

// --- coding ----------------------------------------------------------------------------------------------------------

class Encoder {
 public:
  explicit Encoder(const std::unordered_map<std::uint64_t, std::shared_ptr<SnapshotChunk>>* earlier)
      : earlier_(earlier) {
    open();
  }

  void node(Node* n) {
    const std::uint32_t anchor = encode(n);
    // Where a chunk ends depends on the node alone, so that an edit shifts no cut but those next to it.
    ++nodes_;
    if ((nodes_ >= kFewest && mix(anchor) % kTypical == 0) || nodes_ >= kMost) close();
  }

  void closeElement(Node* n) {
    Slice end{};
    bool compact = n->getNodeType() == Node::NODE_ELEMENT && isCompact(static_cast<Element*>(n));
    if (compact) end = ElementAccess::endSlice(static_cast<Element*>(n));
    put(CLOSE);
    if (compact) putSlice(end);
  }

  SnapshotChunks finish() {
    close();
    return std::move(chunks_);
  }

 private:
  static constexpr unsigned kFewest = 16;
  static constexpr unsigned kTypical = 64;
  static constexpr unsigned kMost = 1024;

  static bool isCompact(const Element* element) { return ElementAccess::isUntouched(element); }

  std::uint32_t encode(Node* n) {
    unsigned head = n->hasChildNodes() ? kHasChildren : 0;
    if (n->getError()) head |= kHasError;
    if (n->isViewable() || n->isAbsolute()) head |= kHasView;
    switch (n->getNodeType()) {
      case Node::NODE_ELEMENT: {
        auto* element = static_cast<Element*>(n);
        if (isCompact(element)) return encodeElement(element, head);
        break;
      }
      case Node::NODE_TEXT: {
        auto* text = static_cast<Text*>(n);
        if (TextAccess::isUntouched(text)) return encodeText(text, head);
        break;
      }
      case Node::NODE_COMMENT: {
        auto* comment = static_cast<Comment*>(n);
        if (CommentAccess::isUntouched(comment)) return encodeComment(comment, head);
        break;
      }
      default:
        break;
    }
    put(CLONE | (head & kHasChildren));
    chunk_->clones.push_back(n->makeClone(false));
    return 0;
  }

  void putHead(unsigned head, const Node* n, const PageRef& page) {
    put(head);
    if (head & kHasError) putNumber(n->getError());
    if (head & kHasView)
      put((const_cast<Node*>(n)->isViewable() ? 1u : 0u) | (const_cast<Node*>(n)->isAbsolute() ? 2u : 0u));
    putNumber(indexOf(chunk_->documents, n->getDocument()));
    std::size_t i = 0;
    while (i < chunk_->pages.size() && chunk_->pages[i].get() != page.get()) ++i;
    if (i == chunk_->pages.size()) chunk_->pages.push_back(page);
    putNumber(i);
  }

  std::uint32_t encodeElement(Element* element, unsigned head) {
    putHead(head | ELEMENT, element, ElementAccess::page(element));
    const unsigned flags = ElementAccess::flags(element);
    put(flags);
    ElementDefinition* definition = ElementAccess::definition(element);
    if (definition) {
      putNumber(1 + indexOf(chunk_->definitions, definition));
    } else {
      put(0);
      std::size_t i = 0;
      while (i < chunk_->names.size() && !chunk_->names[i].sameRecord(NodeAccess::sharedName(element))) ++i;
      if (i == chunk_->names.size()) chunk_->names.push_back(NodeAccess::sharedName(element));
      putNumber(i);
    }
    const AttributeBlock* block = ElementAccess::block(element);
    putNumber(block ? chunk_->blocks.size() + 1 : 0);
    if (block) {
      const_cast<AttributeBlock*>(block)->addRef();
      chunk_->blocks.push_back(const_cast<AttributeBlock*>(block));
    }
    const Slice begin = ElementAccess::beginSlice(element);
    putSlice(begin);
    if (!element->hasChildNodes()) putSlice(ElementAccess::endSlice(element));
    return begin.offset;
  }

  std::uint32_t encodeText(Text* text, unsigned head) {
    putHead(head | TEXT, text, TextAccess::page(text));
    put(TextAccess::flags(text));
    putSlice(TextAccess::slice(text));
    return TextAccess::slice(text).offset;
  }

  std::uint32_t encodeComment(Comment* comment, unsigned head) {
    putHead(head | COMMENT, comment, CommentAccess::page(comment));
    put(comment->isJSP() ? 1 : 0);
    putSlice(CommentAccess::slice(comment));
    const Slice body = CommentAccess::body(comment);
    putNumber(body.offset - CommentAccess::slice(comment).offset);
    putNumber(body.length);
    return CommentAccess::slice(comment).offset;
  }

  template <class T>
  std::size_t indexOf(std::vector<T*>& table, T* value) {
    for (std::size_t i = 0; i < table.size(); ++i) {
      if (table[i] == value) return i;
    }
    table.push_back(value);
    return table.size() - 1;
  }

  void put(unsigned byte) { chunk_->code += static_cast<char>(byte); }
  void putNumber(std::uint64_t number) {
    for (; number >= 0x80; number >>= 7) put(static_cast<unsigned>(number & 0x7F) | 0x80);
    put(static_cast<unsigned>(number));
  }
  // As a rule a slice begins where the one before it ended.
  void putSlice(Slice slice) {
    const auto step = static_cast<std::int64_t>(slice.offset) - at_;
    putNumber(static_cast<std::uint64_t>(step) << 1 ^ static_cast<std::uint64_t>(step >> 63));
    putNumber(slice.length);
    at_ = static_cast<std::int64_t>(slice.offset) + slice.length;
  }

  void open() {
    chunk_ = std::make_shared<SnapshotChunk>();
    at_ = 0;
    nodes_ = 0;
  }
  void close() {
    if (chunk_->code.empty()) return;
    if (earlier_ && chunk_->clones.empty()) {
      const auto found = earlier_->find(std::hash<std::string>()(chunk_->code));
      if (found != earlier_->end() && found->second->sameAs(*chunk_)) chunk_ = found->second;
    }
    chunk_->code.shrink_to_fit();
    chunks_.push_back(std::move(chunk_));
    open();
  }

  const std::unordered_map<std::uint64_t, std::shared_ptr<SnapshotChunk>>* earlier_;
  SnapshotChunks chunks_;
  std::shared_ptr<SnapshotChunk> chunk_;
  std::int64_t at_ = 0;
  unsigned nodes_ = 0;
};

// --- decoding --------------------------------------------------------------------------------------------------------

class Decoder {
 public:
  explicit Decoder(SnapshotChunks& chunks) : chunks_(chunks) {}

  bool atEnd() {
    while (index_ < chunks_.size() && position_ >= chunk().code.size()) {
      ++index_;
      position_ = 0;
      at_ = 0;
      clone_ = 0;
    }
    return index_ >= chunks_.size();
  }

  // The next node, or null for the end of the children of `open`, whose end tag it sets.
  Node* next(Node* open, bool* hasChildren) {
    const unsigned head = get();
    if ((head & kKindMask) == CLOSE) {
      assert(open);
      if (!isClone(open) && open->getNodeType() == Node::NODE_ELEMENT) {
        ElementAccess::setEndSlice(static_cast<Element*>(open), getSlice());
      }
      return nullptr;
    }
    *hasChildren = (head & kHasChildren) != 0;
    if ((head & kKindMask) == CLONE) {
      Node* clone = std::exchange(chunk().clones[clone_++], nullptr);
      if (*hasChildren) clones_.push_back(clone);
      return clone;
    }
    const std::uint64_t error = head & kHasError ? getNumber() : 0;
    const unsigned view = head & kHasView ? get() : 0;
    Document* document = chunk().documents[getNumber()];
    const PageRef& page = chunk().pages[getNumber()];
    Node* node = nullptr;
    switch (head & kKindMask) {
      case ELEMENT:
        node = element(document, page, *hasChildren);
        break;
      case TEXT: {
        const unsigned flags = get();
        node = TextAccess::createUntouched(document, page, getSlice(), flags);
        break;
      }
      default: {
        const bool jsp = get() != 0;
        const Slice raw = getSlice();
        const auto from = static_cast<std::uint32_t>(getNumber());
        const auto length = static_cast<std::uint32_t>(getNumber());
        node =
            CommentAccess::create(document, DOMAccess::commentName(), page, raw, Slice{raw.offset + from, length}, jsp);
        break;
      }
    }
    NodeAccess::addError(node, error);
    node->setViewable((view & 1) != 0);
    node->setAbsolute((view & 2) != 0);
    return node;
  }

 private:
  SnapshotChunk& chunk() { return *chunks_[index_]; }
  bool isClone(const Node* node) {
    // Open clones lie on top of those that were closed; each is asked about once, when it closes.
    if (clones_.empty() || clones_.back() != node) return false;
    clones_.pop_back();
    return true;
  }

  Node* element(Document* document, const PageRef& page, bool hasChildren) {
    const unsigned flags = get();
    const std::uint64_t definitionIndex = getNumber();
    ElementDefinition* definition = definitionIndex ? chunk().definitions[definitionIndex - 1] : nullptr;
    const SharedName name = definition ? definition->upperName() : chunk().names[getNumber()];
    const std::uint64_t blockIndex = getNumber();
    const Slice begin = getSlice();
    Element* element = ElementAccess::createUntouched(document, name, definition, page, begin, flags);
    if (blockIndex) {
      AttributeBlock* block = chunk().blocks[blockIndex - 1];
      block->addRef();
      ElementAccess::installAttributes(element, block);
    }
    if (!hasChildren) ElementAccess::setEndSlice(element, getSlice());
    return element;
  }

  unsigned get() {
    atEnd();
    return static_cast<unsigned char>(chunk().code[position_++]);
  }
  std::uint64_t getNumber() {
    std::uint64_t number = 0;
    for (int shift = 0;; shift += 7) {
      const unsigned byte = get();
      number |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
      if (!(byte & 0x80)) return number;
    }
  }
  Slice getSlice() {
    const std::uint64_t folded = getNumber();
    const auto step = static_cast<std::int64_t>(folded >> 1) ^ -static_cast<std::int64_t>(folded & 1);
    const Slice slice{static_cast<std::uint32_t>(at_ + step), static_cast<std::uint32_t>(getNumber())};
    at_ = static_cast<std::int64_t>(slice.offset) + slice.length;
    return slice;
  }

  SnapshotChunks& chunks_;
  std::size_t index_ = 0;
  std::size_t position_ = 0;
  std::size_t clone_ = 0;
  std::int64_t at_ = 0;
  std::vector<Node*> clones_;
};

}  // namespace

// --- snapshots -------------------------------------------------------------------------------------------------------

TreeSnapshot::TreeSnapshot() = default;
TreeSnapshot::~TreeSnapshot() = default;
TreeSnapshot::TreeSnapshot(TreeSnapshot&&) noexcept = default;
TreeSnapshot& TreeSnapshot::operator=(TreeSnapshot&&) noexcept = default;

TreeSnapshot TreeSnapshot::take(Node* root, const TreeSnapshot* earlier, const std::vector<const Node*>& nodes,
                                std::vector<long>* indices) {
  indices->assign(nodes.size(), -1);
  TreeSnapshot snapshot;
  if (!root) return snapshot;
  Encoder encoder(earlier && earlier->byHash_ ? earlier->byHash_.get() : nullptr);
  long index = 0;
  for (Node* n = root;;) {
    encoder.node(n);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      if (nodes[i] == n && n != root) (*indices)[i] = index;
    }
    ++index;
    if (n->hasChildNodes()) {
      n = n->getFirstChild();
      continue;
    }
    while (n != root && !NodeAccess::childAfter(n)) {
      n = n->getParentNode();
      encoder.closeElement(n);
    }
    if (n == root) break;
    n = NodeAccess::childAfter(n);
  }
  snapshot.chunks_ = encoder.finish();
  snapshot.byHash_ = std::make_shared<std::unordered_map<std::uint64_t, std::shared_ptr<SnapshotChunk>>>();
  for (const auto& chunk : snapshot.chunks_) {
    if (chunk->clones.empty()) snapshot.byHash_->emplace(std::hash<std::string>()(chunk->code), chunk);
  }
  return snapshot;
}

Node* TreeSnapshot::restore(const std::vector<long>& indices, std::vector<Node*>* found) {
  found->assign(indices.size(), nullptr);
  Decoder decoder(chunks_);
  Node* root = nullptr;
  Node* open = nullptr;
  long index = 0;
  while (!decoder.atEnd()) {
    bool hasChildren = false;
    Node* node = decoder.next(open, &hasChildren);
    if (!node) {
      open = open->getParentNode();
      continue;
    }
    NodeAccess::clearFlags(node);
    node->addRef(false);
    if (open) NodeAccess::attachRestored(open, node);
    if (!root) root = node;
    for (std::size_t i = 0; i < indices.size(); ++i) {
      if (indices[i] == index) (*found)[i] = node;
    }
    ++index;
    if (hasChildren) open = node;
  }
  return root;
}

std::size_t TreeSnapshot::ownBytes() const {
  std::size_t bytes = chunks_.capacity() * sizeof(chunks_[0]);
  for (const auto& chunk : chunks_) {
    // One reference here, one in the index.
    if (chunk.use_count() > 2) continue;
    bytes += sizeof(SnapshotChunk) + chunk->code.capacity() + chunk->definitions.capacity() * sizeof(void*) +
             chunk->names.capacity() * sizeof(SharedName) + chunk->blocks.capacity() * sizeof(void*) +
             chunk->pages.capacity() * sizeof(PageRef) + chunk->clones.capacity() * sizeof(void*) +
             chunk->clones.size() * sizeof(Element);
  }
  return bytes;
}

}  // namespace zeldom40
