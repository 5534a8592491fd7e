// `zeldom convert`: the bytes of a file in another charset or with other line ends.
#include <string>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/output.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

ExitCode runConvert(const ConvertOptions& options) {
  CodeConv::SetCodepage(options.codepage);
  Output out;
  ExitCode result = kFine;
  for (const std::string& file : options.files) {
    std::string bytes;
    if (!readInput(file, &bytes)) {
      result = kFailed;
      continue;
    }
    // A converter for each file: it remembers charset and line ends of what it imported.
    CodeConv converter;
    const char* text = converter.Import(bytes.data(), static_cast<int>(bytes.size()), options.from);
    // No bytes in, none out. Import leaves no NUL in the text, so its end is where the NUL stands.
    const char* exported = text ? converter.Export(text, -1, options.to, options.newline) : nullptr;
    if (exported) out << exported;
  }
  return out.flush() ? result : kFailed;
}

}  // namespace zeldom40::tool
