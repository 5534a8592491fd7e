// Edits of a text as bytes.
#include "dom/html/SourceEdit.h"

#include <algorithm>

namespace zeldom40 {

std::string applyEdits(std::string_view text, const std::vector<SourceEdit>& edits) {
  std::string out;
  out.reserve(text.size());
  std::size_t at = 0;
  for (const SourceEdit& edit : edits) {
    const std::size_t begin = std::min(std::max(edit.offset, at), text.size());
    out += text.substr(at, begin - at);
    out += edit.replacement;
    at = begin + std::min(edit.length, text.size() - begin);
  }
  out += text.substr(at);
  return out;
}

EditedText::EditedText(std::string text) : originalLength_(text.size()), text_(std::move(text)) {
  if (originalLength_ > 0) pieces_.push_back({true, 0, originalLength_, 0});
}

void EditedText::apply(const std::vector<SourceEdit>& edits) {
  if (edits.empty()) return;
  std::vector<Piece> pieces;
  std::size_t piece = 0;  // the next to copy, and how much of it is done
  std::size_t done = 0;
  std::size_t at = 0;
  std::size_t written = 0;
  const auto add = [&](bool kept, std::size_t begin, std::size_t length) {
    pieces.push_back({kept, begin, length, written});
    written += length;
  };
  const auto original = [&] {
    if (piece < pieces_.size()) return pieces_[piece].begin + (pieces_[piece].kept ? done : 0);
    return originalLength_;
  };
  const auto walk = [&](std::size_t end, bool copy) {
    while (at < end && piece < pieces_.size()) {
      const Piece& from = pieces_[piece];
      const std::size_t length = std::min(end - at, from.length - done);
      if (copy) add(from.kept, from.begin + (from.kept ? done : 0), length);
      at += length;
      done += length;
      if (done == from.length) {
        ++piece;
        done = 0;
      }
    }
  };
  for (const SourceEdit& edit : edits) {
    walk(edit.offset, /*copy=*/true);
    if (!edit.replacement.empty()) add(false, original(), edit.replacement.size());
    walk(at + edit.length, /*copy=*/false);
  }
  walk(text_.size(), /*copy=*/true);
  text_ = applyEdits(text_, edits);
  pieces_ = std::move(pieces);
}

std::vector<SourceEdit> EditedText::edits() const {
  std::vector<SourceEdit> edits;
  std::size_t original = 0;
  std::string inserted;
  const auto close = [&](std::size_t end) {
    if (original < end || !inserted.empty()) edits.push_back({original, end - original, inserted});
    inserted.clear();
  };
  for (const Piece& piece : pieces_) {
    if (piece.kept) {
      close(piece.begin);
      original = piece.begin + piece.length;
    } else {
      inserted += text_.substr(piece.at, piece.length);
    }
  }
  close(originalLength_);
  return edits;
}

std::size_t EditedText::toOriginal(std::size_t offset) const {
  if (offset >= text_.size()) return originalLength_;
  const auto behind = std::upper_bound(pieces_.begin(), pieces_.end(), offset,
                                       [](std::size_t o, const Piece& piece) { return o < piece.at; });
  const Piece& piece = *(behind - 1);
  return piece.begin + (piece.kept ? offset - piece.at : 0);
}

}  // namespace zeldom40
