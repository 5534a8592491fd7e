// Runs the tool on the examples of docs/repair.md and docs/errors.md: what they show is what it does.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdlib.h>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::string readFile(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

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

class Docs : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = testing::TempDir() + "zeldomXXXXXX";
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
  }
  void TearDown() override { EXPECT_EQ(std::system(("rm -rf " + folder_).c_str()), 0); }

  // What "zeldom <arguments>" prints in a folder where `page` is page.html.
  std::string run(const std::string& arguments, const std::string& page) {
    std::ofstream(folder_ + "/page.html", std::ios::binary) << page;
    const std::string command = "cd " + folder_ + " && " ZELDOM40_TOOL " " + arguments + " >out 2>err";
    EXPECT_NE(std::system(command.c_str()), -1);
    EXPECT_EQ(readFile(folder_ + "/err"), "") << arguments << "\n" << page;
    return readFile(folder_ + "/out");
  }
  // A repair may take the last line end of a page; a fenced block always has one.
  std::string fixed(const std::string& page) {
    const std::string out = run("fix page.html", page);
    return out.empty() || out.back() != '\n' ? out + "\n" : out;
  }

  std::string folder_;
};

TEST_F(Docs, RepairsAreWhatFixMakes) {
  const std::vector<Section> sections = sectionsOf("repair.md");
  EXPECT_EQ(sections.size(), 20u);
  for (const Section& section : sections) {
    ASSERT_EQ(section.blocks.size(), 2u) << section.title;
    EXPECT_EQ(fixed(section.blocks[0]), section.blocks[1]) << section.title;
    EXPECT_EQ(fixed(section.blocks[1]), section.blocks[1]) << section.title << ", twice";
    EXPECT_EQ(run("check --fail-on severe page.html | grep severe:", section.blocks[1]), "") << section.title;
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
    EXPECT_EQ(run("check page.html", page), section.blocks[1]);
    EXPECT_NE(section.blocks[1].find("[" + section.title + "]"), std::string::npos) << section.title;
    EXPECT_EQ(fixed(page), section.blocks.size() > 2 ? section.blocks[2] : page) << section.title;
  }
  std::istringstream ids(run("check --format sarif page.html | sed -n 's/.*\"id\": \"\\(ERR_.*\\)\".*/\\1/p'", ""));
  int count = 0;
  for (std::string id; std::getline(ids, id); ++count) {
    EXPECT_NE(titles.find(id + "\n"), std::string::npos) << id << " has no section";
  }
  EXPECT_EQ(count, static_cast<int>(sections.size()));
}

}  // namespace
