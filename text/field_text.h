#pragma once
// The decoded-text layout shared by every decoder: field lines of two tabs,
// the field's name, "=", its bits, two blanks and the meaning from a table;
// and the few other line forms that several elements print.
#include <cstdint>
#include <span>
#include <string_view>

#include "octet.h"
#include "output_writer.h"

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

// One row of a range table: the values first to last share one meaning.
struct RangeText {
  std::uint32_t first;
  std::uint32_t last;
  std::string_view text;
};
using RangeTable = std::span<const RangeText>;

// The range that holds a value, or null when none does.
constexpr const RangeText* FindRange(RangeTable table, std::uint32_t value) {
  for (const RangeText& range : table)
    if (value >= range.first && value <= range.last) return &range;
  return nullptr;
}

// Bits highBit..lowBit of an octet (Q.931 numbering, 8 the most significant),
// shifted down to a plain value: FieldBits(octet, 5, 1) reads bits 5-1.
constexpr unsigned FieldBits(Octet octet, unsigned highBit, unsigned lowBit) {
  return (static_cast<unsigned>(octet) >> (lowBit - 1)) & ((1U << (highBit - lowBit + 1)) - 1);
}

// Bit 8 = 0: the octet announces a further octet of its group.
constexpr bool AnnouncesMore(Octet octet) { return (octet & 0x80) == 0; }

// Line indents: field lines two tabs, sub-fields (cause diagnostics) three.
enum class Indent { Field = 2, SubField = 3 };

// "<indent><name>=": how every field line begins. For lines of their own
// form, which go on with the writer.
void PrintFieldName(OutputWriter& out, std::string_view name, Indent indent = Indent::Field);

// "<indent><name>=<bits>  <meaning>\n", value shown as `width` bits.
void PrintCodedValue(OutputWriter& out, std::string_view name, std::uint32_t value, unsigned width,
                     std::string_view meaning, Indent indent = Indent::Field);

// A coded field of an octet: its name, its bits (highBit to lowBit) and the
// table of its meanings, stated once, together. An empty CodedField{} is the
// whole octet with no meanings, which prints nothing.
struct CodedField {
  std::string_view name;
  unsigned highBit = 8;
  unsigned lowBit = 1;
  ValueTable meanings;

  constexpr unsigned Width() const { return highBit - lowBit + 1; }
  // The field's bits of an octet, shifted down to a plain value.
  constexpr unsigned ValueIn(Octet octet) const { return FieldBits(octet, highBit, lowBit); }
  // The same field with other meanings, for an element that words it its own way.
  constexpr CodedField With(ValueTable otherMeanings) const { return {name, highBit, lowBit, otherMeanings}; }
};

// The field's coded-value line for an octet when its table names the value;
// nothing at all otherwise. Returns whether a line was printed.
bool PrintField(OutputWriter& out, const CodedField& field, Octet octet, Indent indent = Indent::Field);

// Each field's line for one octet, in order.
void PrintFields(OutputWriter& out, Octet octet, std::span<const CodedField> fields, Indent indent = Indent::Field);

// "<indent><name>=0x%x  <meaning>\n": a value whose meaning it shares with
// others (a range of values, or every value), shown in hexadecimal instead
// of its bits.
void PrintHexMeaning(OutputWriter& out, std::string_view name, std::uint32_t value, std::string_view meaning,
                     Indent indent = Indent::Field);

// "<indent><name>=0x%x\n".
void PrintHexField(OutputWriter& out, std::string_view name, std::uint32_t value, Indent indent = Indent::Field);

// "<indent><name>= 0x%x\n": the value behind a blank, as an octet string
// shows its one octet.
void PrintSpacedHexField(OutputWriter& out, std::string_view name, std::uint32_t value, Indent indent = Indent::Field);

// "<indent><name>=%d\n".
void PrintDecimalField(OutputWriter& out, std::string_view name, std::uint32_t value, Indent indent = Indent::Field);

// "<indent><name>=" then " 0x%x" for each octet, then "\n".
void PrintOctetString(OutputWriter& out, std::string_view name, std::span<const std::uint8_t> octets,
                      Indent indent = Indent::Field);

// "<indent><name>=" then " 0x%x" of bits 7-1 of each octet, then "\n": IA5
// characters shown as their codes, never as text, so a control character
// cannot break the line. Bit 8 of each octet is spare.
void PrintIa5String(OutputWriter& out, std::string_view name, std::span<const std::uint8_t> octets,
                    Indent indent = Indent::Field);

}  // namespace velmora
