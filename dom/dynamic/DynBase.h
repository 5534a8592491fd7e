// Internal. The bases of dynamic data: what kind of element it serves, and the loops of a container.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "dom/dynamic/DynamicData.h"
#include "dom/dynamic/LoopScope.h"

namespace zeldom40 {

class DynContainer;
class Element;

namespace NDynElement {
class Base;
struct Place;
}  // namespace NDynElement

enum class DynKind {
  NONE,
  ANCHOR,
  FORM,
  IMAGE,
  RADIO,
  CHECK_BOX,
  BUTTON,
  TEXT_FIELD,
  HIDDEN,
  LIST,
  SELECT,
  TABLE,
  TEXT_AREA,
  TEXT,
  LOOP,
  PROPERTY
};

class Refcounter {
 protected:
  int refCount_ = 0;
};

// Everything a generator needs is read from the element when it generates, so an edit asks for no more than a dirty
// mark; the loops of a container are the only state.
class DynBase : public virtual Refcounter, public DynamicData {
 public:
  explicit DynBase(DynKind kind) : kind_(kind) {}

  // Prepares the loops that the element stands in, from the outermost one on, unless that is done, and writes the
  // element with everything below.
  void generate(MetaData* metaData, std::string& out, RuntimeTextState& state) override;
  int addRef() override { return ++refCount_; }
  int releaseRef() override { return --refCount_; }
  // Adds the property paths that the element reads.
  virtual void collectProperties(const Element* element, std::set<std::string>& used) const;
  // Null if the element has nothing to generate.
  virtual std::unique_ptr<NDynElement::Base> makeGenerator(const NDynElement::Place& place) = 0;
  virtual DynContainer* asContainer() { return nullptr; }

  DynKind kind() const { return kind_; }

 private:
  DynKind kind_;
};

// An element that repeats what it holds.
class DynContainer : public DynBase {
 public:
  using DynBase::DynBase;

  DynContainer* asContainer() override { return this; }
  // The properties that a container reads itself, inside its loop.
  virtual void collectOwnProperties(const Element* element, std::set<std::string>& used) const;
  // The properties that the element loops over, the outer loop first; what is no loop property counts as missing.
  virtual std::vector<std::string> loopProperties(const Element* element) const;

  // Ends the preparation. `loops` is not empty; for each of them `parallel` holds what advances together with it.
  void initScopes(const LoopScope* parent, unsigned level, const std::vector<std::string>& loops,
                  const std::string& varPrefix, const std::vector<std::set<std::string>>& parallel);
  void clearScopes();
  // Of the inner loop, if there are two.
  const LoopScope& scope() const { return scope_; }
  // The loops that a walk enters with the element, and leaves.
  void enterLoops(OpenLoops& loops);
  void leaveLoops(OpenLoops& loops);

 protected:
  // Where the second loop is kept; null for a class that has only one.
  virtual LoopScope* outerScope() { return nullptr; }

 private:
  LoopScope scope_;
};

// The dynamic data of a dynamic element, made anew if it does not fit the element any more; null if there is none.
DynBase* dynamicDataOf(const Element* element);
// Replaces the object by a fresh one of the same class, which nobody shares.
DynBase* makeOwnDynamicData(MetaData* metaData);

}  // namespace zeldom40
