// Elements without loops, and the tags of run-time text.
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
      {"ZELX:PROPERTY", "<P><ZELX:PROPERTY PROPERTY=a.b[].c>", "<%= a.b[].getC() %>"},
      {"ZELX:PROPERTY", "<P><ZELX:PROPERTY PROPERTY='a..b.'>", "<%= a..getB(). %>"},
      {"ZELX:PROPERTY", "<P><ZELX:PROPERTY>", ""},
      {"IMG", "<IMG DYNAMICELEMENT SRC=x.gif>", ""},
      {"IMG", "<IMG DYNAMICELEMENT SRC=x.gif ALT=y PROPERTY=a.b AUTHORTIMEIMAGESRC=z.gif>",
       "<IMG alt=\"y\" src=\"<%= a.getB() %>\">"},
      {"INPUT", "<INPUT DYNAMICELEMENT TYPE=password VALUEPROPERTY=a.v>", "no object"},
      {"A", "<A DYNAMICELEMENT>x</A>", "<A href>x</A>"},
      {"A", "<A DYNAMICELEMENT HREF='x.jsp?q' HREFPROPERTY='a=$()&=$(x)'>x</A>", "<A href=\"x.jsp?q?a\">x</A>"},
      {"FORM", "<FORM DYNAMICELEMENT ACTION=go ACTIONPROPERTY='a=#(b)'><P>x</P></FORM>",
       "<FORM action=\"go?a=b\">\n<P>x</P></FORM>"},
      {"TEXTAREA", "<TEXTAREA DYNAMICELEMENT NAMEPROPERTY=a.n>x<!--gone--> &lt; y</TEXTAREA>",
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

TEST_F(GeneratorsTest, ReadTheTagAsAHostReadsItsAttributes) {
  const std::string text = generated("A", "<A DYNAMICELEMENT zz=x\"y'z yy='a\"b' xx yy=2 href='q\"?'>t</A>");
  EXPECT_EQ(text, "<A href=\"q\"?\" xx yy=\"a\"b\" zz=\"x&quot;y'z\">t</A>");
  element("A")->getAttributes();
  EXPECT_EQ(generated(element("A")), text) << "with Attribute objects";
}

TEST_F(GeneratorsTest, LinesBeyond80LevelsBeginAtTheMargin) {
  std::string page = "<FORM DYNAMICELEMENT>";
  for (int i = 0; i < 85; ++i) page += "<DIV>";
  const std::string text = generated("FORM", page);
  EXPECT_NE(text.find("\n" + std::string(160, ' ') + "<DIV>\n<DIV>"), std::string::npos) << text;
}

TEST_F(GeneratorsTest, AskWhetherTextCanStandAsTheDocumentDoes) {
  const auto check = [&](Element* e) {
    EXPECT_EQ(cannotHoldText(doc_, e), !hasNoEndTag(e) && !doc_->canContain(e, Text::TEXT_NORMAL)) << e->getName();
  };
  for (int id = 0; id <= 135; ++id) {
    const char* name = GetHTML40ElementName(id);
    Element* made = name ? doc_->createElement(name) : nullptr;
    if (!made) continue;
    check(made);
    made->releaseRef(true);
  }
  load("<DIV><ZELX:LOOP><REPEAT></REPEAT></ZELX:LOOP></DIV><TABLE><TR><TD></TABLE>");
  for (const char* name : {"ZELX:LOOP", "REPEAT", "TABLE", "TBODY", "TR", "TD"}) check(element(name));
}

TEST_F(GeneratorsTest, ALinkEncodesTextAlone) {
  FakeTypes host;
  host.types = {{"b.buffer", "StringBuffer"}, {"b.count", "int"}};
  dom_->setJavaTypeLookupIF(&host);
  doc_->addOutBoundBean("b", "shop.Bean");
  EXPECT_EQ(generated("A", "<A DYNAMICELEMENT HREF=x HREFPROPERTY='u=$(b.buffer)&c=$(b.count)&n=$(c.text)'></A>"),
            "<A href=\"x?u=<%= java.net.URLEncoder.encode("
            "b.getBuffer().toString()) %>&c=<%= b.getCount() %>&n=<%= c.getText() %>\"></A>");
  EXPECT_EQ(host.results, 0);
  dom_->setJavaTypeLookupIF(nullptr);
}

}  // namespace
}  // namespace zeldom40
