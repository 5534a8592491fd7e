// Begin tags from the pieces of the tag that stands in the source.
#include "dom/tree/TagRewriter.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "dom/dtd/AttributeDefinition.h"
#include "dom/dtd/ElementDefinition.h"
#include "dom/html/TagReadings.h"
#include "dom/source/CharHelpers.h"
#include "dom/tree/Attribute.h"
#include "dom/tree/AttributeAccess.h"
#include "dom/tree/AttributeList.h"
#include "dom/tree/Element.h"

namespace zeldom40 {

namespace {

// Offsets in the stored tag.
struct Piece {
  std::size_t gap = 0;  // where the white space in front of the name begins
  std::size_t name = 0;
  std::size_t nameEnd = 0;
  std::size_t value = 0;
  std::size_t valueEnd = 0;
  std::size_t end = 0;
  char quote = 0;
  bool hasValue = false;
  bool counts = true;  // no other piece of that name does
  const Attribute* attribute = nullptr;
};

bool isQuote(char c) { return c == '"' || c == '\''; }

// What stands as it is between blanks, whoever reads it.
bool isPlainValue(std::string_view value) {
  return !value.empty() && std::all_of(value.begin(), value.end(), [](char c) {
    return isLetterByte(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_';
  });
}

class TagWriter {
 public:
  TagWriter(const Element& element, std::string_view stored, TagRewriting how)
      : element_(element), stored_(stored), how_(how) {}

  bool write(std::string& out) {
    if (!readPieces()) return false;
    matchAttributes();
    if (how_ == TagRewriting::AROUND_CODE) return writeAroundCode(out);
    writeKept(out);
    return true;
  }

 private:
  // --- reading ------------------------------------------------------------------------------------------------------

  bool readPieces() {
    TagReadings readings(element_.getDocument());
    const Slice tag = readings.locate(&element_, stored_);
    PageParser::TagDetails details;
    const auto add = [&](const AttributeBlock::Entry& entry, bool counts) {
      Piece piece;
      piece.name = entry.name.offset - tag.offset;
      piece.nameEnd = piece.name + entry.name.length;
      if (entry.value.length > 0) {
        piece.value = entry.value.offset - tag.offset;
        piece.valueEnd = piece.value + entry.value.length;
      }
      piece.counts = counts;
      pieces_.push_back(piece);
    };
    for (const AttributeBlock::Entry& entry : readings.read(tag, &details)) add(entry, true);
    for (const AttributeBlock::Entry& entry : details.repeats) add(entry, false);
    for (const AttributeBlock::Entry& entry : details.superseded) add(entry, false);
    std::sort(pieces_.begin(), pieces_.end(), [](const Piece& a, const Piece& b) { return a.name < b.name; });
    endsInConstruct_ = details.endsInConstruct;
    headEnd_ = details.attributesFrom > 0 ? details.attributesFrom - tag.offset : endOfName();
    std::size_t from = headEnd_;
    for (Piece& piece : pieces_) {
      piece.gap = from;
      if (piece.name < from || piece.nameEnd > stored_.size()) return false;
      findValue(piece);
      if (piece.end > stored_.size()) return false;
      from = piece.end;
    }
    tail_ = stored_.substr(from);
    return headEnd_ <= stored_.size();
  }

  // KEPT: a slash that is glued to the name is no part of it.
  std::size_t endOfName() const {
    std::size_t end = 1;
    while (end < stored_.size() && !isNameDelimiter(stored_[end])) ++end;
    if (end > 2 && stored_[end - 1] == '/') --end;
    return end;
  }

  std::size_t skipSpace(std::size_t i) const {
    while (i < stored_.size() && isSpaceByte(stored_[i])) ++i;
    return i;
  }

  void findValue(Piece& piece) const {
    piece.end = piece.nameEnd;
    const std::size_t equals = skipSpace(piece.nameEnd);
    if (equals >= stored_.size() || stored_[equals] != '=') return;
    const std::size_t from = skipSpace(equals + 1);
    const bool quoted =
        from < stored_.size() && isQuote(stored_[from]) && (piece.value == 0 || piece.value == from + 1);
    piece.hasValue = true;
    if (quoted) piece.quote = stored_[from];
    if (piece.value == 0) {
      piece.value = piece.valueEnd = quoted ? from + 1 : equals + 1;
      piece.end = piece.valueEnd;
      if (quoted && piece.end < stored_.size() && stored_[piece.end] == piece.quote) ++piece.end;
      return;
    }
    piece.end = piece.valueEnd;
    if (quoted && piece.end < stored_.size() && stored_[piece.end] == piece.quote) ++piece.end;
  }

  std::string_view between(std::size_t begin, std::size_t end) const { return stored_.substr(begin, end - begin); }
  std::string_view nameOf(const Piece& piece) const { return between(piece.name, piece.nameEnd); }

  // --- what was edited ----------------------------------------------------------------------------------------------

  static bool hasName(const Attribute& attribute, std::string_view written) {
    if (!attribute.getAttributeDefinition()) return attribute.getName() == written;
    return equalsFolded(written, attribute.getName());
  }

  void matchAttributes() {
    const AttributeList* list = element_.getAttributes();
    const std::size_t count = list ? list->getLength() : 0;
    isWritten_.assign(count, false);
    // By a table where to search for each name would take the square of them.
    constexpr std::size_t kMany = 16;
    std::unordered_map<std::string, std::size_t> places;
    for (std::size_t i = 0; count > kMany && i < count; ++i) places.emplace(list->item(i)->getName(), i);
    for (Piece& piece : pieces_) {
      std::size_t i = count;
      if (count > kMany) {
        std::string name(nameOf(piece));
        auto found = places.find(name);
        upperCase(name);
        if (found == places.end()) found = places.find(name);
        if (found != places.end() && hasName(*list->item(found->second), nameOf(piece))) i = found->second;
      } else {
        i = 0;
        while (i < count && !hasName(*list->item(i), nameOf(piece))) ++i;
      }
      if (i == count) continue;
      piece.attribute = list->item(i);
      if (piece.counts) isWritten_[i] = true;
    }
  }

  bool isChanged(const Piece& piece) const {
    if (!piece.attribute || !piece.counts) return false;
    return AttributeAccess::storedValue(between(piece.value, piece.valueEnd)) != piece.attribute->getValue();
  }

  // The piece that a construct ends, with the tag.
  const Piece* constructPiece() const {
    return endsInConstruct_ && tail_.empty() && !pieces_.empty() ? &pieces_.back() : nullptr;
  }

  // --- writing ------------------------------------------------------------------------------------------------------

  static std::string_view spelled(const Attribute& attribute) {
    const AttributeDefinition* declared = attribute.getAttributeDefinition();
    return declared && !declared->getName().empty() ? std::string_view(declared->getName())
                                                    : std::string_view(attribute.getName());
  }

  static void writeAttribute(const Attribute& attribute, std::string& out) {
    out += ' ';
    out += spelled(attribute);
    if (attribute.getValue().empty()) return;
    out += '=';
    writeQuoted(attribute.getValue(), AttributeAccess::quote(&attribute), out);
  }

  static void writeQuoted(std::string_view value, char quote, std::string& out) {
    out += quote;
    out += value;
    out += quote;
  }

  bool writeAroundCode(std::string& out) {
    const Piece* last = constructPiece();
    if (last && (!last->attribute || isChanged(*last))) last = nullptr;
    const bool keepsTail = endsInConstruct_ || holdsCode(tail_);
    // Code may stand in an attribute that the tag states again, and that no list knows.
    const auto keeps = [&](const Piece& piece) {
      return &piece == last || (!piece.counts && piece.attribute && holdsCode(between(piece.name, piece.end)));
    };
    const bool isTag = stored_.size() > 1 && isLetterByte(stored_[1]);
    if (!isTag || (!keepsTail && std::none_of(pieces_.begin(), pieces_.end(), keeps))) return false;
    out = "<";
    out += ElementAccess::writtenName(&element_);
    const AttributeList* list = element_.getAttributes();
    for (unsigned long i = 0; list && i < list->getLength(); ++i) {
      const Attribute* attribute = list->item(i);
      if (attribute && !(last && attribute == last->attribute && last->counts)) writeAttribute(*attribute, out);
    }
    for (const Piece& piece : pieces_) {
      if (!keeps(piece)) continue;
      writeGap(piece, piece.gap == headEnd_ && out.size() == headEnd_, out);
      out += between(piece.name, piece.end);
    }
    if (!keepsTail) {
      out += (element_.getElementGroup() & GROUP_XML_TAG) && !element_.hasChildNodes() ? " />" : ">";
      return true;
    }
    writeApart(tail_, out);
    return true;
  }

  static bool holdsCode(std::string_view text) {
    return text.find("<%") != std::string_view::npos || text.find("<?") != std::string_view::npos;
  }

  // A name must not run into what follows it.
  static void writeApart(std::string_view tail, std::string& out) {
    if (!tail.empty() && !isSpaceByte(tail[0]) && tail[0] != '>' && !isQuote(out.back())) out += ' ';
    out += tail;
  }

  // In front of a piece; where nothing but the end of the piece before it stood there and now something else does, a
  // blank keeps the two apart.
  void writeGap(const Piece& piece, bool isBehindFormer, std::string& out) const {
    const std::string_view gap = between(piece.gap, piece.name);
    if (gap.empty() && !isBehindFormer) {
      out += ' ';
    } else {
      out += gap;
    }
  }

  void writeKept(std::string& out) {
    out = stored_.substr(0, headEnd_);
    respellTag(out);
    const Piece* const construct = constructPiece();
    std::size_t written = headEnd_;  // the end of what was written last, 0 if it is new
    for (const Piece& piece : pieces_) {
      if (&piece == construct) writeNew(out, written);
      if (!piece.attribute) continue;
      writeGap(piece, written == piece.gap, out);
      const bool changed = isChanged(piece);
      if (how_ == TagRewriting::KEEP_SPELLED) {
        out += spelled(*piece.attribute);
        if (!changed) out += between(piece.nameEnd, piece.end);
      } else {
        out += between(piece.name, changed ? piece.nameEnd : piece.end);
      }
      if (changed) writeChanged(piece, out);
      written = changed ? 0 : piece.end;
    }
    if (!construct) writeNew(out, written);
    std::string tail;
    writeTail(tail);
    if (written == stored_.size() - tail_.size()) {
      out += tail;
    } else {
      writeApart(tail, out);
    }
  }

  void respellTag(std::string& out) const {
    if (out.size() < 2 || !isLetterByte(out[1])) return;
    const std::string name = ElementAccess::writtenName(&element_);
    std::string upper = name;
    upperCase(upper);
    if (how_ == TagRewriting::KEEP_SPELLED || !equalsFolded(between(1, headEnd_), upper)) out = "<" + name;
  }

  void writeNew(std::string& out, std::size_t& written) const {
    const AttributeList* list = element_.getAttributes();
    for (unsigned long i = 0; list && i < list->getLength(); ++i) {
      const Attribute* attribute = list->item(i);
      if (!attribute || isWritten_[i]) continue;
      writeAttribute(*attribute, out);
      written = 0;
    }
  }

  void writeChanged(const Piece& piece, std::string& out) const {
    const std::string& value = piece.attribute->getValue();
    // As much of what stood before the value as can stand.
    const std::size_t sign = piece.value - (piece.quote ? 1 : 0);
    if (piece.hasValue) {
      out += between(piece.nameEnd, sign);
    } else if (!value.empty()) {
      out += '=';
    } else {
      return;
    }
    const char behind = piece.end < stored_.size() ? stored_[piece.end] : '\0';
    if (piece.hasValue && !piece.quote && isPlainValue(value) && (behind == '>' || isSpaceByte(behind))) {
      out += value;
    } else if (piece.quote && value.find(piece.quote) == std::string::npos) {
      writeQuoted(value, piece.quote, out);
    } else {
      writeQuoted(value, AttributeAccess::quote(piece.attribute), out);
    }
  }

  // A tag of XML form says at its end whether there is content.
  void writeTail(std::string& out) const {
    out = tail_;
    if (!(element_.getElementGroup() & GROUP_XML_TAG) || !out.ends_with('>')) return;
    const std::size_t slash = out.find_last_not_of(" \t\r\n", out.size() - 2);
    const bool closed = out.size() > 1 && slash != std::string::npos && out[slash] == '/';
    if (closed && element_.hasChildNodes()) {
      out.resize(slash);
      while (!out.empty() && isSpaceByte(out.back())) out.pop_back();
      out += '>';
    } else if (!closed && ElementAccess::hasLostContent(&element_)) {
      out.replace(out.size() - 1, 1, " />");
    }
  }

  const Element& element_;
  const std::string_view stored_;
  const TagRewriting how_;
  std::size_t headEnd_ = 0;
  std::vector<Piece> pieces_;
  std::vector<bool> isWritten_;  // for each attribute of the list, whether a piece stands for it
  std::string_view tail_;
  bool endsInConstruct_ = false;
};

}  // namespace

bool rewriteBeginTag(const Element& element, std::string_view stored, TagRewriting how, std::string& out) {
  // Offsets in a page have 32 bits; a longer tag, which only a host can set, is not read.
  constexpr std::size_t kLongestTag = 0x7FFFFFFF;
  if (stored.size() < 2 || stored.size() > kLongestTag || stored[0] != '<') return false;
  return TagWriter(element, stored, how).write(out);
}

}  // namespace zeldom40
