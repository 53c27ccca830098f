#pragma once
// Whole numbers in decimal, for every output that writes them into a string;
// the output writer has its own form of the same (OutputWriter::Decimal).
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>

namespace velmora {

// The decimal digits of 0 to 999, in a slot of four copied whole.
struct SmallDecimal {
  std::array<char, 4> digits{};
  std::uint8_t size = 0;
};
inline constexpr std::array<SmallDecimal, 1000> kSmallDecimals = [] {
  std::array<SmallDecimal, 1000> table{};
  for (unsigned value = 0; value < 1000; ++value) {
    SmallDecimal& text = table[value];
    if (value >= 100) text.digits[text.size++] = static_cast<char>('0' + value / 100);
    if (value >= 10) text.digits[text.size++] = static_cast<char>('0' + value / 10 % 10);
    text.digits[text.size++] = static_cast<char>('0' + value % 10);
  }
  return table;
}();

// `value` in decimal, with leading zeros to at least `width` digits.
inline void AppendDecimal(std::string& to, std::uint64_t value, std::size_t width = 1) {
  if (value < kSmallDecimals.size() && width <= 1) {
    const SmallDecimal& text = kSmallDecimals[value];
    to.append(text.digits.data(), text.size);
    return;
  }
  char digits[20];
  const std::size_t count = static_cast<std::size_t>(std::to_chars(digits, digits + sizeof digits, value).ptr - digits);
  if (count < width) to.append(width - count, '0');
  to.append(digits, count);
}

}  // namespace velmora
