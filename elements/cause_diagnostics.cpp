// The diagnostic octets of a Cause element (octet 5 onward): a heading that
// names the coding, then its lines, indented one tab deeper than the fields.
#include <algorithm>
#include <string_view>

#include "cause.h"
#include "common_tables.h"
#include "field_text.h"

namespace velmora {
namespace {

constexpr Indent kSub = Indent::SubField;

// --- Condition (one octet, bits 4-1) ---

constexpr ValueText kServiceSides[] = {{0, "Network service - Provider"}, {1, "Network service - User"}};
constexpr ValueText kNormality[] = {{0, "Normal"}, {1, "Abnormal"}};
constexpr ValueText kPersistence[] = {{0b00, "Unknown"}, {0b01, "Permanent"}, {0b10, "Transient"}};
constexpr CodedField kConditionFields[] = {
    Coded<"Bit 4", 4, 4, kServiceSides>,
    Coded<"Bit 3", 3, 3, kNormality>,
    Coded<"Bits 2-1", 2, 1, kPersistence>,
};

void DecodeCondition(OutputWriter& out, OctetSpan diagnostics) {
  PrintFields(out, diagnostics.front(), kConditionFields, kSub);
}

// --- CCBS indicator (one whole octet) ---

constexpr ValueText kCcbsIndicators[] = {
    {0x01, "CCBS possible"},
    {0x02, "CCBS not possible"},
    {0xFF, "Reserved for extension"},
};
constexpr CodedField kCcbsIndicatorField = Coded<"Bits 8-1", 8, 1, kCcbsIndicators>;

void DecodeCcbsIndicator(OutputWriter& out, OctetSpan diagnostics) {
  const Octet octet = diagnostics.front();
  if (PrintField(out, kCcbsIndicatorField, octet, kSub)) return;
  PrintHexMeaning(out, kCcbsIndicatorField.name, octet, octet < 0x80 ? "Spare" : "Spare for national use", kSub);
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
constexpr CodedField kRejectionReasonField = Coded<"Rejection reason", 7, 3, kRejectionReasons>;
constexpr ValueText kRejectionConditions[] = {
    {0b00, "unknown"},
    {0b01, "permanent"},
    {0b10, "transient"},
    {0b11, "spare"},
};
constexpr CodedField kRejectionConditionField = Coded<"Condition", 2, 1, kRejectionConditions>;
constexpr ValueText kElementTypes[] = {
    {0, "variable length information element"},
    {1, "fixed length information element"},
};
constexpr CodedField kElementTypeField = Coded<"Information element type", 8, 8, kElementTypes>;

void DecodeCallRejected(OutputWriter& out, OctetSpan diagnostics) {
  const Octet first = diagnostics.front();
  const unsigned reason = kRejectionReasonField.ValueIn(first);
  PrintField(out, kRejectionReasonField, first, kSub);
  PrintField(out, kRejectionConditionField, first, kSub);

  const OctetSpan rest = diagnostics.subspan(1);
  if (rest.empty()) return;
  if (reason == kUserSpecific) {
    PrintOctetString(out, "User specific diagnostic", rest, kSub);
  } else if (reason == kElementMissing || reason == kContentsNotSufficient) {
    // Each octet names an information element: bit 8 its kind, bits 7-1 its identifier.
    for (const Octet named : rest) {
      PrintField(out, kElementTypeField, named, kSub);
      PrintSpacedHexField(out, "Information element identifier", FieldBits(named, 7, 1), kSub);
    }
  }
}

// --- Attribute identity (attribute number, then a run of value octets) ---
// The values read as Bearer capability's octets 3 to 7, with its tables.

constexpr ValueText kLayers[] = {{0b01, "layer 1"}, {0b10, "layer 2"}, {0b11, "layer 3"}};
constexpr CodedField kLayerField = Coded<"Layer identification", 7, 6, kLayers>;
// The protocol field of each layer, indexed by the layer; layer 0 names nothing.
constexpr CodedField kLayerProtocolFields[] = {
    {},
    kLayer1ProtocolField,
    kBearerLayer2ProtocolField,
    kBearerLayer3ProtocolField,
};

void PrintTransferCapability(OutputWriter& out, Octet value) { PrintField(out, kTransferCapabilityField, value, kSub); }
void PrintTransferMode(OutputWriter& out, Octet value) { PrintField(out, kBearerTransferModeField, value, kSub); }
void PrintTransferRate(OutputWriter& out, Octet value) { PrintField(out, kTransferRateField, value, kSub); }
// The next five have one meaning each in Q.931 (1988), whatever their bits.
void PrintStructure(OutputWriter& out, Octet value) {
  PrintHexMeaning(out, "Structure", FieldBits(value, 7, 5), "8 kHz integrity", kSub);
}
void PrintConfiguration(OutputWriter& out, Octet value) {
  PrintHexMeaning(out, "Configuration", FieldBits(value, 4, 3), "Point-to-point", kSub);
}
void PrintEstablishment(OutputWriter& out, Octet value) {
  PrintHexMeaning(out, "Establishment", FieldBits(value, 2, 1), "Demand", kSub);
}
void PrintSymmetry(OutputWriter& out, Octet value) {
  PrintHexMeaning(out, "Symmetry", FieldBits(value, 7, 6), "Bi-directional symmetric", kSub);
}
// This line has a blank after "=".
void PrintReverseTransferRate(OutputWriter& out, Octet value) {
  PrintFieldName(out, "Information transfer rate (dest. --> orig.)", kSub);
  out.SpaceHex(FieldBits(value, 5, 1));
  out.Put("  Reference in Recommendation Q.931 (1988)\n");
}
void PrintLayerIdentification(OutputWriter& out, Octet value) {
  if (!PrintField(out, kLayerField, value, kSub)) return;
  PrintField(out, kLayerProtocolFields[kLayerField.ValueIn(value)], value, kSub);
}

struct Attribute {
  ValueText number;  // the attribute number and its name
  void (*printValue)(OutputWriter& out, Octet value);
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
  // Plain algorithms rather than ranges: libc++ 14 (the WebAssembly build's) has few of those.
  const auto* attribute = std::find_if(std::begin(kAttributes), std::end(kAttributes),
                                       [number](const Attribute& a) { return a.number.value == number; });
  return attribute != std::end(kAttributes) ? attribute : nullptr;
}

// Groups of an attribute number and its value run (the rejected and the
// available value); bit 8 = 1 ends a run. An unknown attribute number has no
// line: that one octet is skipped and the next is read as a number. Every
// step consumes an octet, so the walk ends with the diagnostics.
void DecodeAttributeIdentity(OutputWriter& out, OctetSpan diagnostics) {
  std::size_t position = 0;
  while (position < diagnostics.size()) {
    const Attribute* attribute = FindAttribute(FieldBits(diagnostics[position], 7, 1));
    ++position;
    if (attribute == nullptr) continue;
    PrintCodedValue(out, "Attribute number", attribute->number.value, 7, attribute->number.text, kSub);
    while (position < diagnostics.size()) {
      const Octet value = diagnostics[position];
      ++position;
      attribute->printValue(out, value);
      if (!AnnouncesMore(value)) break;
    }
  }
}

// --- Channel type (one octet, bits 4-1, Channel identification's table) ---

void DecodeChannelType(OutputWriter& out, OctetSpan diagnostics) {
  constexpr CodedField kChannelTypeField = Coded<"Channel type", 4, 1, kChannelType>;
  PrintField(out, kChannelTypeField, diagnostics.front(), kSub);
}

// --- Message type (every octet, named as the message dispatch names it) ---

void DecodeMessageTypes(OutputWriter& out, OctetSpan diagnostics) {
  for (const Octet octet : diagnostics) {
    if (const ValueText* type = FindRow(kMessageTypeNames, octet))
      PrintCodedValue(out, "Message type", octet, 8, type->text, kSub);
  }
}

// --- The twelve codings ---

struct DiagnosticCoding {
  CauseDiagnosticKind kind;
  std::string_view name;  // behind "Diagnostics: Coding of "
  void (*decode)(OutputWriter& out, OctetSpan diagnostics);
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

void DecodeCauseDiagnostics(OutputWriter& out, CauseDiagnosticKind kind, OctetSpan diagnostics) {
  if (diagnostics.empty()) return;

  const auto* coding = std::find_if(std::begin(kCodings), std::end(kCodings),
                                    [kind](const DiagnosticCoding& row) { return row.kind == kind; });
  if (coding == std::end(kCodings)) return;

  out.Put("\t\tDiagnostics: Coding of ");
  out.Put(coding->name);
  out.Put('\n');
  if (coding->decode != nullptr)
    coding->decode(out, diagnostics);
  else
    PrintOctetString(out, coding->dumpField, diagnostics, kSub);
}

}  // namespace velmora
