// Message-type dispatch and the match rules of the element walks.
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

// The element the walk of a message type picks for an identifier octet.
const ElementEntry* Chosen(Octet messageType, Octet identifier) {
  return ChooseElement(FindMessageWalk(messageType)->accepted, identifier);
}
const ElementEntry* const kUnknown = nullptr;

TEST(Dispatch, CallReferenceLengthLocatesTheMessageType) {
  // Two-octet call reference, as on a primary-rate interface.
  EXPECT_EQ(Decode({0x08, 0x02, 0x00, 0x05, 0x7D}), "Message type:STATUS\n");
  // A call reference that runs to the message's end, or past it, leaves no message type.
  EXPECT_EQ(Decode({0x08, 0x01, 0x81}), "Message type:Truncated message\n");
  EXPECT_EQ(Decode({0x08, 0x03, 0x00, 0x05}), "Message type:Truncated message\n");
  // Bit 8 of the message type is not masked off: 0x85 is no SETUP.
  EXPECT_EQ(Decode({0x08, 0x01, 0x81, 0x85, 0x04, 0x00}), "Message type:");
}

TEST(Dispatch, SetupWalkVisitsElementsByTheirCounts) {
  // Sending complete, bearer capability (5 octets), called party number (6).
  const std::string text =
      Decode({0x08, 0x01, 0x05, 0x05, 0xA1, 0x04, 0x03, 0x80, 0x90, 0xA2, 0x70, 0x04, 0x81, 0x31, 0x32, 0x33});
  EXPECT_EQ(text.rfind("Message type:SETUP\n\tInformation element:Sending complete\n", 0), 0U);
  std::size_t prefixes = 0;
  for (std::size_t at = text.find("\tInformation element:"); at != std::string::npos;
       at = text.find("\tInformation element:", at + 1))
    ++prefixes;
  EXPECT_EQ(prefixes, 3U);
}

TEST(WalkRules, WholeOctetSendsSingleOctetsAndStrangersToTheDump) {
  EXPECT_EQ(Chosen(0x5A, 0x08), FindElement(0x08));
  EXPECT_EQ(Chosen(0x5A, 0x88), kUnknown);
  EXPECT_EQ(Chosen(0x5A, 0x96), kUnknown);  // shift is never recognised
  EXPECT_EQ(Chosen(0x05, 0x08), kUnknown);  // no Cause in SETUP
  EXPECT_EQ(Chosen(0x01, 0x34), FindElement(0x34));
  EXPECT_EQ(Chosen(0x02, 0x34), kUnknown);  // CALL PROCEEDING has no Signal
  EXPECT_EQ(Chosen(0x7D, 0x14), FindElement(0x14));
  EXPECT_EQ(Chosen(0x46, 0x79), FindElement(0x79));
  EXPECT_EQ(Chosen(0x26, 0x10), FindElement(0x10));
}

TEST(WalkRules, SetupTakesRepeatIndicatorAndSendingCompleteOnly) {
  for (int octet = 0xD0; octet <= 0xDF; ++octet) EXPECT_EQ(Chosen(0x05, static_cast<Octet>(octet)), FindElement(0xD0));
  EXPECT_EQ(Chosen(0x05, 0xA1), FindElement(0xA1));
  EXPECT_EQ(Chosen(0x05, 0xA0), kUnknown);
  EXPECT_EQ(Chosen(0x05, 0x21), kUnknown);
  EXPECT_EQ(Chosen(0x05, 0xB0), kUnknown);
  EXPECT_EQ(Chosen(0x05, 0x6C), FindElement(0x6C));
  EXPECT_EQ(Chosen(0x05, 0x4A), FindElement(0x4A));
}

TEST(WalkRules, UserInformationAndInformationIgnoreBitEight) {
  EXPECT_EQ(Chosen(0x20, 0x20), FindElement(0xA0));
  EXPECT_EQ(Chosen(0x20, 0xA0), FindElement(0xA0));
  EXPECT_EQ(Chosen(0x20, 0x7E), FindElement(0x7E));
  EXPECT_EQ(Chosen(0x20, 0xFE), FindElement(0x7E));
  EXPECT_EQ(Chosen(0x7B, 0x21), FindElement(0xA1));
  EXPECT_EQ(Chosen(0x7B, 0xA1), FindElement(0xA1));
  EXPECT_EQ(Chosen(0x7B, 0x88), FindElement(0x08));
  EXPECT_EQ(Chosen(0x7B, 0xA8), FindElement(0x28));
  EXPECT_EQ(Chosen(0x7B, 0xAC), FindElement(0x2C));
  EXPECT_EQ(Chosen(0x7B, 0xB4), FindElement(0x34));
  EXPECT_EQ(Chosen(0x7B, 0xF0), FindElement(0x70));
  EXPECT_EQ(Chosen(0x7B, 0x96), kUnknown);
}

TEST(WalkRules, CongestionControlTestsBitsSevenToFiveFirst) {
  for (const Octet octet : {0x30, 0x34, 0x3F, 0xB0, 0xBF}) EXPECT_EQ(Chosen(0x79, octet), FindElement(0xB0));
  EXPECT_EQ(Chosen(0x79, 0x08), FindElement(0x08));
  EXPECT_EQ(Chosen(0x79, 0x28), FindElement(0x28));
  EXPECT_EQ(Chosen(0x79, 0xA8), kUnknown);
}

TEST(WalkRules, SegmentShowsNoElementWhateverFollows) {
  EXPECT_EQ(Decode({0x08, 0x01, 0x01, 0x60, 0x04, 0x03, 0x80, 0x90, 0xA2}), "Message type:SEGMENT\n");
}

TEST(WalkRules, ElementOverrunningTheMessageEndsTheWalk) {
  EXPECT_EQ(Decode({0x08, 0x01, 0x81, 0x7D, 0x1C, 0x09, 0x01, 0x02}),
            "Message type:STATUS\n\tInformation element:Unknown ( 0x1c 0x9 0x1 0x2 )\n");
}

}  // namespace
}  // namespace velmora
