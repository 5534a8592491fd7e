// `zeldom check`: what is wrong with pages, with exact places, for readers and for programs.
#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include <nlohmann/json.hpp>

#include "tools/zeldom/check_findings.h"
#include "tools/zeldom/check_sarif.h"
#include "tools/zeldom/commands.h"
#include "tools/zeldom/output.h"
#include "tools/zeldom/page.h"
#include "tools/zeldom/source_file.h"
#include "tools/zeldom/source_form.h"

namespace zeldom40::tool {

namespace {

// An excerpt shows so many bytes before the place and at most so many in all.
constexpr std::size_t kBefore = 60;
constexpr std::size_t kShown = 100;

// Blanks as wide as `shown`: East Asian characters take two columns, as the blank of their own does.
std::string blanksFor(std::string_view shown) {
  std::string out;
  for (std::size_t i = 0; i < shown.size();) {
    const auto lead = static_cast<unsigned char>(shown[i]);
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    const bool halfWidth = shown.substr(i, 2) == "\xEF\xBD" || shown.substr(i, 2) == "\xEF\xBE";
    out += length == 3 && shown.substr(i, 2) >= "\xE2\xBA" && !halfWidth ? "\xE3\x80\x80" : " ";
    i += length;
  }
  return out;
}

// Bytes of a line as one line that a terminal shows and does not obey; quotes stay as they are.
std::string printable(std::string_view text, bool utf8) {
  std::string out;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t quote = std::min(text.find_first_of("\"\\\t", i), text.size());
    out += preview(text.substr(i, quote - i), text.size(), utf8);
    if (quote < text.size()) out += text[quote] == '\t' ? ' ' : text[quote];
    i = quote + 1;
  }
  return out;
}

class Printer {
 public:
  Printer(const CheckOptions& options, Output& out)
      : options_(options),
        out_(out),
        excerpts_(options.excerpts || (options.format == CheckFormat::kText && isatty(STDOUT_FILENO))) {
    if (options.format == CheckFormat::kJson) out_ << "[";
  }

  void print(const SourceFile& file, const SourceMap& map, const std::vector<Finding>& findings) {
    ++pages_;
    if (options_.format == CheckFormat::kSarif) sarif_.add(file, map, findings);
    const bool utf8 = isUtf8(file.text);
    for (const Finding& finding : findings) {
      ++counts_[static_cast<std::size_t>(finding.severity)];
      switch (options_.format) {
        case CheckFormat::kText:
          printText(file.path, finding);
          if (excerpts_) printExcerpt(file, map, finding, utf8);
          break;
        case CheckFormat::kGnu:
          out_ << file.path << ":" << place(finding.from, ".") << "-" << place(last(finding), ".") << ": "
               << level(finding, {"note", "warning", "error"}) << ": " << finding.message << " [" << finding.rule->id
               << "]\n";
          break;
        case CheckFormat::kJson:
          printJson(file, map, finding);
          break;
        case CheckFormat::kGitHub:
          printGitHub(file.path, finding);
          break;
        case CheckFormat::kSarif:
          break;
      }
    }
  }

  void finish() {
    if (options_.format == CheckFormat::kJson) out_ << (first_ ? "]\n" : "\n]\n");
    if (options_.format == CheckFormat::kSarif) out_ << sarif_.text();
    if (excerpts_) {
      const auto [hints, warnings, severe] = counts_;
      out_ << pages_ << (pages_ == 1 ? " page: " : " pages: ") << severe << " severe, " << warnings
           << (warnings == 1 ? " warning" : " warnings");
      if (hints > 0) out_ << ", " << hints << (hints == 1 ? " hint" : " hints");
      out_ << "\n";
    }
  }

 private:
  static std::string place(SourceMap::Position position, const char* separator) {
    return std::to_string(position.line) + separator + std::to_string(position.column);
  }
  // The last character itself, as that form wants it.
  static SourceMap::Position last(const Finding& finding) {
    const bool inside = !finding.range.isEmpty() && finding.to.column > 1;
    return {finding.to.line, finding.to.column - (inside ? 1 : 0)};
  }
  // The word of a form for hints, warnings and severe errors.
  using Levels = std::array<const char*, 3>;
  static constexpr Levels kOwn = {"hint", "warning", "severe"};
  static const char* level(const Finding& finding, const Levels& levels) {
    return levels[static_cast<std::size_t>(finding.severity)];
  }

  void printText(const std::string& path, const Finding& finding) {
    out_.paint(Colour::kName, path + ":" + place(finding.from, ":")) << ": ";
    out_.paint(finding.severity == Severity::kSevere ? Colour::kError : Colour::kText, level(finding, kOwn))
        << ": " << finding.message;
    out_.paint(Colour::kFaint, std::string(" [") + finding.rule->id + "]") << "\n";
  }

  void printExcerpt(const SourceFile& file, const SourceMap& map, const Finding& finding, bool utf8) {
    const std::string_view text = file.text;
    std::size_t begin = map.getOffset({finding.from.line, 1});
    if (begin == SourceMap::NOWHERE) return;
    // A cut must not split a character: columns tell where they begin.
    if (finding.from.column > kBefore) begin = map.getOffset({finding.from.line, finding.from.column - kBefore});
    const std::size_t lineEnd = std::min(text.find_first_of("\r\n", finding.range.begin), text.size());
    const std::size_t end = std::min(lineEnd, std::max(begin + kShown, finding.range.begin + 1));
    const std::size_t marked = std::max(std::min(finding.range.end, end), finding.range.begin);
    const std::string before = printable(text.substr(begin, finding.range.begin - begin), utf8);
    const std::string there = printable(text.substr(finding.range.begin, marked - finding.range.begin), utf8);
    out_ << "    " << before;
    out_.paint(Colour::kError, there) << printable(text.substr(marked, end - marked), utf8) << "\n    "
                                      << blanksFor(before);
    out_.paint(Colour::kError, "^" + std::string(there.size() > 1 ? there.size() - 1 : 0, '~')) << "\n";
  }

  void printJson(const SourceFile& file, const SourceMap& map, const Finding& finding) {
    const SourceMap::Range bytes = map.toFile(finding.range);
    const nlohmann::ordered_json json{{"file", jsonText(file.path, true)},
                                      {"line", finding.from.line},
                                      {"column", finding.from.column},
                                      {"endLine", finding.to.line},
                                      {"endColumn", finding.to.column},
                                      {"offset", bytes.begin},
                                      {"length", bytes.length()},
                                      {"severity", level(finding, kOwn)},
                                      {"id", finding.rule->id},
                                      {"message", jsonText(finding.message, true)}};
    out_ << (first_ ? "\n" : ",\n") << json.dump();
    first_ = false;
  }

  // In a workflow command some characters end a value or a line.
  static std::string escaped(std::string_view text, bool property) {
    std::string out;
    for (const char c : text) {
      switch (c) {
        case '%':
          out += "%25";
          break;
        case '\r':
          out += "%0D";
          break;
        case '\n':
          out += "%0A";
          break;
        case ':':
          out += property ? "%3A" : ":";
          break;
        case ',':
          out += property ? "%2C" : ",";
          break;
        default:
          out += c;
      }
    }
    return out;
  }

  void printGitHub(const std::string& path, const Finding& finding) {
    out_ << "::" << level(finding, {"notice", "warning", "error"}) << " file=" << escaped(path, true)
         << ",line=" << finding.from.line << ",col=" << finding.from.column << ",endLine=" << finding.to.line
         << ",endColumn=" << finding.to.column << ",title=" << finding.rule->id
         << "::" << escaped(finding.message, false) << "\n";
  }

  const CheckOptions& options_;
  Output& out_;
  bool excerpts_;
  SarifLog sarif_;
  std::size_t pages_ = 0;
  std::array<std::size_t, 3> counts_{};
  bool first_ = true;
};

}  // namespace

ExitCode runCheck(const CheckOptions& options, const Settings& settings) {
  const Library library(settings);
  if (!library.usable()) return kFailed;
  Output out;
  Printer printer(options, out);
  ExitCode result = kFine;
  for (const std::string& path : options.files) {
    const auto use = [&](SourceFile& file, const Page& page) {
      if (const std::string form = wideForm(file.bytes); !form.empty()) {
        complain(path, "seems to be " + form + ", which cannot be checked; convert it to UTF-8");
        return kFailed;
      }
      // Some pairs come back otherwise than they were read. Findings then stand where a save will put them.
      if (const std::string_view now = page.source(); now != file.text) file.bytes = file.text = now;
      const SourceMap map(page.document(), file.bytes.data(), file.bytes.size(), file.charset);
      const std::vector<Finding> findings = findErrors(page.document(), map, file.text);
      printer.print(file, map, findings);
      const bool fails = std::any_of(findings.begin(), findings.end(), [&](const Finding& finding) {
        return finding.severity >= (options.severeOnly ? Severity::kSevere : Severity::kWarning);
      });
      return fails ? kFindings : kFine;
    };
    result = worse(result, withSource(library, path, options.codepage, Pairs::kKeep, use));
  }
  printer.finish();
  return out.flush() ? result : kFailed;
}

}  // namespace zeldom40::tool
