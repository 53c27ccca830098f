// The translation run: path checks, outcomes, the copy of the input and
// the link memory that outlives a run.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "core/globals.h"
#include "core/translation.h"
#include "scratch_directory.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

using TranslationRun = testing::ScratchDirectoryTest;

// A frame line carrying octets 0x00 0x81 and the given control octet.
std::string ControlFrameLine(const char* control) {
  std::string line = "00001 10:00:00.000 **** D-CH RX HDLC:3  | 0x00 0x81 0x";
  line += control;
  line += std::string(90 - line.size(), ' ');
  return line + "\n";
}

TEST(Outcomes, CarryTheExactTextsCaptionsAndIcons) {
  EXPECT_EQ(DescribeOutcome(TranslationOutcome::InputNotSelected).text, "Please select input log file!");
  EXPECT_EQ(DescribeOutcome(TranslationOutcome::OutputNotSelected).text, "Please select output message file!");
  EXPECT_EQ(DescribeOutcome(TranslationOutcome::OutputSameAsInput).text,
            "The output message file is as same as the input log file.\nPlease select them again!");
  EXPECT_EQ(DescribeOutcome(TranslationOutcome::InputOpenFailed).text, "Cannot open Input log file!");
  EXPECT_EQ(DescribeOutcome(TranslationOutcome::OutputOpenFailed).text, "Cannot open output message file!");
  EXPECT_EQ(DescribeOutcome(TranslationOutcome::NoFrameFound).text,
            "The input log file contains no useful information!");
  EXPECT_EQ(DescribeOutcome(TranslationOutcome::TranslationDone).text, "Translation is done!");
  for (const auto outcome : {TranslationOutcome::InputNotSelected, TranslationOutcome::OutputNotSelected,
                             TranslationOutcome::OutputSameAsInput, TranslationOutcome::InputOpenFailed,
                             TranslationOutcome::OutputOpenFailed, TranslationOutcome::NoFrameFound}) {
    EXPECT_EQ(DescribeOutcome(outcome).caption, "Error");
    EXPECT_EQ(static_cast<int>(DescribeOutcome(outcome).icon), 16);
  }
  EXPECT_EQ(DescribeOutcome(TranslationOutcome::TranslationDone).caption, "Velmora");
  EXPECT_EQ(static_cast<int>(DescribeOutcome(TranslationOutcome::TranslationDone).icon), 64);
}

TEST_F(TranslationRun, PathChecksComeBeforeAnyFileIsTouched) {
  Write("in.txt", "keep me\n");
  EXPECT_EQ(TranslateTraceFile("", Path("out.txt")), TranslationOutcome::InputNotSelected);
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), ""), TranslationOutcome::OutputNotSelected);
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("in.txt")), TranslationOutcome::OutputSameAsInput);
  EXPECT_EQ(Read("in.txt"), "keep me\n");
  EXPECT_FALSE(fs::exists(Path("out.txt")));
  // Blanks are a path like any other.
  EXPECT_EQ(TranslateTraceFile("   ", Path("out.txt")), TranslationOutcome::InputOpenFailed);
  EXPECT_FALSE(fs::exists(Path("out.txt")));
}

TEST_F(TranslationRun, OpenFailuresLeaveNoOutput) {
  EXPECT_EQ(TranslateTraceFile(Path("missing.txt"), Path("out.txt")), TranslationOutcome::InputOpenFailed);
  EXPECT_EQ(TranslateTraceFile(dir_.string(), Path("out.txt")), TranslationOutcome::InputOpenFailed);
  EXPECT_FALSE(fs::exists(Path("out.txt")));
  Write("in.txt", "x\n");
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("no/such/dir/out.txt")), TranslationOutcome::OutputOpenFailed);
}

TEST_F(TranslationRun, TwoSpellingsOfOneFileAreOnlyCaughtWhenAsked) {
  Write("in.txt", ControlFrameLine("7f"));
  TranslationOptions options;
  options.refuseSameFile = true;
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), (dir_ / "." / "in.txt").string(), options),
            TranslationOutcome::OutputSameAsInput);
  EXPECT_EQ(Read("in.txt"), ControlFrameLine("7f"));
}

TEST_F(TranslationRun, WithoutFrameLinesTheOutputIsAnExactCopy) {
  Write("in.txt", "first\nsecond % line\nthird without end");
  Write("out.txt", "old contents that must go");
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("out.txt")), TranslationOutcome::NoFrameFound);
  EXPECT_EQ(Read("out.txt"), "first\nsecond % line\nthird without end");

  Write("empty.txt", "");
  EXPECT_EQ(TranslateTraceFile(Path("empty.txt"), Path("out.txt")), TranslationOutcome::NoFrameFound);
  EXPECT_TRUE(fs::exists(Path("out.txt")));
  EXPECT_EQ(Read("out.txt"), "");
}

TEST_F(TranslationRun, LongLinesArriveInPiecesOf2047Characters) {
  // 5000 characters and a line end come as pieces of 2047, 2047 and 907
  // characters. A frame line form that fills the start of the third piece
  // is decoded behind that piece, which ends the line.
  std::string longLine(5000, 'a');
  const std::string frame = ControlFrameLine("7f");
  longLine.replace(4094, frame.size() - 1, frame.substr(0, frame.size() - 1));
  Write("in.txt", longLine + "\n");
  g_linkSetupPending = 0;
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("out.txt")), TranslationOutcome::TranslationDone);
  const std::string decoded = "ISDN Layer 2: SABME(set asynchronous balanced mode extended), Request to establish link\n";
  EXPECT_EQ(Read("out.txt"), longLine + "\n" + decoded);

  // A line of exactly 2047 characters plus its line end: the "\n" is a piece of its own.
  Write("in.txt", std::string(2047, 'b') + "\nnext\n");
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("out.txt")), TranslationOutcome::NoFrameFound);
  EXPECT_EQ(Read("out.txt"), std::string(2047, 'b') + "\nnext\n");
}

TEST_F(TranslationRun, LinkMemoryCarriesOverToTheNextRun) {
  Write("sabme.txt", ControlFrameLine("7f"));
  Write("ua.txt", ControlFrameLine("73"));
  const std::string ua = "UA(unnumbered acknowledgement), ";
  g_linkSetupPending = 0;
  EXPECT_EQ(TranslateTraceFile(Path("sabme.txt"), Path("out1.txt")), TranslationOutcome::TranslationDone);
  EXPECT_EQ(TranslateTraceFile(Path("ua.txt"), Path("out2.txt")), TranslationOutcome::TranslationDone);
  EXPECT_NE(Read("out2.txt").find(ua + "Acknowledge to SABME, link established\n"), std::string::npos);
}

TEST_F(TranslationRun, ReportCountsBytesAndNoErrors) {
  Write("in.txt", ControlFrameLine("01"));
  TranslationReport report;
  TranslationOptions options;
  options.report = &report;
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("out.txt"), options), TranslationOutcome::TranslationDone);
  EXPECT_EQ(report.bytesRead, ControlFrameLine("01").size());
  EXPECT_EQ(report.bytesWritten, Read("out.txt").size());
  EXPECT_EQ(report.readError, 0);
  EXPECT_EQ(report.writeError, 0);
}

TEST_F(TranslationRun, WriteFailureIsReportedNotHidden) {
  Write("in.txt", ControlFrameLine("01"));
  TranslationReport report;
  TranslationOptions options;
  options.report = &report;
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), "/dev/full", options), TranslationOutcome::TranslationDone);
  EXPECT_NE(report.writeError, 0);
}

}  // namespace
}  // namespace velmora
