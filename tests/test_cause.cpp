// The Cause element's octets 3 to 4, and lengths and frames that cut it or its diagnostics short.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "cause.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::CaptureOutput;

const std::string kItu = "Cause\n\t\tCoding standard=00  ITU-T standardized coding\n";
const std::string kItuUser = kItu + "\t\tLocation=0000  user (U)\n";
// A user-located ITU-T cause without octet 3a, up to its value line.
std::string User(const std::string& causeClass, const std::string& value) {
  return kItuUser + "\t\tCause Class=" + causeClass + "\n\t\tCause Value=" + value + "\n";
}
const std::string kClearing = User("001  normal event", "0000  Normal call clearing");
const std::string kDiagnostics = "\t\tDiagnostics: Coding of ";
const std::string kNotAuthorized =
    User("011  service or option not available", "1001  Bearer capability not authorized") + kDiagnostics +
    "Attribute identity\n\t\t\tAttribute number=0110001  Information transfer capability\n" +
    "\t\t\tInformation transfer capability=01000  Unrestricted digital information\n";
const std::string kQ931 = "\t\tRecommendation=0000000  Q.931\n";

TEST(Cause, DecodesOctets3To4UpToTheElementsAndTheFramesEnd) {
  const testing::ElementCase cases[] = {

      {{0x08, 0x02, 0xCA, 0xFF},
       "Cause\n\t\tCoding standard=10  National standard\n\t\tLocation=1010  network beyond interworking point (BI)\n"
       "\t\tCause Class=111  interworking\n\t\tCause Value=1111  Interworking, unspecified\n"},
      // Location 1011 has no line; 1101 is national, in hexadecimal. An unlisted recommendation prints
      // nothing; octet 3a's own extension bit is not looked at, octet 4 follows it all the same.
      {{0x08, 0x02, 0xAB, 0xB1},
       "Cause\n\t\tCoding standard=01  ISO/IEC Standard\n\t\tCause Class=011  service or option not available\n"
       "\t\tCause Value=0001  Quality of service not available\n"},
      {{0x08, 0x03, 0x0D, 0x7F, 0xC5},
       kItu + "\t\tLocation= 0xd  reserved for national use\n\t\tCause Class=100  service or option not implemented\n"
              "\t\tCause Value=0101  Requested facility not implemented\n"},
      // Class 111 below 1111: only the class line, diagnostic octets ignored.
      {{0x08, 0x03, 0x80, 0xF0, 0x8A}, kItuUser + "\t\tCause Class=111  interworking\n"},

      // Normal, unspecified names no diagnostic coding.
      {{0x08, 0x04, 0x80, 0x9F, 0x8A, 0x01}, User("001  normal event", "1111  Normal, unspecified")},
      // Bit 8 of octet 4 is not part of the class.
      {{0x08, 0x02, 0x80, 0x6F}, User("110  protocol error", "1111  Protocol error, unspecified")},
      {{0x08, 0x00}, "Cause\n"},
      {{0x08, 0x01, 0x80, 0x90}, kItuUser},                // L = 1: octet 4 is the next element's, not decoded
      {{0x08, 0x02, 0x00, 0x80, 0x91}, kItuUser + kQ931},  // L = 2 with octet 3a: no octet 4
      // An octet behind the element is never taken for a diagnostic.
      {{0x08, 0x02, 0x80, 0x90, 0x8A}, kClearing},
      // The frame ends where diagnostics would start, or behind octet 3: the count comes from L,
      // and a length of 0x80 or more is unsigned.
      {{0x08, 0x05, 0x80, 0x90}, kClearing},
      {{0x08, 0xFE, 0x80}, kItuUser},
      // Diagnostics up to the element's end, and no further.
      {{0x08, 0x05, 0x80, 0xE1, 0x05, 0x99, 0x4D},
       User("110  protocol error", "0001  Message type non-existent or not implemented") + kDiagnostics +
           "Message type\n\t\t\tMessage type=00000101  SETUP\n\t\t\tMessage type=01001101  RELEASE\n"},
      {{0x08, 0x05, 0x80, 0xB9, 0x31, 0x08, 0x80},
       kNotAuthorized + "\t\t\tInformation transfer capability=00000  Speech\n"},
      {{0x08, 0x04, 0x80, 0xB9, 0x31, 0x08, 0x80}, kNotAuthorized},
      {{0x08, 0x04, 0x80, 0xD8, 0x01, 0x02, 0x08, 0x02},
       User("101  invalid message", "1000  Incompatible destination") + kDiagnostics +
           "Incompatible parameter\n\t\t\tDiagnostic field= 0x1 0x2\n"},
      // The frame ends inside the diagnostics: what it holds is shown.
      {{0x08, 0x06, 0x80, 0xE7, 0x01, 0x02},
       User("110  protocol error", "0111  Parameter non-existent or not implemented, passed on") + kDiagnostics +
           "parameter name\n\t\t\tDiagnostic field= 0x1 0x2\n"},
  };
  testing::ExpectDecodes(cases);
}

// The reading takes the location and value from the octets whose lines the
// decoder prints: octet 4 behind octet 3a when octet 3 announces it.
TEST(Cause, ReadingFindsOctet4WhereTheDecoderDoes) {
  const struct {
    std::vector<Octet> octets;
    std::optional<CauseReading> reading;
  } cases[] = {
      {{0x08, 0x02, 0x82, 0x91}, CauseReading{2, 0x11}},
      {{0x08, 0x03, 0x04, 0x80, 0x9F}, CauseReading{4, 0x1F}},
      {{0x08, 0x02, 0x02, 0x80, 0x9F}, CauseReading{2, std::nullopt}},  // octet 4 lies behind the element
      {{0x08, 0x03, 0x8A}, CauseReading{10, std::nullopt}},             // and behind the frame
      {{0x08, 0x00, 0x80, 0x90}, std::nullopt},
  };
  for (const auto& c : cases) {
    const std::optional<CauseReading> reading = ReadCause(ElementOctets(c.octets));
    ASSERT_EQ(reading.has_value(), c.reading.has_value());
    if (!reading) continue;
    EXPECT_EQ(reading->location, c.reading->location);
    EXPECT_EQ(reading->value, c.reading->value);
  }
}

}  // namespace
}  // namespace velmora
