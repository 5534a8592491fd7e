// Tables that repeat rows, cells or both.
#include "tests/dynamic/DynamicTest.h"

namespace zeldom40 {
namespace {

class TablesTest : public DynamicTest {
 protected:
  // The shape of a table's text: one word for each piece, tags of rows and cells by their letters.
  std::string shape(const std::string& attributes, const std::string& content) {
    const std::string text = generated("TABLE", "<TABLE DYNAMICELEMENT " + attributes + ">" + content + "</TABLE>");
    const std::pair<const char*, const char*> pieces[] = {
        {" // throws", "try"},  {"for (", "for"},     {"++;", "next"},        {"<TABLE>", "TABLE"},
        {"</TABLE>", "/TABLE"}, {"<TBODY>", "TBODY"}, {"</TBODY>", "/TBODY"}, {"<THEAD>", "THEAD"},
        {"</THEAD>", "/THEAD"}, {"<TR>", "TR"},       {"</TR>", "/TR"},       {"<FONT>", "empty"}};
    std::string found;
    for (std::size_t at = 0; at < text.size(); ++at) {
      for (const auto& [piece, word] : pieces) {
        if (text.compare(at, std::string_view(piece).size(), piece) == 0) found += std::string(word) + ' ';
      }
      // Cells show the first letter of their text; a fetch of the first element that declares nothing is a new start.
      if (text.compare(at, 3, "<TD") == 0) found += text.substr(text.find('>', at) + 1, 1) + ' ';
      if (text.compare(at, 13, "_p0 = _a0[0];") == 0 && text.compare(at - 7, 7, "Object ") != 0) found += "again ";
    }
    if (!found.empty()) found.pop_back();
    return text.empty() ? "nothing" : found;
  }
};

constexpr const char* kThreeRows = "<TR><TD>a<TR><TD>b<TR><TD>c";
constexpr const char* kThreeCells = "<TR><TD>a<TD>b<TD>c";

TEST_F(TablesTest, RepeatsWhatItsLoopsSay) {
  const struct {
    const char* attributes;
    const char* content;
    const char* shape;
  } cases[] = {
      {"INNERLOOPPROPERTY=a.b INNERLOOPDIRECTION=horizontal", kThreeRows, "nothing"},
      {"OUTERLOOPPROPERTY=a.b[]", "<THEAD><TR><TD>h</THEAD><TBODY><TR><TD>a</TBODY><TBODY><TR><TD>b",
       "try TABLE THEAD TR h /TR /THEAD TBODY for TR a /TR next /TBODY TBODY again for TR b /TR next /TBODY /TABLE"},
      {"INNERLOOPPROPERTY=a.b[] INNERLOOPSTARTINDEX=1 INNERLOOPENDINDEX=1", kThreeRows,
       "try TABLE TBODY TR a /TR for TR b /TR next TR c /TR /TBODY /TABLE"},
      {"INNERLOOPPROPERTY=a.b[] INNERLOOPSTARTINDEX=2 INNERLOOPENDINDEX=1", kThreeRows,
       "try TABLE TBODY TR a /TR for TR b /TR TR c /TR next /TBODY /TABLE"},
      {"INNERLOOPPROPERTY=a.b[] INNERLOOPSTARTINDEX=-1", kThreeRows,
       "try TABLE TBODY for TR a /TR next TR b /TR TR c /TR /TBODY /TABLE"},
      {"INNERLOOPPROPERTY=a.b[] INNERLOOPSTARTINDEX=99999999999 INNERLOOPENDINDEX=7", kThreeRows,
       "try TABLE TBODY TR a /TR TR b /TR TR c /TR /TBODY /TABLE"},
      {"INNERLOOPPROPERTY=a.b[] INNERLOOPDIRECTION=Horizontal INNERLOOPSTARTINDEX=1 INNERLOOPENDINDEX=1", kThreeCells,
       "try TABLE TBODY TR a for b next c /TR /TBODY /TABLE"},
      // The last column of a wide cell opens the loop, the first column of one behind the stretch closes it.
      {"INNERLOOPPROPERTY=a.b[] INNERLOOPDIRECTION=horizontal INNERLOOPSTARTINDEX=1 INNERLOOPENDINDEX=2",
       "<TR><TD COLSPAN=2>a<TD>b<TD>c", "try TABLE TBODY TR for a b next c /TR /TBODY /TABLE"},
      {"INNERLOOPPROPERTY=a.b[] INNERLOOPDIRECTION=horizontal INNERLOOPSTARTINDEX=1 INNERLOOPENDINDEX=1",
       "<TR><TD ROWSPAN=2>a<TD>b<TR><TD>c<TD>d",
       "try TABLE TBODY TR a for b next /TR TR again for c next d /TR /TBODY /TABLE"},
      {"OUTERLOOPPROPERTY=a.b[] INNERLOOPPROPERTY=a.c[] FONTTEXT=x INNERLOOPSTARTINDEX=1 INNERLOOPENDINDEX=1",
       kThreeRows, "try TABLE TBODY for TR a /TR try for TR b /TR next TR c /TR next /TBODY /TABLE empty"},
      {"OUTERLOOPPROPERTY=a.b[] INNERLOOPPROPERTY=a.c[] INNERLOOPDIRECTION=horizontal", "<TR><TD>a<TD>b<TR><TD>c",
       "try TABLE TBODY for TR try for a next b /TR TR try for c next /TR next /TBODY /TABLE"},
  };
  for (const auto& c : cases) EXPECT_EQ(shape(c.attributes, c.content), c.shape) << c.attributes << c.content;
}

TEST_F(TablesTest, LoopsInADoubleTableAreTwoLevelsDeeper) {
  const std::string text =
      generated("TABLE",
                "<TABLE BORDER DYNAMICELEMENT OUTERLOOPPROPERTY=a.b[] INNERLOOPPROPERTY=a.b[].c[]>"
                "<TR><TD><ZELX:LOOP LOOPPROPERTY=a.b[].c[].d[]><ZELX:PROPERTY PROPERTY=a.b[].c[].d[]>"
                "<ZELX:PROPERTY PROPERTY=a.b[].e></ZELX:LOOP></TABLE>");
  for (const char* part : {"  <TABLE border>\n    <TBODY><%\n      for (int _i0 = 0; ; ) {\n        try {\n",
                           "          for (int _i1 = 0; ; ) { %>\n            <TR>\n              <TD><%\n",
                           "                  Object[] _a2 = _p1.getD();\n", "<%= _p2 %><%= _p0.getE() %><%\n",
                           "                } %></TD>\n            </TR><%\n            _i1++;\n"}) {
    EXPECT_NE(text.find(part), std::string::npos) << part << "\nin\n" << text;
  }
}

TEST_F(TablesTest, LooksThroughWrappersBetweenItsParts) {
  // Properties in a wrapper belong to the table's loop, whatever the wrapper says.
  for (const char* wrapper : {"<ZELX:LOOP>", "<ZELX:LOOP LOOPPROPERTY=x.y[]>"}) {
    const std::string text =
        generated("TABLE", std::string("<TABLE DYNAMICELEMENT OUTERLOOPPROPERTY=a.b[]><TBODY>") + wrapper +
                               "<TR><TD><ZELX:PROPERTY PROPERTY=a.b[].c></ZELX:LOOP></TBODY></TABLE>");
    EXPECT_NE(text.find("<TD><%= _p0.getC() %>"), std::string::npos) << text;
    EXPECT_EQ(text.find("_p1"), std::string::npos) << text;
  }
  // In a row that is written whole, a wrapper is a loop like any other.
  const std::string text = generated("TABLE",
                                     "<TABLE DYNAMICELEMENT OUTERLOOPPROPERTY=a.b[]><TBODY><TR>"
                                     "<ZELX:LOOP LOOPPROPERTY=a.b[].c[]><TD><ZELX:PROPERTY "
                                     "PROPERTY=a.b[].c[].d></ZELX:LOOP></TBODY></TABLE>");
  EXPECT_NE(text.find("_a1 = _p0.getC()"), std::string::npos) << text;
  EXPECT_NE(text.find("<%= _p1.getD() %>"), std::string::npos) << text;
}

}  // namespace
}  // namespace zeldom40
