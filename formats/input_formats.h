#pragma once
// The one list of the inputs velmora reads, for every front end: the trace
// log, which is what an input is when no other format recognises it, and the
// formats told by their first bytes or lines, in the order they are tried.
#include <span>
#include <string_view>
#include <vector>

#include "input_format.h"

namespace velmora {

struct InputFormatEntry {
  std::string_view name;         // for --from: "trace", "pcap", "pbx"
  std::string_view description;  // for a file chooser: "Captures"
  std::string_view patterns;     // file name patterns, ";" between: "*.pcap;*.pcapng"
  const InputFormat* format;     // null: the trace log itself
};

// Every input, the trace log first.
std::span<const InputFormatEntry> InputFormatEntries();

// The formats a run tries before it reads an input as a trace log
// (TranslationOptions::inputFormats).
std::vector<const InputFormat*> RecognisedInputFormats();

// The entry of a --from name; null for a name no entry has.
const InputFormatEntry* FindInputFormat(std::string_view name);

}  // namespace velmora
