// High layer compatibility (0x7D): octet 3, octet 4 and its reserved codes, octet 4a's forms, the element's end.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"

namespace velmora {
namespace {

using testing::DecodeOctets;

const std::string kHeading = "High layer compatibility\n";
const std::string kCoding = "\t\tCoding standard=00  ITU-T standardized coding\n";
const std::string kInterpretation =
    "\t\tInterpretation=100  First (primary or only) high layer characteristics "
    "identification to be used in the call\n";
const std::string kPresentation =
    "\t\tPresentation method of protocol profile=01  High layer protocol profile "
    "(without specification of attributes)\n";
const std::string kOctet3 = kHeading + kCoding + kInterpretation + kPresentation;  // octet 3 = 0x91
const std::string kMaintenance = "\t\tHigh layer characteristics identification=1011110  Reserved for maintenance\n";
const std::string kTelephony = "\t\tHigh layer characteristics identification=0000001  Telephony\n";
const std::string kVideotelephony =
    "\t\tHigh layer characteristics identification=1100000  Videotelephony "
    "(Recommendations F.720 [91] and F.721 [79]) and F.731 profile 1a)\n";

TEST(HighLayerCompatibility, DecodesOctets3To4aUpToTheElementsAndTheFramesEnd) {
  const testing::ElementCase cases[] = {
      {{0x7D, 0x00}, kHeading},
      // Octet 3 fields without rows print nothing.
      {{0x7D, 0x02, 0x92, 0x81}, kHeading + kCoding + kInterpretation + kTelephony},
      {{0x7D, 0x02, 0x81, 0x84},
       kHeading + kCoding + kPresentation +
           "\t\tHigh layer characteristics "
           "identification=0000100  Facsimile Group 2/3 (Recommendation F.182 [68])\n"},
      {{0x7D, 0x03, 0x91, 0x5E, 0x81},
       kOctet3 + kMaintenance + "\t\tExtended high layer characteristics identification=0000001  Telephony\n"},
      {{0x7D, 0x03, 0x91, 0x5F, 0xDE},
       kOctet3 + "\t\tHigh layer characteristics identification=1011111  Reserved for management\n"
                 "\t\tExtended high layer characteristics identification=1011110  Not available for assignment\n"},
      {{0x7D, 0x03, 0x91, 0x63, 0x81},
       kOctet3 + "\t\tHigh layer characteristics identification=0x63  Reserved for audiovisual services "
                 "(F.700-series Recommendations [80])\n\t\tExtended audiovisual characteristics "
                 "identification=0000001  Capability set of initial channel of H.221\n"},
      // The reserved-code line belongs to octet 4 only.
      {{0x7D, 0x03, 0x91, 0x5E, 0xE3}, kOctet3 + kMaintenance},
      // Videotelephony gives octet 4a no meaning: it is not shown.
      {{0x7D, 0x03, 0x91, 0x60, 0x81}, kOctet3 + kVideotelephony},
      // 1101001: no row, and not a reserved audiovisual code.
      {{0x7D, 0x02, 0x91, 0xE9}, kOctet3},
      // The element ends after octet 3, or before an announced octet 4a.
      {{0x7D, 0x01, 0x91, 0x81}, kOctet3},
      {{0x7D, 0x02, 0x91, 0x5E, 0x81}, kOctet3 + kMaintenance},
      // Octet 4a announced and inside the element, but the frame ends first.
      {{0x7D, 0x03, 0x91, 0x5E}, kOctet3 + kMaintenance},
      // Octets after octet 4 are not decoded.
      {{0x7D, 0x05, 0x91, 0xE0, 0xAA, 0xBB, 0xCC}, kOctet3 + kVideotelephony},
  };
  testing::ExpectDecodes(cases);
}

TEST(HighLayerCompatibility, ReservedAudiovisualCodesAreTwoRanges) {
  // 0x62 and 0x68 have rows of their own; 0x69, 0x6A and 0x70 are nothing.
  for (const Octet code : {0x62, 0x63, 0x67, 0x68, 0x69, 0x6A, 0x6B, 0x6F, 0x70}) {
    const bool reserved = code == 0x63 || code == 0x67 || code == 0x6B || code == 0x6F;
    const auto text = DecodeOctets({0x7D, 0x02, 0x91, Octet(0x80 | code)});
    EXPECT_EQ(text.find("Reserved for audiovisual services") != std::string::npos, reserved) << std::hex << int{code};
  }
}

}  // namespace
}  // namespace velmora
