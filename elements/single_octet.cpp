// Single-octet elements (bit 8 = 1). The walks pick the octets by mask; these
// decoders do not test the identifier bits again.
#include "element_registry.h"
#include "field_text.h"

namespace velmora {

namespace {

constexpr ValueText kRepeatIndication[] = {
    {0b0010, "Prioritized list for selecting one possibility"},
};
constexpr CodedField kRepeatIndicationField = Coded<"Repeat indication", 4, 1, kRepeatIndication>;

constexpr ValueText kCongestionLevel[] = {
    {0b0000, "Receiver ready"},
    {0b1111, "Receiver not ready"},
};
constexpr CodedField kCongestionLevelField = Coded<"Congestion level", 4, 1, kCongestionLevel>;

}  // namespace

void DecodeRepeatIndicator(OutputWriter& out, const ElementOctets& element) {
  PrintField(out, kRepeatIndicationField, element.Identifier());
}

// Their heading says all there is.
void DecodeSendingComplete(OutputWriter&, const ElementOctets&) {}
void DecodeMoreData(OutputWriter&, const ElementOctets&) {}

void DecodeCongestionLevel(OutputWriter& out, const ElementOctets& element) {
  PrintField(out, kCongestionLevelField, element.Identifier());
}

}  // namespace velmora
