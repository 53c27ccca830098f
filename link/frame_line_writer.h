#pragma once
// The frame line a frame read from elsewhere (a captured packet, a dump's
// message) becomes, laid out as the frame lines of the card's trace logs,
// for the scanner to read as it reads a trace log:
//   00001 2026-03-14 09:15:02.306123 **** D-CH TX HDLC:3  | 0x00 0x81 0x7f
// the packet number (five digits or more), the date and time of its
// timestamp (UTC, to the microsecond), TX, RX or "--", the octet count and
// one 5-character cell per octet, padded with blanks to at least 80
// characters before the line end.
#include <cstdint>
#include <string>

#include "frame_line_facts.h"
#include "octet.h"

namespace velmora {

inline constexpr std::size_t kFrameLineMinimum = 80;

// Replaces `line` with the frame line of frame number `number`; every octet gets its
// cell, however many there are.
void WriteFrameLine(std::string& line, std::uint64_t number, std::int64_t microsecondsSinceEpoch,
                    FrameDirection direction, OctetSpan octets);

}  // namespace velmora
