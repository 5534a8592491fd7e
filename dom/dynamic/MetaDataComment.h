// Internal. The comments of a metadata pair: how they are recognised, written, and taken apart.
#pragma once

#include <string>
#include <string_view>

#include "dom/dynamic/MetaData.h"

namespace zeldom40 {

// Whether the body of a comment, what stands between "<!" and ">", makes it the begin comment of a pair; `type`
// receives the kind. All that decides stands on its first line.
bool matchBeginComment(std::string_view body, MetaData::Type& type);
// Whether it is an end comment of a pair of that kind.
bool matchEndComment(std::string_view body, MetaData::Type type);

// The comments as the writer makes them; empty for type None. `source` is the design-time source as it is in the tree.
std::string makeBeginComment(MetaData::Type type, std::string_view source);
std::string makeEndComment(MetaData::Type type);

// The design-time source that a begin comment holds, as the tree had it. Empty if it has no line break.
std::string designSource(std::string_view beginComment);

}  // namespace zeldom40
