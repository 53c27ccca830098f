// Bearer capability (0x04): octet groups, rate-adaption rules, layer octets, the element's and frame's end.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"

namespace velmora {
namespace {

const std::string kHeading = "Bearer capability\n";
const std::string kCoding = "\t\tCoding standard=00  ITU-T standardized coding\n";
const std::string kSpeechCap = "\t\tInformation transfer capability=00000  Speech\n";
const std::string kDataCap = "\t\tInformation transfer capability=01000  Unrestricted digital information\n";
const std::string kCircuit = "\t\tTransfer mode=00  Circuit mode\n";
const std::string kOctet4 = kCircuit + "\t\tInformation transfer rate=10000  64 kbit/s\n";
// Octet 3 = 0x80 (speech) or 0x88 (unrestricted digital), octet 4 = 0x90.
const std::string kSpeech = kHeading + kCoding + kSpeechCap + kOctet4;
const std::string kData = kHeading + kCoding + kDataCap + kOctet4;
const std::string kMultirate =
    kHeading + kCoding + kDataCap + kCircuit + "\t\tInformation transfer rate=11000  Multirate (64 kbit/s base rate)\n";
const std::string kV110 =
    "\t\tUser information layer 1 protocol=00001  ITU-T standardized rate adaption V.110[7], I.460[15] and X.30[8]\n";
const std::string kMuLaw = "\t\tUser information layer 1 protocol=00010  Recommendation G.711[10] Mu-law\n";
const std::string kNoInBand = "\t\tNegotiation=0  In-band negotiation not possible\n";
// Octets 5a 0x48 (asynchronous, no in-band negotiation, 9.6 kbit/s) and 5b 0xD4 in its V.110 form.
const std::string k5a48 = "\t\tSynchronous/Asynchronous=1  Asynchronous data\n" + kNoInBand +
                          "\t\tUser rate=01000  9.6 kbit/s Recommendation X.1\n";
const std::string k5bD4 =
    "\t\tIntermediate rate=10  16 kbit/s\n"
    "\t\tNetwork Independent Clock (NIC) on transmission (Tx)=1  Required to send data with network independent clock\n"
    "\t\tNetwork Independent Clock (NIC) on reception (Rx)=0  Cannot accept data with network independent clock\n"
    "\t\tFlow control on transmission (Tx)=1  Required to send data with flow control mechanism\n"
    "\t\tFlow control on reception (Rx)=0  Cannot accept data with flow control mechanism\n";
// 3.1 kHz audio / G.711: no octet 5b, so 0x3B is octet 5c; octet 5d follows.
const std::string kModem = kHeading + kCoding + "\t\tInformation transfer capability=10000  3.1 kHz audio\n" + kOctet4 +
                           kMuLaw + k5a48 + "\t\tNumber of stop bits=01  1 bit\n" +
                           "\t\tNumber of data bits excluding parity Bit if present=11  8 bits\n" +
                           "\t\tParity information=011  None\n";
const std::string kHalf = kModem + "\t\tMode duplex=0  Half duplex\n";
const std::string kFull = kModem + "\t\tMode duplex=1  Full duplex\n";
std::vector<Octet> Modem(Octet octet5d) { return {0x04, 0x06, 0x90, 0x90, 0x22, 0x48, 0x3B, octet5d}; }
// kData, then layer 3 protocol 01011.
const std::string kTr9577 =
    kData +
    "\t\tUser information layer 3 protocol=01011  ISO/IEC TR 9577[82] (Protocol identification in the network layer)\n";
const std::string k7a7b = "\t\tAdditional layer 3 protocol information:7a=1100, 7b=";
const std::string kIp = kTr9577 + k7a7b + "1100  Internet Protocol (RFC 791) (ISO/IEC TR 9577[82])\n";

TEST(BearerCapability, DecodesEachOctetGroupUpToTheElementsAndTheFramesEnd) {
  const testing::ElementCase cases[] = {
      {{0x04, 0x00}, kHeading},

      // Capability 00010, transfer mode 01 and rate 10010 have no rows.
      {{0x04, 0x02, 0x82, 0xB2}, kHeading + kCoding},
      {{0x04, 0x03, 0x88, 0x98, 0x86}, kMultirate + "\t\tRate multiplier=0x6\n"},
      {{0x04, 0x05, 0x88, 0x90, 0x28, 0x48, 0xBA},
       kData + "\t\tUser information layer 1 protocol=01000  ITU-T standardized rate adaption V.120[9]\n" + k5a48 +
           "\t\tRate adaption header/no header=0  Rate adaption header not included\n"
           "\t\tMultiple frame establishment support in data link=1  Multiple frame establishment supported\n"
           "\t\tMode of operation=1  Protocol sensitive mode of operation\n"
           "\t\tLogical link identifier negotiation=1  Full protocol negotiation\n"
           "\t\tAssignor/assignee=0  Message originator is Default assignee\n"
           "\t\tIn-band/out-band negotiation=1  Negotiation is done in-band using logical link zero\n"},
      // User rate 10000 has no row here (Low layer compatibility names it).
      {{0x04, 0x04, 0x88, 0x90, 0x21, 0x90},
       kData + kV110 + "\t\tSynchronous/Asynchronous=0  Synchronous data\n" + kNoInBand},

      // Modem types named by range print in decimal; 0x06 has no row.
      {Modem(0x05), kHalf + "\t\tModem type=5  National use\n"},
      {Modem(0x06), kHalf},

      {Modem(0x2F), kHalf + "\t\tModem type=47  National use\n"},
      {Modem(0x70), kFull + "\t\tModem type=48  User specified\n"},

      // Speech fails the rate-adaption condition: 0xA3 is a second layer 1 octet.
      {{0x04, 0x04, 0x80, 0x90, 0x22, 0xA3},
       kSpeech + kMuLaw + "\t\tUser information layer 1 protocol=00011  Recommendation G.711 A-law\n"},
      // Octet 5b hangs on the layer 1 protocol alone, not on the condition.
      {{0x04, 0x04, 0x80, 0x90, 0x21, 0xD4}, kSpeech + kV110 + k5bD4},
      // 0x05 names no layer and is stepped over; bit 8 of octet 6 (0x4B, no row
      // here) announces nothing, so 0xC6 is a layer 2 octet of its own.
      {{0x04, 0x06, 0x80, 0x90, 0x05, 0x4B, 0xC6, 0xE2},
       kSpeech + "\t\tUser information layer 2 protocol=00110  Recommendation X.25[5], link layer\n"
                 "\t\tUser information layer 3 protocol=00010  Recommendation Q.931\n"},
      {{0x04, 0x05, 0x88, 0x90, 0x6B, 0x0C, 0x8C}, kIp},

      {{0x04, 0x05, 0x88, 0x90, 0x6B, 0x0C, 0x81}, kTr9577},
      // Octets 7a and 7b follow whatever bit 8 of octet 7 says.
      {{0x04, 0x05, 0x88, 0x90, 0xEB, 0x0C, 0x8C}, kIp},
      // The element's end: octet 4, the rate multiplier, octet 5a announced by
      // the last octet's bit 8, and octet 7b (7a, 0x22, is not walked either).
      {{0x04, 0x01, 0x80, 0x90}, kHeading + kCoding + kSpeechCap},
      {{0x04, 0x02, 0x88, 0x98, 0x86}, kMultirate},
      {{0x04, 0x03, 0x88, 0x90, 0x21, 0x48}, kData + kV110},
      {{0x04, 0x04, 0x88, 0x90, 0x6B, 0x22, 0x8C}, kTr9577},
      // The frame's end: what it holds is decoded, the count covers the element.
      {{0x04, 0x05, 0x88, 0x90, 0x21, 0x48}, kData + kV110 + k5a48},
      {{0x04, 0xFF}, kHeading},
  };
  testing::ExpectDecodes(cases);
}

}  // namespace
}  // namespace velmora
