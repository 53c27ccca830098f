#include "q931/text.h"

namespace velmora {

bool PrintField(std::string_view name, std::uint32_t value, unsigned width, ValueTable table, Indent indent) {
  const ValueText* row = FindRow(table, value);
  if (row == nullptr) return false;
  OutputWriter& out = Out();
  PrintIndent(indent);
  out.Put(name);
  out.Put('=');
  out.Bits(value, width);
  out.Put("  ");
  out.Put(row->text);
  out.Put('\n');
  return true;
}

void PrintHexField(std::string_view name, std::uint32_t value, Indent indent) {
  OutputWriter& out = Out();
  PrintIndent(indent);
  out.Put(name);
  out.Put('=');
  out.Hex(value);
  out.Put('\n');
}

void PrintOctetString(std::string_view name, std::span<const std::uint8_t> octets, Indent indent) {
  OutputWriter& out = Out();
  PrintIndent(indent);
  out.Put(name);
  out.Put('=');
  for (const std::uint8_t octet : octets) out.SpaceHex(octet);
  out.Put('\n');
}

}  // namespace velmora
