// Low layer compatibility (0x7C).
// Not decoded field by field yet: shown as a hexadecimal dump until then.
#include "elements/element_decoders.h"

namespace velmora {

int DecodeLowLayerCompatibility(const ElementOctets& element) { return DecodeUnknownElement(element); }

}  // namespace velmora
