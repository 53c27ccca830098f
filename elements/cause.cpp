// Cause (0x08), with its diagnostics.
// Not decoded field by field yet: shown as a hexadecimal dump until then.
#include "elements/element_decoders.h"

namespace velmora {

int DecodeCause(const ElementOctets& element) { return DecodeUnknownElement(element); }

}  // namespace velmora
