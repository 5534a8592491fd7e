// Internal. Where the run-time writer and MetaData meet: what MetaData does before and after its element is generated.
#pragma once

#include <cstddef>
#include <string>

namespace zeldom40 {

class DynamicData;
class MetaData;
struct RuntimeTextState;

// One question for the run-time text of a MetaData.
struct RuntimeRequest {
  bool walkTree = false;       // the writer came here on its walk through the tree
  bool dryRun = false;         // of the node, only runtimeEndsInScriptlet may change
  bool underDryRun = false;    // an enclosing request is dry: text may be stored, but not compared nor marked
  bool ancestorDirty = false;  // an enclosing MetaData of type DynamicData is stale: stored text is not reused
  // From beginRuntimeText to endRuntimeText.
  std::size_t start = 0;  // where in `out` the generated text begins
  bool compare = false;
};

// Defined in MetaData.cpp.
struct MetaDataAccess {
  enum Next {
    DONE,           // everything is written: stored text, a control, the source of an element with a visual
    WRITE_ELEMENT,  // the writer goes on with the element as if it had no metadata
    GENERATE        // the writer runs the generator of getDynamicData(), then calls endRuntimeText
  };
  // Up to the generation. Before GENERATE the object has been made anew if it was null or does not fit its element
  // (DynamicDataFactory::fits).
  static Next beginRuntimeText(MetaData* metaData, std::string& out, RuntimeTextState& state, RuntimeRequest& request);
  // Compares, stores, cleans.
  static void endRuntimeText(MetaData* metaData, const std::string& out, RuntimeTextState& state,
                             const RuntimeRequest& request);
  // Releases the present object and takes over one reference of `data`.
  static void setDynamicData(MetaData* metaData, DynamicData* data);
};

}  // namespace zeldom40
