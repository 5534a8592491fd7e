// What the shapes look like.
#include "bench/Shapes.h"

#include <string_view>

namespace zeldom40::bench {

namespace {

std::string numbered(std::string_view before, std::size_t n, std::string_view after, std::size_t distinct) {
  std::string text;
  text.reserve(n * (before.size() + after.size() + 7));
  for (std::size_t i = 0; i < n; ++i) {
    text += before;
    text += std::to_string(i % distinct);
    text += after;
  }
  return text;
}

// A run of one thing under a tenth as many open elements.
std::string under(const char* open, const char* inside, std::size_t n) {
  return repeated(open, n / 10) + repeated(inside, n);
}

std::string subset(const std::string& declarations) { return "<!DOCTYPE HTML PUBLIC \"x\" [" + declarations; }

std::string cycle(std::size_t n, const char* page) {
  std::string text;
  for (std::size_t i = 0; i < n; ++i) {
    text += "<!ELEMENT C" + std::to_string(i) + " O O (C" + std::to_string((i + 1) % n) + ")>";
  }
  return subset(text) + "]>" + page;
}

// Each level of entities holds the one before twice: 2^levels letters if nobody stops it.
std::string doubling(std::size_t levels) {
  std::string text = "<!ENTITY % e0 \"abcdefgh\">";
  for (std::size_t i = 1; i <= levels; ++i) {
    const std::string before = "%e" + std::to_string(i - 1) + ";";
    text += "<!ENTITY % e" + std::to_string(i) + " \"" + before + before + "\">";
  }
  return subset(text) + "]>x";
}

}  // namespace

std::string repeated(const char* word, std::size_t n) {
  const std::string_view one(word);
  std::string text;
  text.reserve(one.size() * n);
  for (std::size_t i = 0; i < n; ++i) text += one;
  return text;
}

#define SHAPE [](std::size_t n) -> std::string

const std::vector<Shape>& shapes() {
  constexpr std::size_t k = 1000;
  constexpr std::size_t M = k * k;
  static const std::vector<Shape> list = {{"nested B", M, SHAPE{return repeated("<B>", n);
}
}  // namespace zeldom40::bench
, {"nested B, closed", M, SHAPE{return repeated("<B>", n) + repeated("</B>", n);
}
}
, {"sibling P", M, SHAPE{return repeated("<P>", n);
}
}
, {"sibling P with text", M, SHAPE{return repeated("<P>a b</P>", n);
}
}
, {"nested FONT with attributes", M / 5, SHAPE{return repeated("<FONT color=\"red\" size=1 face='x'>", n);
}
}
, {"TABLE in TABLE", M / 5, SHAPE{return repeated("<TABLE><TR><TD>", n);
}
}
, {"TABLE in TABLE, no cells", M / 5, SHAPE{return repeated("<TABLE>", n);
}
}
, {"unclosed A in A", M / 2, SHAPE{return repeated("<A HREF=x>", n);
}
}
, {"UL in UL", M / 2, SHAPE{return repeated("<UL><LI>", n);
}
}
, {"LI without a list", M, SHAPE{return repeated("<LI>", n);
}
}
, {"misfits LI DT TD OPTION", M / 4, SHAPE{return repeated("<LI><DT><TD><OPTION>", n);
}
}
, {"overlapping B and I", M / 4, SHAPE{return repeated("<B><I></B></I>", n);
}
}
, {"P in B in P", M / 4, SHAPE{return repeated("<P><B>", n);
}
}
, {"HEAD and BODY in turn", M / 4, SHAPE{return repeated("<LINK><P>", n);
}
}
, {"INS over all", M / 2, SHAPE{return repeated("<INS><TR>", n);
}
}
, {"ZELX:LOOP, misfits, comments", M / 5, SHAPE{return repeated("<ZELX:LOOP><TD><!-- c -->", n);
}
}
, {"ZELX:LOOP in TABLE", M / 5, SHAPE{return "<TABLE>" + repeated("<ZELX:LOOP><TR><TD>x", n);
}
}
, {"ZELX:LOOP nested", M / 5, SHAPE{return "<P>" + repeated("<ZELX:LOOP>", n) + "x<LI>";
}
}
, {"REPEAT with rows", M / 5, SHAPE{return "<TABLE>" + repeated("<REPEAT INDEX=i><TR>", n);
}
}
, {"stray end tags under B", M, SHAPE{return under("<B>", "</I>", n);
}
}
, {"stray end tags of a block", M, SHAPE{return under("<B>", "</P>", n);
}
}
, {"stray end tags, unknown", M, SHAPE{return under("<B>", "</zz>", n);
}
}
, {"stray end tags under X", M, SHAPE{return under("<x>", "</y>", n);
}
, "JSP"
}
, {"P under open B", M, SHAPE{return under("<B>", "<P>", n);
}
}
, {"LI under open B", M, SHAPE{return under("<B>", "<LI>", n);
}
}
, {"TD under open DIV", M, SHAPE{return under("<DIV>", "<TD>", n);
}
}
, {"text under open FONT", M, SHAPE{return under("<FONT>", "a <!-- c -->", n);
}
}
, {"A under open BUTTON", M, SHAPE{return under("<BUTTON>", "<A>", n);
}
}
, {"unknown tags in turn, one end", M / 2, SHAPE{return "<out>" + repeated("<u>", n) + "</out>";
}
, "JSP"
}
, {"unknown tags, each round closed", M / 4, SHAPE{return repeated("<out><u><v></out>", n);
}
, "JSP"
}
, {"distinct unknown tags", M / 2, SHAPE{return numbered("<x", n, ">", n);
}
}
, {"distinct unknown tags, not HTML", M / 2, SHAPE{return numbered("<x", n, ">", n);
}
, "JSP"
}
, {"distinct end tags", M / 2, SHAPE{return repeated("<B>", n / 10) + numbered("</x", n, ">", n);
}
}
, {"attributes, distinct", M / 5, SHAPE{return "<P " + numbered("a", n, "=1 ", n) + ">";
}
}
, {"attributes, then small tags", M / 5,
   SHAPE{return "<P " + numbered("a", n, "=1 ", n) + ">" + repeated("<B>x</B>", n);
}
}
, {"attributes, equal", M / 5, SHAPE{return "<P " + repeated("align=left ", n) + ">";
}
}
, {"attributes, half repeated", M / 5, SHAPE{return "<P " + numbered("a", n, "='1' ", n / 2) + ">";
}
}
, {"attributes of an unknown tag", M / 5, SHAPE{return "<X " + numbered("a", n, " ", n) + ">";
}
}
, {"attributes of a directive", M / 5, SHAPE{return "<%@ page " + numbered("a", n, "=\"1\" ", n) + "%>";
}
}
, {"attributes of an include", M / 5, SHAPE{return "<!--#include " + numbered("a", n, "=\"1\" ", n) + "-->";
}
}
, {"comments without end", M, SHAPE{return repeated("<!--", n);
}
}
, {"comments ended by >", M, SHAPE{return repeated("<!-- >", n);
}
}
, {"comments", M, SHAPE{return repeated("<!-- c -->", n);
}
}
, {"METADATA begins without end", M, SHAPE{return repeated("<!--METADATA type=\"T\" startspan\r\n-->", n);
}
}
, {"METADATA begins, distinct types", M / 5,
   SHAPE{return numbered("<!--METADATA type=\"T", n, "\" startspan\r\n-->", n);
}
}
, {"METADATA DynamicData begins", M / 2,
   SHAPE{return repeated("<!--METADATA type=\"DynamicData\" startspan\r\n<P>-->", n);
}
}
, {"METADATA ends", M / 2, SHAPE{return repeated("<!--METADATA type=\"DynamicData\" endspan-->", n);
}
}
, {"JSP tags without end", M, SHAPE{return repeated("<% x ", n);
}
}
, {"JSP comments without end", M, SHAPE{return repeated("<%-- ", n);
}
}
, {"JSP comments ended by >", M, SHAPE{return repeated("<%-- > ", n);
}
}
, {"JSP tags", M, SHAPE{return repeated("<%= x %>", n);
}
}
, {"JSP in an attribute, no end", M / 2, SHAPE{return "<P " + repeated("a=\"<%= \" ", n);
}
}
, {"PIs without end", M, SHAPE{return repeated("<?x ", n);
}
}
, {"PIs ended by >", M, SHAPE{return repeated("<?x >", n);
}
}
, {"CDATA without end", M, SHAPE{return "<jsp:scriptlet>" + repeated("<![CDATA[ ", n);
}
}
, {"CDATA", M / 2, SHAPE{return "<jsp:scriptlet>" + repeated("<![CDATA[ x ]]> ", n);
}
}
, {"XML scripts without end", M / 5, SHAPE{return repeated("<jsp:expression><![CDATA[a > b", n);
}
}
, {"SSI includes without end", M / 2, SHAPE{return repeated("<!--#include file=\"a ", n);
}
}
, {"double quotes without end", M, SHAPE{return repeated("<A HREF=\"x>", n) + "\"";
}
}
, {"a quote and many tags", M / 2, SHAPE{return "<A HREF='x" + repeated("<A HREF=\"x\">", n);
}
}
, {"tags without end", M, SHAPE{return repeated("<P", n);
}
}
, {"tags without end, attributes", M / 2, SHAPE{return repeated("<P a=b ", n);
}
}
, {"end tags without end", M, SHAPE{return repeated("</P", n);
}
}
, {"stray <", M, SHAPE{return repeated("<", n);
}
}
, {"stray </", M, SHAPE{return repeated("</", n);
}
}
, {"stray <!", M, SHAPE{return repeated("<!", n);
}
}
, {"stray <! a", M, SHAPE{return repeated("<!a ", n);
}
}
, {"text", 100 * M, SHAPE{return std::string(n, 'a');
}
}
, {"words", 100 * M, SHAPE{return repeated("some word\r\n", n / 11);
}
}
, {"white space", 100 * M, SHAPE{return std::string(n, ' ');
}
}
, {"NULs", 50 * M, SHAPE{return std::string(n, '\0');
}
}
, {"bytes 27", 50 * M, SHAPE{return std::string(n, '\x1b');
}
}
, {"bytes 28", 50 * M, SHAPE{return std::string(n, '\x1c');
}
}
, {"high bytes", 50 * M, SHAPE{return std::string(n, '\x81');
}
}
, {"references", M, SHAPE{return repeated("&amp;", n);
}
}
, {"numeric references", M, SHAPE{return repeated("&#8230; ", n);
}
}
, {"ampersands", 10 * M, SHAPE{return std::string(n, '&');
}
}
, {"long number", 10 * M, SHAPE{return "&#" + std::string(n, '9') + ";";
}
}
, {"references in an attribute", M, SHAPE{return "<A HREF=\"" + repeated("&amp;", n) + "\">";
}
}
, {"SCRIPT with many </", M, SHAPE{return "<SCRIPT>" + repeated("a</b", n) + "</SCRIPT>";
}
}
, {"SCRIPT with many </, no end", M, SHAPE{return "<SCRIPT>" + repeated("</", n);
}
}
, {"SCRIPT with many <!--", M, SHAPE{return "<SCRIPT>" + repeated("<!-- x", n) + "</SCRIPT>";
}
}
, {"SCRIPTs without end", M / 2, SHAPE{return repeated("<SCRIPT>", n);
}
}
, {"SCRIPTs", M / 2, SHAPE{return repeated("<SCRIPT>a</SCRIPT>", n);
}
}
, {"PRE", M / 2, SHAPE{return repeated("<PRE> a\r\n b", n);
}
}
, {"DOCTYPEs", M, SHAPE{return repeated("<!DOCTYPE HTML>", n);
}
}
, {"DOCTYPEs, open literal", M / 2, SHAPE{return repeated("<!DOCTYPE HTML PUBLIC \"x", n);
}
}
, {"DOCTYPEs, open subset", M / 5, SHAPE{return repeated("<!DOCTYPE HTML PUBLIC \"x\" [", n);
}
}
, {"DOCTYPEs with subsets", M / 50,
   SHAPE{return repeated("<!DOCTYPE HTML PUBLIC \"x\" [<!ATTLIST P z CDATA #IMPLIED>]><P z=1>", n);
}
}
, {"subset: <!x", M, SHAPE{return subset(repeated("<!x", n)) + "]>";
}
}
, {"subset: ATTLIST without end", M / 5,
   SHAPE{return subset("<!ATTLIST P " + numbered("a", n, " CDATA #IMPLIED ", n)) + "]>";
}
}
, {"subset: ATTLISTs without end", M / 5, SHAPE{return subset(repeated("<!ATTLIST P a CDATA #IMPLIED ", n)) + "]>";
}
}
, {"subset: ATTLISTs of one element", M / 10, SHAPE{return subset(repeated("<!ATTLIST P a CDATA #IMPLIED>", n)) + "]>";
}
}
, {"subset: open IGNORE", M, SHAPE{return subset("<![IGNORE[" + repeated("<!x", n)) + "]>";
}
}
, {"subset: open IGNOREs", M, SHAPE{return subset(repeated("<![IGNORE[", n)) + "]>";
}
}
, {"subset: open INCLUDEs", M, SHAPE{return subset(repeated("<![INCLUDE[", n)) + "]>";
}
}
, {"subset: cycle of X", M / 10, SHAPE{return subset("<!ELEMENT X O O (X)>]>") + repeated("<X><P>", n);
}
}
, {"subset: a ring of elements", 16 * k, SHAPE{return cycle(n, "<C0><P>");
}
}
, {"subset: ring, then its pages", M / 10, SHAPE{return cycle(10, repeated("<C0><C5><P>", n).c_str());
}
}
, {"subset: exclusion of itself", M / 10,
   SHAPE{return subset("<!ELEMENT X O O (X) -(X) +(X)>]>") + repeated("<X><%= a %><P>", n);
}
}
, {"subset: deep (", M, SHAPE{return subset("<!ELEMENT X O O " + repeated("(", n)) + "]>";
}
}
, {"subset: wide model", M / 5, SHAPE{return subset("<!ELEMENT X O O (" + numbered("a", n, "|", n) + "P)>]><X><P>");
}
}
, {"subset: many ELEMENTs", M / 10, SHAPE{return subset(numbered("<!ELEMENT E", n, " O O (P)>", n)) + "]>";
}
}
, {"subset: doubling entities", 512, SHAPE{return doubling(n);
}
}
, {"subset: many references", M / 5,
   SHAPE{return subset("<!ENTITY % a \"x\"><!ENTITY % b \"" + repeated("%a;", n) + "\">") + "]>";
}
}
, {"subset: undeclared references", M, SHAPE{return subset(repeated("%a;", n)) + "]>";
}
}
, {"subset: %%%%", M, SHAPE{return subset(repeated("%", n)) + "]>";
}
}
, {"subset: empty references", M / 5, SHAPE{return subset("<!ENTITY % a \"\">" + repeated("%a;", n)) + "]>";
}
}
, {"subset: comments without end", M, SHAPE{return subset(repeated("<!--", n)) + "]>";
}
}
, {"subset: literals without end", M, SHAPE{return subset(repeated("<!ENTITY a \"", n)) + "]>";
}
}
, {"subset: entities, then references", M / 10,
   SHAPE{return subset(numbered("<!ENTITY e", n, " \"v\">", n)) + "]>" + numbered("&e", n, ";", n);
}
}
, {"a page as people write them", 16 * M, SHAPE{return ordinaryPage(n);
}
}
,
}
;
return list;
}

#undef SHAPE

std::string ordinaryPage(std::size_t bytes) {
  static constexpr std::string_view kPieces[] = {
      "<H2><A NAME=\"s\">A heading of some words</A></H2>\r\n",
      "<P>Running text with <B>bold</B>, <I>italic &amp; <TT>fixed</TT></I> words,\r\nand a <A "
      "HREF=\"page.html#top\">link"
      "</A>, a line<BR>break and an entity: &copy;&nbsp;1999.\r\n",
      "<UL>\r\n  <LI>first item\r\n  <LI>second <EM>item</EM></LI>\r\n  <LI>third\r\n</UL>\r\n",
      "<TABLE BORDER=\"1\" WIDTH=\"100%\" CELLPADDING=2>\r\n  <TR><TH ALIGN=\"left\">Name</TH><TH>Value</TH></TR>\r\n"
      "  <TR><TD>a</TD><TD NOWRAP>1.25</TD></TR>\r\n  <TR><TD>b</TD><TD "
      "BGCOLOR=\"#ffffcc\">17</TD></TR>\r\n</TABLE>\r\n",
      "<P ALIGN=\"center\"><IMG SRC=\"images/photo.gif\" WIDTH=\"320\" HEIGHT=\"200\" ALT=\"A photo\"></P>\r\n",
      "<!-- navigation ends here -->\r\n",
      "<DIV CLASS=\"note\"><FONT SIZE=\"2\" COLOR=\"#333333\">A note in smaller letters that goes on for a while so "
      "that the"
      "\r\ntext has its share of the page, as it has in those that people write.</FONT></DIV>\r\n",
      "<PRE>\r\nfor (i = 0; i &lt; n; ++i)\r\n  sum += a[i];\r\n</PRE>\r\n",
      "<SCRIPT TYPE=\"text/javascript\"><!--\r\nif (a < b && c > d) document.write('<P>x</P>');\r\n//--></SCRIPT>\r\n",
      "<FORM ACTION=\"go.cgi\" METHOD=\"post\"><INPUT TYPE=\"text\" NAME=\"q\" SIZE=\"20\"><SELECT "
      "NAME=\"s\"><OPTION>one"
      "<OPTION SELECTED>two</SELECT></FORM>\r\n",
  };
  constexpr std::size_t kCount = sizeof kPieces / sizeof *kPieces;
  std::string page =
      "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0 Transitional//EN\">\r\n<HTML>\r\n<HEAD>\r\n<TITLE>A "
      "page</TITLE>\r\n"
      "<META HTTP-EQUIV=\"Content-Type\" CONTENT=\"text/html; charset=iso-8859-1\">\r\n</HEAD>\r\n<BODY "
      "BGCOLOR=white>\r\n";
  // Text is what pages have most of, so every second piece is a paragraph.
  for (std::size_t i = 0; page.size() + 16 < bytes; ++i) page += kPieces[i % 2 ? 1 : i / 2 % kCount];
  page += "</BODY>\r\n</HTML>\r\n";
  return page;
}

}  // namespace zeldom40::bench
