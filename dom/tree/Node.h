// The base of everything that hangs in a tree, and the constants for update flags and errors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "dom/export.h"
#include "dom/tree/NodeKind.h"

namespace zeldom40 {

class Document;
class ElementDefinition;
class NodeIterator;
struct ChildListHolder;
struct TextStrings;
template <class T>
class Hash;

// Error bits of a node (Node::getError). A host shows its own words for them.
constexpr unsigned long ERR_NONE = 0;
constexpr unsigned long ERR_DOC_DOCTYPE_MISSING = 0x1;
constexpr unsigned long ERR_DOC_DOCTYPE_DUPLICATED = 0x2;
constexpr unsigned long ERR_ELEMENT_INVALID_ATTR = 0x4;
constexpr unsigned long ERR_ELEMENT_CANNOT_BE_CONTAINED = 0x8;
constexpr unsigned long ERR_ELEMENT_CANNOT_CONTAIN = 0x10;
constexpr unsigned long ERR_ELEMENT_BEGIN_TAG_MISSING = 0x20;
constexpr unsigned long ERR_ELEMENT_END_TAG_MISSING = 0x40;
constexpr unsigned long ERR_ELEMENT_NO_PARENT_CAN_ADOPT = 0x80;
constexpr unsigned long ERR_ELEMENT_PARSE_ERROR = 0x100;
constexpr unsigned long ERR_ELEMENT_UNKNOWN = 0x200;
constexpr unsigned long ERR_ATTR_INVALID_NAME = 0x400;
constexpr unsigned long ERR_ATTR_INVALID_VALUE = 0x800;
constexpr unsigned long ERR_ATTR_VALUE_REQUIRED = 0x1000;
constexpr unsigned long ERR_ATTR_VALUE_DUPLICATED = 0x2000;
constexpr unsigned long ERR_PI_DUPLICATED = 0x4000;
constexpr unsigned long ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST = 0x8000;
constexpr unsigned long ERR_ELEMENT_INVALID_CASE = 0x10000;
constexpr unsigned long ERR_ELEMENT_INVALID_CASE_ATTR = 0x20000;
constexpr unsigned long ERR_ELEMENT_INVALID_CASE_END = 0x40000;
// Of a document type declaration: some of what its subset declares was not read; see DocumentType::isCut. A warning.
constexpr unsigned long ERR_PI_SUBSET_CUT = 0x80000;
// Not a bit of its own: the two case bits of a begin tag together.
constexpr unsigned long ERR_ELEMENT_INVALID_CASE_BEGIN = 0x30000;
// The mask of all bits that call for a repair; a document carries it whole or not at all.
constexpr unsigned long ERR_DOC_SEVERE_PARSE_ERROR = 0x781e8;

// The base of page nodes (Element, Text, Comment, PI, MetaData), of Document, and of the objects of a DTD.
//
// A tree holds its nodes by reference count, not by the parent link: inserting or removing a node leaves its count
// alone. Factories give a count of 1. To delete a subtree, call releaseRef(true) on its top (or
// Document::deleteNodes); a node that someone else holds survives, detached. Not safe for two threads.
class ZELDOM40_API Node {
 public:
  enum NodeType {
    NODE_NONE = 0,
    NODE_ELEMENT = 2,
    NODE_PI = 4,
    NODE_COMMENT = 5,
    NODE_TEXT = 6,
    NODE_ELEMENT_DEFINITION = 100,
    NODE_ATTRIBUTE_DEFINITION = 101,
    NODE_ELEMENT_TOKEN = 102,
    NODE_PCDATA_TOKEN = 103,
    NODE_MODEL_GROUP = 104,
    NODE_META_DATA = 106
  };

  // Update flags: what changed since a host last called clearUpdateFlag.
  static constexpr unsigned long UPDATE_NONE = 0;
  static constexpr unsigned long UPDATE_CHILD_MODIFIED = 0x1;        // a descendant changed
  static constexpr unsigned long UPDATE_CONTENT_MODIFIED = 0x2;      // raw tag or text changed
  static constexpr unsigned long UPDATE_ATTRIBUTE_MODIFIED = 0x4;    // an attribute changed
  static constexpr unsigned long UPDATE_CREATED = 0x8;               // fresh element, text or comment
  static constexpr unsigned long UPDATE_ADDED = 0x10;                // entered a tree
  static constexpr unsigned long UPDATE_REMOVED = 0x20;              // left a tree
  static constexpr unsigned long UPDATE_CHILD_REMOVED = 0x40;        // a child left
  static constexpr unsigned long UPDATE_SELECTION_CHANGED = 0x80;    // on the document
  static constexpr unsigned long UPDATE_CURSOR_CHANGED = 0x100;      // on the document
  static constexpr unsigned long UPDATE_STYLE_CHANGED = 0x200;       // for hosts; never raised here
  static constexpr unsigned long UPDATE_SIBLING_CHANGED = 0x400;     // a sibling link changed; never rises
  static constexpr unsigned long UPDATE_META_DATA_MODIFIED = 0x800;  // the element's metadata changed
  static constexpr unsigned long UPDATE_ADAPTED = 0x1000;            // made by a repair

  // Which sibling links `isolate` clears.
  static constexpr unsigned long ISOLATE_PREV = 1;
  static constexpr unsigned long ISOLATE_NEXT = 2;
  static constexpr unsigned long ISOLATE_SIBLINGS = 3;

  Node();
  // Copies name, document, error word, type and view flags. The copy has count 0, no flags, no links, no children.
  Node(const Node& other);
  Node& operator=(const Node&) = delete;
  // Deletes the children whose count is below 1, last to first; the others live on, detached.
  virtual ~Node();

  // Adds one reference, to the whole subtree if `deep`. Returns this node's new count.
  virtual int addRef(bool deep);
  // Drops one reference (of the whole subtree if `deep`) and deletes nothing, even at zero. Returns the new count.
  virtual int dropRef(bool deep);
  // Drops one reference (of the whole subtree if `deep`); at zero removes the node from its parent and deletes it.
  // Returns the new count; after 0 the pointer is dead. The last reference of a document's root is the document's: it
  // stays, and 1 is returned (Document::deleteNodes ends a tree).
  virtual int releaseRef(bool deep);
  // The first node below this one whose name equals that of `name`, or null. Model groups and tokens look further,
  // through the elements of `definitions` whose start tag may be omitted, and record the way in `path`; both may be
  // null.
  virtual Node* findFirstByName(Node* name, Hash<ElementDefinition>* definitions, std::vector<Node*>* path);
  // The node's name: tag name in upper case, or a fixed word ("TEXT", "COMMENT"). Lives until the next setName.
  virtual const std::string& getName() const;
  virtual void setName(const char* name);
  virtual void setName(const std::string& name);
  // Whether the DTD lets `child` stand below this node, directly or through elements whose start tags may be omitted.
  // `blocking`, if given, receives the model entry that matched or null; `path`, if given, is appended the way to it.
  // The base answers false.
  virtual bool canContain(Node* child, Node** blocking, std::vector<Node*>* path);
  // Whether an element may go without its end tag, and whether it never has content. The base answers true.
  virtual bool isEndOmittable() const;
  virtual bool isEmptyTag() const;
  // Adds `bits` to the error word. A severe bit gives the document the whole ERR_DOC_SEVERE_PARSE_ERROR mask.
  virtual void setError(unsigned long bits);
  // Raises one UPDATE_* flag here; ancestors learn of it as UPDATE_CHILD_MODIFIED, up to the first that has that flag.
  // A node keeps the lower 16 bits of flags; bits above are not kept.
  virtual void setUpdateFlag(unsigned long flag);
  virtual unsigned long getUpdateFlag() const;
  // Zeroes the flags of this node and of its subtree. A node without flags counts as clean and is not descended into.
  virtual void clearUpdateFlag();
  // A copy with count 0 in no tree, with copies of all descendants if `deep`. The caller gives it its references.
  virtual Node* makeClone(bool deep) const;

  // The document that the node was made for or was last inserted in, in its tree or not; null for the objects of a DTD.
  // Not owned.
  Document* getDocument() const { return kind_ ? kind_->document : nullptr; }
  void setDocument(Document* document);
  unsigned long getError() const { return error_; }
  NodeType getNodeType() const { return static_cast<NodeType>(nodeType_); }
  Node* getParentNode() const { return parent_; }
  Node* getNextSibling() const { return next_; }
  Node* getPreviousSibling() const { return prev_; }
  bool hasChildNodes() const { return getFirstChild() != nullptr; }
  Node* getFirstChild() const { return branch().first; }
  Node* getLastChild() const { return hasList_ ? lastOfList() : branch().last; }
  unsigned int getNumOfChildNodes() const;
  // An iterator over the live child list; it stays valid after this node is gone, over an empty list.
  NodeIterator getChildNodes() const;

  // Inserts `newNode`, or the detached run of siblings that it heads, as last or first children, or next to `ref`.
  // A null `ref` means last for insertBefore and first for insertAfter; a `ref` that is no child changes nothing.
  // A node that already has a parent, or that is this node or an ancestor of it (the element of a visual that this node
  // stands in, too), is not inserted, nor is a Document, or a MetaData that belongs to an element.
  // A node of another document of this DOM becomes one of this node's document, with its attributes, its metadata and
  // all below it; that document's cursor and selections leave it. A node of another DOM, or of a document that is gone,
  // is not inserted: its definitions are that DOM's. Take its source over with Document::createNodes.
  // A run ends before the first node that is not inserted. Returns `newNode`, whose parent tells; takes no reference.
  // Cursor and selections are the caller's to adjust.
  Node* insertLast(Node* newNode);
  Node* insertFirst(Node* newNode);
  Node* insertBefore(Node* newNode, Node* ref);
  Node* insertAfter(Node* newNode, Node* ref);
  // Detaches `child` and returns it; its count stays. A node that is no child is returned untouched. Of a MetaData that
  // shows `child` as the visual of an element, the visual is taken; the element has none then.
  Node* removeChild(Node* child);
  // Detaches the children from `first` to `last` (null: the first, the last child; in either order) and returns them
  // as a run linked by getNextSibling. Null if there are no children or one argument is no child.
  Node* removeChildren(Node* first, Node* last);
  // Detaches `oldChild` and returns it. KEPT: `newChild` gets sibling links into the list but does not become a child.
  Node* replaceChild(Node* oldChild, Node* newChild);
  // Clears this node's own sibling links (ISOLATE_*), without flags and without leaving the parent's list.
  void isolate(unsigned long which);

  // The lowest common ancestor-or-self, null if there is none. `aBranch` and `bBranch`, if given, receive the child of
  // it on the way to `a` and `b`, or `a` and `b` themselves.
  Node* findCommonParent(Node* a, Node* b, Node** aBranch, Node** bBranch);
  // True if `ancestor` is this node or one of its ancestors.
  bool isOffspringOf(Node* ancestor);
  // Document order: -1 if `a` stands before `b`, 1 behind, 0 if one holds the other or is null, -2 if they share no
  // tree.
  int compare(Node* a, Node* b);
  // 0-based position of `child`, -1 if it is no child.
  int getChildIndex(Node* child);
  // The child at a 0-based index. KEPT: an index outside the list gives the last child; null only without children.
  Node* getChildNode(int index);
  void clearError() { resetError(~0ul); }
  void resetError(unsigned long bits) {
    if (error_ & static_cast<std::uint32_t>(bits)) noteChange();
    error_ &= ~static_cast<std::uint32_t>(bits);
  }
  // Two marks for a host's layout, which clones carry on.
  void setViewable(bool on) { setViewBit(kViewable, on); }
  bool isViewable() { return (viewFlags_ & kViewable) != 0; }
  void setAbsolute(bool on) { setViewBit(kAbsolute, on); }
  bool isAbsolute() { return (viewFlags_ & kAbsolute) != 0; }
  // Clears the given UPDATE_* bits on this node alone.
  void resetUpdateFlag(unsigned long bits) { updateFlags_ &= static_cast<std::uint16_t>(~bits); }

  // Nodes come from a pool of size classes.
  static void* operator new(std::size_t size);
  static void operator delete(void* memory, std::size_t size);

 protected:
  explicit Node(NodeType type, Document* document = nullptr);
  // The library's way to make a node of a page: all in one step.
  struct Parsed {};
  Node(Parsed, NodeType type, NodeKind* kind, unsigned flags);

  // Document, page, name and definition; null if it has none of them.
  const NodeKind* kind() const { return kind_; }
  // Takes over one reference.
  void setKind(NodeKind* kind);
  const PageRef& page() const { return kind_ ? kind_->page : NodeKind::noPage(); }
  void setPage(const PageRef& page);

  // Texts and comments, which have children only if a host gives them some, use the room of the children's links for
  // what they are made of. `strings` belongs to the node.
  struct Leaf {
    Slice raw;
    TextStrings* strings;
  };
  // For these two types alone.
  const Leaf& leaf() const { return links_.leaf; }
  Leaf& leaf() { return links_.leaf; }
  TextStrings& ownStrings() const;

  // Called with each change of what undo brings back: the saved state of this node and of all around it is outdated.
  void noteChange() {
    if (saved_) outdate();
  }

 private:
  friend class NodeIterator;
  friend struct NodeAccess;
  friend struct TextStrings;

  enum : std::uint8_t { kViewable = 1, kAbsolute = 2 };
  void setViewBit(std::uint8_t bit, bool on) {
    noteChange();
    viewFlags_ = (on ? viewFlags_ | bit : viewFlags_ & ~bit) & 3;
  }
  void outdate();

  // Members of derived classes that must go before the children do; called once, by the destruction of a subtree.
  // With `held` the nodes among them keep the reference that their tree has on them.
  virtual void releaseOwned(bool held);
  // A copy of this node alone.
  virtual Node* cloneSelf() const;
  // Told before a flag is raised on this node because it stands in a subtree that is added.
  virtual void noteUpdate(unsigned long flag);

  struct Branch {
    Node* first;
    union {
      Node* last;
      ChildListHolder* list;  // if hasList_
    };
  };

  static bool isLeafType(int type) { return static_cast<unsigned>(type) - NODE_COMMENT < 2u; }
  bool isLeaf() const { return isLeafType(nodeType_); }
  const Branch& branch() const { return isLeaf() ? branchOfLeaf() : links_.branch; }
  const Branch& branchOfLeaf() const { return links_.leaf.strings ? branchOfStrings() : kNoBranch; }
  const Branch& branchOfStrings() const;
  Node* lastOfList() const;

  static const Branch kNoBranch;

  // Aligns the node: saved states keep a tag in the lowest three bits of its address.
  alignas(8) NodeKind* kind_ = nullptr;
  Node* parent_ = nullptr;
  Node* next_ = nullptr;
  Node* prev_ = nullptr;
  union Links {
    Branch branch;
    Leaf leaf;
  };
  mutable Links links_ = {.branch = {}};
  std::int32_t refCount_ = 0;
  std::uint32_t error_ = 0;
  std::uint16_t updateFlags_ = 0;
  std::uint8_t nodeType_ = NODE_NONE;
  std::uint8_t viewFlags_ : 2 = 0;
  bool listIsTruth_ : 1 = false;      // sibling links of the children were tampered with: the list decides
  mutable bool hasList_ : 1 = false;  // a list by index, made by the first question about indices
  bool place_ : 1 = false;   // a cursor or the end of a selection was set here: documents must learn of the node's end
  bool edited_ : 1 = false;  // what carries metadata from here up knows of an edit; so is the parent marked
  bool saved_ : 1 =
      false;  // this node and all below it are as they were when a state was last saved; see SnapshotChunk
  bool leadsChunk_ : 1 = false;  // a chunk of a saved state begins here
};

}  // namespace zeldom40
