// LAPD frame kinds and the SABME/DISC link memory behind the UA wording.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "lapd.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::CaptureOutput;

// Decodes a frame with the link memory `link`, which it may change.
std::string Frame(std::initializer_list<Octet> octets, LinkSetup& link) {
  const std::vector<Octet> frame(octets);
  return CaptureOutput([&](OutputWriter& out) {
    DecodeContext context{out, link};
    DecodeLapdFrame(context, frame);
    link = context.linkSetup;
  });
}
std::string Frame(std::initializer_list<Octet> octets) {
  LinkSetup link = LinkSetup::NotPending;
  return Frame(octets, link);
}
std::string Control(Octet control) { return Frame({0x00, 0x81, control, 0x00}); }

constexpr const char* kEstablished =
    "ISDN Layer 2: UA(unnumbered acknowledgement), Acknowledge to SABME, link established\n";
constexpr const char* kDisconnected =
    "ISDN Layer 2: UA(unnumbered acknowledgement), Acknowledge to DISC, link disconnected\n";

class LinkMemory : public ::testing::Test {
 protected:
  std::string Control(Octet control) { return Frame({0x00, 0x81, control, 0x00}, link_); }
  LinkSetup link_ = LinkSetup::NotPending;
};

TEST_F(LinkMemory, UaWordingFollowsTheLastSabmeOrDisc) {
  EXPECT_EQ(Control(0x73), kDisconnected);  // no SABME since start
  Control(0x7F);
  EXPECT_EQ(Control(0x73), kEstablished);
  EXPECT_EQ(Control(0x63), kEstablished);  // UA only reads the memory
  Control(0x53);
  EXPECT_EQ(Control(0x63), kDisconnected);
}

TEST_F(LinkMemory, OtherFramesLeaveTheMemoryAlone) {
  Control(0x6F);
  for (const Octet control : {0x0F, 0x87, 0xAF, 0x03, 0x01, 0x05, 0x09, 0x00, 0x2F}) Control(control);
  EXPECT_EQ(link_, LinkSetup::Pending);
  EXPECT_EQ(Control(0x73), kEstablished);
}

TEST(Lapd, PollFinalBitDoesNotChangeTheUnnumberedKind) {
  const std::pair<Octet, Octet> pairs[] = {{0x03, 0x13}, {0x0F, 0x1F}, {0x87, 0x97},
                                           {0xAF, 0xBF}, {0x6F, 0x7F}, {0x43, 0x53}};
  for (const auto& [withoutP, withP] : pairs) EXPECT_EQ(Control(withoutP), Control(withP)) << int(withoutP);
}

TEST(Lapd, SupervisoryKindsAndTheOpenLine) {
  EXPECT_EQ(Control(0x01), "ISDN Layer 2: Supervisory  RR(receive ready)\n");
  EXPECT_EQ(Control(0xF5), "ISDN Layer 2: Supervisory  RNR(receive not ready)\n");  // bits 8-5 ignored
  EXPECT_EQ(Control(0x09), "ISDN Layer 2: Supervisory  REJ(reject)\n");
  EXPECT_EQ(Control(0x0D), "ISDN Layer 2: Supervisory  ");
  EXPECT_EQ(Control(0x2F), "ISDN Layer 2: ");
  EXPECT_EQ(Control(0xFF), "ISDN Layer 2: ");
}

TEST(Lapd, UiFrameIsNeverHandedToLayerThree) {
  EXPECT_EQ(Frame({0x02, 0x81, 0x03, 0x08, 0x01, 0x81, 0x45}), "ISDN Layer 2: UI(unnumbered information)\n");
}

TEST(Lapd, InformationFrameHandsOnlyQ931ToLayerThree) {
  const std::string head =
      "ISDN Layer 2: Information transfer\nISDN Layer 3: Q.931 protocol message\nMessage type:DISCONNECT\n";
  EXPECT_EQ(Frame({0x00, 0x01, 0x00, 0x02, 0x08, 0x01, 0x81, 0x45, 0x08, 0x02, 0x80, 0x90}).substr(0, head.size()),
            head);
  EXPECT_EQ(Frame({0x00, 0x01, 0x00, 0x02, 0x09, 0x01, 0x81, 0x45}),
            "ISDN Layer 2: Information transfer\nISDN Layer 3: Unknown protocol message\n");
}

TEST(Lapd, FramesTooShortForTheirFieldsSayTruncated) {
  EXPECT_EQ(Frame({}), "ISDN Layer 2: Truncated frame\n");
  EXPECT_EQ(Frame({0x00, 0x81}), "ISDN Layer 2: Truncated frame\n");
  EXPECT_EQ(Frame({0x00, 0x81, 0x00, 0x00}), "ISDN Layer 2: Information transfer\nISDN Layer 3: Truncated frame\n");
  // A supervisory frame needs only its first control octet.
  EXPECT_EQ(Frame({0x00, 0x81, 0x01}), "ISDN Layer 2: Supervisory  RR(receive ready)\n");
}

}  // namespace
}  // namespace velmora
