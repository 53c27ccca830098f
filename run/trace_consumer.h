#pragma once
// What a run can make of its input instead of the message file: a capture of
// its frames, a call summary, a report. The run checks and opens both files
// and reads the input as it does for the message file; a consumer sees every
// piece of the input and writes its own output through the run's writer.
#include <cstdint>
#include <string_view>

#include "octet.h"
#include "output_writer.h"

namespace velmora {

// One piece of the input as the run read it: a line, or a part of at most
// 2047 characters of a longer one.
struct TracePiece {
  std::string_view text;
  std::uint64_t lineNumber;  // the input line it belongs to, from 1
  bool isFrameLine;
  OctetSpan frame;  // a frame line's octets as the scanner reads them; empty otherwise
};

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
