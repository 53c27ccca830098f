// Call identity, Call state and Restart indicator.
#include <gtest/gtest.h>

#include "test_support.h"

namespace velmora {

const std::string kItuCoding = "\t\tCoding standard=00  ITU-T standardized coding\n";
const std::string kActive = "\t\tCall state value=001010  U10-Active, N10-Active\n";

TEST(CallIdentityStateRestart, DecodesEachElement) {
  const testing::ElementCase cases[] = {
      {{0x10, 0x02, 0x01, 0xA2}, "Call identity\n\t\tCall identity= 0x1 0xa2\n"},
      // Octets after octet 3 are not looked at, but counted.
      {{0x14, 0x03, 0x0A, 0x55, 0x66}, "Call state\n" + kItuCoding + kActive},
      // The field name follows the state it names.
      {{0x14, 0x01, 0xC0},
       "Call state\n\t\tCoding standard=11  Standard defined for the network (either public or private) present on "
       "the network side of the interface\n"
       "\t\tCall state value / global interface state value=000000  U0-Null, N0-Null, REST0-Null\n"},
      {{0x14, 0x01, 0x3D},
       "Call state\n" + kItuCoding + "\t\tGlobal interface state value=111101  REST1-Restart request\n"},
      // 000101 names no state: the coding standard line alone.
      {{0x14, 0x01, 0x85}, "Call state\n\t\tCoding standard=10  National standard\n"},
      {{0x79, 0x01, 0x87}, "Restart indicator\n\t\tClass=111  All interfaces\n"},
      {{0x79, 0x01, 0x83}, "Restart indicator\n"},
      // L = 0, or a frame ending at the length octet: the heading alone, the count still L + 2.
      {{0x10, 0x00, 0x0A}, "Call identity\n"},
      {{0x14, 0x00, 0x0A}, "Call state\n"},
      {{0x79, 0x00, 0x0A}, "Restart indicator\n"},
      {{0x10, 0x02}, "Call identity\n"},
      {{0x14, 0x02}, "Call state\n"},
      {{0x79, 0x02}, "Restart indicator\n"},
  };
  testing::ExpectDecodes(cases);
}

}  // namespace velmora
