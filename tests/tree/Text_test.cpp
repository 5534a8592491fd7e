// Texts in their two forms, edits in offsets of the plain form, and comments and instructions.
#include <clocale>
#include <string>

#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

// The plain form in tables: "^c" is the marked character c, "_" the no-break escape.
std::string plain(const std::string& shown) {
  std::string out;
  for (char c : shown) {
    if (c == '^') {
      out += '\x1b';
    } else if (c == '_') {
      out += "\x1b\xa0";
    } else {
      out += c;
    }
  }
  return out;
}

class TextTest : public PageTest {
 protected:
  // A text in a paragraph, or below another element.
  Text* put(const std::string& data, Text::TextType type = Text::TEXT_NORMAL, const char* parent = "P") {
    load("");
    Element* e = doc_->createElement(parent);
    doc_->getDocumentElement()->insertLast(e);
    Text* t = doc_->createTextNode(nullptr);
    t->setTextType(type);
    t->setData(data, /*notify=*/true);
    e->insertLast(t);
    t->getRawData();
    doc_->clearUpdateFlag();
    return t;
  }
  // Where the layout cursor stands: "TEXT 3".
  std::string cursor() {
    Node* node = nullptr;
    int offset = 0;
    doc_->getLayoutCursor(&node, &offset);
    return (node ? dumpNode(node, kDumpPlain) : "null") + ' ' + std::to_string(offset);
  }
};

TEST_F(TextTest, TheEditedFormDecides) {
  load("<P>a &amp; b&eacute;</P>");
  Text* t = text();
  EXPECT_EQ(t->getData(), "a \x1b& b\x1b\xe9");
  t->setData("x", /*notify=*/false);
  EXPECT_EQ(t->getData(), "x");
  EXPECT_EQ(t->getRawData(), "a &amp; b&eacute;");
  EXPECT_EQ(t->getUpdateFlag(), Node::UPDATE_NONE);
  t->setData("<\"&>", /*notify=*/true);
  EXPECT_EQ(t->getUpdateFlag(), Node::UPDATE_CONTENT_MODIFIED);
  EXPECT_EQ(t->getData(), "\x1b<\x1b\"\x1b&\x1b>");
  auto* clone = static_cast<Text*>(t->makeClone(true));
  EXPECT_EQ(t->getRawData(), "&lt;&quot;&amp;&gt;");
  EXPECT_EQ(clone->getRawData(), t->getRawData());
  delete clone;
  t->setData(std::string("a\0b", 3), true);
  EXPECT_EQ(t->getRawData(), std::string("a\0b", 3));
}

// What a host types is text, also behind a byte that looks like a mark of the plain form.
TEST_F(TextTest, StrayMarksHideNoMarkup) {
  load("<P>x");
  Text* t = text();
  t->setData("\x1c<script>", /*notify=*/true);
  EXPECT_EQ(t->getRawData(), "\x1c&lt;script&gt;");
  t->setData("", true);
  t->insert(0, "\x1c\x1c<", /*moveCursor=*/false, Text::SPACE_NORMAL);
  EXPECT_EQ(t->getRawData(), "&#28;\x1c&lt;");
  t->setData("a\x1c", true);
  t->replace(1, 1, "\x1c<i>", false);
  EXPECT_EQ(t->getRawData(), "a\x1c&lt;i&gt;");
  // The source of a page may bring the two together.
  load("<P>\x1c&lt;i>");
  text()->insert(0, "a", false, Text::SPACE_NORMAL);
  EXPECT_EQ(text()->getRawData().find('<'), std::string::npos) << text()->getRawData();
}

TEST_F(TextTest, SourceFormsOfTheTypes) {
  const struct {
    Text::TextType type;
    const char* parent;
    const char* data;
    const char* raw;
  } cases[] = {
      {Text::TEXT_LITERAL, "SCRIPT", "a<b", "a<b"},
      {Text::TEXT_LITERAL, "JSP:SCRIPTLET", "a<b", "<![CDATA[a<b]]>"},
      {Text::TEXT_LITERAL, "JSP:SCRIPTLET", "]]>]]>", "<![CDATA[]]]]><![CDATA[>]]]]><![CDATA[>]]>"},
      {Text::TEXT_NORMAL, "JSP:SCRIPTLET", "a<b", "a&lt;b"},
      {Text::TEXT_FORMATTING, "P", "\r\n", "\r\n"},
  };
  for (const auto& c : cases) {
    Text* t = put("", c.type, c.parent);
    t->setData(c.data, true);
    EXPECT_EQ(t->getRawData(), c.raw);
  }
}

TEST_F(TextTest, SettingTheSourceForm) {
  const struct {
    Text::TextType type;
    const char* parent;
    const char* given;
    const char* data;
    const char* raw;
  } cases[] = {
      {Text::TEXT_NORMAL, "P", "a \n b&lt;c", "a b^<c", "a b&lt;c"},
      {Text::TEXT_NORMAL, "P", "a & b", "a ^& b", "a &amp; b"},
      {Text::TEXT_NORMAL, "P", "&#8224;  &#32;", "\x1c\x1d\x20\x20 ^ ", "&#8224; &#32;"},
      {Text::TEXT_LITERAL, "P", "&lt;  b", "old", "&lt;  b"},
      {Text::TEXT_FORMATTING, "P", " ", "old", " "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.given);
    Text* t = put("old", c.type, c.parent);
    t->setRawData(c.given);
    EXPECT_EQ(t->getData(), plain(c.data));
    EXPECT_EQ(t->getRawData(), c.raw);
    EXPECT_EQ(t->getUpdateFlag(), Node::UPDATE_CONTENT_MODIFIED);
  }
}

TEST_F(TextTest, Inserting) {
  constexpr auto kNormal = Text::SPACE_NORMAL;
  constexpr auto kKeep = Text::SPACE_KEEP;
  constexpr auto kNbsp = Text::SPACE_NBSP;
  const struct {
    const char* parent;
    const char* data;
    int offset;
    const char* text;
    Text::SpaceMode mode;
    int result;
    const char* after;
  } cases[] = {
      {"P", "ab", -1, "c", kNormal, 1, "abc"},
      {"P", "ab", 3, "c", kNormal, 0, "ab"},
      {"P", "ab", 1, nullptr, kNormal, 0, "ab"},
      {"P", "ab", 1, "<&", kNormal, 4, "a^<^&b"},
      {"P", "ab", 1, " \t ", kNormal, 1, "a b"},
      {"P", "a b", 1, " ", kNormal, 0, "a b"},
      {"P", "a b", 2, " ", kNormal, 0, "a b"},
      // Blanks typed in a row survive.
      {"P", "ab", 1, " ", kKeep, 1, "a b"},
      {"P", "a b", 2, " ", kKeep, 2, "a _b"},
      {"P", "a b", 1, " ", kKeep, 2, "a_ b"},
      {"P", "a _b", 4, " ", kKeep, 1, "a _ b"},
      {"P", "ab", 1, " ", kNbsp, 2, "a_b"},
      {"P", "a b", 2, "  ", kNbsp, 0, "a b"},
      // The last byte of a unit is no white space, whatever it looks like.
      {"P", "a\x1c\x1d\x20\x20", 5, " ", kKeep, 1, "a\x1c\x1d\x20\x20 "},
      // Preformatted text takes all, tabs as blanks.
      {"PRE", "a ", 2, "  ", kNormal, 2, "a   "},
      {"PRE", "ab", 1, "\tx", kNormal, 8, "a       xb"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.data) + " + " + (c.text ? c.text : "null") + " at " + std::to_string(c.offset));
    Text* t = put(plain(c.data), Text::TEXT_NORMAL, c.parent);
    EXPECT_EQ(t->insert(c.offset, c.text, false, c.mode), c.result);
    EXPECT_EQ(t->getData(), plain(c.after));
    EXPECT_EQ(t->getUpdateFlag() != 0, c.result > 0);
  }
  Text* t = put("a b");
  EXPECT_EQ(t->insert(1, "<", true, kNormal), 2);
  EXPECT_EQ(cursor(), "\"a\\x1B< b\" 3");
  // Blanks before a blank only move the cursor over it.
  EXPECT_EQ(t->insert(3, " ", true, kNormal), 1);
  EXPECT_EQ(cursor(), "\"a\\x1B< b\" 4");
}

TEST_F(TextTest, Deleting) {
  const struct {
    const char* data;
    int offset, count, result;
    const char* after;
  } cases[] = {{"abc", 1, 1, 1, "ac"},  {"abc", 1, 9, 9, "a"},   {"abc", 3, 1, 1, "abc"},
               {"abc", 4, 1, 0, "abc"}, {"abc", -2, 1, 1, "bc"}, {"abc", 0, -1, -1, "abc"}};
  for (const auto& c : cases) {
    Text* t = put(c.data);
    EXPECT_EQ(t->Delete(c.offset, c.count, true), c.result);
    EXPECT_EQ(t->getRawData(), c.after);
  }
  Text* t = put("abc");
  EXPECT_EQ(t->replace(1, 1, "<x", true), 3);
  EXPECT_EQ(cursor(), "\"a\\x1B<xc\" 4");
}

TEST_F(TextTest, DeletingWholeCharacters) {
  const std::string before = std::setlocale(LC_CTYPE, nullptr);
  ASSERT_TRUE(std::setlocale(LC_CTYPE, "C.utf8"));
  const std::string data = "a\xc3\xa9\x1b<\x1c\x1d\x20\x26z\x1b";  // units at 0, 1, 3, 5, 9, 10
  const struct {
    int offset;
    bool backward;
    int result;
    std::string after;
  } cases[] = {
      {2, false, 2, "a" + data.substr(3)},
      {3, false, 2, data.substr(0, 3) + data.substr(5)},
      {6, false, 4, data.substr(0, 5) + data.substr(9)},
      {11, false, 0, data},
      {0, true, 0, data},
      {2, true, 2, "a" + data.substr(3)},
      {9, true, 4, data.substr(0, 5) + data.substr(9)},
      {-1, true, 1, data.substr(0, 10)},
  };
  for (const auto& c : cases) {
    Text* t = put(data);
    EXPECT_EQ(t->deleteChar(c.offset, c.backward), c.result);
    EXPECT_EQ(t->getData(), c.after) << c.offset << (c.backward ? " backward" : " forward");
  }
  // A NUL is a character like any other.
  Text* t = put(std::string("a\0b", 3));
  EXPECT_EQ(t->deleteChar(1, false), 1);
  EXPECT_EQ(t->deleteChar(9, true), 1);
  EXPECT_EQ(t->getData(), "a");
  std::setlocale(LC_CTYPE, before.c_str());
}

TEST_F(TextTest, SplicingWrapsAStretch) {
  const struct {
    const char* wrapper;
    int offset, count;
    bool moveCursor;
    int cursorBefore;
    int result;
    const char* tree;
    const char* cursor;
  } cases[] = {
      {"B", 1, 2, false, 0, 2, "P(\"a\" B(\"bc\") \"d\")", "\"a\" 0"},
      {"B", 1, 2, false, 1, 2, "P(\"a\" B(\"bc\") \"d\")", "\"a\" 1"},
      {"B", 1, 2, false, 3, 2, "P(\"a\" B(\"bc\") \"d\")", "\"bc\" 2"},
      {"B", 1, 2, true, 0, 2, "P(\"a\" B(\"bc\") \"d\")", "\"bc\" 2"},
      {"B", 1, 99, false, 0, 3, "P(\"a\" B(\"bcd\") \"\")", "\"a\" 0"},
      {"B", -5, -1, false, 0, 0, "P(\"\" B(\"\") \"abcd\")", "\"\" 0"},
      // What cannot hold the text swallows it.
      {"HR", 1, 2, false, 3, 2, "P(\"a\" HR \"d\")", "\"d\" 0"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.tree);
    Text* t = put("abcd");
    doc_->setLayoutCursor(t, c.cursorBefore);
    Element* wrapper = doc_->createElement(c.wrapper);
    EXPECT_EQ(t->splice(wrapper, c.offset, c.count, c.moveCursor), c.result);
    EXPECT_EQ(dumpTree(find("P")), c.tree);
    EXPECT_EQ(cursor(), c.cursor);
  }
  // Marked units stay marked, and script stays script.
  Text* t = put("a&b<c");
  t->splice(doc_->createElement("B"), 1, 2, false);
  EXPECT_EQ(dumpTree(find("P")), "P(\"a\" B(\"&amp;\") \"b&lt;c\")");
  t = put("a<b", Text::TEXT_LITERAL);
  t->splice(doc_->createElement("B"), 1, 1, false);
  EXPECT_EQ(dumpTree(find("P")), "P('a' B('<') 'b')");

  Element* loose = doc_->createElement("B");
  Text* alone = doc_->createTextNode("abc");
  EXPECT_EQ(alone->splice(loose, 0, 1, false), -1);
  EXPECT_EQ(t->splice(nullptr, 0, 1, false), -1);
  // Nothing is lost to an element that cannot be put there.
  EXPECT_EQ(t->splice(doc_->getDocumentElement(), 0, 1, false), -1);
  EXPECT_EQ(t->splice(element("P"), 0, 1, false), -1);
  EXPECT_EQ(t->getData(), "a");
  loose->releaseRef(true);
  alone->releaseRef(true);
}

TEST_F(TextTest, Compacting) {
  const struct {
    const char* data;
    int cursor;
    int result;
    const char* after;
    int cursorAfter;
  } cases[] = {
      {"a  b \n c", -1, -3, "a b c", 0}, {"a  b  c", 4, -2, "a b c", 3}, {"a\tb", -1, 0, "a b", 0}, {"", 0, 0, "", 0},
      {"a  ^ ^ ", -1, -1, "a ^ ^ ", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.data);
    Text* t = put(plain(c.data));
    if (c.cursor >= 0) doc_->setLayoutCursor(t, c.cursor);
    EXPECT_EQ(t->compact(), c.result);
    EXPECT_EQ(t->getData(), plain(c.after));
    EXPECT_EQ(t->getUpdateFlag() != 0, c.result != 0);
    if (c.cursor >= 0) {
      EXPECT_EQ(cursor().substr(cursor().rfind(' ') + 1), std::to_string(c.cursorAfter));
    }
  }
}

TEST_F(TextTest, EmptyTexts) {
  const struct {
    Text::TextType type;
    const char* data;
    bool empty, emptyIgnoringType;
  } cases[] = {
      {Text::TEXT_FORMATTING, "x", true, true}, {Text::TEXT_NORMAL, "", true, true},
      {Text::TEXT_NORMAL, " ", false, true},    {Text::TEXT_NORMAL, "_", false, false},
      {Text::TEXT_LITERAL, " \n", true, true},  {Text::TEXT_LITERAL, "", true, true},
      {Text::TEXT_LITERAL, "a", false, false},  {Text::TEXT_NORMAL, "^ ", false, false},
  };
  for (const auto& c : cases) {
    Text* t = put(plain(c.data), c.type);
    EXPECT_EQ(t->isEmptyText(false), c.empty) << c.data;
    EXPECT_EQ(t->isEmptyText(true), c.emptyIgnoringType) << c.data;
  }
  // The same of a page's texts, whose plain form nobody has asked for.
  load("<P> </P><P>&nbsp;</P><SCRIPT> </SCRIPT><PRE>\n</PRE>");
  for (NodeIterator it = doc_->getElementsByTagName("TEXT"); Node* n = it.getCurrent();) {
    auto* t = static_cast<Text*>(n);
    const bool beforeIgnoring = t->isEmptyText(true);
    t->getData();
    EXPECT_EQ(t->isEmptyText(true), beforeIgnoring);
    if (!it.toNextNode()) break;
  }
}

TEST_F(TextTest, Conversions) {
  const auto taken = [](char* text) {
    const std::string copy = text;
    Text::destroyData(text);
    return copy;
  };
  EXPECT_EQ(taken(Text::convertTextToRawData("a<b &amp; &", false)), "a&lt;b &amp;amp; &amp;");
  EXPECT_EQ(taken(Text::convertTextToRawData("a<b &amp; &", true)), "a&lt;b &amp; &amp;");
  EXPECT_EQ(taken(Text::convertRawDataToText("a  &lt; \n b", true)), "a < b");
}

// --- comments and instructions ---------------------------------------------------------------------------------------

TEST_F(TextTest, CommentsTakeOnlyTheirOwnDelimiters) {
  const struct {
    bool jsp;
    const char* given;
    const char* data;  // null: ignored
  } cases[] = {
      {false, "<!-- a -->", "-- a --"}, {false, "<!>", ""},      {false, "<!", nullptr},    {false, "<%a%>", nullptr},
      {false, "<!a", nullptr},          {true, "<%%>", ""},      {true, "<%a%>", "a"},      {true, "<!x>", nullptr},
      {true, "<%>", nullptr},           {true, "<%a>", nullptr}, {false, nullptr, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.given ? c.given : "null");
    Comment* comment = doc_->createComment("old");
    comment->setJSP(c.jsp);
    comment->clearUpdateFlag();
    comment->setRawData(c.given);
    EXPECT_EQ(comment->getData(), c.data ? c.data : "old");
    EXPECT_STREQ(comment->getRawData(), c.data ? c.given : c.jsp ? "<%old%>" : "<!old>");
    comment->setData("new");
    EXPECT_EQ(comment->getUpdateFlag(), Node::UPDATE_NONE);
    auto* clone = static_cast<Comment*>(comment->makeClone(true));
    EXPECT_STREQ(clone->getRawData(), c.jsp ? "<%new%>" : "<!new>");
    delete clone;
    comment->releaseRef(true);
  }
}

TEST_F(TextTest, InstructionsHaveNoDocument) {
  PI* pi = doc_->createPI("target", "<?data?>");
  EXPECT_EQ(pi->getDocument(), nullptr);
  EXPECT_FALSE(pi->canContain(pi, nullptr, nullptr));
  load("<P>");
  doc_->getDocumentElement()->insertFirst(pi);
  pi->setName("other");
  pi->setData("<?x?>");
  pi->setError(ERR_ELEMENT_PARSE_ERROR);
  EXPECT_EQ(doc_->getError(), ERR_NONE);
  EXPECT_EQ(dumpNode(pi), "?other\"<?x?>\"");
  EXPECT_EQ(source(), "<?x?><P>");
  doc_->deleteNodes(pi);
  EXPECT_EQ(source(), "<P>");
}

TEST_F(TextTest, NamesWithoutADOM) {
  dropDocument();
  DOM::destroyDOM(dom_);
  dom_ = nullptr;
  Text text(nullptr);
  Comment comment("x", nullptr);
  EXPECT_EQ(text.getName() + comment.getName(), "TEXTCOMMENT");
  text.setData("a<b", true);
  EXPECT_EQ(text.getRawData(), "a&#60;b");
  EXPECT_EQ(text.insert(0, " ", true, Text::SPACE_NORMAL), 1);
}

}  // namespace
}  // namespace zeldom40
