// Whole inputs through the translation run's in-memory core, split into two
// runs that share the link memory. The run's output must equal, byte for byte, what the line
// handler makes of the input's pieces one by one; the line reader must cut
// the same pieces when the input arrives in short reads of odd sizes.
//
// With bit 3 of byte 0 set, the text is also repeated to several of the
// parallel run's chunks and translated on two threads: the output and the
// link memory must be those of the pieces decoded in order.
//
// Input: byte 0 chooses the starting link memory (bit 1), the parallel run
// (bit 3) and where the second run starts (bits 8 to 4); byte 1 the line
// reader's block size; the rest is the text.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "fuzz_support.h"
#include "line_reader.h"
#include "line_scanner.h"
#include "parallel_run.h"
#include "translation.h"

namespace {

using velmora::fuzz::Printable;
using velmora::fuzz::Require;

struct MemoryFile {
  int fd;
  std::string path;
};

MemoryFile MakeMemoryFile(const char* name) {
  const int fd = ::memfd_create(name, MFD_CLOEXEC);
  Require(fd >= 0, "memfd_create");
  return {fd, "/proc/self/fd/" + std::to_string(fd)};
}

void Store(const MemoryFile& file, std::string_view bytes) {
  Require(::ftruncate(file.fd, 0) == 0, "ftruncate");
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t wrote = ::pwrite(file.fd, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
    Require(wrote > 0, "pwrite");
    done += static_cast<std::size_t>(wrote);
  }
}

using velmora::LinkSetup;

LinkSetup SetupOf(const velmora::LinkMemory& link) {
  return link.setupPending ? LinkSetup::Pending : LinkSetup::NotPending;
}

// What the run must write for `text`: each piece's copy and decoding in
// order, from the link memory `link`, which it leaves as the pieces do.
std::string ReferenceOutput(std::string_view text, LinkSetup& link, bool& anyFrameLine) {
  anyFrameLine = false;
  std::string expected;
  for (const std::string_view piece : velmora::fuzz::SplitPieces(text)) {
    const std::string part = velmora::fuzz::Capture([&](velmora::OutputWriter& out) {
      velmora::DecodeContext context{out, link};
      velmora::TranslateTraceLine(context, piece);
      link = context.linkSetup;
    });
    Require(part.compare(0, piece.size(), piece) == 0, "the output for a piece begins with the piece",
            [&] { return Printable(piece); });
    anyFrameLine = anyFrameLine || velmora::IsFrameLine(piece);
    expected += part;
  }
  return expected;
}

void CheckRun(std::string_view text, velmora::LinkMemory& link) {
  std::string written;
  velmora::StringSink sink(written);
  velmora::TranslationReport report;
  velmora::TranslationOptions options;
  options.report = &report;

  LinkSetup reference = SetupOf(link);
  const velmora::TranslationOutcome outcome = velmora::TranslateTraceText(text, sink, link, options);

  bool anyFrameLine = false;
  const std::string expected = ReferenceOutput(text, reference, anyFrameLine);
  Require(reference == SetupOf(link), "the run leaves the link memory where the pieces do");
  if (written != expected) {
    std::size_t at = 0;
    while (at < written.size() && at < expected.size() && written[at] == expected[at]) ++at;
    velmora::fuzz::Violated("the run writes exactly the pieces' copies and decodings",
                            "first difference at " + std::to_string(at) +
                                "\nwritten:  " + Printable(std::string_view(written).substr(at, 200)) +
                                "\nexpected: " + Printable(std::string_view(expected).substr(at, 200)));
  }
  const auto wanted =
      anyFrameLine ? velmora::TranslationOutcome::TranslationDone : velmora::TranslationOutcome::NoFrameFound;
  Require(outcome == wanted, "done exactly when some piece is a frame line");
  Require(report.readError == 0 && report.writeError == 0, "memory neither fails to read nor to write");
  Require(report.bytesRead == text.size(), "every input byte is read");
  Require(report.bytesWritten == written.size(), "the report counts every byte written");
}

// Feeds `text` to a line reader through a sequenced-packet socket: every
// read returns one chunk, so refills happen at odd places.
void CheckReaderInShortReads(std::string_view text, std::size_t blockSize, const std::uint8_t* sizes,
                             std::size_t sizeCount) {
  int ends[2];
  Require(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) == 0, "socketpair");
  // The sender runs beside the reader: the socket queues only a few packets.
  std::thread sender([&] {
    std::size_t done = 0;
    for (std::size_t k = 0; done < text.size(); ++k) {
      // Chunks of 1 to 2047 bytes, never empty (an empty packet reads as the end).
      const std::size_t seed = sizeCount > 0 ? sizes[k % sizeCount] : 255;
      std::size_t chunk = 1 + (seed * 131 + k * 17) % velmora::fuzz::kMaxPiece;
      if (chunk > text.size() - done) chunk = text.size() - done;
      Require(::send(ends[1], text.data() + done, chunk, MSG_NOSIGNAL) == static_cast<ssize_t>(chunk), "send");
      done += chunk;
    }
    ::close(ends[1]);
  });

  const std::vector<std::string_view> expected = velmora::fuzz::SplitPieces(text);
  velmora::LineReader reader(ends[0], blockSize);
  std::size_t index = 0;
  while (const auto pieces = reader.NextPieces()) {
    Require(!pieces->empty(), "the reader hands on whole pieces, never none");
    for (const std::string_view piece : velmora::fuzz::SplitPieces(*pieces)) {
      Require(index < expected.size() && piece == expected[index], "the reader cuts the run's pieces",
              [&] { return "piece " + std::to_string(index) + ": " + Printable(piece); });
      ++index;
    }
  }
  Require(index == expected.size(), "the reader hands on every piece");
  Require(!reader.Failed() && reader.BytesRead() == text.size(), "the reader reads every byte");
  sender.join();
  ::close(ends[0]);
}

// Larger than two of the parallel run's (small) chunks, so chunks are cut
// inside the text at line ends or, in a long line, at piece boundaries.
void CheckParallelRun(const MemoryFile& input, std::string_view text, bool setupPending) {
  // Small chunks, so that a few kilobytes are cut into several.
  constexpr std::size_t kChunk = velmora::kSmallestChunk;
  constexpr std::size_t kLarge = 3 * kChunk;
  std::string large;
  large.reserve(kLarge + text.size());
  while (large.size() < kLarge) large += text;
  Store(input, large);
  const int fd = ::open(input.path.c_str(), O_RDONLY | O_CLOEXEC);
  Require(fd >= 0, "open");

  velmora::LinkMemory link{setupPending};
  std::string written;
  velmora::ParallelRunResult result;
  {
    velmora::StringSink sink(written);
    velmora::OutputWriter writer(sink);
    result = velmora::TranslateInParallel(fd, large.size(), writer, link, 2, false, nullptr, kChunk);
    writer.Flush();
  }
  ::close(fd);

  LinkSetup reference = setupPending ? LinkSetup::Pending : LinkSetup::NotPending;
  bool anyFrameLine = false;
  const std::string expected = ReferenceOutput(large, reference, anyFrameLine);
  Require(reference == SetupOf(link), "the parallel run leaves the link memory as the pieces do");
  if (written != expected) {
    std::size_t at = 0;
    while (at < written.size() && at < expected.size() && written[at] == expected[at]) ++at;
    velmora::fuzz::Violated("the parallel run writes what the pieces decoded in order write",
                            "first difference at " + std::to_string(at) + " of " + std::to_string(expected.size()) +
                                "\nwritten:  " + Printable(std::string_view(written).substr(at, 200)) +
                                "\nexpected: " + Printable(std::string_view(expected).substr(at, 200)));
  }
  Require(result.frameFound == anyFrameLine, "the parallel run finds a frame exactly when a piece is one");
  Require(result.readError == 0 && result.bytesRead == large.size(), "the parallel run reads every byte");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::uint8_t control = data[0];
  const std::size_t blockSize = static_cast<std::size_t>(data[1]) * 24;
  const std::string_view text(reinterpret_cast<const char*>(data + 2), size - 2);

  velmora::LinkMemory link{(control & 1) != 0};
  const std::size_t split = text.size() * (control >> 3) / 31;
  CheckRun(text.substr(0, split), link);
  CheckRun(text.substr(split), link);

  CheckReaderInShortReads(text, blockSize, data + 2, size - 2 > 64 ? 64 : size - 2);
  if ((control & 4) != 0 && !text.empty()) {
    static const MemoryFile input = MakeMemoryFile("velmora-fuzz-input");
    CheckParallelRun(input, text, (control & 1) != 0);
  }
  return 0;
}
