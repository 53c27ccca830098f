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

// Shift, 1001 xnnn: bit 4 tells a locking shift (every element behind it)
// from a non-locking one (the next element only); bits 3-1 name the codeset.
constexpr ValueText kShiftProcedures[] = {
    {0, "Locking shift"},
    {1, "Non-locking shift"},
};
constexpr ValueText kCodesets[] = {
    {0b000, "Codeset 0: ITU-T (Q.931) information elements"},
    {0b001, "Reserved"},
    {0b010, "Reserved"},
    {0b011, "Reserved"},
    {0b100, "Codeset 4: information elements for ISO/IEC use"},
    {0b101, "Codeset 5: information elements for national use"},
    {0b110, "Codeset 6: information elements specific to the local network"},
    {0b111, "Codeset 7: user-specific information elements"},
};
constexpr CodedField kShiftFields[] = {
    Coded<"Shift procedure", 4, 4, kShiftProcedures>,
    Coded<"New codeset identification", 3, 1, kCodesets>,
};

}  // namespace

void DecodeShift(OutputWriter& out, const ElementOctets& element) {
  PrintFields(out, element.Identifier(), kShiftFields);
}

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
