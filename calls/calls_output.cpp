#include "calls_output.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "call_tracker.h"
#include "cause.h"
#include "common_tables.h"
#include "decimal_text.h"
#include "escaped_text.h"
#include "octet.h"

namespace velmora {
namespace {

constexpr std::string_view kCsvHeader =
    "first_line,tei,direction,calling,called,bearer,channel,answered,duration_s,cleared_by,cleared_by_side,cause_value,"
    "cause_text\n";

std::string_view DirectionText(CallDirection direction) {
  switch (direction) {
    case CallDirection::Outgoing:
      return "outgoing";
    case CallDirection::Incoming:
      return "incoming";
    case CallDirection::Unknown:
      break;
  }
  return {};
}

std::string_view SideText(std::optional<CallSide> side) {
  if (!side) return {};
  return *side == CallSide::Caller ? "caller" : "callee";
}

// Which side sent the first clearing message, by its frame's C/R bit.
std::string_view ClearingSideText(std::optional<bool> byNetwork) {
  if (!byNetwork) return {};
  return *byNetwork ? "network" : "user";
}

std::string_view BearerText(const CallRecord& call) {
  if (!call.transferCapability) return {};
  const ValueText* row = FindRow(kInformationTransferCapability, *call.transferCapability);
  return row != nullptr ? row->text : std::string_view();
}

// Seconds from microseconds, without trailing zeros: "6.363", "12".
void AppendSeconds(std::string& to, std::int64_t microseconds) {
  AppendDecimal(to, static_cast<std::uint64_t>(microseconds / 1000000));
  const std::int64_t fraction = microseconds % 1000000;
  if (fraction == 0) return;
  to += '.';
  AppendDecimal(to, static_cast<std::uint64_t>(fraction), 6);
  while (to.back() == '0') to.pop_back();
}

// IA5 digits as characters; a control character as \u00XX. In JSON a quote
// and a backslash are escaped too.
void AppendDigits(std::string& to, std::string_view digits, bool json) {
  AppendEscaped(to, digits, json ? kJsonEscapes : kControlEscapes);
}

class CallsWriter {
 public:
  CallsWriter(OutputWriter& out, CallsForm form) : out_(out), form_(form) {}

  void Begin() {
    if (form_ == CallsForm::Table) {
      for (const CallTableColumn& column : kCallTableColumns) TableCell(column.heading);
      EndTableRow();
    } else if (form_ == CallsForm::Csv) {
      out_.Put(kCsvHeader);
    }
  }

  void Call(const CallRecord& call) {
    if (form_ == CallsForm::JsonLines) return JsonLine(call);
    FillCallCells(cells_, call);
    if (form_ == CallsForm::Csv) return CsvRow();
    totals_.Count(call);
    for (std::size_t c = 0; c < kCauseValue; ++c) TableCell(cells_[c]);
    if (!cells_[kCauseText].empty()) {
      cells_[kCauseValue] += ' ';
      cells_[kCauseValue] += cells_[kCauseText];
    }
    TableCell(cells_[kCauseValue]);
    EndTableRow();
  }

  void End(std::uint64_t messagesOutsideCalls) {
    if (form_ != CallsForm::Table) return;
    Total("\ncalls: ", totals_.calls);
    Total("answered: ", totals_.answered);
    Total("cleared by the caller: ", totals_.clearedByCaller);
    Total("cleared by the callee: ", totals_.clearedByCallee);
    Total("messages outside calls: ", messagesOutsideCalls);
    const std::vector<std::uint8_t> order = totals_.CausesByCount();
    if (order.empty()) return;
    out_.Put("cause values, most frequent first:\n");
    for (const std::uint8_t value : order) {
      scratch_ = std::to_string(totals_.causes[value]);
      PutInColumn(scratch_, 7, true);
      out_.Put("  ");
      out_.Decimal(value);
      const std::string_view meaning = CauseValueMeaning(value);
      if (!meaning.empty()) {
        out_.Put(' ');
        out_.Put(meaning);
      }
      out_.Put('\n');
    }
  }

 private:
  void PutInColumn(std::string_view text, std::size_t width, bool right) {
    const std::size_t padding = text.size() < width ? width - text.size() : 0;
    if (right) PutBlanks(padding);
    out_.Put(text);
    if (!right) PutBlanks(padding);
  }
  void PutBlanks(std::size_t count) {
    for (; count > 0; --count) out_.Put(' ');
  }

  // Cells of the table stand two blanks apart; an unknown value shows as
  // "-". The last column, of width 0, is not padded.
  void TableCell(std::string_view text) {
    const CallTableColumn& column = kCallTableColumns[tableColumn_];
    if (tableColumn_ > 0) out_.Put("  ");
    PutInColumn(text.empty() ? "-" : text, column.width, column.right);
    ++tableColumn_;
  }
  void EndTableRow() {
    out_.Put('\n');
    tableColumn_ = 0;
  }

  void Total(std::string_view label, std::uint64_t count) {
    out_.Put(label);
    out_.Decimal(static_cast<std::int64_t>(count));
    out_.Put('\n');
  }

  // A cell holding a comma or a quote stands in quotes, its quotes doubled.
  void CsvRow() {
    for (std::size_t c = 0; c < kCallColumnCount; ++c) {
      if (c > 0) out_.Put(',');
      const std::string_view cell = cells_[c];
      if (cell.find_first_of(",\"") == std::string_view::npos) {
        out_.Put(cell);
        continue;
      }
      out_.Put('"');
      for (const char ch : cell) {
        if (ch == '"') out_.Put('"');
        out_.Put(ch);
      }
      out_.Put('"');
    }
    out_.Put('\n');
  }

  // Each member is written with what stands before its value: the key, and
  // the "{" or "," before it.
  void JsonString(std::string_view member, std::string_view text, bool known) {
    out_.Put(member);
    if (!known) return out_.Put("null");
    out_.Put('"');
    out_.Put(text);
    out_.Put('"');
  }
  void JsonNumber(std::string_view member, std::optional<std::uint64_t> value) {
    out_.Put(member);
    if (value) {
      out_.Decimal(static_cast<std::int64_t>(*value));
    } else {
      out_.Put("null");
    }
  }
  void JsonDigits(std::string_view member, const std::optional<std::string>& digits) {
    if (!digits) return JsonString(member, "", false);
    scratch_.clear();
    AppendDigits(scratch_, *digits, true);
    JsonString(member, scratch_, true);
  }
  void JsonMoment(std::string_view member, const CallMessage* message) {
    const bool known = message != nullptr && !message->time.Empty();
    JsonString(member, known ? message->time.View() : std::string_view(), known);
  }

  void JsonLine(const CallRecord& call) {
    JsonNumber(R"({"call_ref":)", call.callReference);
    JsonNumber(R"(,"tei":)", call.tei);
    JsonNumber(R"(,"first_line":)", call.firstLine);
    JsonNumber(R"(,"last_line":)", call.lastLine);
    const std::string_view direction = DirectionText(call.direction);
    JsonString(R"(,"direction":)", direction, !direction.empty());
    JsonDigits(R"(,"calling":)", call.calling);
    JsonDigits(R"(,"called":)", call.called);
    const std::string_view bearer = BearerText(call);
    JsonString(R"(,"bearer":)", bearer, !bearer.empty());
    JsonString(R"(,"channel":)", call.channel.value_or(""), call.channel.has_value());
    out_.Put(R"(,"messages":[)");
    for (std::size_t i = 0; i < call.messages.size(); ++i) {
      out_.Put(i > 0 ? R"(,")" : R"(")");
      // A type the dispatch does not know is named by its octet.
      const std::string_view name = MessageName(call.messages[i].messageType);
      if (name.empty()) {
        out_.Hex(call.messages[i].messageType);
      } else {
        out_.Put(name);
      }
      out_.Put('"');
    }
    out_.Put(call.Answered() ? R"(],"answered":true)" : R"(],"answered":false)");
    const std::string_view side = SideText(call.ClearedBy());
    JsonString(R"(,"cleared_by":)", side, !side.empty());
    const std::string_view clearingSide = ClearingSideText(call.ClearedByNetwork());
    JsonString(R"(,"cleared_by_side":)", clearingSide, !clearingSide.empty());
    JsonNumber(R"(,"cause_value":)", call.causeValue);
    JsonNumber(R"(,"cause_location":)", call.causeLocation);
    const std::string_view meaning = call.causeValue ? CauseValueMeaning(*call.causeValue) : std::string_view();
    JsonString(R"(,"cause_text":)", meaning, !meaning.empty());
    JsonMoment(R"(,"start":)", &call.messages.front());
    JsonMoment(R"(,"connect":)", call.connect ? &*call.connect : nullptr);
    JsonMoment(R"(,"end":)", &call.last);
    out_.Put(R"(,"duration_s":)");
    scratch_.clear();
    if (const auto duration = call.DurationMicroseconds()) AppendSeconds(scratch_, *duration);
    out_.Put(scratch_.empty() ? std::string_view("null") : std::string_view(scratch_));
    out_.Put("}\n");
  }

  OutputWriter& out_;
  CallsForm form_;
  CallCells cells_;
  CallTotals totals_;
  std::string scratch_;
  std::size_t tableColumn_ = 0;
};

class CallsConsumer final : public TraceConsumer {
 public:
  CallsConsumer(OutputWriter& out, CallsForm form, CallSelection select)
      : writer_(out, form), select_(std::move(select)), tracker_([this](const CallRecord& call) {
          if (!select_ || select_(call)) writer_.Call(call);
        }) {
    writer_.Begin();
  }

  void Consume(const TracePiece& piece) override {
    if (piece.dump != nullptr) {
      const velmora::DumpMessage& message = *piece.dump;
      tracker_.DumpMessage(message.octets, message.wholeFrame, message.firstLine, message.moment, message.direction);
    } else if (piece.isFrameLine) {
      tracker_.Frame(piece.frame, piece.lineNumber, piece.text);
    }
  }

  void Finish() override {
    tracker_.Finish();
    writer_.End(tracker_.MessagesOutsideCalls());
  }

 private:
  CallsWriter writer_;
  CallSelection select_;
  CallTracker tracker_;
};

}  // namespace

std::unique_ptr<TraceConsumer> MakeCallsConsumer(OutputWriter& out, CallsForm form, CallSelection select) {
  return std::make_unique<CallsConsumer>(out, form, std::move(select));
}

void FillCallCells(CallCells& cells, const CallRecord& call) {
  for (std::string& cell : cells) cell.clear();
  cells[kFirstLine] += std::to_string(call.firstLine);
  if (call.tei) cells[kTei] += std::to_string(*call.tei);
  cells[kDirection] += DirectionText(call.direction);
  if (call.calling) AppendDigits(cells[kCalling], *call.calling, false);
  if (call.called) AppendDigits(cells[kCalled], *call.called, false);
  cells[kBearer] += BearerText(call);
  if (call.channel) cells[kChannel] += *call.channel;
  cells[kAnswered] += call.Answered() ? "yes" : "no";
  if (const auto duration = call.DurationMicroseconds()) AppendSeconds(cells[kDuration], *duration);
  cells[kClearedBy] += SideText(call.ClearedBy());
  cells[kClearedBySide] += ClearingSideText(call.ClearedByNetwork());
  if (call.causeValue) {
    cells[kCauseValue] += std::to_string(*call.causeValue);
    cells[kCauseText] += CauseValueMeaning(*call.causeValue);
  }
}

void CallTotals::Count(const CallRecord& call) {
  ++calls;
  if (call.Answered()) ++answered;
  if (const auto side = call.ClearedBy()) ++(*side == CallSide::Caller ? clearedByCaller : clearedByCallee);
  if (call.causeValue) ++causes[*call.causeValue & 0x7F];
}

std::vector<std::uint8_t> CallTotals::CausesByCount() const {
  std::vector<std::uint8_t> order;
  for (std::size_t value = 0; value < causes.size(); ++value)
    if (causes[value] != 0) order.push_back(static_cast<std::uint8_t>(value));
  std::stable_sort(order.begin(), order.end(),
                   [this](std::uint8_t a, std::uint8_t b) { return causes[a] > causes[b]; });
  return order;
}

}  // namespace velmora
