#pragma once
// Q.921 (LAPD) frame kinds, told by the control field.
#include "core/link_prescan.h"
#include "core/octet.h"

namespace velmora {

// True exactly for the Q.931 protocol discriminator, 0x08.
constexpr bool IsQ931Discriminator(Octet octet) { return octet == 0x08; }

// Prints the "ISDN Layer 2: " line, and for an information frame the
// "ISDN Layer 3: " line and the Q.931 message. `frame` is octets 1 to N.
void DecodeLapdFrame(OctetSpan frame);

// What a frame with this control octet does to the link memory: SABME
// sets it, DISC clears it, every other frame leaves it alone.
LinkEffect LinkEffectOfControl(Octet control);

}  // namespace velmora
