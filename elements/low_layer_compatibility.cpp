// Low layer compatibility (0x7C). Decoded like Bearer capability (see
// bearer_capability.h); what is its own is octet 3a, the wording of transfer
// mode 10, user rate 10000, and the layer 2 and layer 3 groups with their
// octets 6a, 6b and 7a to 7c.
#include "bearer_capability.h"
#include "common_tables.h"
#include "element_registry.h"

namespace velmora {
namespace {

using capability::OctetReader;

constexpr ValueText kNegotiationIndicator[] = {
    {0, "Out-band negotiation not possible"},
    {1, "Out-band negotiation possible"},
};

constexpr ValueText kTransferMode[] = {{0b00, "Circuit mode"}, {0b10, "Packet-mode"}};

constexpr ValueText kLayer2Protocol[] = {
    {0b00001, "Basic mode ISO 1745 [36]"},
    {0b00010, "Recommendation Q.921/I.441[3]"},
    {0b00110, "Recommendation X.25[5], link layer"},
    {0b00111, "Recommendation X.25 Multilink"},
    {0b01000, "Extended LAPB; for half duplex operation (Recommendation T.71 [37])"},
    {0b01001, "HDLC ARM (ISO/IEC 4335 [38])"},
    {0b01010, "HDLC NRM (ISO/IEC 4335)"},
    {0b01011, "HDLC ABM (ISO/IEC 4335)"},
    {0b01100, "LAN logical link control (ISO/IEC 8802-2[39])"},
    {0b01101, "Recommendation X.75 [40]. Single Link Procedure (SLP)"},
    {0b01110, "Recommendation Q.922"},
    {0b01111, "Core aspects of Recommendation Q.922"},
    {0b10000, "User specified"},
    {0b10001, "ISO/IEC 7776 DTE-DCE operation"},
};
constexpr unsigned kLayer2UserSpecified = 0b10000;

constexpr ValueText kHdlcModeOfOperation[] = {
    {0b01, "Normal mode of operation"},
    {0b10, "Extended mode of operation"},
};
constexpr ValueText kQ933Use[] = {
    {0b00, "For use when the coding defined in Recommendation Q.933 is not used"},
};
// Octet 6a after HDLC ARM, NRM or ABM; bits 5-3 are not looked at.
constexpr CodedField kOctet6aHdlc[] = {
    Coded<"Mode of operation", 7, 6, kHdlcModeOfOperation>,
    Coded<"Q.933 use", 2, 1, kQ933Use>,
};

constexpr ValueText kLayer3Protocol[] = {
    {0b00010, "Recommendation Q.931"},
    {0b00110, "Recommendation X.25, packet layer"},
    {0b00111, "ISO/IEC 8208 [41] (X.25 packet level protocol for data terminal equipment)"},
    {0b01000,
     "ITU-T Rec. X.223 and ISO/IEC 8878 [81] (use of ISO/IEC 8208 [41] and Recommendation X.25 to provide the "
     "OSI-CONS)"},
    {0b01001, "ISO/IEC 8473 [43] (OSI connectionless mode protocol)"},
    {0b01010, "Recommendation T.70 [32] minimum network layer"},
    {0b01011, "ISO/IEC TR 9577[82] (Protocol identification in the network layer)"},
    {0b10000, "User specified"},
};
constexpr unsigned kLayer3UserSpecified = 0b10000;

constexpr ValueText kX25ModeOfOperation[] = {
    {0b01, "Normal packet sequence numbering"},
    {0b10, "Extended packet sequence numbering"},
};
constexpr CodedField kX25ModeOfOperationField = Coded<"Mode of operation", 7, 6, kX25ModeOfOperation>;

constexpr ValueText kDefaultPacketSize[] = {
    {0b0100, "16 octets"},   {0b0101, "32 octets"},   {0b0110, "64 octets"},
    {0b0111, "128 octets"},  {0b1000, "256 octets"},  {0b1001, "512 octets"},
    {0b1010, "1024 octets"}, {0b1011, "2048 octets"}, {0b1100, "4096 octets"},
};
constexpr CodedField kDefaultPacketSizeField = Coded<"Default packet size", 4, 1, kDefaultPacketSize>;

// HDLC ARM, NRM and ABM carry octets 6a and 6b.
bool IsHdlc(unsigned layer2Protocol) { return layer2Protocol >= 0b01001 && layer2Protocol <= 0b01011; }

// X.25 packet layer, ISO/IEC 8208 and X.223 carry octets 7a to 7c.
bool IsX25Family(unsigned layer3Protocol) { return layer3Protocol >= 0b00110 && layer3Protocol <= 0b01000; }

// Octet 6, then 6a in its HDLC or user-specified form and 6b for HDLC.
void DecodeLayer2Group(OutputWriter& out, Octet octet6, OctetReader& octets) {
  constexpr CodedField kProtocolField = WithMeanings<kBearerLayer2ProtocolField, kLayer2Protocol>;
  const unsigned protocol = kProtocolField.ValueIn(octet6);
  PrintField(out, kProtocolField, octet6);
  bool more = AnnouncesMore(octet6);

  if (more && (IsHdlc(protocol) || protocol == kLayer2UserSpecified)) {
    const auto octet6a = octets.Take();
    if (!octet6a) return;
    if (IsHdlc(protocol))
      PrintFields(out, *octet6a, kOctet6aHdlc);
    else
      PrintSpacedHexField(out, "User specified layer 2 protocol information", FieldBits(*octet6a, 7, 1));
    more = AnnouncesMore(*octet6a);
  }
  if (more && IsHdlc(protocol)) {
    const auto octet6b = octets.Take();
    if (!octet6b) return;
    PrintSpacedHexField(out, "Window size (k)", FieldBits(*octet6b, 7, 1));
  }
}

// Octet 7, then 7a (user specified), 7a to 7c (X.25 family) or 7a and 7b
// (ISO/IEC TR 9577), each only when bit 8 of octet 7 announces them.
void DecodeLayer3Group(OutputWriter& out, Octet octet7, OctetReader& octets) {
  constexpr CodedField kProtocolField = WithMeanings<kBearerLayer3ProtocolField, kLayer3Protocol>;
  const unsigned protocol = kProtocolField.ValueIn(octet7);
  PrintField(out, kProtocolField, octet7);
  if (!AnnouncesMore(octet7)) return;

  if (protocol == kLayer3UserSpecified) {
    if (const auto octet7a = octets.Take())
      PrintSpacedHexField(out, "User specified layer 3 protocol information", FieldBits(*octet7a, 7, 1));
  } else if (IsX25Family(protocol)) {
    const auto octet7a = octets.Take();
    if (!octet7a) return;
    PrintField(out, kX25ModeOfOperationField, *octet7a);
    if (!AnnouncesMore(*octet7a)) return;
    const auto octet7b = octets.Take();
    if (!octet7b) return;
    PrintField(out, kDefaultPacketSizeField, *octet7b);
    if (!AnnouncesMore(*octet7b)) return;
    if (const auto octet7c = octets.Take()) PrintSpacedHexField(out, "Packet window size", FieldBits(*octet7c, 7, 1));
  } else if (protocol == capability::kLayer3Tr9577) {
    capability::DecodeAdditionalLayer3Information(out, octets);
  }
}

constexpr capability::CapabilityVariant kLowLayerCompatibility = {
    .negotiationIndicator = Coded<"Negotiation indicator", 7, 7, kNegotiationIndicator>,
    .transferMode = WithMeanings<kBearerTransferModeField, kTransferMode>,
    .userRate = capability::kUserRateField,
    .layer2Group = DecodeLayer2Group,
    .layer3Group = DecodeLayer3Group,
};

}  // namespace

void DecodeLowLayerCompatibility(OutputWriter& out, const ElementOctets& element) {
  capability::DecodeCapabilityElement(out, element, kLowLayerCompatibility);
}

}  // namespace velmora
