// Call identity, Call state and Restart indicator.
#include <gtest/gtest.h>

#include "elements/element_decoders.h"
#include "q931/message.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::CaptureOutput;
using testing::DecodeOctets;

constexpr const char* kItuCoding = "\t\tCoding standard=00  ITU-T standardized coding\n";
constexpr const char* kActive = "\t\tCall state value=001010  U10-Active, N10-Active\n";

TEST(CallIdentity, ShowsEveryContentsOctetUnsigned) {
  const auto decoded = DecodeOctets(DecodeCallIdentity, {0x10, 0x02, 0x01, 0xA2});
  EXPECT_EQ(decoded.text, "Call identity\n\t\tCall identity= 0x1 0xa2\n");
  EXPECT_EQ(decoded.count, 4);
}

TEST(CallState, ActiveAsCarriedInStatus) {
  const std::vector<Octet> status{0x7D, 0x14, 0x01, 0x0A, 0x28, 0x02, 0x41, 0x42};
  EXPECT_EQ(CaptureOutput([&] { WalkStatus(status); }),
            std::string("\tInformation element:Call state\n") + kItuCoding + kActive +
                "\tInformation element:Display\n\t\tDisplay information(IA5)= 0x41 0x42\n");

  // Octets after octet 3 are not looked at, but counted.
  const auto longer = DecodeOctets(DecodeCallState, {0x14, 0x03, 0x0A, 0x55, 0x66});
  EXPECT_EQ(longer.text, std::string("Call state\n") + kItuCoding + kActive);
  EXPECT_EQ(longer.count, 5);
}

TEST(CallState, FieldNameFollowsTheStateItNames) {
  EXPECT_EQ(DecodeOctets(DecodeCallState, {0x14, 0x01, 0xC0}).text,
            "Call state\n"
            "\t\tCoding standard=11  Standard defined for the network (either public or private) present on "
            "the network side of the interface\n"
            "\t\tCall state value / global interface state value=000000  U0-Null, N0-Null, REST0-Null\n");
  EXPECT_EQ(DecodeOctets(DecodeCallState, {0x14, 0x01, 0x3D}).text,
            std::string("Call state\n") + kItuCoding +
                "\t\tGlobal interface state value=111101  REST1-Restart request\n");
  // 000101 names no state: the coding standard line alone.
  EXPECT_EQ(DecodeOctets(DecodeCallState, {0x14, 0x01, 0x85}).text,
            "Call state\n\t\tCoding standard=10  National standard\n");
}

TEST(RestartIndicator, ClassAsCarriedInRestart) {
  const std::vector<Octet> restart{0x46, 0x79, 0x01, 0x87};
  EXPECT_EQ(CaptureOutput([&] { WalkRestart(restart); }),
            "\tInformation element:Restart indicator\n\t\tClass=111  All interfaces\n");
  const auto reserved = DecodeOctets(DecodeRestartIndicator, {0x79, 0x01, 0x83});
  EXPECT_EQ(reserved.text, "Restart indicator\n");
  EXPECT_EQ(reserved.count, 3);
}

TEST(CallIdentityStateRestart, EmptyOrCutOffContentsLeaveTheHeadingAlone) {
  const struct {
    ElementDecoder decoder;
    Octet identifier;
    const char* heading;
  } cases[] = {{DecodeCallIdentity, 0x10, "Call identity\n"},
               {DecodeCallState, 0x14, "Call state\n"},
               {DecodeRestartIndicator, 0x79, "Restart indicator\n"}};
  for (const auto& c : cases) {
    const auto empty = DecodeOctets(c.decoder, {c.identifier, 0x00, 0x0A});
    EXPECT_EQ(empty.text, c.heading);
    EXPECT_EQ(empty.count, 2);
    // The frame ends at the length octet: the count still covers the element.
    const auto cutOff = DecodeOctets(c.decoder, {c.identifier, 0x02});
    EXPECT_EQ(cutOff.text, c.heading);
    EXPECT_EQ(cutOff.count, 4);
  }
}

}  // namespace
}  // namespace velmora
