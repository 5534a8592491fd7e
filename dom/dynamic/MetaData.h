// The carrier of two texts for one thing: what the author works with, and what the server gets.
#pragma once

#include <cstdint>
#include <string>

#include "dom/export.h"
#include "dom/tree/Node.h"

namespace zeldom40 {

class DTCClientItem;
class DynamicData;
class Element;
struct RuntimeTextState;

// A page file holds a pair of METADATA comments. The begin comment carries the design-time source, between the two
// stands the run-time text, which is ordinary page text, and only that is seen by a server or a browser. In the tree
// the author has the design-time element; its MetaData keeps the comments and the run-time text aside. An authoring
// visual is the opposite: the run-time element stands in the tree and the visual, a ZELX:ATV element, is kept aside.
//
// Once linked, a MetaData stands in no child list: the element refers to it and holds its one reference, and the way
// up goes on from a node of type NODE_META_DATA at its element.
class ZELDOM40_API MetaData : public Node {
 public:
  enum Type { DesignerControl = 0, DynamicData = 1, AuthorTimeVisual = 2, None = 3 };

  // Count 0, type None, not linked. Document::createMetaData makes one with a count of 1.
  explicit MetaData(Document* document);
  // Texts and type; the object as its type asks for (a host's item through copyClientItem, generator data shared, the
  // visual copied). Belongs to no element yet.
  MetaData(const MetaData& source);
  ~MetaData() override;

  Type getType() const { return static_cast<Type>(type_); }
  void setType(Type type);
  // The run-time text from now on; a host's control calls the first from getRuntimeData. Null is empty.
  void setRuntimeData(const char* text);
  void setRuntimeText(const std::string& text);
  const std::string& getRuntimeText() const { return runtimeData_; }
  // By type: a DTCClientItem, a DynamicData or the ZELX:ATV Element; null if there is none. Owned by this node.
  void* getObject() { return object_; }
  const void* getObject() const { return object_; }
  DTCClientItem* getClientItem() const;
  zeldom40::DynamicData* getDynamicData() const;
  Element* getATV() const;
  // Takes over one reference of `atv`, a ZELX:ATV element in no tree; a former one is released. False, with nothing
  // changed, for another element, for one that the element of this node stands in, for one of another DOM, and for a
  // MetaData of another type.
  bool setATV(Element* atv);
  // Gives the visual back with its reference; null if there is none.
  Element* takeATV();

  bool canContain(Node* child, Node** blocking, std::vector<Node*>* path) override;
  // KEPT: UPDATE_CHILD_MODIFIED alone is passed on, as the element's UPDATE_META_DATA_MODIFIED; no flag is ever stored.
  void setUpdateFlag(unsigned long flag) override;

  // --- for the library ----------------------------------------------------------------------------------------------
  // The comments, from "<!--" to "-->"; a stale one is built anew. Live until the next call or change.
  const std::string& getBeginTag();
  const std::string& getEndTag();
  void setBeginTag(const std::string& text);
  void setEndTag(const std::string& text);
  Element* getElement() const { return element_; }
  // Links to `element` (null: unlinks), and makes the object that the type asks for if there is none.
  void setElement(Element* element);
  // Marks the run-time text, and unless `runtimeOnly` both comments, as stale or current.
  void setDirty(bool value, bool runtimeOnly);
  bool isDirty() const { return beginTagDirty_ || endTagDirty_ || runtimeDirty_; }
  bool wasLoadedFromPage() const { return loadedFromPage_; }
  // Appends the run-time text, stored or generated. `walkTree`: the run-time writer met the element on its way.
  // `dryRun`: the node stays as it is, but for where its text ends.
  void appendRuntimeText(std::string& out, RuntimeTextState& state, bool walkTree, bool dryRun);

 private:
  friend struct MetaDataAccess;

  void releaseOwned(bool held) override;
  Node* cloneSelf() const override;
  void dropObject();
  void storeRuntimeText(std::string text);
  bool canGenerate();

  std::string beginTag_;
  std::string endTag_;
  std::string runtimeData_;
  Element* element_ = nullptr;
  void* object_ = nullptr;
  std::uint8_t type_ = None;
  bool beginTagDirty_ = true;
  bool endTagDirty_ = true;
  bool runtimeDirty_ = true;
  bool runtimeEndsInScriptlet_ = false;
  bool loadedFromPage_ = false;
  bool runtimeCompared_ = false;
  std::uint8_t nesting_ = 0;
};

}  // namespace zeldom40
