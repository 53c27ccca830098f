// Display (0x28), Keypad facility (0x2C), Date/time (0x29).
// Display and keypad characters are shown as their IA5 codes, never as
// text, so a trace with control characters still reads on one line.
#include "element_registry.h"
#include "field_text.h"

namespace velmora {

namespace {

void DecodeIa5Element(OutputWriter& out, const ElementOctets& element, std::string_view label) {
  const OctetSpan characters = element.Slice(2);
  if (!characters.empty()) PrintIa5String(out, label, characters);
}

// One Date/time field: its position (octet 3 = 2) and the length from which
// it is shown. Year, month and day are shown for any L of 1 or more, so with
// L of 1 or 2 month and day come from the octets that follow the element.
struct DateTimeField {
  std::string_view name;
  std::size_t position;
  unsigned minimumLength;
};

constexpr DateTimeField kDateTimeFields[] = {
    {"Year", 2, 1}, {"Month", 3, 1}, {"Day", 4, 1}, {"Hour", 5, 4}, {"Minute", 6, 5}, {"Second", 7, 6},
};

}  // namespace

void DecodeDisplay(OutputWriter& out, const ElementOctets& element) {
  DecodeIa5Element(out, element, "Display information(IA5)");
}

void DecodeKeypadFacility(OutputWriter& out, const ElementOctets& element) {
  DecodeIa5Element(out, element, "Keypad facility information(IA5)");
}

void DecodeDateTime(OutputWriter& out, const ElementOctets& element) {
  // Fields behind the frame's last octet do not exist and get no line. An
  // octet of 0x80 or more is no valid date or time; it shows as 128 to 255.
  for (const DateTimeField& field : kDateTimeFields) {
    if (element.Length() < field.minimumLength) break;
    const auto octet = element.FrameAt(field.position);
    if (!octet) break;
    PrintDecimalField(out, field.name, *octet);
  }
}

}  // namespace velmora
