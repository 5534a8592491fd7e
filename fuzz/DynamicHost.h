// A host that edits pages of dynamic elements, controls and visuals at random, and looks after each step whether what
// a save would write is what the edited tree stands for.
#pragma once

#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "fuzz/EditHost.h"

namespace zeldom40::fuzz {

// Answers for the types of some paths, and looks whether each answer comes back once.
class CountingTypes : public JavaTypeLookupIF {
 public:
  char* lookupType(const char* path, const char*) const override {
    return answer(std::strstr(path, "[]") ? "shop.Item" : nullptr);
  }
  char* lookupGetter(const char*, const char* property) const override {
    return answer(std::strcmp(property, "name") == 0 ? "fetchName" : nullptr);
  }
  void freeResult(char* text) const override {
    if (text ? out_.erase(text) != 1 : --nulls_ < 0) wrong_ = true;
    std::free(text);
  }
  bool isEven() const { return !wrong_ && nulls_ == 0 && out_.empty(); }

 private:
  char* answer(const char* text) const {
    if (!text) {
      ++nulls_;
      return nullptr;
    }
    char* copy = ::strdup(text);
    out_.insert(copy);
    return copy;
  }

  mutable std::unordered_set<char*> out_;
  mutable int nulls_ = 0;
  mutable bool wrong_ = false;
};

// Makes an item for each control and each copy of one, and looks whether each goes once and is asked nothing more.
class CountingControls : public DTCDocument {
 public:
  DTCClientItem* createClientItem(Element* element) override {
    Item* item = make();
    item->setElement(element);
    return item;
  }
  DTCClientItem* copyClientItem(DTCClientItem* item) override {
    if (item && !isLive(item)) wrong_ = "copy of a dead item";
    return item ? make() : nullptr;
  }
  void destroyClientItem(DTCClientItem* item) override {
    if (!isLive(item)) wrong_ = "an item is destroyed twice";
    --live_;
    static_cast<Item*>(item)->live = false;
  }

  std::size_t live() const { return live_; }
  const std::string& wrong() const { return wrong_; }

 private:
  struct Item final : DTCClientItem {
    explicit Item(CountingControls& host) : controls(host) {}
    void setElement(Element* element) override {
      if (!live) controls.wrong_ = "a dead item is bound";
      DTCClientItem::setElement(element);
    }
    // Says what it stands for. The text of a control inside a dynamic element has no place of its own in a page, so
    // one that once said nothing would be found out when the page is read again.
    void getRuntimeData(MetaData* metaData) override {
      if (!live) controls.wrong_ = "a dead item is asked";
      const char* id = metaData->getElement()->getAttributeValue("ID");
      metaData->setRuntimeData((std::string("control ") + (id ? id : "")).c_str());
    }
    CountingControls& controls;
    bool live = true;
  };

  Item* make() {
    items_.push_back(std::make_unique<Item>(*this));
    ++live_;
    return items_.back().get();
  }
  static bool isLive(DTCClientItem* item) { return item && static_cast<Item*>(item)->live; }

  std::vector<std::unique_ptr<Item>> items_;
  std::size_t live_ = 0;
  std::string wrong_;
};

// One document. All edits leave pages that a reader takes for the tree that was written, so that a save, a load and a
// save must give the same text twice.
class DynamicHost {
 public:
  // An empty `page` stands for a random one.
  DynamicHost(DOM* dom, Choices& choices, std::string_view page = {}) : dom_(dom), choices_(choices), page_(page) {
    dom_->setJavaTypeLookupIF(choices_.chance(2) ? &types_ : nullptr);
    withControls_ = choices_.chance(2);
    document_ = open();
    load();
  }
  DynamicHost(const DynamicHost&) = delete;
  DynamicHost& operator=(const DynamicHost&) = delete;
  ~DynamicHost() {
    close(document_);
    dom_->setJavaTypeLookupIF(nullptr);
  }

  // One edit with the checks behind it. Returns what went wrong, empty if nothing did.
  std::string step() {
    nodes_.clear();
    Node* root = document_->getDocumentElement();
    for (Node* n = root; n; n = document_->findNextNode(n, root, false, false)) nodes_.push_back(n);
    if (nodes_.size() > kMostNodes) load();
    fault_.clear();
    const std::string before = expected_;
    const unsigned long countBefore = document_->getRecordCount();
    const std::size_t kind = choices_.below(kEdits);
    edit(kind);
    if (kind < kHistoryEdits) {
      if (document_->getRecordCount() != countBefore) noteRecord(before);
      // Ends the edit without laying anything out.
      document_->skipAdjust();
      document_->adjustNodes(nullptr, false);
    }
    if (fault_.empty()) check();
    if (fault_.empty()) fault_ = snapshots_.look(document_->getDocumentElement());
    return fault_.empty() ? fault_ : fault_ + "\n(after " + last_ + ")";
  }

  // Takes the whole history back, and closes the document.
  std::string unwind() {
    while (fault_.empty() && !undo_.empty()) {
      stepHistory(undo_, redo_, /*back=*/true);
      if (fault_.empty()) check();
    }
    if (!fault_.empty()) return fault_ + "\n(at the end)";
    close(document_);
    document_ = nullptr;
    for (const CountingControls* controls : {&controls_, &otherControls_}) {
      if (controls->live() != 0) return std::to_string(controls->live()) + " items are left";
      if (!controls->wrong().empty()) return controls->wrong();
    }
    return types_.isEven() ? std::string() : "a type was not given back once";
  }

 private:
  static constexpr std::size_t kMostNodes = 150;
  static constexpr std::size_t kDepth = 10;
  // Edits before this one may save a state.
  static constexpr std::size_t kHistoryEdits = 21;
  static constexpr std::size_t kEdits = 26;

  // --- pages --------------------------------------------------------------------------------------------------------

  Document* open() {
    Document* document = dom_->createDocument("HTML");
    if (withControls_) document->setDTCDocument(&controls_);
    document->addOutBoundBean("a", "shop.Page");
    return document;
  }
  void close(Document* document) {
    if (document == document_) snapshots_.clear();
    if (document) dom_->deleteDocument(document);
  }
  static void read(Document& document, std::string_view page) {
    document.createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, /*adjust=*/false);
    document.clearUpdateFlag();
    document.clearRecord();
  }

  void load() {
    last_ = "load";
    std::string page(page_);
    if (page.empty()) {
      page = "<HTML><BODY>";
      for (std::size_t n = 1 + choices_.below(4); n > 0; --n) page += flow();
      page += "</BODY></HTML>";
    }
    read(*document_, page);
    if (choices_.chance(2)) {
      // A page as the library saved it, so that its pairs are loaded ones.
      const std::string saved = written(*document_, document_->getDocumentElement());
      read(*document_, saved);
    }
    undo_.clear();
    redo_.clear();
    nodes_.clear();
    expected_ = savedByCopy();
  }

  // What may stand in a list item, a cell or the body.
  std::string flow() {
    static constexpr const char* kFlow[] = {
        "<UL DYNAMICELEMENT LOOPPROPERTY=\"a.b[]\" FONTTEXT=none><LI>x <ZELX:PROPERTY "
        "PROPERTY=\"a.b[].name\"></LI></UL>",
        "<OL><LI>plain</LI><LI>two</LI></OL>",
        "<UL DYNAMICELEMENT><LI>no loop</LI></UL>",
        "<TABLE DYNAMICELEMENT INNERLOOPPROPERTY=\"a.b[].c[]\" OUTERLOOPPROPERTY=\"a.b[]\"><TBODY><TR><TD>x</TD>"
        "<TD><ZELX:PROPERTY PROPERTY=\"a.b[].c[].d\"></TD></TR></TBODY></TABLE>",
        "<TABLE DYNAMICELEMENT INNERLOOPPROPERTY=\"a.d()\" INNERLOOPDIRECTION=horizontal INNERLOOPSTARTINDEX=1>"
        "<TBODY><TR><TD>x</TD><TD COLSPAN=2>y</TD></TR></TBODY></TABLE>",
        "<ZELX:LOOP LOOPPROPERTY=\"a.b[].c[]\"><B>x</B><ZELX:PROPERTY PROPERTY=\"a.b[].c[].d\"></ZELX:LOOP>",
        "<ZELX:TEXT LOOPPROPERTY=\"a.d()\" DELIMITER=\", \" LASTDELIMITER=\"--&gt;\"><ZELX:PROPERTY PROPERTY=\"a.d()\">"
        "</ZELX:TEXT>",
        "<SELECT DYNAMICELEMENT LOOPPROPERTY=\"a.b[]\" ITEMPROPERTY=\"a.b[].name\"><OPTION>x</OPTION></SELECT>",
        "<INPUT DYNAMICELEMENT TYPE=radio VALUEPROPERTY=\"a.v\" CONSTDEFAULTPROPERTY=y>",
        "<INPUT DYNAMICELEMENT TYPE=password>",
        "<IMG DYNAMICELEMENT PROPERTY=\"a.src\" ALT=\"-->\">",
        "<TEXTAREA DYNAMICELEMENT NAMEPROPERTY=\"a.n\">text</TEXTAREA>",
        "<OBJECT DTC ID=c></OBJECT>",
        "<OBJECT DTC></OBJECT>",
        "<ZELX:ATV FONTTEXT=v><%= a %></ZELX:ATV>",
        "<%= a.getB() %>",
        "<!-- a comment -->",
        "<SCRIPT><!--\r\nx--> y </SCRIPT>",
        "<my:tag x=1>in</my:tag>",
        "<B>bold <I>it</I></B>",
        "<DIV>block</DIV>",
        "words &amp; more",
    };
    return kFlow[choices_.below(std::size(kFlow))];
  }

  // --- edits --------------------------------------------------------------------------------------------------------

  void edit(std::size_t kind) {
    switch (kind) {
      case 0:
      case 1:
      case 2:
        return attributes();
      case 3:
      case 4:
      case 5:
        return editText();
      case 6:
      case 7:
      case 8:
        return insertFlow();
      case 9:
        return insertCopy();
      case 10:
      case 11:
        return move();
      case 12:
        return erase();
      case 13:
        return editComment();
      case 14:
        return mark();
      case 15:
        return visual();
      case 16:
        last_ = "setDTC";
        if (Element* object = pick({"OBJECT"})) object->setDTC(true);
        return;
      case 17:
        return dissolve();
      case 18:
        last_ = "record";
        return document_->record();
      case 19:
        return paste();
      case 20:
        return nestVisual();
      case 21:
      case 22:
        return stepHistory(undo_, redo_, /*back=*/true);
      case 23:
        return stepHistory(redo_, undo_, /*back=*/false);
      case 24:
        return ask();
      default:
        last_ = "clearUpdateFlag";
        if (choices_.chance(6)) return load();
        return document_->clearUpdateFlag();
    }
  }

  void attributes() {
    last_ = "attributes";
    Element* element = pick({"UL", "OL", "LI", "TABLE", "TD", "ZELX:LOOP", "ZELX:TEXT", "ZELX:PROPERTY", "SELECT",
                             "INPUT", "IMG", "OBJECT", "B", "DIV"});
    if (!element) return;
    static constexpr const char* kNames[] = {"ID",   "LOOPPROPERTY",      "PROPERTY",           "VARPREFIX",
                                             "TYPE", "INNERLOOPPROPERTY", "INNERLOOPDIRECTION", "DELIMITER"};
    static constexpr const char* kValues[] = {"v",    "a.b[]",    "a.b[].c[]", "a.d()",     "a.b[].name",
                                              "text", "checkbox", "-->",       "&amp;gt;-", "horizontal"};
    const char* name = kNames[choices_.below(std::size(kNames))];
    if (choices_.chance(4)) {
      element->deleteAttribute(name);
    } else {
      element->setAttribute(name, kValues[choices_.below(std::size(kValues))], /*notify=*/true);
    }
  }

  void editText() {
    last_ = "text";
    Text* text = pickText();
    if (!text) return;
    static constexpr const char* kTexts[] = {"typed", "-->", "--&gt;", "\xff", "a b"};
    const char* typed = kTexts[choices_.below(std::size(kTexts))];
    switch (choices_.below(3)) {
      case 0:
        return text->setData(typed, /*notify=*/true);
      case 1:
        text->insert(static_cast<int>(choices_.below(3)), typed, false, Text::SPACE_NORMAL);
        return;
      default:
        text->replace(0, static_cast<int>(choices_.below(3)), typed, false);
    }
  }

  void editComment() {
    last_ = "comment";
    for (Node* n : nodes_) {
      if (n->getNodeType() != Node::NODE_COMMENT || choices_.chance(2)) continue;
      static_cast<Comment*>(n)->setData(choices_.chance(2) ? "-- edited --" : "-- --&gt; --");
      return;
    }
  }

  void insertFlow() {
    last_ = "insert";
    Element* place = pick({"LI", "TD", "BODY", "ZELX:LOOP", "ZELX:TEXT", "DIV"});
    if (!place) return;
    Element* holder = document_->createTemporaryElement();
    const std::string text = flow();
    document_->createNodes(text.data(), static_cast<unsigned>(text.size()), holder, /*adjust=*/false);
    while (Node* first = holder->getFirstChild()) {
      holder->removeChild(first);
      put(place, first);
    }
    holder->releaseRef(true);
  }

  void put(Element* place, Node* node) {
    Node* ref = place->getFirstChild();
    for (std::size_t n = choices_.below(4); ref && n > 0; --n) ref = ref->getNextSibling();
    if (choices_.chance(2)) {
      place->insertBefore(node, ref);
    } else {
      place->insertLast(node);
    }
  }

  // Beside itself or in itself: the copies share what generates them.
  void insertCopy() {
    last_ = "copy";
    Element* original = pick({"UL", "OL", "TABLE", "ZELX:LOOP", "ZELX:TEXT", "SELECT", "OBJECT"});
    Element* place = pick({"LI", "TD", "BODY", "DIV"});
    if (!original || !place) return;
    Node* copy = original->makeClone(/*deep=*/true);
    copy->addRef(true);
    put(place, copy);
  }

  void move() {
    last_ = "move";
    Element* item = pick({"UL", "OL", "TABLE", "ZELX:LOOP", "ZELX:TEXT", "ZELX:PROPERTY", "SELECT", "OBJECT", "B"});
    Element* place = pick({"LI", "TD", "BODY", "DIV"});
    if (!item || !place || place == item || place->isOffspringOf(item)) return;
    item->getParentNode()->removeChild(item);
    put(place, item);
  }

  void erase() {
    last_ = "deleteNodes";
    if (Element* element = pick({"LI", "UL", "TD", "ZELX:PROPERTY", "ZELX:LOOP", "SELECT", "OBJECT", "B", "DIV"}))
      document_->deleteNodes(element);
  }

  void dissolve() {
    last_ = "removeElement";
    if (Element* element = pick({"B", "I", "ZELX:LOOP", "ZELX:TEXT"})) document_->removeElement(element, true);
  }

  void mark() {
    last_ = "setDynamicElement";
    if (Element* element = pick({"UL", "OL", "TABLE", "SELECT", "INPUT", "IMG", "TEXTAREA"}))
      element->setDynamicElement(choices_.chance(2));
  }

  void visual() {
    last_ = "setATV";
    Element* shown = pick({"JSP:EXPRESSION"});
    if (!shown) return;
    if (Element* visual = choices_.chance(2) ? shown->getATV() : nullptr) {
      switch (choices_.below(6)) {
        case 0:
        case 1:
          visual->setAttribute("FONTTEXT", "other", /*notify=*/true);
          return;
        case 2:
          shown->setATV(nullptr);
          return;
        case 3:
          document_->deleteNodes(visual);
          return;
        case 4:
          document_->removeElement(visual, choices_.chance(2));
          return;
        default:
          // It shows one element.
          if (Element* another = pick({"JSP:EXPRESSION"}); another != shown && another->setATV(visual))
            fault_ = "a visual shows two elements";
          return;
      }
    }
    Element* made = document_->createElement("ZELX:ATV");
    made->setAttribute("FONTTEXT", "new", /*notify=*/false);
    // What stood in the page may stand in a visual, which writes no more than its tag.
    if (Element* existing = choices_.chance(3) ? pick({"B", "UL", "JSP:EXPRESSION"}) : nullptr; existing) {
      Node* copy = existing->makeClone(/*deep=*/true);
      copy->addRef(true);
      made->insertLast(copy);
    }
    if (!shown->setATV(made)) made->releaseRef(true);
  }

  // An element inside of its own visual, made from either end, is refused.
  void nestVisual() {
    last_ = "a visual inside itself";
    Element* shown = pick({"JSP:EXPRESSION"});
    if (!shown) return;
    Node* parent = shown->getParentNode();
    Node* behind = shown->getNextSibling();
    parent->removeChild(shown);
    if (Element* visual = choices_.chance(2) ? shown->getATV() : nullptr) {
      Node* place = visual->hasChildNodes() && choices_.chance(2) ? visual->getFirstChild() : visual;
      place->insertLast(shown);
      if (shown->getParentNode()) fault_ = "an element stands in its visual";
    } else {
      Element* around = document_->createElement("ZELX:ATV");
      around->insertLast(shown);
      if (shown->setATV(around)) fault_ = "what holds an element became its visual";
      around->removeChild(shown);
      around->releaseRef(true);
    }
    if (fault_.empty()) parent->insertBefore(shown, behind);
  }

  // From a document with controls of its own or of the same host, which ends at once.
  void paste() {
    last_ = "paste";
    Element* place = pick({"LI", "TD", "BODY", "ZELX:LOOP", "ZELX:TEXT", "DIV"});
    if (!place) return;
    Document* other = dom_->createDocument("HTML");
    if (withControls_) other->setDTCDocument(choices_.chance(2) ? &otherControls_ : &controls_);
    const std::string page = "<HTML><BODY>" + flow() + "</BODY></HTML>";
    read(*other, page);
    if (choices_.chance(2)) {
      const std::string saved = written(*other, other->getDocumentElement());
      read(*other, saved);
    }
    Node* body = other->getElementsByTagName("BODY").toFirstNode();
    for (Node* child = body->getFirstChild(); child;) {
      Node* next = child->getNextSibling();
      if (choices_.chance(2)) {
        child = child->makeClone(/*deep=*/true);
        child->addRef(true);
      } else {
        body->removeChild(child);
      }
      put(place, child);
      child = next;
    }
    dom_->deleteDocument(other);
  }

  // What a host may ask in between leaves everything as it is for the next save.
  void ask() {
    last_ = "questions";
    switch (choices_.below(4)) {
      case 0:
        document_->getErrorList();
        document_->clearErrors();
        return;
      case 1:
        if (Element* element = pick({"UL", "TABLE", "ZELX:LOOP", "ZELX:PROPERTY", "SELECT", "OBJECT", "INPUT"}))
          written(*document_, element);
        return;
      case 2:
        if (Element* element = pick({"UL", "TABLE", "ZELX:LOOP", "BODY"})) {
          document_->getSourceBuf(element, Document::SOURCE_CONTENT, choices_.chance(2));
        }
        return;
      default:
        written(*document_, document_->getDocumentElement());
    }
  }

  // --- history ------------------------------------------------------------------------------------------------------

  void noteRecord(const std::string& before) {
    undo_.push_back(before);
    if (undo_.size() > kDepth) undo_.pop_front();
    redo_.clear();
  }

  void stepHistory(std::deque<std::string>& from, std::deque<std::string>& to, bool back) {
    last_ = back ? "undo" : "redo";
    if (from.empty()) return;
    to.push_back(expected_);
    const std::string restored = from.back();
    from.pop_back();
    if (back) {
      document_->undo(1);
    } else {
      document_->redo(1);
    }
    differs("the restored page", savedByCopy(), restored);
    // Each control learned of the element that it stands for now.
    Node* root = document_->getDocumentElement();
    for (Node* n = root; n; n = document_->findNextNode(n, root, false, false)) {
      if (n->getNodeType() != Node::NODE_ELEMENT) continue;
      auto* element = static_cast<Element*>(n);
      DTCClientItem* item = element->getMetaData() ? element->getMetaData()->getClientItem() : nullptr;
      if (item && item->getElement() != element) fault_ = "an item stands for another element";
    }
  }

  // --- checks -------------------------------------------------------------------------------------------------------

  static std::string written(const Document& document, Node* node) {
    const char* text = document.getSourceBuf(node, Document::SOURCE_ALL, /*compact=*/false);
    return std::string(text, document.getSourceBufLen(nullptr, Document::SOURCE_ALL, /*compact=*/false));
  }

  // From a copy, so that what is stale stays so. All that is not stale must be what it would be if it were.
  std::string savedByCopy() {
    Node* copy = document_->getDocumentElement()->makeClone(/*deep=*/true);
    copy->addRef(true);
    std::string saved = written(*document_, copy);
    for (Node* n = copy; n; n = document_->findNextNode(n, copy, false, false)) {
      if (n->getNodeType() != Node::NODE_ELEMENT) continue;
      if (MetaData* metaData = static_cast<Element*>(n)->getMetaData()) metaData->setDirty(true, /*runtimeOnly=*/false);
    }
    differs("what is kept", saved, written(*document_, copy));
    copy->releaseRef(true);
    return saved;
  }

  void check() {
    expected_ = savedByCopy();
    if (!controls_.wrong().empty()) fault_ = controls_.wrong();
    if (!fault_.empty() || !choices_.chance(3)) return;
    if (choices_.chance(2)) differs("the page itself", written(*document_, document_->getDocumentElement()), expected_);
    // Pages of others leave out end tags, so that an insertion may be read in another place.
    if (!page_.empty()) return;
    Document* again = open();
    read(*again, expected_);
    differs("saved again", written(*again, again->getDocumentElement()), expected_);
    differs("and once more", written(*again, again->getDocumentElement()), expected_);
    close(again);
  }

  void differs(const char* what, const std::string& is, const std::string& should) {
    if (is != should && fault_.empty()) fault_ = std::string(what) + ":\n" + is + "\ninstead of\n" + should;
  }

  // --- nodes --------------------------------------------------------------------------------------------------------

  Element* pick(std::initializer_list<const char*> names) {
    std::vector<Element*> found;
    for (Node* n : nodes_) {
      if (n->getNodeType() != Node::NODE_ELEMENT) continue;
      for (const char* name : names) {
        if (n->getName() == name) found.push_back(static_cast<Element*>(n));
      }
    }
    return found.empty() ? nullptr : found[choices_.below(found.size())];
  }
  Text* pickText() {
    std::vector<Text*> found;
    for (Node* n : nodes_) {
      if (n->getNodeType() != Node::NODE_TEXT) continue;
      const std::string& around = n->getParentNode()->getName();
      if (around == "LI" || around == "TD" || around == "B" || around == "I" || around == "DIV")
        found.push_back(static_cast<Text*>(n));
    }
    return found.empty() ? nullptr : found[choices_.below(found.size())];
  }

  DOM* dom_;
  Choices& choices_;
  std::string_view page_;
  CountingTypes types_;
  CountingControls controls_;
  CountingControls otherControls_;
  bool withControls_ = false;
  SnapshotCheck snapshots_;
  Document* document_ = nullptr;
  std::vector<Node*> nodes_;
  std::deque<std::string> undo_;
  std::deque<std::string> redo_;
  std::string expected_;  // what a save would write
  std::string fault_;
  const char* last_ = "";
};

// Of a fuzzer's bytes, those that are a page of any quality; empty if they are edits.
inline std::string_view hostilePage(std::string_view bytes) {
  return bytes.substr(0, 8).find('<') == std::string_view::npos ? std::string_view() : bytes;
}

// Any bytes as a page: a save may give new pairs, and what it makes of bad structure is read in another way once or
// twice, but then a load and a save change nothing. Returns what went wrong.
inline std::string saveIsStable(DOM* dom, std::string_view page) {
  const auto saved = [dom](std::string_view read) {
    Document* document = dom->createDocument("HTML");
    Node* root = document->createNodes(read.data(), static_cast<unsigned>(read.size()), nullptr, /*adjust=*/false);
    document->getErrorList();
    const char* written = document->getSourceBuf(root, Document::SOURCE_ALL, /*compact=*/false);
    std::string out(written, document->getSourceBufLen(nullptr, Document::SOURCE_ALL, /*compact=*/false));
    dom->deleteDocument(document);
    return out;
  };
  std::string text(page);
  for (int i = 0; i < 10; ++i) {
    std::string again = saved(text);
    if (again == text) return {};
    text = std::move(again);
  }
  return "no save is the last one:\n" + text;
}

}  // namespace zeldom40::fuzz
