#pragma once
// Whole numbers in decimal, for every output that writes them into a string;
// the output writer has its own form of the same (OutputWriter::Decimal).
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>

namespace velmora {

// `value` in decimal, with leading zeros to at least `width` digits.
inline void AppendDecimal(std::string& to, std::uint64_t value, std::size_t width = 1) {
  char digits[20];
  const std::size_t count = static_cast<std::size_t>(std::to_chars(digits, digits + sizeof digits, value).ptr - digits);
  if (count < width) to.append(width - count, '0');
  to.append(digits, count);
}

}  // namespace velmora
