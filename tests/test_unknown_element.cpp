// The hexadecimal dump of elements a message does not accept.
#include <gtest/gtest.h>

#include "q931/element.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::DecodeOctets;

TEST(UnknownElement, DumpsVariableLengthElementWithIdentifierAndLength) {
  const auto decoded = DecodeOctets(DecodeUnknownElement, {0x1C, 0x02, 0x91, 0xA1});
  EXPECT_EQ(decoded.text, "Unknown ( 0x1c 0x2 0x91 0xa1 )\n");
  EXPECT_EQ(decoded.count, 4);

  const auto empty = DecodeOctets(DecodeUnknownElement, {0x1C, 0x00});
  EXPECT_EQ(empty.text, "Unknown ( 0x1c 0x0 )\n");
  EXPECT_EQ(empty.count, 2);
}

TEST(UnknownElement, SingleOctetElementIsOneOctetWhateverFollows) {
  const auto decoded = DecodeOctets(DecodeUnknownElement, {0x96, 0x08, 0x02});
  EXPECT_EQ(decoded.text, "Unknown ( 0x96 )\n");
  EXPECT_EQ(decoded.count, 1);
}

TEST(UnknownElement, LengthIsUnsignedAndCountsEvenBeyondTheFrame) {
  std::vector<Octet> octets{0x1C, 0x81};
  for (int i = 0; i < 129; ++i) octets.push_back(static_cast<Octet>(0x80 + i % 128));
  const auto decoded = DecodeOctets(DecodeUnknownElement, octets);
  EXPECT_EQ(decoded.count, 131);
  EXPECT_EQ(decoded.text.rfind("Unknown ( 0x1c 0x81 0x80 0x81 ", 0), 0U);
  EXPECT_NE(decoded.text.find(" 0xff 0x80 )\n"), std::string::npos);

  // The frame ends after two contents octets: only what it holds is shown,
  // and the count still tells the walk to move past the whole element.
  const auto truncated = DecodeOctets(DecodeUnknownElement, {0x1C, 0x05, 0x01, 0x02});
  EXPECT_EQ(truncated.text, "Unknown ( 0x1c 0x5 0x1 0x2 )\n");
  EXPECT_EQ(truncated.count, 7);
}

}  // namespace
}  // namespace velmora
