// The diagnostic octets of a Cause element (octet 5 onward): a heading that
// names the coding, then its lines, indented one tab deeper than the fields.
#include <algorithm>
#include <string_view>

#include "elements/cause.h"
#include "q931/message.h"
#include "q931/text.h"

namespace velmora {
namespace {

constexpr Indent kSub = Indent::SubField;

// "<lead>0x%x  <meaning>\n": a value shown in hexadecimal with a meaning that
// does not depend on it. `lead` holds the indent, the name, "=" and any blank.
void PrintHexMeaning(std::string_view lead, unsigned value, std::string_view meaning) {
  OutputWriter& out = Out();
  out.Put(lead);
  out.Hex(value);
  out.Put("  ");
  out.Put(meaning);
  out.Put('\n');
}

// --- Condition (one octet, bits 4-1) ---

constexpr ValueText kServiceSides[] = {{0, "Network service - Provider"}, {1, "Network service - User"}};
constexpr ValueText kNormality[] = {{0, "Normal"}, {1, "Abnormal"}};
constexpr ValueText kPersistence[] = {{0b00, "Unknown"}, {0b01, "Permanent"}, {0b10, "Transient"}};

void DecodeCondition(OctetSpan diagnostics) {
  const Octet octet = diagnostics.front();
  PrintField("Bit 4", (octet >> 3) & 1, 1, kServiceSides, kSub);
  PrintField("Bit 3", (octet >> 2) & 1, 1, kNormality, kSub);
  PrintField("Bits 2-1", octet & 0b11, 2, kPersistence, kSub);
}

// --- CCBS indicator (one whole octet) ---

constexpr ValueText kCcbsIndicators[] = {
    {0x01, "CCBS possible"},
    {0x02, "CCBS not possible"},
    {0xFF, "Reserved for extension"},
};

void DecodeCcbsIndicator(OctetSpan diagnostics) {
  const Octet octet = diagnostics.front();
  if (PrintField("Bits 8-1", octet, 8, kCcbsIndicators, kSub)) return;
  PrintHexMeaning("\t\t\tBits 8-1=", octet, octet < 0x80 ? "Spare" : "Spare for national use");
}

// --- Call rejected (reason and condition, then the reason's octets) ---

constexpr unsigned kUserSpecific = 0b00000;
constexpr unsigned kElementMissing = 0b00001;
constexpr unsigned kContentsNotSufficient = 0b00010;

constexpr ValueText kRejectionReasons[] = {
    {kUserSpecific, "user specific"},
    {kElementMissing, "information element missing"},
    {kContentsNotSufficient, "information element contents are not sufficient"},
};
constexpr ValueText kRejectionConditions[] = {
    {0b00, "unknown"},
    {0b01, "permanent"},
    {0b10, "transient"},
    {0b11, "spare"},
};
constexpr ValueText kElementTypes[] = {
    {0, "variable length information element"},
    {1, "fixed length information element"},
};

void DecodeCallRejected(OctetSpan diagnostics) {
  const Octet first = diagnostics.front();
  const unsigned reason = (first >> 2) & 0b11111;
  PrintField("Rejection reason", reason, 5, kRejectionReasons, kSub);
  PrintField("Condition", first & 0b11, 2, kRejectionConditions, kSub);

  const OctetSpan rest = diagnostics.subspan(1);
  if (rest.empty()) return;
  if (reason == kUserSpecific) {
    PrintOctetString("User specific diagnostic", rest, kSub);
  } else if (reason == kElementMissing || reason == kContentsNotSufficient) {
    // Each octet names an information element: bit 8 its kind, bits 7-1 its identifier.
    for (const Octet named : rest) {
      PrintField("Information element type", named >> 7, 1, kElementTypes, kSub);
      Out().Put("\t\t\tInformation element identifier= ");
      Out().Hex(named & 0x7F);
      Out().Put('\n');
    }
  }
}

// --- Attribute identity (attribute number, then a run of value octets) ---

constexpr ValueText kTransferCapabilities[] = {
    {0b00000, "Speech"},
    {0b01000, "Unrestricted digital information"},
    {0b01001, "Restricted digital information"},
    {0b10000, "3.1 kHz audio"},
    {0b10001, "Unrestricted digital information with tones/announcements"},
    {0b11000, "Video"},
};
constexpr ValueText kTransferModes[] = {{0b00, "Circuit mode"}, {0b10, "Packet mode"}};
constexpr ValueText kTransferRates[] = {
    {0b00000, "This code shall be used for packet-mode calls"},
    {0b10000, "64 kbit/s"},
    {0b10001, "2 * 64 kbit/s"},
    {0b10011, "384 kbit/s"},
    {0b10101, "1536 kbit/s"},
    {0b10111, "1920 kbit/s"},
    {0b11000, "Multirate (64 kbit/s base rate)"},
};

constexpr ValueText kLayers[] = {{0b01, "layer 1"}, {0b10, "layer 2"}, {0b11, "layer 3"}};
constexpr ValueText kLayer1Protocols[] = {
    {0b00001, "ITU-T standardized rate adaption V.110[7], I.460[15] and X.30[8]"},
    {0b00010, "Recommendation G.711[10] Mu-law"},
    {0b00011, "Recommendation G.711 A-law"},
    {0b00100, "Recommendation G.721[11] 32 kbit/s ADPCM and Recommendation I.460[15]"},
    {0b00101, "Recommendations H.221 and H.242"},
    {0b00110, "Recommendations H.223[92] and H.245[93]"},
    {0b00111, "Non-ITU-T standardized rate adaption"},
    {0b01000, "ITU-T standardized rate adaption V.120[9]"},
    {0b01001, "ITU-T standardized rate adaption X.31[14] HDLC flag stuffing"},
};
constexpr ValueText kLayer2Protocols[] = {
    {0b00010, "Recommendation Q.921/I.441[3]"},
    {0b00110, "Recommendation X.25[5], link layer"},
    {0b01100, "LAN logical link control (ISO/IEC 8802-2[39])"},
};
constexpr ValueText kLayer3Protocols[] = {
    {0b00010, "Recommendation Q.931"},
    {0b00110, "Recommendation X.25, packet layer"},
    {0b01011, "ISO/IEC TR 9577[82] (Protocol identification in the network layer)"},
};
struct LayerProtocols {
  std::string_view field;
  ValueTable protocols;
};
// Indexed by the layer, bits 7-6; layer 0 names nothing.
constexpr LayerProtocols kLayerProtocols[] = {
    {{}, {}},
    {"User information layer 1 protocol", kLayer1Protocols},
    {"User information layer 2 protocol", kLayer2Protocols},
    {"User information layer 3 protocol", kLayer3Protocols},
};

void PrintTransferCapability(Octet value) {
  PrintField("Information transfer capability", value & 0b11111, 5, kTransferCapabilities, kSub);
}
void PrintTransferMode(Octet value) { PrintField("Transfer mode", (value >> 5) & 0b11, 2, kTransferModes, kSub); }
void PrintTransferRate(Octet value) {
  PrintField("Information transfer rate", value & 0b11111, 5, kTransferRates, kSub);
}
// The next five have one meaning each in Q.931 (1988), whatever their bits.
void PrintStructure(Octet value) { PrintHexMeaning("\t\t\tStructure=", (value >> 4) & 0b111, "8 kHz integrity"); }
void PrintConfiguration(Octet value) {
  PrintHexMeaning("\t\t\tConfiguration=", (value >> 2) & 0b11, "Point-to-point");
}
void PrintEstablishment(Octet value) { PrintHexMeaning("\t\t\tEstablishment=", value & 0b11, "Demand"); }
void PrintSymmetry(Octet value) {
  PrintHexMeaning("\t\t\tSymmetry=", (value >> 5) & 0b11, "Bi-directional symmetric");
}
void PrintReverseTransferRate(Octet value) {
  PrintHexMeaning("\t\t\tInformation transfer rate (dest. --> orig.)= ", value & 0b11111,
                  "Reference in Recommendation Q.931 (1988)");
}
void PrintLayerIdentification(Octet value) {
  const unsigned layer = (value >> 5) & 0b11;
  if (!PrintField("Layer identification", layer, 2, kLayers, kSub)) return;
  PrintField(kLayerProtocols[layer].field, value & 0b11111, 5, kLayerProtocols[layer].protocols, kSub);
}

struct Attribute {
  ValueText number;  // the attribute number and its name
  void (*printValue)(Octet value);
};
constexpr Attribute kAttributes[] = {
    {{0x31, "Information transfer capability"}, PrintTransferCapability},
    {{0x32, "Information transfer mode"}, PrintTransferMode},
    {{0x33, "Information transfer rate"}, PrintTransferRate},
    {{0x34, "Structure"}, PrintStructure},
    {{0x35, "Configuration"}, PrintConfiguration},
    {{0x36, "Establishment"}, PrintEstablishment},
    {{0x37, "Symmetry"}, PrintSymmetry},
    {{0x38, "Information transfer rate (dest. --> orig.)"}, PrintReverseTransferRate},
    {{0x39, "Layer identification"}, PrintLayerIdentification},
};

const Attribute* FindAttribute(unsigned number) {
  const auto* attribute =
      std::ranges::find_if(kAttributes, [number](const Attribute& a) { return a.number.value == number; });
  return attribute != std::ranges::end(kAttributes) ? attribute : nullptr;
}

// Groups of an attribute number and its value run (the rejected and the
// available value); bit 8 = 1 ends a run. An unknown attribute number has no
// line: that one octet is skipped and the next is read as a number. Every
// step consumes an octet, so the walk ends with the diagnostics.
void DecodeAttributeIdentity(OctetSpan diagnostics) {
  std::size_t position = 0;
  while (position < diagnostics.size()) {
    const Attribute* attribute = FindAttribute(diagnostics[position] & 0x7F);
    ++position;
    if (attribute == nullptr) continue;
    PrintField("Attribute number", attribute->number.value, 7, ValueTable(&attribute->number, 1), kSub);
    while (position < diagnostics.size()) {
      const Octet value = diagnostics[position];
      ++position;
      attribute->printValue(value);
      if ((value & 0x80) != 0) break;
    }
  }
}

// --- Channel type (one octet, bits 4-1) ---

constexpr ValueText kChannelTypes[] = {
    {0b0011, "B-channel units"},
    {0b0110, "H0-channel units"},
    {0b1000, "H11-channel units"},
    {0b1001, "H12-channel units"},
};

void DecodeChannelType(OctetSpan diagnostics) {
  PrintField("Channel type", diagnostics.front() & 0b1111, 4, kChannelTypes, kSub);
}

// --- Message type (every octet, named as the message dispatch names it) ---

void DecodeMessageTypes(OctetSpan diagnostics) {
  OutputWriter& out = Out();
  for (const Octet octet : diagnostics) {
    const MessageTypeInfo* type = FindMessageType(octet);
    if (type == nullptr) continue;
    out.Put("\t\t\tMessage type=");
    out.Bits(octet, 8);
    out.Put("  ");
    out.Put(type->name);
    out.Put('\n');
  }
}

// --- The twelve codings ---

struct DiagnosticCoding {
  CauseDiagnosticKind kind;
  std::string_view name;  // behind "Diagnostics: Coding of "
  void (*decode)(OctetSpan diagnostics);
  std::string_view dumpField;  // the octet dump's field, for codings without a decoder
};
constexpr DiagnosticCoding kCodings[] = {
    {CauseDiagnosticKind::Condition, "condition", DecodeCondition, {}},
    {CauseDiagnosticKind::TransitNetworkIdentity, "Transit network identity", nullptr, "Diagnostic field"},
    {CauseDiagnosticKind::CcbsIndicator, "CCBS indicator", DecodeCcbsIndicator, {}},
    {CauseDiagnosticKind::CallRejected, "Call rejected diagnostic", DecodeCallRejected, {}},
    {CauseDiagnosticKind::NewDestination, "New destination/Called party number", nullptr, "Diagnostic field"},
    {CauseDiagnosticKind::FacilityIdentification, "Facility identification/Rejected parameter", nullptr,
     "Diagnostic field"},
    {CauseDiagnosticKind::AttributeIdentity, "Attribute identity", DecodeAttributeIdentity, {}},
    {CauseDiagnosticKind::ChannelType, "Channel type", DecodeChannelType, {}},
    {CauseDiagnosticKind::IncompatibleParameter, "Incompatible parameter", nullptr, "Diagnostic field"},
    // The timer's IA5 characters are shown as octets, not as characters.
    {CauseDiagnosticKind::TimerNumber, "Timer number", nullptr, "Diagnostic field(IA5)"},
    {CauseDiagnosticKind::MessageType, "Message type", DecodeMessageTypes, {}},
    {CauseDiagnosticKind::ParameterName, "parameter name", nullptr, "Diagnostic field"},
};

}  // namespace

void DecodeCauseDiagnostics(CauseDiagnosticKind kind, const ElementOctets& element, std::size_t first,
                            std::size_t count) {
  // The element's octets from `first`, clipped to the frame and to `count`.
  OctetSpan diagnostics = element.Slice(first);
  const std::size_t available = count > first ? count - first : 0;
  diagnostics = diagnostics.first(std::min(diagnostics.size(), available));
  if (diagnostics.empty()) return;

  const auto* coding = std::ranges::find(kCodings, kind, &DiagnosticCoding::kind);
  if (coding == std::ranges::end(kCodings)) return;

  OutputWriter& out = Out();
  out.Put("\t\tDiagnostics: Coding of ");
  out.Put(coding->name);
  out.Put('\n');
  if (coding->decode != nullptr)
    coding->decode(diagnostics);
  else
    PrintOctetString(coding->dumpField, diagnostics, kSub);
}

}  // namespace velmora
