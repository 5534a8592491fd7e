// The hostile shapes of the growth table, and the pages of the micro benchmarks.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zeldom40::bench {

// A page made of one kind of trouble, as long as asked for.
struct Shape {
  const char* name;
  std::size_t full;  // the size that must go well
  std::string (*make)(std::size_t n);
  const char* documentType = "HTML";
  int levels = 0;  // how much deeper the tree is for each of n; 0: it does not get deep, or not by what it shows
};

// Each of these has a row in the growth table. What is written of pages with metadata is another text than was read,
// for new pairs get their comments.
const std::vector<Shape>& shapes();
const std::vector<Shape>& dynamicShapes();
// Of these the table has only those that grow.
const std::vector<Shape>& moreShapes();
const std::vector<Shape>& moreDynamicShapes();
const std::vector<Shape>& editShapes();

// `word` n times.
std::string repeated(const char* word, std::size_t n);

// A page as people write them, of about that many bytes: headings, paragraphs with inline markup and references, lists,
// tables, images, some comments and scripts.
std::string ordinaryPage(std::size_t bytes);

// Measures and prints what `arguments` ask for; the exit code of the program.
int runGrowth(const std::vector<std::string>& arguments, const char* program);

}  // namespace zeldom40::bench
