// Where a new node goes: the stack of open nodes, the content models' answers, implied elements and adopters.
#include <algorithm>

#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/dtd/DTDFrame.h"
#include "dom/html/PageParser.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/Text.h"

namespace zeldom40 {

namespace {

Element* asElement(Node* node) {
  return node && node->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(node) : nullptr;
}

}  // namespace

// --- open nodes ------------------------------------------------------------------------------------------------------

PageName* PageParser::nameOf(Node* node) { return &names_.find(node->getName()); }

Element* PageParser::openElement(int index) const { return asElement((*nodes_)[static_cast<std::size_t>(index)]); }

// Works out once, as a node is opened, what questions about its content will need.
void PageParser::describe(Open& open, Node* node, int index) {
  const Element* element = asElement(node);
  open.isElement = element != nullptr;
  open.endOmittable = node->isEndOmittable();
  open.tableBarrier = index > 0 ? open_[static_cast<std::size_t>(index) - 1].tableBarrier : -1;
  if (!element) {
    open.answers = Answers::BY_ITSELF;
    open.sets = table_ ? table_->noSets() : nullptr;
    return;
  }
  const unsigned long group = element->getElementGroup();
  open.definition = element->getElementDefinition();
  open.isLoop = (group & GROUP_LOOP) != 0;
  // The target itself is never matched, so it bars nothing.
  if (index > 0 && (group & GROUP_TABLE) && !open.endOmittable) open.tableBarrier = index;

  if (index > 0) {
    const Open& below = open_[static_cast<std::size_t>(index) - 1];
    open.sets = table_ ? table_->extend(below.sets, open.definition) : nullptr;
  } else {
    // The target's own ancestors count too.
    std::vector<const ElementDefinition*> outer;
    for (Element* e = asElement(node->getParentNode()); e; e = asElement(e->getParentNode())) {
      if (e->getElementDefinition()) outer.push_back(e->getElementDefinition());
    }
    open.sets = table_ ? table_->noSets() : nullptr;
    for (auto it = outer.rbegin(); table_ && it != outer.rend(); ++it) open.sets = table_->extend(open.sets, *it);
    if (table_) open.sets = table_->extend(open.sets, open.definition);
  }

  if (!table_) {
    open.answers = Answers::BY_ITSELF;
  } else if (open.isLoop) {
    const bool hasOwner = index > 0;
    open.answers = hasOwner ? Answers::AS_OWNER : Answers::BY_ITSELF;
    if (hasOwner) {
      const Open& below = open_[static_cast<std::size_t>(index) - 1];
      open.owner = below.answers == Answers::AS_OWNER ? below.owner : index - 1;
    }
  } else if (open.definition) {
    open.answers = Answers::BY_MODEL;
    open.row = table_->row(*open.definition);
  } else {
    open.answers = Answers::ALIKE;
    const Element::ElementType type = element->getElementType();
    open.alikeAnswer =
        type == Element::ELEMENT_TYPE_1 || type == Element::ELEMENT_TYPE_2 || (document_ && !document_->isHTML());
  }
}

// A page's own declarations make other answers; all notes are taken anew.
void PageParser::declarationsChanged() {
  table_ = &contentTable(*frame_);
  textPlace_ = table_->textPlace(Text::TEXT_NORMAL);
  names_.declarationsChanged();
  serverNames_.fill({});
  for (std::size_t i = 0; i < open_.size(); ++i) {
    Open& open = open_[i];
    const int previous = open.previousOfName;
    PageName* name = nameOf((*nodes_)[i]);
    const std::uint32_t time = ++time_;
    open = Open{};
    open.time = time;
    open.name = name;
    open.previousOfName = previous;
    const Element* element = openElement(static_cast<int>(i));
    describe(open, (*nodes_)[i], static_cast<int>(i));
    open.holdsScript = element && (element->getElementGroup() & GROUP_SCRIPT_DATA);
  }
}

// --- questions -------------------------------------------------------------------------------------------------------

bool PageParser::fitsByQuestion(int index, const Subject& subject, const Path*& implied) {
  implied = &direct_;
  const Open* open = &open_[static_cast<std::size_t>(index)];
  if (open->answers == Answers::AS_OWNER) {
    index = open->owner;
    open = &open_[static_cast<std::size_t>(index)];
  }
  if (open->answers == Answers::BY_ITSELF) {
    std::vector<Node*> path;
    if (!(*nodes_)[static_cast<std::size_t>(index)]->canContain(subject.node, nullptr, &path)) return false;
    ownPath_.clear();
    if (!path.empty()) path.pop_back();
    for (Node* step : path) {
      if (step->getNodeType() == Node::NODE_ELEMENT_TOKEN) ownPath_.push_back(&NodeAccess::sharedName(step));
    }
    implied = &ownPath_;
    return true;
  }
  const int tableId = subject.tableId;
  const bool defined = subject.isText || subject.definition;
  if (ContentTable::excluded(open->sets, tableId, defined)) return false;
  if (open->answers == Answers::ALIKE) return open->alikeAnswer;
  if (!defined) return true;
  const ContentTable::Answer& answer =
      subject.isText ? table_->textAnswer(*open->definition, subject.textType)
                     : table_->elementAnswer(*open->definition, subject.definition, subject.tableId);
  if (answer.allowed) {
    implied = &answer.implied;
    return true;
  }
  return ContentTable::included(open->sets, tableId);
}

// Goes down the stack from `from` to the first node that takes the subject, past nodes whose end tag may be omitted.
// Returns -1 if nobody does. A search that failed is noted with the name: misfits nest, and each would climb over all
// of those before it.
int PageParser::findAdopter(int from, const Subject& subject, PageName& name, const Path*& implied) {
  for (int i = from; i >= 0; --i) {
    const Open& open = open_[static_cast<std::size_t>(i)];
    const bool known = name.barredTo >= 0 && i >= name.barredFrom && i <= name.barredTo && open.time <= name.barredTime;
    if (!known && fits(i, subject, implied)) return i;
    if (known || !open.endOmittable || i == 0) {
      names_.touch(name);
      name.barredFrom = known ? name.barredFrom : i;
      name.barredTo = from;
      name.barredTime = time_;
      return -1;
    }
  }
  return -1;
}

// Whether a transparent element has children other than `chain`, comments and white space. Children that were passed
// over before stay so.
bool PageParser::hasContentBeside(int index, const Node* chain) {
  Open& open = open_[static_cast<std::size_t>(index)];
  Node* node = (*nodes_)[static_cast<std::size_t>(index)];
  Node* child =
      open.passed && open.passed->getParentNode() == node ? NodeAccess::childAfter(open.passed) : node->getFirstChild();
  for (; child; child = NodeAccess::childAfter(child)) {
    if (child == chain) continue;
    const bool empty = child->getNodeType() == Node::NODE_COMMENT ||
                       (child->getNodeType() == Node::NODE_TEXT && static_cast<Text*>(child)->isEmptyText(true));
    if (!empty) return true;
    open.passed = child;
  }
  return false;
}

// --- placing ---------------------------------------------------------------------------------------------------------

void PageParser::recordOnce() {
  recorded_ = true;
  if (document_) DocumentAccess::recordChange(document_, nodes_->front());
}

void PageParser::placeByQuestion(Element* element, PageName& name, bool selfClosed) {
  Subject subject;
  subject.node = element;
  subject.definition = element->getElementDefinition();
  subject.tableId = name.tableId;
  if (subject.definition) subject.place = name.ordinal;
  const Path* implied = nullptr;
  const int p = top();

  // 1. It fits where we are.
  if (fits(p, subject, implied)) {
    placeWithImplied(element, &name, *implied, selfClosed);
    return;
  }

  // 2. Transparent elements without content of their own move along with what does not fit into them. Nothing moves
  //    out of the target.
  int x = p;
  Node* chain = nullptr;
  while (x > 0 && open_[static_cast<std::size_t>(x)].isLoop && !hasContentBeside(x, chain)) {
    chain = (*nodes_)[static_cast<std::size_t>(x)];
    --x;
  }

  // 3. An element that must be closed by its own tag stays open: the newcomer goes in, flagged.
  if (!open_[static_cast<std::size_t>(x)].endOmittable) {
    placeMisfit(element, name, selfClosed);
    return;
  }

  // 4. and 5. The nearest open element that takes it and can be reached by omitted end tags.
  const int adopter = findAdopter(x, subject, name, implied);
  if (adopter < 0) {
    placeMisfit(element, name, selfClosed);
    return;
  }
  // Popping and inserting may ask further questions, so the path is kept.
  const Path path = *implied;

  // 6. The chain of transparent elements is taken out, with the newcomer at its inner end.
  Node* placed = element;
  if (chain) {
    append((*nodes_)[static_cast<std::size_t>(p)], element);
    while (top() > x) pop();
    NodeAccess::detachRange(topNode(), chain, chain);
    placed = chain;
  }

  // 7. An implied end tag of an element that may omit it is no error.
  while (top() > adopter) {
    if (Element* closed = asElement(topNode())) closed->setEndTagExistence(false);
    pop();
  }

  // 8. and 9.
  if (!chain) {
    placeWithImplied(element, &name, path, selfClosed);
    return;
  }
  // CHOICE: a self-closing mark is the newcomer's; the transparent elements around it stay open.
  placeWithImplied(placed, nameOf(placed), path, /*selfClosed=*/false);
  reopenChain(chain, element, selfClosed);
}

// An element that fits nowhere and may close nothing.
void PageParser::placeMisfit(Element* element, PageName& name, bool selfClosed) {
  if (element->getElementID() == ID_PARAM) {
    ElementAccess::bind(element, nullptr);
    element->setError(ERR_ELEMENT_UNKNOWN);
  } else {
    element->setError(ERR_ELEMENT_CANNOT_BE_CONTAINED);
  }
  insertLast(element);
  if (!selfClosed && !element->isEmptyTag()) push(element, &name);
}

// Opens the nodes along a chain of transparent elements that was moved; `chain` itself is open again already.
void PageParser::reopenChain(Node* chain, const Element* last, bool selfClosed) {
  for (Node* c = chain; c;) {
    Element* inner = nullptr;
    for (Node* child = c->getFirstChild(); child && !inner; child = NodeAccess::childAfter(child)) {
      if (child->getNodeType() == Node::NODE_TEXT && static_cast<Text*>(child)->getTextType() == Text::TEXT_NORMAL) {
        const Path* implied = nullptr;
        if (!fits(top(), textSubject(child), implied)) {
          // The source keeps its white space, the layout shows none.
          static_cast<Text*>(child)->setTextType(Text::TEXT_FORMATTING);
          static_cast<Text*>(child)->setData("", /*notify=*/false);
        }
      } else {
        inner = asElement(child);
      }
    }
    if (!inner) return;
    if (!inner->isEmptyTag() && !(inner == last && selfClosed)) push(inner, nameOf(inner));
    c = inner != last && (inner->getElementGroup() & GROUP_LOOP) ? inner : nullptr;
  }
}

Element* PageParser::createElement(PageName& name, Slice begin) {
  Element* element = begin.length != 0 ? ElementAccess::createParsed(kindOf(name, true), begin)
                                       : ElementAccess::createWithoutTag(kindOf(name, true));
  element->setEndTagExistence(element->isEmptyTag());
  if (name.mayHaveMetaData) mustBeSorted_ = true;
  return element;
}

// Inserts a node below the top of the stack, with the elements between them that `path` implies.
void PageParser::placeWithImplied(Node* node, PageName* name, const Path& path, bool selfClosed) {
  const auto opensNode = [&] { return !selfClosed && !node->isEmptyTag(); };
  const int p = top();
  Node* parent = topNode();

  // How much of the path lies below the parent: its innermost part, up to the parent's own name.
  Node* scope = parent;
  const bool sinks = open_[static_cast<std::size_t>(p)].isLoop && p > 0;
  if (sinks) scope = (*nodes_)[static_cast<std::size_t>(p) - 1];
  std::size_t from = path.size();
  while (from > 0 && path[from - 1]->view() != std::string_view(scope->getName())) --from;
  if (from == path.size()) {
    append(parent, node);
    if (opensNode()) push(node, name);
    return;
  }

  // 1. A transparent element sinks below what is to be implied.
  remembered_.clear();
  Node* head = node;
  if (sinks) {
    pop();
    NodeAccess::detachRange(scope, parent, parent);
    append(parent, node);
    head = parent;
    remembered_.push_back(parent);
    parent = scope;
  }
  // 2. Innermost first, each around what was built so far. They carry empty tags.
  for (std::size_t i = path.size(); i > from; --i) {
    Element* element = createElement(names_.find(path[i - 1]->view()));
    append(element, head);
    head = element;
    remembered_.push_back(element);
  }
  // 3. to 5.
  append(parent, head);
  const std::vector<Node*> opened(remembered_.rbegin(), remembered_.rend());
  for (Node* open : opened) push(open, nameOf(open));
  if (opensNode()) push(node, name);
}

}  // namespace zeldom40
