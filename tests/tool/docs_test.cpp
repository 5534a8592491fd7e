// Runs the tool on the examples of docs/repair.md and docs/errors.md: what they show is what it does.
#include <sstream>
#include <string>
#include <vector>

#include "tests/tool/ToolTest.h"

namespace {

// A headed section with its fenced blocks.
struct Section {
  std::string title;
  std::vector<std::string> blocks;
};

std::vector<Section> sectionsOf(const std::string& document) {
  std::vector<Section> sections;
  std::istringstream lines(readFile(ZELDOM40_SOURCE_DIR "/docs/" + document));
  bool inside = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("```", 0) == 0) {
      inside = !inside;
      if (inside && !sections.empty()) sections.back().blocks.emplace_back();
    } else if (inside && !sections.empty()) {
      sections.back().blocks.back() += line + "\n";
    } else if (line.rfind("## ", 0) == 0) {
      sections.push_back({line.substr(3), {}});
    }
  }
  return sections;
}

class Docs : public ToolTest {
 protected:
  // What "zeldom <arguments>" prints where `page` is page.html.
  std::string print(const std::string& arguments, const std::string& page) {
    write("page.html", page);
    const Result result = run(arguments);
    EXPECT_EQ(result.err, "") << arguments << "\n" << page;
    return result.out;
  }
  // A repair may take the last line end of a page; a fenced block always has one.
  std::string fixed(const std::string& page) {
    const std::string out = print("fix page.html", page);
    return out.empty() || out.back() != '\n' ? out + "\n" : out;
  }
};

TEST_F(Docs, RepairsAreWhatFixMakes) {
  const std::vector<Section> sections = sectionsOf("repair.md");
  EXPECT_EQ(sections.size(), 20u);
  for (const Section& section : sections) {
    ASSERT_EQ(section.blocks.size(), 2u) << section.title;
    EXPECT_EQ(fixed(section.blocks[0]), section.blocks[1]) << section.title;
    EXPECT_EQ(fixed(section.blocks[1]), section.blocks[1]) << section.title << ", twice";
    EXPECT_EQ(print("check --fail-on severe page.html | grep severe:", section.blocks[1]), "") << section.title;
  }
}

TEST_F(Docs, ErrorsAreWhatCheckSaysAndEachHasASection) {
  const std::vector<Section> sections = sectionsOf("errors.md");
  std::string titles;
  for (const Section& section : sections) {
    titles += section.title + "\n";
    if (section.blocks.empty()) continue;
    ASSERT_GE(section.blocks.size(), 2u) << section.title;
    const std::string& page = section.blocks[0];
    EXPECT_EQ(print("check page.html", page), section.blocks[1]);
    EXPECT_NE(section.blocks[1].find("[" + section.title + "]"), std::string::npos) << section.title;
    EXPECT_EQ(fixed(page), section.blocks.size() > 2 ? section.blocks[2] : page) << section.title;
  }
  std::istringstream ids(print("check --format sarif page.html | sed -n 's/.*\"id\": \"\\(ERR_.*\\)\".*/\\1/p'", ""));
  int count = 0;
  for (std::string id; std::getline(ids, id); ++count) {
    EXPECT_NE(titles.find(id + "\n"), std::string::npos) << id << " has no section";
  }
  EXPECT_EQ(count, static_cast<int>(sections.size()));
}

}  // namespace
