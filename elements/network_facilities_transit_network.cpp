// Network-specific facilities (0x20), Transit network selection (0x78).
// Not decoded field by field yet: shown as a hexadecimal dump until then.
#include "elements/element_decoders.h"

namespace velmora {

int DecodeNetworkSpecificFacilities(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeTransitNetworkSelection(const ElementOctets& element) { return DecodeUnknownElement(element); }

}  // namespace velmora
