// The direction and the moment a frame line carries before its "HDLC".
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>

#include "frame_line_facts.h"

namespace velmora {
namespace {

struct FactsCase {
  std::string line;
  FrameDirection direction;
  std::string date;  // as written; empty: none
  std::string time;
};

TEST(FrameLineFacts, DirectionDateAndTimeBeforeTheMarker) {
  const FactsCase cases[] = {
      {"00005 2026-03-14 09:15:02.306 **** D-CH TX HDLC:38  | 0x00", FrameDirection::Sent, "2026-03-14",
       "09:15:02.306"},
      {"00006 2026-03-14 09:15:02.318 **** D-CH RX HDLC:4", FrameDirection::Received, "2026-03-14", "09:15:02.318"},
      {"rx 10:00:00 **** HDLC:3", FrameDirection::Received, "", "10:00:00"},
      {"2026-12-31T23:59:60.5 Tx **** HDLC", FrameDirection::Sent, "2026-12-31", "23:59:60.5"},
      // Only whole words count, and only before the marker.
      {"TXT RXD xTX **** HDLC:3 TX 2026-03-14 10:00:00", FrameDirection::Unknown, "", ""},
      {"D-CH-RX **** HDLC:3", FrameDirection::Received, "", ""},
      // The first of each wins.
      {"TX RX 2026-01-02 2026-03-04 01:02:03 04:05:06 HDLC", FrameDirection::Sent, "2026-01-02", "01:02:03"},
      // Numbers that only look like a date or a time.
      {"2026-13-01 2026-00-10 12026-01-01 25:00:00 12:60:00 1:02:03 12:00:00:00 HDLC", FrameDirection::Unknown, "", ""},
      {"no marker at all 2026-03-14 08:00:00.1234567 RX", FrameDirection::Received, "2026-03-14", "08:00:00.1234567"},
      {"", FrameDirection::Unknown, "", ""},
      // Sixteen characters are looked at together: a word across two such
      // blocks counts, a character behind the marker in the same block not.
      {"...............TX HDLC", FrameDirection::Sent, "", ""},
      {"--------------RHDLCX 10:00:00", FrameDirection::Unknown, "", ""},
      {"-------------2026-03-14 10:00:00.25HDLC", FrameDirection::Unknown, "2026-03-14", "10:00:00.25"},
  };
  for (const FactsCase& c : cases) {
    SCOPED_TRACE(c.line);
    const FrameLineFacts facts = ReadFrameLineFacts(c.line);
    EXPECT_EQ(facts.direction, c.direction);
    EXPECT_EQ(facts.dateText, c.date);
    EXPECT_EQ(facts.timeText, c.time);
    EXPECT_EQ(facts.date.has_value(), !c.date.empty());
    EXPECT_EQ(facts.time.has_value(), !c.time.empty());
  }
}

// The moment as text joins the date and the time as written only by a
// blank or a T; anything else between them (found by the JSON fuzz
// target: a control character) becomes a blank.
TEST(FrameLineFacts, MomentTextJoinsDateAndTime) {
  const std::pair<std::string, std::string> cases[] = {
      {"2026-03-14 09:15:02.306 **** HDLC", "2026-03-14 09:15:02.306"},
      {"2026-03-14T09:15:02 **** HDLC", "2026-03-14T09:15:02"},
      {"2026-03-14\x05"
       "09:15:02 **** HDLC",
       "2026-03-14 09:15:02"},
      {"2026-03-14\t09:15:02 **** HDLC", "2026-03-14 09:15:02"},
      {"2026-03-14 TX 09:15:02 **** HDLC", "2026-03-14 09:15:02"},
      {"09:15:02 only **** HDLC", "09:15:02"},
      {"2026-03-14 only **** HDLC", "2026-03-14"},
      {"neither **** HDLC", ""},
  };
  for (const auto& [line, moment] : cases) {
    MomentText text;
    text.Assign(ReadFrameLineFacts(line));
    EXPECT_EQ(text.View(), moment) << line;
  }
}

TEST(FrameLineFacts, MomentsInMicroseconds) {
  const FrameLineFacts facts = ReadFrameLineFacts("2026-03-14 09:15:02.306 TX HDLC");
  ASSERT_TRUE(facts.date && facts.time);
  // 2026-03-14 is day 20526 after 1970-01-01.
  EXPECT_EQ(MicrosecondsSinceEpoch(*facts.date, *facts.time),
            (20526LL * 86400 + 9 * 3600 + 15 * 60 + 2) * 1000000 + 306000);
  EXPECT_EQ(MicrosecondsOfDay(ReadFrameLineFacts("00:00:01.0000019").time.value()), 1000001);
  EXPECT_EQ(MicrosecondsSinceEpoch({1970, 1, 1}, {0, 0, 0, 0}), 0);
  EXPECT_EQ(MicrosecondsSinceEpoch({2000, 3, 1}, {0, 0, 0, 0}), 951868800LL * 1000000);
  EXPECT_EQ(MicrosecondsSinceEpoch({1969, 12, 31}, {23, 59, 59, 0}), -1000000);
}

// Successive frame lines as a capture stamps them.
TEST(FrameLineFacts, TheClockOfSuccessiveFrameLines) {
  FrameClock clock;
  const auto next = [&clock](std::string_view line) { return clock.Next(ReadFrameLineFacts(line)); };
  constexpr std::int64_t kDay = 20526LL * 86400 * 1000000;             // 2026-03-14
  EXPECT_EQ(next("**** HDLC:3"), 0);                                   // the first, without a moment: 1970-01-01
  EXPECT_EQ(next("10:00:00 **** HDLC:3"), 36000000000);                // a time before any date: on 1970-01-01
  EXPECT_EQ(next("2026-03-14 **** HDLC:3"), 36000000001);              // a date alone: a microsecond on, and kept
  EXPECT_EQ(next("09:15:02.306 HDLC"), kDay + 33302306000);            // on the date kept
  EXPECT_EQ(next("2000-03-01 00:00:00 HDLC"), 951868800LL * 1000000);  // backwards, as written
  EXPECT_EQ(next("12:00:00 HDLC"), (951868800LL + 43200) * 1000000);
}

TEST(FrameLineFacts, MomentsBackToDatesAndTimes) {
  const LineMoment before = MomentOf(-1);  // 1969-12-31 23:59:59.999999
  EXPECT_TRUE(before.date.year == 1969 && before.date.day == 31 && before.time.microsecond == 999999);
  // Every 997th day from the year 0 to 9999, at an odd moment of the day.
  for (std::int64_t day = -719528; day < 2932897; day += 997) {
    const std::int64_t moment = day * 86400000000 + 45296789012;
    const LineMoment back = MomentOf(moment);
    ASSERT_EQ(MicrosecondsSinceEpoch(back.date, back.time), moment) << "day " << day;
    ASSERT_TRUE(back.date.month >= 1 && back.date.month <= 12 && back.date.day >= 1 && back.date.day <= 31);
  }
  // A line's 02-31 counts on into March; moments no calendar year holds
  // stand at the calendar's ends.
  EXPECT_EQ(MicrosecondsSinceEpoch({2026, 2, 31}, {0, 0, 0, 0}), MicrosecondsSinceEpoch({2026, 3, 3}, {0, 0, 0, 0}));
  EXPECT_EQ(MomentOf(INT64_MAX).date.year, 32767);
  EXPECT_EQ(MomentOf(INT64_MIN).date.year, -32767);
}

}  // namespace
}  // namespace velmora
