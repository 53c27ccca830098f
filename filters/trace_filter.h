#pragma once
// What a user asks to see of a trace: frames and calls selected by call
// reference, TEI, message type, clearing cause or failure. Each criterion
// given holds a list of values, any of which will do; criteria given
// together must all hold.
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "octet.h"
#include "output_writer.h"
#include "trace_consumer.h"
#include "translation.h"

namespace velmora {

struct CallRecord;

enum class FilterKind : std::uint8_t {
  CallReference,  // --call N: the call reference value, either flag
  Tei,            // --tei N
  MessageType,    // --message NAME or 0xNN
  Cause,          // --cause N: the call's clearing cause
  Failed,         // --failed: not answered, or cleared with a cause other than 16 and 31
};

class TraceFilter {
 public:
  // Adds a criterion from the text of its option's value ("17,34", "CONNECT");
  // returns what is wrong with the text, or nothing.
  std::optional<std::string> Add(FilterKind kind, std::string_view values);

  bool Empty() const { return criteria_.empty(); }
  // Whether selecting frames needs the calls they belong to (the cause and
  // the failure are a call's), known only once a call has ended.
  bool NeedsCalls() const;

  // A frame line's frame against the criteria a frame answers by itself
  // (call reference, TEI, message type); those of calls are not asked.
  bool FrameSelected(OctetSpan frame) const;
  // A call against every criterion.
  bool CallSelected(const CallRecord& call) const;

 private:
  struct Criterion {
    FilterKind kind;
    std::vector<std::uint64_t> values;
    bool Holds(std::uint64_t value) const;
  };
  std::vector<Criterion> criteria_;
};

// Whether a frame line is kept: its frame, its line number.
using FrameSelection = std::function<bool(OctetSpan frame, std::uint64_t line)>;

// The message file of the selected frame lines alone: each with its decoded
// text, every other line left out. Every frame still passes the LAPD
// decoder, so the link memory and the UA wording are those of the whole
// trace.
std::unique_ptr<TraceConsumer> MakeSelectedFramesConsumer(OutputWriter& out, LinkMemory& link, FrameSelection select,
                                                          DetailLevel detail = DetailLevel::Description);

// Another output's consumer that sees only the selected frame lines (a
// capture of them): the other pieces are not handed on.
std::unique_ptr<TraceConsumer> MakeFrameFilteredConsumer(std::unique_ptr<TraceConsumer> inner, FrameSelection select);

// A first reading of the trace for a selection that needs its calls: the
// lines of the messages of every call that `filter` selects, in order, into
// `lines`. Writes nothing.
std::unique_ptr<TraceConsumer> MakeSelectedCallLinesConsumer(const TraceFilter& filter,
                                                             std::vector<std::uint64_t>& lines);

}  // namespace velmora
