// What the shapes look like.
#include "bench/Shapes.h"

#include <string_view>

namespace zeldom40::bench {

namespace {

constexpr std::size_t k = 1000;
constexpr std::size_t M = k * k;

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

using Size = std::size_t;

const std::vector<Shape>& shapes() {
  static const std::vector<Shape> list = {
      // Wide and deep.
      {"P, never closed", M, [](Size n) { return repeated("<P>", n); }},
      {"P with text", M, [](Size n) { return repeated("<P>a b</P>", n); }},
      {"B in B", M, [](Size n) { return repeated("<B>", n) + "x"; }, "HTML", 1},
      {"B in B, closed", M, [](Size n) { return repeated("<B>", n) + repeated("</B>", n); }, "HTML", 1},
      {"DIV in DIV", M, [](Size n) { return repeated("<DIV>", n) + "x"; }, "HTML", 1},
      {"SPAN in SPAN", M, [](Size n) { return repeated("<SPAN>", n) + "x"; }, "HTML", 1},
      {"FONT in FONT, attributes", M / 5,
       [](Size n) { return repeated("<FONT COLOR=\"red\" SIZE=1 FACE='x'>", n) + "x"; }, "HTML", 1},
      {"UL in LI in UL", M / 2, [](Size n) { return repeated("<UL><LI>", n) + "x"; }, "HTML", 2},
      {"TABLE in TD in TABLE", M / 5, [](Size n) { return repeated("<TABLE><TR><TD>", n) + "x"; }, "HTML", 4},
      {"A in A", M / 2, [](Size n) { return repeated("<A HREF=x>", n); }},
      {"unknown tags", M, [](Size n) { return repeated("<zz>", n) + "x"; }},
      {"unknown tags, nested, not HTML", M, [](Size n) { return repeated("<zz>", n) + "x"; }, "JSP", 1},
      {"ZELX:LOOP in ZELX:LOOP, empty", M / 5, [](Size n) { return "<P>" + repeated("<ZELX:LOOP>", n) + "x<LI>"; },
       "HTML", 1},
      // Attributes.
      {"one tag, distinct attributes", M / 5, [](Size n) { return "<P " + numbered("a", n, "=1 ", n) + ">"; }},
      {"one tag, an attribute again and again", M / 5, [](Size n) { return "<P " + repeated("align=left ", n) + ">"; }},
      {"many tags, 20 attributes each", M / 20,
       [](Size n) { return repeated(("<FONT" + numbered(" a", 20, "=1", 20) + ">x</FONT>").c_str(), n); }},
      {"many tags, 200 attributes each", M / 200,
       [](Size n) { return repeated(("<P" + numbered(" a", 200, "=1", 200) + ">x</P>").c_str(), n); }},
      // Never closed.
      {"LI, never closed", M, [](Size n) { return repeated("<LI>", n); }},
      {"TD, never closed", M / 2, [](Size n) { return "<TABLE><TR>" + repeated("<TD>x", n); }},
      {"P in B in P, never closed", M / 4, [](Size n) { return repeated("<P><B>", n); }},
      // Out of place.
      {"stray end tags below deep B", M, [](Size n) { return under("<B>", "</I>", n); }},
      {"stray </P> below deep B", M, [](Size n) { return under("<B>", "</P>", n); }},
      {"stray unknown end tags below deep B", M, [](Size n) { return under("<B>", "</zz>", n); }},
      {"stray end tags, all distinct", M / 2,
       [](Size n) { return repeated("<B>", n / 10) + numbered("</x", n, ">", n); }},
      {"B and I, overlapping", M / 4, [](Size n) { return repeated("<B><I></B></I>", n); }},
      {"markup between table rows", M / 5,
       [](Size n) { return "<TABLE>" + repeated("<TR><TD>x</TD></TR><B>b</B>", n) + "</TABLE>"; }},
      {"wide DIV below deep B", M / 4, [](Size n) { return repeated("<B>", n) + "<DIV>" + repeated("<BR>", n); }},
      {"P, TABLE, TR in turn", M / 5, [](Size n) { return repeated("<P><TABLE><TR>", n); }},
      {"P below deep B", M, [](Size n) { return under("<B>", "<P>", n); }},
      // Text, references, stray bytes.
      {"references", M, [](Size n) { return repeated("&amp;", n); }},
      {"stray <", M, [](Size n) { return repeated("<", n); }},
      {"stray </", M, [](Size n) { return repeated("</", n); }},
      {"one huge text", 100 * M, [](Size n) { return std::string(n, 'a'); }},
      {"one huge comment", 50 * M, [](Size n) { return "<!--" + std::string(n, 'c') + "-->"; }},
      {"one huge script", 50 * M, [](Size n) { return "<SCRIPT>" + std::string(n, 's') + "</SCRIPT>"; }},
      {"one huge JSP tag", 50 * M, [](Size n) { return "<% " + std::string(n, 'j') + "%>"; }},
      {"one huge attribute value", 20 * M, [](Size n) { return "<P TITLE=\"" + std::string(n, 'v') + "\">"; }},
      // Without end.
      {"comments without end", M, [](Size n) { return repeated("<!--", n); }},
      {"JSP tags without end", M, [](Size n) { return repeated("<% x ", n); }},
      {"CDATA without end", M, [](Size n) { return "<jsp:scriptlet>" + repeated("<![CDATA[ ", n); }},
      {"double quotes without end", M, [](Size n) { return repeated("<A HREF=\"x>", n / 2 * 2) + "\""; }},
      {"server code in values, no end", M / 2, [](Size n) { return repeated("<A B=\"<%\">", n); }},
      {"SCRIPTs without end", M / 2, [](Size n) { return repeated("<SCRIPT>", n); }},
      {"DOCTYPEs, open literal", M / 2, [](Size n) { return repeated("<!DOCTYPE HTML PUBLIC \"x", n); }},
      {"DOCTYPEs, open subset", M / 5, [](Size n) { return repeated("<!DOCTYPE HTML PUBLIC \"x\" [", n); }},
      {"METADATA begins without end", M,
       [](Size n) { return repeated("<!--METADATA type=\"T\" startspan\r\n-->", n); }},
      // Declarations.
      {"subset: ATTLISTs of one element", M / 10,
       [](Size n) { return subset(repeated("<!ATTLIST P a CDATA #IMPLIED>", n)) + "]>"; }},
      {"subset: open IGNOREs", M, [](Size n) { return subset(repeated("<![IGNORE[", n)) + "]>"; }},
      {"subset: open INCLUDEs", M, [](Size n) { return subset(repeated("<![INCLUDE[", n)) + "]>"; }},
      {"subset: a ring of elements", 16 * k, [](Size n) { return cycle(n, "<C0><P>"); }},
      {"subset: deep (", M, [](Size n) { return subset("<!ELEMENT X O O " + repeated("(", n)) + "]>"; }},
      {"subset: many ELEMENTs", M / 10,
       [](Size n) { return subset(numbered("<!ELEMENT E", n, " O O (P)>", n)) + "]>"; }},
      {"subset: doubling entities", 512, [](Size n) { return doubling(n); }},
      {"subset: many references", M / 5,
       [](Size n) { return subset("<!ENTITY % a \"x\"><!ENTITY % b \"" + repeated("%a;", n) + "\">") + "]>"; }},
      {"a page as people write them", 16 * M, [](Size n) { return ordinaryPage(n); }},
  };
  return list;
}

const std::vector<Shape>& moreShapes() {
  static const std::vector<Shape> list = {
      {"TABLE in TABLE, no cells", M / 5, [](Size n) { return repeated("<TABLE>", n); }},
      {"misfits LI DT TD OPTION", M / 4, [](Size n) { return repeated("<LI><DT><TD><OPTION>", n); }},
      {"HEAD and BODY in turn", M / 4, [](Size n) { return repeated("<LINK><P>", n); }},
      {"INS over all", M / 2, [](Size n) { return repeated("<INS><TR>", n); }},
      {"ZELX:LOOP, misfits, comments", M / 5, [](Size n) { return repeated("<ZELX:LOOP><TD><!-- c -->", n); }},
      {"ZELX:LOOP in TABLE", M / 5, [](Size n) { return "<TABLE>" + repeated("<ZELX:LOOP><TR><TD>x", n); }},
      {"REPEAT with rows", M / 5, [](Size n) { return "<TABLE>" + repeated("<REPEAT INDEX=i><TR>", n); }},
      {"stray end tags under X", M, [](Size n) { return under("<x>", "</y>", n); }, "JSP"},
      {"LI under open B", M, [](Size n) { return under("<B>", "<LI>", n); }},
      {"TD under open DIV", M, [](Size n) { return under("<DIV>", "<TD>", n); }},
      {"text under open FONT", M, [](Size n) { return under("<FONT>", "a <!-- c -->", n); }},
      {"A under open BUTTON", M, [](Size n) { return under("<BUTTON>", "<A>", n); }},
      {"unknown tags in turn, one end", M / 2, [](Size n) { return "<out>" + repeated("<u>", n) + "</out>"; }, "JSP"},
      {"unknown tags, each round closed", M / 4, [](Size n) { return repeated("<out><u><v></out>", n); }, "JSP"},
      {"distinct unknown tags", M / 2, [](Size n) { return numbered("<x", n, ">", n); }},
      {"distinct unknown tags, not HTML", M / 2, [](Size n) { return numbered("<x", n, ">", n); }, "JSP"},
      {"attributes, then small tags", M / 5,
       [](Size n) { return "<P " + numbered("a", n, "=1 ", n) + ">" + repeated("<B>x</B>", n); }},
      {"attributes, half repeated", M / 5, [](Size n) { return "<P " + numbered("a", n, "='1' ", n / 2) + ">"; }},
      {"attributes of an unknown tag", M / 5, [](Size n) { return "<X " + numbered("a", n, " ", n) + ">"; }},
      {"attributes of a directive", M / 5, [](Size n) { return "<%@ page " + numbered("a", n, "=\"1\" ", n) + "%>"; }},
      {"attributes of an include", M / 5,
       [](Size n) { return "<!--#include " + numbered("a", n, "=\"1\" ", n) + "-->"; }},
      {"comments ended by >", M, [](Size n) { return repeated("<!-- >", n); }},
      {"comments", M, [](Size n) { return repeated("<!-- c -->", n); }},
      {"METADATA begins, distinct types", M / 5,
       [](Size n) { return numbered("<!--METADATA type=\"T", n, "\" startspan\r\n-->", n); }},
      {"METADATA DynamicData begins", M / 2,
       [](Size n) { return repeated("<!--METADATA type=\"DynamicData\" startspan\r\n<P>-->", n); }},
      {"METADATA ends", M / 2, [](Size n) { return repeated("<!--METADATA type=\"DynamicData\" endspan-->", n); }},
      {"JSP comments without end", M, [](Size n) { return repeated("<%-- ", n); }},
      {"JSP comments ended by >", M, [](Size n) { return repeated("<%-- > ", n); }},
      {"JSP tags", M, [](Size n) { return repeated("<%= x %>", n); }},
      {"JSP in an attribute, no end", M / 2, [](Size n) { return "<P " + repeated("a=\"<%= \" ", n); }},
      {"PIs without end", M, [](Size n) { return repeated("<?x ", n); }},
      {"PIs ended by >", M, [](Size n) { return repeated("<?x >", n); }},
      {"CDATA", M / 2, [](Size n) { return "<jsp:scriptlet>" + repeated("<![CDATA[ x ]]> ", n); }},
      {"XML scripts without end", M / 5, [](Size n) { return repeated("<jsp:expression><![CDATA[a > b", n); }},
      {"SSI includes without end", M / 2, [](Size n) { return repeated("<!--#include file=\"a ", n); }},
      {"a quote and many tags", M / 2, [](Size n) { return "<A HREF='x" + repeated("<A HREF=\"x\">", n); }},
      {"tags without end", M, [](Size n) { return repeated("<P", n); }},
      {"tags without end, attributes", M / 2, [](Size n) { return repeated("<P a=b ", n); }},
      {"end tags without end", M, [](Size n) { return repeated("</P", n); }},
      {"stray <!", M, [](Size n) { return repeated("<!", n); }},
      {"stray <! a", M, [](Size n) { return repeated("<!a ", n); }},
      {"words", 100 * M, [](Size n) { return repeated("some word\r\n", n / 11); }},
      {"white space", 100 * M, [](Size n) { return std::string(n, ' '); }},
      {"NULs", 50 * M, [](Size n) { return std::string(n, '\0'); }},
      {"bytes 27", 50 * M, [](Size n) { return std::string(n, '\x1b'); }},
      {"bytes 28", 50 * M, [](Size n) { return std::string(n, '\x1c'); }},
      {"high bytes", 50 * M, [](Size n) { return std::string(n, '\x81'); }},
      {"numeric references", M, [](Size n) { return repeated("&#8230; ", n); }},
      {"ampersands", 10 * M, [](Size n) { return std::string(n, '&'); }},
      {"long number", 10 * M, [](Size n) { return "&#" + std::string(n, '9') + ";"; }},
      {"references in an attribute", M, [](Size n) { return "<A HREF=\"" + repeated("&amp;", n) + "\">"; }},
      {"SCRIPT with many </", M, [](Size n) { return "<SCRIPT>" + repeated("a</b", n) + "</SCRIPT>"; }},
      {"SCRIPT with many </, no end", M, [](Size n) { return "<SCRIPT>" + repeated("</", n); }},
      {"SCRIPT with many <!--", M, [](Size n) { return "<SCRIPT>" + repeated("<!-- x", n) + "</SCRIPT>"; }},
      {"SCRIPTs", M / 2, [](Size n) { return repeated("<SCRIPT>a</SCRIPT>", n); }},
      {"PRE", M / 2, [](Size n) { return repeated("<PRE> a\r\n b", n); }},
      {"DOCTYPEs", M, [](Size n) { return repeated("<!DOCTYPE HTML>", n); }},
      {"DOCTYPEs with subsets", M / 50,
       [](Size n) { return repeated("<!DOCTYPE HTML PUBLIC \"x\" [<!ATTLIST P z CDATA #IMPLIED>]><P z=1>", n); }},
      {"subset: <!x", M, [](Size n) { return subset(repeated("<!x", n)) + "]>"; }},
      {"subset: ATTLIST without end", M / 5,
       [](Size n) { return subset("<!ATTLIST P " + numbered("a", n, " CDATA #IMPLIED ", n)) + "]>"; }},
      {"subset: ATTLISTs without end", M / 5,
       [](Size n) { return subset(repeated("<!ATTLIST P a CDATA #IMPLIED ", n)) + "]>"; }},
      {"subset: open IGNORE", M, [](Size n) { return subset("<![IGNORE[" + repeated("<!x", n)) + "]>"; }},
      {"subset: cycle of X", M / 10, [](Size n) { return subset("<!ELEMENT X O O (X)>]>") + repeated("<X><P>", n); }},
      {"subset: ring, then its pages", M / 10, [](Size n) { return cycle(10, repeated("<C0><C5><P>", n).c_str()); }},
      {"subset: exclusion of itself", M / 10,
       [](Size n) { return subset("<!ELEMENT X O O (X) -(X) +(X)>]>") + repeated("<X><%= a %><P>", n); }},
      {"subset: wide model", M / 5,
       [](Size n) { return subset("<!ELEMENT X O O (" + numbered("a", n, "|", n) + "P)>]><X><P>"); }},
      {"subset: undeclared references", M, [](Size n) { return subset(repeated("%a;", n)) + "]>"; }},
      {"subset: %%%%", M, [](Size n) { return subset(repeated("%", n)) + "]>"; }},
      {"subset: empty references", M / 5,
       [](Size n) { return subset("<!ENTITY % a \"\">" + repeated("%a;", n)) + "]>"; }},
      {"subset: comments without end", M, [](Size n) { return subset(repeated("<!--", n)) + "]>"; }},
      {"subset: literals without end", M, [](Size n) { return subset(repeated("<!ENTITY a \"", n)) + "]>"; }},
      {"subset: entities, then references", M / 10,
       [](Size n) { return subset(numbered("<!ENTITY e", n, " \"v\">", n)) + "]>" + numbered("&e", n, ";", n); }},
  };
  return list;
}

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
