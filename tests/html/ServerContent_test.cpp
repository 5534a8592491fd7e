// Server tags, comments and server-side includes.
#include "tests/html/HtmlTest.h"

namespace zeldom40 {
namespace {

struct ServerRow {
  std::string_view page;
  int id;
  const char* node;  // with its attributes; the page holds this one node
};

class ServerContent : public PageTest {
 protected:
  explicit ServerContent(DOM::JSPVersion version = DOM::JSP_VERSION_0) : PageTest(version) {}
  template <std::size_t count>
  void expectNodes(const ServerRow (&rows)[count]) {
    for (const ServerRow& row : rows) {
      Node* node = load(row.page)->getFirstChild();
      ASSERT_TRUE(node) << row.page;
      EXPECT_EQ(dumpNode(node, kDumpAttributes | kDumpErrors), row.node) << row.page;
      EXPECT_EQ(static_cast<Element*>(node)->getElementID(), row.id) << row.page;
      EXPECT_EQ(source(), row.page);
      EXPECT_FALSE(node->hasChildNodes());
    }
  }
};

class ServerContentInVersion1 : public ServerContent {
 protected:
  ServerContentInVersion1() : ServerContent(DOM::JSP_VERSION_1) {}
};

TEST_F(ServerContent, TellsServerTagsByTheirThirdByte) {
  expectNodes({
      {"<% a > b %>", ID_JSP_SCRIPTLET, "JSP:SCRIPTLET"},
      {"<%>", ID_JSP_SCRIPTLET, "JSP:SCRIPTLET"},
      {"<%=x", ID_JSP_EXPRESSION, "JSP:EXPRESSION"},
      {"<%! int i; %>", ID_JSP_DECLARATION, "JSP:DECLARATION"},
      {"<%@%>", ID_JSP_DIRECTIVE, "JSP:DIRECTIVE"},
  });
  load("<% a %>");
  EXPECT_FALSE(element("JSP:SCRIPTLET")->isAlternative());
}

TEST_F(ServerContent, ReadsTheAttributesOfDirectives) {
  expectNodes({
      {"<%@ PAGE language=\"java\" %>", ID_JSP_DIRECTIVE_PAGE, "JSP:DIRECTIVE.PAGE[LANGUAGE=java]"},
      {"<%@\tinclude\nfile = 'a b'%>", ID_JSP_DIRECTIVE_INCLUDE, "JSP:DIRECTIVE.INCLUDE[FILE=a b]"},
      {"<%@ include file=\"a", ID_JSP_DIRECTIVE_INCLUDE, "JSP:DIRECTIVE.INCLUDE[FILE=a]"},
      {"<%@ page=\"x\" %>", ID_JSP_DIRECTIVE, "JSP:DIRECTIVE[page=x]"},
      {"<%@ other a==b c %>", ID_JSP_DIRECTIVE, "JSP:DIRECTIVE[other a==b c]"},
      {"<%@ page language=a LANGUAGE=b =c x y x=1%>", ID_JSP_DIRECTIVE_PAGE, "JSP:DIRECTIVE.PAGE[LANGUAGE=b =c x=1 y]"},
  });
}

TEST_F(ServerContentInVersion1, KnowsDirectivesAndNoDeclarations) {
  expectNodes({
      {"<%! int i; %>", ID_JSP_DECLARATION, "JSP:DECLARATION"},
      {"<%@ page language=\"java\" %>", ID_JSP_DIRECTIVE, "JSP:DIRECTIVE[LANGUAGE=java]"},
      {"<%= x %>", ID_JSP_EXPRESSION, "JSP:EXPRESSION"},
  });
}

TEST_F(ServerContent, TellsIncludesFromComments) {
  expectNodes({
      {"<!--#include file=\"a.inc\" -->", ID_SSI_INCLUDE, "SSI:INCLUDE[FILE=a.inc]"},
      {"<!--#INCLUDE virtual=a-->", ID_SSI_INCLUDE, "SSI:INCLUDE[VIRTUAL=a]"},
      {"<!-----#include\tfile=\"a", ID_SSI_INCLUDE, "SSI:INCLUDE[FILE=a]"},
  });
  for (const char* page : {"<!--#includefile-->", "<!--#include", "<!--#include-->", "<!---->", "<!--", "<!-->",
                           "<!-- #include a-->", "<!--#echo a-->", "<!--#include\va-->", "<!-- a > ", "<!--- a --->"}) {
    load(page);
    EXPECT_EQ(tree().substr(0, 9), "ZELROOT(<") << page;
    EXPECT_EQ(source(), page);
  }
}

TEST_F(ServerContent, CommentsHoldTheirBodyAsWritten) {
  const struct {
    std::string page;
    std::string body;
    bool jsp;
  } rows[] = {
      {"<!-- a > ", "-- a ", false},
      {"<!-- a", "-- a", false},
      {"<%-- <B> --%>", "-- <B> --", true},
      {"<%-- a > b", "-- a ", true},
      {"<%--%>", "--%", true},
      {std::string("<!--\0-->", 8), std::string("--\0--", 5), false},
      {"<%--#include a --%>", "--#include a --", true},
  };
  for (const auto& row : rows) {
    Node* node = load(row.page)->getFirstChild();
    ASSERT_EQ(node->getNodeType(), Node::NODE_COMMENT) << row.page;
    EXPECT_EQ(static_cast<Comment*>(node)->getData(), row.body);
    EXPECT_EQ(static_cast<Comment*>(node)->isJSP(), row.jsp);
    EXPECT_EQ(source(), row.page);
  }
}

}  // namespace
}  // namespace zeldom40
