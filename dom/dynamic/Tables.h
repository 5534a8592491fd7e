// Internal. TABLE with repeated rows, cells, or both.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "dom/dynamic/Loops.h"

namespace zeldom40 {

class Node;

// Whether a node is a REPEAT or ZELX:LOOP, which may stand between the parts of a table and is looked through there.
bool isLoopWrapper(const Node* node);
// Whether a TBODY stands below `element`, directly or in loop wrappers, with no TR in front of it.
bool hasTableBody(const Element* element);

namespace NDynElement {

class TableBase : public ContainerBase {
 public:
  using ContainerBase::ContainerBase;
  // The table once, with its bodies or, as rows cannot go without one, a body that is made up.
  void plan(Plan& plan) override;
  // Rows and what stands between them, with their loops.
  virtual void planRows(Plan& plan, const std::vector<Element*>& rows) = 0;

  // The elements below `element`, loop wrappers replaced by what they hold.
  static std::vector<Element*> collectChildren(const Element* element);

 protected:
  // The head of the loop; when it runs again in the same `try`, it starts from the first element again.
  void planForHead(Plan& plan, bool again);
  // The pattern's rows or columns that the inner loop repeats: 0-based, both included.
  struct Stretch {
    int start;
    int end;
  };
  Stretch stretch() const;

 private:
  void planBodies(Plan& plan);

  bool looped_ = false;
};

// Repeats all rows.
class OuterOnly : public TableBase {
 public:
  using TableBase::TableBase;
  void planRows(Plan& plan, const std::vector<Element*>& rows) override;

 protected:
  virtual void planPattern(Plan& plan, const std::vector<Element*>& rows);
};

// The loops inside; `alone` if there is none outside, so that the table's `try` is theirs.
class InnerBase : public TableBase {
 public:
  InnerBase(Place place, const LoopScope& scope, bool alone) : TableBase(std::move(place), scope), alone_(alone) {}

 protected:
  bool isAlone() const { return alone_; }
  void openLoop(Plan& plan, bool again);
  void closeLoop(Plan& plan) const;

 private:
  bool alone_;
};

// Repeats a stretch of rows.
class InnerVertical : public InnerBase {
 public:
  using InnerBase::InnerBase;
  void planRows(Plan& plan, const std::vector<Element*>& rows) override;
};

// Repeats a stretch of cells in each row.
class InnerHorizontal : public InnerBase {
 public:
  using InnerBase::InnerBase;
  void planRows(Plan& plan, const std::vector<Element*>& rows) override;
};

// Repeats all rows, and a stretch in them.
template <class Inner>
class Double : public OuterOnly {
 public:
  Double(Place place, const LoopScope& outer, const LoopScope& inner)
      : OuterOnly(std::move(place), outer), inner_(Base::placeWithoutTag(), inner, /*alone=*/false) {}

 protected:
  void planPattern(Plan& plan, const std::vector<Element*>& rows) override { inner_.planRows(plan, rows); }

 private:
  Inner inner_;
};
using DoubleHorizontal = Double<InnerHorizontal>;
using DoubleVertical = Double<InnerVertical>;

}  // namespace NDynElement
}  // namespace zeldom40
