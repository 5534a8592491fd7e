// Internal. The loop that all repeating elements share, and lists, loops and texts.
#pragma once

#include <string>
#include <utility>

#include "dom/dynamic/Generator.h"
#include "dom/dynamic/LoopScope.h"

namespace zeldom40::NDynElement {

// The text that stands in for a loop without any element: an image or a line in a colour of its own; may be empty.
std::string emptyText(const Element* element);

// A loop over beans that report their size by failing. The element at index 0 is fetched in front of the loop; if there
// is none the exception leads to a `catch` that holds the empty text. The loop itself has no end test: at the end of
// its body the next element is fetched in a `try` whose `catch` breaks it. All pieces end in an open scriptlet.
class ContainerBase : public Base {
 public:
  ContainerBase(Place place, const LoopScope& scope) : Base(std::move(place)), scope_(scope) {}

  // By its own loop first.
  std::string resolve(const std::string& path) const override { return loops().resolve(path, scope_.level()); }
  // Fetches the first elements.
  void tryHead(std::string& out, RuntimeTextState& state) const;
  // The same fetch for a loop that runs again in a `try` that is open already.
  void reinit(std::string& out, RuntimeTextState& state) const;
  void forHead(std::string& out, RuntimeTextState& state) const;
  virtual void forTail(std::string& out, RuntimeTextState& state) const;
  void tryTail(std::string& out, RuntimeTextState& state, bool noEmptyText) const;

 protected:
  // A piece that holds no more than this object takes no memory beside its step.
  template <auto write>
  void planPiece(Plan& plan) const {
    plan.piece([this](std::string& out, RuntimeTextState& state) { (this->*write)(out, state); });
  }
  // The begin tag of the element with `attributes()`.
  void planOwnTag(Plan& plan) const {
    plan.piece(
        [this](std::string& out, RuntimeTextState& state) { emitBeginTag(element(), attributes(), out, state); });
  }
  void planTryTail(Plan& plan, bool noEmptyText) const {
    plan.piece([=, this](std::string& out, RuntimeTextState& state) { tryTail(out, state, noEmptyText); });
  }
  const LoopScope& scope() const { return scope_; }

  // Parts of forTail: the step to the next elements, and the end of their `try` and of the loop.
  void forTailHead(std::string& out, RuntimeTextState& state) const;
  void forTailEnd(std::string& out, RuntimeTextState& state) const;
  void catchHead(std::string& out, const RuntimeTextState& state) const;
  // The Java expression of the element at `index`, `number` being that of the property.
  std::string fetch(const std::string& path, int number, const std::string& index) const;

 private:
  std::string owner(const std::string& path) const;
  std::string elementAt(const std::string& path, const std::string& index) const;
  void declare(std::string& out, const RuntimeTextState& state, const std::string& path, int number) const;
  void assign(std::string& out, const RuntimeTextState& state, const std::string& path, int number,
              const std::string& index) const;

  const LoopScope& scope_;
};

// OL, UL: an empty one is not written at all.
class ListBase : public ContainerBase {
 public:
  using ContainerBase::ContainerBase;
  void plan(Plan& plan) override;
};

// ZELX:LOOP: no tags.
class LoopBase : public ContainerBase {
 public:
  using ContainerBase::ContainerBase;
  void plan(Plan& plan) override;
};

// ZELX:TEXT: separators between the elements.
class TextBase : public LoopBase {
 public:
  using LoopBase::LoopBase;
  void forTail(std::string& out, RuntimeTextState& state) const override;

 private:
  struct Delimiters {
    std::string usual;
    std::string last;
    std::string forTwo;
  };
  void lookAhead(std::string& out, RuntimeTextState& state, const Delimiters& delimiters) const;
};

// SELECT: its options are made from one pattern that its attributes give; what stands in it at design time is not
// written.
class SelectBase : public ContainerBase {
 public:
  SelectBase(Place place, const LoopScope& scope);
  void plan(Plan& plan) override;

 private:
  void writeOption(std::string& out, RuntimeTextState& state) const;
  std::string option(bool selected) const;

  std::string itemProperty_;
  std::string constItem_;
  std::string valueProperty_;
  std::string constValue_;
  std::string defaultProperty_;
  std::string constDefaultProperty_;
  bool indented_ = false;
};

}  // namespace zeldom40::NDynElement
