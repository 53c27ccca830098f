// The single-octet elements, alone and as the walks pick them.
#include <gtest/gtest.h>

#include "elements/element_decoders.h"
#include "q931/message.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::CaptureOutput;
using testing::DecodeOctets;

TEST(SingleOctet, OnlyNamedValuesGetAFieldLine) {
  const auto repeat = DecodeOctets(DecodeRepeatIndicator, {0xD2, 0x04, 0x01});
  EXPECT_EQ(repeat.text, "Repeat indicator\n\t\tRepeat indication=0010  Prioritized list for selecting one possibility\n");
  EXPECT_EQ(repeat.count, 1);
  EXPECT_EQ(DecodeOctets(DecodeRepeatIndicator, {0xD1}).text, "Repeat indicator\n");

  EXPECT_EQ(DecodeOctets(DecodeCongestionLevel, {0xBF}).text,
            "Congestion level\n\t\tCongestion level=1111  Receiver not ready\n");
  EXPECT_EQ(DecodeOctets(DecodeCongestionLevel, {0xB5}).text, "Congestion level\n");

  const auto complete = DecodeOctets(DecodeSendingComplete, {0xA1, 0x70, 0x01});
  EXPECT_EQ(complete.text, "Sending complete\n");
  EXPECT_EQ(complete.count, 1);
}

TEST(SingleOctet, WalksAdvanceByOneOctet) {
  const std::vector<Octet> setup{0x05, 0xA1, 0xD2, 0xD1};
  EXPECT_EQ(CaptureOutput([&] { WalkSetup(setup); }),
            "\tInformation element:Sending complete\n"
            "\tInformation element:Repeat indicator\n"
            "\t\tRepeat indication=0010  Prioritized list for selecting one possibility\n"
            "\tInformation element:Repeat indicator\n");

  // Bit 8 clear still reaches the decoders that the walks match by bits 7 to 5 or 7 to 1.
  const std::vector<Octet> congestion{0x79, 0x30, 0xBF};
  EXPECT_EQ(CaptureOutput([&] { WalkCongestionControl(congestion); }),
            "\tInformation element:Congestion level\n"
            "\t\tCongestion level=0000  Receiver ready\n"
            "\tInformation element:Congestion level\n"
            "\t\tCongestion level=1111  Receiver not ready\n");
  const std::vector<Octet> userInformation{0x20, 0x20, 0xA0};
  EXPECT_EQ(CaptureOutput([&] { WalkUserInformation(userInformation); }),
            "\tInformation element:More data\n\tInformation element:More data\n");
}

}  // namespace
}  // namespace velmora
