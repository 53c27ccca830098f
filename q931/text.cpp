#include "q931/text.h"

namespace velmora {

void PrintFieldName(OutputWriter& out, std::string_view name, Indent indent) {
  out.Put(indent == Indent::Field ? "\t\t" : "\t\t\t");
  out.Put(name);
  out.Put('=');
}

void PrintCodedValue(OutputWriter& out, std::string_view name, std::uint32_t value, unsigned width,
                     std::string_view meaning, Indent indent) {
  PrintFieldName(out, name, indent);
  out.Bits(value, width);
  out.Put("  ");
  out.Put(meaning);
  out.Put('\n');
}

bool PrintField(OutputWriter& out, std::string_view name, std::uint32_t value, unsigned width, ValueTable table,
                Indent indent) {
  const ValueText* row = FindRow(table, value);
  if (row == nullptr) return false;
  PrintCodedValue(out, name, value, width, row->text, indent);
  return true;
}

void PrintOctetFields(OutputWriter& out, Octet octet, std::span<const OctetField> fields) {
  for (const OctetField& field : fields)
    PrintField(out, field.name, FieldBits(octet, field.highBit, field.lowBit), field.highBit - field.lowBit + 1,
               field.meanings);
}

void PrintHexMeaning(OutputWriter& out, std::string_view name, std::uint32_t value, std::string_view meaning,
                     Indent indent) {
  PrintFieldName(out, name, indent);
  out.Hex(value);
  out.Put("  ");
  out.Put(meaning);
  out.Put('\n');
}

void PrintHexField(OutputWriter& out, std::string_view name, std::uint32_t value, Indent indent) {
  PrintFieldName(out, name, indent);
  out.Hex(value);
  out.Put('\n');
}

void PrintSpacedHexField(OutputWriter& out, std::string_view name, std::uint32_t value, Indent indent) {
  PrintFieldName(out, name, indent);
  out.SpaceHex(value);
  out.Put('\n');
}

void PrintDecimalField(OutputWriter& out, std::string_view name, std::uint32_t value, Indent indent) {
  PrintFieldName(out, name, indent);
  out.Decimal(value);
  out.Put('\n');
}

void PrintOctetString(OutputWriter& out, std::string_view name, std::span<const std::uint8_t> octets, Indent indent) {
  PrintFieldName(out, name, indent);
  for (const std::uint8_t octet : octets) out.SpaceHex(octet);
  out.Put('\n');
}

void PrintIa5String(OutputWriter& out, std::string_view name, std::span<const std::uint8_t> octets, Indent indent) {
  PrintFieldName(out, name, indent);
  for (const std::uint8_t octet : octets) out.SpaceHex(octet & 0x7F);
  out.Put('\n');
}

}  // namespace velmora
