// What is written into people's files, and what is not: the guard, files that change meanwhile, files of other forms.
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/tool/ToolTest.h"
#include "tools/zeldom/fix_rewrite.h"

namespace {

using namespace std::string_literals;
using namespace zeldom40::tool;

const std::string kPage = "<HTML><HEAD><TITLE>t</TITLE></HEAD>\n<BODY><P>one\n  two</P></BODY></HTML>\n";

std::string replaced(std::string text, const std::string& what, const std::string& by) {
  return text.replace(text.find(what), what.size(), by);
}

class Write : public ToolTest {
 protected:
  struct Outcome {
    int code;
    std::string out;
    std::string err;
  };

  // Runs a change on the file "a", as fix and format do.
  Outcome rewrite(RewriteOptions options, const PageChange& change) {
    options.files = {path("a")};
    const Library library(zeldom40::tool::Settings{});
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const ExitCode code = rewriteFiles(options, library, change);
    std::fflush(stdout);
    const std::string out = testing::internal::GetCapturedStdout();
    return {code, out, testing::internal::GetCapturedStderr()};
  }

  // A change that puts `by` in the place of `what`.
  static PageChange change(GuardMode mode, const std::string& what, const std::string& by) {
    return [=](const Library&, const Page&, const SourceFile& file) {
      ChangeResult result;
      result.mode = mode;
      result.text = replaced(file.text, what, by);
      result.done = "changed";
      result.edits = {{file.text.find(what), what.size(), by}};
      return result;
    };
  }
};

RewriteOptions inPlace() {
  RewriteOptions options;
  options.inPlace = true;
  return options;
}

TEST_F(Write, WhatTheGuardStopsIsWrittenNowhere) {
  RewriteOptions diff, dryRun;
  diff.diff = true;
  dryRun.dryRun = true;
  const std::string page = replaced(kPage, "one", "<i>one</i>");
  for (const GuardMode mode : {GuardMode::kFormat, GuardMode::kFix}) {
    const PageChange wrong = change(mode, "<i>one</i>", "<i>on</i>");
    for (const RewriteOptions& options : {RewriteOptions{}, inPlace(), diff, dryRun}) {
      write("a", page);
      const Outcome outcome = rewrite(options, wrong);
      EXPECT_EQ(outcome.code, kFailed);
      EXPECT_EQ(outcome.out, "");
      EXPECT_EQ(outcome.err, "zeldom: " + path("a") + ": line 2, column " + (mode == GuardMode::kFix ? "10" : "13") +
                                 ": text would change, move, come or go; nothing is written\n");
      EXPECT_EQ(readFile(path("a")), page);
    }
  }
}

TEST_F(Write, WhatTheGuardPassesIsWritten) {
  write("a", kPage);
  const Outcome outcome = rewrite(inPlace(), change(GuardMode::kFormat, "\r\n  two", "\r\n    two"));
  EXPECT_EQ(outcome.code, kFine) << outcome.err;
  EXPECT_EQ(readFile(path("a")), replaced(kPage, "  two", "    two"));
  const PageChange sound = change(GuardMode::kFix, "</P>", "");
  // A text that is not what the edits make of the page.
  const PageChange untrue = [&](const Library& library, const Page& page, const SourceFile& file) {
    ChangeResult result = sound(library, page, file);
    result.text += "\r\n";
    return result;
  };
  EXPECT_EQ(rewrite(inPlace(), untrue).code, kFailed);
  EXPECT_EQ(rewrite(inPlace(), sound).code, kFine);
}

TEST_F(Write, WhatAnotherProgramWritesMeanwhileStays) {
  const std::string theirs = replaced(kPage, "one", "new one");
  const std::string sameSize = replaced(kPage, "one", "new");
  for (const std::string& other : {theirs, sameSize}) {
    write("a", kPage);
    std::filesystem::last_write_time(path("a"), std::filesystem::last_write_time(path("a")) - std::chrono::hours(1));
    const PageChange sound = change(GuardMode::kFormat, "\r\n  two", "\r\n    two");
    const Outcome outcome = rewrite(inPlace(), [&](const Library& lib, const Page& page, const SourceFile& file) {
      write("a", other);
      return sound(lib, page, file);
    });
    EXPECT_EQ(outcome.code, kFailed);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find("was changed by another program"), std::string::npos) << outcome.err;
    EXPECT_EQ(readFile(path("a")), other);
  }
}

std::string wide(std::string_view text, std::size_t unit, bool highFirst, std::string_view mark) {
  std::string bytes(mark);
  for (const char c : text) {
    const std::string nuls(unit - 1, '\0');
    bytes += highFirst ? nuls + c : c + nuls;
  }
  return bytes;
}

TEST_F(Write, FilesOfOtherFormsAreRefused) {
  const std::string broken = replaced(kPage, "one", "one</I>");
  std::string noise = "<P></I>";
  for (unsigned i = 0, x = 1; i < 4000; ++i) noise += static_cast<char>((x = x * 1664525 + 1013904223) >> 24);
  const std::pair<std::string, std::string> cases[] = {
      {wide(broken, 2, false, "\xFF\xFE"), "UTF-16, low byte first"},
      {wide(broken, 2, true, "\xFE\xFF"), "UTF-16, high byte first"},
      {wide(broken, 2, false, ""), "UTF-16, low byte first"},
      {wide(broken, 2, true, ""), "UTF-16, high byte first"},
      {wide(broken, 4, false, "\xFF\xFE\0\0"s), "UTF-32, low byte first"},
      {wide(broken, 4, true, ""), "UTF-32, high byte first"},
      {"\x89PNG\r\n\x1A\n" + broken, "a PNG picture"},
      {"%PDF-1.4\n" + broken, "a PDF document"},
      {"PK\3\4" + broken, "a ZIP archive"},
      {noise, "no text"},
  };
  for (const auto& [bytes, form] : cases) {
    write("a", bytes);
    for (const char* command : {"fix -i a", "fix a", "fix --diff a", "fix --dry-run a", "format -i a", "format a"}) {
      const Result result = run(command);
      EXPECT_EQ(result.code, 2) << command << form;
      EXPECT_EQ(result.out, "") << command << form;
      EXPECT_EQ(result.err, "zeldom: a: seems to be " + form + "; nothing is written\n") << command;
    }
    EXPECT_EQ(readFile(path("a")), bytes) << form;
    if (form.substr(0, 3) != "UTF") continue;
    EXPECT_EQ(run("check a").code, 2);
    EXPECT_EQ(run("check a").err,
              "zeldom: a: seems to be " + form + ", which cannot be checked; convert it to UTF-8\n");
  }
}

TEST_F(Write, OddBytesInAPageAreNoOtherForm) {
  const std::string broken = replaced(kPage, "one", "one</I>");
  for (const std::string& bytes :
       {"\xEF\xBB\xBF" + broken, "\0"s + broken, broken + "<P>a\0b\0c\0</P>"s, broken + "\x1b$B$\"%=\x1b(B\x1A",
        replaced(broken, "two", "\1\2\3\x7F"), replaced(broken, "two", "\xE4\xF6\xFC\x80\xFF"), "<P>PK</I>"s}) {
    write("a", bytes);
    EXPECT_NE(run("fix --diff a").code, 2) << bytes;
    EXPECT_NE(run("check a").code, 2) << bytes;
  }
}

TEST_F(Write, PagesDoNotRunTogetherOnStandardOutput) {
  write("a", kPage);
  write("b", kPage);
  std::filesystem::create_directory(path("folder"));
  const std::pair<const char*, int> cases[] = {
      {"fix a", 0},      {"fix a b", 2},    {"fix --diff a b", 0}, {"fix --dry-run a b", 0}, {"fix -i a b", 0},
      {"fix folder", 2}, {"format a b", 2}, {"format folder", 2},  {"format a a", 2},        {"fix - a", 2},
  };
  for (const auto& [arguments, code] : cases) {
    const Result result = run(arguments);
    EXPECT_EQ(result.code, code) << arguments << result.err;
    EXPECT_TRUE(code != 2 || result.out.empty()) << arguments;
  }
}

// Declarations of one page are no part of another, in whatever order they come.
TEST_F(Write, NoPageChangesWhatIsSaidOfAnother) {
  const std::string body = "<HTML><HEAD><TITLE>t</TITLE></HEAD><BODY><BLIP><LI>a</I></BLIP><P ZAP=1></BODY></HTML>\n";
  write("a",
        "<!DOCTYPE HTML PUBLIC \"x\" [<!ELEMENT BLIP - - (#PCDATA)><!ELEMENT LI - - (BLIP)>"
        "<!ATTLIST P ZAP CDATA #IMPLIED>]>\n" +
            body);
  write("b", body);
  for (const std::string command :
       {"check", "check --format gnu", "fix --diff", "tree", "tree -a", "cat", "format --diff --tags lower"}) {
    const Result a = run(command + " a"), b = run(command + " b");
    EXPECT_NE(a.out + a.err, b.out + b.err) << command;
    const auto expect = [&](const std::string& files, const std::vector<Result>& pages) {
      const Result all = run(command + files);
      std::string out, err;
      for (const Result& page : pages) out += page.out, err += page.err;
      EXPECT_EQ(all.out, out) << command << files;
      EXPECT_EQ(all.err, err) << command << files;
    };
    expect(" a b", {a, b});
    expect(" b a", {b, a});
    expect(" b a b a a b", {b, a, b, a, a, b});
  }
}

}  // namespace
