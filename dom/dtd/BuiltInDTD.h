// Internal. The document type definition that the library carries.
#pragma once

#include <string_view>

namespace zeldom40 {

inline constexpr std::string_view kBuiltInPublicId = "-//ZEL//DTD ZEL Version 4.0//EN";

// Its text; constant.
std::string_view builtInDTD();

}  // namespace zeldom40
