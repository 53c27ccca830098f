#pragma once
// What a decode tells beside its text, for outputs that want the decoded
// frame as data rather than as lines: where each Q.931 information element's
// lines begin in the text, and the element's own octets. The message file
// attaches none; a structured output (structured_frame.h) attaches one to the
// writer a frame is decoded into and splits that writer's text by it, so the
// two outputs share one decode and every meaning text is written once.
#include <cstdint>

#include "octet.h"

namespace velmora {

class FieldSink {
 public:
  virtual ~FieldSink() = default;
  // An element's lines begin at `textOffset` of the writer's output (its
  // BytesWritten()); `octets` are those it occupies that the frame holds,
  // its identifier first.
  virtual void Element(std::uint64_t textOffset, OctetSpan octets) = 0;
};

}  // namespace velmora
