// Bearer capability (0x04): octets 3 and 4, the layer 1 group with its
// rate-adaption rules, layer octets, and the element's end.
#include <gtest/gtest.h>

#include <string>

#include "elements/element_decoders.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::DecodeOctets;

// Octet 3 = 0x80 (speech) or 0x88 (unrestricted digital), octet 4 = 0x90.
const std::string kSpeech64k =
    "Bearer capability\n"
    "\t\tCoding standard=00  ITU-T standardized coding\n"
    "\t\tInformation transfer capability=00000  Speech\n"
    "\t\tTransfer mode=00  Circuit mode\n"
    "\t\tInformation transfer rate=10000  64 kbit/s\n";
const std::string kUnrestricted64k =
    "Bearer capability\n"
    "\t\tCoding standard=00  ITU-T standardized coding\n"
    "\t\tInformation transfer capability=01000  Unrestricted digital information\n"
    "\t\tTransfer mode=00  Circuit mode\n"
    "\t\tInformation transfer rate=10000  64 kbit/s\n";

const std::string kV110 =
    "\t\tUser information layer 1 protocol=00001  ITU-T standardized rate adaption V.110[7], I.460[15] and X.30[8]\n";
const std::string kMuLaw = "\t\tUser information layer 1 protocol=00010  Recommendation G.711[10] Mu-law\n";
// Octet 5a 0x48: asynchronous, no in-band negotiation, 9.6 kbit/s.
const std::string kOctet5a48 =
    "\t\tSynchronous/Asynchronous=1  Asynchronous data\n"
    "\t\tNegotiation=0  In-band negotiation not possible\n"
    "\t\tUser rate=01000  9.6 kbit/s Recommendation X.1\n";
// Octet 5b 0xD4 in its V.110 form.
const std::string kOctet5bD4 =
    "\t\tIntermediate rate=10  16 kbit/s\n"
    "\t\tNetwork Independent Clock (NIC) on transmission (Tx)=1  Required to send data with network independent "
    "clock\n"
    "\t\tNetwork Independent Clock (NIC) on reception (Rx)=0  Cannot accept data with network independent clock\n"
    "\t\tFlow control on transmission (Tx)=1  Required to send data with flow control mechanism\n"
    "\t\tFlow control on reception (Rx)=0  Cannot accept data with flow control mechanism\n";
const std::string kTr9577 =
    "\t\tUser information layer 3 protocol=01011  ISO/IEC TR 9577[82] (Protocol identification in the network "
    "layer)\n";

TEST(BearerCapability, EmptyElementPrintsOnlyTheHeading) {
  const auto decoded = DecodeOctets(DecodeBearerCapability, {0x04, 0x00});
  EXPECT_EQ(decoded.text, "Bearer capability\n");
  EXPECT_EQ(decoded.count, 2);
}

TEST(BearerCapability, OctetsThreeAndFour) {
  const auto speech = DecodeOctets(DecodeBearerCapability, {0x04, 0x03, 0x80, 0x90, 0xA2});
  EXPECT_EQ(speech.text, kSpeech64k + kMuLaw);
  EXPECT_EQ(speech.count, 5);

  const auto network = DecodeOctets(DecodeBearerCapability, {0x04, 0x02, 0xE8, 0x90});
  EXPECT_EQ(network.text,
            "Bearer capability\n"
            "\t\tCoding standard=11  Standard defined for the network (either public or private) present on the "
            "network side of the interface\n"
            "\t\tInformation transfer capability=01000  Unrestricted digital information\n"
            "\t\tTransfer mode=00  Circuit mode\n"
            "\t\tInformation transfer rate=10000  64 kbit/s\n");
  EXPECT_EQ(network.count, 4);

  // Capability 00010, transfer mode 01 and rate 10010 have no rows.
  const auto unnamed = DecodeOctets(DecodeBearerCapability, {0x04, 0x02, 0x82, 0xB2});
  EXPECT_EQ(unnamed.text, "Bearer capability\n\t\tCoding standard=00  ITU-T standardized coding\n");
  EXPECT_EQ(unnamed.count, 4);
}

TEST(BearerCapability, RateMultiplierFollowsMultirate) {
  const std::string multirate =
      "Bearer capability\n"
      "\t\tCoding standard=00  ITU-T standardized coding\n"
      "\t\tInformation transfer capability=01000  Unrestricted digital information\n"
      "\t\tTransfer mode=00  Circuit mode\n"
      "\t\tInformation transfer rate=11000  Multirate (64 kbit/s base rate)\n";
  const auto six = DecodeOctets(DecodeBearerCapability, {0x04, 0x03, 0x88, 0x98, 0x86});
  EXPECT_EQ(six.text, multirate + "\t\tRate multiplier=0x6\n");
  EXPECT_EQ(six.count, 5);

  const auto twentySix = DecodeOctets(DecodeBearerCapability, {0x04, 0x03, 0x88, 0x98, 0x9A});
  EXPECT_EQ(twentySix.text, multirate + "\t\tRate multiplier=0x1a\n");

  // The multiplier would be the next element's octet: not read.
  const auto cut = DecodeOctets(DecodeBearerCapability, {0x04, 0x02, 0x88, 0x98, 0x86});
  EXPECT_EQ(cut.text, multirate);
  EXPECT_EQ(cut.count, 4);
}

TEST(BearerCapability, RateAdaptionOctets5aAnd5b) {
  const auto v110 = DecodeOctets(DecodeBearerCapability, {0x04, 0x05, 0x88, 0x90, 0x21, 0x48, 0xD4});
  EXPECT_EQ(v110.text, kUnrestricted64k + kV110 + kOctet5a48 + kOctet5bD4);
  EXPECT_EQ(v110.count, 7);

  const auto v120 = DecodeOctets(DecodeBearerCapability, {0x04, 0x05, 0x88, 0x90, 0x28, 0x48, 0xBA});
  EXPECT_EQ(v120.text,
            kUnrestricted64k +
                "\t\tUser information layer 1 protocol=01000  ITU-T standardized rate adaption V.120[9]\n" +
                kOctet5a48 +
                "\t\tRate adaption header/no header=0  Rate adaption header not included\n"
                "\t\tMultiple frame establishment support in data link=1  Multiple frame establishment supported\n"
                "\t\tMode of operation=1  Protocol sensitive mode of operation\n"
                "\t\tLogical link identifier negotiation=1  Full protocol negotiation\n"
                "\t\tAssignor/assignee=0  Message originator is Default assignee\n"
                "\t\tIn-band/out-band negotiation=1  Negotiation is done in-band using logical link zero\n");
  EXPECT_EQ(v120.count, 7);

  // User rate 10000 has no row here (Low layer compatibility names it).
  const auto rate64k = DecodeOctets(DecodeBearerCapability, {0x04, 0x04, 0x88, 0x90, 0x21, 0x90});
  EXPECT_EQ(rate64k.text, kUnrestricted64k + kV110 +
                              "\t\tSynchronous/Asynchronous=0  Synchronous data\n"
                              "\t\tNegotiation=0  In-band negotiation not possible\n");
  EXPECT_EQ(rate64k.count, 6);
}

TEST(BearerCapability, UntakenOctetPassesToTheNextStepOrTheLayerWalk) {
  // 3.1 kHz audio / G.711: no octet 5b, so 0x3B is octet 5c and 0xDE octet 5d.
  const auto modem = DecodeOctets(DecodeBearerCapability, {0x04, 0x06, 0x90, 0x90, 0x22, 0x48, 0x3B, 0xDE});
  EXPECT_EQ(modem.text,
            "Bearer capability\n"
            "\t\tCoding standard=00  ITU-T standardized coding\n"
            "\t\tInformation transfer capability=10000  3.1 kHz audio\n"
            "\t\tTransfer mode=00  Circuit mode\n"
            "\t\tInformation transfer rate=10000  64 kbit/s\n" +
                kMuLaw + kOctet5a48 +
                "\t\tNumber of stop bits=01  1 bit\n"
                "\t\tNumber of data bits excluding parity Bit if present=11  8 bits\n"
                "\t\tParity information=011  None\n"
                "\t\tMode duplex=1  Full duplex\n"
                "\t\tModem type=011110  Recommendation V.34[90]\n");
  EXPECT_EQ(modem.count, 8);

  // Speech fails the rate-adaption condition: 0xA3 is a second layer 1 octet.
  const auto speech = DecodeOctets(DecodeBearerCapability, {0x04, 0x04, 0x80, 0x90, 0x22, 0xA3});
  EXPECT_EQ(speech.text,
            kSpeech64k + kMuLaw + "\t\tUser information layer 1 protocol=00011  Recommendation G.711 A-law\n");
  EXPECT_EQ(speech.count, 6);

  // Octet 5b hangs on the layer 1 protocol alone, not on the condition.
  const auto speechV110 = DecodeOctets(DecodeBearerCapability, {0x04, 0x04, 0x80, 0x90, 0x21, 0xD4});
  EXPECT_EQ(speechV110.text, kSpeech64k + kV110 + kOctet5bD4);
  EXPECT_EQ(speechV110.count, 6);
}

TEST(BearerCapability, ModemTypeRangesPrintDecimal) {
  const std::string before5d = "\t\tParity information=011  None\n";
  const struct {
    Octet octet5d;
    std::string lines;
  } cases[] = {
      {0x05, "\t\tMode duplex=0  Half duplex\n\t\tModem type=5  National use\n"},
      {0x06, "\t\tMode duplex=0  Half duplex\n"},
      {0x5C, "\t\tMode duplex=1  Full duplex\n"},
      {0x28, "\t\tMode duplex=0  Half duplex\n\t\tModem type=40  National use\n"},
      {0x2F, "\t\tMode duplex=0  Half duplex\n\t\tModem type=47  National use\n"},
      {0x70, "\t\tMode duplex=1  Full duplex\n\t\tModem type=48  User specified\n"},
      {0x51, "\t\tMode duplex=1  Full duplex\n\t\tModem type=010001  Recommendation V.21\n"},
  };
  for (const auto& c : cases) {
    const auto decoded = DecodeOctets(DecodeBearerCapability, {0x04, 0x06, 0x90, 0x90, 0x22, 0x48, 0x3B, c.octet5d});
    const std::size_t tail = decoded.text.find(before5d);
    ASSERT_NE(tail, std::string::npos) << std::hex << int{c.octet5d};
    EXPECT_EQ(decoded.text.substr(tail + before5d.size()), c.lines) << std::hex << int{c.octet5d};
  }
}

TEST(BearerCapability, LayerOctetsInAnyOrder) {
  // 0x05 names no layer and is stepped over; bit 8 of octet 6 (0x4B, no row
  // here) announces nothing, so 0xC6 is a layer 2 octet of its own.
  const auto decoded =
      DecodeOctets(DecodeBearerCapability, {0x04, 0x06, 0x80, 0x90, 0x05, 0x4B, 0xC6, 0xE2});
  EXPECT_EQ(decoded.text, kSpeech64k +
                              "\t\tUser information layer 2 protocol=00110  Recommendation X.25[5], link layer\n"
                              "\t\tUser information layer 3 protocol=00010  Recommendation Q.931\n");
  EXPECT_EQ(decoded.count, 8);
}

TEST(BearerCapability, AdditionalLayer3ProtocolInformation) {
  const auto ip = DecodeOctets(DecodeBearerCapability, {0x04, 0x05, 0x88, 0x90, 0x6B, 0x0C, 0x8C});
  EXPECT_EQ(ip.text, kUnrestricted64k + kTr9577 +
                         "\t\tAdditional layer 3 protocol information:7a=1100, 7b=1100  Internet Protocol (RFC 791) "
                         "(ISO/IEC TR 9577[82])\n");
  EXPECT_EQ(ip.count, 7);

  const auto ppp = DecodeOctets(DecodeBearerCapability, {0x04, 0x05, 0x88, 0x90, 0x6B, 0x0C, 0x8F});
  EXPECT_EQ(ppp.text, kUnrestricted64k + kTr9577 +
                          "\t\tAdditional layer 3 protocol information:7a=1100, 7b=1111  Point-to-point Protocol "
                          "(RFC 1548)\n");

  const auto other = DecodeOctets(DecodeBearerCapability, {0x04, 0x05, 0x88, 0x90, 0x6B, 0x0C, 0x81});
  EXPECT_EQ(other.text, kUnrestricted64k + kTr9577);
  EXPECT_EQ(other.count, 7);

  // Octets 7a and 7b follow whatever bit 8 of octet 7 says.
  const auto bit8Set = DecodeOctets(DecodeBearerCapability, {0x04, 0x05, 0x88, 0x90, 0xEB, 0x0C, 0x8C});
  EXPECT_EQ(bit8Set.text, ip.text);

  // 7b lies beyond the element: no line, and 7a (0x22) is not walked as a
  // layer 1 octet either.
  const auto cut = DecodeOctets(DecodeBearerCapability, {0x04, 0x04, 0x88, 0x90, 0x6B, 0x22, 0x8C});
  EXPECT_EQ(cut.text, kUnrestricted64k + kTr9577);
  EXPECT_EQ(cut.count, 6);
}

TEST(BearerCapability, StopsAtTheElementsEndAndTheFramesEnd) {
  const auto noOctet4 = DecodeOctets(DecodeBearerCapability, {0x04, 0x01, 0x80, 0x90});
  EXPECT_EQ(noOctet4.text,
            "Bearer capability\n"
            "\t\tCoding standard=00  ITU-T standardized coding\n"
            "\t\tInformation transfer capability=00000  Speech\n");
  EXPECT_EQ(noOctet4.count, 3);

  // Bit 8 of the element's last octet announces octet 5a; 0x48 belongs to
  // the next element.
  const auto no5a = DecodeOctets(DecodeBearerCapability, {0x04, 0x03, 0x88, 0x90, 0x21, 0x48});
  EXPECT_EQ(no5a.text, kUnrestricted64k + kV110);
  EXPECT_EQ(no5a.count, 5);

  // The frame ends inside the element: what it holds is decoded, the count
  // still covers the whole element.
  const auto shortFrame = DecodeOctets(DecodeBearerCapability, {0x04, 0x05, 0x88, 0x90, 0x21, 0x48});
  EXPECT_EQ(shortFrame.text, kUnrestricted64k + kV110 + kOctet5a48);
  EXPECT_EQ(shortFrame.count, 7);

  const auto lengthOnly = DecodeOctets(DecodeBearerCapability, {0x04, 0xFF});
  EXPECT_EQ(lengthOnly.text, "Bearer capability\n");
  EXPECT_EQ(lengthOnly.count, 257);
}

}  // namespace
}  // namespace velmora
