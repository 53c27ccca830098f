// The packet-mode elements.
#include <gtest/gtest.h>

#include "elements/element_decoders.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::DecodeOctets;

TEST(InformationRate, FourRateLinesReservedCodesInHex) {
  const auto decoded = DecodeOctets(DecodeInformationRate, {0x40, 0x04, 0x8B, 0x8B, 0x88, 0x88});
  EXPECT_EQ(decoded.text,
            "Information rate\n"
            "\t\tIncoming information rate=01011  19200 bit/s\n"
            "\t\tOutgoing information rate=01011  19200 bit/s\n"
            "\t\tMinimum incoming information rate=01000  2400 bit/s\n"
            "\t\tMinimum outgoing information rate=01000  2400 bit/s\n");
  EXPECT_EQ(decoded.count, 6);

  EXPECT_EQ(DecodeOctets(DecodeInformationRate, {0x40, 0x04, 0x0E, 0x00, 0x1F, 0x8D}).text,
            "Information rate\n"
            "\t\tIncoming information rate=0xe  Reserved\n"
            "\t\tOutgoing information rate=0x0  Reserved\n"
            "\t\tMinimum incoming information rate=0x1f  Reserved\n"
            "\t\tMinimum outgoing information rate=01101  64000 bit/s\n");

  // A short element at the frame's end: only the rates the frame holds.
  const auto cutOff = DecodeOctets(DecodeInformationRate, {0x40, 0x01, 0x03, 0x07});
  EXPECT_EQ(cutOff.text,
            "Information rate\n"
            "\t\tIncoming information rate=00011  75 bit/s\n"
            "\t\tOutgoing information rate=00111  1200 bit/s\n");
  EXPECT_EQ(cutOff.count, 3);
}

TEST(TransitDelay, SixteenBitValuesInMilliseconds) {
  EXPECT_EQ(DecodeOctets(DecodeEndToEndTransitDelay, {0x42, 0x03, 0x01, 0x02, 0x03}).text,
            "End-to-end transit delay\n\t\tCumulative transit delay value= 16643 ms\n");
  EXPECT_EQ(DecodeOctets(DecodeEndToEndTransitDelay, {0x42, 0x06, 0x01, 0x02, 0x03, 0x00, 0x01, 0x64, 0x7F}).text,
            "End-to-end transit delay\n"
            "\t\tCumulative transit delay value= 16643 ms\n"
            "\t\tRequested end-to-end transit delay value= 228 ms\n");
  // Bits above the value's 2 + 7 + 7 are dropped: the maximum is 65535.
  const auto all = DecodeOctets(DecodeEndToEndTransitDelay,
                                {0x42, 0x09, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x83, 0xFF, 0xFF});
  EXPECT_EQ(all.text,
            "End-to-end transit delay\n"
            "\t\tCumulative transit delay value= 0 ms\n"
            "\t\tRequested end-to-end transit delay value= 1 ms\n"
            "\t\tMaximum end-to-end transit delay value= 65535 ms\n");
  EXPECT_EQ(all.count, 11);

  EXPECT_EQ(DecodeOctets(DecodeTransitDelaySelection, {0x43, 0x03, 0x00, 0x3E, 0x40}).text,
            "Transit delay selection and indication\n\t\tTransit delay selection and indication value= 8000 ms\n");
}

TEST(TransitDelay, ShortElementReadsTheValueBehindItUpToTheFrameEnd) {
  const auto behind = DecodeOctets(DecodeEndToEndTransitDelay, {0x42, 0x01, 0x00, 0x01, 0x05});
  EXPECT_EQ(behind.text, "End-to-end transit delay\n\t\tCumulative transit delay value= 133 ms\n");
  EXPECT_EQ(behind.count, 3);
  const auto cutOff = DecodeOctets(DecodeTransitDelaySelection, {0x43, 0x02, 0x00, 0x01});
  EXPECT_EQ(cutOff.text, "Transit delay selection and indication\n");
  EXPECT_EQ(cutOff.count, 4);
}

TEST(PacketLayerBinaryParameters, FourFieldsOfOctet3) {
  const auto decoded = DecodeOctets(DecodePacketLayerBinaryParameters, {0x44, 0x01, 0x97});
  EXPECT_EQ(decoded.text,
            "Packet layer binary parameters\n"
            "\t\tFast select=10  Fast select requested with no restriction of response\n"
            "\t\tExpedited data=1  Request indicated/request accepted\n"
            "\t\tDelivery confirmation=1  End-to-end confirmation\n"
            "\t\tModulus=1  Modulus 128 sequencing\n");
  EXPECT_EQ(decoded.count, 3);
  EXPECT_EQ(DecodeOctets(DecodePacketLayerBinaryParameters, {0x44, 0x01, 0x08}).text,
            "Packet layer binary parameters\n"
            "\t\tFast select=01  Fast select not requested\n"
            "\t\tExpedited data=0  No request/request denied\n"
            "\t\tDelivery confirmation=0  Link-by-link confirmation\n"
            "\t\tModulus=0  Modulus 8 sequencing\n");
}

TEST(WindowAndPacketSize, BackwardValueOnlyInsideTheElement) {
  EXPECT_EQ(DecodeOctets(DecodePacketLayerWindowSize, {0x45, 0x01, 0x02, 0x07}).text,
            "Packet layer window size\n\t\tForward value=0x2\n");
  const auto size = DecodeOctets(DecodePacketSize, {0x46, 0x02, 0x8A, 0x0B});
  EXPECT_EQ(size.text, "Packet size\n\t\tForward value=0xa\n\t\tBackward value=0xb\n");
  EXPECT_EQ(size.count, 4);
}

TEST(ClosedUserGroup, IndicationAndOneLinePerIndexDigit) {
  EXPECT_EQ(DecodeOctets(DecodeClosedUserGroup, {0x47, 0x04, 0x01, 0x31, 0x32, 0x41}).text,
            "Closed user group\n"
            "\t\tCUG indication=001  Closed user group selection\n"
            "\t\tCUG index code=0110001  CUG index=1\n"
            "\t\tCUG index code=0110010  CUG index=2\n");
  const auto outgoing = DecodeOctets(DecodeClosedUserGroup, {0x47, 0x02, 0x02, 0xB9});
  EXPECT_EQ(outgoing.text,
            "Closed user group\n"
            "\t\tCUG indication=010  Closed user group with outgoing access selection and indication\n"
            "\t\tCUG index code=0111001  CUG index=9\n");
  EXPECT_EQ(outgoing.count, 4);
}

TEST(ReverseChargingIndication, OnlyValue001HasALine) {
  EXPECT_EQ(DecodeOctets(DecodeReverseChargingIndication, {0x4A, 0x01, 0x81}).text,
            "Reverse charging indication\n\t\tReverse charging indication=001  Reverse charging requested\n");
  EXPECT_EQ(DecodeOctets(DecodeReverseChargingIndication, {0x4A, 0x01, 0x82}).text,
            "Reverse charging indication\n");
}

TEST(PacketMode, LengthZeroLeavesTheHeadingAlone) {
  const struct {
    ElementDecoder decoder;
    Octet identifier;
    const char* heading;
  } cases[] = {{DecodeInformationRate, 0x40, "Information rate\n"},
               {DecodeEndToEndTransitDelay, 0x42, "End-to-end transit delay\n"},
               {DecodeTransitDelaySelection, 0x43, "Transit delay selection and indication\n"},
               {DecodePacketLayerBinaryParameters, 0x44, "Packet layer binary parameters\n"},
               {DecodePacketLayerWindowSize, 0x45, "Packet layer window size\n"},
               {DecodePacketSize, 0x46, "Packet size\n"},
               {DecodeClosedUserGroup, 0x47, "Closed user group\n"},
               {DecodeReverseChargingIndication, 0x4A, "Reverse charging indication\n"}};
  for (const auto& c : cases) {
    const auto decoded = DecodeOctets(c.decoder, {c.identifier, 0x00, 0x0B, 0x0B, 0x0B, 0x0B});
    EXPECT_EQ(decoded.text, c.heading);
    EXPECT_EQ(decoded.count, 2);
  }
}

}  // namespace
}  // namespace velmora
