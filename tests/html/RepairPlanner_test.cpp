// Plans of repairs: what each error becomes in the source, what is left alone, and that plans are checked together.
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "dom/zeldom40.h"
#include "tests/host/TestPage.h"

namespace zeldom40 {
namespace {

const std::string kBegin = "<html><head><title>t</title></head><body>\n";
const std::string kEnd = "\n</body></html>\n";

class RepairPlans : public ::testing::Test {
 protected:
  RepairPlans() : dom_(DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr)) {}
  ~RepairPlans() override { DOM::destroyDOM(dom_); }

  std::string repaired(const std::string& page, bool unsafe = false) {
    SourceRepair::Options options;
    options.unsafe = unsafe;
    const SourceRepair repair(dom_, page, options);
    EXPECT_EQ(applyEdits(page, repair.edits()), repair.text()) << page;
    // A second run has nothing to do.
    EXPECT_EQ(SourceRepair(dom_, repair.text(), options).text(), repair.text()) << page;
    return repair.text();
  }
  // The body of a whole page.
  std::string body(const std::string& content, bool unsafe = false) {
    const std::string text = repaired(kBegin + content + kEnd, unsafe);
    EXPECT_EQ(text.substr(0, kBegin.size()), kBegin);
    EXPECT_EQ(text.substr(text.size() - kEnd.size()), kEnd);
    return text.substr(kBegin.size(), text.size() - kBegin.size() - kEnd.size());
  }

  DOM* dom_;
};

struct Case {
  const char* before;
  const char* after;
};

TEST_F(RepairPlans, TagsComeAndGoAndNothingElse) {
  const Case cases[] = {
      // an end tag that is missing, in the letters of the begin tag, before the white space of a line
      {"<p>one <b>two</p>", "<p>one <b>two</b></p>"},
      {"<P>one <Font size=1>two <i>three \n</P>", "<P>one <Font size=1>two <i>three</i></Font> \n</P>"},
      {"<h3><a name=x>T</h3><p>u", "<h3><a name=x>T</a></h3><p>u"},
      {"  <div>\n    <p>x", "  <div>\n    <p>x\n  </div>"},
      {"<a name=x><h2>T</h2>", "<a name=x></a><h2>T</h2>"},
      {"<dl><dt><kbd>-x\n<dd>y</dl>", "<dl><dt><kbd>-x</kbd>\n<dd>y</dl>"},
      // one that ends nothing
      {"<p>one</i> two</p>", "<p>one two</p>"},
      {"<p>a</p>\n  </div>\n<p>b</p>", "<p>a</p>\n<p>b</p>"},
      {"<p>x<ul><li>y</ul></p>", "<p>x<ul><li>y</ul>"},
      {"a</br>b<BR></BR>", "a<br>b<BR><BR>"},
      {"<p>one</i>two</p>", "<p>one</i>two</p>"},
      // elements that cross
      {"<p><b>one <i>two</b> three</i></p>", "<p><b>one <i>two</i></b> <i>three</i></p>"},
      {"<p><b>one <i>two</b></i></p>", "<p><b>one <i>two</i></b></p>"},
      {"<h1>A</h3>\n<p>one</p>", "<h1>A</h1>\n<p>one</p>"},
      {"<h2>A</h3><ul><li>x</ul>", "<h2>A</h2><ul><li>x</ul>"},
      {"<a name=a>one<a href=b>two</a></a>", "<a name=a>one</a><a href=b>two</a>"},
      // an inline element around blocks
      {"<b><p>T</p><p>U</p></b>", "<p><b>T</b></p><p><b>U</b></p>"},
      {"<a href=\"x\"><h2>T</h2></a>", "<h2><a href=\"x\">T</a></h2>"},
      {"<a name=\"x\">\n<h2>T</h2></a>", "<h2><a name=\"x\">T</a></h2>"},
      {"<font color=red>one <h2>two</h2> three</font>",
       "<font color=red>one</font> <h2><font color=red>two</font></h2> <font color=red>three</font>"},
      {"<b>x<i>y<p>z</p></i></b>", "<b>x<i>y</i></b><p><b><i>z</i></b></p>"},
      {"<p><b>one<ul><li>two</li></ul>three</b></p>", "<p><b>one</b><ul><li><b>two</b></li></ul><b>three</b>"},
      {"<a id=q href=x><h2>T</h2><p>u</p></a>", "<a id=q href=x><h2>T</h2><p>u</p></a>"},
      {"<font color=red><table><tr><td>x</table></font>", "<font color=red><table><tr><td>x</table></font>"},
      // cells without row, lists without item
      {"<table><td>x<td>y</table>", "<table><tr><td>x<td>y</table>"},
      {"<TABLE><TD>x</TD></TABLE>", "<TABLE><TR><TD>x</TD></TR></TABLE>"},
      {"<table>\n  <tr><td>a</td></tr>\n  <td>b</td>\n  </tr>\n</table>",
       "<table>\n  <tr><td>a</td></tr>\n  <tr>\n  <td>b</td>\n  </tr>\n</table>"},
      {"<ul>\n <li>a</li>\n <ul><li>b</li></ul>\n</ul>", "<ul>\n <li>a\n <ul><li>b</li></ul></li>\n</ul>"},
      // what would have to move, and what nobody points at
      {"<table>one<tr><td>two</table>", "<table>one<tr><td>two</table>"},
      {"<pre>a <b>b</pre>", "<pre>a <b>b</pre>"},
      {"one </p>\ntwo", "one </p>\ntwo"},
      {"<nav><ul><li>a</nav><p>x", "<nav><ul><li>a</nav><p>x"},
      {"<script>document.write('<div>')</script>x</div>", "<script>document.write('<div>')</script>x</div>"},
      {"#if ($a)<div class=x>#else<div>#end y</div></div>", "#if ($a)<div class=x>#else<div>#end y</div></div>"},
      {"<a href=1 onclick='f()'><p>one</p><p>two</p></a>", "<a href=1 onclick='f()'><p>one</p><p>two</p></a>"},
      {"<i></i><ul></ul>a&b<p align=left align=right>", "<i></i><ul></ul>a&b<p align=left align=right>"},
  };
  for (const Case& each : cases) EXPECT_EQ(body(each.before), each.after) << each.before;
}

// What server code writes cannot be known, so no tag comes or goes around it.
TEST_F(RepairPlans, ServerCodeInBetweenMakesARepairUnsafe) {
  const Case cases[] = {
      {"<p>one <b><%= x %></p>", "<p>one <b><%= x %></b></p>"},
      {"<p>a <%= x %> b</i> c", "<p>a <%= x %> b c"},
      {"<b><p><%= x %></p></b>", "<p><b><%= x %></b></p>"},
      {"<table><% for (;;) { %><td>x</td><% } %></table>", "<table><% for (;;) { %><tr><td>x</td></tr><% } %></table>"},
      {"<p>${x} <b>y ${z}</p>", "<p>${x} <b>y ${z}</b></p>"},
      {"<ul><li>a<c:out value='x'/></li><ul><li>b</ul></ul>", "<ul><li>a<c:out value='x'/><ul><li>b</ul></li></ul>"},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(body(each.before), each.before);
    EXPECT_EQ(body(each.before, /*unsafe=*/true), each.after);
  }
  EXPECT_EQ(repaired("<html><body>x<div>\n<p>y\n</body></html>"), "<html><body>x<div>\n<p>y\n</div></body></html>");
  EXPECT_EQ(repaired("<html><body>\r\n<div>\r\n<p>x\r\n</body></html>"),
            "<html><body>\r\n<div>\r\n<p>x\r\n</div>\r\n</body></html>");
  // It stands in the tag alone, or beside the pair.
  EXPECT_EQ(body("<% x %><h3><a href=\"<%= u %>\">T</h3>"), "<% x %><h3><a href=\"<%= u %>\">T</a></h3>");
}

TEST_F(RepairPlans, TagsOfHalfAPageMayBeInAnotherFile) {
  const std::pair<const char*, const char*> cases[] = {
      {"<div id=page>\n<h1>T</h1>\n", nullptr},
      {"<p>foot\n</div>\n", nullptr},
      {"<table><td>x</td></table>", nullptr},
      {"<html><body><%@ include file='top.jsp' %><div>", nullptr},
      {"<html><body><!--#include file='top.html'-->a</div>", nullptr},
      {"<html><body><jsp:include page='x'/></div>", nullptr},
      // a move within the file
      {"<b><p>T</p></b>", "<p><b>T</b></p>"},
      {"<a href=x><h2>T</h2></a>", nullptr},
      {"<div id=page>\n<svg><title>Logo</title></svg>\n", nullptr},
      {"<!DOCTYPE html PUBLIC 'x'><title>x</title>\n<div id=page>\n", nullptr},
      // the page is whole, but goes on elsewhere as it seems
      {"<html><body><div id=page>\n<h1>T</h1>\n", nullptr},
  };
  for (const auto& [page, after] : cases) {
    EXPECT_EQ(repaired(page), after ? after : page);
  }
  for (const bool unsafe : {false, true}) EXPECT_EQ(repaired("<p>foot\n</div>\n", unsafe), "<p>foot\n</div>\n");
}

TEST_F(RepairPlans, NewerPagesMayHaveAnchorsAroundBlocks) {
  for (const char* page : {"<!DOCTYPE html><title>t</title><body><a href=x><h2>T</h2></a>",
                           "<html><body><section><a href=x><h2>T</h2></a></section>"}) {
    EXPECT_EQ(repaired(page), page);
  }
}

// A host asks for the plan of one error, and whether it holds.
TEST_F(RepairPlans, AnErrorKnowsItsPlan) {
  Document* document = dom_->createDocument("HTML");
  const std::string page = kBegin + "<p>one <b>two</p><p>three</i> four</p><table>x</table>" + kEnd;
  document->createNodes(page.data(), static_cast<unsigned>(page.size()), nullptr, false);
  {
    const RepairPlanner planner(document);
    EXPECT_EQ(planner.source(), page);
    std::map<unsigned long, const RepairPlanner::Plan*> plans;
    for (const _dom_error_packet* packet : document->getErrorList()) {
      plans[packet->error] = planner.planFor(packet->node, packet->error);
    }
    ASSERT_EQ(plans.size(), 3u);
    const RepairPlanner::Plan* missing = plans[ERR_ELEMENT_END_TAG_MISSING];
    ASSERT_NE(missing, nullptr);
    EXPECT_EQ(missing->kind, RepairPlanner::SAFE);
    EXPECT_EQ(applyEdits(page, missing->edits),
              kBegin + "<p>one <b>two</b></p><p>three</i> four</p><table>x</table>" + kEnd);
    EXPECT_EQ(plans[ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST]->kind, RepairPlanner::UNSAFE);
    EXPECT_EQ(planner.planFor(document->getDocumentElement(), ERR_ELEMENT_UNKNOWN), nullptr);
    EXPECT_EQ(planner.planFor(nullptr, ~0ul), nullptr);
    // Alone, together, and with indices that are none.
    for (const std::vector<std::size_t>& wanted : std::vector<std::vector<std::size_t>>{{0}, {1}, {1, 0, 1, 99}, {}}) {
      const RepairPlanner::Verdict verdict = planner.verify(wanted);
      EXPECT_TRUE(verdict.isSound);
      EXPECT_EQ(verdict.text, applyEdits(page, verdict.edits));
    }
    EXPECT_FALSE(planner.isHalfPage());
  }
  dom_->deleteDocument(document);
  for (Document* none : {static_cast<Document*>(nullptr)}) {
    const RepairPlanner planner(none);
    EXPECT_TRUE(planner.plans().empty());
    EXPECT_EQ(planner.verify({0}).text, "");
  }
}

// A plan that makes another error is left out, the others are made.
TEST_F(RepairPlans, WhatWouldMakeAnotherErrorIsLeftOut) {
  const std::string hopeless = "<caption><b><p>x</p></b></caption>";
  const std::string page = kBegin + "<table>" + hopeless + "<tr><td>y</table><p>one <b>two</p>" + kEnd;
  const SourceRepair repair(dom_, page, {});
  EXPECT_EQ(repair.text(), kBegin + "<table>" + hopeless + "<tr><td>y</table><p>one <b>two</b></p>" + kEnd);
  ASSERT_FALSE(repair.left().empty());
  EXPECT_EQ(repair.settled().size(), 1u);
  for (const SourceRepair::Entry& entry : repair.left()) {
    EXPECT_FALSE(entry.reason.empty());
    EXPECT_EQ(page.substr(entry.offset, 3), repair.text().substr(entry.now, 3));
  }
}

// Nests and rows of errors: time grows with the page, and no call with its depth.
TEST_F(RepairPlans, HostilePagesAreRepairedInLinearTime) {
  const auto times = [](const char* piece, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) all += piece;
    return all;
  };
  for (const char* piece :
       {"</i> ", "<b>", "<b><p>", "<a>", "<a name=x><h2>", "<table><td>", "<ul><ul>", "<div>", "<li>", "<% ",
        "<font <?", "</br>", "<pre></pre", "${", "<?", "{{", "{%", "#if", "<b><div>x</b>"}) {
    for (const bool whole : {false, true}) {
      const std::string page = (whole ? kBegin : std::string()) + times(piece, 3000);
      const SourceRepair repair(dom_, page, {});
      EXPECT_EQ(applyEdits(page, repair.edits()), repair.text()) << piece;
    }
  }
}

TEST(SourceEdits, OfSeveralStepsAreOneList) {
  const std::string before = "one two three";
  EditedText text(before);
  text.apply({{0, 0, "<"}, {3, 1, "-"}, {13, 0, ">"}});
  EXPECT_EQ(text.text(), "<one-two three>");
  EXPECT_EQ(text.toOriginal(5), 4u);
  EXPECT_EQ(text.toOriginal(0), 0u);
  EXPECT_EQ(text.toOriginal(99), before.size());
  text.apply({{4, 2, "T"}, {14, 1, ""}});
  EXPECT_EQ(text.text(), "<oneTwo three");
  EXPECT_EQ(applyEdits(before, text.edits()), text.text());
  text.apply({});
  EXPECT_EQ(applyEdits("ab", {{1, 99, "x"}, {5, 1, "y"}}), "axy");
  EXPECT_EQ(EditedText("").edits().size(), 0u);
}

}  // namespace
}  // namespace zeldom40
