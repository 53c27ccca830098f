#pragma once
// The channel a Channel identification element (0x18) names, for readers
// that print no lines.
#include <optional>

#include "element_octets.h"
#include "octet.h"

namespace velmora {

// A B-channel of a basic interface (octet 3's channel selection 01 or 10),
// or the channel numbers of another interface (octets 3.3, bits 7-1 each).
struct IdentifiedChannel {
  unsigned basicChannel = 0;  // 1 or 2 on a basic interface, else 0
  OctetSpan numbers;          // up to the octet whose bit 8 is 1, or the element's end
};

// Nothing when the element names no channel: no channel or any channel, a
// slot map, or an element that ends before the channel.
std::optional<IdentifiedChannel> ReadIdentifiedChannel(const ElementOctets& element);

}  // namespace velmora
