// Tables of pages for the tests of the page parser.
#pragma once

#include "tests/host/TestPage.h"

namespace zeldom40 {

struct PageRow {
  std::string_view page;
  const char* tree;
};

// Pages of one document, each against its one-line tree; every page must also come back as it was.
class PageTableTest : public PageTest {
 protected:
  using PageTest::PageTest;

  template <std::size_t count>
  void expectTrees(const PageRow (&rows)[count], unsigned parts = kDumpErrors) {
    for (const PageRow& row : rows) {
      EXPECT_EQ(tree(row.page, parts), row.tree) << row.page;
      EXPECT_EQ(plainSource(), row.page);
    }
  }
};

// A document that is not HTML.
class OtherTableTest : public PageTableTest {
 protected:
  OtherTableTest() : PageTableTest(DOM::JSP_VERSION_0, "JSP") {}
};

class Version1TableTest : public PageTableTest {
 protected:
  Version1TableTest() : PageTableTest(DOM::JSP_VERSION_1) {}
};

}  // namespace zeldom40
