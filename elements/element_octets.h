#pragma once
// One information element as its decoder sees it, and the decoder contract.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "octet.h"
#include "output_writer.h"

namespace velmora {

// The octets from an element's identifier (position 0) to the frame's last
// octet. Positions count from the identifier: the length octet is at 1,
// octet 3 of Q.931 at 2. Nothing outside the frame can be reached.
class ElementOctets {
 public:
  // `fromIdentifier` holds at least the identifier octet.
  explicit ElementOctets(OctetSpan fromIdentifier) : frame_(fromIdentifier) {}

  Octet Identifier() const { return frame_[0]; }
  bool IsSingleOctet() const { return (frame_[0] & 0x80) != 0; }

  // L from octet 2; 0 when the frame ends right behind the identifier.
  unsigned Length() const { return frame_.size() > 1 ? frame_[1] : 0U; }

  // The count a variable-length element occupies: L + 2, whatever is present.
  std::size_t Count() const { return Length() + 2; }

  // Positions 0 to L + 1 that the frame holds: the element proper.
  std::size_t End() const { return std::min<std::size_t>(Length() + 2, frame_.size()); }
  bool Has(std::size_t position) const { return position < End(); }
  // The octet at a position inside the element, when the element and the frame hold it.
  std::optional<Octet> At(std::size_t position) const {
    if (!Has(position)) return std::nullopt;
    return frame_[position];
  }
  // Octets from `first` to the element's end (empty when first lies beyond).
  OctetSpan Slice(std::size_t first) const {
    const std::size_t end = End();
    return first < end ? frame_.subspan(first, end - first) : OctetSpan{};
  }

  // For decoders that read on behind the element's last octet, as some
  // Q.931 layouts announce by extension bits: the frame's octet at a
  // position, or nothing when the frame ends before it.
  std::optional<Octet> FrameAt(std::size_t position) const {
    if (position >= frame_.size()) return std::nullopt;
    return frame_[position];
  }
  std::size_t FrameSize() const { return frame_.size(); }
  // The first `count` octets from the identifier on, as far as the frame holds them.
  OctetSpan First(std::size_t count) const { return frame_.first(std::min(count, frame_.size())); }

 private:
  OctetSpan frame_;
};

// Prints the element's field lines; the heading, its name, is the
// registry's, and the octets it occupies follow from its form.
using ElementDecoder = void (*)(OutputWriter& out, const ElementOctets& element);

// How many octets an element occupies.
enum class ElementForm : std::uint8_t {
  SingleOctet,     // bit 8 of the identifier is 1: the identifier alone, 1
  VariableLength,  // identifier, length L and L contents octets: L + 2
};

// Shows any element in hexadecimal, heading and all: "Unknown ( 0x.. 0x.. )".
void DecodeUnknownElement(OutputWriter& out, const ElementOctets& element);

}  // namespace velmora
