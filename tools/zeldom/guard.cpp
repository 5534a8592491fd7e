// Compares a page with what is to be written in its place.
#include "tools/zeldom/guard.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "tools/zeldom/guard_pieces.h"

namespace zeldom40::tool {

namespace {

constexpr std::size_t kNone = std::string_view::npos;

using Fault = std::optional<GuardFault>;
using Pieces = std::vector<Piece>;

// What a fault says of a piece.
const char* called(const Piece& piece) {
  switch (piece.kind) {
    case PieceKind::kMark:
      return "the byte order mark";
    case PieceKind::kSpace:
      return "white space";
    case PieceKind::kWord:
      return "text";
    case PieceKind::kServer:
      return "server code";
    case PieceKind::kComment:
      return "a comment";
    case PieceKind::kDeclaration:
      return "a declaration";
    case PieceKind::kBegin:
      return "a begin tag";
    case PieceKind::kEnd:
      return "an end tag";
    case PieceKind::kRaw:
      return "a script or preformatted text";
    case PieceKind::kBroken:
      return "a broken tag";
  }
  return "the page";
}

Fault fault(std::size_t offset, std::string reason) { return GuardFault{offset, std::move(reason)}; }
Fault changed(const Piece& piece, std::size_t offset) {
  return fault(offset, std::string(called(piece)) + " would change, move, come or go");
}

bool isSpace(const Piece& piece) { return piece.kind == PieceKind::kSpace; }
bool isTag(const Piece& piece) { return piece.kind == PieceKind::kBegin || piece.kind == PieceKind::kEnd; }
// Whether layout ignores white space beside a piece.
bool isFree(const Piece& piece) {
  return piece.kind == PieceKind::kDeclaration || (isTag(piece) && (piece.is(kBlockTag) || piece.is(kUnseenTag)));
}
bool isGuarded(const Piece& piece) { return piece.kind == PieceKind::kServer || piece.kind == PieceKind::kComment; }

std::string_view bytesOf(std::string_view page, const Piece& piece) {
  return page.substr(piece.begin, piece.end - piece.begin);
}

// How two neighbours that a reader sees are kept apart.
struct Joint {
  std::size_t offset = 0;  // of the second one
  bool space = false;      // by white space
  bool block = false;      // by the tag of a block or an end of the page
  bool blockOrScript = false;
};

// One joint before each visible piece, and one at the end.
std::vector<Joint> jointsOf(const Pieces& pieces, std::size_t size) {
  std::vector<Joint> joints;
  Joint next{0, false, true, true};
  for (const Piece& piece : pieces) {
    if (isSpace(piece)) next.space = true;
    if (isTag(piece) && piece.is(kBlockTag)) next.block = true;
    if (isFree(piece)) next.blockOrScript = true;
    if (!piece.is(kVisible)) continue;
    next.offset = piece.begin;
    joints.push_back(next);
    next = Joint{};
  }
  joints.push_back({size, next.space, true, true});
  return joints;
}

// --- White space alone -------------------------------------------------------------------------------------------

bool sameButForCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    const auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : +c; };
    return fold(x) == fold(y);
  });
}

class LayoutCheck {
 public:
  LayoutCheck(std::string_view before, std::string_view after, bool namesMayChange)
      : before_(before), after_(after), namesMayChange_(namesMayChange), old_(cutPage(before)), new_(cutPage(after)) {}

  Fault run() {
    findBodies();
    std::size_t i = 0, j = 0;
    for (const Piece* last = nullptr;;) {
      const Piece* oldGap = i < old_.size() && isSpace(old_[i]) ? &old_[i++] : nullptr;
      const Piece* newGap = j < new_.size() && isSpace(new_[j]) ? &new_[j++] : nullptr;
      const Piece* next = i < old_.size() ? &old_[i] : nullptr;
      if (!next && j < new_.size()) return changed(new_[j], before_.size());
      if (next && (j == new_.size() || !isSame(*next, new_[j]))) return changed(*next, next->begin);
      if (Fault found = checkGap(last, oldGap, newGap, next)) return found;
      if (!next) break;
      if (partner_[i] != kNone) passAction(i);
      last = next;
      ++i;
      ++j;
    }
    return checkJoints();
  }

 private:
  bool isSame(const Piece& a, const Piece& b) const {
    if (a.kind != b.kind) return false;
    const std::string_view x = bytesOf(before_, a), y = bytesOf(after_, b);
    if (x == y) return true;
    if (!namesMayChange_ || !isTag(a)) return false;
    const std::size_t name = tagName(x).size() + (a.kind == PieceKind::kEnd ? 2 : 1);
    return sameButForCase(x.substr(0, name), y.substr(0, name)) && x.substr(name) == y.substr(std::min(name, y.size()));
  }

  // Finds the bodies of custom actions: from a begin tag to the next end tag of its name that is still free.
  void findBodies() {
    std::map<std::string_view, std::vector<std::size_t>> open;
    partner_.assign(old_.size(), kNone);
    for (std::size_t i = 0; i < old_.size(); ++i) {
      if (!old_[i].is(kActionBegin) && !old_[i].is(kActionEnd)) continue;
      const std::string_view name = actionName(i);
      if (old_[i].is(kActionBegin) && !old_[i].is(kClosedTag)) open[name].push_back(i);
      if (!old_[i].is(kActionEnd) || open[name].empty()) continue;
      partner_[i] = open[name].back();
      partner_[open[name].back()] = i;
      open[name].pop_back();
    }
  }

  // Names of actions are told apart by case.
  std::string_view actionName(std::size_t i) const {
    const std::string_view tag = bytesOf(before_, old_[i]);
    const std::size_t begin = tag[1] == '/' ? 2 : 1;
    return tag.substr(begin, tag.find_first_of(" \t\r\n\f<>/\"'=", begin) - begin);
  }

  static bool usesBodyAsValue(std::string_view name) {
    return name == "c:set" || name == "sql:query" || name == "sql:update" || name == "x:parse";
  }

  // The white space behind the begin tag and in front of the end tag is the body's.
  void passAction(std::size_t i) {
    const std::size_t value = usesBodyAsValue(actionName(i)) ? 1 : 0;
    if (old_[i].is(kActionBegin)) {
      ++bodies_;
      values_ += value;
    } else {
      --bodies_;
      values_ -= value;
    }
  }

  // Whether the gap between two pieces may become what it is in the new page. Null pieces are the ends of the page.
  Fault checkGap(const Piece* last, const Piece* oldGap, const Piece* newGap, const Piece* next) {
    const std::string_view was = oldGap ? bytesOf(before_, *oldGap) : std::string_view();
    const std::string_view now = newGap ? bytesOf(after_, *newGap) : std::string_view();
    const bool inBody = bodies_ > 0;
    if (was == now) return std::nullopt;
    const std::size_t place = oldGap ? oldGap->begin : next ? next->begin : before_.size();
    if (values_ > 0) return fault(place, "white space in the body of an action that uses it as a value would change");
    const bool broke = oldGap && oldGap->is(kLineBreak), breaks = newGap && newGap->is(kLineBreak);
    if (inBody && !broke) return fault(place, "white space in the body of an action would change where no line ends");
    const bool edge = !last || last->kind == PieceKind::kMark || !next;
    if (!oldGap && (!last || last->kind == PieceKind::kMark)) {
      return fault(place, "white space would come before the first thing on the page");
    }
    const bool free = edge || isFree(*last) || isFree(*next);
    const bool guarded = inBody || (last && isGuarded(*last)) || (next && isGuarded(*next));
    if (free && !inBody) return std::nullopt;
    if (guarded ? broke && breaks : oldGap && newGap && (broke || breaks)) return std::nullopt;
    return fault(place, "white space would change where it counts");
  }

  Fault checkJoints() const {
    const std::vector<Joint> was = jointsOf(old_, before_.size()), now = jointsOf(new_, after_.size());
    for (std::size_t i = 0; i < was.size(); ++i) {
      if (!was[i].block && was[i].space != now[i].space) {
        return fault(was[i].offset, "text would be joined or separated");
      }
    }
    return std::nullopt;
  }

  std::string_view before_, after_;
  bool namesMayChange_;
  Pieces old_, new_;
  std::vector<std::size_t> partner_;  // of begin and end tags of actions
  std::size_t bodies_ = 0;            // of actions around the present place
  std::size_t values_ = 0;            // of those that use them as values
};

// --- Repairs -----------------------------------------------------------------------------------------------------

// A stretch of a page: bytes that an edit takes out of the old page or puts into the new one.
struct Stretch {
  std::size_t begin = 0;
  std::size_t end = 0;
};

// A piece with what a repair means for it. White space is cut where an edit begins or ends.
struct Part {
  Piece piece;
  std::size_t edit = kNone;     // the edit that it belongs to; kNone: it stands in both pages
  std::size_t partner = kNone;  // of a tag: the part that its element begins or ends with
  std::size_t order = 0;        // protected bytes in front of it
  std::size_t shown = 0;        // bytes in front of it that show, but for tags around other things
  std::size_t branches = 0;     // server code that may branch in front of it
};

struct NameCount {
  std::vector<std::size_t> open;  // begin tags that wait for their end tag
  std::size_t ends = 0;
  std::size_t strays = 0;  // end tags without begin tag
  bool optionalEnd = false;
};

using NameCounts = std::map<std::string, NameCount>;

// One of the two pages.
struct Version {
  std::string_view bytes;
  std::vector<Part> parts;
  NameCounts names;
  std::size_t size() const { return parts.size(); }
  std::string_view text(const Part& part) const { return bytesOf(bytes, part.piece); }
};

// A begin tag that an inline element may carry over block tags; the order of protected things is told without both.
bool isCarried(const Piece& piece) { return piece.kind == PieceKind::kBegin && piece.is(kInlineTag); }
bool isBlockBegin(const Piece& piece) { return piece.kind == PieceKind::kBegin && piece.is(kBlockTag); }
bool isProtected(const Piece& piece) {
  return !isSpace(piece) && piece.kind != PieceKind::kEnd && !isCarried(piece) && !isBlockBegin(piece);
}

// Cuts a page where edits begin and end. Only white space may be cut: else `where` is the index of the edit.
bool cutAtEdits(std::string_view bytes, const std::vector<Stretch>& edits, std::vector<Part>* parts,
                std::size_t* where) {
  std::size_t inside = 0;  // the first stretch that does not end in front of the part
  std::size_t border = 0;  // twice the index of a stretch, one more for its end
  const auto borderAt = [&edits](std::size_t i) { return i % 2 ? edits[i / 2].end : edits[i / 2].begin; };
  for (Piece piece : cutPage(bytes)) {
    const std::size_t end = piece.end;
    while (piece.begin < end) {
      while (border < 2 * edits.size() && borderAt(border) <= piece.begin) ++border;
      piece.end = border < 2 * edits.size() ? std::min(end, borderAt(border)) : end;
      if (piece.end < end && !isSpace(piece)) {
        *where = border / 2;
        return false;
      }
      while (inside < edits.size() && edits[inside].end <= piece.begin) ++inside;
      const bool isInside = inside < edits.size() && edits[inside].begin <= piece.begin;
      parts->push_back({piece, isInside ? inside : kNone});
      piece.begin = piece.end;
    }
  }
  return true;
}

// Counts what stands in front of each part and finds the partners of tags.
void measure(Version* version) {
  std::size_t order = 0, shown = 0, branches = 0;
  for (std::size_t i = 0; i < version->parts.size(); ++i) {
    Part& part = version->parts[i];
    const Piece& piece = part.piece;
    const std::size_t length = piece.end - piece.begin;
    part.order = order;
    part.shown = shown;
    part.branches = branches;
    if (isProtected(piece)) order += length;
    if (piece.is(kVisible) && (piece.kind != PieceKind::kBegin || piece.is(kVoidTag))) shown += length;
    if (piece.is(kMayBranch) || piece.is(kHoldsServer)) ++branches;
    if (!isTag(piece)) continue;
    NameCount& count = version->names[tagName(version->text(part))];
    count.optionalEnd = piece.is(kOptionalEnd);
    if (piece.kind == PieceKind::kEnd) {
      ++count.ends;
      if (count.open.empty()) {
        ++count.strays;
      } else {
        part.partner = count.open.back();
        version->parts[part.partner].partner = i;
        count.open.pop_back();
      }
    } else if (!piece.is(kVoidTag) && !piece.is(kClosedTag)) {
      count.open.push_back(i);
    }
  }
}

bool contains(std::string_view page, std::initializer_list<std::string_view> words) {
  return std::any_of(words.begin(), words.end(),
                     [page](std::string_view word) { return page.find(word) != std::string_view::npos; });
}

bool isDirective(std::string_view page, std::size_t at, std::string_view name) {
  const std::size_t word = page.find_first_not_of(" \t\r\n\f", at + 3);
  return word != kNone && sameButForCase(page.substr(word, name.size()), name);
}

std::string folded(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return lower;
}

// Whether other files are part of the page.
bool includesFiles(std::string_view page) {
  for (std::size_t i = page.find("<%@"); i != kNone; i = page.find("<%@", i + 3)) {
    if (isDirective(page, i, "include")) return true;
  }
  return contains(folded(page), {"<jsp:include", "<jsp:directive.include", "<!--#include", "<tiles:", "<c:import",
                                 "<decorator:", "<sitemesh:"});
}

class RepairCheck {
 public:
  RepairCheck(std::string_view before, std::string_view after, std::span<const PlannedEdit> planned)
      : planned_(planned) {
    old_.bytes = before;
    new_.bytes = after;
  }

  Fault run() {
    if (Fault found = checkPlan()) return found;
    if (Fault found = checkOutside()) return found;
    measure(&old_);
    measure(&new_);
    if (Fault found = checkBeginning()) return found;
    if (Fault found = checkEdits()) return found;
    if (Fault found = checkInline()) return found;
    if (Fault found = checkJoints()) return found;
    if (Fault found = checkPartners()) return found;
    return checkNames();
  }

  // The edits are in order and give the new page; that alone.
  Fault checkPlan() {
    std::size_t from = 0, to = 0;
    for (const PlannedEdit& edit : planned_) {
      if (edit.offset < from || edit.offset > old_.bytes.size() || edit.length > old_.bytes.size() - edit.offset) {
        return fault(std::min(edit.offset, old_.bytes.size()), "planned edits overlap or lie outside of the page");
      }
      if (Fault found = checkStretch(from, edit.offset, &to)) return found;
      if (new_.bytes.substr(to, edit.replacement.size()) != edit.replacement) {
        return fault(edit.offset, "the new text is not the one that was planned");
      }
      oldEdits_.push_back({edit.offset, edit.offset + edit.length});
      newEdits_.push_back({to, to + edit.replacement.size()});
      to += edit.replacement.size();
      from = edit.offset + edit.length;
    }
    if (Fault found = checkStretch(from, old_.bytes.size(), &to)) return found;
    if (to != new_.bytes.size()) return fault(old_.bytes.size(), "text would come behind the end");
    return std::nullopt;
  }

 private:
  Fault checkStretch(std::size_t from, std::size_t end, std::size_t* to) const {
    const std::string_view was = old_.bytes.substr(from, end - from);
    const std::string_view now = new_.bytes.substr(std::min(*to, new_.bytes.size()), was.size());
    *to += was.size();
    if (was == now) return std::nullopt;
    const std::size_t same =
        static_cast<std::size_t>(std::mismatch(was.begin(), was.end(), now.begin(), now.end()).first - was.begin());
    return fault(from + same, "a place would change that no repair was planned for");
  }

  // Outside of the edits both pages are cut into the same pieces: no edit changes how something else is read.
  Fault checkOutside() {
    std::size_t where = 0;
    if (!cutAtEdits(old_.bytes, oldEdits_, &old_.parts, &where) ||
        !cutAtEdits(new_.bytes, newEdits_, &new_.parts, &where)) {
      return fault(oldEdits_[where].begin, "a repair would cut, join or change a word, a tag or server code");
    }
    std::size_t i = 0, j = 0;
    for (;; ++i, ++j) {
      while (i < old_.size() && old_.parts[i].edit != kNone) ++i;
      while (j < new_.size() && new_.parts[j].edit != kNone) ++j;
      if (i == old_.size()) break;
      const Piece& was = old_.parts[i].piece;
      if (j == new_.size()) return changed(was, was.begin);
      const Piece& now = new_.parts[j].piece;
      if (was.kind != now.kind || bytesOf(old_.bytes, was) != bytesOf(new_.bytes, now)) return changed(was, was.begin);
    }
    if (j < new_.size()) return changed(new_.parts[j].piece, old_.bytes.size());
    return std::nullopt;
  }

  static const Part* first(const Version& version) {
    const auto found = std::find_if(version.parts.begin(), version.parts.end(), [](const Part& part) {
      return part.piece.kind != PieceKind::kMark && !isSpace(part.piece);
    });
    return found == version.parts.end() ? nullptr : &*found;
  }

  // What stands first stays first, with the white space in front of it.
  Fault checkBeginning() const {
    const Part* was = first(old_);
    const Part* now = first(new_);
    if (!was || !now) return was == now ? std::nullopt : fault(0, "all of the page would come or go");
    const bool plain =
        was->piece.kind == PieceKind::kEnd || (was->piece.kind == PieceKind::kBegin && !was->piece.is(kSkeletonTag));
    const bool same = plain ? isTag(now->piece) && !now->piece.is(kSkeletonTag) : old_.text(*was) == new_.text(*now);
    if (!same || new_.bytes.substr(0, was->piece.begin) != old_.bytes.substr(0, was->piece.begin) ||
        now->piece.begin != was->piece.begin) {
      return fault(0, "the beginning of the page would change");
    }
    return std::nullopt;
  }

  // Each edit on its own: what is protected stays and keeps its order, what comes may come.
  Fault checkEdits() const {
    std::size_t i = 0, j = 0;
    // Of HTML, HEAD, BODY and FRAMESET each stands once, where one of them stands at all.
    std::set<std::string> skeleton;
    for (const Part& part : old_.parts) {
      if (part.piece.kind == PieceKind::kBegin && part.piece.is(kSkeletonTag))
        skeleton.insert(tagName(old_.text(part)));
    }
    const auto mayCome = [&](const Part& part) {
      const Piece& piece = part.piece;
      if (piece.kind != PieceKind::kBegin || !piece.is(kBareTag) || piece.is(kVoidTag) || piece.is(kActingTag)) {
        return false;
      }
      if (piece.is(kSkeletonTag)) return !skeleton.empty() && skeleton.insert(tagName(new_.text(part))).second;
      return piece.is(kBlockTag);
    };
    for (std::size_t edit = 0; edit < planned_.size(); ++edit) {
      const std::vector<const Part*> out = partsOf(old_, edit, &i), in = partsOf(new_, edit, &j);
      std::size_t next = 0;
      for (const Part* part : in) {
        if (next < out.size() && old_.text(*out[next]) == new_.text(*part)) {
          ++next;
        } else if (!mayCome(*part) && !isBreak(edit, *part)) {
          return changed(part->piece, planned_[edit].offset);
        }
      }
      if (next < out.size()) return changed(out[next]->piece, out[next]->piece.begin);
      if (isLonely(edit)) return fault(planned_[edit].offset, "white space would change where no repair is");
    }
    return std::nullopt;
  }

  // Every browser reads the end tag of BR as a begin tag, so each may be written as one.
  bool isBreak(std::size_t edit, const Part& part) const {
    const auto count = [](std::string_view text, std::string_view tag) {
      const std::string all = folded(text);
      std::size_t times = 0;
      for (std::size_t i = all.find(tag); i != kNone; i = all.find(tag, i + 1)) ++times;
      return times;
    };
    const std::string_view was = old_.bytes.substr(planned_[edit].offset, planned_[edit].length);
    return part.piece.is(kBareTag) && tagName(new_.text(part)) == "br" &&
           count(planned_[edit].replacement, "<br") <= count(was, "</br") + count(was, "<br");
  }

  // The parts of an edit but for white space, end tags and inline begin tags, which other checks know. `at` is where
  // to look.
  static std::vector<const Part*> partsOf(const Version& version, std::size_t edit, std::size_t* at) {
    std::vector<const Part*> parts;
    for (; *at < version.size(); ++*at) {
      const Part& part = version.parts[*at];
      if (part.edit == kNone || part.edit < edit) continue;
      if (part.edit > edit) break;
      if (isProtected(part.piece) || isBlockBegin(part.piece)) parts.push_back(&part);
    }
    return parts;
  }

  static bool isBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n\f") == kNone; }

  bool isSpaceEdit(std::size_t edit) const {
    return isBlank(planned_[edit].replacement) &&
           isBlank(old_.bytes.substr(planned_[edit].offset, planned_[edit].length));
  }

  // An edit of white space belongs to the edit of a tag, with nothing but white space between.
  bool isLonely(std::size_t edit) const {
    if (!isSpaceEdit(edit)) return false;
    const auto between = [this](std::size_t a, std::size_t b) {
      return isBlank(old_.bytes.substr(oldEdits_[a].end, oldEdits_[b].begin - oldEdits_[a].end));
    };
    const bool afterOne = edit > 0 && !isSpaceEdit(edit - 1) && between(edit - 1, edit);
    const bool beforeOne = edit + 1 < planned_.size() && !isSpaceEdit(edit + 1) && between(edit, edit + 1);
    return !afterOne && !beforeOne;
  }

  // An inline begin tag of the old page, with what stands for it in the new one.
  struct Carried {
    std::size_t origin = 0;             // its part in the old page
    std::vector<std::size_t> carriers;  // parts of the new page: the tag itself first
  };

  // Inline begin tags: each stays where it is among everything but block tags. Others that come are bare, or repeat one
  // of these inside what it held.
  Fault checkInline() const {
    std::vector<Carried> all;
    std::map<std::string_view, std::size_t> latest;  // of the tags with these bytes: the last one in `all`
    std::size_t i = 0;
    for (std::size_t j = 0; j < new_.size(); ++j) {
      const Part& now = new_.parts[j];
      if (!isCarried(now.piece)) continue;
      while (i < old_.size() && !isCarried(old_.parts[i].piece)) ++i;
      if (i < old_.size() && old_.parts[i].order == now.order && old_.text(old_.parts[i]) == new_.text(now)) {
        latest[new_.text(now)] = all.size();
        all.push_back({i++, {j}});
        continue;
      }
      const std::size_t place = placeOf(now);
      if (now.edit == kNone) return fault(place, "a begin tag would change its place among text and other tags");
      const auto found = latest.find(new_.text(now));
      const bool repeats = found != latest.end() && holds(all[found->second], now);
      if (repeats) {
        if (now.piece.is(kHoldsServer) || namesSomething(new_.text(now))) {
          return fault(place, "a tag with a name or with server code would be doubled");
        }
        all[found->second].carriers.push_back(j);
      } else if (!now.piece.is(kBareTag)) {
        return changed(now.piece, place);
      }
    }
    for (; i < old_.size(); ++i) {
      if (isCarried(old_.parts[i].piece)) return changed(old_.parts[i].piece, old_.parts[i].piece.begin);
    }
    for (const Carried& each : all) {
      if (Fault found = checkCarried(each)) return found;
    }
    return std::nullopt;
  }

  // Whether a place in the new page is inside of what the tag held in the old one.
  bool holds(const Carried& tag, const Part& place) const {
    const std::size_t partner = old_.parts[tag.origin].partner;
    return partner == kNone || place.order <= old_.parts[partner].order;
  }

  // What a reader saw in the element is in it still, and nothing else is.
  Fault checkCarried(const Carried& tag) const {
    const Part& origin = old_.parts[tag.origin];
    if (origin.edit == kNone && tag.carriers.size() == 1) return std::nullopt;
    if (origin.piece.is(kHoldsServer)) return fault(origin.piece.begin, "a tag with server code would move");
    if (origin.partner == kNone) return std::nullopt;
    std::size_t shown = 0;
    for (const std::size_t carrier : tag.carriers) {
      const std::size_t partner = new_.parts[carrier].partner;
      if (partner == kNone) return fault(origin.piece.begin, "a begin tag would move away from its end tag");
      shown += new_.parts[partner].shown - new_.parts[carrier].shown;
    }
    if (shown != old_.parts[origin.partner].shown - origin.shown) {
      return fault(origin.piece.begin, "an element would hold other things than before");
    }
    return std::nullopt;
  }

  // Where the edit of a part stands in the old page.
  std::size_t placeOf(const Part& part) const {
    if (part.edit != kNone) return planned_[part.edit].offset;
    const auto behind = std::upper_bound(newEdits_.begin(), newEdits_.end(), part.piece.begin,
                                         [](std::size_t at, const Stretch& edit) { return at < edit.end; });
    if (behind == newEdits_.begin()) return part.piece.begin;
    const std::size_t last = static_cast<std::size_t>(behind - newEdits_.begin()) - 1;
    return oldEdits_[last].end + (part.piece.begin - newEdits_[last].end);
  }

  static Pieces piecesOf(const Version& version) {
    Pieces pieces;
    pieces.reserve(version.size());
    for (const Part& part : version.parts) pieces.push_back(part.piece);
    return pieces;
  }

  // Words that stood apart stand apart, and words that touched still touch.
  Fault checkJoints() const {
    const std::vector<Joint> was = jointsOf(piecesOf(old_), old_.bytes.size());
    const std::vector<Joint> now = jointsOf(piecesOf(new_), new_.bytes.size());
    for (std::size_t i = 0; i < was.size() && i < now.size(); ++i) {
      const bool parted = (was[i].space || was[i].block) == (now[i].space || now[i].block) &&
                          (was[i].space || was[i].blockOrScript) == (now[i].space || now[i].blockOrScript);
      const bool invented = now[i].space && !was[i].space && !now[i].block;
      if (!parted || invented) return fault(was[i].offset, "text would be joined or separated");
    }
    return std::nullopt;
  }

  // Who knows whether server code between two tags lets the one out and not the other?
  Fault checkPartners() const {
    for (const Version* version : {&old_, &new_}) {
      for (const Part& part : version->parts) {
        if (part.edit == kNone || part.piece.kind != PieceKind::kEnd || part.partner == kNone) continue;
        if (version->parts[part.partner].branches != part.branches) {
          return fault(planned_[part.edit].offset, "server code stands between an end tag and its begin tag");
        }
      }
    }
    return std::nullopt;
  }

  Fault checkNames() const {
    const bool half = isHalf();
    for (const auto& [name, now] : new_.names) {
      const auto found = old_.names.find(name);
      const NameCount was = found == old_.names.end() ? NameCount{} : found->second;
      const bool tears = now.strays > was.strays || (!now.optionalEnd && now.open.size() > was.open.size());
      if (tears) return fault(editOf(name), "a tag would lose its partner: " + name);
      if (half && now.ends != was.ends) return fault(editOf(name), kHalfPage);
    }
    for (const auto& [name, was] : old_.names) {
      if (half && was.ends > 0 && !new_.names.count(name)) return fault(editOf(name), kHalfPage);
    }
    return std::nullopt;
  }

  static constexpr char kHalfPage[] = "an end tag would come or go in a page of which other files may hold the rest";

  // Whether other files may hold what begins or ends here.
  bool isHalf() const {
    const bool whole = std::any_of(old_.parts.begin(), old_.parts.end(), [this](const Part& part) {
      if (part.piece.kind == PieceKind::kDeclaration) return sameButForCase(old_.text(part).substr(2, 7), "doctype");
      if (part.piece.kind != PieceKind::kBegin) return false;
      const std::string name = tagName(old_.text(part));
      return name == "html" || name == "head" || name == "body" || name == "title";
    });
    return !whole || includesFiles(old_.bytes);
  }

  // The place of the first edit that deals with tags of a name.
  std::size_t editOf(const std::string& name) const {
    std::size_t edit = kNone;
    for (const Version* version : {&old_, &new_}) {
      for (const Part& part : version->parts) {
        if (part.edit >= edit || !isTag(part.piece) || tagName(version->text(part)) != name) continue;
        edit = part.edit;
      }
    }
    return edit == kNone ? 0 : planned_[edit].offset;
  }

  std::span<const PlannedEdit> planned_;
  Version old_, new_;
  std::vector<Stretch> oldEdits_, newEdits_;  // what the edits take out, what they put in
};

using Things = std::map<std::string, std::size_t, std::less<>>;

// Counts words, scripts and server code, that of tags as well.
void gather(std::string_view text, Things* all) {
  for (const Piece& piece : cutPage(text)) {
    const std::string_view bytes = bytesOf(text, piece);
    if (piece.kind == PieceKind::kWord || piece.kind == PieceKind::kServer || piece.kind == PieceKind::kRaw ||
        piece.kind == PieceKind::kComment || piece.kind == PieceKind::kDeclaration) {
      // The name of an action may be put right.
      const bool isTagOfServer =
          piece.kind == PieceKind::kServer && bytes.size() > 1 && bytes[1] != '%' && bytes[1] != '?';
      ++(*all)[isTagOfServer ? folded(bytes) : std::string(bytes)];
    } else if (piece.is(kHoldsServer)) {
      for (const std::string_view code : serverCodeOf(bytes)) ++(*all)[std::string(code)];
    }
  }
}

// What may be said of repairs that move and drop tags: they are the planned ones, and no words are lost.
Fault checkUnsafe(std::string_view before, std::string_view after, std::span<const PlannedEdit> planned) {
  if (Fault found = RepairCheck(before, after, planned).checkPlan()) return found;
  Things kept;
  for (const PlannedEdit& edit : planned) gather(edit.replacement, &kept);
  for (const PlannedEdit& edit : planned) {
    Things taken;
    gather(before.substr(edit.offset, edit.length), &taken);
    for (const auto& [thing, count] : taken) {
      const auto found = kept.find(thing);
      if (found == kept.end() || found->second < count) {
        return fault(edit.offset, "text or server code would be lost");
      }
      found->second -= count;
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<GuardFault> compareWrites(std::string_view before, std::string_view after, GuardMode mode,
                                        std::span<const PlannedEdit> planned) {
  switch (mode) {
    case GuardMode::kFix:
      return RepairCheck(before, after, planned).run();
    case GuardMode::kFixUnsafe:
      return checkUnsafe(before, after, planned);
    case GuardMode::kFormat:
    case GuardMode::kFormatNames:
      return LayoutCheck(before, after, mode == GuardMode::kFormatNames).run();
    case GuardMode::kNone:
      break;
  }
  return std::nullopt;
}

}  // namespace zeldom40::tool
