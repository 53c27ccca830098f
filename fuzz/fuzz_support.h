#pragma once
// Shared by the fuzz targets: the piece split of the line reader, exact-size
// heap copies (so AddressSanitizer sees any read past the end), output
// capture into a string, and a loud stop when an invariant breaks.
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "element_registry.h"
#include "output_writer.h"

namespace velmora::fuzz {

// Stops the run so that libFuzzer keeps the input as a crash.
[[noreturn]] inline void Violated(const char* what, const std::string& detail = {}) {
  std::fprintf(stderr, "invariant violated: %s\n%s\n", what, detail.c_str());
  std::abort();
}

inline void Require(bool holds, const char* what, const std::string& detail = {}) {
  if (!holds) Violated(what, detail);
}

// The same with a detail that costs (a printable copy of the input): made
// only when the invariant does not hold.
template <typename MakeDetail>
requires std::is_invocable_r_v<std::string, MakeDetail>
inline void Require(bool holds, const char* what, MakeDetail&& makeDetail) {
  if (!holds) Violated(what, makeDetail());
}

// The pieces the run hands to the line handler: up to and including the
// first "\n", at most 2047 characters; the last may have no line end.
inline constexpr std::size_t kMaxPiece = 2047;

inline std::vector<std::string_view> SplitPieces(std::string_view input) {
  std::vector<std::string_view> pieces;
  while (!input.empty()) {
    const std::size_t window = input.size() < kMaxPiece ? input.size() : kMaxPiece;
    const std::size_t lineEnd = input.substr(0, window).find('\n');
    const std::size_t size = lineEnd == std::string_view::npos ? window : lineEnd + 1;
    pieces.push_back(input.substr(0, size));
    input.remove_prefix(size);
  }
  return pieces;
}

// A heap block of exactly `size` bytes holding a copy of `bytes`.
template <typename T>
std::unique_ptr<T[]> ExactCopy(const void* bytes, std::size_t size) {
  std::unique_ptr<T[]> copy(new T[size == 0 ? 1 : size]);
  if (size > 0) std::memcpy(copy.get(), bytes, size);
  return copy;
}

// Runs body with a writer into a string; a small buffer so the writer's
// flush paths are taken too.
template <typename Body>
std::string Capture(Body&& body, std::size_t capacity = 64) {
  std::string text;
  StringSink sink(text);
  {
    OutputWriter writer(sink, capacity);
    body(writer);
    writer.Flush();
    Require(!writer.Failed(), "a string sink never fails");
  }
  return text;
}

// What an element prints (heading and field lines; null is the unknown-element
// dump) when it stands at the frame's end, decoded from a fresh heap block of
// exactly `size` octets.
inline std::string DecodeAtFrameEnd(const ElementEntry* entry, const Octet* octets, std::size_t size) {
  const auto frame = ExactCopy<Octet>(octets, size);
  return Capture([&](OutputWriter& out) { DecodeElement(out, entry, ElementOctets(OctetSpan(frame.get(), size))); });
}

// Shows bytes with escapes, for failure reports.
inline std::string Printable(std::string_view bytes, std::size_t limit = 400) {
  std::string shown;
  for (std::size_t i = 0; i < bytes.size() && i < limit; ++i) {
    const unsigned char c = static_cast<unsigned char>(bytes[i]);
    if (c == '\n') {
      shown += "\\n";
    } else if (c == '\t') {
      shown += "\\t";
    } else if (c < 0x20 || c >= 0x7F) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\x%02x", c);
      shown += escaped;
    } else {
      shown += static_cast<char>(c);
    }
  }
  if (bytes.size() > limit) shown += "...";
  return shown;
}

// Reads the JSON string at `at` of `text` (its quotes included) and moves
// `at` behind it; its characters, escapes resolved (a \u escape above 0xFF
// is left out), go to `out` when it is not null. False when no well-formed
// string stands there.
inline bool ReadJsonString(std::string_view text, std::size_t& at, std::string* out) {
  if (at >= text.size() || text[at] != '"') return false;
  ++at;
  while (at < text.size() && text[at] != '"') {
    const auto c = static_cast<unsigned char>(text[at++]);
    if (c < 0x20) return false;
    if (c != '\\') {
      if (out != nullptr) out->push_back(static_cast<char>(c));
      continue;
    }
    if (at >= text.size()) return false;
    const char escaped = text[at++];
    if (escaped == 'u') {
      unsigned code = 0;
      for (int i = 0; i < 4; ++i, ++at) {
        if (at >= text.size() || !std::isxdigit(static_cast<unsigned char>(text[at]))) return false;
        const char digit = text[at];
        code = code * 16 + static_cast<unsigned>(std::isdigit(static_cast<unsigned char>(digit))
                                                     ? digit - '0'
                                                     : (digit | 0x20) - 'a' + 10);
      }
      if (out != nullptr && code < 0x100) out->push_back(static_cast<char>(code));
    } else if (escaped == '"' || escaped == '\\' || escaped == '/') {
      if (out != nullptr) out->push_back(escaped);
    } else if (std::string_view("bfnrt").find(escaped) == std::string_view::npos) {
      return false;
    }
  }
  if (at >= text.size()) return false;
  ++at;
  return true;
}

// The tokens of a JSON text, for the fuzz targets' small readers.
class JsonCursor {
 public:
  explicit JsonCursor(std::string_view text) : text_(text) {}

 protected:
  bool Take(char c) {
    if (at_ < text_.size() && text_[at_] == c) return ++at_, true;
    return false;
  }
  bool Word(std::string_view word) {
    if (text_.substr(at_, word.size()) != word) return false;
    at_ += word.size();
    return true;
  }
  bool String(std::string* out) { return ReadJsonString(text_, at_, out); }
  // A run of decimal digits; false when none stands there.
  bool Digits() {
    const std::size_t start = at_;
    while (at_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[at_]))) ++at_;
    return at_ > start;
  }
  bool AtEnd() const { return at_ == text_.size(); }
  bool Sees(char c) const { return at_ < text_.size() && text_[at_] == c; }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace velmora::fuzz
