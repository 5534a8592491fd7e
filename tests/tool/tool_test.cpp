// Runs the built command-line host on small pages: results, messages and exit codes as a script sees them.
#include <string>

#include "tests/tool/ToolTest.h"

namespace {

class Tool : public ToolTest {
 protected:
  void SetUp() override {
    ToolTest::SetUp();
    place_ = ZELDOM40_SOURCE_DIR "/tests/pages";
  }
};

TEST_F(Tool, ResultsGoToStandardOutput) {
  const struct {
    const char* arguments;
    const char* input;
    const char* out;
  } cases[] = {
      {"tree -", "<P>a",
       "-: 4 bytes, 5 nodes, 0 with errors\n"
       "0..4  ZELROOT\n"
       "0..4    HTML (implied)\n"
       "0..4      BODY (implied)\n"
       "0..4        P\n"
       "3..4          \"a\" normal\n"},
      {"cat lf.html - lf.html", "<Q", "<P>one\n<P>two\n<Q<P>one\n<P>two\n"},
      {"cat --verify - -", "<P>", "2 pages, 3 bytes: 0 differences\n"},
      {"convert --newline crlf -", "a\nb\n", "a\r\nb\r\n"},
      {"convert --newline cr lf.html", "", "<P>one\r<P>two\r"},
      {"convert --from jis --to sjis kana_jis.html | cmp - kana_sjis.html", "", ""},
      {"convert --to euc kana_jis.html | cmp - kana_euc.html", "", ""},
      {"convert --to euc --codepage 1252 kana_sjis.html | cmp - kana_sjis.html", "", ""},
      {"dtd --matrix | wc -l", "", "148\n"},
  };
  for (const auto& each : cases) {
    const Result result = run(each.arguments, each.input);
    EXPECT_EQ(result.code, 0) << each.arguments << "\n" << result.err;
    EXPECT_EQ(result.out, each.out) << each.arguments;
  }
}

TEST_F(Tool, EndsWithTwoAndOneLineWhereItCannotDoTheJob) {
  const std::pair<const char*, const char*> cases[] = {
      {"cat no-such-file", "zeldom: no-such-file: No such file or directory\n"},
      {"dtd NOSUCH", "zeldom: NOSUCH: the DTD has no such element\n"},
      {"convert --to utf7 -", nullptr},
      {"", nullptr},
      {"--jsp-version 2 cat -", nullptr},
      {"cat - >/dev/full", nullptr},
  };
  for (const auto& [arguments, message] : cases) {
    const Result result = run(arguments, "x");
    EXPECT_EQ(result.code, 2) << arguments;
    EXPECT_EQ(result.out, "") << arguments;
    EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << arguments << "\n" << result.err;
    if (message) {
      EXPECT_EQ(result.err, message);
    }
  }
}

TEST_F(Tool, FindingsEndWithOneAndAFileThatCannotBeReadEndsNotTheRest) {
  EXPECT_EQ(run("tree unknown_tag.html").code, 1);
  const Result result = run("cat no-such-file lf.html");
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.out, "<P>one\n<P>two\n");
}

// A page must not be able to send commands to the terminal of whoever looks at it.
TEST_F(Tool, ShowsControlBytesAsEscapes) {
  const Result result = run("tree -a control_bytes.html");
  for (const char c : result.out) EXPECT_TRUE(c == '\n' || (c >= ' ' && c < 127)) << static_cast<int>(c);
  EXPECT_NE(result.out.find("a\\x00b\\x1b[2J&amp;\\x1c\\x1d\\xff"), std::string::npos) << result.out;
}

TEST_F(Tool, ColoursOnlyForATerminalThatWantsThem) {
  const auto onTerminal = [&](const std::string& environment) {
    return run("--version >/dev/null; " + environment + " script -qec '" ZELDOM40_TOOL " tree lf.html' /dev/null").out;
  };
  if (std::system("script -qec true /dev/null >/dev/null 2>&1") != 0) GTEST_SKIP() << "needs script(1) and a terminal";
  EXPECT_NE(onTerminal("env -u NO_COLOR").find('\033'), std::string::npos);
  EXPECT_EQ(onTerminal("NO_COLOR=1").find('\033'), std::string::npos);
  EXPECT_EQ(run("tree lf.html").out.find('\033'), std::string::npos);
}

TEST_F(Tool, JsonKeepsEveryByteOfAPageThatIsNotUtf8) {
  const Result result = run("tree --json control_bytes.html lf.html");
  EXPECT_NE(result.out.find(R"({"file":"control_bytes.html","bytes":)"), std::string::npos);
  EXPECT_NE(result.out.find(R"("strings":"bytes")"), std::string::npos);
  EXPECT_NE(result.out.find(R"("strings":"utf-8")"), std::string::npos);
  EXPECT_NE(result.out.find("\"source\":\"a\\u0000b\\u001b[2J&amp;\\u001c\\u001d\xC3\xBF\""), std::string::npos);
}

TEST_F(Tool, CheckReportsEveryWrongAttributeAtItsPlace) {
  const std::string pair =
      "<P>l1\r\nl2\r\n<!--METADATA type=\"DynamicData\" startspan\r\n<ZELX:LOOP zz=1><P ID=a ID=b yy></ZELX:LOOP>\r\n"
      "-->run<!--METADATA type=\"DynamicData\" endspan-->";
  const struct {
    std::string page;
    const char* places;
  } cases[] = {
      {"<P ALIGN=a ALIGN=b zz>", "-:1:20 INVALID_NAME\n-:1:12 VALUE_DUPLICATED\n"},
      {"<P yy yy>", "-:1:4 INVALID_NAME\n-:1:7 VALUE_DUPLICATED\n"},
      // Of an unknown element and of a SERVLET any attribute is fine, once.
      {"<Q1 yy yy><SERVLET NAME=n a=1 a=2>", "-:1:8 VALUE_DUPLICATED\n-:1:31 VALUE_DUPLICATED\n"},
      {pair, "-:3:1 INVALID_NAME\n-:3:1 INVALID_NAME\n-:3:1 VALUE_DUPLICATED\n"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(run("check - | sed -n 's/: .*ERR_ATTR_\\(.*\\)]/ \\1/p'", each.page).out, each.places) << each.page;
  }
}

TEST_F(Tool, DeepPagesNeedNoStack) {
  std::string page;
  for (int i = 0; i < 100000; ++i) page += "<B>";
  const char* limit = "ulimit -s 256";
  EXPECT_EQ(run("cat --verify -", page, limit).out, "1 page, 300000 bytes: 0 differences\n");
  EXPECT_EQ(run("tree --json - | tail -c 3", page, limit).out, "}]\n");
}

}  // namespace
