// The findings of a run as SARIF 2.1.0, the form that code review tools read.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tools/zeldom/check_findings.h"
#include "tools/zeldom/source_file.h"

namespace zeldom40::tool {

// Collects the pages of one run.
class SarifLog {
 public:
  SarifLog();
  ~SarifLog();

  void add(const SourceFile& file, const SourceMap& map, const std::vector<Finding>& findings);
  // The whole log, closed by a line end.
  std::string text() const;

 private:
  struct Data;

  std::unique_ptr<Data> data_;
};

}  // namespace zeldom40::tool
