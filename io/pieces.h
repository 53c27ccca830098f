#pragma once
// How the run cuts its input into the pieces it hands to the line handler:
// up to and including the first "\n", at most 2047 characters. A line of
// more than 2047 characters arrives in several pieces.
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmora {

inline constexpr std::size_t kMaxPiece = 2047;

// The length of the whole pieces at the start of `text`, which begins at a
// piece boundary: up to and including its last line end, and behind that
// the whole 2047-character pieces of a longer line. All of `text` when no
// more input may follow.
inline std::size_t WholePiecesLength(std::string_view text, bool moreMayFollow) {
  if (!moreMayFollow) return text.size();
  std::size_t lineStart = text.size();
  while (lineStart > 0 && text[lineStart - 1] != '\n') --lineStart;
  return lineStart + (text.size() - lineStart) / kMaxPiece * kMaxPiece;
}

// Where a character stands among 64 characters, one bit each, lowest first.
inline std::uint64_t CharacterMask(const char* characters, char wanted) {
#if defined(__SSE2__)
  const __m128i match = _mm_set1_epi8(wanted);
  const auto sixteen = [&](int block) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(characters + 16 * block));
    return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(text, match))));
  };
  return sixteen(0) | sixteen(1) << 16 | sixteen(2) << 32 | sixteen(3) << 48;
#else
  std::uint64_t mask = 0;
  for (int i = 0; i < 64; ++i) mask |= static_cast<std::uint64_t>(characters[i] == wanted) << i;
  return mask;
#endif
}

// Visits every piece of a text that begins at a piece boundary, in order.
// The line ends are found 64 characters at a time, as bits, rather than by a
// search per line, whose varying length costs a mispredicted branch a line.
template <typename Visit>
void ForEachPiece(std::string_view text, Visit&& visit) {
  std::size_t start = 0;
  // The pieces up to `end`, a line's end or the text's.
  const auto visitUpTo = [&](std::size_t end) {
    while (end - start > kMaxPiece) {
      visit(text.substr(start, kMaxPiece));
      start += kMaxPiece;
    }
    if (end > start) visit(text.substr(start, end - start));
    start = end;
  };
  std::size_t at = 0;
  for (; at + 64 <= text.size(); at += 64)
    for (std::uint64_t ends = CharacterMask(text.data() + at, '\n'); ends != 0; ends &= ends - 1)
      visitUpTo(at + static_cast<std::size_t>(std::countr_zero(ends)) + 1);
  for (; at < text.size(); ++at)
    if (text[at] == '\n') visitUpTo(at + 1);
  visitUpTo(text.size());
}

}  // namespace velmora
