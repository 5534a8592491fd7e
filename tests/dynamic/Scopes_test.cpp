// Which loop holds which property, and by which variable.
#include <gtest/gtest.h>

#include "dom/dynamic/LoopScope.h"

namespace zeldom40 {
namespace {

using Paths = std::set<std::string>;

// What advances together with a loop, as its scope numbers it.
std::string parallel(const std::string& loop, const Paths& paths) {
  LoopScope scope;
  scope.init(nullptr, loop, 0, "", paths);
  std::string out;
  for (const auto& [path, number] : scope.parallelProperties()) out += path + '=' + std::to_string(number) + ' ';
  return out;
}

TEST(LoopNest, SharesPropertiesBetweenItsLoops) {
  const struct {
    std::vector<const char*> loops;  // the outermost first
    Paths read;                      // in the innermost
    const char* parallel;            // of each loop, the innermost first
  } cases[] = {
      {{"a.b[]"}, {"a.b[]", "a.b[].c", "a.b[].c[].d", "a.x", "c", ""}, "| "},
      // Arrays of the same owner advance together; a second path to one of them leaves a gap in the numbers.
      {{"a.b[]"}, {"a.c[].m", "a.c[].n", "a.d()"}, "a.c[]=0 a.d()=2 | "},
      {{"a.b[]", "a.b[].c[]"}, {"a.b[].c[].x", "a.b[].d[].y", "a.b[].e"}, "a.b[].d[]=0 | | "},
      {{"a.b[]", "a.b[].c[]"}, {"a.f[]"}, "| a.f[]=0 | "},
      {{"a.b[]", "c.d[]"}, {"a.b[].e", "a.b[].e[]", "a.x[]"}, "a.x[]=0 | | "},
      // The owner of a loop around is served there as well; a loop reads the owner of its own property.
      {{"a.b[].e[]", "c.d[]"}, {"a.b[].f[]"}, "| a.b[].f[]=0 | "},
      {{"x.y[]", "a.b[].c[]"}, {}, "| a.b[]=0 | "},
      {{"x.y[]", "x.y[]"}, {"x.y[].z", "x.w[]"}, "x.w[]=0 | | "},
  };
  for (const auto& c : cases) {
    LoopNest nest;
    for (const char* loop : c.loops) nest.open(loop);
    for (const std::string& path : c.read) nest.read(path);
    std::string found;
    for (auto loop = c.loops.rbegin(); loop != c.loops.rend(); ++loop) found += parallel(*loop, nest.close()) + "| ";
    EXPECT_EQ(found, c.parallel) << c.loops.back();
  }
  // Of two loops of one element the outer one takes nothing that the inner one's owner holds.
  LoopNest two;
  two.open("x.y[]", /*isOuterOfTwo=*/true);
  two.open("a.b[].c[]");
  EXPECT_TRUE(two.close().empty());
  EXPECT_TRUE(two.close().empty());
}

TEST(OpenLoops, TheInnermostLoopThatHoldsAPathGivesItsVariable) {
  LoopScope outer, inner, none;
  outer.init(nullptr, "a.b[]", 0, "", {"a.c[].d"});
  inner.init(&outer, "a.b[]", 1, "y", {});
  OpenLoops loops;
  loops.enter(outer);
  loops.enter(none);
  loops.enter(inner);
  const struct {
    const char* path;
    unsigned level;
    const char* resolved;
  } cases[] = {
      {"a.b[].x.y", 1, "y_p1.x.y"},      {"a.b[].x", 0, "_p0.x"}, {"a.b[]", 1, "y_p1"},    {"a.c[].d", 1, "_p0_0.d"},
      {"a.b[].z[].x", 1, "a.b[].z[].x"}, {"a.b", 1, "a.b"},       {"a.b[]x", 1, "a.b[]x"}, {"", 1, ""},
  };
  for (const auto& c : cases) EXPECT_EQ(loops.resolve(c.path, c.level), c.resolved) << c.path;
  loops.leave(inner);
  EXPECT_EQ(loops.resolve("a.b[].x", 1), "_p0.x");
  loops.leave(none);
  loops.leave(outer);
  EXPECT_EQ(loops.resolve("a.b[].x", 1), "a.b[].x");
}

}  // namespace
}  // namespace zeldom40
