#include "pbx_dump.h"

#include <array>

#include "dump_text.h"

namespace velmora {
namespace {

using dump_text::HexValue;
using dump_text::kLongestMessage;
using dump_text::NumberAfter;

constexpr std::string_view kDiscriminatorLine = "Protocol Discriminator: Q.931";

// A line's direction mark (">" sent, "<" received, standing alone behind an
// optional prefix) and what stands before and behind it.
struct MarkedLine {
  FrameDirection direction;
  std::string_view prefix;
  std::string_view content;  // behind the mark and its blanks
};

// Whether the ">" or "<" at `at` stands alone: at the start or behind a
// blank, and at the end or before one.
bool Alone(std::string_view line, std::size_t at) {
  return (at == 0 || line[at - 1] == ' ') && (at + 1 == line.size() || line[at + 1] == ' ');
}

MarkedLine Marked(std::string_view line, std::size_t at) {
  std::string_view content = line.substr(at + 1);
  content.remove_prefix(std::min(content.find_first_not_of(" \t"), content.size()));
  return {line[at] == '>' ? FrameDirection::Sent : FrameDirection::Received, line.substr(0, at), content};
}

std::optional<MarkedLine> FindMark(std::string_view line) {
  for (std::size_t at = dump_text::NextOf(line, 0, '>', '<'); at < line.size();
       at = dump_text::NextOf(line, at + 1, '>', '<'))
    if (Alone(line, at)) return Marked(line, at);
  return std::nullopt;
}

// Octets read from one hex line, at most as many as a message holds.
struct HexOctets {
  std::array<Octet, kLongestMessage> octets;
  std::size_t size = 0;
  OctetSpan View() const { return {octets.data(), size}; }
};

// The octets of "[04 03 80 90 a3]" or "[ 02 01 01 3d ]": hex pairs between
// blanks inside brackets. False when the content is no such list.
bool HexList(std::string_view content, HexOctets& hex) {
  hex.size = 0;
  if (!content.starts_with('[')) return false;
  const std::size_t close = content.find(']');
  if (close == std::string_view::npos) return false;
  for (std::size_t at = 1; at < close;) {
    if (content[at] == ' ') {
      ++at;
      continue;
    }
    const int high = HexValue(content[at]);
    const int low = at + 1 < close ? HexValue(content[at + 1]) : -1;
    const bool pair = low >= 0;
    if (high < 0 || (pair && at + 2 < close && content[at + 2] != ' ') ||
        (!pair && content[at + 1] != ' ' && at + 1 < close))
      return false;
    if (hex.size < hex.octets.size()) hex.octets[hex.size++] = static_cast<Octet>(pair ? high * 16 + low : high);
    at += pair ? 2 : 1;
  }
  return hex.size > 0;
}

// "Message type: SETUP (5)": the number in the line's last parentheses.
std::optional<std::uint64_t> MessageTypeOf(std::string_view content) {
  if (!content.starts_with("Message type:") && !content.starts_with("Message Type:")) return std::nullopt;
  const std::size_t open = content.rfind('(');
  if (open == std::string_view::npos) return std::nullopt;
  return NumberAfter(content.substr(open), "(");
}

// "Call Ref: len= 2 (reference 65/0x41) (Originator)", maybe behind
// "TEI=0 ": the call reference's octets, flag in bit 8 of the first.
std::optional<std::vector<Octet>> CallReferenceOf(std::string_view content) {
  const std::size_t at = content.find("Call Ref:");
  if (at == std::string_view::npos || at > 16) return std::nullopt;
  const std::string_view rest = content.substr(at);
  const std::optional<std::uint64_t> length = NumberAfter(rest, "len=");
  if (!length || *length > 15) return std::nullopt;
  const std::uint64_t value = NumberAfter(rest, "(reference").value_or(0);
  const bool toOriginator = rest.find("(Terminator)") != std::string_view::npos ||
                            rest.find("(Sent to originator)") != std::string_view::npos;
  std::vector<Octet> octets(*length);
  for (std::size_t i = 0; i < octets.size(); ++i) {
    const std::size_t shift = 8 * (octets.size() - 1 - i);
    octets[i] = shift < 64 ? static_cast<Octet>(value >> shift) : 0;
  }
  if (!octets.empty()) octets[0] = static_cast<Octet>((octets[0] & 0x7F) | (toOriginator ? 0x80 : 0));
  return octets;
}

void Append(std::vector<Octet>& to, OctetSpan octets) {
  for (const Octet octet : octets)
    if (to.size() < kLongestMessage) to.push_back(octet);
}

}  // namespace

bool PbxDumpReader::Complete() const {
  if (open_.wholeFrame) return true;
  return open_.announced && open_.octets.size() >= *open_.announced;
}

const DumpMessage* PbxDumpReader::Close() {
  isOpen_ = false;
  dump_text::HandOn(open_, closed_, message_);
  // A frame's Q.931 message, from octet 5 on, against the length its
  // header line announces; a message put together, against the same.
  const std::size_t held =
      closed_.wholeFrame ? (closed_.octets.size() > 4 ? closed_.octets.size() - 4 : 0) : closed_.octets.size();
  message_.cutOff = closed_.announced && held < *closed_.announced;
  return &message_;
}

const DumpMessage* PbxDumpReader::Before(std::string_view line, std::uint64_t lineNumber) {
  const std::optional<MarkedLine> marked = FindMark(line);
  const DumpMessage* ended = nullptr;
  if (!marked) {
    // A line between messages (or inside one that is still short of its
    // octets) ends a message that is complete.
    if (isOpen_ && Complete()) ended = Close();
    return ended;
  }
  const std::string_view content = marked->content;
  const bool sameDirection = isOpen_ && open_.direction == marked->direction;
  HexOctets hex;
  const bool isHex = HexList(content, hex);
  const bool rawFrame = isHex && content.starts_with("[ ");
  const bool header = content.starts_with(kDiscriminatorLine);
  // The header of the raw frame just read: its decode by the stack.
  const bool frameHeader = header && sameDirection && open_.wholeFrame && !open_.headerSeen;
  const bool starts = rawFrame || (header && !frameHeader);
  if (isOpen_ && (starts || !sameDirection)) {
    if (starts || Complete()) ended = Close();
  }
  if (starts) {
    isOpen_ = true;
    open_.octets.clear();
    open_.headerSeen = false;
    open_.announced.reset();
    open_.direction = marked->direction;
    open_.firstLine = lineNumber;
    MomentText moment;
    moment.Assign(ReadFrameLineFacts(marked->prefix));
    open_.moment = moment.View();
    open_.wholeFrame = rawFrame;
    if (rawFrame) {
      Append(open_.octets, hex.View());
    } else {
      open_.headerSeen = true;
      open_.announced = NumberAfter(content, "len=");
      open_.octets.push_back(0x08);
    }
    return ended;
  }
  if (!isOpen_ || open_.direction != marked->direction) return ended;
  if (frameHeader) {
    open_.headerSeen = true;
    open_.announced = NumberAfter(content, "len=");
    return ended;
  }
  if (open_.wholeFrame) return ended;  // the frame has every octet already
  if (const std::optional<std::vector<Octet>> reference = CallReferenceOf(content);
      reference && open_.octets.size() == 1) {
    open_.octets.push_back(static_cast<Octet>(reference->size()));
    Append(open_.octets, *reference);
  } else if (const std::optional<std::uint64_t> type = MessageTypeOf(content); type && *type < 256) {
    open_.octets.push_back(static_cast<Octet>(*type));
  } else if (isHex) {
    Append(open_.octets, hex.View());
  }
  return ended;
}

const DumpMessage* PbxDumpReader::Finish() { return isOpen_ ? Close() : nullptr; }

namespace {

// A marked "Protocol Discriminator: Q.931" line, or a marked raw frame.
bool TellsPbxDump(std::string_view line, std::string_view) {
  const std::optional<MarkedLine> marked = FindMark(line);
  HexOctets hex;
  return marked && (marked->content.starts_with(kDiscriminatorLine) ||
                    (marked->content.starts_with("[ ") && HexList(marked->content, hex)));
}

}  // namespace

const InputFormat& PbxDumpFormat() {
  static const dump_text::LineDumpFormat<PbxDumpReader> format(TellsPbxDump);
  return format;
}

}  // namespace velmora
