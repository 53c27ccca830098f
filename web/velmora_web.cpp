// The browser page's side of the in-memory core, on one thread (the page's
// worker): the page hands in a trace's bytes and takes each output block
// as the writer flushes it, so that a large message file never sits twice
// in memory, and hears how far the run has read.
#include <emscripten.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "call_report.h"
#include "calls_output.h"
#include "capture_signatures.h"
#include "decode_context.h"
#include "dump_text.h"
#include "frame_json.h"
#include "hex_dump.h"
#include "lapd.h"
#include "output_writer.h"
#include "pbx_dump.h"
#include "router_dump.h"
#include "translation.h"
#include "velmora_version.h"

namespace {

// Each flushed block goes to the page's Module.takeOutput as a view of the
// module's memory, valid during the call only: the page copies it on.
EM_JS(void, HandOutput, (const char* data, std::size_t size),
      { Module["takeOutput"](HEAPU8.subarray(data, data + size)); });

// The bytes read so far, to Module.onProgress.
EM_JS(void, HandProgress, (double bytesRead), {
  if (Module["onProgress"]) Module["onProgress"](bytesRead);
});

class PageSink final : public velmora::ByteSink {
 public:
  bool Write(const char* data, std::size_t size, int& /*error*/) override {
    HandOutput(data, size);
    return true;
  }
};

// The output kinds the page offers, by the numbers its script uses.
enum class PageOutput : int { Message, Json, Calls, CallsCsv, CallsJson, Report };

velmora::TraceConsumerFactory ConsumerFor(PageOutput kind, velmora::DetailLevel detail, std::string_view name) {
  switch (kind) {
    case PageOutput::Message:
      return nullptr;
    case PageOutput::Json:
      return [detail](velmora::OutputWriter& out, velmora::LinkMemory& link) {
        return velmora::MakeJsonConsumer(out, link, detail, nullptr);
      };
    case PageOutput::Calls:
    case PageOutput::CallsCsv:
    case PageOutput::CallsJson: {
      const velmora::CallsForm form = kind == PageOutput::Calls      ? velmora::CallsForm::Table
                                      : kind == PageOutput::CallsCsv ? velmora::CallsForm::Csv
                                                                     : velmora::CallsForm::JsonLines;
      return [form](velmora::OutputWriter& out, velmora::LinkMemory&) { return velmora::MakeCallsConsumer(out, form); };
    }
    case PageOutput::Report:
      return velmora::CallReport({std::string(name), std::nullopt, nullptr});
  }
  return nullptr;
}

// The debug dumps the page reads besides trace logs: the file front end's
// formats but captures, as libpcap is not built for the browser.
const std::vector<const velmora::InputFormat*> kPageFormats = {&velmora::PbxDumpFormat(), &velmora::RouterDumpFormat(),
                                                               &velmora::HexDumpFormat()};

velmora::TranslationReport lastReport;

}  // namespace

extern "C" {

// Translates `size` bytes at `input` into the output kind `kind` (the
// PageOutput numbers) at `detail` (0 the description, 1 full), `name`
// naming the input in the report. Returns the outcome's number, or -1 for a
// capture, which the page does not read.
EMSCRIPTEN_KEEPALIVE int velmora_translate(const char* input, std::size_t size, int kind, int detail,
                                           const char* name) {
  const std::string_view text(input, size);
  if (velmora::RecogniseCaptureSignature(text) == velmora::Recognition::Yes) return -1;
  velmora::TranslationOptions options;
  options.detail = detail != 0 ? velmora::DetailLevel::Full : velmora::DetailLevel::Description;
  options.makeConsumer = ConsumerFor(static_cast<PageOutput>(kind), options.detail, name);
  options.inputFormats = kPageFormats;
  lastReport = {};
  options.report = &lastReport;
  options.progress = [](std::uint64_t bytesRead, std::uint64_t) { HandProgress(static_cast<double>(bytesRead)); };
  PageSink sink;
  // Each translation starts afresh, as one run of the command line does: the
  // page translates the same input again for each download, and every
  // output must be that of the same run.
  velmora::LinkMemory link;
  return static_cast<int>(velmora::TranslateTraceText(text, sink, link, options));
}

// A translation's outcome in words and whether it tells of an error; the
// last translation's cut-off dump messages.
EMSCRIPTEN_KEEPALIVE const char* velmora_outcome_text(int outcome) {
  static std::string text;
  text = velmora::DescribeOutcome(static_cast<velmora::TranslationOutcome>(outcome)).text;
  return text.c_str();
}
EMSCRIPTEN_KEEPALIVE int velmora_outcome_is_error(int outcome) {
  return velmora::DescribeOutcome(static_cast<velmora::TranslationOutcome>(outcome)).icon ==
         velmora::OutcomeIcon::Error;
}
EMSCRIPTEN_KEEPALIVE double velmora_cut_off_messages() { return static_cast<double>(lastReport.cutOffMessages); }

// One Q.931 message as bare hex octets ("08 01 05 45 08 02 82 91", "0x08
// 0x01 ...", or run together), decoded as a dump's message alone: no layer-2
// line, its address being unknown. Returns false when the text holds
// anything but hex octets.
EMSCRIPTEN_KEEPALIVE int velmora_decode_message(const char* text, std::size_t size, int detail) {
  std::vector<velmora::Octet> octets;
  const std::string_view hex(text, size);
  using velmora::dump_text::HexValue;
  for (std::size_t at = 0; at < hex.size();) {
    const char c = hex[at];
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == ',') {
      ++at;
    } else if (c == '0' && at + 1 < hex.size() && (hex[at + 1] | 0x20) == 'x') {
      at += 2;
    } else if (at + 1 < hex.size() && HexValue(c) >= 0 && HexValue(hex[at + 1]) >= 0) {
      octets.push_back(static_cast<velmora::Octet>(HexValue(c) * 16 + HexValue(hex[at + 1])));
      at += 2;
    } else {
      return 0;
    }
  }
  if (octets.empty() || octets.size() > 300) return 0;
  PageSink sink;
  velmora::OutputWriter writer(sink);
  velmora::DecodeContext context{writer};
  context.detail = detail != 0 ? velmora::DetailLevel::Full : velmora::DetailLevel::Description;
  velmora::DecodeDumpMessage(context, octets, false);
  writer.Flush();
  return 1;
}

EMSCRIPTEN_KEEPALIVE const char* velmora_version() { return VELMORA_VERSION; }
}
