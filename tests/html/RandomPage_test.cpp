// Random pages, and a page cut at every byte, come back as they were; scripts/test runs many more of them.
#include "fuzz/RandomPage.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "dom/tree/NodePool.h"
#include "dom/zeldom40.h"
#include "fuzz/PageCheck.h"

namespace zeldom40 {
namespace {

// One of everything that opens something, so that each cut leaves another thing open.
using namespace std::string_view_literals;
constexpr std::string_view kSample =
    "<!DOCTYPE HTML PUBLIC \"-//x\" 'y' [<!ENTITY % a \"b\"><!ELEMENT Y - O (P)* -(A) +(B)><![IGNORE[ z ]]>]>\r\n"
    "<%@ page import=\"a.b\" %><HTML><HEAD><TITLE>t &copy;</TITLE><SCRIPT><!-- a < b </b> --></SCRIPT></HEAD>"
    "<!-- c --><BODY BGCOLOR='#fff' x = y\"z><jsp:useBean id=\"b\"><jsp:scriptlet><![CDATA[ i > 0 ]]></jsp:scriptlet>"
    "</jsp:useBean><%-- d > --%><TABLE><ZELX:LOOP><TR><TD><%= \"%\" "
    "%>&#x41;&hellip;</TABLE></B><LI>\0\x1b\x1c\x1d\x82\xa0"
    "<!--#include file=\"a\"--><A HREF=\"<%= x %>\">b</A ><?p q?><!--METADATA type=\"Z\" startspan\r\n-->"sv;

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
  for (std::size_t length = 0; length <= kSample.size(); ++length) {
    ASSERT_EQ(check.everyWay(kSample.substr(0, length)), "") << "cut at " << length;
  }
}

// The generator is of use only while it reaches what it was made for.
TEST(RandomPageGenerator, IsRepeatableAndVaried) {
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  fuzz::RandomPage one(7, *dom->getDocumentType());
  fuzz::RandomPage two(7, *dom->getDocumentType());
  std::string all;
  int declaring = 0;
  for (int i = 0; i < 2000; ++i) {
    const std::string page = one.next();
    ASSERT_EQ(page, two.next());
    declaring += fuzz::RandomPage::mayDeclare(page);
    all += page;
  }
  for (const char* part :
       {"<%--", "<jsp:", "<!--#include", "<![CDATA[", "<BLOCKQUOTE", "<bdo", "&hellip;", "METADATA"}) {
    EXPECT_NE(all.find(part), std::string::npos) << part;
  }
  for (char byte : {'\0', '\x1b', '\x1c', '\x1d', '\x1a', '\x82', '\xa0', '\xff'}) {
    EXPECT_NE(all.find(byte), std::string::npos) << static_cast<int>(byte);
  }
  EXPECT_GT(declaring, 50);
  EXPECT_EQ(all.find("ZELX:ATV"), std::string::npos);
  DOM::destroyDOM(dom);
}

INSTANTIATE_TEST_SUITE_P(BothVersions, RandomPageTest, ::testing::Values(DOM::JSP_VERSION_0, DOM::JSP_VERSION_1));

}  // namespace
}  // namespace zeldom40
