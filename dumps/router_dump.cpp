#include "router_dump.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <unordered_map>

#include "dump_text.h"
#include "q931_message.h"

namespace velmora {
namespace {

using dump_text::HexValue;
using dump_text::kLongestMessage;

// The router's names of message types where they are not the Q.931 name
// with blanks for underscores.
struct NamedOctet {
  std::string_view name;
  Octet value;
};
constexpr NamedOctet kMessageAbbreviations[] = {
    {"CALL_PROC", 0x02},   {"SETUP_ACK", 0x0D}, {"CONNECT_ACK", 0x0F}, {"RELEASE_COMP", 0x5A}, {"STATUS_ENQ", 0x75},
    {"RESTART_ACK", 0x4E}, {"INFO", 0x7B},      {"USER_INFO", 0x20},   {"SUSPEND_ACK", 0x2D},  {"RESUME_ACK", 0x2E},
};

// The router's names of information elements.
constexpr NamedOctet kElementNames[] = {
    {"Bearer Capability", 0x04},
    {"Cause", 0x08},
    {"Call Identity", 0x10},
    {"Call State", 0x14},
    {"Channel ID", 0x18},
    {"Facility", 0x1C},
    {"Progress Ind", 0x1E},
    {"Network-Specific Facilities", 0x20},
    {"Notification Ind", 0x27},
    {"Display", 0x28},
    {"Date/Time", 0x29},
    {"Keypad Facility", 0x2C},
    {"Signal", 0x34},
    {"Connected Number", 0x4C},
    {"Connected SubAddr", 0x4D},
    {"Calling Party Number", 0x6C},
    {"Calling Party SubAddr", 0x6D},
    {"Called Party Number", 0x70},
    {"Called Party SubAddr", 0x71},
    {"Redirecting Number", 0x74},
    {"Transit Network Select", 0x78},
    {"Restart Indicator", 0x79},
    {"Low Layer Compat", 0x7C},
    {"High Layer Compat", 0x7D},
    {"User-User", 0x7E},
};

bool SameLetters(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return (x | 0x20) == (y | 0x20); });
}

// A message type by the router's name for it: an abbreviation, or the
// Q.931 (or Q.932) name with underscores for blanks, in any case.
std::optional<Octet> MessageTypeNamed(std::string_view name) {
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
  };
  static const std::unordered_map<std::string, Octet, Hash, std::equal_to<>> kTypes = [] {
    std::unordered_map<std::string, Octet, Hash, std::equal_to<>> types;
    for (unsigned type = 0; type < 256; ++type) {
      std::string key(DetailMessageName(static_cast<Octet>(type)));
      if (key.empty()) continue;
      std::replace(key.begin(), key.end(), ' ', '_');
      types.emplace(std::move(key), static_cast<Octet>(type));
    }
    for (const NamedOctet& row : kMessageAbbreviations) types.emplace(std::string(row.name), row.value);
    return types;
  }();
  std::array<char, 32> upper{};
  if (name.size() > upper.size()) return std::nullopt;
  std::transform(name.begin(), name.end(), upper.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  const auto found = kTypes.find(std::string_view(upper.data(), name.size()));
  return found != kTypes.end() ? std::optional(found->second) : std::nullopt;
}

std::optional<Octet> ElementNamed(std::string_view name) {
  for (const NamedOctet& row : kElementNames)
    if (SameLetters(row.name, name)) return row.value;
  return std::nullopt;
}

// The octets of the hexadecimal digits at the start of `text` (an odd
// count takes a leading 0), into `to` at most up to a message's size.
// Returns the number of digits read.
std::size_t AppendHex(std::string_view text, std::vector<Octet>& to) {
  std::size_t digits = 0;
  while (digits < text.size() && HexValue(text[digits]) >= 0) ++digits;
  std::size_t at = digits % 2;
  if (at == 1 && to.size() < kLongestMessage) to.push_back(static_cast<Octet>(HexValue(text[0])));
  for (; at + 1 < digits; at += 2)
    if (to.size() < kLongestMessage) to.push_back(static_cast<Octet>(HexValue(text[at]) * 16 + HexValue(text[at + 1])));
  return digits;
}

// The direction arrow of a message line and what stands behind it.
struct Arrow {
  FrameDirection direction;
  std::size_t at;  // where the arrow begins
  std::string_view rest;
};
// Found by their '>' or '<', which few other characters of a line are.
std::optional<Arrow> FindArrow(std::string_view line) {
  for (std::size_t at = dump_text::NextOf(line, 0, '>', '<'); at < line.size();
       at = dump_text::NextOf(line, at + 1, '>', '<')) {
    if (line[at] == '>' && at >= 4 && line.substr(at - 4, 6) == "TX -> ")
      return Arrow{FrameDirection::Sent, at - 4, line.substr(at + 2)};
    if (line[at] == '<' && at >= 3 && line.substr(at - 3, 6) == "RX <- ")
      return Arrow{FrameDirection::Received, at - 3, line.substr(at + 3)};
  }
  return std::nullopt;
}

// Where " i = 0x" stands in a line, found by its "=".
std::size_t ElementValueAt(std::string_view line) {
  for (std::size_t at = line.find('='); at != std::string_view::npos; at = line.find('=', at + 1))
    if (at >= 3 && line.substr(at - 3).starts_with(" i = 0x")) return at - 3;
  return std::string_view::npos;
}

// The "key = value" settings of a message line, read in one pass by their
// "=" (a line holds a few, and few other "="):
// "SETUP pd = 8  callref = 0x0005", "RRr sapi = 0 tei = 89 nr = 1".
struct Settings {
  std::size_t firstKeyAt = std::string_view::npos;  // where the first key begins
  std::string_view pd, callref, sapi, tei, ns, nr, ri, ai, i;
};

Settings ReadSettings(std::string_view rest) {
  struct Key {
    std::string_view name;
    std::string_view Settings::*value;
  };
  static constexpr Key kKeys[] = {
      {"pd", &Settings::pd},   {"callref", &Settings::callref}, {"sapi", &Settings::sapi},
      {"tei", &Settings::tei}, {"ns", &Settings::ns},           {"nr", &Settings::nr},
      {"ri", &Settings::ri},   {"ai", &Settings::ai},           {"i", &Settings::i},
  };
  Settings settings;
  const std::size_t size = rest.size();
  for (std::size_t at = rest.find('='); at != std::string_view::npos; at = rest.find('=', at + 1)) {
    if (at < 2 || rest[at - 1] != ' ' || at + 1 >= size || rest[at + 1] != ' ') continue;
    const std::size_t keyEnd = at - 1;
    std::size_t keyAt = keyEnd;
    while (keyAt > 0 && rest[keyAt - 1] != ' ') --keyAt;
    std::size_t valueAt = at + 2;
    while (valueAt < size && rest[valueAt] == ' ') ++valueAt;
    std::size_t valueEnd = valueAt;
    while (valueEnd < size && rest[valueEnd] != ' ') ++valueEnd;
    const std::string_view key(rest.data() + keyAt, keyEnd - keyAt);
    for (const Key& known : kKeys) {
      if (!std::equal(known.name.begin(), known.name.end(), key.begin(), key.end())) continue;
      settings.*known.value = std::string_view(rest.data() + valueAt, valueEnd - valueAt);
      settings.firstKeyAt = std::min(settings.firstKeyAt, keyAt);
      break;
    }
  }
  return settings;
}

// A decimal setting below `limit`.
std::optional<unsigned> NumberBelow(std::string_view value, unsigned limit) {
  unsigned number = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (error != std::errc() || end == value.data() || number >= limit) return std::nullopt;
  return number;
}

// ---- q921 frames: "INFOc sapi = 0 tei = 89 ns = 0 nr = 0  i = 0x0801...",
// "RRr sapi = 0 tei = 89 nr = 1", "SABMEp sapi = 0 tei = 89",
// "IDREQ ri = 86 ai = 127". The frame's address and control field are put
// together from the words: the kind names the control field's format, its
// last letter the command (c, p) or response (r, f) and the poll/final bit
// (p, f). The C/R bit is not among the words (it depends on which side the
// router is), so it stays 0 and the message says it is unknown.

enum class ControlFormat : std::uint8_t { Information, Supervisory, Unnumbered };
struct LinkFrameWord {
  std::string_view name;
  Octet control;  // with N(S), N(R) and the P/F bit 0
  ControlFormat format;
};
constexpr LinkFrameWord kLinkFrameWords[] = {
    {"INFO", 0x00, ControlFormat::Information}, {"RR", 0x01, ControlFormat::Supervisory},
    {"RNR", 0x05, ControlFormat::Supervisory},  {"REJ", 0x09, ControlFormat::Supervisory},
    {"SABME", 0x6F, ControlFormat::Unnumbered}, {"UA", 0x63, ControlFormat::Unnumbered},
    {"DM", 0x0F, ControlFormat::Unnumbered},    {"DISC", 0x43, ControlFormat::Unnumbered},
    {"FRMR", 0x87, ControlFormat::Unnumbered},  {"XID", 0xAF, ControlFormat::Unnumbered},
    {"UI", 0x03, ControlFormat::Unnumbered},
};
// TEI management messages by the router's words, with their message type.
constexpr NamedOctet kTeiManagementWords[] = {
    {"IDREQ", 1}, {"IDASSN", 2}, {"IDDENY", 3}, {"IDCKRQ", 4}, {"IDCKRP", 5}, {"IDREM", 6}, {"IDVER", 7},
};

constexpr Octet kPollFinalBit = 0x10;

// Whether `word` is `name` with no more than a command/response letter
// behind it; sets `pollFinal` from that letter.
bool IsFrameWord(std::string_view word, std::string_view name, bool& pollFinal) {
  if (!word.starts_with(name) || word.size() > name.size() + 1) return false;
  const char letter = word.size() > name.size() ? word.back() : 'c';
  pollFinal = letter == 'p' || letter == 'f';
  return letter == 'c' || letter == 'r' || pollFinal;
}

// The frame a q921 line tells, into `message`; false when the line is none.
bool ReadLinkFrame(std::string_view rest, const Settings& settings, RouterDumpMessage& message) {
  const std::string_view word = rest.substr(0, rest.find(' '));
  message.wholeFrame = true;
  message.hexRunsOn = false;
  for (const NamedOctet& row : kTeiManagementWords) {
    if (word != row.name) continue;
    const std::optional<unsigned> reference = NumberBelow(settings.ri, 65536);
    const std::optional<unsigned> action = NumberBelow(settings.ai, 128);
    if (!reference || !action) return false;
    // SAPI 63, TEI 127, UI, management entity 0x0F; Ri, the type, Ai with its extension bit.
    message.octets.assign({0xFC, 0xFF, 0x03, 0x0F, static_cast<Octet>(*reference >> 8),
                           static_cast<Octet>(*reference & 0xFF), row.value, static_cast<Octet>(*action << 1 | 1)});
    return true;
  }
  bool pollFinal = false;
  const LinkFrameWord* kind = nullptr;
  for (const LinkFrameWord& row : kLinkFrameWords)
    if (IsFrameWord(word, row.name, pollFinal)) kind = &row;
  const std::optional<unsigned> sapi = NumberBelow(settings.sapi, 64);
  const std::optional<unsigned> tei = NumberBelow(settings.tei, 128);
  if (kind == nullptr || !sapi || !tei) return false;
  message.octets.assign({static_cast<Octet>(*sapi << 2), static_cast<Octet>(*tei << 1 | 1)});
  const std::optional<unsigned> sent = NumberBelow(settings.ns, 128);
  const std::optional<unsigned> received = NumberBelow(settings.nr, 128);
  switch (kind->format) {
    case ControlFormat::Information: {
      if (!sent || !received) return false;
      message.octets.push_back(static_cast<Octet>(*sent << 1));
      message.octets.push_back(static_cast<Octet>(*received << 1 | (pollFinal ? 1 : 0)));
      if (!settings.i.starts_with("0x")) return true;
      const std::string_view hex = settings.i.substr(2);
      // Hex that runs to the line's end may go on in the lines below.
      message.hexRunsOn = AppendHex(hex, message.octets) == hex.size();
      return true;
    }
    case ControlFormat::Supervisory:
      if (!received) return false;
      message.octets.push_back(kind->control);
      message.octets.push_back(static_cast<Octet>(*received << 1 | (pollFinal ? 1 : 0)));
      return true;
    case ControlFormat::Unnumbered:
      message.octets.push_back(static_cast<Octet>(kind->control | (pollFinal ? kPollFinalBit : 0)));
      return true;
  }
  return false;
}

// A line that holds hexadecimal digits alone, after blanks: the rest of a
// wrapped "i = 0x" value.
std::optional<std::string_view> HexGoingOn(std::string_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  while (line.ends_with(' ')) line.remove_suffix(1);
  if (line.empty() || !std::all_of(line.begin(), line.end(), [](char c) { return HexValue(c) >= 0; }))
    return std::nullopt;
  return line;
}

}  // namespace

const DumpMessage* RouterDumpReader::Close() {
  isOpen_ = false;
  dump_text::HandOn(open_, closed_, message_);
  // A frame from a q921 line's words has no C/R bit of its own.
  message_.commandResponseKnown = !closed_.wholeFrame;
  return &message_;
}

const DumpMessage* RouterDumpReader::Before(std::string_view line, std::uint64_t lineNumber) {
  const bool indented = !line.empty() && (line[0] == ' ' || line[0] == '\t');
  // An element line of the open q931 message: "Channel ID i = 0xA98381",
  // "Called Party Number i = 0x81, '12'".
  if (indented && isOpen_ && open_.takesElements) {
    const std::size_t equals = ElementValueAt(line);
    if (equals != std::string_view::npos) {
      std::string_view name = line.substr(0, equals);
      name.remove_prefix(std::min(name.find_first_not_of(" \t"), name.size()));
      if (const std::optional<Octet> identifier = ElementNamed(name)) {
        std::vector<Octet>& contents = contents_;
        contents.clear();
        const std::string_view hex = line.substr(equals + 7);
        const std::size_t digits = AppendHex(hex, contents);
        // Digits given as text behind the hex: ", '1700'".
        std::string_view behind = hex.substr(digits);
        if (behind.starts_with(", '")) {
          behind.remove_prefix(3);
          for (const char c : behind.substr(0, behind.find('\''))) contents.push_back(static_cast<Octet>(c));
        }
        if (open_.octets.size() + contents.size() + 2 <= kLongestMessage) {
          open_.octets.push_back(*identifier);
          open_.octets.push_back(static_cast<Octet>(std::min<std::size_t>(contents.size(), 255)));
          open_.octets.insert(open_.octets.end(), contents.begin(), contents.end());
        }
      }
    }
    return nullptr;
  }
  if (isOpen_ && open_.hexRunsOn) {
    if (const std::optional<std::string_view> hex = HexGoingOn(line)) {
      AppendHex(*hex, open_.octets);
      return nullptr;
    }
    open_.hexRunsOn = false;
  }
  if (indented) return nullptr;  // the router's own decode lines
  const DumpMessage* ended = isOpen_ ? Close() : nullptr;
  const std::optional<Arrow> arrow = FindArrow(line);
  if (!arrow) return ended;
  RouterDumpMessage& message = open_;
  message.octets.clear();
  message.direction = arrow->direction;
  message.firstLine = lineNumber;
  message.takesElements = false;
  message.hexRunsOn = false;
  // The time stamp stands before the interface, with a colon behind it
  // ("*Mar 14 09:15:02.381: ISDN BR0: ..."), which a time read alone lacks.
  std::string_view stamp = line.substr(0, arrow->at);
  stamp = stamp.substr(0, std::min(stamp.find("ISDN"), stamp.size()));
  while (stamp.ends_with(' ')) stamp.remove_suffix(1);
  if (stamp.ends_with(':')) stamp.remove_suffix(1);
  MomentText moment;
  moment.Assign(ReadFrameLineFacts(stamp));
  message.moment.assign(moment.View());
  const std::string_view rest = arrow->rest;
  const Settings settings = ReadSettings(rest);
  // A q931 message line: "SETUP pd = 8  callref = 0x0005" (checked first:
  // Q.931's INFORMATION is "INFO" there).
  if (settings.pd.empty() || settings.callref.empty()) {
    isOpen_ = ReadLinkFrame(rest, settings, message);
    return ended;
  }
  std::string_view name = rest.substr(0, settings.firstKeyAt);
  while (name.ends_with(' ')) name.remove_suffix(1);
  const std::optional<Octet> type = MessageTypeNamed(name);
  const std::optional<unsigned> discriminator = NumberBelow(settings.pd, 256);
  if (!type || !discriminator) return ended;
  message.wholeFrame = false;
  message.octets.push_back(static_cast<Octet>(*discriminator));
  std::vector<Octet>& reference = contents_;
  reference.clear();
  if (settings.callref.starts_with("0x")) AppendHex(settings.callref.substr(2), reference);
  message.octets.push_back(static_cast<Octet>(reference.size()));
  message.octets.insert(message.octets.end(), reference.begin(), reference.end());
  message.octets.push_back(*type);
  message.takesElements = true;
  isOpen_ = true;
  return ended;
}

const DumpMessage* RouterDumpReader::Finish() { return isOpen_ ? Close() : nullptr; }

namespace {

// A q931 message line or a q921 information frame.
bool TellsRouterDump(std::string_view line, std::string_view) {
  const std::optional<Arrow> arrow = FindArrow(line);
  if (!arrow || line.find("ISDN") == std::string_view::npos) return false;
  const Settings settings = ReadSettings(arrow->rest);
  return (!settings.pd.empty() && !settings.callref.empty()) || (!settings.sapi.empty() && !settings.tei.empty());
}

}  // namespace

const InputFormat& RouterDumpFormat() {
  static const dump_text::LineDumpFormat<RouterDumpReader> format(TellsRouterDump);
  return format;
}

}  // namespace velmora
