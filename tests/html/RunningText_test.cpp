// Which stretch of a page becomes a text, and its plain form.
#include <random>

#include "dom/dtd/DTDFrame.h"
#include "dom/html/HTMLLexer.h"
#include "dom/source/MarkedText.h"
#include "dom/source/PlainText.h"
#include "tests/html/HtmlTest.h"

namespace zeldom40 {
namespace {

using RunningText = PageTableTest;

TEST_F(RunningText, WhiteSpaceIsOneBlankAndNoneBehindABreak) {
  expectTrees(
      {
          {"<P> a  b \n<B> c</B> d</P> e", "ZELROOT(HTML(BODY(P(\"a b \" B(\"c\") \" d\") \"e\")))"},
          {"<P>a <!--c--> b<!--c--> ", "ZELROOT(HTML(BODY(P(\"a \" <!--c--> \"b\" <!--c--> \" \"))))"},
          {"<P>a <BR> b <%=x%> c", "ZELROOT(HTML(BODY(P(\"a \" BR \"b \" JSP:EXPRESSION \"c\"))))"},
          // A unit in the line is content, a hidden one and an unknown tag are none.
          {"<P>a <IMG> b <INPUT TYPE=\"Hidden\"> c <INPUT TYPE=text> d <X> e",
           "ZELROOT(HTML(BODY(P(\"a \" IMG \" b \" INPUT \"c \" INPUT \" d \" X \"e\"))))"},
          {"<PRE> a\n  b</PRE> c", "ZELROOT(HTML(BODY(PRE(\" a\\n  b\") \"c\")))"},
          // A preformatted element that is closed from outside leaves its mode on.
          {"<DIV><PRE> a</DIV> b  c", "ZELROOT(HTML(BODY(DIV(PRE(\" a\")) \" b  c\")))"},
          {"<P>a<UL> <LI> b </UL>", "ZELROOT(HTML(BODY(P(\"a\") UL(~\"\" LI(\"b \")))))"},
      },
      kDumpPlain);
}

TEST_F(RunningText, MarksReferencesAndMarkup) {
  const PageRow rows[] = {
      {"&amp;&lt&quot;", "\x1b&\x1b<\x1b\""},
      {"a\"b'c>d& e&nosuch;", "a\x1b\"b'c\x1b>d\x1b& e\x1b&nosuch;"},
      {"&#65;&#8364;&#512;&#0;",
       "\x1b"
       "A\x1c\x1d\x20\xac\x1c\x1b\x02\x1d\x1b&#0;"},
      {"&hellip;&eacute;", "\x1c\x1c\x20&\x1b\xe9"},
      {"a\x1b\x1c\x1d", "a\x1b\x1c\x1d"},
  };
  for (const PageRow& row : rows) {
    load(row.page);
    EXPECT_EQ(text()->getData(), row.tree) << row.page;
  }
}

// Adds tokens to a plain form one by one.
class Assembler {
 public:
  explicit Assembler(const ParserType::_dtd_frame* frame) : frame_(frame) {}
  void begin(bool dropLeading, bool preformatted) {
    text.clear();
    drop_ = dropLeading;
    pre_ = preformatted;
  }
  void add(const LexRecord& token, std::string_view written) {
    if (token.kind == LexerType::LEX_SPACE) {
      if (pre_) {
        text += written;
      } else if (!drop_) {
        text += ' ';
      }
    } else if (token.kind == LexerType::LEX_ENTITY_REF) {
      text += frame_->generalRecords[token.value].text;
    } else if (token.kind == LexerType::LEX_CHAR_REF) {
      const auto hi = static_cast<char>(token.value / 256);
      const auto lo = static_cast<char>(token.value % 256);
      if (token.value < 256) {
        text += {27, lo};
      } else if (lo == 0) {
        text += {28, 27, hi, 29};
      } else {
        text += {28, 29, hi, lo};
      }
    } else {
      const bool marked = token.kind == LexerType::LEX_TAG_OPEN || token.kind == LexerType::LEX_TAG_CLOSE ||
                          token.kind == LexerType::LEX_AMPERSAND || token.kind == LexerType::LEX_QUOTE;
      if (marked && !written.empty()) text += char{27};
      text += written;
    }
    drop_ = false;
  }
  std::string text;

 private:
  const ParserType::_dtd_frame* frame_;
  bool drop_ = false;
  bool pre_ = false;
};

constexpr std::string_view kPieces[] = {
    "a",        "b7",  " ",  "\n\t", "\v", "&",  "&amp;", "&lt",  "&hellip;", "&#65;", "&#8364",      "&#512;",
    "&#0;",     "&#x", ";",  "<",    ">",  "\"", "'",     "\x1b", "\x1c",     "\x1d",  {"\0", 1},     "\x80",
    "&nosuch;", "/",   "-!", "%",    "(",  "=",  "#",     "1",    "\r",       "[",     "&nbsp;&nbsp", "é"};

TEST_F(RunningText, AssemblesWhatTheTokensSay) {
  ParserType::_dtd_frame* frame = doc_->getDocumentTypeObject()->getDTDFrame();
  std::mt19937 random(40);
  for (int round = 0; round < 4000; ++round) {
    std::string page;
    for (auto i = random() % 12; i > 0; --i) page += kPieces[random() % std::size(kPieces)];
    // A construct of its own is no running text.
    if (page.find("<!") != std::string::npos || page.find("<%") != std::string::npos) continue;
    const bool drop = random() % 2;
    const bool pre = random() % 2;
    HTMLLexer lexer(page.data(), page.size(), frame);
    Assembler expected(frame);
    expected.begin(drop, pre);
    for (LexRecord t = lexer.nextToken(); t.kind != LexerType::LEX_EOF; t = lexer.nextToken()) {
      expected.add(t, lexer.slice(t));
    }
    EXPECT_EQ(assemblePlainText(page, {drop, pre}, &frame->entityTable), expected.text) << quotedBytes(page);
  }
}

// Pages of inline content against a reading that goes token by token and keeps the stated state.
TEST_F(RunningText, CarriesTheStateOfWhiteSpaceThroughThePage) {
  ParserType::_dtd_frame* frame = doc_->getDocumentTypeObject()->getDTDFrame();
  struct Tag {
    std::string_view tag;
    enum { PLAIN, BREAK, BREAK_AT_END, UNIT, PRE, PRE_END } kind;
  };
  const Tag tags[] = {{"<B>", Tag::PLAIN},           {"</B>", Tag::PLAIN},  {"<!--c-->", Tag::PLAIN},
                      {"<BR>", Tag::BREAK},          {"<IMG>", Tag::UNIT},  {"<DIV>", Tag::BREAK},
                      {"</DIV>", Tag::BREAK_AT_END}, {"<X>", Tag::PLAIN},   {"<INPUT TYPE=HIDDEN>", Tag::PLAIN},
                      {"<INPUT>", Tag::UNIT},        {"<%a%>", Tag::PLAIN}, {"<PRE>", Tag::PRE},
                      {"</PRE>", Tag::PRE_END}};
  std::mt19937 random(41);
  for (int round = 0; round < 3000; ++round) {
    std::string page = "<BODY>";
    std::vector<std::string> expected;
    bool trailing = false;
    bool broken = true;
    int pre = 0;
    for (auto i = random() % 10; i > 0; --i) {
      std::string run;
      for (unsigned k = random() % 4; k > 0; --k) run += kPieces[random() % std::size(kPieces)];
      if (run.find('<') != std::string::npos) run.clear();
      if (!run.empty()) {
        Assembler text(frame);
        text.begin(trailing || broken, pre > 0);
        HTMLLexer lexer(run.data(), run.size(), frame);
        for (LexRecord t = lexer.nextToken(); t.kind != LexerType::LEX_EOF; t = lexer.nextToken()) {
          text.add(t, lexer.slice(t));
          trailing = t.kind == LexerType::LEX_SPACE;
        }
        broken = false;
        expected.push_back(text.text);
      }
      page += run;
      Tag tag = tags[random() % std::size(tags)];
      // A preformatted element is to be closed by its own end tag, which counts only where one is open.
      const bool closesOutside = tag.kind == Tag::BREAK_AT_END || tag.tag == "</B>";
      if (pre > 0 ? tag.kind == Tag::PRE || closesOutside : tag.kind == Tag::PRE_END) tag = tags[2];
      page += tag.tag;
      if (tag.kind == Tag::PRE) ++pre;
      if (tag.kind == Tag::PRE_END) --pre;
      if (tag.kind == Tag::BREAK || tag.kind == Tag::PRE) trailing = false;
      if (tag.kind == Tag::UNIT) trailing = broken = false;
      if (tag.kind == Tag::BREAK || tag.kind == Tag::PRE || tag.kind == Tag::BREAK_AT_END || tag.kind == Tag::PRE_END) {
        broken = true;
      }
    }
    load(page);
    std::vector<std::string> found;
    NodeIterator texts = doc_->getElementsByTagName("TEXT");
    for (Node* n = texts.toFirstNode(); n; n = texts.toNextNode()) found.push_back(static_cast<Text*>(n)->getData());
    EXPECT_EQ(found, expected) << quotedBytes(page);
  }
}

}  // namespace
}  // namespace zeldom40
