// Which rows and cells of a table stand in which loop.
#include "dom/dynamic/Tables.h"

#include <algorithm>
#include <unordered_set>

#include "dom/dynamic/CellGrid.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

Element* asElement(Node* node) {
  return node && node->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(node) : nullptr;
}

// The node behind `node` in a walk below `top` that enters loop wrappers alone.
Node* nextTablePart(Node* node, const Node* top) {
  return isLoopWrapper(node) ? NodeAccess::nextInSubtree(node, top) : NodeAccess::nextSkippingChildren(node, top);
}

// The first TBODY or TR below, null if there is none.
Element* firstBodyOrRow(const Element* top) {
  for (Node* node = top->getFirstChild(); node; node = nextTablePart(node, top)) {
    Element* element = asElement(node);
    if (element && (element->getElementID() == ID_TBODY || element->getElementID() == ID_TR)) return element;
  }
  return nullptr;
}

bool isBody(const Element* element) { return element && element->getElementID() == ID_TBODY; }

}  // namespace

bool isLoopWrapper(const Node* node) {
  if (!node || node->getNodeType() != Node::NODE_ELEMENT) return false;
  const HTML40ElementID id = static_cast<const Element*>(node)->getElementID();
  return id == ID_REPEAT || id == ID_ZELX_LOOP;
}

bool hasTableBody(const Element* element) { return isBody(firstBodyOrRow(element)); }

namespace NDynElement {

// --- TableBase -------------------------------------------------------------------------------------------------------

std::vector<Element*> TableBase::collectChildren(const Element* element) {
  std::vector<Element*> found;
  for (Node* node = element->getFirstChild(); node; node = nextTablePart(node, element)) {
    if (Element* child = asElement(node); child && !isLoopWrapper(child)) found.push_back(child);
  }
  return found;
}

void TableBase::plan(Plan& plan) {
  planPiece<&ContainerBase::tryHead>(plan);
  planOwnTag(plan);
  if (hasTableBody(element())) {
    planBodies(plan);
  } else {
    plan.piece([](std::string& out, RuntimeTextState& state) {
      closeScriptlet(out, state);
      out += kLineEnd;
      writeIndent(out, state, 0);
      out += "<TBODY>";
      indentIn(state);
    });
    planRows(plan, collectChildren(element()));
    plan.piece([](std::string& out, RuntimeTextState& state) {
      indentOut(state);
      closeScriptlet(out, state);
      out += kLineEnd;
      writeIndent(out, state, 0);
      out += "</TBODY>";
    });
  }
  plan.endTag(element());
  planTryTail(plan, /*noEmptyText=*/false);
}

// What is no body is written once and stays out of the loops. A wrapper without a body is dropped.
void TableBase::planBodies(Plan& plan) {
  std::unordered_set<const Node*> around;  // the wrappers around the first body to come
  const Element* body = nullptr;
  Node* node = element()->getFirstChild();
  while (node) {
    Element* child = asElement(node);
    bool enter = false;
    if (isLoopWrapper(child)) {
      if (!body) {
        body = firstBodyOrRow(child);
        // A row in front of all bodies drops the wrapper.
        if (!isBody(body)) body = nullptr;
        for (const Node* up = body; up && up != child; up = up->getParentNode()) around.insert(up->getParentNode());
      }
      enter = around.contains(child);
    } else if (isBody(child)) {
      if (child == body) body = nullptr;
      plan.beginTag(child);
      planRows(plan, collectChildren(child));
      plan.endTag(child);
    } else if (child) {
      plan.element(child);
    }
    node = enter ? NodeAccess::nextInSubtree(node, element()) : NodeAccess::nextSkippingChildren(node, element());
  }
}

void TableBase::planForHead(Plan& plan, bool again) {
  if (again || looped_) planPiece<&ContainerBase::reinit>(plan);
  looped_ = true;
  planPiece<&ContainerBase::forHead>(plan);
}

TableBase::Stretch TableBase::stretch() const {
  const int start = std::max(0, leadingInteger(getAttribute("INNERLOOPSTARTINDEX").c_str()));
  const int end = std::max(0, leadingInteger(getAttribute("INNERLOOPENDINDEX").c_str()));
  return {std::min(start, end), std::max(start, end)};
}

// --- the outer loop --------------------------------------------------------------------------------------------------

void OuterOnly::planRows(Plan& plan, const std::vector<Element*>& rows) {
  planForHead(plan, /*again=*/false);
  planPattern(plan, rows);
  planPiece<&ContainerBase::forTail>(plan);
}

void OuterOnly::planPattern(Plan& plan, const std::vector<Element*>& rows) {
  for (Element* row : rows) plan.element(row);
}

// --- the inner loops -------------------------------------------------------------------------------------------------

void InnerBase::openLoop(Plan& plan, bool again) {
  if (alone_) {
    planForHead(plan, again);
    return;
  }
  planPiece<&ContainerBase::tryHead>(plan);
  planPiece<&ContainerBase::forHead>(plan);
}

void InnerBase::closeLoop(Plan& plan) const {
  planPiece<&ContainerBase::forTail>(plan);
  if (!alone_) planTryTail(plan, /*noEmptyText=*/true);
}

namespace {

enum class Progress { BEFORE, INSIDE, BEHIND };

bool isRow(const Element* element) { return element->getElementID() == ID_TR; }

bool isCell(const Element* element) { return element->getElementID() == ID_TD || element->getElementID() == ID_TH; }

}  // namespace

void InnerVertical::planRows(Plan& plan, const std::vector<Element*>& rows) {
  const Stretch repeated = stretch();
  Progress progress = Progress::BEFORE;
  int n = 0;
  for (Element* row : rows) {
    if (isRow(row)) {
      if (progress == Progress::BEFORE && n >= repeated.start) {
        openLoop(plan, /*again=*/false);
        progress = Progress::INSIDE;
      }
      if (progress == Progress::INSIDE && n > repeated.end) {
        closeLoop(plan);
        progress = Progress::BEHIND;
      }
      ++n;
    }
    plan.element(row);
  }
  if (progress == Progress::INSIDE) closeLoop(plan);
}

void InnerHorizontal::planRows(Plan& plan, const std::vector<Element*>& rows) {
  const Stretch repeated = stretch();
  CellGrid grid(static_cast<std::size_t>(std::count_if(rows.begin(), rows.end(), isRow)));
  const auto span = [](const Element* cell, const char* name) {
    const std::optional<std::string> value = findAttribute(cell, name);
    return value ? leadingInteger(value->c_str()) : 1;
  };
  bool firstRow = true;
  for (Element* row : rows) {
    if (!isRow(row)) {
      plan.element(row);
      continue;
    }
    plan.beginTag(row);
    grid.beginRow();
    Progress progress = Progress::BEFORE;
    for (Element* cell : collectChildren(row)) {
      if (isCell(cell)) {
        const CellGrid::Columns columns = grid.addCell(span(cell, "COLSPAN"), span(cell, "ROWSPAN"));
        if (progress == Progress::BEFORE && columns.last >= repeated.start) {
          openLoop(plan, !firstRow);
          progress = Progress::INSIDE;
        }
        // CHOICE: asked in sequence. A cell that a ROWSPAN above pushes from before the stretch to behind it opens and
        // closes the loop, so that the cell itself is not repeated.
        if (progress == Progress::INSIDE && columns.first > repeated.end) {
          closeLoop(plan);
          progress = Progress::BEHIND;
        }
      }
      plan.element(cell);
    }
    if (progress == Progress::INSIDE) closeLoop(plan);
    plan.endTag(row);
    firstRow = false;
  }
}

}  // namespace NDynElement
}  // namespace zeldom40
