#include "call_tracker.h"

#include <algorithm>
#include <array>

#include "cause.h"
#include "channel_identification.h"
#include "codesets.h"
#include "common_tables.h"
#include "lapd.h"
#include "party_numbers.h"
#include "q931_message.h"

namespace velmora {
namespace {

constexpr Octet kSetup = 0x05;
constexpr Octet kConnect = 0x07;
constexpr Octet kDisconnect = 0x45;
constexpr Octet kRelease = 0x4D;
constexpr Octet kReleaseComplete = 0x5A;
constexpr Octet kInformation = 0x7B;

constexpr bool IsClearing(Octet messageType) {
  return messageType == kDisconnect || messageType == kRelease || messageType == kReleaseComplete;
}

// Identifiers of the elements a call record reads.
constexpr Octet kBearerCapability = 0x04;
constexpr Octet kCause = 0x08;
constexpr Octet kChannelIdentification = 0x18;
constexpr Octet kCallingPartyNumber = 0x6C;
constexpr Octet kCalledPartyNumber = 0x70;

// Digits kept of a called number that overlap sending keeps adding to.
constexpr std::size_t kLongestNumber = 256;
// Delivered calls whose storage is kept for the calls to come.
constexpr std::size_t kSpareCalls = 64;

void AppendDigits(std::string& text, OctetSpan digits) {
  for (const Octet digit : digits) {
    if (text.size() >= kLongestNumber) return;
    text.push_back(static_cast<char>(digit & 0x7F));
  }
}

// "B1", "B2", or the channel numbers joined by commas.
std::optional<std::string> ChannelText(const ElementOctets& element) {
  const std::optional<IdentifiedChannel> channel = ReadIdentifiedChannel(element);
  if (!channel) return std::nullopt;
  if (channel->basicChannel != 0) return channel->basicChannel == 1 ? "B1" : "B2";
  std::string text;
  for (const Octet number : channel->numbers) {
    if (!text.empty()) text.push_back(',');
    text += std::to_string(number & 0x7F);
  }
  return text;
}

}  // namespace

// The names of the message type table by octet, for a look-up per message.
constexpr auto kNamesByType = [] {
  std::array<std::string_view, 256> names{};
  for (const ValueText& row : kMessageTypeNames) names[row.value] = row.text;
  return names;
}();

std::string_view MessageName(Octet messageType) { return kNamesByType[messageType]; }

std::optional<CallSide> CallRecord::ClearedBy() const {
  if (!clearing) return std::nullopt;
  return clearing->sender;
}

std::optional<bool> CallRecord::ClearedByNetwork() const {
  if (!clearing) return std::nullopt;
  return clearing->fromNetwork;
}

std::optional<std::int64_t> CallRecord::DurationMicroseconds() const {
  if (!connect || !clearing || clearing->line < connect->line) return std::nullopt;
  const MessageMoment& from = connect->moment;
  const MessageMoment& to = clearing->moment;
  if (!from.time || !to.time) return std::nullopt;
  if (from.date && to.date) {
    const std::int64_t duration =
        MicrosecondsSinceEpoch(*to.date, *to.time) - MicrosecondsSinceEpoch(*from.date, *from.time);
    return duration >= 0 ? std::optional(duration) : std::nullopt;
  }
  const std::int64_t duration = MicrosecondsOfDay(*to.time) - MicrosecondsOfDay(*from.time);
  return duration >= 0 ? duration : duration + kMicrosecondsPerDay;
}

struct CallTracker::Call {
  CallRecord record;
  std::vector<CallKey> keys;  // its own, and those of the terminals that joined a broadcast SETUP
  bool complete = false;
  bool released = false;              // a RELEASE was seen
  bool onlySetups = true;             // every message so far is a SETUP
  bool causeTaken = false;            // the clearing cause is read
  bool networkChannelTaken = false;   // a message from the network side named the channel
  std::vector<unsigned> nonSelected;  // terminals a broadcast SETUP's call released with cause 26

  // Back to a fresh call; the message list keeps its storage.
  void Reset() {
    std::vector<CallMessage> messages = std::move(record.messages);
    messages.clear();
    *this = Call{};
    record.messages = std::move(messages);
  }

  // Whether a clearing message of this TEI with this cause clears the call
  // itself, rather than a terminal that a broadcast SETUP did not select:
  // one released with cause 26 (non-selected user clearing), and every
  // clearing message of that terminal after it.
  bool Decides(unsigned tei, std::optional<std::uint8_t> causeValue) {
    constexpr std::uint8_t kNonSelectedUserClearing = 26;
    if (!record.broadcast) return true;
    if (causeValue == kNonSelectedUserClearing) {
      nonSelected.push_back(tei);
      return false;
    }
    if (std::find(nonSelected.begin(), nonSelected.end(), tei) != nonSelected.end()) return false;
    return !record.tei || *record.tei == tei;
  }

  void Add(const Q931Header& header, const Q931InFrame& frame, CallSide sender, std::uint64_t line,
           const FrameLineFacts& facts, std::uint32_t tag);
  struct FirstCause {
    std::optional<unsigned> location;
    std::optional<unsigned> value;
    bool read = false;
  };
  FirstCause ReadElements(const Q931Header& header, CallMessage& message);
};

void CallTracker::Call::Add(const Q931Header& header, const Q931InFrame& frame, CallSide sender, std::uint64_t line,
                            const FrameLineFacts& facts, std::uint32_t tag) {
  CallMessage message;
  message.line = line;
  message.time.Assign(facts);
  message.moment = {facts.date, facts.time};
  message.sender = sender;
  message.direction = facts.direction;
  message.tei = frame.address.tei;
  message.fromNetwork = frame.FromNetwork();
  message.messageType = header.messageType;
  message.tag = tag;
  const FirstCause cause = ReadElements(header, message);

  // The terminal that answers a broadcast SETUP is the call's; a clearing
  // taken before from another terminal was that terminal's own.
  if (record.broadcast && header.messageType == kConnect && sender == CallSide::Callee && !record.tei) {
    record.tei = message.tei;
    if (record.clearing && record.clearing->tei != message.tei) {
      record.clearing.reset();
      record.causeLocation.reset();
      record.causeValue.reset();
      causeTaken = false;
    }
  }
  if (IsClearing(header.messageType) && Decides(message.tei, message.causeValue)) {
    if (!record.clearing) record.clearing = message;
    if (cause.read && !causeTaken) {
      causeTaken = true;
      record.causeLocation = cause.location;
      record.causeValue = cause.value;
    }
  }

  // The first line with TX or RX tells the direction: a message sent here
  // by the caller, or received here from the callee, belongs to an
  // outgoing call.
  if (record.direction == CallDirection::Unknown && facts.direction != FrameDirection::Unknown) {
    const bool sentHere = facts.direction == FrameDirection::Sent;
    record.direction = sentHere == (sender == CallSide::Caller) ? CallDirection::Outgoing : CallDirection::Incoming;
  }
  if (header.messageType == kConnect && !record.connect) record.connect = message;
  released = released || header.messageType == kRelease;
  onlySetups = onlySetups && header.messageType == kSetup;
  record.lastLine = line;
  record.last = message;
  if (record.messages.size() < CallRecord::kListedMessages) {
    record.messages.push_back(message);
  } else {
    ++record.unlistedMessages;
  }
}

// The elements as the message's walk takes them, so that an element counts
// exactly where the message file decodes it; only those of codeset 0 are
// the Q.931 elements the record reads.
CallTracker::Call::FirstCause CallTracker::Call::ReadElements(const Q931Header& header, CallMessage& message) {
  FirstCause first;
  const MessageWalk* walk = FindMessageWalk(header.messageType);
  if (walk == nullptr) return first;
  CodesetShifts shifts;
  ForEachElement(*walk, header.fromMessageType, [&](const ElementEntry* entry, const ElementOctets& element) {
    if (shifts.Next(element.Identifier()) != 0 || entry == nullptr) return;
    switch (entry->identifier) {
      case kBearerCapability:
        if (const std::optional<Octet> octet3 = element.At(2); octet3 && !record.transferCapability)
          record.transferCapability = kTransferCapabilityField.ValueIn(*octet3);
        break;
      case kCause:
        if (const std::optional<CauseReading> cause = ReadCause(element)) {
          if (!message.causeValue && cause->value) message.causeValue = static_cast<std::uint8_t>(*cause->value);
          if (!first.read) first = {cause->location, cause->value, true};
        }
        break;
      case kChannelIdentification:
        // The network side assigns the channel; the SETUP only asks for one.
        if (message.fromNetwork && !networkChannelTaken) {
          networkChannelTaken = true;
          if (std::optional<std::string> channel = ChannelText(element)) record.channel = std::move(channel);
        } else if (header.messageType == kSetup && !record.channel) {
          record.channel = ChannelText(element);
        }
        break;
      case kCallingPartyNumber:
        if (!record.calling) AppendDigits(record.calling.emplace(), PartyNumberDigits(element));
        break;
      case kCalledPartyNumber:
        // Overlap sending adds digits in INFORMATION messages; a repeated
        // SETUP repeats the number.
        if (!record.called || header.messageType == kInformation)
          AppendDigits(record.called ? *record.called : record.called.emplace(), PartyNumberDigits(element));
        break;
      default:
        break;
    }
  });
  return first;
}

CallTracker::CallTracker(CallSink sink, std::size_t waitingLimit)
    : sink_(std::move(sink)), waitingLimit_(waitingLimit) {}

CallTracker::~CallTracker() = default;

void CallTracker::Frame(OctetSpan frame, std::uint64_t line, std::string_view lineText, std::uint32_t tag) {
  if (const std::optional<Q931InFrame> q931 = FindQ931(frame)) Frame(*q931, line, lineText, tag);
}

void CallTracker::Frame(const Q931InFrame& q931, std::uint64_t line, std::string_view lineText, std::uint32_t tag) {
  Message(q931, line, ReadFrameLineFacts(lineText), tag);
}

void CallTracker::DumpMessage(OctetSpan octets, bool wholeFrame, std::uint64_t line, std::string_view moment,
                              FrameDirection direction, std::uint32_t tag) {
  const std::optional<Q931InFrame> q931 =
      wholeFrame ? FindQ931(octets) : std::optional(Q931InFrame{LapdAddress{0, false, 0}, false, octets});
  if (!q931 || q931->message.empty() || !IsQ931Discriminator(q931->message[0])) return;
  FrameLineFacts facts = ReadFrameLineFacts(moment);
  facts.direction = direction;
  Message(*q931, line, facts, tag);
}

void CallTracker::Message(const Q931InFrame& q931, std::uint64_t line, const FrameLineFacts& facts, std::uint32_t tag) {
  const std::optional<Q931Header> header = ReadQ931Header(q931.message);
  if (!header) return;
  const OctetSpan reference = header->callReference;
  const std::optional<std::uint64_t> value = CallReferenceValue(reference);
  if (!value || *value == 0) {  // the dummy, a longer or the global call reference
    ++outsideCalls_;
    return;
  }
  CallKey key{*value, reference.size(), q931.address.tei};
  const CallSide sender = CallReferenceFlag(reference) != 0 ? CallSide::Callee : CallSide::Caller;

  const auto found = open_.find(key);
  Call* call = found != open_.end() ? found->second : nullptr;
  // A terminal's answer to a broadcast SETUP joins its call, and so do the
  // network's messages to that terminal behind it.
  if (call == nullptr && sender == CallSide::Callee && key.tei != kBroadcastTei) {
    const auto broadcast = open_.find({key.value, key.length, kBroadcastTei});
    if (broadcast != open_.end()) {
      call = broadcast->second;
      call->keys.push_back(key);
      open_.emplace(key, call);
    }
  }
  // A SETUP takes its reference for a new call, unless the open call has
  // only SETUPs so far (one repeated when timer T303 expires).
  if (call != nullptr && header->messageType == kSetup && !call->onlySetups) {
    Close(*call);
    call = nullptr;
  }
  if (call == nullptr) call = &Start(key, line);
  call->Add(*header, q931, sender, line, facts, tag);
  // A broadcast SETUP's call ends with the RELEASE COMPLETE of the
  // terminal that answered it, not with those of the others.
  if (header->messageType == kReleaseComplete &&
      (!call->record.broadcast || call->record.tei == std::optional<unsigned>(key.tei)))
    Close(*call);
  Deliver();
}

void CallTracker::Finish() {
  for (const std::unique_ptr<Call>& call : queue_)
    if (!call->complete) Close(*call);
  Deliver();
}

CallTracker::Call& CallTracker::Start(const CallKey& key, std::uint64_t line) {
  std::unique_ptr<Call> call;
  if (spare_.empty()) {
    call = std::make_unique<Call>();
  } else {
    call = std::move(spare_.back());
    spare_.pop_back();
    call->Reset();
  }
  call->record.callReference = key.value;
  call->record.callReferenceLength = key.length;
  call->record.broadcast = key.tei == kBroadcastTei;
  if (!call->record.broadcast) call->record.tei = key.tei;
  call->record.firstLine = line;
  call->keys.assign(1, key);
  Call& started = *call;
  open_.emplace(key, &started);
  queue_.push_back(std::move(call));
  return started;
}

void CallTracker::Close(Call& call) {
  call.complete = true;
  for (const CallKey& key : call.keys) open_.erase(key);
  ++waiting_;
}

void CallTracker::Deliver() {
  const auto deliver = [this](std::unique_ptr<Call>& call) {
    sink_(call->record);
    --waiting_;
    if (spare_.size() < kSpareCalls) spare_.push_back(std::move(call));
  };
  for (;;) {
    while (!queue_.empty() && queue_.front()->complete) {
      deliver(queue_.front());
      queue_.pop_front();
    }
    if (waiting_ <= waitingLimit_) return;
    // Too many wait behind the open call at the head. One that a RELEASE
    // has cleared is complete but for a RELEASE COMPLETE that has not come.
    Call& head = *queue_.front();
    if (!head.released) break;
    Close(head);
  }
  // The head stays open: the waiting calls go out ahead of it.
  std::deque<std::unique_ptr<Call>> stillOpen;
  for (std::unique_ptr<Call>& call : queue_) {
    if (call->complete) {
      deliver(call);
    } else {
      stillOpen.push_back(std::move(call));
    }
  }
  queue_ = std::move(stillOpen);
}

}  // namespace velmora
