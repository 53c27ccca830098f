#pragma once
// The decoded-text layout shared by every decoder: field lines of two tabs,
// the field's name, "=", its bits, two blanks and the meaning from a table.
#include <cstdint>
#include <span>
#include <string_view>

#include "core/globals.h"

namespace velmora {

// One row of a meaning table: a field value and its text in Q.931 wording.
struct ValueText {
  std::uint32_t value;
  std::string_view text;
};
using ValueTable = std::span<const ValueText>;

// The row that names a value, or null when the table has none.
constexpr const ValueText* FindRow(ValueTable table, std::uint32_t value) {
  for (const ValueText& row : table)
    if (row.value == value) return &row;
  return nullptr;
}

// Line indents: field lines two tabs, sub-fields (cause diagnostics) three.
enum class Indent { Field = 2, SubField = 3 };

inline void PrintIndent(Indent indent) { Out().Put(indent == Indent::Field ? "\t\t" : "\t\t\t"); }

// The heading behind "\tInformation element:": the element's name and "\n".
inline void PrintHeading(std::string_view name) {
  Out().Put(name);
  Out().Put('\n');
}

// "<indent><name>=<bits>  <meaning>\n" when the table has a row for value;
// nothing at all otherwise. Returns whether a line was printed.
bool PrintField(std::string_view name, std::uint32_t value, unsigned width, ValueTable table,
                Indent indent = Indent::Field);

// "<indent><name>=0x%x\n".
void PrintHexField(std::string_view name, std::uint32_t value, Indent indent = Indent::Field);

// "<indent><name>=" then " 0x%x" for each octet, then "\n".
void PrintOctetString(std::string_view name, std::span<const std::uint8_t> octets,
                      Indent indent = Indent::Field);

}  // namespace velmora
