#include "capture_input.h"

#include <pcap/pcap.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

#include "capture_signatures.h"
#include "frame_line_writer.h"
#include "lapd_link_types.h"
#include "line_reader.h"

namespace velmora {
namespace {

// The input descriptor as a stdio stream for libpcap: first the bytes the
// run has already taken from it, then what read() gives. It counts the
// bytes, remembers a failed read and the end of the input, and leaves the
// descriptor open.
class InputStream {
 public:
  InputStream(int fd, std::string_view consumed) : fd_(fd), replay_(consumed) {}
  InputStream(const InputStream&) = delete;
  InputStream& operator=(const InputStream&) = delete;

  // A stream over this object, which must outlive it.
  FILE* Open() {
    FILE* file = ::fopencookie(this, "rb", {&InputStream::Read, nullptr, nullptr, nullptr});
    if (file == nullptr) throw std::bad_alloc();
    std::setvbuf(file, nullptr, _IOFBF, kBufferSize);
    return file;
  }
  void SetBeforeRead(std::function<void()> beforeRead) { beforeRead_ = std::move(beforeRead); }
  std::uint64_t BytesRead() const { return bytesRead_; }
  int Error() const { return error_; }
  bool AtEnd() const { return atEnd_; }

 private:
  static constexpr std::size_t kBufferSize = 64 * 1024;

  static ssize_t Read(void* cookie, char* buffer, std::size_t size) {
    InputStream& self = *static_cast<InputStream*>(cookie);
    if (self.replayed_ < self.replay_.size()) {
      const std::size_t count = std::min(size, self.replay_.size() - self.replayed_);
      std::memcpy(buffer, self.replay_.data() + self.replayed_, count);
      self.replayed_ += count;
      self.bytesRead_ += count;
      return static_cast<ssize_t>(count);
    }
    if (self.beforeRead_) self.beforeRead_();
    const ReadResult got = ReadRetrying(self.fd_, buffer, size);
    self.bytesRead_ += got.size;
    if (got.error != 0) {
      self.error_ = got.error;
      return -1;
    }
    self.atEnd_ = got.size == 0;
    return static_cast<ssize_t>(got.size);
  }

  int fd_;
  std::string replay_;
  std::size_t replayed_ = 0;
  std::uint64_t bytesRead_ = 0;
  int error_ = 0;
  bool atEnd_ = false;
  std::function<void()> beforeRead_;
};

// A time stamp far outside any capture (beyond the year 285000) is held
// there, so that its microseconds fit in 64 bits.
constexpr std::int64_t kSecondsLimit = 9'000'000'000'000;

std::int64_t MicrosecondsOf(const timeval& stamp) {
  const std::int64_t seconds = std::clamp<std::int64_t>(stamp.tv_sec, -kSecondsLimit, kSecondsLimit);
  return seconds * 1000000 + stamp.tv_usec;
}

std::string PacketsBefore(std::uint64_t packets) {
  return packets == 0 ? "before its first packet" : "after packet " + std::to_string(packets);
}

// The frame lines of a capture's packets, in pieces.
class CaptureSource final : public PieceSource {
 public:
  CaptureSource(std::unique_ptr<InputStream> stream, pcap_t* pcap)
      : stream_(std::move(stream)), pcap_(pcap), linuxLapd_(pcap_datalink(pcap) == kLinkTypeLinuxLapd) {}
  ~CaptureSource() override { pcap_close(pcap_); }  // closes the stream too

  // A packet's frame line at a time: whole, it holds whole pieces only.
  std::optional<std::string_view> NextPieces() override {
    if (rest_.empty() && !ReadPacket()) return std::nullopt;
    return std::exchange(rest_, std::string_view());
  }
  void SetBeforeRead(std::function<void()> beforeRead) override { stream_->SetBeforeRead(std::move(beforeRead)); }
  std::uint64_t BytesRead() const override { return stream_->BytesRead(); }
  int Error() const override { return stream_->Error(); }
  InputFault Fault() const override { return fault_; }
  const std::string& FaultText() const override { return faultText_; }

 private:
  // The next packet's frame line into line_; false at the end or a fault.
  bool ReadPacket() {
    if (ended_) return false;
    pcap_pkthdr* header = nullptr;
    const u_char* data = nullptr;
    const int status = pcap_next_ex(pcap_, &header, &data);
    if (status != 1) {
      ended_ = true;
      if (status == PCAP_ERROR && stream_->Error() == 0) NoteFault();
      return false;
    }
    ++packets_;
    OctetSpan octets(data, header->caplen);
    FrameDirection direction = FrameDirection::Unknown;
    if (linuxLapd_) {
      // A packet too short for its pseudo-header has neither a direction nor a frame.
      if (octets.size() >= kLapdPseudoHeaderSize)
        direction = DirectionOfPacketType(static_cast<std::uint16_t>(octets[0] << 8 | octets[1]));
      octets = octets.subspan(std::min(octets.size(), kLapdPseudoHeaderSize));
    }
    WriteFrameLine(line_, packets_, MicrosecondsOf(header->ts), direction, octets);
    rest_ = line_;
    return true;
  }

  // libpcap could not read on: the input ended inside a record, or a record
  // is not readable.
  void NoteFault() {
    const std::string detail = pcap_geterr(pcap_);
    if (stream_->AtEnd()) {
      fault_ = InputFault::CutOff;
      faultText_ = "the capture ends at byte " + std::to_string(stream_->BytesRead()) + " in the middle of a record, " +
                   PacketsBefore(packets_) + " (" + detail + ")";
    } else {
      fault_ = InputFault::Damaged;
      faultText_ = "the capture cannot be read " + PacketsBefore(packets_) + ": " + detail;
    }
  }

  std::unique_ptr<InputStream> stream_;
  pcap_t* pcap_;
  bool linuxLapd_;
  std::string line_;
  std::string_view rest_;
  std::uint64_t packets_ = 0;
  bool ended_ = false;
  InputFault fault_ = InputFault::None;
  std::string faultText_;
};

std::string LinkTypeRefusal(int linkType) {
  const char* name = pcap_datalink_val_to_name(linkType);
  const char* description = pcap_datalink_val_to_description(linkType);
  std::string text = "link type " + std::to_string(linkType) + " (";
  text += name != nullptr ? name : "unknown";
  if (description != nullptr) text += std::string(", ") + description;
  return text + ") is not LAPD: captures of LINKTYPE_LAPD (203) or LINKTYPE_LINUX_LAPD (177) are translated";
}

class CaptureInputFormat final : public InputFormat {
 public:
  Recognition Recognise(std::string_view head) const override { return RecogniseCaptureSignature(head); }

  OpenedInput Open(int fd, std::string_view consumed) const override {
    auto stream = std::make_unique<InputStream>(fd, consumed);
    FILE* file = stream->Open();
    char error[PCAP_ERRBUF_SIZE] = "";
    pcap_t* pcap = pcap_fopen_offline(file, error);
    if (pcap == nullptr) {
      std::fclose(file);
      return {nullptr, "the capture's header cannot be read: " + std::string(error)};
    }
    const int linkType = pcap_datalink(pcap);
    if (linkType != kLinkTypeLapd && linkType != kLinkTypeLinuxLapd) {
      pcap_close(pcap);
      return {nullptr, LinkTypeRefusal(linkType)};
    }
    return {std::make_unique<CaptureSource>(std::move(stream), pcap), {}};
  }
};

}  // namespace

const InputFormat& CaptureFormat() {
  static const CaptureInputFormat format;
  return format;
}

}  // namespace velmora
