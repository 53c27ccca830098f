#include "call_report.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "call_tracker.h"
#include "calls_output.h"
#include "cause.h"
#include "decimal_text.h"
#include "lapd.h"
#include "output_writer.h"
#include "report_escape.h"
#include "report_page.h"
#include "scratch_decoder.h"
#include "trace_consumer.h"

namespace velmora {
namespace {

// The page comes in parts, with the input's name behind the first two (the
// title and the heading) and the data behind the third.
static_assert(std::size(kReportPageParts) == 4, "the page has slots for the name twice and the data");

// A chunk of data goes out once it holds this many bytes.
constexpr std::size_t kChunkBytes = 64 * 1024;
// Distinct strings and frame texts remembered, so that each is written once;
// when the memory is full it starts afresh, and a text that comes again is
// written again. Longer strings are written where they are used.
constexpr std::size_t kRememberedStrings = 1 << 16;
constexpr std::size_t kRememberedTexts = 1 << 14;
constexpr std::size_t kLongestRememberedString = 256;
constexpr std::size_t kLongestRememberedText = 1024;

// The cells of a call row that are numbers into the string list (values
// that repeat from call to call); the others are written as they are.
constexpr bool kNumberedCell[kCallColumnCount] = {false, true,  true, false, false, true, true,
                                                  true,  false, true, true,  true,  true};

// Which lifeline is this side: known from the TX/RX of the call's lines.
enum ThisSide : int { kSideUnknown = 0, kSideCaller = 1, kSideCallee = 2 };

// The list item separator: none before the first.
void AppendItemStart(std::string& list) {
  if (!list.empty()) list += ',';
}

struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

// Distinct texts numbered in the order they first appear; the page keeps
// lists in the same order.
class Numbering {
 public:
  explicit Numbering(std::size_t remembered) : remembered_(remembered) {}

  // The number of `text` and whether it is new to the page.
  std::pair<std::uint32_t, bool> Number(std::string_view text) {
    if (const auto found = numbers_.find(text); found != numbers_.end()) return {found->second, false};
    if (numbers_.size() >= remembered_) numbers_.clear();
    numbers_.emplace(std::string(text), next_);
    return {next_++, true};
  }
  // A number for a text that is not kept for reuse.
  std::uint32_t Fresh() { return next_++; }

 private:
  std::unordered_map<std::string, std::uint32_t, TextHash, std::equal_to<>> numbers_;
  std::size_t remembered_;
  std::uint32_t next_ = 0;
};

// The text number of the Q.931 frames decoded so far. Such a frame's text
// depends on its kind (I or UI) and its message's octets alone: not on its
// address, its sequence numbers or the link memory, which words only UA
// frames. So a message seen before in the same kind of frame needs no
// decode. As many are remembered as texts.
class FrameTexts {
 public:
  std::optional<std::uint32_t> Find(const Q931InFrame& q931) {
    const auto found = numbers_.find(Key(q931));
    return found != numbers_.end() ? std::optional(found->second) : std::nullopt;
  }
  void Remember(const Q931InFrame& q931, std::uint32_t number) {
    if (numbers_.size() >= kRememberedTexts) numbers_.clear();
    numbers_.emplace(std::string(Key(q931)), number);
  }

 private:
  std::string_view Key(const Q931InFrame& q931) {
    key_.assign(1, q931.unnumbered ? 'U' : 'I');
    key_.append(reinterpret_cast<const char*>(q931.message.data()), q931.message.size());
    return key_;
  }
  std::unordered_map<std::string, std::uint32_t, TextHash, std::equal_to<>> numbers_;
  std::string key_;
};

std::size_t SharedPrefix(std::string_view a, std::string_view b) {
  std::size_t shared = 0;
  while (shared < a.size() && shared < b.size() && a[shared] == b[shared]) ++shared;
  return shared;
}

class ReportConsumer final : public TraceConsumer {
 public:
  ReportConsumer(OutputWriter& out, LinkMemory& link, ReportInput input)
      : out_(out), link_(link), input_(std::move(input)), decoder_(link), tracker_([this](const CallRecord& call) {
          if (!input_.select || input_.select(call)) AddCall(call);
        }) {
    std::string name;
    AppendHtmlEscaped(name, input_.name);
    out_.Put(kReportPageParts[0]);
    out_.Put(name);
    out_.Put(kReportPageParts[1]);
    out_.Put(name);
    out_.Put(kReportPageParts[2]);
  }

  void Consume(const TracePiece& piece) override {
    bytesRead_ += piece.text.size();
    if (piece.dump != nullptr) return ConsumeDumpMessage(*piece.dump);
    if (!piece.isFrameLine) return;
    ++frames_;
    const OctetSpan frame = piece.frame;
    // Q.931 in I and UI frames, as the call tracker reads it.
    if (const std::optional<Q931InFrame> q931 = FindQ931(frame)) {
      std::optional<std::uint32_t> number = frameTexts_.Find(*q931);
      if (!number) {
        // The real line handler, whose text behind the copied line is what
        // the message file has for the frame.
        const std::string_view decoded = decoder_.Translate(piece.text);
        number = NumberFrameText(decoded.substr(piece.text.size()));
        frameTexts_.Remember(*q931, *number);
      }
      tracker_.Frame(*q931, piece.lineNumber, piece.text, *number);
    } else {
      // Every other frame line goes through the line handler, for the link
      // memory behind the UA wording.
      decoder_.Translate(piece.text);
    }
    if (newStrings_.size() + newTexts_.size() + calls_.size() >= kChunkBytes) WriteChunk({});
  }

  // A debug dump's message, with the text the message file has behind it.
  void ConsumeDumpMessage(const DumpMessage& message) {
    ++frames_;
    const std::uint32_t number = NumberFrameText(decoder_.TranslateDumpMessage(message));
    tracker_.DumpMessage(message.octets, message.wholeFrame, message.firstLine, message.moment, message.direction,
                         number);
    if (newStrings_.size() + newTexts_.size() + calls_.size() >= kChunkBytes) WriteChunk({});
  }

  void Finish() override {
    tracker_.Finish();
    decoder_.SaveLink(link_);
    WriteChunk(Totals());
    out_.Put(kReportPageParts[3]);
  }

 private:
  // A short string as its number, written to the page's list when new;
  // a long one as a JSON string.
  void AppendString(std::string& to, std::string_view text) {
    if (text.size() > kLongestRememberedString) return AppendScriptJsonString(to, text);
    const auto [number, isNew] = strings_.Number(text);
    if (isNew) {
      AppendItemStart(newStrings_);
      AppendScriptJsonString(newStrings_, text);
    }
    AppendDecimal(to, number);
  }

  // A frame's decoded text as the list of its lines, each a string number
  // or a string; the list itself numbered, so that texts that repeat (the
  // same message with the same elements) are written once.
  std::uint32_t NumberFrameText(std::string_view text) {
    lines_ = "[";
    for (bool first = true; !text.empty(); first = false) {
      const std::size_t end = text.find('\n');
      if (!first) lines_ += ',';
      AppendString(lines_, text.substr(0, end));
      text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    lines_ += ']';
    std::uint32_t number = 0;
    bool isNew = true;
    if (lines_.size() <= kLongestRememberedText) {
      std::tie(number, isNew) = texts_.Number(lines_);
    } else {
      number = texts_.Fresh();
    }
    if (isNew) {
      AppendItemStart(newTexts_);
      newTexts_ += lines_;
    }
    return number;
  }

  // A call as [cells..., call reference, this side, answered, unlisted
  // messages, messages]; a message as [name, sender (0 caller, 1 callee),
  // lines since the one before, characters of time shared with the one
  // before, the rest of its time, frame text, TEI (, cause value, meaning)].
  void AddCall(const CallRecord& call) {
    totals_.Count(call);
    FillCallCells(cells_, call);
    AppendItemStart(calls_);
    calls_ += '[';
    for (std::size_t c = 0; c < kCallColumnCount; ++c) {
      if (c > 0) calls_ += ',';
      if (kNumberedCell[c]) {
        AppendString(calls_, cells_[c]);
      } else {
        AppendScriptJsonString(calls_, cells_[c]);
      }
    }
    calls_ += ',';
    AppendDecimal(calls_, call.callReference);
    calls_ += ',';
    AppendDecimal(calls_, call.direction == CallDirection::Outgoing   ? kSideCaller
                          : call.direction == CallDirection::Incoming ? kSideCallee
                                                                      : kSideUnknown);
    calls_ += call.Answered() ? ",1," : ",0,";
    AppendDecimal(calls_, call.unlistedMessages);
    calls_ += ",[";
    std::uint64_t line = call.firstLine;
    std::string_view time;
    for (const CallMessage& message : call.messages) {
      if (&message != &call.messages.front()) calls_ += ',';
      calls_ += '[';
      AppendMessageName(message.messageType);
      calls_ += message.sender == CallSide::Caller ? ",0," : ",1,";
      AppendDecimal(calls_, message.line - line);
      line = message.line;
      calls_ += ',';
      const std::size_t shared = SharedPrefix(time, message.time.View());
      AppendDecimal(calls_, shared);
      calls_ += ',';
      AppendScriptJsonString(calls_, message.time.View().substr(shared));
      time = message.time.View();
      calls_ += ',';
      AppendDecimal(calls_, message.tag);
      calls_ += ',';
      AppendDecimal(calls_, message.tei);
      if (message.causeValue) {
        calls_ += ',';
        AppendDecimal(calls_, *message.causeValue);
        calls_ += ',';
        AppendString(calls_, CauseValueMeaning(*message.causeValue));
      }
      calls_ += ']';
    }
    calls_ += "]]";
  }

  // The name the message file gives the type; a type without one as its
  // octet, "0x62".
  void AppendMessageName(Octet messageType) {
    const std::string_view name = MessageName(messageType);
    if (!name.empty()) return AppendString(calls_, name);
    const writer_tables::OctetHexText& hex = writer_tables::kOctetHex[messageType];
    AppendString(calls_, std::string_view(hex.text.data() + 1, hex.size - 1u));  // without the leading blank
  }

  // The header's numbers, the causes by count and the table's columns.
  std::string Totals() {
    std::string totals = "{\"size\":";
    AppendDecimal(totals, input_.size.value_or(bytesRead_));
    const std::pair<std::string_view, std::uint64_t> counts[] = {
        {",\"frames\":", frames_},
        {",\"calls\":", totals_.calls},
        {",\"answered\":", totals_.answered},
        {",\"clearedByCaller\":", totals_.clearedByCaller},
        {",\"clearedByCallee\":", totals_.clearedByCallee},
        {",\"outsideCalls\":", tracker_.MessagesOutsideCalls()},
    };
    for (const auto& [key, count] : counts) {
      totals += key;
      AppendDecimal(totals, count);
    }
    totals += ",\"causes\":[";
    for (const std::uint8_t value : totals_.CausesByCount()) {
      if (totals.back() != '[') totals += ',';
      totals += '[';
      AppendDecimal(totals, value);
      totals += ',';
      AppendDecimal(totals, totals_.causes[value]);
      totals += ',';
      AppendString(totals, CauseValueMeaning(value));
      totals += ']';
    }
    totals += "],\"columns\":[";
    for (const CallTableColumn& column : kCallTableColumns) {
      if (totals.back() != '[') totals += ',';
      totals += '[';
      AppendScriptJsonString(totals, column.heading);
      totals += column.right ? ",1]" : ",0]";
    }
    totals += "]}";
    return totals;
  }

  // New strings, new frame texts and the calls since the last chunk, in
  // that order: the page reads the chunks in order, so everything a call
  // refers to is known when it reads the call. The last chunk has the totals.
  void WriteChunk(std::string_view totals) {
    out_.Put(R"(<script type="application/json" class="velmora-data">{"s":[)");
    out_.Put(newStrings_);
    out_.Put(R"(],"t":[)");
    out_.Put(newTexts_);
    out_.Put(R"(],"c":[)");
    out_.Put(calls_);
    out_.Put(']');
    if (!totals.empty()) {
      out_.Put(R"(,"totals":)");
      out_.Put(totals);
    }
    out_.Put("}</script>\n");
    newStrings_.clear();
    newTexts_.clear();
    calls_.clear();
  }

  OutputWriter& out_;
  LinkMemory& link_;
  ReportInput input_;
  ScratchDecoder decoder_;
  CallTracker tracker_;
  CallCells cells_;
  CallTotals totals_;
  Numbering strings_{kRememberedStrings};
  Numbering texts_{kRememberedTexts};
  FrameTexts frameTexts_;
  std::string newStrings_, newTexts_, calls_;  // the chunk under way
  std::string lines_;                          // the frame text under way
  std::uint64_t bytesRead_ = 0;
  std::uint64_t frames_ = 0;
};

}  // namespace

TraceConsumerFactory CallReport(ReportInput input) {
  return [input = std::move(input)](OutputWriter& out, LinkMemory& link) {
    return std::make_unique<ReportConsumer>(out, link, input);
  };
}

}  // namespace velmora
