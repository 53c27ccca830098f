#pragma once
// A test fixture with a fresh directory of its own for files a test writes
// and reads back, removed after the test.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace velmora::testing {

class ScratchDirectoryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    dir_ = std::filesystem::temp_directory_path() /
           ("velmora_" + std::string(test->test_suite_name()) + "_" + test->name() + "_" + std::to_string(::getpid()));
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_);
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  std::string Path(const std::string& name) const { return (dir_ / name).string(); }
  void Write(const std::string& name, const std::string& text) const {
    std::ofstream(Path(name), std::ios::binary) << text;
  }
  std::string Read(const std::string& name) const {
    std::ifstream in(Path(name), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }

  std::filesystem::path dir_;
};

}  // namespace velmora::testing
