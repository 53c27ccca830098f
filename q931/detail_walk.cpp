// The message layer at the detail level (--detail full): the call
// reference, the Q.932 messages the described dispatch does not name,
// Facility and the connected number where Q.932 and COLP allow them, shifts
// and the elements of other codesets, and a readable form of numbers and
// cause values. The described walk stays as it is for the default level.
#include <array>
#include <iterator>

#include "codesets.h"
#include "field_text.h"
#include "q931_message.h"

namespace velmora {
namespace {

constexpr Octet kFacility = 0x1C;
constexpr Octet kConnectedNumber = 0x4C;
constexpr Octet kConnectedSubaddress = 0x4D;
constexpr Octet kDisplay = 0x28;
constexpr Octet kChannelIdentification = 0x18;
constexpr Octet kCause = 0x08;

// Q.932 messages: their names and the elements each accepts.
struct DetailMessage {
  Octet value;
  std::string_view name;
  std::span<const Octet> accepted;
};
constexpr Octet kDisplayOnly[] = {kDisplay};
constexpr Octet kChannelAndDisplay[] = {kChannelIdentification, kDisplay};
constexpr Octet kCauseAndDisplay[] = {kCause, kDisplay};
constexpr Octet kFacilityAndDisplay[] = {kFacility, kDisplay};
constexpr DetailMessage kQ932Messages[] = {
    {0x24, "HOLD", kDisplayOnly},
    {0x28, "HOLD ACKNOWLEDGE", kChannelAndDisplay},
    {0x30, "HOLD REJECT", kCauseAndDisplay},
    {0x31, "RETRIEVE", kChannelAndDisplay},
    {0x33, "RETRIEVE ACKNOWLEDGE", kChannelAndDisplay},
    {0x37, "RETRIEVE REJECT", kCauseAndDisplay},
    {0x62, "FACILITY", kFacilityAndDisplay},
    {0x64, "REGISTER", kFacilityAndDisplay},
};

// Described messages that also take a Facility element (Q.932) and, in
// CONNECT, the connected number and subaddress (COLP).
constexpr Octet kFacilityMessages[] = {0x01, 0x02, 0x03, 0x05, 0x07, 0x0D, 0x0F, 0x45, 0x4D, 0x5A};
constexpr Octet kConnect = 0x07;

constexpr bool Holds(std::span<const Octet> octets, Octet value) {
  for (const Octet octet : octets)
    if (octet == value) return true;
  return false;
}

// The registry entry of an identifier among both registries.
const ElementEntry* FindAnyElement(Octet identifier) {
  if (const ElementEntry* entry = FindElement(identifier)) return entry;
  for (const ElementEntry& entry : kDetailElementRegistry)
    if (entry.identifier == identifier) return &entry;
  return nullptr;
}

// What a message of this level is: a described walk, a Q.932 message, or
// neither (every element known to either registry is accepted then).
struct DetailDispatch {
  Octet type;
  const MessageWalk* walk;
  const DetailMessage* q932;

  std::string_view Name() const { return walk != nullptr ? walk->name : q932 != nullptr ? q932->name : ""; }
  const ElementEntry* Choose(Octet identifier) const {
    if (walk != nullptr) {
      if (const ElementEntry* entry = walk->Choose(identifier)) return entry;
      const bool extra = (identifier == kFacility && Holds(kFacilityMessages, type)) ||
                         (type == kConnect && (identifier == kConnectedNumber || identifier == kConnectedSubaddress));
      return extra ? FindAnyElement(identifier) : nullptr;
    }
    if (q932 != nullptr) return Holds(q932->accepted, identifier) ? FindAnyElement(identifier) : nullptr;
    return FindAnyElement(identifier);
  }
};

DetailDispatch DispatchOf(Octet type) {
  DetailDispatch dispatch{type, FindMessageWalk(type), nullptr};
  for (const DetailMessage& message : kQ932Messages)
    if (message.value == type) dispatch.q932 = &message;
  return dispatch;
}

// Lines behind an element's own that give a readable form of its values.
struct ReadableValues {
  Octet identifier;
  void (*print)(OutputWriter& out, const ElementOctets& element);
};
constexpr ReadableValues kReadableValues[] = {
    {kCause, PrintCauseNumber}, {kConnectedNumber, PrintNumberText}, {0x6C, PrintNumberText}, {0x70, PrintNumberText},
    {0x74, PrintNumberText},
};

constexpr ValueText kCallReferenceFlag[] = {
    {0, "from the originating side"},
    {1, "to the originating side"},
};

// "  length <n>, flag=<f>  <meaning>\n".
constexpr PaddedText<48> CallReferenceTail(unsigned length, unsigned flag) {
  PaddedText<48> tail;
  tail.Put("  length ");
  tail.Decimal(length);
  tail.Put(flag != 0 ? ", flag=1  " : ", flag=0  ");
  tail.Put(FindRow(kCallReferenceFlag, flag)->text);
  tail.Put("\n");
  return tail;
}

// The tails of the call references a message has as a rule, by length (1 to
// 15) and flag, built at compile time.
constexpr std::size_t kTabledLengths = 16;
constexpr std::array<std::array<PaddedText<48>, 2>, kTabledLengths> kCallReferenceTails = [] {
  std::array<std::array<PaddedText<48>, 2>, kTabledLengths> tails{};
  for (unsigned length = 1; length < kTabledLengths; ++length)
    for (unsigned flag = 0; flag < 2; ++flag) tails[length][flag] = CallReferenceTail(length, flag);
  return tails;
}();

// "\tCall reference=<value>  length <n>, flag=<f>  <meaning>".
void PrintCallReference(OutputWriter& out, OctetSpan reference) {
  if (reference.empty()) {
    out.Put("\tCall reference: dummy (length 0)\n");
    return;
  }
  out.Put("\tCall reference=");
  if (const std::optional<std::uint64_t> value = CallReferenceValue(reference)) {
    out.Decimal(static_cast<std::int64_t>(*value));
  } else {
    for (const Octet octet : reference) out.SpaceHex(octet);
  }
  const unsigned flag = CallReferenceFlag(reference);
  if (reference.size() < kTabledLengths) return out.PutPadded(kCallReferenceTails[reference.size()][flag].Padded());
  const PaddedText<48> tail = CallReferenceTail(static_cast<unsigned>(reference.size()), flag);
  out.PutPadded(tail.Padded());
}

// An element of codeset 4 to 7, which Q.931 does not define: its codeset,
// identifier and octets.
std::size_t DecodeOtherCodesetElement(OutputWriter& out, unsigned codeset, const ElementOctets& element) {
  const std::size_t occupied = OccupiedOctets(nullptr, element);
  out.Put(kElementPrefix);
  out.Put("codeset ");
  out.Decimal(codeset);
  out.Put(" element 0x");
  out.Put(kHexDigits[element.Identifier() >> 4]);
  out.Put(kHexDigits[element.Identifier() & 0xF]);
  out.Put('\n');
  PrintOctetString(out, "Octets", element.First(occupied));
  return occupied;
}

}  // namespace

std::string_view DetailMessageName(Octet type) { return DispatchOf(type).Name(); }

void DecodeQ931InDetail(OutputWriter& out, const Q931Header& header) {
  const DetailDispatch dispatch = DispatchOf(header.messageType);
  out.Put(kMessageTypePrefix);
  if (const std::string_view name = dispatch.Name(); !name.empty()) {
    out.Put(name);
  } else {
    out.Put("message type");
    out.SpaceHex(header.messageType);
    out.Put(" (no name)");
  }
  out.Put('\n');
  PrintCallReference(out, header.callReference);
  // A SEGMENT shows no element, at this level as at the other.
  if (dispatch.walk != nullptr && !dispatch.walk->walked) return;

  const OctetSpan fromMessageType = header.fromMessageType;
  CodesetShifts shifts;
  for (std::size_t index = 1; index < fromMessageType.size();) {
    const ElementOctets element(fromMessageType.subspan(index));
    const unsigned codeset = shifts.Next(element.Identifier());
    const bool shift = (element.Identifier() & 0xF0) == 0x90;
    const ElementEntry* entry = shift          ? FindAnyElement(0x90)
                                : codeset == 0 ? dispatch.Choose(element.Identifier())
                                               : nullptr;
    const std::size_t occupied = OccupiedOctets(entry, element);
    if (FieldSink* fields = out.Fields()) fields->Element(out.BytesWritten(), element.First(occupied));
    if (entry == nullptr && codeset != 0) {
      DecodeOtherCodesetElement(out, codeset, element);
    } else {
      DecodeElement(out, entry, element, ElementPrefix::Printed);
      for (const ReadableValues& readable : kReadableValues)
        if (entry != nullptr && entry->identifier == readable.identifier) readable.print(out, element);
    }
    index += occupied;
  }
}

}  // namespace velmora
