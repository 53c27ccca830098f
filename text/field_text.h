#pragma once
// The decoded-text layout shared by every decoder: field lines of two tabs,
// the field's name, "=", its bits, two blanks and the meaning from a table;
// and the few other line forms that several elements print.
#include <algorithm>
#include <array>
#include <cstddef>
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

// The layout of those two, written to anything that takes text the way the
// output writer does: the writer itself, or a line book at compile time.
template <typename Text>
constexpr void WriteFieldName(Text& text, std::string_view name, Indent indent) {
  text.Put(indent == Indent::Field ? std::string_view("\t\t") : std::string_view("\t\t\t"));
  text.Put(name);
  text.Put('=');
}
template <typename Text>
constexpr void WriteCodedValue(Text& text, std::string_view name, std::uint32_t value, unsigned width,
                               std::string_view meaning, Indent indent) {
  WriteFieldName(text, name, indent);
  text.Bits(value, width);
  text.Put("  ");
  text.Put(meaning);
  text.Put('\n');
}

// A field's name as a template argument, so that its lines can be built at
// compile time.
struct FieldName {
  static constexpr std::size_t kCapacity = 64;
  char text[kCapacity] = {};
  std::size_t size = 0;

  constexpr FieldName(std::string_view name) : size(name.size()) {
    if (name.size() > kCapacity) throw "field name longer than FieldName::kCapacity";
    std::copy(name.begin(), name.end(), text);
  }
  template <std::size_t N>
  constexpr FieldName(const char (&literal)[N]) : FieldName(std::string_view(literal, N - 1)) {}
  constexpr std::string_view View() const { return {text, size}; }
};

// A coded field of an octet: its name, its bits (highBit to lowBit) and the
// table of its meanings, stated once, together, as Coded<name, highBit,
// lowBit, meanings>. An empty CodedField{} is the whole octet with no
// meanings, which prints nothing.
struct CodedField {
  std::string_view name;
  unsigned highBit = 8;
  unsigned lowBit = 1;
  ValueTable meanings;
  // By the field's value: its whole line, built from the above at compile
  // time, or empty where the table names no meaning. The lines carry the
  // sub-field indent; a field line leaves out its first tab.
  std::span<const PaddedView> lines;

  constexpr CodedField() = default;
  constexpr CodedField(std::string_view name, unsigned highBit, unsigned lowBit, ValueTable meanings,
                       std::span<const PaddedView> lines)
      : name(name),
        highBit(highBit),
        lowBit(lowBit),
        meanings(meanings),
        lines(lines),
        shift_(lowBit - 1),
        mask_(FieldBits(0xFF, highBit, lowBit)) {}

  // The field's bits of an octet, shifted down to a plain value.
  constexpr unsigned ValueIn(Octet octet) const { return (static_cast<unsigned>(octet) >> shift_) & mask_; }

 private:
  // FieldBits' shift and mask, worked out once.
  unsigned shift_ = 0;
  unsigned mask_ = 0xFF;
};

namespace line_book {

// Text sizes and text into a fixed array, for building lines at compile time.
struct Measure {
  std::size_t size = 0;
  constexpr void Put(std::string_view text) { size += text.size(); }
  constexpr void Put(char) { ++size; }
  constexpr void Bits(std::uint32_t, unsigned width) { size += width; }
};
template <std::size_t N>
struct Lines {
  std::array<char, N> text{};
  std::size_t size = 0;
  constexpr void Put(std::string_view piece) {
    for (const char c : piece) text[size++] = c;
  }
  constexpr void Put(char c) { text[size++] = c; }
  constexpr void Bits(std::uint32_t value, unsigned width) {
    for (unsigned bit = width; bit > 0; --bit) text[size++] = ((value >> (bit - 1)) & 1U) ? '1' : '0';
  }
};

// Every line of one field, in the order of its values, and each value's line.
template <FieldName name, unsigned highBit, unsigned lowBit, const auto& meanings, unsigned shownWidth>
struct Book {
  static constexpr std::size_t kValues = std::size_t{1} << (highBit - lowBit + 1);

  // The first row that names the value, as FindRow finds it; walked here
  // without null pointers, which some sanitizing builds cannot compare at
  // compile time.
  template <typename Text>
  static constexpr void WriteLine(Text& text, std::uint32_t value) {
    for (const ValueText& row : ValueTable(meanings)) {
      if (row.value != value) continue;
      WriteCodedValue(text, name.View(), value, shownWidth, row.text, Indent::SubField);
      return;
    }
  }
  static constexpr std::size_t Size() {
    Measure all;
    for (std::uint32_t value = 0; value < kValues; ++value) WriteLine(all, value);
    return all.size;
  }
  // Padded, so that a line can be copied in one fixed-size move.
  static constexpr Lines<Size() + kTextPadding> kText = [] {
    Lines<Size() + kTextPadding> all;
    for (std::uint32_t value = 0; value < kValues; ++value) WriteLine(all, value);
    return all;
  }();
  static constexpr std::array<PaddedView, kValues> kLines = [] {
    std::array<PaddedView, kValues> lines{};
    std::size_t at = 0;
    for (std::uint32_t value = 0; value < kValues; ++value) {
      Measure line;
      WriteLine(line, value);
      if (line.size > 0) lines[value] = PaddedView::Within(kText.text, at, line.size);
      at += line.size;
    }
    return lines;
  }();
};

}  // namespace line_book

// The coded field named `name`, of bits highBit to lowBit, with the
// meanings of the table `meanings`. Its line shows the field's low
// `shownWidth` bits, all of them unless a field words it otherwise.
template <FieldName name, unsigned highBit, unsigned lowBit, const auto& meanings,
          unsigned shownWidth = highBit - lowBit + 1>
inline constexpr CodedField Coded{name.View(), highBit, lowBit, meanings,
                                  line_book::Book<name, highBit, lowBit, meanings, shownWidth>::kLines};

// The same field with other meanings, for an element that words it its own way.
template <const CodedField& field, const auto& otherMeanings>
inline constexpr CodedField WithMeanings = Coded<FieldName(field.name), field.highBit, field.lowBit, otherMeanings>;

// The field's coded-value line for an octet when its table names the value;
// nothing at all otherwise. Returns whether a line was printed.
VELMORA_HOT_PATH bool PrintField(OutputWriter& out, const CodedField& field, Octet octet,
                                 Indent indent = Indent::Field) {
  const unsigned value = field.ValueIn(octet);
  if (value >= field.lines.size()) return false;
  const PaddedView line = field.lines[value];
  if (line.empty()) return false;
  // A field line leaves out the first of the sub-field indent's three tabs.
  out.PutPadded(line.DropFront(indent == Indent::SubField ? 0 : 1));
  return true;
}

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

// "<indent><name>=" then bits 7-1 of each octet as an IA5 character where
// it is printable (0x20 to 0x7E), as "<0x%x>" where not, then "\n": the
// readable form beside PrintIa5String's codes.
void PrintIa5Text(OutputWriter& out, std::string_view name, std::span<const std::uint8_t> octets,
                  Indent indent = Indent::Field);

}  // namespace velmora
