#include "input_formats.h"

#include "capture_input.h"
#include "hex_dump.h"
#include "pbx_dump.h"
#include "router_dump.h"

namespace velmora {

std::span<const InputFormatEntry> InputFormatEntries() {
  static const InputFormatEntry kEntries[] = {
      {"trace", "Trace logs", "*.txt;*.log", nullptr},
      {"pcap", "Captures", "*.pcap;*.pcapng", &CaptureFormat()},
      {"pbx", "PBX PRI debug", "*.txt;*.log", &PbxDumpFormat()},
      {"router", "Router ISDN debug", "*.txt;*.log", &RouterDumpFormat()},
      {"hex", "Hex dumps", "*.txt;*.log", &HexDumpFormat()},
  };
  return kEntries;
}

std::vector<const InputFormat*> RecognisedInputFormats() {
  std::vector<const InputFormat*> formats;
  for (const InputFormatEntry& entry : InputFormatEntries())
    if (entry.format != nullptr) formats.push_back(entry.format);
  return formats;
}

const InputFormatEntry* FindInputFormat(std::string_view name) {
  for (const InputFormatEntry& entry : InputFormatEntries())
    if (entry.name == name) return &entry;
  return nullptr;
}

}  // namespace velmora
