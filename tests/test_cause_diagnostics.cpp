// Cause diagnostics, each coding reached through a cause value that selects it; bounds when called directly.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"

namespace velmora {
namespace {

using testing::DecodeOctets;

std::string Coding(const char* name) { return std::string("\t\tDiagnostics: Coding of ") + name + "\n"; }
const std::string kCcbs = Coding("CCBS indicator") + "\t\t\tBits 8-1=";
const std::string kRejected = Coding("Call rejected diagnostic") + "\t\t\tRejection reason=";
const std::string kAttribute = Coding("Attribute identity");
const std::string kProvider = Coding("condition") + "\t\t\tBit 4=0  Network service - Provider\n";
const std::string kNumber = "\t\t\tAttribute number=";
const std::string kVariable = "\t\t\tInformation element type=0  variable length information element\n";

TEST(CauseDiagnostics, EachCodingThroughACauseValueThatSelectsIt) {
  // A user-located ITU-T cause without octet 3a; `text` is what it prints from
  // the diagnostics heading on.
  const struct {
    Octet cause;
    std::vector<Octet> diagnostics;
    std::string text;
  } cases[] = {
      // No route to destination: bits 2-1 = 11 have no line; further octets are ignored.
      {0x83, {0x83, 0xFF}, kProvider + "\t\t\tBit 3=0  Normal\n"},
      // Unallocated number, abnormal and permanent; bits 8-5 play no part.
      {0x81, {0xF5}, kProvider + "\t\t\tBit 3=1  Abnormal\n\t\t\tBits 2-1=01  Permanent\n"},
      // CCBS indicators: named values, else spare below 0x80 and national from it.
      {0x91, {0x01}, kCcbs + "00000001  CCBS possible\n"},
      {0x91, {0x80}, kCcbs + "0x80  Spare for national use\n"},
      {0x91, {0x7F, 0x01}, kCcbs + "0x7f  Spare\n"},
      {0xA2, {0xFE}, kCcbs + "0xfe  Spare for national use\n"},
      {0x91, {0x00}, kCcbs + "0x0  Spare\n"},
      {0x91, {0xFF}, kCcbs + "11111111  Reserved for extension\n"},
      {0x95, {0x81}, kRejected + "00000  user specific\n\t\t\tCondition=01  permanent\n"},
      {0x95,
       {0x80, 0x12, 0xA4},
       kRejected + "00000  user specific\n\t\t\tCondition=00  unknown\n"
                   "\t\t\tUser specific diagnostic= 0x12 0xa4\n"},
      {0x95,
       {0x85, 0x18},
       kRejected + "00001  information element missing\n\t\t\tCondition=01  permanent\n" + kVariable +
           "\t\t\tInformation element identifier= 0x18\n"},
      // Two elements, the second a single-octet one.
      {0x95,
       {0x8A, 0x6C, 0xA1},
       kRejected + "00010  information element contents are not sufficient\n\t\t\tCondition=10  transient\n" +
           kVariable +
           "\t\t\tInformation element identifier= 0x6c\n"
           "\t\t\tInformation element type=1  fixed length information element\n"
           "\t\t\tInformation element identifier= 0x21\n"},
      // An unlisted reason: only the condition line, the rest skipped.
      {0x95, {0x8F, 0x18}, Coding("Call rejected diagnostic") + "\t\t\tCondition=11  spare\n"},
      {0x82, {0x31, 0x05, 0xA0}, Coding("Transit network identity") + "\t\t\tDiagnostic field= 0x31 0x5 0xa0\n"},

      {0xE6, {0x33, 0x30, 0x33}, Coding("Timer number") + "\t\t\tDiagnostic field(IA5)= 0x33 0x30 0x33\n"},
      {0xEE, {0x70}, Coding("parameter name") + "\t\t\tDiagnostic field= 0x70\n"},
      {0xC2, {0xF3, 0x85}, Coding("Channel type") + "\t\t\tChannel type=0011  B-channel units\n"},
      {0xC2, {0x85}, Coding("Channel type")},  // No row: only the heading.
      {0xE5, {0x7D, 0x00}, Coding("Message type") + "\t\t\tMessage type=01111101  STATUS\n"},
      // Several attribute groups; a value octet with bit 8 = 1 ends a run at once.
      {0xBA,
       {0x32, 0x80, 0x33, 0x10, 0x90, 0xB4, 0xA0, 0x35, 0x84, 0x36, 0x83},
       kAttribute + kNumber + "0110010  Information transfer mode\n\t\t\tTransfer mode=00  Circuit mode\n" + kNumber +
           "0110011  Information transfer rate\n\t\t\tInformation transfer rate=10000  64 kbit/s\n" +
           "\t\t\tInformation transfer rate=10000  64 kbit/s\n" + kNumber + "0110100  Structure\n" +
           "\t\t\tStructure=0x2  8 kHz integrity\n" + kNumber + "0110101  Configuration\n" +
           "\t\t\tConfiguration=0x1  Point-to-point\n" + kNumber + "0110110  Establishment\n" +
           "\t\t\tEstablishment=0x3  Demand\n"},
      // An attribute number as the last octet: its line, no value.
      {0xC1,
       {0x37, 0xA0, 0x38, 0x97, 0x39, 0x22, 0x42, 0xEB, 0x39, 0x9F},
       kAttribute + kNumber + "0110111  Symmetry\n\t\t\tSymmetry=0x1  Bi-directional symmetric\n" + kNumber +
           "0111000  Information transfer rate (dest. --> orig.)\n" +
           "\t\t\tInformation transfer rate (dest. --> orig.)= 0x17  Reference in Recommendation Q.931 (1988)\n" +
           kNumber + "0111001  Layer identification\n\t\t\tLayer identification=01  layer 1\n" +
           "\t\t\tUser information layer 1 protocol=00010  Recommendation G.711[10] Mu-law\n" +
           "\t\t\tLayer identification=10  layer 2\n" +
           "\t\t\tUser information layer 2 protocol=00010  Recommendation Q.921/I.441[3]\n" +
           "\t\t\tLayer identification=11  layer 3\n\t\t\tUser information layer 3 protocol=01011  " +
           "ISO/IEC TR 9577[82] (Protocol identification in the network layer)\n" + kNumber +
           "0111001  Layer identification\n"},
      // Unknown attribute numbers are stepped over one octet at a time; values
      // without a row print nothing, but still end their run on bit 8.
      {0xB9,
       {0x00, 0x7F, 0xB1, 0x85, 0x30, 0x32, 0xA0},
       kAttribute + kNumber + "0110001  Information transfer capability\n" + kNumber +
           "0110010  Information transfer mode\n"},
      // Nothing but unknown numbers, the longest element there is.
      {0xB9, std::vector<Octet>(253, 0xFF), kAttribute},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    std::vector<Octet> element{0x08, static_cast<Octet>(2 + c.diagnostics.size()), 0x80, c.cause};
    element.insert(element.end(), c.diagnostics.begin(), c.diagnostics.end());
    const std::string decoded = DecodeOctets(element);
    const std::size_t heading = decoded.find("\t\tDiagnostics");
    EXPECT_EQ(heading == std::string::npos ? std::string() : decoded.substr(heading), c.text);
  }
}

}  // namespace
}  // namespace velmora
