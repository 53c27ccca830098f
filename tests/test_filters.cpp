// Filters on every output kind, against a hand-written trace of a shared
// bus whose answers are written here by hand: two terminals (TEI 64, 65)
// that both use call reference 1, and a broadcast SETUP (call reference 5)
// that TEI 65 answers. Calls by first line: 3 (TEI 64, answered, cause 16),
// 4 (TEI 65, busy, cause 17), 17 (broadcast, answered, cause 16).
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "trace_files.h"
#include "trace_filter.h"

namespace velmora::testing {
namespace {

const std::string kTrace = std::string(VELMORA_TEST_DATA) + "/calls/shared_bus.trace.txt";

class Filters : public ScratchDirectoryTest {
 protected:
  // The first lines of the calls that `--to calls-json` keeps.
  std::vector<int> CallLines(const std::string& filters) const {
    const Finished run = Velmora("-q --to calls-json " + filters + " " + kTrace + " -");
    EXPECT_EQ(run.status, 0) << filters << ": " << run.err;
    return Numbers(run.out, R"("first_line":(\d+))");
  }
  // The trace's record numbers of the frame lines a message file keeps.
  std::vector<int> FrameRecords(const std::string& args) const {
    const Finished run = Velmora("-q " + args + " " + kTrace + " -");
    EXPECT_EQ(run.status, 0) << args << ": " << run.err;
    return Numbers(run.out, R"((?:^|\n)(\d{5}) 2026)");
  }
};

using Lines = std::vector<int>;

TEST_F(Filters, CallsByReferenceTeiMessageCauseAndFailure) {
  EXPECT_EQ(CallLines(""), (Lines{3, 4, 17}));
  EXPECT_EQ(CallLines("--call 1"), (Lines{3, 4}));
  EXPECT_EQ(CallLines("--call=5"), (Lines{17}));
  EXPECT_EQ(CallLines("--tei 65"), (Lines{4, 17}));  // the broadcast call reached TEI 65 too
  EXPECT_EQ(CallLines("--tei 64"), (Lines{3, 17}));
  EXPECT_EQ(CallLines("--message connect"), (Lines{3, 17}));
  EXPECT_EQ(CallLines("--message 0x45"), (Lines{3, 4, 17}));
  EXPECT_EQ(CallLines("--cause 17"), (Lines{4}));
  EXPECT_EQ(CallLines("--cause 17,16"), (Lines{3, 4, 17}));
  EXPECT_EQ(CallLines("--failed"), (Lines{4}));
  // Given together, all must hold.
  EXPECT_EQ(CallLines("--cause 16 --call 1"), (Lines{3}));
  EXPECT_EQ(CallLines("--cause 17 --tei 64"), (Lines{}));
}

TEST_F(Filters, FramesOfTheMessageFileJsonAndCapture) {
  // Frame by frame: the frame's own call reference, TEI and message type.
  EXPECT_EQ(FrameRecords("--tei 64 --message CONNECT,0x0f"), (Lines{7, 8}));
  EXPECT_EQ(FrameRecords("--call 5 --tei 127"), (Lines{12}));
  // The cause and the failure are the calls': the frames of those calls.
  EXPECT_EQ(FrameRecords("--failed"), (Lines{2, 4, 5, 6}));
  EXPECT_EQ(FrameRecords("--cause 16 --tei 65"), (Lines{14, 15, 16, 19, 20, 21}));
  const Finished message = Velmora("--tei 127 " + kTrace + " out.txt");
  EXPECT_EQ(
      message.err,
      "velmora: out.txt holds the selected frame lines only; every other line is left out\nTranslation is done!\n");
  EXPECT_EQ(Read("out.txt").find("----"), std::string::npos) << "no other line";
  // The JSON keeps the same frames; a capture of them, read back, too.
  const Finished json = Velmora("-q --to json --failed " + kTrace + " -");
  EXPECT_EQ(Numbers(json.out, R"("line":(\d+))"), (Lines{4, 7, 8, 9}));
  EXPECT_EQ(Velmora("-q --to pcap --tei 65 " + kTrace + " tei65.pcap").status, 0);
  EXPECT_EQ(Numbers(Velmora("-q tei65.pcap -").out, R"((?:^|\n)(\d{5}) )").size(), 10U);
  // The report keeps the failed call alone.
  EXPECT_EQ(Velmora("-q --to report --failed " + kTrace + " report.html").status, 0);
  EXPECT_NE(Read("report.html").find(R"("calls":1,)"), std::string::npos);
}

TEST_F(Filters, ValuesThatAreNoNumberOrNameAreUsageErrors) {
  const std::string tryHelp = "Try 'velmora --help'.\n";
  const struct {
    std::string args, err;
  } cases[] = {
      {"--cause x", "velmora: --cause: 'x' is not a whole number from 0 to 127\n" + tryHelp},
      {"--tei 128", "velmora: --tei: '128' is not a whole number from 0 to 127\n" + tryHelp},
      {"--call 1,,2", "velmora: --call: '' is not a whole number\n" + tryHelp},
      {"--message SETUPP",
       "velmora: --message: 'SETUPP' is no message name (as the message file prints it) nor 0xNN\n" + tryHelp},
      {"--message 0x100",
       "velmora: --message: '0x100' is no message name (as the message file prints it) nor 0xNN\n" + tryHelp},
  };
  for (const auto& c : cases) {
    const Finished run = Velmora(c.args + " " + kTrace + " out.txt");
    EXPECT_EQ(run.status, 64) << c.args;
    EXPECT_EQ(run.err, c.err) << c.args;
  }
  EXPECT_EQ(Velmora(kTrace + " out.txt --tei").err, "velmora: --tei needs a value\n" + tryHelp);
  // The frames of calls need the input twice: not from a pipe.
  const Finished piped = Velmora("--failed - - <" + kTrace);
  EXPECT_EQ(piped.status, 64);
  EXPECT_NE(piped.err.find("name a file, not standard input"), std::string::npos);
}

}  // namespace
}  // namespace velmora::testing
