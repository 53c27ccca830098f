// Bearer capability (0x04), and the octet groups Low layer compatibility
// decodes the same way (see bearer_capability.h).
#include "bearer_capability.h"

#include <iterator>

#include "common_tables.h"
#include "element_registry.h"

namespace velmora {
namespace capability {
namespace {

constexpr std::size_t kOctet3Position = 2;

// Capability, rate and the layer 1 to 3 protocols print with the shared
// tables (Cause's attribute diagnostics name them the same way).
constexpr unsigned kMultirate = 0b11000;

constexpr unsigned kLayer1V110 = 0b00001;
constexpr unsigned kLayer1V120 = 0b01000;

// Octets 5a, 5c and 5d are present only for these capability / layer 1
// protocol pairs: V.110 or V.120 over unrestricted digital information, and
// a modem behind G.711 over 3.1 kHz audio.
struct RateAdaptionPair {
  unsigned capability;
  unsigned layer1Protocol;
};
constexpr RateAdaptionPair kRateAdaptionPairs[] = {
    {0b01000, 0b00001},
    {0b01000, 0b01000},
    {0b10000, 0b00010},
    {0b10000, 0b00011},
};

constexpr ValueText kSynchronousAsynchronous[] = {{0, "Synchronous data"}, {1, "Asynchronous data"}};
constexpr ValueText kNegotiation[] = {{0, "In-band negotiation not possible"}, {1, "In-band negotiation possible"}};
// Octet 5a but its user rate, which the element words its own way.
constexpr CodedField kOctet5a[] = {
    Coded<"Synchronous/Asynchronous", 7, 7, kSynchronousAsynchronous>,
    Coded<"Negotiation", 6, 6, kNegotiation>,
};

constexpr ValueText kIntermediateRate[] = {
    {0b00, "Not used"}, {0b01, "8 kbit/s"}, {0b10, "16 kbit/s"}, {0b11, "32 kbit/s"}};
constexpr ValueText kNicOnTransmission[] = {
    {0, "Not required to send data with network independent clock"},
    {1, "Required to send data with network independent clock"},
};
constexpr ValueText kNicOnReception[] = {
    {0, "Cannot accept data with network independent clock"},
    {1, "Can accept data with network independent clock"},
};
constexpr ValueText kFlowControlOnTransmission[] = {
    {0, "Not required to send data with flow control mechanism"},
    {1, "Required to send data with flow control mechanism"},
};
constexpr ValueText kFlowControlOnReception[] = {
    {0, "Cannot accept data with flow control mechanism"},
    {1, "Can accept data with flow control mechanism"},
};
// Octet 5b for V.110 / I.460 / X.30 rate adaption; bit 1 is spare.
constexpr CodedField kOctet5bRateAdaption[] = {
    Coded<"Intermediate rate", 7, 6, kIntermediateRate>,
    Coded<"Network Independent Clock (NIC) on transmission (Tx)", 5, 5, kNicOnTransmission>,
    Coded<"Network Independent Clock (NIC) on reception (Rx)", 4, 4, kNicOnReception>,
    Coded<"Flow control on transmission (Tx)", 3, 3, kFlowControlOnTransmission>,
    Coded<"Flow control on reception (Rx)", 2, 2, kFlowControlOnReception>,
};

constexpr ValueText kRateAdaptionHeader[] = {{0, "Rate adaption header not included"},
                                             {1, "Rate adaption header included"}};
constexpr ValueText kMultipleFrameEstablishment[] = {
    {0, "Multiple frame establishment not supported. Only UI frames allowed"},
    {1, "Multiple frame establishment supported"},
};
constexpr ValueText kV120ModeOfOperation[] = {{0, "Bit transparent mode of operation"},
                                              {1, "Protocol sensitive mode of operation"}};
constexpr ValueText kLogicalLinkIdentifierNegotiation[] = {{0, "Default, LLI = 256 only"},
                                                           {1, "Full protocol negotiation"}};
constexpr ValueText kAssignorAssignee[] = {{0, "Message originator is Default assignee"},
                                           {1, "Message originator is Assignor only"}};
constexpr ValueText kInBandOutBandNegotiation[] = {
    {0, "Negotiation is done with USER INFORMATION messages on a temporary signalling connection"},
    {1, "Negotiation is done in-band using logical link zero"},
};
// Octet 5b for V.120 rate adaption; bit 1 is spare.
constexpr CodedField kOctet5bV120[] = {
    Coded<"Rate adaption header/no header", 7, 7, kRateAdaptionHeader>,
    Coded<"Multiple frame establishment support in data link", 6, 6, kMultipleFrameEstablishment>,
    Coded<"Mode of operation", 5, 5, kV120ModeOfOperation>,
    Coded<"Logical link identifier negotiation", 4, 4, kLogicalLinkIdentifierNegotiation>,
    Coded<"Assignor/assignee", 3, 3, kAssignorAssignee>,
    Coded<"In-band/out-band negotiation", 2, 2, kInBandOutBandNegotiation>,
};

constexpr ValueText kStopBits[] = {{0b00, "Not used"}, {0b01, "1 bit"}, {0b10, "1.5 bits"}, {0b11, "2 bits"}};
constexpr ValueText kDataBits[] = {{0b00, "Not used"}, {0b01, "5 bit"}, {0b10, "7 bits"}, {0b11, "8 bits"}};
constexpr ValueText kParity[] = {
    {0b000, "Odd"}, {0b010, "Even"}, {0b011, "None"}, {0b100, "Forced to 0"}, {0b101, "Forced to 1"}};
constexpr CodedField kOctet5c[] = {
    Coded<"Number of stop bits", 7, 6, kStopBits>,
    Coded<"Number of data bits excluding parity Bit if present", 5, 4, kDataBits>,
    Coded<"Parity information", 3, 1, kParity>,
};

constexpr ValueText kDuplexMode[] = {{0, "Half duplex"}, {1, "Full duplex"}};
constexpr CodedField kDuplexModeField = Coded<"Mode duplex", 7, 7, kDuplexMode>;

// Modem types named by range; their line shows the value in decimal.
constexpr RangeText kModemTypeRanges[] = {
    {0, 5, "National use"},
    {32, 47, "National use"},
    {48, 63, "User specified"},
};
constexpr ValueText kModemType[] = {
    {0b010001, "Recommendation V.21"},     {0b010010, "Recommendation V.22"}, {0b010011, "Recommendation V.22 bis"},
    {0b010100, "Recommendation V.23"},     {0b010101, "Recommendation V.26"}, {0b010110, "Recommendation V.26 bis"},
    {0b010111, "Recommendation V.26 ter"}, {0b011000, "Recommendation V.27"}, {0b011001, "Recommendation V.27 bis"},
    {0b011010, "Recommendation V.27 ter"}, {0b011011, "Recommendation V.29"}, {0b011101, "Recommendation V.32"},
    {0b011110, "Recommendation V.34[90]"},
};

// Octets 7a and 7b bits 4-1, as one value: 7a in the high half.
constexpr ValueText kAdditionalLayer3Information[] = {
    {0b1100'1100, "Internet Protocol (RFC 791) (ISO/IEC TR 9577[82])"},
    {0b1100'1111, "Point-to-point Protocol (RFC 1548)"},
};

// Bearer capability's user rates: all but 10000, which only Low layer
// compatibility names. Its transfer mode and layer 2 and 3 tables are the
// shared ones; Low layer compatibility words transfer mode 10 otherwise and
// names more protocols, so it keeps its own.
static_assert(std::size(kUserRate) == 31 && kUserRate[30].value == 0b10000);
constexpr ValueTable kBearerUserRates = ValueTable(kUserRate).first(std::size(kUserRate) - 1);
constexpr CodedField kBearerUserRateField = WithMeanings<kUserRateField, kBearerUserRates>;

// Layer identification, bits 7-6 of a layer octet.
enum LayerIdentification : unsigned { kNoLayer = 0b00, kLayer1 = 0b01, kLayer2 = 0b10, kLayer3 = 0b11 };

bool RateAdaptionHolds(unsigned capability, unsigned layer1Protocol) {
  for (const RateAdaptionPair& pair : kRateAdaptionPairs)
    if (pair.capability == capability && pair.layer1Protocol == layer1Protocol) return true;
  return false;
}

std::span<const CodedField> Octet5bFields(unsigned layer1Protocol) {
  if (layer1Protocol == kLayer1V110) return kOctet5bRateAdaption;
  if (layer1Protocol == kLayer1V120) return kOctet5bV120;
  return {};
}

constexpr CodedField kModemTypeField = Coded<"Modem type", 6, 1, kModemType>;

void PrintModemType(OutputWriter& out, Octet octet5d) {
  const unsigned modemType = kModemTypeField.ValueIn(octet5d);
  if (const RangeText* range = FindRange(kModemTypeRanges, modemType)) {
    PrintFieldName(out, "Modem type");
    out.Decimal(modemType);
    out.Put("  ");
    out.Put(range->text);
    out.Put('\n');
    return;
  }
  PrintField(out, kModemTypeField, octet5d);
}

// Octet 5 and whichever of 5a to 5d follow it. An octet that a step does not
// take is left for the next step, and in the end for the layer-octet walk.
void DecodeLayer1Group(OutputWriter& out, Octet octet5, unsigned capability, const CodedField& userRate,
                       OctetReader& octets) {
  const unsigned protocol = kLayer1ProtocolField.ValueIn(octet5);
  PrintField(out, kLayer1ProtocolField, octet5);
  const bool rateAdaption = RateAdaptionHolds(capability, protocol);
  bool more = AnnouncesMore(octet5);

  if (more && rateAdaption) {
    const auto octet5a = octets.Take();
    if (!octet5a) return;
    PrintFields(out, *octet5a, kOctet5a);
    PrintField(out, userRate, *octet5a);
    more = AnnouncesMore(*octet5a);
  }
  // Octet 5b depends on the layer 1 protocol alone.
  if (const auto fields5b = Octet5bFields(protocol); more && !fields5b.empty()) {
    const auto octet5b = octets.Take();
    if (!octet5b) return;
    PrintFields(out, *octet5b, fields5b);
    more = AnnouncesMore(*octet5b);
  }
  if (more && rateAdaption) {
    const auto octet5c = octets.Take();
    if (!octet5c) return;
    PrintFields(out, *octet5c, kOctet5c);
    more = AnnouncesMore(*octet5c);
  }
  if (more && rateAdaption) {
    const auto octet5d = octets.Take();
    if (!octet5d) return;
    PrintField(out, kDuplexModeField, *octet5d);
    PrintModemType(out, *octet5d);
  }
}

// Octet 6: the protocol alone; bit 8 is not looked at.
void DecodeBearerLayer2Group(OutputWriter& out, Octet octet6, OctetReader& /*octets*/) {
  PrintField(out, kBearerLayer2ProtocolField, octet6);
}

// Octet 7; after ISO/IEC TR 9577, octets 7a and 7b follow whatever bit 8 says.
void DecodeBearerLayer3Group(OutputWriter& out, Octet octet7, OctetReader& octets) {
  PrintField(out, kBearerLayer3ProtocolField, octet7);
  if (kBearerLayer3ProtocolField.ValueIn(octet7) == kLayer3Tr9577) DecodeAdditionalLayer3Information(out, octets);
}

constexpr CapabilityVariant kBearerCapability = {
    .negotiationIndicator = {},
    .transferMode = kBearerTransferModeField,
    .userRate = kBearerUserRateField,
    .layer2Group = DecodeBearerLayer2Group,
    .layer3Group = DecodeBearerLayer3Group,
};

}  // namespace

void DecodeAdditionalLayer3Information(OutputWriter& out, OctetReader& octets) {
  const auto octet7a = octets.Take();
  const auto octet7b = octets.Take();
  if (!octet7a || !octet7b) return;
  const unsigned high = FieldBits(*octet7a, 4, 1);
  const unsigned low = FieldBits(*octet7b, 4, 1);
  const ValueText* row = FindRow(kAdditionalLayer3Information, high << 4 | low);
  if (row == nullptr) return;
  PrintFieldName(out, "Additional layer 3 protocol information:7a");
  out.Bits(high, 4);
  out.Put(", 7b=");
  out.Bits(low, 4);
  out.Put("  ");
  out.Put(row->text);
  out.Put('\n');
}

void DecodeCapabilityElement(OutputWriter& out, const ElementOctets& element, const CapabilityVariant& variant) {
  OctetReader octets(element, kOctet3Position);

  const auto octet3 = octets.Take();
  if (!octet3) return;
  PrintField(out, kCodingStandardField, *octet3);
  PrintField(out, kTransferCapabilityField, *octet3);

  if (!variant.negotiationIndicator.meanings.empty() && AnnouncesMore(*octet3)) {
    const auto octet3a = octets.Take();
    if (!octet3a) return;
    PrintField(out, variant.negotiationIndicator, *octet3a);
  }

  const auto octet4 = octets.Take();
  if (!octet4) return;
  PrintField(out, variant.transferMode, *octet4);
  PrintField(out, kTransferRateField, *octet4);

  if (kTransferRateField.ValueIn(*octet4) == kMultirate) {
    const auto rateMultiplier = octets.Take();
    if (!rateMultiplier) return;
    PrintHexField(out, "Rate multiplier", FieldBits(*rateMultiplier, 7, 1));
  }

  // Layer octets, in any order and any number, each decoded where it stands.
  while (const auto layerOctet = octets.Take()) {
    switch (FieldBits(*layerOctet, 7, 6)) {
      case kLayer1:
        DecodeLayer1Group(out, *layerOctet, kTransferCapabilityField.ValueIn(*octet3), variant.userRate, octets);
        break;
      case kLayer2:
        variant.layer2Group(out, *layerOctet, octets);
        break;
      case kLayer3:
        variant.layer3Group(out, *layerOctet, octets);
        break;
      case kNoLayer:
      default:
        // Names no layer: stepped over, so a stray octet never stalls the
        // walk and the layer octets behind it are still decoded.
        break;
    }
  }
}

}  // namespace capability

void DecodeBearerCapability(OutputWriter& out, const ElementOctets& element) {
  capability::DecodeCapabilityElement(out, element, capability::kBearerCapability);
}

}  // namespace velmora
