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

// The loops that a preparation stands in. Tells at once which of them serves a property, so that what none serves is
// not handed from loop to loop.
//
// From the innermost loop outward: a loop serves what is under its property. An array of the same owner advances
// together with the loop, unless a loop around, or the owner of its property, holds more of the path.
class LoopNest {
 public:
  // `isOuterOfTwo`: the next loop belongs to the same element, and what that one holds counts for both.
  void open(const std::string& loopProperty, bool isOuterOfTwo = false);
  // A property is read inside all loops that are open.
  void read(const std::string& path) { read(path, loops_.size()); }
  // Ends the innermost loop; returns the properties that advance together with it.
  std::set<std::string> close();

 private:
  struct Loop {
    std::string property;
    std::size_t ownerLength;
    bool isArraySegment;  // the last segment of the property; else it has no name
    std::size_t reach;    // the innermost loop whose holdings count
    std::set<std::string> parallel;
  };
  // The loops of a path, the outermost first.
  struct Entry {
    std::vector<std::size_t> over;      // loop over it
    std::vector<std::size_t> owned[2];  // have it for the owner, by isArraySegment
  };

  void read(std::string_view path, std::size_t limit);
  void changeLength(std::size_t length, int by);

  std::vector<Loop> loops_;
  std::unordered_map<std::string, Entry> entries_;
  std::unordered_map<std::size_t, int> lengths_;  // of the entries: a prefix of another length is not looked up
};

// Filled by the preparation of the outermost loop, and good for the generation that follows.
class LoopScope {
 public:
  static constexpr int kMain = -1;  // the loop property itself; other numbers are those of parallel properties

  // No loop: everything resolves to itself.
  void clear();
  // `parallel` are the properties that advance together with the loop.
  void init(const LoopScope* parent, const std::string& loopProperty, unsigned level, const std::string& varPrefix,
            const std::set<std::string>& parallel);

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
