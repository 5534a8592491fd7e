// Internal. Which class of dynamic data an element gets, and the life of such objects.
#pragma once

namespace zeldom40 {

class DynamicData;
class Element;

// Who holds a MetaData of type DynamicData holds one reference of its object. Has no state.
class DynamicDataFactory {
 public:
  // An object with one reference, or null for an element that is not dynamic or has nothing to generate.
  static DynamicData* create(const Element* element);
  // The same object with one more reference; null gives null.
  static DynamicData* copy(DynamicData* data);
  // Drops one reference and deletes at zero; null is ignored.
  static void release(DynamicData* data);
  // Whether create would make an object of the same class (or none, for null): an edit of TYPE asks for another one.
  static bool fits(const DynamicData* data, const Element* element);
};

}  // namespace zeldom40
