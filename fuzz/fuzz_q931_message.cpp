// The Q.931 message layer on arbitrary octets from the protocol
// discriminator to the frame's end, held in a heap block of exactly their
// size. The message text must be the header line and, element by element,
// the prefix and what the chosen decoder prints on its own, each element
// starting where the previous one's count ends: so the walk advances by the
// decoders' counts, visits at most one element per octet and returns. At
// --detail full (Q.932 messages, Facility, shifts and codesets), the lines
// are whole and every one behind the first is indented.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz_support.h"
#include "q931_message.h"

namespace {

using velmora::Octet;
using velmora::fuzz::Printable;
using velmora::fuzz::Require;

std::string ExpectedText(const Octet* message, std::size_t size, std::size_t& elements) {
  std::string text = "Message type:";
  elements = 0;
  if (size < 2 || static_cast<std::size_t>(message[1]) + 2 >= size) return text + "Truncated message\n";
  const std::size_t typePosition = static_cast<std::size_t>(message[1]) + 2;
  const velmora::MessageWalk* walk = velmora::FindMessageWalk(message[typePosition]);
  if (walk == nullptr) return text;
  text += walk->name;
  text += '\n';
  if (!walk->walked) return text;
  for (std::size_t index = typePosition + 1; index < size; ++elements) {
    const velmora::ElementEntry* entry = velmora::ChooseElement(walk->accepted, message[index]);
    text += "\tInformation element:";
    text += velmora::fuzz::DecodeAtFrameEnd(entry, message + index, size - index);
    index += velmora::OccupiedOctets(entry, velmora::ElementOctets(velmora::OctetSpan(message + index, size - index)));
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto message = velmora::fuzz::ExactCopy<Octet>(data, size);
  const std::string text = velmora::fuzz::Capture(
      [&](velmora::OutputWriter& out) { velmora::DecodeQ931Message(out, velmora::OctetSpan(message.get(), size)); });

  std::size_t elements = 0;
  const std::string expected = ExpectedText(data, size, elements);
  Require(elements <= size, "at most one element per octet");
  if (text != expected) {
    std::size_t at = 0;
    while (at < text.size() && at < expected.size() && text[at] == expected[at]) ++at;
    velmora::fuzz::Violated("the walk shows each element where the previous one's count ends",
                            "octets: " + Printable(std::string_view(reinterpret_cast<const char*>(data), size)) +
                                "\nfirst difference at " + std::to_string(at) +
                                "\nprinted:  " + Printable(std::string_view(text).substr(at, 200)) +
                                "\nexpected: " + Printable(std::string_view(expected).substr(at, 200)));
  }

  const std::string detailed = velmora::fuzz::Capture([&](velmora::OutputWriter& out) {
    velmora::DecodeQ931Message(out, velmora::OctetSpan(message.get(), size), true);
  });
  Require(detailed.starts_with("Message type:") && detailed.back() == '\n', "at full detail the lines are whole",
          [&] { return Printable(detailed); });
  for (std::size_t at = detailed.find('\n') + 1; at < detailed.size(); at = detailed.find('\n', at) + 1)
    Require(detailed[at] == '\t', "at full detail every line behind the first is indented",
            [&] { return Printable(detailed); });
  return 0;
}
