// Internal. What a dynamic element hands its MetaData: the one who can turn element and children into server code.
#pragma once

#include <string>

namespace zeldom40 {

class MetaData;
struct RuntimeTextState;

// Counted; made, shared and deleted by DynamicDataFactory alone.
class DynamicData {
 public:
  DynamicData() = default;
  DynamicData(const DynamicData&) = delete;
  DynamicData& operator=(const DynamicData&) = delete;
  virtual ~DynamicData();

  // Appends the run-time text of the element of `metaData` to `out`; nothing without a fitting element.
  virtual void generate(MetaData* metaData, std::string& out, RuntimeTextState& state) = 0;
  // Return the new count.
  virtual int addRef() = 0;
  virtual int releaseRef() = 0;
};

}  // namespace zeldom40
