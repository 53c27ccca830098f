#pragma once
// Trace files for the run, command and golden tests: frame lines to write,
// whole files read back, and a fresh scratch directory per test.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::testing {

// The file's bytes as they are; empty when it cannot be read.
inline std::string ReadAll(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// The NAMEs of the files NAME<suffix> in a directory, in order: the traces
// a parameterised test runs.
inline std::vector<std::string> NamesEndingIn(const std::filesystem::path& directory, std::string_view suffix) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    const std::string file = entry.path().filename().string();
    if (file.ends_with(suffix)) names.push_back(file.substr(0, file.size() - suffix.size()));
  }
  std::sort(names.begin(), names.end());
  return names;
}

// A frame line carrying the octet cells ("0x00 0x81 0x7f"), with their count
// as its length field, padded to 90 characters with its line end.
inline std::string FrameLine(std::string_view cells) {
  std::string line = "00001 2026-03-14 10:00:00.000 **** D-CH RX HDLC:" + std::to_string((cells.size() + 1) / 5) +
                     "  | " + std::string(cells);
  return line + std::string(line.size() < 89 ? 89 - line.size() : 1, ' ') + "\n";
}

// The layer-2 lines of the link frames the tests use most.
inline const std::string kSabmeText =
    "ISDN Layer 2: SABME(set asynchronous balanced mode extended), Request to establish link\n";
inline const std::string kUaAfterSabmeText =
    "ISDN Layer 2: UA(unnumbered acknowledgement), Acknowledge to SABME, link established\n";

// How a velmora command ended.
struct Finished {
  int status = -1;  // -1: ended by a signal
  std::string out, err;
};

class ScratchDirectoryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = "velmora_" + std::string(test->test_suite_name()) + "_" + test->name();
    std::replace(name.begin(), name.end(), '/', '_');  // parameterised tests
    dir_ = std::filesystem::temp_directory_path() / (name + "_" + std::to_string(::getpid()));
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_);
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  std::string Path(const std::string& name) const { return (dir_ / name).string(); }
  void Write(const std::string& name, const std::string& text) const {
    std::ofstream(Path(name), std::ios::binary) << text;
  }
  std::string Read(const std::string& name) const { return ReadAll(dir_ / name); }

  // Runs velmora in the test's directory; `args` is shell text whose own
  // redirections win over the default ones.
  Finished Velmora(const std::string& args, const std::string& wrapper = "") const {
    const std::string command =
        "cd " + dir_.string() + " && " + wrapper + VELMORA_CLI_PATH + " </dev/null >stdout 2>stderr " + args;
    const int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, Read("stdout"), Read("stderr")};
  }

  std::filesystem::path dir_;
};

// The numbers that the first group of `pattern` matches in `text`, in order.
inline std::vector<int> Numbers(const std::string& text, const char* pattern) {
  std::vector<int> numbers;
  const std::regex re(pattern);
  for (auto it = std::sregex_iterator(text.begin(), text.end(), re); it != std::sregex_iterator(); ++it)
    numbers.push_back(std::stoi((*it)[1]));
  return numbers;
}

}  // namespace velmora::testing
