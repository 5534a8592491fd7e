// A list of nodes in pieces.
#include "dom/tree/ChildIndex.h"

#include <algorithm>
#include <cassert>

namespace zeldom40 {

std::size_t ChildIndex::pieceOf(std::size_t index) const {
  if (lastPiece_ < pieces_.size()) {
    const Piece& piece = pieces_[lastPiece_];
    if (index >= piece.start && index - piece.start < piece.nodes.size()) return lastPiece_;
  }
  const auto behind = std::upper_bound(pieces_.begin(), pieces_.end(), index,
                                       [](std::size_t i, const Piece& piece) { return i < piece.start; });
  lastPiece_ = static_cast<std::size_t>(behind - pieces_.begin()) - 1;
  return lastPiece_;
}

std::size_t ChildIndex::find(const Node* node) const {
  if (empty()) return 0;
  if (front() == node) return 0;
  if (back() == node) return size_ - 1;
  // A step each way at a time, by piece and place in it.
  const std::size_t from = std::min(last_, size_ - 1);
  std::size_t upPiece = pieceOf(from);
  std::size_t downPiece = upPiece;
  std::size_t up = from - pieces_[upPiece].start;
  std::size_t down = up;
  const auto found = [this](std::size_t piece, std::size_t place) {
    const std::size_t index = pieces_[piece].start + place;
    effort_ += index > last_ ? index - last_ : last_ - index;
    lastPiece_ = piece;
    last_ = index;
    return index;
  };
  bool goesUp = true;
  bool goesDown = true;
  while (goesUp || goesDown) {
    if (goesUp) {
      if (pieces_[upPiece].nodes[up] == node) return found(upPiece, up);
      if (++up == pieces_[upPiece].nodes.size()) {
        up = 0;
        goesUp = ++upPiece < pieces_.size();
      }
    }
    if (goesDown) {
      if (pieces_[downPiece].nodes[down] == node) return found(downPiece, down);
      if (down > 0) {
        --down;
      } else {
        goesDown = downPiece > 0;
        if (goesDown) down = pieces_[--downPiece].nodes.size() - 1;
      }
    }
  }
  return size_;
}

// Gives the pieces from `piece` on their indices.
void ChildIndex::number(std::size_t piece) {
  std::size_t start = piece == 0 ? 0 : pieces_[piece - 1].start + pieces_[piece - 1].nodes.size();
  effort_ += (pieces_.size() - std::min(piece, pieces_.size())) / 8;
  for (; piece < pieces_.size(); ++piece) {
    pieces_[piece].start = start;
    start += pieces_[piece].nodes.size();
  }
}

// Cuts a piece that has become too long, into halves of the most, so that each has room.
void ChildIndex::cut(std::size_t piece) {
  std::vector<Node*> nodes;
  nodes.swap(pieces_[piece].nodes);
  const std::size_t count = (nodes.size() + kMost / 2 - 1) / (kMost / 2);
  pieces_.insert(pieces_.begin() + static_cast<std::ptrdiff_t>(piece), count - 1, Piece{0, {}});
  const std::size_t each = nodes.size() / count + 1;
  auto from = nodes.begin();
  for (std::size_t i = 0; i < count; ++i) {
    const auto left = static_cast<std::size_t>(nodes.end() - from);
    const auto to = from + static_cast<std::ptrdiff_t>(std::min(each, left - (count - 1 - i)));
    pieces_[piece + i].nodes.assign(from, to);
    from = to;
  }
  assert(from == nodes.end());
}

void ChildIndex::append(Node* node) {
  if (pieces_.empty() || pieces_.back().nodes.size() >= kMost) pieces_.push_back({size_, {}});
  pieces_.back().nodes.push_back(node);
  ++size_;
  ++effort_;
}

void ChildIndex::insert(std::size_t index, const std::vector<Node*>& nodes) {
  if (nodes.empty()) return;
  effort_ += nodes.size();
  if (pieces_.empty()) pieces_.push_back({0, {}});
  const std::size_t piece = pieceOf(index);
  std::vector<Node*>& into = pieces_[piece].nodes;
  into.insert(into.begin() + static_cast<std::ptrdiff_t>(index - pieces_[piece].start), nodes.begin(), nodes.end());
  size_ += nodes.size();
  if (into.size() > kMost) cut(piece);
  number(piece);
  last_ = index;
}

void ChildIndex::erase(std::size_t index, std::size_t count) {
  if (count == 0) return;
  effort_ += count;
  const std::size_t first = pieceOf(index);
  std::size_t behind = first;  // the first piece that stays as it is
  std::size_t place = index - pieces_[first].start;
  for (std::size_t left = count; left > 0; ++behind, place = 0) {
    std::vector<Node*>& from = pieces_[behind].nodes;
    const std::size_t here = std::min(left, from.size() - place);
    const auto at = from.begin() + static_cast<std::ptrdiff_t>(place);
    from.erase(at, at + static_cast<std::ptrdiff_t>(here));
    left -= here;
  }
  size_ -= count;
  // Small pieces join, so that there are never many of them.
  std::size_t kept = first;
  for (std::size_t i = first; i < behind; ++i) {
    std::vector<Node*>& nodes = pieces_[i].nodes;
    if (nodes.empty()) continue;
    std::vector<Node*>* before = kept > 0 ? &pieces_[kept - 1].nodes : nullptr;
    if (before && before->size() + nodes.size() <= kMost / 2) {
      before->insert(before->end(), nodes.begin(), nodes.end());
      nodes.clear();
    } else {
      if (kept != i) pieces_[kept].nodes.swap(nodes);
      ++kept;
    }
  }
  pieces_.erase(pieces_.begin() + static_cast<std::ptrdiff_t>(kept),
                pieces_.begin() + static_cast<std::ptrdiff_t>(behind));
  number(first > 0 ? first - 1 : 0);
  last_ = index;
}

void ChildIndex::clear() { *this = ChildIndex(); }

}  // namespace zeldom40
