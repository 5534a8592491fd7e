// From the texts of a metadata pair to nodes of the page.
#include "dom/dynamic/PairExpansion.h"

#include <string>
#include <string_view>

#include "dom/document/DOMAccess.h"
#include "dom/document/DocumentAccess.h"
#include "dom/dynamic/MetaDataAccess.h"
#include "dom/dynamic/MetaDataComment.h"
#include "dom/dynamic/RuntimeTextState.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/PageBuffer.h"
#include "dom/tree/TextAccess.h"

namespace zeldom40 {

namespace {

Element* asElement(Node* node) {
  return node && node->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(node) : nullptr;
}

bool isEmptyText(const Node* node) {
  return node->getNodeType() == Node::NODE_TEXT && static_cast<const Text*>(node)->isEmptyText(true);
}

// Nodes that were parsed from a text of a pair, until they find their place. What is left goes with it.
class Fragment {
 public:
  Fragment(MetaData& md, const std::string& text) : document_(*md.getDocument()) {
    holder_ = document_.createTemporaryElement();
    const unsigned nesting = DocumentAccess::pairNesting(&document_);
    DocumentAccess::setPairNesting(&document_, MetaDataAccess::nesting(md) + 1);
    document_.createNodes(text.data(), static_cast<unsigned>(text.size()), holder_, /*adjust=*/false);
    DocumentAccess::setPairNesting(&document_, nesting);
  }
  ~Fragment() { holder_->releaseRef(true); }
  Fragment(const Fragment&) = delete;
  Fragment& operator=(const Fragment&) = delete;

  Node* holder() const { return holder_; }
  bool isEmpty() const { return !holder_->hasChildNodes(); }
  ExpandedPair takeAll() { return takeChildren(holder_); }

  static ExpandedPair takeChildren(Node* parent) {
    ExpandedPair run{parent->getFirstChild(), parent->getLastChild()};
    if (run.first) NodeAccess::detachRange(parent, run.first, run.last);
    return run;
  }

 private:
  Document& document_;
  Element* holder_;
};

// The first element of a fragment that qualifies. It is not entered; anything beside it but white space is more than
// the one element that the pair describes (`impure`).
template <class Qualifies>
Element* findTarget(const Fragment& fragment, bool& impure, Qualifies qualifies) {
  Node* top = fragment.holder();
  Element* target = nullptr;
  for (Node* n = top->getFirstChild(); n;) {
    Element* element = asElement(n);
    if (!target && element && qualifies(element)) {
      target = element;
      n = NodeAccess::nextSkippingChildren(n, top);
      continue;
    }
    if (!isEmptyText(n)) impure = true;
    if (target && impure) break;
    n = NodeAccess::nextInSubtree(n, top);
  }
  return target;
}

bool describes(MetaData::Type type, const Element* element) {
  switch (type) {
    case MetaData::DesignerControl:
      return element->getElementID() == ID_OBJECT;
    case MetaData::DynamicData:
      return element->isDynamicElement();
    case MetaData::AuthorTimeVisual:
      return element->getElementID() == ID_ZELX_ATV;
    default:
      return false;
  }
}

// White space around the run-time element of a visual is none of the page's.
void dropEdgeSpace(Node* holder) {
  while (Node* first = holder->getFirstChild()) {
    if (!isEmptyText(first)) break;
    NodeAccess::detach(first);
    first->releaseRef(false);
  }
  while (Node* last = holder->getLastChild()) {
    if (!isEmptyText(last)) break;
    NodeAccess::detach(last);
    last->releaseRef(false);
  }
}

// The run from `first` on was parsed where anything may stand: what `parent` cannot have is marked as a misplaced node
// of a page is. Transparent elements ask for their children.
void checkAdoption(Node* parent, Node* first, AdoptionRules& rules) {
  for (Node* top = first; top; top = top->getNextSibling()) {
    for (Node* n = top; n;) {
      Element* element = asElement(n);
      if (element && (element->getElementGroup() & GROUP_LOOP)) {
        n = NodeAccess::nextInSubtree(n, top);
        continue;
      }
      if (element && !rules.allows(parent, n)) {
        n->setError(ERR_ELEMENT_CANNOT_BE_CONTAINED);
      } else if (n->getNodeType() == Node::NODE_TEXT && !rules.allows(parent, n)) {
        auto* text = static_cast<Text*>(n);
        if (text->isEmptyText(true)) {
          text->setTextType(Text::TEXT_FORMATTING);
          text->setData("", /*notify=*/false);
        } else {
          n->setError(ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST);
        }
      }
      n = NodeAccess::nextSkippingChildren(n, top);
    }
  }
}

void insertChecked(Node* parent, ExpandedPair run, Node* ref, bool behindRef, AdoptionRules& rules) {
  if (!run.first) return;
  checkAdoption(parent, run.first, rules);
  NodeAccess::insertFree(parent, run.first, ref, behindRef);
}

// The text between the comments. There is no element yet that could make a new one.
std::string runtimeTextOf(MetaData& md) {
  std::string text;
  RuntimeTextState state;
  MetaDataAccess::startRuntimeText(md, text, state, /*walkTree=*/false, /*dryRun=*/false, /*underStale=*/false);
  if (state.inScriptlet) text += " %>";
  return text;
}

// The comment as a node of the page, which keeps each byte of it. Null for an empty one.
Node* makeComment(MetaData& md, const std::string& tag) {
  std::string_view body = tag;
  if (!body.empty() && body.front() == '<') body.remove_prefix(1);
  if (!body.empty() && body.front() == '!') body.remove_prefix(1);
  const auto from = static_cast<std::uint32_t>(tag.size() - body.size());
  if (!body.empty() && body.back() == '>') body.remove_suffix(1);
  if (body.empty()) return nullptr;
  PageBuffer* buffer = PageBuffer::create(tag, nullptr, 0);
  const PageRef page(buffer);
  buffer->release();
  const Slice raw{0, static_cast<std::uint32_t>(tag.size())};
  Node* comment = CommentAccess::create(NodeKind::find(md.getDocument(), page, DOMAccess::commentName(), nullptr), raw,
                                        Slice{from, static_cast<std::uint32_t>(body.size())}, /*jsp=*/false);
  comment->addRef(false);
  return comment;
}

ExpandedPair collapse(MetaData* md) {
  Node* parent = md->getParentNode();
  ExpandedPair run;
  auto append = [&](ExpandedPair added) {
    if (!added.first) return;
    NodeAccess::insertFree(parent, added.first, run.last ? run.last : md, /*behindRef=*/true);
    if (!run.first) run.first = added.first;
    run.last = added.last;
  };
  Node* begin = makeComment(*md, md->getBeginTag());
  append({begin, begin});
  const std::string text = runtimeTextOf(*md);
  if (!text.empty()) append(Fragment(*md, text).takeAll());
  Node* end = makeComment(*md, md->getEndTag());
  append({end, end});
  NodeAccess::detach(md);
  md->releaseRef(false);
  return run;
}

// Puts the run-time element of a visual before the ZELX:ATV element of the source, which becomes the visual of `md`.
// Returns the element; null, with nothing changed, if there is none.
Element* expandVisual(MetaData* md, Element* visual, bool& impure) {
  Node* parent = visual->getParentNode();
  const std::string text = runtimeTextOf(*md);
  if (text.empty()) return nullptr;
  Fragment runtime(*md, text);
  dropEdgeSpace(runtime.holder());
  Element* target = findTarget(runtime, impure, [](const Element* e) { return e->canHaveATV(); });
  if (!target) return nullptr;
  AdoptionRules rules;
  insertChecked(parent, runtime.takeAll(), visual, /*behindRef=*/false, rules);
  if (visual->hasChildNodes()) {
    insertChecked(parent, Fragment::takeChildren(visual), visual, /*behindRef=*/true, rules);
    impure = true;
  }
  NodeAccess::detach(visual);
  md->setATV(visual);
  return target;
}

}  // namespace

bool AdoptionRules::allows(Node* parent, Node* child) {
  const Element* element = asElement(child);
  const void* kind = element ? element->getElementDefinition() : nullptr;
  if (!kind) return parent->canContain(child, nullptr, nullptr);
  if (parent != parent_) answers_.clear();
  parent_ = parent;
  const auto [answer, isNew] = answers_.try_emplace(kind, false);
  if (isNew) answer->second = parent->canContain(child, nullptr, nullptr);
  return answer->second;
}

ExpandedPair expandMetaData(MetaData* md, AdoptionRules& rules) {
  Node* parent = md->getParentNode();
  if (md->getType() == MetaData::None || !md->getDocument() || !parent) return {};
  const std::string source = designSource(md->getBeginTag());
  if (source.empty()) return collapse(md);
  Fragment design(*md, source);
  bool impure = false;
  Element* target =
      findTarget(design, impure, [md](const Element* element) { return describes(md->getType(), element); });
  if (target && md->getType() == MetaData::AuthorTimeVisual) target = expandVisual(md, target, impure);
  if (!target) return collapse(md);
  // More than the element: both texts follow from the element alone at the next save.
  if (impure) md->setDirty(true, /*runtimeOnly=*/false);
  const ExpandedPair run = design.takeAll();
  insertChecked(parent, run, md, /*behindRef=*/true, rules);
  NodeAccess::detach(md);
  target->setMetaData(md);
  return run;
}

}  // namespace zeldom40
