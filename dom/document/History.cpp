// Undo and redo of a document.
#include "dom/document/Document.h"
#include "dom/document/UndoStack.h"
#include "dom/dynamic/DTCClientItem.h"
#include "dom/dynamic/MetaData.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

void Document::record() {
  // The present state is saved already, or nothing is to be.
  if (recordFlags_ & (kRecordTaken | kRecordDisabled)) return;
  if (recordFlags_ & kRecordSuspended) {
    if (recordFlags_ & kRecordInGroup) return;
    recordFlags_ = kRecordTaken | kRecordSuspended | kRecordInGroup;
  } else {
    recordFlags_ = kRecordTaken;
  }
  if (!undoStack_) undoStack_ = new UndoStack(*this);
  undoStack_->push();
  ++recordCount_;
}

void Document::suspendRecord(bool suspend) {
  if (suspend) {
    recordFlags_ |= kRecordSuspended;
  } else {
    recordFlags_ &= ~unsigned{kRecordSuspended | kRecordInGroup};
  }
}

void Document::enableRecord(bool enable) {
  recordFlags_ = enable ? recordFlags_ & ~unsigned{kRecordDisabled} : recordFlags_ | kRecordDisabled;
}

void Document::cancelRecord() {
  if (undoStack_ && undoStack_->cancel()) forgetRecord();
  --recordCount_;
}

void Document::clearRecord() {
  delete undoStack_;
  undoStack_ = nullptr;
  forgetRecord();
}

// The present state is not among the saved ones any more: the next change is worth a record again.
void Document::forgetRecord() { recordFlags_ &= ~unsigned{kRecordTaken | kRecordInGroup}; }

int Document::undo(int count) {
  if (!undoStack_) return 0;
  recordCount_ -= count;
  undoStack_->undo(count);
  rebindControls();
  return undoStack_->undoCount();
}

int Document::canUndo() { return undoStack_ ? undoStack_->undoCount() : 0; }

int Document::redo(int count) {
  if (!undoStack_) return 0;
  recordCount_ += count;
  undoStack_->redo(count);
  rebindControls();
  return undoStack_->redoCount();
}

int Document::canRedo() { return undoStack_ ? undoStack_->redoCount() : 0; }

unsigned long Document::getRecordCount() { return static_cast<unsigned long>(recordCount_); }

// The elements of another state are copies: each control learns of the one that it stands for now.
void Document::rebindControls() {
  for (Node* n = documentElement_; n; n = NodeAccess::nextInSubtree(n, documentElement_)) {
    if (n->getNodeType() != NODE_ELEMENT) continue;
    auto* element = static_cast<Element*>(n);
    DTCClientItem* item = element->getMetaData() ? element->getMetaData()->getClientItem() : nullptr;
    if (item) item->setElement(element);
  }
}

// The root of another state takes the place of the present one.
void Document::replaceDocumentElement(Element* root) {
  deleteNodes(nullptr);
  documentElement_ = root;
  Node::clearUpdateFlag();
  forgetRecord();
}

}  // namespace zeldom40
