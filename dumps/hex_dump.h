#pragma once
// A plain hex dump, read as input: a header line with a direction (a whole
// word TX or RX) and a time, followed by the frame's octets as hexadecimal,
// wrapped over lines of a few octets each, as several routers and trace
// programs print frames:
//
//   RX 2026-03-14 09:15:02.500 len=13
//     0000  02 01 02 04 08 02 80 05
//     0008  45 08 02 80 90
//
// A line may begin with an offset ("0000", "0010:") and end in a text
// column set off by two blanks; its octets may stand apart ("02 01") or
// together ("0201"). The frame ends at the first line that is no hex line,
// and is decoded there as a frame line's frame.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dump_text.h"
#include "input_format.h"

namespace velmora {

// The format, for TranslationOptions::inputFormats and forcedFormat.
const InputFormat& HexDumpFormat();

// The reader itself, for tests and fuzzing.
class HexDumpReader final : public MessageDump {
 public:
  const DumpMessage* Before(std::string_view line, std::uint64_t lineNumber) override;
  const DumpMessage* Finish() override;

 private:
  const DumpMessage* Close();

  // The frame while its lines are read, and the one handed on last.
  dump_text::MessageLines open_;
  bool isOpen_ = false;
  dump_text::MessageLines closed_;
  DumpMessage message_;
  std::vector<Octet> scratch_;  // what a header line reads as hex
};

}  // namespace velmora
