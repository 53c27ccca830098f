#pragma once
// Q.921 (LAPD) frame kinds, told by the control field.
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

// Prints the "ISDN Layer 2: " line, and for an information frame the
// "ISDN Layer 3: " line and the Q.931 message. `frame` is octets 1 to N.
// SABME and DISC change the context's link memory, UA reads it.
void DecodeLapdFrame(DecodeContext& context, OctetSpan frame);

// The two wordings of the UA line. They are of equal length, so a parallel
// run can decode a chunk before it knows the link memory at the chunk's start
// and put the right wording in place afterwards.
inline constexpr std::string_view kUaAfterSabme = "Acknowledge to SABME, link established\n";
inline constexpr std::string_view kUaAfterDisc = "Acknowledge to DISC, link disconnected\n";
static_assert(kUaAfterSabme.size() == kUaAfterDisc.size());

}  // namespace velmora
