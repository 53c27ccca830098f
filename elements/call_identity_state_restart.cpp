// Call identity (0x10), Call state (0x14), Restart indicator (0x79).
// Not decoded field by field yet: shown as a hexadecimal dump until then.
#include "elements/element_decoders.h"

namespace velmora {

int DecodeCallIdentity(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeCallState(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeRestartIndicator(const ElementOctets& element) { return DecodeUnknownElement(element); }

}  // namespace velmora
