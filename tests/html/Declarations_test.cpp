// Document type declarations and the subsets in them.
#include "dom/dtd/DTDFrame.h"
#include "dom/dtd/DTDParser.h"
#include "tests/html/HtmlTest.h"

namespace zeldom40 {
namespace {

using Declarations = PageTableTest;

TEST_F(Declarations, EndAtTheirCloserOrAtWhatDoesNotFit) {
  expectTrees({
      {"<!DOCTYPE HTML PUBLIC \"-//a>b\" 'c'>\n<P>",
       "ZELROOT(?!DOCTYPE\"<!DOCTYPE HTML PUBLIC \\\"-//a>b\\\" 'c'>\" "
       "~\"\\n\" HTML(BODY(P)))"},
      {"<!DOCTYPE html system a.dtd b>", "ZELROOT(?!DOCTYPE\"<!DOCTYPE html system a.dtd b>\")"},
      {"<!DOCTYPE HTML PUBLIC \"\" [ ]>", "ZELROOT(?!DOCTYPE\"<!DOCTYPE HTML PUBLIC \\\"\\\" [ ]>\")"},
      // What does not fit belongs to the declaration, what follows it does not.
      {"<!DOCTYPE HTML <B>x", "ZELROOT(?!DOCTYPE\"<!DOCTYPE HTML <\" HTML(BODY(\"B>x\")))"},
      {"<!DOCTYPE HTML FOO BAR>", "ZELROOT(?!DOCTYPE\"<!DOCTYPE HTML FOO\" HTML(BODY(\" BAR>\")))"},
      {"<!DOCTYPE HTML SYSTEM a [] b>", "ZELROOT(?!DOCTYPE\"<!DOCTYPE HTML SYSTEM a [] b\" HTML(BODY(\">\")))"},
      {"<!DOCTYPE HTML SYSTEM=a>", "ZELROOT(?!DOCTYPE\"<!DOCTYPE HTML SYSTEM=\" HTML(BODY(\"a>\")))"},
      // A construct that begins where a declaration gave up is text, with the bytes that its tokens leave out.
      {"<!DOCTYPE HTML <%-- c --%> x<P>", "ZELROOT(?!DOCTYPE\"<!DOCTYPE HTML <\" HTML(BODY(\"%-- c --%> x\" P)))"},
      // A second one passes without a mark.
      {"<!DOCTYPE A><!DOCTYPE B>", "ZELROOT(?!DOCTYPE\"<!DOCTYPE A>\" ?!DOCTYPE\"<!DOCTYPE B>\")"},
  });
  EXPECT_EQ(tree("<!DOCTYPE HTML <!-- c -->x\"", kDumpPlain),
            "ZELROOT(?!DOCTYPE\"<!DOCTYPE HTML <\" HTML(BODY(\"-- c --x\\x1B\\\"\")))");
  EXPECT_EQ(doc_->getError(), 0u);
}

TEST_F(Declarations, OfASubsetCountForThePageBehindThem) {
  expectTrees({
      // What was known of a name before does not stay.
      {"<NEW A=1>x", "ZELROOT(NEW!200 HTML(BODY(\"x\")))"},
      {"<!DOCTYPE HTML SYSTEM a [<!ELEMENT NEW - O (#PCDATA)><!ATTLIST NEW a CDATA #IMPLIED>]><NEW A=1>x",
       "ZELROOT(?!DOCTYPE\"<!DOCTYPE HTML SYSTEM a [<!ELEMENT NEW - O (#PCDATA)><!ATTLIST NEW a CDATA #IMPLIED>]>\" "
       "NEW!8(\"x\"))"},
      // In the middle of a page, with elements of that name open.
      {"<P>a<!DOCTYPE A SYSTEM b [<!ELEMENT IT O O (P|#PCDATA)>]><P>b</P>c",
       "ZELROOT(HTML(BODY(P(\"a\" ?!DOCTYPE\"<!DOCTYPE A SYSTEM b [<!ELEMENT IT O O (P|#PCDATA)>]>\") P(\"b\") "
       "\"c\")))"},
      {"<NEW>a<IT>", "ZELROOT(NEW!8(\"a\" IT!8))"},
  });
}

TEST_F(Declarations, OfAHostCountForTheNextPage) {
  EXPECT_EQ(tree("<P NEWER=1><B OWN=2>", kDumpErrors), "ZELROOT(HTML(BODY(P!4(B!44))))");
  const std::string_view text = "<!ATTLIST P newer CDATA #IMPLIED>";
  ParserType::_dtd_parser_frame shared{dom_->getDocumentType()->getDTDFrame()};
  DTDParser parser(text.data(), static_cast<unsigned>(text.size()), &shared);
  parser.parse(LexerType::LEX_EOF);
  EXPECT_EQ(tree("<P NEWER=1><B OWN=2>", kDumpErrors), "ZELROOT(HTML(BODY(P(B!44))))");
}

// One that is dropped leaves names behind, more than what was known before has room for.
TEST_F(Declarations, ThatAreDroppedChangeNothing) {
  std::string names;
  std::string body = "<BODY>";
  for (int i = 0; i < 200; ++i) {
    const std::string name = "NX" + std::to_string(i);
    names += (i == 0 ? "" : "|") + name;
    body += "<P><" + name + ">t</" + name + "></P>";
  }
  const std::string expected = tree("<!DOCTYPE A SYSTEM b [ ]>" + body);
  std::string read = tree("<!DOCTYPE A SYSTEM b [<!ELEMENT Q - - (" + names + ") !>]>" + body);
  EXPECT_EQ(read.substr(read.find("HTML(BODY")), expected.substr(expected.find("HTML(BODY")));
}

// An entity means to a text what it meant where the text stands, whenever somebody asks.
TEST_F(Declarations, OfEntitiesCountForTheTextBehindThem) {
  const std::string_view declaration = "<!DOCTYPE A SYSTEM b [<!ENTITY foo \"bar\">]>";
  load("<P>&foo;");
  Document* other = dom_->createDocument("HTML");
  const std::string page = "&foo;" + std::string(declaration) + "&foo;";
  other->createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, /*adjust=*/false);
  NodeIterator texts = other->getElementsByTagName("TEXT");
  EXPECT_EQ(static_cast<Text*>(texts.moveTo(0))->getData(), "\x1b&foo;");
  EXPECT_EQ(static_cast<Text*>(texts.moveTo(1))->getData(), "bar");
  dom_->deleteDocument(other);
  EXPECT_EQ(text()->getData(), "\x1b&foo;");
  load("<P>&foo;");
  EXPECT_EQ(text()->getData(), "bar");
  // One may stand for white space.
  load("<!DOCTYPE A SYSTEM b [<!ENTITY blank \" \">]><P>&blank;<P>&blank;x");
  EXPECT_TRUE(text(0)->isEmptyText(/*ignoreWhitespaceType=*/true));
  EXPECT_FALSE(text(1)->isEmptyText(/*ignoreWhitespaceType=*/true));
}

TEST_F(Declarations, TellAHostWhatWasCut) {
  const auto isCut = [this](int n) { return (find("!DOCTYPE", n)->getError() & ERR_PI_SUBSET_CUT) != 0; };
  load("<!DOCTYPE A SYSTEM b [<!ELEMENT NEW - O (#PCDATA)>]><P>");
  EXPECT_FALSE(isCut(0));
  EXPECT_FALSE(dom_->getDocumentType()->isCut());
  load("<!DOCTYPE A [%none;]><!DOCTYPE A SYSTEM b [%none;<!ELEMENT MORE - O (#PCDATA)>]><P>");
  EXPECT_FALSE(isCut(0)) << "no subset stands there";
  EXPECT_TRUE(isCut(1));
  EXPECT_TRUE(dom_->getDocumentType()->isCut());
  EXPECT_FALSE(dom_->getDocumentType()->getElementDefinition("MORE"));
  EXPECT_EQ(doc_->getErrorList().back()->error & ERR_PI_SUBSET_CUT, ERR_PI_SUBSET_CUT);
  EXPECT_EQ(doc_->getError() & ERR_DOC_SEVERE_PARSE_ERROR, 0u);
  // The parser reads only so many subsets of one page.
  std::string many;
  for (int i = 0; i < 65; ++i) many += "<!DOCTYPE A SYSTEM b [<!ENTITY e 'x'>]>";
  load(many);
  EXPECT_FALSE(isCut(63));
  EXPECT_TRUE(isCut(64));
}

// One DOM serves many pages: what they declare is bounded, and the pages of every day go on to be read.
TEST_F(Declarations, OfManyPagesFitIntoOneDOM) {
  const auto pageOf = [](const std::string& subset, const char* body) {
    return "<!DOCTYPE HTML SYSTEM a [" + subset + "]>" + body;
  };
  const std::string daily = pageOf(
      "<!ELEMENT (DAILY|P|TABLE) - O (#PCDATA|B|(NEVER))*><!ATTLIST (DAILY|P) kind (a|b) #IMPLIED>"
      "<!ENTITY daily 'word'><!ENTITY % block 'x'>",
      "<P KIND=a>&daily;<DAILY KIND=b>x");
  const auto* frame = dom_->getDocumentType()->getDTDFrame();
  const auto size = [frame] {
    return frame->elementList->size() + frame->attributeLists.size() + frame->generalRecords.size() +
           frame->parameterRecords.size() + static_cast<std::size_t>(frame->names.size());
  };
  const std::string expected = tree(daily, kDumpPlain | kDumpErrors);
  const std::size_t afterOne = size();
  const long nodesAfterOne = liveNodes::count;
  for (int i = 0; i < 10000; ++i) load(daily);
  EXPECT_EQ(size(), afterOne);
  EXPECT_EQ(liveNodes::count, nodesAfterOne);
  EXPECT_FALSE(dom_->getDocumentType()->isCut());
  EXPECT_FALSE(tree(pageOf("<!ELEMENT LATER - O (#PCDATA)>", "<LATER>x")).empty());
  EXPECT_TRUE(dom_->getDocumentType()->getElementDefinition("LATER"));
  // Pages that declare something new each time, as much as they can.
  const std::string filler(2000, 'x');
  bool wasCut = false;
  for (int i = 0; i < 10000; ++i) {
    const std::string n = std::to_string(i);
    load(pageOf("<!ELEMENT N" + n + " O O (N" + n + "|P)* -(B)><!ATTLIST P a" + n + " (" + filler +
                    ") #IMPLIED><!ENTITY e" + n + " '" + filler + "'><!ENTITY % e" + n + " '" + filler + "'>",
                "<P>x"));
    wasCut = wasCut || (find("!DOCTYPE")->getError() & ERR_PI_SUBSET_CUT) != 0;
  }
  EXPECT_TRUE(wasCut);
  EXPECT_TRUE(dom_->getDocumentType()->isCut());
  EXPECT_LE(frame->pageShare.bytes, std::size_t{8} << 20);
  EXPECT_LT(size(), afterOne + 10000);
  EXPECT_EQ(tree(daily, kDumpPlain | kDumpErrors), expected);
}

// Elements with exclusions in every order make a set for each tag; they go with the page.
TEST_F(Declarations, OfExclusionsLeaveNoSetsBehind) {
  std::string subset;
  for (int i = 0; i < 300; ++i) {
    const std::string n = std::to_string(i);
    subset += "<!ELEMENT E" + n + " - - ANY -(F" + n + ")>";
  }
  unsigned state = 1;
  for (int page = 0; page < 5; ++page) {
    std::string text = "<!DOCTYPE HTML SYSTEM a [" + subset + "]><P>";
    for (int i = 0; i < 30000; ++i) {
      state = state * 1103515245 + 12345;
      text += i % 50 == 0 ? "<HR>" : "<E" + std::to_string(state / 65536 % 300) + ">";
    }
    load(text);
    const auto* frame = dom_->getDocumentType()->getDTDFrame();
    EXPECT_LE(frame->contents ? frame->contents->setCount() : 0, 4096u);
  }
}

// Each of these once had no end, or ran off the text.
TEST_F(Declarations, OfHostileSubsetsComeToAnEnd) {
  const std::string deep(3000, '(');
  const std::string subsets[] = {
      "",
      "<",
      "<!",
      "<!x",
      "<!FOO",
      "<!--",
      "<!-- ]> -->",
      "<![IGNORE[",
      "<![IGNORE[<!ELEMENT",
      "<![INCLUDE[<![INCLUDE[",
      "<!ATTLIST P a CDATA #IMPLIED ",
      "<!ATTLIST P z (a|b",
      "<!ATTLIST",
      "<!ELEMENT (",
      "<!ELEMENT X " + deep,
      "<!ELEMENT X O O (Y)><!ELEMENT Y O O (X)>",
      "<!ENTITY % a \"%a;%a;\"><!ENTITY % b \"%a;%a;\">%b;",
      "<!ENTITY % e \"\">%e;%e;%e;<!ELEMENT Z - - ANY>",
      "<!ENTITY q '&#0;&#65536;&#27;'>",
      "%undeclared;",
      "%",
      std::string("\0<!\0ELEMENT", 11),
  };
  for (const std::string& subset : subsets) {
    for (const char* end : {"", "]", "]>", "]>x<X><P>&q;<Y>"}) {
      const std::string page = "<!DOCTYPE HTML PUBLIC \"x\" [" + subset + end;
      load(page);
      EXPECT_EQ(source(), page);
    }
  }
  for (const char* page :
       {"<!DOCTYPE", "<!DOCTYPE HTML PUBLIC", "<!DOCTYPE HTML PUBLIC \"", "<!DOCTYPE HTML PUBLIC \"x",
        "<!DOCTYPE HTML PUBLIC \"x\"", "<!DOCTYPE HTML PUBLIC \"x\" ["}) {
    EXPECT_EQ(tree(page), "ZELROOT(?!DOCTYPE" + quotedBytes(page) + ")");
  }
}

}  // namespace
}  // namespace zeldom40
