// Random tags against a plain placing: the same steps, asked of the finished nodes one by one, with no notes taken.
#include <random>

#include "tests/html/HtmlTest.h"

namespace zeldom40 {
namespace {

class PlainPlacing {
 public:
  PlainPlacing(Document* doc, Element* target) : doc_(doc), open_{target} {}

  void begin(const char* name) {
    Element* e = doc_->createElement(name);
    Path path;
    Node* p = open_.back();
    if (e->getElementType() == Element::ELEMENT_UNDEFINED) e->setError(ERR_ELEMENT_UNKNOWN);
    if (p->canContain(e, nullptr, &path)) return placeWithImplied(e, path);

    Node* x = p;
    Node* chain = nullptr;
    std::size_t at = open_.size() - 1;
    while (at > 0 && isLoop(x) && !hasContentBeside(x, chain)) {
      chain = x;
      x = x->getParentNode();
      --at;
    }
    if (!x->isEndOmittable()) return misfit(e);
    std::size_t adopter = at;
    while (!open_[adopter]->canContain(e, nullptr, &path)) {
      if (!open_[adopter]->isEndOmittable() || adopter == 0) return misfit(e);
      --adopter;
    }
    Node* placed = e;
    if (chain) {
      open_.resize(at + 1);
      append(p, e);
      x->removeChild(chain);
      placed = chain;
    }
    open_.resize(adopter + 1);
    placeWithImplied(placed, path);
    for (Node* c = chain; c;) {
      Node* child = c->getFirstChild();
      for (; child && child->getNodeType() != Node::NODE_ELEMENT; child = child->getNextSibling()) {
        if (child->getNodeType() != Node::NODE_TEXT) continue;
        auto* text = static_cast<Text*>(child);
        if (text->getTextType() == Text::TEXT_NORMAL && !c->canContain(text, nullptr, nullptr)) {
          text->setTextType(Text::TEXT_FORMATTING);
        }
      }
      if (!child) break;
      if (!child->isEmptyTag()) open_.push_back(child);
      c = isLoop(child) ? child : nullptr;
    }
  }

  void end(const char* name) {
    Element* e = doc_->createElement(name);
    const bool defined = e->getElementType() == Element::ELEMENT_DEFINED;
    for (std::size_t i = open_.size() - 1; defined && i > 0; --i) {
      if (open_[i]->getName() == e->getName()) {
        for (std::size_t k = i + 1; k < open_.size(); ++k) markUnclosed(open_[k]);
        open_.resize(i);
        e->releaseRef(false);
        return;
      }
      if (e->isEndOmittable() && !open_[i]->isEndOmittable() &&
          (asElement(open_[i])->getElementGroup() & GROUP_TABLE)) {
        break;
      }
    }
    auto* stray = new Element(e->getName(), doc_);
    e->releaseRef(false);
    append(open_.back(), counted(stray));
    stray->setError(defined ? ERR_ELEMENT_BEGIN_TAG_MISSING : ERR_ELEMENT_UNKNOWN);
  }

  void comment() { append(open_.back(), counted(new Comment(std::string("--c--"), doc_))); }

  void text(const char* data) {
    auto* text = static_cast<Text*>(counted(new Text(data, data, doc_)));
    const bool white = *data == ' ';
    Path path;
    const bool fits = open_.back()->canContain(text, nullptr, &path);
    bool implies = false;
    for (const Node* n : path) implies = implies || n->getNodeType() == Node::NODE_ELEMENT_TOKEN;
    if (fits && !(white && implies)) return placeWithImplied(text, path);
    if (white) {
      text->setTextType(Text::TEXT_FORMATTING);
    } else {
      text->setError(ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST);
    }
    append(open_.back(), text);
  }

  void finish() {
    for (Node* n : open_) markUnclosed(n);
  }

 private:
  using Path = std::vector<Node*>;

  static Element* asElement(Node* n) {
    return n && n->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(n) : nullptr;
  }
  static bool isLoop(Node* n) { return asElement(n) && (asElement(n)->getElementGroup() & GROUP_LOOP); }
  static void markUnclosed(Node* n) {
    if (!n->isEndOmittable()) n->setError(ERR_ELEMENT_END_TAG_MISSING);
  }
  static void append(Node* parent, Node* child) { parent->insertLast(child); }
  static Node* counted(Node* node) {
    node->addRef(false);
    return node;
  }
  static bool hasContentBeside(Node* loop, Node* chain) {
    for (Node* n = loop->getFirstChild(); n; n = n->getNextSibling()) {
      if (n == chain || n->getNodeType() == Node::NODE_COMMENT) continue;
      if (n->getNodeType() != Node::NODE_TEXT || !static_cast<Text*>(n)->isEmptyText(true)) return true;
    }
    return false;
  }

  void misfit(Element* e) {
    e->setError(ERR_ELEMENT_CANNOT_BE_CONTAINED);
    append(open_.back(), e);
    if (!e->isEmptyTag()) open_.push_back(e);
  }

  void placeWithImplied(Node* n, Path path) {
    Node* parent = open_.back();
    Node* head = n;
    Path remembered;
    if (isLoop(parent) && open_.size() > 1) {
      Node* outer = parent->getParentNode();
      outer->removeChild(parent);
      open_.pop_back();
      append(parent, n);
      head = parent;
      remembered.push_back(parent);
      parent = outer;
    }
    if (!path.empty()) path.pop_back();
    for (; !path.empty(); path.pop_back()) {
      if (path.back()->getNodeType() != Node::NODE_ELEMENT_TOKEN) continue;
      if (path.back()->getName() == parent->getName()) break;
      Element* implied = doc_->createElement(path.back()->getName().c_str());
      append(implied, head);
      head = implied;
      remembered.push_back(implied);
    }
    append(parent, head);
    open_.insert(open_.end(), remembered.rbegin(), remembered.rend());
    if (!n->isEmptyTag()) open_.push_back(n);
  }

  Document* doc_;
  Path open_;
};

class PlacingModel : public PageTest, public testing::WithParamInterface<DOM::JSPVersion> {
 protected:
  PlacingModel() : PageTest(GetParam()) {}
};

TEST_P(PlacingModel, AgreesWithTheParserOnRandomTags) {
  std::vector<std::string> all = {"ZELX:LOOP", "X"};
  if (GetParam() == DOM::JSP_VERSION_1) all.push_back("REPEAT");
  const std::size_t loops = all.size();
  for (const ElementDefinition* definition : doc_->getDocumentTypeObject()->getElementDefinitions()) {
    const bool special = definition->getContentType() == ElementDefinition::CONTENT_CDATA ||
                         (definition->getGroup() & GROUP_NO_SOURCE) || definition->getElementID() == ID_PARAM ||
                         definition->getElementID() == ID_ZELX_ATV;
    if (!special) all.push_back(definition->getName());
  }
  std::mt19937 random(42);
  auto any = [&random](const auto& list) { return list[random() % list.size()]; };
  const std::vector<std::string> common = {"TABLE", "TBODY", "TR",   "TD", "UL", "LI",  "P",     "DIV",    "A",
                                           "B",     "HEAD",  "BODY", "DL", "DD", "INS", "TITLE", "SELECT", "OPTION"};
  for (int round = 0; round < 6000 && !HasFailure(); ++round) {
    // Few names, that they may meet.
    std::vector<std::string> names;
    for (int i = 0; i < 4; ++i) names.push_back(random() % 3 ? any(common) : any(all));
    if (random() % 2) names.push_back(all[random() % loops]);

    Element* root = doc_->createRootElement();
    PlainPlacing model(doc_, root);
    std::string page;
    bool afterText = false;
    for (auto i = 3 + random() % 14; i > 0; --i) {
      const auto kind = random() % 10;
      const std::string name = any(names);
      if (kind < 6) {
        page += '<' + name + '>';
        model.begin(name.c_str());
      } else if (kind < 8) {
        page += "</" + name + '>';
        model.end(name.c_str());
      } else if (kind == 8 && !afterText) {
        const char* text = random() % 2 ? "x" : " ";
        page += text;
        model.text(text);
      } else {
        page += "<!--c-->";
        model.comment();
      }
      afterText = page.back() != '>';
    }
    model.finish();
    EXPECT_EQ(tree(page, kDumpErrors), dumpTree(root, kDumpErrors)) << page;
    root->releaseRef(true);
  }
}

INSTANTIATE_TEST_SUITE_P(BothGenerations, PlacingModel, testing::Values(DOM::JSP_VERSION_0, DOM::JSP_VERSION_1));

}  // namespace
}  // namespace zeldom40
