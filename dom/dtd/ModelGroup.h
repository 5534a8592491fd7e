// Internal. The tree of a content model: groups, and below them the names.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dom/dtd/ElementDefinition.h"
#include "dom/dtd/Hash.h"
#include "dom/tree/Node.h"

namespace zeldom40 {

enum class Occurrence : std::uint8_t { kOnce = 0, kOptional = 1, kRepeated = 2, kAny = 3 };
enum class Connector : std::uint8_t { kNone = 0, kOr = 1, kSequence = 2, kAll = 3 };

// Items joined by one connector. They are the children of one plain node, which is the group's only child.
// Connectors and occurrences are kept for tools; no answer depends on them.
class ModelGroup : public Node {
 public:
  ModelGroup();

  // Appends a group or a token and takes it over.
  void add(Node* item);
  Node* firstItem() const { return getFirstChild()->getFirstChild(); }
  Node* findFirstByName(Node* name, Hash<ElementDefinition>* definitions, std::vector<Node*>* path) override;

  Connector connector = Connector::kNone;
  Occurrence occurrence = Occurrence::kOnce;
};

// An element's name, in upper case.
class ElementToken : public Node {
 public:
  // `nameId` is the name's number in the frame's table.
  ElementToken(const SharedName& name, int nameId);

  int nameId() const { return nameId_; }
  // The definition of the element, null if it is not declared. `elements` is the table of the token's own frame.
  const ElementDefinition* definition(const Hash<ElementDefinition>& elements) const {
    // A definition that is found stays; one that is not may come.
    if (!definition_) definition_ = elements.find(getName());
    return definition_;
  }

  Occurrence occurrence = Occurrence::kOnce;

 private:
  std::int16_t nameId_;  // NameTable::kMostNames bounds it
  mutable const ElementDefinition* definition_ = nullptr;
};

// Text; it has the name that all texts of pages have.
class PCDATAToken : public Node {
 public:
  explicit PCDATAToken(const SharedName& textName);
};

// What a content model is asked about: the few properties of a node that count.
struct ContentQuestion {
  enum class Kind { kElement, kText, kRemark, kOther };

  // A comment and the like are remarks. A token stands for what it names.
  static ContentQuestion about(const Node& node);
  static ContentQuestion aboutElement(std::string_view upperName, bool anywhere);
  static ContentQuestion aboutText(int textType);

  Kind kind = Kind::kOther;
  std::string_view name;   // of an element, upper case
  bool undefined = false;  // an element that the DTD does not know
  bool anywhere = false;   // an element that any content may have
  int textType = 0;        // Text::TextType
};

// One question to a content model.
//
// A model is no automaton: it is a tree of names that is searched depth first in the order of its text, and the first
// name that fits wins. Where the start tag of a named element may be omitted, the search goes on in the model of that
// element, which then is implied; this is what makes real pages parse.
//
// CHOICE: omissible elements may contain each other in a cycle. A definition is marked while the walk is inside it and
// when it was left without a match, and is skipped when met again: asked the same question, it has no other answer, and
// no definition is walked twice in vain. Only where a cycle and an exclusion meet may the answer depend on where the
// walk began. The walk also keeps to a depth of kDeepest, groups and implied elements together; entries below are not
// looked at.
class ModelWalk {
 public:
  // `elements` null: the walk stays within the model that it is given. `path`, if given, receives the way to the match.
  ModelWalk(const ContentQuestion& question, const Hash<ElementDefinition>* elements, std::vector<Node*>* path)
      : question_(question), elements_(elements), path_(path) {}
  ~ModelWalk();
  ModelWalk(const ModelWalk&) = delete;
  ModelWalk& operator=(const ModelWalk&) = delete;

  // The first token that fits, or null. On null the path is as it was.
  Node* find(const ModelGroup& group);
  // ElementDefinition::canContain; `found` is always given.
  bool canContain(const ElementDefinition& definition, Node** found);

 private:
  static constexpr int kDeepest = 250;

  bool fits(const Node& token) const;
  Node* findImplied(const ElementToken& token);
  bool excludes(const ElementDefinition& definition);
  void mark(const ElementDefinition& definition);

  const ContentQuestion& question_;
  const Hash<ElementDefinition>* elements_;
  std::vector<Node*>* path_;
  int depth_ = 0;
  const ElementDefinition* marked_ = nullptr;  // head of the list of all definitions that were marked
};

}  // namespace zeldom40
