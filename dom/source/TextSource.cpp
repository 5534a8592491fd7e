// The walk over a source and its plain form, and the cuts that edits make on it.
#include "dom/source/TextSource.h"

#include <algorithm>

#include "dom/source/CharHelpers.h"
#include "dom/source/MarkedText.h"
#include "dom/source/PlainText.h"

namespace zeldom40 {

namespace {

// A name of a reference goes on with this byte, or its ";" ends it.
bool continuesReference(char c) { return c == ';' || !isNameDelimiter(c); }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::size_t spaceRun(std::string_view text, std::size_t i) {
  const std::size_t start = i;
  while (i < text.size() && isSpaceByte(text[i])) ++i;
  return i - start;
}

std::string written(std::string_view plain, const ReferenceTables& tables) {
  std::string source;
  restoreReferences(plain, source, tables.names);
  return source;
}

// Where both forms can be cut.
struct Cut {
  std::size_t raw = 0;
  std::size_t plain = 0;
};

// Goes from piece to piece: a piece is a reference with what it stands for, a run of white space with its counterpart,
// or a single byte.
class PieceWalk {
 public:
  PieceWalk(std::string_view raw, std::string_view plain, const EntityTable* entities)
      : raw_(raw), plain_(plain), entities_(entities) {
    // White space that only formats the source.
    if (plain_.empty() || !isSpaceByte(plain_[0])) at_.raw = spaceRun(raw_, 0);
  }

  const Cut& at() const { return at_; }
  // Whether no unit of the marked form is cut here.
  bool isBetweenUnits() {
    while (unit_ < at_.plain) unit_ += unitAt(plain_, unit_);
    return unit_ == at_.plain;
  }
  // Whether an "&" stands here for itself and opens what other readers may take for a reference.
  bool isAtUnreadReference() const {
    if (!plain_.substr(at_.plain).starts_with(kMarkedAmpersand) || !isBare()) return false;
    std::string_view name = raw_.substr(at_.raw + 1);
    if (name.empty() || name[0] != '#') return !name.empty() && isLetterByte(name[0]);
    name.remove_prefix(1);
    if (!name.empty() && upperByte(name[0]) == 'X') name.remove_prefix(1);
    return !name.empty() && (isDigit(name[0]) || isLetterByte(name[0]));
  }
  // Passes over a piece. False at the end and where the forms part.
  bool next() {
    const std::size_t r = at_.raw;
    const std::size_t p = at_.plain;
    if (p == plain_.size()) return false;
    if (p < sameUntil_) return pass(1, 1);
    if (r == raw_.size()) return isSpaceByte(plain_[p]) && passSpace();
    const char c = raw_[r];
    if (isSpaceByte(c)) return passSpace();
    if (c == '&') return passAmpersand();
    if ((c == '"' || c == '<' || c == '>') && plain_[p] == kPairMark && p + 1 < plain_.size() && plain_[p + 1] == c) {
      return pass(1, 2);
    }
    if (plain_[p] == c) return pass(1, 1);
    return isSpaceByte(plain_[p]) && passSpace();
  }
  // Whether the walk has come to the end of both forms.
  bool isComplete() const { return at_.plain == plain_.size() && isAllSpace(raw_.substr(at_.raw)); }

 private:
  static constexpr std::string_view kMarkedAmpersand = "\x1b&";

  bool pass(std::size_t raw, std::size_t plain) {
    at_.raw += raw;
    at_.plain += plain;
    return true;
  }

  bool passSpace() {
    const std::size_t inRaw = spaceRun(raw_, at_.raw);
    const std::size_t inPlain = spaceRun(plain_, at_.plain);
    if (inRaw > 0 && inPlain > 0) {
      if (raw_.substr(at_.raw, inRaw) != plain_.substr(at_.plain, inPlain)) return pass(inRaw, inPlain);
      sameUntil_ = at_.plain + inPlain;
      return pass(1, 1);
    }
    // A blank that the source has no more, or not yet.
    const bool atStart = at_.raw == 0 && at_.plain == 0;
    const bool atEnd = at_.raw == raw_.size() && at_.plain + inPlain == plain_.size();
    return inPlain > 0 && (atStart || atEnd) && pass(0, inPlain);
  }

  bool passAmpersand() {
    std::string meaning;
    const std::size_t length = readReference(raw_, at_.raw, entities_, meaning);
    if (length > 0 && plain_.substr(at_.plain).starts_with(meaning)) return pass(length, meaning.size());
    if (plain_.substr(at_.plain).starts_with(kMarkedAmpersand)) return pass(1, 2);
    return plain_[at_.plain] == '&' && pass(1, 1);
  }

  bool isBare() const {
    if (at_.raw >= raw_.size() || raw_[at_.raw] != '&') return false;
    std::string meaning;
    return readReference(raw_, at_.raw, entities_, meaning) == 0 || !plain_.substr(at_.plain).starts_with(meaning);
  }

  std::string_view raw_;
  std::string_view plain_;
  const EntityTable* entities_;
  Cut at_;
  std::size_t sameUntil_ = 0;  // up to here the forms are equal byte for byte
  std::size_t unit_ = 0;
};

// `open` is the source from an "&" or "<" up to a seam, behind which `was` stood and `now` will stand. Whether that
// belongs to it, or did.
bool reachesOver(std::string_view open, std::string_view was, std::string_view now) {
  const std::string_view inside = open.substr(1);
  if (open[0] == '&') {
    if (std::any_of(inside.begin(), inside.end(), [](char c) { return c == ';' || isNameDelimiter(c); })) return false;
    return (!was.empty() && continuesReference(was[0])) || (!now.empty() && continuesReference(now[0]));
  }
  // Three bytes tell markup from a "<" that means itself.
  if (open.size() > 3 || std::any_of(inside.begin(), inside.end(), isSpaceByte)) return false;
  return now.empty() ? !was.empty() : now[0] != '&' && !isSpaceByte(now[0]);
}

// What an edit has changed: the bytes of the old form from `from` to `oldEnd`, of the new one from there to `newEnd`.
struct Touched {
  std::size_t from = 0;
  std::size_t oldEnd = 0;
  std::size_t newEnd = 0;
};

Touched findTouched(std::string_view before, std::string_view after) {
  const auto differ = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  const auto same = static_cast<std::size_t>(differ.first - before.begin());
  Touched found;
  std::size_t step = 0;
  while (found.from < same && found.from + (step = unitAt(before, found.from)) <= same) {
    // The last unit of one form may be cut by its end, and be a longer one in the other.
    if (unitAt(after, found.from) != step) break;
    found.from += step;
  }
  std::size_t suffix = 0;
  const std::size_t most = std::min(before.size(), after.size()) - found.from;
  while (suffix < most && before[before.size() - 1 - suffix] == after[after.size() - 1 - suffix]) ++suffix;
  found.oldEnd = found.newEnd = found.from;
  const auto advance = [](std::string_view text, std::size_t& at) { at += unitAt(text, at); };
  while (found.oldEnd < before.size() - suffix) advance(before, found.oldEnd);
  while (found.newEnd < after.size() - suffix) advance(after, found.newEnd);
  while (before.size() - found.oldEnd != after.size() - found.newEnd) {
    if (before.size() - found.oldEnd > after.size() - found.newEnd) {
      advance(before, found.oldEnd);
    } else {
      advance(after, found.newEnd);
    }
  }
  return found;
}

bool opensSomething(std::string_view raw, std::size_t at) {
  return at < raw.size() && (raw[at] == '&' || raw[at] == '<');
}

}  // namespace

std::string carrySource(std::string_view raw, std::string_view before, std::string_view after,
                        const ReferenceTables& tables) {
  const Touched touched = findTouched(before, after);
  if (touched.oldEnd == touched.from && touched.newEnd == touched.from) return std::string(raw);

  PieceWalk walk(raw, before, tables.entities);
  Cut left = walk.at();
  Cut right{raw.size() + 1, 0};
  Cut open = left;
  do {
    const Cut here = walk.at();
    if (!walk.isBetweenUnits()) continue;
    if (here.plain < touched.from && opensSomething(raw, here.raw)) open = here;
    if (here.plain <= touched.from) left = here;
    if (here.plain >= touched.oldEnd && right.raw > raw.size()) right = here;
  } while (walk.next());
  if (!walk.isComplete() || right.raw > raw.size()) return written(after, tables);

  const std::size_t newEnd = after.size() - (before.size() - right.plain);
  std::string middle = written(after.substr(left.plain, newEnd - left.plain), tables);
  const std::string_view behind = middle.empty() ? raw.substr(right.raw) : std::string_view(middle);
  if (open.raw < left.raw && opensSomething(raw, open.raw) &&
      reachesOver(raw.substr(open.raw, left.raw - open.raw), raw.substr(left.raw), behind)) {
    left = open;
    middle = written(after.substr(left.plain, newEnd - left.plain), tables);
  }
  std::string carried(raw.substr(0, left.raw));
  carried += middle;
  carried += raw.substr(right.raw);
  return carried;
}

std::string cutSource(std::string_view raw, std::string_view plain, std::size_t from, std::size_t to,
                      const ReferenceTables& tables) {
  PieceWalk walk(raw, plain, tables.entities);
  Cut begin{raw.size() + 1, 0};
  Cut end;
  Cut open;
  bool hasOpen = false;
  do {
    const Cut here = walk.at();
    if (!walk.isBetweenUnits()) continue;
    if (here.plain >= from && begin.raw > raw.size()) begin = here;
    if (here.plain <= to) end = here;
    if (here.plain >= from && here.plain < to && opensSomething(raw, here.raw)) {
      open = here;
      hasOpen = true;
    }
  } while (walk.next());
  if (!walk.isComplete() || begin.raw > raw.size() || begin.plain > end.plain) {
    return written(plain.substr(from, to - from), tables);
  }
  if (from == 0) begin = {0, 0};
  if (to == plain.size()) {
    end = {raw.size(), to};
  } else if (hasOpen && open.raw < end.raw &&
             reachesOver(raw.substr(open.raw, end.raw - open.raw), raw.substr(end.raw), {})) {
    end = open;
  }
  std::string cut = written(plain.substr(from, begin.plain - from), tables);
  cut += raw.substr(begin.raw, end.raw - begin.raw);
  cut += written(plain.substr(end.plain, to - end.plain), tables);
  return cut;
}

void joinSource(std::string& raw, std::string_view behind, const ReferenceTables& tables) {
  // CHOICE: what is longer than this is no reference. Without a bound a row of texts without a blank would be looked
  // through once for each of them.
  constexpr std::size_t kLongest = 64;
  if (!raw.empty() && !behind.empty()) {
    const std::size_t from = raw.size() - std::min(raw.size(), kLongest);
    const std::size_t last = std::string_view(raw).substr(from).find_last_of("&<");
    const std::size_t at = last == std::string_view::npos ? raw.size() : from + last;
    if (at < raw.size() && reachesOver(std::string_view(raw).substr(at), {}, behind)) {
      std::string meaning;
      if (raw[at] == '&' && at + readReference(raw, at, tables.entities, meaning) == raw.size()) {
        raw += ';';
      } else if (raw[at] == '<' || readReference(raw, at, tables.entities, meaning) == 0) {
        const char marked[] = {kPairMark, raw[at]};
        raw.replace(at, 1, written({marked, 2}, tables));
      }
    }
  }
  raw += behind;
}

std::string remakeSource(std::string_view raw, std::string_view plain, const ReferenceTables& tables) {
  if (raw.find('&') == std::string_view::npos) return written(plain, tables);
  PieceWalk walk(raw, plain, tables.entities);
  std::string source;
  std::size_t done = 0;
  do {
    if (!walk.isAtUnreadReference() || !walk.isBetweenUnits()) continue;
    source += written(plain.substr(done, walk.at().plain - done), tables);
    source += '&';
    done = walk.at().plain + 2;
  } while (walk.next());
  if (!walk.isComplete()) return written(plain, tables);
  source += written(plain.substr(done), tables);
  return source;
}

}  // namespace zeldom40
