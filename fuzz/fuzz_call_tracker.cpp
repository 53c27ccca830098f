// Random frames to the call tracker, to the JSON Lines summary and to the
// report.
//
// Input: byte 0 sets the tracker's waiting limit (1 to 16); then records of
// [control][length][length octets]. Control bits 2-1 give the line's TX, RX
// or neither, bit 3 whether the octets are a whole frame or a Q.931 message
// behind a frame header and the protocol discriminator, bits 8-4 the
// seconds the line's clock moves on; bits 5-4 also choose the header: an
// I-frame from the terminal of TEI 64 or of TEI 65, one from the network to
// TEI 64, or a UI frame broadcast to TEI 127.
//
// Invariants: every Q.931 message with a readable header is in exactly one
// call or counted outside calls; a call's lines run from its first to its
// last message; with the default limit calls come in the order of their
// first messages; with a small one the tracker never holds more than its
// open calls and the limit; every JSON line is an object with exactly the
// summary's keys, in order, and as many lines as calls; the CSV has a row
// a call and the table its rows and totals; in the report, no text of the
// trace ends a data block early or stands in it as markup.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "call_report.h"
#include "call_tracker.h"
#include "calls_output.h"
#include "fuzz_support.h"

namespace {

using velmora::Octet;
using velmora::fuzz::Printable;
using velmora::fuzz::Require;

struct FrameLine {
  std::vector<Octet> frame;
  std::string text;
};

std::vector<FrameLine> ReadFrames(const std::uint8_t* data, std::size_t size) {
  std::vector<FrameLine> lines;
  unsigned seconds = 0;
  for (std::size_t at = 0; at + 2 <= size;) {
    const std::uint8_t control = data[at];
    const std::size_t length = std::min<std::size_t>(data[at + 1], size - at - 2);
    const std::uint8_t* octets = data + at + 2;
    at += 2 + length;
    FrameLine line;
    static const std::vector<Octet> kHeaders[] = {{0x00, 0x81, 0x00, 0x00, 0x08},
                                                  {0x00, 0x83, 0x00, 0x00, 0x08},
                                                  {0x02, 0x81, 0x00, 0x00, 0x08},
                                                  {0x02, 0xFF, 0x03, 0x08}};
    if ((control & 4) == 0) line.frame = kHeaders[(control >> 3) & 3];
    line.frame.insert(line.frame.end(), octets, octets + length);
    seconds = (seconds + (control >> 3)) % 86400;
    char text[64];
    std::snprintf(text, sizeof text, "2026-03-14 %02u:%02u:%02u.250 %s **** HDLC", seconds / 3600, seconds / 60 % 60,
                  seconds % 60,
                  (control & 3) == 1   ? "TX"
                  : (control & 3) == 2 ? "RX"
                                       : "--");
    line.text = text;
    lines.push_back(std::move(line));
  }
  return lines;
}

// Q.931 in an I-frame or a UI frame, and a call reference that leaves room
// for the type.
bool HasReadableHeader(const std::vector<Octet>& frame) {
  if (frame.size() >= 6 && (frame[2] & 1) == 0 && frame[4] == 0x08) return frame[5] + 2U < frame.size() - 4;
  return frame.size() >= 5 && (frame[2] & 0xEF) == 0x03 && frame[3] == 0x08 && frame[4] + 2U < frame.size() - 3;
}

void CheckRecord(const velmora::CallRecord& call) {
  Require(!call.messages.empty(), "a call has a message");
  Require(call.firstLine <= call.lastLine, "first_line <= last_line");
  Require(call.messages.front().line == call.firstLine && call.last.line == call.lastLine,
          "the first and last messages give the lines");
  for (std::size_t i = 1; i < call.messages.size(); ++i)
    Require(call.messages[i - 1].line < call.messages[i].line, "messages in line order");
  Require(call.messages.size() <= velmora::CallRecord::kListedMessages, "the message list is bounded");
}

// A small reader for the one JSON shape the summary writes.
class JsonLine : public velmora::fuzz::JsonCursor {
 public:
  explicit JsonLine(std::string_view text) : JsonCursor(text) {}

  bool Object(std::vector<std::string>& keys) {
    if (!Take('{')) return false;
    do {
      std::string key;
      if (!String(&key) || !Take(':') || !Value()) return false;
      keys.push_back(key);
    } while (Take(','));
    return Take('}') && AtEnd();
  }

 private:
  bool Number() {
    if (!Digits()) return false;
    if (!Take('.')) return true;
    return Digits() && text_[at_ - 1] != '0';
  }
  bool Value() {
    if (Word("null") || Word("true") || Word("false")) return true;
    if (Sees('"')) return String(nullptr);
    if (!Take('[')) return Number();
    if (Take(']')) return true;
    do {
      if (!String(nullptr)) return false;
    } while (Take(','));
    return Take(']');
  }
};

const std::vector<std::string> kKeys = {"call_ref",   "tei",        "first_line",      "last_line",   "direction",
                                        "calling",    "called",     "bearer",          "channel",     "messages",
                                        "answered",   "cleared_by", "cleared_by_side", "cause_value", "cause_location",
                                        "cause_text", "start",      "connect",         "end",         "duration_s"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const std::size_t waitingLimit = 1 + data[0] % 16;
  const std::vector<FrameLine> lines = ReadFrames(data + 1, size - 1);

  // The default limit: calls in the order of their first messages.
  std::vector<std::uint64_t> firstLines;
  std::uint64_t listed = 0;
  velmora::CallTracker ordered([&](const velmora::CallRecord& call) {
    CheckRecord(call);
    Require(firstLines.empty() || firstLines.back() < call.firstLine, "calls in the order of first messages");
    firstLines.push_back(call.firstLine);
    listed += call.messages.size() + call.unlistedMessages;
  });
  // A small limit: the tracker holds no more than its open calls and the limit.
  std::uint64_t listedSmall = 0;
  velmora::CallTracker small(
      [&](const velmora::CallRecord& call) {
        CheckRecord(call);
        listedSmall += call.messages.size() + call.unlistedMessages;
      },
      waitingLimit);
  std::uint64_t messages = 0;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const velmora::OctetSpan frame(lines[i].frame);
    ordered.Frame(frame, i + 1, lines[i].text);
    small.Frame(frame, i + 1, lines[i].text);
    Require(small.HeldCalls() <= small.OpenCalls() + waitingLimit, "held calls bounded by open calls and the limit");
    if (HasReadableHeader(lines[i].frame)) ++messages;
  }
  ordered.Finish();
  small.Finish();
  Require(listed + ordered.MessagesOutsideCalls() == messages, "every message in one call or outside calls");
  Require(listedSmall + small.MessagesOutsideCalls() == messages, "the same with a small limit");
  Require(small.HeldCalls() == 0 && small.OpenCalls() == 0, "nothing held after the end");

  const auto summary = [&](velmora::CallsForm form) {
    return velmora::fuzz::Capture([&](velmora::OutputWriter& out) {
      const auto consumer = velmora::MakeCallsConsumer(out, form);
      for (std::size_t i = 0; i < lines.size(); ++i)
        consumer->Consume({lines[i].text, i + 1, true, velmora::OctetSpan(lines[i].frame)});
      consumer->Finish();
    });
  };
  // A header row and a row a call; a control character never breaks a row.
  const std::string csv = summary(velmora::CallsForm::Csv);
  Require(static_cast<std::size_t>(std::count(csv.begin(), csv.end(), '\n')) == firstLines.size() + 1,
          "a CSV row a call behind the header row", [&] { return Printable(csv); });
  // The heading, a row a call, a blank line, five totals and the causes.
  const std::string table = summary(velmora::CallsForm::Table);
  Require(static_cast<std::size_t>(std::count(table.begin(), table.end(), '\n')) >= firstLines.size() + 7,
          "the table's rows and totals", [&] { return Printable(table); });

  const std::string json = summary(velmora::CallsForm::JsonLines);
  std::size_t objects = 0;
  for (std::size_t start = 0; start < json.size(); ++objects) {
    const std::size_t end = json.find('\n', start);
    Require(end != std::string::npos, "every JSON line ends with a line end");
    const std::string_view line = std::string_view(json).substr(start, end - start);
    std::vector<std::string> keys;
    Require(JsonLine(line).Object(keys) && keys == kKeys, "a JSON object with exactly the summary's keys",
            [&] { return Printable(line); });
    start = end + 1;
  }
  Require(objects == firstLines.size(), "one JSON line a call");

  // The report, of the frames written out as frame lines that the line
  // handler decodes.
  const std::string report = velmora::fuzz::Capture([&](velmora::OutputWriter& out) {
    velmora::LinkMemory link;
    const auto consumer = velmora::CallReport({"</script>", std::nullopt})(out, link);
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      text = lines[i].text + ":" + std::to_string(lines[i].frame.size()) + "  |";
      for (const Octet octet : lines[i].frame) {
        char cell[6];
        std::snprintf(cell, sizeof cell, " 0x%02x", octet);
        text += cell;
      }
      text.resize(std::max<std::size_t>(text.size(), 84), ' ');
      text += '\n';
      consumer->Consume({text, i + 1, true, velmora::OctetSpan(lines[i].frame)});
    }
    consumer->Finish();
  });
  constexpr std::string_view kDataStart = R"(<script type="application/json" class="velmora-data">)";
  std::size_t blocks = 0;
  for (std::size_t at = report.find(kDataStart); at != std::string::npos; at = report.find(kDataStart, at), ++blocks) {
    at += kDataStart.size();
    const std::size_t end = report.find("</script>", at);
    Require(end != std::string::npos && end > at && report[end - 1] == '}', "a data block ends with its object");
    const std::string_view block = std::string_view(report).substr(at, end - at);
    Require(block.find_first_of("<>&") == std::string_view::npos, "no markup in a data block",
            [&] { return Printable(block); });
  }
  Require(blocks >= 1 && report.ends_with("</html>\n"), "the report's data blocks and its end");
  return 0;
}
