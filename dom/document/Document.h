// One page: the tree and the services around it.
#pragma once

#include <list>
#include <memory>
#include <string>

#include "dom/document/ErrorPacket.h"
#include "dom/export.h"
#include "dom/tree/Node.h"
#include "dom/tree/NodeIterator.h"
#include "dom/tree/Text.h"

namespace zeldom40 {

class Attribute;
class AttributeList;
struct BeanList;
class Comment;
class DOM;
class DTCDocument;
class DocumentType;
class Element;
class MetaData;
class PI;
class UndoStack;

// A node that is never part of a tree itself: it holds the root of one and works on it. Made by DOM::createDocument and
// freed by DOM::deleteDocument. Not safe for two threads.
class ZELDOM40_API Document : public Node {
 public:
  // Which part of an element getSourceBuf writes; other nodes are always written whole.
  enum SourceMode { SOURCE_TAGS = 0, SOURCE_CONTENT = 1, SOURCE_ALL = 2 };

  // A stretch of the page in document order. An offset is a child index in an element and a byte of the plain form in a
  // text. Holds no references.
  struct _selection {
    Node* startNode;
    unsigned startOffset;
    Node* endNode;
    unsigned endOffset;
  };

  // Without a DOM: of no use but as a placeholder.
  Document();
  Document(const char* documentTypeName, DOM* dom);
  ~Document() override;

  // --- the tree -----------------------------------------------------------------------------------------------------
  // The DOM's document type; borrowed.
  Node* getDocumentType();
  DocumentType* getDocumentTypeObject() const { return documentType_; }
  DOM* getDOM() const { return dom_; }
  // True if the document was made with the name "HTML".
  bool isHTML() const { return html_; }
  // The root, an element named ZELROOT; null while there is no tree. Owned by the document.
  Element* getDocumentElement() { return documentElement_; }
  // Takes `node` out of its tree and drops one reference of its whole subtree; nodes that nobody else holds are
  // deleted. Null or the root: the whole tree goes, with cursor and selections. What lives on carries UPDATE_REMOVED; a
  // host's own setUpdateFlag is not called for it. A node below one that lives on stays with it, unless somebody holds
  // that node and not its parent: then it loses its parent. The visual of an element goes as by setATV(nullptr). A node
  // of another document's tree is deleted there, but nothing happens to the root of one. Always returns null.
  Node* deleteNodes(Node* node);
  // Clears the tree's flags, then the document's own.
  void clearUpdateFlag() override;
  // The pre-order step: the next node behind `node` inside the subtree of `top` (null: to the end of the tree), not
  // below `node` if `skipChildren`, and only at nodes with update flags if `updatedOnly`. Null at the end.
  Node* findNextNode(Node* node, Node* top, bool updatedOnly, bool skipChildren);
  // The node below `cloneTop` at the place that `node` has below `sourceTop`; null if there is none, and for
  // `sourceTop` itself.
  Node* findClonedNode(Node* node, Node* sourceTop, Node* cloneTop);

  // --- factories and searches ---------------------------------------------------------------------------------------
  // The HTML element of the page. KEPT: if there is none it is created and appended to the root. Null for a document
  // that is not HTML or has no tree. Borrowed.
  Element* getHTMLElement();
  // Nodes with a count of 1 and no parent; null for an empty or null name. Tags are written on first demand.
  Element* createElement(const char* name);
  // ZELROOT and ZELTEMP: elements whose tags are empty, so that writing them writes their content.
  Element* createRootElement();
  Element* createTemporaryElement();
  Text* createTextNode(const char* data);
  Text* createTextNode(const std::string& data);
  Comment* createComment(const char* data);
  Comment* createComment(const std::string& data);
  // KEPT: carries no document, in a tree neither.
  PI* createPI(const char* target, const char* data);
  // Not counted: owned by the caller until they join a list or an element.
  Attribute* createAttribute(const char* name, const char* value);
  AttributeList* createAttributeList();
  // A copy without children, with a copy of the metadata. Count 1. Null gives null.
  Element* copyElement(const Element* source);
  // Metadata of no type, count 1, for Element::setMetaData to take over.
  MetaData* createMetaData();
  NodeIterator getElementsByTagName(const char* name);
  // Deletes the element and keeps its children in its place; `mergeTexts` joins texts that meet. An element without
  // parent is returned untouched, else null. The visual of an element goes with its children, as by setATV(nullptr).
  Element* removeElement(Element* element, bool mergeTexts);
  // True for a text without data, and for a text-level element that holds nothing but such; the place of the cursor
  // and of a single selection counts as content unless `ignoreCursor` (for the node itself). Under DOM::Rewriting::KEEP
  // what the page has without content counts as content.
  bool isEmptyNode(Node* node, bool ignoreCursor);
  // The answer of a node, which a document never is: no.
  using Node::canContain;
  // May `child` stand directly below `parent`, with no element between that only the DTD implies?
  bool canContain(Node* parent, Node* child);
  // May an element of that name, a text of that type, stand below, also through implied elements? A null pointer: no.
  bool canContain(Node* parent, const char* name);
  bool canContain(Node* parent, Text::TextType type);
  bool canContain(const char* name, Node* child);

  // --- parsing and writing ------------------------------------------------------------------------------------------
  // Parses `length` bytes of any content, NUL bytes included, below `parent`, and returns it. A null parent replaces
  // the whole tree. A fragment's parent is an element without children, usually from createTemporaryElement; errors of
  // a fragment stay on its nodes and never reach the document's word. With `adjust` a page without severe errors is
  // brought to normal form. Text of 2 GiB or more gives null and changes nothing; so does a parent of another document.
  // Parsed nodes carry update flags (CREATED, ADDED): a host clears them with clearUpdateFlag before its first edit,
  // or adjustNodes takes every tag for new and writes it anew.
  Node* createNodes(const char* text, unsigned int length, Node* parent, bool adjust);
  // The source text of a node, empty for null. An untouched tree gives the exact bytes that it was parsed from. Lives
  // until the next call; it may hold NUL bytes, see getSourceBufLen. `compact` leaves out generated run-time text.
  const char* getSourceBuf(Node* node, SourceMode mode, bool compact) const;
  // The length in bytes of getSourceBuf with the same arguments, which it runs; with a null node, of the last result.
  unsigned long getSourceBufLen(Node* node, SourceMode mode, bool compact) const;
  // Reads the references of all texts below `node` anew from their source. True if there was such a text.
  bool restorePlainTexts(Node* node);

  // --- dynamic content ----------------------------------------------------------------------------------------------
  // The host's side of the design-time controls; borrowed, null until set. It is asked for an item of each control that
  // is made from then on, and must outlive the document.
  DTCDocument* getDTCDocument() { return controls_; }
  void setDTCDocument(DTCDocument* controls) { controls_ = controls; }
  // Whether a save would change run-time text that nobody edited: a loaded page has none, or another than is generated
  // today. Known once the page was written.
  bool isRuntimeTextDifferent() const { return runtimeTextState_ == kRuntimeTextDifferent; }
  // The author accepts the new text; nothing marks the document from here on.
  void runtimeTextWasSynchronized() const { runtimeTextState_ = kRuntimeTextSynchronized; }
  // For a host that loads another page into this document.
  void resetRuntimeTextStateOnReload() const { runtimeTextState_ = kRuntimeTextNotCompared; }
  // For a host that writes a page back without a save: pairs of the page that was just parsed keep the run-time text
  // that they have, and nothing else that is dynamic becomes a pair.
  void keepRuntimeText();
  // Without effect once the document is marked or synchronized.
  void markRuntimeTextDifferent() const {
    if (runtimeTextState_ == kRuntimeTextNotCompared) runtimeTextState_ = kRuntimeTextDifferent;
  }

  // --- errors -------------------------------------------------------------------------------------------------------
  // Lists the nodes of the page that carry errors, in document order. Owned by the document; valid until the next call
  // or clearErrors. The texts of messages are the host's.
  const std::list<_dom_error_packet*>& getErrorList() const;
  void clearErrors() const;
  // Repairs the subtree of `node` (null: the whole page) and brings it to normal form; returns the number of repairs.
  // Takes no undo record: a host calls record() before. What cannot be repaired keeps its error bits. KEPT: recording
  // is on afterwards, whatever it was. A node that is not in the tree is left alone, and 0 returned: so a host may
  // repair the entries of an error list one by one, though the repair of one deletes the nodes of others.
  int correctError(Node* node);
  // Makes one misplaced node fit by creating the elements that it lacks around it. Returns its new parent, or null if
  // nothing could be done.
  Node* adaptNode(Node* node);

  // --- cursor and selections ----------------------------------------------------------------------------------------
  // Adds a selection (`append` not 0) or makes it the only one; the ends are put in document order. Null: nothing.
  void select(Node* a, unsigned aOffset, Node* b, unsigned bOffset, unsigned char append);
  void eraseSelections();
  bool isSelected(Node* node);
  const std::list<_selection*>& getSelections() const { return selections_; }
  unsigned getNumOfSelections() const { return static_cast<unsigned>(selections_.size()); }
  // Puts the cursor at a child index of an element or a byte of a text's plain form; a text without layout presence
  // passes it to its parent. A node outside the tree leaves the cursor's node.
  void setLayoutCursor(Node* node, int offset);
  // Out-pointers may be null. A cursor that was set in the other view is converted.
  void getLayoutCursor(Node** node, int* offset);
  // The same in bytes of the raw form. KEPT: takes any node, with no test of the tree.
  void setSourceCursor(Node* node, int offset);
  void getSourceCursor(Node** node, int* offset);
  // Node::compare.
  int compareNode(Node* a, Node* b);
  // Keep cursor and selections on live nodes: told after a child is inserted, before one is removed, before a subtree
  // is deleted.
  void adjustCursorOnInsert(Node* node);
  void adjustCursorOnRemove(Node* node);
  void adjustCursorOnDelete(Node* node);
  // Between bytes of a text's plain form and of its raw form; a position inside a reference or a run of white space
  // maps to its end. 0 for a negative offset or a node that is no text.
  int convertOffsetSource2Layout(Node* node, int offset);
  int convertOffsetLayout2Source(Node* node, int offset);
  int convOffsetLayout2Source(Node* node, int offset);

  // --- closing an edit ----------------------------------------------------------------------------------------------
  // Ends an edit below `node` (null: anywhere): removes elements that became pointless, merges neighbouring skeleton
  // elements and texts, and lays out new and changed nodes under the DOM's style; only nodes with update flags are
  // visited unless `full`. Ends an undo step. Returns whether anything changed. For a node that is not in the tree the
  // call does nothing and returns false.
  bool adjustNodes(Node* node, bool full);
  // Makes the next adjustNodes(nullptr, ...) do nothing.
  void skipAdjust();

  // --- beans --------------------------------------------------------------------------------------------------------
  // Lists the names that a property path of the page can begin with, in byte order: beans from outside, beans that the
  // page declares, implicit objects of JSP. Begin makes the list; Next gives an entry, whose texts live until End, and
  // is false at the end and for a null handle; End frees the list and sets the handle to null.
  void getBeanListBegin(void*& handle) const;
  bool getBeanListNext(void*& handle, const char*& name, const char*& type) const;
  void getBeanListEnd(void*& handle) const;
  // Beans that exist outside the page, as a servlet puts them into the request. They are no part of its text. A name
  // that is there keeps its type; an unknown name is ignored.
  void addOutBoundBean(const char* name, const char* type);
  void delOutBoundBean(const char* name);

  // --- undo ---------------------------------------------------------------------------------------------------------
  // Saves the present state, at most once until an edit is closed by adjustNodes. Every mutator of a node in the tree
  // calls it before its change; a host calls it to mark the beginning of an edit. Ten states are kept.
  void record();
  // Between suspend and its end a group of changes gets one record. KEPT: adjustNodes ends suspension and disabling.
  void suspendRecord(bool suspend);
  void enableRecord(bool enable);
  // Drops the newest state, unless something was undone since; the count falls in any case. If a state was dropped, the
  // next change saves one again, also within the same edit or group.
  void cancelRecord();
  // Frees the history; the count stays. The next change saves a state again, also within the same edit or group.
  void clearRecord();
  // Step back, step forth, by `count` states or as many as there are. All nodes of the tree are replaced. Return how
  // many steps remain in that direction. KEPT: a count below 1 takes no step but still changes getRecordCount.
  int undo(int count);
  int canUndo();
  int redo(int count);
  int canRedo();
  // Position in the history: a host compares it with a saved value to know whether the page is modified.
  unsigned long getRecordCount();

 private:
  friend class Node;
  friend struct NodeAccess;
  friend struct DocumentAccess;
  friend Text* mergeTexts(Document& document, Node* first, Node* second);

  enum : int { kRuntimeTextNotCompared = 0, kRuntimeTextDifferent = 1, kRuntimeTextSynchronized = 2 };
  enum : unsigned { kRecordTaken = 1, kRecordSuspended = 2, kRecordInGroup = 4, kRecordDisabled = 8 };

  // record(), if the change of `node` is one of this document's tree.
  void recordChange(const Node* node) {
    if (!(recordFlags_ & (kRecordTaken | kRecordDisabled)) && isInTree(node)) record();
  }
  void forgetRecord();
  bool isInTree(const Node* node) const;
  bool hasSevereError() const { return (getError() & ERR_DOC_SEVERE_PARSE_ERROR) != 0; }
  Element* prepareScratchElement(const char* name);
  void forgetCursorInside(Node* top);
  void dropSelectionsInside(Node* top);
  void forgetPlace(const Node* node);
  bool countsIn(const Node* parent) const;
  bool isEmptyByItself(const Node* node) const;
  bool isPlace(const Node* node) const;
  bool dropLeftBehind(Node* node);
  void replaceDocumentElement(Element* root);
  void rebindControls();
  void shiftOffsets(Node* parent, int index, int by);
  // CHOICE: a page without a cursor may have selections all the same, so a missing cursor ends no adjustment.
  bool placesCanMove(const Node* node) const { return node && documentElement_ && adjustCursors_; }

  DOM* dom_ = nullptr;
  bool html_ = false;
  DocumentType* documentType_ = nullptr;
  mutable std::list<_dom_error_packet*> errorList_;
  Element* documentElement_ = nullptr;
  std::list<_selection*> selections_;
  bool doctypeSeen_ = false;
  Node* cursorNode_ = nullptr;
  int layoutOffset_ = 0;
  int sourceOffset_ = 0;
  Element* scratchElement_ = nullptr;
  Text* scratchText_ = nullptr;
  bool skipAdjust_ = false;
  bool adjustCursors_ = true;
  bool inClassify_ = false;
  bool isBuilding_ = false;  // createNodes is sorting out what it parsed
  bool inDryRun_ = false;    // run-time text is generated, but not for a save
  unsigned pairNesting_ = 0;
  mutable int runtimeTextState_ = kRuntimeTextNotCompared;
  DTCDocument* controls_ = nullptr;
  Node* retainedCursorNode_ = nullptr;
  mutable std::string sourceBuf_;
  UndoStack* undoStack_ = nullptr;
  std::unique_ptr<BeanList> outBoundBeans_;
  unsigned recordFlags_ = 0;
  long recordCount_ = 0;
  Document* olderDocument_;
};

}  // namespace zeldom40
