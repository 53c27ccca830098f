// Calling, called and redirecting numbers and the two subaddresses.
#include <gtest/gtest.h>

#include <string>

#include "elements/element_decoders.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::DecodeOctets;

constexpr const char* kE164 =
    "\t\tNumbering plan identification=0001  ISDN/telephony numbering plan (Recommendation E.164 [19])\n";
constexpr const char* kUnknownType = "\t\tType of number=000  Unknown\n";
constexpr const char* kNationalType = "\t\tType of number=010  National number\n";

TEST(CalledPartyNumber, DigitsFollowOctet3WhateverItsExtensionBit) {
  const auto national = DecodeOctets(DecodeCalledPartyNumber, {0x70, 0x05, 0xA1, 0x30, 0x33, 0x30, 0x31});
  EXPECT_EQ(national.text, std::string("Called party number\n") + kNationalType + kE164 +
                               "\t\tNumber digits (IA5)= 0x30 0x33 0x30 0x31\n");
  EXPECT_EQ(national.count, 7);

  // Bit 8 of octet 3 is 0, yet 0x83 is a digit octet, not octet 3a.
  EXPECT_EQ(DecodeOctets(DecodeCalledPartyNumber, {0x70, 0x03, 0x21, 0x83, 0x35}).text,
            std::string("Called party number\n") + kNationalType + kE164 + "\t\tNumber digits (IA5)= 0x3 0x35\n");
  // No digit: the label still stands.
  EXPECT_EQ(DecodeOctets(DecodeCalledPartyNumber, {0x70, 0x01, 0xA1}).text,
            std::string("Called party number\n") + kNationalType + kE164 + "\t\tNumber digits (IA5)=\n");
}

TEST(CallingPartyNumber, Octet3aGivesPresentationAndScreening) {
  const auto restricted =
      DecodeOctets(DecodeCallingPartyNumber, {0x6C, 0x07, 0x11, 0xA1, 0x34, 0x39, 0x33, 0x30, 0x31});
  EXPECT_EQ(restricted.text, std::string("Calling party number\n") +
                                 "\t\tType of number=001  International number\n" + kE164 +
                                 "\t\tPresentation indicator=01  Presentation restricted\n"
                                 "\t\tScreening indicator=01  User-provided, verified and passed\n"
                                 "\t\tNumber digits (IA5)= 0x34 0x39 0x33 0x30 0x31\n");
  EXPECT_EQ(restricted.count, 9);

  EXPECT_EQ(DecodeOctets(DecodeCallingPartyNumber, {0x6C, 0x04, 0x21, 0x83, 0x35, 0x36}).text,
            std::string("Calling party number\n") + kNationalType + kE164 +
                "\t\tPresentation indicator=00  Presentation allowed\n"
                "\t\tScreening indicator=11  Network provided\n"
                "\t\tNumber digits (IA5)= 0x35 0x36\n");
}

TEST(CallingPartyNumber, NoDigitOctetsMeansNoDigitsLine) {
  EXPECT_EQ(DecodeOctets(DecodeCallingPartyNumber, {0x6C, 0x02, 0x01, 0xA0}).text,
            std::string("Calling party number\n") + kUnknownType + kE164 +
                "\t\tPresentation indicator=01  Presentation restricted\n"
                "\t\tScreening indicator=00  User-provided, not screened\n");
  // Type 101 has no row; no octet 3a is announced.
  const auto decoded = DecodeOctets(DecodeCallingPartyNumber, {0x6C, 0x01, 0xD1});
  EXPECT_EQ(decoded.text, std::string("Calling party number\n") + kE164);
  EXPECT_EQ(decoded.count, 3);
}

TEST(CallingPartyNumber, AnnouncedOctet3aIsReadBehindTheElementButNotBehindTheFrame) {
  const auto behind = DecodeOctets(DecodeCallingPartyNumber, {0x6C, 0x01, 0x21, 0x83});
  EXPECT_EQ(behind.text, std::string("Calling party number\n") + kNationalType + kE164 +
                             "\t\tPresentation indicator=00  Presentation allowed\n"
                             "\t\tScreening indicator=11  Network provided\n");
  EXPECT_EQ(behind.count, 3);
  EXPECT_EQ(DecodeOctets(DecodeCallingPartyNumber, {0x6C, 0x01, 0x21}).text,
            std::string("Calling party number\n") + kNationalType + kE164);
}

TEST(RedirectingNumber, Octet3bGivesTheReasonAndTheLabelHasNoBlank) {
  const auto decoded = DecodeOctets(DecodeRedirectingNumber, {0x74, 0x05, 0x01, 0x02, 0x8F, 0x37, 0x38});
  EXPECT_EQ(decoded.text,
            std::string("Redirecting number\n") + kUnknownType + kE164 +
                "\t\tPresentation indicator=00  Presentation allowed\n"
                "\t\tScreening indicator=10  User-provided, verified and failed\n"
                "\t\tReason for redirection=1111  Call forwarding unconditional or systematic call redirection\n"
                "\t\tNumber digits(IA5)= 0x37 0x38\n");
  EXPECT_EQ(decoded.count, 7);

  // No octet 3a: the digits start at octet 4, bit 8 dropped.
  EXPECT_EQ(DecodeOctets(DecodeRedirectingNumber, {0x74, 0x02, 0x81, 0xB9}).text,
            std::string("Redirecting number\n") + kUnknownType + kE164 + "\t\tNumber digits(IA5)= 0x39\n");

  // Octet 3b would lie behind the frame: no reason line, the empty digits line stays.
  const auto cutOff = DecodeOctets(DecodeRedirectingNumber, {0x74, 0x02, 0x01, 0x02});
  EXPECT_EQ(cutOff.text, std::string("Redirecting number\n") + kUnknownType + kE164 +
                             "\t\tPresentation indicator=00  Presentation allowed\n"
                             "\t\tScreening indicator=10  User-provided, verified and failed\n"
                             "\t\tNumber digits(IA5)=\n");
  EXPECT_EQ(cutOff.count, 4);
}

TEST(Subaddress, TypeOddEvenAndAllEightBitsOfTheInformation) {
  const auto called = DecodeOctets(DecodeCalledPartySubaddress, {0x71, 0x03, 0xA8, 0x50, 0xF1});
  EXPECT_EQ(called.text,
            "Called party subaddress\n"
            "\t\tType of subaddress=010  User specified\n"
            "\t\tOdd/even indicator=1  Odd number of address signals\n"
            "\t\tSubaddress information= 0x50 0xf1\n");
  EXPECT_EQ(called.count, 5);

  // Type 100 has no row; the information label stands even when empty.
  EXPECT_EQ(DecodeOctets(DecodeCallingPartySubaddress, {0x6D, 0x01, 0xC0}).text,
            "Calling party subaddress\n"
            "\t\tOdd/even indicator=0  Even number of address signals\n"
            "\t\tSubaddress information=\n");
}

TEST(PartyNumbers, LengthZeroLeavesTheHeadingAlone) {
  const struct {
    ElementDecoder decoder;
    Octet identifier;
    const char* heading;
  } cases[] = {{DecodeCallingPartyNumber, 0x6C, "Calling party number\n"},
               {DecodeCallingPartySubaddress, 0x6D, "Calling party subaddress\n"},
               {DecodeCalledPartyNumber, 0x70, "Called party number\n"},
               {DecodeCalledPartySubaddress, 0x71, "Called party subaddress\n"},
               {DecodeRedirectingNumber, 0x74, "Redirecting number\n"}};
  for (const auto& c : cases) {
    const auto decoded = DecodeOctets(c.decoder, {c.identifier, 0x00, 0x21});
    EXPECT_EQ(decoded.text, c.heading);
    EXPECT_EQ(decoded.count, 2);
  }
}

}  // namespace
}  // namespace velmora
