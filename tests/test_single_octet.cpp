// The single-octet elements, alone and as the walks pick them.
#include <gtest/gtest.h>

#include "test_support.h"

namespace velmora {

TEST(SingleOctet, OnlyNamedValuesGetAFieldLine) {
  const testing::ElementCase cases[] = {
      {{0xD2, 0x04, 0x01},
       "Repeat indicator\n\t\tRepeat indication=0010  Prioritized list for selecting one possibility\n"},
      {{0xD1}, "Repeat indicator\n"},
      {{0xBF}, "Congestion level\n\t\tCongestion level=1111  Receiver not ready\n"},
      {{0xB5}, "Congestion level\n"},
      {{0xA1, 0x70, 0x01}, "Sending complete\n"},
  };
  testing::ExpectDecodes(cases);
}

TEST(SingleOctet, WalksAdvanceByOneOctet) {
  EXPECT_EQ(testing::Walked({0x05, 0xA1, 0xD2, 0xD1}),
            "\tInformation element:Sending complete\n\tInformation element:Repeat indicator\n"
            "\t\tRepeat indication=0010  Prioritized list for selecting one possibility\n"
            "\tInformation element:Repeat indicator\n");
  // Bit 8 clear still reaches the decoders that the walks match by bits 7 to 5 or 7 to 1.
  EXPECT_EQ(testing::Walked({0x79, 0x30, 0xBF}),
            "\tInformation element:Congestion level\n\t\tCongestion level=0000  Receiver ready\n"
            "\tInformation element:Congestion level\n\t\tCongestion level=1111  Receiver not ready\n");
  EXPECT_EQ(testing::Walked({0x20, 0x20, 0xA0}), "\tInformation element:More data\n\tInformation element:More data\n");
}

}  // namespace velmora
