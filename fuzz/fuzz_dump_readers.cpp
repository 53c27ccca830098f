// Random text read as a debug dump, a PBX's PRI-stack debug, a router's
// ISDN debug or a plain hex dump, into the message file at --detail full (every decoded line
// closed) and into JSON and the calls.
//
// Invariants: every input line stands in the message file, in order, and
// what stands between two of them is decoded lines only ("ISDN Layer ",
// "Message type:" or a tab first; behind a last line without its line end,
// on that line); the other outputs finish.
//
// Built once a reader, as fuzz_pbx_dump, fuzz_router_dump and
// fuzz_hex_dump (VELMORA_DUMP_READER 0, 1 and 2), so that each has its own
// corpus and time. Input: the dump's text.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "calls_output.h"
#include "frame_json.h"
#include "fuzz_support.h"
#include "hex_dump.h"
#include "pbx_dump.h"
#include "router_dump.h"
#include "translation.h"

namespace {

using velmora::fuzz::Printable;
using velmora::fuzz::Require;

std::vector<std::string_view> LinesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at);
    lines.push_back(text.substr(at, end == std::string_view::npos ? std::string_view::npos : end - at));
    at = end == std::string_view::npos ? text.size() : end + 1;
  }
  return lines;
}

bool Decoded(std::string_view line) {
  return line.starts_with("ISDN Layer ") || line.starts_with("Message type:") || line.starts_with('\t');
}

std::string Run(std::string_view dump, const velmora::InputFormat& format, velmora::TranslationOptions options) {
  std::string output;
  velmora::StringSink sink(output);
  velmora::LinkMemory link;
  options.forcedFormat = &format;
  velmora::TranslateTraceText(dump, sink, link, options);
  return output;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const velmora::InputFormat& format = VELMORA_DUMP_READER == 0   ? velmora::PbxDumpFormat()
                                       : VELMORA_DUMP_READER == 1 ? velmora::RouterDumpFormat()
                                                                  : velmora::HexDumpFormat();
  const std::string_view dump(reinterpret_cast<const char*>(data), size);
  velmora::TranslationOptions full;
  full.detail = velmora::DetailLevel::Full;
  const std::string message = Run(dump, format, full);
  const std::vector<std::string_view> input = LinesOf(dump);
  const std::vector<std::string_view> output = LinesOf(message);
  // A last line without its line end has the decode of the message it
  // ends right behind it, on the same output line.
  const bool lastLineOpen = !dump.empty() && dump.back() != '\n';
  const auto copies = [&](std::string_view out, std::string_view line, bool last) {
    if (out == line) return true;
    return last && lastLineOpen && out.starts_with(line) && Decoded(out.substr(line.size()));
  };
  std::size_t at = 0;
  for (std::size_t l = 0; l < input.size(); ++l) {
    const std::string_view line = input[l];
    while (at < output.size() && !copies(output[at], line, l + 1 == input.size())) {
      Require(Decoded(output[at]), "between two input lines stand decoded lines only",
              [&] { return Printable(output[at]) + "\nbefore\n" + Printable(line); });
      ++at;
    }
    Require(at < output.size(), "every input line is copied, in order", [&] { return Printable(line); });
    ++at;
  }
  for (; at < output.size(); ++at)
    Require(Decoded(output[at]), "behind the last input line stand decoded lines only",
            [&] { return Printable(output[at]); });

  velmora::TranslationOptions json;
  json.makeConsumer = [](velmora::OutputWriter& out, velmora::LinkMemory& memory) {
    return velmora::MakeJsonConsumer(out, memory, velmora::DetailLevel::Full);
  };
  Run(dump, format, json);
  velmora::TranslationOptions calls;
  calls.makeConsumer = [](velmora::OutputWriter& out, velmora::LinkMemory&) {
    return velmora::MakeCallsConsumer(out, velmora::CallsForm::JsonLines);
  };
  Run(dump, format, calls);
  return 0;
}
