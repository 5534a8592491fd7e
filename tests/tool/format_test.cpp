// Runs format: which white space becomes what, and which stays. Each result is laid out again and must stay.
#include <string>

#include "tests/tool/ToolTest.h"

namespace {

struct Case {
  const char* name;
  std::string before;
  std::string after;
};

class Format : public ToolTest {
 protected:
  std::string format(const std::string& page, const std::string& options = "") {
    const Result result = run("format " + options + " -", page);
    EXPECT_EQ(result.code, 0) << page << result.err;
    EXPECT_EQ(run("format " + options + " -", result.out).out, result.out) << "twice: " << page;
    return result.out;
  }
  template <std::size_t N>
  void expect(const Case (&cases)[N], const std::string& options = "") {
    for (const Case& each : cases) EXPECT_EQ(format(each.before, options), each.after) << each.name;
  }
  // Each of these pages stays as it is.
  template <std::size_t N>
  void expectKept(const std::string (&pages)[N], const std::string& options = "") {
    for (const std::string& page : pages) EXPECT_EQ(format(page, options), page);
  }
};

std::string body(const std::string& content) { return "<html>\n<body>\n" + content + "\n</body>\n</html>\n"; }

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST_F(Format, IndentsWhatElementsHold) {
  const Case cases[] = {
      {"blocks", "<html>\n  <body>\n<div>\n<p>x</p>\n  <hr>\n </div>\n   </body>\n</html>\n",
       body("  <div>\n    <p>x</p>\n    <hr>\n  </div>")},
      {"several on a line count once", body("<table><tr><td>\nx\n</td></tr></table>"),
       body("  <table><tr><td>\n    x\n  </td></tr></table>")},
      {"end tags that may be missing", body("<ul>\n<li>a\nb\n<li>c\n</ul>"),
       body("  <ul>\n    <li>a\n      b\n    <li>c\n  </ul>")},
      {"inline elements in the last item", body("<ul>\n<li><b>a\n<li>c\n</ul>"),
       body("  <ul>\n    <li><b>a\n    <li>c\n  </ul>")},
      {"elements that no DTD here declares",
       body("<section>\n<my-part>\n<nav>\n<p>x</p>\n</nav>\n</my-part>\n</section>"),
       body("  <section>\n    <my-part>\n      <nav>\n        <p>x</p>\n      </nav>\n    </my-part>\n  </section>")},
      {"an inline element with lines of its own", body("<p>\n<a href=u>\n<img src=i>\n</a>\n</p>"),
       body("  <p>\n    <a href=u>\n      <img src=i>\n    </a>\n  </p>")},
      {"half a page: nobody knows how deep it stands", "<div>\n<div id=page>\n<p>\n    x</p>\n",
       "<div>\n<div id=page>\n<p>\n  x</p>\n"},
      {"a stray end tag ends nothing", body("<div>\n</i></td>\n<p>x</p>\n</div>"),
       body("  <div>\n    </i></td>\n    <p>x</p>\n  </div>")},
      {"end tags do not reach out of a cell or an action",
       body("<div>\n<table>\n<tr><td></div></table>\n<c:if test='a'>\n</div>\n</c:if>\n</div>"),
       body("  <div>\n    <table>\n      <tr><td></div></table>\n    <c:if test='a'>\n      </div>\n    </c:if>\n  "
            "</div>")},
      {"a page with severe errors", body("<p>one <b>two <i>three</b></i>\n   <table><td>\nx</table>"),
       body("  <p>one <b>two <i>three</b></i>\n  <table><td>\n    x</table>")},
      {"attributes on several lines", body("<div\n class=a\n   id=b>\n<p>x</p>\n</div>"),
       body("  <div\n class=a\n   id=b>\n    <p>x</p>\n  </div>")},
  };
  expect(cases);
  EXPECT_EQ(format("<div>\n<p>x</p>\n</div>\n", "--indent 5"), "<div>\n     <p>x</p>\n</div>\n");
}

TEST_F(Format, KeepsLineEndsAndCleansLines) {
  const Case cases[] = {
      {"blanks at line ends", body("  <p>a \t\n    b  \n    c</p>   "), body("  <p>a\n    b\n    c</p>")},
      {"one empty line stays", body("  <hr>\n  \n \n\t\n  <hr>"), body("  <hr>\n\n  <hr>")},
      {"first and last lines", " \n\n<!DOCTYPE html>\n<p>x</p>\n\n \n", "<!DOCTYPE html>\n<p>x</p>\n"},
      {"no line end at the end", "<p>x</p> ", "<p>x</p>"},
      {"text first in a part of a page", "\n\n x\n<p>y</p>\n", "\n\n x\n<p>y</p>\n"},
      {"a byte order mark", "\xEF\xBB\xBF\n\n<!DOCTYPE html>\n  <p>x</p>\n", "\xEF\xBB\xBF<!DOCTYPE html>\n<p>x</p>\n"},
      {"CR LF", "<ul>\r\n<li>a\r\n \r\n \r\n<li>b</ul>\r\n", "<ul>\r\n  <li>a\r\n\r\n  <li>b</ul>\r\n"},
      {"CR", "<ul>\r<li>a\r<li>b</ul>\r", "<ul>\r  <li>a\r  <li>b</ul>\r"},
      {"a file of one line", "<body><table><tr><td>" + std::string(90, 'x') + "</td></tr></table>",
       "<body>\n<table>\n  <tr>\n    <td>" + std::string(90, 'x') + "</td>\n  </tr>\n</table>"},
      {"each line its own", "<ul>\r\n<li>a\n<li>b\r<li>c</ul>\r\n", "<ul>\r\n  <li>a\n  <li>b\r  <li>c</ul>\r\n"},
      {"other bytes of the file", "<ul>\n<li>\xFF\x80\x0C\x0B &bogus; &#x27;\n</ul>\n",
       "<ul>\n  <li>\xFF\x80\x0C\x0B &bogus; &#x27;\n</ul>\n"},
  };
  expect(cases);
}

// A style sheet may make a block of anything, and a line of any block.
TEST_F(Format, WhiteSpaceNeitherComesNorGoes) {
  const std::string pages[] = {
      body("  <p><b>a</b> <i>b</i><u>c</u>d <input><input> <img src=i> e</p>"),
      body("  <ul><li>a</li><li>b</li></ul> <p>x</p>"),
      body("  <p> a  b </p>"),
      "<style>li { display: inline }</style>\n<ul> <li>a</li><li>b</li> </ul>\n",
      body("  <p>a<!-- c -->b <!-- c -->c<% x %>d <% y %>e</p>"),
      body("  <p>a<br>b <br> c</p>"),
      "a\n   b <b>c</b>\n  d\n",
      "<%= a %>\n   <%= b %>\n <b>c</b>\n     <b>d</b>\n",
  };
  expectKept(pages);
}

TEST_F(Format, LeavesAloneWhereWhiteSpaceCounts) {
  const std::string contents[] = {
      "<pre>\n    a  <b>\n  b</b>\n</pre>",
      "<pre>\na <pre> b\n    </pre>\n c\n</pre>",
      "<textarea>\na\n b</textarea>",
      "<listing>\n a\n</listing>",
      "<xmp>\n<p>\n   </xmp>",
      "<script>\na\n   b\n</script>",
      "<style>\n.a\n   .b {}</style>",
      "<noscript>\n<p>\n</noscript>",
      "<iframe src=u>\n   <p>\n</iframe>",
      "<svg>\n<text>\n   a\n</text>\n</svg>",
      "<math>\n   <mi>x</mi>\n</math>",
      "<div style=\"color: red; white-space : pre-wrap\">\n<p>\na</p>\n</div>",
      "<div contenteditable>\na\n   b</div>",
      "<p xml:space='preserve'>\na\n   b</p>",
      "<div class=\"big code\">\na\n   b\n</div>",
      "<code>\na\n   b</code>",
      "<!--\na\n   b -->",
      "<%\na();\n     b();\n%>",
      "<%-- \na\n --%>",
      "<!--#if expr='a'\n   b -->",
      "<% if (a)\n  { %>",
  };
  for (const std::string& content : contents) {
    EXPECT_EQ(format(body("  <hr>\n" + content + "\n<hr>")), body("  <hr>\n" + content + "\n  <hr>"));
  }
  const std::string inText[] = {"<%= a(\n  b) %>", "${a\n?   b : c}", "#{a[\"}\n  \"]}"};
  for (const std::string& code : inText) {
    EXPECT_EQ(format(body("<p>x " + code + "\ny</p>")), body("  <p>x " + code + "\n    y</p>"));
  }
}

TEST_F(Format, StyleSheetsSayWhereWhiteSpaceCounts) {
  const Case cases[] = {
      {"a class", "div .a b.Lines:hover { color: red; white-space: pre }", "b class='x lines'"},
      {"an id", "#all, #lines { white-space-collapse:preserve }", "b id=lines"},
      {"a name, in a rule for a medium", "/* } */ @media print { p > b { white-space: break-spaces } }", "b"},
      {"anything", "[x=\"{\"] { white-space: pre-line !important }", "b"},
      {"a value that the page does not tell", "b { white-space: var(--a) }", "b"},
  };
  for (const Case& each : cases) {
    const std::string page =
        "<style>" + each.before + "</style>\n<body>\n<p>a <" + each.after + ">b\n   c</b></p>\n</body>\n";
    EXPECT_NE(format(page).find("b\n   c"), std::string::npos) << each.name;
  }
  const std::string other = "<style>.a { white-space: pre } b { white-space: nowrap } i { color: pre }</style>\n";
  EXPECT_EQ(format(other + body("<p><b class=b>b\n  c</b></p>")), other + body("  <p><b class=b>b\n    c</b></p>"));
}

TEST_F(Format, BodiesOfActionsChangeWhereALineBreakStood) {
  const Case cases[] = {
      {"flow", body("<c:choose> <c:when test='a'>\n<p>x</p> <p>y</p>\n</c:when></c:choose>"),
       body("  <c:choose> <c:when test='a'>\n    <p>x</p> <p>y</p>\n  </c:when></c:choose>")},
      {"text in it, in a known place", body("<p>\n<c:if test='a'>\nx\n</c:if></p>"),
       body("  <p>\n    <c:if test='a'>\n      x\n    </c:if></p>")},
      {"text in it, in an unknown place", "<c:if test='a'>\nx\n    <b>y</b>\n</c:if>\n",
       "<c:if test='a'>\nx\n    <b>y</b>\n</c:if>\n"},
      {"unknown", body("<a:b>\n x\n<p>y</p>\n</a:b>"), body("  <a:b>\n x\n    <p>y</p>\n  </a:b>")},
      {"JSP attributes", body("<a:b>\n<jsp:attribute name='c'>\n<p>x</p>\n</jsp:attribute>\n</a:b>"),
       body("  <a:b>\n    <jsp:attribute name='c'>\n      <p>x</p>\n    </jsp:attribute>\n  </a:b>")},
  };
  expect(cases);
  const std::string values[] = {"<c:set var='a'>\n<p>\nx</p>\n</c:set>",
                                "<core:out value='a'>\n x</core:out>",
                                "<jsp:text>\n a\n  </jsp:text>",
                                "<![CDATA[\n <br>\n    <br>\n]]>",
                                "<form:textarea path='a'>\n a</form:textarea>",
                                "<sql:query var='a'>\n select\n   b</sql:query>"};
  for (const std::string& value : values) EXPECT_EQ(format(body(value)), body(value)) << value;
  const std::string inTag = body("  <table><tr <c:if test=\"${a > \"b\"}\">class='x\n  y'</c:if>>\n    <td>a</table>");
  EXPECT_EQ(format(inTag), inTag);
  EXPECT_EQ(format(body("<option <%= sel %>\n   value='2'>x")), body("  <option <%= sel %>\n   value='2'>x"));
}

TEST_F(Format, ServerCodeIndentsNobody) {
  const Case cases[] = {
      {"branches", body("<% if (a) { %>\n<p>x</p>\n    <% } else { %>\n<hr>\n<% } %>"),
       body("  <% if (a) { %>\n  <p>x</p>\n  <% } else { %>\n  <hr>\n  <% } %>")},
      {"a tag in each branch",
       body("<% if (a) { %>\n<div class=a>\n<% } else { %>\n<div>\n<% } %>\n<p>x</p>\n</div>\n<hr>"),
       body("  <% if (a) { %>\n  <div class=a>\n  <% } else { %>\n  <div>\n    <% } %>\n    <p>x</p>\n  </div>\n  "
            "<hr>")},
      {"directives", "<%@ page session='true' %>\n   <%@ taglib prefix='c' uri='u' %>\n<p>x</p>\n",
       "<%@ page session='true' %>\n<%@ taglib prefix='c' uri='u' %>\n<p>x</p>\n"},
      {"line ends that a processor takes away",
       body("<p>a <?php b() ?>\n   c <% d -%>\n   e {% f %}\n   g {{ h }}\n   i</p>"),
       body("  <p>a <?php b() ?>\n   c <% d -%>\n   e {% f %}\n   g {{ h }}\n   i</p>")},
  };
  expect(cases);
  const std::string other[] = {"<%@ page contentType='text/plain' %>\n<p>\nx</p>\n"};
  expectKept(other);
}

// A browser drops a line break between two wide characters, and shows a blank.
TEST_F(Format, LinesBreakBetweenAsciiWordsOnly) {
  const std::string kanji = "\xE6\xBC\xA2\xE5\xAD\x97";
  const std::string wide[] = {
      body("  <p>" + repeated(kanji + " ", 30) + "x</p>"),
      body("  <p>" + repeated(kanji + "\n    ", 3) + repeated(kanji, 30) + "</p>"),
      body("  <p>" + repeated("<b>" + kanji + "</b> ", 30) + "x</p>"),
      body("  <p>" + repeated("&#x6F22; ", 30) + "x</p>"),
  };
  expectKept(wide, "--columns 40");
  const Case cases[] = {
      {"prose", body("<p>one two three four <b>five six</b> seven eight nine\nten\neleven</p>"),
       body("  <p>one two three four\n    <b>five six</b> seven\n    eight nine ten\n    eleven</p>")},
      {"short lines stay as they are", body("  <p>one\n    two\n    three</p>"),
       body("  <p>one\n    two\n    three</p>")},
      {"an empty line parts", body("<p>one two three four five\n\nsix\nseven</p>"),
       body("  <p>one two three four\n    five\n\n    six\n    seven</p>")},
      {"lines with orders for a template",
       body("<p>\n#if a b c d e f g h i j k\n## one two three four five six\nx\n</p>"),
       body("  <p>\n    #if a b c d e f g h i j k\n    ## one two three four five six\n    x\n  </p>")},
      {"lines with server code", body("<p>\none two <%= a %> three four five six\nseven\n</p>"),
       body("  <p>\n    one two <%= a %> three four five six\n    seven\n  </p>")},
      {"nothing in actions", body("<a:b>\n<p>one two three four five six</p>\n</a:b>"),
       body("  <a:b>\n    <p>one two three four five six</p>\n  </a:b>")},
      {"a long word", body("<p>one/two/three/four/five/six/seven x</p>"),
       body("  <p>one/two/three/four/five/six/seven\n    x</p>")},
      {"blocks apart", body("<script></script>\n<div> <p>one two</p> <p>three four</p> </div>"),
       body("  <script></script>\n  <div>\n    <p>one two</p>\n    <p>three four</p>\n  </div>")},
      {"blocks that touch, where tags alone make the layout", body("<table><tr><td>one</td><td>two</td></tr></table>"),
       body("  <table>\n    <tr>\n      <td>one</td>\n      <td>two</td>\n    </tr>\n  </table>")},
      {"and where they do not", body("<table class=a onclick=b><tr><td>one</td><td>two</td></tr></table>"),
       body("  <table class=a onclick=b><tr><td>one</td><td>two</td></tr></table>")},
  };
  expect(cases, "--columns 26");
}

TEST_F(Format, NamesInTheCaseThatIsAskedFor) {
  const std::string page = "<HTML><Body>\n<P Class=a>x<BR><my-Part><C:If test='a'></C:If></my-Part>\n</body></html>\n";
  EXPECT_EQ(format(page, "--tags lower"),
            "<html><body>\n  <p Class=a>x<br><my-Part><C:If test='a'></C:If></my-Part>\n</body></html>\n");
  EXPECT_EQ(format(page, "--tags upper"),
            "<HTML><BODY>\n  <P Class=a>x<BR><my-Part><C:If test='a'></C:If></my-Part>\n</BODY></HTML>\n");
  const std::string xhtml[] = {"<html xmlns='http://www.w3.org/1999/xhtml'><body><p>x</p></body></html>\n",
                               "<svg><A></A></svg>\n<script>'<P>'</script>\n"};
  EXPECT_EQ(format(xhtml[0], "--tags upper"), xhtml[0]);
  EXPECT_EQ(format(xhtml[1], "--tags lower"), xhtml[1]);
}

// Where two readers would not see the same tags, nobody knows what a blank is.
TEST_F(Format, LeavesAloneWhatHasNoClearEnd) {
  const std::string ends[] = {"<!-- a",
                              "<!--> <pre> -->",
                              "<% a",
                              "<%-- a %>",
                              "<? a >",
                              "<a href=\"x>",
                              "<p a='",
                              "<script>",
                              "<textarea>",
                              "<title>",
                              "<pre>",
                              "<plaintext>",
                              "<div style='white-space: pre'>",
                              "<b <% a>",
                              "<script><!-- <script> </script> -->",
                              "<svg>",
                              "<jsp:text>",
                              "<!DOCTYPE x",
                              "a</",
                              "<b<script>>",
                              "<b <!-- >",
                              "<title><script></title>",
                              "<noscript><!-- </noscript>"};
  for (const std::string& end : ends) {
    EXPECT_EQ(format("<ul>\n<li>a\n</ul>\n" + end + "\nx\n   <p>y</p>\n"),
              "<ul>\n  <li>a\n</ul>\n" + end + "\nx\n   <p>y</p>\n");
  }
}

TEST_F(Format, SaysWhatItLeavesAlone) {
  write("a", body("<pre>\na\n</pre>\n<script>\nx</script>\n<% a"));
  const Result result = run("format --dry-run --verbose a");
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err,
            "zeldom: a:3-4: left alone: content whose white space counts\n"
            "zeldom: a:6-7: left alone: content that is no markup, or is none to some readers\n"
            "zeldom: a:8-10: left alone: server code without a clear end\n");
  write("b", std::string("<ul>\n<li>a\0b\n</ul>\n", 18));
  EXPECT_EQ(run("format -i b").code, 1);
  EXPECT_EQ(readFile(path("b")), std::string("<ul>\n<li>a\0b\n</ul>\n", 18));
}

TEST_F(Format, KeepsTheCharset) {
  const std::string jis = "<ul>\n<li>\x1b$@$\"%=\x1b(J\n<li>\x1b$B$\"\x1b(B x\n</ul>\n";
  EXPECT_EQ(format(jis), "<ul>\n  <li>\x1b$@$\"%=\x1b(J\n  <li>\x1b$B$\"\x1b(B x\n</ul>\n");
  const std::string euc = "<META content='charset=euc-jp'>\n<ul>\n<li>\xA4\xA2\x8E\xB1\n</ul>\n";
  EXPECT_EQ(format(euc), "<META content='charset=euc-jp'>\n<ul>\n  <li>\xA4\xA2\x8E\xB1\n</ul>\n");
  // To a server that does not know the charset these bytes open code.
  const std::string misread = "<ul>\n<li>x\n</ul>\n<p>\x1b$B<%\x1b(B\n   </p>\n";
  EXPECT_EQ(format(misread), "<ul>\n  <li>x\n</ul>\n<p>\x1b$B<%\x1b(B\n   </p>\n");
  // Browsers look for its name in the first kilobyte.
  const std::string late = "<head>\n" + repeated("<link rel=a>\n", 70) + "<meta charset=utf-8>\n</head>\n";
  write("a", late);
  EXPECT_NE(run("format a").err.find("charset"), std::string::npos);
  EXPECT_EQ(run("format a").out, late);
}

// Stack, time and size stay in proportion.
TEST_F(Format, TakesAnyDepthAndLength) {
  const std::string pages[] = {
      "<html>\n<body>\n" + repeated("<div>\n", 10000) + repeated("</div>\n", 10000),
      "<html>\n<body>\n<p>" + repeated("word ", 20000) + "</p>\n",
      "<html>\n<body>\n" + repeated("<p>a</p>", 8000) + "\n",
      "<html>\n<body>\n" + repeated("<p>a <b></b> <i></i>", 5000) + "\n",
      "<html>\n<body>\n" + repeated("${ {{ {% ", 20000) + "\n",
      "<html>\n<body>\n<a href=\"" + repeated("<% ${", 20000) + "\n",
      "<html>\n<body>\n<style>" + repeated("white-space {", 20000) + "</style>\n",
  };
  for (const std::string& page : pages) {
    write("a", page);
    const Result result = run("format a", "", "ulimit -s 512 && ulimit -t 60");
    EXPECT_EQ(result.code, 0) << page.substr(0, 40) << result.err;
    EXPECT_LT(result.out.size(), page.size() + 20000 * 81);
  }
}

}  // namespace
