// The walk through elements and generators.
#include "dom/dynamic/RuntimeStack.h"

#include "dom/document/Document.h"
#include "dom/dtd/DTDFrame.h"
#include "dom/dtd/DocumentType.h"
#include "dom/dynamic/DynElements.h"
#include "dom/dynamic/DynamicDataFactory.h"
#include "dom/dynamic/Generator.h"
#include "dom/dynamic/MetaDataAccess.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"
#include "dom/tree/Text.h"

namespace zeldom40 {

namespace {

Element* asElement(Node* node) {
  return node && node->getNodeType() == Node::NODE_ELEMENT ? static_cast<Element*>(node) : nullptr;
}

Element* elementAbove(const Node* node) {
  Node* parent = node->getParentNode();
  // A visual that is held aside stands above its content by way of its metadata.
  if (parent && parent->getNodeType() == Node::NODE_META_DATA) return static_cast<MetaData*>(parent)->getElement();
  return asElement(parent);
}

DynContainer* containerOf(const Element* element) {
  DynBase* data = dynamicDataOf(element);
  return data ? data->asContainer() : nullptr;
}

bool isAbsent(DynContainer* container) {
  return container->kind() == DynKind::LOOP && static_cast<DynLoop*>(container)->isAbsent();
}

// Whether the run-time text of what stands below may not be reused.
bool hasStaleData(const Element* element) {
  const MetaData* metaData = element->getMetaData();
  return metaData && metaData->getType() == MetaData::DynamicData && metaData->isDirty();
}

// Whether text may stand in the element, also through elements whose start tags may be omitted. No exclusion or
// inclusion of the DTD names text, so only a transparent element needs the answer of what it stands in.
bool allowsText(const Element* element, bool allowedAround) {
  if (element->getElementGroup() & GROUP_LOOP) return allowedAround;
  Document* document = element->getDocument();
  const ElementDefinition* definition = element->getElementDefinition();
  if (!definition || !document)
    return element->getElementType() == Element::ELEMENT_TYPE_1 ||
           element->getElementType() == Element::ELEMENT_TYPE_2 || (document && !document->isHTML());
  const DocumentType* type = document->getDocumentTypeObject();
  if (!type || !type->getDTDFrame()) return document->canContain(const_cast<Element*>(element), Text::TEXT_NORMAL);
  return contentTable(*type->getDTDFrame()).textAnswer(*definition, Text::TEXT_NORMAL).allowed;
}

// The answer of what a transparent element stands in; for another element nobody asks.
bool allowsTextAround(const Element* element) {
  if (!(element->getElementGroup() & GROUP_LOOP)) return true;
  const Element* above = elementAbove(element);
  while (above && (above->getElementGroup() & GROUP_LOOP)) above = elementAbove(above);
  return !above || allowsText(above, /*allowedAround=*/true);
}

bool cannotHoldText(const Element* element, bool allowedAround) {
  return element->getDocument() && !hasNoEndTag(element) && !allowsText(element, allowedAround);
}

// CHOICE: SCRIPT, STYLE and their like take no running text, yet their body is no stray white space: without it the
// browser would get an empty script.
bool isBodyOfScript(const Element* element, const Text* text) {
  const ElementDefinition* definition = element->getElementDefinition();
  return text->getTextType() == Text::TEXT_LITERAL && definition &&
         definition->getContentType() == ElementDefinition::CONTENT_CDATA;
}

void writeEndTag(Element* element, bool cannotHoldText, std::string& out, RuntimeTextState& state) {
  const bool startsLine = (element->getElementGroup() & GROUP_BLOCK) != 0;
  if (hasNoEndTag(element)) {
    if (startsLine) indentOut(state);
    // An unknown tag is written as it was read. Nothing else is, so that a scriptlet may stay open.
    const std::string tag = makeEndTag(element);
    if (!tag.empty()) closeScriptlet(out, state);
    out += tag;
    return;
  }
  closeScriptlet(out, state);
  if (startsLine) indentOut(state);
  if (cannotHoldText && element->hasChildNodes()) {
    out += kLineEnd;
    writeIndent(out, state, 0);
  }
  out += makeEndTag(element);
}

}  // namespace

// A dynamic element whose plan is under way.
struct RuntimeStack::Generation {
  struct Release {
    void operator()(DynBase* held) const { DynamicDataFactory::release(held); }
  };

  MetaData* metaData = nullptr;
  std::unique_ptr<DynBase, Release> data;
  std::unique_ptr<NDynElement::Base> generator;
  NDynElement::Plan plan;
  Around around;
  Around inside;
  bool isNested = false;  // finishRuntimeText is this walk's to call
  std::size_t start = 0;
};

struct RuntimeStack::Frame {
  Element* element = nullptr;  // whose children are written from `next` on
  Node* next = nullptr;
  Around inside;
  bool cannotHoldText = false;
  bool withEndTag = false;
  std::unique_ptr<Generation> generation;  // stands instead of all that
};

RuntimeStack::RuntimeStack(std::string& out, RuntimeTextState& state, Document* document)
    : out_(out), state_(state), types_(document) {}

RuntimeStack::~RuntimeStack() = default;

void RuntimeStack::enterLoopsAround(const LoopScope& innermost) {
  std::vector<const LoopScope*> scopes;
  for (const LoopScope* scope = &innermost; scope; scope = scope->parent()) scopes.push_back(scope);
  for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope) loops_.enter(**scope);
}

// --- from outside ----------------------------------------------------------------------------------------------------

// What the element stands in, found by climbing once. The loops that it stands in are prepared from the outermost on.
RuntimeStack::Around RuntimeStack::aroundOf(Element* element) {
  Around around;
  around.stale = MetaDataAccess::isUnderStale(element);
  around.textAllowed = allowsTextAround(element);
  MetaData* top = nullptr;
  for (Element* above = elementAbove(element); above; above = elementAbove(above)) {
    if (containerOf(above)) top = above->getMetaData();
  }
  if (!top) return around;
  preparation_.prepare(top);
  for (Element* above = elementAbove(element); above && !around.container; above = elementAbove(above)) {
    DynContainer* container = containerOf(above);
    if (!container) continue;
    if (!preparation_.isPrepared(container)) preparation_.leaveOut(container);
    if (!isAbsent(container)) around.container = container;
  }
  if (around.container) enterLoopsAround(around.container->scope());
  return around;
}

void RuntimeStack::writeElement(Element* element, bool ignoreMetaData) {
  visitElement(element, ignoreMetaData, aroundOf(element));
  run();
}

void RuntimeStack::writeChildren(Element* element) {
  Around around = aroundOf(element);
  if (DynContainer* container = containerOf(element)) {
    if (!around.container) preparation_.prepare(element->getMetaData());
    if (!preparation_.isPrepared(container)) preparation_.leaveOut(container);
    around.container = containerOf(element);
    around.container->enterLoops(loops_);
  }
  pushChildren(element, around, /*withEndTag=*/false);
  run();
}

void RuntimeStack::generate(MetaData* metaData, bool isOutermost) {
  Element* element = metaData->getElement();
  Around around;
  if (isOutermost) {
    around.textAllowed = allowsTextAround(element);
  } else {
    around = aroundOf(element);
  }
  pushGeneration(metaData, around, /*isNested=*/false);
  run();
}

// --- the walk --------------------------------------------------------------------------------------------------------

void RuntimeStack::run() {
  while (!frames_.empty()) {
    if (frames_.back().generation) {
      stepGeneration(*frames_.back().generation);
    } else {
      stepChildren(frames_.back());
    }
  }
}

void RuntimeStack::visitElement(Element* element, bool ignoreMetaData, const Around& around) {
  MetaData* metaData = element->getMetaData();
  if (metaData && !ignoreMetaData) {
    // The text that a nested element gave when it was asked alone began elsewhere, outside of this scriptlet.
    const bool stale = around.stale || (around.isGenerated && metaData->getType() == MetaData::DynamicData);
    switch (MetaDataAccess::startRuntimeText(*metaData, out_, state_, /*walkTree=*/true, /*dryRun=*/false, stale)) {
      case MetaDataAccess::Rest::NONE:
        return;
      case MetaDataAccess::Rest::GENERATE:
        pushGeneration(metaData, around, /*isNested=*/true);
        return;
      case MetaDataAccess::Rest::WRITE_ELEMENT:
        break;
    }
  }
  emitBeginTag(element, out_, state_);
  pushChildren(element, around, /*withEndTag=*/true);
}

void RuntimeStack::pushChildren(Element* element, const Around& around, bool withEndTag) {
  Frame& frame = frames_.emplace_back();
  frame.element = element;
  frame.next = element->getFirstChild();
  frame.inside = around;
  frame.inside.stale = around.stale || hasStaleData(element);
  frame.inside.textAllowed = allowsText(element, around.textAllowed);
  frame.cannotHoldText = cannotHoldText(element, around.textAllowed);
  frame.withEndTag = withEndTag;
}

void RuntimeStack::stepChildren(Frame& frame) {
  Node* child = frame.next;
  if (!child) {
    if (frame.withEndTag) writeEndTag(frame.element, frame.cannotHoldText, out_, state_);
    frames_.pop_back();
    return;
  }
  frame.next = NodeAccess::childAfter(child);
  if (Element* element = asElement(child)) {
    const Around inside = frame.inside;
    visitElement(element, /*ignoreMetaData=*/false, inside);
  } else if (child->getNodeType() == Node::NODE_TEXT) {
    Text* text = static_cast<Text*>(child);
    if (!frame.cannotHoldText || isBodyOfScript(frame.element, text)) emitText(text, out_, state_);
  }
}

// --- generators ------------------------------------------------------------------------------------------------------

void RuntimeStack::pushGeneration(MetaData* metaData, const Around& around, bool isNested) {
  Element* element = metaData->getElement();
  DynBase* data = dynamicDataOf(element);
  if (!data) return;
  if (data->asContainer()) {
    // The outermost loop prepares all loops below it. What that does not reach has no loop.
    if (!around.container) preparation_.prepare(metaData);
    data = dynamicDataOf(element);
    if (!preparation_.isPrepared(data->asContainer())) preparation_.leaveOut(data->asContainer());
  }
  auto generation = std::make_unique<Generation>();
  generation->metaData = metaData;
  generation->data.reset(static_cast<DynBase*>(DynamicDataFactory::copy(data)));
  generation->around = generation->inside = around;
  generation->inside.stale = around.stale || hasStaleData(element);
  generation->inside.isGenerated = true;
  if (DynContainer* container = data->asContainer()) {
    generation->inside.container = container;
    container->enterLoops(loops_);
  }
  generation->isNested = isNested;
  generation->start = out_.size();
  generation->generator =
      data->makeGenerator({element, loops_, around.container ? &around.container->scope() : nullptr, types_, {}});
  if (generation->generator) generation->generator->plan(generation->plan);
  frames_.emplace_back().generation = std::move(generation);
}

void RuntimeStack::stepGeneration(Generation& generation) {
  if (generation.plan.isDone()) {
    if (generation.isNested) {
      MetaDataAccess::finishRuntimeText(*generation.metaData, out_, generation.start, state_, /*dryRun=*/false,
                                        /*isNested=*/true);
    }
    if (DynContainer* container = generation.data->asContainer()) container->leaveLoops(loops_);
    frames_.pop_back();
    return;
  }
  using Step = NDynElement::Plan::Step;
  const Step step = generation.plan.takeNext();
  Element* own = generation.metaData->getElement();
  Around inside = generation.inside;
  switch (step.what) {
    case Step::PIECE:
      step.piece(out_, state_);
      break;
    case Step::CHILDREN: {
      inside.textAllowed = step.element == own ? generation.around.textAllowed : allowsTextAround(step.element);
      pushChildren(step.element, inside, /*withEndTag=*/false);
      break;
    }
    case Step::ELEMENT:
      inside.textAllowed = allowsTextAround(step.element);
      visitElement(step.element, /*ignoreMetaData=*/false, inside);
      break;
    case Step::END_TAG: {
      const bool around = step.element == own ? generation.around.textAllowed : allowsTextAround(step.element);
      writeEndTag(step.element, cannotHoldText(step.element, around), out_, state_);
      break;
    }
  }
}

// --- the plain functions ---------------------------------------------------------------------------------------------

bool cannotHoldText(Document*, const Element* element) { return cannotHoldText(element, allowsTextAround(element)); }

void generateRuntimeText(MetaData* metaData, std::string& out, RuntimeTextState& state, bool isOutermost) {
  Element* element = metaData->getElement();
  if (element) RuntimeStack(out, state, element->getDocument()).generate(metaData, isOutermost);
}

void emitEndTag(Element* element, std::string& out, RuntimeTextState& state) {
  writeEndTag(element, cannotHoldText(element->getDocument(), element), out, state);
}

void emitChildren(Element* element, std::string& out, RuntimeTextState& state) {
  RuntimeStack(out, state, element->getDocument()).writeChildren(element);
}

void emitElement(Element* element, std::string& out, RuntimeTextState& state, bool ignoreMetaData) {
  RuntimeStack(out, state, element->getDocument()).writeElement(element, ignoreMetaData);
}

}  // namespace zeldom40
