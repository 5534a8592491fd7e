// The library's own side of each comparison.
#include <algorithm>
#include <malloc.h>
#include <time.h>

#include "bench/peers/Peer.h"
#include "dom/dtd/DTDFrame.h"
#include "dom/tree/NodePool.h"
#include "dom/zeldom40.h"

namespace zeldom40::bench {

double processorSeconds() {
  timespec now;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double heapBytes() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

namespace own {

namespace {

DOM* anyDOM() {
  if (!DOM::getDOM()) {
    // What a page asks of the DTD for the first time is no part of the page.
    DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
    dom->getDocumentType()->getDTDFrame()->readDeferred();
  }
  return DOM::getDOM();
}

// A page in a document of its own.
class OpenPage {
 public:
  explicit OpenPage(const Page& page) : text_(page.text), document_(anyDOM()->createDocument("HTML")) {}
  ~OpenPage() { anyDOM()->deleteDocument(document_); }
  OpenPage(const OpenPage&) = delete;
  OpenPage& operator=(const OpenPage&) = delete;

  Node* parse(bool adjust = false) {
    return document_->createNodes(text_.data(), static_cast<unsigned>(text_.size()), nullptr, adjust);
  }
  Document& document() { return *document_; }

 private:
  const std::string& text_;
  Document* document_;
};

// Undo steps: any number of edits, each of one text, round the page.
class Edits {
 public:
  explicit Edits(const Page& page) : page_(page) {
    page_.parse();
    document().clearUpdateFlag();
    for (Node* n = document().getDocumentElement(); n; n = document().findNextNode(n, nullptr, false, false)) {
      const Node* parent = n->getParentNode();
      if (n->getNodeType() != Node::NODE_TEXT || !parent) continue;
      if (parent->getName() == "P" || parent->getName() == "TD" || parent->getName() == "LI") {
        n->addRef(/*deep=*/false);
        texts_.push_back(n);
      }
    }
  }
  ~Edits() {
    for (Node* text : texts_) text->releaseRef(/*deep=*/false);
  }
  Edits(const Edits&) = delete;
  Edits& operator=(const Edits&) = delete;

  bool any() const { return !texts_.empty(); }
  void edit() {
    auto* text = static_cast<Text*>(texts_[next_++ * 7919 % texts_.size()]);
    // Closing an edit joins texts that meet, so that some leave the tree.
    for (std::size_t i = 0; i < texts_.size() && !text->getParentNode(); ++i) {
      text = static_cast<Text*>(texts_[next_++ % texts_.size()]);
    }
    text->setData(next_ % 2 ? "edited" : "edited again", /*notify=*/true);
    document().adjustNodes(nullptr, /*full=*/false);
  }
  Document& document() { return page_.document(); }

 private:
  OpenPage page_;
  std::vector<Node*> texts_;
  std::size_t next_ = 0;
};

// A task with an open page.
class PageTask : public Task {
 public:
  bool open(const Page& page) override {
    page_ = std::make_unique<OpenPage>(page);
    return page_->parse() != nullptr;
  }

 protected:
  std::unique_ptr<OpenPage> page_;
};

class Parse : public PageTask {
 public:
  double run(int times) override {
    return timed(times, [this] { page_->parse(); });
  }
};

class ParseAdjusted : public PageTask {
 public:
  double run(int times) override {
    return timed(times, [this] { page_->parse(/*adjust=*/true); });
  }
};

class ParseAndList : public PageTask {
 public:
  double run(int times) override {
    return timed(times, [this] {
      page_->parse();
      page_->document().getErrorList();
    });
  }
};

class ParseAndCorrect : public PageTask {
 public:
  double run(int times) override {
    return timed(times, [this] {
      page_->parse();
      page_->document().correctError(nullptr);
    });
  }
};

class Write : public PageTask {
 public:
  bool open(const Page& page) override {
    if (!PageTask::open(page)) return false;
    const char* source = write();
    return std::string(source, page_->document().getSourceBufLen(nullptr, Document::SOURCE_ALL, false)) == page.text;
  }
  double run(int times) override {
    return timed(times, [this] { write(); });
  }

 private:
  const char* write() {
    Document& document = page_->document();
    return document.getSourceBuf(document.getDocumentElement(), Document::SOURCE_ALL, /*compact=*/false);
  }
};

class Release : public PageTask {
 public:
  double run(int times) override {
    double seconds = 0;
    for (int i = 0; i < times; ++i) {
      page_->parse();
      seconds += timed(1, [this] { page_->document().deleteNodes(nullptr); });
    }
    return seconds;
  }
  // Two looks at the clock for each tree, a tenth of what a page of 10 KB takes.
  double overhead() const override {
    double least = timed(1, [] {});
    for (int i = 0; i < 1000; ++i) least = std::min(least, timed(1, [] {}));
    return least;
  }
};

class Walk : public PageTask {
 public:
  double run(int times) override {
    Document& document = page_->document();
    volatile int elements = 0;
    return timed(times, [&] {
      int count = 0;
      for (Node* n = document.getDocumentElement(); n; n = document.findNextNode(n, nullptr, false, false)) {
        count += n->getNodeType() == Node::NODE_ELEMENT;
      }
      elements = count;
    });
  }
};

// Ten records are kept, so that each one beyond also frees the oldest.
class Record : public Task {
 public:
  explicit Record(bool timeEdit) : timeEdit_(timeEdit) {}
  bool open(const Page& page) override {
    edits_ = std::make_unique<Edits>(page);
    return edits_->any();
  }
  double run(int times) override {
    double seconds = 0;
    for (int i = 0; i < times; ++i) {
      seconds += timed(1, [this] { edits_->document().record(); });
      const double edit = timed(1, [this] { edits_->edit(); });
      if (timeEdit_) seconds += edit;
    }
    return seconds;
  }

 private:
  std::unique_ptr<Edits> edits_;
  bool timeEdit_;
};

class CreateDOM : public Task {
 public:
  bool open(const Page&) override { return true; }
  double run(int times) override {
    double seconds = 0;
    for (int i = 0; i < times; ++i) {
      DOM* dom = nullptr;
      seconds += timed(1, [&] { dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr); });
      DOM::destroyDOM(dom);
    }
    return seconds;
  }
};

}  // namespace

std::unique_ptr<Task> parse() { return make<Parse>(); }
std::unique_ptr<Task> parseAdjusted() { return make<ParseAdjusted>(); }
std::unique_ptr<Task> parseAndList() { return make<ParseAndList>(); }
std::unique_ptr<Task> parseAndCorrect() { return make<ParseAndCorrect>(); }
std::unique_ptr<Task> write() { return make<Write>(); }
std::unique_ptr<Task> record() { return std::make_unique<Record>(/*timeEdit=*/false); }
std::unique_ptr<Task> recordAndEdit() { return std::make_unique<Record>(/*timeEdit=*/true); }
std::unique_ptr<Task> release() { return make<Release>(); }
std::unique_ptr<Task> walk() { return make<Walk>(); }
std::unique_ptr<Task> createDOM() { return make<CreateDOM>(); }

void prepareHold() { anyDOM(); }
void hold(const Page& page) { (new OpenPage(page))->parse(); }

long nodesOf(const Page& page) {
  OpenPage open(page);
  const long before = liveNodes::count;
  open.parse();
  return liveNodes::count - before;
}

bool hasErrors(const Page& page) {
  OpenPage open(page);
  open.parse();
  return !open.document().getErrorList().empty();
}

double recordBytes(const Page& page, int count) {
  Edits edits(page);
  if (!edits.any()) return 0;
  for (int i = 0; i < count; ++i) {
    edits.document().record();
    edits.edit();
  }
  const double with = heapBytes();
  edits.document().clearRecord();
  return with - heapBytes();
}

}  // namespace own

}  // namespace zeldom40::bench
