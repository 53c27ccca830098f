// High layer compatibility (0x7D): octet 3's three fields, octet 4 with its
// reserved audiovisual codes, and the forms of octet 4a.
#include <gtest/gtest.h>

#include <string>

#include "elements/element_decoders.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::DecodeOctets;

const std::string kHeading = "High layer compatibility\n";
const std::string kCoding = "\t\tCoding standard=00  ITU-T standardized coding\n";
const std::string kInterpretation =
    "\t\tInterpretation=100  First (primary or only) high layer characteristics identification to be used in the "
    "call\n";
const std::string kPresentation =
    "\t\tPresentation method of protocol profile=01  High layer protocol profile (without specification of "
    "attributes)\n";
// Octet 3 = 0x91.
const std::string kOctet3 = kHeading + kCoding + kInterpretation + kPresentation;
const std::string kMaintenance = "\t\tHigh layer characteristics identification=1011110  Reserved for maintenance\n";
const std::string kTelephony = "\t\tHigh layer characteristics identification=0000001  Telephony\n";
const std::string kVideotelephony =
    "\t\tHigh layer characteristics identification=1100000  Videotelephony (Recommendations F.720 [91] and F.721 "
    "[79]) and F.731 profile 1a)\n";

TEST(HighLayerCompatibility, EmptyElementPrintsOnlyTheHeading) {
  const auto decoded = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x00});
  EXPECT_EQ(decoded.text, kHeading);
  EXPECT_EQ(decoded.count, 2);
}

TEST(HighLayerCompatibility, Octet3FieldsWithoutRowsPrintNothing) {
  const auto all = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x02, 0x91, 0x81});
  EXPECT_EQ(all.text, kOctet3 + kTelephony);
  EXPECT_EQ(all.count, 4);

  const auto noPresentation = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x02, 0x92, 0x81});
  EXPECT_EQ(noPresentation.text, kHeading + kCoding + kInterpretation + kTelephony);

  const auto noInterpretation = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x02, 0x81, 0x84});
  EXPECT_EQ(noInterpretation.text,
            kHeading + kCoding + kPresentation +
                "\t\tHigh layer characteristics identification=0000100  Facsimile Group 2/3 (Recommendation F.182 "
                "[68])\n");
  EXPECT_EQ(noInterpretation.count, 4);
}

TEST(HighLayerCompatibility, Octet4aForms) {
  const auto maintenance = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x03, 0x91, 0x5E, 0x81});
  EXPECT_EQ(maintenance.text,
            kOctet3 + kMaintenance + "\t\tExtended high layer characteristics identification=0000001  Telephony\n");
  EXPECT_EQ(maintenance.count, 5);

  const auto management = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x03, 0x91, 0x5F, 0xDE});
  EXPECT_EQ(management.text,
            kOctet3 +
                "\t\tHigh layer characteristics identification=1011111  Reserved for management\n"
                "\t\tExtended high layer characteristics identification=1011110  Not available for assignment\n");

  const auto audiovisual = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x03, 0x91, 0x63, 0x81});
  EXPECT_EQ(audiovisual.text,
            kOctet3 +
                "\t\tHigh layer characteristics identification=0x63  Reserved for audiovisual services "
                "(F.700-series Recommendations [80])\n"
                "\t\tExtended audiovisual characteristics identification=0000001  Capability set of initial "
                "channel of H.221\n");
  EXPECT_EQ(audiovisual.count, 5);

  // The reserved-code line belongs to octet 4 only.
  const auto reservedIn4a = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x03, 0x91, 0x5E, 0xE3});
  EXPECT_EQ(reservedIn4a.text, kOctet3 + kMaintenance);

  // Videotelephony gives octet 4a no meaning: it is not shown.
  const auto unsettled = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x03, 0x91, 0x60, 0x81});
  EXPECT_EQ(unsettled.text, kOctet3 + kVideotelephony);
  EXPECT_EQ(unsettled.count, 5);
}

TEST(HighLayerCompatibility, ReservedAudiovisualCodesAreTwoRanges) {
  for (const Octet code : {0x63, 0x67, 0x6B, 0x6F}) {
    const auto decoded = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x02, 0x91, Octet(0x80 | code)});
    EXPECT_NE(decoded.text.find("Reserved for audiovisual services"), std::string::npos) << std::hex << int{code};
  }
  // 0x62 and 0x68 have rows of their own; 0x69, 0x6A and 0x70 are nothing.
  for (const Octet code : {0x62, 0x68, 0x69, 0x6A, 0x70}) {
    const auto decoded = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x02, 0x91, Octet(0x80 | code)});
    EXPECT_EQ(decoded.text.find("Reserved for audiovisual services"), std::string::npos) << std::hex << int{code};
  }
  const auto unnamed = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x02, 0x91, 0xE9});
  EXPECT_EQ(unnamed.text, kOctet3);
  EXPECT_EQ(unnamed.count, 4);
}

TEST(HighLayerCompatibility, StopsAtTheElementsEndAndAfterOctet4a) {
  const auto octet3Only = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x01, 0x91, 0x81});
  EXPECT_EQ(octet3Only.text, kOctet3);
  EXPECT_EQ(octet3Only.count, 3);

  // Octet 4a announced, but it would be the next element's octet.
  const auto no4a = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x02, 0x91, 0x5E, 0x81});
  EXPECT_EQ(no4a.text, kOctet3 + kMaintenance);
  EXPECT_EQ(no4a.count, 4);

  // Announced and inside the element, but the frame ends first.
  const auto shortFrame = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x03, 0x91, 0x5E});
  EXPECT_EQ(shortFrame.text, kOctet3 + kMaintenance);
  EXPECT_EQ(shortFrame.count, 5);

  const auto trailing = DecodeOctets(DecodeHighLayerCompatibility, {0x7D, 0x05, 0x91, 0xE0, 0xAA, 0xBB, 0xCC});
  EXPECT_EQ(trailing.text, kOctet3 + kVideotelephony);
  EXPECT_EQ(trailing.count, 7);
}

}  // namespace
}  // namespace velmora
