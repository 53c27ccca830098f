#include "trace_filter.h"

#include <algorithm>
#include <cctype>
#include <charconv>

#include "call_tracker.h"
#include "lapd.h"
#include "q931_message.h"
#include "scratch_decoder.h"

namespace velmora {
namespace {

constexpr unsigned kNormalCallClearing = 16;
constexpr unsigned kNormalUnspecified = 31;

std::optional<std::uint64_t> Number(std::string_view text, int base) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

bool SameLetters(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
         });
}

// A message type by its name as the message file prints it (any case), or
// as 0xNN.
std::optional<std::uint64_t> MessageTypeOf(std::string_view text) {
  if (text.size() > 2 && (text.starts_with("0x") || text.starts_with("0X"))) {
    const std::optional<std::uint64_t> value = Number(text.substr(2), 16);
    return value && *value < 256 ? value : std::nullopt;
  }
  for (unsigned type = 0; type < 256; ++type) {
    const std::string_view name = MessageName(static_cast<Octet>(type));
    if (!name.empty() && SameLetters(name, text)) return type;
  }
  return std::nullopt;
}

// The upper bound of each number criterion.
std::uint64_t Largest(FilterKind kind) {
  switch (kind) {
    case FilterKind::Tei:
      return 127;
    case FilterKind::Cause:
      return 127;
    default:
      return UINT64_MAX;
  }
}

}  // namespace

bool TraceFilter::Criterion::Holds(std::uint64_t value) const {
  return std::find(values.begin(), values.end(), value) != values.end();
}

std::optional<std::string> TraceFilter::Add(FilterKind kind, std::string_view text) {
  Criterion criterion{kind, {}};
  if (kind != FilterKind::Failed) {
    std::size_t start = 0;
    for (;;) {
      const std::size_t comma = text.find(',', start);
      const std::string_view item = text.substr(start, comma == std::string_view::npos ? comma : comma - start);
      const std::optional<std::uint64_t> value =
          kind == FilterKind::MessageType ? MessageTypeOf(item) : Number(item, 10);
      if (!value || *value > Largest(kind)) {
        return "'" + std::string(item) + "' is " +
               (kind == FilterKind::MessageType     ? "no message name (as the message file prints it) nor 0xNN"
                : kind == FilterKind::CallReference ? "not a whole number"
                                                    : "not a whole number from 0 to " + std::to_string(Largest(kind)));
      }
      criterion.values.push_back(*value);
      if (comma == std::string_view::npos) break;
      start = comma + 1;
    }
  }
  criteria_.push_back(std::move(criterion));
  return std::nullopt;
}

bool TraceFilter::NeedsCalls() const {
  return std::any_of(criteria_.begin(), criteria_.end(), [](const Criterion& criterion) {
    return criterion.kind == FilterKind::Cause || criterion.kind == FilterKind::Failed;
  });
}

bool TraceFilter::FrameSelected(OctetSpan frame) const {
  const std::optional<Q931InFrame> q931 = FindQ931(frame);
  const std::optional<Q931Header> header = q931 ? ReadQ931Header(q931->message) : std::nullopt;
  for (const Criterion& criterion : criteria_) {
    switch (criterion.kind) {
      case FilterKind::CallReference: {
        const std::optional<std::uint64_t> value = header ? CallReferenceValue(header->callReference) : std::nullopt;
        if (!value || !criterion.Holds(*value)) return false;
        break;
      }
      case FilterKind::Tei:
        if (frame.size() < 2 || !criterion.Holds(AddressOf(frame[0], frame[1]).tei)) return false;
        break;
      case FilterKind::MessageType:
        if (!header || !criterion.Holds(header->messageType)) return false;
        break;
      case FilterKind::Cause:
      case FilterKind::Failed:
        break;
    }
  }
  return true;
}

bool TraceFilter::CallSelected(const CallRecord& call) const {
  const auto anyMessage = [&call](auto&& holds) {
    return std::any_of(call.messages.begin(), call.messages.end(), holds);
  };
  for (const Criterion& criterion : criteria_) {
    switch (criterion.kind) {
      case FilterKind::CallReference:
        if (!criterion.Holds(call.callReference)) return false;
        break;
      case FilterKind::Tei:
        if (!anyMessage([&](const CallMessage& message) { return criterion.Holds(message.tei); })) return false;
        break;
      case FilterKind::MessageType:
        if (!anyMessage([&](const CallMessage& message) { return criterion.Holds(message.messageType); })) return false;
        break;
      case FilterKind::Cause:
        if (!call.causeValue || !criterion.Holds(*call.causeValue)) return false;
        break;
      case FilterKind::Failed: {
        const bool normal = call.causeValue == kNormalCallClearing || call.causeValue == kNormalUnspecified;
        if (call.Answered() && (!call.causeValue || normal)) return false;
        break;
      }
    }
  }
  return true;
}

namespace {

class SelectedFramesConsumer final : public TraceConsumer {
 public:
  SelectedFramesConsumer(OutputWriter& out, LinkMemory& link, FrameSelection select, DetailLevel detail)
      : out_(out), link_(link), select_(std::move(select)), decoder_(link, detail) {}

  void Consume(const TracePiece& piece) override {
    if (piece.dump != nullptr) {
      // A dump's message: its decode, as the message file has it.
      const std::string_view text = decoder_.TranslateDumpMessage(*piece.dump);
      if (select_(FrameForSelection(*piece.dump, room_), piece.dump->firstLine)) out_.Put(text);
      return;
    }
    if (!piece.isFrameLine) return;
    const std::string_view text = decoder_.Translate(piece.text);
    if (select_(piece.frame, piece.lineNumber)) out_.Put(text);
  }
  void Finish() override { decoder_.SaveLink(link_); }

 private:
  OutputWriter& out_;
  LinkMemory& link_;
  FrameSelection select_;
  ScratchDecoder decoder_;
  std::vector<Octet> room_;
};

class FrameFilteredConsumer final : public TraceConsumer {
 public:
  FrameFilteredConsumer(std::unique_ptr<TraceConsumer> inner, FrameSelection select)
      : inner_(std::move(inner)), select_(std::move(select)) {}
  void Consume(const TracePiece& piece) override {
    if (piece.isFrameLine && select_(piece.frame, piece.lineNumber)) inner_->Consume(piece);
  }
  void Finish() override { inner_->Finish(); }

 private:
  std::unique_ptr<TraceConsumer> inner_;
  FrameSelection select_;
};

class SelectedCallLinesConsumer final : public TraceConsumer {
 public:
  SelectedCallLinesConsumer(const TraceFilter& filter, std::vector<std::uint64_t>& lines)
      : lines_(lines), tracker_([this, &filter](const CallRecord& call) {
          if (!filter.CallSelected(call)) return;
          for (const CallMessage& message : call.messages) lines_.push_back(message.line);
        }) {}

  void Consume(const TracePiece& piece) override {
    if (piece.dump != nullptr) {
      const DumpMessage& message = *piece.dump;
      tracker_.DumpMessage(message.octets, message.wholeFrame, message.firstLine, message.moment, message.direction);
    } else if (piece.isFrameLine) {
      tracker_.Frame(piece.frame, piece.lineNumber, piece.text);
    }
  }
  // Calls complete out of order past the tracker's waiting limit.
  void Finish() override {
    tracker_.Finish();
    std::sort(lines_.begin(), lines_.end());
  }

 private:
  std::vector<std::uint64_t>& lines_;
  CallTracker tracker_;
};

}  // namespace

std::unique_ptr<TraceConsumer> MakeSelectedFramesConsumer(OutputWriter& out, LinkMemory& link, FrameSelection select,
                                                          DetailLevel detail) {
  return std::make_unique<SelectedFramesConsumer>(out, link, std::move(select), detail);
}

std::unique_ptr<TraceConsumer> MakeFrameFilteredConsumer(std::unique_ptr<TraceConsumer> inner, FrameSelection select) {
  return std::make_unique<FrameFilteredConsumer>(std::move(inner), std::move(select));
}

std::unique_ptr<TraceConsumer> MakeSelectedCallLinesConsumer(const TraceFilter& filter,
                                                             std::vector<std::uint64_t>& lines) {
  return std::make_unique<SelectedCallLinesConsumer>(filter, lines);
}

}  // namespace velmora
