// Internal. The state of one page parse, shared by the files that read its parts.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "dom/dtd/DTDFrame.h"
#include "dom/html/AttributeNames.h"
#include "dom/html/HTMLLexer.h"
#include "dom/html/HTMLParser.h"
#include "dom/html/PageNames.h"
#include "dom/source/CharHelpers.h"
#include "dom/source/PlainText.h"
#include "dom/tree/AttributeBlock.h"
#include "dom/tree/Element.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/PageBuffer.h"
#include "dom/tree/Text.h"

namespace zeldom40 {

class Document;

// The main loop runs over tokens and hands each "<" to the reader of what stands behind it:
//   PageParser.cpp    main loop, end of input
//   TextCollector.cpp running text
//   TagReader.cpp     begin tags, end tags, CDATA content, instructions, sections
//   PlainTags.cpp     tags without anything unusual, which need no tokens
//   Placement.cpp     open nodes, what may stand where, implied elements
//   Declaration.cpp   document type declarations
//   ServerContent.cpp comments and server tags
class PageParser {
 public:
  PageParser(HTMLLexer& lexer, ParserType::_dtd_frame* frame, std::vector<Node*>* sharedStack, Document* document);
  PageParser(const PageParser&) = delete;
  PageParser& operator=(const PageParser&) = delete;

  int parse(LexerType::LexToken stop);
  // What a tag says beside the attributes that count.
  struct TagDetails {
    std::vector<AttributeBlock::Entry> repeats;     // of an attribute that it has
    std::vector<AttributeBlock::Entry> superseded;  // in a directive, by a later one of that name
    std::uint32_t attributesFrom = 0;               // where the name of a directive or include ends; 0: no such tag
    bool endsInConstruct = false;                   // the end of server code or a comment ends the tag
  };
  // Instead of a parse: the attributes of a tag that a parse of the lexer's page read before, as it read them. Makes no
  // node. Valid until the next call. `details` may be null.
  const std::vector<AttributeBlock::Entry>& readAttributes(Slice tag, TagDetails* details);
  // Whether something came in that may call for metadata.
  bool mustBeSorted() const { return mustBeSorted_; }
  // The parse is over, and nothing else will be read: what was learnt of names serves the next page.
  void keepNames() {
    if (open_.empty()) PageNames::keep(std::move(ownNames_));
  }
  void setLenient(bool lenient) { lenient_ = lenient; }
  void pushNode(Node* node);
  void popNode();

 private:
  using Token = LexerType::LexToken;
  static constexpr std::uint32_t NO_POSITION = LexRecord::NO_POSITION;
  using Path = std::vector<const SharedName*>;

  // How an open node answers what it can contain.
  enum class Answers {
    BY_MODEL,   // by its definition and the exceptions of all elements around it
    ALIKE,      // undefined: the same for everybody
    AS_OWNER,   // transparent: as the nearest open element that is not
    BY_ITSELF,  // a target that is no ordinary element: the node is asked
  };

  // An open node; the tree parent of each is the one below it.
  struct Open {
    Answers answers = Answers::BY_ITSELF;
    bool alikeAnswer = false;
    bool endOmittable = false;
    bool isElement = false;
    bool isLoop = false;
    bool holdsScript = false;
    int owner = 0;            // AS_OWNER: whom to ask
    int previousOfName = -1;  // the next open node below that has the same name
    int tableBarrier = -1;    // nearest open table from here down that an item's end tag cannot cross
    std::uint32_t time = 0;   // when it was opened
    PageName* name = nullptr;
    const ElementDefinition* definition = nullptr;
    const ContentTable::OpenSets* sets = nullptr;
    const ContentTable::Answer* const* row = nullptr;  // BY_MODEL: what is known of its answers
    Node* passed = nullptr;                            // loop: last child that a search for content has passed over
  };

  // What is to be placed.
  struct Subject {
    Node* node = nullptr;
    const ElementDefinition* definition = nullptr;
    int tableId = -1;
    int place = -1;  // in a row of answers
    bool isText = false;
    int textType = Text::TEXT_NORMAL;
  };

  // --- tokens (PageParser.cpp) --------------------------------------------------------------------------------------
  LexRecord take() {
    const LexRecord token = lexer_.nextToken();
    textStart_ = lastEnd_;
    lastEnd_ = token.kind == LexerType::LEX_EOF || token.end == NO_POSITION ? lexer_.length() : token.end;
    return token;
  }
  void unget(const LexRecord& token) {
    if (token.kind != LexerType::LEX_EOF) lastEnd_ = token.start;
    lexer_.ungetToken(token);
  }
  Token peek(std::size_t n = 0) { return lexer_.peekToken(n).kind; }
  std::uint32_t endOf(const LexRecord& token) const { return token.end == NO_POSITION ? lexer_.length() : token.end; }
  Slice sliceOf(std::uint32_t start, std::uint32_t end) const { return {start, end > start ? end - start : 0}; }
  // Takes tokens from `first` on until one of the stop kinds or the end; the stop token goes back unless `keepStop`.
  // Returns the source from the start of `first` to the start of the stop token (to its end with `keepStop`).
  Slice collectUntil(const LexRecord& first, Token stop1, Token stop2, Token stop3, bool keepStop = false);
  std::uint32_t nextStop(std::uint32_t from, Token stop1, Token stop3) const;
  bool dispatch();
  void closeAll();

  // Unknown elements take no content: what one holds moves out behind it as it is closed. A run of them is gathered and
  // put in place where it ends; moved one by one, the innermost nodes would move once a level.
  class Hoister {
   public:
    // `node` is being closed; its last child may be the node closed before it.
    void close(Node* node, bool hoist);

   private:
    std::vector<Node*> runs_;  // innermost first
  };
  static bool isUnknown(const Node* node);

  // --- running text (TextCollector.cpp) -----------------------------------------------------------------------------
  void readByteOrderMark();
  void readTextRun();
  void placeText(Text* text, bool isSpace);
  void placeTextByQuestion(Text* text, bool isSpace);
  void addToText(const LexRecord& token);
  void addPiece(const LexRecord& token);
  void beginText(std::uint32_t start);
  void flushText();

  // --- tags (TagReader.cpp) -----------------------------------------------------------------------------------------
  struct BeginTag {
    PageName* name = nullptr;
    const ElementDefinition* definition = nullptr;
    std::uint32_t start = 0;
    std::uint32_t end = 0;
    bool selfClosed = false;
    bool caseSensitive = false;
    bool nameCase = false;
    bool attributeCase = false;
    bool bad = false;
    bool endsInConstruct = false;
  };
  void readBeginTag() {
    BeginTag tag;
    readTokensOf(tag);
    finishBeginTag(tag);
  }
  void readTokensOf(BeginTag& tag);
  void setTagName(BeginTag& tag, std::string_view written, std::size_t readable = 0);
  void openAttributes(BeginTag& tag);
  void setAttributeName(BeginTag& tag, Slice written);
  void finishBeginTag(const BeginTag& tag);
  void commitAttribute();
  static bool isDynamicMark(const AttributeBlock::Entry& attribute);
  void readCDATAContent(const PageName& name, std::uint32_t start);
  void readEndTag();
  void finishEndTag(PageName& name, std::string_view text, Slice raw);
  void closeAbove(int match);
  int findOpen(const PageName& name, bool omittable) const;
  void addStrayEndTag(PageName& name, Slice raw);
  void readCDATASection();
  void readProcessingInstruction();

  // --- the same, straight from bytes (PlainTags.cpp) -----------------------------------------------------------------
  bool standsAtTag() const {
    const char* const at = lexer_.text().data() + lexer_.position();
    return at[0] == '<' && (at[1] == '/' || isLetterByte(at[1]));
  }
  bool readPlainTag();
  bool readPlainBeginTag(std::uint32_t start);
  bool readPlainEndTag(std::uint32_t start);
  std::uint32_t endOfQuoted(std::uint32_t from, char quote);

  // --- declarations, server content ---------------------------------------------------------------------------------
  void readDeclaration();
  bool readSubset(Slice subset);
  // A server tag or an include, and the stretch that its attributes stand in.
  struct Directive {
    int id = 0;
    PageName* name = nullptr;
    std::uint32_t from = 0;
    std::uint32_t to = 0;
  };
  void readServerTag();
  // The name that a server tag of that kind goes by, and its identifier.
  struct ServerName {
    PageName* name = nullptr;
    int id = 0;
  };
  const ServerName& serverName(int id);
  Directive serverTagOf(Slice raw);
  void readComment(bool server);
  bool isInclude(Slice body, Directive& include);
  bool readMetaData(Slice begin, Slice body);
  void insertDirective(const Directive& directive, Slice raw);
  void collectAttributes(const Directive& directive);

  // --- placing (Placement.cpp) --------------------------------------------------------------------------------------
  void push(Node* node, PageName* name);
  void pop();
  PageName* nameOf(Node* node);
  void describe(Open& open, Node* node, int index);
  int top() const { return static_cast<int>(open_.size()) - 1; }
  Node* topNode() const { return nodes_->back(); }
  Element* openElement(int index) const;
  // With an empty begin tag: an element that others imply.
  Element* createElement(PageName& name, Slice begin = {});
  Subject textSubject(Node* text) const {
    Subject subject;
    subject.node = text;
    subject.isText = true;
    subject.tableId = ContentTable::textNameId(Text::TEXT_NORMAL);
    subject.place = textPlace_;
    return subject;
  }
  // Whether the open node at `index` can contain the subject, directly or below `implied` elements (outermost first).
  bool fits(int index, const Subject& subject, const Path*& implied) {
    const Open& open = open_[static_cast<std::size_t>(index)];
    const ContentTable::Answer* known = open.row && subject.place >= 0 ? open.row[subject.place] : nullptr;
    if (!known) return fitsByQuestion(index, subject, implied);
    implied = &direct_;
    if (ContentTable::excluded(open.sets, subject.tableId)) return false;
    if (known->allowed) {
      implied = &known->implied;
      return true;
    }
    return ContentTable::included(open.sets, subject.tableId);
  }
  // Whether the innermost open node is known to take it just so, the answer of nearly all questions.
  bool fitsDirectly(int place, int tableId) const {
    const Open& open = open_.back();
    const ContentTable::Answer* known = open.row && place >= 0 ? open.row[place] : nullptr;
    return known && known->impliesNothing && !ContentTable::excluded(open.sets, tableId);
  }
  bool fitsByQuestion(int index, const Subject& subject, const Path*& implied);
  int findAdopter(int from, const Subject& subject, PageName& name, const Path*& implied);
  void declarationsChanged();
  void placeElement(Element* element, PageName& name, bool selfClosed);
  void placeByQuestion(Element* element, PageName& name, bool selfClosed);
  void placeWithImplied(Node* node, PageName* name, const Path& implied, bool selfClosed);
  void placeMisfit(Element* element, PageName& name, bool selfClosed);
  void reopenChain(Node* chain, const Element* last, bool selfClosed);
  bool hasContentBeside(int index, const Node* chain);
  void insertLast(Node* node) { append(topNode(), node); }
  // Whether the target hangs in the page's tree does not change while its content comes in, so one record does.
  void append(Node* parent, Node* node) {
    if (!recorded_) recordOnce();
    NodeAccess::appendParsed(parent, node);
  }
  void recordOnce();
  // The kind of the elements of a name, with or without its definition; with one reference for the caller.
  NodeKind* kindOf(PageName& name, bool defined) {
    ElementDefinition* definition = defined ? name.definition : nullptr;
    if (definition != name.definition) return NodeKind::find(document_, lexer_.page(), name.name, definition);
    if (!name.kind) {
      names_.touch(name);
      name.kind = KindRef(NodeKind::find(document_, lexer_.page(), name.name, definition));
    }
    return name.kind.share();
  }

  HTMLLexer& lexer_;
  ParserType::_dtd_frame* frame_;
  TableUse tableUse_;
  ContentTable* table_;
  int textPlace_;  // of a normal text in a row of answers; -1 without a table
  Document* document_;
  bool lenient_ = false;
  std::unique_ptr<PageNames> ownNames_;
  PageNames& names_;
  std::vector<Node*> ownStack_;
  std::vector<Node*>* nodes_;
  std::vector<Open> open_;
  std::uint32_t time_ = 0;
  Path ownPath_;
  const Path direct_;
  int subsets_ = 0;
  bool mustBeSorted_ = false;
  bool recorded_ = false;  // an undo record was taken, or none is due
  std::array<ServerName, ID_JSP_DIRECTIVE - ID_JSP_SCRIPTLET + 1> serverNames_{};
  KindRef textKind_;
  KindRef commentKind_;
  std::uint32_t lastEnd_ = 0;    // where the token taken last ended
  std::uint32_t textStart_ = 0;  // and the one before it: bytes that a record leaves out belong to a text that begins
  // By type of metadata: from here on stands no end comment.
  std::uint32_t noPairEndFrom_[3] = {NO_POSITION, NO_POSITION, NO_POSITION};

  // The pending text: its source range, and its plain form where that does not follow from the range alone.
  bool pending_ = false;
  bool pendingAllSpace_ = false;
  bool pendingOwnForm_ = false;
  TextContext pendingContext_;
  std::uint32_t rawStart_ = 0;
  std::uint32_t rawEnd_ = 0;
  std::string pendingText_;
  bool lastWasSpace_ = false;   // the last token of text was white space
  bool trailingSpace_ = false;  // the text placed last ended in white space
  bool afterBreak_ = false;     // a block began or ended: leading white space shows nothing
  int preDepth_ = 0;

  // The attribute that is being read, and those of the tag so far.
  bool attributePending_ = false;
  AttributeBlock::Entry attribute_{};
  std::vector<AttributeBlock::Entry> attributes_;
  AttributeNames attributeNames_;  // filled for tags with many
  TagDetails* details_ = nullptr;  // who asks for more than attributes
  std::size_t readInVain_ = 0;     // bytes of values that were no plain ones
  std::string scratch_;
  const ElementDefinition* tagDefinition_ = nullptr;
  bool attributeError_ = false;
  bool hiddenInput_ = false;

  std::vector<Node*> remembered_;
};

// --- the steps of every tag, compiled into their callers: calls were a tenth of its cost ----------------------------

inline void PageParser::openAttributes(BeginTag& tag) {
  attributes_.clear();
  attributeNames_.clear();
  attributePending_ = attributeError_ = hiddenInput_ = false;
  tagDefinition_ = nullptr;
  tag.definition = nullptr;
}

// The tag's name was read; its attributes come.
inline void PageParser::setTagName(BeginTag& tag, std::string_view written, std::size_t readable) {
  // KEPT: a slash that is glued to the name goes, and does not close the tag.
  if (written.size() > 1 && written.back() == '/') written.remove_suffix(1);
  tag.name = &names_.find(written, readable);
  openAttributes(tag);
  tagDefinition_ = tag.name->definition;
  tag.definition = tagDefinition_;
  if (tag.name->group & GROUP_JSP_XML) {
    tag.caseSensitive = true;
    tag.nameCase = tagDefinition_->getName() != written;
  }
}

inline void PageParser::setAttributeName(BeginTag& tag, Slice written) {
  attributePending_ = true;
  attribute_ = {nullptr, written, {}, 0};
  if (!tag.definition || !tag.name->hasAttributes) return;
  const std::string_view text = written.in(lexer_.page());
  attribute_.definition = names_.findAttribute(*tag.definition, text, lexer_.length() - written.offset);
  if (tag.caseSensitive && attribute_.definition && attribute_.definition->getName() != text) tag.attributeCase = true;
}

inline void PageParser::placeElement(Element* element, PageName& name, bool selfClosed) {
  if (element->getElementDefinition() && fitsDirectly(name.ordinal, name.tableId)) {
    insertLast(element);
    if (!selfClosed && !name.emptyTag) push(element, &name);
  } else {
    placeByQuestion(element, name, selfClosed);
  }
}

inline void PageParser::push(Node* node, PageName* name) {
  const int index = static_cast<int>(open_.size());
  nodes_->push_back(node);
  open_.emplace_back();
  Open& open = open_.back();
  open.time = ++time_;
  open.name = name;
  open.previousOfName = name->lastOpen;
  name->lastOpen = index;
  const bool isElement = node->getNodeType() == Node::NODE_ELEMENT;
  if (index > 0 && table_ && name->definition && isElement && !(name->group & GROUP_LOOP) &&
      static_cast<Element*>(node)->getElementDefinition() == name->definition) {
    // Nearly every open node: what describe would find, from what is known of the name.
    const Open& below = open_[static_cast<std::size_t>(index) - 1];
    open.answers = Answers::BY_MODEL;
    open.isElement = true;
    open.endOmittable = name->endOmittable;
    open.tableBarrier = (name->group & GROUP_TABLE) && !open.endOmittable ? index : below.tableBarrier;
    open.definition = name->definition;
    open.sets = name->hasExceptions ? table_->extend(below.sets, name->definition) : below.sets;
    if (!name->row) name->row = table_->row(*name->definition);
    open.row = name->row;
    open.holdsScript = (name->group & GROUP_SCRIPT_DATA) != 0;
  } else {
    describe(open, node, index);
    open.holdsScript = isElement && (static_cast<Element*>(node)->getElementGroup() & GROUP_SCRIPT_DATA);
  }
  if (open.holdsScript) lexer_.setCDATAEnabled(true, lastEnd_);
}

inline void PageParser::pop() {
  const Open& open = open_.back();
  if (open.holdsScript) lexer_.setCDATAEnabled(false, lastEnd_);
  if (open.isElement) ElementAccess::noteContent(static_cast<Element*>(topNode()));
  open.name->lastOpen = open.previousOfName;
  open_.pop_back();
  nodes_->pop_back();
}

}  // namespace zeldom40
