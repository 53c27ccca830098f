#pragma once
// The Q.931 message layer: header, message-type dispatch and element walks.
#include <string_view>

#include "core/octet.h"
#include "q931/element.h"

namespace velmora {

// A message walk: given the octets from the message type octet to the
// message's end, prints every element behind "\tInformation element:".
using MessageWalk = void (*)(OutputWriter& out, OctetSpan fromMessageType);

// Prints "Message type:" and the type's name, then walks the elements.
// `message` starts at the protocol discriminator and ends with the frame.
void DecodeQ931Message(OutputWriter& out, OctetSpan message);

// One accepted element of a walk: the identifier octet matches when
// (octet & mask) == value. Whole-octet entries use the mask 0xFF.
struct ElementMatch {
  Octet mask;
  Octet value;
  ElementDecoder decoder;
};

// A message type the dispatch knows: its value, the name printed behind
// "Message type:", its walk and the elements that walk accepts, in test order.
struct MessageTypeInfo {
  Octet value;
  std::string_view name;
  MessageWalk walk;
  std::span<const ElementMatch> accepted;
};

// The message type of a value, or null when the dispatch does not know it.
const MessageTypeInfo* FindMessageType(Octet value);

// The decoder that a walk's table picks for an identifier octet.
ElementDecoder ChooseDecoder(std::span<const ElementMatch> accepted, Octet identifier);

// The shared walk: index 1 onward, one decoder per element, until the end.
void WalkElements(OutputWriter& out, OctetSpan fromMessageType, std::span<const ElementMatch> accepted);

void WalkAlerting(OutputWriter& out, OctetSpan fromMessageType);
void WalkCallProceeding(OutputWriter& out, OctetSpan fromMessageType);
void WalkProgress(OutputWriter& out, OctetSpan fromMessageType);
void WalkSetup(OutputWriter& out, OctetSpan fromMessageType);
void WalkConnect(OutputWriter& out, OctetSpan fromMessageType);
void WalkSetupAcknowledge(OutputWriter& out, OctetSpan fromMessageType);
void WalkConnectAcknowledge(OutputWriter& out, OctetSpan fromMessageType);
void WalkUserInformation(OutputWriter& out, OctetSpan fromMessageType);
void WalkSuspendReject(OutputWriter& out, OctetSpan fromMessageType);
void WalkResumeReject(OutputWriter& out, OctetSpan fromMessageType);
void WalkSuspend(OutputWriter& out, OctetSpan fromMessageType);
void WalkResume(OutputWriter& out, OctetSpan fromMessageType);
void WalkSuspendAcknowledge(OutputWriter& out, OctetSpan fromMessageType);
void WalkResumeAcknowledge(OutputWriter& out, OctetSpan fromMessageType);
void WalkDisconnect(OutputWriter& out, OctetSpan fromMessageType);
void WalkRestart(OutputWriter& out, OctetSpan fromMessageType);
void WalkRelease(OutputWriter& out, OctetSpan fromMessageType);
void WalkRestartAcknowledge(OutputWriter& out, OctetSpan fromMessageType);
void WalkReleaseComplete(OutputWriter& out, OctetSpan fromMessageType);
void WalkSegment(OutputWriter& out, OctetSpan fromMessageType);
void WalkNotify(OutputWriter& out, OctetSpan fromMessageType);
void WalkStatusEnquiry(OutputWriter& out, OctetSpan fromMessageType);
void WalkCongestionControl(OutputWriter& out, OctetSpan fromMessageType);
void WalkInformation(OutputWriter& out, OctetSpan fromMessageType);
void WalkStatus(OutputWriter& out, OctetSpan fromMessageType);

}  // namespace velmora
