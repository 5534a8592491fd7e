// Writes SARIF 2.1.0.
#include "tools/zeldom/check_sarif.h"

#include <cstdint>
#include <cstdio>
#include <map>

#include <nlohmann/json.hpp>

#include "tools/zeldom/output.h"

namespace zeldom40::tool {

namespace {

using Json = nlohmann::ordered_json;

// A path as a URI reference: every byte that is not safe in one as %XX.
std::string uri(std::string_view path) {
  std::string out;
  for (const char c : path) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    if (letter || (c >= '0' && c <= '9') || std::string_view("-._~/").find(c) != std::string_view::npos) {
      out += c;
    } else {
      char hex[4];
      std::snprintf(hex, sizeof hex, "%%%02X", static_cast<unsigned char>(c));
      out += hex;
    }
  }
  return out;
}

// What a finding is recognised by in another version of the page: its rule and what stands there, white space aside.
// Places would change with every line that is added before it.
std::string fingerprint(const Finding& finding, std::string_view text) {
  std::uint64_t hash = 14695981039346656037u;
  const auto feed = [&hash](std::string_view bytes) {
    for (const char c : bytes) {
      if (c == ' ' || c == '\t' || c == '\r' || c == '\n') continue;
      hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
    }
    hash = (hash ^ 0x100) * 1099511628211u;
  };
  feed(finding.rule->id);
  feed(finding.message);
  feed(text.substr(finding.range.begin, finding.range.length()));
  char digits[20];
  std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
  return digits;
}

}  // namespace

struct SarifLog::Data {
  Json artifacts = Json::array();
  Json results = Json::array();
};

SarifLog::SarifLog() : data_(new Data) {}
SarifLog::~SarifLog() = default;

void SarifLog::add(const SourceFile& file, const SourceMap& map, const std::vector<Finding>& findings) {
  const std::size_t index = data_->artifacts.size();
  Json artifact{{"location", {{"uri", uri(file.path)}}}, {"length", file.bytes.size()}, {"sourceLanguage", "html"}};
  if (const char* encoding = charsetName(file)) artifact["encoding"] = encoding;
  data_->artifacts.push_back(std::move(artifact));
  // Equal findings are told apart by their number.
  std::map<std::string, std::size_t> seen;
  for (const Finding& finding : findings) {
    Json region{{"startLine", finding.from.line},
                {"startColumn", finding.from.column},
                {"endLine", finding.to.line},
                {"endColumn", finding.to.column}};
    const SourceMap::Range bytes = map.toFile(finding.range);
    if (bytes.isKnown()) {
      region["byteOffset"] = bytes.begin;
      region["byteLength"] = bytes.length();
    }
    const std::string print = fingerprint(finding, file.text);
    const Json location{
        {"physicalLocation",
         {{"artifactLocation", {{"uri", uri(file.path)}, {"index", index}}}, {"region", std::move(region)}}}};
    data_->results.push_back(
        {{"ruleId", finding.rule->id},
         {"ruleIndex", finding.rule - rules().data()},
         {"level", finding.severity == Severity::kSevere    ? "error"
                   : finding.severity == Severity::kWarning ? "warning"
                                                            : "note"},
         {"message", {{"text", jsonText(finding.message, true)}}},
         {"locations", Json::array({location})},
         {"partialFingerprints", {{"zeldomFinding/v1", print + ":" + std::to_string(++seen[print])}}}});
  }
}

std::string SarifLog::text() const {
  Json listed = Json::array();
  for (const Rule& rule : rules()) {
    listed.push_back(
        {{"id", rule.id},
         {"shortDescription", {{"text", rule.summary}}},
         {"defaultConfiguration", {{"level", (rule.bit & ERR_DOC_SEVERE_PARSE_ERROR) ? "error" : "warning"}}}});
  }
  const Json driver{{"name", "zeldom"}, {"version", ZELDOM40_VERSION}, {"rules", std::move(listed)}};
  const Json run{{"tool", {{"driver", driver}}},
                 {"columnKind", "unicodeCodePoints"},
                 {"artifacts", data_->artifacts},
                 {"results", data_->results}};
  const Json log{
      {"$schema", "https://json.schemastore.org/sarif-2.1.0.json"}, {"version", "2.1.0"}, {"runs", Json::array({run})}};
  return log.dump(2) + "\n";
}

}  // namespace zeldom40::tool
