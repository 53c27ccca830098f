#pragma once
// How much a frame's decoding tells.
#include <cstdint>

namespace velmora {

// The message file as described, or more of what the octets hold (--detail
// full): the address and control fields, TEI management, Q.931 in UI
// frames, the call reference.
enum class DetailLevel : std::uint8_t { Description, Full };

}  // namespace velmora
