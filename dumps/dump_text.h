#pragma once
// What the dump readers share: reading hexadecimal digits and decimal
// numbers out of a debug line, and the most octets a message holds.
#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "input_format.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmora::dump_text {

// Messages, frames included, hold at most what a frame line can.
inline constexpr std::size_t kLongestMessage = 300;

// A hexadecimal digit's value, either case; -1 for any other character.
// Looked up: dumps are mostly hex digits.
inline constexpr std::array<std::int8_t, 256> kHexValues = [] {
  std::array<std::int8_t, 256> values{};
  for (int c = 0; c < 256; ++c)
    values[static_cast<std::size_t>(c)] = static_cast<std::int8_t>(c >= '0' && c <= '9'   ? c - '0'
                                                                   : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                                                   : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                                                          : -1);
  return values;
}();
inline int HexValue(char c) { return kHexValues[static_cast<unsigned char>(c)]; }

// The first place at or after `from` that holds `a` or `b`; the text's size
// when none does. Sixteen characters at a time: a debug line holds few.
inline std::size_t NextOf(std::string_view text, std::size_t from, char a, char b) {
#if defined(__SSE2__)
  for (; from + 16 <= text.size(); from += 16) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + from));
    const int mask = _mm_movemask_epi8(
        _mm_or_si128(_mm_cmpeq_epi8(block, _mm_set1_epi8(a)), _mm_cmpeq_epi8(block, _mm_set1_epi8(b))));
    if (mask != 0) return from + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(mask)));
  }
#endif
  while (from < text.size() && text[from] != a && text[from] != b) ++from;
  return from;
}

// The decimal number behind `key` (and blanks) in `text`.
inline std::optional<std::uint64_t> NumberAfter(std::string_view text, std::string_view key) {
  std::size_t at = text.find(key);
  if (at == std::string_view::npos) return std::nullopt;
  at += key.size();
  while (at < text.size() && text[at] == ' ') ++at;
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data() + at, text.data() + text.size(), value);
  if (error != std::errc() || end == text.data() + at) return std::nullopt;
  return value;
}

// What every reader keeps of the message whose lines it reads.
struct MessageLines {
  std::vector<Octet> octets;
  bool wholeFrame = false;  // from the LAPD address on; else from the protocol discriminator on
  FrameDirection direction = FrameDirection::Unknown;
  std::uint64_t firstLine = 0;
  std::string moment;
};

// Hands the open message on: its lines move to `closed` (the two swap, so
// both keep their room for the messages to come) and `message` views them.
// The reader sets cutOff and commandResponseKnown where they differ.
template <typename Lines>
const DumpMessage* HandOn(Lines& open, Lines& closed, DumpMessage& message) {
  std::swap(closed, open);
  message = DumpMessage{closed.octets, closed.wholeFrame, closed.direction, closed.firstLine, closed.moment};
  return &message;
}

// A debug dump's format: told by one of the input's first whole lines
// (`tells`, given the whole line behind it too, or nothing), and read line
// by line by a Reader. While not even the first line is whole, it asks for
// more.
template <typename Reader>
class LineDumpFormat final : public InputFormat {
 public:
  using Tells = bool (*)(std::string_view line, std::string_view next);
  explicit LineDumpFormat(Tells tells) : tells_(tells) {}

  Recognition Recognise(std::string_view head) const override {
    bool wholeLine = false;
    for (std::size_t at = 0; at < head.size();) {
      const std::size_t end = head.find('\n', at);
      if (end == std::string_view::npos) break;
      wholeLine = true;
      const std::size_t nextEnd = head.find('\n', end + 1);
      const std::string_view next =
          nextEnd == std::string_view::npos ? std::string_view{} : head.substr(end + 1, nextEnd - end - 1);
      if (tells_(head.substr(at, end - at), next)) return Recognition::Yes;
      at = end + 1;
    }
    return !wholeLine && head.size() < kRecognitionBytes ? Recognition::NeedMore : Recognition::No;
  }
  OpenedInput Open(int, std::string_view) const override { return {nullptr, "a debug dump is read as lines"}; }
  std::unique_ptr<MessageDump> Dump() const override { return std::make_unique<Reader>(); }

 private:
  Tells tells_;
};

}  // namespace velmora::dump_text
