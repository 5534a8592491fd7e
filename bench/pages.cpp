// Micro benchmarks: reading, writing, copying, freeing and walking pages of three sizes.
#include <malloc.h>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/Shapes.h"
#include "dom/tree/NodePool.h"
#include "dom/zeldom40.h"

namespace zeldom40::bench {

namespace {

// A page in its own document and DOM.
class OpenPage {
 public:
  explicit OpenPage(std::size_t bytes) : text_(ordinaryPage(bytes)) {
    dom_ = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
    document_ = dom_->createDocument("HTML");
  }
  ~OpenPage() {
    dom_->deleteDocument(document_);
    DOM::destroyDOM(dom_);
  }
  OpenPage(const OpenPage&) = delete;
  OpenPage& operator=(const OpenPage&) = delete;

  Node* parse() {
    return document_->createNodes(text_.data(), static_cast<unsigned>(text_.size()), nullptr, /*adjust=*/false);
  }
  Document& document() { return *document_; }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
  DOM* dom_;
  Document* document_;
};

void report(benchmark::State& state, const OpenPage& page, long nodes) {
  const auto pages = static_cast<double>(state.iterations());
  state.SetBytesProcessed(static_cast<std::int64_t>(pages) * static_cast<std::int64_t>(page.text().size()));
  state.counters["nodes"] = static_cast<double>(nodes);
  state.counters["s/node"] =
      benchmark::Counter(pages * static_cast<double>(nodes), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

double heapBytes() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

// Each reading frees the page before, as a host does that reloads.
void parseAndRelease(benchmark::State& state) {
  OpenPage page(static_cast<std::size_t>(state.range(0)));
  // The first page makes tables that stay with the DTD.
  page.parse();
  page.document().deleteNodes(nullptr);
  const double heap = heapBytes();
  const long before = liveNodes::count;
  page.parse();
  const long nodes = liveNodes::count - before;
  state.counters["heap/byte"] = (heapBytes() - heap) / static_cast<double>(page.text().size());
  for (auto _ : state) benchmark::DoNotOptimize(page.parse());
  report(state, page, nodes);
}

void release(benchmark::State& state) {
  OpenPage page(static_cast<std::size_t>(state.range(0)));
  const long before = liveNodes::count;
  long nodes = 0;
  for (auto _ : state) {
    state.PauseTiming();
    page.parse();
    nodes = liveNodes::count - before;
    state.ResumeTiming();
    page.document().deleteNodes(nullptr);
  }
  report(state, page, nodes);
}

void write(benchmark::State& state) {
  OpenPage page(static_cast<std::size_t>(state.range(0)));
  const long before = liveNodes::count;
  Node* root = page.parse();
  for (auto _ : state) benchmark::DoNotOptimize(page.document().getSourceBuf(root, Document::SOURCE_ALL, false));
  report(state, page, liveNodes::count - before);
}

void cloneAndRelease(benchmark::State& state) {
  OpenPage page(static_cast<std::size_t>(state.range(0)));
  const long before = liveNodes::count;
  Node* root = page.parse();
  const long nodes = liveNodes::count - before;
  for (auto _ : state) {
    Node* clone = root->makeClone(/*deep=*/true);
    clone->addRef(true);
    clone->releaseRef(true);
  }
  report(state, page, nodes);
}

void walk(benchmark::State& state) {
  OpenPage page(static_cast<std::size_t>(state.range(0)));
  const long before = liveNodes::count;
  Node* root = page.parse();
  const long nodes = liveNodes::count - before;
  for (auto _ : state) {
    int elements = 0;
    for (Node* n = root; n;
         n = page.document().findNextNode(n, nullptr, /*updatedOnly=*/false, /*skipChildren=*/false)) {
      elements += n->getNodeType() == Node::NODE_ELEMENT;
    }
    benchmark::DoNotOptimize(elements);
  }
  report(state, page, nodes);
}

void createDOM(benchmark::State& state) {
  for (auto _ : state) DOM::destroyDOM(DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr));
}

constexpr std::int64_t kSmall = 10 << 10;
constexpr std::int64_t kMiddle = 100 << 10;
constexpr std::int64_t kLarge = 1 << 20;

BENCHMARK(parseAndRelease)->Arg(kSmall)->Arg(kMiddle)->Arg(kLarge);
BENCHMARK(write)->Arg(kSmall)->Arg(kMiddle)->Arg(kLarge);
BENCHMARK(cloneAndRelease)->Arg(kSmall)->Arg(kMiddle)->Arg(kLarge);
BENCHMARK(release)->Arg(kSmall)->Arg(kMiddle)->Arg(kLarge);
BENCHMARK(walk)->Arg(kSmall)->Arg(kMiddle)->Arg(kLarge);
BENCHMARK(createDOM);

}  // namespace

}  // namespace zeldom40::bench
