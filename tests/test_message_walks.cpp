// Message-type dispatch and the match rules of the element walks. The golden
// message trace shows SEGMENT, truncated headers and whole walks.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"

namespace velmora {
namespace {

using testing::CaptureOutput;

std::string Decode(const std::vector<Octet>& message) {
  return CaptureOutput([&](OutputWriter& out) { DecodeQ931Message(out, message); });
}

TEST(Dispatch, CallReferenceLengthLocatesTheMessageType) {
  // Two-octet call reference, as on a primary-rate interface.
  EXPECT_EQ(Decode({0x08, 0x02, 0x00, 0x05, 0x7D}), "Message type:STATUS\n");
  // A call reference that runs to the message's end, or past it, leaves no message type.
  EXPECT_EQ(Decode({0x08, 0x01, 0x81}), "Message type:Truncated message\n");
  EXPECT_EQ(Decode({0x08, 0x03, 0x00, 0x05}), "Message type:Truncated message\n");
  // Bit 8 of the message type is not masked off: 0x85 is no SETUP.
  EXPECT_EQ(Decode({0x08, 0x01, 0x81, 0x85, 0x04, 0x00}), "Message type:");
}

// The element a message type's walk picks for an identifier octet: the
// registry's entry for `picked`, or the unknown-element dump for 0.
struct Pick {
  Octet messageType;
  Octet identifier;
  Octet picked;
};

TEST(WalkRules, EachRulePicksItsElementsAndSendsTheRestToTheDump) {
  // clang-format off
  const Pick picks[] = {
      // Whole octet: bit 8 counts; single octets and elements the type does not take are unknown.
      {0x5A, 0x08, 0x08}, {0x5A, 0x88, 0}, {0x5A, 0x96, 0}, {0x05, 0x08, 0}, {0x01, 0x34, 0x34}, {0x02, 0x34, 0},
      {0x7D, 0x14, 0x14}, {0x46, 0x79, 0x79}, {0x26, 0x10, 0x10},
      // SETUP: Repeat indicator 1101xxxx and Sending complete, no other single octet.
      {0x05, 0xD0, 0xD0}, {0x05, 0xDF, 0xD0}, {0x05, 0xA1, 0xA1}, {0x05, 0xA0, 0}, {0x05, 0x21, 0}, {0x05, 0xB0, 0},
      {0x05, 0x6C, 0x6C}, {0x05, 0x4A, 0x4A},
      // USER INFORMATION and INFORMATION: bit 8 is ignored.
      {0x20, 0x20, 0xA0}, {0x20, 0xA0, 0xA0}, {0x20, 0x7E, 0x7E}, {0x20, 0xFE, 0x7E}, {0x7B, 0x21, 0xA1},
      {0x7B, 0xA1, 0xA1}, {0x7B, 0x88, 0x08}, {0x7B, 0xA8, 0x28}, {0x7B, 0xAC, 0x2C}, {0x7B, 0xB4, 0x34},
      {0x7B, 0xF0, 0x70}, {0x7B, 0x96, 0},
      // CONGESTION CONTROL: bits 7-5 of 011 first, whatever bit 8 says.
      {0x79, 0x30, 0xB0}, {0x79, 0x34, 0xB0}, {0x79, 0x3F, 0xB0}, {0x79, 0xB0, 0xB0}, {0x79, 0xBF, 0xB0},
      {0x79, 0x08, 0x08}, {0x79, 0x28, 0x28}, {0x79, 0xA8, 0},
  };
  // clang-format on
  for (const Pick& pick : picks) {
    SCOPED_TRACE(::testing::Message() << std::hex << int{pick.messageType} << " " << int{pick.identifier});
    const ElementEntry* chosen = FindMessageWalk(pick.messageType)->Choose(pick.identifier);
    EXPECT_EQ(chosen, pick.picked == 0 ? nullptr : FindElement(pick.picked));
  }
}

}  // namespace
}  // namespace velmora
