// Replaces a file so that at any moment either the old or the new version is there, whole.
#pragma once

#include <string>
#include <string_view>

#include "tools/zeldom/page.h"

namespace zeldom40::tool {

// Writes `bytes` to a new file beside `path`, with its permissions, and lets it take the place of the old one once all
// is on the disk. A link stays a link: what it leads to is replaced. A file that was written to since `read` is left
// alone. On failure, or when the process is interrupted, the old file stays and the new one goes; false, with the
// reason on stderr.
bool replaceFile(const std::string& path, std::string_view bytes, const FileStamp& read);

}  // namespace zeldom40::tool
