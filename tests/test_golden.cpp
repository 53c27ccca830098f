// Whole traces: every NAME.in.txt in tests/data is translated and compared
// byte for byte with NAME.expected.txt, written by hand. Each trace starts
// with a link memory of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "trace_files.h"
#include "translation.h"

namespace velmora::testing {
namespace {

namespace fs = std::filesystem;

class Golden : public ::testing::TestWithParam<std::string> {};

TEST_P(Golden, OutputMatchesTheHandWrittenExpectation) {
  const fs::path data = VELMORA_TEST_DATA;
  const fs::path output = fs::temp_directory_path() / ("velmora_golden_" + GetParam() + ".txt");
  LinkMemory link;
  EXPECT_EQ(TranslateTraceFile((data / (GetParam() + ".in.txt")).string(), output.string(), link),
            TranslationOutcome::TranslationDone);
  const std::string actual = ReadAll(output);
  const std::string wanted = ReadAll(data / (GetParam() + ".expected.txt"));
  ASSERT_FALSE(wanted.empty());
  // The line of the first difference, rather than both texts whole.
  const std::size_t at = static_cast<std::size_t>(
      std::mismatch(actual.begin(), actual.end(), wanted.begin(), wanted.end()).first - actual.begin());
  const std::size_t line = actual.rfind('\n', at == 0 ? 0 : at - 1) + 1;
  EXPECT_TRUE(actual == wanted) << "first difference at byte " << at << "\n  actual:   " << actual.substr(line, 160)
                                << "\n  expected: " << wanted.substr(line, 160);
  fs::remove(output);
}

INSTANTIATE_TEST_SUITE_P(Traces, Golden, ::testing::ValuesIn(NamesEndingIn(VELMORA_TEST_DATA, ".in.txt")),
                         [](const auto& info) { return info.param; });

}  // namespace
}  // namespace velmora::testing
