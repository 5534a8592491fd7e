// Internal. What all generators of server code share: where they stand, how a property path becomes Java, and the plan
// of what they write.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "dom/dynamic/RuntimeTextState.h"
#include "dom/dynamic/RuntimeWriter.h"

namespace zeldom40 {

class Element;
class JavaTypes;
class LoopScope;
class OpenLoops;

// Line ends of generated text.
inline constexpr const char* kLineEnd = "\r\n";

// "<%" unless the text ends inside a scriptlet already; nothing closes one until page text has to be written.
void openScriptlet(std::string& out, RuntimeTextState& state);
// " %>" if the text ends inside a scriptlet.
void closeScriptlet(std::string& out, RuntimeTextState& state);
// The blanks of the present level and `extra` more.
void writeIndent(std::string& out, const RuntimeTextState& state, int extra);
void indentIn(RuntimeTextState& state);
void indentOut(RuntimeTextState& state);

namespace NDynElement {

// What a generator is made for.
struct Place {
  Element* element;
  const OpenLoops& loops;   // that hold the properties around
  const LoopScope* around;  // the innermost of them; null at the top
  JavaTypes& types;
  AttributeMap attributes;  // of the run-time tag; empty for what has none
};

// What an element's run-time text consists of, in order. The writer goes through it with an explicit stack, so that
// what stands in an element costs no depth of calls.
class Plan {
 public:
  using Piece = std::function<void(std::string&, RuntimeTextState&)>;
  struct Step {
    enum What { PIECE, ELEMENT, CHILDREN, END_TAG } what;
    Element* element;
    Piece piece;
  };

  void piece(Piece piece) { steps_.push_back({Step::PIECE, nullptr, std::move(piece)}); }
  void element(Element* element) { steps_.push_back({Step::ELEMENT, element, {}}); }
  void children(Element* element) { steps_.push_back({Step::CHILDREN, element, {}}); }
  // By the run-time writer.
  void beginTag(Element* element);
  void endTag(Element* element) { steps_.push_back({Step::END_TAG, element, {}}); }

  bool isDone() const { return next_ == steps_.size(); }
  // The step is gone from the plan, which stays small while what stands in the element is written: of a list
  // three steps are left then, 160 bytes of 400.
  Step takeNext();

 private:
  std::vector<Step> steps_;
  std::size_t next_ = 0;
};

// Lives for one generation. Nothing is reported: what is missing gives less text or none, and Java is not checked.
class Base {
 public:
  explicit Base(Place place) : place_(std::move(place)) {}
  Base(const Base&) = delete;
  Base& operator=(const Base&) = delete;
  virtual ~Base();

  // The path as it reads at this place: its array part replaced by the variable of a loop around.
  virtual std::string resolve(const std::string& path) const;
  // Fills the plan, whose pieces refer to this object.
  virtual void plan(Plan& plan) = 0;

  // Empty without the attribute.
  std::string getAttribute(const char* name) const;
  // The Java expression of a path.
  std::string translate(const std::string& path) const { return getterChain(resolve(path), /*keepLast=*/false); }
  // <%= %> around it; with `isBuffer` the text of a StringBuffer. Empty for an empty path.
  std::string expression(const std::string& path) const;
  std::string urlExpression(const std::string& path, bool isBuffer) const;
  // Getters for all segments but the first; `keepLast` leaves the parentheses of the last one to the caller. Array
  // segments stay as they are: outside of their loop such a text is not Java.
  std::string getterChain(const std::string& path, bool keepLast) const;
  // The static part of a link with the parameters of a query.
  std::string addQuery(const std::string& base, const std::string& query) const;

 protected:
  Element* element() const { return place_.element; }
  const AttributeMap& attributes() const { return place_.attributes; }
  // For another generator of the same element, which writes no tag.
  Place placeWithoutTag() const { return {place_.element, place_.loops, place_.around, place_.types, {}}; }
  const OpenLoops& loops() const { return place_.loops; }
  JavaTypes& types() const { return place_.types; }
  std::string beginTag(const AttributeMap& attributes) const { return makeBeginTag(element(), attributes); }
  std::string endTag() const { return makeEndTag(element()); }
  // `attributes()`, with `name` set to the expression of the attribute `source` if that is not empty.
  void setFromProperty(AttributeMap& attributes, const char* name, const char* source) const;

 private:
  std::string getterName(const std::string& ownerPath, const std::string& property) const;

  Place place_;
};

}  // namespace NDynElement
}  // namespace zeldom40
