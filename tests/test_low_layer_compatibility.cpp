// Low layer compatibility (0x7C): what differs from Bearer capability
// (octet 3a, transfer mode wording, user rate 10000, octets 6a/6b, 7a to 7c).
#include <gtest/gtest.h>

#include <string>

#include "elements/element_decoders.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::DecodeOctets;

// Octet 3 = 0x88, octet 4 = 0x90.
const std::string kUnrestricted64k =
    "Low layer compatibility\n"
    "\t\tCoding standard=00  ITU-T standardized coding\n"
    "\t\tInformation transfer capability=01000  Unrestricted digital information\n"
    "\t\tTransfer mode=00  Circuit mode\n"
    "\t\tInformation transfer rate=10000  64 kbit/s\n";
const std::string kTr9577 =
    "\t\tUser information layer 3 protocol=01011  ISO/IEC TR 9577[82] (Protocol identification in the network "
    "layer)\n";
const std::string kMuLaw = "\t\tUser information layer 1 protocol=00010  Recommendation G.711[10] Mu-law\n";

TEST(LowLayerCompatibility, EmptyElementPrintsOnlyTheHeading) {
  const auto decoded = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x00});
  EXPECT_EQ(decoded.text, "Low layer compatibility\n");
  EXPECT_EQ(decoded.count, 2);
}

TEST(LowLayerCompatibility, Octet3aFollowsWhenBit8OfOctet3IsZero) {
  const std::string octet3 =
      "Low layer compatibility\n"
      "\t\tCoding standard=00  ITU-T standardized coding\n"
      "\t\tInformation transfer capability=01000  Unrestricted digital information\n";
  const std::string packetMode =
      "\t\tTransfer mode=10  Packet-mode\n"
      "\t\tInformation transfer rate=00000  This code shall be used for packet-mode calls\n";

  const auto with3a = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x03, 0x08, 0xC0, 0xC0});
  EXPECT_EQ(with3a.text, octet3 + "\t\tNegotiation indicator=1  Out-band negotiation possible\n" + packetMode);
  EXPECT_EQ(with3a.count, 5);

  // No octet 3a: the second 0xC0 is a layer 2 octet whose protocol has no row.
  const auto without3a = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x03, 0x88, 0xC0, 0xC0});
  EXPECT_EQ(without3a.text, octet3 + packetMode);
  EXPECT_EQ(without3a.count, 5);

  // The rate multiplier is the octet right after octet 4, behind octet 3a.
  const auto multirate = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x04, 0x08, 0x80, 0x98, 0x86});
  EXPECT_EQ(multirate.text, octet3 +
                                "\t\tNegotiation indicator=0  Out-band negotiation not possible\n"
                                "\t\tTransfer mode=00  Circuit mode\n"
                                "\t\tInformation transfer rate=11000  Multirate (64 kbit/s base rate)\n"
                                "\t\tRate multiplier=0x6\n");
  EXPECT_EQ(multirate.count, 6);

  // Octet 4 would be the next element's octet.
  const auto cut = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x02, 0x08, 0xC0, 0xC0});
  EXPECT_EQ(cut.text, octet3 + "\t\tNegotiation indicator=1  Out-band negotiation possible\n");
  EXPECT_EQ(cut.count, 4);
}

TEST(LowLayerCompatibility, UserRate10000HasARowHere) {
  const auto decoded = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x04, 0x88, 0x90, 0x21, 0x90});
  EXPECT_EQ(decoded.text,
            kUnrestricted64k +
                "\t\tUser information layer 1 protocol=00001  ITU-T standardized rate adaption V.110[7], "
                "I.460[15] and X.30[8]\n"
                "\t\tSynchronous/Asynchronous=0  Synchronous data\n"
                "\t\tNegotiation=0  In-band negotiation not possible\n"
                "\t\tUser rate=10000  64 kbit/s Recommendation X.1\n");
  EXPECT_EQ(decoded.count, 6);
}

TEST(LowLayerCompatibility, Layer2Octets6aAnd6b) {
  const auto hdlc = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x05, 0x88, 0x90, 0x4B, 0x20, 0x87});
  EXPECT_EQ(hdlc.text, kUnrestricted64k +
                           "\t\tUser information layer 2 protocol=01011  HDLC ABM (ISO/IEC 4335)\n"
                           "\t\tMode of operation=01  Normal mode of operation\n"
                           "\t\tQ.933 use=00  For use when the coding defined in Recommendation Q.933 is not used\n"
                           "\t\tWindow size (k)= 0x7\n");
  EXPECT_EQ(hdlc.count, 7);

  const auto user = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x04, 0x88, 0x90, 0x50, 0x85});
  EXPECT_EQ(user.text, kUnrestricted64k +
                           "\t\tUser information layer 2 protocol=10000  User specified\n"
                           "\t\tUser specified layer 2 protocol information= 0x5\n");
  EXPECT_EQ(user.count, 6);
}

TEST(LowLayerCompatibility, Layer3Octets7aTo7c) {
  const auto x25 = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x06, 0x88, 0x90, 0x66, 0x40, 0x07, 0x82});
  const std::string x25Lines =
      "\t\tUser information layer 3 protocol=00110  Recommendation X.25, packet layer\n"
      "\t\tMode of operation=10  Extended packet sequence numbering\n"
      "\t\tDefault packet size=0111  128 octets\n";
  EXPECT_EQ(x25.text, kUnrestricted64k + x25Lines + "\t\tPacket window size= 0x2\n");
  EXPECT_EQ(x25.count, 8);

  // Octet 7c would be the next element's octet.
  const auto cut = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x05, 0x88, 0x90, 0x66, 0x40, 0x07, 0x82});
  EXPECT_EQ(cut.text, kUnrestricted64k + x25Lines);
  EXPECT_EQ(cut.count, 7);

  const auto user = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x04, 0x88, 0x90, 0x70, 0x85});
  EXPECT_EQ(user.text, kUnrestricted64k +
                           "\t\tUser information layer 3 protocol=10000  User specified\n"
                           "\t\tUser specified layer 3 protocol information= 0x5\n");
  EXPECT_EQ(user.count, 6);
}

TEST(LowLayerCompatibility, Tr9577OctetsOnlyWhenBit8AnnouncesThem) {
  const auto ip = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x05, 0x88, 0x90, 0x6B, 0x0C, 0x8C});
  EXPECT_EQ(ip.text, kUnrestricted64k + kTr9577 +
                         "\t\tAdditional layer 3 protocol information:7a=1100, 7b=1100  Internet Protocol (RFC 791) "
                         "(ISO/IEC TR 9577[82])\n");
  EXPECT_EQ(ip.count, 7);

  const auto bit8Set = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x04, 0x88, 0x90, 0xEB, 0xA2});
  EXPECT_EQ(bit8Set.text, kUnrestricted64k + kTr9577 + kMuLaw);
  EXPECT_EQ(bit8Set.count, 6);
}

TEST(LowLayerCompatibility, OctetNoGroupTakesIsWalkedAsALayerOctet) {
  // Q.921 and Q.931 announce more but have no further octets: 0x62 and 0xA2
  // stand as layer octets of their own.
  const auto decoded = DecodeOctets(DecodeLowLayerCompatibility, {0x7C, 0x05, 0x88, 0x90, 0x42, 0x62, 0xA2});
  EXPECT_EQ(decoded.text, kUnrestricted64k +
                              "\t\tUser information layer 2 protocol=00010  Recommendation Q.921/I.441[3]\n"
                              "\t\tUser information layer 3 protocol=00010  Recommendation Q.931\n" +
                              kMuLaw);
  EXPECT_EQ(decoded.count, 7);
}

}  // namespace
}  // namespace velmora
