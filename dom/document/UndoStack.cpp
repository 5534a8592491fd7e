// Saving and restoring the states of a document.
#include "dom/document/UndoStack.h"

#include <utility>

#include "dom/document/Document.h"
#include "dom/document/DocumentAccess.h"
#include "dom/tree/Element.h"

namespace zeldom40 {

UndoRecord UndoStack::take() {
  UndoRecord record;
  Node* cursor = nullptr;
  document_.getLayoutCursor(&cursor, &record.cursorOffset);
  Node* start = nullptr;
  Node* end = nullptr;
  if (document_.getNumOfSelections() == 1) {
    const Document::_selection& selection = *document_.getSelections().front();
    record.hasSelection = true;
    start = selection.startNode;
    end = selection.endNode;
    record.startOffset = selection.startOffset;
    record.endOffset = selection.endOffset;
  }
  record.hasTree = document_.getDocumentElement() != nullptr;
  record.tree = TreeSnapshot::take(document_.getDocumentElement(), {cursor, start, end}, &record.places);
  latest_ = record.tree;
  return record;
}

void UndoStack::push() {
  undo_.push_back(take());
  if (undo_.size() > kDepth) undo_.pop_front();
  redo_.clear();
}

void UndoStack::undo(int count) { step(undo_, redo_, count); }

void UndoStack::redo(int count) { step(redo_, undo_, count); }

void UndoStack::step(std::deque<UndoRecord>& from, std::deque<UndoRecord>& to, int count) {
  if (count < 1 || from.empty()) return;
  to.push_back(take());
  UndoRecord inHand = std::move(from.back());
  from.pop_back();
  for (int i = 1; i < count && !from.empty(); ++i) {
    to.push_back(std::move(inHand));
    inHand = std::move(from.back());
    from.pop_back();
  }
  restore(std::move(inHand));
}

void UndoStack::restore(UndoRecord record) {
  TreeSnapshot::Nodes places{};
  Node* root = record.hasTree ? record.tree.restore(record.places, &places) : nullptr;
  latest_ = record.tree;
  DocumentAccess::replaceDocumentElement(&document_, static_cast<Element*>(root));
  document_.setLayoutCursor(places[0], record.cursorOffset);
  document_.eraseSelections();
  if (record.hasSelection) {
    document_.select(places[1], record.startOffset, places[2], record.endOffset, /*append=*/1);
  }
}

bool UndoStack::cancel() {
  if (!redo_.empty() || undo_.empty()) return false;
  undo_.pop_back();
  return true;
}

std::size_t UndoStack::bytes() const {
  std::size_t bytes = sizeof(*this);
  for (const auto* list : {&undo_, &redo_}) {
    for (const UndoRecord& record : *list) bytes += sizeof(record) + record.tree.ownBytes();
  }
  return bytes;
}

}  // namespace zeldom40
