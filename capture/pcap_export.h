#pragma once
// velmora --to pcap: a trace log written as a pcap file, one packet for each
// frame line, holding the octets the scanner reads from the line. Written
// through libpcap's dumper into the run's writer.
//
// The first frame line decides the link type (a pcap file has one): with a
// whole-word TX or RX before its "HDLC", LINKTYPE_LINUX_LAPD, whose
// pseudo-header carries each frame's direction (a line without one is
// written as a frame between other hosts); else LINKTYPE_LAPD. Each packet
// gets the moment of its line (FrameClock), held to what a pcap file holds:
// 1970-01-01 to 2106-02-07 06:28:15 UTC.
#include "translation.h"

namespace velmora {

TraceConsumerFactory PcapExport();

}  // namespace velmora
