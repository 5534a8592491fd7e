// Keeps the documentation true: quoted code is in the files that it is quoted from, shown commands print what is shown,
// links lead somewhere.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Lines = std::vector<std::string>;

const std::filesystem::path kRoot = ZELDOM40_SOURCE_DIR;

Lines linesOf(const std::filesystem::path& path) {
  std::ifstream file(path);
  EXPECT_TRUE(file) << path;
  Lines lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

// The lines without the blanks that all of them begin with: code is quoted from inside a function.
std::string dedented(Lines::const_iterator begin, Lines::const_iterator end) {
  std::size_t common = std::string::npos;
  for (auto line = begin; line != end; ++line) common = std::min(common, line->find_first_not_of(' '));
  std::string text;
  for (auto line = begin; line != end; ++line) text += line->substr(std::min(common, line->size())) + "\n";
  return text;
}

// A fenced block: its language and, for code, the file named in the comment above it: <!-- code: PATH -->.
struct Block {
  std::string language;
  std::string file;
  Lines lines;
};

std::vector<Block> blocksOf(const Lines& page) {
  constexpr std::string_view kMark = "<!-- code: ";
  std::vector<Block> blocks;
  std::string file;
  for (std::size_t i = 0; i < page.size(); ++i) {
    if (page[i].rfind(kMark, 0) == 0) {
      file = page[i].substr(kMark.size(), page[i].find(" -->") - kMark.size());
    } else if (page[i].rfind("```", 0) == 0) {
      Block block{page[i].substr(3), file, {}};
      while (++i < page.size() && page[i] != "```") block.lines.push_back(page[i]);
      blocks.push_back(block);
      file.clear();
    }
  }
  return blocks;
}

std::string outputOf(const std::string& command) {
  const std::string tools = std::filesystem::path(ZELDOM40_TOOL).parent_path();
  const std::string line =
      "cd '" + (kRoot / "examples/pages").string() + "' && PATH='" + tools + "':$PATH && { " + command + "; } 2>&1";
  std::string output;
  FILE* pipe = popen(line.c_str(), "r");
  if (!pipe) return "cannot run it";
  char buffer[4096];
  while (const std::size_t size = std::fread(buffer, 1, sizeof buffer, pipe)) output.append(buffer, size);
  pclose(pipe);
  return output;
}

class Docs : public testing::TestWithParam<const char*> {
 protected:
  const Lines page_ = linesOf(kRoot / GetParam());
};

TEST_P(Docs, QuotesCodeThatIsCompiled) {
  for (const Block& block : blocksOf(page_)) {
    if (block.language != "cpp" && block.language != "cmake") continue;
    ASSERT_NE(block.file, "") << "where is this from?\n" << block.lines.front();
    const Lines source = linesOf(kRoot / block.file);
    const std::string quoted = dedented(block.lines.begin(), block.lines.end());
    bool found = false;
    const auto size = static_cast<std::ptrdiff_t>(block.lines.size());
    for (auto line = source.begin(); !found && source.end() - line >= size; ++line) {
      found = dedented(line, line + size) == quoted;
    }
    EXPECT_TRUE(found) << block.file << " does not have\n" << quoted;
  }
}

TEST_P(Docs, ShowsWhatTheToolPrints) {
  for (const Block& block : blocksOf(page_)) {
    if (block.language != "console") continue;
    for (auto line = block.lines.begin(); line != block.lines.end();) {
      ASSERT_EQ(line->rfind("$ zeldom ", 0), 0u) << *line;
      const std::string command = line->substr(2);
      std::string shown;
      for (++line; line != block.lines.end() && line->rfind("$ ", 0) != 0; ++line) shown += *line + "\n";
      EXPECT_EQ(outputOf(command), shown) << command;
    }
  }
}

TEST_P(Docs, LinksLeadToFiles) {
  const std::filesystem::path folder = (kRoot / GetParam()).parent_path();
  for (const std::string& line : page_) {
    for (std::size_t at = line.find("]("); at != std::string::npos; at = line.find("](", at + 1)) {
      const std::string target = line.substr(at + 2, line.find_first_of(")#", at + 2) - at - 2);
      if (target.empty() || target.find("://") != std::string::npos) continue;
      EXPECT_TRUE(std::filesystem::exists(folder / target)) << target;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Pages, Docs, testing::Values("README.md", "docs/architecture.md", "docs/hosting.md"),
                         [](const auto& page) { return std::filesystem::path(page.param).stem().string(); });

// A reader of blocks that finds none would pass everything.
TEST(DocsPages, HoldWhatIsCompared) {
  const auto count = [](const char* page, const std::string& language) {
    int blocks = 0;
    for (const Block& block : blocksOf(linesOf(kRoot / page))) blocks += block.language == language;
    return blocks;
  };
  EXPECT_GE(count("README.md", "cpp"), 1);
  EXPECT_GE(count("README.md", "console"), 3);
  EXPECT_GE(count("docs/hosting.md", "cpp"), 12);
}

}  // namespace
