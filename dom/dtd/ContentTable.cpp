// Answers of the content models, kept; and the sets of exclusions and inclusions in force.
#include "dom/dtd/ContentTable.h"

#include <algorithm>

#include "dom/dtd/DTDFrame.h"
#include "dom/dtd/ElementCatalogue.h"
#include "dom/dtd/ModelGroup.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/Text.h"

namespace zeldom40 {

namespace {
bool standsAnywhere(const ElementDefinition* definition) {
  return definition && (definition->getGroup() & (GROUP_ANYWHERE | GROUP_LOOP)) != 0;
}
}  // namespace

ContentTable::ContentTable(const ParserType::_dtd_frame& frame)
    : frame_(frame),
      generation_(frame.generation),
      words_((static_cast<std::size_t>(frame.names.size()) + 63) / 64),
      elementRows_(frame.winners.size()) {
  noSets_ = intern(Bits(3 * words_));
}

ContentTable::~ContentTable() = default;

ContentTable::NameId ContentTable::nameId(std::string_view upperName) const { return frame_.names.find(upperName); }

// --- answers ---------------------------------------------------------------------------------------------------------

std::vector<ContentTable::Slot>& ContentTable::rowOf(const ElementDefinition& parent) {
  constexpr std::size_t kTextTypes = 3;
  std::vector<Slot>& row = elementRows_[static_cast<std::size_t>(parent.ordinal())];
  if (row.empty()) row.resize(elementRows_.size() + kTextTypes, nullptr);
  return row;
}

const ContentTable::Answer* const* ContentTable::row(const ElementDefinition& parent) {
  return parent.ordinal() >= 0 ? rowOf(parent).data() : nullptr;
}

ContentTable::Slot& ContentTable::slot(const ElementDefinition& parent, const ElementDefinition* child, NameId name) {
  if (parent.ordinal() < 0 || !child || child->ordinal() < 0) {
    return otherSlots_[{&parent, child ? reinterpret_cast<std::intptr_t>(child) : name}];
  }
  return rowOf(parent)[static_cast<std::size_t>(child->ordinal())];
}

const ContentTable::Answer& ContentTable::answer(Slot& slot, const ElementDefinition& parent,
                                                 const ContentQuestion& question) {
  Answer result;
  std::vector<Node*> path;
  Node* token = nullptr;
  result.allowed = ModelWalk(question, frame_.elements, &path).canContain(parent, &token);
  result.throughGroups = path.size() > 2;
  if (!path.empty()) path.pop_back();
  std::vector<const void*> records;
  for (const Node* node : path) {
    if (node->getNodeType() != Node::NODE_ELEMENT_TOKEN) continue;
    result.names.push_back(NodeAccess::sharedName(node));
    records.push_back(result.names.back().record());
  }
  result.impliesNothing = result.allowed && result.names.empty();
  const int flags = (result.allowed ? 1 : 0) | (result.throughGroups ? 2 : 0);
  const auto [place, isNew] = answers_.try_emplace({flags, std::move(records)});
  slot = &place->second;
  if (!isNew) return *slot;
  place->second = std::move(result);
  for (const SharedName& name : place->second.names) place->second.implied.push_back(&name);
  return *slot;
}

const ContentTable::Answer& ContentTable::elementAnswer(const ElementDefinition& parent, const ElementDefinition* child,
                                                        NameId name) {
  Slot& known = slot(parent, child, name);
  if (known) return *known;
  std::string_view upperName;
  if (child) {
    upperName = child->upperName().view();
  } else if (name >= 0) {
    upperName = frame_.names.name(name).view();
  }
  return answer(known, parent, ContentQuestion::aboutElement(upperName, standsAnywhere(child)));
}

const ContentTable::Answer& ContentTable::textAnswer(const ElementDefinition& parent, int textType) {
  if (textType != Text::TEXT_LITERAL && textType != Text::TEXT_FORMATTING) textType = Text::TEXT_NORMAL;
  // Below the numbers that names and addresses give.
  Slot& known = parent.ordinal() >= 0 ? rowOf(parent)[static_cast<std::size_t>(textPlace(textType))]
                                      : otherSlots_[{&parent, -2 - textType}];
  if (known) return *known;
  return answer(known, parent, ContentQuestion::aboutText(textType));
}

// --- sets ------------------------------------------------------------------------------------------------------------

ContentQuestion ContentTable::questionAbout(NameId name) const {
  if (name == NameTable::kText) return ContentQuestion::aboutText(Text::TEXT_NORMAL);
  if (name == NameTable::kWhiteText) return ContentQuestion::aboutText(Text::TEXT_FORMATTING);
  const std::string_view upperName = frame_.names.name(name).view();
  return ContentQuestion::aboutElement(upperName, standsAnywhere(frame_.elements->find(upperName)));
}

void ContentTable::setBit(Bits& bits, SetKind kind, NameId name) const {
  const auto bit = static_cast<std::size_t>(name);
  bits[static_cast<std::size_t>(kind) * words_ + bit / 64] |= std::uint64_t{1} << (bit % 64);
}

// Sets the bits of the tokens themselves; returns whether one of them may be implied, so that there is more behind it.
bool ContentTable::addDirect(Bits& bits, SetKind kind, const ModelGroup& root) const {
  bool goesOn = false;
  for (const Node* node = root.getFirstChild(); node; node = NodeAccess::nextInSubtree(node, &root)) {
    if (node->getNodeType() == Node::NODE_PCDATA_TOKEN) {
      setBit(bits, kind, NameTable::kText);
      setBit(bits, kind, NameTable::kWhiteText);
    } else if (node->getNodeType() == Node::NODE_ELEMENT_TOKEN) {
      const auto* token = static_cast<const ElementToken*>(node);
      setBit(bits, kind, token->nameId());
      const ElementDefinition* definition = token->definition(*frame_.elements);
      goesOn = goesOn || (definition && definition->isStartOmittable());
    }
  }
  return goesOn;
}

const ContentTable::Bits& ContentTable::ownSets(const ElementDefinition& definition) {
  const auto [place, isNew] = ownSets_.try_emplace(&definition, 3 * words_);
  Bits& bits = place->second;
  if (!isNew) return bits;
  const auto addAll = [&](SetKind kind, const ModelGroup* root) {
    if (!root || !addDirect(bits, kind, *root)) return;
    for (NameId name = 0; name < frame_.names.size(); ++name) {
      const ContentQuestion question = questionAbout(name);
      if (ModelWalk(question, frame_.elements, nullptr).find(*root)) setBit(bits, kind, name);
    }
  };
  addAll(EXCLUDED, definition.getExclusions());
  addAll(INCLUDED, definition.getInclusions());
  if (definition.getExclusions()) addDirect(bits, EXCLUDED_DIRECTLY, *definition.getExclusions());
  return bits;
}

// All sets of a table have one length.
bool ContentTable::BitsLess::operator()(const Bits& a, const Bits& b) const {
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i]) return a[i] < b[i];
  }
  return false;
}

const ContentTable::OpenSets* ContentTable::intern(const Bits& bits) {
  const auto [place, isNew] = openSets_.try_emplace(bits);
  if (isNew) {
    place->second.bits_ = place->first.data();
    place->second.words_ = words_;
  }
  return &place->second;
}

const ContentTable::OpenSets* ContentTable::extend(const OpenSets* outer, const ElementDefinition* definition) {
  if (!definition || (!definition->getExclusions() && !definition->getInclusions())) return outer;
  const auto [place, isNew] = outer->below_.try_emplace(definition, nullptr);
  if (isNew) {
    Bits bits = ownSets(*definition);
    for (std::size_t i = 0; i < bits.size(); ++i) bits[i] |= outer->bits_[i];
    place->second = intern(bits);
  }
  return place->second;
}

}  // namespace zeldom40
