// `zeldom beans`: the names that a property path can begin with.
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/output.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

namespace {

constexpr std::size_t kShownBytes = 100;

template <typename Use>
void forEachBean(const Page& page, Use use) {
  void* handle = nullptr;
  page.document()->getBeanListBegin(handle);
  const char* name = nullptr;
  const char* type = nullptr;
  while (page.document()->getBeanListNext(handle, name, type)) use(name, type);
  page.document()->getBeanListEnd(handle);
}

}  // namespace

ExitCode runBeans(const ListOptions& options, const Settings& settings) {
  const Library library(settings);
  if (!library.usable()) return kFailed;
  Output out;
  ExitCode result = kFine;
  const char* separator = "[";
  for (const std::string& file : options.files) {
    const auto use = [&](const Page& page, const std::string& bytes) {
      const bool utf8 = isUtf8(bytes);
      nlohmann::ordered_json beans = nlohmann::ordered_json::array();
      forEachBean(page, [&](std::string_view name, std::string_view type) {
        if (options.json) {
          beans.push_back({{"name", jsonText(name, utf8)}, {"class", jsonText(type, utf8)}});
          return;
        }
        out.paint(Colour::kName, file) << ": " << preview(name, kShownBytes, utf8) << " ";
        out.paint(Colour::kText, preview(type, kShownBytes, utf8)) << "\n";
      });
      if (options.json) {
        const nlohmann::ordered_json json{{"file", jsonText(file, isUtf8(file))}, {"beans", beans}};
        out << separator << json.dump();
        separator = ",\n";
      }
      return kFine;
    };
    result = worse(result, withPage(library, file, Pairs::kKeep, use));
  }
  if (options.json) out << (*separator == '[' ? "[]\n" : "]\n");
  return out.flush() ? result : kFailed;
}

}  // namespace zeldom40::tool
