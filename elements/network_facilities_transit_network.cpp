// Network-specific facilities (0x20), Transit network selection (0x78): the
// network named by its identification type, plan and IA5 characters.
#include <algorithm>

#include "element_registry.h"
#include "field_text.h"

namespace velmora {
namespace {

constexpr ValueText kNetworkIdentificationType[] = {
    {0b000, "User specified"},
    {0b010, "National network identification"},
    {0b011, "International network identification"},
};
constexpr CodedField kNetworkIdentificationTypeField =
    Coded<"Type of network identification", 7, 5, kNetworkIdentificationType>;

// The two elements word the data network plan differently.
constexpr ValueText kFacilitiesIdentificationPlan[] = {
    {0b0000, "Unknown"},
    {0b0001, "Carrier Identification Code"},
    {0b0011, "Data network identification code"},
};
constexpr ValueText kTransitIdentificationPlan[] = {
    {0b0000, "Unknown"},
    {0b0001, "Carrier Identification Code"},
    {0b0011, "Data network identification code (Recommendation X.121 [21])"},
};
constexpr CodedField kFacilitiesPlanField = Coded<"Network identification plan", 4, 1, kFacilitiesIdentificationPlan>;
constexpr CodedField kTransitPlanField = WithMeanings<kFacilitiesPlanField, kTransitIdentificationPlan>;

void PrintNetworkIdentification(OutputWriter& out, Octet octet, const CodedField& plan) {
  PrintField(out, kNetworkIdentificationTypeField, octet);
  PrintField(out, plan, octet);
}

// The network identification's characters, shown as their IA5 codes.
constexpr std::string_view kNetworkIdentificationName = "Network identification(IA5)";

}  // namespace

// Octet 3 counts octets 3.1 and 3.2 together; 0 or a value with bit 8 set
// means no network identification, and the facility octet follows at once.
// An identification that announces more octets than the element holds shows
// the characters it has; when the element then ends before the facility
// octet, the facility line is left out.
void DecodeNetworkSpecificFacilities(OutputWriter& out, const ElementOctets& element) {
  const auto identificationLength = element.At(2);
  if (!identificationLength) return;

  std::size_t facilityIndex = 3;
  if (*identificationLength >= 0x01 && *identificationLength <= 0x7F) {
    if (const auto octet31 = element.At(3)) PrintNetworkIdentification(out, *octet31, kFacilitiesPlanField);
    const OctetSpan characters = element.Slice(4);
    const std::size_t characterCount = *identificationLength - 1U;
    PrintIa5String(out, kNetworkIdentificationName, characters.first(std::min(characterCount, characters.size())));
    facilityIndex = 3 + *identificationLength;
  }

  if (const auto facility = element.At(facilityIndex))
    PrintSpacedHexField(out, "Network-specific facilities", *facility);
}

void DecodeTransitNetworkSelection(OutputWriter& out, const ElementOctets& element) {
  const auto octet3 = element.At(2);
  if (!octet3) return;
  PrintNetworkIdentification(out, *octet3, kTransitPlanField);
  PrintIa5String(out, kNetworkIdentificationName, element.Slice(3));
}

}  // namespace velmora
