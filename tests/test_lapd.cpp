// LAPD: what the link-layer golden trace does not show. The frame kinds, the
// UA wording after SABME and DISC and the truncated frames are in it.
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
std::string Control(Octet control, LinkSetup& link) { return Frame({0x00, 0x81, control, 0x00}, link); }
std::string Control(Octet control) {
  LinkSetup link = LinkSetup::NotPending;
  return Control(control, link);
}

TEST(Lapd, OnlySabmeAndDiscChangeTheLinkMemory) {
  LinkSetup link = LinkSetup::NotPending;
  Control(0x6F, link);
  for (const Octet control : {0x0F, 0x87, 0xAF, 0x03, 0x01, 0x05, 0x09, 0x00, 0x2F, 0x73}) Control(control, link);
  EXPECT_EQ(Control(0x63, link),
            "ISDN Layer 2: UA(unnumbered acknowledgement), Acknowledge to SABME, link established\n");
  Control(0x53, link);
  EXPECT_EQ(link, LinkSetup::NotPending);
}

TEST(Lapd, PollFinalBitDoesNotChangeTheUnnumberedKind) {
  const std::pair<Octet, Octet> pairs[] = {{0x03, 0x13}, {0x0F, 0x1F}, {0x87, 0x97},
                                           {0xAF, 0xBF}, {0x6F, 0x7F}, {0x43, 0x53}};
  for (const auto& [withoutP, withP] : pairs) EXPECT_EQ(Control(withoutP), Control(withP)) << int(withoutP);
}

TEST(Lapd, SupervisoryFramesNeedOnlyBitsFourToOneOfTheirFirstControlOctet) {
  EXPECT_EQ(Control(0xF5), "ISDN Layer 2: Supervisory  RNR(receive not ready)\n");
  LinkSetup link = LinkSetup::NotPending;
  EXPECT_EQ(Frame({0x00, 0x81, 0x01}, link), "ISDN Layer 2: Supervisory  RR(receive ready)\n");
}

}  // namespace
}  // namespace velmora
