// The single-octet elements, alone and as the walks pick them.
#include <gtest/gtest.h>

#include "elements/element_decoders.h"
#include "q931/message.h"
#include "test_support.h"

namespace velmora {

struct Case {
  ElementDecoder decoder;
  std::vector<Octet> octets;
  std::string text;
};

TEST(SingleOctet, OnlyNamedValuesGetAFieldLineAndTheCountIsOne) {
  const Case cases[] = {
      {DecodeRepeatIndicator,
       {0xD2, 0x04, 0x01},
       "Repeat indicator\n\t\tRepeat indication=0010  Prioritized list for selecting one possibility\n"},
      {DecodeRepeatIndicator, {0xD1}, "Repeat indicator\n"},
      {DecodeCongestionLevel, {0xBF}, "Congestion level\n\t\tCongestion level=1111  Receiver not ready\n"},
      {DecodeCongestionLevel, {0xB5}, "Congestion level\n"},
      {DecodeSendingComplete, {0xA1, 0x70, 0x01}, "Sending complete\n"},
  };
  for (const Case& c : cases) {
    const auto decoded = testing::DecodeOctets(c.decoder, c.octets);
    EXPECT_EQ(decoded.text, c.text);
    EXPECT_EQ(decoded.count, 1) << c.text;
  }
}

TEST(SingleOctet, WalksAdvanceByOneOctet) {
  const std::vector<Octet> setup{0x05, 0xA1, 0xD2, 0xD1};
  EXPECT_EQ(testing::CaptureOutput([&](OutputWriter& out) { WalkSetup(out, setup); }),
            "\tInformation element:Sending complete\n\tInformation element:Repeat indicator\n"
            "\t\tRepeat indication=0010  Prioritized list for selecting one possibility\n"
            "\tInformation element:Repeat indicator\n");
  // Bit 8 clear still reaches the decoders that the walks match by bits 7 to 5 or 7 to 1.
  const std::vector<Octet> congestion{0x79, 0x30, 0xBF};
  EXPECT_EQ(testing::CaptureOutput([&](OutputWriter& out) { WalkCongestionControl(out, congestion); }),
            "\tInformation element:Congestion level\n\t\tCongestion level=0000  Receiver ready\n"
            "\tInformation element:Congestion level\n\t\tCongestion level=1111  Receiver not ready\n");
  const std::vector<Octet> userInformation{0x20, 0x20, 0xA0};
  EXPECT_EQ(testing::CaptureOutput([&](OutputWriter& out) { WalkUserInformation(out, userInformation); }),
            "\tInformation element:More data\n\tInformation element:More data\n");
}

}  // namespace velmora
