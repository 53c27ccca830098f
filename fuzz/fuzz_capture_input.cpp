// Capture bytes through the capture format, in a memory file: opened as a
// regular file and as a pipe whose first four bytes were already taken, the
// two must give the same pieces. Packet by packet, the frame line must be
// what libpcap itself reads from the same bytes: a frame line of the
// promised layout, at least 80 characters before its line end, numbered in
// order, with the packet's moment, direction and octets; its decoding must
// begin with it. A capture libpcap cannot read to its end must be reported
// as cut off or damaged, and a readable one must not. Through the whole run,
// the message file must be the line handler's output for those pieces, and
// a refused capture must leave the output untouched.
//
// Input: the capture file's bytes.
#include <fcntl.h>
#include <pcap/pcap.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "capture_input.h"
#include "decode_context.h"
#include "frame_line_facts.h"
#include "fuzz_support.h"
#include "lapd_link_types.h"
#include "line_scanner.h"
#include "pieces.h"

namespace {

// A capture tells itself by its first four bytes.
constexpr std::size_t kCaptureSignatureBytes = 4;

using velmora::fuzz::Printable;
using velmora::fuzz::Require;

// A memory file holding `bytes`, its offset at `offset`.
int MemoryFile(std::string_view bytes, off_t offset) {
  const int fd = ::memfd_create("velmora-fuzz-capture", MFD_CLOEXEC);
  Require(fd >= 0, "memfd_create");
  Require(::write(fd, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), "write");
  Require(::lseek(fd, offset, SEEK_SET) == offset, "lseek");
  return fd;
}

// What the capture format makes of the bytes.
struct Reading {
  bool refused = false;
  std::vector<std::string> pieces;
  velmora::InputFault fault = velmora::InputFault::None;
  std::string faultText;
};

Reading ReadThroughFormat(std::string_view bytes, bool asPipe) {
  const std::size_t consumed = asPipe ? kCaptureSignatureBytes : 0;
  const int fd = MemoryFile(bytes, static_cast<off_t>(consumed));
  velmora::OpenedInput opened = velmora::CaptureFormat().Open(fd, bytes.substr(0, consumed));
  Reading reading;
  if (!opened.source) {
    Require(!opened.refusal.empty(), "a refusal says why");
    reading.refused = true;
  } else {
    while (const auto pieces = opened.source->NextPieces())
      velmora::ForEachPiece(*pieces, [&reading](std::string_view piece) { reading.pieces.emplace_back(piece); });
    reading.fault = opened.source->Fault();
    reading.faultText = opened.source->FaultText();
    Require(opened.source->Error() == 0, "a memory file does not fail to read");
    Require(opened.source->BytesRead() <= bytes.size(), "no byte is counted twice");
    Require((reading.fault == velmora::InputFault::None) == reading.faultText.empty(), "a fault is described");
    Require(reading.fault != velmora::InputFault::Refused, "an opened capture is not refused afterwards");
  }
  opened.source.reset();
  ::close(fd);
  return reading;
}

// Joins pieces into whole lines; a line ends with "\n".
std::vector<std::string> Lines(const std::vector<std::string>& pieces) {
  std::vector<std::string> lines;
  bool open = false;
  for (const std::string& piece : pieces) {
    Require(!piece.empty() && piece.size() <= velmora::fuzz::kMaxPiece, "pieces of 1 to 2047 characters");
    if (!open) lines.emplace_back();
    lines.back() += piece;
    open = piece.back() != '\n';
  }
  Require(!open, "every packet line ends with its line end");
  return lines;
}

// The packet line against the packet libpcap reads.
void CheckLine(const std::string& line, std::uint64_t number, const pcap_pkthdr& header, const u_char* data,
               bool linuxLapd) {
  const std::string shown = Printable(line);
  const std::string_view firstPiece = std::string_view(line).substr(0, velmora::fuzz::kMaxPiece);
  Require(line.size() > 80 && velmora::IsFrameLine(firstPiece),
          "a packet line is a frame line of at least 80 characters before its line end", shown);
  std::string numbered = std::to_string(number);
  if (numbered.size() < 5) numbered.insert(0, 5 - numbered.size(), '0');
  Require(line.starts_with(numbered + ' '), "packet lines are numbered in order", shown);

  velmora::OctetSpan octets(data, header.caplen);
  velmora::FrameDirection direction = velmora::FrameDirection::Unknown;
  if (linuxLapd) {
    if (octets.size() >= velmora::kLapdPseudoHeaderSize)
      direction = velmora::DirectionOfPacketType(static_cast<std::uint16_t>(octets[0] << 8 | octets[1]));
    octets = octets.subspan(std::min(octets.size(), velmora::kLapdPseudoHeaderSize));
  }
  const velmora::FrameLineFacts facts = velmora::ReadFrameLineFacts(line);
  Require(facts.direction == direction, "the line carries the packet's direction", shown);
  Require(facts.time.has_value(), "the line carries a time", shown);
  if (header.ts.tv_sec >= 0 && header.ts.tv_sec < 253402300800 && header.ts.tv_usec >= 0 &&
      header.ts.tv_usec < 1000000) {
    Require(facts.date && velmora::MicrosecondsSinceEpoch(*facts.date, *facts.time) ==
                              header.ts.tv_sec * 1000000LL + header.ts.tv_usec,
            "the line carries the packet's moment", shown);
  }

  velmora::Octet frame[velmora::kFrameCapacity];
  const auto count = velmora::ScanFrameLine(firstPiece, frame);
  Require(count && *count == std::min(octets.size(), velmora::kFrameCapacity), "the scanner reads the octets", shown);
  Require(std::equal(octets.begin(), octets.begin() + static_cast<std::ptrdiff_t>(*count), frame),
          "the scanner reads the packet's octets", shown);
}

// The reading against libpcap's own, from the same bytes.
void CheckAgainstLibpcap(std::string_view bytes, const Reading& reading) {
  const auto copy = velmora::fuzz::ExactCopy<char>(bytes.data(), bytes.size());
  FILE* file = ::fmemopen(copy.get(), bytes.size(), "rb");
  Require(file != nullptr, "fmemopen");
  char error[PCAP_ERRBUF_SIZE] = "";
  pcap_t* pcap = pcap_fopen_offline(file, error);
  if (pcap == nullptr) {
    std::fclose(file);
    Require(reading.refused, "a capture libpcap cannot open is refused");
    return;
  }
  const int linkType = pcap_datalink(pcap);
  const bool lapd = linkType == velmora::kLinkTypeLapd || linkType == velmora::kLinkTypeLinuxLapd;
  Require(reading.refused == !lapd, "refused exactly when the link type is not LAPD");
  if (lapd) {
    const std::vector<std::string> lines = Lines(reading.pieces);
    std::uint64_t packets = 0;
    pcap_pkthdr* header = nullptr;
    const u_char* data = nullptr;
    int status = 0;
    while ((status = pcap_next_ex(pcap, &header, &data)) == 1) {
      Require(packets < lines.size(), "one line for every packet");
      CheckLine(lines[packets], packets + 1, *header, data, linkType == velmora::kLinkTypeLinuxLapd);
      ++packets;
    }
    Require(packets == lines.size(), "no line without a packet");
    Require((status == PCAP_ERROR) == (reading.fault != velmora::InputFault::None),
            "a capture that cannot be read to its end is reported, and only such a one", reading.faultText);
  }
  pcap_close(pcap);
}

// The whole run, with the capture format among its input formats.
void CheckRun(std::string_view bytes, const Reading& reading) {
  const int input = MemoryFile(bytes, 0);
  const std::string stale = "stale bytes a refused capture must leave\n";
  const int output = MemoryFile(stale, 0);
  velmora::LinkMemory link;
  velmora::TranslationReport report;
  velmora::TranslationOptions options;
  options.report = &report;
  options.inputFormats = {&velmora::CaptureFormat()};
  const velmora::TranslationOutcome outcome = velmora::TranslateTraceFile(
      "/proc/self/fd/" + std::to_string(input), "/proc/self/fd/" + std::to_string(output), link, options);

  struct stat info {};
  Require(::fstat(output, &info) == 0, "fstat");
  std::string written(static_cast<std::size_t>(info.st_size), '\0');
  Require(::pread(output, written.data(), written.size(), 0) == static_cast<ssize_t>(written.size()), "pread");
  ::close(input);
  ::close(output);
  if (reading.refused) {
    Require(
        outcome == velmora::TranslationOutcome::InputOpenFailed && report.inputFault == velmora::InputFault::Refused,
        "a refused capture is reported as such");
    Require(written == stale, "a refused capture leaves the output untouched");
    return;
  }
  std::string expected;
  velmora::LinkMemory reference;
  for (const std::string& piece : reading.pieces) {
    const std::string part = velmora::fuzz::Capture([&](velmora::OutputWriter& out) {
      velmora::DecodeContext context{
          out, reference.setupPending ? velmora::LinkSetup::Pending : velmora::LinkSetup::NotPending};
      velmora::TranslateTraceLine(context, piece);
      reference.setupPending = context.linkSetup == velmora::LinkSetup::Pending;
    });
    Require(part.starts_with(piece), "the decoded output begins with the piece", [&] { return Printable(piece); });
    expected += part;
  }
  Require(written == expected, "the message file is the pieces' copies and decodings",
          [&] { return Printable(written.substr(0, 200)) + "\n" + Printable(expected.substr(0, 200)); });
  Require(report.inputFault == reading.fault && report.inputFaultText == reading.faultText,
          "the run reports the capture's fault");
  Require(outcome == (reading.pieces.empty() ? velmora::TranslationOutcome::NoFrameFound
                                             : velmora::TranslationOutcome::TranslationDone),
          "done exactly when a packet was read");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const velmora::InputFormat& format = velmora::CaptureFormat();
  const std::string_view head = bytes.substr(0, kCaptureSignatureBytes);
  const velmora::Recognition recognition = format.Recognise(head);
  for (std::size_t length = 0; length < head.size(); ++length) {
    Require(recognition != velmora::Recognition::Yes ||
                format.Recognise(head.substr(0, length)) == velmora::Recognition::NeedMore,
            "every beginning of a signature asks for more");
  }
  if (recognition != velmora::Recognition::Yes) return 0;

  const Reading reading = ReadThroughFormat(bytes, false);
  const Reading piped = ReadThroughFormat(bytes, true);
  Require(piped.refused == reading.refused && piped.pieces == reading.pieces && piped.fault == reading.fault,
          "a pipe's capture reads as the file's");
  CheckAgainstLibpcap(bytes, reading);
  CheckRun(bytes, reading);
  return 0;
}
