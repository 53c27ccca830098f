// Bearer capability (0x04).
// Not decoded field by field yet: shown as a hexadecimal dump until then.
#include "elements/element_decoders.h"

namespace velmora {

int DecodeBearerCapability(const ElementOctets& element) { return DecodeUnknownElement(element); }

}  // namespace velmora
