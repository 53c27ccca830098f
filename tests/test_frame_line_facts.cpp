// The direction and the moment a frame line carries before its "HDLC".
#include <gtest/gtest.h>

#include <string>

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

}  // namespace
}  // namespace velmora
