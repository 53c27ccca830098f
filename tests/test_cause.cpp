// The Cause element: coding standard, location, recommendation, class and
// value, as clearing messages carry them; lengths that cut the element short.
#include <gtest/gtest.h>

#include <vector>

#include "elements/element_decoders.h"
#include "q931/message.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::CaptureOutput;
using testing::DecodeOctets;

constexpr const char* kItuUser =
    "Cause\n"
    "\t\tCoding standard=00  ITU-T standardized coding\n"
    "\t\tLocation=0000  user (U)\n";

TEST(Cause, ClearingCausesWithoutDiagnostics) {
  // Normal call clearing from the user, no octet 3a.
  const auto normal = DecodeOctets(DecodeCause, {0x08, 0x02, 0x80, 0x90});
  EXPECT_EQ(normal.text, std::string(kItuUser) +
                             "\t\tCause Class=001  normal event\n"
                             "\t\tCause Value=0000  Normal call clearing\n");
  EXPECT_EQ(normal.count, 4);

  // User busy from the local public network, with the recommendation octet.
  const auto busy = DecodeOctets(DecodeCause, {0x08, 0x03, 0x02, 0x80, 0x91});
  EXPECT_EQ(busy.text,
            "Cause\n"
            "\t\tCoding standard=00  ITU-T standardized coding\n"
            "\t\tLocation=0010  public network serving the local user (LN)\n"
            "\t\tRecommendation=0000000  Q.931\n"
            "\t\tCause Class=001  normal event\n"
            "\t\tCause Value=0001  User busy\n");
  EXPECT_EQ(busy.count, 5);

  // No route to destination from a transit network.
  const auto noRoute = DecodeOctets(DecodeCause, {0x08, 0x02, 0x83, 0x83});
  EXPECT_EQ(noRoute.text,
            "Cause\n"
            "\t\tCoding standard=00  ITU-T standardized coding\n"
            "\t\tLocation=0011  transit network (TN)\n"
            "\t\tCause Class=000  normal event\n"
            "\t\tCause Value=0011  No route to destination\n");
  EXPECT_EQ(noRoute.count, 4);
}

TEST(Cause, CodingStandardLocationAndRecommendationLines) {
  // Coding standard 11, international network; recommendation X.25.
  EXPECT_EQ(DecodeOctets(DecodeCause, {0x08, 0x03, 0x67, 0x04, 0xAA}).text,
            "Cause\n"
            "\t\tCoding standard=11  Standard specific to identified location\n"
            "\t\tLocation=0111  international network (INTL)\n"
            "\t\tRecommendation=0000100  X.25\n"
            "\t\tCause Class=010  resource unavailable\n"
            "\t\tCause Value=1010  Switching equipment congestion\n");

  // Coding standard 10, beyond the interworking point, interworking unspecified.
  EXPECT_EQ(DecodeOctets(DecodeCause, {0x08, 0x02, 0xCA, 0xFF}).text,
            "Cause\n"
            "\t\tCoding standard=10  National standard\n"
            "\t\tLocation=1010  network beyond interworking point (BI)\n"
            "\t\tCause Class=111  interworking\n"
            "\t\tCause Value=1111  Interworking, unspecified\n");

  // Location 1011 has no line; 1101 is national and shown in hexadecimal. An
  // unlisted recommendation prints nothing; octet 3a's own extension bit is
  // not looked at, octet 4 follows it all the same.
  EXPECT_EQ(DecodeOctets(DecodeCause, {0x08, 0x02, 0xAB, 0xB1}).text,
            "Cause\n"
            "\t\tCoding standard=01  ISO/IEC Standard\n"
            "\t\tCause Class=011  service or option not available\n"
            "\t\tCause Value=0001  Quality of service not available\n");
  EXPECT_EQ(DecodeOctets(DecodeCause, {0x08, 0x03, 0x0D, 0x7F, 0xC5}).text,
            "Cause\n"
            "\t\tCoding standard=00  ITU-T standardized coding\n"
            "\t\tLocation= 0xd  reserved for national use\n"
            "\t\tCause Class=100  service or option not implemented\n"
            "\t\tCause Value=0101  Requested facility not implemented\n");
}

TEST(Cause, ValuesWithoutRowOrWithoutCodingShowNoDiagnostics) {
  // Class 111 below 1111: only the class line, diagnostic octets ignored.
  EXPECT_EQ(DecodeOctets(DecodeCause, {0x08, 0x03, 0x80, 0xF0, 0x8A}).text,
            std::string(kItuUser) + "\t\tCause Class=111  interworking\n");
  // Class 001 has no value 1000.
  EXPECT_EQ(DecodeOctets(DecodeCause, {0x08, 0x03, 0x80, 0x98, 0x8A}).text,
            std::string(kItuUser) + "\t\tCause Class=001  normal event\n");
  // Normal, unspecified names no diagnostic coding.
  const auto unspecified = DecodeOctets(DecodeCause, {0x08, 0x04, 0x80, 0x9F, 0x8A, 0x01});
  EXPECT_EQ(unspecified.text, std::string(kItuUser) +
                                  "\t\tCause Class=001  normal event\n"
                                  "\t\tCause Value=1111  Normal, unspecified\n");
  EXPECT_EQ(unspecified.count, 6);
  // Bit 8 of octet 4 is not part of the class.
  EXPECT_EQ(DecodeOctets(DecodeCause, {0x08, 0x02, 0x80, 0x6F}).text,
            std::string(kItuUser) +
                "\t\tCause Class=110  protocol error\n"
                "\t\tCause Value=1111  Protocol error, unspecified\n");
}

TEST(Cause, ElementCutShortByItsLength) {
  const auto empty = DecodeOctets(DecodeCause, {0x08, 0x00});
  EXPECT_EQ(empty.text, "Cause\n");
  EXPECT_EQ(empty.count, 2);

  // L = 1: octet 4 belongs to the next element and is not decoded.
  const auto onlyOctet3 = DecodeOctets(DecodeCause, {0x08, 0x01, 0x80, 0x90});
  EXPECT_EQ(onlyOctet3.text, kItuUser);
  EXPECT_EQ(onlyOctet3.count, 3);

  // L = 2 with octet 3a announced: the element ends before octet 4.
  const auto noOctet4 = DecodeOctets(DecodeCause, {0x08, 0x02, 0x00, 0x80, 0x91});
  EXPECT_EQ(noOctet4.text, std::string(kItuUser) + "\t\tRecommendation=0000000  Q.931\n");
  EXPECT_EQ(noOctet4.count, 4);

  // An octet behind the element is never taken for a diagnostic.
  const auto followed = DecodeOctets(DecodeCause, {0x08, 0x02, 0x80, 0x90, 0x8A});
  EXPECT_EQ(followed.text, std::string(kItuUser) +
                               "\t\tCause Class=001  normal event\n"
                               "\t\tCause Value=0000  Normal call clearing\n");
  EXPECT_EQ(followed.count, 4);
}

TEST(Cause, ElementCutShortByTheFrame) {
  // The frame ends behind octet 3: the count still comes from the length.
  const auto afterOctet3 = DecodeOctets(DecodeCause, {0x08, 0x02, 0x80});
  EXPECT_EQ(afterOctet3.text, kItuUser);
  EXPECT_EQ(afterOctet3.count, 4);

  // The frame ends where the diagnostics would start: no heading for them.
  const auto beforeDiagnostics = DecodeOctets(DecodeCause, {0x08, 0x05, 0x80, 0x90});
  EXPECT_EQ(beforeDiagnostics.text, std::string(kItuUser) +
                                        "\t\tCause Class=001  normal event\n"
                                        "\t\tCause Value=0000  Normal call clearing\n");
  EXPECT_EQ(beforeDiagnostics.count, 7);

  // A length of 0x80 or more is unsigned.
  const auto longLength = DecodeOctets(DecodeCause, {0x08, 0xFE, 0x80});
  EXPECT_EQ(longLength.text, kItuUser);
  EXPECT_EQ(longLength.count, 256);
}

TEST(Cause, ReleaseCompleteWalksPastEachCause) {
  // Two Cause elements: the walk moves on by each one's count.
  const std::vector<Octet> message{0x08, 0x01, 0x81, 0x5A,                    // header
                                   0x08, 0x03, 0x80, 0x90, 0x8A,              // normal call clearing
                                   0x08, 0x04, 0x02, 0x80, 0x91, 0x02};       // user busy
  EXPECT_EQ(CaptureOutput([&] { DecodeQ931Message(OctetSpan(message)); }),
            "Message type:RELEASE COMPLETE\n"
            "\tInformation element:Cause\n"
            "\t\tCoding standard=00  ITU-T standardized coding\n"
            "\t\tLocation=0000  user (U)\n"
            "\t\tCause Class=001  normal event\n"
            "\t\tCause Value=0000  Normal call clearing\n"
            "\t\tDiagnostics: Coding of condition\n"
            "\t\t\tBit 4=1  Network service - User\n"
            "\t\t\tBit 3=0  Normal\n"
            "\t\t\tBits 2-1=10  Transient\n"
            "\tInformation element:Cause\n"
            "\t\tCoding standard=00  ITU-T standardized coding\n"
            "\t\tLocation=0010  public network serving the local user (LN)\n"
            "\t\tRecommendation=0000000  Q.931\n"
            "\t\tCause Class=001  normal event\n"
            "\t\tCause Value=0001  User busy\n"
            "\t\tDiagnostics: Coding of CCBS indicator\n"
            "\t\t\tBits 8-1=00000010  CCBS not possible\n");
}

}  // namespace
}  // namespace velmora
