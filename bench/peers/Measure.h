// Two tasks on the same page, timed in turns.
#pragma once

#include <functional>
#include <vector>

#include "bench/peers/Peer.h"

namespace zeldom40::bench {

struct Times {
  double ours = 0;  // seconds of the best run
  double theirs = 0;
};

// Runs both in turns, each for a millisecond or one run, and keeps the best of each: what else the machine does can
// only add to a run. Ends when six rounds have improved neither by a hundredth, or after `budget` seconds. `theirs` may
// be null.
Times measure(Task& ours, Task* theirs, double budget);

// Calls `work` in a process of its own, so that it finds the heap as it was when this program began; what it returned,
// or a negative number if it died.
double apart(const std::function<double()>& work);

double median(std::vector<double> values);

}  // namespace zeldom40::bench
