// Declarations of entities, elements, attributes, groups and marked sections; the built-in definition.
#include "dom/dtd/DTDParser.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "dom/dtd/BuiltInDTD.h"
#include "dom/dtd/DTDFrame.h"
#include "dom/dtd/DocumentType.h"
#include "dom/dtd/ModelGroup.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/NodePool.h"

namespace zeldom40 {
namespace {

// Tables from a text; checks at the end that no node is left.
class Tables {
 public:
  explicit Tables(std::string_view text, bool deferring = false) : nodesBefore_(liveNodes::count) {
    parser_.reset(deferring ? DTDParser::makeDeferring(text)
                            : new DTDParser(text.data(), static_cast<unsigned>(text.size())));
    result = parser_->parse(LexerType::LEX_EOF);
  }
  ~Tables() {
    parser_.reset();
    EXPECT_EQ(liveNodes::count, nodesBefore_);
  }
  ParserType::_dtd_frame* operator->() const { return parser_->getDTDFrame(); }
  ElementDefinition* element(std::string_view upperName) const {
    return parser_->getDTDFrame()->elements->find(upperName);
  }
  // "X 2 4 (A | B)*": name, omission, content type and content of all definitions.
  std::string elements() const {
    std::string out;
    for (const ElementDefinition* d : *parser_->getDTDFrame()->elementList) {
      if (!out.empty()) out += "; ";
      out += d->getName() + ' ' + std::to_string(d->getOmission()) + ' ' + std::to_string(d->getContentType()) + ' ' +
             d->getContentText();
    }
    return out;
  }
  // "a 1 3; b 1 3 P|Q": name, declared type, default type, values.
  std::string attributes(std::string_view upperName) const {
    const ElementDefinition* definition = element(upperName);
    if (!definition || !definition->getAttributes()) return "none";
    std::string out;
    for (const Node* n = definition->getAttributes()->getFirstChild(); n; n = n->getNextSibling()) {
      const auto* a = static_cast<const AttributeDefinition*>(n);
      if (!out.empty()) out += "; ";
      out += a->getName() + ' ' + std::to_string(a->getDeclaredType()) + ' ' + std::to_string(a->getDefaultType());
      if (!a->getAllowedTokens()) continue;
      char sign = ' ';
      for (const std::string& token : *a->getAllowedTokens()) {
        out += sign + token;
        sign = '|';
      }
    }
    return out;
  }

  int result;

 private:
  long nodesBefore_;
  std::unique_ptr<DTDParser> parser_;
};

TEST(DTDParser, ElementDeclarations) {
  const std::pair<const char*, const char*> cases[] = {
      {"<!ELEMENT X - O EMPTY>", "X 2 1 EMPTY"},
      {"<!ELEMENT X O - CDATA>", "X 3 5 CDATA"},
      {"<!ELEMENT X O O (#PCDATA)>", "X 4 3 (#PCDATA)"},
      {"<!ELEMENT X - - empty>", "X 1 4 EMPTY"},
      {"<!ELEMENT x - - (a, B?, (c|d)+)* -- c -->", "x 1 4 (A, B?, (C | D)+)*"},
      {"<!ELEMENT -- c -- X -- c -- - -- c -- O -- c -- A -- c -->", "X 2 4 A"},
      {"<!ELEMENT (X|Y Z) - - (A & B)>", "X 1 4 (A & B); Y 1 4 (A & B); Z 1 4 (A & B)"},
      // The type is what was written last.
      {"<!ELEMENT X - - (#PCDATA|A)*>", "X 1 4 (#PCDATA | A)*"},
      {"<!ELEMENT X - - (A|#PCDATA)*>", "X 1 3 (A | #PCDATA)*"},
      {"<!ELEMENT X - - (#PCDATA) -(A)>", "X 1 4 (#PCDATA) -(A)"},
      {"<!ELEMENT X - - (A|CDATA)*>", "X 1 3 (A | #PCDATA)*"},
      {"<!ELEMENT X - - (CDATA)*>", "X 1 5 CDATA"},
      // "+" behind ")" is an occurrence.
      {"<!ELEMENT X - - (A)* +(B|C)>", "X 1 4 (A)* +(B | C)"},
      {"<!ELEMENT X - - (A) +(B)>", "X 1 4 (A)+ (B)"},
      {"<!ELEMENT X - - A? +B -C* +D>", "X 1 4 A? -(C*) +(D)"},
      {"<!ELEMENT X - - (A & #PCDATA , C)>", "X 1 4 (A & #PCDATA & C)"},
      {"<!ELEMENT X - - ((A) B)>", "X 1 4 ((A) B)"},
      // Dropped; what follows is read.
      {"<!ELEMENT X - - (A & #PCDATA & C)><!ELEMENT Y - - A>", "Y 1 4 A"},
      {"<!ELEMENT X EMPTY><!ELEMENT Y - - A>", "Y 1 4 A"},
      {"<!ELEMENT X -- EMPTY><!ELEMENT Y - - A>", ""},
      {"<!ELEMENT X - - (A -- c -- | B)><!ELEMENT Y - - A>", "Y 1 4 A"},
      {"<!ELEMENT X - - (A | B , C)><!ELEMENT Y - - A>", "Y 1 4 A"},
      {"<!FOO bar><!ELEMENT Y - - A>", "Y 1 4 A"},
      {"<!ELEMENT X - - (A>", "X 1 4 (A)"},
      {"<!ELEMENT X - - A><!ELEMENT x - O EMPTY>", "X 1 4 A; x 2 1 EMPTY"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(Tables(text).elements(), expected) << text;
}

TEST(DTDParser, TheFirstElementCountsAndNamesShareTheirModel) {
  const Tables tables("<!ELEMENT (H1|h2) - - (#PCDATA)><!ELEMENT H2 - O EMPTY><!ELEMENT FOO - - ANY>");
  EXPECT_EQ(tables->elementList->size(), 4u);
  const ElementDefinition* h1 = tables.element("H1");
  const ElementDefinition* h2 = tables.element("H2");
  EXPECT_EQ(h2->getName(), "h2");
  EXPECT_EQ(h2->upperName().view(), "H2");
  EXPECT_EQ(h2->getContentType(), ElementDefinition::CONTENT_TEXT);
  EXPECT_EQ(h1->getModel(), h2->getModel());
  EXPECT_EQ(NodeAccess::refCount(h1->getModel()), 2);
  EXPECT_EQ(h1->getElementID(), ID_H1);
  // By the name as written.
  EXPECT_EQ(h2->getElementID(), ID_UNKNOWN);
  EXPECT_EQ(h1->ordinal(), 0);
  EXPECT_EQ((*tables->elementList)[2]->ordinal(), -1);
  EXPECT_EQ(tables.element("FOO")->ordinal(), 2);
}

TEST(DTDParser, AttributeLists) {
  const std::string x = "<!ELEMENT X - - ANY>";
  const std::pair<const char*, const char*> cases[] = {
      {"<!ATTLIST X a CDATA #IMPLIED b (p|q) #IMPLIED>", "a 1 3; b 1 3 P|Q"},
      {"<!ATTLIST X b (p|q) p a idrefs #required c (r) \"r\">", "b 0 0 P|Q; a 4 2; c 4 0 R"},
      {"<!ATTLIST (Y|x) v CDATA #FIXED 'a' w NUMBER 1 -- c -->", "v 1 1; w 0 0"},
      {"<!ATTLIST X a CDATA #IMPLIED><!ATTLIST X b ID #IMPLIED>", "b 2 3"},
      {"<!ATTLIST X aB CDATA x Ab CDATA #IMPLIED>", "aB 1 0; Ab 1 3"},
      // Dropped as a whole.
      {"<!ATTLIST X a CDATA #IMPLIED ]>", "none"},
      {"<!ATTLIST X a CDATA #FIXED>", "none"},
      {"<!ATTLIST X>", "none"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(Tables(x + text).attributes("X"), expected) << text;
  EXPECT_EQ(Tables("<!ATTLIST X a CDATA #IMPLIED>" + x).attributes("X"), "none") << "not declared yet";
  EXPECT_EQ(Tables("<!ATTLIST X>" + x).elements(), "X 1 2 ANY") << "the list eats its own end and no more";
}

TEST(DTDParser, AttributeLookUps) {
  const Tables tables("<!ELEMENT (X|Y|Z) - - ANY><!ATTLIST (X|Y) href CDATA #IMPLIED>");
  const ElementDefinition* x = tables.element("X");
  AttributeDefinition* href = x->getAttributeDefinition("hReF");
  ASSERT_TRUE(href);
  EXPECT_EQ(href->upperName().view(), "HREF");
  EXPECT_EQ(tables.element("Y")->getAttributes(), x->getAttributes());
  unsigned long errors = ERR_ELEMENT_UNKNOWN;
  EXPECT_TRUE(x->checkAttributeValidity("HREF", "any", &errors));
  EXPECT_TRUE(tables.element("Z")->checkAttributeValidity("SRC", "any", &errors));
  EXPECT_EQ(errors, ERR_ELEMENT_UNKNOWN);
  EXPECT_FALSE(x->checkAttributeValidity("href", "any", &errors)) << "exact: the caller raises the name";
  EXPECT_EQ(errors, ERR_ELEMENT_UNKNOWN | ERR_ATTR_INVALID_NAME);
}

TEST(DTDParser, Entities) {
  const Tables tables(
      "<!ENTITY % a 'one'><!ENTITY % a 'two'><!ENTITY % b 'x\\'y\\\\z'><!ENTITY % s SYSTEM 'sys'>"
      "<!ENTITY % p PUBLIC 'pub'><!ENTITY % bad 'x' 'y'><!ENTITY -- c -- % c -- c -- '%a;%a;' -- c -->"
      "<!ENTITY nbsp CDATA '&#160;'><!ENTITY other CDATA '&#160;'><!ENTITY nul CDATA '&#0;'>"
      "<!ENTITY amp CDATA '&'><!ENTITY amp 'x'><!ENTITY n SYSTEM 'file' NDATA gif><!ENTITY e ''>"
      "<!ENTITY pq PUBLIC 'p' 'q'><!ENTITY p1 PUBLIC 'p'>");
  EXPECT_EQ(tables.result, 0);
  std::string parameters;
  for (const char* name : {"a", "b", "s", "p", "bad", "c"}) {
    const EntityRecord* e = tables->parameterEntities->find(name);
    parameters += (e ? e->text + '/' + e->publicId + '/' + e->systemId : "none") + ' ';
  }
  EXPECT_EQ(parameters, "one// x'y\\z// SYSTEM//sys PUBLIC/pub/ none oneone// ");
  std::string generals;
  for (const char* name : {"nbsp", "other", "nul", "amp", "n", "pq", "e", "p1"}) {
    const GeneralEntityRecord* e = tables->generalEntities().find(name);
    generals += (e ? e->text + '/' + e->publicId + '/' + e->systemId + '/' + e->notation : "none") + ' ';
  }
  EXPECT_EQ(generals, "\x1b\xa0/// \x1b\xa0/// &#0;/// &/// SYSTEM//file/gif PUBLIC/p/q/ none none ");
  ASSERT_EQ(tables->charEntities().size(), 1u);
  EXPECT_EQ(FrameCharacterNames(tables.operator->()).nameOf(160), "nbsp");
  EntityText found;
  EXPECT_TRUE(FrameEntities(tables.operator->()).find("n", found));
  EXPECT_EQ(found.systemId, "file");
  EXPECT_FALSE(FrameEntities(tables.operator->()).find("NBSP", found));
}

TEST(DTDParser, SectionsGroupsAndUndeclaredReferences) {
  const std::string x = "<!ELEMENT X - - A>";
  const std::pair<std::string, std::string> cases[] = {
      {"<!ENTITY % s 'INCLUDE'><!ENTITY % s 'IGNORE'><![ %s; [" + x + "]]>" + x, "X 1 4 A; X 1 4 A"},
      {"<![IGNORE[" + x + "]]><!ELEMENT Y - - A>", "Y 1 4 A"},
      {"<![INCLUDE[<![INCLUDE[" + x + "]]>" + x + "]]>" + x, "X 1 4 A; X 1 4 A; X 1 4 A"},
      // The first "]]>" closes; what follows is read.
      {"<![IGNORE[<![IGNORE[ ]]>" + x + "]]>", "X 1 4 A"},
      {"<![IGNORE[]]>" + x + "]]><!ELEMENT Y - - A>", "Y 1 4 A"},
      {"<![IGNORE[" + x, ""},
      {"<![IGNORE[<!ATTLIST X [a]]]>" + x, "X 1 4 A"},
      {"<![OTHER[" + x + "]]>", "X 1 4 A"},
      {"<![INCLUDE[]]>" + x, "X 1 4 A"},
      // An undeclared reference ends the text, but only its section inside one.
      {"<!ELEMENT Y - - A> %no; " + x, "Y 1 4 A"},
      {"<!ELEMENT Y - - (A|%no;)>" + x, ""},
      {"<![INCLUDE[<!ELEMENT Y - - A> %no; ]]>" + x, "Y 1 4 A; X 1 4 A"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(Tables(text).elements(), expected) << text;
  EXPECT_EQ(Tables("%no;").result, -1);

  const Tables tables(
      "<!ELEMENT (X|Y) - - A><!GROUP PLAIN (x|NONE)><!GROUP BREAK X -- c --><!GROUP OTHER Y>"
      "<!GROUP BLOCK Y Y>");
  EXPECT_EQ(tables.element("X")->getGroup(), GROUP_PLAIN | GROUP_BREAK);
  EXPECT_EQ(tables.element("Y")->getGroup(), 0u);
}

TEST(DTDParser, PublicIdentifiersAreReadThroughTheCatalog) {
  const std::filesystem::path file = std::filesystem::temp_directory_path() / "zeldom40_catalog_test.dtd";
  std::ofstream(file) << "<!ELEMENT X - - A> %self;";
  const std::string text = "<!ENTITY % self PUBLIC 'pub'> %self; <!ELEMENT Y - - A>";
  {
    const Tables tables(text);
    EXPECT_EQ(tables.elements(), "Y 1 4 A");
    CatalogRecord record{file.string()};
    Hash<CatalogRecord> catalog(Hash<CatalogRecord>::kFrameBuckets);
    catalog.insert("pub", &record);
    tables->catalog = &catalog;
    const ParserType::_dtd_parser_frame shared{tables.operator->()};
    DTDParser(text.data(), static_cast<unsigned>(text.size()), &shared).parse(LexerType::LEX_EOF);
    tables->catalog = nullptr;
    // The file refers to itself: it is opened only so often.
    EXPECT_EQ(tables->readings, 2u + 16u);
    EXPECT_EQ(tables.elements(), "Y 1 4 A; X 1 4 A");
    EXPECT_EQ(tables->cuts, 1u);
  }
  std::filesystem::remove(file);
}

TEST(DTDParser, APagesDeclarationsJoinTheTables) {
  const Tables tables("<!ELEMENT P - O (A)><!ATTLIST P a CDATA #IMPLIED>");
  const AttributeDefinition* old = tables.element("P")->findAttribute("A");
  const unsigned before = tables->generation;
  const std::string page = "<!ATTLIST P z CDATA #IMPLIED><!ELEMENT Q - - (P)>";
  const ParserType::_dtd_parser_frame shared{tables.operator->()};
  {
    DTDParser nested(page.data(), static_cast<unsigned>(page.size()), &shared);
    EXPECT_EQ(nested.parse(LexerType::LEX_EOF), 0);
  }
  EXPECT_EQ(tables.attributes("P"), "z 1 3");
  EXPECT_EQ(old->getName(), "a") << "attributes of open pages point into a list that was replaced";
  EXPECT_EQ(tables.elements(), "P 2 4 (A); Q 1 4 (P)");
  EXPECT_NE(tables->generation, before);
}

// Reads a page's declarations into the tables; whether all of them were taken.
bool readPage(const Tables& tables, std::string_view page) {
  const unsigned cuts = tables->cuts;
  const ParserType::_dtd_parser_frame shared{tables.operator->()};
  DTDParser(page.data(), static_cast<unsigned>(page.size()), &shared).parse(LexerType::LEX_EOF);
  return tables->cuts == cuts;
}

// "names 1 tokens 2 lists 0 entities 0": what the tables hold of pages.
std::string kept(const Tables& tables) {
  return "names " + std::to_string(tables->pageShare.names) + " tokens " + std::to_string(tables->pageShare.tokens) +
         " lists " + std::to_string(tables->pageLists.size()) + " entities " +
         std::to_string(tables->generalRecords.size() + tables->parameterRecords.size());
}

TEST(DTDParser, OnlyWhatIsKeptCountsAgainstTheBoundsOfPages) {
  const std::pair<const char*, const char*> cases[] = {
      {"<!ELEMENT P - - (Q|R)>", "names 0 tokens 0 lists 0 entities 0"},  // loses, and Q and R stay unknown
      {"<!ELEMENT Q - - (P,(R))>", "names 2 tokens 4 lists 0 entities 0"},
      {"<!ELEMENT (P|Q) - - (#PCDATA)>", "names 1 tokens 2 lists 0 entities 0"},
      {"<!ELEMENT (Q|Q) - - P>", "names 1 tokens 1 lists 0 entities 0"},
      // Dropped, each at another place.
      {"<!ELEMENT Q - - (R & #PCDATA & S)>", "names 0 tokens 0 lists 0 entities 0"},
      {"<!ELEMENT Q - - (R", "names 0 tokens 0 lists 0 entities 0"},
      {"<!ELEMENT Q - - (R) -(S) +(T) !>", "names 0 tokens 0 lists 0 entities 0"},
      {"<!ATTLIST P a CDATA #IMPLIED>", "names 0 tokens 0 lists 1 entities 0"},
      {"<!ATTLIST P a (x|y) #IMPLIED><!ATTLIST P a (x|z) #IMPLIED>", "names 0 tokens 0 lists 2 entities 0"},
      {"<!ATTLIST Q a (x|y) #IMPLIED>", "names 0 tokens 0 lists 0 entities 0"},
      {"<!ENTITY e 'x'><!ENTITY e 'y'><!ENTITY % p 'z'><!ENTITY % p 'z'><!ENTITY c '&#300;'>",
       "names 0 tokens 0 lists 0 entities 3"},
  };
  for (const auto& [page, expected] : cases) {
    SCOPED_TRACE(page);
    const Tables tables("<!ELEMENT P - O (A)>");
    EXPECT_TRUE(readPage(tables, page));
    EXPECT_EQ(kept(tables), expected);
    const std::string elements = tables.elements();
    const std::string attributes = tables.attributes("P");
    const std::size_t bytes = tables->pageShare.bytes;
    const unsigned generation = tables->generation;
    const int names = tables->names.size();
    const long nodes = liveNodes::count;
    // Again and again: nothing comes, and what the pages said goes on to hold.
    for (int i = 0; i < 50; ++i) EXPECT_TRUE(readPage(tables, page));
    EXPECT_EQ(kept(tables), expected);
    EXPECT_EQ(tables.elements(), elements);
    EXPECT_EQ(tables.attributes("P"), attributes);
    EXPECT_EQ(tables->pageShare.bytes, bytes);
    EXPECT_EQ(tables->generation, generation);
    EXPECT_EQ(tables->names.size(), names);
    EXPECT_EQ(liveNodes::count, nodes);
  }
}

TEST(DTDParser, TellsWhatItLeavesOut) {
  const auto times = [](int count, const std::string& text) {
    std::string out;
    for (int i = 0; i < count; ++i) out += text;
    return out;
  };
  const auto numbered = [](int count, const std::string& before, const std::string& after) {
    std::string out;
    for (int i = 0; i < count; ++i) out.append(before).append(std::to_string(i)).append(after);
    return out;
  };
  const std::string lists = "<!ATTLIST P a (" + std::string(1 << 20, 'x') + "y";
  const struct {
    std::string page;
    bool isWhole;
  } cases[] = {
      {"", true},
      {"<!ELEMENT Q - - (R)><!ATTLIST Q a CDATA #IMPLIED><!ENTITY e 'x'>", true},
      {"<!ELEMENT Q - - (R & #PCDATA & S)>", true},  // faulty, not cut
      {"<!ENTITY % x SYSTEM 'x.dtd'>%x;<!ELEMENT Q - - (R)>", true},
      {"%x;<!ELEMENT Q - - (R)>", false},
      {"<![IGNORE[%x; %y;]]><!ELEMENT Q - - (R)>", true},
      {"<![INCLUDE[<!ELEMENT Q - - (%x;)>]]>", false},
      {"<!ELEMENT Q - - " + times(100, "(") + times(100, ")") + ">", true},
      {"<!ELEMENT Q - - " + times(101, "(") + times(101, ")") + ">", false},
      {times(100, "<![INCLUDE[<") + times(100, "]]>"), true},
      {times(101, "<![INCLUDE[<") + times(101, "]]>"), false},
      {numbered(1024, "<!ELEMENT X", " - - EMPTY>"), true},
      {numbered(1025, "<!ELEMENT X", " - - EMPTY>"), false},
      {"<!ELEMENT X - - (P" + times(65534, "|P") + ")>", true},
      {"<!ELEMENT X - - (P" + times(65535, "|P") + ")>", false},
      {"<!ELEMENT X O O (P" + times(1022, "|P") + ")>", true},
      {"<!ELEMENT X O O (P" + times(1023, "|P") + ")>", false},
      {"<!ELEMENT P O O (P" + times(99999, "|P") + ")>", true},  // loses
      {lists + "1) #IMPLIED>" + lists + "2) #IMPLIED>", true},
      {lists + "1) #IMPLIED>" + lists + "2) #IMPLIED>" + lists + "3) #IMPLIED>" + lists + "4) #IMPLIED>", false},
      {"<!ENTITY e '" + std::string(8 << 20, 'x') + "'>", false},
      {"<!ENTITY % e '" + std::string(8 << 20, 'x') + "'>", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.page.substr(0, 60));
    const Tables tables("<!ELEMENT P - O (A)>");
    EXPECT_EQ(readPage(tables, c.page), c.isWhole);
    EXPECT_LE(tables->pageShare.bytes, std::size_t{8} << 20);
    // Room is left for other kinds of declarations, and what is declared already is read as ever.
    EXPECT_TRUE(readPage(tables, "<!ELEMENT P - - (A)><!ATTLIST P z CDATA #IMPLIED>"));
    EXPECT_EQ(tables.attributes("P"), "z 1 3");
  }
}

// The transitional DTD of HTML 4.01, where Debian's w3c-sgml-lib has put it: it ignores two elements for frames, in a
// section that refers to an entity which is declared nowhere.
TEST(DTDParser, ReadsTheDocumentTypeOfTheW3CWhole) {
  std::ifstream file("/usr/share/xml/w3c-sgml-lib/schema/dtd/REC-html401-19991224/loose.dtd", std::ios::binary);
  if (!file) GTEST_SKIP() << "w3c-sgml-lib is not installed";
  const std::string text(std::istreambuf_iterator<char>(file), {});
  const DocumentType type("loose", text.data(), static_cast<int>(text.size()));
  EXPECT_EQ(type.getElementDefinitions().size(), 89u);
  EXPECT_FALSE(type.isCut());
}

TEST(BuiltInDTD, IsReadWhole) {
  const Tables tables(builtInDTD());
  EXPECT_EQ(tables.result, 0);
  EXPECT_EQ(tables->winners.size(), 127u);
  EXPECT_EQ(tables->generalEntities().size(), 252u);
  EXPECT_EQ(tables->charEntities().find(8364)->second.name, "euro");
  // All that a model or a list names is declared.
  for (int id = NameTable::kFirstName; id < tables->names.size(); ++id) {
    EXPECT_TRUE(tables.element(tables->names.name(id).view())) << tables->names.name(id).view();
  }
  for (const ElementDefinition* d : tables->winners) EXPECT_NE(d->getElementID(), ID_UNKNOWN) << d->getName();
}

// Also to a page that declares things of its own before anything was asked for.
TEST(BuiltInDTD, SaysTheSameIfItIsReadOnDemand) {
  for (const std::string page : {"",
                                 "<!ENTITY nbsp 'x'><!ENTITY own 'y'><!ATTLIST P z CDATA #IMPLIED><!ELEMENT B - O ANY>"
                                 "<!ELEMENT X O O (P|%special;)><!ATTLIST (X|TD) %attrs;>"}) {
    const auto declare = [&page](const Tables& tables) {
      const ParserType::_dtd_parser_frame shared{tables.operator->()};
      DTDParser(page.data(), static_cast<unsigned>(page.size()), &shared).parse(LexerType::LEX_EOF);
    };
    const Tables whole(builtInDTD());
    declare(whole);
    const Tables tables(builtInDTD(), /*deferring=*/true);
    EXPECT_GT(tables->deferredContents.size(), 90u);
    EXPECT_EQ(tables->deferredLists.size(), 91u);
    EXPECT_EQ(tables->deferredEntities.count, 252u);
    declare(tables);
    EXPECT_EQ(tables.elements(), whole.elements());
    for (const ElementDefinition* d : whole->winners) {
      EXPECT_EQ(tables.attributes(d->upperName().view()), whole.attributes(d->upperName().view())) << d->getName();
    }
    EXPECT_EQ(tables->generalEntityCount(), whole->generalEntityCount());
    for (const auto& [code, named] : whole->charEntities()) {
      const GeneralEntityRecord* entity = tables->generalEntities().find(named.name);
      ASSERT_TRUE(entity && tables->charEntities().contains(code)) << named.name;
      EXPECT_EQ(tables->charEntities().at(code).name, named.name);
      EXPECT_EQ(entity->text, named.text);
      EXPECT_EQ(entity->order, whole->generalEntities().find(named.name)->order);
    }
    EXPECT_EQ(tables->names.size(), whole->names.size());
  }
}

TEST(BuiltInDTD, DepartsFromHtmlWhereItShould) {
  const Tables tables(builtInDTD());
  const std::pair<const char*, const char*> contents[] = {
      {"HTML", "(HEAD, (FRAMESET | BODY))"},
      {"HEAD", "(TITLE & ISINDEX? & BASE?)+ (SCRIPT | STYLE | META | LINK | OBJECT)"},
      {"TITLE", "(#PCDATA) -(SCRIPT | STYLE | META | LINK | OBJECT)"},
      {"NOFRAMES", "(BODY) -(NOFRAMES)"},
      {"FRAMESET", "((FRAMESET | FRAME)+ & NOFRAMES?)"},
      {"COLGROUP", "(COL)*"},
      {"TABLE", "(CAPTION?, (COL* | COLGROUP*), THEAD?, TFOOT?, TBODY+)"},
      {"JSP:PLUGIN", "(JSP:PARAMS | JSP:FALLBACK)?"},
  };
  for (const auto& [name, content] : contents) EXPECT_EQ(tables.element(name)->getContentText(), content) << name;
  const std::pair<const char*, const char*> lists[] = {
      {"TITLE", "lang 0 3; dir 0 3 LTR|RTL"},
      {"JSP:USEBEAN", "id 2 2; scope 2 0 PAGE|SESSION|REQUEST|APPLICATION; class 1 3; beanName 1 3; type 1 3"},
      {"PARAM", "id 2 3; name 1 2; value 1 3; valuetype 1 0 DATA|REF|OBJECT; type 1 3; property 1 3"},
  };
  for (const auto& [name, list] : lists) EXPECT_EQ(tables.attributes(name), list) << name;
  // Enumerations say the type before them.
  const std::pair<const char*, std::pair<const char*, int>> types[] = {
      {"TD", {"SCOPE", 4}},
      {"TD", {"ALIGN", 0}},
      {"COL", {"ALIGN", 1}},
      {"OL", {"DYNAMICELEMENT", 0}},
  };
  for (const auto& [element, attribute] : types) {
    const AttributeDefinition* definition = tables.element(element)->findAttribute(attribute.first);
    ASSERT_TRUE(definition) << element << ' ' << attribute.first;
    EXPECT_EQ(definition->getDeclaredType(), attribute.second) << element << ' ' << attribute.first;
  }
  for (const char* reserved : {"DATASRC", "DATAFLD", "DATAFORMATAS"}) {
    EXPECT_FALSE(tables.element("SPAN")->findAttribute(reserved));
  }
}

}  // namespace
}  // namespace zeldom40
