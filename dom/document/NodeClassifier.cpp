// Sorts out the elements of a fresh parse.
#include "dom/document/NodeClassifier.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "dom/document/DocumentAccess.h"
#include "dom/dynamic/MetaDataAccess.h"
#include "dom/dynamic/PairExpansion.h"
#include "dom/tree/ElementAccess.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

// A node that calls for something, and for a visual that wraps content the first element inside that can carry it.
struct Task {
  Node* node;
  Element* target;
};

// One pass over the neighbours from `first` to `last`. Their tasks go on top of `tasks`, in document order downward.
void findTasks(Node* first, Node* last, std::vector<Task>& tasks) {
  const std::size_t bottom = tasks.size();
  std::vector<std::size_t> open;  // the wrappers around the node
  std::size_t served = 0;         // so many of them, from the outermost, have their target
  for (Node* top = first; top; top = top == last ? nullptr : NodeAccess::childAfter(top)) {
    for (Node* n = top;;) {
      if (n->getNodeType() == Node::NODE_META_DATA) {
        tasks.push_back({n, nullptr});
      } else if (n->getNodeType() == Node::NODE_ELEMENT) {
        auto* element = static_cast<Element*>(n);
        if (served < open.size() && element->canHaveATV()) {
          for (; served < open.size(); ++served) tasks[open[served]].target = element;
        }
        if (element->getElementID() == ID_ZELX_ATV) {
          open.push_back(tasks.size());
          tasks.push_back({n, nullptr});
        } else if (element->isDTC() || element->isDynamicElement()) {
          tasks.push_back({n, nullptr});
        }
      }
      if (n->hasChildNodes()) {
        n = n->getFirstChild();
        continue;
      }
      while (true) {
        if (!open.empty() && tasks[open.back()].node == n) {
          open.pop_back();
          served = std::min(served, open.size());
        }
        if (n == top || NodeAccess::childAfter(n)) break;
        n = n->getParentNode();
      }
      if (n == top) break;
      n = NodeAccess::childAfter(n);
    }
  }
  std::reverse(tasks.begin() + static_cast<std::ptrdiff_t>(bottom), tasks.end());
}

void giveMetaData(Element* element, MetaData::Type type, Element* visual = nullptr) {
  MetaData* md = element->getDocument()->createMetaData();
  md->setType(type);
  if (visual) md->setATV(visual);
  element->setMetaData(md);
}

// The content of a visual takes its place; the visual is kept aside, or goes if there is nothing to show it for.
void dissolveVisual(Element* visual, Element* target) {
  Node* parent = visual->getParentNode();
  if (Node* first = visual->getFirstChild()) {
    NodeAccess::detachRange(visual, first, visual->getLastChild());
    NodeAccess::insertFree(parent, first, visual, /*behindRef=*/true);
  }
  NodeAccess::detach(visual);
  if (target) {
    giveMetaData(target, MetaData::AuthorTimeVisual, visual);
  } else {
    visual->releaseRef(false);
  }
}

void expandPair(MetaData* md, AdoptionRules& rules, std::vector<Task>& tasks) {
  MetaDataAccess::setLoadedFromPage(*md);
  if (md->getType() != MetaData::AuthorTimeVisual && md->getRuntimeText().empty()) {
    // The page was never saved with it: there is nothing to compare.
    md->getDocument()->markRuntimeTextDifferent();
    MetaDataAccess::setRuntimeCompared(*md);
  }
  const ExpandedPair run = expandMetaData(md, rules);
  findTasks(run.first, run.last, tasks);
}

}  // namespace

void classifyNodes(Document&, Node* top) {
  AdoptionRules rules;
  std::vector<Task> tasks;
  findTasks(top->getFirstChild(), top->getLastChild(), tasks);
  while (!tasks.empty()) {
    const Task task = tasks.back();
    tasks.pop_back();
    if (task.node->getNodeType() == Node::NODE_META_DATA) {
      expandPair(static_cast<MetaData*>(task.node), rules, tasks);
      continue;
    }
    auto* element = static_cast<Element*>(task.node);
    if (element->getElementID() == ID_ZELX_ATV) {
      dissolveVisual(element, task.target);
    } else if (!element->getMetaData()) {
      giveMetaData(element, element->isDTC() ? MetaData::DesignerControl : MetaData::DynamicData);
    }
  }
}

}  // namespace zeldom40
