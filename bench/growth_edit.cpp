// The growth table of editing: how listing errors, repair, normal form and undo grow when a hostile page doubles.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <pthread.h>
#include <string>
#include <time.h>
#include <vector>

#include "bench/Shapes.h"
#include "dom/zeldom40.h"

namespace zeldom40::bench {

namespace {

enum Phase { RECORD, ERRORS, CORRECT, ADJUST, UNDO, PHASES };
constexpr const char* kPhaseNames[PHASES] = {"record", "errors", "correct", "adjust", "undo"};
constexpr std::size_t kSmallStack = 256 * 1024;
constexpr double kSteepest = 1.15;
constexpr double kTooShort = 0.006;
constexpr double kTooLong = 20;

struct Run {
  const char* documentType;
  const std::string* text;
  double seconds[PHASES] = {};
  int repairs = 0;
  std::size_t left = 0;
  bool restored = false;
};

// Time that this thread had a processor: others use the machine too.
double threadSeconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

std::string source(const Document& document, Node* node) {
  const char* text = document.getSourceBuf(node, Document::SOURCE_ALL, /*compact=*/false);
  return std::string(text, document.getSourceBufLen(nullptr, Document::SOURCE_ALL, /*compact=*/false));
}

void* live(void* argument) {
  Run& run = *static_cast<Run*>(argument);
  DOM* dom = DOM::createDOM(nullptr, DOM::JSP_VERSION_0, nullptr, nullptr);
  Document* document = dom->createDocument(run.documentType);
  document->createNodes(run.text->data(), static_cast<unsigned>(run.text->size()), nullptr, /*adjust=*/false);
  document->clearUpdateFlag();
  double last = threadSeconds();
  const auto lap = [&last](double& seconds) {
    const double now = threadSeconds();
    seconds = now - last;
    last = now;
  };
  document->record();
  lap(run.seconds[RECORD]);
  document->getErrorList();
  document->clearErrors();
  lap(run.seconds[ERRORS]);
  run.repairs = document->correctError(nullptr);
  lap(run.seconds[CORRECT]);
  document->adjustNodes(nullptr, /*full=*/true);
  lap(run.seconds[ADJUST]);
  run.left = 0;
  for (const _dom_error_packet* packet : document->getErrorList()) {
    if (packet->error & ERR_DOC_SEVERE_PARSE_ERROR) ++run.left;
  }
  document->clearErrors();
  last = threadSeconds();
  document->undo(1);
  lap(run.seconds[UNDO]);
  run.restored = source(*document, document->getDocumentElement()) == *run.text;
  dom->deleteDocument(document);
  DOM::destroyDOM(dom);
  return nullptr;
}

Run best(const char* documentType, const std::string& text) {
  Run result{documentType, &text};
  double spent = 0;
  for (int i = 0; i < 3 && (i == 0 || spent < 1); ++i) {
    Run run{documentType, &text};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kSmallStack);
    pthread_t thread;
    if (pthread_create(&thread, &attributes, live, &run) == 0) pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    for (int p = 0; p < PHASES; ++p) {
      if (i) run.seconds[p] = std::min(result.seconds[p], run.seconds[p]);
      spent += run.seconds[p];
    }
    result = run;
  }
  return result;
}

// `first` n/10 times, then `unit` n times.
struct EditShape {
  const char* name;
  std::size_t n;
  const char* before;
  const char* first;
  const char* unit;
  const char* behind;
};

// Beside the shapes that are hard to read, some that are hard to repair.
constexpr std::size_t k = 1000;
constexpr EditShape kShapes[] = {
    {"LI without a list", 1000 * k, "", "", "<LI>", ""},
    {"nested B", 1000 * k, "", "", "<B>", ""},
    {"DIVs in one B", 100 * k, "<B>", "", "<DIV>x</DIV>", ""},
    {"FORMs in one B", 100 * k, "<B>", "", "<FORM>x</FORM>", ""},
    {"DIVs in one B, text between", 100 * k, "<B>", "", "t<DIV>x</DIV>", ""},
    {"DIV below deep B", 100 * k, "", "", "<B>", "x<DIV>y</DIV>z"},
    {"DIVs below deep B", 100 * k, "", "<B>", "x<DIV>y</DIV>z", ""},
    {"DIVs below deep B, marked", 100 * k, "", "<B ID=b>", "x<DIV>y</DIV>z", ""},
    {"B and DIV in turn, nested", 100 * k, "", "", "<B><DIV>", ""},
    {"TABLE, loose text in rows", 100 * k, "<TABLE>", "", "<TR><TD>x</TD></TR>loose", "</TABLE>"},
    {"TABLE, loose B in rows", 100 * k, "<TABLE>", "", "<TR><TD>x</TD></TR><B>b</B>", "</TABLE>"},
    {"TABLEs with loose B, nested", 100 * k, "", "", "<TABLE><B>", ""},
    {"TABLEs in loose B, nested", 100 * k, "", "", "<TABLE><TR><B><TABLE><TR><TD>", ""},
    {"cells without a row", 100 * k, "<TABLE>", "", "<TD>x</TD>", ""},
    {"cells without a table", 100 * k, "", "", "<TD>x</TD>", ""},
    {"stray ends of rows", 100 * k, "<TABLE>", "", "<TD>x</TD></TR>", ""},
    {"comments, then ends of rows", 100 * k, "<TABLE><TR><TD>x</TD></TR>", "<!-- c -->", "</TR>", ""},
    {"FRAMEs in BODY below deep B", 100 * k, "<BODY>", "<B>", "<FRAME>", ""},
    {"FRAMEs, comments between", 100 * k, "<BODY>", "", "<!-- c --><FRAME>", ""},
    {"misnested B and I", 100 * k, "", "", "<B>b<I>i</B>j</I>", ""},
    {"FONTs without attributes", 100 * k, "", "", "<FONT>x</FONT> ", ""},
    {"FONTs without attributes, nested", 100 * k, "", "", "<FONT>x", ""},
    {"FONTs around nothing, nested", 100 * k, "", "", "<FONT><B></B>", ""},
    {"SPANs and B in turn, nested", 100 * k, "", "", "<SPAN><B>", "x"},
    {"empty Bs in one P", 100 * k, "<P>", "", "<B></B>", ""},
    {"TBODYs", 100 * k, "<TABLE>", "", "<TBODY><TR><TD>x</TBODY>", ""},
    {"TBODYs, comments between", 100 * k, "<TABLE>", "", "<TBODY><TR><TD>x</TBODY><!-- c -->", ""},
    {"inline between items", 100 * k, "<UL>", "", "<LI>x</LI><I>i</I>", "</UL>"},
    {"one inline before items", 100 * k, "<UL><I>i</I>", "", "<LI>x</LI>", "</UL>"},
    {"A around blocks", 100 * k, "", "", "<A HREF=x>a<DIV>y</DIV>", ""},
    {"OPTIONs without SELECT", 100 * k, "", "", "<OPTION>x", ""},
    {"DD and LI in turn", 100 * k, "", "", "<DD>x<LI>y", ""},
    {"PREs with tabs", 100 * k, "", "", "<PRE>\r\na\tb\r\n</PRE>", ""},
    {"texts in a PRE", 100 * k, "<PRE>", "", "a\t<B>b</B>", ""},
    {"lists in lists, text", 100 * k, "", "", "<UL><LI>some text of an item ", ""},
    {"stray ends of P", 100 * k, "", "<B>", "</P>", ""},
};

std::string makeText(const EditShape& shape, std::size_t n) {
  return shape.before + repeated(shape.first, n / 10) + repeated(shape.unit, n) + shape.behind;
}

// At an eighth, a quarter, a half and the whole of the size; false if a phase grows too fast or undo lost something.
template <class Make>
bool measure(const char* name, const char* documentType, std::size_t n, Make make) {
  std::vector<Run> runs;
  std::size_t bytes = 0;
  bool cut = false;
  for (std::size_t part = 8; part >= 1 && !cut; part /= 2) {
    const std::string text = make(std::max<std::size_t>(1, n / part));
    bytes = text.size();
    runs.push_back(best(documentType, text));
    const double* now = runs.back().seconds;
    cut = part > 1 && *std::max_element(now, now + PHASES) * 4 > kTooLong;
  }
  const Run& last = runs.back();
  std::printf("%-34s %9zu B %8d %8zu ", name, bytes, last.repairs, last.left);
  bool steep = cut;
  for (int p = 0; p < PHASES; ++p) {
    std::printf(" %7.3f", last.seconds[p]);
    if (last.seconds[p] < kTooShort || runs.size() < 2) {
      std::printf("   - ");
      continue;
    }
    const double slope =
        std::log2(last.seconds[p] / std::max(runs.front().seconds[p], 1e-9)) / static_cast<double>(runs.size() - 1);
    std::printf(" %4.2f%c", slope, slope > kSteepest ? '!' : ' ');
    steep = steep || slope > kSteepest;
  }
  bool restored = true;
  for (const Run& run : runs) restored = restored && run.restored;
  std::printf("%s%s%s\n", restored ? "" : "  DIFFERS", steep ? "  STEEP" : "", cut ? "  (larger ones not tried)" : "");
  std::fflush(stdout);
  return restored && !steep;
}

}  // namespace

int runEditGrowth(const std::vector<std::string>& arguments) {
  std::size_t divideBy = 1;
  bool all = false;
  std::vector<std::string> wanted;
  for (const std::string& argument : arguments) {
    if (argument.rfind("--divide=", 0) == 0) {
      divideBy = std::max<std::size_t>(1, std::strtoul(argument.c_str() + 9, nullptr, 10));
    } else if (argument == "--all") {
      all = true;
    } else {
      wanted.push_back(argument);
    }
  }
  std::printf("Seconds at the full size and the exponent over the last three doublings; a stack of %zu KB\n",
              kSmallStack / 1024);
  std::printf("%-34s %11s %8s %8s ", "shape", "", "repairs", "left");
  for (const char* phase : kPhaseNames) std::printf(" %7s exp.", phase);
  std::printf("\n");
  const auto asked = [&wanted](const char* name) {
    return wanted.empty() || std::any_of(wanted.begin(), wanted.end(), [name](const std::string& word) {
             return std::string(name).find(word) != std::string::npos;
           });
  };
  int bad = 0;
  for (const EditShape& shape : kShapes) {
    if (!asked(shape.name)) continue;
    const auto make = [&shape](std::size_t n) { return makeText(shape, n); };
    if (!measure(shape.name, "HTML", shape.n / divideBy, make)) ++bad;
  }
  if (all) {
    for (const Shape& shape : shapes()) {
      if (!asked(shape.name)) continue;
      if (!measure(shape.name, shape.documentType, shape.full / divideBy, shape.make)) ++bad;
    }
  }
  std::printf("%d of the shapes grow too fast or are not restored\n", bad);
  return bad ? 1 : 0;
}

}  // namespace zeldom40::bench
