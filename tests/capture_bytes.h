#pragma once
// Capture files put together byte by byte as pcap-savefile(5) and the pcapng
// block layout have them, so that no test reads back what the code under
// test wrote.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::testing {

// `value` in `size` bytes, least significant first unless `bigEndian`.
inline std::string Field(std::uint64_t value, int size, bool bigEndian = false) {
  std::string bytes(static_cast<std::size_t>(size), '\0');
  for (int i = 0; i < size; ++i) bytes[static_cast<std::size_t>(bigEndian ? size - 1 - i : i)] = char(value >> (8 * i));
  return bytes;
}

struct PcapLayout {
  std::uint32_t linkType = 203;
  bool bigEndian = false;
  bool nanoseconds = false;
  std::uint32_t snapLength = 65535;
  std::string Fields(std::uint64_t a, std::uint64_t b, std::uint64_t c, std::uint64_t d) const {
    return Field(a, 4, bigEndian) + Field(b, 4, bigEndian) + Field(c, 4, bigEndian) + Field(d, 4, bigEndian);
  }
};

inline std::string PcapHeader(const PcapLayout& layout) {
  const std::uint64_t version = layout.bigEndian ? 0x00020004 : 0x00040002;  // 2.4
  return layout.Fields(layout.nanoseconds ? 0xa1b23c4d : 0xa1b2c3d4, version, 0, 0) +
         layout.Fields(layout.snapLength, layout.linkType, 0, 0).substr(0, 8);
}

// A packet record; `capturedLength` overrides the length of `data`.
inline std::string PcapRecord(const PcapLayout& layout, std::uint32_t seconds, std::uint32_t fraction,
                              std::string_view data, std::optional<std::uint32_t> capturedLength = std::nullopt) {
  return layout.Fields(seconds, fraction, capturedLength.value_or(data.size()), data.size()) + std::string(data);
}

// pcapng blocks, little-endian, time stamps in microseconds.
inline std::string PcapngBlock(std::uint32_t type, std::string body) {
  body.append((4 - body.size() % 4) % 4, '\0');
  return Field(type, 4) + Field(body.size() + 12, 4) + body + Field(body.size() + 12, 4);
}
inline std::string PcapngSection() {
  return PcapngBlock(0x0a0d0d0a, Field(0x1a2b3c4d, 4) + Field(1, 4) + Field(~0ULL, 8));
}
inline std::string PcapngInterface(std::uint32_t linkType) {
  return PcapngBlock(1, Field(linkType, 4) + Field(65535, 4));
}
inline std::string PcapngPacket(std::uint32_t interface, std::uint64_t microseconds, std::string_view data) {
  return PcapngBlock(6, Field(interface, 4) + Field(microseconds >> 32, 4) + Field(microseconds, 4) +
                            Field(data.size(), 4) + Field(data.size(), 4) + std::string(data));
}

// A frame behind the LINKTYPE_LINUX_LAPD pseudo-header: packet type 4 is
// sent by this host, 0 received by it.
inline std::string LinuxLapd(std::uint16_t packetType, std::string_view frame) {
  return Field(packetType, 2, true) + Field(8445, 2, true) + std::string(10, '\0') + Field(0x0030, 2, true) +
         std::string(frame);
}

}  // namespace velmora::testing
