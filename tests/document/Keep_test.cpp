// Closing an edit under Rewriting::KEEP: what is new is laid out, and nothing else changes.
#include <functional>
#include <string>

#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

class KeepTest : public PageTest {
 protected:
  KeepTest() { dom_->setRewriting(DOM::Rewriting::KEEP); }

  Element* make(const char* name, const char* text = nullptr) {
    Element* e = doc_->createElement(name);
    if (text) e->insertLast(doc_->createTextNode(text));
    return e;
  }
};

TEST_F(KeepTest, ClosingAnEdit) {
  const struct {
    const char* page;
    std::function<void()> edit;
    const char* source;
  } cases[] = {
      {"<p>a\n<i class=icon></i> <span>b</span></p>", [this] { element("P")->setAttribute("id", "x", true); },
       "<p id=\"x\">a\n<i class=icon></i> <span>b</span></p>"},
      {"<p><b><i></i></b>x</p>", [this] { element("I")->setAttribute("id", "x", true); },
       "<p><b><i id=\"x\"></i></b>x</p>"},
      {"<p><span class=a>b</span></p>", [this] { element("SPAN")->deleteAttribute("CLASS"); }, "<p><span>b</span></p>"},
      // What the edit has emptied goes.
      {"<p>a <b>x</b></p>", [this] { text(1)->Delete(0, 1, false); }, "<p>a </p>"},
      // A text of any length and form keeps its lines.
      {"<p>a text that is longer than the forty columns of the style\n  \"x\" &amp; y</p>",
       [this] { text()->insert(0, "!", false, Text::SPACE_NORMAL); },
       "<p>!a text that is longer than the forty columns of the style\n  \"x\" &amp; y</p>"},
      {"<div><p>a</p>text<p>b</p></div>", [this] { text(1)->insert(0, "!", false, Text::SPACE_NORMAL); },
       "<div><p>a</p>!text<p>b</p></div>"},
      // New elements get lines of their own, with the line ends of the page.
      {"<div>a\n <p>b</p>c</div>", [this] { element("DIV")->insertBefore(make("P", "new"), element("P")); },
       "<div>a\n <P>new</P>\n<p>b</p>c</div>"},
      {"<div>a\r\n<p>b</p> c</div>", [this] { element("DIV")->insertLast(make("P", "new")); },
       "<div>a\r\n<p>b</p> c\r\n<P>new</P>\r\n</div>"},
      {"<ul><li>a</li>\n<li class=x>b</li></ul>", [this] { element("UL")->insertLast(make("LI", "new")); },
       "<ul><li>a</li>\n<li class=x>b</li>\n  <LI>new\n</ul>"},
      {"<p>a</p>", [this] { element("P")->insertLast(make("B", "new")); }, "<p>a<B>new</B></p>"},
      // New text is wrapped.
      {"<p>a</p>",
       [this] { element("P")->insertLast(doc_->createTextNode(" words that go on until the line is full, and on")); },
       "<p>a words that go on until the line is full, and on</p>"},
      {"<p>a<b>b</b></p>",
       [this] { element("P")->insertLast(doc_->createTextNode(" words that go on until the line is full, and on")); },
       "<p>a<b>b</b> words that go on until the line is full,\r\nand on</p>"},
      // Parts of a text are no new text.
      {"<p>a text that is longer than the forty columns of the style and more of it</p>",
       [this] { text()->splice(make("B"), 2, 4, false); },
       "<p>a <B>text</B> that is longer than the forty columns of the style and more of it</p>"},
      // Bodies of a table stay apart, and white space between them stands.
      {"<table>\n<tbody id=a><tr><td>a</tbody>\n<tbody><tr><td>b</tbody>\n</table>",
       [this] { element("TBODY", 1)->setAttribute("id", "b", true); },
       "<table>\n<tbody id=a><tr><td>a</tbody>\n<tbody id=\"b\"><tr><td>b</tbody>\n</table>"},
      {"<table>\n<tr><td>a\n</table>", [this] { element("TD")->setAttribute("id", "b", true); },
       "<table>\n<tr><td id=\"b\">a\n</table>"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.page);
    load(c.page);
    doc_->clearRecord();
    doc_->adjustNodes(nullptr, false);
    c.edit();
    doc_->adjustNodes(nullptr, false);
    EXPECT_EQ(source(), c.source);
    // Nothing is left to lay out.
    doc_->adjustNodes(nullptr, /*full=*/true);
    EXPECT_EQ(source(), c.source);
    doc_->undo(1);
    EXPECT_EQ(source(), c.page);
  }
}

TEST_F(KeepTest, RepairsWriteWhatTheyRepair) {
  const struct {
    const char* page;
    const char* name;
    const char* source;
  } cases[] = {
      {"<JSP:useBean  ID=a class='b'/>", "JSP:USEBEAN", "<jsp:useBean  id=a class='b'/>"},
      {"<jsp:useBean  id=a></JSP:useBean>", "JSP:USEBEAN", "<jsp:useBean  id=a></jsp:useBean>"},
      {"<p>a<b class=x>b", "B", "<p>a<b class=x>b</B>"},
      {"<p class=x nowrap \"y\">a", "P", "<P class=\"x\">a"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.page);
    load(c.page);
    ASSERT_TRUE(element(c.name));
    EXPECT_EQ(doc_->correctError(element(c.name)), 1);
    EXPECT_EQ(source().substr(0, std::string(c.source).size()), c.source);
    EXPECT_EQ(element(c.name)->getError() & ERR_DOC_SEVERE_PARSE_ERROR, 0u);
  }
}

TEST_F(KeepTest, RepeatsOfAKeptTagAreStillThere) {
  load("<p id=a class=x id=b>x");
  element("P")->setAttribute("class", "y", true);
  EXPECT_EQ(SourceMap(doc_).getRepeatedAttributes(element("P")).size(), 1u);
  EXPECT_EQ(source(), "<p id=a class=y id=b>x");
}

}  // namespace
}  // namespace zeldom40
