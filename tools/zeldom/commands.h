// The commands of the tool: what each is asked, and how it ends.
#pragma once

#include <string>
#include <vector>

#include "dom/zeldom40.h"

namespace zeldom40::tool {

// What the process returns. With several files the worst one counts.
enum ExitCode {
  kFine = 0,
  kFindings = 1,  // the job was done, and there is something to look at: errors in a page, a difference
  kFailed = 2     // the job could not be done; one line on stderr says why
};

inline ExitCode worse(ExitCode a, ExitCode b) { return a > b ? a : b; }

// What the options that several commands share say.
struct Settings {
  DOM::JSPVersion version = DOM::JSP_VERSION_0;
  std::string types;  // a file of Java types; empty: none
};

struct TreeOptions {
  std::vector<std::string> files;
  bool attributes = false;
  bool json = false;
};

struct CatOptions {
  std::vector<std::string> files;
  bool verify = false;
};

struct ConvertOptions {
  std::vector<std::string> files;
  CodeConv::Charset from = CodeConv::CHARSET_AUTO;
  CodeConv::Charset to = CodeConv::CHARSET_AUTO;
  CodeConv::Newline newline = CodeConv::NEWLINE_AUTO;
  int codepage = 932;
};

struct DtdOptions {
  std::string element;  // empty: an overview of all
  bool matrix = false;
  bool json = false;
};

enum class CheckFormat { kText, kGnu, kJson, kSarif, kGitHub };

struct CheckOptions {
  std::vector<std::string> files;
  CheckFormat format = CheckFormat::kText;
  bool severeOnly = false;  // warnings are shown, but are no findings
  bool excerpts = false;    // also where no terminal shows them
  int codepage = 0;         // 0: guessed for each page
};

// What fix and format do with their result.
struct RewriteOptions {
  std::vector<std::string> files;
  bool inPlace = false;
  bool diff = false;
  bool dryRun = false;
  int codepage = 0;
};

struct FixOptions {
  RewriteOptions rewrite;
  bool unsafe = false;
};

enum class TagCase { kKeep, kLower, kUpper };

struct FormatOptions {
  RewriteOptions rewrite;
  int indent = 2;
  int columns = 100;
  TagCase tags = TagCase::kKeep;
  bool verbose = false;
};

struct RuntimeOptions {
  std::vector<std::string> files;
  bool keep = false;  // the pairs, as a save writes them
  int codepage = 0;
};

// Of the commands that list something of each page.
struct ListOptions {
  std::vector<std::string> files;
  bool json = false;
};

// Prints each page as a tree. Findings: a node with an error bit.
ExitCode runTree(const TreeOptions& options, const Settings& settings);
// Parses and writes each page. Findings (with `verify`): what is written differs from what was read.
ExitCode runCat(const CatOptions& options, const Settings& settings);
// Passes each file through the code conversion, import and export.
ExitCode runConvert(const ConvertOptions& options);
// Prints what the built-in DTD says.
ExitCode runDtd(const DtdOptions& options);
// Prints what is wrong with each page. Findings: an error, a severe one with `severeOnly`.
ExitCode runCheck(const CheckOptions& options, const Settings& settings);
// Repairs each page. Findings: severe errors that remain; with `diff` or `dryRun`, a page that would change.
ExitCode runFix(const FixOptions& options, const Settings& settings);
// Lays each page out anew. Findings: with `diff` or `dryRun` a page that would change, and a page that stays as it is.
ExitCode runFormat(const FormatOptions& options, const Settings& settings);
// Writes each page as a server gets it.
ExitCode runRuntime(const RuntimeOptions& options, const Settings& settings);
// Lists the beans that each page knows.
ExitCode runBeans(const ListOptions& options, const Settings& settings);
// Lists the metadata pairs of each page. Findings: run-time text that the page does not generate today.
ExitCode runPairs(const ListOptions& options, const Settings& settings);

}  // namespace zeldom40::tool
