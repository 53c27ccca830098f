// Calling/called party numbers and subaddresses (0x6C, 0x6D, 0x70, 0x71), Redirecting number (0x74).
// The three numbers share one decoder, told by a small layout record which
// optional octets it reads and how it shows the digits; the two subaddresses
// share another.
#include "party_numbers.h"

#include "element_registry.h"
#include "field_text.h"

namespace velmora {

namespace {

constexpr ValueText kTypeOfNumber[] = {
    {0b000, "Unknown"},
    {0b001, "International number"},
    {0b010, "National number"},
    {0b011, "Network specific number"},
    {0b100, "Subscriber number"},
    {0b110, "Abbreviated number"},
    {0b111, "Reserved for extension"},
};

constexpr ValueText kNumberingPlan[] = {
    {0b0000, "Unknown"},
    {0b0001, "ISDN/telephony numbering plan (Recommendation E.164 [19])"},
    {0b0011, "Data numbering plan (Recommendation X.121 [21])"},
    {0b0100, "Telex numbering plan (Recommendation F.69 [22])"},
    {0b1000, "National standard numbering plan"},
    {0b1001, "Private numbering plan"},
    {0b1111, "Reserved for extension"},
};
constexpr CodedField kNumberOctet3Fields[] = {
    Coded<"Type of number", 7, 5, kTypeOfNumber>,
    Coded<"Numbering plan identification", 4, 1, kNumberingPlan>,
};

constexpr ValueText kPresentationIndicator[] = {
    {0b00, "Presentation allowed"},
    {0b01, "Presentation restricted"},
    {0b10, "Number not available due to interworking"},
    {0b11, "Reserved"},
};

constexpr ValueText kScreeningIndicator[] = {
    {0b00, "User-provided, not screened"},
    {0b01, "User-provided, verified and passed"},
    {0b10, "User-provided, verified and failed"},
    {0b11, "Network provided"},
};
// Octet 3a of the calling party and redirecting numbers.
constexpr CodedField kNumberOctet3aFields[] = {
    Coded<"Presentation indicator", 7, 6, kPresentationIndicator>,
    Coded<"Screening indicator", 2, 1, kScreeningIndicator>,
};

constexpr ValueText kReasonForRedirection[] = {
    {0b0000, "Unknown"},
    {0b0001, "Call forwarding busy or called DTE busy"},
    {0b0010, "Call forwarding no reply"},
    {0b0100, "Call deflection"},
    {0b1001, "Called DTE out of order"},
    {0b1010, "Call forwarding by the called DTE"},
    {0b1111, "Call forwarding unconditional or systematic call redirection"},
};
constexpr CodedField kReasonForRedirectionField = Coded<"Reason for redirection", 4, 1, kReasonForRedirection>;

constexpr ValueText kTypeOfSubaddress[] = {
    {0b000, "NSAP (ITU-T Rec. X.213 [23] and ISO/IEC 8348 Add.2 [24])"},
    {0b010, "User specified"},
};

constexpr ValueText kOddEvenIndicator[] = {
    {0, "Even number of address signals"},
    {1, "Odd number of address signals"},
};
constexpr CodedField kSubaddressOctet3Fields[] = {
    Coded<"Type of subaddress", 7, 5, kTypeOfSubaddress>,
    Coded<"Odd/even indicator", 4, 4, kOddEvenIndicator>,
};

// How one number element departs from the common octet 3 / digits shape.
struct NumberLayout {
  bool readsOctet3a;  // presentation and screening, when bit 8 of octet 3 is 0
  bool readsOctet3b;  // reason for redirection, when bit 8 of octet 3a is 0
  std::string_view digitsLabel;
  bool showsEmptyDigits;  // the label and line end even with no digit octet
};

constexpr NumberLayout kCallingPartyNumber{true, false, "Number digits (IA5)", false};
constexpr NumberLayout kCalledPartyNumber{false, false, "Number digits (IA5)", true};
constexpr NumberLayout kRedirectingNumber{true, true, "Number digits(IA5)", true};
// Shown at the detail level only: octet 3a as the calling party number has it.
constexpr NumberLayout kConnectedNumber{true, false, "Number digits (IA5)", false};

// Where the digits begin: behind octet 3, and behind octets 3a and 3b when
// the layout reads them and extension bits announce them. Octets 3a and 3b
// are announced by extension bits, not by the length, so they count even
// when they lie behind the element's last octet.
std::size_t DigitsPosition(const ElementOctets& element, const NumberLayout& layout) {
  const auto octet3 = element.At(2);
  if (!layout.readsOctet3a || !octet3 || !AnnouncesMore(*octet3)) return 3;
  const auto octet3a = element.FrameAt(3);
  return layout.readsOctet3b && octet3a && AnnouncesMore(*octet3a) ? 5 : 4;
}

void DecodeNumber(OutputWriter& out, const ElementOctets& element, const NumberLayout& layout) {
  const auto octet3 = element.At(2);
  if (!octet3) return;

  PrintFields(out, *octet3, kNumberOctet3Fields);
  // Behind the frame's last octet, octets 3a and 3b do not exist and their
  // lines are not shown.
  const std::size_t digitsFrom = DigitsPosition(element, layout);
  if (digitsFrom > 3) {
    if (const auto octet3a = element.FrameAt(3)) PrintFields(out, *octet3a, kNumberOctet3aFields);
  }
  if (digitsFrom > 4) {
    if (const auto octet3b = element.FrameAt(4)) PrintField(out, kReasonForRedirectionField, *octet3b);
  }

  const OctetSpan digits = element.Slice(digitsFrom);
  if (!digits.empty() || layout.showsEmptyDigits) PrintIa5String(out, layout.digitsLabel, digits);
}

void DecodeSubaddress(OutputWriter& out, const ElementOctets& element) {
  const auto octet3 = element.At(2);
  if (!octet3) return;

  PrintFields(out, *octet3, kSubaddressOctet3Fields);
  PrintOctetString(out, "Subaddress information", element.Slice(3));
}

}  // namespace

void DecodeCallingPartyNumber(OutputWriter& out, const ElementOctets& element) {
  DecodeNumber(out, element, kCallingPartyNumber);
}

void DecodeCalledPartyNumber(OutputWriter& out, const ElementOctets& element) {
  DecodeNumber(out, element, kCalledPartyNumber);
}

void DecodeRedirectingNumber(OutputWriter& out, const ElementOctets& element) {
  DecodeNumber(out, element, kRedirectingNumber);
}

OctetSpan PartyNumberDigits(const ElementOctets& element) {
  switch (element.Identifier()) {
    case 0x6C:
      return element.Slice(DigitsPosition(element, kCallingPartyNumber));
    case 0x70:
      return element.Slice(DigitsPosition(element, kCalledPartyNumber));
    case 0x74:
      return element.Slice(DigitsPosition(element, kRedirectingNumber));
    case 0x4C:
      return element.Slice(DigitsPosition(element, kConnectedNumber));
    default:
      return {};
  }
}

void DecodeConnectedNumber(OutputWriter& out, const ElementOctets& element) {
  DecodeNumber(out, element, kConnectedNumber);
}

void DecodeConnectedSubaddress(OutputWriter& out, const ElementOctets& element) { DecodeSubaddress(out, element); }

void PrintNumberText(OutputWriter& out, const ElementOctets& element) {
  if (element.At(2)) PrintIa5Text(out, "Number as text", PartyNumberDigits(element));
}

void DecodeCallingPartySubaddress(OutputWriter& out, const ElementOctets& element) { DecodeSubaddress(out, element); }

void DecodeCalledPartySubaddress(OutputWriter& out, const ElementOctets& element) { DecodeSubaddress(out, element); }

}  // namespace velmora
