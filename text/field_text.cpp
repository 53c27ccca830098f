#include "field_text.h"

namespace velmora {

void PrintFieldName(OutputWriter& out, std::string_view name, Indent indent) { WriteFieldName(out, name, indent); }

void PrintCodedValue(OutputWriter& out, std::string_view name, std::uint32_t value, unsigned width,
                     std::string_view meaning, Indent indent) {
  WriteCodedValue(out, name, value, width, meaning, indent);
}

void PrintFields(OutputWriter& out, Octet octet, std::span<const CodedField> fields, Indent indent) {
  for (const CodedField& field : fields) PrintField(out, field, octet, indent);
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

void PrintIa5Text(OutputWriter& out, std::string_view name, std::span<const std::uint8_t> octets, Indent indent) {
  PrintFieldName(out, name, indent);
  for (const std::uint8_t octet : octets) {
    const unsigned character = octet & 0x7FU;
    if (character >= 0x20 && character < 0x7F) {
      out.Put(static_cast<char>(character));
    } else {
      out.Put('<');
      out.Hex(character);
      out.Put('>');
    }
  }
  out.Put('\n');
}

}  // namespace velmora
