#include "lapd.h"

#include <array>
#include <string_view>

#include "field_text.h"
#include "q931_message.h"

namespace velmora {
namespace {

constexpr std::string_view kLayer2 = "ISDN Layer 2: ";
constexpr std::string_view kTruncated = "Truncated frame\n";
constexpr std::string_view kInformationFrame = "Information transfer\nISDN Layer 3: ";
// The lines of most frames, printed together.
constexpr PaddedText<80> kQ931InformationFrame{kLayer2, kInformationFrame, "Q.931 protocol message\n"};

// Supervisory frames: control octet AND 0x0C. 0x0C names no frame and
// leaves the line open, without its line end.
constexpr std::string_view kSupervisory[4] = {
    "RR(receive ready)\n",
    "RNR(receive not ready)\n",
    "REJ(reject)\n",
    "",
};

// What an unnumbered frame does with the link memory.
enum class LinkUse { None, Set, Clear, ReadForUa };

// Unnumbered frames: m = bits 8, 7, 6, 4 and 3 of the control octet (the
// poll/final bit 5 takes no part).
struct UnnumberedFrame {
  Octet m;
  std::string_view text;
  LinkUse use;
};
constexpr UnnumberedFrame kUnnumbered[] = {
    {0, "UI(unnumbered information)\n", LinkUse::None},
    {3, "DM(disconnected mode), Can't establish link\n", LinkUse::None},
    {16, "DISC(disconnect), Disconnect link\n", LinkUse::Clear},
    {24, "UA(unnumbered acknowledgement), ", LinkUse::ReadForUa},
    {27, "SABME(set asynchronous balanced mode extended), Request to establish link\n", LinkUse::Set},
    {33, "FRMR(frame reject)\n", LinkUse::None},
    {43, "XID(Exchange Identification)\n", LinkUse::None},
};

constexpr Octet UnnumberedKind(Octet control) { return static_cast<Octet>((control & 0xEC) >> 2); }

void DecodeUnnumbered(DecodeContext& context, Octet control) {
  const Octet m = UnnumberedKind(control);
  for (const UnnumberedFrame& frame : kUnnumbered) {
    if (frame.m != m) continue;
    context.out.Put(frame.text);
    switch (frame.use) {
      case LinkUse::None:
        break;
      case LinkUse::Set:
        context.linkSetup = LinkSetup::Pending;
        break;
      case LinkUse::Clear:
        context.linkSetup = LinkSetup::NotPending;
        break;
      case LinkUse::ReadForUa:
        if (context.linkSetup == LinkSetup::Unknown && context.pendingUaWordings != nullptr)
          context.pendingUaWordings->push_back(context.out.BytesWritten());
        context.out.Put(context.linkSetup == LinkSetup::Pending ? kUaAfterSabme : kUaAfterDisc);
        break;
    }
    return;
  }
  // Any other m prints nothing: the layer-2 line stays open.
}

// ---- The detail level: the address, the control field's numbers and TEI
// management, on lines of their own below the layer-2 line.

constexpr ValueText kSapiNames[] = {
    {0, "call control procedures"},
    {1, "packet mode using Q.931 call control procedures"},
    {16, "packet communication conforming to X.25 level 3"},
    {63, "layer 2 management procedures"},
};

// Whether a frame kind is a command, a response or either (the C/R bit
// then tells the sending side only together with it).
enum class FrameRole : std::uint8_t { Command, Response, Either };

constexpr FrameRole RoleOf(Octet control) {
  if ((control & 0x01) == 0) return FrameRole::Command;  // I
  if ((control & 0x02) == 0) return FrameRole::Either;   // RR, RNR, REJ
  switch (UnnumberedKind(control)) {
    case 0:   // UI
    case 16:  // DISC
    case 27:  // SABME
      return FrameRole::Command;
    case 3:   // DM
    case 24:  // UA
    case 33:  // FRMR
      return FrameRole::Response;
    default:  // XID and what no row names
      return FrameRole::Either;
  }
}

// Commands from the network side and responses from the user side carry
// C/R 1; commands from the user side and responses from the network side 0.
constexpr std::string_view SideText(FrameRole role, bool commandResponse) {
  switch (role) {
    case FrameRole::Command:
      return commandResponse ? "command from the network side" : "command from the user side";
    case FrameRole::Response:
      return commandResponse ? "response from the user side" : "response from the network side";
    case FrameRole::Either:
      break;
  }
  return commandResponse ? "command from the network side or response from the user side"
                         : "command from the user side or response from the network side";
}

// "  <name>=<value>", the name given with its blanks and "=".
VELMORA_HOT_PATH void PutNumber(OutputWriter& out, std::string_view blanksNameEquals, unsigned value) {
  out.Put(blanksNameEquals);
  out.Decimal(value);
}

using LinePart = PaddedText<80>;

// The address line's parts, by SAPI, by TEI and by C/R and frame role.
constexpr std::array<LinePart, 64> kSapiParts = [] {
  std::array<LinePart, 64> parts{};
  for (unsigned sapi = 0; sapi < parts.size(); ++sapi) {
    parts[sapi].Put("\tSAPI=");
    parts[sapi].Decimal(sapi);
    if (const ValueText* name = FindRow(kSapiNames, sapi)) {
      parts[sapi].Put(" (");
      parts[sapi].Put(name->text);
      parts[sapi].Put(")");
    }
  }
  return parts;
}();
constexpr std::array<LinePart, 128> kTeiParts = [] {
  std::array<LinePart, 128> parts{};
  for (unsigned tei = 0; tei < parts.size(); ++tei) {
    parts[tei].Put("  TEI=");
    parts[tei].Decimal(tei);
    if (tei == kBroadcastTei) parts[tei].Put(" (broadcast)");
  }
  return parts;
}();
constexpr std::array<std::array<LinePart, 2>, 3> kSideParts = [] {
  std::array<std::array<LinePart, 2>, 3> parts{};
  for (const FrameRole role : {FrameRole::Command, FrameRole::Response, FrameRole::Either}) {
    for (const bool commandResponse : {false, true}) {
      LinePart& part = parts[static_cast<std::size_t>(role)][commandResponse ? 1 : 0];
      part.Put(commandResponse ? "  C/R=1 (" : "  C/R=0 (");
      part.Put(SideText(role, commandResponse));
      part.Put(")");
    }
  }
  return parts;
}();

// "\tSAPI=s (name)  TEI=t  C/R=c (side)  N(S)=..  N(R)=..  P=.." as far as
// the frame holds them.
void PrintAddressAndControl(OutputWriter& out, OctetSpan frame, bool commandResponseKnown) {
  const LapdAddress address = AddressOf(frame[0], frame[1]);
  const Octet control = frame[2];
  const FrameRole role = RoleOf(control);
  out.PutPadded(kSapiParts[address.sapi].Padded());
  out.PutPadded(kTeiParts[address.tei].Padded());
  if (commandResponseKnown) {
    out.PutPadded(kSideParts[static_cast<std::size_t>(role)][address.commandResponse ? 1 : 0].Padded());
  } else {
    out.Put("  C/R unknown");
  }
  const LapdControlNumbers numbers = ControlNumbersOf(frame);
  if (numbers.sendSequence) PutNumber(out, "  N(S)=", *numbers.sendSequence);
  if (numbers.receiveSequence) PutNumber(out, "  N(R)=", *numbers.receiveSequence);
  // An I frame is always a command (P); an S frame either (P/F); a U frame's
  // role tells which of the two the bit is.
  const std::string_view pollFinal = (control & 0x01) == 0         ? "  P="
                                     : (control & 0x02) == 0       ? "  P/F="
                                     : role == FrameRole::Response ? "  F="
                                                                   : "  P=";
  if (numbers.pollFinal) PutNumber(out, pollFinal, *numbers.pollFinal);
  out.Put('\n');
}

// TEI management (SAPI 63, UI, management entity 0x0F): reference number
// Ri (octets 5-6), message type (octet 7), action indicator Ai (octet 8,
// bits 8-2; bit 1 the extension bit).
constexpr ValueText kTeiManagementTypes[] = {
    {1, "Identity request"},        {2, "Identity assigned"}, {3, "Identity denied"}, {4, "Identity check request"},
    {5, "Identity check response"}, {6, "Identity remove"},   {7, "Identity verify"},
};
constexpr ValueText kActionIndicators[] = {
    {127, "Any TEI value acceptable"},
};

void DecodeTeiManagement(OutputWriter& out, OctetSpan frame) {
  out.Put("ISDN Layer 3: TEI management\n");
  const std::optional<TeiManagementMessage> message = ReadTeiManagement(frame);
  if (!message) {
    out.Put("\tTruncated message\n");
    return;
  }
  out.Put("\tMessage type=");
  out.Bits(message->type, 8);
  out.Put("  ");
  out.Put(TeiManagementName(message->type));
  out.Put('\n');
  PrintDecimalField(out, "Reference number Ri", message->referenceNumber);
  PrintFieldName(out, "Action indicator Ai");
  out.Bits(message->actionIndicator, 7);
  out.Put("  ");
  if (const ValueText* meaning = FindRow(kActionIndicators, message->actionIndicator)) {
    out.Put(meaning->text);
  } else {
    out.Put("TEI ");
    out.Decimal(message->actionIndicator);
  }
  out.Put('\n');
}

// The layer-2 side of a frame at the detail level: the described lines,
// each closed, with the address and control line under the layer-2 line;
// TEI management. Returns the Q.931 message of an I or a UI frame, after
// its "ISDN Layer 3: " line, for the caller to decode; empty when none.
OctetSpan DecodeLayer2InDetail(DecodeContext& context, OctetSpan frame, bool commandResponseKnown) {
  OutputWriter& out = context.out;
  out.Put(kLayer2);
  if (frame.size() < 3) {
    out.Put(kTruncated);
    return {};
  }
  const Octet control = frame[2];
  const std::uint64_t before = out.BytesWritten();
  if ((control & 0x01) == 0) {
    out.Put("Information transfer\n");
  } else if ((control & 0x02) == 0) {
    out.Put("Supervisory  ");
    out.Put(kSupervisory[(control & 0x0C) >> 2]);
    if ((control & 0x0C) == 0x0C) out.Put("(control octet names no frame)\n");
  } else {
    DecodeUnnumbered(context, control);
    // A kind that no row names leaves the line open; at this level it is closed.
    if (out.BytesWritten() == before) out.Put("(control octet names no frame)\n");
  }
  PrintAddressAndControl(out, frame, commandResponseKnown);
  // Q.931 in an I frame or, at this level, in a UI frame, as the call view reads it.
  if (const std::optional<Q931InFrame> q931 = FindQ931(frame)) {
    out.Put("ISDN Layer 3: Q.931 protocol message\n");
    return q931->message;
  }
  if ((control & 0x01) == 0) {
    out.Put("ISDN Layer 3: ");
    out.Put(frame.size() < 5 ? kTruncated : "Unknown protocol message\n");
  } else if (IsTeiManagement(frame)) {
    DecodeTeiManagement(out, frame);
  }
  return {};
}

// The layer-2 side as described. Returns the Q.931 message of an I frame,
// after its lines, for the caller to decode; empty when none.
OctetSpan DecodeLayer2(DecodeContext& context, OctetSpan frame) {
  OutputWriter& out = context.out;
  // Octets 1 and 2 are the address; without octet 3 there is no control field.
  if (frame.size() < 3) {
    out.Put(kLayer2);
    out.Put(kTruncated);
    return {};
  }
  const Octet control = frame[2];
  if ((control & 0x01) == 0) {
    // The protocol discriminator is octet 5; a frame that ends before it has none.
    if (frame.size() >= 5 && IsQ931Discriminator(frame[4])) {
      out.PutPadded(kQ931InformationFrame.Padded());
      return frame.subspan(4);
    }
    out.Put(kLayer2);
    out.Put(kInformationFrame);
    out.Put(frame.size() < 5 ? kTruncated : "Unknown protocol message\n");
    return {};
  }
  out.Put(kLayer2);
  if ((control & 0x02) == 0) {
    out.Put("Supervisory  ");
    out.Put(kSupervisory[(control & 0x0C) >> 2]);
  } else {
    DecodeUnnumbered(context, control);
  }
  return {};
}

}  // namespace

bool IsTeiManagement(OctetSpan frame) {
  return frame.size() >= 4 && AddressOf(frame[0], frame[1]).sapi == 63 && UnnumberedKind(frame[2]) == 0 &&
         (frame[2] & 0x03) == 0x03 && frame[3] == 0x0F;
}

std::optional<TeiManagementMessage> ReadTeiManagement(OctetSpan frame) {
  if (!IsTeiManagement(frame) || frame.size() < 8) return std::nullopt;
  return TeiManagementMessage{frame[6], static_cast<unsigned>(frame[4] << 8 | frame[5]),
                              static_cast<unsigned>(frame[7] >> 1)};
}

std::string_view TeiManagementName(Octet type) {
  const ValueText* row = FindRow(kTeiManagementTypes, type);
  return row != nullptr ? row->text : std::string_view{};
}

void DecodeLapdFrame(DecodeContext& context, OctetSpan frame) { DecodeDumpMessage(context, frame, true); }

// One call of each of the layer-2 decoders and of the message decoder for
// frame lines and dumps alike, so that they stay inlined here.
void DecodeDumpMessage(DecodeContext& context, OctetSpan octets, bool wholeFrame, bool commandResponseKnown) {
  const bool detailed = context.detail == DetailLevel::Full;
  OctetSpan message = octets;
  if (!wholeFrame) {
    context.out.Put("ISDN Layer 3: Q.931 protocol message\n");
  } else {
    message = detailed ? DecodeLayer2InDetail(context, octets, commandResponseKnown) : DecodeLayer2(context, octets);
  }
  if (!message.empty()) DecodeQ931Message(context.out, message, detailed);
}

}  // namespace velmora
