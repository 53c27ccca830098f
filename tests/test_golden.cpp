// Whole traces: every NAME.in.txt in tests/data is translated and compared
// byte for byte with NAME.expected.txt, written by hand. The traces run in
// name order in one process with the link memory cleared before each.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "translation.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

std::string ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::vector<fs::path> GoldenInputs() {
  std::vector<fs::path> inputs;
  for (const auto& entry : fs::directory_iterator(VELMORA_TEST_DATA)) {
    const std::string name = entry.path().filename().string();
    if (name.size() > 7 && name.ends_with(".in.txt")) inputs.push_back(entry.path());
  }
  std::sort(inputs.begin(), inputs.end());
  return inputs;
}

class Golden : public ::testing::TestWithParam<fs::path> {};

TEST_P(Golden, OutputMatchesTheHandWrittenExpectation) {
  const fs::path input = GetParam();
  std::string stem = input.filename().string();
  stem.resize(stem.size() - 7);
  const fs::path expected = input.parent_path() / (stem + ".expected.txt");
  ASSERT_TRUE(fs::exists(expected)) << expected;
  const fs::path output = fs::temp_directory_path() / ("velmora_golden_" + stem + ".txt");

  LinkMemory link;
  const TranslationOutcome outcome = TranslateTraceFile(input.string(), output.string(), link);
  EXPECT_EQ(outcome, TranslationOutcome::TranslationDone);
  const std::string actual = ReadAll(output);
  const std::string wanted = ReadAll(expected);
  if (actual != wanted) {
    const auto [a, w] = std::mismatch(actual.begin(), actual.end(), wanted.begin(), wanted.end());
    const std::size_t at = static_cast<std::size_t>(a - actual.begin());
    const std::size_t lineStart = actual.rfind('\n', at == 0 ? 0 : at - 1);
    ADD_FAILURE() << stem << ": first difference at byte " << at
                  << "\n  actual:   " << actual.substr(lineStart + 1, 160)
                  << "\n  expected: " << wanted.substr(lineStart + 1, 160);
  }
  fs::remove(output);
}

INSTANTIATE_TEST_SUITE_P(Traces, Golden, ::testing::ValuesIn(GoldenInputs()), [](const auto& info) {
  std::string name = info.param.filename().string();
  name.resize(name.size() - 7);
  std::replace_if(
      name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
  return name;
});

}  // namespace
}  // namespace velmora
