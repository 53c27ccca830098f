#pragma once
// The Q.931 message layer: header, message-type dispatch and element walks.
#include <span>
#include <string_view>

#include "element_registry.h"
#include "octet.h"
#include "output_writer.h"

namespace velmora {

// Prints "Message type:" and the type's name, then walks the elements.
// `message` starts at the protocol discriminator and ends with the frame.
void DecodeQ931Message(OutputWriter& out, OctetSpan message);

// One accepted element of a walk: the identifier octet matches when
// (octet & mask) == value. Whole-octet matches use the mask 0xFF.
struct ElementMatch {
  Octet mask;
  Octet value;
  const ElementEntry* element;
};

// A message type the dispatch knows: its value, the name printed behind
// "Message type:" and the elements its walk accepts, in test order. A
// type that shows no element at all (SEGMENT) is not walked.
struct MessageWalk {
  Octet value;
  std::string_view name;
  std::span<const ElementMatch> accepted;
  bool walked = true;
};

// The walk of a message type, or null when the dispatch does not know it.
const MessageWalk* FindMessageWalk(Octet value);

// The element a walk picks for an identifier octet; null for the
// unknown-element dump.
const ElementEntry* ChooseElement(std::span<const ElementMatch> accepted, Octet identifier);

// From index 1 behind the message type to the message's end: the prefix
// "\tInformation element:" and the chosen element, moving on by the octets
// each occupies.
void WalkElements(OutputWriter& out, const MessageWalk& walk, OctetSpan fromMessageType);

}  // namespace velmora
