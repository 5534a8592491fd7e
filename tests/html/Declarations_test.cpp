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
