#pragma once
// Q.931 messages grouped into calls. A call is the run of messages with one
// TEI (from the LAPD address) and one call reference (its length and value
// octets; the flag bit tells which side sent a message, not which call it
// belongs to), from its SETUP, or the first message seen, to RELEASE
// COMPLETE, or the last message before its reference is taken by a new
// SETUP, or the end of the trace. A SETUP broadcast to TEI 127 (in a UI
// frame, on a shared bus) opens a call that the terminals' answers with its
// call reference join, whatever their TEI. The
// tracker turns frames into one record a call and hands each on complete,
// in the order of the calls' first messages.
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "frame_line_facts.h"
#include "lapd.h"
#include "octet.h"

namespace velmora {

// Who sent a message, by the call reference flag: 0 the side that
// originated the call, 1 the side it was sent to.
enum class CallSide : std::uint8_t { Caller, Callee };

// Where a call came from, seen from the trace point: its SETUP sent (TX)
// or received (RX).
enum class CallDirection : std::uint8_t { Unknown, Outgoing, Incoming };

// The date and time of a message's line as read, for durations.
struct MessageMoment {
  std::optional<LineDate> date;
  std::optional<LineTime> time;
};

// One Q.931 message of a call.
struct CallMessage {
  std::uint64_t line = 0;  // 1-based input line
  MomentText time;
  MessageMoment moment;
  CallSide sender = CallSide::Caller;
  FrameDirection direction = FrameDirection::Unknown;  // TX or RX on its line
  unsigned tei = 0;                                    // of the frame's LAPD address
  bool fromNetwork = false;                            // the frame's C/R bit: sent by the network side
  Octet messageType = 0;
  std::optional<std::uint8_t> causeValue;  // of its first Cause element that has one
  std::uint32_t tag = 0;                   // what the tracker's user gave the frame
};

// The message names of the dispatch table; a type it lacks has none (empty).
std::string_view MessageName(Octet messageType);

struct CallRecord {
  std::uint64_t callReference = 0;  // the value, flag bit left out
  std::size_t callReferenceLength = 0;
  // The terminal's TEI; for a broadcast SETUP's call, the TEI of the
  // terminal that answered, none while none has.
  std::optional<unsigned> tei;
  bool broadcast = false;  // opened by a SETUP to TEI 127
  std::uint64_t firstLine = 0;
  std::uint64_t lastLine = 0;
  CallDirection direction = CallDirection::Unknown;
  // IA5 characters (bits 7-1 of each digit octet). The calling number is
  // that of the first Calling party number; the called number that of the
  // first Called party number, and the digits that overlap sending adds in
  // INFORMATION messages.
  std::optional<std::string> calling;
  std::optional<std::string> called;
  // The information transfer capability of the first Bearer capability.
  std::optional<unsigned> transferCapability;
  // The channel the network side assigns: that of the first message from
  // the network side with a Channel identification, else the SETUP's; as
  // "B1", "B2", or the channel numbers of a primary-rate interface ("17",
  // "1,2").
  std::optional<std::string> channel;
  // In order; after kListedMessages the rest are only counted.
  std::vector<CallMessage> messages;
  std::uint64_t unlistedMessages = 0;
  std::optional<CallMessage> connect;  // the first CONNECT
  // The first DISCONNECT, RELEASE or RELEASE COMPLETE of the call itself:
  // in a broadcast SETUP's call, the clearing of the terminals the network
  // did not select (cause 26, or another TEI than the one that answered)
  // belongs to the call but does not clear it.
  std::optional<CallMessage> clearing;
  CallMessage last;
  // From the first Cause element of those clearing messages.
  std::optional<unsigned> causeLocation;
  std::optional<unsigned> causeValue;

  static constexpr std::size_t kListedMessages = 1000;

  bool Answered() const { return connect.has_value(); }
  std::optional<CallSide> ClearedBy() const;
  // The side that sent the first clearing message, by its frame's C/R bit:
  // true the network side, false the user side.
  std::optional<bool> ClearedByNetwork() const;
  // From CONNECT to the first clearing message, in microseconds, when both
  // lines carry a time: by their dates when both have one, else by their
  // times of day, a day added when the clock wrapped past midnight.
  std::optional<std::int64_t> DurationMicroseconds() const;
};

class CallTracker {
 public:
  using CallSink = std::function<void(const CallRecord&)>;

  // Complete calls wait behind a still open earlier call, up to this many:
  // a few MB of records at most, so that the calls views stay within the
  // memory of the message file plus a little.
  static constexpr std::size_t kDefaultWaitingLimit = 2048;

  // `sink` gets each call once it is complete, in the order of the calls'
  // first messages, with one exception that bounds the memory: when more
  // than `waitingLimit` complete calls wait behind open ones, the open
  // calls at the head that a RELEASE has cleared are taken as complete,
  // and if an open call still leads, the waiting calls go out ahead of it.
  explicit CallTracker(CallSink sink, std::size_t waitingLimit = kDefaultWaitingLimit);
  ~CallTracker();
  CallTracker(const CallTracker&) = delete;
  CallTracker& operator=(const CallTracker&) = delete;

  // A frame line: the frame's octets as the scanner reads them, the line's
  // number and its text (for TX/RX, date and time). Only a Q.931 message in
  // an I or UI frame counts; every other frame is passed over. `tag` is kept with
  // the message, for the user to find what it knows of the frame.
  void Frame(OctetSpan frame, std::uint64_t line, std::string_view lineText, std::uint32_t tag = 0);
  // The same for a frame whose Q.931 message the caller has found already.
  void Frame(const Q931InFrame& q931, std::uint64_t line, std::string_view lineText, std::uint32_t tag = 0);

  // A message of a debug dump, with its first line's number, moment and
  // direction: a whole frame read as Frame reads it; a Q.931 message alone
  // taken as one in an I frame of TEI 0 from the user side, its address
  // being unknown (a PRI's TEI is 0).
  void DumpMessage(OctetSpan octets, bool wholeFrame, std::uint64_t line, std::string_view moment,
                   FrameDirection direction, std::uint32_t tag = 0);

  // The end of the trace: every open call is complete.
  void Finish();

  // Messages with the global or the dummy call reference, or one longer
  // than eight octets: no call's.
  std::uint64_t MessagesOutsideCalls() const { return outsideCalls_; }
  std::size_t OpenCalls() const { return open_.size(); }
  std::size_t HeldCalls() const { return queue_.size(); }

 private:
  struct Call;
  struct CallKey {
    std::uint64_t value;
    std::size_t length;
    unsigned tei;
    bool operator==(const CallKey&) const = default;
  };
  struct KeyHash {
    std::size_t operator()(const CallKey& key) const {
      return std::hash<std::uint64_t>()((key.value * 16 + key.length) * 131 + key.tei);
    }
  };

  void Message(const Q931InFrame& q931, std::uint64_t line, const FrameLineFacts& facts, std::uint32_t tag);
  Call& Start(const CallKey& key, std::uint64_t line);
  void Close(Call& call);
  void Deliver();
  void MakeRoom();

  CallSink sink_;
  std::size_t waitingLimit_;
  std::deque<std::unique_ptr<Call>> queue_;  // by first message, open and complete
  std::unordered_map<CallKey, Call*, KeyHash> open_;
  std::vector<std::unique_ptr<Call>> spare_;  // delivered calls, their storage kept for reuse
  std::size_t waiting_ = 0;                   // complete calls in queue_
  std::uint64_t outsideCalls_ = 0;
};

}  // namespace velmora
