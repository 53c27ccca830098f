// Progress indicator (0x1E), Notification indicator (0x27), Signal (0x34):
// what the network tells the user about a call's progress and the tones it plays.
#include "common_tables.h"
#include "element_registry.h"
#include "field_text.h"

namespace velmora {
namespace {

// Progress indicator octet 3; the coding standard table is shared.
constexpr ValueText kLocation[] = {
    {0b0000, "User"},
    {0b0001, "Private network serving the local user"},
    {0b0010, "Public network serving the local user"},
    {0b0011, "Transit network"},
    {0b0100, "Public network serving the remote user"},
    {0b0101, "Private network serving the remote user"},
    {0b1010, "Network beyond the interworking point"},
};
constexpr CodedField kProgressOctet3Fields[] = {kCodingStandardField, Coded<"Location", 4, 1, kLocation>};

// Progress indicator octet 4.
constexpr ValueText kProgressDescription[] = {
    {0b0000001, "Call is not end-to-end ISDN; further call progress information may be available in-band"},
    {0b0000010, "Destination address is non-ISDN"},
    {0b0000011, "Origination address is non-ISDN"},
    {0b0000100, "Call has returned to the ISDN"},
    {0b0000101, "Interworking has occurred and has resulted in a telecommunication service change"},
    {0b0001000, "In-band information or an appropriate pattern is now available"},
};
constexpr CodedField kProgressDescriptionField = Coded<"Progress description", 7, 1, kProgressDescription>;

constexpr ValueText kNotificationDescription[] = {
    {0b0000000, "User suspended"},
    {0b0000001, "User resumed"},
    {0b0000010, "Bearer service change"},
};
constexpr CodedField kNotificationDescriptionField = Coded<"Notification description", 7, 1, kNotificationDescription>;

constexpr ValueText kSignalValue[] = {
    {0x00, "Dial tone on"},
    {0x01, "Ring back tone on"},
    {0x02, "Intercept tone on"},
    {0x03, "Network congestion tone on"},
    {0x04, "Busy tone on"},
    {0x05, "Confirm tone on"},
    {0x06, "Answer tone on"},
    {0x07, "Call waiting tone"},
    {0x08, "Off-hook warning tone"},
    {0x09, "Pre-emption tone on"},
    {0x3F, "Tones off"},
    {0x40, "Alerting on - pattern 0"},
    {0x41, "Alerting on - pattern 1"},
    {0x42, "Alerting on - pattern 2"},
    {0x43, "Alerting on - pattern 3"},
    {0x44, "Alerting on - pattern 4"},
    {0x45, "Alerting on - pattern 5"},
    {0x46, "Alerting on - pattern 6"},
    {0x47, "Alerting on - pattern 7"},
    {0x4F, "Alerting off"},
};
// The signal value takes the whole octet: bit 8 is part of the value.
constexpr CodedField kSignalValueField = Coded<"Signal value", 8, 1, kSignalValue>;

}  // namespace

void DecodeProgressIndicator(OutputWriter& out, const ElementOctets& element) {
  if (const auto octet3 = element.At(2)) {
    PrintFields(out, *octet3, kProgressOctet3Fields);
  }
  // Octet 4 always follows octet 3, whatever octet 3's extension bit says.
  if (const auto octet4 = element.At(3)) {
    PrintField(out, kProgressDescriptionField, *octet4);
  }
}

void DecodeNotificationIndicator(OutputWriter& out, const ElementOctets& element) {
  if (const auto octet3 = element.At(2)) {
    PrintField(out, kNotificationDescriptionField, *octet3);
  }
}

void DecodeSignal(OutputWriter& out, const ElementOctets& element) {
  if (const auto octet3 = element.At(2)) PrintField(out, kSignalValueField, *octet3);
}

}  // namespace velmora
