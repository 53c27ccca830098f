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

// What is wrong with a cell's two digit characters: nothing for lower-case
// hexadecimal digits, the trace format's own.
constexpr std::uint8_t kNoFlaw = 0;
constexpr std::uint8_t kUpperCaseDigit = 1;
constexpr std::uint8_t kNotADigit = 2;

constexpr std::uint8_t DigitFlaw(unsigned char c) {
  if ((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f')) return kNoFlaw;
  return c >= 'A' && c <= 'F' ? kUpperCaseDigit : kNotADigit;
}

// Each character's value as a digit, and its flaw.
struct DigitTable {
  std::uint8_t value[256];
  std::uint8_t flaw[256];
};
constexpr DigitTable kDigits = [] {
  DigitTable digits{};
  for (unsigned c = 0; c < 256; ++c) {
    digits.value[c] = static_cast<std::uint8_t>(HexValue(static_cast<unsigned char>(c)));
    digits.flaw[c] = DigitFlaw(static_cast<unsigned char>(c));
  }
  return digits;
}();

// Every pair of digit characters, indexed by the pair as it stands in
// memory: its octet (kept modulo 256, as the octet is) in the low byte and
// its flaw in the high byte, a digit that is none outweighing an upper-case
// one. A cell costs one load of its two digits and one of the table. Built
// from plain arrays, in few steps a pair: a compiler's constant evaluation
// counts them, a call to std::array's operator[] among them.
constexpr std::array<std::uint16_t, 65536> kCellDigits = [] {
  constexpr std::uint8_t kPairFlaw[4] = {kNoFlaw, kUpperCaseDigit, kNotADigit, kNotADigit};
  constexpr bool kLittle = std::endian::native == std::endian::little;
  std::array<std::uint16_t, 65536> cells{};
  std::uint16_t* pairs = cells.data();
  for (unsigned high = 0; high < 256; ++high) {
    const unsigned highValue = 16U * kDigits.value[high];
    const unsigned highFlaw = kDigits.flaw[high];
    for (unsigned low = 0; low < 256; ++low)
      pairs[kLittle ? high | low << 8 : high << 8 | low] = static_cast<std::uint16_t>(
          ((highValue + kDigits.value[low]) & 0xFFU) | unsigned{kPairFlaw[highFlaw | kDigits.flaw[low]]} << 8);
  }
  return cells;
}();

// "0x" as it stands in memory at a cell's positions 0 and 1.
constexpr std::uint16_t kCellPrefix =
    std::endian::native == std::endian::little ? std::uint16_t{'0' | 'x' << 8} : std::uint16_t{'0' << 8 | 'x'};

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
    octets[k] = static_cast<Octet>(kCellDigits[digits]);
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

// Whether a line shorter than a frame line holds the character: looked at
// 16 characters at a time, inline and without a branch on the line's
// length, since most lines between frame lines are of this length and a
// call to a search or a mispredicted loop costs more than the search.
VELMORA_HOT_PATH bool HoldsCharacter(std::string_view line, char wanted) {
  static_assert(kMinimumFrameLine <= 80);
#if defined(__SSE2__)
  if (line.size() >= 16) {
    const __m128i match = _mm_set1_epi8(wanted);
    const std::size_t last = line.size() - 16;
    // Five blocks of 16 cover 80 characters; those that would reach past
    // the line's end are moved back onto its last 16.
    const auto sixteenAt = [&](std::size_t at) {
      at = at < last ? at : last;
      return _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(line.data() + at)), match);
    };
    const __m128i found = _mm_or_si128(_mm_or_si128(_mm_or_si128(sixteenAt(0), sixteenAt(16)), sixteenAt(32)),
                                       _mm_or_si128(sixteenAt(48), sixteenAt(64)));
    return _mm_movemask_epi8(found) != 0;
  }
#endif
  return line.find(wanted) != kNone;
}

// The octets a frame line's cells read as, and in `flaws` what the cells
// show beside: upper-case digits, or cells that are not "0x" and two digits.
// The digits' flaws come with the octet from one table load, gathered
// without a branch. Cells that stand off their positions put a blank or
// the "x" of a neighbour among the digits a cell is read from, whatever the
// shift, so the digits tell of them; the first cell's "0x" tells of cells
// written otherwise ("0X", no prefix).
VELMORA_HOT_PATH std::size_t ReadCells(std::string_view line, std::size_t anchor, Octet (&frame)[kFrameCapacity],
                                       unsigned& flaws) {
  const CellRun cells = LocateCells(line, anchor);
  const char* cell = line.data() + cells.start;
  unsigned read = 0;  // the digits' flaws, in the high byte
  for (std::size_t k = 0; k < cells.count; ++k) {
    std::uint16_t digits;
    std::memcpy(&digits, cell + k * kCellWidth + 2, sizeof digits);
    const std::uint16_t entry = kCellDigits[digits];
    frame[k] = static_cast<Octet>(entry);
    read |= entry;
  }
  flaws = read >> 8;
  std::uint16_t prefix = kCellPrefix;
  if (cells.count != 0) std::memcpy(&prefix, cell, sizeof prefix);
  if (prefix != kCellPrefix) flaws |= kNotADigit;
  return cells.count;
}

VELMORA_HOT_PATH std::size_t ReadCells(std::string_view line, std::size_t anchor, Octet (&frame)[kFrameCapacity]) {
  unsigned flaws = kNoFlaw;
  return ReadCells(line, anchor, frame, flaws);
}

// A line that is not a frame line: noted when it is one only but for its
// length. Lines that long are rare beside frame lines, and are looked at
// for the markers only when they hold a "*".
VELMORA_HOT_PATH void NoteOtherLine(ScanNotes& notes, std::string_view line, std::uint64_t lineNumber) {
  if (line.size() >= kMinimumFrameLine || !HoldsCharacter(line, '*')) return;
  if (line.find("****") != kNone && line.find("HDLC") != kNone) notes.shortMarkedLines.Add(lineNumber);
}

[[gnu::cold, gnu::noinline]] void NoteCellFlaws(ScanNotes& notes, unsigned flaws, std::uint64_t lineNumber) {
  if ((flaws & kNotADigit) != 0) notes.misplacedCells.Add(lineNumber);
  if ((flaws & kUpperCaseDigit) != 0) notes.upperCaseCells.Add(lineNumber);
}

// A frame line's octets, its cells' flaws noted as line `lineNumber`.
VELMORA_HOT_PATH std::size_t ReadNotedCells(std::string_view line, std::size_t anchor, Octet (&frame)[kFrameCapacity],
                                            ScanNotes& notes, std::uint64_t lineNumber) {
  unsigned flaws = kNoFlaw;
  const std::size_t count = ReadCells(line, anchor, frame, flaws);
  if (flaws != kNoFlaw) NoteCellFlaws(notes, flaws, lineNumber);
  return count;
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

std::optional<std::size_t> ScanFrameLine(std::string_view line, Octet (&frame)[kFrameCapacity], ScanNotes& notes,
                                         std::uint64_t lineNumber) {
  const std::size_t anchor = FrameAnchor(line);
  if (anchor == std::string_view::npos) {
    NoteOtherLine(notes, line, lineNumber);
    return std::nullopt;
  }
  return ReadNotedCells(line, anchor, frame, notes, lineNumber);
}

namespace {

// A frame line, copied already: noted as found, and its frame decoded. The
// line is searched for its markers once: the anchor found by the frame-line
// test also locates the length field.
void DecodeFrameLine(DecodeContext& context, std::string_view line, std::size_t anchor) {
  context.frameFound = true;
  Octet frame[kFrameCapacity];
  const std::size_t count = ReadNotedCells(line, anchor, frame, context.notes, context.linesDone + 1);
  DecodeLapdFrame(context, OctetSpan(frame, count));
}

}  // namespace

void TranslateTraceLine(DecodeContext& context, std::string_view line) {
  context.out.Put(line);
  if (const std::size_t anchor = FrameAnchor(line); anchor != std::string_view::npos)
    DecodeFrameLine(context, line, anchor);
  else
    NoteOtherLine(context.notes, line, context.linesDone + 1);
  if (!line.empty() && line.back() == '\n') ++context.linesDone;
}

void TranslateTracePieces(DecodeContext& context, std::string_view text) {
  std::size_t copied = 0;
  ForEachPiece(text, [&](std::string_view piece) {
    const std::size_t anchor = FrameAnchor(piece);
    if (anchor == std::string_view::npos) {
      NoteOtherLine(context.notes, piece, context.linesDone + 1);
    } else {
      const std::size_t end = static_cast<std::size_t>(piece.data() - text.data()) + piece.size();
      context.out.Put(text.substr(copied, end - copied));
      copied = end;
      DecodeFrameLine(context, piece, anchor);
    }
    context.linesDone += piece.back() == '\n' ? 1 : 0;
  });
  context.out.Put(text.substr(copied));
}

}  // namespace velmora
