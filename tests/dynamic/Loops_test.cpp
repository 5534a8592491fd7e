// Lists, loops, texts and selects.
#include <string>
#include <vector>

#include "tests/dynamic/DynamicTest.h"

namespace zeldom40 {
namespace {

class LoopsTest : public DynamicTest {
 protected:
  static bool holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }
};

TEST_F(LoopsTest, VariablesAreReadFromTheirOwner) {
  const struct {
    const char* name;
    const char* page;
    std::vector<const char*> parts;
  } cases[] = {
      // An array of the outer element, and one beside the inner array.
      {"UL",
       "<UL DYNAMICELEMENT LOOPPROPERTY=a.b[]><LI><OL DYNAMICELEMENT LOOPPROPERTY=a.b[].c[]>"
       "<LI><ZELX:PROPERTY PROPERTY=a.b[].c[].d><ZELX:PROPERTY PROPERTY=a.b[].e><ZELX:PROPERTY PROPERTY=a.b[].f[].g>"
       "</OL></UL>",
       {"Object[] _a0 = a.getB();", "Object[] _a1 = _p0.getC();", "Object[] _a1_0 = _p0.getF();",
        "<%= _p1.getD() %><%= _p0.getE() %><%= _p1_0.getG() %>", "_p1_0 = _a1_0[_i1];"}},
      // An indexed getter, with an array and another getter beside it.
      {"ZELX:LOOP",
       "<ZELX:LOOP LOOPPROPERTY=b.item() IMGSRC=e.gif IMGWIDTH=3><ZELX:PROPERTY PROPERTY=b.item()>"
       "<ZELX:PROPERTY PROPERTY=b.other[].n><ZELX:PROPERTY PROPERTY=b.other[].m>"
       "<ZELX:PROPERTY PROPERTY=c.next().n></ZELX:LOOP>",
       {"  Object _p0 = b.getItem(0); // throws an exception if empty.\n  Object[] _a0_0 = b.getOther();\n"
        "  Object _p0_0 = _a0_0[0];\n  Object _p0_2 = c.getNext(0);\n",
        "      _p0 = b.getItem(_i0);\n      _p0_0 = _a0_0[_i0];\n      _p0_2 = c.getNext(_i0);\n",
        "  %><IMG SRC=\"e.gif\" WIDTH=\"3\"><%\n"}},
  };
  for (const auto& c : cases) {
    const std::string text = generated(c.name, c.page);
    for (const char* part : c.parts) EXPECT_TRUE(holds(text, part)) << part << "\nin\n" << text;
  }
}

TEST_F(LoopsTest, ALoopWithoutALoopPropertyWritesNothing) {
  for (const char* page : {"<UL DYNAMICELEMENT LOOPPROPERTY=a.b><LI>x</UL>", "<UL DYNAMICELEMENT><LI>x</UL>",
                           "<UL DYNAMICELEMENT><LI><UL DYNAMICELEMENT LOOPPROPERTY=a.b[]></UL></UL>"})
    EXPECT_EQ(generated("UL", page), "") << page;
}

TEST_F(LoopsTest, ATextSeparatesItsElements) {
  const struct {
    const char* attributes;
    const char* separator;  // between the fetch of the next element and the end of its try
  } cases[] = {
      {"", ""},
      {"DELIMITER=', '", "      %>, <%\n"},
      {"DELIMITERFORTWO=' or '", R"(      try {
        Object o = _a0[_i0 + 1];
      }
      catch (java.lang.ArrayIndexOutOfBoundsException _e0) {
        if (_i0 == 1) {
          %> or <%
        }
      }
)"},
      {"DELIMITER=', ' DELIMITERFORTWO=' or '", R"(      try {
        Object o = _a0[_i0 + 1];
        %>, <%
      }
      catch (java.lang.ArrayIndexOutOfBoundsException _e0) {
        if (_i0 == 1) {
          %> or <%
        }
        else {
          %>, <%
        }
      }
)"},
  };
  for (const auto& c : cases) {
    const std::string text = generated("ZELX:TEXT", std::string("<P><ZELX:TEXT LOOPPROPERTY=a.b[] ") + c.attributes +
                                                        "><ZELX:PROPERTY PROPERTY=a.b[]></ZELX:TEXT>");
    EXPECT_TRUE(holds(text, std::string("      _p0 = _a0[_i0];\n") + c.separator + "    }\n    catch")) << text;
  }
}

TEST_F(LoopsTest, ASelectMakesItsOptions) {
  const struct {
    const char* attributes;
    const char* option;  // between the heads and the tail of its loop
  } cases[] = {
      {"ITEMPROPERTY=a.b[].n", " %>\n      <OPTION><%= _p0.getN() %></OPTION><%\n"},
      {"CONSTITEM=x CONSTVALUE=y CONSTDEFAULTPROPERTY=y", " %>\n      <OPTION value=\"y\">x</OPTION><%\n"},
      {"CONSTITEM=x CONSTVALUE=y DEFAULTPROPERTY=c.d CONSTDEFAULTPROPERTY=z", R"(
      if (c.getD().equals("y")) { %>
        <OPTION selected value="y">x</OPTION><%
      }
      else { %>
        <OPTION value="y">x</OPTION><%
      }
)"},
      {"VALUEPROPERTY=a.b[].v CONSTDEFAULTPROPERTY=z", R"(
      if (_p0.getV().equals("z")) { %>
        <OPTION selected value="<%= _p0.getV() %>"></OPTION><%
      }
      else { %>
        <OPTION value="<%= _p0.getV() %>"></OPTION><%
      }
)"},
  };
  for (const auto& c : cases) {
    const std::string text =
        generated("SELECT", std::string("<FORM><SELECT NAME=s DYNAMICELEMENT LOOPPROPERTY=a.b[] ") + c.attributes +
                                "><OPTION>design</OPTION></SELECT>");
    EXPECT_TRUE(holds(text, std::string("  for (int _i0 = 0; ; ) {") + c.option + "      _i0++;")) << text;
  }
}

TEST_F(LoopsTest, AnElementInALoopIsResolvedWhenAskedAlone) {
  loadDynamic(
      "<UL DYNAMICELEMENT LOOPPROPERTY=a.b[]><LI><ZELX:PROPERTY PROPERTY=a.b[].c>"
      "<ZELX:TEXT LOOPPROPERTY=a.b[].d[]></ZELX:TEXT></UL>");
  EXPECT_EQ(generated(element("ZELX:PROPERTY")), "<%= _p0.getC() %>");
  EXPECT_TRUE(holds(generated(element("ZELX:TEXT")), "_a1 = _p0.getD()"));
  // Without the loop around there is nothing that could hold the property.
  element("UL")->deleteAttribute("LOOPPROPERTY");
  EXPECT_EQ(generated(element("ZELX:PROPERTY")), "<%= a.b[].getC() %>");
  EXPECT_EQ(generated(element("ZELX:TEXT")), "");
}

}  // namespace
}  // namespace zeldom40
