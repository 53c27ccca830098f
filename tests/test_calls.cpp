// The call summary: hand-written traces of whole calls against their
// expected JSON Lines (and, where written, table and CSV), and the tracker's
// bounds on what it holds.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "call_tracker.h"
#include "calls_output.h"
#include "test_support.h"
#include "trace_files.h"
#include "translation.h"

namespace velmora::testing {
namespace {

namespace fs = std::filesystem;

const fs::path kCallsData = fs::path(VELMORA_TEST_DATA) / "calls";

class CallTraces : public ::testing::TestWithParam<std::string> {};

// Each form whose expected file exists: .jsonl for every trace, .txt and
// .csv for some.
TEST_P(CallTraces, SummaryMatchesTheHandWrittenExpectation) {
  const struct {
    CallsForm form;
    std::string extension;
  } forms[] = {{CallsForm::JsonLines, ".expected.jsonl"},
               {CallsForm::Table, ".expected.txt"},
               {CallsForm::Csv, ".expected.csv"}};
  const fs::path output = fs::temp_directory_path() / ("velmora_calls_" + GetParam() + ".out");
  int compared = 0;
  for (const auto& each : forms) {
    const fs::path expected = kCallsData / (GetParam() + each.extension);
    if (!fs::exists(expected)) continue;
    SCOPED_TRACE(expected.filename().string());
    TranslationOptions options;
    options.makeConsumer = [form = each.form](OutputWriter& out, LinkMemory&) { return MakeCallsConsumer(out, form); };
    LinkMemory link;
    EXPECT_EQ(TranslateTraceFile((kCallsData / (GetParam() + ".trace.txt")).string(), output.string(), link, options),
              TranslationOutcome::TranslationDone);
    EXPECT_EQ(ReadAll(output), ReadAll(expected));
    ++compared;
  }
  EXPECT_GT(compared, 0);
  fs::remove(output);
}

INSTANTIATE_TEST_SUITE_P(Traces, CallTraces, ::testing::ValuesIn(NamesEndingIn(kCallsData, ".trace.txt")),
                         [](const auto& info) { return info.param; });

// The command reads standard input as for the message file, and a trace
// without frame lines still gets the table's heading and totals.
TEST(CallsCommand, StandardInputAndATraceWithoutFrames) {
  const fs::path out = fs::temp_directory_path() / "velmora_calls_cli.out";
  const auto run = [&](const std::string& args) {
    const int raw = std::system((std::string(VELMORA_CLI_PATH) + " -q " + args + " >" + out.string()).c_str());
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  };
  EXPECT_EQ(run("--to calls-json - - <" + (kCallsData / "mid_call.trace.txt").string()), 0);
  EXPECT_EQ(ReadAll(out), ReadAll(kCallsData / "mid_call.expected.jsonl"));
  EXPECT_EQ(run("--to calls - - </dev/null 2>/dev/null"), 1);
  const std::string text = ReadAll(out);
  EXPECT_TRUE(text.starts_with("   line  tei  direction")) << text;
  EXPECT_NE(text.find("\ncalls: 0\nanswered: 0\n"), std::string::npos) << text;
  fs::remove(out);
}

// Frames fed to a tracker by hand: one-octet call references, no line text.
class Tracker : public ::testing::Test {
 protected:
  explicit Tracker(std::size_t waitingLimit = 2)
      : tracker_([this](const CallRecord& call) { delivered_.push_back(call); }, waitingLimit) {}

  void Feed(std::vector<Octet> layer3, std::string_view lineText = "") {
    std::vector<Octet> frame{0x00, 0x81, 0x00, 0x00};
    frame.insert(frame.end(), layer3.begin(), layer3.end());
    tracker_.Frame(frame, ++line_, lineText);
  }
  // A message of the call with reference `value`, sent by its caller.
  void Send(Octet value, Octet messageType) { Feed({0x08, 0x01, value, messageType}); }
  void ShortCall(Octet value) {
    Send(value, 0x05);
    Send(value, 0x5A);
  }
  std::vector<std::uint64_t> DeliveredReferences() const {
    std::vector<std::uint64_t> references;
    for (const CallRecord& call : delivered_) references.push_back(call.callReference);
    return references;
  }

  std::vector<CallRecord> delivered_;
  CallTracker tracker_;
  std::uint64_t line_ = 0;
};

TEST_F(Tracker, CompleteCallsWaitBehindAnOpenOneOnlyUpToTheLimit) {
  Send(1, 0x05);  // stays open
  ShortCall(2);
  ShortCall(3);
  EXPECT_TRUE(delivered_.empty());
  // A third waiting call is one too many: the three go out ahead of call 1.
  ShortCall(4);
  EXPECT_EQ(DeliveredReferences(), (std::vector<std::uint64_t>{2, 3, 4}));
  EXPECT_EQ(tracker_.HeldCalls(), 1U);

  // Once a RELEASE has cleared call 1, it is the one taken as complete.
  Send(1, 0x45);
  Send(1, 0x4D);
  ShortCall(5);
  ShortCall(6);
  ShortCall(7);
  EXPECT_EQ(DeliveredReferences(), (std::vector<std::uint64_t>{2, 3, 4, 1, 5, 6, 7}));
  EXPECT_EQ(delivered_[3].messages.size(), 3U);
  EXPECT_EQ(delivered_[3].lastLine, 9U);
  EXPECT_EQ(tracker_.HeldCalls(), 0U);
}

TEST_F(Tracker, FramesThatAreNoCallsMessages) {
  tracker_.Frame(std::vector<Octet>{0x02, 0x81, 0x01, 0x02}, 1, "");                          // RR
  tracker_.Frame(std::vector<Octet>{0xFE, 0xFF, 0x03, 0x0F, 0x2C, 0x51, 0x01, 0xFF}, 2, "");  // TEI management
  Feed({0x09, 0x01, 0x01, 0x05});                                                             // not Q.931
  Feed({0x08, 0x02, 0x00});                                                                   // cut short
  Feed({0x08, 0x00, 0x7B});                                                                   // dummy
  Feed({0x08, 0x02, 0x80, 0x00, 0x4E});                                                       // global
  Feed({0x08, 0x09, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x05});             // nine octets
  tracker_.Finish();
  EXPECT_TRUE(delivered_.empty());
  EXPECT_EQ(tracker_.MessagesOutsideCalls(), 3U);
}

// A SETUP broadcast to TEI 127 that no terminal answers: the terminals'
// refusals belong to it and give its cause, but none of them ends it, since
// another terminal may still answer; a non-selected user's clearing (26)
// gives no cause.
TEST_F(Tracker, BroadcastSetupThatNoTerminalAnswers) {
  tracker_.Frame(std::vector<Octet>{0x02, 0xFF, 0x03, 0x08, 0x01, 0x03, 0x05}, 1, "");        // UI, TEI 127
  tracker_.Frame(std::vector<Octet>{0x00, 0x81, 0x00, 0x00, 0x08, 0x01, 0x83, 0x01}, 2, "");  // TEI 64 ALERTING
  tracker_.Frame(std::vector<Octet>{0x02, 0x81, 0x00, 0x02, 0x08, 0x01, 0x03, 0x4D, 0x08, 0x02, 0x80, 0x9A}, 3, "");
  tracker_.Frame(std::vector<Octet>{0x00, 0x81, 0x02, 0x02, 0x08, 0x01, 0x83, 0x5A}, 4, "");
  tracker_.Frame(std::vector<Octet>{0x00, 0x83, 0x00, 0x00, 0x08, 0x01, 0x83, 0x5A, 0x08, 0x02, 0x80, 0x91}, 5, "");
  EXPECT_TRUE(delivered_.empty());
  EXPECT_EQ(tracker_.OpenCalls(), 3U);  // one call, under TEI 127, 64 and 65
  tracker_.Finish();
  ASSERT_EQ(delivered_.size(), 1U);
  const CallRecord& call = delivered_[0];
  EXPECT_TRUE(call.broadcast);
  EXPECT_EQ(call.tei, std::nullopt);
  EXPECT_EQ(call.messages.size(), 5U);
  EXPECT_EQ(call.causeValue, 17U);
  EXPECT_EQ(call.clearing->line, 5U);
  EXPECT_EQ(call.ClearedByNetwork(), false);
  EXPECT_EQ(call.ClearedBy(), CallSide::Callee);
}

TEST_F(Tracker, AVeryLongCallListsItsFirstMessagesAndCountsTheRest) {
  Send(1, 0x05);
  for (std::size_t i = 1; i < CallRecord::kListedMessages + 5; ++i) Send(1, 0x75);
  Send(1, 0x5A);
  ASSERT_EQ(delivered_.size(), 1U);
  EXPECT_EQ(delivered_[0].messages.size(), CallRecord::kListedMessages);
  EXPECT_EQ(delivered_[0].unlistedMessages, 6U);
  EXPECT_EQ(delivered_[0].last.messageType, 0x5A);
  EXPECT_EQ(delivered_[0].lastLine, line_);
}

// The direction from the first line with TX or RX and the flag of its
// message; the moments as written; durations only forward in time.
TEST_F(Tracker, DirectionsMomentsAndDurations) {
  Feed({0x08, 0x01, 0x81, 0x01}, "2026-03-14T10:00:00.5 TX");  // the callee's ALERTING sent here
  Feed({0x08, 0x01, 0x81, 0x5A}, "RX");
  Feed({0x08, 0x01, 0x02, 0x07}, "no direction, date or time 2026-03-14");
  Feed({0x08, 0x01, 0x02, 0x5A}, "TX 09:00:00.1234567890123456789012345");
  // Dated moments back in time; a time of day and a dated one; clearing before CONNECT.
  Feed({0x08, 0x01, 0x03, 0x07}, "2026-03-14 10:00:00");
  Feed({0x08, 0x01, 0x03, 0x45}, "2026-03-13 10:00:01");
  Feed({0x08, 0x01, 0x03, 0x5A});
  Feed({0x08, 0x01, 0x04, 0x07}, "10:00:00");
  Feed({0x08, 0x01, 0x04, 0x45}, "2026-03-13 10:00:02.25");
  Feed({0x08, 0x01, 0x04, 0x5A});
  Feed({0x08, 0x01, 0x05, 0x45}, "10:00:00");
  Feed({0x08, 0x01, 0x05, 0x07}, "10:00:01");
  tracker_.Finish();
  ASSERT_EQ(delivered_.size(), 5U);
  EXPECT_EQ(delivered_[0].direction, CallDirection::Incoming);
  EXPECT_EQ(delivered_[0].messages[0].time.View(), "2026-03-14T10:00:00.5");
  EXPECT_EQ(delivered_[0].last.time.View(), "");
  EXPECT_EQ(delivered_[1].direction, CallDirection::Outgoing);
  EXPECT_EQ(delivered_[1].messages[0].time.View(), "2026-03-14");
  EXPECT_EQ(delivered_[1].last.time.View(), "09:00:00.1234567890123456789012");
  EXPECT_EQ(delivered_[2].DurationMicroseconds(), std::nullopt);
  EXPECT_EQ(delivered_[3].DurationMicroseconds(), 2250000);
  EXPECT_EQ(delivered_[4].DurationMicroseconds(), std::nullopt);
}

// Digits are characters in every form; JSON escapes quotes, backslashes
// and control characters, CSV quotes a cell with a comma or a quote.
TEST(CallsOutput, DigitsWithQuotesCommasAndControlCharacters) {
  // SETUP with Calling party number a"b,c\ and 0x01 (bit 8 of a digit is spare).
  const std::vector<Octet> frame{0x00, 0x81, 0x00, 0x00, 0x08, 0x01, 0x01, 0x05, 0x6C,
                                 0x08, 0x81, 0x61, 0x22, 0x62, 0x2C, 0x63, 0x5C, 0x81};
  const auto summary = [&](CallsForm form) {
    return CaptureOutput([&](OutputWriter& out) {
      const auto consumer = MakeCallsConsumer(out, form);
      consumer->Consume({"line", 7, true, frame});
      consumer->Finish();
    });
  };
  EXPECT_NE(summary(CallsForm::JsonLines).find(R"("calling":"a\"b,c\\\u0001")"), std::string::npos);
  EXPECT_NE(summary(CallsForm::Csv).find(R"(7,64,,"a""b,c\\u0001",,)"), std::string::npos);
  EXPECT_NE(summary(CallsForm::Table).find(R"(a"b,c\\u0001 )"), std::string::npos);
}

}  // namespace
}  // namespace velmora::testing
