#pragma once
// A router's `debug isdn q931` and `debug isdn q921` output, read as input:
//
//   Mar 14 09:15:02.381: ISDN Se0/0:23 Q931: TX -> SETUP pd = 8  callref = 0x0005
//           Bearer Capability i = 0x8090A3
//           Called Party Number i = 0x81, '12'
//   Mar 14 09:15:02.500: ISDN BR0: RX <- INFOc sapi = 0 tei = 89 ns = 0 nr = 1  i = 0x08018502
//
// (time stamp optional, with or without "*"; any interface name; the tag
// "Q931:", "SC:" or none). A q931 message line starts a message: its type
// from its name, its call reference from its hex; each indented element
// line behind it adds an element, its identifier from its name, its length
// from its hex (and the digits given as text behind it). A q921 information
// frame's "i =" hex is a whole Q.931 message. Other lines are only copied.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "dump_text.h"
#include "input_format.h"

namespace velmora {

// The format, for TranslationOptions::inputFormats and forcedFormat.
const InputFormat& RouterDumpFormat();

// A message while its lines are read: a q921 line's whole frame, or a q931
// message line's message.
struct RouterDumpMessage : dump_text::MessageLines {
  bool takesElements = false;  // a q931 message line's: indented element lines follow
  bool hexRunsOn = false;      // a q921 information frame's hex may go on in the next line
};

// The reader itself, for tests and fuzzing.
class RouterDumpReader final : public MessageDump {
 public:
  const DumpMessage* Before(std::string_view line, std::uint64_t lineNumber) override;
  const DumpMessage* Finish() override;

 private:
  const DumpMessage* Close();

  RouterDumpMessage open_;
  bool isOpen_ = false;
  RouterDumpMessage closed_;
  DumpMessage message_;
  std::vector<Octet> contents_;  // of the element or call reference read last
};

}  // namespace velmora
