// Runs the built tool as a script does, in a folder of its own.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdlib.h>
#include <string>
#include <sys/wait.h>

#include <gtest/gtest.h>

inline std::string readFile(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

class ToolTest : public testing::Test {
 protected:
  struct Result {
    int code = -1;
    std::string out;
    std::string err;
  };

  void SetUp() override {
    folder_ = testing::TempDir() + "zeldomXXXXXX";
    ASSERT_NE(mkdtemp(folder_.data()), nullptr);
    place_ = folder_ + "/pages";
    std::filesystem::create_directory(place_);
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::string path(const std::string& file) { return place_ + "/" + file; }
  void write(const std::string& file, const std::string& bytes) {
    std::ofstream(path(file), std::ios::binary) << bytes;
  }
  // Runs "zeldom <arguments>" through the shell where the pages are; `before` is a shell command such as a limit.
  Result run(const std::string& arguments, const std::string& input = "", const std::string& before = "true") {
    std::ofstream(folder_ + "/in", std::ios::binary) << input;
    const std::string command = "cd " + place_ + " && " + before + " && { " ZELDOM40_TOOL " " + arguments + "; } <" +
                                folder_ + "/in >" + folder_ + "/out 2>" + folder_ + "/err";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(folder_ + "/out"), readFile(folder_ + "/err")};
  }

  std::string folder_;
  std::string place_;  // where the pages are
};
