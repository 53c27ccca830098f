#pragma once
// The message file's text of one line at a time, for outputs built from it
// (JSON, the report's frame texts, a filtered message file): decoded into a
// buffer that is read in place and dropped before the next line. Every
// frame line passes through it, so the link memory and the UA wording are
// those of the whole trace.
#include <cstdint>
#include <string>
#include <string_view>

#include "decode_context.h"
#include "lapd.h"
#include "line_scanner.h"
#include "output_writer.h"
#include "trace_consumer.h"
#include "translation.h"

namespace velmora {

class ScratchDecoder {
 public:
  explicit ScratchDecoder(const LinkMemory& link, DetailLevel detail = DetailLevel::Description)
      : sink_(spilled_),
        writer_(sink_, 64 * 1024),
        context_{writer_, link.setupPending ? LinkSetup::Pending : LinkSetup::NotPending} {
    context_.detail = detail;
  }
  ScratchDecoder(const ScratchDecoder&) = delete;
  ScratchDecoder& operator=(const ScratchDecoder&) = delete;

  // Where the next line's text begins in the writer's output, for a field
  // sink's offsets.
  std::uint64_t Offset() const { return writer_.BytesWritten(); }
  OutputWriter& Writer() { return writer_; }

  // The line's copy and, for a frame line, its decoded text, exactly as the
  // message file has them; valid until the next call.
  std::string_view Translate(std::string_view line) {
    writer_.DropBuffered();
    spilled_.clear();
    TranslateTraceLine(context_, line);
    // Only a text longer than the buffer has gone on to the string, in part.
    if (spilled_.empty()) return writer_.Buffered();
    writer_.Flush();
    return spilled_;
  }

  // A debug dump's message decoded as the message file has it behind its
  // last line; valid until the next call.
  std::string_view TranslateDumpMessage(const DumpMessage& message) {
    writer_.DropBuffered();
    spilled_.clear();
    DecodeDumpMessage(context_, message.octets, message.wholeFrame, message.commandResponseKnown);
    if (spilled_.empty()) return writer_.Buffered();
    writer_.Flush();
    return spilled_;
  }

  // The link memory as the lines so far leave it.
  void SaveLink(LinkMemory& link) const { link.setupPending = context_.linkSetup == LinkSetup::Pending; }

 private:
  std::string spilled_;
  StringSink sink_;
  OutputWriter writer_;
  DecodeContext context_;
};

}  // namespace velmora
