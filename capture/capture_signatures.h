#pragma once
// The first bytes that make an input a capture: pcap with microsecond and
// nanosecond time stamps, written in either byte order, and the pcapng
// section header block. Needs no libpcap, so that a front end without it
// (the browser page) can still tell a capture and turn it away.
#include <string_view>

#include "input_format.h"

namespace velmora {

inline Recognition RecogniseCaptureSignature(std::string_view head) {
  static constexpr std::string_view kSignatures[] = {"\xa1\xb2\xc3\xd4", "\xd4\xc3\xb2\xa1", "\xa1\xb2\x3c\x4d",
                                                     "\x4d\x3c\xb2\xa1", "\x0a\x0d\x0d\x0a"};
  for (const std::string_view signature : kSignatures) {
    const std::string_view start = head.substr(0, signature.size());
    if (signature.starts_with(start)) return start.size() < signature.size() ? Recognition::NeedMore : Recognition::Yes;
  }
  return Recognition::No;
}

}  // namespace velmora
