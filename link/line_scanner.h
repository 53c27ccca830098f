#pragma once
// Frame lines of the trace log: at least 80 characters, holding "****" and
// "HDLC"; behind "HDLC", one skipped character, the decimal octet count N,
// four skipped characters and N five-character hexadecimal cells.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "decode_context.h"
#include "octet.h"

namespace velmora {

// Copies one line (or piece of a line) to the context's writer and, for a
// frame line, notes it as found and decodes its frame behind the copy. The
// line may hold any byte.
void TranslateTraceLine(DecodeContext& context, std::string_view line);

// TranslateTraceLine for every piece of `text`, which holds whole pieces
// (pieces.h). The lines between frame lines are copied together.
void TranslateTracePieces(DecodeContext& context, std::string_view text);

// True when the line meets the three frame-line conditions.
bool IsFrameLine(std::string_view line);

// For a frame line, its octet count after ReadFrameOctets's rules, the
// octets written to `frame`; nothing for any other line.
std::optional<std::size_t> ScanFrameLine(std::string_view line, Octet (&frame)[kFrameCapacity]);
// The same, noting in `notes` what the scanner read but a user should hear
// about, as line `lineNumber`.
std::optional<std::size_t> ScanFrameLine(std::string_view line, Octet (&frame)[kFrameCapacity], ScanNotes& notes,
                                         std::uint64_t lineNumber);

// The frame octets of a frame line: N as its length field reads, cut to the
// 300-octet frame buffer and to the cells that lie wholly before the line's
// end (a trailing "\n" is not cell text). Returns the octet count written.
std::size_t ReadFrameOctets(std::string_view line, Octet (&frame)[kFrameCapacity]);

// Cell k: the high digit at cell position 2, the low one at 3; "a" and up
// count from 10, everything else from "0", modulo 256 ("7F" gives 0x86).
// Converts `octetCount` cells from `cells`, which must hold them all.
void HexFieldsToOctets(const char* cells, long octetCount, Octet* octets);

}  // namespace velmora
