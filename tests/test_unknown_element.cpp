// The hexadecimal dump of elements a message does not accept, and the octets
// it tells the walk to move on by; the golden traces show the common forms.
#include <gtest/gtest.h>

#include "test_support.h"

namespace velmora {
namespace {

using testing::DecodeOctets;

std::size_t Occupied(const std::vector<Octet>& octets) { return OccupiedOctets(nullptr, ElementOctets(octets)); }

TEST(UnknownElement, LengthIsUnsignedAndCountsEvenBeyondTheFrame) {
  std::vector<Octet> octets{0x1C, 0x81};
  for (int i = 0; i < 129; ++i) octets.push_back(static_cast<Octet>(0x80 + i % 128));
  const std::string text = DecodeOctets(octets);
  EXPECT_EQ(Occupied(octets), 131U);
  EXPECT_EQ(text.rfind("Unknown ( 0x1c 0x81 0x80 0x81 ", 0), 0U);
  EXPECT_NE(text.find(" 0xff 0x80 )\n"), std::string::npos);

  // The frame ends after two contents octets: only what it holds is shown,
  // and the walk still moves past the whole element.
  EXPECT_EQ(DecodeOctets({0x1C, 0x05, 0x01, 0x02}), "Unknown ( 0x1c 0x5 0x1 0x2 )\n");
  EXPECT_EQ(Occupied({0x1C, 0x05, 0x01, 0x02}), 7U);
}

}  // namespace
}  // namespace velmora
