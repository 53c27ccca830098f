// Every element decoder on arbitrary octets standing at the very end of a
// frame held in a heap block of exactly their size: a read past the frame's
// last octet is a read past the block.
//
// Input: byte 0 picks the decoder (modulo the table), the rest are the
// octets from the identifier to the frame's end.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/decoder_table.h"
#include "fuzz/fuzz_support.h"

namespace {

using velmora::Octet;
using velmora::fuzz::Decode;
using velmora::fuzz::DecoderEntry;
using velmora::fuzz::kDecoderCount;
using velmora::fuzz::kDecoders;
using velmora::fuzz::Printable;
using velmora::fuzz::Require;
using velmora::fuzz::Result;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;  // the decoder index and at least the identifier
  const DecoderEntry& entry = kDecoders[data[0] % kDecoderCount];
  const Octet* octets = data + 1;
  const std::size_t octetCount = size - 1;

  const Result first = Decode(entry.decoder, octets, octetCount);
  const std::string where =
      std::string(entry.name) + " on " + Printable(std::string_view(reinterpret_cast<const char*>(octets), octetCount));

  // The count the walk moves on by.
  const int expected = velmora::fuzz::ExpectedCount(entry.form, octets, octetCount);
  Require(first.count == expected, "a decoder returns 1 for a single octet, L + 2 otherwise",
          where + "\nreturned " + std::to_string(first.count) + ", expected " + std::to_string(expected));

  // Whole lines: a heading, then field lines of two or three tabs.
  Require(!first.text.empty() && first.text.back() == '\n', "a decoder prints whole lines",
          where + "\n" + Printable(first.text));
  const std::size_t headingEnd = first.text.find('\n');
  for (std::size_t at = headingEnd + 1; at < first.text.size(); at = first.text.find('\n', at) + 1)
    Require(first.text.compare(at, 2, "\t\t") == 0, "field lines begin with two tabs",
            where + "\n" + Printable(first.text));

  // No memory between calls.
  const Result again = Decode(entry.decoder, octets, octetCount);
  Require(again.text == first.text && again.count == first.count, "a decoder keeps no state", where);

  // What follows the element in the frame is none of its business.
  if (entry.staysInsideElement) {
    const std::size_t elementSize =
        static_cast<std::size_t>(expected) < octetCount ? static_cast<std::size_t>(expected) : octetCount;
    const Result alone = Decode(entry.decoder, octets, elementSize);
    Require(alone.text == first.text, "a decoder reads nothing behind its element's last octet",
            where + "\nwith the rest of the frame:\n" + Printable(first.text) + "\nalone:\n" + Printable(alone.text));
  }
  return 0;
}
