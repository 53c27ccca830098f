// Channel identification: basic and primary-rate interfaces, and elements cut short.
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "channel_identification.h"
#include "test_support.h"

namespace velmora {

const std::string kHeading = "Channel identification\n";
const std::string kImplicit = "\t\tInterface identifier present=0  Interface implicitly identified\n";
const std::string kExplicit =
    "\t\tInterface identifier present=1  Interface explicitly identified in one or more octets, "
    "beginning with octet 3.1\n";
const std::string kBasic = "\t\tInterface type=0  Basic interface\n";
const std::string kOther = "\t\tInterface type=1  Other interface\n";
const std::string kExclusive = "\t\tPreferred/Exclusive=1  Exclusive; only the indicated channel is acceptable\n";
const std::string kNotD = "\t\tD-channel indicator=0  The channel identified is not the D-channel\n";
const std::string kB1 = "\t\tInformation channel selection=01  B1 channel\n";
const std::string kAsIndicated = "\t\tInformation channel selection=01  As indicated in following octets\n";
const std::string kItu = "\t\tCoding standard=00  ITU-T standardized coding\n";
const std::string kBUnits = "\t\tChannel type/map element type=0011  B-channel units\n";
const std::string kByNumber = "\t\tNumber/map=0  Channel is indicated by the number in the following octet\n";
// Octet 3 of an exclusive primary-rate channel named in the octets behind it.
const std::string kPrimaryRate = kHeading + kImplicit + kOther + kExclusive + kNotD + kAsIndicated;
const std::string kNumbers = kPrimaryRate + kItu + kBUnits + kByNumber;

TEST(ChannelIdentification, DecodesAsFarAsTheElementAndTheFrameGo) {
  const testing::ElementCase cases[] = {
      // Interface identifiers run to bit 8 set; a basic interface decodes no octet after them.
      {{0x18, 0x04, 0xC9, 0x01, 0x85, 0x83},
       kHeading + kExplicit + kBasic + kExclusive + kNotD + kB1 +
           "\t\tInterface identifier=1\n\t\tInterface identifier=5\n"},
      // Primary-rate channel numbers stand on one line.

      {{0x18, 0x04, 0xA9, 0x83, 0x01, 0x92}, kNumbers + "\t\tChannel number= 1 18\n"},
      // The slot map takes the octets to the element end.
      {{0x18, 0x06, 0xA9, 0x93, 0x00, 0x00, 0x80, 0x01, 0x55},
       kPrimaryRate + kItu + kBUnits +
           "\t\tNumber/map=1  Channel is indicated by the slot map (Map) in the following octet(s)\n"
           "\t\tSlot map= 0x0 0x0 0x80 0x1\n"},
      // The octets behind the element's end are not its octet 3.2 and 3.3.
      {{0x18, 0x01, 0xAA, 0x83, 0x81},
       kHeading + kImplicit + kOther + kExclusive + kNotD + "\t\tInformation channel selection=10  Reserved\n"},
      {{0x18, 0x02, 0xE9, 0x01, 0x83, 0x81},
       kHeading + kExplicit + kOther + kExclusive + kNotD + kAsIndicated + "\t\tInterface identifier=1\n"},
      {{0x18, 0x00, 0x89}, kHeading},
      // A number run with no closing bit 8 ends with the element, its line closed; type 1111 prints no line.
      {{0x18, 0x03, 0xA9, 0x8F, 0x01, 0x82}, kPrimaryRate + kItu + kByNumber + "\t\tChannel number= 1\n"},
      // The frame ends before the announced octets: decoding ends with it.
      {{0x18, 0x05, 0xA9, 0x83, 0x01}, kNumbers + "\t\tChannel number= 1\n"},
  };
  testing::ExpectDecodes(cases);
}

// The channel a reading names: a B-channel of a basic interface, or the
// channel numbers behind octet 3.2 (and behind interface identifiers).
TEST(ChannelIdentification, ReadingNamesTheChannelTheElementIdentifies) {
  const struct {
    std::vector<Octet> octets;
    unsigned basicChannel;
    std::vector<Octet> numbers;
  } named[] = {
      {{0x18, 0x01, 0x89}, 1, {}},
      {{0x18, 0x01, 0x8A}, 2, {}},
      {{0x18, 0x03, 0xA9, 0x83, 0x81}, 0, {0x81}},
      {{0x18, 0x05, 0xA9, 0x83, 0x01, 0x92, 0x85}, 0, {0x01, 0x92}},  // numbers up to bit 8 set
      {{0x18, 0x04, 0xA9, 0x83, 0x01, 0x02}, 0, {0x01, 0x02}},        // or to the element's end
      {{0x18, 0x04, 0xE9, 0x81, 0x83, 0x85}, 0, {0x85}},
  };
  for (const auto& c : named) {
    const std::optional<IdentifiedChannel> channel = ReadIdentifiedChannel(ElementOctets(c.octets));
    ASSERT_TRUE(channel.has_value());
    EXPECT_EQ(channel->basicChannel, c.basicChannel);
    EXPECT_EQ(std::vector<Octet>(channel->numbers.begin(), channel->numbers.end()), c.numbers);
  }
  // Any channel, no channel, a slot map, and elements that end before the channel.
  const std::vector<Octet> unnamed[] = {
      {0x18, 0x01, 0x83}, {0x18, 0x01, 0x80},       {0x18, 0x04, 0xA9, 0x93, 0x00, 0x01},
      {0x18, 0x01, 0xA9}, {0x18, 0x02, 0xA9, 0x83}, {0x18, 0x00},
  };
  for (const auto& octets : unnamed) EXPECT_FALSE(ReadIdentifiedChannel(ElementOctets(octets)).has_value());
}

}  // namespace velmora
