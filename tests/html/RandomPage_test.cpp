// Random pages, and a page cut at every byte, come back as they were; scripts/test runs many more of them.
#include "fuzz/RandomPage.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "dom/tree/NodePool.h"
#include "dom/zeldom40.h"
#include "fuzz/PageCheck.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

using namespace std::string_view_literals;

// One of everything that opens something, so that each cut leaves another thing open; then forms gone wrong.
constexpr std::string_view kSamples[] = {
    "<!DOCTYPE HTML PUBLIC \"-//x\" 'y' [<!ENTITY % a \"b\"><!ELEMENT Y - O (P)* -(A) +(B)><![IGNORE[ z ]]>]>\r\n"
    "<%@ page import=\"a.b\" %><HTML><HEAD><TITLE>t &copy;</TITLE><SCRIPT><!-- a < b </b> --></SCRIPT></HEAD>"
    "<!-- c --><BODY BGCOLOR='#fff' x = y\"z><jsp:useBean id=\"b\"><jsp:scriptlet><![CDATA[ i > 0 ]]></jsp:scriptlet>"
    "</jsp:useBean><%-- d > --%><TABLE><ZELX:LOOP><TR><TD><%= \"%\" "
    "%>&#x41;&hellip;</TABLE></B><LI>\0\x1b\x1c\x1d\x82\xa0"
    "<!--#include file=\"a\"--><A HREF=\"<%= x %>\">b</A ><?p q?><!--METADATA type=\"Z\" startspan\r\n-->"sv,
    "<a href=<%= \"x>\" %>\">b<br/><hr / size=1><P align==\"x\" ALIGN=>y<SCRIPT><!-- </SCRIPT> --> a</Script ></script>"
    "<STYLE>a</STYLE><!-- a ><!--b--><!---><jsp:useBean id=b>x<![CDATA[d > e<%@ a='b'%><%--%><%@ taglib uri=\"<%",
    "<!--#INCLUDE\tx--- ><!--#echo--><?xml a?><?b ><!foo bar><!>a < b <= c <1d <9e>&amp&#65;&nosuch;&&#x41;\v\f<PRE>\n"
    "</PRE\n><\0a\0 b\0=\0>\x1b\x1c<!--\0--><%\0%>\x80<\xff\xa0>&\0;\x1b"sv};

class RandomPageTest : public ::testing::TestWithParam<DOM::JSPVersion> {};

TEST_P(RandomPageTest, PagesComeBack) {
  const long before = liveNodes::count;
  {
    fuzz::PageCheck check(GetParam(), /*declaringPagesPerDom=*/50);
    fuzz::RandomPage random(/*seed=*/40 + GetParam(), *check.dom()->getDocumentType());
    for (int i = 0; i < 600; ++i) {
      const std::string page = random.next();
      ASSERT_EQ(check.everyWay(page), "") << "page " << i << ": " << ::testing::PrintToString(page);
    }
  }
  EXPECT_EQ(liveNodes::count, before);
}

TEST_P(RandomPageTest, APageCutAnywhereComesBack) {
  fuzz::PageCheck check(GetParam(), /*declaringPagesPerDom=*/50);
  const auto expectBack = [&check](std::string_view page, std::size_t from) {
    for (std::size_t length = from; length <= page.size(); ++length) {
      ASSERT_EQ(check.everyWay(page.substr(0, length)), "") << "cut at " << length;
    }
  };
  for (std::string_view sample : kSamples) expectBack(sample, 0);
  for (const auto& file : std::filesystem::directory_iterator(ZELDOM40_SOURCE_DIR "/tests/pages")) {
    std::ifstream in(file.path(), std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(in), {}};
    SCOPED_TRACE(file.path());
    expectBack(page, page.size() - std::min<std::size_t>(60, page.size()));
  }
}

// Ordinary tags and texts are read from their bytes, but not by a parse that is to stop at a token: so one that waits
// for a token which no page has reads all by tokens, and must find the same.
TEST_P(RandomPageTest, BytesTellWhatTokensTell) {
  fuzz::PageCheck check(GetParam());
  DOM& dom = *check.dom();
  fuzz::RandomPage random(/*seed=*/60 + GetParam(), *dom.getDocumentType());
  const auto tree = [&dom](std::string_view page, LexerType::LexToken stop) {
    Document* document = dom.createDocument("HTML");
    Element* holder = document->createTemporaryElement();
    {
      HTMLParser parser(page.data(), page.size(), dom.getDocumentType()->getDTDFrame(), document);
      parser.pushNode(holder);
      parser.parse(stop);
    }
    std::string all = dumpTree(holder, kDumpAttributes | kDumpErrors | kDumpFlags);
    all += dumpTree(holder, kDumpPlain) + document->getSourceBuf(holder, Document::SOURCE_ALL, /*compact=*/false);
    holder->releaseRef(true);
    dom.deleteDocument(document);
    return all;
  };
  for (int i = 0; i < 3000; ++i) {
    const std::string page = i == 0 ? std::string(kSamples[1]) : i == 1 ? std::string(kSamples[2]) : random.next();
    if (fuzz::RandomPage::mayDeclare(page)) continue;
    ASSERT_EQ(tree(page, LexerType::LEX_EOF), tree(page, LexerType::LEX_NOTATION_DECL)) << page;
  }
}

INSTANTIATE_TEST_SUITE_P(BothVersions, RandomPageTest, ::testing::Values(DOM::JSP_VERSION_0, DOM::JSP_VERSION_1));

}  // namespace
}  // namespace zeldom40
