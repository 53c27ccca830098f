// Channel identification (0x18): the interface and the channel a call uses,
// a B-channel of a basic interface or, on a primary-rate interface, a channel
// number or a slot map.
#include "channel_identification.h"

#include "common_tables.h"
#include "element_registry.h"
#include "field_text.h"

namespace velmora {
namespace {

// Octet 3.
constexpr ValueText kInterfaceIdentifierPresent[] = {
    {0, "Interface implicitly identified"},
    {1, "Interface explicitly identified in one or more octets, beginning with octet 3.1"},
};
constexpr CodedField kInterfaceIdentifierPresentField =
    Coded<"Interface identifier present", 7, 7, kInterfaceIdentifierPresent>;
constexpr ValueText kInterfaceType[] = {
    {0, "Basic interface"},
    {1, "Other interface"},
};
constexpr CodedField kInterfaceTypeField = Coded<"Interface type", 6, 6, kInterfaceType>;
constexpr ValueText kPreferredExclusive[] = {
    {0, "Indicated channel is preferred"},
    {1, "Exclusive; only the indicated channel is acceptable"},
};
constexpr CodedField kPreferredExclusiveField = Coded<"Preferred/Exclusive", 4, 4, kPreferredExclusive>;
constexpr ValueText kDChannelIndicator[] = {
    {0, "The channel identified is not the D-channel"},
    {1, "The channel identified is the D-channel"},
};
constexpr CodedField kDChannelIndicatorField = Coded<"D-channel indicator", 3, 3, kDChannelIndicator>;
constexpr CodedField kOctet3Fields[] = {kInterfaceIdentifierPresentField, kInterfaceTypeField, kPreferredExclusiveField,
                                        kDChannelIndicatorField};
// The channel selection, bits 2-1, worded by the interface type.
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
constexpr CodedField kBasicChannelSelectionField = Coded<"Information channel selection", 2, 1, kBasicChannelSelection>;
constexpr CodedField kOtherChannelSelectionField = WithMeanings<kBasicChannelSelectionField, kOtherChannelSelection>;

// Octet 3.2; its coding standard and channel type tables are shared.
constexpr ValueText kNumberMap[] = {
    {0, "Channel is indicated by the number in the following octet"},
    {1, "Channel is indicated by the slot map (Map) in the following octet(s)"},
};
constexpr CodedField kNumberMapField = Coded<"Number/map", 5, 5, kNumberMap>;
constexpr CodedField kOctet32Fields[] = {kCodingStandardField,
                                         Coded<"Channel type/map element type", 4, 1, kChannelType>, kNumberMapField};

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

// Where the parts of an element stand: octet 3, the interface identifier
// octets 3.1, and on another interface octet 3.2 and the octets behind it.
struct ChannelOctets {
  Octet octet3;
  bool otherInterface;
  OctetSpan interfaceIds;
  std::optional<Octet> octet32;
  std::size_t channelPosition;  // of octet 3.3, behind octet 3.2
};

std::optional<ChannelOctets> Locate(const ElementOctets& element) {
  const auto octet3 = element.At(2);
  if (!octet3) return std::nullopt;
  ChannelOctets octets{*octet3, kInterfaceTypeField.ValueIn(*octet3) != 0, {}, std::nullopt, 3};
  if (kInterfaceIdentifierPresentField.ValueIn(*octet3) != 0) octets.interfaceIds = ExtendedGroup(element, 3);
  // A basic interface names its B-channel in octet 3 alone.
  const std::size_t octet32Position = 3 + octets.interfaceIds.size();
  if (octets.otherInterface) octets.octet32 = element.At(octet32Position);
  octets.channelPosition = octet32Position + 1;
  return octets;
}

}  // namespace

void DecodeChannelIdentification(OutputWriter& out, const ElementOctets& element) {
  const std::optional<ChannelOctets> octets = Locate(element);
  if (!octets) return;

  PrintFields(out, octets->octet3, kOctet3Fields);
  PrintField(out, octets->otherInterface ? kOtherChannelSelectionField : kBasicChannelSelectionField, octets->octet3);
  for (const Octet id : octets->interfaceIds) PrintDecimalField(out, "Interface identifier", FieldBits(id, 7, 1));

  if (!octets->octet32) return;
  PrintFields(out, *octets->octet32, kOctet32Fields);
  if (kNumberMapField.ValueIn(*octets->octet32) != 0) {
    // The map runs to the element's end; its bits are not named one by one.
    PrintOctetString(out, "Slot map", element.Slice(octets->channelPosition));
  } else {
    // All channel numbers stand on one line, each as " %d".
    PrintFieldName(out, "Channel number");
    for (const Octet number : ExtendedGroup(element, octets->channelPosition)) {
      out.Put(' ');
      out.Decimal(FieldBits(number, 7, 1));
    }
    out.Put('\n');
  }
}

std::optional<IdentifiedChannel> ReadIdentifiedChannel(const ElementOctets& element) {
  const std::optional<ChannelOctets> octets = Locate(element);
  if (!octets) return std::nullopt;
  const unsigned selection = kBasicChannelSelectionField.ValueIn(octets->octet3);
  if (!octets->otherInterface)
    return selection == 0b01 || selection == 0b10 ? std::optional(IdentifiedChannel{selection, {}}) : std::nullopt;
  if (!octets->octet32 || kNumberMapField.ValueIn(*octets->octet32) != 0) return std::nullopt;
  const OctetSpan numbers = ExtendedGroup(element, octets->channelPosition);
  return numbers.empty() ? std::nullopt : std::optional(IdentifiedChannel{0, numbers});
}

}  // namespace velmora
