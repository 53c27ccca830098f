// Every element of both registries (the described one and the detail
// level's), and the unknown-element dump, on arbitrary octets standing at
// the very end of a frame held in a heap block of exactly their size: a
// read past the frame's last octet is a read past the block.
//
// Input: byte 0 picks the element by its index (modulo the registries'
// sizes plus one: the described registry first, then the detail level's;
// the last index is the unknown-element dump), the rest are the octets
// from the identifier to the frame's end.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include "fuzz_support.h"

namespace {

using velmora::ElementEntry;
using velmora::Octet;
using velmora::fuzz::DecodeAtFrameEnd;
using velmora::fuzz::Printable;
using velmora::fuzz::Require;

// Elements that read octets behind their last one, where extension bits or
// fixed positions announce them whatever the length says: the party numbers'
// octets 3a and 3b, Date/time, the packet-mode rates and delays. For every
// other element what follows it in the frame cannot change what it prints.
constexpr Octet kReadsBehindItsEnd[] = {0x29, 0x40, 0x42, 0x43, 0x4C, 0x6C, 0x70, 0x74};

bool ReadsBehindItsEnd(const ElementEntry* entry) {
  return entry != nullptr && std::ranges::find(kReadsBehindItsEnd, entry->identifier) != std::end(kReadsBehindItsEnd);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;  // the element index and at least the identifier
  constexpr std::size_t kDescribed = std::size(velmora::kElementRegistry);
  constexpr std::size_t kChoices = kDescribed + std::size(velmora::kDetailElementRegistry) + 1;
  const std::size_t index = data[0] % kChoices;
  const ElementEntry* entry = index < kDescribed     ? &velmora::kElementRegistry[index]
                              : index < kChoices - 1 ? &velmora::kDetailElementRegistry[index - kDescribed]
                                                     : nullptr;
  const Octet* octets = data + 1;
  const std::size_t octetCount = size - 1;

  const std::string text = DecodeAtFrameEnd(entry, octets, octetCount);
  const std::string where = std::string(entry != nullptr ? entry->name : "Unknown element") + " on " +
                            Printable(std::string_view(reinterpret_cast<const char*>(octets), octetCount));

  // Whole lines: a heading, then field lines of two or three tabs.
  Require(!text.empty() && text.back() == '\n', "an element prints whole lines",
          [&] { return where + "\n" + Printable(text); });
  const std::size_t headingEnd = text.find('\n');
  for (std::size_t at = headingEnd + 1; at < text.size(); at = text.find('\n', at) + 1)
    Require(text.compare(at, 2, "\t\t") == 0, "field lines begin with two tabs",
            [&] { return where + "\n" + Printable(text); });

  // No memory between calls.
  Require(DecodeAtFrameEnd(entry, octets, octetCount) == text, "a decoder keeps no state", where);

  // What follows the element in the frame is none of its business.
  if (!ReadsBehindItsEnd(entry)) {
    const velmora::ElementOctets element(velmora::OctetSpan(octets, octetCount));
    const std::size_t elementSize = std::min(velmora::OccupiedOctets(entry, element), octetCount);
    const std::string alone = DecodeAtFrameEnd(entry, octets, elementSize);
    Require(alone == text, "a decoder reads nothing behind its element's last octet", [&] {
      return where + "\nwith the rest of the frame:\n" + Printable(text) + "\nalone:\n" + Printable(alone);
    });
  }
  return 0;
}
