// Internal. The document's state and operations for the services that work on it.
#pragma once

#include <string>
#include <string_view>

#include "dom/document/DOM.h"
#include "dom/document/Document.h"

namespace zeldom40 {

class ElementDefinition;
struct NameEntry;

struct DocumentAccess {
  // Whether edited nodes of `document`, which may be null, are written with as few changes as there can be.
  static bool keepsSource(const Document* document) {
    return document && document->getDOM() && document->getDOM()->getRewriting() == DOM::Rewriting::KEEP;
  }
  // Whether `document`, which may be dead memory, is one of the process.
  static bool isLive(const Document* document);
  // A node that a cursor or selection stands at is about to die.
  static void forgetPlace(const Node* node);
  // The node goes to another document.
  static void forgetPlaceIn(Document* document, const Node* node) { document->forgetPlace(node); }
  static bool isInTree(const Document* document, const Node* node) { return document->isInTree(node); }
  static void recordChange(Document* document, const Node* node) { document->recordChange(node); }
  // Neither content of its own nor the place of the cursor or of a single selection; children are not looked at.
  static bool isEmptyByItself(const Document* document, const Node* node) { return document->isEmptyByItself(node); }
  // For undo: the present tree is deleted, `root` (one count per node, or null) becomes the tree.
  static void replaceDocumentElement(Document* document, Element* root) { document->replaceDocumentElement(root); }
  // Whether the cursor or an end of a single selection stands right at the node.
  static bool isPlace(const Document* document, const Node* node) { return document->isPlace(node); }
  // The source of a text changes and its plain form stays: a cursor in it that counts in the source counts in the plain
  // form from now on.
  static void keepCursor(Document* document, const Node* text) {
    if (document->cursorNode_ != text || document->sourceOffset_ < 0) return;
    if (document->layoutOffset_ < 0) document->getLayoutCursor(nullptr, &document->layoutOffset_);
    document->sourceOffset_ = -1;
  }
  static bool inClassify(const Document* document) { return document->inClassify_; }
  static bool doctypeSeen(const Document* document) { return document->doctypeSeen_; }
  static const BeanList& outBoundBeans(const Document* document) { return *document->outBoundBeans_; }
  static std::string& sourceBuf(const Document* document) { return document->sourceBuf_; }
  static void setDocumentElement(Document* document, Element* root) { document->documentElement_ = root; }
  static void setInClassify(Document* document, bool on) { document->inClassify_ = on; }
  // Changes of nodes are those of a parse and its sorting out; they make no metadata stale.
  static bool isBuilding(const Document* document) { return document->isBuilding_; }
  static bool inDryRun(const Document* document) { return document->inDryRun_; }
  // How many metadata pairs the text that is being parsed stood inside of.
  static unsigned pairNesting(const Document* document) { return document->pairNesting_; }
  static void setPairNesting(Document* document, unsigned nesting) { document->pairNesting_ = nesting; }

  // Run-time text that is asked for meanwhile is of no save. Null: nothing.
  class DryRun {
   public:
    explicit DryRun(Document* document) : document_(document), was_(document && document->inDryRun_) {
      if (document_) document_->inDryRun_ = true;
    }
    ~DryRun() {
      if (document_) document_->inDryRun_ = was_;
    }
    DryRun(const DryRun&) = delete;
    DryRun& operator=(const DryRun&) = delete;

   private:
    Document* document_;
    bool was_;
  };

  // Changes meanwhile are not worth an undo step.
  class RecordPause {
   public:
    explicit RecordPause(Document* document) : document_(document), flags_(document->recordFlags_) {
      document->enableRecord(false);
    }
    ~RecordPause() { document_->recordFlags_ = flags_; }
    RecordPause(const RecordPause&) = delete;
    RecordPause& operator=(const RecordPause&) = delete;

   private:
    Document* document_;
    unsigned flags_;
  };

  static bool hasSevereError(const Document* document) { return document->hasSevereError(); }
  static void setErrorWord(Document* document, unsigned long word) {
    document->clearError();
    if (word) document->setError(word);
  }
};

}  // namespace zeldom40
