// Places of nodes and attributes, lines and columns, and the way back to the bytes of a file.
#include "dom/source/SourceMap.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/RandomPage.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

using Range = SourceMap::Range;

class SourceMapTest : public PageTest {
 protected:
  void TearDown() override { CodeConv::SetCodepage(1252); }

  std::string cut(Range range) {
    return range.isKnown() ? source().substr(range.begin, range.length()) : std::string("nowhere");
  }
};

TEST_F(SourceMapTest, TagsAndAttributesAreWhereTheyStand) {
  struct Case {
    const char* page;
    const char* element;
    const char* begin;
    const char* end;
    const char* attribute;
    const char* name;
    const char* value;
  };
  const Case cases[] = {
      {"a<P align = 'left' Id=x>b</P >c", "P", "<P align = 'left' Id=x>", "</P >", "ALIGN", "align", "left"},
      {"<HR NOSHADE>", "HR", "<HR NOSHADE>", "", "NOSHADE", "NOSHADE", ""},
      {"<P x=1 X=2>", "P", "<P x=1 X=2>", "", "X", "X", "2"},
      {"<P title='<%= a(1) %>' id=b>", "P", "<P title='<%= a(1) %>' id=b>", "", "ID", "id", "b"},
      {"<!--#include file=\"a\" FILE=\"b\"-->", "SSI:INCLUDE", "<!--#include file=\"a\" FILE=\"b\"-->", "", "FILE",
       "FILE", "b"},
      {"<%@ a=b%%>", "JSP:DIRECTIVE", "<%@ a=b%%>", "", "a", "a", "b%"},
      {"<%@ page page=b %>", "JSP:DIRECTIVE.PAGE", "<%@ page page=b %>", "", "page", "page", "b"},
      {"<%@ page info=b %>", "JSP:DIRECTIVE.PAGE", "<%@ page info=b %>", "", "page", "nowhere", "nowhere"},
      // Code and comments hide the ends of values.
      {"<A HREF=\"<%= f(\"x\") %>\">", "A", "<A HREF=\"<%= f(\"x\") %>\">", "", "HREF", "HREF", "<%= f(\"x\") %>"},
      {"<A TITLE=\"<!-- \" -->\" =z>", "A", "<A TITLE=\"<!-- \" -->\" =z>", "", "TITLE", "TITLE", "<!-- \" -->"},
      {"<A TITLE=\"<!-- \" -->\" =z>", "A", "<A TITLE=\"<!-- \" -->\" =z>", "", "=z", "=z", ""},
      {"<A ID=<%=y%>", "A", "<A ID=<%=y%>", "", "ID", "ID", "<%=y%>"},
  };
  for (const bool askedBefore : {false, true}) {
    for (const Case& each : cases) {
      load(each.page);
      Element* found = element(each.element);
      ASSERT_NE(found, nullptr) << each.page;
      // Attributes that a host holds are objects: their places are looked for in the tag again.
      if (askedBefore) found->getAttributes();
      const SourceMap map(doc_);
      EXPECT_EQ(cut(map.getBeginTag(found)), each.begin) << each.page;
      EXPECT_EQ(cut(map.getEndTag(found)), each.end) << each.page;
      EXPECT_EQ(cut(map.getAttributeName(found, each.attribute)), each.name) << each.page << askedBefore;
      EXPECT_EQ(cut(map.getAttributeValue(found, each.attribute)), each.value) << each.page << askedBefore;
    }
  }
}

TEST_F(SourceMapTest, AnEditedTagIsMeasuredAsItIsWritten) {
  load("<P id=a>x");
  element("P")->setAttribute("ALIGN", "a \"b\"", /*notify=*/true);
  const SourceMap map(doc_);
  EXPECT_EQ(map.getLength(), source().size());
  EXPECT_EQ(cut(map.getBeginTag(element("P"))) + cut(map.getEndTag(element("P"))),
            source(element("P"), Document::SOURCE_TAGS));
  EXPECT_EQ(cut(map.getAttributeValue(element("P"), "ALIGN")), "a \"b\"");
  // Server code is written as it stands, whatever is in it.
  load("<A HREF=<%=\">\"%>");
  element("A")->setAttribute("ID", "a", /*notify=*/true);
  EXPECT_EQ(cut(SourceMap(doc_).getAttributeValue(element("A"), "HREF")), "<%=\">\"%>");
}

// However odd a page is: its attributes stand where they stood before somebody asked for them.
TEST_F(SourceMapTest, PlacesStayWhenAttributesAreAskedFor) {
  const std::string_view hiding[] = {"<%= \"a\" %>",      "<!-- \"> -->", "<%-- ' --%>", "<?\"?>",
                                     "<![CDATA[ \"> ]]>", "<%",           "<!--"};
  const auto places = [this](const SourceMap& map) {
    std::vector<std::size_t> all;
    for (Node* n = doc_->getDocumentElement(); n; n = doc_->findNextNode(n, nullptr, false, false)) {
      if (n->getNodeType() != Node::NODE_ELEMENT) continue;
      const auto* asked = static_cast<Element*>(n);
      for (unsigned long i = 0; i < asked->getNumAttributes(); ++i) {
        for (const Range range : {map.getAttributeName(asked, i), map.getAttributeValue(asked, i)}) {
          all.insert(all.end(), {range.begin, range.end});
        }
      }
    }
    return all;
  };
  fuzz::RandomPage random(/*seed=*/7, *dom_->getDocumentType());
  std::size_t compared = 0;
  for (int i = 0; i < 3000; ++i) {
    std::string page = random.next();
    for (std::size_t n = random.below(4); n > 0; --n) {
      page.insert(random.below(page.size() + 1), hiding[random.below(std::size(hiding))]);
    }
    if (fuzz::RandomPage::mayDeclare(page)) continue;
    load(page);
    const SourceMap untouched(doc_);
    const std::vector<std::size_t> before = places(untouched);  // asks for all attributes
    const std::vector<std::size_t> after = places(SourceMap(doc_));
    ASSERT_EQ(before, after) << page;
    compared += after.size();
  }
  EXPECT_GT(compared, 10000u);
}

TEST_F(SourceMapTest, WhatATagStatesAgainIsFound) {
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"<P ALIGN=a align=b zz ZZ ID Align='>'>", {"align", "Align"}},
      {"<P yy yy =yy>", {"yy"}},
      {"<SERVLET a=\"<!-- \" a -->\" a>", {"a"}},
      {"<%@ a=b a=c %>", {}},
  };
  for (const auto& [page, names] : cases) {
    load(page);
    Node* node = doc_->getDocumentElement();
    while (node &&
           !(node->getNodeType() == Node::NODE_ELEMENT && static_cast<Element*>(node)->getNumAttributes() > 0)) {
      node = doc_->findNextNode(node, nullptr, false, false);
    }
    ASSERT_NE(node, nullptr) << page;
    const SourceMap map(doc_);
    std::vector<std::string> found;
    for (const SourceMap::Repeat& repeat : map.getRepeatedAttributes(static_cast<Element*>(node))) {
      EXPECT_EQ(cut(repeat.range), repeat.name);
      found.push_back(repeat.name);
    }
    EXPECT_EQ(found, names) << page;
  }
  load("<P ID=a ID=b>");
  element("P")->setAttribute("ALIGN", "left", /*notify=*/true);
  EXPECT_TRUE(SourceMap(doc_).getRepeatedAttributes(element("P")).empty());
}

TEST_F(SourceMapTest, ImpliedAndForeignNodesHaveEmptyRangesOrNone) {
  load("ab<P>c</I>");
  const SourceMap map(doc_);
  EXPECT_EQ(map.getBeginTag(element("BODY")).begin, 0u);
  EXPECT_TRUE(map.getBeginTag(element("BODY")).isEmpty());
  EXPECT_EQ(cut(map.getEndTag(element("I"))), "</I>");
  EXPECT_FALSE(map.getBeginTag(text()).isKnown());
  Element* loose = doc_->createElement("P");
  EXPECT_FALSE(map.getAttributeName(loose, 0ul).isKnown());
  loose->releaseRef(true);
  EXPECT_EQ(SourceMap(nullptr).getLineCount(), 1u);
}

// What every page must hold: pieces tile the text, each byte's node has it, positions lead back.
TEST_F(SourceMapTest, EveryByteOfThePagesIsFoundAgain) {
  for (const int codepage : {1252, 932, 65001}) {
    CodeConv::SetCodepage(codepage);
    for (const auto& file : std::filesystem::directory_iterator(ZELDOM40_SOURCE_DIR "/tests/pages")) {
      std::ostringstream bytes;
      bytes << std::ifstream(file.path(), std::ios::binary).rdbuf();
      const std::string original = bytes.str();
      load(original);
      const SourceMap map(doc_, original.data(), original.size(), CodeConv::CHARSET_AUTO);
      ASSERT_EQ(map.getLength(), original.size()) << file.path();
      for (std::size_t i = 0; i < original.size(); ++i) {
        const Range range = map.getRange(map.getNode(i));
        ASSERT_TRUE(range.begin <= i && i < range.end) << file.path() << i;
        const std::size_t back = map.getOffset(map.getPosition(i));
        ASSERT_TRUE(back == i || map.getPosition(back).column == map.getPosition(i).column ||
                    (back == SourceMap::NOWHERE && original[i] == '\n'))
            << file.path() << i;
        ASSERT_EQ(map.toFile(i), i);
      }
      EXPECT_EQ(map.getNode(original.size()), nullptr);
    }
  }
}

TEST_F(SourceMapTest, ColumnsCountCharactersOfTheCodePage) {
  // Two double-byte characters, the second with a trail byte that looks like a backslash; line ends of three kinds.
  const std::string page = "<P>\x82\xA0\x83\x5Cx\r\ny\rz\n" + std::string(200, 'a') + "\x82\xA0|";
  struct Case {
    int codepage;
    std::size_t offset, line, column;
  };
  const Case cases[] = {{1252, 7, 1, 8},
                        {932, 7, 1, 6},
                        {932, 6, 1, 5},
                        {932, 9, 1, 8},
                        {932, 12, 3, 1},
                        {932, page.size() - 1, 4, 202},
                        {932, page.size(), 4, 203}};
  for (const Case& each : cases) {
    CodeConv::SetCodepage(each.codepage);
    load(page);
    const SourceMap map(doc_);
    const SourceMap::Position position = map.getPosition(each.offset);
    EXPECT_EQ(position.line, each.line) << each.offset;
    EXPECT_EQ(position.column, each.column) << each.offset;
  }
  const SourceMap map(doc_);
  EXPECT_EQ(map.getLineCount(), 4u);
  EXPECT_EQ(map.getOffset({4, 202}), page.size() - 1);
  EXPECT_EQ(map.getOffset({1, 7}), 8u);
  EXPECT_EQ(map.getOffset({1, 8}), SourceMap::NOWHERE);
  EXPECT_EQ(map.getOffset({0, 1}), SourceMap::NOWHERE);
  EXPECT_EQ(map.getPosition(page.size() + 1).line, 0u);
}

// The bytes of a file, and for each character of its text (units of that many bytes) the bytes that it came from.
TEST_F(SourceMapTest, LeadsBackToTheBytesOfTheFile) {
  CodeConv::SetCodepage(932);
  struct Case {
    const char* name;
    std::string file;
    CodeConv::Charset charset;
  };
  const std::string kanji("\x1B$B$\"%=\x1B(B", 10);
  const Case cases[] = {
      {"line ends", "<P>a\nb\rc\r\nd\x1A", CodeConv::CHARSET_AUTO},
      {"ISO-2022-JP", "<P>a" + kanji + "b\n" + kanji + "\x1B(I!\"\x1B(J~\n\x1B$@$\"\nc", CodeConv::CHARSET_JIS},
      {"ISO-2022-JP, cut", "<P>a\x1B$B$\"%\n\x1B$", CodeConv::CHARSET_JIS},
      {"EUC", "<P>\xA4\xA2\x8E\xB1x\xA4\n\x8Ez\xA4\xA2\xFF", CodeConv::CHARSET_EUC},
  };
  for (const Case& each : cases) {
    CodeConv converter;
    const std::string text = converter.Import(each.file.data(), static_cast<int>(each.file.size()), each.charset);
    load(text);
    const SourceMap map(doc_, each.file.data(), each.file.size(), converter.GetCharset());
    ASSERT_TRUE(map.hasFile()) << each.name;
    std::size_t last = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
      const std::size_t at = map.toFile(i);
      ASSERT_GE(at, last) << each.name;
      ASSERT_LT(at, each.file.size()) << each.name;
      last = at;
      const std::size_t back = map.fromFile(at);
      // Both bytes of a line end may come from one.
      ASSERT_TRUE(back == i || (text[i] == '\n' && back == i - 1)) << each.name << i;
      // ASCII letters keep their byte, whatever stands around them.
      if (text[i] >= 'a' && text[i] <= 'd') {
        EXPECT_EQ(each.file[at], text[i]) << each.name << i;
      }
    }
    EXPECT_EQ(map.fromFile(each.file.size() + 1), SourceMap::NOWHERE);
  }
  load("<P>\x82\xA0\x83\x5Cx");
  const std::string file = "<P>" + kanji + "x";
  const SourceMap map(doc_, file.data(), file.size(), CodeConv::CHARSET_JIS);
  const Range range = map.toFile(Range{3, 7});
  EXPECT_EQ(file.substr(range.begin, range.length()), "$\"%=");
}

TEST_F(SourceMapTest, BytesThatAreNotTheOriginLeadNowhere) {
  load("<P>a");
  const SourceMap map(doc_, "<P>b", 4, CodeConv::CHARSET_NONE);
  EXPECT_FALSE(map.hasFile());
  EXPECT_EQ(map.toFile(std::size_t{0}), SourceMap::NOWHERE);
  EXPECT_FALSE(map.toFile(Range{0, 1}).isKnown());
}

TEST_F(SourceMapTest, DepthNeedsNoStack) {
  std::string page;
  for (int i = 0; i < 100000; ++i) page += "<B>";
  load(page);
  const SourceMap map(doc_);
  EXPECT_EQ(map.getRange(map.getNode(page.size() - 1)).length(), 3u);
}

}  // namespace
}  // namespace zeldom40
