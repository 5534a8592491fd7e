// The life of a MetaData, its comments and its run-time text.
#include "dom/dynamic/MetaData.h"

#include <utility>

#include "dom/document/Adoption.h"
#include "dom/document/DOMAccess.h"
#include "dom/document/DocumentAccess.h"
#include "dom/dynamic/DTCClientItem.h"
#include "dom/dynamic/DTCDocument.h"
#include "dom/dynamic/DynamicData.h"
#include "dom/dynamic/DynamicDataFactory.h"
#include "dom/dynamic/MetaDataAccess.h"
#include "dom/dynamic/MetaDataComment.h"
#include "dom/dynamic/RuntimeTextState.h"
#include "dom/dynamic/RuntimeWriter.h"
#include "dom/source/SourceWriter.h"
#include "dom/tree/Element.h"
#include "dom/tree/NodeAccess.h"

namespace zeldom40 {

namespace {

constexpr std::string_view kScriptletEnd = " %>";

// The host's controls, while the document is there; a node may be held longer.
DTCDocument* controlsOf(const MetaData* md) {
  Document* document = md->getDocument();
  return document && DocumentAccess::isLive(document) ? document->getDTCDocument() : nullptr;
}

// A page file closes every scriptlet, a generator may leave one open for what follows.
bool sameRuntimeText(std::string_view generated, std::string_view stored, bool inScriptlet) {
  if (!inScriptlet) return generated == stored;
  return stored.size() == generated.size() + kScriptletEnd.size() && stored.substr(0, generated.size()) == generated &&
         stored.substr(generated.size()) == kScriptletEnd;
}

}  // namespace

// --- life ------------------------------------------------------------------------------------------------------------

MetaData::MetaData(Document* document) : Node(NODE_META_DATA, document) {
  NodeAccess::setName(this, DOMAccess::metaDataName());
}

MetaData::MetaData(const MetaData& source)
    : Node(source),
      beginTag_(source.beginTag_),
      endTag_(source.endTag_),
      runtimeData_(source.runtimeData_),
      type_(source.type_),
      beginTagDirty_(source.beginTagDirty_),
      endTagDirty_(source.endTagDirty_),
      runtimeDirty_(source.runtimeDirty_),
      runtimeEndsInScriptlet_(source.runtimeEndsInScriptlet_),
      runtimeCompared_(source.runtimeCompared_) {
  switch (getType()) {
    case DesignerControl:
      if (DTCDocument* controls = controlsOf(this)) object_ = controls->copyClientItem(source.getClientItem());
      break;
    case DynamicData:
      object_ = DynamicDataFactory::copy(source.getDynamicData());
      break;
    case AuthorTimeVisual:
      if (getDocument() && source.getATV()) {
        // CHOICE: a visual that itself carries metadata is copied without it; visuals of visuals would have no end.
        auto* visual = new Element(*source.getATV(), /*withMetaData=*/false);
        visual->addRef(false);
        NodeAccess::setParent(visual, this);
        object_ = visual;
      }
      break;
    default:
      break;
  }
}

MetaData::~MetaData() { NodeAccess::releaseOwned(this); }

void MetaData::releaseOwned(bool) { dropObject(); }

Node* MetaData::cloneSelf() const { return new MetaData(*this); }

void MetaData::dropObject() {
  void* object = std::exchange(object_, nullptr);
  if (!object) return;
  switch (getType()) {
    case DesignerControl: {
      auto* item = static_cast<DTCClientItem*>(object);
      if (element_ && item->getElement() == element_) item->setElement(nullptr);
      if (DTCDocument* controls = controlsOf(this)) controls->destroyClientItem(item);
      break;
    }
    case DynamicData:
      DynamicDataFactory::release(static_cast<zeldom40::DynamicData*>(object));
      break;
    case AuthorTimeVisual: {
      auto* visual = static_cast<Element*>(object);
      NodeAccess::setParent(visual, nullptr);
      visual->releaseRef(true);
      break;
    }
    default:
      break;
  }
}

// --- the object ------------------------------------------------------------------------------------------------------

DTCClientItem* MetaData::getClientItem() const {
  return getType() == DesignerControl ? static_cast<DTCClientItem*>(object_) : nullptr;
}

zeldom40::DynamicData* MetaData::getDynamicData() const {
  return getType() == DynamicData ? static_cast<zeldom40::DynamicData*>(object_) : nullptr;
}

Element* MetaData::getATV() const { return getType() == AuthorTimeVisual ? static_cast<Element*>(object_) : nullptr; }

void MetaData::setType(Type type) {
  // An object is of use to its own type alone.
  if (type != getType()) dropObject();
  type_ = static_cast<std::uint8_t>(type);
}

bool MetaData::setATV(Element* atv) {
  if (getType() != AuthorTimeVisual || !atv || atv->getElementID() != ID_ZELX_ATV) return false;
  if (atv == object_) return true;
  if (atv->getParentNode() || NodeAccess::isAtOrAbove(atv, this)) return false;
  if (!adoptNodes(atv, documentAround(this))) return false;
  dropObject();
  object_ = atv;
  NodeAccess::setParent(atv, this);
  NodeAccess::forgetEdits(atv);
  return true;
}

Element* MetaData::takeATV() {
  Element* visual = getATV();
  if (!visual) return nullptr;
  NodeAccess::setParent(visual, nullptr);
  object_ = nullptr;
  return visual;
}

void MetaDataAccess::dropVisual(MetaData& md) {
  if (md.element_) {
    md.element_->setATV(nullptr);
  } else {
    md.takeATV()->releaseRef(true);
  }
}

Node* MetaDataAccess::giveVisualUp(MetaData& md) {
  Element* const element = md.element_;
  Element* const visual = md.takeATV();
  visual->setUpdateFlag(Node::UPDATE_REMOVED);
  if (element) {
    element->setMetaData(nullptr);
    element->setUpdateFlag(Node::UPDATE_META_DATA_MODIFIED);
  }
  return visual;
}

void MetaDataAccess::adopt(MetaData& md, Document* to) {
  const DTCDocument* const controls = to->getDTCDocument();
  if (md.getClientItem() && controlsOf(&md) != controls) md.dropObject();
  md.setDocument(to);
  // It comes from no page that was loaded, as far as this document knows.
  md.loadedFromPage_ = false;
  if (md.element_ && !md.object_) md.setElement(md.element_);
  md.setDirty(true, /*runtimeOnly=*/false);
}

void MetaData::setElement(Element* element) {
  if (!element && getType() == DesignerControl && object_) {
    DTCClientItem* item = getClientItem();
    if (item->getElement() == element_) item->setElement(nullptr);
  }
  element_ = element;
  if (!element) return;
  // The marks around it may tell of edits that this one does not know.
  if (!beginTagDirty_ || !runtimeDirty_) NodeAccess::forgetEdits(element);
  NodeAccess::clearFlags(this);
  if (!object_ && getType() == DesignerControl) {
    if (DTCDocument* controls = controlsOf(this)) object_ = controls->createClientItem(element);
  }
  if (!object_ && getType() == DynamicData) object_ = DynamicDataFactory::create(element);
}

bool MetaData::canGenerate() {
  if (!getDocument() || !element_) return false;
  switch (getType()) {
    case AuthorTimeVisual:
      return true;
    case DynamicData:
      // The element decides what generates, and a host may have changed it since: an INPUT that is made dynamic before
      // it has its TYPE, or gets another one.
      if (!DynamicDataFactory::fits(getDynamicData(), element_)) {
        zeldom40::DynamicData* fitting = DynamicDataFactory::create(element_);
        DynamicDataFactory::release(getDynamicData());
        object_ = fitting;
      }
      return object_ != nullptr;
    default:
      return getClientItem() != nullptr;
  }
}

// --- what is stored --------------------------------------------------------------------------------------------------

bool MetaData::canContain(Node*, Node** blocking, std::vector<Node*>*) {
  if (blocking) *blocking = nullptr;
  return false;
}

void MetaData::setUpdateFlag(unsigned long flag) {
  if (flag == UPDATE_CHILD_MODIFIED && element_) element_->setUpdateFlag(UPDATE_META_DATA_MODIFIED);
}

void MetaData::setRuntimeData(const char* text) { storeRuntimeText(text ? text : ""); }
void MetaData::setRuntimeText(const std::string& text) { storeRuntimeText(text); }

void MetaData::storeRuntimeText(std::string text) {
  runtimeData_ = std::move(text);
  setDirty(false, /*runtimeOnly=*/true);
}

void MetaData::setBeginTag(const std::string& text) {
  beginTag_ = text;
  beginTagDirty_ = false;
  if (element_) NodeAccess::forgetEdits(element_);
}

void MetaData::setEndTag(const std::string& text) {
  endTag_ = text;
  endTagDirty_ = false;
}

void MetaData::setDirty(bool value, bool runtimeOnly) {
  if (!runtimeOnly) beginTagDirty_ = endTagDirty_ = value;
  runtimeDirty_ = value;
  // From here on the next edit below is news again.
  if (!value && element_) NodeAccess::forgetEdits(element_);
}

const std::string& MetaData::getBeginTag() { return MetaDataAccess::beginTag(*this, SourceOptions::UNKNOWN); }

const std::string& MetaDataAccess::beginTag(MetaData& md, SourceOptions::Above above) {
  const MetaData::Type type = md.getType();
  if ((!md.beginTagDirty_ && !md.beginTag_.empty()) || type == MetaData::None) return md.beginTag_;
  std::string source;
  if (md.getDocument()) {
    SourceOptions options;
    options.rawTree = options.compact = true;
    options.above = above;
    if (type == MetaData::AuthorTimeVisual) {
      writeNode(md.getATV(), Document::SOURCE_TAGS, source, options);
    } else {
      writeNode(md.element_, Document::SOURCE_ALL, source, options);
    }
  }
  md.setBeginTag(makeBeginComment(type, source));
  // Asked alone, a nested control has its mark, which goes with the element around it.
  md.beginTagDirty_ =
      above == SourceOptions::UNKNOWN ? md.element_ && isUnderMetaData(md.element_) : above == SourceOptions::METADATA;
  return md.beginTag_;
}

const std::string& MetaData::getEndTag() {
  if ((endTagDirty_ || endTag_.empty()) && getType() != None) setEndTag(makeEndComment(getType()));
  return endTag_;
}

// --- run-time text ---------------------------------------------------------------------------------------------------

bool MetaDataAccess::isUnderStale(const Element* element) {
  if (!element) return false;
  for (const Node* n = element->getParentNode(); n; n = n->getParentNode()) {
    if (n->getNodeType() != Node::NODE_ELEMENT) continue;
    const MetaData* md = static_cast<const Element*>(n)->getMetaData();
    if (md && md->getType() == MetaData::DynamicData && md->isDirty()) return true;
  }
  return false;
}

bool MetaDataAccess::isUnderMetaData(const Element* element) {
  const Node* n = element->getParentNode();
  while (n && !(n->getNodeType() == Node::NODE_ELEMENT && static_cast<const Element*>(n)->getMetaData())) {
    // A visual stands in no tree, but the element that it is for has metadata.
    if (n->getNodeType() == Node::NODE_META_DATA) return true;
    n = n->getParentNode();
  }
  return n != nullptr;
}

MetaDataAccess::Rest MetaDataAccess::startRuntimeText(MetaData& md, std::string& out, RuntimeTextState& state,
                                                      bool walkTree, bool dryRun, bool underStale) {
  Element* element = md.element_;
  const MetaData::Type type = md.getType();
  if (walkTree && type == MetaData::AuthorTimeVisual) return element ? Rest::WRITE_ELEMENT : Rest::NONE;

  const bool canGenerate = md.canGenerate();
  const bool unchecked = !dryRun && !md.runtimeCompared_ && md.loadedFromPage_ && type != MetaData::AuthorTimeVisual;
  if (!canGenerate || (!md.runtimeDirty_ && !md.runtimeData_.empty() && !underStale && !unchecked)) {
    // CHOICE: inside a dynamic element a text has no place of its own in a page: the reader makes anew what the
    // design-time source gives, which is nothing for an INPUT that lost its TYPE and a plain element for one that lost
    // its mark.
    if (walkTree && type == MetaData::DynamicData && !canGenerate) {
      return element && !element->isDynamicElement() ? Rest::WRITE_ELEMENT : Rest::NONE;
    }
    // What cannot be generated is never lost: a page with controls may be saved by a host that knows none of them. A
    // stale text stays stale, until there is one who can make it anew.
    if (md.runtimeData_.empty()) return Rest::NONE;
    if (state.inScriptlet && (type != MetaData::DynamicData || !canGenerate)) out += kScriptletEnd;
    out += md.runtimeData_;
    state.inScriptlet = md.runtimeEndsInScriptlet_;
    return Rest::NONE;
  }

  switch (type) {
    case MetaData::AuthorTimeVisual: {
      SourceOptions options;
      options.rawTree = options.compact = options.inner = true;
      std::string source;
      writeNode(element, Document::SOURCE_ALL, source, options);
      out += source;
      if (!dryRun) md.storeRuntimeText(std::move(source));
      return Rest::NONE;
    }
    case MetaData::DesignerControl: {
      const bool wasDirty = md.runtimeDirty_;
      std::string saved;
      if (dryRun) saved = md.runtimeData_;
      // The host answers by setRuntimeData.
      md.getClientItem()->getRuntimeData(&md);
      if (!md.runtimeData_.empty() && state.inScriptlet) {
        out += kScriptletEnd;
        state.inScriptlet = false;
      }
      out += md.runtimeData_;
      if (dryRun) {
        md.runtimeData_ = std::move(saved);
        md.runtimeDirty_ = wasDirty;
      } else {
        md.setDirty(false, /*runtimeOnly=*/true);
      }
      return Rest::NONE;
    }
    default:
      return Rest::GENERATE;
  }
}

void MetaDataAccess::finishRuntimeText(MetaData& md, const std::string& out, std::size_t start,
                                       const RuntimeTextState& state, bool dryRun, bool isNested) {
  md.runtimeEndsInScriptlet_ = state.inScriptlet;
  const std::string_view generated = std::string_view(out).substr(start);
  // Elements inside one that is only looked at are not: what they write there was no save.
  Document* document = md.getDocument();
  if (dryRun || DocumentAccess::inDryRun(document)) return;
  if (md.loadedFromPage_ && !md.runtimeCompared_ && !sameRuntimeText(generated, md.runtimeData_, state.inScriptlet)) {
    document->markRuntimeTextDifferent();
  }
  md.runtimeCompared_ = true;
  // CHOICE: the outermost text holds those of all elements in it. Asked alone, a nested element is generated anew: a
  // copy at each level would cost the square of the depth, and would begin as its surroundings happened to leave it.
  // A text that came out as it was stays, and another one goes before the new one is copied.
  const std::string_view kept = isNested ? std::string_view() : generated;
  if (kept != md.runtimeData_) {
    std::string().swap(md.runtimeData_);  // an assignment would keep its room
    md.runtimeData_ = kept;
  }
  md.setDirty(false, /*runtimeOnly=*/true);
}

void MetaDataAccess::appendRuntimeText(MetaData& md, std::string& out, RuntimeTextState& state, bool walkTree,
                                       bool dryRun, bool underStale, bool isOutermost) {
  switch (startRuntimeText(md, out, state, walkTree, dryRun, underStale)) {
    case Rest::NONE:
      return;
    case Rest::WRITE_ELEMENT:
      emitElement(md.element_, out, state, /*ignoreMetaData=*/true);
      return;
    case Rest::GENERATE: {
      const DocumentAccess::DryRun guard(dryRun ? md.getDocument() : nullptr);
      const std::size_t start = out.size();
      // It mostly comes out as it was. A long text that grows step by step needs three times its room.
      out.reserve(start + md.runtimeData_.size());
      generateRuntimeText(&md, out, state, isOutermost);
      // An element that comes to stand elsewhere without being edited would take the names of its old loops along.
      finishRuntimeText(md, out, start, state, dryRun, /*isNested=*/!isOutermost && isUnderMetaData(md.element_));
      return;
    }
  }
}

void MetaData::appendRuntimeText(std::string& out, RuntimeTextState& state, bool walkTree, bool dryRun) {
  MetaDataAccess::appendRuntimeText(*this, out, state, walkTree, dryRun, MetaDataAccess::isUnderStale(element_));
}

}  // namespace zeldom40
