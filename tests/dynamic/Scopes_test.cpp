// Which loop holds which property, and by which variable.
#include <gtest/gtest.h>

#include "dom/dynamic/LoopScope.h"

namespace zeldom40 {
namespace {

using Paths = std::set<std::string>;

std::string list(const std::map<std::string, unsigned>& properties) {
  std::string out;
  for (const auto& [path, number] : properties) out += path + '=' + std::to_string(number) + ' ';
  return out;
}

std::string list(const Paths& paths) {
  std::string out;
  for (const std::string& path : paths) out += path + ' ';
  return out;
}

TEST(LoopScope, SharesPropertiesBetweenItselfAndTheLoopsAround) {
  const struct {
    const char* loop;
    Paths around;
    Paths inner;
    const char* parallel;
    const char* left;
  } cases[] = {
      {"a.b[]", {}, {"a.b[]", "a.b[].c", "a.b[].c[].d"}, "", ""},
      {"a.b[]", {}, {"a.x", "c"}, "", "a.x c "},
      // Arrays of the same owner advance together; a second path to one of them leaves a gap in the numbers.
      {"a.b[]", {}, {"a.c[].m", "a.c[].n", "a.d()"}, "a.c[]=0 a.d()=2 ", ""},
      {"a.b[].c[]",
       {"a.b[]"},
       {"a.b[].c[].x", "a.b[].d[].y", "a.b[].e", "a.f[]"},
       "a.b[].d[]=0 ",
       "a.b[] a.b[].e a.f[] "},
      {"c.d[]", {"a.b[]"}, {"a.b[].e", "a.b[].e[]", "a.x[]"}, "a.x[]=0 ", "a.b[].e a.b[].e[] "},
      // The owner of a loop around is served there as well.
      {"c.d[]", {"a.b[].e[]"}, {"a.b[].f[]"}, "", "a.b[].f[] "},
      {"", {}, {"a.b[].c"}, "", "a.b[].c "},
  };
  for (const auto& c : cases) {
    LoopAncestors around;
    for (const std::string& path : c.around) around.add(path);
    LoopScope scope;
    Paths left;
    scope.init(nullptr, c.loop, 0, "", around, c.inner, left);
    EXPECT_EQ(list(scope.parallelProperties()), c.parallel) << c.loop;
    EXPECT_EQ(list(left), c.left) << c.loop;
  }
}

TEST(LoopScope, NamesVariablesByPrefixLevelAndNumber) {
  LoopScope scope;
  Paths left;
  scope.init(nullptr, "a.b[]", 2, "x", LoopAncestors(), {}, left);
  EXPECT_EQ(scope.elementVariable(LoopScope::kMain), "x_p2");
  EXPECT_EQ(scope.elementVariable(0), "x_p2_0");
  EXPECT_EQ(scope.arrayVariable(3), "x_a2_3");
  EXPECT_EQ(scope.indexVariable(), "x_i2");
  EXPECT_EQ(scope.exceptionVariable(), "x_e2");
}

TEST(OpenLoops, TheInnermostLoopThatHoldsAPathGivesItsVariable) {
  Paths left;
  LoopScope outer, inner, none;
  outer.init(nullptr, "a.b[]", 0, "", LoopAncestors(), {"a.c[].d"}, left);
  inner.init(&outer, "a.b[]", 1, "y", LoopAncestors(), {}, left);
  OpenLoops loops;
  loops.enter(outer);
  loops.enter(none);
  loops.enter(inner);
  const struct {
    const char* path;
    unsigned level;
    const char* resolved;
  } cases[] = {
      {"a.b[].x.y", 1, "y_p1.x.y"},      {"a.b[].x", 0, "_p0.x"}, {"a.b[]", 1, "y_p1"}, {"a.c[].d", 1, "_p0_0.d"},
      {"a.b[].z[].x", 1, "a.b[].z[].x"}, {"a.b", 1, "a.b"},       {".x", 1, ".x"},      {"", 1, ""},
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
