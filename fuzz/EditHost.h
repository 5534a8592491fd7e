// A host that edits random pages at random and looks after each step whether all is as it must be.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "dom/tree/NodePool.h"
#include "dom/zeldom40.h"
#include "fuzz/RandomPage.h"
#include "fuzz/SnapshotCheck.h"
#include "fuzz/TreeCheck.h"

namespace zeldom40::fuzz {

// Where the host's decisions come from: a seed, or the bytes of a fuzzer until they end.
class Choices {
 public:
  explicit Choices(std::uint64_t seed) : state_(seed * 2 + 1) {}
  explicit Choices(std::string_view bytes) : bytes_(bytes), fromBytes_(true) {}

  bool atEnd() const { return fromBytes_ && at_ >= bytes_.size(); }
  // 0 to n - 1; n is not 0.
  std::size_t below(std::size_t n) {
    if (fromBytes_) {
      std::size_t value = 0;
      for (std::size_t width = n; width > 1; width = (width + 255) / 256) {
        value = value * 256 + (at_ < bytes_.size() ? static_cast<unsigned char>(bytes_[at_++]) : 0);
      }
      return value % n;
    }
    // splitmix64
    std::uint64_t z = (state_ += 0x9e3779b97f4a7c15u);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return static_cast<std::size_t>((z ^ (z >> 31)) % n);
  }
  bool chance(std::size_t oneIn) { return below(oneIn) == 0; }

 private:
  std::uint64_t state_ = 0;
  std::string_view bytes_;
  std::size_t at_ = 0;
  bool fromBytes_ = false;
};

// Edits one document. It keeps its own account of the history: the source and the places of cursor and selection at
// each record, against which undo and redo are held. A host may hold nodes that it took out of the tree; those are put
// back, or released, in any order. Nodes go to and fro between the document and a second one of the same DOM, which
// ends now and then; those of a document of another DOM are refused.
class EditHost {
 public:
  EditHost(DOM* dom, Choices& choices, const char* documentTypeName = "HTML")
      : choices_(choices), pages_(choices.below(1u << 24), *dom->getDocumentType()), dom_(dom) {
    document_ = dom_->createDocument(documentTypeName);
    dom_->setRewriting(choices_.chance(2) ? DOM::Rewriting::KEEP : DOM::Rewriting::STANDARD);
    load();
    openOther();
  }
  EditHost(const EditHost&) = delete;
  EditHost& operator=(const EditHost&) = delete;
  ~EditHost() {
    // What a fault has left cannot be freed.
    if (!fault_.empty()) return;
    snapshots_.clear();
    releaseAll();
    dom_->deleteDocument(other_);
    dom_->deleteDocument(document_);
  }

  // One edit with the checks behind it. Returns what went wrong, empty if nothing did.
  std::string step() {
    nodes_ = treeNodes();
    if (nodes_.size() > mostNodes_) {
      load();
      return check();
    }
    const State before = state();
    const unsigned long countBefore = document_->getRecordCount();
    fault_.clear();
    const std::size_t kind = choices_.below(kEdits);
    edit(kind, before);
    // The first change of an edit saves the state that it found.
    if (kind < kHistoryEdits && document_->getRecordCount() == countBefore + 1) noteRecord(before);
    if (fault_.empty()) fault_ = check();
    if (fault_.empty() && ++steps_ % kStepsASave == 0) fault_ = snapshots_.look(document_->getDocumentElement());
    if (!fault_.empty()) fault_ += " (after edit " + std::to_string(kind) + ": " + last_ + ")";
    return fault_;
  }

  // Takes back all that can be, with the same checks.
  std::string unwind() {
    while (document_->canUndo() > 0) {
      stepHistory(undo_, redo_, 1, state(), /*back=*/true);
      if (fault_.empty()) fault_ = check();
      if (!fault_.empty()) return fault_;
    }
    return {};
  }

  Document* document() { return document_; }

 private:
  // What a record keeps of a page, as a host sees it.
  struct State {
    std::string source;
    std::string cursor;
    std::string selection;
  };

  static constexpr std::size_t kMostNodes = 300;
  static constexpr std::size_t kDepth = 10;
  // Edits before this one may save a state.
  static constexpr std::size_t kHistoryEdits = 38;
  static constexpr std::size_t kEdits = 44;
  static constexpr unsigned long kStepsASave = 3;

  // --- edits --------------------------------------------------------------------------------------------------------

  void edit(std::size_t kind, const State& before) {
    switch (kind) {
      case 0:
      case 1:
      case 2:
        return insert(newNode(), "insert");
      case 3:
        return insert(fragment(), "insert a fragment");
      case 4:
        return insert(takeHeld(), "put back");
      case 5:
      case 6:
        return remove();
      case 7:
        return removeRange();
      case 8:
        return replace();
      case 9:
      case 10:
        return splice();
      case 11:
      case 12:
        return dissolve();
      case 13:
      case 14:
        return erase();
      case 15:
      case 16:
        return attributes();
      case 17:
      case 18:
      case 19:
      case 20:
        return editText();
      case 21:
        return editComment();
      case 22:
        return correct();
      case 23:
        last_ = "adaptNode";
        if (Node* node = pick()) document_->adaptNode(node);
        return;
      case 24:
      case 25:
      case 26:
      case 27:
        return adjust();
      case 28:
        return select();
      case 29:
      case 30:
        return moveCursor();
      case 31:
        last_ = "record";
        return document_->record();
      case 32:
        return switchRecording();
      case 33:
        return release();
      case 34:
        return paste();
      case 35:
        return giveAway();
      case 36:
        return repairFindings();
      case 37:
        return tryForeign();
      case 38:
      case 39:
        last_ = "undo";
        return stepHistory(undo_, redo_, 1 + choices_.below(3), before, /*back=*/true);
      case 40:
        last_ = "redo";
        return stepHistory(redo_, undo_, 1 + choices_.below(3), before, /*back=*/false);
      case 41:
        last_ = "cancelRecord";
        document_->cancelRecord();
        if (redo_.empty() && !undo_.empty()) undo_.pop_back();
        return;
      case 42:
        return ask();
      default:
        if (choices_.chance(8)) return load();
        last_ = "clearUpdateFlag";
        document_->clearUpdateFlag();
    }
  }

  void insert(Node* run, const char* what) {
    last_ = what;
    if (!run) return;
    std::vector<Node*> nodesOfRun;
    const bool stray = run->getPreviousSibling() != nullptr;
    for (Node* n = run; n && !n->getParentNode(); n = stray ? nullptr : n->getNextSibling()) nodesOfRun.push_back(n);
    Node* parent = pickParent();
    Node* ref = parent && choices_.chance(4) ? nullptr : childOf(parent);
    if (parent) {
      // An index that is asked for keeps the list of the children alive.
      if (choices_.chance(3)) parent->getChildNode(offset());
      switch (choices_.below(4)) {
        case 0:
          parent->insertFirst(run);
          break;
        case 1:
          parent->insertLast(run);
          break;
        case 2:
          parent->insertBefore(run, ref);
          break;
        default:
          parent->insertAfter(run, ref);
      }
    }
    // A run can be refused, whole or from some node on; what has no parent is still the host's.
    for (Node* n : nodesOfRun) {
      if (!n->getParentNode() && std::find(held_.begin(), held_.end(), n) == held_.end()) held_.push_back(n);
    }
  }

  void remove() {
    last_ = "removeChild";
    Node* node = pickChild();
    if (!node) return;
    hold(node->getParentNode()->removeChild(node));
    if (choices_.chance(2)) insert(takeHeld(), "move");
  }

  void removeRange() {
    last_ = "removeChildren";
    Node* parent = pickParent();
    if (!parent || !parent->hasChildNodes()) return;
    Node* first = choices_.chance(3) ? nullptr : childOf(parent);
    Node* last = choices_.chance(3) ? nullptr : childOf(parent);
    Node* run = parent->removeChildren(first, last);
    if (!run) {
      fault_ = "removeChildren gave nothing";
    } else {
      hold(run);
    }
  }

  void replace() {
    last_ = "replaceChild";
    Node* old = pickChild();
    if (!old) return;
    Node* parent = old->getParentNode();
    Node* fresh = newNode();
    hold(parent->replaceChild(old, fresh));
    // It is linked to the neighbours, but nobody's child.
    held_.push_back(fresh);
  }

  void splice() {
    last_ = "splice";
    Text* text = pickText();
    Element* element = newElement();
    if (!text || text->splice(element, offset(), offset(), choices_.chance(2)) < 0) {
      element->releaseRef(true);
    } else if (!element->getParentNode()) {
      hold(element);
    }
  }

  void dissolve() {
    last_ = "removeElement";
    Node* node = pickChild();
    if (node && node->getNodeType() == Node::NODE_ELEMENT) {
      document_->removeElement(static_cast<Element*>(node), choices_.chance(2));
    }
  }

  void erase() {
    last_ = "deleteNodes";
    if (Node* node = pickChild()) document_->deleteNodes(node);
  }

  void attributes() {
    last_ = "attributes";
    Node* node = pick();
    if (!node || node->getNodeType() != Node::NODE_ELEMENT) return;
    auto* element = static_cast<Element*>(node);
    static constexpr const char* kNames[] = {"ID", "ALIGN", "NAME", "class", "x", "HREF"};
    const char* name = kNames[choices_.below(6)];
    if (choices_.chance(3)) {
      element->deleteAttribute(name);
    } else {
      element->setAttribute(name, choices_.chance(4) ? "a\"b" : "v", !choices_.chance(4));
    }
  }

  void editText() {
    Text* text = pickText();
    if (!text) return;
    static constexpr const char* kTexts[] = {"a", " ",         "two words", "\t",   "<&>\"",
                                             "",  "\r\nx\r\n", "\x1b\xa0",  "\xff", "\x1c<b>"};
    const char* typed = kTexts[choices_.below(10)];
    const bool cursor = choices_.chance(2);
    switch (choices_.below(9)) {
      case 0:
      case 1:
        last_ = "insert text";
        text->insert(offset(), typed, cursor, static_cast<Text::SpaceMode>(choices_.below(3)));
        return;
      case 2:
        last_ = "Delete";
        text->Delete(offset(), offset(), cursor);
        return;
      case 3:
        last_ = "deleteChar";
        text->deleteChar(offset(), cursor);
        return;
      case 4:
        last_ = "replace text";
        text->replace(offset(), offset(), typed, cursor);
        return;
      case 5:
        last_ = "setData";
        return text->setData(typed, true);
      case 6:
        last_ = "setRawData";
        return text->setRawData(typed);
      case 7:
        last_ = "compact";
        text->compact();
        return;
      default:
        last_ = "a long text";
        text->insert(-1, "some words that go on and on, longer than the lines of the style", cursor,
                     Text::SPACE_NORMAL);
    }
  }

  void editComment() {
    last_ = "comment";
    Node* node = pick();
    if (node && node->getNodeType() == Node::NODE_COMMENT) static_cast<Comment*>(node)->setData(" edited ");
  }

  void correct() {
    last_ = "correctError";
    Node* node = choices_.chance(2) ? nullptr : pick();
    document_->correctError(node);
  }

  void adjust() {
    last_ = "adjustNodes";
    if (choices_.chance(10)) document_->skipAdjust();
    document_->adjustNodes(choices_.chance(2) ? nullptr : pick(), choices_.chance(3));
  }

  // The loop of a checker, over a list that stays open behind it.
  void repairFindings() {
    last_ = "repair findings";
    std::vector<Node*> found;
    for (const _dom_error_packet* packet : document_->getErrorList()) {
      if (packet->error & ERR_DOC_SEVERE_PARSE_ERROR) found.push_back(packet->node);
    }
    for (Node* node : found) {
      document_->correctError(node);
      forgetTaken();
      if (choices_.chance(3)) document_->adjustNodes(node, choices_.chance(2));
      forgetTaken();
    }
  }

  // --- other documents ----------------------------------------------------------------------------------------------

  void openOther() {
    if (other_) dom_->deleteDocument(other_);
    other_ = dom_->createDocument("HTML");
    const std::string page =
        "<BODY><P ID=p ALIGN=left>other</P><UL DYNAMICELEMENT><LI>a<LI>b</UL><!-- c --><B>x</I></B></BODY>";
    other_->createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, /*adjust=*/false);
    other_->clearUpdateFlag();
  }
  Node* pickOf(Document* document) {
    const std::vector<Node*> nodes = nodesOf(document);
    return nodes.size() < 2 ? nullptr : nodes[1 + choices_.below(nodes.size() - 1)];
  }

  // A node of the other document or a copy of one comes into this tree, and its document may end.
  void paste() {
    last_ = "paste";
    Node* node = pickOf(other_);
    if (!node || choices_.chance(8)) openOther();
    if (!node || !(node = pickOf(other_))) return;
    if (choices_.chance(3)) other_->record();
    if (choices_.chance(3)) other_->setLayoutCursor(node, 0);
    if (choices_.chance(2)) {
      Node* copy = node->makeClone(/*deep=*/true);
      copy->addRef(true);
      node = copy;
    } else {
      node->getParentNode()->removeChild(node);
    }
    insert(node, "paste");
    if (choices_.chance(4)) other_->undo(1);
    const bool isTaken = node->getParentNode() != nullptr;
    // What stays with its former document must not outlive it in use.
    if (!isTaken) {
      std::erase(held_, node);
      other_->deleteNodes(node);
    }
    if (choices_.chance(6)) openOther();
  }

  // The other way, out of this tree.
  void giveAway() {
    last_ = "give away";
    Node* node = pickChild();
    Node* place = pickOf(other_);
    if (!node || !place) return;
    node->getParentNode()->removeChild(node);
    if (choices_.chance(4)) {
      place->insertBefore(node, nullptr);
    } else {
      place->insertLast(node);
    }
    if (!node->getParentNode()) return hold(node);
    forgetTaken();
    if (node->getDocument() && node->getDocument() != other_) fault_ = "a node of this document in the other";
    if (choices_.chance(3)) other_->adjustNodes(nullptr, choices_.chance(2));
    // It refuses the one and leaves the other to its document.
    if (choices_.chance(3)) document_->deleteNodes(other_->getDocumentElement());
    Node* dying = pickOf(other_);
    if (dying && choices_.chance(4)) document_->deleteNodes(dying);
  }

  void tryForeign() {
    last_ = "a node of another DOM";
    DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
    {
      Document* foreign = dom->createDocument("HTML");
      Element* node = foreign->createElement("B");
      node->insertLast(foreign->createTextNode("foreign"));
      Node* parent = pickParent();
      if (parent) {
        parent->insertLast(node);
        parent->insertBefore(node, childOf(parent));
        parent->insertFirst(foreign);
        parent->insertAfter(other_, childOf(parent));
        document_->canContain(parent, node);
      }
      if (Text* text = pickText()) text->splice(node, 0, 1, choices_.chance(2));
      if (node->getParentNode() || foreign->getParentNode() || other_->getParentNode()) fault_ = "a stranger is taken";
      if (node->getDocument() != foreign) fault_ = "a stranger is adopted";
      node->releaseRef(true);
      dom->deleteDocument(foreign);
    }
    DOM::destroyDOM(dom);
  }

  void select() {
    last_ = "select";
    if (choices_.chance(4)) return document_->eraseSelections();
    document_->select(pick(), static_cast<unsigned>(offset() + 1), pick(), static_cast<unsigned>(offset() + 1),
                      choices_.chance(3) ? 1 : 0);
  }

  void moveCursor() {
    last_ = "cursor";
    Node* node = pick();
    if (choices_.chance(2)) {
      document_->setLayoutCursor(node, offset());
    } else {
      document_->setSourceCursor(choices_.chance(8) && !held_.empty() ? held_[choices_.below(held_.size())] : node,
                                 offset());
    }
  }

  void switchRecording() {
    last_ = "switch recording";
    switch (choices_.below(8)) {
      case 0:
        return document_->enableRecord(false);
      case 1:
        document_->clearRecord();
        undo_.clear();
        redo_.clear();
        return;
      case 2:
      case 3:
        return document_->suspendRecord(true);
      case 4:
      case 5:
        return document_->suspendRecord(false);
      default:
        return document_->enableRecord(true);
    }
  }

  void release() {
    last_ = "release";
    if (Node* run = takeHeld()) releaseRun(run);
  }

  void ask() {
    last_ = "questions";
    document_->getErrorList();
    for (Node* n : nodes_) {
      document_->isSelected(n);
      document_->isEmptyNode(n, choices_.chance(2));
    }
    Node* node = nullptr;
    int at = 0;
    document_->getLayoutCursor(&node, &at);
    document_->getSourceCursor(&node, &at);
    if (choices_.chance(2)) document_->clearErrors();
  }

  void load() {
    last_ = "load";
    std::string page;
    do {
      page = pages_.next();
    } while (RandomPage::mayDeclare(page));
    // Rows so wide that saved states keep them in groups of pieces.
    constexpr int kWide = 500;
    if (++loads_ % 4 == 2) {
      for (int i = 0; i < kWide; ++i) page += i % 3 ? "<HR>" : "<P>x";
    }
    document_->createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, choices_.chance(2));
    document_->clearUpdateFlag();
    // The reading may have saved a state of its own.
    document_->clearRecord();
    undo_.clear();
    redo_.clear();
    nodes_ = treeNodes();
    mostNodes_ = std::max(kMostNodes, 2 * nodes_.size());
  }

  // --- history ------------------------------------------------------------------------------------------------------

  void noteRecord(const State& before) {
    undo_.push_back(before);
    if (undo_.size() > kDepth) undo_.pop_front();
    redo_.clear();
  }

  void stepHistory(std::deque<State>& from, std::deque<State>& to, std::size_t count, const State& before, bool back) {
    const bool steps = !from.empty();
    if (steps) {
      to.push_back(before);
      expected_ = from.back();
      from.pop_back();
      for (std::size_t i = 1; i < count && !from.empty(); ++i) {
        to.push_back(expected_);
        expected_ = from.back();
        from.pop_back();
      }
    }
    const int left = back ? document_->undo(static_cast<int>(count)) : document_->redo(static_cast<int>(count));
    if (left != static_cast<int>(from.size())) fault_ = "the number of steps left is wrong";
    if (!steps || !fault_.empty()) return;
    const State now = state();
    if (now.source != expected_.source) {
      fault_ = "the source of the restored state is\n" + now.source + "\ninstead of\n" + expected_.source + "\n";
    } else if (now.cursor != expected_.cursor) {
      fault_ = "restored cursor " + now.cursor + " instead of " + expected_.cursor;
    } else if (now.selection != expected_.selection) {
      fault_ = "restored selection " + now.selection + " instead of " + expected_.selection;
    }
  }

  // Written from a copy as often as not, so that what is to be written anew is so at the time of the record too.
  State state() {
    State state;
    Node* root = document_->getDocumentElement();
    if (!root) return state;
    if (choices_.chance(2)) {
      state.source = written(root);
    } else {
      Node* copy = root->makeClone(/*deep=*/true);
      copy->addRef(true);
      state.source = written(copy);
      copy->releaseRef(true);
    }
    Node* node = nullptr;
    int at = 0;
    document_->getLayoutCursor(&node, &at);
    // Restoring passes a cursor in a text without layout presence on to the parent.
    while (node && node->getNodeType() == Node::NODE_TEXT && node->isOffspringOf(root) &&
           static_cast<Text*>(node)->getTextType() == Text::TEXT_FORMATTING) {
      at = node->getParentNode()->getChildIndex(node);
      node = node->getParentNode();
    }
    state.cursor = place(node, at);
    const auto& selections = document_->getSelections();
    if (selections.size() == 1) {
      const Document::_selection& s = *selections.front();
      std::string start = place(s.startNode, static_cast<int>(s.startOffset));
      std::string end = place(s.endNode, static_cast<int>(s.endOffset));
      // An edit can turn the ends around; a restored selection has them in order again.
      if (end < start) start.swap(end);
      if (start != "none" && end != "none") state.selection = start + " to " + end;
    }
    return state;
  }

  std::string written(Node* node) const {
    const char* text = document_->getSourceBuf(node, Document::SOURCE_ALL, /*compact=*/false);
    return std::string(text, document_->getSourceBufLen(nullptr, Document::SOURCE_ALL, /*compact=*/false));
  }

  // The way down to a node; the root counts as no place, as a record keeps none there.
  std::string place(Node* node, int at) const {
    std::string way;
    Node* root = document_->getDocumentElement();
    if (!node || node == root || !node->isOffspringOf(root)) return "none";
    for (; node != root; node = node->getParentNode()) {
      way = "/" + std::to_string(node->getParentNode()->getChildIndex(node)) + way;
    }
    return way + ":" + std::to_string(at);
  }

  // --- checks -------------------------------------------------------------------------------------------------------

  std::string check() {
    std::unordered_set<const Node*> alive;
    std::string fault = treeHolds(document_->getDocumentElement(), alive);
    if (!fault.empty()) return fault;
    for (const Node* n : alive) {
      if (n->getDocument() && n->getDocument() != document_) return "a node of another document";
    }
    fault = treeHolds(other_->getDocumentElement(), alive);
    if (!fault.empty()) return "the other document: " + fault;
    forgetTaken();
    for (Node* top : held_) {
      fault = treeHolds(top, alive);
      if (!fault.empty()) return "held: " + fault;
    }
    Node* cursor = nullptr;
    document_->getLayoutCursor(&cursor, nullptr);
    if (cursor && !isAlive(cursor, alive)) return "the cursor stands on a dead node";
    for (const Document::_selection* s : document_->getSelections()) {
      if (!isAlive(s->startNode, alive) || !isAlive(s->endNode, alive)) return "a selection ends on a dead node";
    }
    if (document_->canUndo() != static_cast<int>(undo_.size())) return "canUndo is wrong";
    if (document_->canRedo() != static_cast<int>(redo_.size())) return "canRedo is wrong";
    return {};
  }

  // A node may live outside of what the host knows: the document holds the node that the cursor was in, error packets
  // hold theirs. A sanitizer tells whether it does.
  static bool isAlive(Node* node, const std::unordered_set<const Node*>& known) {
    if (known.count(node)) return true;
    const int count = node->addRef(false);
    node->dropRef(false);
    return count >= 1;
  }

  // --- nodes --------------------------------------------------------------------------------------------------------

  // By the lists: the links lead to strays of replaceChild as well.
  std::vector<Node*> treeNodes() const { return nodesOf(document_); }
  static std::vector<Node*> nodesOf(Document* document) {
    std::vector<Node*> nodes;
    if (Node* root = document->getDocumentElement()) nodes.push_back(root);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const int count = static_cast<int>(nodes[i]->getNumOfChildNodes());
      for (int k = 0; k < count; ++k) nodes.push_back(nodes[i]->getChildNode(k));
    }
    return nodes;
  }

  Node* pick() { return nodes_.empty() ? nullptr : nodes_[choices_.below(nodes_.size())]; }
  // A node that has a parent.
  Node* pickChild() { return nodes_.size() < 2 ? nullptr : nodes_[1 + choices_.below(nodes_.size() - 1)]; }
  // An element as a rule; the base lets any node have children.
  Node* pickParent() {
    for (int i = 0; i < 8; ++i) {
      Node* node = pick();
      if (node && (node->getNodeType() == Node::NODE_ELEMENT || choices_.chance(64))) return node;
    }
    return nullptr;
  }
  Text* pickText() {
    for (int i = 0; i < 8; ++i) {
      Node* node = pick();
      if (node && node->getNodeType() == Node::NODE_TEXT) return static_cast<Text*>(node);
    }
    return nullptr;
  }
  Node* childOf(Node* parent) {
    if (!parent || !parent->hasChildNodes()) return nullptr;
    return parent->getChildNode(static_cast<int>(choices_.below(parent->getNumOfChildNodes())));
  }
  int offset() { return static_cast<int>(choices_.below(10)) - 1; }

  Element* newElement() {
    static constexpr const char* kNames[] = {"B",    "P",    "DIV",   "FONT",  "SPAN", "UL",   "LI",  "TABLE",
                                             "TR",   "TD",   "TBODY", "A",     "PRE",  "BR",   "IMG", "FORM",
                                             "BODY", "HEAD", "EM",    "FRAME", "X",    "HTML", "DL",  "ZELX:LOOP"};
    return document_->createElement(kNames[choices_.below(24)]);
  }
  Node* newNode() {
    switch (choices_.below(5)) {
      case 0:
      case 1:
        return newElement();
      case 2:
      case 3: {
        Text* text = document_->createTextNode(choices_.chance(4) ? "" : "typed ");
        if (choices_.chance(6)) text->setTextType(static_cast<Text::TextType>(choices_.below(3)));
        return text;
      }
      default:
        return document_->createComment("note");
    }
  }

  // The head of a run of parsed nodes, or null.
  Node* fragment() {
    std::string page;
    do {
      page = pages_.next().substr(0, 20 + choices_.below(100));
    } while (RandomPage::mayDeclare(page));
    Element* holder = document_->createTemporaryElement();
    document_->createNodes(page.data(), static_cast<unsigned>(page.size()), holder, choices_.chance(4));
    Node* run = holder->removeChildren(nullptr, nullptr);
    holder->releaseRef(true);
    return run;
  }

  // Takes a run that was cut out of a tree into the host's keeping, each node by itself.
  void hold(Node* run) {
    while (run) {
      Node* next = run->getNextSibling();
      run->isolate(Node::ISOLATE_NEXT);
      held_.push_back(run);
      run = next;
    }
  }
  Node* takeHeld() {
    if (held_.empty()) return nullptr;
    const std::size_t i = choices_.below(held_.size());
    Node* node = held_[i];
    held_.erase(held_.begin() + static_cast<std::ptrdiff_t>(i));
    return node;
  }
  // A stray is taken along by a run that it is linked to.
  void forgetTaken() {
    std::erase_if(held_, [](const Node* top) { return top->getParentNode() != nullptr; });
  }
  void releaseRun(Node* node) {
    if (choices_.chance(2)) {
      document_->deleteNodes(node);
    } else {
      node->releaseRef(true);
    }
  }
  void releaseAll() {
    while (Node* node = takeHeld()) releaseRun(node);
  }

  Choices& choices_;
  SnapshotCheck snapshots_;
  unsigned loads_ = 0;
  std::size_t mostNodes_ = kMostNodes;
  unsigned long steps_ = 0;
  RandomPage pages_;
  DOM* dom_;
  Document* document_ = nullptr;
  Document* other_ = nullptr;
  std::vector<Node*> nodes_;  // of the tree, before the step
  std::vector<Node*> held_;   // taken out of the tree, one reference each
  std::deque<State> undo_;
  std::deque<State> redo_;
  State expected_;
  std::string fault_;
  const char* last_ = "";
};

}  // namespace zeldom40::fuzz
