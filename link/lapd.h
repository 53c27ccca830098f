#pragma once
// Q.921 (LAPD) frame kinds, told by the control field.
#include <string_view>

#include "decode_context.h"
#include "octet.h"

namespace velmora {

// True exactly for the Q.931 protocol discriminator, 0x08.
constexpr bool IsQ931Discriminator(Octet octet) { return octet == 0x08; }

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
