// Elements without loops, and the tags of run-time text.
#include "dom/dynamic/CellGrid.h"
#include "dom/dynamic/DynamicDataFactory.h"
#include "dom/dynamic/RuntimeWriter.h"
#include "tests/dynamic/DynamicTest.h"

namespace zeldom40 {
namespace {

class GeneratorsTest : public DynamicTest {};

TEST_F(GeneratorsTest, ElementsWithoutLoops) {
  const struct {
    const char* name;
    const char* page;
    const char* text;
  } cases[] = {
      {"ZELX:PROPERTY", "<P><ZELX:PROPERTY PROPERTY=a.b.URL>", "<%= a.getB().getURL() %>"},
      {"ZELX:PROPERTY", "<P><ZELX:PROPERTY PROPERTY=a>", "<%= a %>"},
      {"ZELX:PROPERTY", "<P><ZELX:PROPERTY PROPERTY=a.b[].c>", "<%= a.b[].getC() %>"},
      {"ZELX:PROPERTY", "<P><ZELX:PROPERTY PROPERTY='a..b.'>", "<%= a..getB(). %>"},
      {"ZELX:PROPERTY", "<P><ZELX:PROPERTY>", ""},
      {"IMG", "<IMG DYNAMICELEMENT SRC=x.gif>", ""},
      {"IMG", "<IMG DYNAMICELEMENT SRC=x.gif ALT=y PROPERTY=a.b AUTHORTIMEIMAGESRC=z.gif>",
       "<IMG alt=\"y\" src=\"<%= a.getB() %>\">"},
      {"INPUT", "<INPUT DYNAMICELEMENT TYPE=text NAME=n VALUE=v NAMEPROPERTY=a.n>",
       "<INPUT name=\"<%= a.getN() %>\" type=\"text\" value=\"v\">"},
      {"INPUT", "<INPUT DYNAMICELEMENT TYPE=Button VALUEPROPERTY=a.v>",
       "<INPUT type=\"Button\" value=\"<%= a.getV() %>\">"},
      {"INPUT", "<INPUT DYNAMICELEMENT TYPE=password VALUEPROPERTY=a.v>", "no object"},
      {"INPUT", "<INPUT DYNAMICELEMENT VALUEPROPERTY=a.v>", "no object"},
      {"A", "<A DYNAMICELEMENT HREF=x.jsp HREFPROPERTY='a=$(b.c)&d=e' TITLE=t>x<!--gone--><B>y</B></A>",
       "<A href=\"x.jsp?a=<%= b.getC() %>&d=e\" title=\"t\">x<B>y</B></A>"},
      {"A", "<A DYNAMICELEMENT>x</A>", "<A href>x</A>"},
      {"A", "<A DYNAMICELEMENT HREF='x.jsp?q' HREFPROPERTY='a=$()&=$(x)'>x</A>", "<A href=\"x.jsp?q?a\">x</A>"},
      {"FORM", "<FORM DYNAMICELEMENT ACTION=go ACTIONPROPERTY='a=#(b)'><P>x</P></FORM>",
       "<FORM action=\"go?a=b\">\n<P>x</P></FORM>"},
      {"TEXTAREA", "<TEXTAREA DYNAMICELEMENT ROWS=2 VALUEPROPERTY=a.v>x</TEXTAREA>",
       "<TEXTAREA rows=\"2\"><%= a.getV()%></TEXTAREA>"},
      {"TEXTAREA", "<TEXTAREA DYNAMICELEMENT NAMEPROPERTY=a.n>x &lt; y</TEXTAREA>",
       "<TEXTAREA name=\"<%= a.getN() %>\">x &lt; y</TEXTAREA>"},
      {"INPUT", "<INPUT DYNAMICELEMENT TYPE=checkbox DEFAULTPROPERTY=a.d CHECKED>", "\n<INPUT type=\"checkbox\">"},
      {"INPUT", "<INPUT DYNAMICELEMENT TYPE=radio VALUE=v CONSTDEFAULTPROPERTY=v>",
       "\n<INPUT type=\"radio\" value=\"v\">"},
      {"INPUT",
       "<INPUT DYNAMICELEMENT TYPE=radio NAMEPROPERTY=form.name VALUEPROPERTY=form.value CONSTDEFAULTPROPERTY=yes>",
       R"(<%
if (form.getValue().equals("yes")) { %>
  <INPUT checked name="<%= form.getName() %>" type="radio" value="<%= form.getValue() %>"><%
}
else { %>
  <INPUT name="<%= form.getName() %>" type="radio" value="<%= form.getValue() %>"><%
}~)"},
      {"INPUT", "<INPUT DYNAMICELEMENT TYPE=checkbox VALUE=v DEFAULTPROPERTY=a.d CONSTDEFAULTPROPERTY=x>",
       R"(<%
if (a.getD().equals("v")) { %>
  <INPUT checked type="checkbox" value="v"><%
}
else { %>
  <INPUT type="checkbox" value="v"><%
}~)"},
  };
  for (const auto& c : cases) EXPECT_EQ(generated(c.name, c.page), c.text) << c.page;
}

TEST_F(GeneratorsTest, NestedElementsCloseAScriptletInFrontOfPageText) {
  // Text gets a line of its own for the end of the scriptlet, a tag does not.
  const std::string radio = "<INPUT DYNAMICELEMENT TYPE=radio VALUE=v DEFAULTPROPERTY=a.d>";
  const std::string text =
      generated("FORM", "<FORM DYNAMICELEMENT ACTION=x>" + radio + radio + "t" + radio + "<B></B></FORM>");
  EXPECT_NE(text.find("}\nif (a.getD()"), std::string::npos) << text;
  EXPECT_NE(text.find("}\n%>t<%\n"), std::string::npos) << text;
  EXPECT_NE(text.find("} %><B></B></FORM>"), std::string::npos) << text;
}

TEST_F(GeneratorsTest, TagsKeepTheirKind) {
  const struct {
    const char* content;
    const char* text;
  } cases[] = {
      {"<DIV ALIGN=left NOWRAP><HR></DIV>", "\n<DIV align=\"left\" nowrap>\n  <HR></DIV>"},
      {"<UL><LI>x<LI>y</UL>", "\n<UL>\n  <LI>x\n  <LI>y\n</UL>"},
      // White space where no text can stand is dropped.
      {"<TABLE> <TBODY> <TR> <TD>x </TR> </TABLE>",
       "\n<TABLE>\n  <TBODY>\n    <TR>\n      <TD>x </TD>\n    </TR>\n  </TBODY>\n</TABLE>"},
      {"<% code %>x<%= e %>", "<% code %>x<%= e %>"},
      {"<my:tag b=c>x</my:tag>", "<my:tag b=c>x</my:tag>"},
      {"<jsp:getProperty name=\"a\" property=\"b\"/>", "<jsp:getProperty name=\"a\" property=\"b\" />"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(generated("FORM", std::string("<FORM DYNAMICELEMENT ACTION=x>") + c.content + "</FORM>"),
              std::string("<FORM action=\"x\">") + c.text + "</FORM>");
}

TEST_F(GeneratorsTest, AskWhetherTextCanStandAsTheDocumentDoes) {
  load("<DIV><ZELX:LOOP><REPEAT></REPEAT></ZELX:LOOP></DIV><TABLE><TR><TD></TABLE>");
  for (int id = 0; id <= 135; ++id) {
    const char* name = GetHTML40ElementName(id);
    Element* made = name ? doc_->createElement(name) : nullptr;
    if (!made) continue;
    EXPECT_EQ(cannotHoldText(doc_, made), !hasNoEndTag(made) && !doc_->canContain(made, Text::TEXT_NORMAL)) << name;
    made->releaseRef(true);
  }
  for (Node* n = doc_->getDocumentElement(); n; n = doc_->findNextNode(n, nullptr, false, false)) {
    if (n->getNodeType() != Node::NODE_ELEMENT) continue;
    EXPECT_EQ(cannotHoldText(doc_, static_cast<Element*>(n)),
              !hasNoEndTag(static_cast<Element*>(n)) && !doc_->canContain(n, Text::TEXT_NORMAL))
        << n->getName();
  }
}

TEST_F(GeneratorsTest, AChangedTypeGetsAnotherObject) {
  loadDynamic("<FORM DYNAMICELEMENT ACTION=x><INPUT DYNAMICELEMENT TYPE=password VALUE=v DEFAULTPROPERTY=a></FORM>");
  Element* input = element("INPUT");
  EXPECT_EQ(generated(element("FORM")), "<FORM action=\"x\"></FORM>");
  input->setAttribute("TYPE", "text", true);
  EXPECT_EQ(generated(element("FORM")),
            "<FORM action=\"x\"><INPUT defaultproperty=\"a\" type=\"text\" value=\"v\"></FORM>");
  input->setAttribute("TYPE", "radio", true);
  EXPECT_NE(generated(element("FORM")).find("if (a.equals(\"v\"))"), std::string::npos);
}

TEST_F(GeneratorsTest, ALinkEncodesTextAlone) {
  FakeTypes host;
  host.types = {{"b.text", "java.lang.String"}, {"b.buffer", "StringBuffer"}, {"b.count", "int"}};
  dom_->setJavaTypeLookupIF(&host);
  doc_->addOutBoundBean("b", "shop.Bean");
  EXPECT_EQ(
      generated("A", "<A DYNAMICELEMENT HREF=x HREFPROPERTY='t=$(b.text)&u=$(b.buffer)&c=$(b.count)&n=$(c.text)'></A>"),
      "<A href=\"x?t=<%= java.net.URLEncoder.encode(b.getText()) %>&u=<%= java.net.URLEncoder.encode("
      "b.getBuffer().toString()) %>&c=<%= b.getCount() %>&n=<%= c.getText() %>\"></A>");
  EXPECT_EQ(host.results, 0);
  dom_->setJavaTypeLookupIF(nullptr);
}

TEST(CellGrid, CellsTakeTheFirstFreePlaceOfTheirRow) {
  CellGrid grid(3);
  const auto at = [&](int colspan, int rowspan) {
    const CellGrid::Columns c = grid.addCell(colspan, rowspan);
    return std::to_string(c.first) + '-' + std::to_string(c.last);
  };
  grid.beginRow();
  EXPECT_EQ(at(1, 2), "0-0");
  EXPECT_EQ(at(2000000000, 1), "1-2000000000");
  EXPECT_EQ(at(1, 2000000000), "2000000001-2000000001");
  grid.beginRow();
  EXPECT_EQ(at(1, 1), "1-1");
  EXPECT_EQ(at(0, 1), "-1--1");
  EXPECT_EQ(at(1, -1), "-1--1");
  EXPECT_EQ(at(1, 2), "2-2");
  grid.beginRow();
  EXPECT_EQ(at(2, 1), "0-1");
  EXPECT_EQ(at(1, 1), "3-3");
  EXPECT_EQ(leadingInteger(" -12x"), -12);
  EXPECT_EQ(leadingInteger("99999999999"), 2147483647);
}

}  // namespace
}  // namespace zeldom40
