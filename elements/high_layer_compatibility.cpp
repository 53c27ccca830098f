// High layer compatibility (0x7D).
// Not decoded field by field yet: shown as a hexadecimal dump until then.
#include "elements/element_decoders.h"

namespace velmora {

int DecodeHighLayerCompatibility(const ElementOctets& element) { return DecodeUnknownElement(element); }

}  // namespace velmora
