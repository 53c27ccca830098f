// Channel identification: B-channels of a basic interface, channel numbers
// and slot maps of a primary-rate interface, and elements cut short.
#include <gtest/gtest.h>

#include <string>

#include "elements/element_decoders.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::DecodeOctets;

const std::string kHeading = "Channel identification\n";
const std::string kImplicit = "\t\tInterface identifier present=0  Interface implicitly identified\n";
const std::string kExplicit =
    "\t\tInterface identifier present=1  Interface explicitly identified in one or more octets, "
    "beginning with octet 3.1\n";
const std::string kBasic = "\t\tInterface type=0  Basic interface\n";
const std::string kOther = "\t\tInterface type=1  Other interface\n";
const std::string kPreferred = "\t\tPreferred/Exclusive=0  Indicated channel is preferred\n";
const std::string kExclusive = "\t\tPreferred/Exclusive=1  Exclusive; only the indicated channel is acceptable\n";
const std::string kNotD = "\t\tD-channel indicator=0  The channel identified is not the D-channel\n";
const std::string kB1 = "\t\tInformation channel selection=01  B1 channel\n";
const std::string kAsIndicated = "\t\tInformation channel selection=01  As indicated in following octets\n";
const std::string kItu = "\t\tCoding standard=00  ITU-T standardized coding\n";
const std::string kBUnits = "\t\tChannel type/map element type=0011  B-channel units\n";
const std::string kByNumber = "\t\tNumber/map=0  Channel is indicated by the number in the following octet\n";
// Octet 3 of an exclusive primary-rate channel named in the octets behind it.
const std::string kPrimaryRate = kHeading + kImplicit + kOther + kExclusive + kNotD + kAsIndicated;

TEST(ChannelIdentification, BasicInterfaceNamesItsChannelInOctet3Alone) {
  const auto b1 = DecodeOctets(DecodeChannelIdentification, {0x18, 0x01, 0x89});
  EXPECT_EQ(b1.text, kHeading + kImplicit + kBasic + kExclusive + kNotD + kB1);
  EXPECT_EQ(b1.count, 3);

  EXPECT_EQ(DecodeOctets(DecodeChannelIdentification, {0x18, 0x01, 0x8E}).text,
            kHeading + kImplicit + kBasic + kExclusive +
                "\t\tD-channel indicator=1  The channel identified is the D-channel\n"
                "\t\tInformation channel selection=10  B2 channel\n");

  // Interface identifiers run to the octet with bit 8 set; the octet after
  // them is not decoded on a basic interface.
  const auto identified = DecodeOctets(DecodeChannelIdentification, {0x18, 0x04, 0xC9, 0x01, 0x85, 0x83});
  EXPECT_EQ(identified.text, kHeading + kExplicit + kBasic + kExclusive + kNotD + kB1 +
                                 "\t\tInterface identifier=1\n\t\tInterface identifier=5\n");
  EXPECT_EQ(identified.count, 6);
}

TEST(ChannelIdentification, PrimaryRateChannelNumbersStandOnOneLine) {
  const auto one = DecodeOctets(DecodeChannelIdentification, {0x18, 0x03, 0xA9, 0x83, 0x81});
  EXPECT_EQ(one.text, kPrimaryRate + kItu + kBUnits + kByNumber + "\t\tChannel number= 1\n");
  EXPECT_EQ(one.count, 5);

  EXPECT_EQ(DecodeOctets(DecodeChannelIdentification, {0x18, 0x04, 0xA9, 0x83, 0x01, 0x92}).text,
            kPrimaryRate + kItu + kBUnits + kByNumber + "\t\tChannel number= 1 18\n");

  EXPECT_EQ(DecodeOctets(DecodeChannelIdentification, {0x18, 0x04, 0xE9, 0x81, 0x83, 0x85}).text,
            kHeading + kExplicit + kOther + kExclusive + kNotD + kAsIndicated + "\t\tInterface identifier=1\n" +
                kItu + kBUnits + kByNumber + "\t\tChannel number= 5\n");
}

TEST(ChannelIdentification, PrimaryRateSlotMapTakesTheOctetsToTheElementEnd) {
  const auto map = DecodeOctets(DecodeChannelIdentification, {0x18, 0x06, 0xA9, 0x93, 0x00, 0x00, 0x80, 0x01, 0x55});
  EXPECT_EQ(map.text, kPrimaryRate + kItu + kBUnits +
                          "\t\tNumber/map=1  Channel is indicated by the slot map (Map) in the following octet(s)\n"
                          "\t\tSlot map= 0x0 0x0 0x80 0x1\n");
  EXPECT_EQ(map.count, 8);
}

TEST(ChannelIdentification, PrimaryRateElementEndingBeforeOctet32ShowsWhatItHolds) {
  EXPECT_EQ(DecodeOctets(DecodeChannelIdentification, {0x18, 0x01, 0xA3}).text,
            kHeading + kImplicit + kOther + kPreferred + kNotD + "\t\tInformation channel selection=11  Any channel\n");

  // The octets behind the element's end are not its octet 3.2 and 3.3.
  EXPECT_EQ(DecodeOctets(DecodeChannelIdentification, {0x18, 0x01, 0xAA, 0x83, 0x81}).text,
            kHeading + kImplicit + kOther + kExclusive + kNotD + "\t\tInformation channel selection=10  Reserved\n");
  const auto identifiersOnly = DecodeOctets(DecodeChannelIdentification, {0x18, 0x02, 0xE9, 0x01, 0x83, 0x81});
  EXPECT_EQ(identifiersOnly.text,
            kHeading + kExplicit + kOther + kExclusive + kNotD + kAsIndicated + "\t\tInterface identifier=1\n");
  EXPECT_EQ(identifiersOnly.count, 4);
}

TEST(ChannelIdentification, ShortElementsDecodeAsFarAsTheyGo) {
  const auto empty = DecodeOctets(DecodeChannelIdentification, {0x18, 0x00, 0x89});
  EXPECT_EQ(empty.text, kHeading);
  EXPECT_EQ(empty.count, 2);

  // A channel number run without a closing extension bit ends with the
  // element and its line is still closed; channel type 1111 prints no line.
  EXPECT_EQ(DecodeOctets(DecodeChannelIdentification, {0x18, 0x03, 0xA9, 0x8F, 0x01, 0x82}).text,
            kPrimaryRate + kItu + kByNumber + "\t\tChannel number= 1\n");

  // The frame ends before the announced octets: decoding ends with it.
  const auto cut = DecodeOctets(DecodeChannelIdentification, {0x18, 0x05, 0xA9, 0x83, 0x01});
  EXPECT_EQ(cut.text, kPrimaryRate + kItu + kBUnits + kByNumber + "\t\tChannel number= 1\n");
  EXPECT_EQ(cut.count, 7);
}

}  // namespace
}  // namespace velmora
