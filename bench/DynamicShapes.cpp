// Hostile pages of dynamic elements, metadata pairs and design-time controls.
#include <string_view>

#include "bench/Shapes.h"

namespace zeldom40::bench {

namespace {

using Size = std::size_t;

constexpr Size k = 1000;

std::string numbered(std::string_view before, std::size_t n, std::string_view after) {
  std::string text;
  for (std::size_t i = 0; i < n; ++i) {
    text += before;
    text += std::to_string(i);
    text += after;
  }
  return text;
}

// Half of it open elements, half of it what stands in the innermost one.
std::string inside(const char* open, const char* content, std::size_t n) {
  return repeated(open, n / 2) + repeated(content, n / 2);
}

std::string begin(const char* type, const char* source) {
  return std::string("<!--METADATA type=\"") + type + "\" startspan\r\n" + source + "\r\n-->";
}
std::string end(const char* type) { return std::string("<!--METADATA type=\"") + type + "\" endspan-->"; }
std::string pair(const char* type, const char* source) { return begin(type, source) + "r" + end(type); }

constexpr const char* kList = "<UL DYNAMICELEMENT LOOPPROPERTY=a[].b[]><LI>";
constexpr const char* kLoop = "<ZELX:LOOP LOOPPROPERTY=a.b[]>";
constexpr const char* kTable = "<TABLE DYNAMICELEMENT OUTERLOOPPROPERTY=a.b[] INNERLOOPPROPERTY=a.b[].c[]><TR><TD>";
constexpr const char* kWideTable = "<TABLE DYNAMICELEMENT INNERLOOPPROPERTY=a.b[] INNERLOOPDIRECTION=horizontal>";
constexpr const char* kProperty = "<ZELX:PROPERTY PROPERTY=a.b[].c>";
constexpr const char* kControl = "<OBJECT DTC></OBJECT>";

}  // namespace

const std::vector<Shape>& dynamicShapes() {
  static const std::vector<Shape> list = {
      {"dynamic UL in UL", 100 * k, [](Size n) { return repeated(kList, n); }, "HTML", 2},
      {"ZELX:LOOP in ZELX:LOOP", 100 * k, [](Size n) { return "<P>" + repeated(kLoop, n); }, "HTML", 1},
      {"ZELX:TEXT in ZELX:TEXT", 100 * k,
       [](Size n) { return "<P>" + repeated("<ZELX:TEXT LOOPPROPERTY=a.b[] DELIMITER=, LASTDELIMITER=o>", n); }, "HTML",
       1},
      {"dynamic TABLE in TABLE", 100 * k, [](Size n) { return repeated(kTable, n); }, "HTML", 4},
      {"dynamic FORM, TABLE in turn", 100 * k,
       [](Size n) { return repeated("<FORM DYNAMICELEMENT><TABLE><TR><TD>", n); }},
      {"dynamic SELECT, TEXTAREA", 100 * k,
       [](Size n) {
         return repeated("<SELECT DYNAMICELEMENT LOOPPROPERTY=a.b[]><OPTION>x</SELECT><TEXTAREA DYNAMICELEMENT>", n);
       }},
      {"OBJECTs with a control in a row", 200 * k, [](Size n) { return repeated(kControl, n); }},
      {"controls under open B", 200 * k, [](Size n) { return inside("<B>", kControl, n); }},
      {"lists in a row", 100 * k,
       [](Size n) { return repeated("<UL DYNAMICELEMENT LOOPPROPERTY=a.b[]><LI>x</UL>", n); }},
      {"COLSPAN=2000000000", 100 * k,
       [](Size n) { return kWideTable + repeated("<TR><TD COLSPAN=2000000000 ROWSPAN=2000000000>x", n); }},
      {"cells over all rows", 100 * k, [](Size n) { return kWideTable + repeated("<TR><TD ROWSPAN=999999999>x", n); }},
      {"cells over fewer and fewer rows", 100 * k,
       [](Size n) {
         std::string text = kWideTable;
         for (Size i = 0; i < n; ++i) text += "<TR><TD ROWSPAN=" + std::to_string(2 * (n - i) / 3) + ">x";
         return text;
       }},
      {"a long path of arrays", 500 * k,
       [](Size n) { return "<UL DYNAMICELEMENT LOOPPROPERTY=\"" + repeated("ab[].", n) + "c[]\"><LI>" + kProperty; }},
      {"pairs in a row", 100 * k,
       [](Size n) { return repeated(pair("DesignerControl", "<OBJECT></OBJECT>").c_str(), n); }},
      {"begins in begins, then the ends", 100 * k,
       [](Size n) {
         return repeated(begin("DesignerControl", "<OBJECT></OBJECT>").c_str(), n) +
                repeated(end("DesignerControl").c_str(), n);
       }},
  };
  return list;
}

const std::vector<Shape>& moreDynamicShapes() {
  static const std::vector<Shape> list = {
      // Each kind that can stand in itself.
      {"dynamic TABLE in TABLE, cells", 100 * k,
       [](Size n) { return repeated((kWideTable + std::string("<TR><TD>x<TD>")).c_str(), n); }},
      {"dynamic A in unknown tags", 100 * k, [](Size n) { return repeated("<A DYNAMICELEMENT><zz>", n); }},
      {"dynamic UL without a property", 100 * k, [](Size n) { return repeated("<UL DYNAMICELEMENT><LI>", n); }},
      // Elements far down, with what has to be found out about all that they stand in.
      {"properties in many loops", 100 * k, [](Size n) { return "<P>" + inside(kLoop, kProperty, n); }},
      {"properties of no loop in many loops", 100 * k,
       [](Size n) { return "<P>" + repeated(kLoop, n / 2) + numbered("<ZELX:PROPERTY PROPERTY=x.p", n / 2, ">"); }},
      {"arrays of no loop in many loops", 50 * k,
       [](Size n) {
         return "<P>" + repeated("<ZELX:LOOP LOOPPROPERTY=a.b[].c[]>", n / 2) +
                numbered("<ZELX:PROPERTY PROPERTY=x.y", n / 2, "[].p>");
       }},
      {"parallel properties", 100 * k,
       [](Size n) { return std::string(kList) + numbered("<ZELX:PROPERTY PROPERTY=a[].c", n, "[].d>"); }},
      {"dynamic INPUT under open B", 200 * k,
       [](Size n) { return inside("<B>", "<INPUT DYNAMICELEMENT TYPE=text>", n); }},
      {"controls in a list under open B", 200 * k, [](Size n) { return kList + inside("<B>", kControl, n); }},
      {"lists in a FORM", 100 * k,
       [](Size n) {
         return "<FORM DYNAMICELEMENT>" + repeated("<UL DYNAMICELEMENT LOOPPROPERTY=a.b[]><LI>x</UL>", n);
       }},
      {"unknown tags in a list", 200 * k, [](Size n) { return kList + repeated("<zz>", n); }},
      {"blocks in a list", 100 * k, [](Size n) { return kList + repeated("<DIV>", n); }},
      {"comments in a list", 500 * k, [](Size n) { return kList + repeated("<!-- c -->--&gt;", n); }},
      {"NUL and marker bytes in a list", 2000 * k,
       [](Size n) { return kList + repeated("\x1b\x1c\x1d\xff", n / 4) + std::string(n / 2, '\0'); }},
      // Tables.
      {"bodies and wrappers", 100 * k,
       [](Size n) { return kWideTable + repeated("<ZELX:LOOP><TBODY><TR><TD>x</TBODY>", n); }},
      // Long attributes.
      {"a long path", 1000 * k,
       [](Size n) { return "<UL DYNAMICELEMENT LOOPPROPERTY=\"" + repeated("ab.", n) + "c[]\"><LI>x"; }},
      {"a long query", 200 * k,
       [](Size n) { return "<A DYNAMICELEMENT HREFPROPERTY=\"" + repeated("a=$(b.c)&", n) + "\">x"; }},
      {"a query of open parentheses", 1000 * k,
       [](Size n) { return "<A DYNAMICELEMENT HREFPROPERTY=\"" + repeated("a=$(", n) + "\">x"; }},
      {"a long delimiter of -->", 500 * k,
       [](Size n) { return "<P><ZELX:TEXT LOOPPROPERTY=a.b[] DELIMITER=\"" + repeated("-->", n) + "\">x"; }},
      // Pairs.
      {"pairs in a row under open B", 50 * k,
       [](Size n) { return inside("<B>", pair("DesignerControl", "<OBJECT></OBJECT>").c_str(), n); }},
      {"pairs that describe nothing", 100 * k, [](Size n) { return repeated(pair("DynamicData", "<B>").c_str(), n); }},
      {"begins of three types in turn", 200 * k,
       [](Size n) {
         return repeated(
             (begin("DesignerControl", "<B>") + begin("DynamicData", "<B>") + begin("AuthorTimeVisual", "<B>")).c_str(),
             n);
       }},
      {"visuals in visuals", 200 * k, [](Size n) { return repeated("<ZELX:ATV FONTTEXT=v>", n) + "<%= x %>"; }},
      {"visuals in a row", 100 * k, [](Size n) { return repeated("<ZELX:ATV FONTTEXT=v><%= x %></ZELX:ATV>", n); }},
  };
  return list;
}

}  // namespace zeldom40::bench
