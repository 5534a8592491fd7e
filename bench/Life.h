// All that is done to one page of the growth table, phase by phase.
#pragma once

#include <cstddef>
#include <string>

namespace zeldom40::bench {

enum Phase {
  PARSE,
  WRITE,
  RUNTIME,
  CLONE,
  RELEASE,
  ERRORS,
  ADJUST,
  CORRECT,
  ADJUST_REPAIRED,
  RECORD,
  UNDO,
  INDICES,
  PHASES
};
constexpr const char* kPhaseNames[PHASES] = {"parse",       "write",      "run-time",    "clone",
                                             "release",     "error list", "adjustNodes", "correctError",
                                             "then adjust", "record",     "undo",        "indices"};
constexpr std::size_t kSmallStack = 256 * 1024;

struct Life {
  double seconds[PHASES] = {};  // processor time; 0 for what the page has no use for
  long depth = 0;               // levels above the last node
  bool same = false;            // the page came back as it was read, and undo restored it
  bool started = false;         // the thread could be made
};

// Leads a page through all phases in a thread with a stack of kSmallStack bytes. Under callgrind, each phase whose bit
// is set in `counted` is dumped with its instructions.
Life live(const char* documentType, const std::string& text, unsigned counted = 0);

}  // namespace zeldom40::bench
