#pragma once
// The PRI-stack debug of an open-source PBX, read as input: lines marked ">"
// (sent) or "<" (received), after an optional prefix (a span, a logger's
// date and time), that carry Q.931 messages over several lines:
//
//   > Protocol Discriminator: Q.931 (8)  len=10
//   > Call Ref: len= 1 (reference 5/0x5) (Originator)
//   > Message type: SETUP (5)
//   > [a1]
//   > Sending Complete (len= 1)
//
// and, at the most verbose level, the whole LAPD frame first
// ("> [ 00 81 00 00 08 01 05 05 a1 ]") with the stack's address and control
// lines. A message is taken from its raw frame where the dump has one, or
// else put together from its header lines (protocol discriminator, call
// reference length, value and flag, message type) and its element hex
// lines, checked against "len=". The stack's own decode lines, and lines
// between messages, are only copied.
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dump_text.h"
#include "input_format.h"

namespace velmora {

// The format, for TranslationOptions::inputFormats and forcedFormat.
const InputFormat& PbxDumpFormat();

// A message while its lines are read.
struct PbxDumpMessage : dump_text::MessageLines {
  bool headerSeen = false;               // the "Protocol Discriminator" line
  std::optional<std::size_t> announced;  // len=
};

// The reader itself, for tests and fuzzing.
class PbxDumpReader final : public MessageDump {
 public:
  const DumpMessage* Before(std::string_view line, std::uint64_t lineNumber) override;
  const DumpMessage* Finish() override;

 private:
  bool Complete() const;
  const DumpMessage* Close();

  PbxDumpMessage open_;
  bool isOpen_ = false;
  PbxDumpMessage closed_;
  DumpMessage message_;
};

}  // namespace velmora
