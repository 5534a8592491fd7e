// Pages come back as they were: whole, and cut at every byte.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz/PageCheck.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

using namespace std::string_view_literals;

// What the readers of tags, texts, comments, server content and declarations treat in a way of its own.
constexpr std::string_view kSamples[] = {
    "<!doctype HTML PUBLIC \"-//W3C//DTD HTML 4.0//EN\" 'x' [<!ENTITY a \"b\">]>\r\n<html>\r\n <head><title>t &amp; u",
    "<TABLE border=1 Width = '50%'><ZELX:LOOP> <!--c--><TR><TD nowrap>x</td ></ZELX:LOOP><P>y</TABLE\n>z",
    "<a href=<%= \"x>\" %>\">a</a foo></b><br/><hr / size=1><P align==\"x\" ALIGN=>y",
    "<SCRIPT><!-- </SCRIPT> --> a</Script ><b></script><STYLE>a</STYLE><!-- a ><!--b--><!--->",
    "<jsp:useBean id='a'></jsp:useBean><jsp:useBean id=b>x<jsp:scriptlet><![cdata[a<b]]>c<![CDATA[d > e",
    "<%@ page language='java'%><%! a %><%= b %><%-- c --%><%--%><%@ taglib uri=\"<%",
    "<!--#include file=\"a\" --><!--#INCLUDE\tx--- ><!--#echo--><?xml a?><?b ><!foo bar><!>",
    "a < b <= c <1d <9e>&amp&#65;&#8364;&nosuch;&&#x41;\"' \t\v\f<PRE>\n x\n</PRE><UL>\n<LI>a<ZELX:LOOP> <LI>b",
    "\0<\0a\0 b\0=\0>\x1b\x1c\x1d<!--\0--><%\0%>\x80<\xff\xa0>&\0;\x1b"sv,
};

class PageSource : public testing::TestWithParam<DOM::JSPVersion> {
 protected:
  // Each prefix that ends in the last `tail` bytes.
  static void expectBack(std::string_view page, std::size_t tail) {
    fuzz::PageCheck check(GetParam(), /*declaringPagesPerDom=*/50);
    for (std::size_t length = page.size() - std::min(tail, page.size()); length <= page.size(); ++length) {
      EXPECT_EQ(check.everyWay(page.substr(0, length)), "") << quotedBytes(page.substr(0, length));
    }
  }
};

TEST_P(PageSource, EveryPrefixOfASampleComesBack) {
  for (std::string_view sample : kSamples) expectBack(sample, sample.size());
}

TEST_P(PageSource, EverySamplePageComesBack) {
  int pages = 0;
  for (const char* folder : {"/tests/pages", "/examples/pages"}) {
    for (const auto& file : std::filesystem::directory_iterator(std::string(ZELDOM40_SOURCE_DIR) + folder)) {
      std::ifstream in(file.path(), std::ios::binary);
      const std::string page{std::istreambuf_iterator<char>(in), {}};
      SCOPED_TRACE(file.path());
      expectBack(page, 60);
      ++pages;
    }
  }
  EXPECT_GE(pages, 10);
}

INSTANTIATE_TEST_SUITE_P(BothGenerations, PageSource, testing::Values(DOM::JSP_VERSION_0, DOM::JSP_VERSION_1));

}  // namespace
}  // namespace zeldom40
