// Single-octet elements (bit 8 = 1). The walks pick the octets by mask; these
// decoders do not test the identifier bits again.
#include "elements/element_registry.h"
#include "q931/text.h"

namespace velmora {

namespace {

constexpr ValueText kRepeatIndication[] = {
    {0b0010, "Prioritized list for selecting one possibility"},
};

constexpr ValueText kCongestionLevel[] = {
    {0b0000, "Receiver ready"},
    {0b1111, "Receiver not ready"},
};

}  // namespace

void DecodeRepeatIndicator(OutputWriter& out, const ElementOctets& element) {
  PrintField(out, "Repeat indication", FieldBits(element.Identifier(), 4, 1), 4, kRepeatIndication);
}

// Their heading says all there is.
void DecodeSendingComplete(OutputWriter&, const ElementOctets&) {}
void DecodeMoreData(OutputWriter&, const ElementOctets&) {}

void DecodeCongestionLevel(OutputWriter& out, const ElementOctets& element) {
  PrintField(out, "Congestion level", FieldBits(element.Identifier(), 4, 1), 4, kCongestionLevel);
}

}  // namespace velmora
