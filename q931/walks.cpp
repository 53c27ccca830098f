// Which elements each message type accepts, and the walk over them.
#include "elements/element_decoders.h"
#include "q931/message.h"
#include "q931/text.h"

namespace velmora {

namespace {

// Whole-octet match: all 8 bits equal the identifier.
constexpr ElementMatch Whole(Octet identifier, ElementDecoder decoder) { return {0xFF, identifier, decoder}; }
// Bits 7 to 1 match: bit 8 is ignored (USER INFORMATION, INFORMATION).
constexpr ElementMatch Low7(Octet identifier, ElementDecoder decoder) {
  return {0x7F, static_cast<Octet>(identifier & 0x7F), decoder};
}

constexpr ElementMatch kAlerting[] = {
    Whole(0x04, DecodeBearerCapability),
    Whole(0x18, DecodeChannelIdentification),
    Whole(0x1E, DecodeProgressIndicator),
    Whole(0x28, DecodeDisplay),
    Whole(0x34, DecodeSignal),
    Whole(0x7D, DecodeHighLayerCompatibility),
};

constexpr ElementMatch kCallProceeding[] = {
    Whole(0x04, DecodeBearerCapability),       Whole(0x18, DecodeChannelIdentification),
    Whole(0x1E, DecodeProgressIndicator),      Whole(0x28, DecodeDisplay),
    Whole(0x7D, DecodeHighLayerCompatibility),
};

constexpr ElementMatch kProgress[] = {
    Whole(0x04, DecodeBearerCapability),       Whole(0x08, DecodeCause),
    Whole(0x1E, DecodeProgressIndicator),      Whole(0x28, DecodeDisplay),
    Whole(0x7D, DecodeHighLayerCompatibility),
};

// SETUP also takes two kinds of single octet: Repeat indicator (1101 xxxx)
// and Sending complete (1010 0001); every other single octet is unknown.
constexpr ElementMatch kSetup[] = {
    {0xF0, 0xD0, DecodeRepeatIndicator},
    Whole(0xA1, DecodeSendingComplete),
    Whole(0x04, DecodeBearerCapability),
    Whole(0x18, DecodeChannelIdentification),
    Whole(0x1E, DecodeProgressIndicator),
    Whole(0x20, DecodeNetworkSpecificFacilities),
    Whole(0x28, DecodeDisplay),
    Whole(0x29, DecodeDateTime),
    Whole(0x2C, DecodeKeypadFacility),
    Whole(0x34, DecodeSignal),
    Whole(0x40, DecodeInformationRate),
    Whole(0x42, DecodeEndToEndTransitDelay),
    Whole(0x43, DecodeTransitDelaySelection),
    Whole(0x44, DecodePacketLayerBinaryParameters),
    Whole(0x45, DecodePacketLayerWindowSize),
    Whole(0x46, DecodePacketSize),
    Whole(0x47, DecodeClosedUserGroup),
    Whole(0x4A, DecodeReverseChargingIndication),
    Whole(0x6C, DecodeCallingPartyNumber),
    Whole(0x6D, DecodeCallingPartySubaddress),
    Whole(0x70, DecodeCalledPartyNumber),
    Whole(0x71, DecodeCalledPartySubaddress),
    Whole(0x74, DecodeRedirectingNumber),
    Whole(0x78, DecodeTransitNetworkSelection),
    Whole(0x7C, DecodeLowLayerCompatibility),
    Whole(0x7D, DecodeHighLayerCompatibility),
    Whole(0x7E, DecodeUserUser),
};

constexpr ElementMatch kConnect[] = {
    Whole(0x04, DecodeBearerCapability),
    Whole(0x18, DecodeChannelIdentification),
    Whole(0x1E, DecodeProgressIndicator),
    Whole(0x28, DecodeDisplay),
    Whole(0x29, DecodeDateTime),
    Whole(0x34, DecodeSignal),
    Whole(0x7C, DecodeLowLayerCompatibility),
    Whole(0x7D, DecodeHighLayerCompatibility),
};

constexpr ElementMatch kSetupAcknowledge[] = {
    Whole(0x18, DecodeChannelIdentification),
    Whole(0x1E, DecodeProgressIndicator),
    Whole(0x28, DecodeDisplay),
    Whole(0x34, DecodeSignal),
};

constexpr ElementMatch kConnectAcknowledge[] = {Whole(0x28, DecodeDisplay), Whole(0x34, DecodeSignal)};

constexpr ElementMatch kUserInformation[] = {Low7(0xA0, DecodeMoreData), Low7(0x7E, DecodeUserUser)};

// SUSPEND REJECT and RESUME REJECT.
constexpr ElementMatch kSuspendResumeReject[] = {Whole(0x08, DecodeCause), Whole(0x28, DecodeDisplay)};

// SUSPEND and RESUME.
constexpr ElementMatch kSuspendResume[] = {Whole(0x10, DecodeCallIdentity)};

// SUSPEND ACKNOWLEDGE and STATUS ENQUIRY.
constexpr ElementMatch kDisplayOnly[] = {Whole(0x28, DecodeDisplay)};

constexpr ElementMatch kResumeAcknowledge[] = {Whole(0x18, DecodeChannelIdentification), Whole(0x28, DecodeDisplay)};

constexpr ElementMatch kDisconnect[] = {
    Whole(0x08, DecodeCause),  Whole(0x1E, DecodeProgressIndicator), Whole(0x28, DecodeDisplay),
    Whole(0x34, DecodeSignal), Whole(0x7E, DecodeUserUser),
};

// RESTART and RESTART ACKNOWLEDGE.
constexpr ElementMatch kRestart[] = {
    Whole(0x18, DecodeChannelIdentification),
    Whole(0x28, DecodeDisplay),
    Whole(0x79, DecodeRestartIndicator),
};

// RELEASE and RELEASE COMPLETE.
constexpr ElementMatch kRelease[] = {
    Whole(0x08, DecodeCause),
    Whole(0x28, DecodeDisplay),
    Whole(0x34, DecodeSignal),
    Whole(0x7E, DecodeUserUser),
};

constexpr ElementMatch kNotify[] = {
    Whole(0x04, DecodeBearerCapability),
    Whole(0x27, DecodeNotificationIndicator),
    Whole(0x28, DecodeDisplay),
};

// Bits 7 to 5 of 011 (0x30 to 0x3F, 0xB0 to 0xBF) are a Congestion level,
// whatever bit 8 says; it is tested first.
constexpr ElementMatch kCongestionControl[] = {
    {0x70, 0x30, DecodeCongestionLevel},
    Whole(0x08, DecodeCause),
    Whole(0x28, DecodeDisplay),
};

constexpr ElementMatch kInformation[] = {
    Low7(0x08, DecodeCause),          Low7(0xA1, DecodeSendingComplete), Low7(0x28, DecodeDisplay),
    Low7(0x2C, DecodeKeypadFacility), Low7(0x34, DecodeSignal),          Low7(0x70, DecodeCalledPartyNumber),
};

constexpr ElementMatch kStatus[] = {
    Whole(0x08, DecodeCause),
    Whole(0x14, DecodeCallState),
    Whole(0x28, DecodeDisplay),
};

}  // namespace

ElementDecoder ChooseDecoder(std::span<const ElementMatch> accepted, Octet identifier) {
  for (const ElementMatch& match : accepted)
    if ((identifier & match.mask) == match.value) return match.decoder;
  return DecodeUnknownElement;
}

void WalkElements(OutputWriter& out, OctetSpan fromMessageType, std::span<const ElementMatch> accepted) {
  std::size_t index = 1;
  while (index < fromMessageType.size()) {
    out.Put("\tInformation element:");
    const ElementOctets element(fromMessageType.subspan(index));
    const int count = ChooseDecoder(accepted, element.Identifier())(out, element);
    index += static_cast<std::size_t>(count > 0 ? count : 1);
  }
}

void WalkAlerting(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kAlerting); }
void WalkCallProceeding(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kCallProceeding); }
void WalkProgress(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kProgress); }
void WalkSetup(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kSetup); }
void WalkConnect(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kConnect); }
void WalkSetupAcknowledge(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kSetupAcknowledge); }
void WalkConnectAcknowledge(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kConnectAcknowledge); }
void WalkUserInformation(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kUserInformation); }
void WalkSuspendReject(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kSuspendResumeReject); }
void WalkResumeReject(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kSuspendResumeReject); }
void WalkSuspend(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kSuspendResume); }
void WalkResume(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kSuspendResume); }
void WalkSuspendAcknowledge(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kDisplayOnly); }
void WalkResumeAcknowledge(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kResumeAcknowledge); }
void WalkDisconnect(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kDisconnect); }
void WalkRestart(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kRestart); }
void WalkRelease(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kRelease); }
void WalkRestartAcknowledge(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kRestart); }
void WalkReleaseComplete(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kRelease); }
// A SEGMENT shows its name line and none of its elements.
void WalkSegment(OutputWriter&, OctetSpan) {}
void WalkNotify(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kNotify); }
void WalkStatusEnquiry(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kDisplayOnly); }
void WalkCongestionControl(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kCongestionControl); }
void WalkInformation(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kInformation); }
void WalkStatus(OutputWriter& out, OctetSpan m) { WalkElements(out, m, kStatus); }

namespace {

constexpr MessageTypeInfo kMessageTypes[] = {
    {0x01, "ALERTING", WalkAlerting, kAlerting},
    {0x02, "CALL PROCEEDING", WalkCallProceeding, kCallProceeding},
    {0x03, "PROGRESS", WalkProgress, kProgress},
    {0x05, "SETUP", WalkSetup, kSetup},
    {0x07, "CONNECT", WalkConnect, kConnect},
    {0x0D, "SETUP ACKNOWLEDGE", WalkSetupAcknowledge, kSetupAcknowledge},
    {0x0F, "CONNECT ACKNOWLEDGE", WalkConnectAcknowledge, kConnectAcknowledge},
    {0x20, "USER INFORMATION", WalkUserInformation, kUserInformation},
    {0x21, "SUSPEND REJECT", WalkSuspendReject, kSuspendResumeReject},
    {0x22, "RESUME REJECT", WalkResumeReject, kSuspendResumeReject},
    {0x25, "SUSPEND", WalkSuspend, kSuspendResume},
    {0x26, "RESUME", WalkResume, kSuspendResume},
    {0x2D, "SUSPEND ACKNOWLEDGE", WalkSuspendAcknowledge, kDisplayOnly},
    {0x2E, "RESUME ACKNOWLEDGE", WalkResumeAcknowledge, kResumeAcknowledge},
    {0x45, "DISCONNECT", WalkDisconnect, kDisconnect},
    {0x46, "RESTART", WalkRestart, kRestart},
    {0x4D, "RELEASE", WalkRelease, kRelease},
    {0x4E, "RESTART ACKNOWLEDGE", WalkRestartAcknowledge, kRestart},
    {0x5A, "RELEASE COMPLETE", WalkReleaseComplete, kRelease},
    {0x60, "SEGMENT", WalkSegment, {}},
    {0x6E, "NOTIFY", WalkNotify, kNotify},
    {0x75, "STATUS ENQUIRY", WalkStatusEnquiry, kDisplayOnly},
    {0x79, "CONGESTION CONTROL", WalkCongestionControl, kCongestionControl},
    {0x7B, "INFORMATION", WalkInformation, kInformation},
    {0x7D, "STATUS", WalkStatus, kStatus},
};

}  // namespace

const MessageTypeInfo* FindMessageType(Octet value) {
  for (const MessageTypeInfo& type : kMessageTypes)
    if (type.value == value) return &type;
  return nullptr;
}

}  // namespace velmora
