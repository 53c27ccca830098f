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

// Visits every piece of a complete text that begins at a piece boundary.
template <typename Visit>
void ForEachPiece(std::string_view text, Visit&& visit) {
  while (!text.empty()) {
    const std::size_t size = FirstPieceLength(text, false);
    visit(text.substr(0, size));
    text.remove_prefix(size);
  }
}

}  // namespace velmora
