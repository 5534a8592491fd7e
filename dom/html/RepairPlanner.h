// How the errors of a page can be repaired in its source: for each a short list of byte edits, or why there is none.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "dom/document/Document.h"
#include "dom/export.h"
#include "dom/html/SourceEdit.h"
#include "dom/source/SourceMap.h"

namespace zeldom40 {

// Document::correctError repairs a tree and brings it to normal form, for a host whose author edits the page in it. A
// planner is for a host that writes into a file which somebody keeps by hand: it leaves the tree alone and says which
// bytes to change, so that what no error points at keeps its bytes. A tool applies all plans, an editor offers the one
// of an error as a quick fix.
//
// SAFE is a plan that adds or removes end tags, or adds begin tags without attributes; the one exception is an inline
// element around blocks, which goes into the blocks with its attributes. A page may look otherwise where an element
// ends that had no end tag. Text, server code, comments, scripts, declarations and begin tags stay, in their order, and
// nothing between the two tags of a pair that is made or taken apart is server code. UNSAFE is all else that the
// planner knows to do. In half a page, which other files may complete (see isHalfPage), a missing tag is no error of
// the file: there is no plan for it.
class ZELDOM40_API RepairPlanner {
 public:
  enum Kind { SAFE, UNSAFE, UNREPAIRED };

  // One bit of the error word of a node.
  struct Finding {
    const Node* node;     // borrowed from the tree
    unsigned long error;  // one ERR_* bit
    // Where it is in the source: of a text where its first visible character stands, else where the node begins.
    // NOWHERE inside an element that is saved as a metadata pair.
    std::size_t offset;
  };
  struct Plan {
    Kind kind = UNREPAIRED;
    std::string reason;                 // one line for people: what is done or why nothing is
    std::vector<std::size_t> findings;  // what it settles: indices (0-based) into findings(), the first it was made for
    std::vector<SourceEdit> edits;      // of source(), sorted; none if UNREPAIRED
  };
  // What a check of several plans together found.
  struct Verdict {
    std::string text;                 // the source with the edits of `plans`
    std::vector<SourceEdit> edits;    // those edits
    std::vector<std::size_t> plans;   // that were applied; one that overlaps an earlier one is left out
    std::vector<std::size_t> failed;  // plans that did not settle what they are for, or are next to new errors
    bool isSound = false;             // all settled theirs, and nothing is new
  };

  // Looks at the page of `document`, which must not change as long as the planner lives; null or a document without a
  // tree has no findings. Costs one pass over the tree. With `guardWide` bytes above 127 are taken for server code: for
  // a text that its file has under ISO-2022-JP, where other programs may see `<%` in the middle of a word.
  explicit RepairPlanner(Document* document, bool guardWide = false);
  RepairPlanner(const RepairPlanner&) = delete;
  RepairPlanner& operator=(const RepairPlanner&) = delete;
  ~RepairPlanner();

  // The source that offsets count in, as SourceMap has it.
  const std::string& source() const;
  // All error bits of the page that Document::getErrorList tells, in document order.
  const std::vector<Finding>& findings() const;
  // A plan for each severe finding; where one repair settles several they have one plan. In the order of the findings.
  const std::vector<Plan>& plans() const;
  // The plan that settles an error of a node; null if the node has no such severe error. Lives as long as the planner.
  const Plan* planFor(const Node* node, unsigned long error) const;
  // Whether the page is one that other files complete: it has no begin tag of HTML, HEAD, TITLE or BODY and no
  // document type, or it includes other files.
  bool isHalfPage() const;
  // The same without a planner. Null or a document without a tree: false.
  static bool isHalfPage(Document* document);
  // Makes the edits of the plans with these indices and parses the result once, in a new document of the same DOM. An
  // error is known by its bit and its place, followed through the edits. Indices that are none are passed over.
  Verdict verify(const std::vector<std::size_t>& plans) const;

 private:
  struct Data;

  std::unique_ptr<Data> data_;
};

// Repairs a page's source in as many passes as bring it further: all plans together, halved where the result is not
// sound, until nothing can be done. Each pass parses the page a bounded number of times.
class ZELDOM40_API SourceRepair {
 public:
  // What is left, or was done, of one error.
  struct Entry {
    unsigned long error;  // one severe ERR_* bit
    std::string name;     // of the element, upper case; "TEXT" for a text
    std::size_t offset;   // in the source that was given
    std::size_t now;      // in the repaired one; for a settled one where it was
    RepairPlanner::Kind kind;
    std::string reason;
    bool isHint;  // of half a page: nobody can tell from this file whether it is an error
  };

  struct Options {
    bool unsafe = false;     // plans of that kind are made too
    bool guardWide = false;  // as for a planner
    // Offsets of the given source. Of each the nearest plan of a pass is not made: for a host with a judge of its own,
    // which has found something wrong there.
    std::vector<std::size_t> barred;
  };

  // Parses `source` in documents of `dom`, which are deleted again.
  SourceRepair(DOM* dom, const std::string& source, Options options);

  const std::string& text() const { return edited_.text(); }
  // Of the source that was given; sorted.
  std::vector<SourceEdit> edits() const { return edited_.edits(); }
  const std::vector<Entry>& settled() const { return settled_; }
  const std::vector<Entry>& left() const { return left_; }

 private:
  bool pass(DOM* dom);
  void dropBarred(const std::vector<RepairPlanner::Plan>& plans, std::vector<std::size_t>& wanted,
                  std::vector<bool>& isBarred) const;

  Options options_;
  EditedText edited_;
  std::vector<Entry> settled_;
  std::vector<Entry> left_;
};

}  // namespace zeldom40
