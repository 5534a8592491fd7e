// What may stand where, and the compiled table against the walk over the models.
#include <memory>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "dom/dtd/BuiltInDTD.h"
#include "dom/dtd/ContentTable.h"
#include "dom/dtd/DTDFrame.h"
#include "dom/dtd/DTDParser.h"
#include "dom/dtd/ModelGroup.h"
#include "dom/tree/Comment.h"
#include "dom/tree/Element.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/Text.h"

namespace zeldom40 {
namespace {

class ContentModel : public testing::Test {
 protected:
  void load(std::string_view text) {
    parser_ = std::make_unique<DTDParser>(text.data(), static_cast<unsigned>(text.size()));
    parser_->parse(LexerType::LEX_EOF);
  }
  ParserType::_dtd_frame& frame() { return *parser_->getDTDFrame(); }
  ElementDefinition* definition(std::string_view upperName) { return frame().elements->find(upperName); }
  std::unique_ptr<Element> element(std::string_view upperName) {
    auto element = std::make_unique<Element>(std::string(upperName), nullptr);
    ElementAccess::bind(element.get(), definition(upperName));
    return element;
  }
  static std::unique_ptr<Text> text(int type) {
    auto text = std::make_unique<Text>(nullptr);
    text->setTextType(static_cast<Text::TextType>(type));
    return text;
  }
  // A node by its name: "#0" to "#2" are texts, "!" a comment, "?FOO" an unknown tag.
  std::unique_ptr<Node> node(const std::string& name) {
    if (name[0] == '#') return text(name[1] - '0');
    if (name[0] == '!') return std::make_unique<Comment>("", nullptr);
    if (name[0] == '?') return std::make_unique<Element>(name.substr(1), nullptr);
    return element(name);
  }

  // All of these: the texts, and the elements by name.
  std::vector<std::string> askedNames() {
    std::vector<std::string> names{"#0", "#1", "#2"};
    for (const ElementDefinition* d : frame().winners) names.push_back(d->upperName().str());
    return names;
  }

  // "no", "yes", or the implied elements: "yes HTML BODY".
  std::string ask(const std::string& parent, const std::string& child) {
    std::vector<Node*> path;
    Node* found = nullptr;
    if (!definition(parent)->canContain(node(child).get(), &found, &path)) {
      EXPECT_TRUE(path.empty() && !found);
      return "no";
    }
    EXPECT_EQ(found, path.empty() ? nullptr : path.back());
    return "yes" + implied(path);
  }
  static std::string implied(std::vector<Node*> path) {
    std::string out;
    if (!path.empty()) path.pop_back();
    for (const Node* step : path) {
      if (step->getNodeType() == Node::NODE_ELEMENT_TOKEN) out += ' ' + step->getName();
    }
    return out;
  }

  void compareTableWithWalk();

  std::unique_ptr<DTDParser> parser_;
};

TEST_F(ContentModel, BuiltInAnswers) {
  load(builtInDTD());
  const struct {
    const char *parent, *answer, *children;
  } cases[] = {// The head is asked before the body, and elements that may stand anywhere imply nothing.
               {"ZELROOT", "yes HTML BODY", "P INS #1"},
               {"ZELROOT", "yes HTML HEAD", "TITLE SCRIPT"},
               {"ZELROOT", "yes", "#2 JSP:SCRIPTLET"},
               {"HTML", "yes", "FRAMESET"},
               {"HEAD", "yes", "OBJECT"},
               {"DIV", "no", "INS"},
               {"P", "yes", "B K9V ZELX:TEXT"},
               {"P", "no", "P"},
               // The start tag of a row may not be omitted.
               {"TABLE", "yes TBODY", "TR"},
               {"TABLE", "no", "TD #1"},
               {"TR", "yes", "#2"},
               {"TR", "no", "#1"},
               {"MAP", "no", "A"},
               {"NOFRAMES", "yes BODY", "P"},
               {"OPTION", "no", "!"},
               {"BR", "yes", "?FOO"},
               {"BR", "no", "! JSP:SCRIPTLET"},
               {"SCRIPT", "no", "#1"},
               {"ZELX:LOOP", "yes", "TD"},
               {"JSP:INCLUDE", "no", "JSP:PARAM"},
               // An exclusion is no matter of the element's own content.
               {"A", "yes", "A"},
               {"PRE", "yes", "EMBED"}};
  for (const auto& c : cases) {
    std::istringstream children(c.children);
    for (std::string child; children >> child;) EXPECT_EQ(ask(c.parent, child), c.answer) << c.parent << " > " << child;
  }
  EXPECT_FALSE(definition("A")->canBeAncestorOf(element("A").get()));
  EXPECT_TRUE(definition("A")->canBeAncestorOf(element("B").get()));
  EXPECT_FALSE(definition("PRE")->canBeAncestorOf(element("EMBED").get()));
  EXPECT_TRUE(definition("PRE")->canBeAncestorOf(element("K9V").get()));
  EXPECT_TRUE(definition("BODY")->canInclude(element("DEL").get()));
  EXPECT_FALSE(definition("HEAD")->canInclude(element("LINK").get()));
}

TEST_F(ContentModel, EdgesOfOtherDefinitions) {
  load(
      "<!ELEMENT TEXT - - (A)><!ELEMENT P - - (#PCDATA|TEXT)*><!ELEMENT Q - - (#PCDATA)* -(X)><!ELEMENT COMMENT - - A>"
      "<!ELEMENT R - - (B) -(COMMENT|S)><!ELEMENT S O O (T)><!ELEMENT T - - ANY>"
      "<!ELEMENT I - - (B)* +(S) -(T)><!ELEMENT E - - ANY -(S)><!ELEMENT L O O (M)><!ELEMENT M O O (L|T)>"
      "<!ELEMENT N - - (L)><!ELEMENT V - - (Y|T)><!ELEMENT Y O O ANY>");
  EXPECT_EQ(ask("P", "TEXT"), "yes");
  EXPECT_EQ(ask("Q", "TEXT"), "no") << "a text's token is no element of that name";
  EXPECT_EQ(ask("Q", "#1"), "yes");
  EXPECT_TRUE(definition("R")->canBeAncestorOf(node("!").get())) << "a comment is no element of that name";
  EXPECT_FALSE(definition("R")->canBeAncestorOf(element("COMMENT").get()));
  EXPECT_FALSE(definition("R")->canBeAncestorOf(element("T").get())) << "an exclusion reaches through omitted tags";
  EXPECT_EQ(ask("I", "S"), "yes");
  EXPECT_EQ(ask("I", "T"), "no") << "included and excluded";
  EXPECT_EQ(ask("E", "T"), "no") << "a name in an exception makes it element content";
  EXPECT_EQ(ask("N", "T"), "yes L M") << "a cycle";
  EXPECT_EQ(ask("N", "P"), "no") << "a cycle without a match";
  EXPECT_EQ(ask("V", "T"), "yes") << "what ANY allows implies nothing";
  compareTableWithWalk();
}

TEST_F(ContentModel, BaseSearchStaysWithinOneModel) {
  load("<!ELEMENT X - - (A, (B|Y))><!ELEMENT Y O O (C)>");
  const auto* model = definition("X")->getModel();
  std::vector<Node*> path;
  const auto find = [&](const char* name, Hash<ElementDefinition>* elements) {
    path.clear();
    return const_cast<ModelGroup*>(model)->findFirstByName(std::make_unique<Element>(name, nullptr).get(), elements,
                                                           &path);
  };
  EXPECT_TRUE(find("B", nullptr));
  EXPECT_EQ(path.size(), 3u);
  EXPECT_FALSE(find("C", nullptr));
  EXPECT_TRUE(path.empty());
}

// All pairs of the table against the walk; then the sets along random branches against the questions that each open
// element answers.
void ContentModel::compareTableWithWalk() {
  const std::vector<ElementDefinition*>& all = frame().winners;
  ContentTable& table = contentTable(frame());
  const std::vector<std::string> names = askedNames();
  for (ElementDefinition* parent : all) {
    for (const std::string& name : names) {
      std::vector<Node*> path;
      const bool allowed = parent->canContain(node(name).get(), nullptr, &path);
      const ContentTable::Answer& answer = name[0] == '#'
                                               ? table.textAnswer(*parent, name[1] - '0')
                                               : table.elementAnswer(*parent, definition(name), table.nameId(name));
      std::string steps;
      for (const SharedName* step : answer.implied) steps += ' ' + step->str();
      ASSERT_EQ(answer.allowed, allowed) << parent->getName() << " > " << name;
      ASSERT_EQ(steps, implied(path)) << parent->getName() << " > " << name;
    }
  }
  std::mt19937 random(7);
  for (int round = 0; round < 10; ++round) {
    std::vector<ElementDefinition*> open;
    const ContentTable::OpenSets* sets = table.noSets();
    for (int depth = 0; depth < 6; ++depth) {
      open.push_back(all[random() % all.size()]);
      sets = table.extend(sets, open.back());
      ASSERT_EQ(table.extend(sets, open.back()), sets) << "the same set is the same object";
      for (const std::string& name : names) {
        const std::unique_ptr<Node> child = node(name);
        Element unknown(name, nullptr);
        bool excluded = false;
        bool unknownExcluded = false;
        bool included = false;
        for (ElementDefinition* d : open) {
          excluded = excluded || !d->canBeAncestorOf(child.get());
          unknownExcluded = unknownExcluded || !d->canBeAncestorOf(&unknown);
          included = included || d->canInclude(child.get());
        }
        const int id = name[0] == '#' ? ContentTable::textNameId(name[1] - '0') : table.nameId(name);
        ASSERT_EQ(ContentTable::excluded(sets, id), excluded) << name;
        ASSERT_EQ(ContentTable::included(sets, id), included) << name;
        ASSERT_TRUE(name[0] == '#' || ContentTable::excluded(sets, id, /*defined=*/false) == unknownExcluded) << name;
      }
    }
  }
}

TEST_F(ContentModel, AllPairsOfTheBuiltInDTDAgree) {
  load(builtInDTD());
  compareTableWithWalk();
}

TEST_F(ContentModel, ADeclarationDropsWhatWasCompiled) {
  load("<!ELEMENT P - - (X)><!ELEMENT X O O (A)><!ELEMENT A - - ANY>");
  const unsigned before = contentTable(frame()).generation();
  EXPECT_EQ(contentTable(frame()).nameId("Y"), -1);
  const std::string page = "<!ELEMENT Y - - (P)>";
  const ParserType::_dtd_parser_frame shared{&frame()};
  DTDParser(page.data(), static_cast<unsigned>(page.size()), &shared).parse(LexerType::LEX_EOF);
  ContentTable& table = contentTable(frame());
  EXPECT_NE(table.generation(), before);
  EXPECT_TRUE(table.elementAnswer(*definition("Y"), definition("P"), table.nameId("P")).allowed);
}

}  // namespace
}  // namespace zeldom40
