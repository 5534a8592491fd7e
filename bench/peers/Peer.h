// What every library that is measured offers: tasks on one page, and trees to weigh.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace zeldom40::bench {

struct Page {
  std::string name;
  std::string group;  // the column of the table
  std::string text;
};

// One thing that a library does with a page, again and again.
class Task {
 public:
  virtual ~Task() = default;
  // Prepares for `page`, which outlives the task. False if the page is none for this task: an XML parser takes only
  // well-formed ones.
  virtual bool open(const Page& page) = 0;
  // Processor seconds that `times` runs take.
  virtual double run(int times) = 0;
  // Seconds in each run that are not spent on the page.
  virtual double overhead() const { return 0; }
};

using MakeTask = std::unique_ptr<Task> (*)();
// Builds the tree of `page` and never frees it: called in a process of its own that ends when the heap is weighed.
using HoldTree = void (*)(const Page& page);

template <typename T>
std::unique_ptr<Task> make() {
  return std::make_unique<T>();
}

// Processor time of this thread: the machine may have other work.
double processorSeconds();
// What is allocated now, with what the allocator adds to it.
double heapBytes();

template <typename Work>
double timed(int times, const Work& work) {
  const double start = processorSeconds();
  for (int i = 0; i < times; ++i) work();
  return processorSeconds() - start;
}

// The library itself. Parsing is createNodes in one document, so each run also frees the tree of the run before.
namespace own {
std::unique_ptr<Task> parse();
std::unique_ptr<Task> parseAdjusted();
std::unique_ptr<Task> parseAndList();
std::unique_ptr<Task> parseAndCorrect();
std::unique_ptr<Task> write();
std::unique_ptr<Task> record();
std::unique_ptr<Task> recordAndEdit();
std::unique_ptr<Task> release();
std::unique_ptr<Task> walk();
std::unique_ptr<Task> createDOM();
void hold(const Page& page);
// What must be there before trees are weighed.
void prepareHold();
long nodesOf(const Page& page);
// Whether the error list of the page has an entry.
bool hasErrors(const Page& page);
// Heap bytes that `count` records take, an edit of one text after each.
double recordBytes(const Page& page, int count);
}  // namespace own

namespace libxml {
std::unique_ptr<Task> parseHtml();
std::unique_ptr<Task> parseXmlAndValidate();
std::unique_ptr<Task> copy();
void hold(const Page& page);
}  // namespace libxml

namespace tidy {
std::unique_ptr<Task> parse();
std::unique_ptr<Task> parseAndRepair();
std::unique_ptr<Task> parseAndDiagnose();
void hold(const Page& page);
}  // namespace tidy

namespace gumbo {
std::unique_ptr<Task> parse();
void hold(const Page& page);
}  // namespace gumbo

namespace htmlcxx {
std::unique_ptr<Task> parse();
std::unique_ptr<Task> write();
void hold(const Page& page);
}  // namespace htmlcxx

namespace pugixml {
std::unique_ptr<Task> parse();
void hold(const Page& page);
}  // namespace pugixml

namespace onsgmls {
std::unique_ptr<Task> validate();
}  // namespace onsgmls

}  // namespace zeldom40::bench
