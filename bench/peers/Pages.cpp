// What the pages look like.
#include "bench/peers/Pages.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "bench/Shapes.h"

namespace zeldom40::bench {

namespace {

struct Size {
  const char* name;
  std::size_t bytes;
};
constexpr Size kSizes[] = {{"10 KB", 10 << 10}, {"100 KB", 100 << 10}, {"1 MB", 1 << 20}};

using Pieces = std::array<std::string_view, 8>;

// Pieces in turn up to that many bytes; the first is what stands between two others, as text does on pages.
std::string assemble(std::string_view head, const Pieces& pieces, std::string_view end, std::size_t bytes) {
  std::string page(head);
  for (std::size_t i = 0; page.size() + end.size() < bytes; ++i) {
    page += i % 2 ? pieces[0] : pieces[1 + i / 2 % (pieces.size() - 1)];
  }
  return page += end;
}

std::string jspPage(std::size_t bytes) {
  static constexpr Pieces kPieces = {
      "<P>Dear <B><%= user.getName() %></B>, your order <TT><%= order.getId() %></TT> of\r\nmany words left on <I><%= "
      "format(order.getDate()) %></I>.\r\n",
      "<%-- the rows come from the order --%>\r\n<TABLE BORDER=1>\r\n<% for (int i = 0; i < order.size(); ++i) { %>\r\n"
      "  <TR><TD><%= order.item(i).name() %></TD><TD ALIGN=right><%= i > 0 ? \"+\" : \"-\" %></TD></TR>\r\n<% } "
      "%>\r\n</TABLE>\r\n",
      "<A HREF=\"show.jsp?id=<%= order.getId() %>&amp;page=2\">next</A><BR>\r\n",
      "<jsp:include page=\"/parts/menu.jsp\" flush=\"true\"/>\r\n<H3>A part</H3>\r\n",
      "<FORM ACTION=\"<%= target %>\" METHOD=post>\r\n<INPUT TYPE=text NAME=q VALUE=\"<%= q %>\">\r\n<SELECT "
      "NAME=s><OPTION <% if (first) { %>SELECTED<% } %>>one<OPTION>two</SELECT>\r\n</FORM>\r\n",
      "<% if (user.isKnown()) {\r\n     out.println(\"<B>welcome</B>\");\r\n   } %>\r\n",
      "<!--#include file=\"foot.html\"-->\r\n<UL>\r\n  <LI><jsp:getProperty name=\"order\" property=\"total\"/>\r\n  "
      "<LI>second\r\n</UL>\r\n",
      "<SCRIPT>\r\nvar id = '<%= order.getId() %>';\r\nif (id < 3) alert(id);\r\n</SCRIPT>\r\n",
  };
  return assemble(
      "<%@ page language=\"java\" import=\"java.util.*\" %>\r\n<jsp:useBean id=\"order\" class=\"shop.Order\" "
      "scope=\"request\"/>\r\n<%! private int hits = 0; %>\r\n<HTML>\r\n<HEAD><TITLE><%= title %></TITLE></HEAD>\r\n"
      "<BODY>\r\n",
      kPieces, "</BODY>\r\n</HTML>\r\n", bytes);
}

std::string xhtmlPage(std::size_t bytes) {
  static constexpr Pieces kPieces = {
      "<p>Running text with <b>bold</b>, <i>italic &amp; <tt>fixed</tt></i> words,\nand a <a "
      "href=\"page.html#top\">link</a>, a line<br />break and an entity: &#169;&#160;1999.</p>\n",
      "<h2><a name=\"s\">A heading of some words</a></h2>\n",
      "<ul>\n  <li>first item</li>\n  <li>second <em>item</em></li>\n  <li>third</li>\n</ul>\n",
      "<table border=\"1\" width=\"100%\" cellpadding=\"2\">\n  <tr><th align=\"left\">Name</th><th>Value</th></tr>\n"
      "  <tr><td>a</td><td nowrap=\"nowrap\">1.25</td></tr>\n  <tr><td>b</td><td "
      "bgcolor=\"#ffffcc\">17</td></tr>\n</table>\n",
      "<p align=\"center\"><img src=\"images/photo.gif\" width=\"320\" height=\"200\" alt=\"A photo\" /></p>\n",
      "<div class=\"note\"><font size=\"2\" color=\"#333333\">A note in smaller letters that goes on for a while so "
      "that the\ntext has its share of the page, as it has in those that people write.</font></div>\n",
      "<pre>\nfor (i = 0; i &lt; n; ++i)\n  sum += a[i];\n</pre>\n<!-- navigation ends here -->\n",
      "<form action=\"go.cgi\" method=\"post\"><p><input type=\"text\" name=\"q\" size=\"20\" /><select "
      "name=\"s\"><option>one</option><option selected=\"selected\">two</option></select></p></form>\n",
  };
  return assemble(
      "<!DOCTYPE html PUBLIC \"-//W3C//DTD XHTML 1.0 Transitional//EN\" "
      "\"http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd\">\n<html xmlns=\"http://www.w3.org/1999/xhtml\">\n"
      "<head>\n<title>A page</title>\n</head>\n<body bgcolor=\"white\">\n",
      kPieces, "</body>\n</html>\n", bytes);
}

std::string brokenPage(std::size_t bytes) {
  static constexpr Pieces kPieces = {
      "<P>Running text with <B>bold, <I>italic</B> &amp fixed</I> words and a <A HREF=page.html>link</P>\r\nthat goes "
      "on</A> & on for a while.\r\n",
      "<B><H2>A heading</B> of words</H3>\r\n",
      "<LI>an item of no list\r\n<UL>text<LI>second <EM>item</LI></UL></EM>\r\n",
      "<TABLE BORDER=1>\r\n  stray<TD>a<TD>1.25</TR>\r\n  <P>between</P><TR><TD>b<TABLE><TR>x</TABLE>\r\n</TABLE>\r\n",
      "<FONT SIZE=2><P>one<P>two</FONT>\r\n<DIV ALIGN=left ALIGN=right>twice</SPAN></DIV>\r\n",
      "<A HREF=a>outer <A HREF=b>inner</A></A><OPTION>lost<BR></BR>\r\n",
      "<P><UL><LI>list in a paragraph</UL></P><BLINK><NOSUCH>unknown</BLINK>\r\n",
      "<FORM ACTION=x><SELECT><B>one</B><OPTION>two</FORM></SELECT><TD>cell</TD>\r\n",
  };
  return assemble("<HTML><TITLE>A page</TITLE>\r\n<BODY>\r\n", kPieces, "</HTML>\r\n", bytes);
}

// Groups by size; `group` instead if it is given.
std::vector<Page> ofEachSize(std::string (*make)(std::size_t), const char* kind, const char* group) {
  std::vector<Page> pages;
  for (const Size& size : kSizes)
    pages.push_back({std::string(kind) + " " + size.name, group ? group : size.name, make(size.bytes)});
  return pages;
}

}  // namespace

std::vector<Page> ordinaryPages() {
  std::vector<Page> pages = ofEachSize(ordinaryPage, "html", nullptr);
  for (Page& page : ofEachSize(jspPage, "jsp", "JSP")) pages.push_back(std::move(page));
  return pages;
}

std::vector<Page> wellFormedPages() { return ofEachSize(xhtmlPage, "xhtml", "XHTML"); }
std::vector<Page> brokenPages() { return ofEachSize(brokenPage, "broken", nullptr); }

std::vector<Page> folderPages(const std::string& folder, std::size_t smallest) {
  std::vector<Page> pages;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file() || entry.path().extension() == ".md") continue;
    std::ifstream file(entry.path(), std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(file)), {});
    if (text.size() < smallest || text.find('\0') != std::string::npos) continue;
    pages.push_back({entry.path().string(), "folder", std::move(text)});
  }
  std::sort(pages.begin(), pages.end(), [](const Page& a, const Page& b) { return a.name < b.name; });
  return pages;
}

}  // namespace zeldom40::bench
