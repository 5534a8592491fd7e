// Repairs a page's source pass by pass.
#include <algorithm>
#include <limits>
#include <utility>

#include "dom/html/ParsedPage.h"
#include "dom/html/RepairPlanner.h"

namespace zeldom40 {

namespace {

using Kind = RepairPlanner::Kind;

// Each pass settles something, and what it settles may show what it hid. Pages of people need two or three.
constexpr int kMostPasses = 16;

int logarithm(std::size_t n) {
  int log = 0;
  while (n >>= 1) ++log;
  return log;
}

// The largest part of the plans that a few checks show to be sound: who is next to something new goes first, and what
// is left is halved.
RepairPlanner::Verdict sound(const RepairPlanner& planner, std::vector<std::size_t> plans, std::vector<bool>& failed) {
  const int rounds = std::max(logarithm(plans.size()), 1);
  for (int round = 0; round < 2 * rounds && !plans.empty(); ++round) {
    RepairPlanner::Verdict verdict = planner.verify(plans);
    if (verdict.isSound) return verdict;
    for (const std::size_t plan : verdict.failed) failed[plan] = true;
    plans = std::move(verdict.plans);
    plans.erase(std::remove_if(plans.begin(), plans.end(), [&](std::size_t plan) { return failed[plan]; }),
                plans.end());
    if (round >= rounds) plans.resize((plans.size() + 1) / 2);
  }
  return {};
}

}  // namespace

SourceRepair::SourceRepair(DOM* dom, const std::string& source, Options options)
    : options_(std::move(options)), edited_(source) {
  for (int i = 0; i < kMostPasses && pass(dom); ++i) {
  }
}

void SourceRepair::dropBarred(const std::vector<RepairPlanner::Plan>& plans, std::vector<std::size_t>& wanted,
                              std::vector<bool>& isBarred) const {
  for (const std::size_t barred : options_.barred) {
    const auto distance = [&](std::size_t plan) {
      std::size_t least = std::numeric_limits<std::size_t>::max();
      for (const SourceEdit& edit : plans[plan].edits) {
        const std::size_t begin = edited_.toOriginal(edit.offset);
        const std::size_t end = edited_.toOriginal(edit.offset + edit.length);
        least = std::min(least, barred < begin ? begin - barred : barred > end ? barred - end : 0);
      }
      return least;
    };
    const auto nearest = std::min_element(wanted.begin(), wanted.end(),
                                          [&](std::size_t a, std::size_t b) { return distance(a) < distance(b); });
    if (nearest == wanted.end()) return;
    isBarred[*nearest] = true;
    wanted.erase(nearest);
  }
}

// True if something was repaired.
bool SourceRepair::pass(DOM* dom) {
  const ParsedPage parsed(dom, edited_.text());
  const RepairPlanner planner(parsed.document(), options_.guardWide);
  std::vector<std::size_t> wanted;
  const std::vector<RepairPlanner::Plan>& plans = planner.plans();
  for (std::size_t i = 0; i < plans.size(); ++i) {
    if (plans[i].kind == RepairPlanner::SAFE || (options_.unsafe && plans[i].kind == RepairPlanner::UNSAFE))
      wanted.push_back(i);
  }
  std::vector<bool> failed(plans.size(), false);
  std::vector<bool> barred(plans.size(), false);
  dropBarred(plans, wanted, barred);
  RepairPlanner::Verdict verdict;
  if (planner.source() == edited_.text()) verdict = sound(planner, std::move(wanted), failed);
  left_.clear();
  for (std::size_t i = 0; i < plans.size(); ++i) {
    const RepairPlanner::Plan& plan = plans[i];
    const bool done = std::binary_search(verdict.plans.begin(), verdict.plans.end(), i);
    for (const std::size_t f : plan.findings) {
      const RepairPlanner::Finding& finding = planner.findings()[f];
      Entry entry;
      entry.error = finding.error;
      entry.name = finding.node->getName();
      entry.now = finding.offset == SourceMap::NOWHERE ? 0 : finding.offset;
      entry.offset = edited_.toOriginal(entry.now);
      const bool isOut = failed[i] || barred[i];
      entry.kind = isOut ? RepairPlanner::UNREPAIRED : plan.kind;
      entry.reason = barred[i]   ? "another reader of the page sees something else there"
                     : failed[i] ? "a repair would make another error"
                                 : plan.reason;
      entry.isHint =
          planner.isHalfPage() && (finding.error & (ERR_ELEMENT_BEGIN_TAG_MISSING | ERR_ELEMENT_END_TAG_MISSING));
      (done ? settled_ : left_).push_back(std::move(entry));
    }
  }
  edited_.apply(verdict.edits);
  return !verdict.edits.empty();
}

}  // namespace zeldom40
