// Property paths and the parameters of dynamic links.
#include <gtest/gtest.h>

#include "dom/dynamic/PropertyPath.h"
#include "dom/dynamic/QueryParameter.h"

namespace zeldom40 {
namespace {

TEST(PropertyPath, SaysByItsFormWhatIsLoopedOver) {
  const struct {
    const char* path;
    int kind;
    std::size_t arrays;
    const char* owner;
    std::size_t arrayPart;
  } cases[] = {
      {"", 0, 0, "", 0},
      {"[]", 0, 0, "", 0},
      {"a[]", 2, 1, "", 3},
      {"a.b", 1, 0, "", 0},
      {"a.item()", 3, 1, "", 8},
      {"a.b[].c", 1, 1, "a.b[]", 5},
      {"a.b[].c[]", 2, 2, "a.b[]", 9},
      {"a.[].c", 1, 0, "", 0},  // a segment of two characters has no name
      {"a..b[].", 1, 1, "a..b[]", 6},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(static_cast<int>(pathKind(c.path)), c.kind) << c.path;
    EXPECT_EQ(countArrays(c.path), c.arrays) << c.path;
    EXPECT_EQ(ownerPath(c.path), c.owner) << c.path;
    EXPECT_EQ(arrayPartLength(c.path), c.arrayPart) << c.path;
  }
}

TEST(QueryParameter, ReadsValuesThatMayBeProperties) {
  const struct {
    const char* query;
    const char* parameters;  // name=value; $ behind a property
  } cases[] = {
      {"", ""},
      {"a", "a=;"},
      {"a=b=c", "a=;b=c;"},  // the second "=" makes a name of what looked like the value
      {"a=$(b.c)&d=e", "a=b.c$;d=e;"},
      {"a=%(b)&c=#(d)", "a=b$;c=d;"},
      {"a=$()&b=#()", "a=;b=;"},
      {"a=$(f(x).y)", "a=f(x).y$;"},
      {"a=$(b)c&d=e", "a=$(b;d=e;"},  // two characters short
      {"a=$(bcd", "a=$(b;"},          // likewise
      {"a=$(", "a=$(;"},              // too short for a marked value
      {"=x&=&", "=x;=;"},
  };
  for (const auto& c : cases) {
    std::string read;
    for (const QueryParameter& p : parseQuery(c.query)) read += p.name + '=' + p.value + (p.isProperty ? "$;" : ";");
    EXPECT_EQ(read, c.parameters) << c.query;
  }
}

}  // namespace
}  // namespace zeldom40
