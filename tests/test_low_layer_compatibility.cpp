// Low layer compatibility (0x7C): what differs from Bearer capability (octet 3a, user rate 10000, 6a to 7c).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"

namespace velmora {
namespace {

const std::string kOctet3 =
    "Low layer compatibility\n\t\tCoding standard=00  ITU-T standardized coding\n"
    "\t\tInformation transfer capability=01000  Unrestricted digital information\n";
// Octet 3 = 0x88, octet 4 = 0x90.
const std::string kData =
    kOctet3 + "\t\tTransfer mode=00  Circuit mode\n\t\tInformation transfer rate=10000  64 kbit/s\n";
const std::string kPacketMode =
    "\t\tTransfer mode=10  Packet-mode\n"
    "\t\tInformation transfer rate=00000  This code shall be used for packet-mode calls\n";
const std::string kOutBand = "\t\tNegotiation indicator=1  Out-band negotiation possible\n";
const std::string kTr9577 =
    "\t\tUser information layer 3 protocol=01011  ISO/IEC TR 9577[82] (Protocol identification in the network layer)\n";
const std::string kMuLaw = "\t\tUser information layer 1 protocol=00010  Recommendation G.711[10] Mu-law\n";
const std::string kX25 =
    "\t\tUser information layer 3 protocol=00110  Recommendation X.25, packet layer\n"
    "\t\tMode of operation=10  Extended packet sequence numbering\n\t\tDefault packet size=0111  128 octets\n";

TEST(LowLayerCompatibility, DecodesWhatDiffersFromBearerCapability) {
  const testing::ElementCase cases[] = {
      {{0x7C, 0x00}, "Low layer compatibility\n"},
      {{0x7C, 0x03, 0x08, 0xC0, 0xC0}, kOctet3 + kOutBand + kPacketMode},
      // No octet 3a: the second 0xC0 is a layer 2 octet whose protocol has no row.
      {{0x7C, 0x03, 0x88, 0xC0, 0xC0}, kOctet3 + kPacketMode},
      // The rate multiplier is the octet right after octet 4, behind octet 3a.
      {{0x7C, 0x04, 0x08, 0x80, 0x98, 0x86},
       kOctet3 + "\t\tNegotiation indicator=0  Out-band negotiation not possible\n\t\tTransfer mode=00  Circuit mode\n"
                 "\t\tInformation transfer rate=11000  Multirate (64 kbit/s base rate)\n\t\tRate multiplier=0x6\n"},
      // Octet 4 would be the next element's octet.
      {{0x7C, 0x02, 0x08, 0xC0, 0xC0}, kOctet3 + kOutBand},
      {{0x7C, 0x04, 0x88, 0x90, 0x21, 0x90},
       kData + "\t\tUser information layer 1 protocol=00001  ITU-T standardized rate adaption V.110[7], "
               "I.460[15] and X.30[8]\n\t\tSynchronous/Asynchronous=0  Synchronous data\n"
               "\t\tNegotiation=0  In-band negotiation not possible\n"
               "\t\tUser rate=10000  64 kbit/s Recommendation X.1\n"},
      {{0x7C, 0x04, 0x88, 0x90, 0x50, 0x85},
       kData + "\t\tUser information layer 2 protocol=10000  User specified\n"
               "\t\tUser specified layer 2 protocol information= 0x5\n"},
      {{0x7C, 0x06, 0x88, 0x90, 0x66, 0x40, 0x07, 0x82}, kData + kX25 + "\t\tPacket window size= 0x2\n"},
      // Octet 7c would be the next element's octet.
      {{0x7C, 0x05, 0x88, 0x90, 0x66, 0x40, 0x07, 0x82}, kData + kX25},
      {{0x7C, 0x04, 0x88, 0x90, 0x70, 0x85},
       kData + "\t\tUser information layer 3 protocol=10000  User specified\n"
               "\t\tUser specified layer 3 protocol information= 0x5\n"},
      {{0x7C, 0x05, 0x88, 0x90, 0x6B, 0x0C, 0x8C},
       kData + kTr9577 +
           "\t\tAdditional layer 3 protocol information:7a=1100, 7b=1100  Internet Protocol (RFC 791) "
           "(ISO/IEC TR 9577[82])\n"},
      // Bit 8 of octet 7 set: no octet 7a, 0xA2 is a layer 1 octet.
      {{0x7C, 0x04, 0x88, 0x90, 0xEB, 0xA2}, kData + kTr9577 + kMuLaw},
      // Q.921 and Q.931 announce more but have no further octets: 0x62 and 0xA2 are layer octets of their own.
      {{0x7C, 0x05, 0x88, 0x90, 0x42, 0x62, 0xA2},
       kData +
           "\t\tUser information layer 2 protocol=00010  Recommendation Q.921/I.441[3]\n"
           "\t\tUser information layer 3 protocol=00010  Recommendation Q.931\n" +
           kMuLaw},
  };
  testing::ExpectDecodes(cases);
}

}  // namespace
}  // namespace velmora
