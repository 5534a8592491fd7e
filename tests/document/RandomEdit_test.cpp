// A short run of the host that edits at random; fuzz/random_edits runs as long as one likes.
#include <string>

#include <gtest/gtest.h>

#include "dom/dtd/DTDFrame.h"
#include "fuzz/EditHost.h"

namespace zeldom40 {
namespace {

TEST(RandomEdit, EveryStepLeavesASoundTreeAndUndoGivesBackEveryState) {
  const long before = liveNodes::count;
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  dom->getDocumentType()->getDTDFrame()->readDeferred();
  const long ofDom = liveNodes::count;
  for (std::uint64_t seed = 0; seed < 40; ++seed) {
    fuzz::Choices choices(seed);
    {
      fuzz::EditHost host(dom, choices, seed % 8 == 7 ? "JSP" : "HTML");
      for (int edit = 0; edit < 400; ++edit) ASSERT_EQ(host.step(), "") << "seed " << seed << ", edit " << edit;
      ASSERT_EQ(host.unwind(), "") << "seed " << seed;
    }
    ASSERT_EQ(liveNodes::count, ofDom) << "seed " << seed;
  }
  DOM::destroyDOM(dom);
  EXPECT_EQ(liveNodes::count, before);
}

}  // namespace
}  // namespace zeldom40
