// What the guard lets through and what it stops: results of repairs and layouts made by hand, and random damage.
#include "tools/zeldom/guard.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tool/ToolTest.h"

namespace {

using namespace zeldom40::tool;

// A repair told in one text: {-what goes-} and {+what comes+}.
struct Change {
  std::string before;
  std::string after;
  std::vector<PlannedEdit> edits;

  explicit Change(std::string_view text) {
    while (!text.empty()) {
      const std::size_t mark = std::min(text.find("{-"), text.find("{+"));
      before += text.substr(0, mark);
      after += text.substr(0, mark);
      if (mark == std::string_view::npos) break;
      const bool comes = text[mark + 1] == '+';
      text.remove_prefix(mark + 2);
      const std::size_t end = text.find(comes ? "+}" : "-}");
      const std::string_view piece = text.substr(0, end);
      if (edits.empty() || edits.back().offset + edits.back().length != before.size()) {
        edits.push_back({before.size(), 0, ""});
      }
      if (comes) {
        edits.back().replacement += piece;
        after += piece;
      } else {
        edits.back().length += piece.size();
        before += piece;
      }
      text.remove_prefix(end + 2);
    }
  }
};

std::string verdict(const std::string& before, const std::string& after, GuardMode mode,
                    const std::vector<PlannedEdit>& edits = {}) {
  const std::optional<GuardFault> fault = compareWrites(before, after, mode, edits);
  return fault ? std::to_string(fault->offset) + ": " + fault->reason : "fine";
}

std::string verdict(std::string_view text, GuardMode mode = GuardMode::kFix) {
  const Change change(text);
  return verdict(change.before, change.after, mode, change.edits);
}

TEST(Guard, PassesSoundRepairs) {
  const char* const cases[] = {
      "<body><p>one <b>two{+</b>+}</p>",
      "<body><p>one{-</i>-} two</p>",
      "<body><p>one\n{-</i>\n-}two</p>",
      "<body>\n<p>a</p>\n{-</div>\n-}<p>b</p>",
      "<body><table>{+<tbody><tr>+}<td>x{+</td></tr></tbody>+}</table>",
      "<body><table>\n{+<tr>\n+}<td>x{+\n</td></tr>+}</table>",
      "<body>{-<b class=k>-}<p>{+<b class=k>+}T{+</b>+}</p><p>{+<b class=k>+}U{+</b>+}</p>{-</b>-}",
      "<body>{-<a name=top href=x>-}<h2>{+<a name=top href=x>+}T{+</a>+}</h2>{-</a>-}",
      "<body><b>T{+</b>+}<p>{+<b>+}U{+</b>+}</p>{-</b>-}",
      "<body>{-<a href=x>\n-}<h2>{+<a href=x>+}<img src=i>{+</a>+}</h2>\n{-</a>-}",
      "<body>{-<a href=x><h2>-}{+<h2><a href=x>+}T{+</a>+}</h2>{-</a>-}",
      "<body><font size=2>T{+</font>+}<noscript>{+<font size=2>+}U{+</font>+}</noscript>{-</font>-}",
      "<body><p>a<div>b</div>{-</p>-}",
      "<body><% if (x) { %><p>a <i>b{+</i>+}</p><% } %>",
      "<body>{+<ul>+}<li>a</li>{+</ul>+}",
      "<body><b>a <i>b{+</i>+}</b> c{-</i>-}</body>",
      "<html><head><title>t</title>{+</head>+}\n{+<body>\n+}<p>x",
      "<body><form><p>a{+</p>+}</form>{+\n+}{+</body>+}",
      "plain text, nothing planned",
  };
  for (const char* const each : cases) EXPECT_EQ(verdict(each), "fine") << each;
}

// Everything that a repair of these pages could get wrong, each planned or not.
TEST(Guard, StopsWrongRepairs) {
  const char* const cases[] = {
      // half pages
      "<p>foot\n{-</div>\n-}",
      "<div id=page>\n<h1>T</h1>{+</div>+}",
      "<%@ include file='head.jsp' %><body><p>foot{-</div>-}",
      "<title>t</title><jsp:include page='a'/><div>x{+</div>+}",
      // text
      "<body><p>a{-, b-}</p>",
      "<body><p>{+x +}a</p>",
      "<body><a href=x>R{-&-}{+&amp;+}D</a>",
      "<body><p>ab{-</i>-}cd</p>",
      "<body>a{-</div>-}{+ +}b",
      "<body>a{-</div>-}b",
      "<body>{-a-}<i>b</i>{+a+}",
      "<body>a b{+</p>+}c",
      "<body><i>a</i>{-</b> -}b",
      "<body><p>a{+ +}b</p>",
      "<body><p>one two</p>{+ +}<p>x</p>",
      // server code, scripts, comments, declarations
      "<body>a{-<% x %>-}b",
      "<body>{+<% x %>+}a",
      "<body>{-<% x %>-}a{+<% x %>+}",
      "<body><% out.print(\"{-</b>-}\") %>",
      "<body>{-<c:if test='${a}'>-}x{-</c:if>-}",
      "<body><script>f(){-;-}</script>",
      "<body>{-<script>f()</script>-}<p>a</p>{+<script>f()</script>+}",
      "<body>{-<!--[if IE]><link href=a><![endif]-->-}x",
      "{-<!DOCTYPE html>-}<body>x",
      "{+<!DOCTYPE html>+}<body>x",
      "<body><pre>a{- -}  b</pre>",
      "<body><textarea>{-</b>-}</textarea>",
      "<body><%= x{+ +}%>",
      "<body><!-- a{+</p>+} -->",
      "<body>a {-</b>-}<!{+</b>+}-- x -->",
      // begin tags and their attributes
      "<body><p{- class=a-}>x</p>",
      "<body>{-<p class=a>-}x</p>",
      "<body>{-<hr>-}x",
      "<body><p>x{+<br>+}</p>",
      "<body>{+<p class=a>+}x{+</p>+}",
      "<body>{+<form>+}<input>{+</form>+}",
      "<body>{+<a href=x>+}T{+</a>+}",
      "<body>{-<form method=post>-}<table>{+<form method=post>+}<tr><td>x</form></table>",
      "<body><tr {-<c:if test='a'>class=x</c:if>-}><td>y",
      "<p>a{+<body>+}b",
      // inline elements around blocks
      "<body>{-<a id=x href=u>-}<h2>{+<a id=x href=u>+}T{+</a>+}</h2><p>{+<a id=x href=u>+}q{+</a>+}</p>{-</a>-}",
      "<body>{-<a href=x>-}a<h2>{+<a href=x>+}T{+</a>+}</h2>{-</a>-}",
      "<body>{-<b class=k>-}<p>{+<b class=k>+}T{+</b>+}</p><p>U</p>{-</b>-}",
      "<body>{-<b class=k>-}<p>{+<b class=k>+}T{+</b>+}</p>{-</b>-}<p>{+<b class=k>+}U{+</b>+}</p>",
      "<body>{-<a href='<%= u %>'>-}<h2>{+<a href='<%= u %>'>+}T{+</a>+}</h2>{-</a>-}",
      "<body>{-<b class=k>-}{-<i>-}<p>{+<i>+}{+<b class=k>+}T{+</b></i>+}</p>{-</i></b>-}",
      // end tags
      "<body><b>x{-</b>-} y",
      "<body><p>x</p>{+</i>+}",
      "<body><div><% if (a) { %>x<% } %>{+</div>+}",
      "<body><div><% if (a) { %>x<% } %>{-</div>-}<p>y",
      // how other things are read
      "<body><p>x{+</b+}</p>",
      "<body>a{-</b>-}<i>b</i{->-} <b>",
      "<body><p title={-'-}x>y</p>",
      // the beginning
      "{+\n+}<?xml version='1.0'?><html>x",
      "\xEF\xBB\xBF{+<html>+}<body>x",
      "{-</div>-}text<title>a</title>",
      "<html><body>{+<body>+}a",
      "<html>{+<body><body>+}a",
  };
  for (const char* const each : cases) EXPECT_NE(verdict(each), "fine") << each;
}

TEST(Guard, StopsWhatThePlanDoesNotSay) {
  const std::string page = "<body><p>one <b>two</p>\n<p>three</p>";
  const std::vector<PlannedEdit> plan = {{19, 0, "</b>"}};
  const std::string good = "<body><p>one <b>two</b></p>\n<p>three</p>";
  EXPECT_EQ(verdict(page, good, GuardMode::kFix, plan), "fine");
  EXPECT_EQ(verdict(page, page, GuardMode::kFix), "fine");
  EXPECT_EQ(verdict(page, good, GuardMode::kFix), "21: a place would change that no repair was planned for");
  EXPECT_EQ(verdict(page, page, GuardMode::kFix, plan), "19: the new text is not the one that was planned");
  EXPECT_EQ(verdict(page, good + "\n", GuardMode::kFix, plan), "36: text would come behind the end");
  EXPECT_NE(verdict(page, "", GuardMode::kFix, plan), "fine");
  for (const std::vector<PlannedEdit>& wrong : std::vector<std::vector<PlannedEdit>>{
           {{37, 0, ""}}, {{36, 1, ""}}, {{19, 0, "</b>"}, {18, 0, ""}}, {{5, std::string::npos, ""}}}) {
    EXPECT_NE(verdict(page, good, GuardMode::kFix, wrong), "fine");
  }
}

// An unsafe repair may do what it planned, but for what nobody can want.
TEST(Guard, HoldsUnsafeRepairsToTheirPlan) {
  const std::pair<const char*, bool> cases[] = {
      {"<body>{-<form method=post>-}<table>{+<form method=post>+}<tr><td>x</form></table>", true},
      {"{-a-}<table><td>x</table>{+a+}", true},
      {"<p>{-<img src=a>-}x", true},
      {"<p>{-a-}x", false},
      {"<p {-class='<%= x %>'-}>x", false},
      {"<p>{-<a <%= x %>>-}y", false},
  };
  for (const auto& [text, fine] : cases) EXPECT_EQ(verdict(text, GuardMode::kFixUnsafe) == "fine", fine) << text;
  EXPECT_NE(verdict("<p>x", "<p>y", GuardMode::kFixUnsafe), "fine");
}

struct Layout {
  const char* before;
  const char* after;
};

TEST(Guard, PassesSoundLayouts) {
  const Layout cases[] = {
      {"<div><p>a <b>c</b> d</p></div>", "<div>\n  <p>a <b>c</b> d</p>\n</div>\n"},
      {"<ul><li>a\nb<li>c</ul>", "<ul>\n  <li>a b\n  <li>c\n</ul>"},
      {"<c:if test='${x}'>\n<p>a</p>\n</c:if>", "<c:if test='${x}'>\n  <p>a</p>\n</c:if>"},
      {"\n\n<p>a", "<p>a"},
      {"<p>a  \n\n  b</p>", "<p>a\nb</p>"},
      {"<p> a <br> b </p>", "<p>a<br>b</p>"},
      {"<p>a <b>b c</b></p>", "<p>a\n  <b>b\n  c</b></p>"},
      {"<% a\n %>\n<% b %>", "<% a\n %>\n\n  <% b %>"},
      {"<!DOCTYPE html><html><head><script>a</script></head></html>",
       "<!DOCTYPE html>\n<html>\n<head>\n  <script>a</script>\n</head>\n</html>"},
      {"<pre>\n a\n  b</pre><p>x", "<pre>\n a\n  b</pre>\n<p>x"},
      {"<c:set var='x'>\n a\n</c:set>\n<p>x", "<c:set var='x'>\n a\n</c:set>\n  <p>x"},
      {"<table>\r\n<tr><td>a</td>\r\n</tr></table>", "<table>\r\n  <tr>\r\n    <td>a</td></tr>\r\n</table>\r\n"},
      {"a <b>c</b>\n<!-- d -->\n<p>e", "a <b>c</b>\n  <!-- d -->\n  <p>e"},
      {"<p title='a\nb'\n  class=x>a</p>", "<p title='a\nb'\n  class=x>\n  a</p>"},
      {"<a href='<%= u %>'>x</a>\n<p>", "<a href='<%= u %>'>x</a>\n\n<p>"},
      {"", ""},
  };
  for (const Layout& each : cases)
    EXPECT_EQ(verdict(each.before, each.after, GuardMode::kFormat), "fine") << each.before;
  EXPECT_EQ(verdict("<P CLASS=a>x</P>", "<p CLASS=a>x</p>", GuardMode::kFormatNames), "fine");
}

TEST(Guard, StopsWrongLayouts) {
  const Layout cases[] = {
      // white space that counts
      {"<b>a</b> <i>b</i>", "<b>a</b><i>b</i>"},
      {"<b>a</b>b", "<b>a</b> b"},
      {"<p>a b</p>", "<p>a  b</p>"},
      {"<p>a b</p>", "<p>ab</p>"},
      {"<p>a\nb</p>", "<p>ab</p>"},
      {"<p><% x %> b</p>", "<p><% x %>\nb</p>"},
      {"<c:if test='x'>\na b</c:if>", "<c:if test='x'>\na\nb</c:if>"},
      {"<p>x <!-- c -->y</p>", "<p>x\n<!-- c -->y</p>"},
      {"<p>x\n<!-- c -->y</p>", "<p>x <!-- c -->y</p>"},
      {"a<script>f()</script>b", "a\n<script>f()</script>b"},
      {"a<% x %>\nb", "a<% x %> b"},
      {"<pre>a\n   b</pre>", "<pre>a b</pre>"},
      {"<PRE>a\n   b</PRE>", "<PRE>a b</PRE>"},
      {"<textarea>a\nb</textarea>", "<textarea>\n   a\n   b</textarea>"},
      {"<script>\n a\n</script>", "<script>\n  a\n</script>"},
      {"<!-- a\n b -->", "<!-- a\n  b -->"},
      {"<% a\n b %>", "<% a\n  b %>"},
      {"<p>a ${x\ny}</p>", "<p>a ${x y}</p>"},
      {"<p>{{ a\nb }}", "<p>{{ a b }}"},
      {"<jsp:scriptlet>a\nb</jsp:scriptlet>", "<jsp:scriptlet>a b</jsp:scriptlet>"},
      {"<p title='a\nb'>", "<p title='a b'>"},
      {"<p  class=a>", "<p class=a>"},
      {"<?xml version='1.0'?>\n<html>", "\n<?xml version='1.0'?>\n<html>"},
      {"<![CDATA[ a\n b ]]>", "<![CDATA[ a\n  b ]]>"},
      // bodies of actions
      {"<c:if test='x'><p>a</p></c:if>", "<c:if test='x'>\n<p>a</p>\n</c:if>"},
      {"<c:if test='x'>\n<p>a</p>\n</c:if>", "<c:if test='x'><p>a</p></c:if>"},
      {"<c:set var='x'>\n<p>a</p>\n</c:set>", "<c:set var='x'>\n  <p>a</p>\n</c:set>"},
      {"<c:set var='x'>a b</c:set>", "<c:set var='x'> a b </c:set>"},
      // the rest
      {"<p>it&#x27;s</p>", "<p>it&amp;#x27;s</p>"},
      {"<td <%= a %> width=3>x", "<td <%= a %>> width=3>x"},
      {"<div><a name=top></a>x</div>", "<div>x</div>"},
      {"<P CLASS=a>x</P>", "<p CLASS=a>x</p>"},
      {"<p class=a id=b>", "<p id=b class=a>"},
      {"<p class='a'>", "<p class=\"a\">"},
      {"<p>a<p>b", "<p>a</p>\n<p>b"},
      {"<ul></ul><p>a", "<p>a"},
      {"<p>a<p>b", "<p>b<p>a"},
      {"\xEF\xBB\xBF<p>a", "<p>a"},
      {"<p>a\r\n<p>b", "<p>a"},
      {"", "<p>"},
  };
  for (const Layout& each : cases)
    EXPECT_NE(verdict(each.before, each.after, GuardMode::kFormat), "fine") << each.before;
  EXPECT_NE(verdict("<P CLASS=a>x</P>", "<p class=a>x</p>", GuardMode::kFormatNames), "fine");
}

// Where a page may be hurt, and how.
class Damage {
 public:
  explicit Damage(std::uint64_t seed) : state_(seed) {}

  std::size_t below(std::size_t n) {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::size_t>(state_ >> 33) % n;
  }

  std::string page() {
    static const char* const kParts[] = {"<p>one</p>\n",
                                         "<p class=\"a\">two <b>three</b>, four.</p>",
                                         "<% if (a > b) { %>\n",
                                         "<% } %>",
                                         "<a href=\"<%= u %>\" id=x>link</a> ",
                                         "text\n",
                                         "<!-- note -->\n",
                                         "<script>if (a < b) f();</script>\n",
                                         "<table border=1><tr><td>${x.y}</td></tr></table>",
                                         "<c:if test=\"${a}\">\n",
                                         "</c:if>",
                                         "<img src='i.gif' alt=\"a > b\">",
                                         "<br/>",
                                         "<pre> a\n  b</pre>\n",
                                         "<input type=text <%= c %> name=q>",
                                         "<ul>\n<li>x<li>y\n</ul>",
                                         "&amp; R&D ",
                                         "<textarea>\n t</textarea>",
                                         "<?php x ?>",
                                         "<!--#include file=\"a\"-->",
                                         "<span style=\"color:red\">s</span>",
                                         "{{ name }}",
                                         "<font color=red><p>f</p></font>"};
    std::string text = below(2) ? "<!DOCTYPE html>\n<html><head><title>t</title></head>\n<body>\n" : "";
    for (std::size_t n = 3 + below(12); n > 0; --n) text += kParts[below(std::size(kParts))];
    return text;
  }

  // A piece of the page, cut more simply than the guard does: a tag, a word or punctuation. Never white space.
  std::pair<std::size_t, std::size_t> piece(const std::string& page) {
    for (;;) {
      std::size_t begin = below(page.size());
      if (isSpace(page[begin])) continue;
      const std::size_t open = page.rfind('<', begin), close = page.find('>', begin);
      if (open != std::string::npos && close != std::string::npos && page.find('>', open) == close) {
        return {open, close + 1 - open};
      }
      std::size_t end = begin;
      while (begin > 0 && !isSpace(page[begin - 1]) && page[begin - 1] != '>') --begin;
      while (end < page.size() && !isSpace(page[end]) && page[end] != '<') ++end;
      if (end > begin) return {begin, end - begin};
    }
  }

  // Deletes, doubles, moves or changes a piece: the edits that do so.
  std::vector<PlannedEdit> edits(const std::string& page) {
    const auto [begin, length] = piece(page);
    const std::string text = page.substr(begin, length);
    switch (below(4)) {
      case 0:
        return {{begin, length, ""}};
      case 1:
        return {{begin + length, 0, text}};
      case 2: {
        const auto [other, size] = piece(page);
        if (other == begin) return {{begin, length, ""}};
        if (other < begin) return {{other, 0, text}, {begin, length, ""}};
        return {{begin, length, ""}, {std::max(other + size, begin + length), 0, text}};
      }
      default: {
        std::string changed = text;
        char& byte = changed[below(changed.size())];
        byte = static_cast<char>(byte == 'q' ? 'w' : 'q');
        return {{begin, length, changed}};
      }
    }
  }

 private:
  static bool isSpace(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

  std::uint64_t state_;
};

std::string apply(const std::string& page, const std::vector<PlannedEdit>& edits) {
  std::string text = page;
  for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit)
    text.replace(edit->offset, edit->length, edit->replacement);
  return text;
}

// End tags and bare begin tags may come and go if that is planned.
bool mayBePlanned(const std::string& page, const std::vector<PlannedEdit>& edits) {
  const auto isPlain = [](const std::string& text) {
    return text.empty() || (text.front() == '<' && text.find_first_of(" =%") == std::string::npos);
  };
  return std::all_of(edits.begin(), edits.end(), [&](const PlannedEdit& edit) {
    return isPlain(page.substr(edit.offset, edit.length)) && isPlain(edit.replacement);
  });
}

TEST(Guard, StopsRandomDamage) {
  Damage damage(7);
  std::vector<std::string> pages;
  for (const char* name : {"clean", "lf", "unknown_tag", "control_bytes", "kana_sjis"}) {
    pages.push_back(readFile(std::string(ZELDOM40_SOURCE_DIR "/tests/pages/") + name + ".html"));
    ASSERT_FALSE(pages.back().empty()) << name;
  }
  while (pages.size() < 200) pages.push_back(damage.page());
  std::size_t layouts = 0, stoppedLayouts = 0, repairs = 0, stoppedRepairs = 0;
  std::string missed;
  for (std::size_t round = 0; round < 1500; ++round) {
    const std::string& page = pages[round % pages.size()];
    const std::vector<PlannedEdit> edits = damage.edits(page);
    const std::string hurt = apply(page, edits);
    if (hurt == page) continue;
    const bool layout = compareWrites(page, hurt, GuardMode::kFormat, {}).has_value();
    ++layouts;
    stoppedLayouts += layout;
    const bool open = mayBePlanned(page, edits);
    const bool repair = compareWrites(page, hurt, GuardMode::kFix, edits).has_value();
    if (!open) {
      ++repairs;
      stoppedRepairs += repair;
    }
    if (!layout || (!repair && !open)) missed += "\n--- " + page + "\n+++ " + hurt;
  }
  EXPECT_GE(layouts, 1000u);
  EXPECT_GE(repairs, 600u);
  EXPECT_GE(stoppedLayouts * 100, layouts * 99) << missed;
  EXPECT_GE(stoppedRepairs * 100, repairs * 99) << missed;
  for (const std::string& page : pages) {
    EXPECT_EQ(verdict(page, page, GuardMode::kFormat), "fine");
    EXPECT_EQ(verdict(page, page, GuardMode::kFix), "fine");
  }
}

// Each would take minutes if a step were repeated for each unit.
TEST(Guard, TakesLinearTimeForHostilePages) {
  const char* const kUnits[] = {
      "<%",          "<%--",      "<!--",      "<!--#",           "<?",  "${",   "#{",    "{{",     "{%",
      "<a \"x\" \"", "<a x='",    "<p:q a=\"", "<a b=\"<p:q c='", "<b>", "</b>", "<p:q>", "</p:q>", "<script>",
      "<pre></pre>", "<![CDATA[", "<!x[",      "<!x[]",           "<",   "</",   "a ",    "<b><p>", "${'",
      "<a ${",       "<a <%"};
  for (const std::string unit : kUnits) {
    std::string page;
    for (int i = 0; i < 10000; ++i) page += unit;
    EXPECT_EQ(verdict(page, page, GuardMode::kFormat), "fine") << unit;
    EXPECT_EQ(verdict(page, page, GuardMode::kFix), "fine") << unit;
  }
  // As many edits as tags.
  const int count = 10000;
  std::string page = "<body>", repaired = page;
  std::vector<PlannedEdit> edits;
  for (int i = 0; i < count; ++i) {
    edits.push_back({page.size() + 2, 4, ""});
    page += "x </i> ";
    repaired += "x  ";
  }
  EXPECT_EQ(verdict(page, repaired, GuardMode::kFix, edits), "fine");
}

}  // namespace
