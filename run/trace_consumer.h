#pragma once
// What a run can make of its input instead of the message file: a capture of
// its frames, a call summary, a report. The run checks and opens both files
// and reads the input as it does for the message file; a consumer sees every
// piece of the input and writes its own output through the run's writer.
#include <cstdint>
#include <string_view>
#include <vector>

#include "frame_line_facts.h"
#include "octet.h"
#include "output_writer.h"

namespace velmora {

// A message that the lines of a debug dump carry (a PBX's PRI-stack debug),
// handed on whole once its last line has been read.
struct DumpMessage {
  OctetSpan octets;         // valid until the dump's next message
  bool wholeFrame = false;  // from the LAPD address on; else from the protocol discriminator on
  FrameDirection direction = FrameDirection::Unknown;
  std::uint64_t firstLine = 0;  // its first input line, from 1
  std::string_view moment;      // the date and time its first line writes; may be empty
  bool cutOff = false;          // fewer octets than its header announced
  // False for a whole frame put together from a dump's words without its
  // C/R bit (which then reads 0): the detail level and JSON say it is unknown.
  bool commandResponseKnown = true;
};

// One piece of the input as the run read it: a line, or a part of at most
// 2047 characters of a longer one; or, for a debug dump, a message behind
// its last line (no text, `dump` set; `frame` its octets when it is a whole
// frame, and then `isFrameLine` too).
struct TracePiece {
  std::string_view text;
  std::uint64_t lineNumber;  // the input line it belongs to, from 1
  bool isFrameLine;
  OctetSpan frame;  // a frame line's octets as the scanner reads them; empty otherwise
  const DumpMessage* dump = nullptr;
};

// The frame a filter selects a dump's message by: the whole frame, or for a
// Q.931 message alone an I frame of SAPI 0 and TEI 0 around it, put
// together in `room` (its address is not in the dump; a PRI's TEI is 0).
// Never shown: only the filters read it.
inline OctetSpan FrameForSelection(const DumpMessage& message, std::vector<Octet>& room) {
  if (message.wholeFrame) return message.octets;
  room.assign({0x00, 0x01, 0x00, 0x00});
  room.insert(room.end(), message.octets.begin(), message.octets.end());
  return room;
}

class TraceConsumer {
 public:
  virtual ~TraceConsumer() = default;
  // Every piece, in input order. The piece's text and octets live only
  // during the call.
  virtual void Consume(const TracePiece& piece) = 0;
  // The input has ended, or the run stops after a failed write.
  virtual void Finish() = 0;
};

}  // namespace velmora
