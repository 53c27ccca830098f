#include "hex_dump.h"

#include "dump_text.h"

namespace velmora {
namespace {

using dump_text::HexValue;
using dump_text::kLongestMessage;

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::size_t HexDigitsAt(std::string_view text, std::size_t at) {
  std::size_t end = at;
  while (end < text.size() && HexValue(text[end]) >= 0) ++end;
  return end - at;
}

// The octets of a hex line, appended to `octets` up to a message's size;
// false, with `octets` as it was, when the line is no hex line: after
// blanks and an optional offset, one or more groups of an even number of
// hex digits apart by blanks, up to the line's end or a text column two
// blanks behind them.
bool ReadHexLine(std::string_view line, std::vector<Octet>& octets) {
  const std::size_t before = octets.size();
  std::size_t at = 0;
  while (at < line.size() && IsBlank(line[at])) ++at;
  // An offset: digits with a colon behind them, or four to eight digits
  // followed by a group of two.
  std::size_t digits = HexDigitsAt(line, at);
  if (digits > 0 && at + digits < line.size() && line[at + digits] == ':') {
    at += digits + 1;
  } else if (digits >= 4 && digits <= 8 && at + digits < line.size() && IsBlank(line[at + digits])) {
    std::size_t next = at + digits;
    while (next < line.size() && IsBlank(line[next])) ++next;
    const std::size_t following = HexDigitsAt(line, next);
    if (following == 2 && (next + 2 == line.size() || IsBlank(line[next + 2]))) at = next;
  }
  bool anyGroup = false;
  while (true) {
    std::size_t blanks = 0;
    while (at < line.size() && IsBlank(line[at])) ++at, ++blanks;
    if (at == line.size()) break;
    // A group: pairs of digits up to a blank or the line's end.
    const std::size_t groupAt = at;
    int high = 0;
    int low = 0;
    while (at + 1 < line.size() && (high = HexValue(line[at])) >= 0 && (low = HexValue(line[at + 1])) >= 0) {
      if (octets.size() < kLongestMessage) octets.push_back(static_cast<Octet>(high << 4 | low));
      at += 2;
    }
    if (at == groupAt || (at < line.size() && !IsBlank(line[at]))) {
      // A text column, set off by two blanks behind at least one group.
      if (anyGroup && blanks >= 2) break;
      octets.resize(before);
      return false;
    }
    anyGroup = true;
  }
  if (!anyGroup) octets.resize(before);
  return anyGroup;
}

// A header line: a direction and a time, and no hex line itself (a text
// column may hold both), unless `noHexLine` says the caller knows already.
// A colon right behind the time ("RX 09:15:03.000:") is the header's own.
bool IsHeader(std::string_view line, FrameLineFacts& facts, std::vector<Octet>& scratch, bool noHexLine) {
  if (line.find(':') == std::string_view::npos) return false;  // no time, whatever else
  facts = ReadFrameLineFacts(line.ends_with(':') ? line.substr(0, line.size() - 1) : line);
  if (facts.direction == FrameDirection::Unknown || !facts.time) return false;
  scratch.clear();
  return noHexLine || !ReadHexLine(line, scratch);
}

}  // namespace

const DumpMessage* HexDumpReader::Close() {
  isOpen_ = false;
  if (open_.octets.empty()) return nullptr;  // a header with no hex line behind it
  // The dump does not say how long the frame was: never cut off.
  return dump_text::HandOn(open_, closed_, message_);
}

const DumpMessage* HexDumpReader::Before(std::string_view line, std::uint64_t lineNumber) {
  const bool wasOpen = isOpen_;
  if (wasOpen && ReadHexLine(line, open_.octets)) return nullptr;
  const DumpMessage* ended = wasOpen ? Close() : nullptr;
  FrameLineFacts facts;
  if (!IsHeader(line, facts, scratch_, wasOpen)) return ended;
  isOpen_ = true;
  open_.octets.clear();
  open_.wholeFrame = true;
  open_.direction = facts.direction;
  open_.firstLine = lineNumber;
  MomentText moment;
  moment.Assign(facts);
  open_.moment.assign(moment.View());
  return ended;
}

const DumpMessage* HexDumpReader::Finish() { return isOpen_ ? Close() : nullptr; }

namespace {

// A header line with a hex line right behind it.
bool TellsHexDump(std::string_view line, std::string_view next) {
  std::vector<Octet> octets;
  FrameLineFacts facts;
  return IsHeader(line, facts, octets, false) && ReadHexLine(next, octets);
}

}  // namespace

const InputFormat& HexDumpFormat() {
  static const dump_text::LineDumpFormat<HexDumpReader> format(TellsHexDump);
  return format;
}

}  // namespace velmora
