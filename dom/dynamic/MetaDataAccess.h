// Internal. What the parser, the classifier and the run-time writer do to a MetaData beyond its interface.
#pragma once

#include <cstddef>
#include <string>

#include "dom/dynamic/MetaData.h"
#include "dom/source/SourceWriter.h"
#include "dom/tree/Element.h"

namespace zeldom40 {

struct MetaDataAccess {
  // What is left to do for a run-time text after its first part.
  enum class Rest {
    NONE,           // the text has been appended, or there is none
    WRITE_ELEMENT,  // the element is to be written as a plain one, its metadata ignored; no finish
    GENERATE        // the dynamic data is to generate behind the present end of the text; then finishRuntimeText
  };
  // MetaData::appendRuntimeText up to the generation of a dynamic element, and from its end on, so that a writer can
  // do what lies between without calling itself. `underStale`: an element above has stale dynamic data, so that stored
  // text is not good enough. `start` is the length of `out` when the first part returned.
  // The text of an element that was written inside another one (`isNested`) is not kept.
  static Rest startRuntimeText(MetaData& md, std::string& out, RuntimeTextState& state, bool walkTree, bool dryRun,
                               bool underStale);
  static void finishRuntimeText(MetaData& md, const std::string& out, std::size_t start, const RuntimeTextState& state,
                                bool dryRun, bool isNested = false);
  // The begin comment for a caller that knows what stands above.
  static const std::string& beginTag(MetaData& md, SourceOptions::Above above);
  // appendRuntimeText for a caller that knows what stands above; `isOutermost`: no element with metadata does.
  static void appendRuntimeText(MetaData& md, std::string& out, RuntimeTextState& state, bool walkTree, bool dryRun,
                                bool underStale, bool isOutermost = false);
  // Whether the dynamic data of an element above `element` is stale. Climbs to the top.
  static bool isUnderStale(const Element* element);
  // Whether an element above has metadata. Climbs to the top.
  static bool isUnderMetaData(const Element* element);

  // The metadata that keeps `node` aside as its visual; null for any other node, and for null.
  static MetaData* ofVisual(const Node* node) {
    Node* const parent = node ? node->getParentNode() : nullptr;
    if (!parent || parent->getNodeType() != Node::NODE_META_DATA) return nullptr;
    auto* md = static_cast<MetaData*>(parent);
    return md->getATV() == node ? md : nullptr;
  }
  // Deletes the visual; its element has none then.
  static void dropVisual(MetaData& md);
  // The same, but the visual goes to the caller with its reference. `md` may be gone afterwards.
  static Node* giveVisualUp(MetaData& md);
  // Its element became one of `to`: the texts are stale, and a control is handed from host to host. Visuals are nodes
  // of their own.
  static void adopt(MetaData& md, Document* to);

  // The dynamic data is made anew if the element asks for another class by now; the old one is the caller's to release.
  static void setObject(MetaData& md, void* object) { md.object_ = object; }
  static void setLoadedFromPage(MetaData& md) { md.loadedFromPage_ = true; }
  static void setRuntimeCompared(MetaData& md) { md.runtimeCompared_ = true; }
  // How many pairs this one was read inside of: in the design-time source of one, or in the text of a dissolved one.
  static unsigned nesting(const MetaData& md) { return md.nesting_; }
  static void setNesting(MetaData& md, unsigned nesting) { md.nesting_ = static_cast<std::uint8_t>(nesting); }
};

}  // namespace zeldom40
