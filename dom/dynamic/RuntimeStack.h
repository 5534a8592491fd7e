// Internal. The one walk that writes run-time text, however deep dynamic elements stand in each other.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "dom/dynamic/JavaTypes.h"
#include "dom/dynamic/Preparation.h"

namespace zeldom40 {

class DynContainer;
class Element;
class MetaData;
class Node;
struct RuntimeTextState;

// Elements whose children are being written and generators whose plan is under way lie on an explicit stack. What an
// element needs to know of all that it stands in is carried down, so that no element climbs to the top.
class RuntimeStack {
 public:
  RuntimeStack(std::string& out, RuntimeTextState& state, Document* document);
  ~RuntimeStack();

  // From a caller outside of the walk; each runs to its end.
  void writeElement(Element* element, bool ignoreMetaData);
  void writeChildren(Element* element);
  void generate(MetaData* metaData, bool isOutermost);

 private:
  struct Around {
    DynContainer* container = nullptr;  // whose loops resolve the paths
    bool stale = false;                 // the dynamic data of an element above is stale
    bool isGenerated = false;           // an element above is being generated
    bool textAllowed = true;            // in the nearest element that is not transparent
  };
  struct Generation;
  struct Frame;

  Around aroundOf(Element* element);
  void enterLoopsAround(const LoopScope& innermost);
  void visitElement(Element* element, bool ignoreMetaData, const Around& around);
  void pushChildren(Element* element, const Around& around, bool withEndTag);
  void pushGeneration(MetaData* metaData, const Around& around, bool isNested);
  void stepChildren(Frame& frame);
  void stepGeneration(Generation& generation);
  void run();

  std::string& out_;
  RuntimeTextState& state_;
  JavaTypes types_;
  Preparation preparation_;
  OpenLoops loops_;
  std::vector<Frame> frames_;
};

}  // namespace zeldom40
