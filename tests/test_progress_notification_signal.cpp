// Progress indicator, Notification indicator and Signal, alone and in an ALERTING message.
#include <gtest/gtest.h>

#include "test_support.h"

namespace velmora {

const std::string kProgress = "Progress indicator\n\t\tCoding standard=00  ITU-T standardized coding\n";

TEST(ProgressNotificationSignal, DecodesEachElement) {
  const testing::ElementCase cases[] = {
      // Location 0111 has no row.
      {{0x1E, 0x02, 0x87, 0x82}, kProgress + "\t\tProgress description=0000010  Destination address is non-ISDN\n"},
      // L = 1: the octet behind the element is not its progress description.
      {{0x1E, 0x01, 0x8A, 0x88}, kProgress + "\t\tLocation=1010  Network beyond the interworking point\n"},
      {{0x1E, 0x02, 0x80}, kProgress + "\t\tLocation=0000  User\n"},
      {{0x27, 0x01, 0x83}, "Notification indicator\n"},
      // The signal value is the whole octet: 0xBF is not Tones off.
      {{0x34, 0x01, 0x3F}, "Signal\n\t\tSignal value=00111111  Tones off\n"},
      {{0x34, 0x01, 0xBF}, "Signal\n"},
      // L = 0 leaves the heading alone.
      {{0x1E, 0x00, 0x01}, "Progress indicator\n"},
      {{0x27, 0x00, 0x01}, "Notification indicator\n"},
      {{0x34, 0x00, 0x01}, "Signal\n"},
  };
  testing::ExpectDecodes(cases);
}

}  // namespace velmora
