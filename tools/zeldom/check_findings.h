// What is wrong with a page, in words and with its exact place.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dom/zeldom40.h"

namespace zeldom40::tool {

// One kind of finding. The id is its stable name; docs/errors.md has a section for each.
struct Rule {
  unsigned long bit;
  const char* id;
  const char* summary;
};

// All that check can report, lowest bit first.
std::span<const Rule> rules();
// Null for a bit that check does not report.
const Rule* ruleOf(unsigned long bit);

// A hint is what may well be right: half a page leaves open what another file closes. It is no fault of the page.
enum class Severity { kHint, kWarning, kSevere };

struct Finding {
  const Rule* rule = nullptr;
  Severity severity = Severity::kWarning;
  std::string message;     // one line, printable
  SourceMap::Range range;  // of the page's text; may be empty
  SourceMap::Position from;
  SourceMap::Position to;  // behind the last character
};

// The findings of a page in document order. `map` was made of it and is still valid.
std::vector<Finding> findErrors(Document* document, const SourceMap& map, std::string_view text);

}  // namespace zeldom40::tool
