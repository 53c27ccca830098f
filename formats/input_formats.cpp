#include "input_formats.h"

#include "capture_input.h"

namespace velmora {

std::span<const InputFormatEntry> InputFormatEntries() {
  static const InputFormatEntry kEntries[] = {
      {"Trace logs", "*.txt;*.log", nullptr},
      {"Captures", "*.pcap;*.pcapng", &CaptureFormat()},
  };
  return kEntries;
}

std::vector<const InputFormat*> RecognisedInputFormats() {
  std::vector<const InputFormat*> formats;
  for (const InputFormatEntry& entry : InputFormatEntries())
    if (entry.format != nullptr) formats.push_back(entry.format);
  return formats;
}

}  // namespace velmora
