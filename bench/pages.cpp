// Micro benchmarks: reading, writing, copying, freeing and walking pages of three sizes.
#include <malloc.h>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/Shapes.h"
#include "dom/dtd/DTDFrame.h"
#include "dom/tree/NodePool.h"
#include "dom/zeldom40.h"

namespace zeldom40::bench {

namespace {

// A page in its own document and DOM.
class OpenPage {
 public:
  explicit OpenPage(std::size_t bytes) : text_(ordinaryPage(bytes)) {
    dom_ = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
    dom_->getDocumentType()->getDTDFrame()->readDeferred();
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

// One undo record after another, each with the edit of one paragraph and the closing of that edit.
class UndoSteps {
 public:
  explicit UndoSteps(OpenPage& page) : document_(page.document()) {
    page.parse();
    document_.clearUpdateFlag();
    for (Node* n = document_.getDocumentElement(); n; n = document_.findNextNode(n, nullptr, false, false)) {
      if (n->getNodeType() == Node::NODE_TEXT && n->getParentNode()->getName() == "P") texts_.push_back(n);
    }
  }
  // Any number of times: the records go round the page.
  void edit() {
    auto* text = static_cast<Text*>(texts_[next_++ * 7919 % texts_.size()]);
    text->setData(next_ % 2 ? "edited" : "edited again", /*notify=*/true);
    document_.adjustNodes(nullptr, /*full=*/false);
  }
  Document& document() { return document_; }

 private:
  Document& document_;
  std::vector<Node*> texts_;
  std::size_t next_ = 0;
};

void record(benchmark::State& state) {
  OpenPage page(static_cast<std::size_t>(state.range(0)));
  const long before = liveNodes::count;
  UndoSteps steps(page);
  const long nodes = liveNodes::count - before;
  for (auto _ : state) {
    steps.document().record();
    state.PauseTiming();
    steps.edit();
    state.ResumeTiming();
  }
  report(state, page, nodes);
}

// How much memory ten records take, measured by the page and the tree that they belong to.
void tenRecords(benchmark::State& state) {
  double tree = 0;
  double all = 0;
  for (auto _ : state) {
    OpenPage page(static_cast<std::size_t>(state.range(0)));
    page.parse();
    page.document().deleteNodes(nullptr);
    const double empty = heapBytes();
    UndoSteps steps(page);
    tree = heapBytes() - empty;
    for (int i = 0; i < 10; ++i) {
      steps.document().record();
      steps.edit();
    }
    all = heapBytes() - empty;
    if (steps.document().getRecordCount() != 10) state.SkipWithError("not every edit has its record");
  }
  state.counters["tree"] = tree;
  state.counters["with records"] = all;
  state.counters["ratio"] = all / tree;
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
BENCHMARK(record)->Arg(kSmall)->Arg(kMiddle)->Arg(kLarge);
BENCHMARK(tenRecords)->Arg(kLarge)->Iterations(1);
BENCHMARK(createDOM);

}  // namespace

}  // namespace zeldom40::bench
