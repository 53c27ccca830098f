#include "q931/text.h"

namespace velmora {

void PrintFieldName(std::string_view name, Indent indent) {
  Out().Put(indent == Indent::Field ? "\t\t" : "\t\t\t");
  Out().Put(name);
  Out().Put('=');
}

void PrintCodedValue(std::string_view name, std::uint32_t value, unsigned width, std::string_view meaning,
                     Indent indent) {
  OutputWriter& out = Out();
  PrintFieldName(name, indent);
  out.Bits(value, width);
  out.Put("  ");
  out.Put(meaning);
  out.Put('\n');
}

bool PrintField(std::string_view name, std::uint32_t value, unsigned width, ValueTable table, Indent indent) {
  const ValueText* row = FindRow(table, value);
  if (row == nullptr) return false;
  PrintCodedValue(name, value, width, row->text, indent);
  return true;
}

void PrintOctetFields(Octet octet, std::span<const OctetField> fields) {
  for (const OctetField& field : fields)
    PrintField(field.name, FieldBits(octet, field.highBit, field.lowBit), field.highBit - field.lowBit + 1,
               field.meanings);
}

void PrintHexMeaning(std::string_view name, std::uint32_t value, std::string_view meaning, Indent indent) {
  OutputWriter& out = Out();
  PrintFieldName(name, indent);
  out.Hex(value);
  out.Put("  ");
  out.Put(meaning);
  out.Put('\n');
}

void PrintHexField(std::string_view name, std::uint32_t value, Indent indent) {
  PrintFieldName(name, indent);
  Out().Hex(value);
  Out().Put('\n');
}

void PrintSpacedHexField(std::string_view name, std::uint32_t value, Indent indent) {
  PrintFieldName(name, indent);
  Out().SpaceHex(value);
  Out().Put('\n');
}

void PrintDecimalField(std::string_view name, std::uint32_t value, Indent indent) {
  PrintFieldName(name, indent);
  Out().Decimal(value);
  Out().Put('\n');
}

void PrintOctetString(std::string_view name, std::span<const std::uint8_t> octets, Indent indent) {
  PrintFieldName(name, indent);
  for (const std::uint8_t octet : octets) Out().SpaceHex(octet);
  Out().Put('\n');
}

void PrintIa5String(std::string_view name, std::span<const std::uint8_t> octets, Indent indent) {
  PrintFieldName(name, indent);
  for (const std::uint8_t octet : octets) Out().SpaceHex(octet & 0x7F);
  Out().Put('\n');
}

}  // namespace velmora
