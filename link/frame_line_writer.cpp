#include "frame_line_writer.h"

#include "decimal_text.h"

namespace velmora {

void WriteFrameLine(std::string& line, std::uint64_t number, std::int64_t microsecondsSinceEpoch,
                    FrameDirection direction, OctetSpan octets) {
  const LineMoment moment = MomentOf(microsecondsSinceEpoch);
  line.clear();
  line.reserve(kFrameLineMinimum + 5 * octets.size() + 8);
  AppendDecimal(line, number, 5);
  line += ' ';
  if (moment.date.year < 0) line += '-';
  AppendDecimal(line, static_cast<std::uint64_t>(moment.date.year < 0 ? -moment.date.year : moment.date.year), 4);
  line += '-';
  AppendDecimal(line, static_cast<std::uint64_t>(moment.date.month), 2);
  line += '-';
  AppendDecimal(line, static_cast<std::uint64_t>(moment.date.day), 2);
  line += ' ';
  AppendDecimal(line, static_cast<std::uint64_t>(moment.time.hour), 2);
  line += ':';
  AppendDecimal(line, static_cast<std::uint64_t>(moment.time.minute), 2);
  line += ':';
  AppendDecimal(line, static_cast<std::uint64_t>(moment.time.second), 2);
  line += '.';
  AppendDecimal(line, moment.time.microsecond, 6);
  line += " **** D-CH ";
  // A packet without a direction shows "--" where TX or RX would stand.
  line += direction == FrameDirection::Unknown ? std::string_view("--") : DirectionWord(direction);
  line += " HDLC:";
  AppendDecimal(line, octets.size(), 1);
  line += "  | ";
  for (const Octet octet : octets) {
    const char cell[] = {'0', 'x', kHexDigits[octet >> 4], kHexDigits[octet & 0xF], ' '};
    line.append(cell, sizeof cell);
  }
  if (line.size() < kFrameLineMinimum) line.append(kFrameLineMinimum - line.size(), ' ');
  line += '\n';
}

}  // namespace velmora
