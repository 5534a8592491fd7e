// `zeldom cat`: parse and write, and compare.
#include <algorithm>
#include <string>
#include <string_view>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/output.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

namespace {

constexpr std::size_t kShownBytes = 24;

std::size_t firstDifference(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  return static_cast<std::size_t>(
      std::mismatch(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(common), b.begin()).first - a.begin());
}

std::string side(std::string_view text, std::size_t offset) {
  if (offset == text.size()) return "(end)";
  return '"' + preview(text.substr(offset), kShownBytes, isUtf8(text)) + '"';
}

}  // namespace

ExitCode runCat(const CatOptions& options, const Settings& settings) {
  const Library library(settings);
  if (!library.usable()) return kFailed;
  Output out;
  ExitCode result = kFine;
  std::size_t pages = 0, total = 0, different = 0;
  for (const std::string& file : options.files) {
    const auto use = [&](Page& page, const std::string& bytes) {
      const std::string_view written = page.source();
      ++pages;
      total += bytes.size();
      if (!options.verify) {
        out << written;
        return kFine;
      }
      if (written == bytes) return kFine;
      ++different;
      const std::size_t offset = firstDifference(bytes, written);
      out.paint(Colour::kName, file) << ": differs at byte " << offset << ": read ";
      out.paint(Colour::kText, side(bytes, offset)) << ", wrote ";
      out.paint(Colour::kError, side(written, offset)) << "\n";
      return kFindings;
    };
    result = worse(result, withPage(library, file, Pairs::kGenerate, use));
  }
  if (options.verify) {
    out << pages << (pages == 1 ? " page, " : " pages, ") << total << " bytes: " << different
        << (different == 1 ? " difference\n" : " differences\n");
  }
  return out.flush() ? result : kFailed;
}

}  // namespace zeldom40::tool
