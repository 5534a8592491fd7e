// Which loop serves which property.
#include "dom/dynamic/LoopScope.h"

#include "dom/dynamic/PropertyPath.h"

namespace zeldom40 {

// --- LoopAncestors ---------------------------------------------------------------------------------------------------

void LoopAncestors::change(std::string_view loopProperty, int by) {
  changeEntry(loopProperty, by);
  changeEntry(ownerPath(loopProperty), by);
}

void LoopAncestors::changeEntry(std::string_view path, int by) {
  const auto entry = counts_.try_emplace(std::string(path), 0).first;
  entry->second += by;
  if (entry->second == 0) counts_.erase(entry);
  lengths_[path.size()] += by;
}

bool LoopAncestors::serve(std::string_view path, std::size_t longerThan) const {
  if (counts_.empty()) return false;
  for (std::size_t end = path.size(); end > longerThan && end != std::string_view::npos;
       end = path.rfind('.', end - 1)) {
    const auto length = lengths_.find(end);
    if (length != lengths_.end() && length->second > 0 && counts_.contains(std::string(path.substr(0, end))))
      return true;
  }
  return false;
}

// --- LoopScope -------------------------------------------------------------------------------------------------------

void LoopScope::clear() { *this = LoopScope(); }

void LoopScope::init(const LoopScope* parent, const std::string& loopProperty, unsigned level,
                     const std::string& varPrefix, const LoopAncestors& ancestors, const std::set<std::string>& inner,
                     std::set<std::string>& outerUsed) {
  parallelProperties_.clear();
  parent_ = parent;
  loopProperty_ = loopProperty;
  level_ = level;
  varPrefix_ = varPrefix;
  if (loopProperty.empty()) {
    outerUsed.insert(inner.begin(), inner.end());
    return;
  }
  const std::string_view owner = ownerPath(loopProperty_);
  if (isLoopProperty(owner)) outerUsed.emplace(owner);
  const std::size_t arrays = countArrays(loopProperty_);
  unsigned next = 0;
  for (const std::string& path : inner) {
    if (isPathUnder(path, loopProperty_)) continue;
    // An enclosing loop serves what belongs to another owner, what has fewer arrays than this loop, and what one of
    // them holds already.
    if (!isPathUnder(path, owner) || countArrays(path) < arrays || ancestors.serve(path, owner.size())) {
      outerUsed.insert(path);
      continue;
    }
    // An array of the same owner advances together with the loop. KEPT: the number goes up even if the array has one
    // already.
    parallelProperties_.emplace(cutAtArray(path, owner.size()), next++);
  }
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
