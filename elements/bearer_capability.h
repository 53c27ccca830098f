#pragma once
// What Bearer capability (0x04) shares with Low layer compatibility (0x7C):
// the octet 3 and 4 fields, the layer 1 group (octets 5 to 5d), the walk over
// layer octets and the additional layer 3 protocol information of octets
// 7a/7b. The two elements differ only in what CapabilityVariant holds.
#include <cstddef>
#include <optional>
#include <string_view>

#include "element_octets.h"
#include "field_text.h"

namespace velmora::capability {

// Hands out an element's octets in order. When the next octet lies beyond
// the element's last octet or the frame's, Take() finds nothing and the
// position stays put, so every later Take() finds nothing as well: the
// element's decoding has ended.
class OctetReader {
 public:
  OctetReader(const ElementOctets& element, std::size_t position) : element_(element), position_(position) {}

  std::optional<Octet> Take() {
    const std::optional<Octet> octet = element_.At(position_);
    if (octet) ++position_;
    return octet;
  }

 private:
  const ElementOctets& element_;
  std::size_t position_;
};

// User rate, octet 5a bits 5-1. Low layer compatibility names 10000 as well;
// Bearer capability does not, so that row stands last and is cut off for it.
inline constexpr ValueText kUserRate[] = {
    {0b00000,
     "For I.460, rate is specified by bits 7, 6 of octet 5b, intermediate rate. For V.110 and X.30, rate is "
     "indicated by E-bits (synchronous data only) or may be negotiated in-band. For V.120, rate is unspecified "
     "or may be negotiated in-band."},
    {0b00001, "0.6 kbit/s Recommendation X.1[17]"},
    {0b00010, "1.2 kbit/s"},
    {0b00011, "2.4 kbit/s Recommendation X.1"},
    {0b00100, "3.6 kbit/s"},
    {0b00101, "4.8 kbit/s Recommendation X.1"},
    {0b00110, "7.2 kbit/s"},
    {0b00111, "8 kbit/s Recommendation I.460"},
    {0b01000, "9.6 kbit/s Recommendation X.1"},
    {0b01001, "14.4 kbit/s"},
    {0b01010, "16 kbit/s Recommendation I.460"},
    {0b01011, "19.2 kbit/s"},
    {0b01100, "32 kbit/s Recommendation I.460"},
    {0b01101, "38.4 kbit/s Recommendation V.110[7]"},
    {0b01110, "48 kbit/s Recommendations X.1"},
    {0b01111, "56 kbit/s"},
    {0b10010, "57.6 kbit/s Recommendation V.14[88] extended"},
    {0b10011, "28.8 kbit/s Recommendation V.110[89]"},
    {0b10100, "24 kbit/s Recommendation V.110[89]"},
    {0b10101, "0.1345 kbit/s Recommendation X.1"},
    {0b10110, "0.100 kbit/s Recommendation X.1"},
    {0b10111, "0.075/1.2 kbit/s Recommendation X.1"},
    {0b11000, "1.2/0.075 kbit/s Recommendation X.1"},
    {0b11001, "0.050 kbit/s Recommendation X.1"},
    {0b11010, "0.075 kbit/s Recommendation X.1"},
    {0b11011, "0.110 kbit/s Recommendation X.1"},
    {0b11100, "0.150 kbit/s Recommendation X.1"},
    {0b11101, "0.200 kbit/s Recommendation X.1"},
    {0b11110, "0.300 kbit/s Recommendation X.1"},
    {0b11111, "12 kbit/s"},
    {0b10000, "64 kbit/s Recommendation X.1"},
};

inline constexpr CodedField kUserRateField = Coded<"User rate", 5, 1, kUserRate>;

// Layer 3 protocol 01011 (ISO/IEC TR 9577): octets 7a and 7b follow.
inline constexpr unsigned kLayer3Tr9577 = 0b01011;

// Decodes the rest of a layer 2 or layer 3 group, whose first octet the
// layer-octet walk has already taken.
using LayerGroupDecoder = void (*)(OutputWriter& out, Octet layerOctet, OctetReader& octets);

// Everything in which the two elements differ; the rest is decoded alike.
struct CapabilityVariant {
  // Octet 3a's negotiation indicator (bit 7), announced by bit 8 of octet 3
  // = 0. No meanings for an element without octet 3a: bit 8 of octet 3 is
  // then not looked at.
  CodedField negotiationIndicator;
  CodedField transferMode;  // octet 4 bits 7-6
  CodedField userRate;      // octet 5a bits 5-1
  LayerGroupDecoder layer2Group;
  LayerGroupDecoder layer3Group;
};

// Octets 3 (3a), 4 (4.1) and the layer octets that follow, up to the
// element's end.
void DecodeCapabilityElement(OutputWriter& out, const ElementOctets& element, const CapabilityVariant& variant);

// Takes octets 7a and 7b whatever they hold and prints the line that their
// bits 4-1 name, if any. Nothing when either lies beyond the element.
void DecodeAdditionalLayer3Information(OutputWriter& out, OctetReader& octets);

}  // namespace velmora::capability
