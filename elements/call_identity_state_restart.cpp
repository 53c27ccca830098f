// Call identity (0x10), Call state (0x14), Restart indicator (0x79).
// Each reads octet 3 (or octets 3 to L + 2) and stops at the element's end;
// a frame that ends before octet 3 leaves the heading alone, as L = 0 does.
#include "element_registry.h"
#include "field_text.h"

namespace velmora {

namespace {

// Not the shared coding standard table: Call state writes "ISO/IEC standard"
// with a lower-case s.
constexpr ValueText kCallStateCodingStandard[] = {
    {0b00, "ITU-T standardized coding"},
    {0b01, "ISO/IEC standard"},
    {0b10, "National standard"},
    {0b11, "Standard defined for the network (either public or private) present on the network side of the interface"},
};
constexpr CodedField kCallStateCodingStandardField = Coded<"Coding standard", 8, 7, kCallStateCodingStandard>;

// The same six bits carry the global interface state of the restart
// procedures; the field is named after what the value stands for, so each
// name has the values that bear it.
constexpr ValueText kNullState[] = {{0b000000, "U0-Null, N0-Null, REST0-Null"}};
constexpr ValueText kCallStates[] = {
    {0b000001, "U1-Call initiated, N1-Call initiated"},
    {0b000010, "U2-Overlap sending, N2-Overlap sending"},
    {0b000011, "U3-Outgoing call proceeding, N3-Outgoing call proceeding"},
    {0b000100, "U4-Call delivered, N4-Call delivered"},
    {0b000110, "U6-Call present, N6-Call present"},
    {0b000111, "U7-Call received, N7-Call received"},
    {0b001000, "U8-Connect request, N8-Connect request"},
    {0b001001, "U9-Incoming call proceeding, N9-Incoming call proceeding"},
    {0b001010, "U10-Active, N10-Active"},
    {0b001011, "U11-Disconnect request, N11-Disconnect request"},
    {0b001100, "U12-Disconnect indication, N12-Disconnect indication"},
    {0b001111, "U15-Suspend request, N15-Suspend request"},
    {0b010001, "U17-Resume request, N17-Resume request"},
    {0b010011, "U19-Release request, N19-Release request"},
    {0b010110, "N22-Call abort"},
    {0b011001, "U25-Overlap receiving, N25-Overlap receiving"},
};
constexpr ValueText kGlobalInterfaceStates[] = {
    {0b111101, "REST1-Restart request"},
    {0b111110, "REST2-Restart"},
};
// At most one of them names a value.
constexpr CodedField kCallStateValueFields[] = {
    Coded<"Call state value / global interface state value", 6, 1, kNullState>,
    Coded<"Call state value", 6, 1, kCallStates>,
    Coded<"Global interface state value", 6, 1, kGlobalInterfaceStates>,
};

constexpr ValueText kRestartClass[] = {
    {0b000, "Indicated channels"},
    {0b110, "Single interface"},
    {0b111, "All interfaces"},
};
constexpr CodedField kRestartClassField = Coded<"Class", 3, 1, kRestartClass>;

}  // namespace

void DecodeCallIdentity(OutputWriter& out, const ElementOctets& element) {
  const OctetSpan identity = element.Slice(2);
  if (!identity.empty()) PrintOctetString(out, "Call identity", identity);
}

void DecodeCallState(OutputWriter& out, const ElementOctets& element) {
  const auto octet3 = element.At(2);
  if (!octet3) return;

  PrintField(out, kCallStateCodingStandardField, *octet3);
  PrintFields(out, *octet3, kCallStateValueFields);
}

void DecodeRestartIndicator(OutputWriter& out, const ElementOctets& element) {
  if (const auto octet3 = element.At(2)) PrintField(out, kRestartClassField, *octet3);
}

}  // namespace velmora
