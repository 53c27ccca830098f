// Micro-benchmarks of the hot paths, each a place where a slower way once
// stood: the line scanner and its hex cells, the coded field lines, octet
// strings in hexadecimal, whole messages, the benchmark trace as a whole, the
// writes behind the decoding and the reads ahead of it.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "field_text.h"
#include "line_reader.h"
#include "line_scanner.h"
#include "q931_message.h"
#include "trace_generator.h"

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

// 48 cells, each one load of its digit pair and one of the table of octets.
void HexCellsToOctets(benchmark::State& state) {
  std::string cells;
  for (unsigned k = 0; k < 48; ++k) cells += "0x" + std::string(1, "0123456789abcdef"[k % 16]) + "f ";
  Octet octets[48];
  for (auto _ : state) {
    velmora::HexFieldsToOctets(cells.data(), 48, octets);
    benchmark::DoNotOptimize(octets);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * 48));
}
BENCHMARK(HexCellsToOctets);

// Coded field lines, each one copy of a line built at compile time.
constexpr velmora::ValueText kChannelSelection[] = {
    {0b00, "No channel"}, {0b01, "B1 channel"}, {0b10, "B2 channel"}, {0b11, "Any channel"}};
constexpr velmora::ValueText kPreference[] = {{0, "Indicated channel is preferred"},
                                              {1, "Exclusive; only the indicated channel is acceptable"}};
constexpr velmora::CodedField kFields[] = {
    velmora::Coded<"Preferred/Exclusive", 4, 4, kPreference>,
    velmora::Coded<"Information channel selection", 2, 1, kChannelSelection>,
};
void PrintCodedFields(benchmark::State& state) {
  DiscardingOutput output;
  Octet octet = 0;
  for (auto _ : state) {
    for (int i = 0; i < 16; ++i) velmora::PrintFields(output.Writer(), octet++, kFields);
    output.Reset();
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * 32));
}
BENCHMARK(PrintCodedFields);

// " 0x%x" of each octet, from the writer's table.
void PrintOctetStringInHex(benchmark::State& state) {
  DiscardingOutput output;
  std::vector<Octet> octets(32);
  for (std::size_t i = 0; i < octets.size(); ++i) octets[i] = static_cast<Octet>(i * 37);
  for (auto _ : state) {
    velmora::PrintOctetString(output.Writer(), "Call identity", octets);
    output.Reset();
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * octets.size()));
}
BENCHMARK(PrintOctetStringInHex);

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

// The first 4 MB of the benchmark trace, in memory: the decoding alone,
// without the files.
const std::string& BenchmarkTrace() {
  static const std::string trace = [] {
    velmora::bench::TraceGenerator generator;
    std::string text;
    while (text.size() < 4'000'000) text += generator.NextLine();
    return text;
  }();
  return trace;
}

// Counts the output; a sink that costs nothing.
class CountingSink final : public velmora::ByteSink {
 public:
  bool Write(const char* /*data*/, std::size_t size, int& /*error*/) override {
    bytes_ += size;
    return true;
  }

 private:
  std::size_t bytes_ = 0;
};

void TranslateBenchmarkTrace(benchmark::State& state) {
  const std::string& trace = BenchmarkTrace();
  CountingSink sink;
  velmora::OutputWriter writer(sink);
  for (auto _ : state) {
    velmora::DecodeContext context{writer};
    velmora::TranslateTracePieces(context, trace);
    writer.Flush();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * trace.size()));
}
BENCHMARK(TranslateBenchmarkTrace)->Unit(benchmark::kMillisecond);

// A sink that costs what the kernel's copy into the page cache costs: the
// block is copied once.
class CopyingSink final : public velmora::ByteSink {
 public:
  bool Write(const char* data, std::size_t size, int& /*error*/) override {
    std::memcpy(copy_.get(), data, size < kSize ? size : kSize);
    benchmark::ClobberMemory();
    return true;
  }

 private:
  static constexpr std::size_t kSize = velmora::OutputWriter::kBehindCapacity;
  std::unique_ptr<char[]> copy_{new char[kSize]};
};

// The benchmark trace to a sink that copies, the writes inline (0) or behind
// the decoding (1), in the blocks a run uses for each: with a core to spare,
// behind takes the decoding's time.
void TranslateToCopyingSink(benchmark::State& state) {
  const std::string& trace = BenchmarkTrace();
  CopyingSink sink;
  const bool behind = state.range(0) != 0;
  velmora::OutputWriter writer(
      sink, behind ? velmora::OutputWriter::kBehindCapacity : velmora::OutputWriter::kDefaultCapacity,
      behind ? velmora::SinkWrites::Behind : velmora::SinkWrites::Inline);
  for (auto _ : state) {
    velmora::DecodeContext context{writer};
    velmora::TranslateTracePieces(context, trace);
    writer.Flush();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * trace.size()));
}
BENCHMARK(TranslateToCopyingSink)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

// The benchmark trace from a file, read when more input is needed (0) or a
// block ahead (1), and decoded: with a core to spare, reading ahead hides
// the reads.
void TranslateFromFile(benchmark::State& state) {
  // The trace, four times over, in a file of its own, removed when the
  // benchmarks end.
  static constexpr int kCopies = 4;
  struct TraceFile {
    std::string path = "/tmp/velmora_micro_trace_" + std::to_string(::getpid()) + ".txt";
    TraceFile() {
      std::FILE* file = std::fopen(path.c_str(), "wb");
      for (int copy = 0; copy < kCopies; ++copy) std::fwrite(BenchmarkTrace().data(), 1, BenchmarkTrace().size(), file);
      std::fclose(file);
    }
    ~TraceFile() { std::remove(path.c_str()); }
  };
  static const TraceFile traceFile;
  CountingSink sink;
  velmora::OutputWriter writer(sink);
  const auto reads = state.range(0) == 0 ? velmora::SourceReads::Inline : velmora::SourceReads::Ahead;
  for (auto _ : state) {
    const int fd = ::open(traceFile.path.c_str(), O_RDONLY | O_CLOEXEC);
    {
      velmora::LineReader reader(fd, velmora::LineReader::kDefaultBlock, reads);
      velmora::DecodeContext context{writer};
      while (const auto pieces = reader.NextPieces()) velmora::TranslateTracePieces(context, *pieces);
    }
    ::close(fd);
    writer.Flush();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kCopies * BenchmarkTrace().size()));
}
BENCHMARK(TranslateFromFile)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
