// Display, Keypad facility and Date/time.
#include <gtest/gtest.h>

#include "test_support.h"

namespace velmora {

TEST(DisplayKeypadDateTime, DecodesEachElement) {
  const testing::ElementCase cases[] = {
      // IA5 codes without bit 8, up to the element or the frame end.
      {{0x28, 0x01, 0xC1}, "Display\n\t\tDisplay information(IA5)= 0x41\n"},
      {{0x28, 0x04, 0x41}, "Display\n\t\tDisplay information(IA5)= 0x41\n"},
      {{0x2C, 0x00, 0x31}, "Keypad facility\n"},
      {{0x29, 0x03, 0x18, 0x0C, 0x1F, 0x17}, "Date/time\n\t\tYear=24\n\t\tMonth=12\n\t\tDay=31\n"},
      // Octets after octet 8 are not looked at.
      {{0x29, 0x07, 0x18, 0x01, 0x02, 0x17, 0x3B, 0x3B, 0x09},
       "Date/time\n\t\tYear=24\n\t\tMonth=1\n\t\tDay=2\n\t\tHour=23\n\t\tMinute=59\n\t\tSecond=59\n"},
      // A short element reads month and day behind it, up to the frame end.
      {{0x29, 0x01, 0x18, 0x07, 0x04}, "Date/time\n\t\tYear=24\n\t\tMonth=7\n\t\tDay=4\n"},
      {{0x29, 0x01, 0x18}, "Date/time\n\t\tYear=24\n"},
      {{0x29, 0x00, 0x18}, "Date/time\n"},
      // No range check, and no sign: an octet of 0xC8 is 200.
      {{0x29, 0x03, 0xC8, 0x0D, 0x00}, "Date/time\n\t\tYear=200\n\t\tMonth=13\n\t\tDay=0\n"},
  };
  testing::ExpectDecodes(cases);
}

}  // namespace velmora
