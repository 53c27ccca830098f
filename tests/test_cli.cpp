// The velmora command in pipelines: a filter that answers each line as it
// comes, and a reader that goes away.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
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

// Lines that look like frame lines but are not read as the user meant get a
// warning each kind, with the count and the first line; the message file is
// the same with and without them.
class ScanWarnings : public ScratchDirectoryTest {
 protected:
  static std::string ShortMarked(std::uint64_t count, std::uint64_t first) {
    return "velmora: warning: trace.txt: " + std::to_string(count) +
           (count == 1 ? " line holds \"HDLC\" and \"****\" but is shorter than 80 characters, so it was not read as"
                         " a frame line"
                       : " lines hold \"HDLC\" and \"****\" but are shorter than 80 characters, so they were not read"
                         " as frame lines") +
           " (first: line " + std::to_string(first) + ")\n";
  }
  static std::string UpperCase(std::uint64_t count, std::uint64_t first) {
    const char* their = count == 1 ? "its" : "their";
    return "velmora: warning: trace.txt: " + std::to_string(count) +
           (count == 1 ? " frame line has" : " frame lines have") + " upper-case hexadecimal digits in " + their +
           " cells, read as the trace format defines (\"A\" to \"F\" as 17 to 22): " + their +
           " octets are likely wrong (first: line " + std::to_string(first) + ")\n";
  }
  static std::string Misplaced(std::uint64_t count, std::uint64_t first) {
    return "velmora: warning: trace.txt: " + std::to_string(count) +
           (count == 1 ? " frame line has" : " frame lines have") +
           " cells that are not \"0x\" and two hexadecimal digits where cells are read (one blank instead of two"
           " before \"|\", say): " +
           (count == 1 ? "its" : "their") + " octets are likely wrong (first: line " + std::to_string(first) + ")\n";
  }
  // A frame line whose length field has one blank behind it instead of two:
  // every cell is read one character late.
  static std::string OneBlankBeforeBar(std::string_view cells) {
    const std::string line = FrameLine(cells);
    const std::size_t twoBlanks = line.find("  |");
    return line.substr(0, twoBlanks) + line.substr(twoBlanks + 1);
  }
};

TEST_F(ScanWarnings, EachKindCountedWithItsFirstLine) {
  const std::string trace = std::string(3000, '-') + "\n"  // one line, read in two pieces
                            + "12:00:00 **** D-CH TX HDLC:3 | 0x00 0x81 0x7f\n" + FrameLine("0x00 0x81 0x7f") +
                            FrameLine("0x00 0x81 0x7F") + OneBlankBeforeBar("0x00 0x81 0x7f") +
                            FrameLine("0xA0 0x81 0x7f") + "HDLC **** short, no line end";
  Write("trace.txt", trace);
  const Finished plain = Velmora("trace.txt out.txt");
  EXPECT_EQ(plain.status, 0);
  EXPECT_EQ(plain.err, ShortMarked(2, 2) + UpperCase(2, 4) + Misplaced(1, 5) + "Translation is done!\n");
  const std::string message = Read("out.txt");

  // -q silences them; the message file is unchanged.
  EXPECT_EQ(Velmora("-q trace.txt quiet.txt").err, "");
  EXPECT_EQ(Read("quiet.txt"), message);
  // Every output kind reads the lines the same way, and warns the same.
  EXPECT_EQ(Velmora("--to calls trace.txt calls.txt").err, plain.err);
  std::string fromStandardInput = plain.err;
  for (std::size_t at; (at = fromStandardInput.find("trace.txt")) != std::string::npos;)
    fromStandardInput.replace(at, 9, "standard input");
  EXPECT_EQ(Velmora("- - <trace.txt").err, fromStandardInput);
  EXPECT_EQ(Read("stdout"), message);

  // A clean trace draws no warning.
  Write("clean.txt", FrameLine("0x00 0x81 0x7f"));
  EXPECT_EQ(Velmora("clean.txt clean.out").err, "Translation is done!\n");
}

TEST_F(ScanWarnings, ParallelRunNumbersLinesAcrossItsChunks) {
  // Several megabytes, read in chunks by several threads: the first flawed
  // line of each kind stands in a late chunk.
  std::string trace;
  std::uint64_t lines = 0;
  while (trace.size() < 6 * 1024 * 1024) {
    trace += FrameLine("0x00 0x81 0x01");
    ++lines;
  }
  trace +=
      FrameLine("0x00 0x81 0x7F") + OneBlankBeforeBar("0x00 0x81 0x01") + "HDLC ****\n" + FrameLine("0xAB 0x81 0x01");
  Write("trace.txt", trace);
  const std::string expected =
      ShortMarked(1, lines + 3) + UpperCase(2, lines + 1) + Misplaced(1, lines + 2) + "Translation is done!\n";
  for (const char* jobs : {"-j 1", "-j 3"}) {
    SCOPED_TRACE(jobs);
    EXPECT_EQ(Velmora(std::string(jobs) + " trace.txt out.txt").err, expected);
  }
}

// --detail full on several threads writes what one thread writes; the
// default level's file is the one without the option.
TEST_F(Cli, DetailLevelOnEveryPath) {
  std::string trace;
  while (trace.size() < 5 * 1024 * 1024)
    trace += FrameLine("0x00 0x81 0x7f") + FrameLine("0x02 0x81 0x00 0x02 0x08 0x01 0x81 0x07") +
             FrameLine("0x00 0x81 0x73") + "between frames\n";
  Write("trace.txt", trace);
  EXPECT_EQ(Velmora("-q --detail full -j 1 trace.txt one.txt").status, 0);
  EXPECT_EQ(Velmora("-q --detail=full -j 3 trace.txt three.txt").status, 0);
  EXPECT_EQ(Read("one.txt"), Read("three.txt"));
  EXPECT_NE(Read("one.txt").find("UA(unnumbered acknowledgement), Acknowledge to SABME, link established\n\tSAPI=0"),
            std::string::npos);
  EXPECT_EQ(Velmora("-q --detail description trace.txt plain.txt").status, 0);
  EXPECT_EQ(Velmora("-q trace.txt default.txt").status, 0);
  EXPECT_EQ(Read("plain.txt"), Read("default.txt"));
  EXPECT_EQ(Velmora("--detail most trace.txt x.txt").err,
            "velmora: --detail: 'most' is no level (description or full)\nTry 'velmora --help'.\n");
}

}  // namespace
}  // namespace velmora::testing
