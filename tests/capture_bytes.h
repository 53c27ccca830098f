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
};

inline std::string PcapHeader(const PcapLayout& layout) {
  const auto field = [&](std::uint64_t value, int size) { return Field(value, size, layout.bigEndian); };
  return field(layout.nanoseconds ? 0xa1b23c4d : 0xa1b2c3d4, 4) + field(2, 2) + field(4, 2) + field(0, 4) +
         field(0, 4) + field(layout.snapLength, 4) + field(layout.linkType, 4);
}

// A packet record; `capturedLength` overrides the length of `data`.
inline std::string PcapRecord(const PcapLayout& layout, std::uint32_t seconds, std::uint32_t fraction,
                              std::string_view data, std::optional<std::uint32_t> capturedLength = std::nullopt) {
  const auto field = [&](std::uint64_t value, int size) { return Field(value, size, layout.bigEndian); };
  return field(seconds, 4) + field(fraction, 4) + field(capturedLength.value_or(data.size()), 4) +
         field(data.size(), 4) + std::string(data);
}

// pcapng blocks, little-endian, time stamps in microseconds.
inline std::string PcapngBlock(std::uint32_t type, std::string body) {
  body.append((4 - body.size() % 4) % 4, '\0');
  const std::uint64_t total = body.size() + 12;
  return Field(type, 4) + Field(total, 4) + body + Field(total, 4);
}
inline std::string PcapngSection() {
  return PcapngBlock(0x0a0d0d0a, Field(0x1a2b3c4d, 4) + Field(1, 2) + Field(0, 2) + Field(~0ULL, 8));
}
inline std::string PcapngInterface(std::uint32_t linkType) {
  return PcapngBlock(1, Field(linkType, 2) + Field(0, 2) + Field(65535, 4));
}
inline std::string PcapngPacket(std::uint32_t interface, std::uint64_t microseconds, std::string_view data) {
  return PcapngBlock(6, Field(interface, 4) + Field(microseconds >> 32, 4) + Field(microseconds & 0xFFFFFFFF, 4) +
                            Field(data.size(), 4) + Field(data.size(), 4) + std::string(data));
}

// A frame behind the LINKTYPE_LINUX_LAPD pseudo-header: packet type 4 is
// sent by this host, 0 received by it.
inline std::string LinuxLapd(std::uint16_t packetType, std::string_view frame) {
  return Field(packetType, 2, true) + Field(8445, 2, true) + Field(0, 2, true) + std::string(8, '\0') +
         Field(0x0030, 2, true) + std::string(frame);
}

}  // namespace velmora::testing
