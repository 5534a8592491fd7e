// What an edit leaves of the source around it: references, server code, and under Rewriting::KEEP every byte.
#include <functional>
#include <string>

#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

class RewritingTest : public PageTest {
 protected:
  void keep() { dom_->setRewriting(DOM::Rewriting::KEEP); }
  // The source of the page after undo and redo of the last edit is what it was before and after it.
  void expectUndone(const std::string& before) {
    const std::string after = source();
    doc_->undo(1);
    EXPECT_EQ(source(), before);
    doc_->redo(1);
    EXPECT_EQ(source(), after);
  }
};

using TagEdit = std::function<void(Element*)>;

TagEdit set(const char* name, const char* value) {
  return [=](Element* e) { e->setAttribute(name, value, /*notify=*/true); };
}
TagEdit drop(const char* name) {
  return [=](Element* e) { e->deleteAttribute(name); };
}
const TagEdit kDirty = [](Element* e) { e->setBeginTagDirty(); };
const TagEdit kFill = [](Element* e) { e->insertLast(e->getDocument()->createTextNode("t")); };
const TagEdit kEmpty = [](Element* e) {
  while (e->hasChildNodes()) e->getDocument()->deleteNodes(e->getLastChild());
};

TEST_F(RewritingTest, ServerCodeInATag) {
  const struct {
    const char* page;
    const char* name;
    TagEdit edit;
    const char* standard;
    const char* kept;
  } cases[] = {
      {"<option <%= sel %> value=\"2\">x", "OPTION", set("class", "c"),
       "<OPTION class=\"c\" <%= sel %> value=\"2\">x</OPTION>", "<option class=\"c\" <%= sel %> value=\"2\">x"},
      {"<option id=a  <%= sel %>>x", "OPTION", set("id", "b"), "<OPTION id=\"b\"  <%= sel %>>x</OPTION>",
       "<option id=b  <%= sel %>>x"},
      {"<td<%= cls %>>x", "TD", set("id", "b"), "<TD id=\"b\" <%= cls %>>x</TD>", "<td id=\"b\" <%= cls %>>x"},
      {"<td<%= cls %>>x", "TD", kDirty, "<TD<%= cls %>>x</TD>", "<td<%= cls %>>x"},
      // As the value of an attribute.
      {"<a href=<%= u %>>x</a>", "A", set("title", "t"), "<A title=\"t\" href=<%= u %>>x</A>",
       "<a title=\"t\" href=<%= u %>>x</a>"},
      {"<a href=<%= u %>>x</a>", "A", set("href", "v"), "<A href=\"v\">x</A>", "<a href=\"v\">x</a>"},
      {"<a href=<%= u %>>x</a>", "A", drop("HREF"), "<A>x</A>", "<a>x</a>"},
      {"<a id=1 href=/a<%= u %> class=x>x</a>", "A", set("id", "2"), "<A id=\"2\" href=/a<%= u %> class=x>x</A>",
       "<a id=2 href=/a<%= u %> class=x>x</a>"},
      // In a quoted value it is a value like any other.
      {"<a href=\"<%= f(\"a\") %>\">x</a>", "A", set("id", "2"), "<A href='<%= f(\"a\") %>' id=\"2\">x</A>",
       "<a href=\"<%= f(\"a\") %>\" id=\"2\">x</a>"},
      {"<a href=\"<%= f(\"a\", 'b') %>\">x</a>", "A", set("id", "2"), "<A href=\"<%= f(\"a\", 'b') %>\" id=\"2\">x</A>",
       "<a href=\"<%= f(\"a\", 'b') %>\" id=\"2\">x</a>"},
      {"<a href='x'>x</a>", "A", set("href", "<%= f(\"a\", 'b') %>'&quot;"),
       "<A href=\"<%= f(\"a\", 'b') %>'&quot;\">x</A>", "<a href=\"<%= f(\"a\", 'b') %>'&quot;\">x</a>"},
      {"<a href='x'>x</a>", "A", set("href", "<%= f(\"a\", 'b') %>'\""),
       "<A href=\"<%= f(\"a\", 'b') %>'&quot;\">x</A>", "<a href=\"<%= f(\"a\", 'b') %>'&quot;\">x</a>"},
      {"<a href='x'>x</a>", "A", set("href", "<% \"' %>\""), "<A href='<% \"' %>\"'>x</A>",
       "<a href='<% \"' %>\"'>x</a>"},
      // A tag that could not be read up to its end.
      {"<input checked <% x %> name=\"q\">", "INPUT", set("type", "t"), "<INPUT type=\"t\" checked <% x %> name=\"q\">",
       "<input type=\"t\" checked <% x %> name=\"q\">"},
      {"<input id=a checked <% x %> name=\"q\">", "INPUT", kDirty, "<INPUT id=\"a\" checked <% x %> name=\"q\">",
       "<input id=a checked <% x %> name=\"q\">"},
      // In what the tag states again.
      {"<p id=a class=x id=\"<%= y %>\">x", "P", set("class", "z"), "<P id=\"a\" class=\"z\" id=\"<%= y %>\">x</P>",
       "<p id=a class=z id=\"<%= y %>\">x"},
      // So with all that ends a tag of itself.
      {"<p <%-- > --%> class=x>x", "P", set("id", "a"), "<P id=\"a\" <%-- > --%> class=x>x</P>",
       "<p id=\"a\" <%-- > --%> class=x>x"},
      {"<p <?php a ?> class=x>x", "P", set("id", "a"), "<P id=\"a\" <?php a ?> class=x>x</P>",
       "<p id=\"a\" <?php a ?> class=x>x"},
      {"<p>x</p <% e %>>", "P", set("id", "a"), "<P id=\"a\">x</p <% e %>>", "<p id=\"a\">x</p <% e %>>"},
      {"<ul><li>x</li <% e %>></ul>", "LI", set("id", "a"), "<ul><LI id=\"a\">x</li <% e %>></ul>",
       "<ul><li id=\"a\">x</li <% e %>></ul>"},
  };
  for (const auto& c : cases) {
    for (const bool keeps : {false, true}) {
      SCOPED_TRACE(std::string(c.page) + (keeps ? ", kept" : ""));
      dom_->setRewriting(keeps ? DOM::Rewriting::KEEP : DOM::Rewriting::STANDARD);
      load(c.page);
      doc_->clearRecord();
      ASSERT_TRUE(element(c.name));
      c.edit(element(c.name));
      EXPECT_EQ(source(), keeps ? c.kept : c.standard);
      // The same once more: what was written is as good a source as any.
      element(c.name)->setBeginTagDirty();
      EXPECT_EQ(source(), keeps ? c.kept : c.standard);
    }
  }
}

TEST_F(RewritingTest, KeptTags) {
  const struct {
    const char* page;
    const char* name;
    TagEdit edit;
    const char* source;
  } cases[] = {
      {"<p  Class = 'x'\r\n ID=a  >x</p >", "P", kDirty, "<p  Class = 'x'\r\n ID=a  >x</p >"},
      {"<p  Class = 'x'\r\n ID=a  >x</p >", "P", set("id", "b"), "<p  Class = 'x'\r\n ID=b  >x</p >"},
      {"<p  Class = 'x'\r\n ID=a  >x</p >", "P", set("id", "b c"), "<p  Class = 'x'\r\n ID=\"b c\"  >x</p >"},
      {"<p  Class = 'x'\r\n ID=a  >x</p >", "P", set("class", "it's"), "<p  Class = \"it's\"\r\n ID=a  >x</p >"},
      {"<p  Class = 'x'\r\n ID=a  >x</p >", "P", set("title", "t"), "<p  Class = 'x'\r\n ID=a title=\"t\"  >x</p >"},
      {"<p  Class = 'x'\r\n ID=a  >x</p >", "P", drop("CLASS"), "<p\r\n ID=a  >x</p >"},
      {"<p class=\"a\"id=\"b\"title=\"c\">x", "P", drop("ID"), "<p class=\"a\" title=\"c\">x"},
      {"<p class=\"a\"id=\"b\">x", "P", drop("CLASS"), "<p id=\"b\">x"},
      // Empty values and names alone.
      {"<img alt=\"\" src=a>", "IMG", set("src", "b"), "<img alt=\"\" src=b>"},
      {"<img alt=\"x\" src=a>", "IMG", set("alt", ""), "<img alt=\"\" src=a>"},
      {"<img alt=\"\" src=a>", "IMG", set("alt", "x"), "<img alt=\"x\" src=a>"},
      {"<input checked/>", "INPUT", set("id", "a"), "<input checked/ id=\"a\">"},
      {"<input checked />", "INPUT", set("id", "a"), "<input checked id=\"a\" />"},
      {"<input checked id=\"a\"/>", "INPUT", drop("ID"), "<input checked />"},
      {"<input checked=\"checked\">", "INPUT", set("disabled", ""), "<input checked=\"checked\" disabled>"},
      {"<br/>", "BR", set("id", "a"), "<br id=\"a\"/>"},
      {"<br />", "BR", set("id", "a"), "<br id=\"a\" />"},
      // What is stated again does not count, but must not come to count.
      {"<p id=a class=x id=b>x", "P", set("id", "c"), "<p id=c class=x id=b>x"},
      {"<p id=a class=x id=b>x", "P", drop("ID"), "<p class=x>x"},
      {"<%@page import=\"a\" import='b'%>", "JSP:DIRECTIVE.PAGE", set("import", "c"),
       "<%@page import=\"a\" import='c'%>"},
      {"<%@page import=\"a\"  language = 'b'%>", "JSP:DIRECTIVE.PAGE", drop("IMPORT"), "<%@page  language = 'b'%>"},
      {"<%@page language='b'%>", "JSP:DIRECTIVE.PAGE", set("import", "c"), "<%@page language='b' import=\"c\"%>"},
      {"<!--#include file=a-->", "SSI:INCLUDE", set("file", "b.inc"), "<!--#include file=\"b.inc\"-->"},
      // Items keep their end tags, and nothing gains one.
      {"<ul><li type=a>x</li></ul>", "LI", set("type", "b"), "<ul><li type=b>x</li></ul>"},
      {"<ul><li type=a>x</ul>", "LI", set("type", "b"), "<ul><li type=b>x</ul>"},
      {"<p class=a>x", "P", set("class", "b"), "<p class=b>x"},
      {"<p class=a>x</p >", "P", [](Element* e) { e->setEndTagDirty(); }, "<p class=a>x</P>"},
      // Tags of XML form.
      {"<jsp:useBean id='a'/>", "JSP:USEBEAN", set("id", "b"), "<jsp:useBean id='b'/>"},
      {"<jsp:useBean id='a' />", "JSP:USEBEAN", kFill, "<jsp:useBean id='a'>t</jsp:useBean>"},
      {"<jsp:useBean id='a'></jsp:useBean>", "JSP:USEBEAN", set("id", "b"), "<jsp:useBean id='b'></jsp:useBean>"},
      {"<jsp:useBean id='a'>x</jsp:useBean>", "JSP:USEBEAN", kEmpty, "<jsp:useBean id='a'></jsp:useBean>"},
      {"<jsp:useBean id='a'>x", "JSP:USEBEAN", kEmpty, "<jsp:useBean id='a' />"},
      // A tag that was not read to its end keeps what was not read.
      {"<p class=x \"junk >x", "P", set("id", "a"), "<p class=x \"junk id=\"a\" >x"},
      {"<p title=a\"b'c>x", "P", set("id", "a"), "<p title=a\"b'c id=\"a\">x"},
  };
  keep();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.page);
    load(c.page);
    doc_->clearRecord();
    doc_->adjustNodes(nullptr, false);
    Element* e = element(c.name);
    ASSERT_TRUE(e);
    c.edit(e);
    Node* clone = e->makeClone(true);
    clone->addRef(true);
    EXPECT_EQ(source(), c.source);
    EXPECT_EQ(source(clone), source(e));
    clone->releaseRef(true);
  }
}

TEST_F(RewritingTest, ATagWithManyAttributes) {
  std::string page = "<p";
  for (int i = 0; i < 20000; ++i) page += " A" + std::to_string(i) + "='v'";
  page += ">x";
  keep();
  load(page);
  element("P")->setAttribute("A777", "w", true);
  page.replace(page.find(" A777='v'"), 9, " A777='w'");
  EXPECT_EQ(source(), page);
}

// --- texts -----------------------------------------------------------------------------------------------------------

using TextEdit = std::function<void(Text*)>;

TextEdit type(int at, const char* text) {
  return [=](Text* t) { t->insert(at, text, false, Text::SPACE_NORMAL); };
}
TextEdit erase(int at, int count) {
  return [=](Text* t) { t->Delete(at, count, false); };
}
TextEdit data(const char* text) {
  return [=](Text* t) { t->setData(text, true); };
}

TEST_F(RewritingTest, WhatAnEditOfATextLeaves) {
  const struct {
    const char* text;
    TextEdit edit;
    const char* standard;
    const char* kept;
  } cases[] = {
      // References that the library cannot read.
      {"it&#x27;s &bogus; &#128512; end", type(-1, "!"), "it&#x27;s &bogus; &#128512; end!",
       "it&#x27;s &bogus; &#128512; end!"},
      {"it&#x27;s &bogus; &#128512; end", type(0, "!"), "!it&#x27;s &bogus; &#128512; end",
       "!it&#x27;s &bogus; &#128512; end"},
      {"a &bogus; b", type(-1, "&bogus;"), "a &bogus; b&amp;bogus;", "a &bogus; b&amp;bogus;"},
      {"a &bogus; b", type(0, "&bogus;"), "&amp;bogus;a &bogus; b", "&amp;bogus;a &bogus; b"},
      {"a &bogus; b", type(6, "x"), "a &amp;boxgus; b", "a &amp;boxgus; b"},
      {"a &bogus; b", erase(4, 1), "a &amp;ogus; b", "a &amp;ogus; b"},
      {"a &bogus; b", data("a \x1b&bogus; c"), "a &bogus; c", "a &bogus; c"},
      {"a &bogus; b", data("&bogus;"), "&amp;bogus;", "&amp;bogus;"},
      {"a &#x27; &#x28;", [](Text* t) { type(0, "1")(t), type(10, "2")(t), type(-1, "3")(t); }, "1a &#x27;2 &#x28;3",
       "1a &#x27;2 &#x28;3"},
      {"a &amp;#x27; b", type(-1, "c"), "a &amp;#x27; bc", "a &amp;#x27; bc"},
      {"a & b", type(-1, "c"), "a &amp; bc", "a & bc"},
      // One without its end, when something joins it.
      {"a &#x27 b", type(8, "1"), "a &amp;#x271 b", "a &amp;#x271 b"},
      {"a &#x27 b", type(9, "1"), "a &#x27 1b", "a &#x27 1b"},
      {"a &am p;", erase(6, 1), "a &amp;amp;", "a &amp;amp;"},
      {"a &eacute b", erase(4, 1), "a &eacute;b", "a &eacute;b"},
      {"a &eacute b", type(5, "c"), "a &eacute; cb", "a &eacute cb"},
      // And a "<" that would open a tag.
      {"x < y", erase(4, 1), "x &lt;y", "x &lt;y"},
      {"x < y", type(-1, "z"), "x &lt; yz", "x < yz"},
      // All else of the source.
      {"\"a\"\r\n  &eacute;b  \xe9 &#233;", type(-1, "c"), "&quot;a&quot; &eacute;b \xe9 &eacute;c",
       "\"a\"\r\n  &eacute;b  \xe9 &#233;c"},
      {"\"a\"\r\n  b", type(5, "\""), "&quot;a&quot;&quot; b", "\"a\"&quot;\r\n  b"},
      {"\r\n  a\r\n", type(0, "b"), "ba ", "\r\n  ba\r\n"},
      {"a\r\n b\r\n c", erase(2, 2), "a c", "a\r\n c"},
      {"a\r\n b", erase(1, 2), "a", "a"},
      {"a\r\n b", data("a \x1b& b"), "a &amp; b", "a\r\n &amp; b"},
      // The source form itself.
      {"a", [](Text* t) { t->setRawData("x &#x27;  \"y\" &amp; &lt; < z"); },
       "x &#x27; &quot;y&quot; &amp; &lt; &lt; z", "x &#x27;  \"y\" &amp; &lt; &lt; z"},
      // One form that was set without the other.
      {"a &bogus;", [](Text* t) { t->setData("b", false), type(-1, "c")(t); }, "bc", "bc"},
      {"a &bogus;", [](Text* t) { type(0, "x")(t), t->setData("y\x1b&bogus;", false); }, "y&bogus;", "y&bogus;"},
      {"a  &bogus;", [](Text* t) { type(0, "x  y")(t), t->compact(); }, "x ya &bogus;", "x ya  &bogus;"},
  };
  for (const auto& c : cases) {
    for (const bool keeps : {false, true}) {
      SCOPED_TRACE(std::string(c.text) + " to " + c.standard + (keeps ? ", kept" : ""));
      dom_->setRewriting(keeps ? DOM::Rewriting::KEEP : DOM::Rewriting::STANDARD);
      load("<p>" + std::string(c.text));
      doc_->clearRecord();
      doc_->enableRecord(true);
      const std::string before = source();
      c.edit(text());
      Node* clone = text()->makeClone(true);
      const std::string after = std::string("<p>") + (keeps ? c.kept : c.standard);
      EXPECT_EQ("<p>" + static_cast<Text*>(clone)->getRawData(), after);
      delete clone;
      EXPECT_EQ(source(), after);
      // A reader finds what the host left.
      const std::string plain = text()->getData();
      load(after);
      EXPECT_EQ(text()->getData(), plain);
    }
  }
}

TEST_F(RewritingTest, PreformattedAndLiteralText) {
  const struct {
    const char* page;
    const char* standard;
    const char* kept;
  } cases[] = {
      {"<pre>a\t b &bogus;\r\n \"c\"</pre>", "<pre>!a\t b &bogus;\r\n &quot;c&quot;</pre>",
       "<pre>!a\t b &bogus;\r\n \"c\"</pre>"},
      {"<script>a & \"b\" &amp;</script>", "<script>!a & \"b\" &amp;</script>", "<script>!a & \"b\" &amp;</script>"},
      {"<jsp:scriptlet><![cdata[a < b]]></jsp:scriptlet>", "<jsp:scriptlet><![CDATA[!a < b]]></jsp:scriptlet>",
       "<jsp:scriptlet><![cdata[!a < b]]></jsp:scriptlet>"},
  };
  for (const auto& c : cases) {
    for (const bool keeps : {false, true}) {
      dom_->setRewriting(keeps ? DOM::Rewriting::KEEP : DOM::Rewriting::STANDARD);
      load(c.page);
      const std::string was = text()->getData();
      text()->setData("!" + was, true);
      EXPECT_EQ(source(), keeps ? c.kept : c.standard);
    }
  }
}

TEST_F(RewritingTest, SplitAndMerge) {
  const struct {
    const char* text;
    int offset, count;
    const char* standard;
    const char* kept;
    const char* merged;  // after the element has gone again, kept
  } cases[] = {
      {"a\r\n&#x27;b\" &bogus; c\r\n", 10, 3, "a &#x27;b<B>&quot; </B>&bogus; c ",
       "a\r\n&#x27;b<B>\" </B>&bogus; c\r\n", "a\r\n&#x27;b\" &bogus; c\r\n"},
      {"a &bogus; c", 6, 2, "a &amp;bo<B>gu</B>s; c", "a &amp;bo<B>gu</B>s; c", "a &amp;bogus; c"},
      {"a &eacute b", 4, 1, "a &eacute;<B> </B>b", "a &eacute<B> </B>b", "a &eacute b"},
  };
  for (const auto& c : cases) {
    for (const bool keeps : {false, true}) {
      SCOPED_TRACE(std::string(c.text) + (keeps ? ", kept" : ""));
      dom_->setRewriting(keeps ? DOM::Rewriting::KEEP : DOM::Rewriting::STANDARD);
      load("<p>" + std::string(c.text));
      const std::string before = source();
      const std::string plain = text()->getData();
      doc_->clearRecord();
      doc_->adjustNodes(nullptr, false);
      text()->splice(doc_->createElement("B"), c.offset, c.count, false);
      EXPECT_EQ(source(), std::string("<p>") + (keeps ? c.kept : c.standard));
      if (!keeps) continue;
      doc_->removeElement(element("B"), /*mergeTexts=*/true);
      EXPECT_EQ(source(), std::string("<p>") + c.merged);
      EXPECT_EQ(text()->getData(), plain);
      expectUndone(before);
    }
  }
}

TEST_F(RewritingTest, TextsThatMeetStayWhatTheyMean) {
  const struct {
    const char* page;
    const char* source;
  } cases[] = {{"<p>a&eacute<b></b>b", "<p>a&eacute;b"}, {"<p>a&#39<b></b>5", "<p>a&#39;5"},
               {"<p>a&am<b></b>p;", "<p>a&amp;amp;"},    {"<p>a&#x27<b></b>1", "<p>a&amp;#x271"},
               {"<p>a &lt<b></b> b", "<p>a &lt b"},      {"<p>a < <b></b>b", "<p>a < b"},
               {"<p>a&#39<b></b> 5", "<p>a&#39 5"},      {"<p>a&eacute;<b></b>b", "<p>a&eacute;b"}};
  for (const auto& c : cases) {
    for (const bool keeps : {false, true}) {
      SCOPED_TRACE(c.page);
      dom_->setRewriting(keeps ? DOM::Rewriting::KEEP : DOM::Rewriting::STANDARD);
      load(c.page);
      doc_->removeElement(element("B"), /*mergeTexts=*/true);
      EXPECT_EQ(source(), c.source);
      const std::string plain = text()->getData();
      load(c.source);
      EXPECT_EQ(text()->getData(), plain);
    }
  }
}

TEST_F(RewritingTest, EditsComeBack) {
  for (const bool keeps : {false, true}) {
    dom_->setRewriting(keeps ? DOM::Rewriting::KEEP : DOM::Rewriting::STANDARD);
    const std::string before = "<p Class=x <%= y %>>it&#x27;s\r\n &bogus;</p >";
    load(before);
    doc_->clearRecord();
    doc_->adjustNodes(nullptr, false);
    element("P")->setAttribute("id", "a", true);
    text(0)->insert(-1, "!", false, Text::SPACE_NORMAL);
    // Saved before it was written.
    doc_->undo(1);
    EXPECT_EQ(source(), before);
    doc_->redo(1);
    const std::string after = keeps ? "<p Class=x id=\"a\" <%= y %>>it&#x27;s\r\n &bogus;!</p >"
                                    : "<P class=\"x\" id=\"a\" <%= y %>&gt;it&#x27;s &bogus;!</P>";
    EXPECT_EQ(source(), after);
  }
}

}  // namespace
}  // namespace zeldom40
