// `zeldom pairs`: the dynamic elements, controls and visuals of a page, and whether their run-time text is current.
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "tools/zeldom/commands.h"
#include "tools/zeldom/output.h"
#include "tools/zeldom/page.h"

namespace zeldom40::tool {

namespace {

struct Pair {
  const char* type;
  std::string element;
  SourceMap::Position place;
  const char* runtimeText;
};

const char* nameOf(MetaData::Type type) {
  switch (type) {
    case MetaData::DesignerControl:
      return "DesignerControl";
    case MetaData::DynamicData:
      return "DynamicData";
    case MetaData::AuthorTimeVisual:
      return "AuthorTimeVisual";
    default:
      return "None";
  }
}

// Where each pair begins in the file. The elements are those of the page itself, in the same order.
std::vector<SourceMap::Position> placesOf(const Library& library, const SourceFile& file) {
  Page asRead(library, file.text);
  const std::vector<Element*> elements = asRead.pairs();
  asRead.keepPairs();
  const SourceMap map(asRead.document());
  std::vector<SourceMap::Position> places;
  places.reserve(elements.size());
  for (const Element* element : elements) places.push_back(map.getPosition(map.getRange(element).begin));
  return places;
}

// What stands between the comments of an element when it is saved.
std::string savedText(const Page& page, Element* element) {
  std::string text(page.source(element));
  text.erase(0, element->getMetaData()->getBeginTag().size());
  text.erase(text.size() - element->getMetaData()->getEndTag().size());
  return text;
}

// Whether the text that was read is the one that the page generates. Asking is a save: what was stored is gone then.
const char* compare(const Page& page, Element* element) {
  MetaData* metaData = element->getMetaData();
  if (!metaData->wasLoadedFromPage()) return "new";
  if (!metaData->getObject()) return "kept";
  const std::string stored = metaData->getRuntimeText();
  if (stored.empty()) return "empty";
  return savedText(page, element) == stored ? "current" : "different";
}

std::vector<Pair> pairsOf(const Library& library, const SourceFile& file, const Page& page) {
  std::vector<Pair> pairs;
  const std::vector<SourceMap::Position> places = placesOf(library, file);
  for (Element* element : page.pairs()) {
    pairs.push_back({nameOf(element->getMetaData()->getType()), element->getTagName(), places[pairs.size()],
                     compare(page, element)});
  }
  return pairs;
}

nlohmann::ordered_json describe(const std::vector<Pair>& pairs) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const Pair& pair : pairs) {
    list.push_back({{"type", pair.type},
                    {"element", pair.element},
                    {"line", pair.place.line},
                    {"column", pair.place.column},
                    {"runtimeText", pair.runtimeText}});
  }
  return list;
}

}  // namespace

ExitCode runPairs(const ListOptions& options, const Settings& settings) {
  const Library library(settings);
  if (!library.usable()) return kFailed;
  Output out;
  ExitCode result = kFine;
  const char* separator = "[";
  for (const std::string& path : options.files) {
    const auto use = [&](const SourceFile& file, const Page& page) {
      const std::vector<Pair> pairs = pairsOf(library, file, page);
      const bool different = page.document()->isRuntimeTextDifferent();
      if (options.json) {
        const nlohmann::ordered_json json{
            {"file", jsonText(path, isUtf8(path))}, {"different", different}, {"pairs", describe(pairs)}};
        out << separator << json.dump();
        separator = ",\n";
      }
      for (const Pair& pair : pairs) {
        if (options.json) break;
        out.paint(Colour::kName, path + ":" + std::to_string(pair.place.line) + ":" + std::to_string(pair.place.column))
            << ": " << pair.type << " <" << pair.element << ">: ";
        const bool stale =
            pair.runtimeText == std::string_view("different") || pair.runtimeText == std::string_view("empty");
        out.paint(stale ? Colour::kError : Colour::kText, pair.runtimeText) << "\n";
      }
      return different ? kFindings : kFine;
    };
    result = worse(result, withSource(library, path, /*codepage=*/0, Pairs::kGenerate, use));
  }
  if (options.json) out << (*separator == '[' ? "[]\n" : "]\n");
  return out.flush() ? result : kFailed;
}

}  // namespace zeldom40::tool
