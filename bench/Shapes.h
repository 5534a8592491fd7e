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
};

const std::vector<Shape>& shapes();
// Pages with metadata; what is written is another text than was read, for new pairs get their comments.
const std::vector<Shape>& dynamicShapes();

// `word` n times.
std::string repeated(const char* word, std::size_t n);

// A page as people write them, of about that many bytes: headings, paragraphs with inline markup and references, lists,
// tables, images, some comments and scripts.
std::string ordinaryPage(std::size_t bytes);

// Times and prints what `arguments` ask for; the exit code of the program.
int runGrowth(const std::vector<std::string>& arguments);
int runEditGrowth(const std::vector<std::string>& arguments);

}  // namespace zeldom40::bench
