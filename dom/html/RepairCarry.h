// Internal. Plans how inline elements that stand around blocks go into each of them.
#pragma once

#include <string_view>
#include <vector>

#include "dom/html/RepairPage.h"

namespace zeldom40 {

// What is to be done so that the inline elements from `top` down hold no blocks any more.
struct CarryPlan {
  std::string_view obstacle;  // why there is no plan; empty: there is one
  std::vector<PlannedEdit> edits;
  std::vector<int> settled;       // the misplaced blocks
  bool keepsEndTags = false;      // as many end tags of each name come as go
  bool mayLookOtherwise = false;  // a style sheet may speak of the elements
};

// `misplacedIn` gives for each item the first misplaced block below it that only inline elements stand around, kNone if
// there is none. Costs one pass over what the element holds.
CarryPlan carryIntoBlocks(const RepairPage& page, int top, const std::vector<int>& misplacedIn);

}  // namespace zeldom40
