// Tags: how they are rebuilt and when not, attributes, script data, and the answers without a definition.
#include <functional>
#include <memory>
#include <string>

#include "dom/tree/ElementAccess.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

class ElementTest : public PageTest {
 protected:
  explicit ElementTest(const char* documentTypeName = "HTML") : PageTest(DOM::JSP_VERSION_0, documentTypeName) {}
};

class GenericElementTest : public ElementTest {
 protected:
  GenericElementTest() : ElementTest("XML") {}
};

using Edit = std::function<void(Element*)>;

const Edit kNothing = [](Element*) {};
const Edit kDirty = [](Element* e) { e->setBeginTagDirty(); };
const Edit kEndDirty = [](Element* e) { e->setEndTagDirty(); };
const Edit kEmpty = [](Element* e) {
  while (e->hasChildNodes()) e->getLastChild()->releaseRef(true);
};
const Edit kFill = [](Element* e) { e->insertLast(e->getDocument()->createTextNode("t")); };

Edit attribute(const char* name, const char* value, bool notify = true) {
  return [=](Element* e) { e->setAttribute(name, value, notify); };
}

TEST_F(ElementTest, EditedTagsAloneAreWrittenAnew) {
  const struct {
    const char* page;
    const char* name;
    Edit edit;
    const char* source;
  } cases[] = {
      // Attributes are spelled as the DTD spells them.
      {"<P align=left>x</p>", "P", kNothing, "<P align=left>x</p>"},
      {"<P ALIGN=left>x</p>", "P", kDirty, "<P align=\"left\">x</P>"},
      {"<P align=left>x</p>", "P", attribute("Align", "right"), "<P align=\"right\">x</P>"},
      {"<P align=left>x</p>", "P", attribute("align", "right", false), "<P align=left>x</p>"},
      {"<P align=left>x</p>", "P", attribute("Foo", ""), "<P align=\"left\" Foo>x</P>"},
      {"<P align=left>x</p>", "P", [](Element* e) { e->deleteAttribute("ALIGN"); }, "<P>x</P>"},
      {"<P align=left>x</p>", "P", [](Element* e) { e->deleteAttribute("align"); }, "<P align=left>x</p>"},
      {"<P align=left>x</p>", "P", kEndDirty, "<P align=left>x</P>"},
      {"<P title='a\"b'>x</p>", "P", kDirty, "<P title='a\"b'>x</P>"},
      {"<P title=''>x</p>", "P", kDirty, "<P title>x</P>"},
      // Elements of no end tag, items, and tags that nobody knows.
      {"<UL><LI type=a>x</li></UL>", "LI", kDirty, "<LI type=\"a\">x"},
      {"<FOO a=b>", "FOO", attribute("c", "d"), "<FOO a=b>"},
      // Server tags in their own forms.
      {"<%@page import=\"a\"%>", "JSP:DIRECTIVE.PAGE", kDirty, "<%@ page import=\"a\" %>"},
      {"<%@ foo a='b'%>", "JSP:DIRECTIVE", kDirty, "<%@ foo a=\"b\" %>"},
      {"<jsp:directive.page import='a'/>", "JSP:DIRECTIVE.PAGE", kDirty, "<jsp:directive.page import=\"a\" />"},
      {"<!--#include file=a-->", "SSI:INCLUDE", kDirty, "<!--#include file=\"a\" -->"},
      {"<% a %>", "JSP:SCRIPTLET", kDirty, "<% a %>"},
      {"<%=a%>", "JSP:EXPRESSION", attribute("x", "y"), "<%=a%>"},
      {"<jsp:scriptlet>a</jsp:scriptlet >", "JSP:SCRIPTLET", kDirty, "<jsp:scriptlet>a</jsp:scriptlet>"},
      // XML tags show in the begin tag whether there is content.
      {"<jsp:useBean id='a'/>", "JSP:USEBEAN", kFill, "<jsp:useBean id=\"a\">t</jsp:useBean>"},
      {"<jsp:useBean id='a'></jsp:useBean>", "JSP:USEBEAN", kNothing, "<jsp:useBean id='a'></jsp:useBean>"},
      {"<jsp:useBean id='a'></jsp:useBean>", "JSP:USEBEAN", kDirty, "<jsp:useBean id=\"a\" />"},
      {"<jsp:useBean id='a'>x</jsp:useBean>", "JSP:USEBEAN", kEmpty, "<jsp:useBean id=\"a\" />"},
      {"<jsp:useBean id='a'>x", "JSP:USEBEAN", kNothing, "<jsp:useBean id='a'>x"},
      {"<jsp:useBean id='a'/>", "JSP:USEBEAN",
       [](Element* e) {
         kFill(e);
         e->setRawBeginTag("<jsp:usebean>");
         e->setRawEndTag("</jsp:usebean>");
       },
       "<jsp:usebean>t</jsp:usebean>"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.page);
    load(c.page);
    Element* e = element(c.name);
    ASSERT_TRUE(e);
    c.edit(e);
    Node* clone = e->makeClone(true);
    clone->addRef(true);
    EXPECT_EQ(source(e), c.source);
    EXPECT_EQ(source(clone), c.source);
    clone->releaseRef(true);
  }
}

TEST_F(ElementTest, AFactoryElementIsWrittenOnFirstRead) {
  Element* p = doc_->createElement("p");
  EXPECT_EQ(p->getTagName(), "P");
  EXPECT_FALSE(p->hasEndTag());
  p->clearUpdateFlag();
  EXPECT_EQ(p->getRawBeginTag(), "<P>");
  EXPECT_EQ(p->getUpdateFlag(), Node::UPDATE_CONTENT_MODIFIED);
  p->clearUpdateFlag();
  EXPECT_EQ(p->getRawBeginTag() + p->getRawEndTag(), "<P></P>");
  p->setRawBeginTag("<p >");
  p->setRawEndTag(std::string("</p\0>", 5));
  EXPECT_EQ(source(p), std::string("<p ></p\0>", 9));
  EXPECT_FALSE(p->isNoEndTag());
  p->releaseRef(true);
}

TEST_F(GenericElementTest, UnknownTagsAreRebuiltButNotCode) {
  const struct {
    const char* page;
    const char* source;
  } cases[] = {{"<foo a=b>x</foo>", "<FOO a=\"b\">x</FOO>"},
               {"<% a %>", "<% a %>"},
               {"<?xml v?>", "<?xml v?>"},
               {"<!foo bar>", "<!foo bar>"}};
  for (const auto& c : cases) {
    load(c.page);
    auto* e = static_cast<Element*>(doc_->getDocumentElement()->getFirstChild());
    ASSERT_EQ(e->getNodeType(), Node::NODE_ELEMENT);
    e->setBeginTagDirty();
    EXPECT_EQ(source().substr(0, std::string(c.source).size()), c.source);
  }
}

// --- attributes ------------------------------------------------------------------------------------------------------

TEST_F(ElementTest, SettingAnAttribute) {
  const struct {
    const char* element;
    const char* name;
    int result;
    const char* stored;
    unsigned long error;  // on the element, gathered by a parse of what was written
  } cases[] = {
      {"P", "align", 0, "ALIGN", 0},
      {"P", "Foo", -1, "Foo", ERR_ELEMENT_INVALID_ATTR},
      {"FOO", "Align", -1, "Align", 0},
      {"ZELTEMP", "foo", 0, "foo", 0},  // declared without any attributes: nothing is wrong with it
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.element) + ' ' + c.name);
    Element* e = doc_->createElement(c.element);
    e->clearUpdateFlag();
    EXPECT_EQ(e->setAttribute(c.name, "left", true), c.result);
    EXPECT_EQ(e->getUpdateFlag(), Node::UPDATE_ATTRIBUTE_MODIFIED);
    const Attribute* a = e->getAttributeNode(c.stored);
    ASSERT_TRUE(a);
    EXPECT_EQ(a->getType() == Attribute::ATTRIBUTE_DECLARED, a->getAttributeDefinition() != nullptr);
    EXPECT_STREQ(e->getAttributeValue(c.stored), "left");
    EXPECT_EQ(e->getAttributeValue("aLIGN"), nullptr);
    EXPECT_EQ(e->setAttribute(c.name, a->getValue(), true), c.result);
    EXPECT_STREQ(e->getAttributeValue(c.stored), "left");
    if (e->getElementID() == ID_P) {
      load(source(e));
      EXPECT_EQ(find("P")->getError(), c.error);
    }
    e->releaseRef(true);
  }
}

TEST_F(ElementTest, AttributesOfAParsedTagAreOneListForAll) {
  load("<P title=a foo=b title=c>");
  Element* p = element("P");
  auto* clone = static_cast<Element*>(p->makeClone(false));
  const Attribute* title = p->getAttributeNode("TITLE");
  EXPECT_EQ(title->getValue(), "a");
  const_cast<Attribute*>(title)->setValue("z");
  // The tag is the caller's to mark; the copy shares nothing.
  EXPECT_EQ(p->getRawBeginTag(), "<P title=a foo=b title=c>");
  EXPECT_TRUE(p->getUpdateFlag() & Node::UPDATE_ATTRIBUTE_MODIFIED);
  p->setBeginTagDirty();
  EXPECT_EQ(p->getRawBeginTag(), "<P title=\"z\" foo=\"b\">");
  EXPECT_STREQ(clone->getAttributeValue("TITLE"), "a");
  delete clone;
}

TEST_F(ElementTest, QuotesThatCanHoldTheValue) {
  const struct {
    const char* value;
    const char* stored;
    const char* written;
  } cases[] = {{"a\"b", "a\"b", "<P title='a\"b'>"},
               {"a'b", "a'b", "<P title=\"a'b\">"},
               {"\"a\"'", "&quot;a&quot;'", "<P title=\"&quot;a&quot;'\">"},
               {"&quot;", "&quot;", "<P title=\"&quot;\">"},
               {"", "", "<P title>"}};
  for (const auto& c : cases) {
    Element* p = doc_->createElement("P");
    p->setAttribute("title", c.value, true);
    EXPECT_STREQ(p->getAttributeValue("TITLE"), c.stored);
    EXPECT_EQ(p->getRawBeginTag(), c.written);
    p->releaseRef(true);
  }
}

TEST_F(ElementTest, ListsReplaceInPlaceAndMove) {
  auto names = [](const AttributeList& list) {
    std::string all;
    for (unsigned long i = 0; i < list.getLength(); ++i) all += list.item(i)->getName() + list.item(i)->getValue();
    return all;
  };
  Element* p = doc_->createElement("P");
  AttributeList list(p);
  for (const char* name : {"a", "b", "c"}) list.setAttribute(doc_->createAttribute(name, "1"));
  list.setAttribute(doc_->createAttribute("b", "2"));
  EXPECT_EQ(names(list), "a1b2c1");
  p->clearUpdateFlag();
  Attribute* same = list.item(1);
  EXPECT_EQ(list.setAttribute(same), same);
  EXPECT_EQ(names(list), "a1b2c1");
  EXPECT_EQ(p->getUpdateFlag(), Node::UPDATE_ATTRIBUTE_MODIFIED);

  AttributeList other;
  other.setAttribute(doc_->createAttribute("d", "3"));
  other.setAttribute(doc_->createAttribute("a", "4"));
  const AttributeList copy(other);
  for (AttributeList* from : {&list, &other, static_cast<AttributeList*>(nullptr)}) {
    ElementAccess::takeAttributes(p, from);
    EXPECT_TRUE(!from || from->getLength() == 0);
  }
  const AttributeList& all = *p->getAttributes();
  EXPECT_EQ(names(all), "a4b2c1d3");
  EXPECT_EQ(names(copy), "d3a4");
  // One that was given the name of an earlier one takes its place.
  Attribute* renamed = p->getAttributes()->item(3);
  renamed->setName("b");
  p->getAttributes()->setAttribute(renamed);
  EXPECT_EQ(names(all), "a4b3c1");
  p->releaseRef(true);
}

TEST_F(ElementTest, ParsedValues) {
  const struct {
    const char* value;
    const char* marked;
    const char* plain;
  } cases[] = {{"a&amp;b", "a\x1b&b", "a&b"}, {"&eacute;", "\x1b\xe9", "\xe9"}, {"&foo; &", "&foo; &", "&foo; &"}};
  for (const auto& c : cases) {
    std::unique_ptr<Attribute> a(doc_->createAttribute("x", c.value));
    EXPECT_STREQ(a->getParsedValue(false), c.marked);
    EXPECT_STREQ(a->getParsedValue(true), c.plain);
    EXPECT_EQ(a->getValue(), c.value);
  }
}

// --- script data -----------------------------------------------------------------------------------------------------

TEST_F(ElementTest, CodeOfScriptTags) {
  const struct {
    const char* page;
    const char* name;
    const char* code;
  } cases[] = {
      {"<% a %>", "JSP:SCRIPTLET", "a"},
      {"<%  a  %>", "JSP:SCRIPTLET", " a "},
      {"<% %>", "JSP:SCRIPTLET", nullptr},
      {"<%   %>", "JSP:SCRIPTLET", " "},
      {"<% a", "JSP:SCRIPTLET", nullptr},  // nobody closed it
      {"<jsp:scriptlet>a &lt; <![CDATA[b]]></jsp:scriptlet>", "JSP:SCRIPTLET", "a &lt; b"},
  };
  for (const auto& c : cases) {
    load(c.page);
    ASSERT_TRUE(element(c.name)) << c.page;
    EXPECT_STREQ(element(c.name)->getScriptData(), c.code) << c.page;
    EXPECT_EQ(source(), c.page);
  }
}

TEST_F(ElementTest, NewCodeForScriptTags) {
  const struct {
    const char* page;
    const char* name;
    const char* code;
    const char* source;
  } cases[] = {
      {"<% a %>", "JSP:SCRIPTLET", "x", "<% x %>"},
      {"<%! a %>", "JSP:DECLARATION", "\nx\t", "<%!\nx\t%>"},
      {"<% a %>", "JSP:SCRIPTLET", "", "<% %>"},
      {"<%= a %>", "JSP:EXPRESSION", nullptr, "<%= %>"},
      {"<jsp:scriptlet>a<B>b</B></jsp:scriptlet>", "JSP:SCRIPTLET", "x < y",
       "<jsp:scriptlet><![CDATA[x < y]]></jsp:scriptlet>"},
      {"<jsp:scriptlet></jsp:scriptlet>", "JSP:SCRIPTLET", "a]]>b",
       "<jsp:scriptlet><![CDATA[a]]]]><![CDATA[>b]]></jsp:scriptlet>"},
  };
  for (const auto& c : cases) {
    load(c.page);
    ASSERT_TRUE(element(c.name)) << c.page;
    element(c.name)->setScriptData(c.code);
    EXPECT_EQ(source(), c.source);
  }
}

// --- answers ---------------------------------------------------------------------------------------------------------

TEST_F(ElementTest, WithoutADefinitionTheDocumentDecides) {
  Document* generic = dom_->createDocument("XML");
  const struct {
    Document* document;
    Element::ElementType type;
    bool empty, omittable, contains;
  } cases[] = {{doc_, Element::ELEMENT_UNDEFINED, true, true, false},
               {generic, Element::ELEMENT_UNDEFINED, false, false, true},
               {doc_, Element::ELEMENT_TYPE_1, false, true, true},
               {nullptr, Element::ELEMENT_TYPE_2, false, true, true}};
  Element* b = doc_->createElement("B");
  for (const auto& c : cases) {
    Element e("FOO", c.document);
    e.setElementType(c.type);
    EXPECT_EQ(e.isEmptyTag(), c.empty);
    EXPECT_EQ(e.isEndOmittable(), c.omittable);
    Node* blocking = b;
    EXPECT_EQ(e.canContain(b, &blocking, nullptr), c.contains);
    EXPECT_EQ(blocking, nullptr);
    EXPECT_TRUE(e.canBeAncestorOf(b));
    EXPECT_FALSE(e.canInclude(b));
    e.setHidden(true);
    EXPECT_FALSE(e.isHidden());
  }
  b->releaseRef(true);
  dom_->deleteDocument(generic);
}

TEST_F(ElementTest, ContainmentAsksAncestorsToo) {
  load("<A HREF=x><B>y</B></A>");
  Element* b = element("B");
  Element* a = doc_->createElement("A");
  Element* i = doc_->createElement("I");
  EXPECT_FALSE(b->canContain(a, nullptr, nullptr));  // no link in a link, at any depth
  EXPECT_TRUE(b->canContain(i, nullptr, nullptr));
  a->releaseRef(true);
  i->releaseRef(true);
}

TEST_F(ElementTest, SearchesGoOnThroughFollowingSiblings) {
  load("<P><B>1</B><I><B>2</B></I></P><P><B>3</B>x</P>");
  auto count = [](Node* from, const char* name) {
    return static_cast<Element*>(from)->getElementsByTagName(name).getLength();
  };
  EXPECT_EQ(count(find("P"), "B"), 3);
  EXPECT_EQ(count(find("I"), "B"), 1);
  EXPECT_EQ(count(find("B"), "B"), 2);
  EXPECT_EQ(count(find("P"), "TEXT"), 4);
}

}  // namespace
}  // namespace zeldom40
