#pragma once
// Every information element that some message accepts: its identifier, its
// name (the heading behind "\tInformation element:"), its decoder and its
// form. The message walks, the fuzz targets and the tests all take the
// elements from here.
#include <cstddef>
#include <string_view>

#include "element_octets.h"
#include "octet.h"
#include "output_writer.h"

namespace velmora {

// What a walk prints in front of every element's heading.
inline constexpr std::string_view kElementPrefix = "\tInformation element:";

struct ElementEntry {
  // Type 1 single-octet elements (Congestion level 1011xxxx, Repeat indicator
  // 1101xxxx) carry a value in bits 4-1; their identifier has those bits 0.
  Octet identifier;
  std::string_view name;
  ElementDecoder decode;
  ElementForm form;
  // The heading line as a walk prints it: kElementPrefix, the name, "\n".
  PaddedText<64> heading;

  constexpr ElementEntry(Octet identifier, std::string_view name, ElementDecoder decode, ElementForm form)
      : identifier(identifier), name(name), decode(decode), form(form), heading{kElementPrefix, name, "\n"} {}
};

// The decoders, by source file: bearer_capability, low_layer_compatibility,
// high_layer_compatibility, cause, channel_identification,
// progress_notification_signal, network_facilities_transit_network,
// user_user, call_identity_state_restart, party_numbers, single_octet,
// display_keypad_date_time and packet_mode.
void DecodeBearerCapability(OutputWriter& out, const ElementOctets& element);
void DecodeLowLayerCompatibility(OutputWriter& out, const ElementOctets& element);
void DecodeHighLayerCompatibility(OutputWriter& out, const ElementOctets& element);
void DecodeCause(OutputWriter& out, const ElementOctets& element);
void DecodeChannelIdentification(OutputWriter& out, const ElementOctets& element);
void DecodeProgressIndicator(OutputWriter& out, const ElementOctets& element);
void DecodeNotificationIndicator(OutputWriter& out, const ElementOctets& element);
void DecodeSignal(OutputWriter& out, const ElementOctets& element);
void DecodeNetworkSpecificFacilities(OutputWriter& out, const ElementOctets& element);
void DecodeTransitNetworkSelection(OutputWriter& out, const ElementOctets& element);
void DecodeUserUser(OutputWriter& out, const ElementOctets& element);
void DecodeCallIdentity(OutputWriter& out, const ElementOctets& element);
void DecodeCallState(OutputWriter& out, const ElementOctets& element);
void DecodeRestartIndicator(OutputWriter& out, const ElementOctets& element);
void DecodeCallingPartyNumber(OutputWriter& out, const ElementOctets& element);
void DecodeCallingPartySubaddress(OutputWriter& out, const ElementOctets& element);
void DecodeCalledPartyNumber(OutputWriter& out, const ElementOctets& element);
void DecodeCalledPartySubaddress(OutputWriter& out, const ElementOctets& element);
void DecodeRedirectingNumber(OutputWriter& out, const ElementOctets& element);
void DecodeMoreData(OutputWriter& out, const ElementOctets& element);
void DecodeSendingComplete(OutputWriter& out, const ElementOctets& element);
void DecodeCongestionLevel(OutputWriter& out, const ElementOctets& element);
void DecodeRepeatIndicator(OutputWriter& out, const ElementOctets& element);
void DecodeDisplay(OutputWriter& out, const ElementOctets& element);
void DecodeKeypadFacility(OutputWriter& out, const ElementOctets& element);
void DecodeDateTime(OutputWriter& out, const ElementOctets& element);
void DecodeInformationRate(OutputWriter& out, const ElementOctets& element);
void DecodeEndToEndTransitDelay(OutputWriter& out, const ElementOctets& element);
void DecodeTransitDelaySelection(OutputWriter& out, const ElementOctets& element);
void DecodePacketLayerBinaryParameters(OutputWriter& out, const ElementOctets& element);
void DecodePacketLayerWindowSize(OutputWriter& out, const ElementOctets& element);
void DecodePacketSize(OutputWriter& out, const ElementOctets& element);
void DecodeClosedUserGroup(OutputWriter& out, const ElementOctets& element);
void DecodeReverseChargingIndication(OutputWriter& out, const ElementOctets& element);

// In identifier order; the fuzz seeds name entries by their index here.
inline constexpr ElementEntry kElementRegistry[] = {
    {0x04, "Bearer capability", DecodeBearerCapability, ElementForm::VariableLength},
    {0x08, "Cause", DecodeCause, ElementForm::VariableLength},
    {0x10, "Call identity", DecodeCallIdentity, ElementForm::VariableLength},
    {0x14, "Call state", DecodeCallState, ElementForm::VariableLength},
    {0x18, "Channel identification", DecodeChannelIdentification, ElementForm::VariableLength},
    {0x1E, "Progress indicator", DecodeProgressIndicator, ElementForm::VariableLength},
    {0x20, "Network-specific facilities", DecodeNetworkSpecificFacilities, ElementForm::VariableLength},
    {0x27, "Notification indicator", DecodeNotificationIndicator, ElementForm::VariableLength},
    {0x28, "Display", DecodeDisplay, ElementForm::VariableLength},
    {0x29, "Date/time", DecodeDateTime, ElementForm::VariableLength},
    {0x2C, "Keypad facility", DecodeKeypadFacility, ElementForm::VariableLength},
    {0x34, "Signal", DecodeSignal, ElementForm::VariableLength},
    {0x40, "Information rate", DecodeInformationRate, ElementForm::VariableLength},
    {0x42, "End-to-end transit delay", DecodeEndToEndTransitDelay, ElementForm::VariableLength},
    {0x43, "Transit delay selection and indication", DecodeTransitDelaySelection, ElementForm::VariableLength},
    {0x44, "Packet layer binary parameters", DecodePacketLayerBinaryParameters, ElementForm::VariableLength},
    {0x45, "Packet layer window size", DecodePacketLayerWindowSize, ElementForm::VariableLength},
    {0x46, "Packet size", DecodePacketSize, ElementForm::VariableLength},
    {0x47, "Closed user group", DecodeClosedUserGroup, ElementForm::VariableLength},
    {0x4A, "Reverse charging indication", DecodeReverseChargingIndication, ElementForm::VariableLength},
    {0x6C, "Calling party number", DecodeCallingPartyNumber, ElementForm::VariableLength},
    {0x6D, "Calling party subaddress", DecodeCallingPartySubaddress, ElementForm::VariableLength},
    {0x70, "Called party number", DecodeCalledPartyNumber, ElementForm::VariableLength},
    {0x71, "Called party subaddress", DecodeCalledPartySubaddress, ElementForm::VariableLength},
    {0x74, "Redirecting number", DecodeRedirectingNumber, ElementForm::VariableLength},
    {0x78, "Transit network selection", DecodeTransitNetworkSelection, ElementForm::VariableLength},
    {0x79, "Restart indicator", DecodeRestartIndicator, ElementForm::VariableLength},
    {0x7C, "Low layer compatibility", DecodeLowLayerCompatibility, ElementForm::VariableLength},
    {0x7D, "High layer compatibility", DecodeHighLayerCompatibility, ElementForm::VariableLength},
    {0x7E, "User-user", DecodeUserUser, ElementForm::VariableLength},
    {0xA0, "More data", DecodeMoreData, ElementForm::SingleOctet},
    {0xA1, "Sending complete", DecodeSendingComplete, ElementForm::SingleOctet},
    {0xB0, "Congestion level", DecodeCongestionLevel, ElementForm::SingleOctet},
    {0xD0, "Repeat indicator", DecodeRepeatIndicator, ElementForm::SingleOctet},
};

// ---- The detail level (--detail full): elements beyond the described
// ones, and lines that add a readable form of what an element's lines show.

void DecodeFacility(OutputWriter& out, const ElementOctets& element);
void DecodeConnectedNumber(OutputWriter& out, const ElementOctets& element);
void DecodeConnectedSubaddress(OutputWriter& out, const ElementOctets& element);
// Shift (1001 xnnn): locking or non-locking, and the codeset it shifts to.
void DecodeShift(OutputWriter& out, const ElementOctets& element);

inline constexpr ElementEntry kDetailElementRegistry[] = {
    {0x1C, "Facility", DecodeFacility, ElementForm::VariableLength},
    {0x4C, "Connected number", DecodeConnectedNumber, ElementForm::VariableLength},
    {0x4D, "Connected subaddress", DecodeConnectedSubaddress, ElementForm::VariableLength},
    {0x90, "Shift", DecodeShift, ElementForm::SingleOctet},
};

// The digits of a party number as text (Calling, Called party number,
// Redirecting number, Connected number): "\t\tNumber as text=0891234567".
void PrintNumberText(OutputWriter& out, const ElementOctets& element);
// The cause value in decimal ("\t\tCause number=#17"), and for a timer
// expiry (cause 102) the timer its diagnostic names ("\t\tTimer=T303").
void PrintCauseNumber(OutputWriter& out, const ElementOctets& element);

// The entry for an identifier octet, or null when no element has it. A type 1
// single octet (bit 8 = 1, bits 7-5 other than 010) is found by bits 8-5.
constexpr const ElementEntry* FindElement(Octet identifier) {
  const bool typeOne = (identifier & 0x80) != 0 && (identifier & 0x70) != 0x20;
  const Octet key = typeOne ? static_cast<Octet>(identifier & 0xF0) : identifier;
  for (const ElementEntry& entry : kElementRegistry)
    if (entry.identifier == key) return &entry;
  return nullptr;
}

// The octets an element occupies. Null stands for the unknown-element dump,
// whose form bit 8 of the identifier tells.
std::size_t OccupiedOctets(const ElementEntry* entry, const ElementOctets& element);

// "<name>\n" and the element's field lines, or for null the unknown-element
// dump; behind kElementPrefix when `prefix` is ElementPrefix::Printed, as a
// walk shows the element. Returns the octets the element occupies.
enum class ElementPrefix { Left, Printed };
// Inlined into both walks: the message decode's hot path goes through it.
VELMORA_HOT_PATH std::size_t DecodeElement(OutputWriter& out, const ElementEntry* entry, const ElementOctets& element,
                                           ElementPrefix prefix = ElementPrefix::Left) {
  const std::size_t skipped = prefix == ElementPrefix::Printed ? 0 : kElementPrefix.size();
  if (entry == nullptr) {
    out.Put(kElementPrefix.substr(skipped));
    DecodeUnknownElement(out, element);
  } else {
    out.PutPadded(entry->heading.Padded().DropFront(skipped));
    entry->decode(out, element);
  }
  return OccupiedOctets(entry, element);
}

}  // namespace velmora
