// Inline elements around blocks: their content is cut into stretches that stand in one block, and each gets the tags.
#include "dom/html/RepairCarry.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "dom/source/CharHelpers.h"
#include "dom/tree/ElementAccess.h"

namespace zeldom40 {

namespace {

constexpr int kNone = RepairPage::kNone;
// Nobody would sign more copies of a tag.
constexpr int kMostCopies = 24;
constexpr std::size_t kMostAround = 6;

// Blocks that take inline elements in, themselves or in their items.
constexpr int kTakers[] = {ID_P,      ID_H1,   ID_H2,  ID_H3,   ID_H4,      ID_H5,         ID_H6,      ID_DIV,
                           ID_CENTER, ID_UL,   ID_OL,  ID_LI,   ID_DL,      ID_DT,         ID_DD,      ID_HR,
                           ID_DIR,    ID_MENU, ID_PRE, ID_FORM, ID_ADDRESS, ID_BLOCKQUOTE, ID_FIELDSET};

// Walks below the top in document order. An element that holds a misplaced block *spans* it; where its content stands
// in one block it is *open* there, by its own tag or by a copy.
class Carrier {
 public:
  Carrier(const RepairPage& page, int top, const std::vector<int>& misplacedIn)
      : page_(page), top_(top), misplacedIn_(misplacedIn) {}

  CarryPlan plan();

 private:
  struct Spanning {
    int index;
    bool isWaiting;  // its begin tag stands where no content has come yet
    bool keeps;      // ... stays where it is
    int times;       // that it was opened
  };

  bool spans(int index) const {
    return page_[index].isCarriable && misplacedIn_[static_cast<std::size_t>(index)] != kNone;
  }
  bool enter(int index);
  void leave(int index);
  void content(const SourceMap::Range& range);
  void endStretch();
  bool fail(std::string_view why) {
    plan_.obstacle = why;
    return false;
  }
  void insert(std::size_t offset, std::string_view text, int rank) {
    plan_.edits.push_back({offset, 0, std::string(text), rank});
  }
  void remove(SourceMap::Range tag);
  bool hasHandler(int index) const;
  std::string endTag(int index) const {
    const RepairPage::Item& item = page_[index];
    return item.end.isEmpty() ? "</" + page_.writtenName(index) + ">" : std::string(page_.at(item.end));
  }

  const RepairPage& page_;
  int top_;
  const std::vector<int>& misplacedIn_;
  CarryPlan plan_;
  std::vector<Spanning> around_;  // outermost first
  std::size_t open_ = 0;          // so many of them are open
  std::size_t contentEnd_ = 0;    // of the stretch
  bool keepsEndTags_ = true;
};

CarryPlan Carrier::plan() {
  const RepairPage::Item& top = page_[top_];
  std::vector<int> inside;
  for (int i = top_; plan_.obstacle.empty();) {
    while (!inside.empty() && i >= page_[inside.back()].behind) {
      leave(inside.back());
      inside.pop_back();
    }
    if (i >= top.behind) break;
    const RepairPage::Item& item = page_[i];
    const bool isStretch = !item.isElement || (item.isInline && !spans(i));
    if (isStretch) {
      if (!item.all.isKnown()) {
        fail("it holds a dynamic element");
      } else if (!page_.isBlank(i) && !page_.isComment(i)) {
        content(item.all);
      }
      i = item.behind;
    } else if (enter(i)) {
      inside.push_back(i);
      ++i;
    }
  }
  if (!plan_.obstacle.empty()) return plan_;
  plan_.keepsEndTags = keepsEndTags_;
  return plan_;
}

bool Carrier::enter(int index) {
  const RepairPage::Item& item = page_[index];
  if (item.isUnknown || !item.begin.isKnown()) return fail("it holds an element that is not known");
  if (item.error & ERR_ELEMENT_PARSE_ERROR) return fail("it holds a broken tag");
  if (spans(index)) {
    if (item.error & ERR_ELEMENT_END_TAG_MISSING) return fail("an inline element around it has no end tag");
    if (page_.isHtml5() && page_.id(index) == ID_A) return fail("HTML 5 lets an anchor stand around blocks");
    if (!page_.isPlainTag(item.begin)) return fail("a tag around it is broken");
    if (page_.hasServerCode(item.begin.begin + 1, item.begin.end)) return fail("server code stands in a tag around it");
    if (around_.size() >= kMostAround) return fail("too many inline elements stand around it");
    around_.push_back({index, true, false, 0});
    return true;
  }
  if (std::find(std::begin(kTakers), std::end(kTakers), page_.id(index)) == std::end(kTakers)) {
    return fail("what it holds does not take inline elements in");
  }
  endStretch();
  for (Spanning& spanning : around_) spanning.isWaiting = false;
  if (item.error & (ERR_ELEMENT_CANNOT_BE_CONTAINED | ERR_ELEMENT_NO_PARENT_CAN_ADOPT)) plan_.settled.push_back(index);
  return true;
}

// A stretch goes on or begins: what spans it and is not open opens here.
void Carrier::content(const SourceMap::Range& range) {
  std::size_t begin = page_.skipSpace(range.begin, range.end);
  // Waiting tags that nothing but white space stands behind stay where they are.
  std::size_t at = begin;
  bool keeps = true;
  for (std::size_t i = around_.size(); i-- > open_;) {
    Spanning& spanning = around_[i];
    const SourceMap::Range tag = page_[spanning.index].begin;
    keeps = keeps && spanning.isWaiting && page_.skipSpace(tag.end, at) == at;
    if (keeps) at = tag.begin;
    spanning.keeps = spanning.keeps || keeps;
    if (!keeps) insert(begin, page_.at(tag), page_[spanning.index].depth + 1);
    spanning.isWaiting = false;
    if (++spanning.times > kMostCopies) fail("it holds too many blocks");
  }
  open_ = around_.size();
  contentEnd_ = page_.trimBack(range.end, begin);
}

// Ends what is open behind the last content.
void Carrier::endStretch() {
  for (std::size_t i = open_; i-- > 0;) {
    const int index = around_[i].index;
    insert(contentEnd_, endTag(index), -page_[index].depth - 1);
  }
  open_ = 0;
}

void Carrier::leave(int index) {
  const RepairPage::Item& item = page_[index];
  if (!spans(index)) {
    endStretch();
    return;
  }
  const Spanning& spanning = around_.back();
  if (!spanning.keeps) remove(item.begin);
  if (open_ == around_.size()) {
    --open_;  // its own end tag ends it
    contentEnd_ = item.end.end;
  } else {
    remove(item.end);
  }
  const auto* element = static_cast<const Element*>(item.node);
  const bool isNamed = ElementAccess::hasAttribute(element, "ID") || ElementAccess::hasAttribute(element, "NAME");
  const bool isStyled = ElementAccess::hasAttribute(element, "CLASS") || ElementAccess::hasAttribute(element, "STYLE");
  plan_.mayLookOtherwise = plan_.mayLookOtherwise || (isStyled && page_.id(index) == ID_SPAN);
  if (spanning.times > 1 && hasHandler(index)) fail("what it does would be done twice");
  if (spanning.times == 0) fail("it holds no text that could take the tag in");
  if (isNamed && spanning.times > 1) fail("it has a name, which may not be doubled");
  keepsEndTags_ = keepsEndTags_ && spanning.times == 1;
  around_.pop_back();
}

bool Carrier::hasHandler(int index) const {
  const std::vector<SourceMap::Range> attributes = page_.attributes(index);
  return std::any_of(attributes.begin(), attributes.end(), [&](const SourceMap::Range& range) {
    const std::string_view text = page_.at(range);
    return text.size() > 2 && upperByte(text[0]) == 'O' && upperByte(text[1]) == 'N';
  });
}

void Carrier::remove(SourceMap::Range tag) {
  const std::size_t begin = page_.lineBegin(tag.begin);
  const std::size_t end = page_.lineEnd(tag.end);
  // A line of its own goes as a whole.
  if (begin != SourceMap::NOWHERE && end != SourceMap::NOWHERE && end > tag.end) tag = {begin, end};
  plan_.edits.push_back({tag.begin, tag.length(), {}, 0});
}

}  // namespace

CarryPlan carryIntoBlocks(const RepairPage& page, int top, const std::vector<int>& misplacedIn) {
  return Carrier(page, top, misplacedIn).plan();
}

}  // namespace zeldom40
