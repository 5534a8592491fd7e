// zeldom: shows on the command line what the library does with pages. Reads the options and calls a command.
#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <new>
#include <string>
#include <system_error>
#include <vector>

#include <CLI/CLI.hpp>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/page.h"

namespace {

using namespace zeldom40;
using namespace zeldom40::tool;

const std::map<std::string, CodeConv::Charset> kCharsets = {{"auto", CodeConv::CHARSET_AUTO},
                                                            {"sjis", CodeConv::CHARSET_SJIS},
                                                            {"jis", CodeConv::CHARSET_JIS},
                                                            {"euc", CodeConv::CHARSET_EUC},
                                                            {"none", CodeConv::CHARSET_NONE}};
const std::map<std::string, CodeConv::Newline> kNewlines = {{"auto", CodeConv::NEWLINE_AUTO},
                                                            {"crlf", CodeConv::NEWLINE_CRLF},
                                                            {"lf", CodeConv::NEWLINE_LF},
                                                            {"cr", CodeConv::NEWLINE_CR}};
const std::map<std::string, CheckFormat> kFormats = {{"text", CheckFormat::kText},
                                                     {"gnu", CheckFormat::kGnu},
                                                     {"json", CheckFormat::kJson},
                                                     {"sarif", CheckFormat::kSarif},
                                                     {"github", CheckFormat::kGitHub}};
const std::map<std::string, TagCase> kTagCases = {
    {"keep", TagCase::kKeep}, {"lower", TagCase::kLower}, {"upper", TagCase::kUpper}};
const std::map<std::string, bool> kSeverities = {{"any", false}, {"severe", true}};
const std::map<std::string, DOM::JSPVersion> kVersions = {{"0", DOM::JSP_VERSION_0}, {"1", DOM::JSP_VERSION_1}};

// An option whose words are the keys of `words`.
template <typename Value>
void addChoice(CLI::App* app, const std::string& name, Value* value, const std::map<std::string, Value>& words,
               const std::string& help) {
  std::string list;
  for (const auto& word : words) list += (list.empty() ? "" : "|") + word.first;
  app->add_option_function<std::string>(
         name, [value, &words](const std::string& word) { *value = words.at(word); }, help)
      ->check(CLI::Validator(
          [&words, list](const std::string& word) {
            return words.count(word) ? std::string() : "\"" + word + "\" is none of " + list;
          },
          ""))
      ->type_name(list);
}

void addFiles(CLI::App* command, std::vector<std::string>* files) {
  command->add_option("FILE", *files, "Files to read; - is standard input")->required()->type_name("");
}

void addCodepage(CLI::App* command, int* codepage) {
  command
      ->add_option("--codepage", *codepage, "Code page (0, the default: 932 for Japanese, 65001 for UTF-8, else 1252)")
      ->check(CLI::NonNegativeNumber);
}

void addRewriteOptions(CLI::App* command, RewriteOptions* options) {
  addFiles(command, &options->files);
  CLI::Option* inPlace = command->add_flag("-i,--in-place", options->inPlace, "Change the files themselves");
  CLI::Option* diff = command->add_flag("--diff", options->diff, "Print a unified diff and change nothing");
  command->add_flag("--dry-run", options->dryRun, "Say which files would change, and change nothing")->excludes(diff);
  inPlace->excludes(diff);
  addCodepage(command, &options->codepage);
  // Pages that run together on standard output are of no use to anybody.
  command->parse_complete_callback([options] {
    const bool prints = !options->inPlace && !options->diff && !options->dryRun;
    std::error_code unknown;
    const bool several = options->files.size() > 1 || std::filesystem::is_directory(options->files.front(), unknown);
    if (prints && several) {
      throw CLI::ValidationError("more than one file needs one of --in-place, --diff and --dry-run");
    }
  });
}

void addTypes(CLI::App* command, std::string* types) {
  command->add_option("--types", *types, "JSON file of Java types, for the run-time text that is generated (see below)")
      ->type_name("JSON");
}

// What a command says with --help beyond its options.
constexpr char kExitHelp[] =
    "Exits with 0 when all is fine, 1 with findings or differences, 2 when it could not do the job.";

int run(int argc, char** argv) {
  CLI::App app("Reads HTML, JSP and SSI pages into a tree and writes them back byte for byte.", "zeldom");
  app.set_version_flag("--version", "zeldom " ZELDOM40_VERSION, "Print the version and exit");
  app.footer(kExitHelp);
  app.require_subcommand(1);
  app.fallthrough();
  Settings settings;
  addChoice(&app, "--jsp-version", &settings.version, kVersions,
            "Which server tags exist: the jsp: and qdx: names (0, the default) or the older bean tags (1)");

  std::function<ExitCode()> command;

  TreeOptions tree;
  CLI::App* treeCommand = app.add_subcommand("tree", "Print each page as a tree, with byte ranges and errors");
  addFiles(treeCommand, &tree.files);
  treeCommand->add_flag("-a,--attributes", tree.attributes, "Show attributes too");
  treeCommand->add_flag("--json", tree.json, "Print JSON: a list of files, each with a flat list of its nodes");
  treeCommand->callback([&] { command = [&] { return runTree(tree, settings); }; });

  CatOptions cat;
  CLI::App* catCommand = app.add_subcommand("cat", "Parse each page and write it");
  addFiles(catCommand, &cat.files);
  catCommand->add_flag("--verify", cat.verify, "Write nothing, but compare with the input and report differences");
  catCommand->callback([&] { command = [&] { return runCat(cat, settings); }; });

  CheckOptions check;
  CLI::App* checkCommand = app.add_subcommand("check", "Report what is wrong with pages");
  addFiles(checkCommand, &check.files);
  addChoice(checkCommand, "--format", &check.format, kFormats, "Form of the report (text)");
  addChoice(checkCommand, "--fail-on", &check.severeOnly, kSeverities, "Which findings make the exit code 1 (any)");
  checkCommand->add_flag("--excerpts", check.excerpts, "Show the lines of the page even if no terminal shows them");
  addCodepage(checkCommand, &check.codepage);
  checkCommand->callback([&] { command = [&] { return runCheck(check, settings); }; });

  FixOptions fix;
  CLI::App* fixCommand = app.add_subcommand("fix", "Repair pages; what no error points at keeps its bytes");
  addRewriteOptions(fixCommand, &fix.rewrite);
  fixCommand->add_flag("--unsafe", fix.unsafe,
                       "Also make repairs that may change what the page means; each is named on standard error");
  fixCommand->callback([&] { command = [&] { return runFix(fix, settings); }; });

  FormatOptions format;
  CLI::App* formatCommand = app.add_subcommand(
      "format", "Lay out the source of pages anew: white space only, where no reader of a page sees it");
  addRewriteOptions(formatCommand, &format.rewrite);
  formatCommand->add_option("--indent", format.indent, "Blanks for each level")
      ->capture_default_str()
      ->check(CLI::Range(0, 100));
  formatCommand
      ->add_option("--columns", format.columns,
                   "Lines that are longer break between blocks, and at blanks of running text")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  addChoice(formatCommand, "--tags", &format.tags, kTagCases, "Case of the names of HTML tags (keep)");
  formatCommand->add_flag("--verbose", format.verbose, "Say on stderr what was left alone, and why");
  formatCommand->callback([&] { command = [&] { return runFormat(format, settings); }; });

  RuntimeOptions runtime;
  CLI::App* runtimeCommand = app.add_subcommand("runtime", "Write each page as its server gets it");
  addFiles(runtimeCommand, &runtime.files);
  runtimeCommand->add_flag("--keep", runtime.keep, "Keep the comments that hold the author's side");
  addCodepage(runtimeCommand, &runtime.codepage);
  runtimeCommand->callback([&] { command = [&] { return runRuntime(runtime, settings); }; });

  ListOptions pairs;
  CLI::App* pairsCommand = app.add_subcommand(
      "pairs",
      "List the metadata pairs of each page, and whether the run-time text of each is current, different from what is "
      "generated today, empty, kept (nothing here can generate it) or new (not yet a pair)");
  addFiles(pairsCommand, &pairs.files);
  pairsCommand->add_flag("--json", pairs.json, "Print JSON: a list of files, each with a list of its pairs");
  pairsCommand->callback([&] { command = [&] { return runPairs(pairs, settings); }; });

  ListOptions beans;
  CLI::App* beansCommand = app.add_subcommand("beans", "List the beans that each page knows: names and classes");
  addFiles(beansCommand, &beans.files);
  beansCommand->add_flag("--json", beans.json, "Print JSON: a list of files, each with a list of its beans");
  beansCommand->callback([&] { command = [&] { return runBeans(beans, settings); }; });

  ConvertOptions convert;
  CLI::App* convertCommand = app.add_subcommand("convert", "Write files in another charset or with other line ends");
  addFiles(convertCommand, &convert.files);
  addChoice(convertCommand, "--from", &convert.from, kCharsets, "Charset of the input (auto: detected)");
  addChoice(convertCommand, "--to", &convert.to, kCharsets, "Charset of the output (auto: that of the input)");
  addChoice(convertCommand, "--newline", &convert.newline, kNewlines,
            "Line ends of the output (auto: those of the input)");
  convertCommand->add_option("--codepage", convert.codepage, "Code page; charsets are converted under 932 only")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  convertCommand->callback([&] { command = [&] { return runConvert(convert); }; });

  DtdOptions dtd;
  CLI::App* dtdCommand = app.add_subcommand("dtd", "Print what the built-in DTD says, of all elements or of one");
  CLI::Option* element = dtdCommand->add_option("ELEMENT", dtd.element, "An element's name")->type_name("");
  dtdCommand->add_flag("--matrix", dtd.matrix, "Print for each pair of elements whether the one may hold the other")
      ->excludes(element);
  dtdCommand->add_flag("--json", dtd.json, "Print JSON");
  dtdCommand->callback([&] { command = [&] { return runDtd(dtd); }; });

  for (CLI::App* sub : app.get_subcommands({})) sub->footer(kExitHelp);
  for (CLI::App* sub : {catCommand, fixCommand, formatCommand, runtimeCommand, pairsCommand, beansCommand}) {
    addTypes(sub, &settings.types);
    sub->footer(std::string(kTypesHelp) + "\n\n" + kExitHelp);
  }

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // Help and version are no errors and print themselves.
    if (error.get_exit_code() == 0) return app.exit(error);
    std::fprintf(stderr, "zeldom: %s (see zeldom --help)\n", error.what());
    return kFailed;
  }
  const ExitCode result = command();
  if (std::fflush(stdout) != 0) {
    complain("standard output", "cannot be written");
    return kFailed;
  }
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    zeldom40::tool::complain("zeldom", "out of memory");
  } catch (const std::exception& error) {
    zeldom40::tool::complain("zeldom", error.what());
  }
  return zeldom40::tool::kFailed;
}
