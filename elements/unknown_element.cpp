#include "element_octets.h"
#include "field_text.h"

namespace velmora {

// "Unknown ( " + "0x%x " for every octet of the element + ")\n". A single-octet
// element is its one octet; a variable-length one shows identifier, length and
// contents, as far as the frame holds them.
void DecodeUnknownElement(OutputWriter& out, const ElementOctets& element) {
  out.Put("Unknown ( ");
  if (element.IsSingleOctet()) {
    out.Hex(element.Identifier());
    out.Put(' ');
  } else {
    for (const Octet octet : element.Slice(0)) {
      out.Hex(octet);
      out.Put(' ');
    }
  }
  out.Put(")\n");
}

}  // namespace velmora
