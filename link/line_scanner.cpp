#include "line_scanner.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "lapd.h"
#include "pieces.h"

namespace velmora {

namespace {

constexpr std::size_t kMinimumFrameLine = 80;
constexpr std::size_t kCellWidth = 5;

constexpr unsigned HexValue(unsigned char c) { return c >= 'a' ? c - 87U : c - 48U; }

// The octet of every pair of digit characters, indexed by the pair as it
// stands in memory: a cell costs one load of its two digits and one of the
// table. Kept modulo 256, as the octet is.
constexpr std::array<Octet, 65536> kCellOctets = [] {
  std::array<Octet, 65536> octets{};
  for (unsigned high = 0; high < 256; ++high) {
    for (unsigned low = 0; low < 256; ++low) {
      const unsigned pair = std::endian::native == std::endian::little ? high | low << 8 : high << 8 | low;
      octets[pair] = static_cast<Octet>(16U * HexValue(static_cast<unsigned char>(high)) +
                                        HexValue(static_cast<unsigned char>(low)));
    }
  }
  return octets;
}();

}  // namespace

namespace {

constexpr std::size_t kNone = std::string_view::npos;

// Whether the four characters at `at` are `marker`: one 32-bit compare.
VELMORA_HOT_PATH bool MarkerAt(std::string_view line, std::size_t at, const char (&marker)[5]) {
  return line.size() - at >= 4 && std::memcmp(line.data() + at, marker, 4) == 0;
}

// The first "HDLC" of a line, found by its "L": trace lines carry "D-CH" in
// front of it, whose "H" a search by the first letter would stop at first.
// `firstL` is where the line's first "L" stands (kNone: it has none).
VELMORA_HOT_PATH std::size_t FindHdlc(std::string_view line, std::size_t firstL) {
  for (std::size_t l = firstL < 2 ? line.find('L', 2) : firstL; l != kNone; l = line.find('L', l + 1))
    if (MarkerAt(line, l - 2, "HDLC")) return l - 2;
  return kNone;
}

// Where a character first stands in a line of at least 64 characters: the
// first 64, where a frame line carries its markers, are looked at all at
// once, the rest only when they do not hold it.
VELMORA_HOT_PATH std::size_t FirstInLongLine(std::string_view line, char wanted) {
  const std::uint64_t early = CharacterMask(line.data(), wanted);
  return early != 0 ? static_cast<std::size_t>(std::countr_zero(early)) : line.find(wanted, 64);
}

// The position of the first "HDLC" of a frame line, which anchors its length
// field; kNone for a line that is not a frame line.
VELMORA_HOT_PATH std::size_t FrameAnchor(std::string_view line) {
  static_assert(kMinimumFrameLine >= 64);
  if (line.size() < kMinimumFrameLine) return kNone;
  // "****" anywhere: at the first "*" or behind it.
  const std::size_t firstStar = FirstInLongLine(line, '*');
  if (firstStar == kNone) return kNone;
  if (!MarkerAt(line, firstStar, "****") && line.find("****", firstStar + 1) == kNone) return kNone;
  return FindHdlc(line, FirstInLongLine(line, 'L'));
}

}  // namespace

bool IsFrameLine(std::string_view line) { return FrameAnchor(line) != std::string_view::npos; }

void HexFieldsToOctets(const char* cells, long octetCount, Octet* octets) {
  for (long k = 0; k < octetCount; ++k) {
    std::uint16_t digits;
    std::memcpy(&digits, cells + k * static_cast<long>(kCellWidth) + 2, sizeof digits);
    octets[k] = kCellOctets[digits];
  }
}

namespace {

// Where a frame line's cells start and how many octets it yields: N as its
// length field reads, cut to the frame buffer and to the cells whose digit
// characters (cell positions 2 and 3) stand before the line's end.
struct CellRun {
  std::size_t start;
  std::size_t count;
};

VELMORA_HOT_PATH CellRun LocateCells(std::string_view line, std::size_t anchor) {
  std::size_t position = anchor + 5;  // "HDLC" and one skipped character
  std::size_t announced = 0;
  while (position < line.size() && line[position] >= '0' && line[position] <= '9') {
    if (announced <= kFrameCapacity) announced = announced * 10 + static_cast<std::size_t>(line[position] - '0');
    ++position;
  }
  const std::size_t cellsStart = position + 4;  // Q and the three characters behind it
  std::size_t textEnd = line.size();
  if (textEnd > 0 && line[textEnd - 1] == '\n') --textEnd;
  std::size_t present = 0;
  if (cellsStart + 3 < textEnd) present = (textEnd - cellsStart - 4) / kCellWidth + 1;
  std::size_t count = announced < kFrameCapacity ? announced : kFrameCapacity;
  if (count > present) count = present;
  return {cellsStart, count};
}

VELMORA_HOT_PATH std::size_t ReadCells(std::string_view line, std::size_t anchor, Octet (&frame)[kFrameCapacity]) {
  const CellRun cells = LocateCells(line, anchor);
  HexFieldsToOctets(line.data() + cells.start, static_cast<long>(cells.count), frame);
  return cells.count;
}

}  // namespace

std::size_t ReadFrameOctets(std::string_view line, Octet (&frame)[kFrameCapacity]) {
  return ReadCells(line, line.find("HDLC"), frame);
}

std::optional<std::size_t> ScanFrameLine(std::string_view line, Octet (&frame)[kFrameCapacity]) {
  const std::size_t anchor = FrameAnchor(line);
  if (anchor == std::string_view::npos) return std::nullopt;
  return ReadCells(line, anchor, frame);
}

namespace {

// A frame line, copied already: noted as found, and its frame decoded. The
// line is searched for its markers once: the anchor found by the frame-line
// test also locates the length field.
void DecodeFrameLine(DecodeContext& context, std::string_view line, std::size_t anchor) {
  context.frameFound = true;
  Octet frame[kFrameCapacity];
  const std::size_t count = ReadCells(line, anchor, frame);
  DecodeLapdFrame(context, OctetSpan(frame, count));
}

}  // namespace

void TranslateTraceLine(DecodeContext& context, std::string_view line) {
  context.out.Put(line);
  if (const std::size_t anchor = FrameAnchor(line); anchor != std::string_view::npos)
    DecodeFrameLine(context, line, anchor);
}

void TranslateTracePieces(DecodeContext& context, std::string_view text) {
  std::size_t copied = 0;
  ForEachPiece(text, [&](std::string_view piece) {
    const std::size_t anchor = FrameAnchor(piece);
    if (anchor == std::string_view::npos) return;
    const std::size_t end = static_cast<std::size_t>(piece.data() - text.data()) + piece.size();
    context.out.Put(text.substr(copied, end - copied));
    copied = end;
    DecodeFrameLine(context, piece, anchor);
  });
  context.out.Put(text.substr(copied));
}

}  // namespace velmora
