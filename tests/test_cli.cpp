// The velmora command in pipelines: a filter that answers each line as it
// comes, and a reader that goes away.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "trace_files.h"

namespace velmora::testing {
namespace {

using Cli = ScratchDirectoryTest;

TEST_F(Cli, ReaderThatGoesAwayIsAWriteFailureNotASilentDeath) {
  std::string big;
  while (big.size() < 4 * 1024 * 1024) big += FrameLine("0x00 0x81 0x01");
  Write("big.txt", big);
  const std::string command = std::string("set -o pipefail; ") + VELMORA_CLI_PATH + " " + Path("big.txt") + " - 2>" +
                              Path("stderr") + " | head -c 10 >/dev/null";
  const int raw = std::system(("bash -c '" + command + "'").c_str());
  EXPECT_TRUE(WIFEXITED(raw));
  EXPECT_EQ(WEXITSTATUS(raw), 74);
  EXPECT_NE(Read("stderr").find("Broken pipe"), std::string::npos);
}

// In a pipeline the decoded text of a line comes out while the writer of
// the input still holds the pipe open: nothing waits for the end of input.
TEST_F(Cli, FilterAnswersEachLineBeforeTheInputEnds) {
  FILE* input = ::popen(
      ("bash -c 'set -o pipefail; " + std::string(VELMORA_CLI_PATH) + " -q - - | cat >" + Path("stdout") + "'").c_str(),
      "w");
  ASSERT_NE(input, nullptr);
  const std::string sabme = FrameLine("0x00 0x81 0x7f");
  std::fputs(sabme.c_str(), input);
  std::fflush(input);
  for (int tries = 0; tries < 500 && Read("stdout") != sabme + kSabmeText; ++tries) ::usleep(10000);
  EXPECT_EQ(Read("stdout"), sabme + kSabmeText);
  EXPECT_EQ(::pclose(input), 0);
}

}  // namespace
}  // namespace velmora::testing
