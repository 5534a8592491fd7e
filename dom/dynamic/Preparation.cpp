// One walk down and up through the loops of a page part.
#include "dom/dynamic/Preparation.h"

#include "dom/dynamic/DynElements.h"
#include "dom/dynamic/JavaTypes.h"
#include "dom/dynamic/MetaData.h"
#include "dom/dynamic/Tables.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

void Preparation::prepare(MetaData* top) {
  clearTypeCache();
  Node* const topElement = top->getElement();
  for (Node* node = topElement;;) {
    const bool isElement = node->getNodeType() == Node::NODE_ELEMENT;
    if (isElement && enter(static_cast<Element*>(node)) && node->hasChildNodes()) {
      node = node->getFirstChild();
      continue;
    }
    for (;; node = node->getParentNode()) {
      if (node->getNodeType() == Node::NODE_ELEMENT) leave(static_cast<Element*>(node));
      if (node == topElement) {
        // Deep nests leave much room behind, which the writing that follows has a use for.
        std::vector<Open>().swap(open_);  // an assignment would keep it
        nest_ = {};
        return;
      }
      if (Node* sibling = NodeAccess::childAfter(node)) {
        node = sibling;
        break;
      }
    }
  }
}

void Preparation::leaveOut(DynContainer* container) {
  container->clearScopes();
  prepared_.emplace(container, nullptr);
}

// Returns whether the children are to be visited.
bool Preparation::enter(Element* element) {
  if (!tablePlaces_.empty()) followTableParts(element);
  DynBase* data = dynamicDataOf(element);
  if (!data) return true;
  if (DynContainer* container = data->asContainer()) return enterContainer(element, container);
  std::set<std::string> read;
  data->collectProperties(element, read);
  for (const std::string& path : read) nest_.read(path);
  return true;
}

bool Preparation::enterContainer(Element* element, DynContainer* container) {
  // A copy shares the object of its original. Where both are written together each needs loops of its own.
  MetaData* metaData = element->getMetaData();
  const auto [known, isNew] = prepared_.emplace(container, metaData);
  if (!isNew && known->second != metaData) {
    container = makeOwnDynamicData(metaData)->asContainer();
    prepared_.emplace(container, metaData);
  }
  container->clearScopes();
  if (isLookedThrough(element, container)) return true;
  std::vector<std::string> loops = container->loopProperties(element);
  if (loops.empty()) return false;
  Open open{container, element, nullptr, 0, std::move(loops)};
  if (!open_.empty()) {
    const Open& outer = open_.back();
    open.parent = &outer.container->scope();
    open.level = outer.level + static_cast<unsigned>(outer.loops.size());
  }
  for (const std::string& loop : open.loops) nest_.open(loop, &loop != &open.loops.back());
  std::set<std::string> read;
  container->collectOwnProperties(element, read);
  for (const std::string& path : read) nest_.read(path);
  if (container->kind() == DynKind::TABLE)
    tablePlaces_[element] = {TablePlace::TABLE, DynTable::isHorizontal(element), hasTableBody(element)};
  open_.push_back(std::move(open));
  return true;
}

void Preparation::leave(const Element* element) {
  if (open_.empty() || open_.back().element != element) return;
  const Open done = std::move(open_.back());
  open_.pop_back();
  const std::string prefix = attributeOrEmpty(element, "VARPREFIX");
  std::vector<std::set<std::string>> parallel(done.loops.size());
  for (auto loop = parallel.rbegin(); loop != parallel.rend(); ++loop) *loop = nest_.close();
  done.container->initScopes(done.parent, done.level, done.loops, prefix.c_str(), parallel);
  if (open_.empty()) tablePlaces_.clear();
}

// --- loop wrappers in tables -----------------------------------------------------------------------------------------

const Preparation::TablePlace* Preparation::tablePlaceOf(const Node* node) const {
  const auto found = tablePlaces_.find(node);
  return found == tablePlaces_.end() ? nullptr : &found->second;
}

// Carries the place in a table down to what the table's generator looks into.
void Preparation::followTableParts(const Element* element) {
  const TablePlace* place = tablePlaceOf(element->getParentNode());
  if (!place) return;
  TablePlace below = *place;
  if (!isLoopWrapper(element)) {
    const bool body = element->getElementID() == ID_TBODY;
    const bool row = element->getElementID() == ID_TR;
    if (body && place->part == TablePlace::TABLE && place->hasBody) {
      below.part = TablePlace::BODY;
    } else if (row && (place->part == TablePlace::BODY || (place->part == TablePlace::TABLE && !place->hasBody))) {
      below.part = TablePlace::ROW;
    } else {
      return;
    }
  }
  tablePlaces_[element] = below;
}

bool Preparation::isLookedThrough(const Element* element, DynContainer* container) {
  if (container->kind() != DynKind::LOOP) return false;
  // CHOICE: between the parts of a table a loop of its own is never written, so its property counts for nothing.
  // Between the cells of a row that is written whole it is a loop like any other, if it has a property.
  const TablePlace* place = tablePlaceOf(element);
  const bool isTransparent =
      place && (place->part != TablePlace::ROW || place->horizontal || container->loopProperties(element).empty());
  static_cast<DynLoop*>(container)->setAbsent(isTransparent);
  if (!isTransparent) tablePlaces_.erase(element);
  return isTransparent;
}

}  // namespace zeldom40
