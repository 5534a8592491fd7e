// Plans repairs: one function for each kind of error, which looks at the page and writes down edits or a reason.
#include "dom/html/RepairPlanner.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "dom/document/DOM.h"
#include "dom/dtd/ElementDefinition.h"
#include "dom/html/ParsedPage.h"
#include "dom/html/RepairCarry.h"
#include "dom/html/RepairPage.h"
#include "dom/tree/ElementAccess.h"

namespace zeldom40 {

namespace {

using Kind = RepairPlanner::Kind;
using Range = SourceMap::Range;

constexpr int kNone = RepairPage::kNone;
constexpr unsigned long kPlacing = ERR_ELEMENT_CANNOT_BE_CONTAINED | ERR_ELEMENT_NO_PARENT_CAN_ADOPT;

constexpr unsigned long kTagErrors =
    ERR_ELEMENT_PARSE_ERROR | ERR_ELEMENT_BEGIN_TAG_MISSING | ERR_ELEMENT_END_TAG_MISSING;
// White space and comments between two siblings that belong together.
constexpr int kMostPassed = 8;
// Document types stand in so many bytes.
constexpr std::size_t kDeclarations = 1024;

constexpr char kOddTag[] = "a tag before it is broken, which may hold the other tag";
constexpr char kUnknownTag[] = "an element of newer pages may hold the other tag";
constexpr char kHalfPage[] = "its other tag may stand in another file";
constexpr char kServerBetween[] = ", though server code stands in between";
constexpr char kWideBetween[] = ", though text that other programs may take for server code stands in between";

// Their end tag may be added and dropped: what they hold ends where the page shows it to end.
constexpr int kClosable[] = {ID_DIV, ID_CENTER, ID_BLOCKQUOTE, ID_TABLE,   ID_UL,      ID_OL,
                             ID_DL,  ID_DIR,    ID_MENU,       ID_H1,      ID_H2,      ID_H3,
                             ID_H4,  ID_H5,     ID_H6,         ID_ADDRESS, ID_CAPTION, ID_FIELDSET};

constexpr int kVoid[] = {ID_HR, ID_IMG, ID_INPUT, ID_META, ID_LINK, ID_COL, ID_AREA, ID_PARAM, ID_BASE, ID_BASEFONT};

template <std::size_t N>
bool isOneOf(int id, const int (&ids)[N]) {
  return std::find(ids, ids + N, id) != ids + N;
}

bool isHeading(int id) {
  constexpr int kHeadings[] = {ID_H1, ID_H2, ID_H3, ID_H4, ID_H5, ID_H6};
  return isOneOf(id, kHeadings);
}
bool isCell(int id) { return id == ID_TD || id == ID_TH; }
bool isList(int id) { return id == ID_UL || id == ID_OL || id == ID_DIR || id == ID_MENU; }
bool isRowHolder(int id) { return id == ID_TABLE || id == ID_TBODY || id == ID_THEAD || id == ID_TFOOT; }

// What a planner without a page answers with.
const struct {
  std::string source;
  std::vector<RepairPlanner::Finding> findings;
  std::vector<RepairPlanner::Plan> plans;
} kNothing;

// Each error bit of each node, in document order.
std::vector<RepairPlanner::Finding> listFindings(const RepairPage& page) {
  std::vector<RepairPlanner::Finding> findings;
  for (const RepairPage::Item& item : page.items()) {
    std::size_t offset = item.all.begin;
    if (item.error && item.all.isKnown() && !item.isElement) offset = page.skipSpace(offset, item.all.end);
    for (unsigned long bits = item.error; bits; bits &= bits - 1)
      findings.push_back({item.node, bits & (~bits + 1), offset});
  }
  return findings;
}

// The edits of several plans in one list.
struct Batch {
  std::vector<SourceEdit> edits;
  std::vector<std::size_t> owners;  // the plan that each edit is of; where several meet, the first
  std::vector<std::size_t> left;    // plans that overlap others and were left out
};

struct OwnedEdit {
  const PlannedEdit* edit;
  std::size_t owner;
};

// Sorts edits and joins those that begin at one offset: what they insert, and then what one of them takes away.
Batch mergeEdits(std::vector<OwnedEdit> all) {
  std::stable_sort(all.begin(), all.end(), [](const OwnedEdit& a, const OwnedEdit& b) {
    if (a.edit->offset != b.edit->offset) return a.edit->offset < b.edit->offset;
    const bool takes[] = {a.edit->length > 0, b.edit->length > 0};
    return takes[0] != takes[1] ? takes[1] : a.edit->rank < b.edit->rank;
  });
  Batch batch;
  std::size_t end = 0;
  for (const OwnedEdit& owned : all) {
    const PlannedEdit& edit = *owned.edit;
    SourceEdit* last = batch.edits.empty() ? nullptr : &batch.edits.back();
    const bool joins = last && last->offset == edit.offset;
    if (edit.offset < end || (joins && last->length > 0)) {
      batch.left.push_back(owned.owner);
      continue;
    }
    if (joins) {
      last->length = edit.length;
      last->replacement += edit.replacement;
    } else {
      batch.edits.push_back({edit.offset, edit.length, edit.replacement});
      batch.owners.push_back(owned.owner);
    }
    end = std::max(end, edit.offset + edit.length);
  }
  return batch;
}

// Follows offsets through edits.
class OffsetMap {
 public:
  explicit OffsetMap(const std::vector<SourceEdit>& edits) {
    long shift = 0;
    for (const SourceEdit& edit : edits) {
      const auto now = static_cast<std::size_t>(static_cast<long>(edit.offset) + shift);
      shift += static_cast<long>(edit.replacement.size()) - static_cast<long>(edit.length);
      steps_.push_back({edit.offset, edit.offset + edit.length, now, now + edit.replacement.size(), shift});
    }
  }
  // NOWHERE for a byte that an edit took away.
  std::size_t forward(std::size_t offset) const {
    const auto behind = std::upper_bound(steps_.begin(), steps_.end(), offset,
                                         [](std::size_t o, const Step& step) { return o < step.begin; });
    if (behind == steps_.begin()) return offset;
    const Step& step = *(behind - 1);
    if (offset < step.end) return SourceMap::NOWHERE;
    return static_cast<std::size_t>(static_cast<long>(offset) + step.shift);
  }
  // The edit that wrote the byte, or the last one before it; kNoEdit if there is none.
  std::size_t editAt(std::size_t now) const {
    const auto behind = std::upper_bound(steps_.begin(), steps_.end(), now,
                                         [](std::size_t o, const Step& step) { return o < step.nowBegin; });
    return behind == steps_.begin() ? kNoEdit : static_cast<std::size_t>(behind - steps_.begin()) - 1;
  }
  bool isWritten(std::size_t now) const {
    const std::size_t edit = editAt(now);
    return edit != kNoEdit && now < steps_[edit].nowEnd;
  }

  static constexpr std::size_t kNoEdit = static_cast<std::size_t>(-1);

 private:
  struct Step {
    std::size_t begin, end, nowBegin, nowEnd;
    long shift;  // behind it
  };
  std::vector<Step> steps_;
};

}  // namespace

struct RepairPlanner::Data {
  Data(Document& document, bool guardWide)
      : dom(document.getDOM()), page(document, guardWide), findings(listFindings(page)), isWideGuarded(guardWide) {
    indexFindings();
    lookAround();
    planOf.assign(findings.size(), kNoPlan);
    for (std::size_t f = 0; f < findings.size(); ++f) {
      if ((findings[f].error & ERR_DOC_SEVERE_PARSE_ERROR) && !isSettled(f)) plan(f);
    }
  }

  void indexFindings();
  void lookAround();
  void plan(std::size_t finding);
  void planStrayEnd(int index);
  void planMissingEnd(int index);
  void planMisplaced(int index);
  void planBrokenTag(int index);
  void planCase(int index);
  bool endBeforeInner(int index);
  bool takeListIn(int index);
  bool wrapCells(int index);
  bool wrapItems(int index);
  bool carry(int index);
  void planMove(int index);
  bool moveBeforeTable(int index);
  bool moveToHead(int index);
  bool takeIn(int index);
  Batch join(std::vector<std::size_t> wanted, std::vector<std::size_t>& applied) const;
  void compare(const Batch& batch, Verdict& verdict) const;

  bool isPlacing(int index) const { return (page[index].error & kPlacing) != 0; }
  bool isMisplacedBlock(int index) const {
    const RepairPage::Item& item = page[index];
    return item.isElement && isPlacing(index) && !item.isInline && !item.isUnknown;
  }
  int skipped(int index, bool forward) const;
  bool isBetweenWords(int index) const;
  bool isBesideBlock(int index) const;
  int strayHeading(int index) const;
  void exchangeEnd(int index, int stray);
  bool reopen(int index);
  std::string name(int index) const { return "<" + page[index].node->getName() + ">"; }
  std::string endTag(int index) const { return "</" + page.writtenName(index) + ">"; }
  void edit(std::size_t offset, std::size_t length, std::string replacement, int rank = 0) {
    edits.push_back({offset, length, std::move(replacement), rank});
  }
  void insertEndTag(int index, std::size_t offset);
  void removeTag(Range tag);
  bool isSettled(std::size_t finding) const { return planOf[finding] != kNoPlan; }
  std::size_t findingOf(int index, unsigned long bits) const;
  void claim(int index, unsigned long bits);
  void finish(Kind kind, std::string reason);
  void giveUp(std::string reason) {
    edits.clear();
    for (const std::size_t claimed : claims) {
      if (!isClaimed.empty()) isClaimed[claimed] = false;
    }
    claims.resize(1);
    finish(UNREPAIRED, std::move(reason));
  }
  // What is safe unless server code stands in that stretch.
  void finishAcross(std::size_t begin, std::size_t end, std::string reason) {
    if (page.hasServerCode(begin, end))
      return finish(UNSAFE, std::move(reason) + (isWideGuarded ? kWideBetween : kServerBetween));
    finish(SAFE, std::move(reason));
  }

  static constexpr std::size_t kNoPlan = static_cast<std::size_t>(-1);

  DOM* dom;
  RepairPage page;
  std::vector<Finding> findings;
  bool isWideGuarded;
  std::vector<std::size_t> firstOf;  // finding of each item; those of one item stand together
  std::vector<int> itemOf;           // of each finding
  // Of each item: the first misplaced block below it that only inline elements stand around; of an anchor the first
  // anchor directly in it; the outermost of the inline elements that stand around it without a block between; the cell
  // or body around it.
  std::vector<int> misplacedIn;
  std::vector<int> innerAnchor;
  std::vector<int> outermost;
  std::vector<int> scope;
  std::vector<Plan> plans;
  std::vector<std::vector<PlannedEdit>> planned;        // of each plan
  std::vector<std::size_t> planOf;                      // of each finding
  std::unordered_map<int, std::string_view> obstacles;  // to carry an element into blocks, by the outermost one
  // The plan that is being made.
  std::vector<PlannedEdit> edits;
  std::vector<std::size_t> claims;  // what it settles, the first one what it is made for
  std::vector<bool> isClaimed;      // by the plan that is being made
};

// --- what there is ---------------------------------------------------------------------------------------------------

void RepairPlanner::Data::indexFindings() {
  std::size_t next = 0;
  for (int i = 0; i < page.count(); ++i) {
    firstOf.push_back(next);
    for (; next < findings.size() && findings[next].node == page[i].node; ++next) itemOf.push_back(i);
  }
  firstOf.push_back(next);
}

void RepairPlanner::Data::lookAround() {
  const auto count = static_cast<std::size_t>(page.count());
  misplacedIn.assign(count, kNone);
  innerAnchor.assign(count, kNone);
  outermost.assign(count, kNone);
  scope.assign(count, kNone);
  for (int i = page.count() - 1; i > 0; --i) {
    const auto at = static_cast<std::size_t>(i);
    const auto parent = static_cast<std::size_t>(page[i].parent);
    if (page.id(i) == ID_A && isPlacing(i)) innerAnchor[parent] = i;
    if (isMisplacedBlock(i)) {
      misplacedIn[parent] = i;
    } else if (page[i].isCarriable && misplacedIn[at] != kNone) {
      misplacedIn[parent] = misplacedIn[at];
    }
  }
  for (int i = 1; i < page.count(); ++i) {
    const int parent = page[i].parent;
    const auto above = static_cast<std::size_t>(parent);
    const int id = page.id(parent);
    if (page[parent].isCarriable)
      outermost[static_cast<std::size_t>(i)] = outermost[above] != kNone ? outermost[above] : parent;
    const bool bounds = isCell(id) || id == ID_CAPTION || id == ID_BODY;
    scope[static_cast<std::size_t>(i)] = bounds ? parent : scope[above];
  }
}

std::size_t RepairPlanner::Data::findingOf(int index, unsigned long bits) const {
  const auto at = static_cast<std::size_t>(index);
  for (std::size_t f = firstOf[at]; f < firstOf[at + 1]; ++f) {
    if (findings[f].error & bits) return f;
  }
  return kNoPlan;
}

// The nearest sibling that is neither white space nor a comment; a long run of those is not passed over.
int RepairPlanner::Data::skipped(int index, bool forward) const {
  int at = index;
  for (int i = 0; i < kMostPassed; ++i) {
    at = forward ? page.nextSibling(at) : page.previousSibling(at);
    if (at == kNone || !(page.isBlank(at) || page.isComment(at))) return at;
  }
  return kNone;
}

// --- the plan that is being made -------------------------------------------------------------------------------------

// The plan settles that error of the node too, if it has it and nothing else settles it.
void RepairPlanner::Data::claim(int index, unsigned long bits) {
  const std::size_t finding = findingOf(index, bits);
  if (finding == kNoPlan || isSettled(finding)) return;
  if (isClaimed.empty()) isClaimed.assign(findings.size(), false);
  if (finding == claims.front() || isClaimed[finding]) return;
  isClaimed[finding] = true;
  claims.push_back(finding);
}

void RepairPlanner::Data::finish(Kind kind, std::string reason) {
  const auto isVerbatim = [this](const PlannedEdit& edit) {
    return page.isVerbatim(edit.offset) || page.isVerbatim(edit.offset + edit.length);
  };
  if (kind != UNREPAIRED && std::any_of(edits.begin(), edits.end(), isVerbatim)) {
    return giveUp("it stands in preformatted text or in a script");
  }
  Plan plan;
  plan.kind = kind;
  plan.reason = std::move(reason);
  plan.findings = std::move(claims);
  for (const std::size_t finding : plan.findings) planOf[finding] = plans.size();
  std::vector<OwnedEdit> own;
  for (const PlannedEdit& edit : edits) own.push_back({&edit, 0});
  plan.edits = mergeEdits(std::move(own)).edits;
  plans.push_back(std::move(plan));
  planned.push_back(std::move(edits));
  edits.clear();
  claims.clear();
}

// An end tag that the page lacks. Where the element begins on a line of its own and ends behind a line end, so does
// its end tag stand on one.
void RepairPlanner::Data::insertEndTag(int index, std::size_t offset) {
  const RepairPage::Item& item = page[index];
  const int rank = -item.depth - 1;
  const std::size_t content = page.trimBack(offset, item.begin.end);
  if (!item.isInline && page.lineBegin(item.begin.begin) != SourceMap::NOWHERE) {
    const std::size_t line = page.lineBegin(offset);
    if (line != SourceMap::NOWHERE && line > content) {
      const std::string newline(page.newlineNear(offset));
      edit(line, 0, page.indentOf(item.begin.begin) + endTag(index) + newline, rank);
      return;
    }
  }
  edit(item.isInline ? content : offset, 0, endTag(index), rank);
}

// A tag that goes takes its line along if it is alone there.
void RepairPlanner::Data::removeTag(Range tag) {
  const std::size_t begin = page.lineBegin(tag.begin);
  const std::size_t end = page.lineEnd(tag.end);
  if (begin != SourceMap::NOWHERE && end != SourceMap::NOWHERE && end > tag.end) tag = {begin, end};
  edit(tag.begin, tag.length(), {});
}

void RepairPlanner::Data::plan(std::size_t finding) {
  const int index = itemOf[finding];
  const RepairPage::Item& item = page[index];
  claims.assign(1, finding);
  if (!item.all.isKnown()) return giveUp("it stands in a dynamic element");
  switch (findings[finding].error) {
    case ERR_ELEMENT_BEGIN_TAG_MISSING:
      return planStrayEnd(index);
    case ERR_ELEMENT_END_TAG_MISSING:
      return planMissingEnd(index);
    case ERR_ELEMENT_PARSE_ERROR:
      return planBrokenTag(index);
    case ERR_ELEMENT_INVALID_CASE:
    case ERR_ELEMENT_INVALID_CASE_ATTR:
    case ERR_ELEMENT_INVALID_CASE_END:
      return planCase(index);
    case ERR_ELEMENT_CANNOT_BE_CONTAINED:
    case ERR_ELEMENT_NO_PARENT_CAN_ADOPT:
      return planMisplaced(index);
    default:
      return planMove(index);
  }
}

// --- end tags --------------------------------------------------------------------------------------------------------

void RepairPlanner::Data::planStrayEnd(int index) {
  const RepairPage::Item& item = page[index];
  const int id = page.id(index);
  if (page.isHalf()) return giveUp(kHalfPage);
  if (page.at(item.all).substr(0, 2) != "</" || item.behind != index + 1) return giveUp("it is no plain end tag");
  if (id == ID_HTML || id == ID_HEAD || id == ID_BODY || id == ID_FORM) {
    return giveUp("what ends there is not told by the page");
  }
  const std::string tag(page.at(item.all));
  // Browsers show a line break.
  if (id == ID_BR) {
    const bool isXml =
        std::string_view(page.source()).substr(0, kDeclarations).find("XHTML 1") != std::string_view::npos;
    edit(item.all.begin, item.all.length(), "<" + tag.substr(2, 2) + (isXml ? " />" : ">"));
    return finish(SAFE, "writes " + tag + " as a begin tag, as browsers read it");
  }
  if (isBetweenWords(index)) return giveUp("two words would become one");
  if (id == ID_P && !isBesideBlock(index)) return giveUp("browsers show a new paragraph there");
  if (isHeading(id) && isHeading(page.id(item.parent))) return giveUp("a heading of another level stands open");
  const int around = scope[static_cast<std::size_t>(index)];
  const bool isPart = isCell(id) || isRowHolder(id) || id == ID_TR;
  std::size_t from = around == kNone || isPart || !page[around].begin.isKnown() ? 0 : page[around].begin.end;
  // What never has content has its end tag right behind it.
  const int before = page.previousSibling(index);
  if (isOneOf(id, kVoid) && before != kNone && page.id(before) == id) from = page[before].all.end;
  if (page.hasOddTag(from, item.all.begin)) return giveUp(kOddTag);
  if (page.hasUnknownTag(from, item.all.begin)) return giveUp(kUnknownTag);
  removeTag(item.all);
  finishAcross(from, item.all.begin, "drops " + tag);
}

// Text stands right before and right behind it.
bool RepairPlanner::Data::isBetweenWords(int index) const {
  const int before = page.previousSibling(index);
  const int behind = page.nextSibling(index);
  if (before == kNone || behind == kNone || page[before].isElement || page[behind].isElement) return false;
  const Range all = page[index].all;
  return page.trimBack(all.begin, 0) == all.begin && page.skipSpace(all.end, page.source().size()) == all.end;
}

// Something begins or ends a line there anyway: the holder, or a block.
bool RepairPlanner::Data::isBesideBlock(int index) const {
  for (const bool forward : {false, true}) {
    const int sibling = skipped(index, forward);
    if (sibling == kNone ? page[page[index].parent].isInline : page[sibling].isInline || !page[sibling].isElement)
      continue;
    return true;
  }
  return false;
}

void RepairPlanner::Data::planMissingEnd(int index) {
  const RepairPage::Item& item = page[index];
  const int id = page.id(index);
  if (page.isHalf()) return giveUp(kHalfPage);
  if ((item.error & ERR_ELEMENT_PARSE_ERROR) || !page.isPlainTag(item.begin)) return giveUp("its begin tag is broken");
  if (!item.isCarriable && !isOneOf(id, kClosable)) return giveUp("where it ends is not told by the page");
  const auto* element = static_cast<const Element*>(item.node);
  if (isHeading(id)) {
    if (const int stray = strayHeading(index); stray != kNone) return exchangeEnd(index, stray);
  }
  if (item.isCarriable && reopen(index)) return;
  std::size_t offset = item.end.begin;
  const int block = item.isCarriable ? misplacedIn[static_cast<std::size_t>(index)] : kNone;
  if (block != kNone) {
    // It ends before the first thing in it that may not stand there.
    offset = page[block].all.begin;
    claim(block, kPlacing);
    const bool isTarget =
        id == ID_A && ElementAccess::hasAttribute(element, "NAME") && !ElementAccess::hasAttribute(element, "HREF");
    if (page.trimBack(offset, item.begin.end) == item.begin.end) {
      if (!isTarget) return giveUp("where it ends is not told by the page");
      offset = item.begin.end;
    }
  } else if (id == ID_A) {
    const int inner = innerAnchor[static_cast<std::size_t>(index)];
    if (inner != kNone) {
      offset = page[inner].all.begin;
      claim(inner, kPlacing);
    }
  }
  if (page.hasOddTag(item.begin.end, offset)) return giveUp(kOddTag);
  if (page.hasUnknownTag(item.begin.end, offset)) return giveUp(kUnknownTag);
  insertEndTag(index, offset);
  const std::string reason = "adds " + endTag(index);
  if (page.isOpenAtEnd() && page.skipSpace(offset, page.source().size()) == page.source().size()) {
    return finish(UNSAFE, reason + ", though the page goes on in another file as it seems");
  }
  finishAcross(item.begin.end, offset, reason);
}

// The end tag of a heading of another level, which browsers take for that of this one; kNone if there is none. A block
// before it tells that the heading ended long ago.
int RepairPlanner::Data::strayHeading(int index) const {
  for (int i = index + 1; i < page[index].behind; i = page[i].behind) {
    if (isHeading(page.id(i)) && (page[i].error & ERR_ELEMENT_BEGIN_TAG_MISSING)) return i;
    if (page[i].isElement && !page[i].isInline) return kNone;
  }
  return kNone;
}

void RepairPlanner::Data::exchangeEnd(int index, int stray) {
  const Range tag = page[stray].all;
  claim(stray, ERR_ELEMENT_BEGIN_TAG_MISSING);
  edit(tag.begin, tag.length(), endTag(index));
  finishAcross(page[index].begin.end, tag.begin, "writes " + std::string(page.at(tag)) + " as " + endTag(index));
}

// Elements that cross: what stands between the end of the outer one and the end tag of this one belongs to it still.
bool RepairPlanner::Data::reopen(int index) {
  const RepairPage::Item& item = page[index];
  const int outer = item.parent;
  if (outer == kNone || !page[outer].isCarriable || page[outer].end.isEmpty() || item.behind != page[outer].behind)
    return false;
  int stray = page.nextSibling(outer);
  for (int i = 0; i < kMostPassed && stray != kNone && page[stray].isInline; ++i) stray = page.nextSibling(stray);
  const bool isEnd =
      stray != kNone && page.id(stray) == page.id(index) && (page[stray].error & ERR_ELEMENT_BEGIN_TAG_MISSING);
  if (!isEnd) return false;
  const std::size_t begin = page.skipSpace(page[outer].all.end, page[stray].all.begin);
  if (begin == page[stray].all.begin) return false;
  const std::string tag(page.at(item.begin));
  const bool isBare = page.attributes(index).empty() && !page.hasServerCode(item.begin.begin + 1, item.begin.end);
  if (!isBare && !page.isPlainTag(item.begin)) return false;
  claim(stray, ERR_ELEMENT_BEGIN_TAG_MISSING);
  insertEndTag(index, item.end.begin);
  edit(begin, 0, tag, item.depth + 1);
  const std::string reason = "ends " + name(index) + " with " + name(outer) + " and begins it again behind";
  if (isBare) {
    finishAcross(item.begin.end, page[stray].all.begin, reason);
  } else {
    finish(UNSAFE, reason);
  }
  return true;
}

// --- what is misplaced -----------------------------------------------------------------------------------------------

void RepairPlanner::Data::planMisplaced(int index) {
  const RepairPage::Item& item = page[index];
  const int parent = item.parent;
  if (!item.isElement || parent == kNone) return planMove(index);
  if (item.isUnknown) return giveUp("the element is not known");
  if (item.error & (ERR_ELEMENT_PARSE_ERROR | ERR_ELEMENT_BEGIN_TAG_MISSING)) return giveUp("its tag is broken");
  if (endBeforeInner(index) || carry(index) || wrapCells(index) || takeListIn(index) || wrapItems(index)) return;
  planMove(index);
}

// Anchors do not nest. As browsers do, the outer one ends where the inner one begins.
bool RepairPlanner::Data::endBeforeInner(int index) {
  const int outer = page[index].parent;
  if (page.id(index) != ID_A || page.id(outer) != ID_A) return false;
  const RepairPage::Item& around = page[outer];
  if (around.end.isEmpty() || (around.error & kTagErrors) || innerAnchor[static_cast<std::size_t>(outer)] != index)
    return false;
  edit(page.trimBack(page[index].all.begin, around.begin.end), 0, std::string(page.at(around.end)), -around.depth - 1);
  removeTag(around.end);
  finishAcross(around.begin.end, around.end.begin, "ends " + name(outer) + " before the one in it");
  return true;
}

bool RepairPlanner::Data::carry(int index) {
  const int top = outermost[static_cast<std::size_t>(index)];
  if (top == kNone || page[index].isInline) return false;
  // What stops one of the blocks stops all of them.
  std::string_view& obstacle = obstacles[top];
  CarryPlan carried;
  if (obstacle.empty()) {
    carried = carryIntoBlocks(page, top, misplacedIn);
    obstacle = carried.obstacle;
  }
  if (!obstacle.empty()) {
    giveUp(std::string(obstacle));
    return true;
  }
  edits = std::move(carried.edits);
  for (const int block : carried.settled) claim(block, kPlacing);
  const int holder = page[top].parent;
  const std::string reason = "puts " + name(top) + " into the blocks that it holds";
  std::size_t begin = page[top].begin.end;
  std::size_t end = page[top].end.begin;
  bool keepsEndTags = carried.keepsEndTags;
  // The first block ends a paragraph around, so its end tag would end nothing.
  if (holder != kNone && page.id(holder) == ID_P && page[holder].end.isKnown() && !page[holder].end.isEmpty()) {
    removeTag(page[holder].end);
    begin = page[holder].begin.end;
    end = page[holder].end.begin;
    keepsEndTags = false;
  }
  if (page.isHalf() && !keepsEndTags) {
    giveUp(kHalfPage);
  } else if (carried.mayLookOtherwise) {
    finish(UNSAFE, reason + ", though its style may not fit there");
  } else {
    finishAcross(begin, end, reason);
  }
  return true;
}

// Cells that stand side by side without a row get one.
bool RepairPlanner::Data::wrapCells(int index) {
  const int table = page[index].parent;
  if (!isCell(page.id(index)) || !isRowHolder(page.id(table))) return false;
  // The body of a table may be implied; a table that another file begins is not this one's to mend.
  const int own = page[table].begin.isEmpty() ? page[table].parent : table;
  if (page.isHalf() || own == kNone || page[own].begin.isEmpty()) {
    giveUp(kHalfPage);
    return true;
  }
  int last = index;
  int next = skipped(index, /*forward=*/true);
  for (; next != kNone && isCell(page.id(next)) && isPlacing(next); next = skipped(next, true)) {
    claim(next, kPlacing);
    last = next;
  }
  const RepairPage::Item& first = page[index];
  const std::string tag = page.likeName(index, "TR");
  const int stray =
      next != kNone && page.id(next) == ID_TR && (page[next].error & ERR_ELEMENT_BEGIN_TAG_MISSING) ? next : kNone;
  const std::size_t line = page.lineBegin(first.begin.begin);
  const std::size_t like = stray != kNone && page.lineBegin(page[stray].all.begin) != SourceMap::NOWHERE
                               ? page[stray].all.begin
                               : first.begin.begin;
  if (line != SourceMap::NOWHERE) {
    edit(line, 0, page.indentOf(like) + "<" + tag + ">" + std::string(page.newlineNear(line)), first.depth);
  } else {
    edit(first.begin.begin, 0, "<" + tag + ">", first.depth);
  }
  std::size_t end = page[last].all.end;
  if (stray != kNone) {
    claim(stray, ERR_ELEMENT_BEGIN_TAG_MISSING);
    end = page[stray].all.begin;
  } else if (!page[last].end.isEmpty()) {
    const bool alone = line != SourceMap::NOWHERE && page.lineEnd(end) != SourceMap::NOWHERE;
    edit(end, 0, (alone ? std::string(page.newlineNear(line)) + page.indentOf(like) : std::string()) + "</" + tag + ">",
         -first.depth);
  }
  finishAcross(page[table].begin.end, std::max(end, page[table].end.begin), "puts a row around the cells");
  return true;
}

// A list that stands between the items belongs to the item before it.
bool RepairPlanner::Data::takeListIn(int index) {
  const RepairPage::Item& list = page[index];
  if (!isList(page.id(index)) || !isList(page.id(list.parent))) return false;
  const int item = skipped(index, /*forward=*/false);
  if (item == kNone || page.id(item) != ID_LI || page[item].end.isEmpty() || (page[item].error & kTagErrors))
    return false;
  int last = index;
  for (int next = index; next != kNone && isList(page.id(next)) && isPlacing(next); next = skipped(next, true)) {
    if (page[next].end.isEmpty()) return false;
    claim(next, kPlacing);
    last = next;
  }
  const std::size_t end = page[last].all.end;
  removeTag(page[item].end);
  const bool own =
      page.lineBegin(page[last].end.begin) != SourceMap::NOWHERE && page.lineEnd(end) != SourceMap::NOWHERE;
  const std::string before =
      own ? std::string(page.newlineNear(end)) + page.indentOf(page[item].begin.begin) : std::string();
  edit(end, 0, before + std::string(page.at(page[item].end)), -list.depth);
  finishAcross(page[item].begin.end, end, "lets the item before take the list in");
  return true;
}

// Items without a list get one, though that may change how they look.
bool RepairPlanner::Data::wrapItems(int index) {
  const int id = page.id(index);
  const char* const list = id == ID_LI ? "UL" : id == ID_DT || id == ID_DD ? "DL" : nullptr;
  if (!list || page.isHalf()) return false;
  const auto isItem = [&](int i) {
    return page.id(i) == id || (id != ID_LI && (page.id(i) == ID_DT || page.id(i) == ID_DD));
  };
  int last = index;
  for (int next = skipped(index, true); next != kNone && isItem(next) && isPlacing(next); next = skipped(next, true)) {
    claim(next, kPlacing);
    last = next;
  }
  const std::string tag = page.likeName(index, list);
  edit(page[index].begin.begin, 0, "<" + tag + ">", page[index].depth);
  edit(page.trimBack(page[last].all.end, page[last].begin.end), 0, "</" + tag + ">", -page[index].depth);
  finish(UNSAFE, "puts a list around the items");
  return true;
}

// --- what has to move ------------------------------------------------------------------------------------------------

// Unsafe in any case: a reader meets things in another order.
void RepairPlanner::Data::planMove(int index) {
  const RepairPage::Item& item = page[index];
  const int parent = item.parent;
  const bool isWhole = !item.isElement || (!item.isUnknown && !(item.error & kTagErrors));
  if (isWhole && parent != kNone && !page.isHalf() && (moveBeforeTable(index) || moveToHead(index) || takeIn(index)))
    return;
  if (parent == kNone || !page[parent].isElement) return giveUp("it would have to move");
  giveUp((item.isElement ? name(index) : std::string("the text")) + " would have to leave " + name(parent));
}

bool RepairPlanner::Data::moveBeforeTable(int index) {
  const RepairPage::Item& item = page[index];
  if (!item.isInline || !(isRowHolder(page.id(item.parent)) || page.id(item.parent) == ID_TR)) return false;
  int table = item.parent;
  for (int i = 0; i < kMostPassed && table != kNone && page.id(table) != ID_TABLE; ++i) table = page[table].parent;
  if (table == kNone || page.id(table) != ID_TABLE || page[table].begin.isEmpty()) return false;
  const Range range = item.all;
  edit(range.begin, range.length(), {});
  edit(page[table].begin.begin, 0, std::string(page.at(range)), index);
  finish(UNSAFE, "moves it before the table");
  return true;
}

// What only the head may hold goes to its end.
bool RepairPlanner::Data::moveToHead(int index) {
  const int id = page.id(index);
  if (id != ID_META && id != ID_LINK && id != ID_BASE) return false;
  const int head = page.head();
  if (head == kNone || page[head].end.isEmpty() || page[index].all.begin < page[head].all.end) return false;
  const std::size_t end = page[head].end.begin;
  const bool own = page.lineBegin(end) != SourceMap::NOWHERE;
  removeTag(page[index].all);
  edit(end, 0, std::string(page.at(page[index].all)) + (own ? std::string(page.newlineNear(end)) : std::string()),
       index);
  finish(UNSAFE, "moves it to the head");
  return true;
}

// Between items stands what belongs to the item before.
bool RepairPlanner::Data::takeIn(int index) {
  if (!page[index].isInline || !isList(page.id(page[index].parent))) return false;
  const int item = skipped(index, /*forward=*/false);
  if (item == kNone || page.id(item) != ID_LI || page[item].end.isEmpty() || (page[item].error & kTagErrors))
    return false;
  int last = index;
  for (int next = index; next != kNone && page[next].isInline; next = page.nextSibling(next)) {
    claim(next, kPlacing | ERR_TEXT_ONLY_WHITESPACES_CAN_EXIST);
    if (!page.isBlank(next)) last = next;
  }
  const std::size_t end = page.trimBack(page[last].all.end, page[last].all.begin);
  edit(page[item].end.begin, page[item].end.length(), {});
  edit(end, 0, std::string(page.at(page[item].end)), -page[index].depth);
  finish(UNSAFE, "lets the item before take it in");
  return true;
}

// --- tags that are written otherwise ---------------------------------------------------------------------------------

// The tag with what could be read of it.
void RepairPlanner::Data::planBrokenTag(int index) {
  const RepairPage::Item& item = page[index];
  if (item.isUnknown || !item.begin.isKnown() || item.begin.isEmpty()) return giveUp("the element is not known");
  const std::string_view tag = page.at(item.begin);
  if (page.hasServerCode(item.begin.begin, item.begin.end)) return giveUp("server code stands in the tag");
  if (tag.find_first_of("<>", 1) < tag.size() - 1) return giveUp("the tag has no end");
  std::string text = "<" + page.writtenName(index);
  for (const Range& attribute : page.attributes(index)) {
    text += " ";
    text += page.at(attribute);
  }
  text += tag.size() > 1 && tag.substr(tag.size() - 2) == "/>" ? " />" : ">";
  edit(item.begin.begin, item.begin.length(), std::move(text));
  finish(UNSAFE, "writes the tag anew with what could be read of it");
}

void RepairPlanner::Data::planCase(int index) {
  const RepairPage::Item& item = page[index];
  const auto* element = static_cast<const Element*>(item.node);
  const ElementDefinition* definition = element->getElementDefinition();
  if (!definition) return giveUp("the element is not known");
  const std::string& name = definition->getName();
  const auto rename = [&](Range tag, std::size_t behind, const std::vector<std::pair<Range, std::string>>& attributes) {
    if (!tag.isKnown() || tag.length() < behind + name.size()) return;
    std::vector<SourceEdit> inTag = {{behind, name.size(), name}};
    for (const auto& [range, declared] : attributes)
      inTag.push_back({range.begin - tag.begin, range.length(), declared});
    std::string written = applyEdits(page.at(tag), inTag);
    if (written != page.at(tag)) edit(tag.begin, tag.length(), std::move(written));
  };
  rename(item.begin, 1, page.misspelt(index));
  rename(item.end, 2, {});
  claim(index, ERR_ELEMENT_INVALID_CASE);
  claim(index, ERR_ELEMENT_INVALID_CASE_ATTR);
  claim(index, ERR_ELEMENT_INVALID_CASE_END);
  if (edits.empty()) return giveUp("how it is written is not told");
  finish(UNSAFE, "writes the names of the tag as they are declared");
}

// --- the planner -----------------------------------------------------------------------------------------------------

RepairPlanner::RepairPlanner(Document* document, bool guardWide) {
  if (document && document->getDocumentElement()) data_ = std::make_unique<Data>(*document, guardWide);
}

RepairPlanner::~RepairPlanner() = default;

const std::string& RepairPlanner::source() const { return data_ ? data_->page.source() : kNothing.source; }
const std::vector<RepairPlanner::Finding>& RepairPlanner::findings() const {
  return data_ ? data_->findings : kNothing.findings;
}
const std::vector<RepairPlanner::Plan>& RepairPlanner::plans() const { return data_ ? data_->plans : kNothing.plans; }
bool RepairPlanner::isHalfPage(Document* document) {
  return document && document->getDocumentElement() && RepairPage(*document).isHalf();
}
bool RepairPlanner::isHalfPage() const { return data_ && data_->page.isHalf(); }

const RepairPlanner::Plan* RepairPlanner::planFor(const Node* node, unsigned long error) const {
  const int index = data_ ? data_->page.find(node) : kNone;
  const std::size_t finding = index == kNone ? Data::kNoPlan : data_->findingOf(index, error);
  if (finding == Data::kNoPlan || !data_->isSettled(finding)) return nullptr;
  return &data_->plans[data_->planOf[finding]];
}

// --- plans together --------------------------------------------------------------------------------------------------

RepairPlanner::Verdict RepairPlanner::verify(const std::vector<std::size_t>& plans) const {
  Verdict verdict;
  verdict.text = source();
  if (!data_) return verdict;
  const Batch batch = data_->join(plans, verdict.plans);
  verdict.edits = batch.edits;
  verdict.text = applyEdits(source(), batch.edits);
  data_->compare(batch, verdict);
  verdict.isSound = verdict.failed.empty();
  return verdict;
}

// The edits of the plans that do not overlap; `applied` receives those plans.
Batch RepairPlanner::Data::join(std::vector<std::size_t> wanted, std::vector<std::size_t>& applied) const {
  std::sort(wanted.begin(), wanted.end());
  wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());
  std::vector<bool> isOut(plans.size(), false);
  Batch batch;
  // What overlaps goes; a second round joins what is left, where nothing overlaps any more.
  for (int round = 0; round < 2; ++round) {
    std::vector<OwnedEdit> all;
    applied.clear();
    for (const std::size_t plan : wanted) {
      if (plan >= plans.size() || plans[plan].edits.empty() || isOut[plan]) continue;
      applied.push_back(plan);
      for (const PlannedEdit& edit : planned[plan]) all.push_back({&edit, plan});
    }
    batch = mergeEdits(std::move(all));
    if (batch.left.empty()) break;
    for (const std::size_t plan : batch.left) isOut[plan] = true;
  }
  return batch;
}

// Parses the new text and compares its errors with those of the page.
void RepairPlanner::Data::compare(const Batch& batch, Verdict& verdict) const {
  const ParsedPage parsed(dom, verdict.text);
  const RepairPage after(*parsed.document());
  if (after.source() != verdict.text) {
    verdict.failed = verdict.plans;
    return;
  }
  const OffsetMap map(batch.edits);
  // How often an error stood at what is now this place, and who was to settle it.
  struct Known {
    std::size_t count = 0;
    std::vector<std::size_t> claimedBy;
  };
  std::map<std::pair<std::size_t, unsigned long>, Known> known;
  unsigned long bits = 0;
  for (std::size_t f = 0; f < findings.size(); ++f) {
    bits |= findings[f].error;
    const std::size_t now =
        findings[f].offset == SourceMap::NOWHERE ? SourceMap::NOWHERE : map.forward(findings[f].offset);
    if (now == SourceMap::NOWHERE) continue;
    Known& entry = known[{now, findings[f].error}];
    const std::size_t plan = planOf[f];
    if (plan != kNoPlan && std::binary_search(verdict.plans.begin(), verdict.plans.end(), plan)) {
      entry.claimedBy.push_back(plan);
    } else {
      ++entry.count;
    }
  }
  std::vector<bool> hasFailed(plans.size(), false);
  const auto fail = [&](std::size_t plan) {
    if (!hasFailed[plan]) verdict.failed.push_back(plan);
    hasFailed[plan] = true;
  };
  for (const Finding& finding : listFindings(after)) {
    if (finding.offset == SourceMap::NOWHERE) continue;
    const auto found = known.find({finding.offset, finding.error});
    if (found != known.end() && found->second.count > 0) {
      --found->second.count;
    } else if (found != known.end() && !found->second.claimedBy.empty()) {
      fail(found->second.claimedBy.back());
      found->second.claimedBy.pop_back();
    } else {
      // A copy of a tag carries the warnings of the tag.
      const bool isWarning = (finding.error & ERR_DOC_SEVERE_PARSE_ERROR) == 0;
      if (isWarning && (bits & finding.error) && map.isWritten(finding.offset)) continue;
      const std::size_t edit = map.editAt(finding.offset);
      fail(batch.owners[edit == OffsetMap::kNoEdit ? 0 : edit]);
    }
  }
}

}  // namespace zeldom40
