#pragma once
// The Q.931 message layer: header, message-type dispatch and element walks.
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "element_registry.h"
#include "octet.h"
#include "output_writer.h"

namespace velmora {

// The header of a Q.931 message: protocol discriminator (0), call
// reference length (1), the call reference value, then the message type.
struct Q931Header {
  // The value octets, as many as the whole length octet says (bits 8 to 5
  // are not masked off); empty for the dummy call reference. Bit 8 of the
  // first is the call reference flag.
  OctetSpan callReference;
  Octet messageType;
  OctetSpan fromMessageType;  // the message type octet to the message's end
};

// The header of `message` (from the protocol discriminator to the frame's
// end); nothing when the frame ends before the message type.
std::optional<Q931Header> ReadQ931Header(OctetSpan message);

// The call reference value, flag left out, of a reference of up to eight
// octets; nothing for the dummy call reference or a longer one.
inline constexpr std::size_t kLongestCallReference = 8;
inline std::optional<std::uint64_t> CallReferenceValue(OctetSpan reference) {
  if (reference.empty() || reference.size() > kLongestCallReference) return std::nullopt;
  std::uint64_t value = reference[0] & 0x7FU;
  for (const Octet octet : reference.subspan(1)) value = value << 8 | octet;
  return value;
}

// The flag of a call reference: 1 on a message sent to the side that
// originated the call.
inline unsigned CallReferenceFlag(OctetSpan reference) { return reference.empty() ? 0 : reference[0] >> 7; }

// What the message-type line begins with, known type or not.
inline constexpr std::string_view kMessageTypePrefix = "Message type:";

// Prints "Message type:" and the type's name, then walks the elements.
// `message` starts at the protocol discriminator and ends with the frame.
// `detailed` (--detail full) decodes the message by DecodeQ931InDetail.
void DecodeQ931Message(OutputWriter& out, OctetSpan message, bool detailed = false);

// The detail level (--detail full): "Message type:" and the type's name,
// Q.932 names included (a type without one gets a line with its octet),
// the call reference's value, length and flag on a line of its own, then
// every element: Facility where Q.932 allows it, the connected number and
// subaddress in CONNECT, every element a message without a name carries,
// shifts, elements of codesets 4 to 7 as their octets, and behind numbers
// and causes their readable form.
void DecodeQ931InDetail(OutputWriter& out, const Q931Header& header);
// The name of a message type at the detail level; empty for a type without one.
std::string_view DetailMessageName(Octet type);

// One accepted element of a walk: the identifier octet matches when
// (octet & mask) == value. Whole-octet matches use the mask 0xFF.
struct ElementMatch {
  Octet mask;
  Octet value;
  const ElementEntry* element;
};

// The element a walk picks for an identifier octet, the first match of its
// accepted list, as its registry index plus one; 0 for the unknown-element
// dump. (No null pointers: some sanitizing builds cannot compare them at
// compile time.)
constexpr std::size_t ChosenElementNumber(std::span<const ElementMatch> accepted, Octet identifier) {
  for (const ElementMatch& match : accepted)
    if ((identifier & match.mask) == match.value) return static_cast<std::size_t>(match.element - kElementRegistry) + 1;
  return 0;
}

// The element a walk picks for an identifier octet; null for the
// unknown-element dump.
inline const ElementEntry* ChooseElement(std::span<const ElementMatch> accepted, Octet identifier) {
  const std::size_t number = ChosenElementNumber(accepted, identifier);
  return number == 0 ? nullptr : &kElementRegistry[number - 1];
}

// A message type the dispatch knows: its value, the name printed behind
// "Message type:" and the elements its walk accepts, in test order. A
// type that shows no element at all (SEGMENT) is not walked.
struct MessageWalk {
  Octet value;
  std::string_view name;
  std::span<const ElementMatch> accepted;
  bool walked = true;
  PaddedText<40> typeLine;  // kMessageTypePrefix, the name, "\n"
  // ChosenElementNumber for every identifier octet, worked out at compile time.
  std::array<std::uint8_t, 256> choices{};

  constexpr MessageWalk(Octet value, std::string_view name, std::span<const ElementMatch> accepted, bool walked)
      : value(value), name(name), accepted(accepted), walked(walked), typeLine{kMessageTypePrefix, name, "\n"} {
    for (unsigned identifier = 0; identifier < 256; ++identifier)
      choices[identifier] = static_cast<std::uint8_t>(ChosenElementNumber(accepted, static_cast<Octet>(identifier)));
  }
  const ElementEntry* Choose(Octet identifier) const {
    return choices[identifier] == 0 ? nullptr : &kElementRegistry[choices[identifier] - 1];
  }
};

// The walk of a message type, or null when the dispatch does not know it.
const MessageWalk* FindMessageWalk(Octet value);

// The walk over a message's elements, from index 1 behind the message type
// to the message's end: visit(entry, element) for each, with the entry the
// walk chooses for its identifier (null: the unknown-element dump), moving
// on by the octets each occupies. An element that announces more octets
// than the frame holds ends the walk; nothing behind the frame is visited.
template <typename Visit>
void ForEachElement(const MessageWalk& walk, OctetSpan fromMessageType, Visit&& visit) {
  if (!walk.walked) return;
  std::size_t index = 1;
  while (index < fromMessageType.size()) {
    const ElementOctets element(fromMessageType.subspan(index));
    const ElementEntry* entry = walk.Choose(element.Identifier());
    visit(entry, element);
    index += OccupiedOctets(entry, element);
  }
}

// The walk that prints: for each element the prefix "\tInformation
// element:" and the chosen element's lines.
void WalkElements(OutputWriter& out, const MessageWalk& walk, OctetSpan fromMessageType);

}  // namespace velmora
