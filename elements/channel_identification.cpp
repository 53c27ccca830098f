// Channel identification (0x18): the interface and the channel a call uses,
// a B-channel of a basic interface or, on a primary-rate interface, a channel
// number or a slot map.
#include "elements/element_registry.h"
#include "q931/common_tables.h"
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

// Octet 3.2; its coding standard and channel type tables are shared.
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
    const bool last = !AnnouncesMore(rest[size]);
    ++size;
    if (last) break;
  }
  return rest.first(size);
}

}  // namespace

void DecodeChannelIdentification(OutputWriter& out, const ElementOctets& element) {
  const auto octet3 = element.At(2);
  if (!octet3) return;

  const bool interfaceIdentified = FieldBits(*octet3, 7, 7);
  const bool otherInterface = FieldBits(*octet3, 6, 6);
  PrintField(out, "Interface identifier present", interfaceIdentified, 1, kInterfaceIdentifierPresent);
  PrintField(out, "Interface type", otherInterface, 1, kInterfaceType);
  PrintField(out, "Preferred/Exclusive", FieldBits(*octet3, 4, 4), 1, kPreferredExclusive);
  PrintField(out, "D-channel indicator", FieldBits(*octet3, 3, 3), 1, kDChannelIndicator);
  PrintField(out, "Information channel selection", FieldBits(*octet3, 2, 1), 2,
             otherInterface ? ValueTable(kOtherChannelSelection) : ValueTable(kBasicChannelSelection));

  std::size_t index = 3;
  if (interfaceIdentified) {
    const OctetSpan interfaceIds = ExtendedGroup(element, index);
    for (const Octet id : interfaceIds) PrintDecimalField(out, "Interface identifier", FieldBits(id, 7, 1));
    index += interfaceIds.size();
  }

  // A basic interface names its B-channel in octet 3 alone.
  if (!otherInterface) return;

  const auto octet32 = element.At(index);
  if (!octet32) return;
  ++index;
  PrintField(out, "Coding standard", FieldBits(*octet32, 7, 6), 2, kCodingStandard);
  PrintField(out, "Channel type/map element type", FieldBits(*octet32, 4, 1), 4, kChannelType);
  const bool slotMap = FieldBits(*octet32, 5, 5);
  PrintField(out, "Number/map", slotMap, 1, kNumberMap);
  if (slotMap) {
    // The map runs to the element's end; its bits are not named one by one.
    PrintOctetString(out, "Slot map", element.Slice(index));
  } else {
    // All channel numbers stand on one line, each as " %d".
    PrintFieldName(out, "Channel number");
    for (const Octet number : ExtendedGroup(element, index)) {
      out.Put(' ');
      out.Decimal(FieldBits(number, 7, 1));
    }
    out.Put('\n');
  }
}

}  // namespace velmora
