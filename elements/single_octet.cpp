// Single-octet elements (bit 8 = 1). The walks pick the octets by mask; these
// decoders do not test the identifier bits again and always occupy 1 octet.
#include "elements/element_decoders.h"
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

int DecodeRepeatIndicator(OutputWriter& out, const ElementOctets& element) {
  PrintHeading(out, "Repeat indicator");
  PrintField(out, "Repeat indication", FieldBits(element.Identifier(), 4, 1), 4, kRepeatIndication);
  return 1;
}

int DecodeSendingComplete(OutputWriter& out, const ElementOctets&) {
  PrintHeading(out, "Sending complete");
  return 1;
}

int DecodeMoreData(OutputWriter& out, const ElementOctets&) {
  PrintHeading(out, "More data");
  return 1;
}

int DecodeCongestionLevel(OutputWriter& out, const ElementOctets& element) {
  PrintHeading(out, "Congestion level");
  PrintField(out, "Congestion level", FieldBits(element.Identifier(), 4, 1), 4, kCongestionLevel);
  return 1;
}

}  // namespace velmora
