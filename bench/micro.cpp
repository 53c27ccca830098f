// Micro-benchmarks of the hot paths: the line scanner on a plain and a frame
// line, one decoded SETUP, one decoded RELEASE COMPLETE with diagnostics.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "line_scanner.h"
#include "q931_message.h"

namespace {

using velmora::Octet;

// Output into a reused string, cleared between iterations.
class DiscardingOutput {
 public:
  DiscardingOutput() : sink_(text_), writer_(sink_, 64 * 1024) {}
  velmora::OutputWriter& Writer() { return writer_; }
  velmora::DecodeContext& Context() { return context_; }
  void Reset() {
    writer_.Flush();
    text_.clear();
  }

 private:
  std::string text_;
  velmora::StringSink sink_;
  velmora::OutputWriter writer_;
  velmora::DecodeContext context_{writer_};
};

void ScanPlainLine(benchmark::State& state) {
  DiscardingOutput output;
  const std::string line = "12:00:01.234 CC: call state change U0 -> U1, B-channel 1 connected to port 3, all fine\n";
  for (auto _ : state) {
    velmora::TranslateTraceLine(output.Context(), line);
    output.Reset();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * line.size()));
}
BENCHMARK(ScanPlainLine);

void ScanReceiveReadyLine(benchmark::State& state) {
  DiscardingOutput output;
  const std::string line = "00006 2026-03-14 09:15:02.318 **** D-CH RX HDLC:4  | 0x00 0x81 0x01 0x02              \n";
  for (auto _ : state) {
    velmora::TranslateTraceLine(output.Context(), line);
    output.Reset();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * line.size()));
}
BENCHMARK(ScanReceiveReadyLine);

void DecodeMessage(benchmark::State& state, std::vector<Octet> message) {
  DiscardingOutput output;
  for (auto _ : state) {
    velmora::DecodeQ931Message(output.Writer(), message);
    output.Reset();
  }
}

void DecodeSetup(benchmark::State& state) {
  DecodeMessage(state, {0x08, 0x01, 0x05, 0x05, 0xA1, 0x04, 0x03, 0x80, 0x90, 0xA3, 0x18, 0x03, 0xA1, 0x83,
                        0x81, 0x6C, 0x0C, 0x21, 0x83, 0x30, 0x38, 0x39, 0x31, 0x32, 0x33, 0x34, 0x35, 0x36,
                        0x37, 0x70, 0x0B, 0xC1, 0x30, 0x33, 0x30, 0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37});
}
BENCHMARK(DecodeSetup);

void DecodeReleaseCompleteWithDiagnostics(benchmark::State& state) {
  // Cause: call rejected (0x15) from the public network serving the remote
  // user, with a call-rejected diagnostic, then a display.
  DecodeMessage(state, {0x08, 0x01, 0x05, 0x5A, 0x08, 0x04, 0x84, 0x95, 0x81, 0x01, 0x28, 0x03, 0x42, 0x75, 0x73});
}
BENCHMARK(DecodeReleaseCompleteWithDiagnostics);

}  // namespace

BENCHMARK_MAIN();
