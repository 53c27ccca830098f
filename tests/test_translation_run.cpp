// The translation run: path checks, pieces of long lines and the report of
// bytes and errors.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "input_formats.h"
#include "output_writer.h"
#include "trace_consumer.h"
#include "trace_files.h"
#include "translation.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

using testing::FrameLine;
using TranslationRun = testing::ScratchDirectoryTest;

TEST_F(TranslationRun, PathChecksComeBeforeAnyFileIsTouched) {
  Write("in.txt", "keep me\n");
  LinkMemory link;
  EXPECT_EQ(TranslateTraceFile("", Path("out.txt"), link), TranslationOutcome::InputNotSelected);
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), "", link), TranslationOutcome::OutputNotSelected);
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("in.txt"), link), TranslationOutcome::OutputSameAsInput);
  // Blanks are a path like any other.
  EXPECT_EQ(TranslateTraceFile("   ", Path("out.txt"), link), TranslationOutcome::InputOpenFailed);
  EXPECT_EQ(Read("in.txt"), "keep me\n");
  EXPECT_FALSE(fs::exists(Path("out.txt")));
}

TEST_F(TranslationRun, LongLinesArriveInPiecesOf2047Characters) {
  // 5000 characters and a line end come as pieces of 2047, 2047 and 907
  // characters. A frame line form that fills the start of the third piece
  // is decoded behind that piece, which ends the line.
  std::string longLine(5000, 'a');
  const std::string frame = FrameLine("0x00 0x81 0x7f");
  longLine.replace(4094, frame.size() - 1, frame.substr(0, frame.size() - 1));
  Write("in.txt", longLine + "\n");
  LinkMemory link;
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("out.txt"), link), TranslationOutcome::TranslationDone);
  EXPECT_EQ(Read("out.txt"), longLine + "\n" + testing::kSabmeText);

  // A line of exactly 2047 characters plus its line end: the "\n" is a piece of its own.
  Write("in.txt", std::string(2047, 'b') + "\nnext\n");
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("out.txt"), link), TranslationOutcome::NoFrameFound);
  EXPECT_EQ(Read("out.txt"), std::string(2047, 'b') + "\nnext\n");

  // No piece at all: an empty output, and no frame found.
  Write("in.txt", "");
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("out.txt"), link), TranslationOutcome::NoFrameFound);
  EXPECT_TRUE(fs::exists(Path("out.txt")) && Read("out.txt").empty());
}

TEST_F(TranslationRun, ReportCountsTheBytesReadAndWritten) {
  Write("in.txt", FrameLine("0x00 0x81 0x01"));
  LinkMemory link;
  TranslationReport report;
  TranslationOptions options;
  options.report = &report;
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("out.txt"), link, options), TranslationOutcome::TranslationDone);
  EXPECT_EQ(report.bytesRead, FrameLine("0x00 0x81 0x01").size());
  EXPECT_EQ(report.bytesWritten, Read("out.txt").size());
  EXPECT_EQ(report.readError, 0);
  EXPECT_EQ(report.writeError, 0);
}

// A consumer in place of the message file: it writes one line per piece,
// with the piece's line number and a frame line's octet count.
class PieceLister final : public TraceConsumer {
 public:
  explicit PieceLister(OutputWriter& out) : out_(out) {}
  void Consume(const TracePiece& piece) override {
    out_.Decimal(static_cast<std::int64_t>(piece.lineNumber));
    out_.Put(piece.isFrameLine ? " frame " : " text ");
    out_.Decimal(static_cast<std::int64_t>(piece.text.size()));
    for (const Octet octet : piece.frame) out_.SpaceHex(octet);
    out_.Put('\n');
  }
  void Finish() override { out_.Put("end\n"); }

 private:
  OutputWriter& out_;
};

TEST_F(TranslationRun, AConsumerSeesEveryPieceInsteadOfTheMessageFile) {
  const std::string frame = FrameLine("0x00 0x81 0x7f");
  Write("in.txt", "plain\n" + std::string(5000, 'a') + "\n" + frame + frame.substr(0, frame.size() - 1));
  TranslationOptions options;
  options.jobs = 4;
  options.makeConsumer = [](OutputWriter& out, LinkMemory&) { return std::make_unique<PieceLister>(out); };
  LinkMemory link;
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("out.txt"), link, options), TranslationOutcome::TranslationDone);
  EXPECT_EQ(Read("out.txt"),
            "1 text 6\n2 text 2047\n2 text 2047\n2 text 907\n3 frame 90 0x0 0x81 0x7f\n"
            "4 frame 89 0x0 0x81 0x7f\nend\n");

  Write("in.txt", "no frame\n");
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("out.txt"), link, options), TranslationOutcome::NoFrameFound);
  EXPECT_EQ(Read("out.txt"), "1 text 9\nend\n");
}

// The in-memory core makes of a trace in memory exactly what the file front
// end makes of the same bytes in a file, output, link memory, outcome and
// report alike, and nothing in it needs a path, a file or a thread.
TEST_F(TranslationRun, InMemoryCoreWritesWhatTheFileRunWrites) {
  const std::string frame = FrameLine("0x00 0x81 0x7f");
  const std::string trace = "plain\n" + std::string(5000, 'a') + "\n" + frame + FrameLine("0x00 0x81 0x73") +
                            "HDLC **** short\n" + FrameLine("0x00 0x81 0x7F") + "last, no line end";
  Write("in.txt", trace);
  LinkMemory fileLink;
  TranslationReport fileReport;
  TranslationOptions options;
  options.report = &fileReport;
  const TranslationOutcome fileOutcome = TranslateTraceFile(Path("in.txt"), Path("out.txt"), fileLink, options);

  std::string text;
  StringSink sink(text);
  LinkMemory memoryLink;
  TranslationReport memoryReport;
  options.report = &memoryReport;
  EXPECT_EQ(TranslateTraceText(trace, sink, memoryLink, options), fileOutcome);
  EXPECT_EQ(text, Read("out.txt"));
  EXPECT_EQ(memoryLink.setupPending, fileLink.setupPending);
  EXPECT_EQ(memoryReport.bytesRead, trace.size());
  EXPECT_EQ(memoryReport.bytesWritten, text.size());
  EXPECT_EQ(memoryReport.scanNotes.shortMarkedLines.firstLine, 5U);
  EXPECT_EQ(memoryReport.scanNotes.upperCaseCells.firstLine, 6U);
  EXPECT_EQ(fileReport.scanNotes.upperCaseCells.lines, memoryReport.scanNotes.upperCaseCells.lines);

  // A consumer works on it as on a file; nothing in, nothing found.
  text.clear();
  options.makeConsumer = [](OutputWriter& out, LinkMemory&) { return std::make_unique<PieceLister>(out); };
  EXPECT_EQ(TranslateTraceText("one\n", sink, memoryLink, options), TranslationOutcome::NoFrameFound);
  EXPECT_EQ(text, "1 text 4\nend\n");
  text.clear();
  options.makeConsumer = nullptr;
  EXPECT_EQ(TranslateTraceText("", sink, memoryLink, options), TranslationOutcome::NoFrameFound);
  EXPECT_EQ(text, "");
}

// Text in memory goes in slices of a few megabytes, cut behind whole
// pieces, and the run tells its progress between them; a debug dump's
// start tells its format in memory as in a file.
TEST_F(TranslationRun, InMemoryCoreSlicesLargeTextAndTellsDumpsByTheirStart) {
  std::string trace;
  // Frame lines, and a line of 3000 characters now and then, until past
  // two slices: some slice ends inside a long line, some inside a frame line.
  for (int i = 0; trace.size() < 9'000'000; ++i)
    trace += i % 1000 == 999 ? std::string(3000, 'x') + "\n" : FrameLine("0x00 0x81 0x01 0x02");
  Write("big.txt", trace);
  LinkMemory link;
  TranslationOptions options;
  ASSERT_EQ(TranslateTraceFile(Path("big.txt"), Path("big.out"), link, options), TranslationOutcome::TranslationDone);
  std::vector<std::uint64_t> progress;
  options.progress = [&progress](std::uint64_t bytesRead, std::uint64_t) { progress.push_back(bytesRead); };
  std::string text;
  StringSink sink(text);
  EXPECT_EQ(TranslateTraceText(trace, sink, link, options), TranslationOutcome::TranslationDone);
  EXPECT_EQ(text, Read("big.out"));
  ASSERT_GE(progress.size(), 3U);
  EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
  EXPECT_EQ(progress.back(), trace.size());

  const std::string dump = testing::ReadAll(std::string(VELMORA_TEST_DATA) + "/dumps/pbx.txt");
  Write("dump.txt", dump);
  options = {};
  options.inputFormats = RecognisedInputFormats();
  ASSERT_EQ(TranslateTraceFile(Path("dump.txt"), Path("dump.out"), link, options), TranslationOutcome::TranslationDone);
  text.clear();
  EXPECT_EQ(TranslateTraceText(dump, sink, link, options), TranslationOutcome::TranslationDone);
  EXPECT_EQ(text, Read("dump.out"));
  EXPECT_NE(text.find("Message type:SETUP"), std::string::npos);
}

}  // namespace
}  // namespace velmora
