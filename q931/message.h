#pragma once
// The Q.931 message layer: header, message-type dispatch and element walks.
#include <string_view>

#include "core/octet.h"
#include "q931/element.h"

namespace velmora {

// A message walk: given the octets from the message type octet to the
// message's end, prints every element behind "\tInformation element:".
using MessageWalk = void (*)(OctetSpan fromMessageType);

// Prints "Message type:" and the type's name, then walks the elements.
// `message` starts at the protocol discriminator and ends with the frame.
void DecodeQ931Message(OctetSpan message);

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
void WalkElements(OctetSpan fromMessageType, std::span<const ElementMatch> accepted);

void WalkAlerting(OctetSpan fromMessageType);
void WalkCallProceeding(OctetSpan fromMessageType);
void WalkProgress(OctetSpan fromMessageType);
void WalkSetup(OctetSpan fromMessageType);
void WalkConnect(OctetSpan fromMessageType);
void WalkSetupAcknowledge(OctetSpan fromMessageType);
void WalkConnectAcknowledge(OctetSpan fromMessageType);
void WalkUserInformation(OctetSpan fromMessageType);
void WalkSuspendReject(OctetSpan fromMessageType);
void WalkResumeReject(OctetSpan fromMessageType);
void WalkSuspend(OctetSpan fromMessageType);
void WalkResume(OctetSpan fromMessageType);
void WalkSuspendAcknowledge(OctetSpan fromMessageType);
void WalkResumeAcknowledge(OctetSpan fromMessageType);
void WalkDisconnect(OctetSpan fromMessageType);
void WalkRestart(OctetSpan fromMessageType);
void WalkRelease(OctetSpan fromMessageType);
void WalkRestartAcknowledge(OctetSpan fromMessageType);
void WalkReleaseComplete(OctetSpan fromMessageType);
void WalkSegment(OctetSpan fromMessageType);
void WalkNotify(OctetSpan fromMessageType);
void WalkStatusEnquiry(OctetSpan fromMessageType);
void WalkCongestionControl(OctetSpan fromMessageType);
void WalkInformation(OctetSpan fromMessageType);
void WalkStatus(OctetSpan fromMessageType);

}  // namespace velmora
