#pragma once
// Inputs that are recognised by their first bytes instead of being read as a
// trace log: packet captures, for one. Such a format turns its records into
// the text a trace log would hold (one frame line per record), handed out in
// the run's pieces, so the message file and every consumer work on it as on
// a trace log. The run knows these formats through this interface alone; the
// libraries that read them sit beside the translation core.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "pieces.h"
#include "trace_consumer.h"
#include "translation.h"

namespace velmora {

// How much of an input's start a format may look at to tell itself by: the
// first bytes of a binary file, the first lines of a text. Fewer than a
// piece, so that the line reader can hand them on from a pipe.
inline constexpr std::size_t kRecognitionBytes = kMaxPiece - 1;

enum class Recognition : std::uint8_t {
  No,
  Yes,
  NeedMore,  // the bytes so far begin a signature of the format
};

// The text of a recognised input, in pieces as the line reader cuts a trace
// log: up to and including the first "\n", at most 2047 characters.
class PieceSource {
 public:
  virtual ~PieceSource() = default;
  // The next whole pieces, one or more, valid until the next call; nothing
  // at the end of the input, after a failed read or at a fault.
  virtual std::optional<std::string_view> NextPieces() = 0;
  // Called before every read of the descriptor that may wait for input.
  virtual void SetBeforeRead(std::function<void()> beforeRead) = 0;
  virtual std::uint64_t BytesRead() const = 0;
  // The errno of a read that failed, or 0.
  virtual int Error() const = 0;
  // Once NextPieces() has given nothing: what was wrong with the input (CutOff or
  // Damaged), with the words that say what and where; None at its end. A
  // source that cannot be damaged (a trace log) keeps these.
  virtual InputFault Fault() const { return InputFault::None; }
  virtual const std::string& FaultText() const {
    static const std::string kNone;
    return kNone;
  }
};

// A source, or the reason the input is refused.
struct OpenedInput {
  std::unique_ptr<PieceSource> source;
  std::string refusal;  // when `source` is null
};

// The reader of a debug dump: text whose lines carry messages, each over
// several lines. The run copies every line as for a trace log and decodes
// each message behind its last line.
class MessageDump {
 public:
  virtual ~MessageDump() = default;
  // Each line of the input, without its line end, in order, before it is
  // copied: the message that the lines before it completed, or null.
  virtual const DumpMessage* Before(std::string_view line, std::uint64_t lineNumber) = 0;
  // At the input's end: the message still open, or null.
  virtual const DumpMessage* Finish() = 0;
};

class InputFormat {
 public:
  virtual ~InputFormat() = default;
  // Whether an input that begins with `head` (at most kRecognitionBytes
  // bytes; fewer when the input is that short, or when no format asked for
  // more) is of this format. NeedMore asks for more of the input, while
  // there is more.
  virtual Recognition Recognise(std::string_view head) const = 0;
  // Reads the input's header from `fd` and checks it. `consumed` holds the
  // bytes already read from a descriptor that cannot be read twice (a pipe);
  // they come first. The descriptor stays open and the caller's.
  virtual OpenedInput Open(int fd, std::string_view consumed) const = 0;
  // For a debug dump, its reader; the run then reads the input as lines and
  // Open is not called. Null for a format that Open reads.
  virtual std::unique_ptr<MessageDump> Dump() const { return nullptr; }
};

}  // namespace velmora
