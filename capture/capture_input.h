#pragma once
// Packet captures as input: pcap files (microsecond or nanosecond time
// stamps, either byte order) and pcapng files of LAPD frames, recognised by
// their first four bytes and read with libpcap. Each packet becomes one
// frame line (frame_line_writer.h), so a capture is translated as a trace log of
// those lines would be.
#include "input_format.h"

namespace velmora {

// The capture format, for TranslationOptions::inputFormats. A capture whose
// header cannot be read or whose link type is neither LINKTYPE_LAPD nor
// LINKTYPE_LINUX_LAPD is refused, with the reason in words.
const InputFormat& CaptureFormat();

}  // namespace velmora
