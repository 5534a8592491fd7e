// The life of a page: read, written, copied and released; then listed, adjusted, repaired and restored.
#include "bench/Life.h"

#include <pthread.h>
#include <string_view>
#include <time.h>
#include <utility>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#endif

#include "dom/zeldom40.h"

namespace zeldom40::bench {

namespace {

struct Task {
  const char* documentType;
  const std::string& text;
  unsigned counted;
  Life life;
};

// Processor time of this thread: the machine may have other work.
double processorSeconds() {
  timespec now;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// Nothing happens outside of callgrind.
void startCounting() {
#ifdef CALLGRIND_START_INSTRUMENTATION
  CALLGRIND_START_INSTRUMENTATION;
  CALLGRIND_ZERO_STATS;
#endif
}

void dumpCount([[maybe_unused]] const char* name) {
#ifdef CALLGRIND_START_INSTRUMENTATION
  CALLGRIND_DUMP_STATS_AT(name);
  CALLGRIND_STOP_INSTRUMENTATION;
#endif
}

// Measures a phase as long as it lives. A phase that comes twice counts by its last time.
class Measured {
 public:
  Measured(Task& task, Phase phase) : task_(task), phase_(phase), counts_(task.counted >> phase & 1u) {
    if (counts_) startCounting();
    from_ = processorSeconds();
  }
  Measured(const Measured&) = delete;
  Measured& operator=(const Measured&) = delete;
  ~Measured() {
    task_.life.seconds[phase_] = processorSeconds() - from_;
    if (counts_) dumpCount(kPhaseNames[phase_]);
  }

 private:
  Task& task_;
  Phase phase_;
  bool counts_;
  double from_;
};

Node* parse(Document& document, const std::string& text) {
  return document.createNodes(text.data(), static_cast<unsigned>(text.size()), nullptr, /*adjust=*/false);
}

// Copies nothing: the bytes belong to the document until they are asked for again.
std::string_view written(const Document& document, Node* node) {
  const char* text = document.getSourceBuf(node, Document::SOURCE_ALL, /*compact=*/false);
  return {text, document.getSourceBufLen(nullptr, Document::SOURCE_ALL, /*compact=*/false)};
}

// The copy of its text that the document keeps for a host goes: it is half a gigabyte of some deep pages.
void dropWritten(const Document& document) { document.getSourceBuf(nullptr, Document::SOURCE_ALL, /*compact=*/false); }

// Whether there was any metadata.
bool makeStale(Document& document, Node* root) {
  bool found = false;
  for (Node* n = root; n; n = document.findNextNode(n, root, /*updatedOnly=*/false, /*skipChildren=*/false)) {
    if (n->getNodeType() != Node::NODE_ELEMENT) continue;
    MetaData* metaData = static_cast<Element*>(n)->getMetaData();
    if (!metaData) continue;
    metaData->setDirty(true, /*runtimeOnly=*/false);
    found = true;
  }
  return found;
}

// The run-time text is generated once more, and the page that was saved is read and saved again. Returns what the page
// is written as.
std::string generateAgain(Task& task, DOM& dom, Document& document, Node* root, std::string saved) {
  Document* again = dom.createDocument(task.documentType);
  {
    const Measured measured(task, RUNTIME);
    task.life.same = written(document, root) == saved;
    dropWritten(document);
    Node* read = parse(*again, saved);
    // What is read again once has its pairs; from there on a save changes nothing.
    if (written(*again, read) != saved) {
      saved = written(*again, read);
      read = parse(*again, saved);
      task.life.same = task.life.same && written(*again, read) == saved;
    }
  }
  dom.deleteDocument(again);
  return std::string(written(document, root));
}

// Asks for a child by its index and inserts a text before it, in turn, here and there among the children of the node
// that has most of them, until it has twice as many.
void editByIndex(Document& document, Node* root) {
  Node* widest = nullptr;
  std::size_t most = 0;
  for (Node* n = root; n; n = document.findNextNode(n, root, /*updatedOnly=*/false, /*skipChildren=*/false)) {
    std::size_t count = 0;
    for (const Node* child = n->getFirstChild(); child; child = child->getNextSibling()) ++count;
    if (count <= most) continue;
    most = count;
    widest = n;
  }
  constexpr std::size_t kStride = 7919;
  for (std::size_t i = 0; i < most; ++i) {
    Node* child = widest->getChildNode(static_cast<int>(i * kStride % (most + i)));
    widest->insertBefore(document.createTextNode("x"), child);
  }
}

void readAndWrite(Task& task) {
  // A page may add to the DTD, so each has a DOM of its own.
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  Document* document = dom->createDocument(task.documentType);
  Node* root = nullptr;
  {
    const Measured measured(task, PARSE);
    root = parse(*document, task.text);
  }
  for (Node* n = root; n; n = n->getLastChild()) ++task.life.depth;
  std::string_view text;
  {
    const Measured measured(task, WRITE);
    text = written(*document, root);
  }
  task.life.same = text == task.text;
  std::string saved(text);
  dropWritten(*document);
  if (makeStale(*document, root)) saved = generateAgain(task, *dom, *document, root, std::move(saved));
  Node* clone = nullptr;
  {
    const Measured measured(task, CLONE);
    clone = root->makeClone(/*deep=*/true);
  }
  clone->addRef(true);
  task.life.same = task.life.same && written(*document, clone) == saved;
  {
    const Measured measured(task, RELEASE);
    clone->releaseRef(true);
    dom->deleteDocument(document);
  }
  DOM::destroyDOM(dom);
}

void editAndUndo(Task& task) {
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  Document* document = dom->createDocument(task.documentType);
  parse(*document, task.text);
  document->clearUpdateFlag();
  const std::string before(written(*document, document->getDocumentElement()));
  const auto undo = [&] {
    {
      const Measured measured(task, UNDO);
      document->undo(1);
    }
    task.life.same = task.life.same && written(*document, document->getDocumentElement()) == before;
  };
  {
    const Measured measured(task, RECORD);
    document->record();
  }
  {
    const Measured measured(task, ERRORS);
    document->getErrorList();
    document->clearErrors();
  }
  {
    const Measured measured(task, ADJUST);
    document->adjustNodes(nullptr, /*full=*/true);
  }
  undo();
  document->record();
  {
    const Measured measured(task, CORRECT);
    document->correctError(nullptr);
  }
  {
    const Measured measured(task, ADJUST_REPAIRED);
    document->adjustNodes(nullptr, /*full=*/true);
  }
  undo();
  {
    const Measured measured(task, INDICES);
    editByIndex(*document, document->getDocumentElement());
  }
  dom->deleteDocument(document);
  DOM::destroyDOM(dom);
}

void* liveIn(void* argument) {
  Task& task = *static_cast<Task*>(argument);
  readAndWrite(task);
  editAndUndo(task);
  return nullptr;
}

}  // namespace

Life live(const char* documentType, const std::string& text, unsigned counted) {
  Task task{documentType, text, counted, {}};
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kSmallStack);
  pthread_t thread;
  task.life.started = pthread_create(&thread, &attributes, liveIn, &task) == 0;
  if (task.life.started) pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  return task.life;
}

}  // namespace zeldom40::bench
