#pragma once
// Octets as Q.931 numbers them: unsigned 8-bit values, bit 8 the most significant.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace velmora {

using Octet = std::uint8_t;

// A frame, or the part of it from some octet to the frame's last octet. Every
// decoder reads through such a view, so nothing outside octets 1 to N exists for it.
using OctetSpan = std::span<const Octet>;

// Octets a frame buffer holds; a longer length field is cut to this.
inline constexpr std::size_t kFrameCapacity = 300;

// Hexadecimal digits as every output writes them: lower case.
inline constexpr std::string_view kHexDigits = "0123456789abcdef";

}  // namespace velmora
