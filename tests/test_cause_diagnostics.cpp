// The diagnostics of Cause elements, one group per coding, reached through the
// cause values that select them; and diagnostics cut short.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "elements/cause.h"
#include "elements/element_decoders.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::CaptureOutput;
using testing::DecodeOctets;

// The lines in front of the diagnostics of a user-located ITU-T cause with
// no octet 3a.
std::string Head(const char* causeClass, const char* causeValue) {
  return std::string("Cause\n\t\tCoding standard=00  ITU-T standardized coding\n\t\tLocation=0000  user (U)\n") +
         "\t\tCause Class=" + causeClass + "\n\t\tCause Value=" + causeValue + "\n";
}

// What a Cause element of the user with cause octet `cause` and the given
// diagnostic octets prints after its value line.
std::string DiagnosticsOf(Octet cause, std::vector<Octet> diagnostics) {
  std::vector<Octet> element{0x08, static_cast<Octet>(2 + diagnostics.size()), 0x80, cause};
  element.insert(element.end(), diagnostics.begin(), diagnostics.end());
  const std::string text = DecodeOctets(DecodeCause, element).text;
  const std::size_t heading = text.find("\t\tDiagnostics");
  return heading == std::string::npos ? std::string() : text.substr(heading);
}

TEST(CauseDiagnostics, ConditionReadsBits4To1OfTheFirstOctet) {
  const auto normal = DecodeOctets(DecodeCause, {0x08, 0x03, 0x80, 0x90, 0x8A});
  EXPECT_EQ(normal.text, Head("001  normal event", "0000  Normal call clearing") +
                             "\t\tDiagnostics: Coding of condition\n"
                             "\t\t\tBit 4=1  Network service - User\n"
                             "\t\t\tBit 3=0  Normal\n"
                             "\t\t\tBits 2-1=10  Transient\n");
  EXPECT_EQ(normal.count, 5);

  // No route to destination: bits 2-1 = 11 have no line; further octets are ignored.
  EXPECT_EQ(DiagnosticsOf(0x83, {0x83, 0xFF}),
            "\t\tDiagnostics: Coding of condition\n"
            "\t\t\tBit 4=0  Network service - Provider\n"
            "\t\t\tBit 3=0  Normal\n");
  // Unallocated number, abnormal and permanent; bits 8-5 play no part.
  EXPECT_EQ(DiagnosticsOf(0x81, {0xF5}),
            "\t\tDiagnostics: Coding of condition\n"
            "\t\t\tBit 4=0  Network service - Provider\n"
            "\t\t\tBit 3=1  Abnormal\n"
            "\t\t\tBits 2-1=01  Permanent\n");
}

TEST(CauseDiagnostics, CcbsIndicatorOnUserBusyAndNoCircuit) {
  const std::string heading = "\t\tDiagnostics: Coding of CCBS indicator\n";
  EXPECT_EQ(DiagnosticsOf(0x91, {0x01}), heading + "\t\t\tBits 8-1=00000001  CCBS possible\n");
  EXPECT_EQ(DiagnosticsOf(0xA2, {0x02}), heading + "\t\t\tBits 8-1=00000010  CCBS not possible\n");
  EXPECT_EQ(DiagnosticsOf(0x91, {0x00}), heading + "\t\t\tBits 8-1=0x0  Spare\n");
  EXPECT_EQ(DiagnosticsOf(0x91, {0x7F, 0x01}), heading + "\t\t\tBits 8-1=0x7f  Spare\n");
  EXPECT_EQ(DiagnosticsOf(0x91, {0x80}), heading + "\t\t\tBits 8-1=0x80  Spare for national use\n");
  EXPECT_EQ(DiagnosticsOf(0xA2, {0xFE}), heading + "\t\t\tBits 8-1=0xfe  Spare for national use\n");
  EXPECT_EQ(DiagnosticsOf(0x91, {0xFF}), heading + "\t\t\tBits 8-1=11111111  Reserved for extension\n");
}

TEST(CauseDiagnostics, CallRejectedReasonConditionAndNamedElements) {
  const std::string heading = "\t\tDiagnostics: Coding of Call rejected diagnostic\n";
  // User specific, permanent, no further octets.
  EXPECT_EQ(DiagnosticsOf(0x95, {0x81}), heading +
                                             "\t\t\tRejection reason=00000  user specific\n"
                                             "\t\t\tCondition=01  permanent\n");
  // User specific with its own octets.
  EXPECT_EQ(DiagnosticsOf(0x95, {0x80, 0x12, 0xA4}), heading +
                                                         "\t\t\tRejection reason=00000  user specific\n"
                                                         "\t\t\tCondition=00  unknown\n"
                                                         "\t\t\tUser specific diagnostic= 0x12 0xa4\n");
  // Information element missing: the Channel identification.
  EXPECT_EQ(DiagnosticsOf(0x95, {0x85, 0x18}),
            heading +
                "\t\t\tRejection reason=00001  information element missing\n"
                "\t\t\tCondition=01  permanent\n"
                "\t\t\tInformation element type=0  variable length information element\n"
                "\t\t\tInformation element identifier= 0x18\n");
  // Contents not sufficient, two elements, the second a single-octet one.
  EXPECT_EQ(DiagnosticsOf(0x95, {0x8A, 0x6C, 0xA1}),
            heading +
                "\t\t\tRejection reason=00010  information element contents are not sufficient\n"
                "\t\t\tCondition=10  transient\n"
                "\t\t\tInformation element type=0  variable length information element\n"
                "\t\t\tInformation element identifier= 0x6c\n"
                "\t\t\tInformation element type=1  fixed length information element\n"
                "\t\t\tInformation element identifier= 0x21\n");
  // An unlisted reason: only the condition line, the rest skipped.
  EXPECT_EQ(DiagnosticsOf(0x95, {0x8F, 0x18}), heading + "\t\t\tCondition=11  spare\n");
}

TEST(CauseDiagnostics, OctetDumpCodings) {
  EXPECT_EQ(DiagnosticsOf(0x82, {0x31, 0x05, 0xA0}),
            "\t\tDiagnostics: Coding of Transit network identity\n"
            "\t\t\tDiagnostic field= 0x31 0x5 0xa0\n");
  EXPECT_EQ(DiagnosticsOf(0x96, {0x80, 0x0A}),
            "\t\tDiagnostics: Coding of New destination/Called party number\n"
            "\t\t\tDiagnostic field= 0x80 0xa\n");
  EXPECT_EQ(DiagnosticsOf(0x9D, {0x00, 0xFF}),
            "\t\tDiagnostics: Coding of Facility identification/Rejected parameter\n"
            "\t\t\tDiagnostic field= 0x0 0xff\n");
  EXPECT_EQ(DiagnosticsOf(0xD8, {0x04, 0x7C}),
            "\t\tDiagnostics: Coding of Incompatible parameter\n"
            "\t\t\tDiagnostic field= 0x4 0x7c\n");
  // Timer T303: its IA5 characters shown as octets.
  EXPECT_EQ(DiagnosticsOf(0xE6, {0x33, 0x30, 0x33}),
            "\t\tDiagnostics: Coding of Timer number\n"
            "\t\t\tDiagnostic field(IA5)= 0x33 0x30 0x33\n");
  EXPECT_EQ(DiagnosticsOf(0xEE, {0x70}),
            "\t\tDiagnostics: Coding of parameter name\n"
            "\t\t\tDiagnostic field= 0x70\n");
}

TEST(CauseDiagnostics, ChannelTypeAndMessageType) {
  EXPECT_EQ(DiagnosticsOf(0xC2, {0xF3, 0x85}),
            "\t\tDiagnostics: Coding of Channel type\n"
            "\t\t\tChannel type=0011  B-channel units\n");
  // No row: only the heading.
  EXPECT_EQ(DiagnosticsOf(0xC2, {0x85}), "\t\tDiagnostics: Coding of Channel type\n");

  const auto unknownType = DecodeOctets(DecodeCause, {0x08, 0x05, 0x80, 0xE1, 0x05, 0x99, 0x4D});
  EXPECT_EQ(unknownType.text,
            Head("110  protocol error", "0001  Message type non-existent or not implemented") +
                "\t\tDiagnostics: Coding of Message type\n"
                "\t\t\tMessage type=00000101  SETUP\n"
                "\t\t\tMessage type=01001101  RELEASE\n");
  EXPECT_EQ(unknownType.count, 7);
  EXPECT_EQ(DiagnosticsOf(0xE5, {0x7D, 0x00}),
            "\t\tDiagnostics: Coding of Message type\n"
            "\t\t\tMessage type=01111101  STATUS\n");
}

TEST(CauseDiagnostics, AttributeIdentityRunsEndOnBit8) {
  const auto notAuthorized = DecodeOctets(DecodeCause, {0x08, 0x05, 0x80, 0xB9, 0x31, 0x08, 0x80});
  EXPECT_EQ(notAuthorized.text,
            Head("011  service or option not available", "1001  Bearer capability not authorized") +
                "\t\tDiagnostics: Coding of Attribute identity\n"
                "\t\t\tAttribute number=0110001  Information transfer capability\n"
                "\t\t\tInformation transfer capability=01000  Unrestricted digital information\n"
                "\t\t\tInformation transfer capability=00000  Speech\n");
  EXPECT_EQ(notAuthorized.count, 7);

  // Several groups; a value octet with bit 8 = 1 ends a run at once.
  EXPECT_EQ(DiagnosticsOf(0xBA, {0x32, 0x80, 0x33, 0x10, 0x90, 0xB4, 0xA0, 0x35, 0x84, 0x36, 0x83}),
            "\t\tDiagnostics: Coding of Attribute identity\n"
            "\t\t\tAttribute number=0110010  Information transfer mode\n"
            "\t\t\tTransfer mode=00  Circuit mode\n"
            "\t\t\tAttribute number=0110011  Information transfer rate\n"
            "\t\t\tInformation transfer rate=10000  64 kbit/s\n"
            "\t\t\tInformation transfer rate=10000  64 kbit/s\n"
            "\t\t\tAttribute number=0110100  Structure\n"
            "\t\t\tStructure=0x2  8 kHz integrity\n"
            "\t\t\tAttribute number=0110101  Configuration\n"
            "\t\t\tConfiguration=0x1  Point-to-point\n"
            "\t\t\tAttribute number=0110110  Establishment\n"
            "\t\t\tEstablishment=0x3  Demand\n");

  EXPECT_EQ(DiagnosticsOf(0xC1, {0x37, 0xA0, 0x38, 0x97, 0x39, 0x22, 0x42, 0xEB, 0x39, 0x9F}),
            "\t\tDiagnostics: Coding of Attribute identity\n"
            "\t\t\tAttribute number=0110111  Symmetry\n"
            "\t\t\tSymmetry=0x1  Bi-directional symmetric\n"
            "\t\t\tAttribute number=0111000  Information transfer rate (dest. --> orig.)\n"
            "\t\t\tInformation transfer rate (dest. --> orig.)= 0x17  Reference in Recommendation Q.931 (1988)\n"
            "\t\t\tAttribute number=0111001  Layer identification\n"
            "\t\t\tLayer identification=01  layer 1\n"
            "\t\t\tUser information layer 1 protocol=00010  Recommendation G.711[10] Mu-law\n"
            "\t\t\tLayer identification=10  layer 2\n"
            "\t\t\tUser information layer 2 protocol=00010  Recommendation Q.921/I.441[3]\n"
            "\t\t\tLayer identification=11  layer 3\n"
            "\t\t\tUser information layer 3 protocol=01011  ISO/IEC TR 9577[82] "
            "(Protocol identification in the network layer)\n"
            "\t\t\tAttribute number=0111001  Layer identification\n");
}

TEST(CauseDiagnostics, AttributeWalkAlwaysEnds) {
  const std::string heading = "\t\tDiagnostics: Coding of Attribute identity\n";
  // Unknown attribute numbers are stepped over one octet at a time; values
  // without a row print nothing, but still end their run on bit 8.
  EXPECT_EQ(DiagnosticsOf(0xB9, {0x00, 0x7F, 0xB1, 0x85, 0x30, 0x32, 0xA0}),
            heading +
                "\t\t\tAttribute number=0110001  Information transfer capability\n"
                "\t\t\tAttribute number=0110010  Information transfer mode\n");
  // Nothing but unknown numbers, the longest element there is.
  EXPECT_EQ(DiagnosticsOf(0xB9, std::vector<Octet>(253, 0xFF)), heading);

  // A run that the element ends: the octet behind it is not read.
  const auto cut = DecodeOctets(DecodeCause, {0x08, 0x04, 0x80, 0xB9, 0x31, 0x08, 0x80});
  EXPECT_EQ(cut.text,
            Head("011  service or option not available", "1001  Bearer capability not authorized") +
                "\t\tDiagnostics: Coding of Attribute identity\n"
                "\t\t\tAttribute number=0110001  Information transfer capability\n"
                "\t\t\tInformation transfer capability=01000  Unrestricted digital information\n");
  EXPECT_EQ(cut.count, 6);
  // An attribute number as the last octet: its line, no value.
  EXPECT_EQ(DiagnosticsOf(0xB9, {0x39}), heading + "\t\t\tAttribute number=0111001  Layer identification\n");
}

TEST(CauseDiagnostics, DiagnosticsCutShort) {
  // The element ends before the dump's last octet announced by the frame.
  const auto byLength = DecodeOctets(DecodeCause, {0x08, 0x04, 0x80, 0xD8, 0x01, 0x02, 0x08, 0x02});
  EXPECT_EQ(byLength.text, Head("101  invalid message", "1000  Incompatible destination") +
                               "\t\tDiagnostics: Coding of Incompatible parameter\n"
                               "\t\t\tDiagnostic field= 0x1 0x2\n");
  EXPECT_EQ(byLength.count, 6);

  // The frame ends inside the diagnostics: what it holds is shown.
  const auto byFrame = DecodeOctets(DecodeCause, {0x08, 0x06, 0x80, 0xE7, 0x01, 0x02});
  EXPECT_EQ(byFrame.text,
            Head("110  protocol error", "0111  Parameter non-existent or not implemented, passed on") +
                "\t\tDiagnostics: Coding of parameter name\n"
                "\t\t\tDiagnostic field= 0x1 0x2\n");
  EXPECT_EQ(byFrame.count, 8);

  // Called directly, a count below the element's end bounds the octets too.
  const std::vector<Octet> element{0x08, 0x05, 0x80, 0xD8, 0x01, 0x02, 0x03};
  const ElementOctets octets{OctetSpan(element)};
  EXPECT_EQ(CaptureOutput([&] { DecodeCauseDiagnostics(CauseDiagnosticKind::ParameterName, octets, 4, 6); }),
            "\t\tDiagnostics: Coding of parameter name\n"
            "\t\t\tDiagnostic field= 0x1 0x2\n");
  EXPECT_EQ(CaptureOutput([&] { DecodeCauseDiagnostics(CauseDiagnosticKind::None, octets, 4, 7); }), "");
  EXPECT_EQ(CaptureOutput([&] { DecodeCauseDiagnostics(CauseDiagnosticKind::Condition, octets, 7, 7); }), "");
}

}  // namespace
}  // namespace velmora
