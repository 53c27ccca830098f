// User-user (0x7E).
// Not decoded field by field yet: shown as a hexadecimal dump until then.
#include "elements/element_decoders.h"

namespace velmora {

int DecodeUserUser(const ElementOctets& element) { return DecodeUnknownElement(element); }

}  // namespace velmora
