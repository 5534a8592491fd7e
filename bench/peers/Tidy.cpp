// HTML Tidy's library: parse, repair, diagnostics.
#include <tidy/tidy.h>
#include <tidy/tidybuffio.h>

#include "bench/peers/Peer.h"

namespace zeldom40::bench::tidy {

namespace {

enum class Job { PARSE, REPAIR, DIAGNOSE };

// One document serves all runs of a task, as Tidy frees the tree before when it parses again. Bytes are not converted,
// and messages are made only where they are asked for.
template <Job job>
class Work : public Task {
 public:
  Work() : document_(tidyCreate()) {
    tidyBufInit(&messages_);
    tidySetErrorBuffer(document_, &messages_);
    tidySetCharEncoding(document_, "raw");
    tidyOptSetBool(document_, TidyForceOutput, yes);
    tidyOptSetBool(document_, TidyQuiet, yes);
    tidyOptSetBool(document_, TidyShowWarnings, job == Job::DIAGNOSE ? yes : no);
    tidyOptSetInt(document_, TidyShowErrors, job == Job::DIAGNOSE ? 1000000 : 0);
  }
  ~Work() override {
    tidyRelease(document_);
    tidyBufFree(&messages_);
  }
  bool open(const Page& page) override {
    page_ = &page;
    return true;
  }
  double run(int times) override {
    return timed(times, [this] { once(); });
  }

  void once() {
    TidyBuffer text;
    tidyBufInit(&text);
    // Only read.
    tidyBufAttach(&text, reinterpret_cast<byte*>(const_cast<char*>(page_->text.data())),
                  static_cast<uint>(page_->text.size()));
    tidyBufClear(&messages_);
    tidyParseBuffer(document_, &text);
    tidyBufDetach(&text);
    if (job == Job::REPAIR) tidyCleanAndRepair(document_);
    if (job == Job::DIAGNOSE) tidyRunDiagnostics(document_);
  }

 private:
  TidyDoc document_;
  TidyBuffer messages_;
  const Page* page_ = nullptr;
};

}  // namespace

std::unique_ptr<Task> parse() { return make<Work<Job::PARSE>>(); }
std::unique_ptr<Task> parseAndRepair() { return make<Work<Job::REPAIR>>(); }
std::unique_ptr<Task> parseAndDiagnose() { return make<Work<Job::DIAGNOSE>>(); }
void hold(const Page& page) {
  auto* work = new Work<Job::PARSE>;
  work->open(page);
  work->once();
}

}  // namespace zeldom40::bench::tidy
