#include "pcap_export.h"

#include <pcap/pcap.h>

#include <algorithm>
#include <cstdio>
#include <new>
#include <vector>

#include "frame_line_facts.h"
#include "lapd_link_types.h"
#include "output_writer.h"
#include "trace_consumer.h"

namespace velmora {
namespace {

// Seconds are 32 bits wide in a pcap file.
constexpr std::int64_t kLastMoment = 0x7FFFFFFFLL * 1000000 + 999999;
constexpr int kSnapLength = 65535;

class PcapWriter final : public TraceConsumer {
 public:
  explicit PcapWriter(OutputWriter& out) : out_(out) {}
  ~PcapWriter() override { Close(); }
  PcapWriter(const PcapWriter&) = delete;
  PcapWriter& operator=(const PcapWriter&) = delete;

  void Consume(const TracePiece& piece) override {
    if (!piece.isFrameLine) return;
    // A frame without its C/R bit would be written with one made up.
    if (piece.dump != nullptr && !piece.dump->commandResponseKnown) return;
    FrameLineFacts facts = ReadFrameLineFacts(piece.dump != nullptr ? piece.dump->moment : piece.text);
    if (piece.dump != nullptr) facts.direction = piece.dump->direction;
    if (dumper_ == nullptr) Open(facts.direction != FrameDirection::Unknown ? kLinkTypeLinuxLapd : kLinkTypeLapd);
    packet_.clear();
    if (linkType_ == kLinkTypeLinuxLapd) AppendPseudoHeader(PacketTypeOfDirection(facts.direction));
    packet_.insert(packet_.end(), piece.frame.begin(), piece.frame.end());
    const std::int64_t moment = std::clamp<std::int64_t>(clock_.Next(facts), 0, kLastMoment);
    pcap_pkthdr header{};
    header.ts.tv_sec = static_cast<time_t>(moment / 1000000);
    header.ts.tv_usec = static_cast<suseconds_t>(moment % 1000000);
    header.caplen = header.len = static_cast<bpf_u_int32>(packet_.size());
    pcap_dump(reinterpret_cast<u_char*>(dumper_), &header, packet_.data());
  }

  // A trace without frame lines still becomes a pcap file, of no packets.
  void Finish() override {
    if (dumper_ == nullptr) Open(kLinkTypeLapd);
    Close();
  }

 private:
  // libpcap writes into a stream whose every write goes to the run's writer.
  static ssize_t Write(void* cookie, const char* data, std::size_t size) {
    static_cast<OutputWriter*>(cookie)->Put(std::string_view(data, size));
    return static_cast<ssize_t>(size);
  }

  void Open(int linkType) {
    linkType_ = linkType;
    dead_ = pcap_open_dead(linkType, kSnapLength);
    FILE* file =
        dead_ != nullptr ? ::fopencookie(&out_, "wb", {nullptr, &PcapWriter::Write, nullptr, nullptr}) : nullptr;
    if (file == nullptr) throw std::bad_alloc();
    // The writer buffers; a second buffer would only delay its errors.
    std::setvbuf(file, nullptr, _IONBF, 0);
    dumper_ = pcap_dump_fopen(dead_, file);
    if (dumper_ == nullptr) {
      std::fclose(file);
      throw std::bad_alloc();
    }
  }

  void Close() {
    if (dumper_ != nullptr) pcap_dump_close(dumper_);
    if (dead_ != nullptr) pcap_close(dead_);
    dumper_ = nullptr;
    dead_ = nullptr;
  }

  void AppendPseudoHeader(std::uint16_t packetType) {
    const std::uint16_t fields[] = {packetType, kHardwareTypeLapd, 0};
    for (const std::uint16_t field : fields) {
      packet_.push_back(static_cast<u_char>(field >> 8));
      packet_.push_back(static_cast<u_char>(field & 0xFF));
    }
    packet_.insert(packet_.end(), 8, 0);  // no link-layer address
    packet_.push_back(static_cast<u_char>(kProtocolLapd >> 8));
    packet_.push_back(static_cast<u_char>(kProtocolLapd & 0xFF));
  }

  OutputWriter& out_;
  FrameClock clock_;
  pcap_t* dead_ = nullptr;
  pcap_dumper_t* dumper_ = nullptr;
  int linkType_ = kLinkTypeLapd;
  std::vector<u_char> packet_;
};

}  // namespace

TraceConsumerFactory PcapExport() {
  return [](OutputWriter& out, LinkMemory&) -> std::unique_ptr<TraceConsumer> {
    return std::make_unique<PcapWriter>(out);
  };
}

}  // namespace velmora
