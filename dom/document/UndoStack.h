// Internal. The history of one document.
#pragma once

#include <deque>

#include "dom/document/TreeSnapshot.h"

namespace zeldom40 {

class Document;
class Node;

// A saved state: the tree, the layout cursor in it and the selection, if there was exactly one.
struct UndoRecord {
  TreeSnapshot tree;
  bool hasTree = false;
  int cursorOffset = 0;
  bool hasSelection = false;
  unsigned startOffset = 0;
  unsigned endOffset = 0;
  TreeSnapshot::Places places;  // cursor, selection start, selection end
};

// Ten states back, and as many forth as were taken back since the last change.
class UndoStack {
 public:
  explicit UndoStack(Document& document) : document_(document) {}

  // Saves the present state; the oldest beyond the depth is lost, and so is all that was taken back.
  void push();
  // Step back or forth by `count`, at the most to the end of the list; nothing for a count below 1.
  void undo(int count);
  void redo(int count);
  // Drops the newest saved state unless something was taken back since. Returns whether there was one to drop.
  bool cancel();
  int undoCount() const { return static_cast<int>(undo_.size()); }
  int redoCount() const { return static_cast<int>(redo_.size()); }
  // Heap bytes of all records, for measurements.
  std::size_t bytes() const;

 private:
  static constexpr std::size_t kDepth = 10;

  UndoRecord take();
  void step(std::deque<UndoRecord>& from, std::deque<UndoRecord>& to, int count);
  void restore(UndoRecord record);

  Document& document_;
  std::deque<UndoRecord> undo_;  // newest last
  std::deque<UndoRecord> redo_;  // next to come last
  TreeSnapshot latest_;          // what was saved or restored last: its chunks are those that the present tree leads to
};

}  // namespace zeldom40
