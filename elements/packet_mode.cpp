// Packet-mode elements (0x40, 0x42 to 0x47, 0x4A). None of them looks at an
// extension bit: each reads its fields from fixed octets.
//
// The information rates and the first delay value sit in fixed octets that
// are read whatever L says, so a short element takes them from the octets
// that follow it. Behind the frame's last octet there are none: a field
// whose octets the frame does not hold gets no line.
#include "element_registry.h"
#include "field_text.h"

namespace velmora {

namespace {

constexpr ValueText kInformationRate[] = {
    {0b00011, "75 bit/s"},    {0b00100, "150 bit/s"},   {0b00101, "300 bit/s"},   {0b00110, "600 bit/s"},
    {0b00111, "1200 bit/s"},  {0b01000, "2400 bit/s"},  {0b01001, "4800 bit/s"},  {0b01010, "9600 bit/s"},
    {0b01011, "19200 bit/s"}, {0b01100, "48000 bit/s"}, {0b01101, "64000 bit/s"},
};

// Octets 3 to 6 of Information rate, in order.
constexpr CodedField kRateFields[] = {
    Coded<"Incoming information rate", 5, 1, kInformationRate>,
    Coded<"Outgoing information rate", 5, 1, kInformationRate>,
    Coded<"Minimum incoming information rate", 5, 1, kInformationRate>,
    Coded<"Minimum outgoing information rate", 5, 1, kInformationRate>,
};

// A 16-bit delay value spread over three octets (2 + 7 + 7 bits), the
// position of its first octet and the length from which it is shown.
struct DelayField {
  std::string_view name;
  std::size_t position;
  unsigned minimumLength;
};

constexpr DelayField kEndToEndDelays[] = {
    {"Cumulative transit delay value", 2, 1},
    {"Requested end-to-end transit delay value", 5, 4},
    {"Maximum end-to-end transit delay value", 8, 7},
};

constexpr DelayField kTransitDelaySelection{"Transit delay selection and indication value", 2, 1};

constexpr ValueText kFastSelect[] = {
    {0b00, "Fast select not requested"},
    {0b01, "Fast select not requested"},
    {0b10, "Fast select requested with no restriction of response"},
    {0b11, "Fast select requested with restrictions of response"},
};

constexpr ValueText kExpeditedData[] = {
    {0, "No request/request denied"},
    {1, "Request indicated/request accepted"},
};

constexpr ValueText kDeliveryConfirmation[] = {
    {0, "Link-by-link confirmation"},
    {1, "End-to-end confirmation"},
};

constexpr ValueText kModulus[] = {
    {0, "Modulus 8 sequencing"},
    {1, "Modulus 128 sequencing"},
};
// Octet 3 of Packet layer binary parameters.
constexpr CodedField kBinaryParameterFields[] = {
    Coded<"Fast select", 5, 4, kFastSelect>,
    Coded<"Expedited data", 3, 3, kExpeditedData>,
    Coded<"Delivery confirmation", 2, 2, kDeliveryConfirmation>,
    Coded<"Modulus", 1, 1, kModulus>,
};

constexpr ValueText kCugIndication[] = {
    {0b001, "Closed user group selection"},
    {0b010, "Closed user group with outgoing access selection and indication"},
};
constexpr CodedField kCugIndicationField = Coded<"CUG indication", 3, 1, kCugIndication>;

constexpr ValueText kReverseChargingIndication[] = {
    {0b001, "Reverse charging requested"},
};
constexpr CodedField kReverseChargingIndicationField =
    Coded<"Reverse charging indication", 3, 1, kReverseChargingIndication>;

// Whether the element has contents to decode: L of 0, or a frame that ends
// at the length octet, leaves the heading alone.
bool HasContents(const ElementOctets& element) { return element.Has(2); }

// A rate line: the code's bits and rate, or the code in hexadecimal as reserved.
void PrintRate(OutputWriter& out, const CodedField& rate, Octet octet) {
  if (!PrintField(out, rate, octet)) PrintHexMeaning(out, rate.name, rate.ValueIn(octet), "Reserved");
}

void PrintDelayValue(OutputWriter& out, const ElementOctets& element, const DelayField& field) {
  const auto high = element.FrameAt(field.position);
  const auto middle = element.FrameAt(field.position + 1);
  const auto low = element.FrameAt(field.position + 2);
  if (!high || !middle || !low) return;
  const unsigned milliseconds =
      FieldBits(*high, 2, 1) * 16384U + FieldBits(*middle, 7, 1) * 128U + FieldBits(*low, 7, 1);
  // "<name>= %d ms": a blank after "=" and the unit behind the value.
  PrintFieldName(out, field.name);
  out.Put(' ');
  out.Decimal(milliseconds);
  out.Put(" ms\n");
}

// Packet layer window size and Packet size: forward value, then backward.
void DecodeForwardBackward(OutputWriter& out, const ElementOctets& element) {
  if (!HasContents(element)) return;
  PrintHexField(out, "Forward value", FieldBits(*element.At(2), 7, 1));
  if (const auto backward = element.At(3)) PrintHexField(out, "Backward value", FieldBits(*backward, 7, 1));
}

}  // namespace

void DecodeInformationRate(OutputWriter& out, const ElementOctets& element) {
  if (!HasContents(element)) return;
  std::size_t position = 2;
  for (const CodedField& rate : kRateFields) {
    const auto octet = element.FrameAt(position++);
    if (!octet) break;
    PrintRate(out, rate, *octet);
  }
}

void DecodeEndToEndTransitDelay(OutputWriter& out, const ElementOctets& element) {
  if (!HasContents(element)) return;
  for (const DelayField& delay : kEndToEndDelays)
    if (element.Length() >= delay.minimumLength) PrintDelayValue(out, element, delay);
}

void DecodeTransitDelaySelection(OutputWriter& out, const ElementOctets& element) {
  if (!HasContents(element)) return;
  PrintDelayValue(out, element, kTransitDelaySelection);
}

void DecodePacketLayerBinaryParameters(OutputWriter& out, const ElementOctets& element) {
  if (!HasContents(element)) return;
  const Octet octet3 = *element.At(2);
  PrintFields(out, octet3, kBinaryParameterFields);
}

void DecodePacketLayerWindowSize(OutputWriter& out, const ElementOctets& element) {
  DecodeForwardBackward(out, element);
}

void DecodePacketSize(OutputWriter& out, const ElementOctets& element) { DecodeForwardBackward(out, element); }

void DecodeClosedUserGroup(OutputWriter& out, const ElementOctets& element) {
  if (!HasContents(element)) return;
  PrintField(out, kCugIndicationField, *element.At(2));
  // One IA5 digit per octet; anything but 0 to 9 is no index digit.
  for (const Octet octet : element.Slice(3)) {
    const unsigned code = FieldBits(octet, 7, 1);
    if (code < '0' || code > '9') continue;
    PrintFieldName(out, "CUG index code");
    out.Bits(code, 7);
    out.Put("  CUG index=");
    out.Put(static_cast<char>(code));
    out.Put('\n');
  }
}

void DecodeReverseChargingIndication(OutputWriter& out, const ElementOctets& element) {
  if (!HasContents(element)) return;
  PrintField(out, kReverseChargingIndicationField, *element.At(2));
}

}  // namespace velmora
