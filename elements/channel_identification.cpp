// Channel identification (0x18): the interface and the channel a call uses,
// a B-channel of a basic interface or, on a primary-rate interface, a channel
// number or a slot map.
#include "elements/element_decoders.h"
#include "q931/text.h"

namespace velmora {
namespace {

// Octet 3.
constexpr ValueText kInterfaceIdentifierPresent[] = {
    {0, "Interface implicitly identified"},
    {1, "Interface explicitly identified in one or more octets, beginning with octet 3.1"},
};
constexpr ValueText kInterfaceType[] = {
    {0, "Basic interface"},
    {1, "Other interface"},
};
constexpr ValueText kPreferredExclusive[] = {
    {0, "Indicated channel is preferred"},
    {1, "Exclusive; only the indicated channel is acceptable"},
};
constexpr ValueText kDChannelIndicator[] = {
    {0, "The channel identified is not the D-channel"},
    {1, "The channel identified is the D-channel"},
};
constexpr ValueText kBasicChannelSelection[] = {
    {0b00, "No channel"},
    {0b01, "B1 channel"},
    {0b10, "B2 channel"},
    {0b11, "Any channel"},
};
constexpr ValueText kOtherChannelSelection[] = {
    {0b00, "No channel"},
    {0b01, "As indicated in following octets"},
    {0b10, "Reserved"},
    {0b11, "Any channel"},
};

// Octet 3.2.
constexpr ValueText kCodingStandard[] = {
    {0b00, "ITU-T standardized coding"},
    {0b01, "ISO/IEC Standard"},
    {0b10, "National standard"},
    {0b11, "Standard defined for the network (either public or private) present on the network side of the interface"},
};
constexpr ValueText kChannelType[] = {
    {0b0011, "B-channel units"},
    {0b0110, "H0-channel units"},
    {0b1000, "H11-channel units"},
    {0b1001, "H12-channel units"},
};
constexpr ValueText kNumberMap[] = {
    {0, "Channel is indicated by the number in the following octet"},
    {1, "Channel is indicated by the slot map (Map) in the following octet(s)"},
};

// The octets of an extended group starting at `first`: up to and including
// the one whose extension bit is 1, or to the element's end if none is.
OctetSpan ExtendedGroup(const ElementOctets& element, std::size_t first) {
  const OctetSpan rest = element.Slice(first);
  std::size_t size = 0;
  while (size < rest.size()) {
    const bool last = (rest[size] & 0x80) != 0;
    ++size;
    if (last) break;
  }
  return rest.first(size);
}

}  // namespace

int DecodeChannelIdentification(const ElementOctets& element) {
  PrintHeading("Channel identification");
  const auto octet3 = element.At(2);
  if (!octet3) return element.Count();

  const bool interfaceIdentified = (*octet3 >> 6) & 1;
  const bool otherInterface = (*octet3 >> 5) & 1;
  PrintField("Interface identifier present", interfaceIdentified, 1, kInterfaceIdentifierPresent);
  PrintField("Interface type", otherInterface, 1, kInterfaceType);
  PrintField("Preferred/Exclusive", (*octet3 >> 3) & 1, 1, kPreferredExclusive);
  PrintField("D-channel indicator", (*octet3 >> 2) & 1, 1, kDChannelIndicator);
  PrintField("Information channel selection", *octet3 & 0b11, 2,
             otherInterface ? ValueTable(kOtherChannelSelection) : ValueTable(kBasicChannelSelection));

  OutputWriter& out = Out();
  std::size_t index = 3;
  if (interfaceIdentified) {
    const OctetSpan interfaceIds = ExtendedGroup(element, index);
    for (const Octet id : interfaceIds) {
      out.Put("\t\tInterface identifier=");
      out.Decimal(id & 0x7F);
      out.Put('\n');
    }
    index += interfaceIds.size();
  }

  // A basic interface names its B-channel in octet 3 alone.
  if (!otherInterface) return element.Count();

  const auto octet32 = element.At(index);
  if (!octet32) return element.Count();
  ++index;
  PrintField("Coding standard", (*octet32 >> 5) & 0b11, 2, kCodingStandard);
  PrintField("Channel type/map element type", *octet32 & 0x0F, 4, kChannelType);
  const bool slotMap = (*octet32 >> 4) & 1;
  PrintField("Number/map", slotMap, 1, kNumberMap);
  if (slotMap) {
    // The map runs to the element's end; its bits are not named one by one.
    PrintOctetString("Slot map", element.Slice(index));
  } else {
    out.Put("\t\tChannel number=");
    for (const Octet number : ExtendedGroup(element, index)) {
      out.Put(' ');
      out.Decimal(number & 0x7F);
    }
    out.Put('\n');
  }
  return element.Count();
}

}  // namespace velmora
