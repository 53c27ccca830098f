#pragma once
// Q.921 (LAPD) frame kinds, told by the control field.
#include <optional>
#include <string_view>

#include "decode_context.h"
#include "octet.h"

namespace velmora {

// True exactly for the Q.931 protocol discriminator, 0x08.
constexpr bool IsQ931Discriminator(Octet octet) { return octet == 0x08; }

// An I frame (bit 1 of the control octet, octet 3, is 0) whose layer 3,
// from octet 5 on, is a Q.931 message: the frames the message file decodes
// as Q.931 and the call view reads.
constexpr bool CarriesQ931(OctetSpan frame) {
  return frame.size() >= 5 && (frame[2] & 0x01) == 0 && IsQ931Discriminator(frame[4]);
}

// The LAPD address of a frame (octets 1 and 2): SAPI, C/R and TEI.
struct LapdAddress {
  unsigned sapi;
  bool commandResponse;  // the C/R bit: 1 on a command from the network side
  unsigned tei;          // 127: the broadcast TEI
};
constexpr LapdAddress AddressOf(Octet octet1, Octet octet2) {
  return {static_cast<unsigned>(octet1 >> 2), (octet1 & 0x02) != 0, static_cast<unsigned>(octet2 >> 1)};
}
inline constexpr unsigned kBroadcastTei = 127;

// A Q.931 message in a frame, for the call view: in an I frame from octet 5
// on, or in a UI frame (control octet 0x03, P/F either way) from octet 4 on,
// as a broadcast SETUP arrives on a shared bus. Both are commands, so the
// C/R bit tells the side that sent them.
struct Q931InFrame {
  LapdAddress address;
  bool unnumbered;    // in a UI frame
  OctetSpan message;  // from the protocol discriminator to the frame's end
  bool FromNetwork() const { return address.commandResponse; }
};
constexpr std::optional<Q931InFrame> FindQ931(OctetSpan frame) {
  if (CarriesQ931(frame)) return Q931InFrame{AddressOf(frame[0], frame[1]), false, frame.subspan(4)};
  if (frame.size() >= 4 && (frame[2] & 0xEF) == 0x03 && IsQ931Discriminator(frame[3]))
    return Q931InFrame{AddressOf(frame[0], frame[1]), true, frame.subspan(3)};
  return std::nullopt;
}

// The numbers of the control field, where the frame kind has them: N(S)
// of an I frame, N(R) of an I or S frame (octet 4), the P/F bit (octet 4 of
// an I or S frame, bit 5 of a U frame's control octet).
struct LapdControlNumbers {
  std::optional<unsigned> sendSequence;     // N(S)
  std::optional<unsigned> receiveSequence;  // N(R)
  std::optional<unsigned> pollFinal;        // P/F
};
constexpr LapdControlNumbers ControlNumbersOf(OctetSpan frame) {
  LapdControlNumbers numbers;
  if (frame.size() < 3) return numbers;
  const Octet control = frame[2];
  if ((control & 0x01) == 0) numbers.sendSequence = control >> 1;
  if ((control & 0x03) != 0x03) {
    if (frame.size() > 3) {
      numbers.receiveSequence = frame[3] >> 1;
      numbers.pollFinal = frame[3] & 1U;
    }
  } else {
    numbers.pollFinal = (control >> 4) & 1U;
  }
  return numbers;
}

// A TEI management message (SAPI 63, UI, management entity 0x0F):
// reference number Ri (octets 5-6), message type (octet 7), action
// indicator Ai (octet 8, bits 8-2). Null for any other frame, and for one
// too short to hold them.
struct TeiManagementMessage {
  Octet type;
  unsigned referenceNumber;  // Ri
  unsigned actionIndicator;  // Ai; 127: any TEI value acceptable
};
bool IsTeiManagement(OctetSpan frame);
std::optional<TeiManagementMessage> ReadTeiManagement(OctetSpan frame);
// "Identity request" and the other message types' names; empty for a type without one.
std::string_view TeiManagementName(Octet type);

// Prints the "ISDN Layer 2: " line, and for an information frame the
// "ISDN Layer 3: " line and the Q.931 message. `frame` is octets 1 to N.
// SABME and DISC change the context's link memory, UA reads it.
void DecodeLapdFrame(DecodeContext& context, OctetSpan frame);

// A message of a debug dump: a whole frame as DecodeLapdFrame decodes it;
// a Q.931 message alone (from the protocol discriminator on) behind the
// "ISDN Layer 3: " line, with no layer-2 line, its address being unknown.
// A frame whose C/R bit the dump does not tell reads 0 there; the detail
// level then says so instead of reading the bit.
void DecodeDumpMessage(DecodeContext& context, OctetSpan octets, bool wholeFrame, bool commandResponseKnown = true);

// The two wordings of the UA line. They are of equal length, so a parallel
// run can decode a chunk before it knows the link memory at the chunk's start
// and put the right wording in place afterwards.
inline constexpr std::string_view kUaAfterSabme = "Acknowledge to SABME, link established\n";
inline constexpr std::string_view kUaAfterDisc = "Acknowledge to DISC, link disconnected\n";
static_assert(kUaAfterSabme.size() == kUaAfterDisc.size());

}  // namespace velmora
