// Files as memory: what opens, what does not, and with which code.
#include "dom/source/MappedFile.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace zeldom40 {
namespace {

class MappedFileTest : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = std::filesystem::path(testing::TempDir()) / ("zeldom40_mapped_" + std::to_string(::getpid()));
    std::filesystem::create_directory(folder_);
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::string path(const char* name) const { return (folder_ / name).string(); }
  std::string make(const char* name, std::string_view bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
  }

 private:
  std::filesystem::path folder_;
};

TEST_F(MappedFileTest, GivesTheBytesUntilClosed) {
  const std::string name = make("page", std::string_view("a\0\x1a\r\n", 5));
  MappedFile file(&name, 0);
  ASSERT_TRUE(file.get_top());
  EXPECT_EQ(std::string_view(file.get_top(), file.get_size()), std::string_view("a\0\x1a\r\n", 5));
  EXPECT_EQ(file.open(path("missing").c_str(), 0), 1);  // the first file is closed by then
  EXPECT_FALSE(file.get_top());
  EXPECT_EQ(file.get_size(), 0u);
}

TEST_F(MappedFileTest, RefusesWhatIsNoFileWithBytes) {
  const std::string pipe = path("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  MappedFile file;
  EXPECT_EQ(file.open(testing::TempDir().c_str(), 0), 1);
  EXPECT_EQ(file.open(pipe.c_str(), 0), 1);
  EXPECT_EQ(file.open(make("empty", "").c_str(), 0), 3);
  EXPECT_EQ(file.open(path("new").c_str(), 1), 3);
  EXPECT_TRUE(std::filesystem::exists(path("new")));
}

TEST_F(MappedFileTest, WritesThroughOnlyInModeOne) {
  const std::string name = make("page", "abc");
  for (int mode : {0, 1}) {
    MappedFile file(name.c_str(), mode);
    ASSERT_TRUE(file.get_top());
    file.get_top()[0] = static_cast<char>('0' + mode);
  }
  MappedFile file(name.c_str(), 0);
  EXPECT_EQ(std::string_view(file.get_top(), file.get_size()), "1bc");
}

}  // namespace
}  // namespace zeldom40
