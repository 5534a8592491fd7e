// Runs check, fix and format: forms of the report, exit codes, and that a file keeps what no repair touched.
#include <filesystem>
#include <string>
#include <sys/stat.h>

#include "tests/tool/ToolTest.h"

namespace {

const std::string kBegin = "<HTML><HEAD><TITLE>t</TITLE></HEAD><BODY>\n";
const std::string kEnd = "</BODY></HTML>\n";
const std::string kBroken = kBegin + "<P>one</I></P>\n" + kEnd;
const std::string kRepaired = kBegin + "<P>one</P>\n" + kEnd;

class Repair : public ToolTest {
 protected:
  std::size_t files() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& file : std::filesystem::directory_iterator(place_)) ++count;
    return count;
  }
};

TEST_F(Repair, ReportsInTheFormThatIsAskedFor) {
  write("a.html", kBegin + "<P>one</I></P>\n<BLIP a=\"\x1b\">\n" + kEnd);
  const std::pair<const char*, const char*> cases[] = {
      {"text --excerpts",
       "a.html:2:7: severe: the end tag of <I> has no begin tag [ERR_ELEMENT_BEGIN_TAG_MISSING]\n"
       "    <P>one</I></P>\n"
       "          ^~~~\n"
       "a.html:3:1: warning: <BLIP> is no element of HTML 4.0 [ERR_ELEMENT_UNKNOWN]\n"
       "    <BLIP a=\"\\x1b\">\n"
       "    ^~~~~~~~~~~~~~~\n"
       "1 page: 1 severe, 1 warning\n"},
      {"gnu",
       "a.html:2.7-2.10: error: the end tag of <I> has no begin tag [ERR_ELEMENT_BEGIN_TAG_MISSING]\n"
       "a.html:3.1-3.12: warning: <BLIP> is no element of HTML 4.0 [ERR_ELEMENT_UNKNOWN]\n"},
      {"github | head -n 1",
       "::error file=a.html,line=2,col=7,endLine=2,endColumn=11,title=ERR_ELEMENT_BEGIN_TAG_MISSING::"
       "the end tag of <I> has no begin tag\n"},
      {"json | head -n 2 | tail -n 1",
       R"({"file":"a.html","line":2,"column":7,"endLine":2,"endColumn":11,"offset":48,"length":4,"severity":"severe",)"
       R"("id":"ERR_ELEMENT_BEGIN_TAG_MISSING","message":"the end tag of <I> has no begin tag"},)"
       "\n"},
  };
  for (const auto& [format, report] : cases) {
    EXPECT_EQ(run(std::string("check a.html --format ") + format).out, report) << format;
  }
  EXPECT_EQ(run("check --format json a.html").code, 1);
}

// A review tool recognises a finding in the next version of the page by its print, wherever it has moved to.
TEST_F(Repair, SarifNamesRulesRegionsAndPrintsThatStay) {
  write("a b.html", kBroken);
  write("c.html", "\n\n" + kBroken);
  const auto print = [&](const std::string& file) {
    return run("check --format sarif '" + file + "' | grep zeldomFinding").out;
  };
  EXPECT_NE(print("a b.html"), "");
  EXPECT_EQ(print("a b.html"), print("c.html"));
  const std::string log = run("check --format sarif 'a b.html'").out;
  for (const char* part : {"\"version\": \"2.1.0\"", "\"ruleId\": \"ERR_ELEMENT_BEGIN_TAG_MISSING\"",
                           "\"uri\": \"a%20b.html\"", "\"startColumn\": 7", "\"endColumn\": 11", "\"byteOffset\": 48",
                           "\"byteLength\": 4", "\"shortDescription\"", "\"level\": \"error\""}) {
    EXPECT_NE(log.find(part), std::string::npos) << part;
  }
}

TEST_F(Repair, ColumnsCountCharactersAndOffsetsTheBytesOfTheFile) {
  const std::string kanji = "\x1b$B$\"%=\x1b(B";
  const std::pair<std::string, const char*> cases[] = {
      {"<P>\xC3\xA4</I>", "\"column\":5,\"endLine\":1,\"endColumn\":9,\"offset\":5,"},
      {"<P>\xE4</I>", "\"column\":5,\"endLine\":1,\"endColumn\":9,\"offset\":4,"},
      {"<P>" + kanji + "</I>", "\"column\":6,\"endLine\":1,\"endColumn\":10,\"offset\":13,"},
      {"<META content='charset=EUC-JP'>\n<P>\x8E\xB1\xA4\xA2</I>",
       "\"column\":6,\"endLine\":2,\"endColumn\":10,\"offset\":39,"},
  };
  for (const auto& [page, place] : cases) {
    write("a", page);
    EXPECT_NE(run("check --format json a | grep BEGIN_TAG").out.find(place), std::string::npos)
        << run("check --format json a").out;
  }
}

TEST_F(Repair, ExitCodesTellWhatIsLeft) {
  write("clean", kRepaired);
  write("broken", kBroken);
  write("warned", kBegin + "<BLIP>\n" + kEnd);
  write("hopeless", kBegin + "<FRAME>\n" + kEnd);
  const std::pair<const char*, int> cases[] = {
      {"check --fail-on severe warned", 0},
      {"check --fail-on severe clean broken", 1},
      {"check broken nowhere", 2},
      {"fix --diff clean", 0},
      {"fix --diff broken", 1},
      {"fix --dry-run broken", 1},
      {"fix hopeless", 1},
      {"fix -i - <broken", 2},
      {"format broken", 0},
      {"format --dry-run broken", 1},
  };
  for (const auto& [arguments, code] : cases) EXPECT_EQ(run(arguments).code, code) << arguments;
  EXPECT_EQ(readFile(path("broken")), kBroken);
}

// The rest of each file has another form than what an export would give: it must come through as it is.
TEST_F(Repair, LinesThatNoRepairTouchedKeepTheirBytes) {
  using namespace std::string_literals;
  const std::string kanji = "$\"%=";
  const std::string euc = "<HTML><HEAD><META content='charset=euc-jp'><TITLE>t</TITLE></HEAD><BODY>\n";
  const std::string oldEscapes = "<P>\x1b$@" + kanji + "\x1b(J</P>\n";
  struct Case {
    const char* name;
    std::string before;
    std::string after;
  };
  const Case cases[] = {
      {"line ends", kBegin + "<P>one</I></P>\r\n<P>t\0o</P>\r"s + kEnd + "\x1a",
       kBegin + "<P>one</P>\r\n<P>t\0o</P>\r"s + kEnd + "\x1a"},
      {"ISO-2022-JP", kBegin + "<P>one</I></P>\n" + oldEscapes + kEnd, kBegin + "<P>one</P>\n" + oldEscapes + kEnd},
      {"EUC", euc + "<P>\xA4\xA2\x8E\xB1</I></P>\n" + kEnd, euc + "<P>\xA4\xA2\x8E\xB1</P>\n" + kEnd},
      {"unknown bytes", kBegin + "<P>\xA4\xFF\x80</I></P>\n\xC3\n" + kEnd,
       kBegin + "<P>\xA4\xFF\x80</P>\n\xC3\n" + kEnd},
  };
  for (const Case& each : cases) {
    write("a", each.before);
    const Result result = run("fix a");
    EXPECT_EQ(result.code, 0) << each.name << result.err;
    EXPECT_EQ(result.out, each.after) << each.name;
    EXPECT_EQ(run("fix -i a").code, 0);
    EXPECT_EQ(readFile(path("a")), each.after) << each.name;
    EXPECT_EQ(run("fix a").out, each.after) << each.name;
  }
}

TEST_F(Repair, InPlaceKeepsPermissionsAndLinks) {
  write("a", kBroken);
  std::filesystem::create_symlink("a", path("link"));
  ASSERT_EQ(chmod(path("a").c_str(), 0640), 0);
  EXPECT_EQ(run("fix -i link").out, "link: 1 repair, 1 line changed\n");
  EXPECT_EQ(readFile(path("a")), kRepaired);
  EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
  struct stat info;
  ASSERT_EQ(stat(path("a").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
  EXPECT_EQ(files(), 2u);
}

// A file size limit stands for a full disk where its signal is ignored, and for an interrupt where it is not.
TEST_F(Repair, InPlaceLosesNothingWhenTheWriteFails) {
  std::string page = kBroken;
  for (int i = 0; i < 20000; ++i) page += "<P>some text\n";
  for (const char* before : {"trap '' XFSZ && ulimit -f 8", "ulimit -c 0 && ulimit -f 8"}) {
    write("a", page);
    EXPECT_NE(run("fix -i a", "", before).code, 0) << before;
    EXPECT_EQ(readFile(path("a")), page) << before;
    EXPECT_EQ(files(), 1u) << before;
  }
}

// A tag that has no end holds the rest of the page; a repair would drop it.
TEST_F(Repair, ATagWithoutEndStays) {
  const std::string page = kBegin + "<P>one <A href=\"x>two</A>\n<P>three\n" + kEnd;
  write("a", page);
  for (const char* command : {"fix -i a", "fix -i --unsafe a"}) {
    const Result result = run(command);
    EXPECT_EQ(result.code, 1);
    EXPECT_NE(result.err.find("a:2:8: left: <A>: "), std::string::npos) << result.err;
    EXPECT_EQ(readFile(path("a")), page);
  }
}

// The line is that of the file as it is afterwards; what half a page leaves open is a hint, and no repair.
TEST_F(Repair, WhatIsDoneAndLeftIsTold) {
  write("a", kBegin + "<P>one <B><% x %></P>\n<TABLE>x</TABLE><P>two</I> three\n" + kEnd);
  EXPECT_EQ(
      run("fix --dry-run a").err,
      "a:2:8: left, unsafe: <B>: adds </B>, though server code stands in between [ERR_ELEMENT_END_TAG_MISSING]\n"
      "a:3:8: left, unsafe: text: moves it before the table [ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST]\n"
      "a:3:23: left, unsafe: <I>: drops </I>, though server code stands in between [ERR_ELEMENT_BEGIN_TAG_MISSING]\n");
  const Result unsafe = run("fix --unsafe -i a");
  EXPECT_NE(unsafe.err.find("a:2:8: unsafe: <B>: adds </B>"), std::string::npos) << unsafe.err;
  EXPECT_EQ(unsafe.out, "a: 3 repairs (3 unsafe), 2 lines changed\n");
  EXPECT_EQ(readFile(path("a")), kBegin + "<P>one <B><% x %></B></P>\nx<TABLE></TABLE><P>two three\n" + kEnd);
  write("top", "<div id=page>\n<h1>T</h1>\n");
  EXPECT_EQ(run("check top").out, "top:1:1: hint: <DIV> has no end tag [ERR_ELEMENT_END_TAG_MISSING]\n");
  EXPECT_EQ(run("check top").code, 0);
  EXPECT_EQ(run("fix --diff top").out, "");
  EXPECT_EQ(run("fix --unsafe -i top").code, 0);
}

}  // namespace
