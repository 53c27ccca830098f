#pragma once
// The digits of a party number, for readers that print no lines.
#include "element_octets.h"
#include "octet.h"

namespace velmora {

// The number digits of a Calling party number (0x6C), Called party number
// (0x70), Redirecting number (0x74) or Connected number (0x4C) as its decoder takes them: the octets
// behind octet 3 and behind the octets 3a and 3b that the element's layout
// reads when extension bits announce them, to the element's end. Each is
// an IA5 character in bits 7-1; bit 8 is spare. Empty for any other element.
OctetSpan PartyNumberDigits(const ElementOctets& element);

}  // namespace velmora
