#pragma once
// The two link types of LAPD captures. LINKTYPE_LAPD (203) holds the frame
// from its address field on. LINKTYPE_LINUX_LAPD (177) puts a 16-octet
// pseudo-header in front of it, laid out as libpcap's Linux cooked header
// (pcap/sll.h), every field big-endian:
//   octets 0-1    packet type: 0 sent to this host, 1 broadcast, 2 multicast,
//                 3 between other hosts, 4 sent by this host
//   octets 2-3    the hardware type, ARPHRD_LAPD (8445)
//   octets 4-5    the length of the link-layer address
//   octets 6-13   the link-layer address
//   octets 14-15  the protocol, ETH_P_LAPD (0x0030)
#include <pcap/dlt.h>
#include <pcap/sll.h>

#include <cstddef>
#include <cstdint>

#include "frame_line_facts.h"

namespace velmora {

inline constexpr int kLinkTypeLapd = DLT_LAPD;
inline constexpr int kLinkTypeLinuxLapd = DLT_LINUX_LAPD;
inline constexpr std::size_t kLapdPseudoHeaderSize = SLL_HDR_LEN;
inline constexpr std::uint16_t kHardwareTypeLapd = 8445;  // ARPHRD_LAPD
inline constexpr std::uint16_t kProtocolLapd = 0x0030;    // ETH_P_LAPD

// TX is what this host sent, RX what it received (addressed to it, to all or
// to a group); a frame between other hosts, or of a type no kernel writes,
// has no direction of ours.
constexpr FrameDirection DirectionOfPacketType(std::uint16_t packetType) {
  switch (packetType) {
    case LINUX_SLL_OUTGOING:
      return FrameDirection::Sent;
    case LINUX_SLL_HOST:
    case LINUX_SLL_BROADCAST:
    case LINUX_SLL_MULTICAST:
      return FrameDirection::Received;
    default:
      return FrameDirection::Unknown;
  }
}

constexpr std::uint16_t PacketTypeOfDirection(FrameDirection direction) {
  switch (direction) {
    case FrameDirection::Sent:
      return LINUX_SLL_OUTGOING;
    case FrameDirection::Received:
      return LINUX_SLL_HOST;
    case FrameDirection::Unknown:
      break;
  }
  return LINUX_SLL_OTHERHOST;
}

}  // namespace velmora
