// How tasks are timed.
#include "bench/peers/Measure.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

namespace zeldom40::bench {

namespace {

constexpr double kBatch = 0.001;
constexpr int kQuietRounds = 6;
constexpr int kFewestRounds = 3;

double now() {
  timespec time;
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// The best run of one task so far.
class Side {
 public:
  explicit Side(Task& task) : task_(task) {
    task_.run(1);
    times_ = static_cast<int>(std::clamp(kBatch / std::max(task_.run(1), 1e-9), 1.0, 1e5));
  }
  // True if it was clearly better than before.
  bool round() {
    const double seconds = task_.run(times_) / times_;
    const bool better = seconds < 0.99 * best_;
    best_ = std::min(best_, seconds);
    return better;
  }
  double best() const { return std::max(best_ - task_.overhead(), 1e-9); }

 private:
  Task& task_;
  int times_ = 1;
  double best_ = std::numeric_limits<double>::infinity();
};

}  // namespace

Times measure(Task& ours, Task* theirs, double budget) {
  const double end = now() + budget;
  Side first(ours);
  if (!theirs) {
    for (int quiet = 0, rounds = 0; quiet < kQuietRounds && (rounds < kFewestRounds || now() < end); ++rounds) {
      quiet = first.round() ? 0 : quiet + 1;
    }
    return {first.best(), 0};
  }
  Side second(*theirs);
  for (int quiet = 0, rounds = 0; quiet < kQuietRounds && (rounds < kFewestRounds || now() < end); ++rounds) {
    // Neither always comes after the other.
    bool better = (rounds % 2 ? second : first).round();
    better |= (rounds % 2 ? first : second).round();
    quiet = better ? 0 : quiet + 1;
  }
  return {first.best(), second.best()};
}

double apart(const std::function<double()>& work) {
  int ends[2];
  if (pipe(ends) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    const double result = work();
    _exit(write(ends[1], &result, sizeof result) == sizeof result ? 0 : 1);
  }
  close(ends[1]);
  double result = -1;
  if (child < 0 || read(ends[0], &result, sizeof result) != sizeof result) result = -1;
  close(ends[0]);
  if (child > 0) waitpid(child, nullptr, 0);
  return result;
}

double median(std::vector<double> values) {
  if (values.empty()) return std::nan("");
  std::sort(values.begin(), values.end());
  const std::size_t half = values.size() / 2;
  return values.size() % 2 ? values[half] : (values[half - 1] + values[half]) / 2;
}

}  // namespace zeldom40::bench
