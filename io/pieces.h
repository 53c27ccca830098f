#pragma once
// How the run cuts its input into the pieces it hands to the line handler:
// up to and including the first "\n", at most 2047 characters. A line of
// more than 2047 characters arrives in several pieces.
#include <cstddef>
#include <cstring>
#include <string_view>

namespace velmora {

inline constexpr std::size_t kMaxPiece = 2047;

// The length of the first piece of `text`. When more input may follow
// `text` and it holds neither a line end nor 2047 characters, 0: the piece
// is not complete yet.
inline std::size_t FirstPieceLength(std::string_view text, bool moreMayFollow) {
  const std::size_t window = text.size() < kMaxPiece ? text.size() : kMaxPiece;
  if (const void* lineEnd = std::memchr(text.data(), '\n', window))
    return static_cast<std::size_t>(static_cast<const char*>(lineEnd) - text.data()) + 1;
  return (window == kMaxPiece || !moreMayFollow) ? window : 0;
}

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

}  // namespace velmora
