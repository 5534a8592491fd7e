// Random pages from a seed: good markup, bad markup and hostile bytes in a mix that reaches every branch of the reader.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dom/zeldom40.h"

namespace zeldom40::fuzz {

// The same seed gives the same pages on every machine, so a page that found a fault is known by seed and number.
//
// Pages are small on purpose: what breaks a reader is two or three odd things next to each other, and small pages try
// more neighbours a second. ZELX:ATV is left out, for a loose one is dissolved by design and its tags leave the source.
class RandomPage {
 public:
  // Takes the tag names from `type`, which may go afterwards.
  RandomPage(std::uint64_t seed, const DocumentType& type) : state_(seed * 2 + 1) {
    for (const ElementDefinition* definition : type.getElementDefinitions()) {
      if (definition->getElementID() == ID_ZELX_ATV) continue;
      const Node* attributes = definition->getAttributes();
      Tag tag{definition->getName(), {}};
      for (const Node* a = attributes ? attributes->getFirstChild() : nullptr; a; a = a->getNextSibling()) {
        tag.attributes.push_back(a->getName());
      }
      tags_.push_back(tag);
    }
    for (const char* unknown : {"X", "foo:bar", "LOOP", "DISPLAY", "b-2", "T\x80G", "P1", "_"}) {
      tags_.push_back({unknown, {}});
    }
  }

  // A page of some 50 to 400 bytes.
  std::string next() {
    page_.clear();
    open_.clear();
    const std::size_t target = 50 + below(350);
    if (chance(6)) doctype();
    if (chance(3)) page_ += "<HTML><HEAD><TITLE>t</TITLE></HEAD><BODY>";
    while (page_.size() < target) piece();
    if (chance(8)) page_.resize(below(page_.size() + 1));
    if (chance(8)) damage();
    if (chance(16)) page_.insert(0, chance(2) ? "\xEF\xBB\xBF" : "\xEF\xBB\xBF\r\n");
    return page_;
  }

  // Whether the page last made may add declarations to the DTD of its DOM.
  static bool mayDeclare(std::string_view page) {
    constexpr std::string_view kWord = "<!DOCTYPE";
    for (std::size_t at = page.find("<!"); at != std::string_view::npos; at = page.find("<!", at + 1)) {
      std::size_t same = 2;
      while (same < kWord.size() && at + same < page.size() && (page[at + same] & ~0x20) == kWord[same]) ++same;
      if (same == kWord.size()) return page.find('[', at) != std::string_view::npos;
    }
    return false;
  }

  // 0 to n - 1; n is not 0.
  std::size_t below(std::size_t n) {
    // splitmix64
    std::uint64_t z = (state_ += 0x9e3779b97f4a7c15u);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return static_cast<std::size_t>((z ^ (z >> 31)) % n);
  }

 private:
  struct Tag {
    std::string name;
    std::vector<std::string> attributes;
  };

  bool chance(std::size_t oneIn) { return below(oneIn) == 0; }

  template <std::size_t N>
  std::string_view pick(const std::string_view (&list)[N]) {
    return list[below(N)];
  }

  std::string recased(std::string name) {
    const std::size_t how = below(4);
    for (char& c : name) {
      if (how == 0 || (how == 1 && chance(2))) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    }
    return name;
  }

  void piece() {
    switch (below(16)) {
      case 0:
      case 1:
      case 2:
      case 3:
      case 4:
        beginTag();
        break;
      case 5:
      case 6:
      case 7:
        endTag();
        break;
      case 8:
      case 9:
        text();
        break;
      case 10:
        comment();
        break;
      case 11:
        serverCode();
        break;
      case 12:
        page_ += pick(kServerTags);
        break;
      case 13:
        rawContent();
        break;
      case 14:
        page_ += pick(kStray);
        break;
      default:
        if (chance(8)) {
          doctype();
        } else {
          skeleton();
        }
    }
  }

  void text() {
    for (std::size_t n = 1 + below(4); n > 0; --n) page_ += pick(kTexts);
    if (chance(6)) page_ += static_cast<char>(below(256));
  }

  void beginTag() {
    // Half of the tags come from a few that have much to do with each other.
    const Tag& tag = tags_[below(tags_.size())];
    const std::string name = chance(2) ? std::string(pick(kCommonTags)) : tag.name;
    page_ += '<';
    page_ += recased(name);
    for (std::size_t n = chance(2) ? 0 : below(5); n > 0; --n) attribute(tag);
    if (chance(8)) page_ += pick(kTagTails);
    if (!chance(16)) page_ += '>';
    if (open_.size() < 32) open_.push_back(name);
  }

  void attribute(const Tag& tag) {
    page_ += pick(kBlanks);
    page_ += recased(tag.attributes.empty() || chance(3) ? std::string(pick(kAttributeNames))
                                                         : tag.attributes[below(tag.attributes.size())]);
    if (chance(4)) return;
    page_ += pick(kEquals);
    page_ += pick(kValues);
  }

  void endTag() {
    std::string name(pick(kCommonTags));
    if (!open_.empty() && !chance(4)) {
      // Mostly the innermost, now and then one further out, so that elements overlap.
      const std::size_t at = chance(4) ? below(open_.size()) : open_.size() - 1;
      name = open_[at];
      open_.erase(open_.begin() + static_cast<std::ptrdiff_t>(at));
    }
    page_ += "</";
    page_ += recased(name);
    if (chance(12)) page_ += pick(kTagTails);
    if (!chance(20)) page_ += '>';
  }

  void comment() {
    page_ += pick(kCommentBegins);
    page_ += pick(kCommentBodies);
    if (!chance(5)) page_ += pick(kCommentEnds);
  }

  void serverCode() {
    page_ += pick(kServerBegins);
    page_ += pick(kServerBodies);
    if (!chance(6)) page_ += "%>";
  }

  void rawContent() {
    const std::string_view name = pick(kRawTags);
    page_ += '<';
    page_ += name;
    page_ += chance(4) ? " SRC=x />" : ">";
    page_ += pick(kRawBodies);
    if (chance(3)) page_ += pick(kTexts);
    if (chance(6)) return;
    page_ += "</";
    page_ += name;
    page_ += chance(6) ? " >" : ">";
  }

  void skeleton() { page_ += pick(kSkeletons); }

  void doctype() {
    page_ += pick(kDoctypes);
    if (chance(2)) {
      page_ += " [";
      for (std::size_t n = below(4); n > 0; --n) page_ += pick(kDeclarations);
      if (!chance(6)) page_ += "]";
    }
    if (!chance(6)) page_ += '>';
  }

  // Bytes that the library gives a meaning of its own, in places where none was meant.
  void damage() {
    static constexpr char kBytes[] = {0,   27,  28,  29,   '<',  '>', '"',    '\'',
                                      '&', '%', '-', '\r', '\n', 26,  '\x80', '\xff'};
    for (std::size_t n = 1 + below(4); n > 0 && !page_.empty(); --n) {
      const char byte = kBytes[below(sizeof kBytes)];
      const std::size_t at = below(page_.size());
      if (chance(2)) {
        page_[at] = byte;
      } else {
        page_.insert(at, 1, byte);
      }
    }
  }

  // The lists below are of bytes, so they are written as views with their length: NUL is one of them.
  static constexpr std::string_view kCommonTags[] = {
      "P",  "B",   "A",     "FONT",   "DIV",    "UL",   "LI",     "DL",     "DT",        "TABLE",       "TR",    "TD",
      "TH", "PRE", "TBODY", "CENTER", "SELECT", "FORM", "OPTION", "OBJECT", "ZELX:LOOP", "jsp:useBean", "HEAD",  "BODY",
      "BR", "IMG", "HTML",  "INS",    "SPAN",   "X",    "MAP",    "REPEAT", "FRAMESET",  "NOFRAMES",    "TITLE", "QQ"};
  static constexpr std::string_view kAttributeNames[] = {
      "align", "ID",   "x",     "data-x",         "jsp:y",   "\x80\xfe", "1",     "onclick",
      "id",    "HREF", "class", "dynamicelement", "CLASSID", "&amp;",    "a\x1b", "b.c"};
  static constexpr std::string_view kEquals[] = {"=", "=", "=", " = ", "=\r\n", "\t=", "=="};
  static constexpr std::string_view kBlanks[] = {" ", " ", " ", "\r\n", "\t", "  ", "/", ""};
  static constexpr std::string_view kValues[] = {"\"v\"",
                                                 "'v'",
                                                 "v",
                                                 "\"\"",
                                                 "''",
                                                 "\"a>b\"",
                                                 "'a\"b'",
                                                 "\"a'b\"",
                                                 "\"",
                                                 "'",
                                                 "",
                                                 ">",
                                                 "left",
                                                 "#fff",
                                                 "\"<%= x %>\"",
                                                 "<%=\"y\"%>",
                                                 "\"&lt;\"",
                                                 "\"&copy\"",
                                                 "a&b",
                                                 "\"\n\"",
                                                 "a/b",
                                                 "/",
                                                 "\"x\"y",
                                                 "a\"b",
                                                 "\"&#0;\"",
                                                 "a=b",
                                                 "\"<b>\"",
                                                 "'</b>'",
                                                 "\"<!-- c -->\"",
                                                 "100%",
                                                 "\"\x1b\x1c\x1d\"",
                                                 "\"<%= request.getParameter(\"z\") %>\""};
  static constexpr std::string_view kTagTails[] = {" ", "/", " /", "\r\n", "\"", "'",
                                                   "=", "<", "%",  " x=",  "?",  "<!--"};
  static constexpr std::string_view kTexts[] = {"word",
                                                " ",
                                                "\r\n",
                                                "\n",
                                                "  \t ",
                                                "two words",
                                                "&amp;",
                                                "&nbsp;",
                                                "&lt;",
                                                "&copy",
                                                "&#65;",
                                                "&#xA0;",
                                                "&#32;",
                                                "&hellip;",
                                                "&dagger;",
                                                "&zwj;",
                                                "&#0;",
                                                "&#65536;",
                                                "&#99999999999999999999;",
                                                "&",
                                                "&;",
                                                "&#;",
                                                "&unknown;",
                                                "\x82\xa0",
                                                "\xb1\xb2",
                                                "\xe3\x81\x82",
                                                "\x1b",
                                                "\x1b ",
                                                "\x1c",
                                                "\x1c\x1c",
                                                "\x1d",
                                                "\x1b$B$\"\x1b(B",
                                                ">",
                                                "]]>",
                                                "-->",
                                                "%>",
                                                "\"",
                                                "'",
                                                "\r",
                                                "\f",
                                                "\v",
                                                "[",
                                                "a\x1c"
                                                "b",
                                                "&#8230;",
                                                std::string_view("\0", 1),
                                                std::string_view("a\0b", 3),
                                                std::string_view("\x1b\0", 2),
                                                "\x80",
                                                "\xa0",
                                                "\xff"};
  static constexpr std::string_view kCommentBegins[] = {"<!--", "<!--", "<!--",  "<%--", "<!---",
                                                        "<!-",  "<!",   "<!--#", "<!--["};
  static constexpr std::string_view kCommentBodies[] = {"",
                                                        " c ",
                                                        "-",
                                                        " a > b ",
                                                        " -- ",
                                                        "<b>x</b>",
                                                        "--%",
                                                        "#include file=\"a.inc\" ",
                                                        "#include virtual='x",
                                                        "#include",
                                                        "#echo var=x",
                                                        "METADATA type=\"Z\" startspan",
                                                        "METADATA type=\"DynamicData\" endspan",
                                                        "\r\n",
                                                        "<!-- in -->",
                                                        "<%= x %>",
                                                        std::string_view(" \0 ", 3),
                                                        "\x1b\x1c",
                                                        "</SCRIPT>"};
  static constexpr std::string_view kCommentEnds[] = {"-->", "-->",  "-->", ">",  "--%>",
                                                      "%>",  "-- >", "--",  "->", "--!>"};
  static constexpr std::string_view kServerBegins[] = {"<%",       "<%=",         "<%!",       "<%@",
                                                       "<%@ page", "<%@ include", "<%@taglib", "<%@ "};
  static constexpr std::string_view kServerBodies[] = {" x ",
                                                       " a > b ",
                                                       " language=\"java\" import='a.b' ",
                                                       " file=\"x.jsp\" ",
                                                       "=",
                                                       " \"%\" ",
                                                       " a=\"b",
                                                       " uri=x prefix=",
                                                       "",
                                                       "<b>",
                                                       "%",
                                                       " for (;;) { out.print(\"<p>\"); } ",
                                                       std::string_view("\0", 1),
                                                       "\x1b>",
                                                       "\r\n",
                                                       " page "};
  static constexpr std::string_view kServerTags[] = {
      "<jsp:scriptlet>a < b</jsp:scriptlet>",
      "<jsp:scriptlet><![CDATA[ a > b ]]></jsp:scriptlet>",
      "<jsp:expression><![CDATA[x",
      "<jsp:expression><![cdata[ y ]]>z</jsp:expression>",
      "<jsp:declaration>int i;</JSP:DECLARATION>",
      "<jsp:declaration><![CDATA[a]]> <![CDATA[b]]></jsp:declaration>",
      "<jsp:useBean id=\"a\" class='b'></jsp:useBean>",
      "<jsp:useBean id=\"a\"/>",
      "<jsp:useBean id='a'>",
      "<jsp:setProperty name=\"a\" property='*' />",
      "<jsp:getProperty name=a property=b>",
      "<jsp:include page=\"x\"/>",
      "<jsp:forward page=x><jsp:param name=a value=b/></jsp:forward>",
      "<jsp:plugin type=applet><jsp:params><jsp:param "
      "name='x'></jsp:params><jsp:fallback>f</jsp:fallback></jsp:plugin>",
      "<jsp:directive.page import=\"x\"/>",
      "<BEAN NAME=b TYPE=t>",
      "<REPEAT INDEX=i><TR>",
      "</REPEAT>",
      "<INSERT BEAN=a PROPERTY=b></INSERT>",
      "<SERVLET NAME=s><PARAM NAME=a VALUE=b></SERVLET>",
      "<qdx:dbquery id=q>select</qdx:dbquery>",
      "<ZELX:TEXT PROPERTY=p></ZELX:TEXT>",
      "<ZELX:LOOP><TR><TD>x</TR></ZELX:LOOP>",
      "<ZELX:PROPERTY NAME=p>",
      "<?xml version=\"1.0\"?>",
      "<?php a > b ?>",
      "<?",
  };
  static constexpr std::string_view kRawTags[] = {"SCRIPT",   "script", "STYLE",         "TITLE",
                                                  "TEXTAREA", "PRE",    "jsp:scriptlet", "XMP"};
  static constexpr std::string_view kRawBodies[] = {
      "a < b && c",      "<!-- x",     "<!-- x -->", "</", "</b>", "'</SCRIPT '", "<%= y %>",
      "<![CDATA[ z ]]>", "\r\n  \r\n", "",           "<b", "&lt;", "\x1b<",       std::string_view("a\0</", 4)};
  static constexpr std::string_view kStray[] = {"<",
                                                "<<",
                                                "</",
                                                "</>",
                                                "<>",
                                                "< P>",
                                                "</ P>",
                                                "<!",
                                                "<!>",
                                                "<!foo bar>",
                                                "<![CDATA[",
                                                "<![CDATA[x]]>",
                                                "<![IF]>",
                                                "]]>",
                                                "<1>",
                                                "<\x80>",
                                                std::string_view("<\0>", 3),
                                                std::string_view("<P\0>", 4),
                                                "<%",
                                                "<%>",
                                                "<%--%>",
                                                "<%@%>",
                                                "<!---->",
                                                "<!-->",
                                                "<!--->",
                                                "<!-",
                                                "<P",
                                                "</P",
                                                "<P <B>",
                                                "<A HREF=>x y>",
                                                "<A HREF=\"x>y</A>",
                                                "</B I>",
                                                "<SCRIPT",
                                                "<![",
                                                "<!\x1b",
                                                "\x1b<P>",
                                                "\x1c<B>"};
  static constexpr std::string_view kSkeletons[] = {"<HTML>",
                                                    "<HEAD>",
                                                    "</HEAD>",
                                                    "<BODY>",
                                                    "</BODY>",
                                                    "</HTML>",
                                                    "<HEAD><TITLE>x</TITLE></HEAD>",
                                                    "<FRAMESET><FRAME></FRAMESET>",
                                                    "<NOFRAMES>",
                                                    "</NOFRAMES>",
                                                    "<TABLE><TR><TD>",
                                                    "</TABLE>",
                                                    "<TABLE><TD>",
                                                    "<LI><DT><TD><OPTION>",
                                                    "<UL><LI>a<LI>b</UL>",
                                                    "<P><TABLE><P></TABLE>",
                                                    "<A><A>",
                                                    "<B><P></B>",
                                                    "<FORM><FORM>",
                                                    "<SELECT><OPTION>a<OPTGROUP><OPTION>",
                                                    "</P>",
                                                    "</BR>",
                                                    "<TITLE>t</TITLE>x",
                                                    "<OBJECT></OBJECT>x",
                                                    "<PRE>\r\n a  b </PRE>",
                                                    "<MAP><AREA></MAP>",
                                                    "<INS><TABLE><INS><TR>"};
  static constexpr std::string_view kDoctypes[] = {
      "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0//EN\"",
      "<!doctype html public '-//x' \"y\"",
      "<!DOCTYPE HTML SYSTEM \"x\"",
      "<!DOCTYPE HTML PUBLIC \"x\"",
      "<!DOCTYPE HTML PUBLIC \"\"",
      "<!DOCTYPE HTML",
      "<!DOCTYPE",
      "<!DOCTYPE HTML <!-- c -->",
      "<!DOCTYPE HTML PUBLIC <![CDATA[x]]>",
      "<!DOCTYPE HTML PUBLIC \"x",
      "<!DOCTYPE HTML -- c -- PUBLIC \"x\"",
      "<!DOCTYPE HTML PUBLIC x",
  };
  static constexpr std::string_view kDeclarations[] = {
      "<!ELEMENT X O O (X)>",
      "<!ELEMENT Y - O (P|Y)* -(A) +(B)>",
      "<!ELEMENT QQ O O (X)><!ELEMENT X O O (QQ)>",
      "<!ELEMENT X - - CDATA>",
      "<!ELEMENT X - O EMPTY>",
      "<!ELEMENT (X|QQ) - O ((A,B)?,(#PCDATA)*)+ -(X)>",
      "<!ELEMENT TEXT - - (TEXT)>",
      "<!ATTLIST P z CDATA #IMPLIED>",
      "<!ATTLIST X a (b|c) b d NUMBER #REQUIRED>",
      "<!ATTLIST P a CDATA #IMPLIED ",
      "<!ENTITY % a \"x\">",
      "<!ENTITY % a \"%a;%a;\">",
      "<!ENTITY e \"v\">",
      "<!ENTITY e CDATA \"&#161;\">",
      "%a;",
      "%undeclared;",
      "<!x",
      "<![IGNORE[ x ",
      "<![INCLUDE[<!ENTITY i 'j'>",
      "<!-- c -->",
      "<!ELEMENT Z ((((((",
      "<!ELEMENT",
      "<!ENTITY",
      "\x1b",
      "x",
  };

  std::uint64_t state_;
  std::vector<Tag> tags_;
  std::string page_;
  std::vector<std::string> open_;
};

}  // namespace zeldom40::fuzz
