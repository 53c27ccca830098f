// High layer compatibility (0x7D): octet 3, octet 4 and at most one octet 4a,
// whose meaning octet 4 selects.
#include <algorithm>
#include <array>
#include <iterator>

#include "common_tables.h"
#include "element_registry.h"

namespace velmora {
namespace {

constexpr std::size_t kOctet3Position = 2;
constexpr std::size_t kOctet4Position = 3;
constexpr std::size_t kOctet4aPosition = 4;

constexpr ValueText kInterpretation[] = {
    {0b100, "First (primary or only) high layer characteristics identification to be used in the call"},
};
constexpr ValueText kPresentationMethod[] = {
    {0b01, "High layer protocol profile (without specification of attributes)"},
};
constexpr CodedField kOctet3[] = {
    Coded<"Coding standard", 7, 6, kCodingStandard>,
    Coded<"Interpretation", 5, 3, kInterpretation>,
    Coded<"Presentation method of protocol profile", 2, 1, kPresentationMethod>,
};

constexpr ValueText kHighLayerCharacteristics[] = {
    {0b0000001, "Telephony"},
    {0b0000100, "Facsimile Group 2/3 (Recommendation F.182 [68])"},
    {0b0100001, "Facsimile Group 4 Class I (Recommendation F.184 [69])"},
    {0b0100100, "Facsimile service Group 4, Classes II and III (Recommendation F.184)"},
    {0b0110010, "Syntax based Videotex (Recommendation F.300 [73] and T.102 [74])"},
    {0b0110011,
     "International Videotex interworking via gateways or interworking units (Recommendation F.300 and T.101 "
     "[75])"},
    {0b0110101, "Telex service (Recommendation F.60 [76])"},
    {0b0111000, "Message Handling Systems (MHS) (X.400-series Recommendation [77])"},
    {0b1000001, "OSI application (X.200-series Recommendations [78])"},
    {0b1000010, "FTAM application (ISO 8571)"},
    {0b1011110, "Reserved for maintenance"},
    {0b1011111, "Reserved for management"},
    {0b1100000, "Videotelephony (Recommendations F.720 [91] and F.721 [79]) and F.731 profile 1a)"},
    {0b1100001, "Videoconferencing Recommendation F.702 [94] and F.731 [97] Profile 1b"},
    {0b1100010,
     "Audiographic conferencing Recommendations F.702 [94] and F.731 [97] (including at least profile 2a2 and "
     "optionally 2a1, 2a3, 2b1, 2b2, and 2bc)"},
    {0b1101000, "Multimedia services F.700-series Recommendations [80]"},
};
constexpr CodedField kCharacteristicsField =
    Coded<"High layer characteristics identification", 7, 1, kHighLayerCharacteristics>;
constexpr unsigned kMaintenance = 0b1011110;
constexpr unsigned kManagement = 0b1011111;

// Octet 4a after maintenance or management: the same codes, except that
// those two are not available for assignment.
constexpr auto kExtendedHighLayerCharacteristics = [] {
  std::array<ValueText, std::size(kHighLayerCharacteristics)> rows{};
  std::copy(std::begin(kHighLayerCharacteristics), std::end(kHighLayerCharacteristics), rows.begin());
  for (ValueText& row : rows)
    if (row.value == kMaintenance || row.value == kManagement) row.text = "Not available for assignment";
  return rows;
}();

// Octet 4a after a reserved audiovisual code.
constexpr ValueText kExtendedAudiovisualCharacteristics[] = {
    {0b0000001, "Capability set of initial channel of H.221"},
    {0b0000010, "Capability set of subsequent channel of H.221"},
    {0b0100001, "Capability set of initial channel associated with an active 3.1 kHz audio or speech call"},
};

// Octet 4 codes reserved for audiovisual services (none has a table row);
// their line shows the code in hexadecimal.
constexpr std::string_view kReservedAudiovisualText =
    "Reserved for audiovisual services (F.700-series Recommendations [80])";
constexpr RangeText kReservedAudiovisual[] = {
    {0x63, 0x67, kReservedAudiovisualText},
    {0x6B, 0x6F, kReservedAudiovisualText},
};

bool IsReservedAudiovisual(unsigned characteristics) {
  return FindRange(kReservedAudiovisual, characteristics) != nullptr;
}

// What octet 4a means after octet 4's code. For any other code octet 4a
// has no settled meaning and is not shown.
CodedField Octet4aFieldAfter(unsigned characteristics) {
  if (characteristics == kMaintenance || characteristics == kManagement)
    return Coded<"Extended high layer characteristics identification", 7, 1, kExtendedHighLayerCharacteristics>;
  if (IsReservedAudiovisual(characteristics))
    return Coded<"Extended audiovisual characteristics identification", 7, 1, kExtendedAudiovisualCharacteristics>;
  return {};
}

}  // namespace

void DecodeHighLayerCompatibility(OutputWriter& out, const ElementOctets& element) {
  const auto octet3 = element.At(kOctet3Position);
  if (!octet3) return;
  PrintFields(out, *octet3, kOctet3);

  const auto octet4 = element.At(kOctet4Position);
  if (!octet4) return;
  const unsigned characteristics = kCharacteristicsField.ValueIn(*octet4);
  PrintField(out, kCharacteristicsField, *octet4);
  if (const RangeText* reserved = FindRange(kReservedAudiovisual, characteristics))
    PrintHexMeaning(out, kCharacteristicsField.name, characteristics, reserved->text);
  if (!AnnouncesMore(*octet4)) return;

  // Octet 4a; whatever follows it is never decoded.
  const auto octet4a = element.At(kOctet4aPosition);
  if (!octet4a) return;
  PrintField(out, Octet4aFieldAfter(characteristics), *octet4a);
}

}  // namespace velmora
