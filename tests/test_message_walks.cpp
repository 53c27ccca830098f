// Message-type dispatch and the match rules of the element walks.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "elements/element_decoders.h"
#include "q931/message.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::CaptureOutput;

ElementDecoder Chosen(Octet messageType, Octet identifier) {
  const MessageTypeInfo* type = FindMessageType(messageType);
  EXPECT_NE(type, nullptr);
  return ChooseDecoder(type->accepted, identifier);
}

TEST(Dispatch, KnowsExactlyTheTwentyFiveMessageTypes) {
  int known = 0;
  for (int value = 0; value < 256; ++value)
    if (FindMessageType(static_cast<Octet>(value)) != nullptr) ++known;
  EXPECT_EQ(known, 25);
  EXPECT_EQ(FindMessageType(0x5A)->name, "RELEASE COMPLETE");
  EXPECT_EQ(FindMessageType(0x79)->name, "CONGESTION CONTROL");
  EXPECT_EQ(FindMessageType(0x62), nullptr);
  EXPECT_EQ(FindMessageType(0x85), nullptr);  // bit 8 is not masked off
}

TEST(Dispatch, CallReferenceLengthLocatesTheMessageType) {
  // Two-octet call reference, as on a primary-rate interface.
  const std::vector<Octet> pri{0x08, 0x02, 0x00, 0x05, 0x7D};
  EXPECT_EQ(CaptureOutput([&](OutputWriter& out) { DecodeQ931Message(out, pri); }), "Message type:STATUS\n");
  // A call reference that runs past the message leaves no message type.
  const std::vector<Octet> cut{0x08, 0x03, 0x00, 0x05};
  EXPECT_EQ(CaptureOutput([&](OutputWriter& out) { DecodeQ931Message(out, cut); }), "Message type:Truncated message\n");
}

TEST(Dispatch, SetupWalkVisitsElementsByTheirCounts) {
  // Sending complete, bearer capability (5 octets), called party number (6).
  const std::vector<Octet> setup{0x08, 0x01, 0x05, 0x05, 0xA1, 0x04, 0x03, 0x80,
                                 0x90, 0xA2, 0x70, 0x04, 0x81, 0x31, 0x32, 0x33};
  const std::string text = CaptureOutput([&](OutputWriter& out) { DecodeQ931Message(out, setup); });
  EXPECT_EQ(text.rfind("Message type:SETUP\n\tInformation element:Sending complete\n", 0), 0U);
  std::size_t prefixes = 0;
  for (std::size_t at = text.find("\tInformation element:"); at != std::string::npos;
       at = text.find("\tInformation element:", at + 1))
    ++prefixes;
  EXPECT_EQ(prefixes, 3U);
}

TEST(WalkRules, WholeOctetSendsSingleOctetsAndStrangersToTheDump) {
  EXPECT_EQ(Chosen(0x5A, 0x08), &DecodeCause);
  EXPECT_EQ(Chosen(0x5A, 0x88), &DecodeUnknownElement);
  EXPECT_EQ(Chosen(0x5A, 0x96), &DecodeUnknownElement);  // shift is never recognised
  EXPECT_EQ(Chosen(0x05, 0x08), &DecodeUnknownElement);  // no Cause in SETUP
  EXPECT_EQ(Chosen(0x01, 0x34), &DecodeSignal);
  EXPECT_EQ(Chosen(0x02, 0x34), &DecodeUnknownElement);  // CALL PROCEEDING has no Signal
  EXPECT_EQ(Chosen(0x7D, 0x14), &DecodeCallState);
  EXPECT_EQ(Chosen(0x46, 0x79), &DecodeRestartIndicator);
  EXPECT_EQ(Chosen(0x26, 0x10), &DecodeCallIdentity);
}

TEST(WalkRules, SetupTakesRepeatIndicatorAndSendingCompleteOnly) {
  for (int octet = 0xD0; octet <= 0xDF; ++octet)
    EXPECT_EQ(Chosen(0x05, static_cast<Octet>(octet)), &DecodeRepeatIndicator);
  EXPECT_EQ(Chosen(0x05, 0xA1), &DecodeSendingComplete);
  EXPECT_EQ(Chosen(0x05, 0xA0), &DecodeUnknownElement);
  EXPECT_EQ(Chosen(0x05, 0x21), &DecodeUnknownElement);
  EXPECT_EQ(Chosen(0x05, 0xB0), &DecodeUnknownElement);
  EXPECT_EQ(Chosen(0x05, 0x6C), &DecodeCallingPartyNumber);
  EXPECT_EQ(Chosen(0x05, 0x4A), &DecodeReverseChargingIndication);
}

TEST(WalkRules, UserInformationAndInformationIgnoreBitEight) {
  EXPECT_EQ(Chosen(0x20, 0x20), &DecodeMoreData);
  EXPECT_EQ(Chosen(0x20, 0xA0), &DecodeMoreData);
  EXPECT_EQ(Chosen(0x20, 0x7E), &DecodeUserUser);
  EXPECT_EQ(Chosen(0x20, 0xFE), &DecodeUserUser);
  EXPECT_EQ(Chosen(0x7B, 0x21), &DecodeSendingComplete);
  EXPECT_EQ(Chosen(0x7B, 0xA1), &DecodeSendingComplete);
  EXPECT_EQ(Chosen(0x7B, 0x88), &DecodeCause);
  EXPECT_EQ(Chosen(0x7B, 0xA8), &DecodeDisplay);
  EXPECT_EQ(Chosen(0x7B, 0xAC), &DecodeKeypadFacility);
  EXPECT_EQ(Chosen(0x7B, 0xB4), &DecodeSignal);
  EXPECT_EQ(Chosen(0x7B, 0xF0), &DecodeCalledPartyNumber);
  EXPECT_EQ(Chosen(0x7B, 0x96), &DecodeUnknownElement);
}

TEST(WalkRules, CongestionControlTestsBitsSevenToFiveFirst) {
  for (const Octet octet : {0x30, 0x34, 0x3F, 0xB0, 0xBF}) EXPECT_EQ(Chosen(0x79, octet), &DecodeCongestionLevel);
  EXPECT_EQ(Chosen(0x79, 0x08), &DecodeCause);
  EXPECT_EQ(Chosen(0x79, 0x28), &DecodeDisplay);
  EXPECT_EQ(Chosen(0x79, 0xA8), &DecodeUnknownElement);
}

TEST(WalkRules, SegmentShowsNoElementWhateverFollows) {
  const std::vector<Octet> segment{0x08, 0x01, 0x01, 0x60, 0x04, 0x03, 0x80, 0x90, 0xA2};
  EXPECT_EQ(CaptureOutput([&](OutputWriter& out) { DecodeQ931Message(out, segment); }), "Message type:SEGMENT\n");
}

TEST(WalkRules, ElementOverrunningTheMessageEndsTheWalk) {
  const std::vector<Octet> status{0x08, 0x01, 0x81, 0x7D, 0x1C, 0x09, 0x01, 0x02};
  EXPECT_EQ(CaptureOutput([&](OutputWriter& out) { DecodeQ931Message(out, status); }),
            "Message type:STATUS\n\tInformation element:Unknown ( 0x1c 0x9 0x1 0x2 )\n");
}

}  // namespace
}  // namespace velmora
