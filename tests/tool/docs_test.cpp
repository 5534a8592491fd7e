// Runs the tool on the examples of the documentation: what they show is what it does. Quoted code is in its file.
#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "tests/tool/ToolTest.h"

namespace {

// A fenced block; under "<!-- in: FOLDER -->" commands and their output, under "<!-- code: FILE -->" a part of the
// file.
struct Block {
  std::string mark;
  std::string place;
  std::string text;
};

// A headed section with its blocks.
struct Section {
  std::string title;
  std::vector<Block> blocks;
};

std::vector<Section> sectionsOf(const std::string& page) {
  std::vector<Section> sections;
  std::istringstream lines(readFile(ZELDOM40_SOURCE_DIR "/" + page));
  Block next;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t colon = line.find(": ");
    if (line.rfind("## ", 0) == 0) {
      sections.push_back({line.substr(3), {}});
    } else if (line.rfind("<!-- ", 0) == 0 && colon < line.size()) {
      next = {line.substr(5, colon - 5), line.substr(colon + 2, line.rfind(" -->") - colon - 2), {}};
    } else if (line.rfind("```", 0) == 0) {
      while (std::getline(lines, line) && line != "```") next.text += line + "\n";
      if (!sections.empty()) sections.back().blocks.push_back(next);
      next = {};
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
  // A repair says on standard error what is left.
  std::string fixed(const std::string& page, const std::string& option = {}) {
    write("page.html", page);
    return run("fix page.html " + option).out;
  }
};

// The table at the top says of each page which kind of repair it has.
TEST_F(Docs, RepairsAreWhatFixMakes) {
  const std::vector<Section> sections = sectionsOf("docs/repair.md");
  const std::string text = readFile(ZELDOM40_SOURCE_DIR "/docs/repair.md");
  EXPECT_EQ(sections.size(), 20u);
  for (const Section& section : sections) {
    const std::string row = "| " + section.title.substr(0, section.title.find(". ")) + " | " +
                            section.title.substr(section.title.find(". ") + 2) + " | ";
    ASSERT_NE(text.find(row), std::string::npos) << row;
    const std::string kind = text.substr(text.find(row) + row.size(), 6);
    const bool isSafe = kind.substr(0, 4) == "safe";
    const bool isUnsafe = kind == "unsafe";
    ASSERT_EQ(section.blocks.size(), isSafe || isUnsafe ? 2u : 1u) << section.title;
    const std::string& page = section.blocks[0].text;
    EXPECT_EQ(fixed(page), isSafe ? section.blocks[1].text : page) << section.title;
    EXPECT_EQ(fixed(page, "--unsafe"), section.blocks.back().text) << section.title;
    EXPECT_EQ(fixed(section.blocks.back().text, "--unsafe"), section.blocks.back().text) << section.title << ", twice";
  }
}

TEST_F(Docs, ErrorsAreWhatCheckSaysAndEachHasASection) {
  const std::vector<Section> sections = sectionsOf("docs/errors.md");
  std::string titles;
  for (const Section& section : sections) {
    titles += section.title + "\n";
    if (section.blocks.empty()) continue;
    ASSERT_GE(section.blocks.size(), 2u) << section.title;
    const std::string& page = section.blocks[0].text;
    EXPECT_EQ(print("check page.html", page), section.blocks[1].text);
    EXPECT_NE(section.blocks[1].text.find("[" + section.title + "]"), std::string::npos) << section.title;
    EXPECT_EQ(fixed(page), section.blocks.size() > 2 ? section.blocks[2].text : page) << section.title;
  }
  std::istringstream ids(print("check --format sarif page.html | sed -n 's/.*\"id\": \"\\(ERR_.*\\)\".*/\\1/p'", ""));
  int count = 0;
  for (std::string id; std::getline(ids, id); ++count) {
    EXPECT_NE(titles.find(id + "\n"), std::string::npos) << id << " has no section";
  }
  EXPECT_EQ(count, static_cast<int>(sections.size()));
}

TEST_F(Docs, RuntimeTextsAreWhatIsGenerated) {
  const std::vector<Section> sections = sectionsOf("docs/dynamic.md");
  for (const Section& section : sections) {
    if (section.blocks.size() == 1) write("types.json", section.blocks[0].text);
  }
  int shown = 0;
  for (const Section& section : sections) {
    if (section.blocks.size() != 2) continue;
    ++shown;
    const bool pair = section.blocks[1].text.find("METADATA") != std::string::npos;
    const std::string arguments = std::string("runtime --types types.json page.html") + (pair ? " --keep" : "");
    EXPECT_EQ(print(arguments, section.blocks[0].text), section.blocks[1].text) << section.title;
    EXPECT_EQ(print(arguments, print("runtime --types types.json --keep page.html", section.blocks[0].text)),
              section.blocks[1].text)
        << section.title << ", saved and read again";
  }
  EXPECT_EQ(shown, 13);
}

// Without the blanks before each line: code is quoted from inside a function.
std::string flat(const std::string& text) {
  std::istringstream lines(text);
  std::string all;
  for (std::string line; std::getline(lines, line);) {
    all += line.substr(std::min(line.find_first_not_of(' '), line.size())) + "\n";
  }
  return all;
}

TEST_F(Docs, CommandsPrintAndCodeReadsAsShown) {
  int commands = 0, quotes = 0;
  const auto expectShown = [&](const Block& block) {
    place_ = ZELDOM40_SOURCE_DIR "/" + block.place;
    if (block.mark == "code") {
      EXPECT_NE(flat(readFile(place_)).find(flat(block.text)), std::string::npos) << block.text;
      ++quotes;
    }
    if (block.mark != "in") return;
    for (std::size_t at = 0; at < block.text.size(); ++commands) {
      const std::size_t end = block.text.find('\n', at);
      const std::size_t next = std::min(block.text.find("\n$ ", end), block.text.size() - 1) + 1;
      std::string command = block.text.substr(at + 2, end - at - 2);
      command = command.rfind("zeldom ", 0) == 0 ? command.substr(7) : "--version >/dev/null; " + command;
      EXPECT_EQ(run(command).out, block.text.substr(end + 1, next - end - 1)) << command;
      at = next;
    }
  };
  for (const char* page : {"README.md", "docs/hosting.md"}) {
    for (const Section& section : sectionsOf(page)) {
      for (const Block& block : section.blocks) expectShown(block);
    }
  }
  EXPECT_GE(commands, 12);
  EXPECT_GE(quotes, 15);
}

}  // namespace
