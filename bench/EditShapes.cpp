// Pages that are hard to repair.
#include "bench/Shapes.h"

namespace zeldom40::bench {

namespace {

using Size = std::size_t;

constexpr Size k = 1000;

// `first` n/10 times, then `unit` n times.
std::string below(const char* first, const char* unit, Size n) { return repeated(first, n / 10) + repeated(unit, n); }

}  // namespace

const std::vector<Shape>& editShapes() {
  static const std::vector<Shape> list = {
      {"DIVs in one B", 100 * k, [](Size n) { return "<B>" + repeated("<DIV>x</DIV>", n); }},
      {"FORMs in one B", 100 * k, [](Size n) { return "<B>" + repeated("<FORM>x</FORM>", n); }},
      {"DIVs in one B, text between", 100 * k, [](Size n) { return "<B>" + repeated("t<DIV>x</DIV>", n); }},
      {"DIV below deep B", 100 * k, [](Size n) { return repeated("<B>", n) + "x<DIV>y</DIV>z"; }},
      {"DIVs below deep B", 100 * k, [](Size n) { return below("<B>", "x<DIV>y</DIV>z", n); }},
      {"DIVs below deep B, marked", 100 * k, [](Size n) { return below("<B ID=b>", "x<DIV>y</DIV>z", n); }},
      {"B and DIV in turn, nested", 100 * k, [](Size n) { return repeated("<B><DIV>", n); }},
      {"TABLE, loose text in rows", 100 * k,
       [](Size n) { return "<TABLE>" + repeated("<TR><TD>x</TD></TR>loose", n) + "</TABLE>"; }},
      {"TABLEs with loose B, nested", 100 * k, [](Size n) { return repeated("<TABLE><B>", n); }},
      {"TABLEs in loose B, nested", 100 * k, [](Size n) { return repeated("<TABLE><TR><B><TABLE><TR><TD>", n); }},
      {"cells without a row", 100 * k, [](Size n) { return "<TABLE>" + repeated("<TD>x</TD>", n); }},
      {"cells without a table", 100 * k, [](Size n) { return repeated("<TD>x</TD>", n); }},
      {"stray ends of rows", 100 * k, [](Size n) { return "<TABLE>" + repeated("<TD>x</TD></TR>", n); }},
      {"comments, then ends of rows", 100 * k,
       [](Size n) { return "<TABLE><TR><TD>x</TD></TR>" + below("<!-- c -->", "</TR>", n); }},
      {"FRAMEs in BODY below deep B", 100 * k, [](Size n) { return "<BODY>" + below("<B>", "<FRAME>", n); }},
      {"FRAMEs, comments between", 100 * k, [](Size n) { return "<BODY>" + repeated("<!-- c --><FRAME>", n); }},
      {"misnested B and I", 100 * k, [](Size n) { return repeated("<B>b<I>i</B>j</I>", n); }},
      {"FONTs without attributes", 100 * k, [](Size n) { return repeated("<FONT>x</FONT> ", n); }},
      {"FONTs without attributes, nested", 100 * k, [](Size n) { return repeated("<FONT>x", n); }},
      {"FONTs around nothing, nested", 100 * k, [](Size n) { return repeated("<FONT><B></B>", n); }},
      {"FONTs without attributes in a list", 100 * k,
       [](Size n) { return repeated("<UL><LI>", 50) + repeated("<FONT>x</FONT> ", n); }},
      {"FONTs without attributes in a PRE", 100 * k, [](Size n) { return "<PRE>" + repeated("<FONT>x</FONT>\t", n); }},
      {"texts, empty Bs between", 100 * k, [](Size n) { return "<P>" + repeated("x <B></B>", n); }},
      {"SPANs and B in turn, nested", 100 * k, [](Size n) { return repeated("<SPAN><B>", n) + "x"; }},
      {"empty Bs in one P", 100 * k, [](Size n) { return "<P>" + repeated("<B></B>", n); }},
      {"TBODYs", 100 * k, [](Size n) { return "<TABLE>" + repeated("<TBODY><TR><TD>x</TBODY>", n); }},
      {"TBODYs, comments between", 100 * k,
       [](Size n) { return "<TABLE>" + repeated("<TBODY><TR><TD>x</TBODY><!-- c -->", n); }},
      {"inline between items", 100 * k, [](Size n) { return "<UL>" + repeated("<LI>x</LI><I>i</I>", n) + "</UL>"; }},
      {"one inline before items", 100 * k, [](Size n) { return "<UL><I>i</I>" + repeated("<LI>x</LI>", n) + "</UL>"; }},
      {"A around blocks", 100 * k, [](Size n) { return repeated("<A HREF=x>a<DIV>y</DIV>", n); }},
      {"OPTIONs without SELECT", 100 * k, [](Size n) { return repeated("<OPTION>x", n); }},
      {"DD and LI in turn", 100 * k, [](Size n) { return repeated("<DD>x<LI>y", n); }},
      {"PREs with tabs", 100 * k, [](Size n) { return repeated("<PRE>\r\na\tb\r\n</PRE>", n); }},
      {"texts in a PRE", 100 * k, [](Size n) { return "<PRE>" + repeated("a\t<B>b</B>", n); }},
      {"lists in lists, text", 100 * k, [](Size n) { return repeated("<UL><LI>some text of an item ", n); }},
      {"stray ends of P", 100 * k, [](Size n) { return below("<B>", "</P>", n); }},
  };
  return list;
}

}  // namespace zeldom40::bench
