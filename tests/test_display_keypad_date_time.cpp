// Display, Keypad facility and Date/time.
#include <gtest/gtest.h>

#include "elements/element_decoders.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::DecodeOctets;

TEST(DisplayAndKeypad, ShowIa5CodesWithoutBit8) {
  const auto display = DecodeOctets(DecodeDisplay, {0x28, 0x03, 0x41, 0x42, 0x43});
  EXPECT_EQ(display.text, "Display\n\t\tDisplay information(IA5)= 0x41 0x42 0x43\n");
  EXPECT_EQ(display.count, 5);
  EXPECT_EQ(DecodeOctets(DecodeDisplay, {0x28, 0x01, 0xC1}).text, "Display\n\t\tDisplay information(IA5)= 0x41\n");

  const auto keypad = DecodeOctets(DecodeKeypadFacility, {0x2C, 0x02, 0x2A, 0xB1});
  EXPECT_EQ(keypad.text, "Keypad facility\n\t\tKeypad facility information(IA5)= 0x2a 0x31\n");
  EXPECT_EQ(keypad.count, 4);
}

TEST(DisplayAndKeypad, StopAtTheElementOrFrameEnd) {
  const auto cutOff = DecodeOctets(DecodeDisplay, {0x28, 0x04, 0x41});
  EXPECT_EQ(cutOff.text, "Display\n\t\tDisplay information(IA5)= 0x41\n");
  EXPECT_EQ(cutOff.count, 6);
  const auto empty = DecodeOctets(DecodeKeypadFacility, {0x2C, 0x00, 0x31});
  EXPECT_EQ(empty.text, "Keypad facility\n");
  EXPECT_EQ(empty.count, 2);
}

TEST(DateTime, OptionalTimeFieldsFollowTheLength) {
  const auto noSecond = DecodeOctets(DecodeDateTime, {0x29, 0x05, 0x02, 0x0B, 0x13, 0x0E, 0x2D});
  EXPECT_EQ(noSecond.text, "Date/time\n\t\tYear=2\n\t\tMonth=11\n\t\tDay=19\n\t\tHour=14\n\t\tMinute=45\n");
  EXPECT_EQ(noSecond.count, 7);

  EXPECT_EQ(DecodeOctets(DecodeDateTime, {0x29, 0x03, 0x18, 0x0C, 0x1F, 0x17}).text,
            "Date/time\n\t\tYear=24\n\t\tMonth=12\n\t\tDay=31\n");
  // Octets after octet 8 are not looked at.
  EXPECT_EQ(DecodeOctets(DecodeDateTime, {0x29, 0x07, 0x18, 0x01, 0x02, 0x17, 0x3B, 0x3B, 0x09}).text,
            "Date/time\n\t\tYear=24\n\t\tMonth=1\n\t\tDay=2\n\t\tHour=23\n\t\tMinute=59\n\t\tSecond=59\n");
}

TEST(DateTime, ShortElementReadsMonthAndDayBehindItUpToTheFrameEnd) {
  const auto behind = DecodeOctets(DecodeDateTime, {0x29, 0x01, 0x18, 0x07, 0x04});
  EXPECT_EQ(behind.text, "Date/time\n\t\tYear=24\n\t\tMonth=7\n\t\tDay=4\n");
  EXPECT_EQ(behind.count, 3);
  EXPECT_EQ(DecodeOctets(DecodeDateTime, {0x29, 0x01, 0x18}).text, "Date/time\n\t\tYear=24\n");
  EXPECT_EQ(DecodeOctets(DecodeDateTime, {0x29, 0x00, 0x18}).text, "Date/time\n");
  // No range check, and no sign: an octet of 0xC8 is 200.
  EXPECT_EQ(DecodeOctets(DecodeDateTime, {0x29, 0x03, 0xC8, 0x0D, 0x00}).text,
            "Date/time\n\t\tYear=200\n\t\tMonth=13\n\t\tDay=0\n");
}

}  // namespace
}  // namespace velmora
