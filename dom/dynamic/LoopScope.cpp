// Which loop serves which property.
#include "dom/dynamic/LoopScope.h"

#include <algorithm>
#include <utility>

#include "dom/dynamic/PropertyPath.h"

namespace zeldom40 {

// --- LoopNest --------------------------------------------------------------------------------------------------------

void LoopNest::changeLength(std::size_t length, int by) {
  const auto entry = lengths_.try_emplace(length, 0).first;
  entry->second += by;
  if (entry->second == 0) lengths_.erase(entry);
}

void LoopNest::open(const std::string& loopProperty, bool isOuterOfTwo) {
  const std::size_t index = loops_.size();
  const std::string_view owner = ownerPath(loopProperty);
  const bool isArraySegment = arrayPartLength(loopProperty) == loopProperty.size();
  entries_[loopProperty].over.push_back(index);
  entries_[std::string(owner)].owned[isArraySegment].push_back(index);
  changeLength(loopProperty.size(), +1);
  changeLength(owner.size(), +1);
  loops_.push_back({loopProperty, owner.size(), isArraySegment, index + (isOuterOfTwo ? 1 : 0), {}});
  if (isLoopProperty(owner)) read(owner, index);
}

std::set<std::string> LoopNest::close() {
  const Loop done = std::move(loops_.back());
  loops_.pop_back();
  const auto leave = [this](const std::string& path, auto list) {
    const auto entry = entries_.find(path);
    list(entry->second).pop_back();
    changeLength(path.size(), -1);
    const Entry& e = entry->second;
    if (e.over.empty() && e.owned[0].empty() && e.owned[1].empty()) entries_.erase(entry);
  };
  leave(
      done.property, [](Entry & entry) -> auto& { return entry.over; });
  leave(
      done.property.substr(0, done.ownerLength), [&](Entry & entry) -> auto& {
        return entry.owned[done.isArraySegment];
      });
  return done.parallel;
}

void LoopNest::read(std::string_view path, std::size_t limit) {
  constexpr std::size_t kNone = std::string_view::npos;
  const std::size_t arrays = arrayPartLength(path);
  std::size_t serving = kNone;   // the innermost loop over a part of the path
  std::size_t parallel = kNone;  // the innermost loop with an owner in it that may take it along
  std::size_t held = kNone;      // the outermost loop that holds more of the path than the part at hand
  const auto raise = [](std::size_t& innermost, std::size_t index) {
    if (innermost == kNone || index > innermost) innermost = index;
  };
  for (std::size_t end = path.size();;) {
    const auto entry = lengths_.contains(end) ? entries_.find(std::string(path.substr(0, end))) : entries_.end();
    if (entry != entries_.end()) {
      const Entry& e = entry->second;
      for (const bool needsArray : {false, true}) {
        const auto& owned = e.owned[needsArray];
        if (needsArray && arrays <= end) continue;
        const auto behind = std::partition_point(owned.begin(), owned.end(), [&](std::size_t index) {
          return index < limit && (held == kNone || loops_[index].reach < held);
        });
        if (behind != owned.begin()) raise(parallel, *(behind - 1));
      }
      if (!e.over.empty()) raise(serving, e.over.back());
      for (const auto* list : {&e.over, &e.owned[0], &e.owned[1]}) {
        if (!list->empty()) held = std::min(held, list->front());
      }
    }
    if (end == 0) break;
    const std::size_t dot = path.rfind('.', end - 1);
    end = dot == std::string_view::npos ? 0 : dot;
  }
  if (parallel != kNone && (serving == kNone || serving < parallel)) loops_[parallel].parallel.emplace(path);
}

// --- LoopScope -------------------------------------------------------------------------------------------------------

void LoopScope::clear() { *this = LoopScope(); }

void LoopScope::init(const LoopScope* parent, const std::string& loopProperty, unsigned level,
                     const std::string& varPrefix, const std::set<std::string>& parallel) {
  parallelProperties_.clear();
  parent_ = parent;
  loopProperty_ = loopProperty;
  level_ = level;
  varPrefix_ = varPrefix;
  const std::size_t ownerLength = ownerPath(loopProperty_).size();
  unsigned next = 0;
  // KEPT: the number goes up even if the array has one already.
  for (const std::string& path : parallel) parallelProperties_.emplace(cutAtArray(path, ownerLength), next++);
}

std::string LoopScope::variable(char letter, int number) const {
  std::string name = varPrefix_ + '_' + letter + std::to_string(level_);
  if (number != kMain) name += '_' + std::to_string(number);
  return name;
}

// --- OpenLoops -------------------------------------------------------------------------------------------------------

void OpenLoops::change(const LoopScope& scope, bool enter) {
  if (!scope.isLoop()) return;
  const auto changePath = [&](const std::string& path, int number) {
    std::vector<Variable>& held = variables_[path];
    if (enter) {
      held.push_back({scope.level(), scope.elementVariable(number)});
    } else if (!held.empty()) {
      held.pop_back();
    }
    if (held.empty()) variables_.erase(path);
  };
  for (const auto& [path, number] : scope.parallelProperties()) changePath(path, static_cast<int>(number));
  changePath(scope.loopProperty(), LoopScope::kMain);
}

std::string OpenLoops::resolve(const std::string& path, unsigned level) const {
  const std::size_t length = arrayPartLength(path);
  // A path without array belongs to no loop.
  if (length == 0 || variables_.empty()) return path;
  const auto found = variables_.find(path.substr(0, length));
  if (found == variables_.end()) return path;
  for (auto held = found->second.rbegin(); held != found->second.rend(); ++held) {
    if (held->level <= level) return held->name + path.substr(length);
  }
  return path;
}

}  // namespace zeldom40
