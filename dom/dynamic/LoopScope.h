// Internal. The loop of a dynamic container: what it loops over, and the Java variables that this gives.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zeldom40 {

// The loop properties of all loops around a place. A path asks for its own prefixes, so an answer costs the length of
// the path, however deep the place is.
class LoopAncestors {
 public:
  void add(std::string_view loopProperty) { change(loopProperty, +1); }
  void remove(std::string_view loopProperty) { change(loopProperty, -1); }
  // Whether a loop property, or the owner of one, that is longer than `longerThan` bytes has `path` under it.
  bool serve(std::string_view path, std::size_t longerThan) const;

 private:
  void change(std::string_view loopProperty, int by);
  void changeEntry(std::string_view path, int by);

  std::unordered_map<std::string, int> counts_;
  std::unordered_map<std::size_t, int> lengths_;  // of the entries: a prefix of another length is not looked up
};

// Filled by the preparation of the outermost loop, and good for the generation that follows.
class LoopScope {
 public:
  static constexpr int kMain = -1;  // the loop property itself; other numbers are those of parallel properties

  // No loop: everything resolves to itself.
  void clear();
  // `inner` are the properties that are read inside the loop; those that this scope cannot serve go to `outerUsed`, for
  // the enclosing loop.
  void init(const LoopScope* parent, const std::string& loopProperty, unsigned level, const std::string& varPrefix,
            const LoopAncestors& ancestors, const std::set<std::string>& inner, std::set<std::string>& outerUsed);

  bool isLoop() const { return !loopProperty_.empty(); }
  const std::string& loopProperty() const { return loopProperty_; }
  // Property paths that advance together with the loop, each with its number; numbers may have gaps.
  const std::map<std::string, unsigned>& parallelProperties() const { return parallelProperties_; }
  const LoopScope* parent() const { return parent_; }
  // The depth among loops, 0 at the outermost one. A loop has a higher level than all around it.
  unsigned level() const { return level_; }

  std::string elementVariable(int number) const { return variable('p', number); }
  std::string arrayVariable(int number) const { return variable('a', number); }
  std::string indexVariable() const { return variable('i', kMain); }
  std::string exceptionVariable() const { return variable('e', kMain); }

 private:
  std::string variable(char letter, int number) const;

  std::string loopProperty_;
  unsigned level_ = 0;
  std::string varPrefix_;
  std::map<std::string, unsigned> parallelProperties_;
  const LoopScope* parent_ = nullptr;
};

// The loops that a walk stands in, by the paths that their variables hold. An answer costs the length of the path,
// however many loops there are.
class OpenLoops {
 public:
  void enter(const LoopScope& scope) { change(scope, /*enter=*/true); }
  void leave(const LoopScope& scope) { change(scope, /*enter=*/false); }
  // The path with its array part replaced by the variable of the innermost loop up to `level` that holds it; the path
  // itself if there is none.
  std::string resolve(const std::string& path, unsigned level) const;

 private:
  struct Variable {
    unsigned level;
    std::string name;
  };
  void change(const LoopScope& scope, bool enter);

  std::unordered_map<std::string, std::vector<Variable>> variables_;  // the innermost one last
};

}  // namespace zeldom40
